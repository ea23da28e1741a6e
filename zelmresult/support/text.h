#pragma once

#include "zelmresult/support/wstring.h"

#include <concepts>
#include <cstdint>
#include <string>
#include <string_view>

// Conversions between the library's UTF-16 text and the narrow forms at its edges, and numbers as text.
// Nothing here depends on the process locale.

namespace ZelmResult {

// UTF-8 of a UTF-16 text. A lone surrogate becomes its own three bytes, so that no text is lost.
std::string ToUtf8(wstring_view text);

// UTF-16 of a UTF-8 text. A byte that belongs to no valid form counts as its Windows-1252 character.
wstring FromUtf8(std::string_view text);

// UTF-16 of a narrow text as older files hold it: Windows-1252, the five unassigned bytes being the C1 controls,
// so one byte is always one character.
wstring FromCodePage(std::string_view text);

// Numbers as the debug dump shows them.
wstring ToHex8(std::uint32_t value); // eight lower-case digits
wstring ToHex(std::uint32_t value);  // as many digits as needed
wstring ToDecimal(std::int64_t value);
void AppendDecimal(wstring& text, std::int64_t value);
wstring ToDecimalPadded(std::int64_t value, int digits); // leading zeros up to the digits
wstring ToFixed(float value);                            // six decimals, "inf" and "nan" included
wstring ToFixed(double value);
wstring ToScientific(float value); // six decimals and an exponent of two digits or more

namespace detail {
inline void AppendPart(wstring& out, wstring_view part) { out += part; }
template <std::integral T>
    requires(!std::same_as<T, char16_t>)
void AppendPart(wstring& out, T part) { AppendDecimal(out, static_cast<std::int64_t>(part)); }
} // namespace detail

// Joins texts and integers (in decimal) into one text.
template <class... Parts>
wstring Concat(const Parts&... parts)
{
    wstring out;
    (detail::AppendPart(out, parts), ...);
    return out;
}

// Replaces "%1" and "%2" in one pass, so a replacement that contains "%2" itself isn't changed.
wstring FillPlaceholders(wstring_view text, wstring_view first, wstring_view second = {});

// Whether text contains part, in time linear in the two lengths.
bool Contains(wstring_view text, wstring_view part);

} // namespace ZelmResult
