#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/pointer_list.h"

#include <cstdint>
#include <vector>

// Where the samples of a recording are: in files on one or more disks, each of which holds a range of blocks. The names
// of the files aren't stored.

namespace ZelmResult {

struct strFileInfo {
    std::int16_t NbrTracks = 0;
    std::int16_t NbrCompressedTracks = 0;
    std::int16_t NbrFiles = 0;
    std::int16_t DisksNumber = 0;

    bool operator==(const strFileInfo&) const = default;
};

// The counts of one disk, a chunk "IDSK". A plain value.
class CFileInfo : public StoredFields<CFileInfo> {
public:
    static constexpr const char* kRecordName = "CFileInfo";

    // Copy the structure; always 0.
    std::int32_t getData(strFileInfo* out) const;
    std::int32_t setData(const strFileInfo* in);
    // Called with the file at the data of the chunk.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Makes and leaves the chunk.
    [[nodiscard]] bool Save(CMmioFile* file) const;

private:
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& info);

    strFileInfo m_data;
};
extern template class StoredFields<CFileInfo>;

struct strFileBlockInfo {
    std::uint32_t FileBlocStartNbr = 0;
    std::uint32_t FileBlocEndNbr = 0;

    bool operator==(const strFileBlockInfo&) const = default;
};

// The blocks that one file holds, a chunk "I%03d". A plain value.
class CFileBlockInfo : public StoredFields<CFileBlockInfo> {
public:
    static constexpr const char* kRecordName = "CFileBlockInfo";

    // Copy the structure; always 0.
    std::int32_t getData(strFileBlockInfo* out) const;
    std::int32_t setData(const strFileBlockInfo* in);
    bool updateFileBlocStartNbr(std::uint32_t block);
    bool updateFileBlocEndNbr(std::uint32_t block);
    // Called with the file at the data of the chunk.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Makes and leaves the chunk; false for a number outside 0 to 999.
    [[nodiscard]] bool Save(CMmioFile* file, std::int16_t number) const;

private:
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& info);

    strFileBlockInfo m_data;
};
extern template class StoredFields<CFileBlockInfo>;

// One disk with its files.
// Stored as  a list "DSK%x".
// Owns       the infos of its files. Not copied.
class CRecordInfo {
public:
    CRecordInfo() = default;
    CRecordInfo(const CRecordInfo&) = delete;
    CRecordInfo& operator=(const CRecordInfo&) = delete;
    ~CRecordInfo();

    CFileInfo& getFileInfo() { return m_fileInfo; }
    [[nodiscard]] const CFileInfo& getFileInfo() const { return m_fileInfo; }
    [[nodiscard]] CFileBlockInfo* getFirstFileBlockinfo() const; // lends; null when there is none
    [[nodiscard]] const std::vector<CFileBlockInfo*>& fileBlockInfos() const { return m_blocks.All(); } // lends
    bool AddFileBlockInfo(CFileBlockInfo* info); // takes; null, and one that is there, add nothing. Always true
    // Sets the last block of a file; does nothing for a file that doesn't exist. Always true.
    bool updateFileBlocEndNbr(std::int16_t file, std::uint32_t end);
    // The last block of the first file, 0 without one.
    [[nodiscard]] std::uint32_t GetNbOfDescriptors() const;

    // Called with the file inside the list. False at the first chunk that fails; what was read before it is kept.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Makes and leaves the list; false for a number outside 0 to 16. Files past the first 1000 aren't stored.
    [[nodiscard]] bool Save(CMmioFile* file, std::int16_t number) const;

private:
    [[nodiscard]] bool LoadHead(CMmioFile& file);
    [[nodiscard]] bool LoadBlocks(CMmioFile& file);

    CFileInfo m_fileInfo;
    PointerList<CFileBlockInfo> m_blocks;
};

} // namespace ZelmResult
