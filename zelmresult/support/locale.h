#pragma once

namespace ZelmResult {

// The decimal separator of the user's regional settings, its first 16-bit unit; "." when the system tells none. What
// the process has set as its own locale doesn't matter.
char16_t RegionalDecimalSeparator();

} // namespace ZelmResult
