#pragma once

#include <cstdint>
#include <vector>

namespace ZelmResult {

// How the slices of a waterfall move when their block numbers are sorted. Internal to the waterfall.
//
// The rule is that of an insertion sort which never reads or writes raw slice 0: a slice that would move to place 0 is
// lost, and the slice at place 1 is then both kept there and moved on. Files depend on it.

// For each place the slice that ends there.
std::vector<std::int32_t> SourcesOfSort(const std::vector<std::int32_t>& blocks);

// A slice that a load shows: its block, and the place at which it is stored.
struct ShownSlice {
    std::int32_t block;
    std::int32_t stored;
};

// The slices in the order of their blocks; of several with one block the first. By the block numbers as they are
// stored.
std::vector<ShownSlice> ShownSlices(std::vector<std::int32_t> blocks);

struct SliceMove {
    static constexpr std::int32_t kSpare = -1; // the one slice of memory outside the waterfall

    std::int32_t from;
    std::int32_t to;
};

// Copies that, one after another, bring each place its source; each place is written at most once.
std::vector<SliceMove> MovesOf(const std::vector<std::int32_t>& sources);

} // namespace ZelmResult
