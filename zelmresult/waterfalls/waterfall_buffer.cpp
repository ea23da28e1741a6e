#include "zelmresult/waterfalls/waterfall_buffer.h"

#include "zelmresult/storage/temporary_files.h"

#include <algorithm>
#include <new>

namespace ZelmResult {

// ---- Handlers ----

CWaterfallBuffer::CSliceHandler& CWaterfallBuffer::CSliceHandler::operator=(const CSliceHandler& other)
{
    if (this != &other) Attach(other.m_owner, other.m_raw);
    return *this;
}

void CWaterfallBuffer::CSliceHandler::LetGo()
{
    if (m_owner != nullptr) m_owner->DetachRawSlice(m_raw);
    m_data = nullptr;
}

void CWaterfallBuffer::CSliceHandler::Attach(CWaterfallBuffer* owner, std::int32_t raw)
{
    LetGo();
    m_owner = owner != nullptr && owner->HasRaw(raw) ? owner : nullptr;
    m_raw = raw;
    if (m_owner != nullptr) m_data = m_owner->AttachRawSlice(raw);
}

void CWaterfallBuffer::CSliceHandler::Detach()
{
    LetGo();
    m_owner = nullptr;
    m_raw = 0;
}

void CWaterfallBuffer::CSliceHandler::SetZero(std::int32_t n) { std::fill_n(m_data, n, 0.0F); }

void CWaterfallBuffer::CSliceHandler::CopySliceFrom(const float* source, std::int32_t n)
{
    std::copy_n(source, n, m_data);
}

void CWaterfallBuffer::CSliceHandler::CopySliceTo(float* target, std::int32_t n) const
{
    std::copy_n(m_data, n, target);
}

void CWaterfallBuffer::CSliceHandler::CopySliceTo(double* target, std::int32_t n) const
{
    std::copy_n(m_data, n, target);
}

float* CWaterfallBuffer::AttachRawSlice(std::int32_t raw)
{
    if (++m_sliceCounter[static_cast<std::size_t>(raw)] == 1) internalAttachRawSlice(raw);
    return internalGetRawSlicePointer(raw);
}

void CWaterfallBuffer::DetachRawSlice(std::int32_t raw)
{
    if (HasRaw(raw) && --m_sliceCounter[static_cast<std::size_t>(raw)] == 0) internalDetachRawSlice(raw);
}

// ---- Memory ----

void CWaterfallBuffer::Allocate(std::int32_t realSize, std::int32_t zSize)
{
    const bool valid = realSize >= 1 && zSize >= 1;
    if (valid && realSize == m_realSize && zSize == m_zSize && GetZSparseSize() == m_zSize) return;
    FreeMemory();
    if (!valid) return;
    m_realSize = realSize;
    m_zSize = zSize;
    m_sortedIndex = {};
    try {
        if (FitsMemory(0) && internalAllocate()) {
            m_sliceCounter.assign(static_cast<std::size_t>(zSize), 0);
            m_sortedIndex.Resize(zSize, zSize);
            return;
        }
    } catch (const std::bad_alloc&) {
        internalFreeMemory();
    }
    ForgetShape();
}

bool CWaterfallBuffer::FitsMemory(std::int64_t points) const
{
    static const std::uint64_t memory = PhysicalMemory();
    constexpr std::int64_t bookkeeping = 32; // bytes of a slice: counter, slot, pointers, and room to spare
    const std::int64_t bytes = m_zSize * bookkeeping;
    return points <= (INT64_MAX - bytes) / 4 && static_cast<std::uint64_t>(bytes + points * 4) <= memory;
}

void CWaterfallBuffer::FreeMemory()
{
    if (!IsAllocated()) return;
    internalFreeMemory();
    ForgetShape();
}

void CWaterfallBuffer::ForgetShape()
{
    m_realSize = m_zSize = 0;
    m_sliceCounter.clear();
    m_sortedIndex = {};
}

// ---- The sorted map ----

void CWaterfallBuffer::SetZSparseSize(std::int32_t slots) { m_sortedIndex.Resize(std::max(slots, m_zSize), m_zSize); }

void CWaterfallBuffer::SwapSortedIndex(std::int32_t a, std::int32_t b)
{
    const std::int32_t rawOfA = MapToRawIndex(a);
    SetSortedIndex(a, MapToRawIndex(b));
    SetSortedIndex(b, rawOfA);
}

// ---- Slices and points ----

CWaterfallBuffer::CSliceHandler CWaterfallBuffer::GetRawSlice(std::int32_t raw)
{
    CSliceHandler slice;
    slice.Attach(this, raw);
    return slice;
}

CWaterfallBuffer::CSliceHandler CWaterfallBuffer::GetSortedSlice(std::int32_t slot)
{
    return GetRawSlice(MapToRawIndex(slot));
}

void CWaterfallBuffer::SwapRawSlices(std::int32_t a, std::int32_t b)
{
    if (a != b && HasRaw(a) && HasRaw(b)) internalSwapRawSlices(a, b);
}

void CWaterfallBuffer::CopySingleRawSlice(std::int32_t from, std::int32_t to)
{
    if (from < 1 || to < 1 || from >= m_zSize || to >= m_zSize || from == to) return;
    const CSliceHandler source = GetRawSlice(from);
    CSliceHandler target = GetRawSlice(to);
    if (source.HasSlice() && target.HasSlice()) target.CopySliceFrom(source, m_realSize);
}

void CWaterfallBuffer::CopySingleRawSliceFrom(CWaterfallBuffer& source, std::int32_t from, std::int32_t to)
{
    if (&source == this) return CopySingleRawSlice(from, to);
    if (source.m_realSize != m_realSize || from < 1 || from >= source.m_zSize || to < 1 || to >= m_zSize) return;
    const CSliceHandler read = source.GetRawSlice(from);
    CSliceHandler written = GetRawSlice(to);
    if (read.HasSlice() && written.HasSlice()) written.CopySliceFrom(read, m_realSize);
}

void CWaterfallBuffer::CopyWaterfallBufferFrom(CWaterfallBuffer& source)
{
    if (&source == this) return;
    const bool sameShape = m_realSize == source.m_realSize && m_zSize == source.m_zSize &&
                           GetZSparseSize() == source.GetZSparseSize() && IsAllocated();
    if (sameShape)
        m_sortedIndex = source.m_sortedIndex;
    else
        ClearSortedIndexMap();
    for (std::int32_t raw = 0; raw < m_zSize; ++raw) {
        const bool isCopied = sameShape && source.internalHasContent(raw);
        if (!isCopied && !internalHasContent(raw)) continue; // both are zeros
        CSliceHandler written = GetRawSlice(raw);
        const CSliceHandler read = isCopied ? source.GetRawSlice(raw) : CSliceHandler();
        if (!written.HasSlice()) continue;
        if (read.HasSlice())
            written.CopySliceFrom(read, m_realSize);
        else
            written.SetZero(m_realSize);
    }
}

float CWaterfallBuffer::GetRawSinglePoint(std::int32_t raw, std::int32_t i) const
{
    if (i < 0 || i >= m_realSize) return 0.0F;
    auto* const self = const_cast<CWaterfallBuffer*>(this); // a slice is pinned, and released
    if (const float* values = self->PeekRawSlice(raw); values != nullptr) return values[i];
    const CSliceHandler slice = self->GetRawSlice(raw);
    return slice.HasSlice() ? slice.GetSinglePoint(i) : 0.0F;
}

void CWaterfallBuffer::SetRawSinglePoint(std::int32_t raw, std::int32_t i, float value)
{
    CSliceHandler slice = GetRawSlice(raw);
    if (slice.HasSlice() && i >= 0 && i < m_realSize) slice.SetSinglePoint(i, value);
}

float CWaterfallBuffer::GetSortedSinglePoint(std::int32_t slot, std::int32_t i) const
{
    return GetRawSinglePoint(MapToRawIndex(slot), i);
}

void CWaterfallBuffer::SetSortedSinglePoint(std::int32_t slot, std::int32_t i, float value)
{
    SetRawSinglePoint(MapToRawIndex(slot), i, value);
}

std::int32_t CWaterfallBuffer::GetRawSliceCounter(std::int32_t raw) const
{
    return HasRaw(raw) ? m_sliceCounter[static_cast<std::size_t>(raw)] : 0;
}

} // namespace ZelmResult
