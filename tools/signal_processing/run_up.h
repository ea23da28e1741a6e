#pragma once

#include "tools/signal_processing/pulse_train.h"
#include "tools/signal_processing/spectra.h"

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace zmxf {

struct MeasuredRecording;

// A block of the recording, and how fast the machine turned in its middle.
struct RunUpSlice {
    std::int64_t firstFrame = 0;
    double seconds = 0.0; // of the middle, from the start of the recording
    double speed = 0.0;   // revolutions per second
};

// Blocks of a recording by what their pulses are like.
struct SpeedTally {
    std::size_t outside = 0; // before the first or behind the last pulse
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
void CutIntoSlices(RunUp& runUp, const TachoPulses& pulses, std::int64_t frames, int sampleRate);

// Why the pulses of most blocks are no measure of a speed; empty when they are.
std::string WhyNoTacho(const RunUp& runUp, const TachoPulses& pulses);

// Reads the recording again and gives the spectra of all channels at each slice to take, in order. Spectra are those of
// a single block, lent for the call. Throws Failure.
void ForEachSlice(const std::string& path, const MeasuredRecording& measured,
                  const std::function<void(std::size_t slice, const Spectra& spectra)>& take);

} // namespace zmxf
