#include "tools/zmxf/showing/value_text.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/quantities/grandeur.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CPonderationUnite;
using ZelmResult::CUnite;
using ZelmResult::LabelledQuantity;

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
bool IsEarth(const LabelledQuantity& quantity)
{
    using enum LabelledQuantity::BaseUnit;
    const auto& exponents = quantity.exponents;
    const bool isAcceleration = exponents[Meter] == 1.0 && exponents[Second] == -2.0 && exponents[Kilogram] == 0.0;
    return isAcceleration && IsNear(1.0 / quantity.shown->slope, FindDerived(u"g")->inBase);
}

// The terms in which a unit is derived, when its slope is that of its label.
const DerivedUnit* DerivedFrom(const LabelledQuantity& quantity)
{
    const DerivedUnit* derived = FindDerived(quantity.shown->label);
    if (derived == nullptr || !IsNear(1.0 / quantity.shown->slope, derived->inBase)) return nullptr;
    return derived->label != kEarth || IsEarth(quantity) ? derived : nullptr;
}

// As a document's units are after a load.
std::optional<CUnite> ShownUnit(const Quantity& quantity)
{
    if (!quantity || !quantity->shown) return std::nullopt;
    CUnite unit;
    unit.SetLabelLinUnite(quantity->shown->label);
    unit.SetCoeffA(static_cast<float>(quantity->shown->slope));
    unit.SetCoeffB(static_cast<float>(quantity->shown->offset));
    unit.SetRef0dB(quantity->shown->decibelReference);
    unit.SetCoefdB(quantity->shown->decibelFactor);
    return unit;
}

// A prefix has a meaning only before a label, and not before a bracket or another prefix.
bool TakesPrefix(const LabelledQuantity& quantity)
{
    const ZelmResult::wstring& label = quantity.shown->label;
    if (label.empty() || label.front() == u'(') return false;
    return label == kEarth ? !IsEarth(quantity) : FindDerived(label) == nullptr;
}

std::int16_t NotationFor(const LabelledQuantity& quantity)
{
    return TakesPrefix(quantity) ? CUnite::kNotationOfUnit : kFixedNotation;
}

// A document may hold labels of any length.
std::string Joined(ZelmResult::wstring digits, const ZelmResult::wstring& prefix, ZelmResult::wstring label)
{
    if (label.size() > kLongestLabel) {
        label.resize(kLongestLabel);
        label += u"\u2026";
    }
    ZelmResult::CGrandeur::concat_SI_string(digits, prefix, label, !label.empty());
    return Printable(digits);
}

// What has no level prints as such, whatever the library's number for it.
bool HasNoLevel(float si, const Quantity& quantity, Scale scale)
{
    return scale == Scale::Decibels && !InDecibels(si, quantity);
}

// unit is the one that the quantity is shown in, with prefixes of its own.
std::string TextIn(CUnite unit, float si, const Quantity& quantity, Precision precision, Scale scale,
                   const CPonderationUnite* weighting)
{
    ZelmResult::wstring digits;
    ZelmResult::wstring prefix;
    ZelmResult::wstring label;
    if (HasNoLevel(si, quantity, scale)) return Printable(CUnite::textNotANumber());
    // The library takes the offset of a unit as part of a precision too, which would hide all digits.
    const bool hasOffset = scale == Scale::Linear && unit.GetCoeffB() != 0.0F;
    const std::int16_t notation = NotationFor(*quantity);
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

std::string ValueText(float si, const Quantity& quantity, Precision precision, Scale scale,
                      const CPonderationUnite* weighting)
{
    const auto unit = ShownUnit(quantity);
    if (!unit) return NumberText(static_cast<double>(si));
    return TextIn(*unit, si, quantity, precision, scale, weighting);
}

ColumnText::ColumnText(std::span<const float> values, Quantity quantity, Precision precision, Scale scale)
    : m_quantity(std::move(quantity)), m_precision(precision), m_scale(scale), m_unit(ShownUnit(m_quantity))
{
    if (!m_unit) return;
    double largest = 0.0;
    for (const float value : values)
        if (std::isfinite(value)) largest = std::max(largest, std::fabs(InUnit(value, m_quantity)));
    const std::int16_t power = PrefixFor(largest);
    m_unit->SetLowPrefix(power);
    m_unit->SetHighPrefix(power);
}

std::string ColumnText::operator()(float si, const CPonderationUnite* weighting) const
{
    if (!m_unit) return NumberText(static_cast<double>(si));
    return TextIn(*m_unit, si, m_quantity, m_precision, m_scale, weighting);
}

std::string LevelText(float si, const Quantity& quantity, Precision precision, const CPonderationUnite* weighting)
{
    const std::string linear = ValueText(si, quantity, precision, Scale::Linear, weighting);
    return InDecibels(si, quantity) ? fmt::format("{} ({})", linear, DecibelText(si, quantity, weighting)) : linear;
}

std::string DecibelText(float si, const Quantity& quantity, const CPonderationUnite* weighting)
{
    if (!HasDecibels(quantity)) return {};
    const std::string level = ValueText(si, quantity, {}, Scale::Decibels, weighting);
    return InDecibels(si, quantity) ? fmt::format("{} re {}", level, DecibelReference(quantity)) : level;
}

std::string UnitLabel(const Quantity& quantity)
{
    return quantity && quantity->shown ? Printable(quantity->shown->label) : std::string();
}

bool HasDecibels(const Quantity& quantity) { return quantity && quantity->HasDecibels(); }

std::string DecibelReference(const Quantity& quantity)
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
    if (const DerivedUnit* derived = DerivedFrom(*quantity); derived != nullptr) {
        reference *= derived->inBase;
        unit.SetLabelLinUnite(derived->base);
    }
    unit.ScalaireCourantToString(digits, static_cast<float>(reference), 0.0F, kThreeDigits, prefix, label, false,
                                 nullptr);
    return Joined(digits, prefix, label);
}

double InUnit(float si, const Quantity& quantity) { return quantity ? quantity->InUnit(si) : static_cast<double>(si); }

std::optional<double> InDecibels(float si, const Quantity& quantity)
{
    return quantity ? quantity->InDecibels(si) : std::nullopt;
}

} // namespace zmxf
