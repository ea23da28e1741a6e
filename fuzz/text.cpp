// Values as text, in any unit.

#include "zelmresult/support/text.h"
#include "fuzz/laws.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/quantities/ponderation_unite.h"

#include <cmath>

using namespace ZelmResult;
using fuzz::Require;

namespace {

// A unit with a fixed number of decimals prints up to 1000 of them. Else a resolution within 100 decades bounds the
// digits, for which an unknown notation is the worst.
constexpr std::size_t kMostFixed = 1000;
constexpr std::size_t kMostDigits = 400;

struct Value {
    float value;
    float absolute;
    float relative;
    bool dB;
    int rounding;
    std::int16_t notation;
};

struct Text {
    wstring digits, prefix, label;
    bool operator==(const Text&) const = default;
};

CUnite TakeUnit(fuzz::Input& input)
{
    CUnite unit;
    unit.SetLabelLinUnite(wstring(input.choice(20), u'u'));
    unit.SetLabeldBUnite(wstring(input.choice(20), u'd'));
    unit.SetId(input.choice(2) == 0 ? 0 : 60);
    const auto flags = input.take<std::uint8_t>();
    if ((flags & 1U) != 0) unit.SetCoeffA(input.take<float>());
    if ((flags & 2U) != 0) unit.SetCoeffB(input.take<float>());
    if ((flags & 4U) != 0) unit.SetRef0dB(input.take<float>());
    if ((flags & 8U) != 0) unit.SetCoefdB(input.take<float>());
    unit.SetNoZero((flags & 16U) != 0);
    unit.SetDigits((flags & 32U) != 0);
    if ((flags & 32U) != 0) unit.SetNbDigits(input.take<std::int32_t>());
    if ((flags & 64U) != 0) unit.SetLowPrefix(input.take<std::int16_t>());
    unit.SetHighPrefix((flags & 128U) != 0 ? input.take<std::int16_t>() : unit.GetLowPrefix());
    unit.SetNotation(static_cast<std::uint16_t>(input.choice(6)));
    return unit;
}

// By a quantity that shows itself in that unit.
Text Shown(CUnite unit, const Value& v, const CPonderationUnite* weighting, bool isSI)
{
    CGrandeur quantity;
    quantity.AjouteUniteDynamique(&unit);
    (void)quantity.SetUniteCourante(&unit);
    Text text;
    if (isSI)
        quantity.SI_to_string(text.digits, v.value, v.absolute, v.relative, text.prefix, text.label, v.dB, weighting,
                              v.rounding, v.notation);
    else
        quantity.courant_to_string(text.digits, v.value, v.absolute, v.relative, text.prefix, text.label, v.dB,
                                   weighting, v.notation);
    return text;
}

bool IsNumber(const wstring& digits)
{
    return digits == CUnite::textNotANumber() || digits.find_first_not_of(u"0123456789.-+E") == wstring::npos;
}

// Of what isn't shown as a zero the sign comes first and changes nothing else, except that two zeros stay after it.
void CheckSign(const CUnite& unit, Value v)
{
    v.value = std::fabs(v.value);
    const wstring shown = Shown(unit, v, nullptr, false).digits;
    v.value = -v.value;
    wstring opposite = Shown(unit, v, nullptr, false).digits;
    Require(!shown.starts_with(CUnite::M_chTiret), "a value above 0 has no sign");
    const wstring digits = shown.substr(0, shown.find(u'E'));
    if (digits.find_first_of(u"123456789") == wstring::npos) return;
    Require(opposite.starts_with(CUnite::M_chTiret), "a value below 0 has a sign");
    opposite.erase(0, 1);
    while (opposite.starts_with(u"00")) opposite.erase(0, 1);
    Require(opposite == shown, "the sign changes no digit");
}

void CheckText(const CUnite& unit, const Value& v, const CPonderationUnite& weighting)
{
    for (const bool isSI : {false, true}) {
        const Text text = Shown(unit, v, &weighting, isSI);
        Require(IsNumber(text.digits), "a value is shown as a number: " + ToUtf8(text.digits));
        Require(text.digits.size() <= (unit.GetDigits() ? kMostFixed : 0) + kMostDigits, "digits have an end");
        Require(text.prefix.size() <= 1, "a prefix is a letter");
        Require(text.label.size() <= unit.GetLabelLinUnite(&weighting).size() + unit.GetLabelDbUnite(&weighting).size(),
                "a label is that of the unit");
        Require(Shown(unit, v, &weighting, isSI) == text, "a value is shown alike every time");
    }
    CheckSign(unit, v);
}

void Convert(const CUnite& unit, const Value& v)
{
    (void)unit.ScalaireSIToScalaire(v.value, v.dB);
    (void)unit.ScalaireToScalaireSI(v.value, v.dB);
    (void)unit.AdjustScalaire(v.value, v.absolute, v.relative, v.dB);
    (void)unit.getCurrentAbsPrecision(v.absolute);
    (void)unit.DbToLin(v.value);
    (void)CResult::ComputeAbsPrec(v.value);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    fuzz::Input input(data, size);
    const CUnite unit = TakeUnit(input);
    CPonderationUnite weighting;
    weighting.SetPonderationLabelUnite(static_cast<int>(input.choice(6)));
    Value v{};
    v.dB = input.choice(4) == 0;
    v.rounding = static_cast<int>(input.choice(4));
    v.notation = static_cast<std::int16_t>(static_cast<int>(input.choice(6)) - 1);
    v.value = input.take<float>();
    v.absolute = input.take<float>();
    v.relative = input.take<float>();
    CheckText(unit, v, weighting);
    Convert(unit, v);
    (void)CUnite::TimeToString_seconds(input.take<std::int32_t>());
    return 0;
}
