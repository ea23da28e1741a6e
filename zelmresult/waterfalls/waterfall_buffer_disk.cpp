#include "zelmresult/waterfalls/waterfall_buffer_disk.h"

#include "zelmresult/storage/temporary_files.h"
#include "zelmresult/support/text.h"

#include <utility>

namespace ZelmResult {

namespace {

constexpr std::size_t kMostSpareSlices = 5;
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
    if (m_tempFile->IsReserved() && HasSpace() &&
        m_fileHandle->Open(m_tempFile->GetPathNameW(), FileHandle::Access::Scratch)) {
        m_tempFile->SetDeleteOnDestroy(false); // the name is gone
        return true;
    }
    m_fileHandle.reset();
    m_tempFile.reset();
    return false;
}

void CWaterfallBufferDisk::internalFreeMemory()
{
    m_fileHandle.reset();
    m_tempFile.reset();
    m_nextFileOffset = 0;
    m_fileOffsets.clear();
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
    const auto found = m_attachedSlices.find(raw);
    return found == m_attachedSlices.end() ? nullptr : found->second;
}

void CWaterfallBufferDisk::internalAttachRawSlice(std::int32_t raw)
{
    float* memory = AllocateSlice();
    if (const auto stored = m_fileOffsets.find(raw); stored != m_fileOffsets.end())
        (void)m_fileHandle->ReadAt(static_cast<std::int64_t>(stored->second), reinterpret_cast<char*>(memory),
                                   SliceBytes());
    m_attachedSlices[raw] = memory;
}

// Every last handler writes its slice, changed or not.
void CWaterfallBufferDisk::internalDetachRawSlice(std::int32_t raw)
{
    const auto attached = m_attachedSlices.find(raw);
    if (attached == m_attachedSlices.end()) return;
    const auto [place, isNew] = m_fileOffsets.try_emplace(raw, m_nextFileOffset);
    if (isNew) m_nextFileOffset += SliceBytes();
    (void)m_fileHandle->WriteAt(static_cast<std::int64_t>(place->second),
                                reinterpret_cast<const char*>(attached->second), SliceBytes());
    FreeSlice(attached->second);
    m_attachedSlices.erase(attached);
}

void CWaterfallBufferDisk::internalSwapRawSlices(std::int32_t a, std::int32_t b)
{
    auto ofA = m_fileOffsets.extract(a);
    auto ofB = m_fileOffsets.extract(b);
    if (ofA) {
        ofA.key() = b;
        m_fileOffsets.insert(std::move(ofA));
    }
    if (ofB) {
        ofB.key() = a;
        m_fileOffsets.insert(std::move(ofB));
    }
}

} // namespace ZelmResult
