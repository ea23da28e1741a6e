#pragma once

#include <cstdint>
#include <cstring>

namespace ZelmResult {

// The bits of a float as a number.
inline std::uint32_t BitsOf(float value)
{
    std::uint32_t bits = 0;
    std::memcpy(&bits, &value, sizeof bits);
    return bits;
}

} // namespace ZelmResult
