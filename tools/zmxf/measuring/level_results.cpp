#include "tools/zmxf/measuring/level_results.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <cfloat>
#include <fmt/format.h>
#include <limits>

namespace zmxf {

namespace {

using ZelmResult::CScalar;
using ZelmResult::FromUtf8;
using ZelmResult::ResultKind;

enum class Measure { Signal, AboutMean, Ratio };

// The levels as results.
struct LevelKind {
    std::uint32_t processType;
    double Levels::*value;
    Measure measure;
    const char* formula;

    [[nodiscard]] const char* Name() const { return ResultKind::Of(processType).name; }
};

constexpr std::array kLevelKinds = std::to_array<LevelKind>({
    {ResultKind::kMean, &Levels::mean, Measure::Signal, "mean(x)"},
    {ResultKind::kRms, &Levels::rms, Measure::Signal, "sqrt(mean(x^2))"},
    {ResultKind::kAcRms, &Levels::acRms, Measure::AboutMean, "sqrt(mean((x - mean)^2))"},
    {ResultKind::kPeak, &Levels::peak, Measure::Signal, "max|x|"},
    {ResultKind::kAcPeak, &Levels::acPeak, Measure::AboutMean, "max|x - mean|"},
    {ResultKind::kCrestFactor, &Levels::crest, Measure::Ratio, "peak / RMS"},
    {ResultKind::kKurtosis, &Levels::kurtosis, Measure::Ratio,
     "mean((x - mean)^4) / mean((x - mean)^2)^2, not reduced by 3: Gaussian noise gives 3"},
});

bool IsOfSignal(const LevelKind& kind) { return kind.measure != Measure::Ratio; }

ZelmResult::CGrandeur* QuantityOf(MeasuredDocument& document, const LevelKind& kind, std::size_t channel)
{
    return IsOfSignal(kind) ? document.SignalOf(channel) : document.Share(NumberQuantity(FromUtf8(kind.Name())));
}

// levels are in SI units.
std::unique_ptr<CScalar> MakeResult(const LevelKind& kind, const Levels& levels, std::size_t channel)
{
    auto result = std::make_unique<CScalar>(kind.processType, 1, ZelmResult::SignalType::Real, false);
    const double value = levels.*kind.value;
    const double offset = kind.measure == Measure::AboutMean ? levels.mean : 0.0;
    result->lastValue(Stored(value, channel));
    // A level of the signal has the extremes of the samples, a ratio has but its own value.
    result->maxValue(Stored(IsOfSignal(kind) ? levels.maximum - offset : value, channel));
    result->minValue(Stored(IsOfSignal(kind) ? levels.minimum - offset : value, channel));
    return result;
}

} // namespace

void AddLevels(MeasuredDocument& document, std::size_t channel)
{
    const CalibratedRecording& recording = document.recording();
    const Levels levels = recording.measured.levels[channel].Scaled(recording.calibrations[channel].FactorToSI());
    for (const LevelKind& kind : kLevelKinds) {
        auto result = MakeResult(kind, levels, channel);
        result->SetMagnitude(QuantityOf(document, kind, channel));
        document.Add(document.HeaderOf(channel, kind.processType, fmt::format("{} = {}", kind.Name(), kind.formula)),
                     std::move(result));
    }
}

void AddGlobalLevel(MeasuredDocument& document, std::size_t channel)
{
    using Level = ZelmResult::CGlobalLevel;
    const CalibratedRecording& recording = document.recording();
    const RecordingFacts& facts = recording.measured.facts;
    const Levels levels = recording.measured.levels[channel].Scaled(recording.calibrations[channel].FactorToSI());
    auto result = std::make_unique<Level>(ResultKind::kGlobalLevel, 1, ZelmResult::SignalType::Real);
    const auto set = [&](Level::Statistic statistic, double value) {
        const float stored = Stored(value, channel);
        result->SetStatistic(statistic, {stored, stored, stored, 0.0F, 0.0F});
    };
    set(Level::DC, levels.mean);
    set(Level::Max, levels.maximum);
    set(Level::Min, levels.minimum);
    set(Level::RMS, levels.rms);
    const double energy = levels.rms * levels.rms * static_cast<double>(facts.frames) / facts.sampleRate;
    // The square of a level may leave the range of what is stored, where the level itself doesn't.
    set(Level::Energy, energy <= FLT_MAX ? energy : std::numeric_limits<double>::quiet_NaN());
    set(Level::Skew, levels.skewness);
    set(Level::Kurtosis, levels.kurtosis);
    set(Level::Peak, levels.peak);
    set(Level::PeakPeak, levels.maximum - levels.minimum);
    set(Level::CrestFactor, levels.crest);
    result->SetMagnitude(document.SignalOf(channel));
    document.Add(document.HeaderOf(channel, ResultKind::kGlobalLevel,
                                   "energy = mean(x^2) times the length in s; skewness = mean(y^3) / mean(y^2)^1.5, "
                                   "kurtosis = mean(y^4) / mean(y^2)^2, y = x - mean"),
                 std::move(result));
}

std::string LevelTable(const CalibratedRecording& recording)
{
    using Align = TextTable::Align;
    std::vector<Align> columns(kLevelKinds.size() + 2, Align::Right);
    columns[0] = columns[1] = Align::Left;
    TextTable table(columns);
    std::vector<std::string> names{"", "Unit"};
    for (const LevelKind& kind : kLevelKinds) names.emplace_back(kind.Name());
    table.AddRow(names);
    for (std::size_t channel = 0; channel < recording.calibrations.size(); ++channel) {
        const Calibration& calibration = recording.calibrations[channel];
        const Levels levels = recording.measured.levels[channel].Scaled(calibration.fullScale);
        std::vector<std::string> row{ChannelName(recording, channel), calibration.IsKnown() ? calibration.unit : "FS"};
        for (const LevelKind& kind : kLevelKinds) row.push_back(NumberText(levels.*kind.value));
        table.AddRow(row);
    }
    return table.Text("  ") +
           "Crest factor and kurtosis have no unit. The kurtosis is not reduced by 3: Gaussian noise gives 3.\n";
}

} // namespace zmxf
