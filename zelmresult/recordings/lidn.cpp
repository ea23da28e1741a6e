#include "zelmresult/recordings/lidn.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"

#include <algorithm>

namespace ZelmResult {

template <class Io, class List>
bool CLIDN::fields(Io& io, List& list)
{
    if (!io.record(kRecordName, newest{0x100}, first{0})) return io.ok();
    auto count = static_cast<std::uint16_t>(list.size());
    io.u16("count", count);
    io.eachOf("identifiers", list, count, [&io](auto& identifier) { io.idn("identifier", identifier); });
    return io.ok();
}

bool CLIDN::mmioLoadCLIDN(CMmioFile* file, std::vector<idn::Idn>& list)
{
    list.clear();
    return ReadFields(*file, list);
}

bool CLIDN::mmioSaveCLIDN(CMmioFile* file, const std::vector<idn::Idn>& list)
{
    OMMCKINFO chunk;
    if (!file->Create(ChunkKind::LinkedIdentifiers, chunk)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"CLIDN");
    const std::vector<idn::Idn> stored(list.begin(), list.begin() + std::min(std::ssize(list), kMostIdentifiers));
    return WriteFields(*file, stored) && file->ExitChunk(chunk);
}

template class StoredFields<CLIDN, std::vector<idn::Idn>>;

} // namespace ZelmResult
