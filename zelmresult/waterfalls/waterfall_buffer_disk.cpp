#include "zelmresult/waterfalls/waterfall_buffer_disk.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/waterfalls/scratch_space.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <utility>

namespace ZelmResult {

namespace {

constexpr std::size_t kMostSpareSlices = 5;
constexpr std::int64_t kNotStored = -1;
constexpr std::int64_t kPiece = 1 << 20;       // bytes, about
constexpr std::int64_t kAllowance = 314572800; // a request may exceed the free space by as much

CWaterfallBufferDisk::FreeSpace g_freeSpace = FreeBytes;

} // namespace

CWaterfallBufferDisk::FreeSpace CWaterfallBufferDisk::SetFreeSpace(FreeSpace query)
{
    return std::exchange(g_freeSpace, query != nullptr ? query : FreeBytes);
}

// The points are counted in 32 bits, as always: a product that wraps is compared with the space as it is.
bool CWaterfallBufferDisk::HasSpace() const
{
    std::uint64_t free = 0;
    const auto points =
        static_cast<std::int32_t>(static_cast<std::uint32_t>(GetRealSize()) * static_cast<std::uint32_t>(GetZSize()));
    const std::int64_t needed = std::int64_t{points} * static_cast<std::int64_t>(sizeof(float));
    if (!g_freeSpace(TemporaryDirectory(), free)) return false;
    return static_cast<std::int64_t>(free) > INT64_MAX - kAllowance ||
           static_cast<std::int64_t>(free) + kAllowance >= needed;
}

bool CWaterfallBufferDisk::internalAllocate()
{
    m_hasLostSlices = false;
    m_space = HasSpace() ? ScratchSpace::Shared() : nullptr;
    if (m_space == nullptr) return false;
    m_fileOffsets.assign(static_cast<std::size_t>(GetZSize()), kNotStored);
    m_attachedSlices.assign(static_cast<std::size_t>(GetZSize()), nullptr);
    m_freeSlices.reserve(kMostSpareSlices);
    return true;
}

void CWaterfallBufferDisk::internalFreeMemory()
{
    for (const Piece& piece : m_pieces) m_space->GiveBack(piece.position, piece.bytes);
    m_pieces.clear();
    m_usedOfPiece = 0;
    m_storedSlices = 0;
    m_space.reset();
    m_fileOffsets.clear();
    m_attachedSlices.clear();
    m_swappedSlices.clear();
    for (const float* memory : m_freeSlices) delete[] memory;
    m_freeSlices.clear();
}

// The place for the next slice that isn't in the file yet; kNotStored without one.
std::int64_t CWaterfallBufferDisk::PlaceForSlice()
{
    const bool isFull = m_pieces.empty() || m_pieces.back().bytes - m_usedOfPiece < SliceBytes();
    if (isFull && !TakePiece()) return kNotStored;
    ++m_storedSlices;
    return m_pieces.back().position + std::exchange(m_usedOfPiece, m_usedOfPiece + SliceBytes());
}

bool CWaterfallBufferDisk::TakePiece()
{
    const std::int64_t left = std::int64_t{GetZSize()} - m_storedSlices;
    const std::int64_t bytes = std::clamp<std::int64_t>(kPiece / SliceBytes(), 1, left) * SliceBytes();
    try {
        m_pieces.push_back({kNotStored, bytes}); // memory first: a part that is taken must be given back
    } catch (const std::bad_alloc&) {
        return false;
    }
    m_pieces.back().position = m_space->Take(bytes);
    m_usedOfPiece = 0;
    if (m_pieces.back().position >= 0) return true;
    m_pieces.pop_back();
    m_usedOfPiece = m_pieces.empty() ? 0 : m_pieces.back().bytes;
    return false;
}

bool CWaterfallBufferDisk::internalHasContent(std::int32_t raw) const
{
    const auto place = static_cast<std::size_t>(raw);
    return m_fileOffsets[place] != kNotStored || m_attachedSlices[place] != nullptr;
}

float* CWaterfallBufferDisk::AllocateSlice()
{
    if (m_freeSlices.empty()) return new float[2 * SlicePoints()];
    float* memory = m_freeSlices.back();
    m_freeSlices.pop_back();
    return memory;
}

void CWaterfallBufferDisk::FreeSlice(float* memory)
{
    if (m_freeSlices.size() >= kMostSpareSlices)
        delete[] memory;
    else
        m_freeSlices.push_back(memory);
}

float* CWaterfallBufferDisk::internalGetRawSlicePointer(std::int32_t raw)
{
    return m_attachedSlices[static_cast<std::size_t>(raw)];
}

void CWaterfallBufferDisk::internalAttachRawSlice(std::int32_t raw)
{
    float* memory = AllocateSlice();
    const std::int64_t stored = m_fileOffsets[static_cast<std::size_t>(raw)];
    const bool isRead = stored != kNotStored && m_space->Read(stored, memory, SlicePoints());
    if (!isRead) std::fill_n(memory, GetRealSize(), 0.0F); // not what the memory held
    if (!isRead && stored != kNotStored) m_hasLostSlices = true;
    if (stored != kNotStored) std::memcpy(memory + SlicePoints(), memory, SlicePoints() * sizeof(float));
    m_attachedSlices[static_cast<std::size_t>(raw)] = memory;
}

// The last handler writes its slice, unless the file holds it as it is.
void CWaterfallBufferDisk::internalDetachRawSlice(std::int32_t raw)
{
    float* memory = std::exchange(m_attachedSlices[static_cast<std::size_t>(raw)], nullptr);
    if (memory == nullptr) return;
    std::int64_t& place = m_fileOffsets[static_cast<std::size_t>(raw)];
    const auto isChanged = [&] {
        return std::memcmp(memory, memory + SlicePoints(), SlicePoints() * sizeof(float)) != 0;
    };
    const bool isElsewhere = std::erase(m_swappedSlices, raw) > 0;
    if (place == kNotStored || isElsewhere || isChanged()) {
        const std::int64_t former = place;
        if (place == kNotStored) place = PlaceForSlice();
        const bool isWritten = place != kNotStored && m_space->Write(place, memory, SlicePoints());
        if (!isWritten) place = former; // what a new place holds was another's
        if (!isWritten) m_hasLostSlices = true;
    }
    FreeSlice(memory);
}

void CWaterfallBufferDisk::internalSwapRawSlices(std::int32_t a, std::int32_t b)
{
    std::swap(m_fileOffsets[static_cast<std::size_t>(a)], m_fileOffsets[static_cast<std::size_t>(b)]);
    for (const std::int32_t raw : {a, b})
        if (m_attachedSlices[static_cast<std::size_t>(raw)] != nullptr) m_swappedSlices.push_back(raw);
}

} // namespace ZelmResult
