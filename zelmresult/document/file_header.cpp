#include "zelmresult/document/file_header.h"

#include "zelmresult/storage/record_io.h"

namespace ZelmResult {

std::uint32_t FileType::BitsOf(ChunkKind branch)
{
    switch (branch) {
    case ChunkKind::Recording: return kRecording;
    case ChunkKind::Results: return kResults | kRecordPreview;
    case ChunkKind::Reference: return kReferences;
    case ChunkKind::Settings: return kSettings;
    case ChunkKind::Transducers: return kTracks;
    default: return 0;
    }
}

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
    if (!file.TopOfFile() || !file.EnterChunkRIFF(form) || !file.EnterChunkHeader(chunk, form)) return false;
    RecordReader in(file);
    return fields(in, header) && file.ExitChunk(chunk);
}

bool FileHeaderMmioReaderWriter::Write(CMmioFile& file, const FileHeader& header) const
{
    OMMCKINFO chunk;
    if (!file.CreateChunkHeader(chunk)) return false;
    RecordWriter out(file);
    return fields(out, header) && file.ExitChunk(chunk);
}

void FileHeaderMmioReaderWriter::Outline(RecordOutline& out)
{
    const FileHeader header;
    (void)fields(out, header);
}

} // namespace ZelmResult
