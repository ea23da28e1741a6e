#include "tools/zmxf/verbs/selection_options.h"

#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>

namespace zmxf {

namespace {

std::string KindWords(const char* separator)
{
    return fmt::format("{}", fmt::join(ZelmResult::ResultKind::GroupNames(), separator));
}

// For options whose values parse says nothing about when they are wrong. what describes right ones.
template <class Parse>
CLI::Validator CheckParsed(Parse parse, const std::string& what, const std::string& metavariable)
{
    return {[parse, what](const std::string& text) {
                return parse(text) ? std::string() : fmt::format("{} is not {}", text.empty() ? "\"\"" : text, what);
            },
            metavariable};
}

template <class Parse, class Value>
void AddParsed(CLI::App& group, const std::string& name, const CLI::Validator& check, Parse parse,
               std::vector<Value>& values, const std::string& description)
{
    group
        .add_option_function<std::vector<std::string>>(
            name,
            [parse, &values](const std::vector<std::string>& texts) {
                for (const std::string& text : texts) values.push_back(*parse(text));
            },
            description)
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(check);
}

} // namespace

void AddSelectionOptions(CLI::App& verb, Selection& selection)
{
    CLI::Option_group* group = verb.add_option_group(
        "Selection", "A name that a document has means that name, any other is a pattern: * any characters, ? one, "
                     "[ab] one of these. An option given again means either, different options mean both.");
    AddParsed(*group, "--result", CheckParsed(NumberRange::Parse, "a number or a range like 7-9", "N,N-N"),
              NumberRange::Parse, selection.results, "Results by number, such as 3,7-9");
    const auto addNames = [group](const char* name, std::vector<std::string>& names, const char* description) {
        group->add_option(name, names, description)->allow_extra_args(false);
    };
    addNames("--channel", selection.channels, "Results of a channel, by its name or as #2 by its number");
    addNames("--reference", selection.references, "Results against a reference channel, in the same way");
    AddParsed(*group, "--kind",
              CheckParsed(ParseKind, "a kind: there are " + KindWords(", ") + ", and numbers of types",
                          "{" + KindWords(",") + "}"),
              ParseKind, selection.kinds, "Results of a kind, or by the number of a process type");
    addNames("--name", selection.names, "Results by the name of their process, such as RMS");
    group->add_option("--system", selection.systems, "Results of a system, by its number")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->check(CheckWholeNumber(0));
}

} // namespace zmxf
