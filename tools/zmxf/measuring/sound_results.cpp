#include "tools/zmxf/measuring/sound_results.h"

#include "tools/zmxf/base/process_names.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/level_results.h"

#include <array>
#include <cmath>

namespace zmxf {

namespace {

using ZelmResult::ResultKind;

// Makes stored levels of what was measured of a channel.
class Levelled {
public:
    Levelled(const CalibratedRecording& recording, std::size_t channel)
        : m_measured(&recording.measured), m_channel(channel), m_factor(recording.calibrations[channel].FactorToSI())
    {
    }

    [[nodiscard]] ZelmResult::Type_Level OfPeaks(const IntervalExtremes& peaks) const
    {
        return {Value(peaks.last), Value(peaks.highest), Value(peaks.lowest), 0.0F, 0.0F};
    }
    [[nodiscard]] ZelmResult::Type_Level OfPowers(const IntervalExtremes& powers) const
    {
        return OfPeaks({std::sqrt(powers.last), std::sqrt(powers.highest), std::sqrt(powers.lowest)});
    }

private:
    [[nodiscard]] float Value(double x) const
    {
        return Stored(AboveFloor(x, *m_measured, m_channel) * m_factor, m_channel);
    }

    const MeasuredRecording* m_measured;
    std::size_t m_channel;
    double m_factor;
};

} // namespace

void AddBroadBand(MeasuredDocument& document, std::size_t channel)
{
    const std::int32_t size = ResultKind::Of(ResultKind::kBroadBandLevels).empty.size;
    const SoundLevels& sound = document.recording().measured.sound[channel];
    const Levelled levelled(document.recording(), channel);
    auto result =
        std::make_unique<ZelmResult::CBroadBand>(ResultKind::kBroadBandLevels, size, ZelmResult::SignalType::Real);
    result->SetShortLpk(levelled.OfPeaks(sound.cPeak));
    const std::array<std::string, ZelmResult::CBroadBand::kTriples> weightings{"A", "C", "Z"};
    std::int32_t i = 0;
    for (const EquivalentLevels* levels : {&sound.a, &sound.c, &sound.z}) {
        result->SetInstantLeq(i, levelled.OfPowers(levels->instants));
        result->SetShortLeq(i, levelled.OfPowers(levels->shorts));
        result->SetLeq(i, levelled.OfPowers({levels->whole, levels->whole, levels->whole}));
        ++i;
    }
    result->SetMagnitude(document.SignalOf(channel));
    document.Add(
        document.HeaderOf(
            channel, ResultKind::kBroadBandLevels, BroadBandName(weightings),
            "Leq of the whole, mean removed; short Leq of 1 s, instant Leq of 125 ms, short "
            "Lpk of 1 s: C weighted peak of a digital filter, within 0.2 dB of an analog one; each with its last, "
            "highest and lowest value; 0 from 200 dB below the highest sample on"),
        std::move(result));
}

} // namespace zmxf
