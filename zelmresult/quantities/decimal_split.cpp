#include "zelmresult/quantities/decimal_split.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace ZelmResult {

namespace {

constexpr std::array<float, 19> kExactPowers = {1e-9F, 1e-8F, 1e-7F, 1e-6F, 1e-5F, 1e-4F, 1e-3F, 1e-2F, 1e-1F, 1.0F,
                                                1e1F,  1e2F,  1e3F,  1e4F,  1e5F,  1e6F,  1e7F,  1e8F,  1e9F};

float ExactPowerOfTen(std::int32_t exponent)
{
    if (exponent < -9 || exponent > 9) return std::pow(10.0F, static_cast<float>(exponent));
    const std::int32_t index = exponent + 9;
    return kExactPowers[static_cast<std::size_t>(index)];
}

} // namespace

MantissaExponent SplitMantissaExponent(float value)
{
    MantissaExponent split{value, 0};
    if (!std::isfinite(value) || value == 0.0F) return split;
    while (std::fabs(split.mantissa) < 0.999999F) {
        split.mantissa *= 10.0F;
        --split.exponent;
    }
    while (std::fabs(split.mantissa) >= 10.0F) {
        split.mantissa /= 10.0F;
        ++split.exponent;
    }
    return split;
}

float RoundToOneDigit(float value)
{
    const auto [mantissa, exponent] = SplitMantissaExponent(value);
    const double rounded = static_cast<double>(mantissa) + (mantissa > 0.0F ? 0.5 : -0.5);
    constexpr auto limit = static_cast<double>(INT32_MAX); // an infinite mantissa saturates as an int does
    const double digit = std::isnan(rounded) ? 0.0 : std::trunc(std::clamp(rounded, -limit - 1.0, limit));
    return static_cast<float>(digit) * ExactPowerOfTen(exponent);
}

float PowerOfTen(std::int32_t exponent)
{
    float power = 1.0F;
    float square = 10.0F;
    for (auto rest = static_cast<std::uint32_t>(std::abs(static_cast<std::int64_t>(exponent))); rest != 0; rest /= 2) {
        if (rest % 2 != 0) power *= square;
        square *= square;
    }
    return exponent < 0 ? 1.0F / power : power;
}

std::int64_t ToInteger(float value)
{
    constexpr float limit = 9223372036854775808.0F; // 2^63
    if (std::isnan(value)) return 0;
    if (value >= limit) return INT64_MAX;
    return value <= -limit ? INT64_MIN : static_cast<std::int64_t>(value);
}

} // namespace ZelmResult
