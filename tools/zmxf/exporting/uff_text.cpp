#include "tools/zmxf/exporting/uff_text.h"

#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <iterator>
#include <string_view>

namespace zmxf {

namespace {

constexpr std::size_t kRealColumns = 13;

// From U+00A0 to U+00FF.
constexpr std::array<std::string_view, 96> kLatin = {
    " ",   "!",  "c", "GBP", "?", "JPY", "|",  "S", "\"", "(c)", "a", "<<", "-",   "-",   "(r)", "-",
    "deg", "+-", "2", "3",   "'", "u",   "P",  ".", ",",  "1",   "o", ">>", "1/4", "1/2", "3/4", "?",
    "A",   "A",  "A", "A",   "A", "A",   "AE", "C", "E",  "E",   "E", "E",  "I",   "I",   "I",   "I",
    "D",   "N",  "O", "O",   "O", "O",   "O",  "x", "O",  "U",   "U", "U",  "U",   "Y",   "Th",  "ss",
    "a",   "a",  "a", "a",   "a", "a",   "ae", "c", "e",  "e",   "e", "e",  "i",   "i",   "i",   "i",
    "d",   "n",  "o", "o",   "o", "o",   "o",  "/", "o",  "u",   "u", "u",  "u",   "y",   "th",  "y"};

struct Likeness {
    char16_t character;
    std::string_view ascii;
};

constexpr auto kOthers = std::to_array<Likeness>({
    {u'\u03BC', "u"},
    {u'\u03A9', "Ohm"},
    {u'\u2126', "Ohm"},
    {u'\u2013', "-"},
    {u'\u2014', "-"},
    {u'\u2018', "'"},
    {u'\u2019', "'"},
    {u'\u201C', "\""},
    {u'\u201D', "\""},
    {u'\u2026', "..."},
    {u'\u207B', "-"},
    {u'\u20AC', "EUR"},
    {u'\u2212', "-"},
    {u'\u22C5', "."},
    {u'\u221A', "sqrt"},
});

std::string_view LikenessOf(char16_t c)
{
    if (c >= 0xA0 && c <= 0xFF) return kLatin[c - 0xA0U];
    const auto* const other =
        std::find_if(kOthers.begin(), kOthers.end(), [c](const Likeness& likeness) { return likeness.character == c; });
    return other != kOthers.end() ? other->ascii : "?";
}

double Read(const std::string& text)
{
    double value = 0.0;
    std::from_chars(text.data() + text.find_first_not_of(' '), text.data() + text.size(), value);
    return value;
}

} // namespace

std::string AsciiText(ZelmResult::wstring_view text)
{
    std::string ascii;
    for (const char16_t c : text) {
        if (c >= 0xDC00 && c < 0xE000) continue; // the second half of a character
        if (c < 0x20 || (c >= 0x7F && c < 0xA0))
            ascii += ' ';
        else if (c < 0x7F)
            ascii += static_cast<char>(c);
        else
            ascii += LikenessOf(c);
    }
    ascii.erase(ascii.find_last_not_of(' ') + 1);
    return ascii.erase(0, ascii.find_first_not_of(' '));
}

std::string UffInteger(std::int64_t value, std::size_t columns)
{
    std::string text = fmt::format("{:{}}", value, columns);
    return text.size() == columns ? text : fmt::format("{:{}}", 0, columns);
}

UffReal::UffReal(double number, double tolerance)
{
    const auto improve = [&](const std::string& digits) {
        if (digits.size() >= kRealColumns) return;
        const double read = Read(digits);
        if (!(std::fabs(read - number) < std::fabs(value - number))) return;
        text = fmt::format("{:>{}}", digits, kRealColumns);
        value = read;
    };
    improve(fmt::format("{:.5E}", number));
    if (std::fabs(value - number) <= tolerance) return;
    improve(fmt::format("{:.6E}", number));
    if (std::fabs(number) < 1e9)
        for (int decimals = 3; decimals <= 10 && std::fabs(value - number) > tolerance; ++decimals)
            improve(fmt::format("{:.{}f}", number, decimals));
}

void AppendUffDouble(std::string& text, float value)
{
    fmt::format_to(std::back_inserter(text), "{:20.12E}", ShortestDouble(value));
}

} // namespace zmxf
