#pragma once

#include <cstdint>

// How an OFILETIME counts: in ticks of 100 ns since 1601-01-01 00:00:00 UTC.

namespace ZelmResult {

inline constexpr std::int64_t kTicksPerSecond = 10000000;
inline constexpr std::int64_t kEpochDifference = 11644473600; // seconds from 1601 to 1970

} // namespace ZelmResult
