#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/comparing/difference_report.h"
#include "tools/zmxf/verbs/selection_options.h"
#include "tools/zmxf/verbs/verbs.h"

#include <charconv>
#include <cmath>
#include <fmt/format.h>
#include <iostream>
#include <memory>

namespace zmxf {

namespace {

constexpr int kDifferent = 5;

struct DiffOptions {
    CompareChoice choice;
    bool isJson = false;
};

std::optional<double> ParseTolerance(const std::string& text)
{
    double value = 0.0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, value);
    const bool isGood = error == std::errc() && stop == end && std::isfinite(value) && value >= 0.0;
    return isGood ? std::optional(value) : std::nullopt;
}

template <class Set>
void AddTolerance(CLI::App& verb, const char* name, const char* description, Set set)
{
    verb.add_option_function<std::string>(
            name, [set](const std::string& text) { set(*ParseTolerance(text)); }, description)
        ->option_text("X")
        ->check(CLI::Validator(
            [](const std::string& text) {
                return ParseTolerance(text) ? std::string() : fmt::format("{} is not a number from 0 on", text);
            },
            ""));
}

void RunDiff(const DiffOptions& options)
{
    const DocumentDifference found = CompareDocuments(options.choice);
    if (options.isJson)
        std::cout << JsonDocument(DifferenceJson(options.choice, found));
    else if (!found.IsEmpty() || found.failures.empty())
        std::cout << DifferenceText(options.choice, found);
    for (const std::string& failure : found.failures) PrintFailure(failure);
    if (!found.failures.empty()) throw ExitStatus{1};
    if (!found.IsEmpty()) throw ExitStatus{kDifferent};
}

} // namespace

void AddDiffVerb(CLI::App& program)
{
    auto options = std::make_shared<DiffOptions>();
    CompareChoice& choice = options->choice;
    CLI::App* verb = program.add_subcommand("diff", "Compares two documents, result by result");
    verb->add_option("A", choice.a, "Result document")->required();
    verb->add_option("B", choice.b, "Another one")->required();
    Tolerance& tolerance = choice.tolerance;
    AddTolerance(*verb, "--rtol", "Values are the same that are apart by this part of the larger one, such as 1e-5",
                 [&tolerance](double value) { tolerance.relative = value; });
    AddTolerance(*verb, "--atol", "And by so much, in SI units",
                 [&tolerance](double value) { tolerance.absolute = value; });
    AddTolerance(*verb, "--db-tolerance", "Levels are the same that are apart by so many decibels",
                 [&tolerance](double value) { tolerance.decibels = value; });
    verb->add_flag("--json", options->isJson, "Print JSON");
    AddSelectionOptions(*verb, choice.selection);
    verb->footer("Exit status: 0 equal, 5 different\nExample:\n  zmxf diff before.zmxf after.zmxf --db-tolerance 0.5");
    verb->callback([options] { RunDiff(*options); });
}

} // namespace zmxf
