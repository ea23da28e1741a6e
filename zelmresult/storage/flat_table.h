#pragma once

#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace ZelmResult {

// Numbers by unsigned keys, in one array of slots, since searches look up a key at every step. Internal to the storage.
template <class Key>
class FlatTable {
public:
    static constexpr std::uint32_t kAbsent = 0xFFFFFFFF;

    [[nodiscard]] std::uint32_t Find(Key key) const { return m_slots.empty() ? kAbsent : m_slots[SlotOf(key)].number; }
    // The key must be absent.
    void Add(Key key, std::uint32_t number)
    {
        if (2 * (m_used + 1) > m_slots.size()) Grow();
        m_slots[SlotOf(key)] = {key, number};
        ++m_used;
    }

private:
    struct Slot {
        Key key = 0;
        std::uint32_t number = kAbsent;
    };

    [[nodiscard]] std::size_t SlotOf(Key key) const
    {
        const std::size_t mask = m_slots.size() - 1;
        std::size_t slot = (key * std::uint64_t{0x9E3779B97F4A7C15} >> 32U) & mask;
        while (m_slots[slot].number != kAbsent && m_slots[slot].key != key) slot = (slot + 1) & mask;
        return slot;
    }

    void Grow()
    {
        const std::vector<Slot> old = std::move(m_slots);
        m_slots.assign(old.empty() ? 64 : 2 * old.size(), Slot());
        for (const Slot& slot : old)
            if (slot.number != kAbsent) m_slots[SlotOf(slot.key)] = slot;
    }

    std::vector<Slot> m_slots; // a power of two, at most half of it used
    std::size_t m_used = 0;
};

} // namespace ZelmResult
