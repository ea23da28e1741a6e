#include "zelmresult/waterfalls/insertion_order.h"

#include <algorithm>
#include <cmath>

namespace ZelmResult {

namespace {

constexpr std::int32_t kNone = -1;

// Equal values, as a chain through the indexes.
struct Group {
    std::int32_t first = kNone;
    std::int32_t last = kNone;
};

class Chains {
public:
    explicit Chains(std::size_t size) : m_next(size, kNone) {}

    void Append(Group& group, std::int32_t index)
    {
        (group.last == kNone ? group.first : Next(group.last)) = index;
        group.last = index;
    }
    void Prepend(Group& group, std::int32_t index)
    {
        Next(index) = group.first;
        group.first = index;
    }
    void InsertSecond(Group& group, std::int32_t index)
    {
        Next(index) = Next(group.first);
        Next(group.first) = index;
        if (group.last == group.first) group.last = index;
    }
    std::int32_t& Next(std::int32_t index) { return m_next[static_cast<std::size_t>(index)]; }

private:
    std::vector<std::int32_t> m_next;
};

} // namespace

std::optional<std::vector<std::int32_t>> InsertionOrder(std::span<const float> values)
{
    if (std::any_of(values.begin(), values.end(), [](float value) { return std::isnan(value); })) return std::nullopt;
    std::vector<float> distinct(values.begin(), values.end());
    std::sort(distinct.begin(), distinct.end());
    distinct.erase(std::unique(distinct.begin(), distinct.end()), distinct.end());
    std::vector<Group> groups(distinct.size());
    Chains chains(values.size());
    std::size_t lowest = groups.size();
    std::size_t highest = 0;
    for (std::size_t i = 0; i < values.size(); ++i) {
        const auto index = static_cast<std::int32_t>(i);
        const auto place =
            static_cast<std::size_t>(std::lower_bound(distinct.begin(), distinct.end(), values[i]) - distinct.begin());
        Group& group = groups[place];
        if (group.first == kNone || place >= highest)
            chains.Append(group, index);
        else if (place == lowest)
            chains.InsertSecond(group, index);
        else
            chains.Prepend(group, index);
        lowest = std::min(lowest, place);
        highest = std::max(highest, place);
    }
    std::vector<std::int32_t> order;
    order.reserve(values.size());
    for (const Group& group : groups)
        for (std::int32_t index = group.first; index != kNone; index = chains.Next(index)) order.push_back(index);
    return order;
}

} // namespace ZelmResult
