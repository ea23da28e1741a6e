#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/reading/labelled_result.h"

#include <string>
#include <vector>

// Results of several levels as one table.

namespace zmxf {

// A level, its highest and its lowest value, in SI units.
struct ShownScalar {
    // What its values are: of the quantity of the signal, its square times a time, or plain numbers.
    enum class Kind { Signal, Energy, Number };

    std::string name;
    Kind kind = Kind::Signal;
    Quantity quantity;
    ZelmResult::CPonderationUnite weighting;
    float last = 0.0F;
    float highest = 0.0F;
    float lowest = 0.0F;

    // Whether the highest or the lowest value is another one.
    [[nodiscard]] bool Varies() const;
    // column is that of the levels with the quantity of the result.
    [[nodiscard]] std::string Text(float value, const ColumnText& column, Scale scale) const;
};

// Nothing for a result of another form than several levels.
std::vector<ShownScalar> DescribeLevels(const ZelmResult::LabelledResult& labelled);

} // namespace zmxf
