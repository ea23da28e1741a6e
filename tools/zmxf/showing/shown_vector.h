#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/reading/labelled_result.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

// Vectors of all kinds as one table: X values, and one column or more of values in SI units.

namespace zmxf {

struct ShownColumn {
    std::string name;
    Quantity quantity;
    Precision precision;
    std::vector<float> values;
};

// The level of all bands together.
struct ShownLevel {
    std::string name;
    float value = 0.0F;
    ZelmResult::CPonderationUnite weighting;
};

struct ShownVector {
    ShownColumn x;
    std::vector<ShownColumn> columns;
    // For complex values, whose first column is their magnitude; else empty.
    std::vector<float> real;
    std::vector<float> imaginary;
    bool isBands = false;
    std::vector<ShownLevel> levels;

    // The points of the largest and the smallest number of a column. Nothing for a column without any.
    [[nodiscard]] static std::optional<std::pair<std::size_t, std::size_t>> Extremes(const ShownColumn& column);
    // The lines of the highest peaks of the first column, at most count.
    [[nodiscard]] std::vector<std::size_t> Highest(std::size_t count) const;
    // In degrees. Only for complex values.
    [[nodiscard]] double Phase(std::size_t line) const;
};

// Nothing for a result whose first values have no dimension, such as a level. Of a waterfall, one slice.
std::optional<ShownVector> DescribeVector(const ZelmResult::LabelledResult& labelled);
// The first column of a slice of a waterfall.
ShownVector DescribeSlice(const ZelmResult::LabelledResult& waterfall, std::size_t slice);

} // namespace zmxf
