#include "tests/tools/program.h"

// What is doubtful about a measurement is reported.

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ZelmResult::test::readDiskFile;

using Measuring = Program;

} // namespace

TEST_F(Measuring, RecordingsThatAreCutShortAreTold)
{
    for (const int format : {kWav16, SF_FORMAT_RF64 | SF_FORMAT_PCM_16, SF_FORMAT_AIFF | SF_FORMAT_PCM_16,
                             SF_FORMAT_AU | SF_FORMAT_FLOAT}) {
        EXPECT_EQ(Analyze({}, sineAndConstant(), 2, format).err, "") << format;
        std::filesystem::resize_file(recording, 100000);
        const Outcome cut = Analyze({});
        EXPECT_EQ(cut.status, 0) << format;
        EXPECT_THAT(cut.err, ::testing::StartsWith("zmxf: warning: the recording is cut short")) << format;
        EXPECT_THAT(Show("0").out, HasSubstr("Warning: the recording is cut short")) << format;
    }
    writeSound(recording, sineAndConstant(), 2, kFlac);
    std::filesystem::resize_file(recording, 50000);
    expectFailure(Analyze({}), 1, "cannot read");
    // The length of a stream isn't known when its header is written.
    writeSound(recording, sineAndConstant(), 2, kWav16);
    std::string stream = readDiskFile(recording);
    stream.replace(stream.find("data") + 4, 4, "\xFF\xFF\xFF\xFF");
    write(recording, stream);
    EXPECT_EQ(Analyze({}).err, "");
}

TEST_F(Measuring, OverloadIsOfIntegersOrOfAGivenRange)
{
    const auto overload = [this](double peak, int format, const std::vector<std::string>& options) {
        EXPECT_EQ(Analyze(options, std::vector{peak, 0.0}, 1, format).status, 0);
        return Json("tracks")["systems"][0]["recording"]["tracks"][0]["overload"].get<bool>();
    };
    EXPECT_TRUE(overload(1.0, kWav16, {})) << "the highest value lies a step below 1";
    EXPECT_FALSE(overload(0.999, kWav16, {}));
    EXPECT_FALSE(overload(9.81, kWavDouble, {"--unit", "m/s2"}));
    EXPECT_TRUE(overload(1.0, kWavDouble, {"--unit", "m/s2", "--full-scale", "1"}));
}

TEST_F(Measuring, ABlowThatTheWindowHidesIsTold)
{
    std::vector<double> samples(8192);
    for (std::size_t i = 100; i < 200; ++i) samples[i] = 0.5;
    EXPECT_THAT(Analyze({}, samples).err, HasSubstr("warning: the spectra miss most energy of Channel 1"));
    EXPECT_THAT(Show("7").out, HasSubstr("Warning: the spectra miss most energy of Channel 1"));
    EXPECT_EQ(Analyze({"--window", "uniform"}).err, "");
    EXPECT_THAT(Show("7").out, HasSubstr("Uniform window"));
    EXPECT_NEAR(Shown(7)["columns"][0]["si"][2], 0.5 * 100.0 / 8192.0 * std::numbers::sqrt2, 1e-4);
}

TEST_F(Measuring, SilenceHasNoLevel)
{
    std::vector<double> samples(20 * 8000);
    for (std::size_t i = 0; i < 16000; ++i) samples[i] = i % 40 < 20 ? 0.5 : -0.5;
    ASSERT_EQ(Analyze({"--unit", "Pa"}, samples, 1, kWav16, 8000).status, 0);
    const auto levels = Shown(10)["levels"];
    EXPECT_EQ(levels["Instant Leq A"]["minimum"]["dB"], nullptr);
    EXPECT_EQ(levels["Short Leq C"]["value"]["si"], 0.0);
    EXPECT_GT(levels["Short Leq A"]["maximum"]["dB"], 80.0);
}

} // namespace zmxf::test
