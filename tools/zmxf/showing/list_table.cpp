#include "tools/zmxf/showing/list_table.h"

#include <algorithm>
#include <fmt/format.h>
#include <sstream>

namespace zmxf {

bool ListTable::IsCommon(std::size_t column) const
{
    return !m_rows.empty() && !m_columns[column].staysInRows &&
           std::all_of(m_rows.begin(), m_rows.end(),
                       [&](const auto& row) { return row[column] == m_rows.front()[column]; });
}

bool ListTable::IsShown(std::size_t column) const
{
    return !IsCommon(column) &&
           std::any_of(m_rows.begin(), m_rows.end(), [column](const auto& row) { return !row[column].empty(); });
}

std::string ListTable::Common() const
{
    std::vector<std::string> facts;
    for (std::size_t i = 0; i < m_columns.size(); ++i)
        if (IsCommon(i) && !m_rows.front()[i].empty())
            facts.push_back(fmt::format("{} {}", m_columns[i].title, m_rows.front()[i]));
    return fmt::format("{}", fmt::join(facts, ", "));
}

std::vector<std::string> ListTable::Lines(std::string_view indent) const
{
    std::vector<std::size_t> shown;
    std::vector<TextTable::Align> aligns;
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < m_columns.size(); ++i) {
        if (!IsShown(i)) continue;
        shown.push_back(i);
        aligns.push_back(m_columns[i].align);
        titles.emplace_back(m_columns[i].title);
    }
    TextTable table(std::move(aligns));
    table.AddRow(std::move(titles));
    for (const auto& row : m_rows) {
        std::vector<std::string> cells;
        cells.reserve(shown.size());
        for (const std::size_t i : shown) cells.push_back(row[i]);
        table.AddRow(std::move(cells));
    }
    std::istringstream text(table.Text(indent));
    std::vector<std::string> lines;
    for (std::string line; std::getline(text, line);) lines.push_back(line);
    return lines;
}

} // namespace zmxf
