#pragma once

#include "tools/signal_processing/recordings/csv_file.h"

#include <string_view>
#include <vector>

namespace zmxf {

// How the cells of a line are told apart, and what is in front of the first row.
struct CsvLayout {
    char delimiter = ',';
    char decimal = '.';
    std::vector<std::string> names = {}; // of the columns; none without a line of names
    std::size_t columns = 0;
};

// The cells of a line, without quotes and blanks around them. A delimiter at the end has no cell after it, and blanks
// in a row count as one.
std::vector<std::string> CellsOf(std::string_view line, char delimiter);

// The first delimiter that makes numbers of a line, with the decimal mark that makes numbers of the most lines, where
// the user leaves them open. The first of the lines may hold names. Without any columns when no line is numbers.
CsvLayout LayoutOf(const std::vector<std::string>& lines, const CsvFormat& format);

} // namespace zmxf
