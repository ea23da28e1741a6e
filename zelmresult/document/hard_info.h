#pragma once

#include "zelmresult/storage/stored_record.h"

#include <cstdint>
#include <string>
#include <vector>

namespace ZelmResult {

// The hardware of a measurement, as UTF-8. The library doesn't compare it with anything.
struct strHardInfo {
    std::string HardShortName;
    std::string HardSN;
    std::string DiskSN;
    std::string DiskName;

    bool operator==(const strHardInfo&) const = default;
};

// The analyzers and disks of a document. A plain value.
class CHardInfo {
public:
    [[nodiscard]] std::int32_t getNbHardInfo() const { return static_cast<std::int32_t>(m_entries.size()); }
    // False, and out isn't changed, for an index out of range.
    bool getHardInfoData(std::int32_t index, strHardInfo& out) const;
    void addHardInfoData(const strHardInfo& entry) { m_entries.push_back(entry); }
    void clear() { m_entries.clear(); }

private:
    friend class CHardInfoMmioReaderWriter;

    std::vector<strHardInfo> m_entries;
};

// The chunk "HRDI". Read clears the record, searches for the chunk from the top of the file, and leaves the position
// after the record. A count below 1 is an empty record; one that the file doesn't hold is a failure.
class CHardInfoMmioReaderWriter : public StoredFields<CHardInfoMmioReaderWriter, CHardInfo> {
public:
    static constexpr const char* kRecordName = "CHardInfo";
    static constexpr const char* kEntryName = "strHardInfo";
    static constexpr std::uint16_t kFirstDocumentVersion = 0x200; // documents of lower ones have no such chunk
    [[nodiscard]] bool Read(CMmioFile& file, CHardInfo& info) const;
    [[nodiscard]] bool Write(CMmioFile& file, const CHardInfo& info) const;

private:
    friend StoredFields;
    template <class Io, class Info>
    static bool fields(Io& io, Info& info);
    template <class Io, class Entry>
    static void entryFields(Io& io, Entry& entry);
};
extern template class StoredFields<CHardInfoMmioReaderWriter, CHardInfo>;

} // namespace ZelmResult
