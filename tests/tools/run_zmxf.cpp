#include "tests/tools/run_zmxf.h"

#include <algorithm>
#include <gmock/gmock.h>
#include <sndfile.h>

namespace zmxf::test {

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
