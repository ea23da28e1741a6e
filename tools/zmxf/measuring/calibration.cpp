#include "tools/zmxf/measuring/calibration.h"

#include "tools/zmxf/base/text.h"
#include "zelmresult/quantities/unite.h"

#include <algorithm>
#include <array>
#include <fmt/format.h>

namespace zmxf {

namespace {

using ZelmResult::CUnite;
using ZelmResult::EquationDim;

// Codes of the Universal File Format.
constexpr std::uint16_t kUffUnknown = 0;
constexpr std::uint16_t kUffGeneral = 1;
constexpr std::uint16_t kUffDisplacement = 8;
constexpr std::uint16_t kUffVelocity = 11;
constexpr std::uint16_t kUffAcceleration = 12;
constexpr std::uint16_t kUffForce = 13; // that excites
constexpr std::uint16_t kUffPressure = 15;
constexpr std::uint16_t kUffTime = 17;
constexpr std::uint16_t kUffFrequency = 18;
constexpr std::uint16_t kUffSpeed = 19;

constexpr std::int32_t kQuotient = 2; // the operation of a quantity
constexpr double kNoDecibels = 0.0;   // instead of a reference

struct Exponents {
    int meters = 0;
    int kilograms = 0;
    int seconds = 0;
    int amperes = 0;
};

constexpr EquationDim Dimension(Exponents exponents)
{
    const auto biased = [](int exponent) { return static_cast<std::uint8_t>(128 + 2 * exponent); };
    EquationDim dim;
    dim.Meters = biased(exponents.meters);
    dim.Kilograms = biased(exponents.kilograms);
    dim.Seconds = biased(exponents.seconds);
    dim.Amperes = biased(exponents.amperes);
    return dim;
}

struct SignalUnit {
    const char* name; // as a calibration names it
    const char16_t* label;
    double siValue; // one of this unit
    // Of two quantities with the same key and name only one survives in a file, so that each unit has a key of its own.
    const char16_t* key;
    const char16_t* quantity;
    const char16_t* siLabel;
    Exponents dimension;
    std::uint16_t typeUFF;
    double decibelReference; // in SI
};

constexpr Exponents kDisplacement{1, 0, 0, 0};
constexpr Exponents kVelocity{1, 0, -1, 0};
constexpr Exponents kAcceleration{1, 0, -2, 0};
constexpr Exponents kForce{1, 1, -2, 0};
constexpr Exponents kPerSecond{0, 0, -1, 0};
constexpr std::array kSignalUnits = std::to_array<SignalUnit>({
    {"Pa", u"Pa", 1.0, u"Pressure", u"Sound pressure", u"Pa", {-1, 1, -2, 0}, kUffPressure, 20e-6},
    {"m/s2", u"m/s2", 1.0, u"Acceleration", u"Acceleration", u"m/s2", kAcceleration, kUffAcceleration, 1e-6},
    {"g", u"g", 9.80665, u"Acceleration g", u"Acceleration", u"m/s2", kAcceleration, kUffAcceleration, 1e-6},
    {"m/s", u"m/s", 1.0, u"Velocity", u"Velocity", u"m/s", kVelocity, kUffVelocity, 1e-9},
    {"mm/s", u"mm/s", 1e-3, u"Velocity mm/s", u"Velocity", u"m/s", kVelocity, kUffVelocity, 1e-9},
    {"m", u"m", 1.0, u"Displacement", u"Displacement", u"m", kDisplacement, kUffDisplacement, 1e-12},
    {"mm", u"mm", 1e-3, u"Displacement mm", u"Displacement", u"m", kDisplacement, kUffDisplacement, 1e-12},
    {"um", u"\u00B5m", 1e-6, u"Displacement um", u"Displacement", u"m", kDisplacement, kUffDisplacement, 1e-12},
    {"N", u"N", 1.0, u"Force", u"Force", u"N", kForce, kUffForce, 1e-6},
    {"V", u"V", 1.0, u"Voltage", u"Voltage", u"V", {2, 1, -3, -1}, kUffGeneral, 1.0},
    {"", u"FS", 1.0, u"Full scale", u"Full scale (uncalibrated)", u"FS", {}, kUffUnknown, 1.0},
});

const SignalUnit& UnitOf(const Calibration& calibration)
{
    for (const SignalUnit& unit : kSignalUnits)
        if (calibration.unit == unit.name) return unit;
    return kSignalUnits.back();
}

// A quantity that owns its units; the one added last is shown.
class OwnedQuantity : public ZelmResult::CGrandeur {
public:
    OwnedQuantity(const ZelmResult::wstring& key, const ZelmResult::wstring& name, std::uint16_t typeUFF)
    {
        SetQuantityKey(key);
        SetNomGrandeur(name);
        SetTypeUFF(typeUFF);
    }

    void AddUnit(const ZelmResult::wstring& label, double siValue, double decibelReference)
    {
        CUnite& unit = *m_units.emplace_back(std::make_unique<CUnite>());
        unit.SetId(static_cast<std::uint16_t>(m_units.size()));
        unit.SetUnitKey(label);
        unit.SetNomUnite(label);
        unit.SetLabelLinUnite(label);
        unit.SetCoeffA(static_cast<float>(1.0 / siValue));
        unit.SetRef0dB(static_cast<float>(decibelReference / siValue));
        if (decibelReference == kNoDecibels) unit.SetCoefdB(0.0F);
        AjouteUniteDynamique(&unit);
        (void)SetUniteCourante(&unit); // it was just added
    }

private:
    std::vector<std::unique_ptr<CUnite>> m_units;
};

// With one unit, in SI, and without decibels.
std::unique_ptr<OwnedQuantity> PlainQuantity(const ZelmResult::wstring& name, std::uint16_t typeUFF,
                                             Exponents dimension, const ZelmResult::wstring& unit)
{
    auto quantity = std::make_unique<OwnedQuantity>(name, name, typeUFF);
    quantity->SetEqDim(ZelmResult::CEquationDim(Dimension(dimension)));
    quantity->AddUnit(unit, 1.0, kNoDecibels);
    return quantity;
}

// So that a slash in the label of a unit isn't mistaken for that of a quotient.
ZelmResult::wstring InBrackets(const ZelmResult::wstring& label)
{
    return label.find(u'/') == ZelmResult::wstring::npos ? label : u"(" + label + u")";
}

ZelmResult::wstring QuotientLabel(const CUnite& above, const CUnite& below)
{
    return InBrackets(above.GetLabelLinUnite()) + u"/" + InBrackets(below.GetLabelLinUnite());
}

} // namespace

double Calibration::FactorToSI() const { return fullScale * UnitOf(*this).siValue; }

std::string Calibration::Text() const
{
    if (isRecorded) return fmt::format("values are in {}, as the recording says", unit);
    if (!means.empty()) return fmt::format("full scale is {} {}, by {}", NumberText(fullScale), unit, means);
    return IsKnown() ? fmt::format("full scale is {} {}", ExactText(fullScale), unit)
                     : "uncalibrated, values are parts of full scale (FS)";
}

std::vector<std::string> UnitNames()
{
    std::vector<std::string> names;
    for (const SignalUnit& unit : kSignalUnits)
        if (*unit.name != '\0') names.emplace_back(unit.name);
    return names;
}

std::string RecordedUnit(const std::string& text)
{
    constexpr std::array<std::pair<std::string_view, std::string_view>, 8> ways = {{{"\u00B2", "2"},
                                                                                    {"^", ""},
                                                                                    {"**", ""},
                                                                                    {"\u00B5", "u"},
                                                                                    {"\u03BC", "u"},
                                                                                    {" ", ""},
                                                                                    {"/s/s", "/s2"},
                                                                                    {"sec", "s"}}};
    constexpr std::size_t longest = 40;
    if (text.size() > longest) return {};
    std::string name = Printable(text);
    for (const auto& [way, ours] : ways)
        for (std::size_t at = name.find(way); at != std::string::npos; at = name.find(way))
            name.replace(at, way.size(), ours);
    const std::vector<std::string> names = UnitNames();
    return std::find(names.begin(), names.end(), name) == names.end() ? std::string() : name;
}

std::unique_ptr<ZelmResult::CGrandeur> SignalQuantity(const Calibration& calibration)
{
    const SignalUnit& unit = UnitOf(calibration);
    auto quantity = std::make_unique<OwnedQuantity>(unit.key, unit.quantity, unit.typeUFF);
    quantity->SetEqDim(ZelmResult::CEquationDim(Dimension(unit.dimension)));
    quantity->AddUnit(unit.siLabel, 1.0, unit.decibelReference);
    if (unit.siValue != 1.0) quantity->AddUnit(unit.label, unit.siValue, unit.decibelReference);
    return quantity;
}

std::unique_ptr<ZelmResult::CGrandeur> NumberQuantity(const ZelmResult::wstring& name)
{
    auto quantity = std::make_unique<OwnedQuantity>(name, name, kUffGeneral);
    quantity->AddUnit(u"", 1.0, kNoDecibels);
    return quantity;
}

std::unique_ptr<ZelmResult::CGrandeur> FrequencyQuantity()
{
    return PlainQuantity(u"Frequency", kUffFrequency, kPerSecond, u"Hz");
}

std::unique_ptr<ZelmResult::CGrandeur> TimeQuantity() { return PlainQuantity(u"Time", kUffTime, {0, 0, 1, 0}, u"s"); }

std::unique_ptr<ZelmResult::CGrandeur> SpeedQuantity()
{
    auto quantity = PlainQuantity(u"Speed", kUffSpeed, kPerSecond, u"Hz");
    quantity->AddUnit(u"rpm", 1.0 / 60.0, kNoDecibels);
    return quantity;
}

std::unique_ptr<ZelmResult::CGrandeur> QuotientQuantity(ZelmResult::CGrandeur& numerator,
                                                        ZelmResult::CGrandeur& denominator)
{
    auto quantity = std::make_unique<OwnedQuantity>(numerator.GetQuantityKey() + u" / " + denominator.GetQuantityKey(),
                                                    numerator.GetNomGrandeur() + u" / " + denominator.GetNomGrandeur(),
                                                    kUffGeneral);
    quantity->SetEqDim(numerator.GetEqDim() / denominator.GetEqDim());
    quantity->SetGrandeurLeft(&numerator);
    quantity->SetGrandeurRight(&denominator);
    quantity->SetOperationType(kQuotient);
    quantity->SetGrandeurInvolved(2);
    const CUnite& above = *numerator.GetUniteCourante();
    const CUnite& below = *denominator.GetUniteCourante();
    const double siValue = static_cast<double>(below.GetCoeffA()) / static_cast<double>(above.GetCoeffA());
    quantity->AddUnit(QuotientLabel(*numerator.GetUniteSI(), *denominator.GetUniteSI()), 1.0, 1.0);
    if (!numerator.CurrentUnitIsSI() || !denominator.CurrentUnitIsSI())
        quantity->AddUnit(QuotientLabel(above, below), siValue, siValue);
    return quantity;
}

} // namespace zmxf
