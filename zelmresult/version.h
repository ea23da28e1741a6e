#pragma once

namespace ZelmResult {

// The version of the library. It is only here: the build reads these three lines.
inline constexpr int VersionMajor = 0;
inline constexpr int VersionMinor = 1;
inline constexpr int VersionPatch = 0;

} // namespace ZelmResult
