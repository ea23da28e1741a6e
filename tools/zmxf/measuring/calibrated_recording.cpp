#include "tools/zmxf/measuring/calibrated_recording.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"

#include <cmath>
#include <fmt/format.h>

namespace zmxf {

std::string ChannelName(std::size_t channel) { return fmt::format("Channel {}", channel + 1); }

std::string ChannelName(const CalibratedRecording& recording, std::size_t channel)
{
    const std::vector<std::string>& names = recording.channelNames;
    return channel < names.size() && !names[channel].empty() ? names[channel] : ChannelName(channel);
}

std::string StretchText(const RecordingFacts& facts)
{
    if (!facts.framesInFile) return {};
    const auto seconds = [&facts](std::int64_t frame) {
        return NumberText(static_cast<double>(frame) / facts.sampleRate);
    };
    return fmt::format("from {} s to {} s", seconds(facts.firstFrame), seconds(facts.firstFrame + facts.frames));
}

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
