#include "zelmresult/support/time_zone.h"

#include <ctime>
#include <limits>

namespace ZelmResult {

bool OffsetOfZone(std::int64_t utc, std::int64_t& offset)
{
    if (utc < std::numeric_limits<std::time_t>::min() || utc > std::numeric_limits<std::time_t>::max()) return false;
    const auto moment = static_cast<std::time_t>(utc);
    std::tm local{};
    tzset();
    if (localtime_r(&moment, &local) == nullptr) return false;
    offset = local.tm_gmtoff;
    return true;
}

} // namespace ZelmResult
