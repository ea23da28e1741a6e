#pragma once

#include <algorithm>
#include <initializer_list>

namespace ZelmResult {

// A run of result kinds, both ends included; a single kind stands for itself.
struct KindRange {
    int first;
    int last;

    constexpr KindRange(int kind)
        : first(kind), last(kind) {} // NOLINT(google-explicit-constructor): lists read as data
    constexpr KindRange(int from, int to) : first(from), last(to) {}
    [[nodiscard]] constexpr bool Holds(int kind) const { return kind >= first && kind <= last; }
};

constexpr bool IsAmong(int kind, std::initializer_list<KindRange> kinds)
{
    return std::any_of(kinds.begin(), kinds.end(), [kind](const KindRange& range) { return range.Holds(kind); });
}

} // namespace ZelmResult
