#include "tools/zmxf/base/process_names.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <set>

namespace zmxf {

namespace {

constexpr const char* kOrders = "Orders ";
constexpr const char* kBroadBand = "Broad band ";
constexpr const char* kOverview = "Overview of ";
constexpr std::string_view kSeparator = ", ";

std::string Caption(const std::string& introduction, std::span<const std::string> items)
{
    return fmt::format("{}{}", introduction, fmt::join(items, kSeparator));
}

// What Caption was given; nothing for another text.
std::vector<std::string> ItemsOf(const std::string& caption, std::string_view introduction)
{
    std::vector<std::string> items;
    if (!caption.starts_with(introduction)) return items;
    for (std::size_t at = introduction.size(), end = 0; end != std::string::npos; at = end + kSeparator.size()) {
        end = caption.find(kSeparator, at);
        items.push_back(caption.substr(at, end == std::string::npos ? end : end - at));
    }
    return items;
}

// A prefix before each item, or another one before 1 to count when there aren't as many.
std::vector<std::string> Titles(std::vector<std::string> items, const std::string& prefix, std::size_t count,
                                const std::string& otherPrefix)
{
    const std::set<std::string> distinct(items.begin(), items.end());
    const bool fit = items.size() == count && distinct.size() == count && !distinct.contains("");
    items.resize(count);
    for (std::size_t i = 0; i < count; ++i)
        items[i] = fit ? prefix + items[i] : fmt::format("{}{}", otherPrefix, i + 1);
    return items;
}

} // namespace

std::string OrdersName(std::span<const double> orders)
{
    std::vector<std::string> items(orders.size());
    std::transform(orders.begin(), orders.end(), items.begin(), ExactText);
    return Caption(kOrders, items);
}

std::vector<std::string> OrderTitles(const std::string& caption, std::size_t count)
{
    return Titles(ItemsOf(caption, kOrders), "Order ", count, "Track ");
}

std::string BroadBandName(std::span<const std::string> weightings) { return Caption(kBroadBand, weightings); }

std::vector<std::string> WeightingTitles(const std::string& caption, std::size_t count)
{
    return Titles(ItemsOf(caption, kBroadBand), "", count, "");
}

std::string OverviewName(std::span<const std::string> levels) { return Caption(kOverview, levels); }

std::vector<std::string> OverviewTitles(const std::string& caption, std::size_t count)
{
    return Titles(ItemsOf(caption, kOverview), "", count, "Level ");
}

} // namespace zmxf
