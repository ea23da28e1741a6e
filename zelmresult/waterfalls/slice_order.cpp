#include "zelmresult/waterfalls/slice_order.h"

#include <algorithm>

namespace ZelmResult {

namespace {

// Counts of numbered things, with sums and searches in logarithmic time.
class CountTree {
public:
    explicit CountTree(std::size_t size) : m_sums(size + 1, 0) {}

    void Add(std::size_t i, std::int32_t count)
    {
        for (++i; i < m_sums.size(); i += i & (~i + 1)) m_sums[i] += count;
    }
    // Of the first n things.
    [[nodiscard]] std::int32_t Sum(std::size_t n) const
    {
        std::int32_t sum = 0;
        for (; n > 0; n -= n & (~n + 1)) sum += m_sums[n];
        return sum;
    }
    // The thing that count others come before.
    [[nodiscard]] std::size_t Find(std::int32_t count) const
    {
        std::size_t position = 0;
        std::size_t step = 1;
        while (step * 2 < m_sums.size()) step *= 2;
        for (; step > 0; step /= 2) {
            if (position + step >= m_sums.size() || m_sums[position + step] > count) continue;
            position += step;
            count -= m_sums[position];
        }
        return position;
    }

private:
    std::vector<std::int32_t> m_sums;
};

// The place that each block takes among those before it.
std::vector<std::int32_t> Insertions(const std::vector<std::int32_t>& blocks)
{
    std::vector<std::int32_t> values = blocks;
    std::sort(values.begin(), values.end());
    CountTree counts(values.size());
    std::vector<std::int32_t> places;
    places.reserve(blocks.size());
    for (const std::int32_t block : blocks) {
        const auto behind = std::upper_bound(values.begin(), values.end(), block) - values.begin();
        places.push_back(counts.Sum(static_cast<std::size_t>(behind)));
        counts.Add(static_cast<std::size_t>(behind) - 1, 1);
    }
    return places;
}

} // namespace

std::vector<std::int32_t> SourcesOfSort(const std::vector<std::int32_t>& blocks)
{
    const std::vector<std::int32_t> places = Insertions(blocks);
    const std::size_t count = blocks.size();
    // The slice that each insertion brings in; at place 0 it is what place 1 holds already.
    std::vector<std::int32_t> brought(count, 0);
    std::int32_t atPlace1 = 1;
    for (std::size_t i = 1; i < count; ++i) {
        brought[i] = places[i] == 0 && i > 1 ? atPlace1 : static_cast<std::int32_t>(i);
        if (places[i] <= 1) atPlace1 = brought[i];
    }
    // From the last insertion back: what came later has taken its place for good.
    CountTree free(count);
    for (std::size_t i = 0; i < count; ++i) free.Add(i, 1);
    std::vector<std::int32_t> sources(count, 0);
    for (std::size_t i = count; i-- > 1;) {
        const std::size_t place = free.Find(std::max(places[i], 1));
        sources[place] = brought[i];
        free.Add(place, -1);
    }
    return sources;
}

std::vector<SliceMove> MovesOf(const std::vector<std::int32_t>& sources)
{
    const std::size_t count = sources.size();
    std::vector<std::int32_t> readers(count, 0); // that still need what a place holds now
    std::vector<bool> isDue(count);
    const auto source = [&](std::size_t place) { return static_cast<std::size_t>(sources[place]); };
    for (std::size_t place = 0; place < count; ++place) {
        isDue[place] = source(place) != place;
        if (isDue[place]) ++readers[source(place)];
    }
    std::vector<SliceMove> moves;
    // From a place that nobody reads any more, along the line of those that then are free.
    const auto follow = [&](std::size_t place) {
        while (isDue[place] && readers[place] == 0) {
            moves.push_back({sources[place], static_cast<std::int32_t>(place)});
            isDue[place] = false;
            --readers[source(place)];
            place = source(place);
        }
    };
    for (std::size_t place = 0; place < count; ++place) follow(place);
    // What is left are rings.
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
