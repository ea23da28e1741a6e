#include "tools/zmxf/manual/completion.h"

#include <fmt/format.h>
#include <string_view>

namespace zmxf {

namespace {

std::string Names(const std::vector<DescribedVerb>& verbs)
{
    std::string names;
    for (const DescribedVerb& verb : verbs) names += (names.empty() ? "" : " ") + verb.name;
    return names;
}

std::string OptionNames(const DescribedVerb& verb)
{
    std::string names;
    for (const DescribedOption& option : verb.options) {
        if (option.IsPositional()) continue;
        for (const std::string& name : option.names) names += (names.empty() ? "" : " ") + name;
    }
    return names;
}

// Without the characters that mean something in single quotes, which choices don't need.
std::string Joined(const std::vector<std::string>& choices) { return fmt::format("{}", fmt::join(choices, " ")); }

// The lines of "case $verb $previous" for options with choices.
std::string BashChoices(const DescribedVerb& verb)
{
    std::string cases;
    for (const DescribedOption& option : verb.options) {
        if (option.choices.empty()) continue;
        std::string patterns;
        for (const std::string& name : option.names)
            patterns += fmt::format("{}'{} {}'", patterns.empty() ? "" : "|", verb.name, name);
        cases += fmt::format("    {}) words='{}' ;;\n", patterns, Joined(option.choices));
    }
    return cases;
}

// In single quotes, and where _arguments gives brackets and colons a meaning.
std::string ZshQuoted(std::string_view text)
{
    std::string out;
    for (const char c : text) {
        if (c == '\'')
            out += "'\\''";
        else if (c == '[' || c == ']' || c == ':' || c == '\\')
            out += fmt::format("\\{}", c);
        else
            out += c;
    }
    return out;
}

std::string ZshAction(const DescribedOption& option)
{
    return option.choices.empty() ? "_files" : fmt::format("({})", Joined(option.choices));
}

std::string ZshOption(const DescribedOption& option)
{
    if (option.IsPositional())
        return fmt::format("'{}:{}:{}'", option.isRepeatable ? "*" : "", ZshQuoted(option.names.front()),
                           ZshAction(option));
    std::string names = fmt::format("{}", fmt::join(option.names, ","));
    const bool isOne = option.names.size() == 1;
    std::string text = option.isRepeatable ? "'*'" : isOne ? "" : fmt::format("'({})'", fmt::join(option.names, " "));
    text += isOne ? names : fmt::format("{{{}}}", names);
    text += fmt::format("'[{}]", ZshQuoted(option.description));
    if (!option.isFlag) text += fmt::format(":{}:{}", ZshQuoted(option.value), ZshAction(option));
    return text + "'";
}

} // namespace

std::string BashCompletion(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs)
{
    std::string options;
    std::string choices;
    for (const DescribedVerb& verb : verbs) {
        options += fmt::format("    {}) words='{}' ;;\n", verb.name, OptionNames(verb));
        choices += BashChoices(verb);
    }
    // Without a reply the shell completes names of files.
    return fmt::format(R"(# Completion of zmxf for bash.
_zmxf()
{{
    local current=${{COMP_WORDS[COMP_CWORD]}} previous=${{COMP_WORDS[COMP_CWORD - 1]}} words=
    COMPREPLY=()
    if [ "$COMP_CWORD" -eq 1 ]; then
        mapfile -t COMPREPLY < <(compgen -W '{} {}' -- "$current")
        return
    fi
    case "${{COMP_WORDS[1]}} $previous" in
{}    esac
    if [ -z "$words" ] && [[ $current == -* ]]; then
        case "${{COMP_WORDS[1]}}" in
{}        esac
    fi
    [ -z "$words" ] || mapfile -t COMPREPLY < <(compgen -W "$words" -- "$current")
}}
complete -o default -F _zmxf zmxf
)",
                       Names(verbs), OptionNames(program), choices, options);
}

std::string ZshCompletion(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs)
{
    std::string described;
    std::string cases;
    for (const DescribedVerb& verb : verbs) {
        described += fmt::format("        '{}:{}'\n", verb.name, ZshQuoted(verb.description));
        cases += fmt::format("    {})\n        _arguments -s", verb.name);
        for (const DescribedOption& option : verb.options)
            cases += fmt::format(" \\\n            {}", ZshOption(option));
        cases += "\n        ;;\n";
    }
    std::string ofProgram;
    for (const DescribedOption& option : program.options) ofProgram += " " + ZshOption(option);
    return fmt::format(R"(#compdef zmxf
# Completion of zmxf for zsh.
_zmxf()
{{
    local -a verbs
    verbs=(
{}    )
    if (( CURRENT == 2 )); then
        _describe verb verbs
        _arguments{}
        return
    fi
    local verb=$words[2]
    shift words
    (( CURRENT-- ))
    case $verb in
{}    esac
}}
_zmxf "$@"
)",
                       described, ofProgram, cases);
}

} // namespace zmxf
