#include "tools/zmxf/base/csv.h"

namespace zmxf {

namespace {

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

bool LooksLikeFormula(const std::string& text)
{
    if (text.empty()) return false;
    const bool isSigned = text[0] == '+' || text[0] == '-';
    return text[0] == '=' || text[0] == '@' || text[0] == '\t' || text[0] == '\r' ||
           (isSigned && !(text.size() > 1 && IsLetter(text[1])));
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
