#include "tools/signal_processing/peaks.h"

#include <algorithm>
#include <cmath>

namespace zmxf {

namespace {

std::vector<std::size_t> Highest(std::span<const double> values, std::vector<std::size_t> places, std::size_t count)
{
    std::stable_sort(places.begin(), places.end(), [&](std::size_t a, std::size_t b) { return values[a] > values[b]; });
    places.resize(std::min(places.size(), count));
    return places;
}

} // namespace

std::vector<std::size_t> HighestPeaks(std::span<const double> lines, std::size_t count)
{
    std::vector<std::size_t> places;
    for (std::size_t k = 1; k + 1 < lines.size(); ++k)
        if (lines[k] > lines[k - 1] && lines[k] >= lines[k + 1]) places.push_back(k);
    return Highest(lines, std::move(places), count);
}

std::vector<std::size_t> HighestBands(std::span<const double> bands, std::size_t count)
{
    std::vector<std::size_t> places;
    for (std::size_t i = 0; i < bands.size(); ++i)
        if (!std::isnan(bands[i])) places.push_back(i); // which a document may hold
    return Highest(bands, std::move(places), count);
}

} // namespace zmxf
