#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/results/scalar.h"

#include <string>
#include <vector>

// Results of several levels as one table.

namespace zmxf {

// A level, its highest and its lowest value, in SI units.
struct ShownScalar {
    // What its values are: of the quantity, its square times a time, or plain numbers.
    enum class Kind { Signal, Energy, Number };

    std::string name;
    const ZelmResult::CScalar* level = nullptr; // lent
    Kind kind = Kind::Signal;
    ZelmResult::CPonderationUnite weighting = {};

    // Whether the highest or the lowest value is another one.
    [[nodiscard]] bool Varies() const;
    // Null for what has no quantity of its own.
    [[nodiscard]] const ZelmResult::CGrandeur* quantity() const;
    // In the square of the shown unit, times a second.
    [[nodiscard]] float EnergyInUnit(float si) const;
    // column is that of the levels with the quantity of the result.
    [[nodiscard]] std::string Text(float value, const ColumnText& column, Scale scale) const;
};

// Nothing for a result of another class. caption is the name of its process. Levels stay the result's.
std::vector<ShownScalar> DescribeLevels(const ZelmResult::CResult& result, const std::string& caption);

} // namespace zmxf
