#include "tools/zmxf/base/program_version.h"
#include "tools/zmxf/manual/completion.h"
#include "tools/zmxf/manual/manual_page.h"
#include "tools/zmxf/verbs/program.h"

#include <exception>
#include <filesystem>
#include <fstream>
#include <iostream>

// Writes what an installation of zmxf has beside the program, each file where it stands below share/.

namespace {

void Write(const std::filesystem::path& path, const std::string& text)
{
    std::filesystem::create_directories(path.parent_path());
    std::ofstream file(path, std::ios::binary);
    file.exceptions(std::ios::failbit | std::ios::badbit);
    file << text << std::flush;
}

void WriteAll(const std::filesystem::path& share)
{
    const auto program = zmxf::MakeProgram();
    const auto whole = zmxf::DescribeProgram(*program);
    const auto verbs = zmxf::DescribeVerbs(*program);
    Write(share / "man/man1/zmxf.1", zmxf::ProgramPage(whole, verbs));
    for (const zmxf::DescribedVerb& verb : verbs)
        Write(share / "man/man1" / ("zmxf-" + verb.name + ".1"), zmxf::VerbPage(verb));
    Write(share / "bash-completion/completions/zmxf", zmxf::BashCompletion(whole, verbs));
    Write(share / "zsh/site-functions/_zmxf", zmxf::ZshCompletion(whole, verbs));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: zmxf_manual FOLDER\n";
        return 2;
    }
    try {
        WriteAll(argv[1]);
        return 0;
    } catch (const std::exception& error) {
        std::cerr << "zmxf_manual: " << error.what() << '\n';
        return 1;
    }
}
