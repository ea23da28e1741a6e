#include "tools/zmxf/base/text.h"

#include "zelmresult/support/charconv.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

constexpr std::size_t kWidestColumn = 200;

constexpr char16_t kReplacement = u'\uFFFD';

bool IsHighSurrogate(char16_t c) { return c >= 0xD800 && c < 0xDC00; }
bool IsLowSurrogate(char16_t c) { return c >= 0xDC00 && c < 0xE000; }

char16_t Harmless(char16_t c)
{
    if (c == u'\n' || c == u'\r' || c == u'\t') return u' ';
    const bool control = c < 0x20 || (c >= 0x7F && c < 0xA0) || c == 0x2028 || c == 0x2029;
    return control ? kReplacement : c;
}

std::size_t Width(std::string_view utf8)
{
    return static_cast<std::size_t>(std::count_if(
        utf8.begin(), utf8.end(), [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80; }));
}

std::string Formatted(double value, std::chars_format format, int precision)
{
    if (std::isnan(value)) return "undefined";
    if (std::isinf(value)) return value > 0 ? "infinite" : "-infinite";
    std::array<char, 400> buffer{}; // the largest double takes 309 digits before the point
    return {buffer.data(), ZelmResult::ToChars(buffer.data(), buffer.data() + buffer.size(), value, format, precision)};
}

} // namespace

std::string Printable(ZelmResult::wstring_view text)
{
    ZelmResult::wstring line;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (IsHighSurrogate(text[i]) && i + 1 < text.size() && IsLowSurrogate(text[i + 1])) {
            line += text.substr(i++, 2);
        } else {
            line += IsHighSurrogate(text[i]) || IsLowSurrogate(text[i]) ? kReplacement : Harmless(text[i]);
        }
    }
    return ZelmResult::ToUtf8(line);
}

std::string Printable(std::string_view utf8) { return Printable(ZelmResult::FromUtf8(utf8)); }

std::string NumberText(double value) { return Formatted(value, std::chars_format::general, 6); }

std::string AngleText(double degrees)
{
    const double rounded = std::round(degrees * 10.0) / 10.0 + 0.0; // no -0.0
    return Formatted(rounded, std::chars_format::fixed, 1) + "\u00B0";
}

std::string ExactText(double value)
{
    std::array<char, 32> buffer{};
    return {buffer.data(), ZelmResult::ToChars(buffer.data(), buffer.data() + buffer.size(), value)};
}

double ShortestDouble(float value)
{
    if (!std::isfinite(value)) return static_cast<double>(value);
    std::array<char, 32> buffer{};
    const char* const end = ZelmResult::ToChars(buffer.data(), buffer.data() + buffer.size(), value);
    double read = 0.0;
    (void)ZelmResult::FromChars({buffer.data(), static_cast<std::size_t>(end - buffer.data())}, read);
    return read;
}

std::string OffsetText(std::int64_t offset) { return fmt::format("0x{:X}", offset); }

std::string Counted(std::size_t count, const char* what)
{
    return fmt::format("{} {}{}", count, what, count == 1 ? "" : "s");
}

std::optional<std::uint32_t> WholeNumber(std::string_view text)
{
    std::uint32_t value = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    if (error != std::errc() || stop != end) return std::nullopt;
    return value;
}

std::string TextTable::Text(std::string_view indent) const
{
    std::vector<std::size_t> widths(m_columns.size());
    for (const auto& row : m_rows)
        for (std::size_t i = 0; i < row.size(); ++i) // a cell beyond that sticks out, and costs no other row its length
            if (Width(row[i]) <= kWidestColumn) widths[i] = std::max(widths[i], Width(row[i]));
    std::string text;
    for (const auto& row : m_rows) {
        std::string line(indent);
        for (std::size_t i = 0; i < row.size(); ++i) {
            const std::string padding(widths[i] - std::min(widths[i], Width(row[i])), ' ');
            if (i != 0) line += "  ";
            line += m_columns[i] == Align::Right ? padding + row[i] : row[i] + padding;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        text += line;
        text += '\n';
    }
    return text;
}

} // namespace zmxf
