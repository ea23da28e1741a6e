#include "tools/zmxf/description.h"
#include "tools/zmxf/failure.h"
#include "tools/zmxf/text.h"
#include "tools/zmxf/verbs.h"
#include "zelmresult/results/scalar.h"

#include <iostream>
#include <memory>

namespace zmxf {

namespace {

using Align = TextTable::Align;
using ZelmResult::CGrandeur;
using ZelmResult::CScalar;

struct ShowOptions {
    std::string document;
    std::size_t number = 0;
    bool json = false;
};

const CScalar& AsScalar(const StoredResult& stored, const ShowOptions& options)
{
    const auto* scalar = dynamic_cast<const CScalar*>(stored.result.get());
    if (scalar == nullptr)
        throw Failure(Printable(options.document) + ": result " + std::to_string(options.number) +
                      " is of process type " + std::to_string(stored.listed.header->GetProcessType()) +
                      ", which holds no single level and cannot be shown");
    return *scalar;
}

Json ValueJson(float si, const CGrandeur* quantity)
{
    const auto decibels = InDecibels(si, quantity);
    return {{"si", JsonNumber(si)},
            {"inUnit", JsonNumber(static_cast<float>(InUnit(si, quantity)))},
            {"dB", decibels ? Json(*decibels) : Json(nullptr)}};
}

Json ShowJson(const ShowOptions& options, const StoredResult& stored, const CScalar& scalar)
{
    const CGrandeur* quantity = scalar.GetMagnitude();
    Json json;
    json["file"] = options.document;
    json["header"] = HeaderJson(stored.listed, options.number);
    json["quantity"] = QuantityJson(quantity);
    json["value"] = ValueJson(scalar.lastValue(), quantity);
    json["maximum"] = ValueJson(scalar.maxValue(), quantity);
    json["minimum"] = ValueJson(scalar.minValue(), quantity);
    return json;
}

void AddLine(TextTable& table, const char* name, const std::string& text)
{
    if (!text.empty()) table.AddRow({name, text});
}

std::string HeaderText(const StoredResult& stored, const CGrandeur* quantity)
{
    const auto& header = *stored.listed.header;
    TextTable table({Align::Left, Align::Left});
    AddLine(table, "Response", Printable(header.responseName()));
    AddLine(table, "Process",
            Printable(header.processCaption()) + " (type " + std::to_string(header.GetProcessType()) + ')');
    AddLine(table, "Quantity", quantity != nullptr ? Printable(quantity->quantityName()) : "none");
    AddLine(table, "Caption", Printable(header.caption()));
    AddLine(table, "Comment", Printable(header.comment()));
    AddLine(table, "Analyzer", Printable(header.analyzerCaption()));
    AddLine(table, "Date", DateText(header));
    AddLine(table, "System", std::to_string(stored.listed.system));
    return table.Text("  ");
}

std::string ValueText(float si, const CGrandeur* quantity)
{
    const std::string unit = UnitLabel(quantity);
    std::string text = NumberText(InUnit(si, quantity)) + (unit.empty() ? "" : ' ' + unit);
    if (const auto decibels = InDecibels(si, quantity))
        text += " (" + DecibelText(*decibels) + " re " + DecibelReference(quantity) + ')';
    return text;
}

std::string ShowText(const ShowOptions& options, const StoredResult& stored, const CScalar& scalar)
{
    const CGrandeur* quantity = scalar.GetMagnitude();
    TextTable values({Align::Left, Align::Left});
    values.AddRow({"Value", ValueText(scalar.lastValue(), quantity)});
    values.AddRow({"Maximum", ValueText(scalar.maxValue(), quantity)});
    values.AddRow({"Minimum", ValueText(scalar.minValue(), quantity)});
    return "Result " + std::to_string(options.number) + " of " + Printable(options.document) + '\n' +
           HeaderText(stored, quantity) + values.Text("  ");
}

void RunShow(const ShowOptions& options)
{
    const StoredResult stored = ReadResult(options.document, options.number);
    const CScalar& scalar = AsScalar(stored, options);
    std::cout << (options.json ? JsonDocument(ShowJson(options, stored, scalar)) : ShowText(options, stored, scalar));
}

} // namespace

void AddShowVerb(CLI::App& program)
{
    auto options = std::make_shared<ShowOptions>();
    CLI::App* verb = program.add_subcommand("show", "Shows one result of a document");
    verb->add_option("FILE", options->document, "Result document")->required();
    verb->add_option("N", options->number, "Number of the result, counted from 0 in file order")
        ->check(CLI::NonNegativeNumber)
        ->capture_default_str();
    verb->add_flag("--json", options->json, "Print JSON");
    verb->footer("Example:\n  zmxf show pump.zmxf 3");
    verb->callback([options] { RunShow(*options); });
}

} // namespace zmxf
