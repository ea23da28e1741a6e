#pragma once

#include <span>
#include <string>
#include <vector>

// Which orders a track holds, which weightings a broad-band result, and which levels an overview. Their records have no
// place for that, so it is in the name of the process. Names of other origin give numbered titles.

namespace zmxf {

// "Orders 1, 2, 4"
std::string OrdersName(std::span<const double> orders);
// "Order 1", "Order 2", "Order 4"; else "Track 1" to "Track count".
std::vector<std::string> OrderTitles(const std::string& caption, std::size_t count);

// "Broad band A, C, Z"
std::string BroadBandName(std::span<const std::string> weightings);
// "A", "C", "Z"; else "1" to "count".
std::vector<std::string> WeightingTitles(const std::string& caption, std::size_t count);

// "Overview of Mean, RMS"
std::string OverviewName(std::span<const std::string> levels);
// "Mean", "RMS"; else "Level 1" to "Level count".
std::vector<std::string> OverviewTitles(const std::string& caption, std::size_t count);

} // namespace zmxf
