#include "zelmresult/waterfalls/slice_order.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace ZelmResult {

std::vector<std::int32_t> SourcesOfSort(const std::vector<std::int32_t>& blocks)
{
    const std::size_t count = blocks.size();
    std::vector<std::int32_t> slices(count); // the final slice of each block number, unless it ends at place 0
    std::iota(slices.begin(), slices.end(), 0);
    std::vector<std::size_t> order(count);
    std::iota(order.begin(), order.end(), std::size_t{0});
    // A number below all before it moves the one at place 0 to place 1, which keeps its slice.
    std::size_t atPlace0 = 0;
    std::size_t atPlace1 = 1;
    for (std::size_t i = 1; i < count; ++i) {
        if (blocks[i] < blocks[atPlace0]) {
            slices[atPlace0] = slices[atPlace1];
            atPlace1 = std::exchange(atPlace0, i);
        } else if (i == 1 || blocks[i] < blocks[atPlace1]) {
            atPlace1 = i;
        }
    }
    std::stable_sort(order.begin(), order.end(), [&](std::size_t a, std::size_t b) { return blocks[a] < blocks[b]; });
    std::vector<std::int32_t> sources(count, 0);
    for (std::size_t place = 1; place < count; ++place) sources[place] = slices[order[place]];
    return sources;
}

std::vector<ShownSlice> ShownSlices(std::vector<std::int32_t> blocks)
{
    std::vector<std::int32_t> sources(blocks.size());
    std::iota(sources.begin(), sources.end(), 0);
    if (!std::is_sorted(blocks.begin(), blocks.end())) {
        sources = SourcesOfSort(blocks);
        std::stable_sort(blocks.begin(), blocks.end());
    }
    std::vector<ShownSlice> shown;
    shown.reserve(blocks.size());
    std::int32_t last = -1;
    for (std::size_t place = 0; place < blocks.size(); ++place) {
        if (blocks[place] <= last) continue;
        shown.push_back({blocks[place], sources[place]});
        last = blocks[place];
    }
    return shown;
}

std::vector<SliceMove> MovesOf(const std::vector<std::int32_t>& sources)
{
    const std::size_t count = sources.size();
    std::vector<std::int32_t> readers(count, 0); // that still need the slice at a place
    std::vector<bool> isDue(count);
    const auto source = [&](std::size_t place) { return static_cast<std::size_t>(sources[place]); };
    for (std::size_t place = 0; place < count; ++place) {
        isDue[place] = source(place) != place;
        if (isDue[place]) ++readers[source(place)];
    }
    std::vector<SliceMove> moves;
    // Starts at a place that is no longer needed, and follows the places that become free.
    const auto follow = [&](std::size_t place) {
        while (isDue[place] && readers[place] == 0) {
            moves.push_back({sources[place], static_cast<std::int32_t>(place)});
            isDue[place] = false;
            --readers[source(place)];
            place = source(place);
        }
    };
    for (std::size_t place = 0; place < count; ++place) follow(place);
    // Only rings are left.
    for (std::size_t start = 0; start < count; ++start) {
        if (!isDue[start]) continue;
        moves.push_back({static_cast<std::int32_t>(start), SliceMove::kSpare});
        std::size_t place = start;
        for (; source(place) != start; place = source(place)) {
            moves.push_back({sources[place], static_cast<std::int32_t>(place)});
            isDue[place] = false;
        }
        moves.push_back({SliceMove::kSpare, static_cast<std::int32_t>(place)});
        isDue[place] = false;
    }
    return moves;
}

} // namespace ZelmResult
