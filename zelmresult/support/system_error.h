#pragma once

#include <system_error>

namespace ZelmResult {

// Why the last call to the system that failed on this thread did so; empty when there is no reason. In the generic
// category where the system's number has a counterpart there, so that platforms share the words; else in the system's.
std::error_code LastSystemError();

// Before a call whose failure may have no reason of the system.
void ForgetSystemError();

} // namespace ZelmResult
