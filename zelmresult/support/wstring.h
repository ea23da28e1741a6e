#pragma once

#include <string>
#include <string_view>

namespace ZelmResult {

// Text inside the library is UTF-16: one unit of 16 bits per element, as it is stored.
using wstring = std::u16string;
using wstring_view = std::u16string_view;

} // namespace ZelmResult
