#include "zelmresult/storage/mmio_riff.h"

#include "zelmresult/storage/buffered_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/kept_chunk_map.h"
#include "zelmresult/storage/sibling_index.h"

#include <algorithm>
#include <bit>

namespace ZelmResult {

static_assert(std::endian::native == std::endian::little,
              "stored values are little-endian, and so must the machine be");

namespace {

constexpr std::uint32_t kSuccess = 0;
constexpr std::uint32_t kFailure = 1;
constexpr std::int32_t kStreamError = -1;
constexpr std::int64_t kDefaultWriteBuffer = 65536;

FileHandle::Access AccessOf(std::uint32_t flags)
{
    if ((flags & OMMIO_CREATE) != 0) return FileHandle::Access::Create;
    return (flags & OMMIO_WRITE) != 0 ? FileHandle::Access::ReadWrite : FileHandle::Access::Read;
}

bool WriteWords(BufferedFile& file, const std::uint32_t* words, std::int32_t count)
{
    return file.Write(reinterpret_cast<const char*>(words), 4 * count) == 4 * count;
}

} // namespace

struct CMmioRiff::OpenFile {
    OpenFile(std::unique_ptr<FileHandle> handle, bool writable, std::int64_t writeBuffer, Search search)
        : indexed(!writable && search == Search::Indexed), stamp(indexed ? handle->Stamp() : std::nullopt),
          file(std::move(handle), writable, writeBuffer), walk(file),
          index(file, stamp ? KeptChunkMap::TakeFor(*stamp) : ChunkMap())
    {
    }
    ~OpenFile() { (void)Close(); }

    std::optional<ChunkHeader> Find(const ChunkSearch& search)
    {
        return indexed ? FindIndexed(search) : walk.Find(search);
    }
    std::optional<ChunkHeader> FindIndexed(const ChunkSearch& search)
    {
        auto found = index.Find(search);
        if (index.IsFull()) {
            indexed = false;
            found = walk.Find(search);
        }
        return found;
    }

    // Nothing is kept of a file that changed while it was open.
    bool Close()
    {
        if (stamp && file.Stamp() == stamp) KeptChunkMap::Keep(*stamp, index.Release());
        stamp.reset();
        return file.Close();
    }

    bool indexed; // headers keep their places only in a file that isn't written
    std::optional<FileStamp> stamp;
    BufferedFile file;
    SiblingWalk walk;
    SiblingIndex index;
};

CMmioRiff::CMmioRiff() : CMmioRiff(MakePlatformFileHandle) {}

CMmioRiff::CMmioRiff(FileHandleFactory makeHandle, Search search)
    : m_makeHandle(std::move(makeHandle)), m_search(search)
{
}

bool CMmioRiff::IsOpen() const { return m_open && m_open->file.IsOpen(); }

bool CMmioRiff::ommioOpen(const wstring& name, OMMIOINFO* info, std::uint32_t flags)
{
    CMmioRiff::ommioClose();
    auto handle = m_makeHandle();
    const FileHandle::Access access = AccessOf(flags);
    if (!handle || !handle->Open(name, access)) return false;
    const std::int64_t writeBuffer = info != nullptr ? info->cchBuffer : kDefaultWriteBuffer;
    m_open = std::make_shared<OpenFile>(std::move(handle), access != FileHandle::Access::Read, writeBuffer, m_search);
    if (info != nullptr && !m_open->file.Seek(info->lDiskOffset)) CMmioRiff::ommioClose();
    return IsOpen();
}

void CMmioRiff::ommioClose()
{
    if (m_open) (void)m_open->Close(); // no way to report it; the bytes were flushed when the form was left
    m_open.reset();
}

std::int32_t CMmioRiff::ommioRead(char* buffer, std::int32_t count)
{
    return m_open ? m_open->file.Read(buffer, count) : kStreamError;
}

std::int32_t CMmioRiff::ommioWrite(const char* buffer, std::int32_t count)
{
    return m_open ? m_open->file.Write(buffer, count) : kStreamError;
}

std::int32_t CMmioRiff::ommioSeek(std::int32_t offset, OMMIO_SEEK_FLAG origin)
{
    if (!IsOpen()) return kStreamError;
    std::int64_t base = 0;
    if (origin == OMMIO_SEEK_CUR) base = m_open->file.Position();
    if (origin == OMMIO_SEEK_END) base = m_open->file.Size();
    if (base < 0 || !m_open->file.Seek(base + offset)) return kStreamError;
    return static_cast<std::int32_t>(m_open->file.Position());
}

std::uint32_t CMmioRiff::ommioGetInfo(OMMIOINFO* info)
{
    if (!IsOpen()) return kFailure;
    info->cchBuffer = m_open->file.WriteBufferSize();
    info->lDiskOffset = static_cast<std::int32_t>(m_open->file.Position());
    return kSuccess;
}

std::shared_ptr<ByteCursor> CMmioRiff::Cursor() const { return m_open ? m_open->file.cursor() : nullptr; }

std::int64_t CMmioRiff::BytesLeft()
{
    if (!IsOpen()) return 0;
    const std::int64_t end = std::min(m_open->file.Size(), BufferedFile::kLastPosition); // what follows is out of reach
    return std::max<std::int64_t>(0, end - m_open->file.Position());
}

void CMmioRiff::LimitSearches()
{
    if (IsOpen()) m_open->walk.LimitVisits();
}

std::uint32_t CMmioRiff::ommioStringToFOURCC(const char16_t* text, OMMIO_STRING_TO_FOURCC flag)
{
    return StringToFourCC(text, (flag & OMMIO_TOUPPER) != 0);
}

std::uint32_t CMmioRiff::ommioDescend(OMMCKINFO* chunk, OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag)
{
    if (!IsOpen()) return kFailure;
    const bool byType = flag == OMMIO_FINDRIFF || flag == OMMIO_FINDLIST;
    ChunkSearch search{m_open->file.Position(), INT64_MAX, flag, byType ? chunk->fccType : chunk->ckid};
    if (parent != nullptr) {
        search.end = std::int64_t{parent->dwDataOffset} + parent->cksize;
        if (search.start < parent->dwDataOffset || search.start >= search.end) return kFailure;
    }
    const auto found = m_open->Find(search);
    const std::int64_t position = found ? std::int64_t{found->position} + found->Length() : search.start;
    if (!m_open->file.Seek(position) || !found) return kFailure;
    *chunk = {found->ckid, found->cksize, found->fccType, found->position + 8, 0};
    return kSuccess;
}

std::uint32_t CMmioRiff::ommioCreateChunk(OMMCKINFO* chunk, OMMIO_CREATE_CHUNK_FLAG flag)
{
    if (!IsOpen()) return kFailure;
    if (flag == OMMIO_CREATERIFF) chunk->ckid = kCodeRiff;
    if (flag == OMMIO_CREATELIST) chunk->ckid = kCodeList;
    const std::int64_t start = m_open->file.Position();
    chunk->dwDataOffset = static_cast<std::uint32_t>(start + 8);
    chunk->dwFlags = OMMIO_DIRTY;
    const std::uint32_t words[3] = {chunk->ckid, chunk->cksize, chunk->fccType};
    if (WriteWords(m_open->file, words, flag == OMMIO_CREATECHUNK ? 2 : 3)) return kSuccess;
    (void)m_open->file.Seek(start); // the file was there before
    return kFailure;
}

std::uint32_t CMmioRiff::ommioAscend(OMMCKINFO* chunk)
{
    if (!IsOpen()) return kFailure;
    const bool dirty = (chunk->dwFlags & OMMIO_DIRTY) != 0;
    if (dirty && !CloseDirtyChunk(*chunk)) return kFailure;
    const std::int64_t size = (std::int64_t{chunk->cksize} + 1) & ~std::int64_t{1};
    if (!m_open->file.Seek(chunk->dwDataOffset + size)) return kFailure;
    return dirty && chunk->ckid == kCodeRiff && !m_open->file.Flush() ? kFailure : kSuccess;
}

bool CMmioRiff::CloseDirtyChunk(OMMCKINFO& chunk)
{
    BufferedFile& file = m_open->file;
    const std::int64_t size = file.Position() - chunk.dwDataOffset;
    if (size < 0) return false;
    if (size != chunk.cksize) {
        const auto stored = static_cast<std::uint32_t>(size);
        const char pad = 0;
        if (size % 2 != 0 && file.Write(&pad, 1) != 1) return false;
        // A form gets its size only when all of it is written, so that an interrupted one isn't taken for whole.
        if (chunk.ckid == kCodeRiff && !file.Flush()) return false;
        const std::int64_t sizeField = std::int64_t{chunk.dwDataOffset} - 4;
        if (!file.Patch(sizeField, reinterpret_cast<const char*>(&stored), sizeof stored)) return false;
        chunk.cksize = stored;
    }
    chunk.dwFlags &= ~OMMIO_DIRTY;
    return true;
}

} // namespace ZelmResult
