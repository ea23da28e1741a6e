#include "tools/zmxf/value_text.h"

#include "tools/zmxf/text.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace zmxf {

namespace {

using ZelmResult::CGrandeur;
using ZelmResult::CPonderationUnite;
using ZelmResult::CUnite;

constexpr std::int16_t kFixedNotation = 0;
constexpr float kThreeDigits = 1e-3F;
constexpr std::size_t kLongestLabel = 40;

// Units that have a prefix already, or take none, in terms of one that takes any.
struct DerivedUnit {
    const char16_t* label;
    const char16_t* base;
    double inBase;
};

constexpr std::array kDerivedUnits = std::to_array<DerivedUnit>({
    {u"mm", u"m", 1e-3},
    {u"mm/s", u"m/s", 1e-3},
    {u"mm/s2", u"m/s2", 1e-3},
    {u"\u00B5m", u"m", 1e-6},
    {u"um", u"m", 1e-6},
    {u"kN", u"N", 1e3},
    {u"kPa", u"Pa", 1e3},
    {u"kHz", u"Hz", 1e3},
    {u"mV", u"V", 1e-3},
    {u"g", u"m/s2", 9.80665},
    {u"rpm", u"Hz", 1.0 / 60.0},
});

const DerivedUnit* FindDerived(const ZelmResult::wstring& label)
{
    const auto* const found = std::find_if(kDerivedUnits.begin(), kDerivedUnits.end(),
                                           [&label](const DerivedUnit& unit) { return label == unit.label; });
    return found == kDerivedUnits.end() ? nullptr : found;
}

const CUnite* ShownUnit(const CGrandeur* quantity)
{
    return quantity != nullptr ? quantity->GetUniteCourante() : nullptr;
}

// A prefix says something in front of a label only, and little in front of a bracket or of another prefix.
std::int16_t NotationFor(const CUnite& unit)
{
    const ZelmResult::wstring& label = unit.GetLabelLinUnite();
    const bool takesPrefix = !label.empty() && label.front() != u'(' && FindDerived(label) == nullptr;
    return takesPrefix ? CUnite::kNotationOfUnit : kFixedNotation;
}

// A document may hold labels of any length.
std::string Joined(ZelmResult::wstring digits, const ZelmResult::wstring& prefix, ZelmResult::wstring label)
{
    if (label.size() > kLongestLabel) {
        label.resize(kLongestLabel);
        label += u"\u2026";
    }
    CGrandeur::concat_SI_string(digits, prefix, label, !label.empty());
    return Printable(digits);
}

// What has no level prints as such, whatever the library's number for it.
bool HasNoLevel(float si, const CGrandeur* quantity, Scale scale)
{
    return scale == Scale::Decibels && !InDecibels(si, quantity);
}

} // namespace

std::string ValueText(float si, const CGrandeur* quantity, Precision precision, Scale scale,
                      const CPonderationUnite* weighting)
{
    const CUnite* unit = ShownUnit(quantity);
    if (unit == nullptr) return NumberText(static_cast<double>(si));
    ZelmResult::wstring digits;
    ZelmResult::wstring prefix;
    ZelmResult::wstring label;
    if (HasNoLevel(si, quantity, scale)) return Printable(CUnite::textNotANumber());
    // The library takes the offset of a unit as part of a precision too, which would hide all digits.
    const bool hasOffset = scale == Scale::Linear && unit->GetCoeffB() != 0.0F;
    if (hasOffset)
        quantity->courant_to_string(digits, static_cast<float>(InUnit(si, quantity)), 0.0F, precision.relative, prefix,
                                    label, false, weighting, NotationFor(*unit));
    else
        quantity->SI_to_string(digits, si, precision.absolute, precision.relative, prefix, label,
                               scale == Scale::Decibels, weighting, CUnite::kRoundNearest, NotationFor(*unit));
    return Joined(digits, prefix, label);
}

std::string LevelText(float si, const CGrandeur* quantity, Precision precision, const CPonderationUnite* weighting)
{
    const std::string linear = ValueText(si, quantity, precision, Scale::Linear, weighting);
    return InDecibels(si, quantity) ? linear + " (" + DecibelText(si, quantity, weighting) + ')' : linear;
}

std::string DecibelText(float si, const CGrandeur* quantity, const CPonderationUnite* weighting)
{
    if (!HasDecibels(quantity)) return {};
    const std::string level = ValueText(si, quantity, {}, Scale::Decibels, weighting);
    return InDecibels(si, quantity) ? level + " re " + DecibelReference(quantity) : level;
}

std::string UnitLabel(const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    return unit != nullptr ? Printable(unit->GetLabelLinUnite()) : std::string();
}

bool HasDecibels(const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    return unit != nullptr && !unit->GetLabelLinUnite().empty() && unit->GetRef0dB() > 0.0F && unit->GetCoefdB() > 0.0F;
}

std::string DecibelReference(const CGrandeur* quantity)
{
    if (!HasDecibels(quantity)) return {};
    CUnite unit = *ShownUnit(quantity);
    // References lie far below what is measured, and outside of the prefixes that measured values get.
    unit.SetLowPrefix(-24);
    unit.SetHighPrefix(24);
    ZelmResult::wstring digits;
    ZelmResult::wstring prefix;
    ZelmResult::wstring label;
    auto reference = static_cast<double>(unit.GetRef0dB());
    if (const DerivedUnit* derived = FindDerived(unit.GetLabelLinUnite()); derived != nullptr) {
        reference *= derived->inBase;
        unit.SetLabelLinUnite(derived->base);
    }
    unit.ScalaireCourantToString(digits, static_cast<float>(reference), 0.0F, kThreeDigits, prefix, label, false,
                                 nullptr);
    return Joined(digits, prefix, label);
}

double InUnit(float si, const CGrandeur* quantity)
{
    const CUnite* unit = ShownUnit(quantity);
    if (unit == nullptr) return static_cast<double>(si);
    return static_cast<double>(si) * static_cast<double>(unit->GetCoeffA()) + static_cast<double>(unit->GetCoeffB());
}

std::optional<double> InDecibels(float si, const CGrandeur* quantity)
{
    if (!HasDecibels(quantity)) return std::nullopt;
    const CUnite& unit = *ShownUnit(quantity);
    const double ratio = InUnit(si, quantity) / static_cast<double>(unit.GetRef0dB());
    if (!(ratio > 0.0) || std::isinf(ratio)) return std::nullopt;
    return static_cast<double>(unit.GetCoefdB()) * std::log10(ratio);
}

} // namespace zmxf
