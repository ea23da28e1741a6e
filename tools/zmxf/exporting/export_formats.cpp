#include "tools/zmxf/exporting/export_formats.h"

#include <algorithm>
#include <array>

namespace zmxf {

namespace {

#ifdef ZELMRESULT_EXPORT_HDF5
constexpr FileExporterMaker kMakeHdf5 = MakeHdf5Exporter;
#else
constexpr FileExporterMaker kMakeHdf5 = nullptr;
#endif

constexpr std::array kFormats = std::to_array<ExportFormatEntry>({
    {ExportFormat::Csv, "csv", ".csv"},

    {ExportFormat::Json, "json", ".json", MakeJsonExporter},

    {ExportFormat::Uff, "uff", ".uff", MakeUffExporter},
    {ExportFormat::UffBinary, "uff-binary", ".uff", MakeUffExporter},

    {ExportFormat::Hdf5, "hdf5", ".h5", nullptr, kMakeHdf5},

    {ExportFormat::Mat, "mat", ".mat", MakeMatExporter},
});

} // namespace

bool ExportFormatEntry::IsBuilt() const
{
    return format == ExportFormat::Csv || makeOnStream != nullptr || makeOnFile != nullptr;
}

std::span<const ExportFormatEntry> ExportFormats() { return kFormats; }

const ExportFormatEntry& EntryOf(ExportFormat format)
{
    return *std::find_if(kFormats.begin(), kFormats.end(),
                         [format](const ExportFormatEntry& entry) { return entry.format == format; });
}

const ExportFormatEntry& FormatNamed(std::string_view name)
{
    return *std::find_if(kFormats.begin(), kFormats.end(),
                         [name](const ExportFormatEntry& entry) { return entry.name == name; });
}

} // namespace zmxf
