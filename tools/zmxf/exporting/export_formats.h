#pragma once

#include "tools/zmxf/exporting/exporter.h"

#include <span>
#include <string>
#include <string_view>

// The formats that results are exported to.

namespace zmxf {

using StreamExporterMaker = std::unique_ptr<Exporter> (*)(std::ostream&, const ExportedDocument&, const ExportChoices&,
                                                          ExportNotes&);
using FileExporterMaker = std::unique_ptr<Exporter> (*)(const std::string&, const ExportedDocument&,
                                                        const ExportChoices&, ExportNotes&);

struct ExportFormatEntry {
    ExportFormat format;
    const char* name;   // on the command line
    const char* suffix; // of its files
    // One of them; none in a program that was built without the format. Tables of CSV have writers of their own.
    StreamExporterMaker makeOnStream = nullptr;
    FileExporterMaker makeOnFile = nullptr;

    [[nodiscard]] bool IsBuilt() const;
};

std::span<const ExportFormatEntry> ExportFormats();
const ExportFormatEntry& EntryOf(ExportFormat format);
const ExportFormatEntry& FormatNamed(std::string_view name); // of those that there are

} // namespace zmxf
