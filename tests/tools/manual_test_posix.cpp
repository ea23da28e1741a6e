#include "tools/zmxf/manual/completion.h"
#include "tools/zmxf/manual/manual_page.h"
#include "tools/zmxf/verbs/program.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <fstream>

namespace {

using namespace zmxf;

// What bash offers after a command line.
std::string Offered(const std::string& script, const std::string& line)
{
    const std::string command = "bash -c 'source \"$0\"; COMP_WORDS=(\"$@\"); COMP_CWORD=$(($# - 1)); _zmxf; "
                                "echo -n \"${COMPREPLY[*]}\"' " +
                                script + " " + line;
    FILE* const pipe = popen(command.c_str(), "r");
    if (pipe == nullptr) return "no bash";
    std::array<char, 4096> text{};
    const std::size_t length = fread(text.data(), 1, text.size(), pipe);
    pclose(pipe);
    return {text.data(), length};
}

TEST(Completion, OffersVerbsOptionsAndTheirChoices)
{
    const auto program = MakeProgram();
    const std::string script = ::testing::TempDir() + "zmxf_completion.bash";
    std::ofstream(script) << BashCompletion(DescribeProgram(*program), DescribeVerbs(*program));
    EXPECT_EQ("show settings salvage", Offered(script, "zmxf s"));
    EXPECT_EQ("--help --version", Offered(script, "zmxf --"));
    EXPECT_EQ("--system --slice", Offered(script, "zmxf show pump.zmxf --s")) << "of groups of options too";
    EXPECT_EQ("hann uniform flattop", Offered(script, "zmxf analyze --window \"\""));
    EXPECT_EQ("octave order overview orbit other", Offered(script, "zmxf ls --kind o"));
    EXPECT_EQ("", Offered(script, "zmxf show pu")) << "bash offers files";
    (void)std::remove(script.c_str());
}

TEST(ManualPages, HaveEachOptionOnceAndNoRequestOfTheirText)
{
    const auto program = MakeProgram();
    for (const DescribedVerb& verb : DescribeVerbs(*program)) {
        const std::string page = VerbPage(verb);
        for (const DescribedOption& option : verb.options) {
            const auto same = [&](const DescribedOption& other) { return other.names == option.names; };
            EXPECT_EQ(1, std::count_if(verb.options.begin(), verb.options.end(), same))
                << verb.name << ' ' << option.names.front();
        }
        EXPECT_NE(std::string::npos, page.find(".SH EXAMPLES\n")) << verb.name;
    }
    const DescribedVerb odd{"odd", "begins", "", {{{"-x"}, ".so a\\b\n'c", "X", {}, false, false, false}}};
    EXPECT_NE(std::string::npos, VerbPage(odd).find("\\&.so a\\eb\n\\&'c\n"));
}

} // namespace
