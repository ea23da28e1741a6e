#pragma once

#include "tools/signal_processing/sample_bytes.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zmxf {

// Why a recording can't be read, written or measured, as one line. Names of files are in it as they were given.
class RecordingError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// Throws the error of a recording that can't be read.
[[noreturn]] void ThrowUnreadable(const std::string& path, const std::string& reason);

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
    // Opens WAV, FLAC and what else libsndfile knows. Throws RecordingError.
    explicit RecordingReader(const std::string& path);
    RecordingReader(const RecordingReader&) = delete;
    RecordingReader& operator=(const RecordingReader&) = delete;
    ~RecordingReader();

    [[nodiscard]] const RecordingFacts& facts() const { return m_facts; }
    // The next frames, the channels of each side by side; lent until the next call. Empty at the end. Throws
    // RecordingError when the recording ends before it should.
    std::span<const double> NextBlock();

private:
    struct OpenFile;

    std::string m_path;
    RecordingFacts m_facts;
    std::unique_ptr<OpenFile> m_file;
    std::vector<double> m_block;
    std::int64_t m_framesRead = 0;
};

// Writes samples, the channels of each frame side by side, as WAV with 32-bit floating-point values. The same samples
// give the same bytes. The descriptor stays open; path is for messages. Throws RecordingError.
void WriteRecording(int descriptor, const std::string& path, std::span<const float> samples, int channels,
                    int sampleRate);

} // namespace zmxf
