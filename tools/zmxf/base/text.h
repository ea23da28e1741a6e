#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

// Text as the program prints it: UTF-8, independent of the locale.

namespace zmxf {

// Text of any origin as one harmless line: blanks for line breaks and tabs, U+FFFD for other control characters and
// for what isn't a character. Bytes that aren't UTF-8 count as their Windows-1252 characters.
std::string Printable(ZelmResult::wstring_view text);
std::string Printable(std::string_view utf8);

// Six significant digits; "undefined" for a NaN, "infinite".
std::string NumberText(double value);
// "-90.0°"
std::string AngleText(double degrees);
// The shortest digits that read back as the same number.
std::string ExactText(double value);
// The shortest digits that read back as the same float, as a double: 0.1 for 0.1F.
double ShortestDouble(float value);
// "0x1F4"
std::string OffsetText(std::int64_t offset);
// "1 channel", "2 channels"
std::string Counted(std::size_t count, const char* what);

// Digits and nothing else; nothing for another text.
std::optional<std::uint32_t> WholeNumber(std::string_view text);

// Columns of text, padded to their widest cell, two blanks between them. Numbers align to the right, as far as they
// are put in with Right.
class TextTable {
public:
    enum class Align { Left, Right };

    explicit TextTable(std::vector<Align> columns) : m_columns(std::move(columns)) {}
    // As many cells as there are columns.
    void AddRow(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }
    // All rows, each after the indent and ended by a line feed.
    [[nodiscard]] std::string Text(std::string_view indent = "") const;

private:
    std::vector<Align> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace zmxf
