#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <utility>
#include <vector>

namespace ZelmResult {

namespace {

constexpr bool IsHighSurrogate(char32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
constexpr bool IsLowSurrogate(char32_t unit) { return unit >= 0xDC00 && unit < 0xE000; }
constexpr bool IsContinuation(unsigned char byte) { return (byte & 0xC0U) == 0x80U; }

void AppendUtf8(std::string& out, char32_t c)
{
    const auto put = [&out](char32_t byte) { out += static_cast<char>(static_cast<unsigned char>(byte)); };
    if (c < 0x80) {
        put(c);
    } else if (c < 0x800) {
        put(0xC0 | (c >> 6U));
        put(0x80 | (c & 0x3FU));
    } else if (c < 0x10000) {
        put(0xE0 | (c >> 12U));
        put(0x80 | ((c >> 6U) & 0x3FU));
        put(0x80 | (c & 0x3FU));
    } else {
        put(0xF0 | (c >> 18U));
        put(0x80 | ((c >> 12U) & 0x3FU));
        put(0x80 | ((c >> 6U) & 0x3FU));
        put(0x80 | (c & 0x3FU));
    }
}

// The characters of the bytes 0x80 to 0x9F; 0x81, 0x8D, 0x8F, 0x90 and 0x9D are the unassigned ones.
constexpr std::array<char16_t, 32> kCodePageHigh = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

constexpr char16_t FromCodePageByte(unsigned char byte)
{
    return byte >= 0x80 && byte < 0xA0 ? kCodePageHigh[byte - 0x80U] : static_cast<char16_t>(byte);
}

struct Decoded {
    char32_t character;
    std::size_t length; // 0 when the bytes are no valid form
};

Decoded DecodeUtf8(std::string_view text)
{
    const auto byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char lead = byte(0);
    if (lead < 0x80) return {lead, 1};

    std::size_t length = 0;
    char32_t c = 0;
    char32_t least = 0;
    if ((lead & 0xE0U) == 0xC0U) {
        length = 2, c = lead & 0x1FU, least = 0x80;
    } else if ((lead & 0xF0U) == 0xE0U) {
        length = 3, c = lead & 0x0FU, least = 0x800;
    } else if ((lead & 0xF8U) == 0xF0U) {
        length = 4, c = lead & 0x07U, least = 0x10000;
    }
    if (length == 0 || length > text.size()) return {0, 0};
    for (std::size_t i = 1; i < length; ++i) {
        if (!IsContinuation(byte(i))) return {0, 0};
        c = (c << 6U) | (byte(i) & 0x3FU);
    }
    // The three bytes of a lone surrogate are accepted: ToUtf8 makes them.
    if (c < least || c > 0x10FFFF) return {0, 0};
    return {c, length};
}

template <class... Format>
wstring FromToChars(double value, Format... format)
{
    std::array<char, 320> buffer{}; // the longest number in fixed form has 310 + 7 characters
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, format...);
    return {buffer.data(), result.ptr};
}

} // namespace

std::string ToUtf8(wstring_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (IsHighSurrogate(c) && i + 1 < text.size() && IsLowSurrogate(text[i + 1]))
            c = 0x10000 + ((c - 0xD800) << 10U) + (text[++i] - 0xDC00U);
        AppendUtf8(out, c);
    }
    return out;
}

wstring FromUtf8(std::string_view text)
{
    wstring out;
    out.reserve(text.size());
    while (!text.empty()) {
        auto [c, length] = DecodeUtf8(text);
        if (length == 0) {
            c = FromCodePageByte(static_cast<unsigned char>(text[0]));
            length = 1;
        }
        if (c < 0x10000) {
            out += static_cast<char16_t>(c);
        } else {
            out += static_cast<char16_t>(0xD800 + ((c - 0x10000) >> 10U));
            out += static_cast<char16_t>(0xDC00 + ((c - 0x10000) & 0x3FFU));
        }
        text.remove_prefix(length);
    }
    return out;
}

wstring FromCodePage(std::string_view text)
{
    wstring out(text.size(), u'\0');
    for (std::size_t i = 0; i < text.size(); ++i) out[i] = FromCodePageByte(static_cast<unsigned char>(text[i]));
    return out;
}

wstring ToHex8(std::uint32_t value)
{
    const wstring digits = ToHex(value);
    return wstring(8 - digits.size(), u'0') + digits;
}

wstring ToHex(std::uint32_t value)
{
    std::array<char, 8> buffer{};
    const auto result = std::to_chars(buffer.data(), buffer.data() + buffer.size(), value, 16);
    return {buffer.data(), result.ptr};
}

void AppendDecimal(wstring& text, std::int64_t value)
{
    std::array<char, 24> digits{};
    const char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    const std::size_t start = text.size();
    text.resize(start + static_cast<std::size_t>(end - digits.data()));
    std::copy(std::as_const(digits).data(), end, text.begin() + static_cast<std::ptrdiff_t>(start));
}

wstring ToDecimal(std::int64_t value)
{
    wstring text;
    AppendDecimal(text, value);
    return text;
}

wstring ToDecimalPadded(std::int64_t value, int digits)
{
    const bool negative = value < 0;
    wstring text = ToDecimal(value);
    const auto wanted = static_cast<std::size_t>(std::max(digits, 0));
    if (text.size() < wanted) text.insert(negative ? 1 : 0, wanted - text.size(), u'0');
    return text;
}

wstring ToFixed(float value) { return ToFixed(static_cast<double>(value)); }
wstring ToFixed(double value) { return FromToChars(value, std::chars_format::fixed, 6); }
wstring ToScientific(float value) { return FromToChars(static_cast<double>(value), std::chars_format::scientific, 6); }

wstring FillPlaceholders(wstring_view text, wstring_view first, wstring_view second)
{
    wstring out;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const char16_t next = i + 1 < text.size() ? text[i + 1] : u'\0';
        if (text[i] == u'%' && (next == u'1' || next == u'2')) {
            out += next == u'1' ? first : second;
            ++i;
        } else {
            out += text[i];
        }
    }
    return out;
}

// Knuth, Morris and Pratt: border says how much of part still matches after a mismatch.
bool Contains(wstring_view text, wstring_view part)
{
    constexpr std::size_t shortPart = 16; // short enough for the plain search
    if (part.size() <= shortPart) return text.find(part) != wstring_view::npos;
    std::vector<std::size_t> border(part.size(), 0);
    const auto advance = [&](std::size_t fitting, char16_t next) {
        while (fitting > 0 && (fitting == part.size() || part[fitting] != next)) fitting = border[fitting - 1];
        return part[fitting] == next ? fitting + 1 : fitting;
    };
    for (std::size_t i = 1; i < part.size(); ++i) border[i] = advance(border[i - 1], part[i]);
    std::size_t fitting = 0;
    for (const char16_t next : text) {
        fitting = advance(fitting, next);
        if (fitting == part.size()) return true;
    }
    return false;
}

} // namespace ZelmResult
