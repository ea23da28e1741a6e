#pragma once

#include <cstddef>
#include <span>
#include <vector>

namespace zmxf {

// The places of the highest values, the highest first; at most count. Of a spectrum only lines count that rise above
// the line before and aren't below the one after; of bands each counts.
std::vector<std::size_t> HighestPeaks(std::span<const double> lines, std::size_t count);
std::vector<std::size_t> HighestBands(std::span<const double> bands, std::size_t count);

} // namespace zmxf
