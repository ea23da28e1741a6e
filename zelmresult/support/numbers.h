#pragma once

#include <cmath>
#include <cstdint>

namespace ZelmResult {

// Cut to a whole number: the nearest that fits for one out of range, 0 for a NaN.
inline std::int32_t Truncated(float value)
{
    if (std::isnan(value)) return 0;
    constexpr float limit = 2147483648.0F;
    if (value >= limit) return INT32_MAX;
    return value < -limit ? INT32_MIN : static_cast<std::int32_t>(value);
}

} // namespace ZelmResult
