#pragma once

#include "tools/zmxf/base/terminal.h"

#include <cstdint>
#include <string>
#include <string_view>

namespace zmxf {

enum class Colour : std::uint8_t { Red, Green, Yellow };

// The text in a colour when the stream is a terminal that has colours, and NO_COLOR is unset or empty in the
// environment. Else the text as it is.
std::string Coloured(std::string_view text, Colour colour, Stream stream);

} // namespace zmxf
