#include "zelmresult/support/time_zone.h"

#include <windows.h>

namespace ZelmResult {

namespace {

constexpr std::int64_t kTicksPerSecond = 10000000;
constexpr std::int64_t kEpochDifference = 11644473600; // seconds from 1601 to 1970

std::int64_t SecondsOf(const ::FILETIME& time)
{
    const auto ticks = static_cast<std::int64_t>(std::uint64_t{time.dwHighDateTime} << 32U | time.dwLowDateTime);
    return ticks / kTicksPerSecond - kEpochDifference;
}

} // namespace

// By the rules that the zone has today, whatever they were at that moment.
bool OffsetOfZone(std::int64_t utc, std::int64_t& offset)
{
    constexpr std::int64_t most = INT64_MAX / kTicksPerSecond - kEpochDifference;
    if (utc < -kEpochDifference || utc >= most) return false;
    const auto ticks = static_cast<std::uint64_t>((utc + kEpochDifference) * kTicksPerSecond);
    ::FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
    ::SYSTEMTIME moment{};
    ::SYSTEMTIME local{};
    if (FileTimeToSystemTime(&time, &moment) == 0 || SystemTimeToTzSpecificLocalTime(nullptr, &moment, &local) == 0 ||
        SystemTimeToFileTime(&local, &time) == 0)
        return false;
    offset = SecondsOf(time) - utc;
    return true;
}

} // namespace ZelmResult
