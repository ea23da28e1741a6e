#pragma once

#include <cstdint>

namespace ZelmResult {

// A value as mantissa and power of ten. Internal to the formatting and the octave bands, whose digits depend on exactly
// these steps in single precision.
struct MantissaExponent {
    float mantissa;
    std::int32_t exponent;
};

// An infinite value, a NaN and 0 have exponent 0. The mantissa may lie just below 1: 0.9999999 stays in its decade.
MantissaExponent SplitMantissaExponent(float value);

// One significant digit.
float RoundToOneDigit(float value);

// A power of ten by repeated squaring, as a reciprocal for a negative exponent.
float PowerOfTen(std::int32_t exponent);

// The integer part, limited to the range of the integer; 0 for a NaN.
std::int64_t ToInteger(float value);

} // namespace ZelmResult
