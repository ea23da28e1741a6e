#include "tools/zmxf/exporting/csv_lines.h"

#include "tools/zmxf/base/csv.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace zmxf {

void CsvLines::Text(const std::string& utf8)
{
    Begin();
    m_line += CsvText(utf8, m_choices.delimiter);
}

void CsvLines::Number(float value)
{
    Begin();
    if (std::isnan(value)) return;
    std::array<char, 32> digits{};
    char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::replace(digits.data(), end, '.', m_choices.decimalMark);
    m_line.append(digits.data(), end);
}

void CsvLines::Whole(std::int64_t value)
{
    Begin();
    m_line += std::to_string(value);
}

void CsvLines::Begin()
{
    if (!m_isFirst) m_line += m_choices.delimiter;
    m_isFirst = false;
}

void CsvLines::End()
{
    if (m_choices.isForExcel && !m_hasMark) m_output << "\xEF\xBB\xBF";
    m_hasMark = true;
    m_line += "\r\n";
    m_output << m_line;
    m_line.clear();
    m_isFirst = true;
}

} // namespace zmxf
