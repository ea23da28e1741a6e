#include "zelmresult/waterfalls/insertion_order.h"

#include <algorithm>
#include <cmath>
#include <tuple>

namespace ZelmResult {

namespace {

// Where a value is placed among equal ones.
enum class Rank : std::uint8_t {
    Front,  // neither the lowest nor the highest when it arrived: before all others, the latest first
    First,  // the first of a value that was the lowest or the highest
    Second, // of the lowest value: directly after the first, the latest first
    Back,   // of the highest value: after all others, in the order of arrival
};

struct Entry {
    float value;
    Rank rank;
    std::int32_t index;

    bool operator<(const Entry& other) const
    {
        const auto turn = [](const Entry& entry) { return entry.rank == Rank::Back ? entry.index : -entry.index; };
        return std::tuple(value, rank, turn(*this)) < std::tuple(other.value, other.rank, turn(other));
    }
};

} // namespace

std::optional<std::vector<std::int32_t>> InsertionOrder(std::span<const float> values)
{
    std::vector<Entry> entries;
    entries.reserve(values.size());
    float lowest = 0.0F;
    float highest = 0.0F;
    for (const float value : values) {
        if (std::isnan(value)) return std::nullopt;
        Rank rank = Rank::Front;
        if (entries.empty() || value < lowest || value > highest)
            rank = Rank::First;
        else if (value == highest)
            rank = Rank::Back;
        else if (value == lowest)
            rank = Rank::Second;
        lowest = entries.empty() ? value : std::min(lowest, value);
        highest = entries.empty() ? value : std::max(highest, value);
        entries.push_back({value, rank, static_cast<std::int32_t>(entries.size())});
    }
    std::sort(entries.begin(), entries.end());
    std::vector<std::int32_t> order;
    order.reserve(entries.size());
    for (const Entry& entry : entries) order.push_back(entry.index);
    return order;
}

} // namespace ZelmResult
