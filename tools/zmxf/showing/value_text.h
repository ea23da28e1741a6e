#pragma once

#include "zelmresult/quantities/ponderation_unite.h"
#include "zelmresult/quantities/unite.h"
#include "zelmresult/reading/labelled_quantity.h"

#include <optional>
#include <span>
#include <string>

// Values of quantities in the unit that they are shown in.

namespace zmxf {

// Which digits are worth printing, in SI units and in parts of the value.
struct Precision {
    float absolute = 0.0F;
    float relative = 1e-5F;
};

enum class Scale { Linear, Decibels };

// There may be none.
using Quantity = std::optional<ZelmResult::LabelledQuantity>;

// "31.2 mm/s2" or "78.95 dB". "N.A." for what can't be printed, such as the level of 0. weighting may be null.
std::string ValueText(float si, const Quantity& quantity, Precision precision, Scale scale,
                      const ZelmResult::CPonderationUnite* weighting = nullptr);
// Values of one column, all with the prefix that suits the largest: none from 0.1 to 100,000.
class ColumnText {
public:
    ColumnText(std::span<const float> values, Quantity quantity, Precision precision, Scale scale);
    [[nodiscard]] std::string operator()(float si, const ZelmResult::CPonderationUnite* weighting = nullptr) const;
    [[nodiscard]] const Quantity& quantity() const { return m_quantity; }
    [[nodiscard]] Precision precision() const { return m_precision; }

private:
    Quantity m_quantity;
    Precision m_precision;
    Scale m_scale;
    std::optional<ZelmResult::CUnite> m_unit; // with that prefix
};

// Both scales, with what the decibels refer to: "31.2 mm/s2 (89.88 dB re 1 µm/s2)".
std::string LevelText(float si, const Quantity& quantity, Precision precision,
                      const ZelmResult::CPonderationUnite* weighting = nullptr);
// The second half alone, empty for a quantity without decibels: "89.88 dB re 1 µm/s2".
std::string DecibelText(float si, const Quantity& quantity, const ZelmResult::CPonderationUnite* weighting = nullptr);

// Of the unit in which the quantity is shown; empty without one.
std::string UnitLabel(const Quantity& quantity);
// Whether decibels say something for the quantity: it has a unit, and a reference and a factor above zero.
bool HasDecibels(const Quantity& quantity);
// The value of 0 dB: "20 µPa". Empty for a quantity without decibels.
std::string DecibelReference(const Quantity& quantity);

// As numbers, in double precision.
double InUnit(float si, const Quantity& quantity);
std::optional<double> InDecibels(float si, const Quantity& quantity);

} // namespace zmxf
