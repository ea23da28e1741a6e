#include "tools/zmxf/manual/described_verb.h"

#include <algorithm>
#include <string_view>

namespace zmxf {

namespace {

// "NUMBER" of "FLOAT:NUMBER"; "FLOAT" of "FLOAT:FLOAT in [0 - 1]".
std::string ValueName(std::string_view type)
{
    if (const std::size_t colon = type.find(':'); colon != std::string_view::npos) type.remove_prefix(colon + 1);
    return std::string(type.substr(0, type.find(' ')));
}

// Those of "{csv,json}" and of "hann|uniform".
std::vector<std::string> Choices(std::string_view value)
{
    const bool isBraced = value.size() > 2 && value.front() == '{' && value.back() == '}';
    if (isBraced) value = value.substr(1, value.size() - 2);
    const char separator = isBraced ? ',' : '|';
    if (value.find(separator) == std::string_view::npos) return {};
    std::vector<std::string> choices;
    while (!value.empty()) {
        const std::size_t end = std::min(value.find(separator), value.size());
        choices.emplace_back(value.substr(0, end));
        value.remove_prefix(std::min(end + 1, value.size()));
    }
    return choices;
}

DescribedOption Describe(const CLI::Option& option)
{
    DescribedOption described;
    for (const std::string& name : option.get_snames()) described.names.push_back("-" + name);
    for (const std::string& name : option.get_lnames()) described.names.push_back("--" + name);
    if (!option.nonpositional()) described.names.push_back(option.get_name(true));
    described.description = option.get_description();
    described.isFlag = option.get_items_expected_max() == 0;
    described.isRepeatable = option.get_items_expected_max() > 1;
    described.isRequired = option.get_required();
    if (described.isFlag) return described;
    const std::string& shown = option.get_option_text();
    described.value = ValueName(shown.empty() ? option.get_type_name() : shown);
    described.choices = Choices(described.value);
    return described;
}

void AddOptions(const CLI::App& app, std::vector<DescribedOption>& out)
{
    const bool isGroup = app.get_name().empty() && app.get_parent() != nullptr; // has a --help that does nothing
    for (const CLI::Option* option : app.get_options())
        if (!isGroup || option != app.get_help_ptr()) out.push_back(Describe(*option));
    for (const CLI::App* part : app.get_subcommands([](const CLI::App*) { return true; }))
        if (part->get_name().empty()) AddOptions(*part, out);
}

DescribedVerb Describe(const CLI::App& app, const std::string& name)
{
    DescribedVerb verb{name, app.get_description(), app.get_footer(), {}};
    AddOptions(app, verb.options);
    std::stable_partition(verb.options.begin(), verb.options.end(),
                          [](const DescribedOption& option) { return option.IsPositional(); });
    return verb;
}

} // namespace

DescribedVerb DescribeProgram(const CLI::App& program) { return Describe(program, ""); }

std::vector<DescribedVerb> DescribeVerbs(const CLI::App& program)
{
    std::vector<DescribedVerb> verbs;
    for (const CLI::App* verb : program.get_subcommands([](const CLI::App*) { return true; }))
        verbs.push_back(Describe(*verb, verb->get_name()));
    return verbs;
}

} // namespace zmxf
