#include "zelmresult/waterfalls/waterfall_buffer_disk.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <utility>

namespace ZelmResult {

namespace {

constexpr std::size_t kMostSpareSlices = 5;
constexpr std::int64_t kNotStored = -1;
constexpr std::int64_t kAllowance = 314572800; // a request may exceed the free space by so much

CWaterfallBufferDisk::FreeSpace g_freeSpace = FreeBytes;

} // namespace

CWaterfallBufferDisk::FreeSpace CWaterfallBufferDisk::SetFreeSpace(FreeSpace query)
{
    return std::exchange(g_freeSpace, query != nullptr ? query : FreeBytes);
}

// The points are counted in 32 bits, as ever: a product that wraps is held against the space as it comes out.
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
    m_tempFile = std::make_unique<CTempFile>("wbd", "zelm");
    m_fileHandle = MakePlatformFileHandle();
    m_nextFileOffset = 0;
    m_hasLostSlices = false;
    m_fileOffsets.assign(static_cast<std::size_t>(GetZSize()), kNotStored);
    m_attachedSlices.assign(static_cast<std::size_t>(GetZSize()), nullptr);
    if (m_tempFile->IsReserved() && HasSpace() &&
        m_fileHandle->Open(m_tempFile->GetPathNameW(), FileHandle::Access::Scratch)) {
        m_tempFile->SetDeleteOnDestroy(false); // the name is gone
        return true;
    }
    internalFreeMemory();
    return false;
}

void CWaterfallBufferDisk::internalFreeMemory()
{
    m_fileHandle.reset();
    m_tempFile.reset();
    m_nextFileOffset = 0;
    m_fileOffsets.clear();
    m_attachedSlices.clear();
    for (const float* memory : m_freeSlices) delete[] memory;
    m_freeSlices.clear();
}

float* CWaterfallBufferDisk::AllocateSlice()
{
    if (m_freeSlices.empty()) return new float[static_cast<std::size_t>(GetRealSize())];
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
    if (const std::int64_t stored = m_fileOffsets[static_cast<std::size_t>(raw)]; stored != kNotStored) {
        const auto size = static_cast<std::int64_t>(SliceBytes());
        if (m_fileHandle->ReadAt(stored, reinterpret_cast<char*>(memory), SliceBytes()) != size) {
            m_hasLostSlices = true;
            std::fill_n(memory, GetRealSize(), 0.0F); // and not what the memory held
        }
    }
    m_attachedSlices[static_cast<std::size_t>(raw)] = memory;
}

// Every last handler writes its slice, changed or not.
void CWaterfallBufferDisk::internalDetachRawSlice(std::int32_t raw)
{
    float* memory = std::exchange(m_attachedSlices[static_cast<std::size_t>(raw)], nullptr);
    if (memory == nullptr) return;
    std::int64_t& place = m_fileOffsets[static_cast<std::size_t>(raw)];
    if (place == kNotStored) {
        place = m_nextFileOffset;
        m_nextFileOffset += static_cast<std::int64_t>(SliceBytes());
    }
    if (!m_fileHandle->WriteAt(place, reinterpret_cast<const char*>(memory), SliceBytes())) m_hasLostSlices = true;
    FreeSlice(memory);
}

void CWaterfallBufferDisk::internalSwapRawSlices(std::int32_t a, std::int32_t b)
{
    std::swap(m_fileOffsets[static_cast<std::size_t>(a)], m_fileOffsets[static_cast<std::size_t>(b)]);
}

} // namespace ZelmResult
