#pragma once

#include "zelmresult/storage/stored_record.h"

#include <cstdint>

namespace ZelmResult {

// Bits of the type word: which branches the systems of a file hold.
namespace FileType {
inline constexpr std::uint32_t kQuantities = 1;
inline constexpr std::uint32_t kRecording = 2;
inline constexpr std::uint32_t kResults = 4; // other than recording previews
inline constexpr std::uint32_t kSettings = 8;
inline constexpr std::uint32_t kTracks = 32;
inline constexpr std::uint32_t kReferences = 64;
inline constexpr std::uint32_t kRecordPreview = 128;
} // namespace FileType

// The head of a result file: the number of systems, and the type word. A plain value.
class FileHeader {
public:
    [[nodiscard]] std::int16_t GetSystemeNumber() const { return m_systemeNumber; }
    void SetSystemeNumber(std::int16_t systems) { m_systemeNumber = systems; }
    [[nodiscard]] std::uint32_t GetType() const { return m_type; }
    void SetType(std::uint32_t bits) { m_type = bits; }
    void AddType(std::uint32_t bits) { m_type |= bits; }
    [[nodiscard]] bool HasType(std::uint32_t bits) const { return (m_type & bits) != 0; }

private:
    friend class FileHeaderMmioReaderWriter;

    std::int16_t m_systemeNumber = 0;
    std::uint32_t m_type = 0;
};

// The chunk "HEAD". Read searches for it from the top of the file; Write makes and leaves it.
class FileHeaderMmioReaderWriter : public StoredFields<FileHeaderMmioReaderWriter, FileHeader> {
public:
    static constexpr const char* kRecordName = "FileHeader";
    [[nodiscard]] bool Read(CMmioFile& file, FileHeader& header) const;
    [[nodiscard]] bool Write(CMmioFile& file, const FileHeader& header) const;

private:
    friend StoredFields;
    template <class Io, class Header>
    static bool fields(Io& io, Header& header);
};
extern template class StoredFields<FileHeaderMmioReaderWriter, FileHeader>;

} // namespace ZelmResult
