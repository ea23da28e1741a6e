#include "zelmresult/waterfalls/waterfall_buffer_ram.h"

#include <algorithm>
#include <utility>

namespace ZelmResult {

namespace {

std::int64_t Points(const CWaterfallBuffer& buffer) { return std::int64_t{buffer.GetRealSize()} * buffer.GetZSize(); }

} // namespace

bool CWaterfallBufferRam::internalAllocate()
{
    if (!FitsMemory(Points(*this))) return false;
    m_block = AllocateZeros(static_cast<std::size_t>(Points(*this)));
    if (m_block == nullptr) return false;
    m_slices.resize(static_cast<std::size_t>(GetZSize()));
    for (std::size_t i = 0; i < m_slices.size(); ++i)
        m_slices[i] = m_block.get() + i * static_cast<std::size_t>(GetRealSize());
    return true;
}

void CWaterfallBufferRam::internalFreeMemory()
{
    m_slices.clear();
    m_block.reset();
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
    m_block = AllocateZeros(static_cast<std::size_t>(Points(*this)));
    return m_block != nullptr;
}

void CWaterfallBufferRamFlat::internalFreeMemory() { m_block.reset(); }

float* CWaterfallBufferRamFlat::internalGetRawSlicePointer(std::int32_t raw)
{
    return m_block.get() + std::ptrdiff_t{raw} * GetRealSize();
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
