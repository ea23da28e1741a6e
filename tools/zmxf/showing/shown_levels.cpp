#include "tools/zmxf/showing/shown_levels.h"

#include "tools/zmxf/base/process_names.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/results/level_results.h"

#include <algorithm>
#include <cctype>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CBroadBand;
using ZelmResult::CGlobalLevel;
using ZelmResult::CSuiviOrdre;
using Kind = ShownScalar::Kind;

ZelmResult::CPonderationUnite WeightingOf(const std::string& name)
{
    ZelmResult::CPonderationUnite weighting;
    if (name.size() == 1 && name >= "A" && name <= "D") weighting.SetPonderationLabelUnite(name.front() - 'A' + 1);
    return weighting;
}

std::vector<ShownScalar> LevelsOf(const CBroadBand& result, const std::string& caption)
{
    std::vector<ShownScalar> levels{{"Short Lpk", &result.GetShortLpk()}};
    const auto titles = WeightingTitles(caption, CBroadBand::kTriples);
    const bool isNamed = titles.front() != "1";
    if (isNamed) { // by a program whose peaks are C weighted
        levels.front().name += " C";
        levels.front().weighting = WeightingOf("C");
    }
    for (std::int32_t i = 0; i < CBroadBand::kTriples; ++i) {
        const std::string& title = titles[static_cast<std::size_t>(i)];
        const auto weighting = WeightingOf(title);
        levels.push_back({fmt::format("Leq {}", title), &result.GetLeq(i), Kind::Signal, weighting});
        levels.push_back({fmt::format("Short Leq {}", title), &result.GetShortLeq(i), Kind::Signal, weighting});
        levels.push_back({fmt::format("Instant Leq {}", title), &result.GetInstantLeq(i), Kind::Signal, weighting});
    }
    return levels;
}

std::vector<ShownScalar> LevelsOf(const CGlobalLevel& result)
{
    const auto level = [&result](const char* name, CGlobalLevel::Statistic statistic, Kind kind = Kind::Signal) {
        return ShownScalar{name, &result.GetLevel(statistic), kind};
    };
    return {level("DC", CGlobalLevel::DC),
            level("Maximum", CGlobalLevel::Max),
            level("Minimum", CGlobalLevel::Min),
            level("RMS", CGlobalLevel::RMS),
            level("Energy", CGlobalLevel::Energy, Kind::Energy),
            level("Skewness", CGlobalLevel::Skew, Kind::Number),
            level("Kurtosis", CGlobalLevel::Kurtosis, Kind::Number),
            level("Peak", CGlobalLevel::Peak),
            level("Peak to peak", CGlobalLevel::PeakPeak),
            level("Crest factor", CGlobalLevel::CrestFactor, Kind::Number)};
}

std::vector<ShownScalar> LevelsOf(const CSuiviOrdre& result)
{
    constexpr std::int32_t orders = 8;
    std::vector<ShownScalar> levels;
    levels.reserve(orders + 1);
    for (std::int32_t i = 0; i < orders; ++i) levels.push_back({fmt::format("Order {}", i + 1), &result.GetOrder(i)});
    levels.push_back({"Overall", &result.GetOverall()});
    return levels;
}

std::string EnergyUnit(const ZelmResult::CGrandeur* quantity)
{
    const std::string unit = UnitLabel(quantity);
    const bool isWord = std::all_of(unit.begin(), unit.end(), [](unsigned char c) { return std::isalpha(c) != 0; });
    if (unit.empty()) return " s";
    return isWord ? fmt::format(" {}\u00B2 s", unit) : fmt::format(" ({})\u00B2 s", unit);
}

} // namespace

bool ShownScalar::Varies() const
{
    const auto differs = [this](float value) {
        return value != level->lastValue() && !(std::isnan(value) && std::isnan(level->lastValue()));
    };
    return differs(level->maxValue()) || differs(level->minValue());
}

const ZelmResult::CGrandeur* ShownScalar::quantity() const
{
    return kind == Kind::Signal ? level->GetMagnitude() : nullptr;
}

float ShownScalar::EnergyInUnit(float si) const
{
    const double perSI = InUnit(1.0F, level->GetMagnitude()) - InUnit(0.0F, level->GetMagnitude());
    return static_cast<float>(static_cast<double>(si) * perSI * perSI);
}

std::string ShownScalar::Text(float value, const ColumnText& column, Scale scale) const
{
    const bool isOfColumn = quantity() == column.quantity(); // a document may give a level another one
    if (kind == Kind::Signal)
        return isOfColumn ? column(value, &weighting)
                          : ValueText(value, quantity(), column.precision(), scale, &weighting);
    if (scale == Scale::Decibels) return {};
    if (std::isnan(value)) return Printable(ZelmResult::CUnite::textNotANumber());
    if (kind == Kind::Number) return NumberText(static_cast<double>(value));
    return fmt::format("{}{}", NumberText(static_cast<double>(EnergyInUnit(value))), EnergyUnit(level->GetMagnitude()));
}

std::vector<ShownScalar> DescribeLevels(const ZelmResult::CResult& result, const std::string& caption)
{
    if (const auto* broadBand = dynamic_cast<const CBroadBand*>(&result)) return LevelsOf(*broadBand, caption);
    if (const auto* global = dynamic_cast<const CGlobalLevel*>(&result)) return LevelsOf(*global);
    if (const auto* orders = dynamic_cast<const CSuiviOrdre*>(&result)) return LevelsOf(*orders);
    return {};
}

} // namespace zmxf
