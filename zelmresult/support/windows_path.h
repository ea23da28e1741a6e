#pragma once

#include "zelmresult/support/wstring.h"

#include <string>

// Paths for calls of Windows. Other platforms don't compile what includes this.

namespace ZelmResult {

static_assert(sizeof(wchar_t) == sizeof(char16_t));

// The path as Windows takes it. One that is too long for most calls gets the form without a limit, "\\?\C:\...", which
// needs no setting of the machine.
std::wstring ToWindowsPath(wstring_view path);

wstring FromWindowsPath(std::wstring_view path);

} // namespace ZelmResult
