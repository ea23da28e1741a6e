#pragma once

#include <span>
#include <string>

// The names of processes that say which orders a track holds, which weightings a broad-band result, and which levels an
// overview: see zelmresult/reading/labelled_captions.h.

namespace zmxf {

// "Orders 1, 2, 4"
std::string OrdersName(std::span<const double> orders);
// "Broad band A, C, Z"
std::string BroadBandName(std::span<const std::string> weightings);
// "Overview of Mean, RMS"
std::string OverviewName(std::span<const std::string> levels);

} // namespace zmxf
