#include "zelmresult/waterfalls/sorted_map.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int32_t kAlwaysDense = 256; // few bytes of a file can ask for many slots
constexpr std::int64_t kSlotsPerSlice = 16;

} // namespace

bool SortedMap::IsDense(std::int32_t slots, std::int32_t slices)
{
    return slots <= kAlwaysDense || slots <= kSlotsPerSlice * slices;
}

void SortedMap::Resize(std::int32_t slots, std::int32_t slices)
{
    const SortedMap former = std::move(*this);
    *this = {};
    m_isDense = IsDense(slots, slices);
    if (m_isDense) m_dense.assign(static_cast<std::size_t>(std::max(slots, 0)), kEmpty);
    m_size = std::max(slots, 0);
    if (former.m_isDense)
        for (std::int32_t slot = 0; slot < std::min(former.m_size, m_size); ++slot) Set(slot, former.Get(slot));
    else
        for (const auto& [slot, raw] : former.m_sparse) Set(slot, raw);
}

std::int32_t SortedMap::Get(std::int32_t slot) const
{
    if (!Holds(slot)) return kEmpty;
    if (m_isDense) return m_dense[static_cast<std::size_t>(slot)];
    const auto found = m_sparse.find(slot);
    return found == m_sparse.end() ? kEmpty : found->second;
}

void SortedMap::Set(std::int32_t slot, std::int32_t raw)
{
    if (!Holds(slot)) return;
    if (m_isDense)
        m_dense[static_cast<std::size_t>(slot)] = raw;
    else if (raw == kEmpty)
        m_sparse.erase(slot);
    else
        m_sparse[slot] = raw;
}

void SortedMap::Empty(std::int32_t from, std::int32_t count)
{
    const auto first = std::clamp<std::int64_t>(from, 0, m_size);
    const auto last = std::clamp<std::int64_t>(std::int64_t{from} + count, first, m_size);
    if (m_isDense)
        std::fill_n(m_dense.begin() + static_cast<std::ptrdiff_t>(first), last - first, kEmpty);
    else
        m_sparse.erase(m_sparse.lower_bound(static_cast<std::int32_t>(first)),
                       m_sparse.lower_bound(static_cast<std::int32_t>(last)));
}

void SortedMap::Empty()
{
    std::fill(m_dense.begin(), m_dense.end(), kEmpty);
    m_sparse.clear();
}

} // namespace ZelmResult
