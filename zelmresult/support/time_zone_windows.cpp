#include "zelmresult/support/time_zone.h"

#include "zelmresult/support/file_time.h"
#include "zelmresult/support/time.h"

#include <bit>
#include <windows.h>

namespace ZelmResult {

// By the rules that the zone has today, whatever they were at that moment: Windows gives no others here.
bool OffsetOfZone(std::int64_t utc, std::int64_t& offset)
{
    constexpr std::int64_t most = INT64_MAX / kTicksPerSecond - kEpochDifference;
    if (utc < -kEpochDifference || utc >= most) return false;
    const auto ticks = static_cast<std::uint64_t>((utc + kEpochDifference) * kTicksPerSecond);
    ::FILETIME time{static_cast<DWORD>(ticks), static_cast<DWORD>(ticks >> 32U)};
    ::SYSTEMTIME moment{};
    ::SYSTEMTIME local{};
    if (::FileTimeToSystemTime(&time, &moment) == 0 || SystemTimeToTzSpecificLocalTime(nullptr, &moment, &local) == 0 ||
        ::SystemTimeToFileTime(&local, &time) == 0)
        return false;
    offset = OFileTime::fromFILETIME(std::bit_cast<OFILETIME>(time)).toOTime().GetTime() - utc;
    return true;
}

} // namespace ZelmResult
