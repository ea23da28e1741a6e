#include "tools/zmxf/base/csv.h"

#include <string_view>

namespace zmxf {

namespace {

bool IsLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || static_cast<unsigned char>(c) >= 0x80U;
}

// "Z" and "Z bearing", but nothing that spreadsheets would call or start: "SUM(A1)", "cmd|' /C x'!A0".
bool IsName(std::string_view text)
{
    return !text.empty() && IsLetter(text[0]) && text.find_first_of("(|!") == std::string_view::npos;
}

bool LooksLikeFormula(const std::string& text)
{
    if (text.empty()) return false;
    const bool isSigned = text[0] == '+' || text[0] == '-';
    return text[0] == '=' || text[0] == '@' || text[0] == '\t' || text[0] == '\r' ||
           (isSigned && !IsName(std::string_view(text).substr(1)));
}

} // namespace

std::string CsvText(std::string text, char delimiter)
{
    if (LooksLikeFormula(text)) text.insert(0, "'");
    if (text.find_first_of(std::string("\"\n\r") + delimiter) == std::string::npos) return text;
    std::string quoted = "\"";
    for (const char c : text) quoted += c == '"' ? std::string("\"\"") : std::string(1, c);
    return quoted + '"';
}

} // namespace zmxf
