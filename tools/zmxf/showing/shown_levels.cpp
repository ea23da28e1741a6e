#include "tools/zmxf/showing/shown_levels.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::LabelledArray;
using ZelmResult::LabelledForm;
using ZelmResult::LabelledResult;
using Kind = ShownScalar::Kind;

constexpr std::size_t kWithExtremes = 3; // arrays: a level, its maximum, its minimum

bool IsOfLevels(LabelledForm form)
{
    return form == LabelledForm::BroadBand || form == LabelledForm::GlobalLevel || form == LabelledForm::OrderLevels;
}

Kind KindOf(const LabelledArray& level)
{
    constexpr std::array<ZelmResult::wstring_view, 3> numbers{u"skewness", u"kurtosis", u"crest_factor"};
    if (level.name == u"energy") return Kind::Energy;
    return std::find(numbers.begin(), numbers.end(), level.name) != numbers.end() ? Kind::Number : Kind::Signal;
}

// What the level stands for in its dimension: a weighting or an order. Empty without a dimension.
std::string LabelOf(const LabelledResult& labelled, const LabelledArray& level, std::size_t i)
{
    if (level.dimensions.empty()) return {};
    const LabelledArray* coordinate = labelled.Coordinate(level.dimensions.front());
    if (const auto* texts = coordinate->Texts(); texts != nullptr) return Printable((*texts)[i]);
    return NumberText(static_cast<double>((*coordinate->Floats())[i]));
}

ZelmResult::CPonderationUnite WeightingOf(const LabelledArray& level, const std::string& label)
{
    ZelmResult::CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(static_cast<int>(level.weighting));
    if (label.size() == 1 && label >= "A" && label <= "D") weighting.SetPonderationLabelUnite(label.front() - 'A' + 1);
    return weighting;
}

// The level at that place of an array, with those of the two arrays after it.
ShownScalar LevelAt(const LabelledResult& labelled, std::size_t first, std::size_t i)
{
    const LabelledArray& level = labelled.data[first];
    const std::string label = LabelOf(labelled, level, i);
    const auto value = [&](std::size_t array) { return (*labelled.data[first + array].Floats())[i]; };
    return {label.empty() ? Printable(level.title) : fmt::format("{} {}", Printable(level.title), label),
            KindOf(level),
            level.quantity,
            WeightingOf(level, label),
            value(0),
            value(1),
            value(2)};
}

} // namespace

bool ShownScalar::Varies() const
{
    const auto differs = [this](float value) { return value != last && !(std::isnan(value) && std::isnan(last)); };
    return differs(highest) || differs(lowest);
}

std::string ShownScalar::Text(float value, const ColumnText& column, Scale scale) const
{
    if (kind == Kind::Signal) // a document may give a level another quantity
        return quantity == column.quantity() ? column(value, &weighting)
                                             : ValueText(value, quantity, column.precision(), scale, &weighting);
    if (scale == Scale::Decibels) return {};
    if (std::isnan(value)) return Printable(ZelmResult::CUnite::textNotANumber());
    if (kind == Kind::Number) return NumberText(static_cast<double>(value));
    return fmt::format("{} {}", NumberText(static_cast<double>(static_cast<float>(InUnit(value, quantity)))),
                       UnitLabel(quantity));
}

std::vector<ShownScalar> DescribeLevels(const LabelledResult& labelled)
{
    std::vector<ShownScalar> levels;
    if (!IsOfLevels(labelled.form)) return levels;
    // Those along one dimension stand together, by what they stand for.
    std::vector<std::size_t> along;
    const auto addAlong = [&] {
        const std::size_t count = along.empty() ? 0 : labelled.data[along.front()].Size();
        for (std::size_t i = 0; i < count; ++i)
            for (const std::size_t first : along) levels.push_back(LevelAt(labelled, first, i));
        along.clear();
    };
    for (std::size_t first = 0; first < labelled.data.size(); first += kWithExtremes) {
        if (!labelled.data[first].dimensions.empty()) {
            along.push_back(first);
            continue;
        }
        addAlong();
        levels.push_back(LevelAt(labelled, first, 0));
    }
    addAlong();
    return levels;
}

} // namespace zmxf
