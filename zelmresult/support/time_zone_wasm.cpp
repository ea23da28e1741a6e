#include "zelmresult/support/time_zone.h"

#include <cmath>
#include <emscripten/emscripten.h>

// The date of the browser or of node, since the times of this C library end in January 2038. It counts whole minutes.
EM_JS(double, zelmresult_minutes_behind, (double utc), { return new Date(utc * 1000).getTimezoneOffset(); });

namespace ZelmResult {

bool OffsetOfZone(std::int64_t utc, std::int64_t& offset)
{
    const double minutes = zelmresult_minutes_behind(static_cast<double>(utc));
    if (std::isnan(minutes)) return false;
    offset = -static_cast<std::int64_t>(minutes) * 60;
    return true;
}

} // namespace ZelmResult
