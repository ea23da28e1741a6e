#include "zelmresult/document/comment.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"

namespace ZelmResult {

bool CComment::Save(CMmioFile* file) const
{
    OMMCKINFO chunk;
    if (!file->Create(ChunkKind::Comment, chunk)) return false;
    if (!file->WriteCString(m_comment) || !file->ExitChunk(chunk)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"Comment : " + m_comment);
    return true;
}

bool CComment::Load(CMmioFile* file)
{
    OMMCKINFO chunk;
    return file->EnterChunkComments(chunk) && file->ReadCString(m_comment) && file->ExitChunk(chunk);
}

} // namespace ZelmResult
