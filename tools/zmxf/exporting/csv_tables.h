#pragma once

#include "tools/zmxf/exporting/csv_lines.h"
#include "zelmresult/reading/labelled_result.h"

#include <array>
#include <memory>
#include <string>

namespace zmxf {

// A result, and what a table says of it besides.
struct TabledResult {
    std::string document; // path
    ZelmResult::LabelledResult result;

    [[nodiscard]] std::string Text() const; // "result 3 of x.zmxf"
};

// A table of one result or of many, of any documents. All operations throw Failure.
class CsvTable {
public:
    virtual ~CsvTable() = default;
    // Whether each result is announced before the first one is added: then the table learns which columns it has.
    [[nodiscard]] virtual bool WantsAnnouncements() const { return false; }
    virtual void Announce(const TabledResult& /*result*/) {}
    virtual void Add(TabledResult result) = 0;
    virtual void Finish() = 0;
};

// Each keeps references to what it is given.
//
// A row per point or slice; results are joined side by side when their rows stand for the same.
std::unique_ptr<CsvTable> MakeWideTable(std::ostream& output, const ExportChoices& choices);
// A row per value.
std::unique_ptr<CsvTable> MakeLongTable(std::ostream& output, const ExportChoices& choices);
// A row per level.
std::unique_ptr<CsvTable> MakeLevelTable(std::ostream& output, const ExportChoices& choices);
// The one that was chosen.
std::unique_ptr<CsvTable> MakeCsvTable(std::ostream& output, const ExportChoices& choices);

// What tables share: the cells that say which result it is, with their titles.
inline constexpr std::array<const char*, 9> kOriginTitles = {
    "File", "Number", "System", "Channel number", "Channel", "Reference", "Kind", "Process", "Date"};
void AddOriginTitles(CsvLines& lines);
void AddOrigin(const TabledResult& result, CsvLines& lines);
// "Acceleration [m/s²]"
std::string Titled(const std::string& title, const std::string& unit);

} // namespace zmxf
