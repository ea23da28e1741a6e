#include "zelmresult/document/file_header.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

template <class Io, class Header>
bool FileHeaderMmioReaderWriter::fields(Io& io, Header& h)
{
    if (!io.record(kRecordName, newest{0x100}, first{0x100})) return io.ok();
    io.u16("SystemeNumber", h.m_systemeNumber);
    io.u32("Type", h.m_type);
    return io.ok();
}

bool FileHeaderMmioReaderWriter::Read(CMmioFile& file, FileHeader& header) const
{
    OMMCKINFO form;
    OMMCKINFO chunk;
    return file.TopOfFile() && file.EnterChunkRIFF(form) && file.EnterChunkHeader(chunk, form) &&
           ReadFields(file, header) && file.ExitChunk(chunk);
}

bool FileHeaderMmioReaderWriter::Write(CMmioFile& file, const FileHeader& header) const
{
    OMMCKINFO chunk;
    return file.CreateChunkHeader(chunk) && WriteFields(file, header) && file.ExitChunk(chunk);
}

template class StoredFields<FileHeaderMmioReaderWriter, FileHeader>;

} // namespace ZelmResult
