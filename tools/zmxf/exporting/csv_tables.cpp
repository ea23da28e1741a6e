#include "tools/zmxf/exporting/csv_tables.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"

#include <fmt/format.h>

namespace zmxf {

std::string TabledResult::Text() const
{
    return fmt::format("result {} of {}", result.information.number, Printable(document));
}

std::unique_ptr<CsvTable> MakeCsvTable(std::ostream& output, const ExportChoices& choices)
{
    if (choices.levelsOnly) return MakeLevelTable(output, choices);
    return choices.isLong ? MakeLongTable(output, choices) : MakeWideTable(output, choices);
}

void AddOriginTitles(CsvLines& lines)
{
    for (const char* title : kOriginTitles) lines.Text(title);
}

void AddOrigin(const TabledResult& result, CsvLines& lines)
{
    const ZelmResult::LabelledInformation& information = result.result.information;
    lines.Text(Printable(result.document));
    lines.Whole(static_cast<std::int64_t>(information.number));
    lines.Whole(information.system);
    lines.Whole(information.channelNumber);
    lines.Text(Printable(information.channel));
    lines.Text(Printable(information.reference));
    lines.Text(Printable(information.group));
    lines.Text(Printable(information.process));
    lines.Text(DateText(information.date));
}

std::string Titled(const std::string& title, const std::string& unit)
{
    return unit.empty() ? title : fmt::format("{} [{}]", title, unit);
}

} // namespace zmxf
