#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"

#include <cstdlib>
#include <sys/wait.h>

namespace zmxf::test {

namespace {

std::string quoted(const std::string& argument)
{
    std::string text = "'";
    for (const char c : argument) text += c == '\'' ? "'\\''" : std::string(1, c);
    return text + '\'';
}

} // namespace

Outcome zmxf(const std::vector<std::string>& arguments, int fileLimit, const std::string& temporary)
{
    const ZelmResult::test::TempFolder folder;
    const std::string out = folder.file("out");
    const std::string err = folder.file("err");
    std::string command = fileLimit > 0 ? "ulimit -f " + std::to_string(fileLimit) + "; " : std::string();
    if (!temporary.empty()) command += "TMPDIR=" + quoted(temporary) + ' ';
    command += quoted(ZMXF_PROGRAM);
    for (const std::string& argument : arguments) command += ' ' + quoted(argument);
    const int status = std::system((command + " >" + quoted(out) + " 2>" + quoted(err)).c_str());
    return {WIFEXITED(status) ? WEXITSTATUS(status) : -1, ZelmResult::test::readDiskFile(out),
            ZelmResult::test::readDiskFile(err)};
}

} // namespace zmxf::test
