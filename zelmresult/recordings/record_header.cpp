#include "zelmresult/recordings/record_header.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstWithReferenceTime = 0x300;
constexpr std::uint16_t kFirstWithReferenceInUTC = 0x301;
constexpr std::uint16_t kFirstWithDateInUTC = 0x401;

// Ticks below a millisecond are lost.
void TurnToUTC(OFILETIME& time)
{
    OSYSTEMTIME parts;
    if (FileTimeToSystemTime(time, parts)) (void)SystemTimeToFileTime(CAbsoluteTimeFormater::ConvertToUTC(parts), time);
}

} // namespace

bool CRecordHeader::updateRecordLength(std::int64_t length)
{
    m_data.RecordLength = length;
    return true;
}

std::int32_t CRecordHeader::getRecordHeaderData(strEnregHeader* out) const
{
    if (out != nullptr) *out = m_data;
    return 0;
}

std::int32_t CRecordHeader::setRecordHeaderData(const strEnregHeader* in)
{
    if (in != nullptr) m_data = *in;
    return 0;
}

template <class Io, class Self>
bool CRecordHeader::fields(Io& io, Self& header)
{
    auto& data = header.m_data;
    if (!io.record(kRecordName, newest{0x401}, first{0x100})) return io.ok();
    io.i32("TimeDivider", data.TimeDivider);
    io.f64("SampleFrequency", data.SampleFrequency);
    io.i32("BlockSize", data.BlockSize);
    io.i32("NbrChannel", data.NbrChannel);
    io.systemTime("RecordDate", data.RecordDate);
    io.i64("RecordLength", data.RecordLength);
    io.i32("NbrRecord", data.NbrRecord);
    io.i32("NbrMarker", data.NbrMarker);
    io.i32("DiskNumber", data.DiskNumber);
    io.text("Name", data.Name);
    io.flag("IsConvertedSignal", header.m_isConvertedSignal, since{0x200});
    io.fileTime("ReferenceTime", data.ReferenceTime, since{kFirstWithReferenceTime});
    io.i32("NbrChannelComp", data.NbrChannelComp, since{0x400});
    return io.ok();
}

void CRecordHeader::dumpLines(CMmioFile& file) const
{
    constexpr double secondsPerTick = 1e-07;
    file.AddStringToDebugFile(u"CRecordHeader");
    file.AddStringToDebugFile(Concat(u"Time divider : ", m_data.TimeDivider, u" , Sample frequency : ",
                                     ToFixed(m_data.SampleFrequency), u" , Block size : ", m_data.BlockSize,
                                     u" , Nb track : ", m_data.NbrChannel, u", Nb Compressed track : ",
                                     m_data.NbrChannelComp));
    file.AddStringToDebugFile(
        Concat(u"Recode length  : ", ToFixed(static_cast<double>(m_data.RecordLength) * secondsPerTick),
               u" , Record number : ", m_data.NbrRecord, u" ,, Marker number : ", m_data.NbrMarker, u" Disk number : ",
               m_data.DiskNumber, u" , Name : ", m_data.Name));
}

bool CRecordHeader::Load(CMmioFile* file)
{
    RecordReader in(*file);
    if (!fields(in, *this)) return false;
    TurnToUTC(in.version());
    return true;
}

void CRecordHeader::TurnToUTC(std::uint16_t storedVersion)
{
    if (storedVersion < 0x100) return;
    if (storedVersion < kFirstWithDateInUTC) m_data.RecordDate = CAbsoluteTimeFormater::ConvertToUTC(m_data.RecordDate);
    if (storedVersion >= kFirstWithReferenceTime && storedVersion < kFirstWithReferenceInUTC)
        ZelmResult::TurnToUTC(m_data.ReferenceTime);
}

bool CRecordHeader::Save(CMmioFile* file) const
{
    OMMCKINFO chunk;
    if (!file->Create(ChunkKind::RecordHeader, chunk)) return false;
    RecordWriter out(*file);
    if (!fields(out, *this)) return false;
    if (file->GenerateInfoFile()) dumpLines(*file);
    return file->ExitChunk(chunk);
}

void CRecordHeader::Outline(RecordOutline& out)
{
    const CRecordHeader header(false);
    (void)fields(out, header);
}

} // namespace ZelmResult
