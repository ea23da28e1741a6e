#include "tools/zmxf/measuring/calibrated_recording.h"

#include "tools/zmxf/base/failure.h"

#include <cmath>
#include <fmt/format.h>

namespace zmxf {

std::string ChannelName(std::size_t channel) { return fmt::format("Channel {}", channel + 1); }

float Stored(double value, std::size_t channel)
{
    const auto stored = static_cast<float>(value);
    if (!std::isfinite(stored) && !std::isnan(value))
        throw Failure("the values of {} are too large", ChannelName(channel));
    return stored;
}

bool IsOverloaded(const CalibratedRecording& recording, std::size_t channel)
{
    const bool isGiven = recording.calibrations[channel].hasFullScale;
    const std::optional<double> end = recording.measured.facts.fullScale;
    return (end || isGiven) && recording.measured.levels[channel].peak >= end.value_or(1.0);
}

double AboveFloor(double weighted, const MeasuredRecording& measured, std::size_t channel)
{
    constexpr double floor = 1e-10;
    return weighted < floor * measured.levels[channel].peak ? 0.0 : weighted;
}

} // namespace zmxf
