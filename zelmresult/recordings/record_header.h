#pragma once

#include "zelmresult/support/time.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>

namespace ZelmResult {

class CMmioFile;
class RecordOutline;

// What holds for a whole recording.
struct strEnregHeader {
    std::int32_t TimeDivider = 0;
    double SampleFrequency = 0.0; // Hz
    std::int32_t BlockSize = 0;
    std::int32_t NbrChannel = 0;
    std::int32_t NbrChannelComp = 0; // compressed tracks
    OFILETIME ReferenceTime;         // origin of time
    OSYSTEMTIME RecordDate;          // UTC
    std::int64_t RecordLength = 0;   // in units of 100 ns
    std::int32_t NbrRecord = 0;
    std::int32_t NbrMarker = 0;
    std::int32_t DiskNumber = 0;
    wstring Name;

    bool operator==(const strEnregHeader&) const = default;
};

// The header of a recording, a chunk "HREC". A plain value.
// Stored as version 0x401. Before it RecordDate, and before 0x301 ReferenceTime, were local times: they are turned
// into UTC by the time zone of the machine that loads them. A date that doesn't exist isn't changed.
class CRecordHeader {
public:
    static constexpr const char* kRecordName = "CRecordHeader";

    explicit CRecordHeader(bool convertedSignal) : m_isConvertedSignal(convertedSignal) {}

    [[nodiscard]] std::int32_t getTimedivider() const { return m_data.TimeDivider; }
    [[nodiscard]] double getSampleFrequency() const { return m_data.SampleFrequency; }
    [[nodiscard]] std::int32_t getBlockSize() const { return m_data.BlockSize; }
    // Both cut to 16 bits.
    [[nodiscard]] std::int16_t getNbrChannel() const { return static_cast<std::int16_t>(m_data.NbrChannel); }
    [[nodiscard]] std::int16_t getNbrChannelComp() const { return static_cast<std::int16_t>(m_data.NbrChannelComp); }
    [[nodiscard]] std::int32_t getNbrRecord() const { return m_data.NbrRecord; }
    void setNbrRecord(std::int32_t count) { m_data.NbrRecord = count; }
    [[nodiscard]] std::int32_t getNbrMarker() const { return m_data.NbrMarker; }
    void setNbrMarker(std::int32_t count) { m_data.NbrMarker = count; }
    [[nodiscard]] std::uint64_t getReferenceTime() const
    {
        return OFileTime::fromFILETIME(m_data.ReferenceTime).toOFILETIME();
    }
    void setReferenceTime(const OFILETIME& time) { m_data.ReferenceTime = time; }
    void setRecordDate(const OSYSTEMTIME& date) { m_data.RecordDate = date; }
    bool updateRecordLength(std::int64_t length); // always true
    [[nodiscard]] bool IsConvertedSignal() const { return m_isConvertedSignal; }

    [[nodiscard]] const strEnregHeader& getRecordHeaderStr() const { return m_data; }
    strEnregHeader& getRecordHeaderStr() { return m_data; }
    // Copy the structure; always 0.
    std::int32_t getRecordHeaderData(strEnregHeader* out) const;
    std::int32_t setRecordHeaderData(const strEnregHeader* in);

    // Called with the file at the data of the chunk.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Makes and leaves the chunk.
    [[nodiscard]] bool Save(CMmioFile* file) const;
    static void Outline(RecordOutline& out);

private:
    template <class Io, class Self>
    static bool fields(Io& io, Self& header);
    void dumpLines(CMmioFile& file) const;
    void TurnToUTC(std::uint16_t storedVersion);

    strEnregHeader m_data;
    bool m_isConvertedSignal;
};

} // namespace ZelmResult
