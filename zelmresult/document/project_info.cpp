#include "zelmresult/document/project_info.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

template <class Io, class Info>
bool ProjectInfoMmioReaderWriter::fields(Io& io, Info& i)
{
    if (!io.record(kRecordName, newest{0x100}, first{0x100})) return io.ok();
    io.text("measurementName", i.m_measurementName);
    io.text("projectName", i.m_projectName);
    io.text("userName", i.m_userName);
    io.dump([&] {
        return Concat(u"Project Name : ", i.m_projectName, u" , Measure Name : ", i.m_measurementName,
                      u" , User Name : ", i.m_userName);
    });
    return io.ok();
}

bool ProjectInfoMmioReaderWriter::Read(CMmioFile& file, ProjectInfo& info) const
{
    OMMCKINFO form;
    OMMCKINFO chunk;
    return file.TopOfFile() && file.EnterChunkRIFF(form) && file.EnterChunkProjectInfo(chunk, form) &&
           ReadFields(file, info);
}

bool ProjectInfoMmioReaderWriter::Write(CMmioFile& file, const ProjectInfo& info) const
{
    OMMCKINFO chunk;
    return file.Create(ChunkKind::Project, chunk) && WriteFields(file, info) && file.ExitChunk(chunk);
}

template class StoredFields<ProjectInfoMmioReaderWriter, ProjectInfo>;

} // namespace ZelmResult
