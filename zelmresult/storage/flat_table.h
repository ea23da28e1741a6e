#pragma once

#include <bit>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace ZelmResult {

// Numbers by keys of 64 bits, in one array of slots, since searches look up a key at every step. It holds the numbers
// only: the caller says with keyOf which key a number has. Internal to the storage.
//
// Where a key goes depends on a number that each process draws, so that no file can be made whose keys meet in few
// slots.
class FlatTable {
public:
    static constexpr std::uint32_t kAbsent = 0xFFFFFFFF;

    template <class KeyOf>
    [[nodiscard]] std::uint32_t Find(std::uint64_t key, KeyOf keyOf) const
    {
        return m_slots.empty() ? kAbsent : m_slots[SlotOf(key, keyOf)];
    }
    // The key must be absent.
    template <class KeyOf>
    void Add(std::uint64_t key, std::uint32_t number, KeyOf keyOf)
    {
        if (2 * (m_used + 1) > m_slots.size()) Grow(keyOf);
        m_slots[SlotOf(key, keyOf)] = number;
        ++m_used;
    }

private:
    struct Multipliers {
        std::uint64_t first;
        std::uint64_t second;
    };
    // Odd numbers.
    static const Multipliers& Drawn();

    template <class KeyOf>
    [[nodiscard]] std::size_t SlotOf(std::uint64_t key, KeyOf keyOf) const
    {
        const Multipliers& drawn = Drawn();
        std::uint64_t mixed = key * drawn.first;
        mixed = (mixed ^ mixed >> 32U) * drawn.second;
        auto slot = static_cast<std::size_t>(mixed >> m_shift);
        while (m_slots[slot] != kAbsent && keyOf(m_slots[slot]) != key) slot = (slot + 1) & (m_slots.size() - 1);
        return slot;
    }

    template <class KeyOf>
    void Grow(KeyOf keyOf)
    {
        const std::vector<std::uint32_t> old = std::move(m_slots);
        m_slots.assign(old.empty() ? 64 : 2 * old.size(), kAbsent);
        m_shift = 64 - static_cast<int>(std::bit_width(m_slots.size() - 1));
        for (const std::uint32_t number : old)
            if (number != kAbsent) m_slots[SlotOf(keyOf(number), keyOf)] = number;
    }

    std::vector<std::uint32_t> m_slots; // a power of two, at most half of it used
    std::size_t m_used = 0;
    int m_shift = 0; // leaves as many bits as a slot has
};

} // namespace ZelmResult
