#include "tools/zmxf/showing/value_text.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

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

constexpr ZelmResult::wstring_view kEarth = u"g"; // or grams

bool IsNear(double a, double b) { return std::fabs(a - b) <= 1e-3 * std::fabs(b); }

// Whether "g" means the acceleration of the Earth there.
bool IsEarth(const CGrandeur* quantity, const CUnite& unit)
{
    const ZelmResult::EquationDim& dim = *quantity->GetEqDim().GetEqDim();
    constexpr std::uint8_t none = 128;
    const bool isAcceleration = dim.Meters == none + 2 && dim.Seconds == none - 4 && dim.Kilograms == none;
    return isAcceleration && IsNear(1.0 / static_cast<double>(unit.GetCoeffA()), FindDerived(u"g")->inBase);
}

// The terms in which a unit is derived, when its slope is that of its label.
const DerivedUnit* DerivedFrom(const CGrandeur* quantity, const CUnite& unit)
{
    const DerivedUnit* derived = FindDerived(unit.GetLabelLinUnite());
    if (derived == nullptr || !IsNear(1.0 / static_cast<double>(unit.GetCoeffA()), derived->inBase)) return nullptr;
    return derived->label != kEarth || IsEarth(quantity, unit) ? derived : nullptr;
}

const CUnite* ShownUnit(const CGrandeur* quantity)
{
    return quantity != nullptr ? quantity->GetUniteCourante() : nullptr;
}

// A prefix has a meaning only before a label, and not before a bracket or another prefix.
bool TakesPrefix(const CGrandeur* quantity, const CUnite& unit)
{
    const ZelmResult::wstring& label = unit.GetLabelLinUnite();
    if (label.empty() || label.front() == u'(') return false;
    return label == kEarth ? !IsEarth(quantity, unit) : FindDerived(label) == nullptr;
}

std::int16_t NotationFor(const CGrandeur* quantity, const CUnite& unit)
{
    return TakesPrefix(quantity, unit) ? CUnite::kNotationOfUnit : kFixedNotation;
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

// unit is the one that the quantity is shown in, with prefixes of its own.
std::string TextIn(CUnite unit, float si, const CGrandeur* quantity, Precision precision, Scale scale,
                   const CPonderationUnite* weighting)
{
    ZelmResult::wstring digits;
    ZelmResult::wstring prefix;
    ZelmResult::wstring label;
    if (HasNoLevel(si, quantity, scale)) return Printable(CUnite::textNotANumber());
    // The library takes the offset of a unit as part of a precision too, which would hide all digits.
    const bool hasOffset = scale == Scale::Linear && unit.GetCoeffB() != 0.0F;
    const std::int16_t notation = NotationFor(quantity, unit);
    if (hasOffset)
        unit.ScalaireCourantToString(digits, static_cast<float>(InUnit(si, quantity)), 0.0F, precision.relative, prefix,
                                     label, false, weighting, CUnite::kRoundNearest, notation);
    else
        unit.ScalaireSIToString(digits, si, precision.absolute, precision.relative, prefix, label,
                                scale == Scale::Decibels, weighting, CUnite::kRoundNearest, notation);
    return Joined(digits, prefix, label);
}

// The power of ten of the prefix that suits a value.
std::int16_t PrefixFor(double value)
{
    if (!(value > 0.0) || std::isinf(value) || (value >= 0.1 && value < 1e5)) return 0;
    return static_cast<std::int16_t>(3.0 * std::floor(std::log10(value) / 3.0));
}

} // namespace

std::string ValueText(float si, const CGrandeur* quantity, Precision precision, Scale scale,
                      const CPonderationUnite* weighting)
{
    const CUnite* unit = ShownUnit(quantity);
    if (unit == nullptr) return NumberText(static_cast<double>(si));
    return TextIn(*unit, si, quantity, precision, scale, weighting);
}

ColumnText::ColumnText(std::span<const float> values, const CGrandeur* quantity, Precision precision, Scale scale)
    : m_quantity(quantity), m_precision(precision), m_scale(scale)
{
    const CUnite* unit = ShownUnit(quantity);
    if (unit == nullptr) return;
    m_unit = *unit;
    double largest = 0.0;
    for (const float value : values)
        if (std::isfinite(value)) largest = std::max(largest, std::fabs(InUnit(value, quantity)));
    const std::int16_t power = PrefixFor(largest);
    m_unit->SetLowPrefix(power);
    m_unit->SetHighPrefix(power);
}

std::string ColumnText::operator()(float si, const CPonderationUnite* weighting) const
{
    if (!m_unit) return NumberText(static_cast<double>(si));
    return TextIn(*m_unit, si, m_quantity, m_precision, m_scale, weighting);
}

std::string LevelText(float si, const CGrandeur* quantity, Precision precision, const CPonderationUnite* weighting)
{
    const std::string linear = ValueText(si, quantity, precision, Scale::Linear, weighting);
    return InDecibels(si, quantity) ? fmt::format("{} ({})", linear, DecibelText(si, quantity, weighting)) : linear;
}

std::string DecibelText(float si, const CGrandeur* quantity, const CPonderationUnite* weighting)
{
    if (!HasDecibels(quantity)) return {};
    const std::string level = ValueText(si, quantity, {}, Scale::Decibels, weighting);
    return InDecibels(si, quantity) ? fmt::format("{} re {}", level, DecibelReference(quantity)) : level;
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
    if (const DerivedUnit* derived = DerivedFrom(quantity, unit); derived != nullptr) {
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
