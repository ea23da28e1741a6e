#pragma once

#include "tools/signal_processing/pulse_train.h"
#include "tools/signal_processing/spectra.h"

#include <cstdint>
#include <string>
#include <vector>

namespace zmxf {

// A block of the recording, and how fast the machine turned in its middle.
struct RunUpSlice {
    std::int64_t firstFrame = 0;
    double seconds = 0.0; // of the middle, from the start of the recording
    double speed = 0.0;   // revolutions per second
};

// Blocks of a recording by what their pulses are like.
struct SpeedTally {
    std::size_t outside = 0; // before the first or after the last pulse
    std::size_t noPulses = 0;
    std::size_t irregular = 0;
    std::size_t tooFewSamples = 0;
    std::size_t bridged = 0; // which have a speed
};

// The blocks of a recording that have a speed, which overlap by half.
struct RunUp {
    std::size_t blockSize = 0;
    std::size_t tacho = 0;           // the channel
    double pulses = 1.0;             // per revolution
    std::vector<double> orders = {}; // multiples of the speed that are followed
    std::vector<RunUpSlice> slices = {};
    SpeedTally tally = {};
    Window window = Window::Hann;
};

// Fills the slices and the tally of a run-up with the blocks of the recording.
void CutIntoSlices(RunUp& runUp, const TachoPulses& pulses, std::int64_t frames, double sampleRate);

// Why the pulses of most blocks are no measure of a speed; empty when they are.
std::string WhyNoTacho(const RunUp& runUp, const TachoPulses& pulses);

} // namespace zmxf
