#include "tools/zmxf/damage/code_text.h"

#include <algorithm>

namespace zmxf {

namespace {

bool IsPrintable(char c) { return c >= 0x20 && c < 0x7F; }

} // namespace

std::array<char, 4> CharactersOf(std::uint32_t code)
{
    return {static_cast<char>(code & 0xFFU), static_cast<char>(code >> 8U & 0xFFU),
            static_cast<char>(code >> 16U & 0xFFU), static_cast<char>(code >> 24U)};
}

std::string CodeText(std::uint32_t code)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : CharactersOf(code)) {
        const auto byte = static_cast<unsigned char>(c);
        if (IsPrintable(c))
            text += c;
        else
            text += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

bool IsPrintable(std::uint32_t code)
{
    const std::array<char, 4> characters = CharactersOf(code);
    return std::all_of(characters.begin(), characters.end(), [](char c) { return IsPrintable(c); });
}

} // namespace zmxf
