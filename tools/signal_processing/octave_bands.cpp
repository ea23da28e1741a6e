#include "tools/signal_processing/octave_bands.h"

#include "tools/signal_processing/weighting.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace zmxf {

namespace {

constexpr double kLinesPerBand = 3.0;

double LowerEdge(int b) { return 1000.0 * std::pow(10.0, (2.0 * b - 1.0) / 20.0); }

// The sum of the lines from one frequency to below another.
double PowerBetween(const std::vector<double>& lines, double spacing, double from, double to)
{
    const auto index = [&](double frequency) {
        return std::min(static_cast<std::size_t>(std::ceil(frequency / spacing)), lines.size());
    };
    const auto at = [&](double frequency) { return lines.begin() + static_cast<std::ptrdiff_t>(index(frequency)); };
    return std::accumulate(at(from), at(to), 0.0);
}

} // namespace

double BandCentre(int b) { return 1000.0 * std::pow(10.0, b / 10.0); }

OctaveBands GatherBands(const Spectra& spectra, std::size_t channel, double sampleRate)
{
    const std::vector<double>& lines = spectra.power[channel];
    const double spacing = sampleRate / static_cast<double>(spectra.blockSize);
    OctaveBands bands;
    const double relativeWidth = LowerEdge(1) / LowerEdge(0) - 1.0;
    bands.first =
        static_cast<int>(std::ceil(10.0 * std::log10(kLinesPerBand * spacing / relativeWidth / 1000.0) + 0.5));
    for (int b = bands.first; LowerEdge(b + 1) <= sampleRate / 2.0; ++b) {
        const double power =
            PowerBetween(lines, spacing, LowerEdge(b), LowerEdge(b + 1)) / NoiseBandwidth(spectra.window);
        bands.power.push_back(power);
        bands.aWeighted += power * std::pow(AWeighting(BandCentre(b)), 2.0);
    }
    return bands;
}

} // namespace zmxf
