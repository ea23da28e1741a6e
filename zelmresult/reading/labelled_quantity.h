#pragma once

#include "zelmresult/support/wstring.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace ZelmResult {

class CGrandeur;

// The unit in which a quantity is shown, and its decibel scale.
struct LabelledUnit {
    wstring label; // "mm/s2"
    // Shown value = SI value * slope + offset.
    double slope = 1.0;
    double offset = 0.0;
    // Level = factor * log10(shown value / reference). The reference is in this unit, not in SI; see ReferenceInSI.
    float decibelReference = 1.0F;
    float decibelFactor = 20.0F; // 20 for amplitudes, 10 for powers

    bool operator==(const LabelledUnit&) const = default;
};

// A physical quantity as a plain value: of it are the values of a labelled array, which are in SI units.
struct LabelledQuantity {
    // The base units, in the order of the exponents.
    static constexpr std::size_t kBaseUnits = 9;
    static constexpr std::array<const char16_t*, kBaseUnits> kBaseSymbols{u"rad", u"sr", u"m",   u"kg", u"s",
                                                                          u"A",   u"K",  u"mol", u"cd"};
    enum BaseUnit : std::size_t { Radian, Steradian, Meter, Kilogram, Second, Ampere, Kelvin, Mole, Candela };

    wstring key;                                // the same in every language
    wstring name;                               // for people
    std::array<double, kBaseUnits> exponents{}; // multiples of 1/2
    std::uint16_t uffType = 0;                  // a specific data type of universal files, 0 unknown
    wstring siSymbol;                           // of the SI unit, such as "m/s²"; empty for a plain number
    std::optional<LabelledUnit> shown;          // none for a plain number, and in damaged documents
    // Of a product or a quotient the two that it is made of, without operands of their own; else empty.
    std::vector<LabelledQuantity> operands;

    bool operator==(const LabelledQuantity&) const = default;

    // Without a shown unit the value itself.
    [[nodiscard]] double InUnit(float si) const;
    // Whether levels say something: there is a shown unit with a label, and a reference and a factor above 0.
    [[nodiscard]] bool HasDecibels() const;
    // None without decibels, and for a value that has no level, such as 0.
    [[nodiscard]] std::optional<double> InDecibels(float si) const;
    // The value of 0 dB in SI units: (reference - offset) / slope. None without decibels, and for a slope of 0.
    [[nodiscard]] std::optional<double> ReferenceInSI() const;
    // Whether it is the first operand by the second. The dimensions say so: that of a product is another one, unless
    // the second is a plain number.
    [[nodiscard]] bool IsQuotient() const;

    // A quantity of a document. None for null.
    static std::optional<LabelledQuantity> Of(const CGrandeur* quantity);
    // A number without unit.
    static LabelledQuantity PlainNumber(const wstring& name);
    // The square of a signal times a time. quantity is the one of the signal.
    static LabelledQuantity EnergyOf(const std::optional<LabelledQuantity>& quantity);
};

} // namespace ZelmResult
