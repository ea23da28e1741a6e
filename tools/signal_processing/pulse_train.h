#pragma once

#include "tools/signal_processing/tacho.h"

#include <optional>

namespace zmxf {

// Why a place has no speed.
enum class SpeedFlaw {
    None,          // it has one, or lies outside of the pulses
    NoPulses,      // the machine doesn't turn there, or the tacho lost it
    Irregular,     // pulses come at intervals that no speed explains
    TooFewSamples, // pulses begin or end too fast for the sample rate
};

struct TachoSpeed {
    std::optional<double> pulsesPerSample = {};
    SpeedFlaw flaw = SpeedFlaw::None;
    bool isBridged = false; // single pulses were missing or too many, and were corrected from the others
};

// The mean speed around a sample: over half samples to either side, or as far as pulses reach on both. Between two
// pulses the speed counts as constant. Intervals are held against the median of those around, which follows a speed
// that changes evenly. Where up to two pulses in a row are missing, or some are too many, the others go on; where more
// than a quarter are, there is no speed. perRevolution pulses may lie unevenly, when they do so alike in each
// revolution.
TachoSpeed SpeedAround(const TachoPulses& pulses, double perRevolution, double sample, double half);

} // namespace zmxf
