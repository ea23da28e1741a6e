#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/showing/description.h"
#include "tools/zmxf/showing/list_table.h"
#include "tools/zmxf/showing/value_text.h"
#include "tools/zmxf/verbs/selection_options.h"
#include "tools/zmxf/verbs/verbs.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/text.h"

#include <fmt/format.h>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::ListedResult;

struct InfoOptions {
    std::string document;
    Selection selection;
    bool json = false;
};

// What a document holds besides the data of its results, all of it whole.
struct Outline {
    std::uint16_t version = 0;
    std::uint32_t type = 0;
    std::int32_t systems = 0;
    std::vector<ZelmResult::strHardInfo> hardware;
    std::vector<ZelmResult::StoredQuantity> quantities;
    std::vector<ListedResult> results;
    std::vector<std::size_t> selected; // the numbers of those that are shown
};

Outline ReadOutline(const InfoOptions& options)
{
    const std::string& path = options.document;
    ZelmResult::DocumentReader reader = OpenDocument(path);
    if (!reader.version()) throw Unreadable(path, "its version");
    const auto& quantities = reader.Quantities();
    CheckWhole(path, quantities.damage);
    const auto results = ListResults(reader, path);
    return {*reader.version(),
            reader.head().GetType(),
            reader.head().GetSystemeNumber(),
            reader.ReadHardware().items,
            quantities.items,
            {results.begin(), results.end()},
            options.selection.IsMade() ? options.selection.Require(path, results) : options.selection.Of(results)};
}

std::string Joined(const std::vector<std::string>& names)
{
    return names.empty() ? "nothing" : fmt::format("{}", fmt::join(names, ", "));
}

std::size_t ResultCount(const Outline& outline, std::int32_t system)
{
    std::size_t count = 0;
    for (const ListedResult& listed : outline.results) count += listed.system == system ? 1 : 0;
    return count;
}

Json InfoJson(const std::string& path, const Outline& outline)
{
    Json json;
    json["file"] = path;
    json["version"] = outline.version;
    json["type"] = outline.type;
    json["contents"] = ContentNames(outline.type);
    json["hardware"] = HardwareJson(outline.hardware);
    json["systems"] = Json::array();
    for (std::int32_t system = 0; system < outline.systems; ++system)
        json["systems"].push_back({{"number", system}, {"results", ResultCount(outline, system)}});
    json["quantities"] = Json::array();
    for (const auto& stored : outline.quantities) {
        Json described = QuantityJson(ZelmResult::LabelledQuantity::Of(stored.quantity.get()));
        described["code"] = CodeText(stored);
        json["quantities"].push_back(described);
    }
    json["results"] = Json::array();
    for (const std::size_t i : outline.selected) json["results"].push_back(HeaderJson(outline.results[i], i));
    return json;
}

std::string QuantityTable(const Outline& outline)
{
    TextTable table({Align::Left, Align::Left, Align::Left, Align::Left, Align::Left, Align::Left});
    table.AddRow({"Code", "Key", "Name", "Unit", "0 dB", "Dimension"});
    for (const auto& stored : outline.quantities) {
        const auto quantity = ZelmResult::LabelledQuantity::Of(stored.quantity.get());
        table.AddRow({CodeText(stored), Printable(quantity->key), Printable(quantity->name), UnitLabel(quantity),
                      DecibelReference(quantity), DimensionText(*quantity)});
    }
    return table.Text("  ");
}

std::string ResultTable(const Outline& outline)
{
    ListTable table({{"N", Align::Right, true},
                     {"System", Align::Right},
                     {"Type", Align::Right, true},
                     {"Process", Align::Left, true},
                     {"Response", Align::Left},
                     {"Reference", Align::Left},
                     {"Date", Align::Left},
                     {"Caption", Align::Left}});
    for (const std::size_t i : outline.selected) {
        const auto& header = *outline.results[i].header;
        table.AddRow({std::to_string(i), std::to_string(outline.results[i].system),
                      std::to_string(header.GetProcessType()), Printable(header.processCaption()),
                      Printable(header.responseName()), Printable(header.referenceName()), DateText(header.date()),
                      Printable(header.caption())});
    }
    const std::string common = table.Common();
    return fmt::format("{}{}\n{}\n", common.empty() ? "" : ": ", common, fmt::join(table.Lines("  "), "\n"));
}

std::string InfoText(const std::string& path, const Outline& outline)
{
    std::string text = fmt::format("{}: result document, version {}, type {} ({})\n", Printable(path), outline.version,
                                   outline.type, Joined(ContentNames(outline.type)));
    for (const auto& entry : outline.hardware)
        text += fmt::format("Hardware: {}{}{}\n", Printable(entry.HardShortName), entry.HardSN.empty() ? "" : " ",
                            Printable(entry.HardSN));
    for (std::int32_t system = 0; system < outline.systems; ++system)
        text += fmt::format("System {}: {}\n", system, Counted(ResultCount(outline, system), "result"));
    if (!outline.quantities.empty()) text += fmt::format("Quantities\n{}", QuantityTable(outline));
    if (!outline.results.empty()) text += "Results" + ResultTable(outline);
    return text;
}

void RunInfo(const InfoOptions& options)
{
    const Outline outline = ReadOutline(options);
    std::cout << (options.json ? JsonDocument(InfoJson(options.document, outline))
                               : InfoText(options.document, outline));
}

} // namespace

void AddInfoVerb(CLI::App& program)
{
    auto options = std::make_shared<InfoOptions>();
    CLI::App* verb = program.add_subcommand("info", "Lists what a result document holds, without reading result data");
    verb->add_option("FILE", options->document, "Result document")->required();
    AddSelectionOptions(*verb, options->selection);
    verb->add_flag("--json", options->json, "Print JSON");
    verb->footer("Example:\n  zmxf info pump.zmxf --json");
    verb->callback([options] { RunInfo(*options); });
}

} // namespace zmxf
