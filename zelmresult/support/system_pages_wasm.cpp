#include "zelmresult/support/system_pages.h"

#include <cstdint>

namespace ZelmResult {

// All memory is one block that the process has from the browser, so nothing comes from elsewhere.
const std::size_t LeastSystemPages = SIZE_MAX;

SystemPages TakePages(std::size_t /*bytes*/) { return {}; }

void ReturnPages(const SystemPages& /*pages*/) {}

} // namespace ZelmResult
