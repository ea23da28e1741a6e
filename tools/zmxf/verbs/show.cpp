#include "tools/zmxf/showing/result_json.h"
#include "tools/zmxf/showing/result_text.h"
#include "tools/zmxf/verbs/verbs.h"

#include <iostream>
#include <memory>

namespace zmxf {

namespace {

void RunShow(const ShowOptions& options, bool isJson)
{
    const ShownResult shown = ReadShownResult(options);
    std::cout << (isJson ? JsonDocument(ResultJson(options, shown)) : ResultText(options, shown));
}

} // namespace

void AddShowVerb(CLI::App& program)
{
    auto options = std::make_shared<ShowOptions>();
    auto json = std::make_shared<bool>(false);
    CLI::App* verb = program.add_subcommand("show", "Shows one result of a document");
    verb->add_option("FILE", options->document, "Result document")->required();
    verb->add_option("N", options->number, "Number of the result, counted from 0 in file order")
        ->check(CheckWholeNumber(0))
        ->capture_default_str();
    verb->add_flag("--db", options->decibels, "Show values in decibels, with their reference");
    verb->add_option("--top", options->top, "Show only that many peaks, the highest first")->check(CheckWholeNumber(1));
    CLI::Option_group* slices = verb->add_option_group("Slice of a waterfall");
    slices->add_option("--slice", options->slice.index, "By its index, counted from 0")->check(CheckWholeNumber(0));
    slices->add_option("--block", options->slice.block, "By the number of its block")->check(CheckWholeNumber(0));
    slices->add_option("--at", options->slice.at,
                       "The one nearest to a value of a reference, such as 3000rpm or 12.5s; without a unit of the "
                       "chosen one");
    slices->require_option(0, 1);
    verb->add_flag("--json", *json, "Print JSON");
    verb->footer("Example:\n  zmxf show pump.zmxf 7 --db --top 5");
    verb->callback([options, json] { RunShow(*options, *json); });
}

} // namespace zmxf
