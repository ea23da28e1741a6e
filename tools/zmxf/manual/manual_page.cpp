#include "tools/zmxf/manual/manual_page.h"

#include "tools/zmxf/base/program_version.h"

#include <fmt/format.h>
#include <string_view>

namespace zmxf {

namespace {

// Text that stays as it is: no line begins with a request, and hyphens can be copied.
std::string Escaped(std::string_view text)
{
    std::string out;
    bool isLineStart = true;
    for (const char c : text) {
        if (isLineStart && (c == '.' || c == '\'')) out += "\\&";
        isLineStart = c == '\n';
        if (c == '\\')
            out += "\\e";
        else if (c == '-')
            out += "\\-";
        else
            out += c;
    }
    return out;
}

std::string Bold(std::string_view text) { return fmt::format("\\fB{}\\fR", Escaped(text)); }
std::string Slanted(std::string_view text) { return fmt::format("\\fI{}\\fR", Escaped(text)); }

std::string Title(std::string_view page)
{
    std::string capitals(page);
    for (char& c : capitals)
        if (c >= 'a' && c <= 'z') c = static_cast<char>(c - 'a' + 'A');
    return fmt::format(".TH {} 1 \"\" \"{}\" \"ZelmResult\"\n", capitals, ProgramVersion());
}

std::string ValueText(const DescribedOption& option)
{
    if (option.choices.empty()) return Slanted(option.value);
    std::string text;
    for (const std::string& choice : option.choices) text += (text.empty() ? "" : "|") + Bold(choice);
    return text;
}

std::string OptionText(const DescribedOption& option)
{
    std::string names;
    for (const std::string& name : option.names)
        names += (names.empty() ? "" : ", ") + (option.IsPositional() ? Slanted(name) : Bold(name));
    const bool takesValue = !option.isFlag && !option.IsPositional();
    return fmt::format(".TP\n{}{}{}\n{}\n", names, takesValue ? " " + ValueText(option) : "",
                       takesValue && option.isRepeatable ? " ..." : "", Escaped(option.description));
}

std::string OptionTexts(const DescribedVerb& verb)
{
    std::string text = ".SH OPTIONS\n";
    for (const DescribedOption& option : verb.options) text += OptionText(option);
    return text;
}

std::string Synopsis(const DescribedVerb& verb)
{
    std::string text = fmt::format(".SH SYNOPSIS\n{} {}", Bold("zmxf " + verb.name), "[\\fIOPTIONS\\fR]");
    for (const DescribedOption& option : verb.options) {
        if (!option.IsPositional()) continue;
        const std::string word = Slanted(option.names.front()) + (option.isRepeatable ? "..." : "");
        text += option.isRequired ? " " + word : " [" + word + "]";
    }
    return text + "\n";
}

// The footer is lines of text, and an example that begins with a line of its own.
std::string FooterText(std::string_view footer)
{
    constexpr std::string_view heading = "Example:\n";
    const std::size_t example = footer.find(heading);
    std::string text;
    if (example != 0 && !footer.empty()) text += fmt::format(".SH NOTES\n{}\n", Escaped(footer.substr(0, example)));
    if (example != std::string_view::npos)
        text += fmt::format(".SH EXAMPLES\n.nf\n{}\n.fi\n", Escaped(footer.substr(example + heading.size())));
    return text;
}

} // namespace

std::string ProgramPage(const DescribedVerb& program, const std::vector<DescribedVerb>& verbs)
{
    std::string text = Title("zmxf");
    text +=
        fmt::format(".SH NAME\nzmxf \\- {}\n", Escaped("measures recordings into result documents, and shows them"));
    text += fmt::format(".SH SYNOPSIS\n{} \\fIVERB\\fR [\\fIOPTIONS\\fR] ...\n", Bold("zmxf"));
    text += fmt::format(".SH DESCRIPTION\n{}\n.SH VERBS\n", Escaped(program.description));
    for (const DescribedVerb& verb : verbs)
        text += fmt::format(".TP\n{}(1)\n{}\n", Bold("zmxf-" + verb.name), Escaped(verb.description));
    text += OptionTexts(program);
    text += ".SH EXIT STATUS\n"
            "0 when all was done, 1 when something failed, 2 for wrong usage. "
            "Some verbs have more, which their pages name.\n"
            ".SH ENVIRONMENT\n.TP\n\\fBNO_COLOR\\fR\n"
            "When it is set and not empty, nothing is coloured. Colours are for terminals alone.\n";
    return text + FooterText(program.footer);
}

std::string VerbPage(const DescribedVerb& verb)
{
    return Title("zmxf-" + verb.name) +
           fmt::format(".SH NAME\n{} \\- {}\n", Escaped("zmxf-" + verb.name), Escaped(verb.description)) +
           Synopsis(verb) + OptionTexts(verb) + FooterText(verb.footer) + ".SH SEE ALSO\n\\fBzmxf\\fR(1)\n";
}

} // namespace zmxf
