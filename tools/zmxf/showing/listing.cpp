#include "tools/zmxf/showing/listing.h"

#include "tools/zmxf/base/csv.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/list_table.h"
#include "tools/zmxf/showing/shown_result.h"

#include <algorithm>
#include <fmt/format.h>
#include <map>
#include <tuple>

namespace zmxf {

namespace {

using ZelmResult::CResultHeader;
using ZelmResult::LabelledArray;
using ZelmResult::LabelledResult;

// Points of a vector, after the count of its columns where there are several.
std::vector<std::size_t> LengthsOf(const ShownVector& vector)
{
    const std::size_t points = vector.x.values.size();
    return vector.columns.size() > 1 ? std::vector{vector.columns.size(), points} : std::vector{points};
}

std::vector<std::size_t> LengthsOf(const ShownResult& shown)
{
    if (shown.vector) return LengthsOf(*shown.vector);
    return shown.levels.empty() ? std::vector<std::size_t>{} : std::vector{shown.levels.size()};
}

// Of a waterfall without its data.
std::vector<std::size_t> LengthsOf(const LabelledResult& slices)
{
    const auto axis =
        std::find_if(slices.coordinates.begin(), slices.coordinates.end(), [](const LabelledArray& array) {
            return array.dimensions.size() == 1 && array.dimensions.front() != u"slice";
        });
    if (axis == slices.coordinates.end()) return {0, 0};
    return {slices.Coordinate(u"block")->Size(), axis->Size()};
}

// Whose results stand together.
auto ChannelOf(const ListEntry& entry)
{
    const CResultHeader& header = *entry.listed.header;
    return std::tuple(entry.listed.system, header.GetNumReponse(), header.responseName());
}

std::string ChannelTitle(const CResultHeader& header)
{
    const std::string name = Printable(header.responseName());
    return fmt::format("  #{}{}{}", header.GetNumReponse(), name.empty() ? "" : " ", name);
}

// The entries channel by channel, in the order in which their channels come first.
std::vector<const ListEntry*> ByChannel(const DocumentList& list)
{
    std::map<decltype(ChannelOf(list.entries.front())), std::size_t> channels;
    std::vector<std::pair<std::size_t, const ListEntry*>> ranked;
    for (const ListEntry& entry : list.entries)
        ranked.emplace_back(channels.try_emplace(ChannelOf(entry), channels.size()).first->second, &entry);
    std::stable_sort(ranked.begin(), ranked.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    std::vector<const ListEntry*> entries;
    entries.reserve(ranked.size());
    for (const auto& [rank, entry] : ranked) entries.push_back(entry);
    return entries;
}

ListTable TableOf(const std::vector<const ListEntry*>& entries)
{
    using enum TextTable::Align;
    ListTable table({{"N", Right, true},
                     {"System", Right},
                     {"Kind", Left, true},
                     {"Process", Left, true},
                     {"Reference", Left},
                     {"Shape", Right, true},
                     {"Unit", Left, true},
                     {"Date", Left},
                     {"Caption", Left}});
    for (const ListEntry* entry : entries) {
        const CResultHeader& header = *entry->listed.header;
        table.AddRow({std::to_string(entry->number), std::to_string(entry->listed.system), KindName(header),
                      Printable(header.processCaption()), Printable(header.referenceName()),
                      entry->shape ? entry->shape->Text() : "", entry->shape ? entry->shape->unit : "",
                      DateText(header.date()), Printable(header.caption())});
    }
    return table;
}

} // namespace

std::string DataShape::Text() const { return lengths.empty() ? "1" : fmt::format("{}", fmt::join(lengths, " x ")); }

DataShape ReadShape(ZelmResult::DocumentReader& reader, const std::string& path, std::size_t number)
{
    const ZelmResult::ListedResult listed = FindResult(reader, path, number);
    if (GroupOf(*listed.header) == ZelmResult::ResultGroup::Waterfall) {
        const LabelledResult slices = CheckRead(path, listed, number, reader.ReadSlices(number));
        return {LengthsOf(slices), UnitLabel(slices.quantity)};
    }
    ShowOptions options;
    options.document = path;
    options.number = number;
    const ShownResult shown = ReadShownResult(reader, options);
    return {LengthsOf(shown), UnitLabel(shown.labelled.quantity)};
}

std::string ListText(const DocumentList& list)
{
    const auto entries = ByChannel(list);
    const ListTable table = TableOf(entries);
    const std::string common = table.Common();
    std::string text = fmt::format("{}: {}{}{}\n", Printable(list.path), Counted(entries.size(), "result"),
                                   common.empty() ? "" : ", ", common);
    if (entries.empty()) return text;
    const std::vector<std::string> lines = table.Lines("    ");
    text += lines.front() + '\n';
    for (std::size_t i = 0; i < entries.size(); ++i) {
        if (i == 0 || ChannelOf(*entries[i]) != ChannelOf(*entries[i - 1]))
            text += fmt::format("{}\n", ChannelTitle(*entries[i]->listed.header));
        text += lines[i + 1] + '\n';
    }
    return text;
}

Json ListJson(const DocumentList& list)
{
    Json json{{"file", list.path}, {"results", Json::array()}};
    for (const ListEntry& entry : list.entries) {
        Json result = HeaderJson(entry.listed, entry.number);
        result["kind"] = KindName(*entry.listed.header);
        if (list.isLong) {
            result["shape"] = entry.shape ? Json(entry.shape->lengths) : Json(nullptr);
            result["unit"] = entry.shape ? Json(entry.shape->unit) : Json(nullptr);
        }
        json["results"].push_back(std::move(result));
    }
    return json;
}

std::string CsvTitles(bool isLong)
{
    return fmt::format("file,number,system,channel number,channel,kind,type,process,reference,date,caption{}\n",
                       isLong ? ",shape,unit" : "");
}

std::string ListCsv(const DocumentList& list)
{
    std::string text;
    for (const ListEntry& entry : list.entries) {
        const CResultHeader& header = *entry.listed.header;
        text += fmt::format("{},{},{},{},{},{},{},{},{},{},{}", CsvText(Printable(list.path)), entry.number,
                            entry.listed.system, header.GetNumReponse(), CsvText(Printable(header.responseName())),
                            KindName(header), header.GetProcessType(), CsvText(Printable(header.processCaption())),
                            CsvText(Printable(header.referenceName())), DateText(header.date()),
                            CsvText(Printable(header.caption())));
        if (list.isLong)
            text += entry.shape ? fmt::format(",{},{}", entry.shape->Text(), CsvText(entry.shape->unit)) : ",,";
        text += '\n';
    }
    return text;
}

} // namespace zmxf
