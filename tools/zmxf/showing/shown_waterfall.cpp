#include "tools/zmxf/showing/shown_waterfall.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <limits>
#include <unordered_map>

namespace zmxf {

namespace {

using ZelmResult::CRegVector;
using ZelmResult::CUnite;
using ZelmResult::CVectorRef;
using ZelmResult::CWaterfall;
using ZelmResult::CWaterfallRef;

// Blocks that occur twice have one slice.
std::vector<std::int32_t> BlocksOf(CWaterfall& waterfall)
{
    std::vector<std::int32_t> blocks;
    for (std::int32_t raw = 0; raw < waterfall.GetFilled(); ++raw) {
        const std::int32_t block = waterfall.GetBlocNumber(raw);
        if ((blocks.empty() || block > blocks.back()) && waterfall.GetTabData(0, block).HasSlice())
            blocks.push_back(block);
    }
    return blocks;
}

SliceReference ReferenceAlong(CVectorRef& reference, const std::vector<std::int32_t>& blocks)
{
    SliceReference along{Printable(reference.name()),
                         reference.GetMagnitude(),
                         {reference.GetAbsPrecisionY(), reference.GetRelPrecisionY()},
                         std::vector<float>(blocks.size(), std::numeric_limits<float>::quiet_NaN())};
    const auto* ofWaterfall = dynamic_cast<const CWaterfallRef*>(&reference);
    if (ofWaterfall == nullptr || ofWaterfall->GetBlockNumberPtr() == nullptr) return along;
    std::vector<float> values(static_cast<std::size_t>(std::max(reference.GetSize(), 0)));
    reference.GetRefValues(values.data(), static_cast<std::int32_t>(values.size()));
    std::unordered_map<std::int32_t, float> byBlock;
    for (std::size_t i = 0; i < values.size(); ++i) byBlock.try_emplace(ofWaterfall->GetBlockNumberPtr()[i], values[i]);
    for (std::size_t i = 0; i < blocks.size(); ++i)
        if (const auto found = byBlock.find(blocks[i]); found != byBlock.end()) along.values[i] = found->second;
    return along;
}

// A value with the unit that it is written in.
struct Wanted {
    double value = 0.0;
    std::string unit;
};

Wanted Parse(const std::string& text)
{
    Wanted wanted;
    const char* end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, wanted.value);
    if (error != std::errc() || !std::isfinite(wanted.value))
        throw Failure("--at {} is no value with a unit, such as 3000rpm", Printable(text));
    wanted.unit.assign(rest, end);
    wanted.unit.erase(0, wanted.unit.find_first_not_of(' '));
    return wanted;
}

// The wanted value in SI units, when the reference is shown in its unit.
std::optional<double> ValueFor(const SliceReference& reference, const Wanted& wanted)
{
    const CUnite* unit = reference.quantity != nullptr ? reference.quantity->GetUniteCourante() : nullptr;
    const bool isMeant = wanted.unit.empty()
                             ? reference.isChosen
                             : unit != nullptr && ZelmResult::ToUtf8(unit->GetLabelLinUnite()) == wanted.unit;
    if (!isMeant) return std::nullopt;
    if (unit == nullptr) return wanted.value;
    return (wanted.value - static_cast<double>(unit->GetCoeffB())) / static_cast<double>(unit->GetCoeffA());
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

std::unique_ptr<CRegVector> ShownWaterfall::Slice(std::size_t index) const
{
    const std::int32_t slot = blocks[index];
    auto slice =
        std::make_unique<CRegVector>(waterfall->GetProcessType(), waterfall->GetSize(), waterfall->GetXnOctave(),
                                     waterfall->GetComplexType(), waterfall->GetWtfProcessType(), true);
    ZelmResult::CVector* shown = waterfall->GetTempVector(slot);
    const auto copy = [&](float* target, auto values) {
        if (target != nullptr) (shown->*values)(target, waterfall->GetSize());
    };
    using Values = void (ZelmResult::CVector::*)(float*, std::int32_t);
    copy(slice->GetRealValue(), static_cast<Values>(&ZelmResult::CVector::GetRealValues));
    copy(slice->GetComplexType() == ZelmResult::SignalType::Complex ? slice->GetImValue() : nullptr,
         static_cast<Values>(&ZelmResult::CVector::GetImValues));
    if (const auto* bands = dynamic_cast<const CRegVector*>(shown); bands != nullptr) {
        if (slice->GetRealValueMin() != nullptr) bands->GetRealValuesMin(slice->GetRealValueMin(), slice->GetSize());
        if (slice->GetRealValueMax() != nullptr) bands->GetRealValuesMax(slice->GetRealValueMax(), slice->GetSize());
        for (const auto target : {ZelmResult::AvgOctaveTarget::Averaged, ZelmResult::AvgOctaveTarget::Minimum,
                                  ZelmResult::AvgOctaveTarget::Maximum}) {
            slice->SetGlobLevel(target, bands->GetGlobLevel(target));
            slice->SetGlobPondLevel(target, bands->GetGlobPondLevel(target));
        }
        slice->SetPonderationGlob(bands->GetPonderationGlob());
    }
    slice->SetMagnitude(waterfall->GetMagnitude());
    slice->SetXMagnitude(waterfall->GetXMagnitude());
    slice->SetXMin(waterfall->GetXMin());
    slice->SetXMax(waterfall->GetXMax());
    slice->SetXnOctave(waterfall->GetXnOctave());
    slice->SetAbsPrecisionX(waterfall->GetAbsPrecisionX());
    slice->SetRelPrecisionX(waterfall->GetRelPrecisionX());
    slice->SetAbsPrecisionY(waterfall->GetAbsPrecisionY());
    slice->SetRelPrecisionY(waterfall->GetRelPrecisionY());
    return slice;
}

std::optional<ShownWaterfall> DescribeWaterfall(ZelmResult::CResult& result)
{
    auto* waterfall = dynamic_cast<CWaterfall*>(&result);
    if (waterfall == nullptr) return std::nullopt;
    ShownWaterfall shown{waterfall, BlocksOf(*waterfall), {}};
    const auto* references = waterfall->GetReferencesList();
    if (references == nullptr) return shown;
    for (CVectorRef* reference : *references) {
        shown.references.push_back(ReferenceAlong(*reference, shown.blocks));
        shown.references.back().isChosen = reference == waterfall->GetChosenReference();
    }
    return shown;
}

} // namespace zmxf
