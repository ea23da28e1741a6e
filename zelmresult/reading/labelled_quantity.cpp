#include "zelmresult/reading/labelled_quantity.h"

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cmath>

namespace ZelmResult {

namespace {

using Exponents = std::array<double, LabelledQuantity::kBaseUnits>;

struct NamedUnit {
    Exponents exponents;
    const char16_t* symbol;
};

// rad sr m kg s A K mol cd
constexpr std::array kNamedUnits = std::to_array<NamedUnit>({
    {{0, 0, 0, 0, -1, 0, 0, 0, 0}, u"Hz"},
    {{0, 0, 1, 1, -2, 0, 0, 0, 0}, u"N"},
    {{0, 0, -1, 1, -2, 0, 0, 0, 0}, u"Pa"},
    {{0, 0, 2, 1, -2, 0, 0, 0, 0}, u"J"},
    {{0, 0, 2, 1, -3, 0, 0, 0, 0}, u"W"},
    {{0, 0, 2, 1, -3, -1, 0, 0, 0}, u"V"},
    {{0, 0, -2, 2, -4, 0, 0, 0, 0}, u"Pa\u00B2"},
    {{0, 0, -2, 2, -3, 0, 0, 0, 0}, u"Pa\u00B2/Hz"},
    {{0, 0, 4, 2, -6, -2, 0, 0, 0}, u"V\u00B2"},
});

wstring Power(const char16_t* symbol, double exponent)
{
    if (exponent == 1.0) return symbol;
    if (exponent == 2.0) return wstring(symbol) + u"\u00B2";
    if (exponent == 3.0) return wstring(symbol) + u"\u00B3";
    const bool isWhole = exponent == std::floor(exponent);
    const auto halves = static_cast<std::int64_t>(exponent * 2.0);
    return Concat(symbol, u"^", isWhole ? ToDecimal(halves / 2) : Concat(u"(", halves, u"/2)"));
}

wstring Product(const Exponents& exponents, double sign, bool& isLong)
{
    wstring product;
    isLong = false;
    for (std::size_t i = 0; i < exponents.size(); ++i) {
        if (exponents[i] * sign <= 0.0) continue;
        isLong = !product.empty();
        if (isLong) product += u"\u00B7";
        product += Power(LabelledQuantity::kBaseSymbols[i], exponents[i] * sign);
    }
    return product;
}

wstring SymbolOf(const Exponents& exponents)
{
    const auto* const named = std::find_if(kNamedUnits.begin(), kNamedUnits.end(),
                                           [&](const NamedUnit& unit) { return unit.exponents == exponents; });
    if (named != kNamedUnits.end()) return named->symbol;
    bool isLong = false;
    wstring above = Product(exponents, 1.0, isLong);
    wstring below = Product(exponents, -1.0, isLong);
    if (below.empty()) return above;
    if (isLong) below = Concat(u"(", below, u")");
    return Concat(above.empty() ? wstring(u"1") : above, u"/", below);
}

double ExponentOf(std::uint8_t biased) { return (int{biased} - 128) / 2.0; }

bool IsWord(const wstring& label)
{
    return std::all_of(label.begin(), label.end(),
                       [](char16_t c) { return (c >= u'a' && c <= u'z') || (c >= u'A' && c <= u'Z'); });
}

LabelledQuantity WithoutOperands(const CGrandeur& quantity)
{
    const EquationDim& dim = *quantity.GetEqDim().GetEqDim();
    LabelledQuantity labelled;
    labelled.key = quantity.quantityKey();
    labelled.name = quantity.quantityName();
    labelled.exponents = {ExponentOf(dim.Radians),   ExponentOf(dim.Steradians), ExponentOf(dim.Meters),
                          ExponentOf(dim.Kilograms), ExponentOf(dim.Seconds),    ExponentOf(dim.Amperes),
                          ExponentOf(dim.Kelvins),   ExponentOf(dim.Moles),      ExponentOf(dim.Candelas)};
    labelled.uffType = quantity.GetTypeUFF();
    labelled.siSymbol = SymbolOf(labelled.exponents);
    if (const CUnite* unit = quantity.GetUniteCourante(); unit != nullptr)
        labelled.shown = LabelledUnit{unit->GetLabelLinUnite(), static_cast<double>(unit->GetCoeffA()),
                                      static_cast<double>(unit->GetCoeffB()), unit->GetRef0dB(), unit->GetCoefdB()};
    return labelled;
}

} // namespace

double LabelledQuantity::InUnit(float si) const
{
    const auto value = static_cast<double>(si);
    return shown ? value * shown->slope + shown->offset : value;
}

bool LabelledQuantity::HasDecibels() const
{
    return shown && !shown->label.empty() && shown->decibelReference > 0.0F && shown->decibelFactor > 0.0F;
}

std::optional<double> LabelledQuantity::InDecibels(float si) const
{
    if (!HasDecibels()) return std::nullopt;
    const double ratio = InUnit(si) / static_cast<double>(shown->decibelReference);
    if (!(ratio > 0.0) || std::isinf(ratio)) return std::nullopt;
    return static_cast<double>(shown->decibelFactor) * std::log10(ratio);
}

std::optional<double> LabelledQuantity::ReferenceInSI() const
{
    if (!HasDecibels() || shown->slope == 0.0) return std::nullopt;
    return (static_cast<double>(shown->decibelReference) - shown->offset) / shown->slope;
}

bool LabelledQuantity::IsQuotient() const
{
    if (operands.size() != 2) return false;
    for (std::size_t i = 0; i < kBaseUnits; ++i)
        if (exponents[i] != operands[0].exponents[i] - operands[1].exponents[i]) return false;
    return true;
}

std::optional<LabelledQuantity> LabelledQuantity::Of(const CGrandeur* quantity)
{
    if (quantity == nullptr) return std::nullopt;
    LabelledQuantity labelled = WithoutOperands(*quantity);
    if (quantity->GetGrandeurLeft() != nullptr && quantity->GetGrandeurRight() != nullptr)
        labelled.operands = {WithoutOperands(*quantity->GetGrandeurLeft()),
                             WithoutOperands(*quantity->GetGrandeurRight())};
    return labelled;
}

LabelledQuantity LabelledQuantity::PlainNumber(const wstring& name)
{
    LabelledQuantity number;
    number.name = name;
    return number;
}

LabelledQuantity LabelledQuantity::EnergyOf(const std::optional<LabelledQuantity>& quantity)
{
    LabelledQuantity energy = PlainNumber(u"Energy");
    LabelledUnit unit;
    unit.decibelReference = unit.decibelFactor = 0.0F;
    unit.label = u"s";
    if (quantity) {
        energy.exponents = quantity->exponents;
        for (double& exponent : energy.exponents) exponent *= 2.0;
        if (quantity->shown) {
            const wstring& label = quantity->shown->label;
            unit.slope = quantity->shown->slope * quantity->shown->slope;
            if (!label.empty()) unit.label = IsWord(label) ? label + u"\u00B2 s" : Concat(u"(", label, u")\u00B2 s");
        }
    }
    energy.exponents[Second] += 1.0;
    energy.siSymbol = SymbolOf(energy.exponents);
    energy.shown = std::move(unit);
    return energy;
}

} // namespace ZelmResult
