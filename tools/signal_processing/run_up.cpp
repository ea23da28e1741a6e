#include "tools/signal_processing/run_up.h"

#include <fmt/format.h>

namespace zmxf {

namespace {

void Count(const TachoSpeed& speed, SpeedTally& tally)
{
    auto* const count = [&]() -> std::size_t* {
        switch (speed.flaw) {
        case SpeedFlaw::NoPulses: return &tally.noPulses;
        case SpeedFlaw::Irregular: return &tally.irregular;
        case SpeedFlaw::TooFewSamples: return &tally.tooFewSamples;
        case SpeedFlaw::None: break;
        }
        if (!speed.pulsesPerSample) return &tally.outside;
        return speed.isBridged ? &tally.bridged : nullptr;
    }();
    if (count != nullptr) ++*count;
}

} // namespace

void CutIntoSlices(RunUp& runUp, const TachoPulses& pulses, std::int64_t frames, double sampleRate)
{
    const auto size = static_cast<std::int64_t>(runUp.blockSize);
    const double half = static_cast<double>(runUp.blockSize) / 2.0;
    for (std::int64_t first = 0; size > 0 && first + size <= frames; first += size / 2) {
        const double middle = static_cast<double>(first) + half;
        const TachoSpeed speed = SpeedAround(pulses, runUp.pulses, middle, half);
        if (speed.pulsesPerSample)
            runUp.slices.push_back({first, middle / sampleRate, *speed.pulsesPerSample / runUp.pulses * sampleRate});
        Count(speed, runUp.tally);
    }
}

std::string WhyNoTacho(const RunUp& runUp, const TachoPulses& pulses)
{
    const SpeedTally& tally = runUp.tally;
    const std::string count = fmt::format("{} pulse{}", pulses.size(), pulses.size() == 1 ? "" : "s");
    if (tally.tooFewSamples > runUp.slices.size())
        return fmt::format(
            "its {} come or go too fast for the sample rate, which would miss some: a tacho needs pulses "
            "that last two samples, four samples apart",
            count);
    if (tally.irregular > runUp.slices.size())
        return fmt::format("the intervals between its {} follow no speed", count);
    if (runUp.slices.empty())
        return fmt::format("it has {}, which give no block of {} samples a speed", count, runUp.blockSize);
    return {};
}

} // namespace zmxf
