#pragma once

#include "tools/zmxf/analysis/levels.h"

#include <cstdint>
#include <memory>
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

// A recording with the levels of each channel, in the values that a RecordingReader gives.
struct MeasuredRecording {
    RecordingFacts facts;
    std::vector<Levels> channels;
};

// Reads the recording twice, in memory that doesn't depend on its length. Throws Failure, for a recording without
// samples too, and for a sample that isn't a finite number.
MeasuredRecording MeasureRecording(const std::string& path);

// Writes samples, the channels of each frame side by side, as WAV with 32-bit floating-point values. The same samples
// give the same bytes. Throws Failure; the file has its name only when it is whole.
void WriteRecording(const std::string& path, std::span<const float> samples, int channels, int sampleRate);

} // namespace zmxf
