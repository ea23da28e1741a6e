#pragma once

#include "tools/zmxf/exporting/export_choices.h"

#include <cstdint>
#include <ostream>
#include <string>

namespace zmxf {

// Writes cells, line by line as RFC 4180 has them. Keeps references to what it is given.
class CsvLines {
public:
    CsvLines(std::ostream& output, const ExportChoices& choices) : m_output(output), m_choices(choices) {}

    void Text(const std::string& utf8);
    void Number(float value); // the shortest digits; nothing for a NaN
    void Whole(std::int64_t value);
    void Empty() { Begin(); }
    void End(); // for Excel the first one follows a byte-order mark

private:
    void Begin(); // a cell

    std::ostream& m_output;
    const ExportChoices& m_choices;
    std::string m_line;
    bool m_isFirst = true; // of its line
    bool m_hasMark = false;
};

} // namespace zmxf
