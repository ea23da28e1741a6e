#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/open_document.h"
#include "tools/zmxf/base/selection.h"
#include "tools/zmxf/showing/json_list.h"
#include "tools/zmxf/showing/result_json.h"
#include "tools/zmxf/showing/result_text.h"
#include "tools/zmxf/verbs/selection_options.h"
#include "tools/zmxf/verbs/verbs.h"

#include <iostream>
#include <memory>
#include <optional>
#include <utility>

namespace zmxf {

namespace {

struct ShowChoice {
    ShowOptions options;
    Selection selection;
    bool json = false;
};

// Calls print with a result as it is shown.
template <class Print>
void ShowOne(ZelmResult::DocumentReader& reader, const ShowOptions& options, const Print& print)
{
    print(ReadShownResult(reader, options));
}

// Those that can't be shown leave the others alone.
void ShowAll(ZelmResult::DocumentReader& reader, const ShowChoice& choice, const std::vector<std::size_t>& numbers)
{
    std::optional<JsonList> list;
    if (choice.json) list.emplace(std::cout, Json{{"file", choice.options.document}}, "results");
    bool isFailed = false;
    const char* separator = "";
    ShowOptions options = choice.options;
    for (const std::size_t number : numbers) {
        options.number = number;
        try {
            ShowOne(reader, options, [&](const ShownResult& shown) {
                if (list)
                    list->Add(ResultJson(options, shown));
                else
                    std::cout << std::exchange(separator, "\n") << ResultText(options, shown);
            });
        } catch (const Failure& failure) {
            PrintFailure(failure.what());
            isFailed = true;
        }
    }
    if (list) list->End();
    if (isFailed) throw ExitStatus{1};
}

void RunShow(ShowChoice choice)
{
    ZelmResult::DocumentReader reader = OpenDocument(choice.options.document);
    if (choice.selection.IsMade()) {
        const auto numbers =
            choice.selection.Require(choice.options.document, ListResults(reader, choice.options.document));
        if (numbers.size() > 1) return ShowAll(reader, choice, numbers);
        choice.options.number = numbers.front();
    }
    ShowOne(reader, choice.options, [&choice](const ShownResult& shown) {
        std::cout << (choice.json ? JsonDocument(ResultJson(choice.options, shown))
                                  : ResultText(choice.options, shown));
    });
}

} // namespace

void AddShowVerb(CLI::App& program)
{
    auto choice = std::make_shared<ShowChoice>();
    ShowOptions* const options = &choice->options;
    CLI::App* verb = program.add_subcommand("show", "Shows results of a document");
    verb->add_option("FILE", options->document, "Result document")->required();
    CLI::Option* number = verb->add_option("N", options->number, "Number of the result, counted from 0 in file order")
                              ->check(CheckWholeNumber(0))
                              ->capture_default_str();
    AddSelectionOptions(*verb, choice->selection);
    verb->add_flag("--db", options->decibels, "Show values in decibels, with their reference");
    verb->add_option("--top", options->top, "Show only that many peaks, the highest first")->check(CheckWholeNumber(1));
    CLI::Option_group* slices = verb->add_option_group("Slice of a waterfall");
    slices->add_option("--slice", options->slice.index, "By its index, counted from 0")->check(CheckWholeNumber(0));
    slices->add_option("--block", options->slice.block, "By the number of its block")->check(CheckWholeNumber(0));
    slices->add_option("--at", options->slice.at,
                       "The one nearest to a value of a reference, such as 3000rpm or 12.5s; without a unit of the "
                       "chosen one");
    slices->require_option(0, 1);
    verb->add_flag("--json", choice->json, "Print JSON");
    verb->footer(
        "Example:\n  zmxf show pump.zmxf 7 --db --top 5\n  zmxf show pump.zmxf --channel 2 --kind autospectrum");
    verb->callback([choice, number] {
        if (number->count() != 0 && choice->selection.IsMade())
            throw CLI::ValidationError("N", "a number and options that select exclude each other");
        RunShow(*choice);
    });
}

} // namespace zmxf
