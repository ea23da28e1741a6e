#include "zelmresult/support/system_error.h"

#include <cerrno>

namespace ZelmResult {

std::error_code LastSystemError() { return {errno, std::generic_category()}; }

void ForgetSystemError() { errno = 0; }

} // namespace ZelmResult
