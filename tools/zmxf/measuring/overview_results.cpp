#include "tools/zmxf/measuring/overview_results.h"

#include "tools/zmxf/base/process_names.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/kinds.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CCompressedAbstract;
using ZelmResult::CCompressedScalar;
using ZelmResult::CCompressedVector;
using ZelmResult::ResultKind;
using ZelmResult::SignalType;

// What comes after the envelope.
const std::array<std::string, CCompressedScalar::kTables - 2> kLevels{"Mean", "RMS", "A weighted RMS",
                                                                      "C weighted RMS"};

// The axis of an overview, and what both forms say of their points.
void Describe(CCompressedAbstract& result, MeasuredDocument& document, std::size_t channel)
{
    const MeasuredRecording& measured = document.recording().measured;
    const Overview& overview = measured.overviews[channel];
    const double frequency = measured.facts.sampleRate / static_cast<double>(overview.samplesPerPoint);
    const auto span = static_cast<float>(static_cast<double>(overview.points.size()) / frequency);
    result.SetMagnitude(document.SignalOf(channel));
    result.SetXMagnitude(document.Share(TimeQuantity()));
    result.SetXMax(span);
    result.SetCompSize(result.GetSize());
    result.SetSamplingFrequency(static_cast<float>(frequency));
    result.SetRealXMax(span);
    const double factor = document.recording().calibrations[channel].FactorToSI();
    const Levels& levels = measured.levels[channel];
    result.SetYMin(Stored(levels.minimum * factor, channel));
    result.SetYMax(Stored(levels.maximum * factor, channel));
}

std::int32_t Size(const Overview& overview) { return static_cast<std::int32_t>(overview.points.size()); }

std::string Formula(const Overview& overview, const char* what)
{
    return fmt::format("{} of every {} samples", what, overview.samplesPerPoint);
}

} // namespace

void AddOverviews(MeasuredDocument& document, std::size_t channel)
{
    const Overview& overview = document.recording().measured.overviews[channel];
    const double factor = document.recording().calibrations[channel].FactorToSI();
    const auto stored = [&](double value) { return Stored(value * factor, channel); };

    auto envelope =
        std::make_unique<CCompressedVector>(ResultKind::kRecordingPreview, Size(overview), SignalType::Compressed);
    auto levels = std::make_unique<CCompressedScalar>(ResultKind::kOverview, Size(overview), SignalType::Compressed);
    std::vector<float> values;
    values.reserve(overview.points.size() * CCompressedScalar::kTables);
    for (std::size_t i = 0; i < overview.points.size(); ++i) {
        const Overview::Point& point = overview.points[i];
        envelope->TabUp()[i] = stored(point.upper);
        envelope->TabDown()[i] = stored(point.lower);
        const double aRms = AboveFloor(point.aRms, document.recording().measured, channel);
        const double cRms = AboveFloor(point.cRms, document.recording().measured, channel);
        for (const double value : {point.upper, point.lower, point.mean, point.rms, aRms, cRms})
            values.push_back(stored(value));
    }
    levels->CopyCompressedScalar(values.data(), static_cast<std::int32_t>(values.size()), 0, false);
    Describe(*envelope, document, channel);
    Describe(*levels, document, channel);
    envelope->SetCompFactor(static_cast<std::int32_t>(std::min<std::int64_t>(overview.samplesPerPoint, INT32_MAX)));
    envelope->SetCurrentDuration(envelope->GetXMax());
    document.Add(
        document.HeaderOf(channel, ResultKind::kRecordingPreview, Formula(overview, "highest and lowest sample")),
        std::move(envelope));
    document.Add(document.HeaderOf(channel, ResultKind::kOverview, OverviewName(kLevels),
                                   Formula(overview, "highest and lowest sample, and levels")),
                 std::move(levels));
}

} // namespace zmxf
