#pragma once

#include "tools/zmxf/base/text.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace zmxf {

// A table that says once, beside it, what is the same in all rows, and nothing of empty columns.
class ListTable {
public:
    struct Column {
        const char* title;
        TextTable::Align align;
        bool staysInRows = false; // as what a row is about, even when it is the same in all
    };

    explicit ListTable(std::vector<Column> columns) : m_columns(std::move(columns)) {}
    // As many cells as there are columns.
    void AddRow(std::vector<std::string> cells) { m_rows.push_back(std::move(cells)); }
    // "System 0, Caption pump.wav": what is the same in all rows. Empty when nothing is.
    [[nodiscard]] std::string Common() const;
    // The titles and the rows, a line each, without what Common says.
    [[nodiscard]] std::vector<std::string> Lines(std::string_view indent) const;

private:
    [[nodiscard]] bool IsCommon(std::size_t column) const;
    [[nodiscard]] bool IsShown(std::size_t column) const;

    std::vector<Column> m_columns;
    std::vector<std::vector<std::string>> m_rows;
};

} // namespace zmxf
