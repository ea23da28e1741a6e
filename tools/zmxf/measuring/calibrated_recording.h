#pragma once

#include "tools/signal_processing/measured_recording.h"
#include "tools/zmxf/measuring/calibration.h"

#include <string>
#include <vector>

namespace zmxf {

// A recording whose values have a meaning.
struct CalibratedRecording {
    std::string path;
    MeasuredRecording measured;
    std::vector<Calibration> calibrations; // one per channel
};

// Whether a channel reached full scale: the end of an integer format, or that of a range that was given.
bool IsOverloaded(const CalibratedRecording& recording, std::size_t channel);

// "Channel 1" for the first.
std::string ChannelName(std::size_t channel);

// A value of a channel in the single precision of documents. Throws Failure when it is too large.
float Stored(double value, std::size_t channel);

// A weighted RMS value or peak of a channel, 0 below a floor of 200 dB under its highest sample: what filters leave of
// their decay in digital silence is no level.
double AboveFloor(double weighted, const MeasuredRecording& measured, std::size_t channel);

} // namespace zmxf
