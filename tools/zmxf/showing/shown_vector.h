#pragma once

#include "tools/zmxf/showing/value_text.h"
#include "zelmresult/results/result.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

// Vectors of all kinds as one table: X values, and one column or more of values in SI units.

namespace zmxf {

struct ShownColumn {
    std::string name;
    const ZelmResult::CGrandeur* quantity = nullptr; // lent, may be null
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

// Nothing for a result that isn't a vector, a pair of vectors, an order track or an overview. caption is the name of
// its process. The quantities stay the result's.
std::optional<ShownVector> DescribeVector(ZelmResult::CResult& result, const std::string& caption);

} // namespace zmxf
