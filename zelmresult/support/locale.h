#pragma once

namespace ZelmResult {

// The decimal separator of the user's regional settings, its first 16-bit unit; "." when the system has none. The
// locale that the process set for itself has no effect.
char16_t RegionalDecimalSeparator();

} // namespace ZelmResult
