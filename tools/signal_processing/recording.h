#pragma once

#include "tools/signal_processing/levels.h"
#include "tools/signal_processing/octave_bands.h"
#include "tools/signal_processing/overview.h"
#include "tools/signal_processing/run_up.h"
#include "tools/signal_processing/sample_bytes.h"
#include "tools/signal_processing/sound_levels.h"
#include "tools/signal_processing/spectra.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zmxf {

// What a recording says of itself.
struct RecordingFacts {
    std::int64_t frames = 0; // samples of each channel, as announced; as counted once the recording is measured
    std::size_t channels = 0;
    int sampleRate = 0;          // Hz
    std::int64_t modifiedAt = 0; // seconds since 1970, UTC
    // The largest value that every sample reaches that is too large to be recorded. None for floating-point formats,
    // which may hold any unit.
    std::optional<double> fullScale = {};
    std::optional<SampleBytes> cut = {}; // of a file that ends before its samples do
};

// A recording, read from its start to its end in blocks. Values are as stored for floating-point formats, and in parts
// of full scale for integer ones: 16 bits are divided by 32768.
class RecordingReader {
public:
    // Opens WAV, FLAC and what else libsndfile knows. Throws Failure.
    explicit RecordingReader(const std::string& path);
    RecordingReader(const RecordingReader&) = delete;
    RecordingReader& operator=(const RecordingReader&) = delete;
    ~RecordingReader();

    [[nodiscard]] const RecordingFacts& facts() const { return m_facts; }
    // The next frames, the channels of each side by side; lent until the next call. Empty at the end. Throws Failure
    // when the recording ends before it should.
    std::span<const double> NextBlock();

private:
    struct OpenFile;

    std::string m_path;
    RecordingFacts m_facts;
    std::unique_ptr<OpenFile> m_file;
    std::vector<double> m_block;
    std::int64_t m_framesRead = 0;
};

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

// Reads the recording twice, in memory for a block of each channel. Throws Failure, for a recording without samples
// or with fewer than the given block too, and for a sample that isn't a finite number, and for a
// tacho channel that gives no block a speed.
MeasuredRecording MeasureRecording(const std::string& path, const SpectrumSettings& settings);

// Writes samples, the channels of each frame side by side, as WAV with 32-bit floating-point values. The same samples
// give the same bytes. Throws Failure; the file has its name only when it is whole.
void WriteRecording(const std::string& path, std::span<const float> samples, int channels, int sampleRate);

} // namespace zmxf
