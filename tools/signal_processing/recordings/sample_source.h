#pragma once

#include "tools/signal_processing/recordings/sample_bytes.h"

#include <cstddef>
#include <cstdint>
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

// Rates that a recording may have, in Hz.
inline constexpr double kLowestRate = 1e-3;
inline constexpr double kHighestRate = 1e9;

// What a recording says of one of its channels, in whatever bytes it has; empty where it says nothing.
struct ChannelFacts {
    std::string name = {};
    std::string unit = {};

    bool operator==(const ChannelFacts&) const = default;
};

// What a recording says of itself.
struct RecordingFacts {
    std::int64_t frames = 0; // samples of each channel, as announced; as counted once the recording is measured
    std::size_t channels = 0;
    double sampleRate = 0.0;     // Hz
    std::int64_t modifiedAt = 0; // seconds since 1970, UTC
    // The largest value that every sample reaches that is too large to be recorded. None for floating-point formats,
    // which may hold any unit.
    std::optional<double> fullScale = {};
    std::optional<SampleBytes> cut = {};           // of a file that ends before its samples do
    std::vector<ChannelFacts> said = {};           // per channel
    std::string times = {};                        // the column that was taken as times for its name alone
    std::string comment = {};                      // as the recording says it
    std::vector<std::string> notes = {};           // what of the file is left out, or contradicts itself
    std::int64_t firstFrame = 0;                   // in the file, of a stretch of it
    std::optional<std::int64_t> framesInFile = {}; // of a stretch
};

// A file with samples, of one format. Read from its start to its end, as often as is wanted.
class SampleSource {
public:
    SampleSource() = default;
    SampleSource(const SampleSource&) = delete;
    SampleSource& operator=(const SampleSource&) = delete;
    virtual ~SampleSource() = default;

    [[nodiscard]] const RecordingFacts& facts() const { return m_facts; }
    // Goes back to the first frame. Throws RecordingError.
    virtual void Rewind() = 0;
    // Fills the front of the block, which has room for whole frames, and gives how many frames it read: none at the
    // end. Throws RecordingError when the recording ends before it should.
    virtual std::size_t Read(std::span<double> block) = 0;

protected:
    RecordingFacts m_facts;
};

} // namespace zmxf
