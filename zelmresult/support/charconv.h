#pragma once

#include <charconv>
#include <cstddef>
#include <string_view>

// Floating point as digits and back, as std::to_chars and std::from_chars do it, also where the standard library of the
// compiler has them for whole numbers only.

namespace ZelmResult {

// The shortest digits that read back as the same number. Each of these gives where the text ends; it must fit.
char* ToChars(char* first, char* last, double value);
char* ToChars(char* first, char* last, float value);
// As printf does it.
char* ToChars(char* first, char* last, double value, std::chars_format format, int precision);

// How many characters of the text are the number that it begins with, 0 for none and for one out of range, which leaves
// the value alone.
std::size_t FromChars(std::string_view text, double& value);
std::size_t FromChars(std::string_view text, float& value);

} // namespace ZelmResult
