#pragma once

#include "tools/zmxf/exporting/uff_axis.h"

#include <complex>
#include <cstdint>
#include <ostream>
#include <string>
#include <variant>
#include <vector>

namespace zmxf {

// Where a function was measured.
struct UffEntity {
    std::string name;
    std::int64_t node = 0;
};

// A function of one variable: a dataset 58, or 58b when it is binary.
struct UffFunction {
    // What a function is.
    static constexpr int kUnknown = 0;
    static constexpr int kTimeResponse = 1;
    static constexpr int kTransferFunction = 4;
    static constexpr int kCoherence = 6;
    static constexpr int kSpectrum = 12;
    static constexpr int kOrder = 27;

    std::string name;
    std::string channels;
    std::string date;
    std::string caption;
    std::string comment;
    int type = kUnknown;
    std::int64_t number = 0;
    std::int64_t part = 0; // of that number
    UffEntity response;
    UffEntity reference;
    UffAxis abscissa;
    UffAxis ordinate;
    UffAxis denominator; // of the ordinate
    UffAxis z;
    double zValue = 0.0;
    bool isOfBands = false;
    // Points that have values, as many as these.
    std::vector<float> points;
    std::variant<std::vector<float>, std::vector<std::complex<float>>> values;

    // Warns of what is cut.
    void Write(std::ostream& output, bool isBinary, const UffWarn& warn) const;
};

// The dataset that says that all values are in SI units.
void WriteUffUnits(std::ostream& output);

} // namespace zmxf
