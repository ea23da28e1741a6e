// The state of the ring. What an axis does with its references is in waterfalls/axis_references.cpp.

#include "zelmresult/results/referenced_axis.h"

#include <algorithm>
#include <memory>

namespace ZelmResult {

void CReferencedAxis::Clean()
{
    m_count = 0;
    m_nFilled = 0;
    m_firstIndex = 0;
    m_nextIndex = 0;
    m_firstBlockNb = 0;
    m_lastBlockNb = -1;
}

void CReferencedAxis::CopyBooks(const CReferencedAxis& other)
{
    m_nFilled = other.m_nFilled;
    m_isWaterfall = other.m_isWaterfall;
    m_firstIndex = other.m_firstIndex;
    m_nextIndex = other.m_nextIndex;
    m_count = other.m_count;
    m_firstBlockNb = other.m_firstBlockNb;
    m_lastBlockNb = other.m_lastBlockNb;
}

CReferencedAxis* CReferencedAxis::GetRefAxisCopy()
{
    auto copy = std::make_unique<CReferencedAxis>();
    *copy = this;
    return copy.release();
}

// ---- The table of block numbers ----

std::int32_t* CReferencedAxis::MakeBlocNumbers(std::int32_t n)
{
    FreeBlocNumbers();
    if (n < 1) return nullptr;
    m_blocNumbers = std::make_shared<BlocTable>(static_cast<std::size_t>(n), -1);
    return m_blocNumbers->data();
}

// Copies the first n entries of the other axis, as far as it has them.
void CReferencedAxis::CopyBlocNumbersOf(const CReferencedAxis& other, std::int32_t n)
{
    if (other.m_blocNumbers == nullptr || n < 1) return FreeBlocNumbers();
    const auto entries =
        static_cast<std::ptrdiff_t>(std::min<std::size_t>(static_cast<std::size_t>(n), other.m_blocNumbers->size()));
    m_blocNumbers = std::make_shared<BlocTable>(other.m_blocNumbers->begin(), other.m_blocNumbers->begin() + entries);
}

std::int32_t* CReferencedAxis::GetBlocNumberPtr(std::int32_t point) const
{
    const bool holds = m_blocNumbers != nullptr && point >= 0 && point < std::ssize(*m_blocNumbers);
    return holds ? m_blocNumbers->data() + point : nullptr;
}

std::int32_t CReferencedAxis::GetBlocNumber(std::int32_t point) const
{
    const std::int32_t* block = GetBlocNumberPtr(point);
    return block != nullptr ? *block : -1;
}

void CReferencedAxis::SetBlocNumber(std::int32_t point, std::int32_t block)
{
    if (std::int32_t* entry = GetBlocNumberPtr(point); entry != nullptr) *entry = block;
}

bool CReferencedAxis::CopyBlocNumber(const std::int32_t* source, std::int32_t n)
{
    if (source == nullptr || n < 1) return false;
    if (m_blocNumbers == nullptr)
        m_blocNumbers = std::make_shared<BlocTable>(static_cast<std::size_t>(n));
    else if (n > m_nFilled || n > std::ssize(*m_blocNumbers))
        return false;
    std::copy_n(source, n, m_blocNumbers->data());
    return true;
}

bool CReferencedAxis::CopyBlocNumber(const std::int32_t* source, std::uint64_t n)
{
    return n <= INT32_MAX && CopyBlocNumber(source, static_cast<std::int32_t>(n));
}

// ---- The ring ----

void CReferencedAxis::MoveRing(std::int64_t values, std::int32_t size)
{
    if (m_nextIndex >= size) m_nextIndex = size - 1; // the ring was larger: the next step goes to 0
    const std::int64_t room = std::max(0, size - m_count);
    const std::int64_t overwritten = std::max<std::int64_t>(0, values - room);
    m_nextIndex = static_cast<std::int32_t>((m_nextIndex + values) % size);
    m_count = static_cast<std::int32_t>(m_count + std::min(values, room));
    if (overwritten == 0) return;
    m_firstBlockNb = static_cast<std::int32_t>(m_firstBlockNb + overwritten);
    m_firstIndex = m_nextIndex;
}

std::int32_t CReferencedAxis::UpdateIndex(std::int32_t size)
{
    if (size < 1) return -1;
    const bool wasFull = m_count >= size;
    const std::int32_t dropped = m_firstBlockNb;
    MoveRing(1, size);
    return wasFull ? dropped : -1;
}

bool CReferencedAxis::SearchForRefIndex(std::int32_t block, std::int32_t& index, std::int32_t size) const
{
    index = -1;
    if (size < 1 || block < m_firstBlockNb || block > m_lastBlockNb) return false;
    std::int64_t place = std::int64_t{m_firstIndex} - m_firstBlockNb + block;
    if (place >= size) place -= size;
    index = static_cast<std::int32_t>(place);
    return true;
}

} // namespace ZelmResult
