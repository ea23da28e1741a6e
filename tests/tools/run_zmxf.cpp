#include "tests/tools/run_zmxf.h"

#include "tests/builders/memory_file.h"

#include <algorithm>
#include <cstdlib>
#include <gmock/gmock.h>
#include <sndfile.h>
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

void expectFailure(const Outcome& run, int status, const std::string& what, const char* file, int line)
{
    const ::testing::ScopedTrace trace(file, line, "the run that has to fail");
    EXPECT_EQ(run.status, status);
    EXPECT_EQ(run.out, "");
    EXPECT_THAT(run.err, ::testing::StartsWith("zmxf: "));
    EXPECT_THAT(run.err, ::testing::HasSubstr(what));
    EXPECT_EQ(std::count(run.err.begin(), run.err.end(), '\n'), 1) << run.err;
}

void writeSound(const std::string& path, std::span<const double> samples, int channels, int format, int sampleRate)
{
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = sampleRate;
    info.format = format;
    SNDFILE* file = sf_open(path.c_str(), SFM_WRITE, &info);
    ASSERT_NE(file, nullptr) << sf_strerror(nullptr);
    const auto count = static_cast<sf_count_t>(samples.size());
    EXPECT_EQ(sf_write_double(file, samples.data(), count), count);
    EXPECT_EQ(sf_close(file), 0);
}

} // namespace zmxf::test
