#pragma once

#include "tools/signal_processing/spectra.h"

#include <vector>

namespace zmxf {

// The 1/3-octave levels of a channel, as mean squares. Bands have the exact base-ten middles 1000 Hz * 10^(b/10) and
// rectangular edges half a band to either side.
struct OctaveBands {
    int first = 0;             // b of the lowest band, which is the first that holds three lines of the spectrum
    std::vector<double> power; // up to the last band that ends below half of the sample rate; may be empty
    double aWeighted = 0.0;    // the sum of the bands, each weighted at its middle
};

double BandCentre(int b); // Hz

// The lines of a channel, gathered. Each counts for the band that its frequency lies in, the lower edge included.
OctaveBands GatherBands(const Spectra& spectra, std::size_t channel, double sampleRate);

} // namespace zmxf
