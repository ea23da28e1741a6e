#pragma once

#include "tools/signal_processing/measured_recording.h"
#include "tools/zmxf/measuring/calibration.h"

#include <memory>
#include <string>
#include <vector>

namespace zmxf {

// A recording whose values have a meaning.
struct CalibratedRecording {
    std::shared_ptr<RecordingReader> reader;
    std::vector<Calibration> calibrations;      // one per channel
    std::vector<std::string> channelNames = {}; // one per channel, or none; an empty one is none
    MeasuredRecording measured = {};

    [[nodiscard]] const std::string& path() const { return reader->path(); }
};

// Whether a channel reached full scale: the end of an integer format, or that of a range that was given.
bool IsOverloaded(const CalibratedRecording& recording, std::size_t channel);

// "Channel 1" for the first.
std::string ChannelName(std::size_t channel);
// The same for a channel without a name of its own.
std::string ChannelName(const CalibratedRecording& recording, std::size_t channel);
// Which stretch of the recording was measured, "from 2 s to 6 s"; empty for the whole.
std::string StretchText(const RecordingFacts& facts);

// A value of a channel in the single precision of documents. Throws Failure when it is too large.
float Stored(double value, std::size_t channel);

// A weighted RMS value or peak of a channel, 0 below a floor of 200 dB under its highest sample: what filters leave of
// their decay in digital silence is no level.
double AboveFloor(double weighted, const MeasuredRecording& measured, std::size_t channel);

} // namespace zmxf
