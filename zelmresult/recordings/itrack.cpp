#include "zelmresult/recordings/itrack.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

template <class Io, class Self>
bool CITrack::fields(Io& io, Self& track)
{
    if (!io.record(kRecordName, newest{0x100}, first{0})) return io.ok();
    io.text("id", track.m_id);
    io.text("type", track.m_type);
    io.text("serialNb", track.m_serialNb);
    io.text("model", track.m_model);
    io.text("manu", track.m_manu);
    io.dump([] { return wstring(u"CITrack"); });
    io.dump([&] {
        return Concat(u"ID : ", track.m_id, u" , Type : ", track.m_type, u" , Serial Nb : ", track.m_serialNb,
                      u" , Model : ", track.m_model, u" , Manufacturer : ", track.m_manu);
    });
    return io.ok();
}

bool CITrack::Load(CMmioFile* file)
{
    OMMCKINFO chunk;
    return file->Enter(ChunkKind::Transducer, chunk) && ReadFields(*file, *this) && file->ExitChunk(chunk);
}

bool CITrack::Save(CMmioFile* file) const
{
    OMMCKINFO chunk;
    return file->Create(ChunkKind::Transducer, chunk) && WriteFields(*file, *this) && file->ExitChunk(chunk);
}

template class StoredFields<CITrack>;

} // namespace ZelmResult
