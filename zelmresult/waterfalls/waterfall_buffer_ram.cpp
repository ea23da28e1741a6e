#include "zelmresult/waterfalls/waterfall_buffer_ram.h"

#include <algorithm>
#include <new>

namespace ZelmResult {

namespace {

std::int64_t Points(const CWaterfallBuffer& buffer) { return std::int64_t{buffer.GetRealSize()} * buffer.GetZSize(); }

} // namespace

bool CWaterfallBufferRam::internalAllocate()
{
    if (!FitsMemory(Points(*this))) return false;
    try {
        m_slices.reserve(static_cast<std::size_t>(GetZSize()));
        for (std::int32_t i = 0; i < GetZSize(); ++i)
            m_slices.push_back(new float[static_cast<std::size_t>(GetRealSize())]());
    } catch (const std::bad_alloc&) {
        FreeBuffer();
        return false;
    }
    return true;
}

void CWaterfallBufferRam::FreeBuffer()
{
    for (const float* slice : m_slices) delete[] slice;
    m_slices.clear();
}

void CWaterfallBufferRam::internalSwapRawSlices(std::int32_t a, std::int32_t b)
{
    std::swap(m_slices[static_cast<std::size_t>(a)], m_slices[static_cast<std::size_t>(b)]);
}

std::int32_t CWaterfallBufferRamFlat::GetAllocSize(std::int32_t realSize, std::int32_t zSize)
{
    return static_cast<std::int32_t>(static_cast<std::uint32_t>(realSize) * static_cast<std::uint32_t>(zSize));
}

bool CWaterfallBufferRamFlat::internalAllocate()
{
    if (Points(*this) > INT32_MAX || !FitsMemory(Points(*this))) return false;
    m_block = new (std::nothrow) float[static_cast<std::size_t>(Points(*this))]();
    return m_block != nullptr;
}

void CWaterfallBufferRamFlat::internalFreeMemory()
{
    delete[] m_block;
    m_block = nullptr;
}

float* CWaterfallBufferRamFlat::internalGetRawSlicePointer(std::int32_t raw)
{
    return m_block + std::ptrdiff_t{raw} * GetRealSize();
}

void CWaterfallBufferRamFlat::internalSwapRawSlices(std::int32_t a, std::int32_t b)
{
    float* first = internalGetRawSlicePointer(a);
    std::swap_ranges(first, first + GetRealSize(), internalGetRawSlicePointer(b));
}

bool CWaterfallBufferAllZeroes::internalAllocate()
{
    internalFreeMemory();
    m_block = new float[static_cast<std::size_t>(GetRealSize())];
    return true;
}

void CWaterfallBufferAllZeroes::internalFreeMemory()
{
    delete[] m_block;
    m_block = nullptr;
}

void CWaterfallBufferAllZeroes::internalAttachRawSlice(std::int32_t /*raw*/)
{
    std::fill_n(m_block, GetRealSize(), 0.0F);
}

} // namespace ZelmResult
