#include "tools/zmxf/showing/shown_waterfall.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/charconv.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace zmxf {

namespace {

// A value with the unit that it is written in.
struct Wanted {
    double value = 0.0;
    std::string unit;
};

Wanted Parse(const std::string& text)
{
    Wanted wanted;
    const std::size_t length = ZelmResult::FromChars(text, wanted.value);
    if (length == 0 || !std::isfinite(wanted.value))
        throw Failure("--at {} is no value with a unit, such as 3000rpm", Printable(text));
    wanted.unit = text.substr(length);
    wanted.unit.erase(0, wanted.unit.find_first_not_of(' '));
    return wanted;
}

// The wanted value in SI units, when the reference is shown in its unit.
std::optional<double> ValueFor(const SliceReference& reference, const Wanted& wanted)
{
    const bool hasUnit = reference.quantity && reference.quantity->shown;
    const bool isMeant = wanted.unit.empty()
                             ? reference.isChosen
                             : hasUnit && ZelmResult::ToUtf8(reference.quantity->shown->label) == wanted.unit;
    if (!isMeant) return std::nullopt;
    if (!hasUnit) return wanted.value;
    return (wanted.value - reference.quantity->shown->offset) / reference.quantity->shown->slope;
}

// What a value may be given in.
std::string UnitsOf(const ShownWaterfall& shown)
{
    std::vector<std::string> units;
    for (const SliceReference& reference : shown.references)
        if (std::string unit = UnitLabel(reference.quantity); !unit.empty()) units.push_back(std::move(unit));
    return units.empty() ? std::string() : fmt::format(": it has some in {}", fmt::join(units, ", "));
}

// Throws Failure for a value that lies beyond all of a reference: by more than two steps, as between its values on the
// average, and more than a hundredth of the end.
void CheckReaches(const SliceReference& reference, double target, const std::string& at)
{
    std::vector<float> values = reference.values;
    std::erase_if(values, [](float value) { return std::isnan(value); });
    const auto [least, most] = std::minmax_element(values.begin(), values.end());
    const double span = static_cast<double>(*most) - static_cast<double>(*least);
    const double steps = 2.0 * span / static_cast<double>(std::max<std::size_t>(values.size() - 1, 1));
    const auto isBeyond = [&](float end, double distance) {
        return distance > std::max(steps, 0.01 * std::fabs(static_cast<double>(end)));
    };
    if (!isBeyond(*most, target - static_cast<double>(*most)) &&
        !isBeyond(*least, static_cast<double>(*least) - target))
        return;
    const auto text = [&](float value) {
        return ValueText(value, reference.quantity, reference.precision, Scale::Linear);
    };
    throw Failure("no slice is near {}: {} goes from {} to {}", Printable(at), reference.name, text(*least),
                  text(*most));
}

std::size_t Nearest(const ShownWaterfall& shown, const std::string& at)
{
    const Wanted wanted = Parse(at);
    for (const SliceReference& reference : shown.references) {
        const auto target = ValueFor(reference, wanted);
        if (!target) continue;
        const auto distance = [&](float value) {
            return std::isnan(value) ? std::numeric_limits<double>::infinity()
                                     : std::fabs(static_cast<double>(value) - *target);
        };
        const auto nearest = std::min_element(reference.values.begin(), reference.values.end(),
                                              [&](float a, float b) { return distance(a) < distance(b); });
        if (nearest == reference.values.end() || std::isnan(*nearest)) continue;
        CheckReaches(reference, *target, at);
        return static_cast<std::size_t>(nearest - reference.values.begin());
    }
    throw Failure("the waterfall has no reference for {}{}", Printable(at), UnitsOf(shown));
}

} // namespace

std::size_t ShownWaterfall::Find(const SliceChoice& choice) const
{
    if (!choice.at.empty()) return Nearest(*this, choice.at);
    if (choice.block) {
        const auto found = std::lower_bound(blocks.begin(), blocks.end(), *choice.block);
        if (found == blocks.end() || *found != *choice.block)
            throw Failure("the waterfall has no slice of block {}", *choice.block);
        return static_cast<std::size_t>(found - blocks.begin());
    }
    const std::size_t index = choice.index.value_or(0);
    if (index >= blocks.size())
        throw Failure("the waterfall has no slice {}: it holds {}, counted from 0", index,
                      Counted(blocks.size(), "slice"));
    return index;
}

ShownWaterfall DescribeWaterfall(const ZelmResult::LabelledResult& labelled)
{
    ShownWaterfall shown{*labelled.Coordinate(u"block")->Numbers(), {}};
    for (const ZelmResult::LabelledArray& array : labelled.coordinates)
        if (array.isReference)
            shown.references.push_back({Printable(array.title),
                                        array.quantity,
                                        {array.absolutePrecision, array.relativePrecision},
                                        *array.Floats(),
                                        array.name == labelled.chosenReference});
    return shown;
}

} // namespace zmxf
