#pragma once

#include "tools/zmxf/base/text.h"

#include <array>
#include <cstdint>
#include <string>

namespace zmxf {

std::array<char, 4> CharactersOf(std::uint32_t code);
// The four characters, "\x01" for what can't be printed, without the blanks at the end.
std::string CodeText(std::uint32_t code);
bool IsPrintable(std::uint32_t code);

} // namespace zmxf
