#pragma once

#include "zelmresult/support/wstring.h"

#include <string>
#include <string_view>

// The names of files, which are bytes on POSIX systems and UTF-16 in this library. A conversion there and back keeps
// any bytes.

namespace ZelmResult {

// UTF-16 of UTF-8; a byte that belongs to no valid form becomes a lone surrogate of its own, U+DC80 to U+DCFF.
wstring PathFromBytes(std::string_view path);

// The reverse.
std::string PathToBytes(wstring_view path);

} // namespace ZelmResult
