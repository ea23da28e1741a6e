#pragma once

#include <string>

namespace zmxf {

// Text as a cell of comma-separated values, quoted where RFC 4180 wants it. Spreadsheets take text that begins with =,
// @, a tab or a return for a formula, so an apostrophe stands before it; before + and - unless a name follows, such as
// "+Z".
std::string CsvText(std::string text, char delimiter = ',');

} // namespace zmxf
