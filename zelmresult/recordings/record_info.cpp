#include "zelmresult/recordings/record_info.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/record_io.h"

#include <algorithm>
#include <memory>

namespace ZelmResult {

std::int32_t CFileInfo::getData(strFileInfo* out) const
{
    if (out != nullptr) *out = m_data;
    return 0;
}

std::int32_t CFileInfo::setData(const strFileInfo* in)
{
    if (in != nullptr) m_data = *in;
    return 0;
}

template <class Io, class Self>
bool CFileInfo::fields(Io& io, Self& info)
{
    auto& data = info.m_data;
    if (!io.record(kRecordName, newest{0x200}, first{0x100})) return io.ok();
    io.u16("NbrTracks", data.NbrTracks);
    io.u16("NbrFiles", data.NbrFiles);
    io.u16("DisksNumber", data.DisksNumber);
    io.u16("NbrCompressedTracks", data.NbrCompressedTracks, since{0x200});
    io.dump([] { return wstring(u"CFileInfo"); });
    io.dump([&] {
        return Concat(u"Number of tracks : ", data.NbrTracks, u" , Number of compressed tracks : ",
                      data.NbrCompressedTracks, u" , Number of files : ", data.NbrFiles, u" , Disks number : ",
                      data.DisksNumber, u" ");
    });
    return io.ok();
}

bool CFileInfo::Load(CMmioFile* file) { return ReadFields(*file, *this); }

bool CFileInfo::Save(CMmioFile* file) const
{
    OMMCKINFO chunk;
    return file->Create(ChunkKind::DiskCounts, chunk) && WriteFields(*file, *this) && file->ExitChunk(chunk);
}

template class StoredFields<CFileInfo>;

std::int32_t CFileBlockInfo::getData(strFileBlockInfo* out) const
{
    if (out != nullptr) *out = m_data;
    return 0;
}

std::int32_t CFileBlockInfo::setData(const strFileBlockInfo* in)
{
    if (in != nullptr) m_data = *in;
    return 0;
}

bool CFileBlockInfo::updateFileBlocStartNbr(std::uint32_t block)
{
    m_data.FileBlocStartNbr = block;
    return true;
}

bool CFileBlockInfo::updateFileBlocEndNbr(std::uint32_t block)
{
    m_data.FileBlocEndNbr = block;
    return true;
}

template <class Io, class Self>
bool CFileBlockInfo::fields(Io& io, Self& info)
{
    auto& data = info.m_data;
    if (!io.record(kRecordName, newest{0x100}, first{0})) return io.ok();
    io.u32("FileBlocStartNbr", data.FileBlocStartNbr);
    io.u32("FileBlocEndNbr", data.FileBlocEndNbr);
    io.dump([] { return wstring(u"CFileBlockInfo"); });
    io.dump([&] {
        return Concat(u"Block start : ", static_cast<std::int32_t>(data.FileBlocStartNbr), u" , Block end : ",
                      static_cast<std::int32_t>(data.FileBlocEndNbr));
    });
    return io.ok();
}

bool CFileBlockInfo::Load(CMmioFile* file) { return ReadFields(*file, *this); }

bool CFileBlockInfo::Save(CMmioFile* file, std::int16_t number) const
{
    OMMCKINFO chunk;
    return file->CreateChunkFileBlockInfo(chunk, number) && WriteFields(*file, *this) && file->ExitChunk(chunk);
}

template class StoredFields<CFileBlockInfo>;

CRecordInfo::~CRecordInfo()
{
    for (const CFileBlockInfo* info : m_blocks) delete info;
}

CFileBlockInfo* CRecordInfo::getFirstFileBlockinfo() const { return m_blocks.empty() ? nullptr : m_blocks[0]; }

bool CRecordInfo::AddFileBlockInfo(CFileBlockInfo* info)
{
    (void)m_blocks.Add(info);
    return true;
}

bool CRecordInfo::updateFileBlocEndNbr(std::int16_t file, std::uint32_t end)
{
    if (file >= 0 && static_cast<std::size_t>(file) < m_blocks.size())
        return m_blocks[static_cast<std::size_t>(file)]->updateFileBlocEndNbr(end);
    return true;
}

std::uint32_t CRecordInfo::GetNbOfDescriptors() const
{
    strFileBlockInfo first;
    if (!m_blocks.empty()) m_blocks[0]->getData(&first);
    return first.FileBlocEndNbr;
}

bool CRecordInfo::Load(CMmioFile* file) { return LoadHead(*file) && LoadBlocks(*file); }

bool CRecordInfo::LoadHead(CMmioFile& file)
{
    const std::int32_t start = file.Position();
    std::uint16_t version = 0;
    OMMCKINFO chunk;
    return file.ReadChunkVersionSansParent(version) && file.mmioSeek(start, OMMIO_SEEK_SET) &&
           file.Enter(ChunkKind::DiskCounts, chunk) && m_fileInfo.Load(&file) && file.ExitChunk(chunk) &&
           file.mmioSeek(start, OMMIO_SEEK_SET);
}

bool CRecordInfo::LoadBlocks(CMmioFile& file)
{
    OMMCKINFO chunk;
    for (std::int16_t n = 0; file.EnterChunkFileBlockInfo(chunk, n); ++n) {
        if (!file.RoomFor(1, 2 * sizeof(CFileBlockInfo))) return false;
        auto info = std::make_unique<CFileBlockInfo>();
        if (!info->Load(&file)) return false;
        m_blocks.AddNew(info.release());
        if (!file.ExitChunk(chunk)) return false;
    }
    return true;
}

// The result doesn't count failed contents: the file remembers those. It is that of leaving the list.
bool CRecordInfo::Save(CMmioFile* file, std::int16_t number) const
{
    OMMCKINFO list;
    if (!file->CreateChunkRecordInfo(list, number)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"CRecordInfo");
    (void)m_fileInfo.Save(file);
    const std::size_t count =
        std::min<std::size_t>(m_blocks.size(), static_cast<std::size_t>(MostOf(ChunkKind::DiskFile)));
    for (std::size_t n = 0; n < count; ++n) (void)m_blocks[n]->Save(file, static_cast<std::int16_t>(n));
    return file->ExitChunk(list);
}

} // namespace ZelmResult
