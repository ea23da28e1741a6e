#include "zelmresult/document/hard_info.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

bool CHardInfo::getHardInfoData(std::int32_t index, strHardInfo& out) const
{
    if (index < 0 || index >= getNbHardInfo()) return false;
    out = m_entries[static_cast<std::size_t>(index)];
    return true;
}

template <class Io, class Entry>
void CHardInfoMmioReaderWriter::entryFields(Io& io, Entry& e)
{
    io.utf8("HardShortName", e.HardShortName);
    io.utf8("HardSN", e.HardSN);
    io.utf8("DiskSN", e.DiskSN);
    io.utf8("DiskName", e.DiskName, since{0x200});
    io.dump([&] {
        return Concat(u"HardShortName : ", FromUtf8(e.HardShortName), u" , HardSN : ", FromUtf8(e.HardSN),
                      u" , DiskSN : ", FromUtf8(e.DiskSN), u" , DiskName : ", FromUtf8(e.DiskName));
    });
}

template <class Io, class Info>
bool CHardInfoMmioReaderWriter::fields(Io& io, Info& info)
{
    if (!io.record(kRecordName, newest{0x200}, first{0x100})) return io.ok();
    auto count = info.getNbHardInfo();
    io.i32("count", count);
    io.eachOf("entries", info.m_entries, count, [&io](auto& entry) { entryFields(io, entry); });
    return io.ok();
}

bool CHardInfoMmioReaderWriter::Read(CMmioFile& file, CHardInfo& info) const
{
    info.clear();
    OMMCKINFO form;
    OMMCKINFO chunk;
    return file.TopOfFile() && file.EnterChunkRIFF(form) && file.EnterChunkHardInfo(chunk, form) &&
           ReadFields(file, info);
}

bool CHardInfoMmioReaderWriter::Write(CMmioFile& file, const CHardInfo& info) const
{
    OMMCKINFO chunk;
    return file.Create(ChunkKind::Hardware, chunk) && WriteFields(file, info) && file.ExitChunk(chunk);
}

template class StoredFields<CHardInfoMmioReaderWriter, CHardInfo>;

} // namespace ZelmResult
