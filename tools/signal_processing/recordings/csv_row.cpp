#include "tools/signal_processing/recordings/csv_row.h"

#include "tools/signal_processing/recordings/printed_number.h"

#include <algorithm>
#include <utility>

namespace zmxf {

namespace {

// In the order of preference: a comma between digits is a delimiter where it can be one.
constexpr std::string_view kDelimiters = ",;\t ";

bool AreNumbers(const std::vector<std::string>& cells, char decimal)
{
    PrintedNumber number;
    return !cells.empty() &&
           std::all_of(cells.begin(), cells.end(), [&](const auto& cell) { return IsNumber(cell, decimal, number); });
}

// How many lines after the names are numbers, as many in each.
std::size_t CountRows(const std::vector<std::string>& lines, CsvLayout& layout)
{
    std::size_t rows = 0;
    for (const std::string& line : lines) {
        std::vector<std::string> cells = CellsOf(line, layout.delimiter);
        const bool isRow = AreNumbers(cells, layout.decimal);
        if (&line == &lines.front() && !isRow) {
            layout.names = std::move(cells);
            continue;
        }
        if (layout.columns == 0) layout.columns = cells.size();
        if (!isRow || cells.size() != layout.columns) break;
        ++rows;
    }
    return !layout.names.empty() && layout.names.size() != layout.columns ? 0 : rows;
}

} // namespace

std::vector<std::string> CellsOf(std::string_view line, char delimiter)
{
    std::vector<std::string> cells;
    std::string cell;
    bool isQuoted = false;
    const auto finish = [&] {
        const std::string_view text = Trimmed(cell);
        if (delimiter != ' ' || !text.empty()) cells.emplace_back(text);
        cell.clear();
    };
    for (const char c : line) {
        if (c == '"')
            isQuoted = !isQuoted; // a doubled quote in a quoted cell is dropped
        else if (c == delimiter && !isQuoted)
            finish();
        else
            cell += c;
    }
    if (!Trimmed(cell).empty()) finish();
    return cells;
}

CsvLayout LayoutOf(const std::vector<std::string>& lines, const CsvFormat& format)
{
    const std::string delimiters = format.delimiter ? std::string(1, *format.delimiter) : std::string(kDelimiters);
    CsvLayout best;
    std::size_t most = 0;
    for (const char delimiter : delimiters) {
        for (const char decimal : {'.', ','}) {
            CsvLayout layout{delimiter, decimal};
            if (delimiter == decimal || decimal != format.decimal.value_or(decimal)) continue;
            const std::size_t rows = CountRows(lines, layout);
            if (rows <= most) continue;
            most = rows;
            best = std::move(layout);
        }
        if (most > 0) break;
    }
    return best;
}

} // namespace zmxf
