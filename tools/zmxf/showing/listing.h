#pragma once

#include "tools/zmxf/showing/description.h"
#include "zelmresult/reading/document_reader.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

// Results as they stand in lists: by their headers, and where it is asked for by what their data is like.

namespace zmxf {

// What the data of a result is like.
struct DataShape {
    std::vector<std::size_t>
        lengths; // slices and points of a waterfall, columns and points of a table; none for a level
    std::string unit;

    [[nodiscard]] std::string Text() const; // "159 x 4001", "1" for a level
};

// Reads its data, but no slices of a waterfall. Throws Failure when that can't be read or shown.
DataShape ReadShape(ZelmResult::DocumentReader& reader, const std::string& path, std::size_t number);

struct ListEntry {
    std::size_t number = 0;
    ZelmResult::ListedResult listed;
    std::optional<DataShape> shape = {}; // none unless it was asked for and could be read
};

// A document with the results that were selected.
struct DocumentList {
    std::string path;
    std::vector<ListEntry> entries;
    bool isLong = false; // with shapes
};

// A line per result under a line per channel, after what is the same for all.
std::string ListText(const DocumentList& list);
Json ListJson(const DocumentList& list);
// The titles of the columns, and a line per result.
std::string CsvTitles(bool isLong);
std::string ListCsv(const DocumentList& list);

} // namespace zmxf
