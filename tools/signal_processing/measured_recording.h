#pragma once

#include "tools/signal_processing/levels.h"
#include "tools/signal_processing/octave_bands.h"
#include "tools/signal_processing/overview.h"
#include "tools/signal_processing/recording.h"
#include "tools/signal_processing/run_up.h"
#include "tools/signal_processing/sound_levels.h"
#include "tools/signal_processing/spectra.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

namespace zmxf {

// How to follow the speed of a machine.
struct TachoSettings {
    std::size_t channel = 0;
    double pulses = 1.0;                          // per revolution
    std::vector<double> orders = {1.0, 2.0, 4.0}; // to follow
};

// What to measure beside the levels.
struct SpectrumSettings {
    std::size_t blockSize = 0; // see IsBlockSize; 0: the default, or what a shorter recording allows
    std::int64_t mostBlocks = SpectrumMeter::kAllBlocks; // averaged, from the start of the recording
    std::size_t reference = 0;                           // the channel that the others are compared with
    Window window = Window::Hann;
    std::optional<TachoSettings> tacho = {}; // cuts the recording into slices with a speed
};

// A recording and what was measured of its channels, in the values that a RecordingReader gives.
struct MeasuredRecording {
    static constexpr std::size_t kDefaultBlock = 8192;

    RecordingFacts facts;
    std::vector<Levels> levels;
    std::vector<SoundLevels> sound;  // of y = x - mean
    std::vector<Overview> overviews; // the weighted values of y, the others of x
    Spectra spectra; // with the reference when there are two channels or more; no lines when the recording is too short
    std::vector<OctaveBands> octaves; // of the whole recording, from blocks of a second; none when it is too short
    std::size_t octaveBlockSize = 0;
    RunUp runUp; // no slices without a tacho channel
};

// Called now and then with the part of the work that is done. May be empty.
using ProgressCallback = std::function<void(std::int64_t done, std::int64_t total)>;

// Reads the recording twice, with memory for a block of each channel. Throws RecordingError, for a recording without
// samples or with fewer than the given block too, and for a sample that isn't a finite number, and for a tacho channel
// that gives no block a speed.
MeasuredRecording MeasureRecording(RecordingReader& reader, const SpectrumSettings& settings,
                                   const ProgressCallback& progress = {});

// Reads the recording again and gives the spectra of all channels at each slice to take, in order. Spectra are those of
// a single block, lent for the call. Throws RecordingError.
void ForEachSlice(RecordingReader& reader, const MeasuredRecording& measured,
                  const std::function<void(std::size_t slice, const Spectra& spectra)>& take,
                  const ProgressCallback& progress = {});

} // namespace zmxf
