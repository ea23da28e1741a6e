#pragma once

#include <cstdint>

namespace ZelmResult {

// By how much the local time of this machine is ahead of UTC at a moment, both in seconds; the moment since 1970-01-01.
// False when the system doesn't know.
bool OffsetOfZone(std::int64_t utc, std::int64_t& offset);

} // namespace ZelmResult
