#pragma once

#include "zelmresult/support/wstring.h"

#include <cstdint>

namespace ZelmResult {

// A four-character code: the first character is the low byte, so that the bytes on disk read as the text.
consteval std::uint32_t FourCC(const char (&text)[5])
{
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) code |= static_cast<std::uint32_t>(static_cast<unsigned char>(text[i])) << 8U * i;
    return code;
}

// The code of the first four characters, padded with blanks. Folding to upper case touches ASCII letters only.
constexpr std::uint32_t StringToFourCC(wstring_view text, bool toUpper)
{
    std::uint32_t code = 0;
    for (unsigned i = 0; i < 4; ++i) {
        char16_t c = i < text.size() ? text[i] : u' ';
        if (toUpper && c >= u'a' && c <= u'z') c = static_cast<char16_t>(c - u'a' + u'A');
        code |= (static_cast<std::uint32_t>(c) & 0xFFU) << 8U * i;
    }
    return code;
}

// The four characters for a person to read, with "?" for what isn't printable ASCII.
inline wstring FourCCToString(std::uint32_t code)
{
    wstring text;
    for (unsigned i = 0; i < 4; ++i) {
        const auto c = static_cast<char16_t>(code >> 8U * i & 0xFFU);
        text += c >= u' ' && c <= u'~' ? c : u'?';
    }
    return text;
}

inline constexpr std::uint32_t kCodeRiff = FourCC("RIFF");
inline constexpr std::uint32_t kCodeList = FourCC("LIST");

} // namespace ZelmResult
