#include "tests/tools/program.h"

// Which samples are measured, what their channels are called, and recordings in numbers.

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::UnorderedElementsAre;
using ZelmResult::test::readDiskFile;

// Of a sound file that says of itself who is recorded.
void addChunk(const std::string& path, const std::string& code, std::string text)
{
    text.resize((text.size() + 1) / 2 * 2, ' ');
    std::string bytes = readDiskFile(path);
    const auto number = [](std::size_t value) {
        std::string four;
        for (std::size_t i = 0; i < 4; ++i) four += static_cast<char>(value >> 8 * i & 0xFFU);
        return four;
    };
    bytes.insert(12, code + number(text.size()) + text);
    bytes.replace(4, 4, number(bytes.size() - 8));
    write(path, bytes);
}

class Recordings : public Program {
protected:
    // Of the first system.
    nlohmann::json Tracks() const { return Json("tracks")["systems"][0]["recording"]["tracks"]; }
    double Value(int number) const { return Shown(number)["value"]["inUnit"].get<double>(); }
};

} // namespace

TEST_F(Recordings, AStretchIsMeasuredAndNamed)
{
    std::vector<double> samples(3 * 48000, 0.25);
    for (std::size_t i = 48000; i < 96000; ++i) samples[i] = 0.5;
    ASSERT_EQ(Analyze({"--start", "1", "--end", "2"}, samples).status, 0);
    EXPECT_EQ(Value(0), 0.5);
    EXPECT_EQ(Value(2), 0.0) << "AC RMS: no sample of the others";
    EXPECT_THAT(Show("0").out, HasSubstr("from 1 s to 2 s"));
    const auto told = Json("tracks")["systems"][0]["recording"];
    EXPECT_EQ(told["seconds"], 1.0);
    EXPECT_EQ(told["disks"][0]["files"][0]["lastBlock"], 143999);
    EXPECT_EQ(told["tracks"][0]["firstBlock"], 48000);
    EXPECT_EQ(told["tracks"][0]["lastBlock"], 95999);
    ASSERT_EQ(Analyze({"--start", "2.5"}).status, 0);
    EXPECT_EQ(Json("tracks")["systems"][0]["recording"]["seconds"], 0.5);
    expectFailure(Analyze({"--end", "3.1"}), 1, "it lasts 3 s");
    expectFailure(Analyze({"--start", "2", "--end", "1"}), 2, "--end");
}

TEST_F(Recordings, TagsBeforeTheFormatAreSteppedOver)
{
    for (const int format : {kWavDouble, kFlac}) {
        const Outcome plain = Analyze({}, sineAndConstant(), 2, format);
        const std::string bytes = readDiskFile(recording);
        const std::string first("ID3\x03\0\0\0\0\x01\x05", 10); // of 133 bytes
        const std::string second("ID3\x04\0\0\0\0\0\x02??", 12);
        write(recording, first + std::string(133, '!') + second + bytes);
        const Outcome tagged = Analyze({});
        EXPECT_EQ(tagged.status, 0) << tagged.err;
        EXPECT_EQ(tagged.out, plain.out);
        write(recording, first + std::string(133, '!'));
        expectFailure(Analyze({}), 1, "cannot read");
    }
}

TEST_F(Recordings, ChannelsHaveNames)
{
    writeSound(recording, sineAndConstant(), 2, kWav16);
    addChunk(recording, "iXML",
             "<BWFXML><TRACK_LIST><TRACK><CHANNEL_INDEX>7</CHANNEL_INDEX><INTERLEAVE_INDEX>2</INTERLEAVE_INDEX>"
             "<NAME>Gear &amp; shaft</NAME></TRACK><TRACK><CHANNEL_INDEX>3</CHANNEL_INDEX><NAME>None</NAME></TRACK>"
             "</TRACK_LIST></BWFXML>");
    addChunk(recording, "LIST", std::string("INFOICMT\x0A\0\0\0third run\0", 22));
    ASSERT_EQ(Analyze({}).status, 0);
    EXPECT_EQ(Tracks()[0]["name"], "Channel 1");
    EXPECT_EQ(Tracks()[1]["name"], "Gear & shaft");
    EXPECT_THAT(Show("0").out, HasSubstr("third run"));
    const Outcome named = Analyze({"--channel-names", "bearing,casing", "--reference", "2"});
    EXPECT_THAT(named.out, HasSubstr("H1: against casing"));
    EXPECT_EQ(Shown(0)["header"]["response"], "bearing");
    EXPECT_THAT(zmxf({"settings", document}).out, HasSubstr("casing"));
    expectFailure(Analyze({"--channel-names", "bearing"}), 2, "1 name for 2 channels");
}

TEST_F(Recordings, AFlatTopShowsTonesWhereverTheyLie)
{
    std::vector<double> samples;
    for (int i = 0; i < 16000; ++i) // halfway between the lines of 10 Hz
        samples.push_back(0.5 * std::numbers::sqrt2 * std::sin(2.0 * std::numbers::pi * 1005.0 * i / 16000.0));
    const auto highest = [&](const std::string& window) {
        EXPECT_EQ(Analyze({"--window", window, "--block-size", "1600"}, samples, 1, kWavDouble, 16000).status, 0);
        const auto lines = Shown(7)["columns"][0]["si"].get<std::vector<double>>();
        return *std::max_element(lines.begin(), lines.end());
    };
    EXPECT_NEAR(highest("flattop"), 0.5, 0.5 * 0.0012);
    EXPECT_THAT(Show("7").out, HasSubstr("Flat top window"));
    const auto octaves = Shown(8)["levels"]["Global"]["si"];
    const auto bands = Shown(8)["columns"][0]["si"];
    EXPECT_LT(highest("hann"), 0.43);
    EXPECT_EQ(Shown(8)["columns"][0]["si"], bands) << "bands come from Hann windows in both";
    EXPECT_EQ(Shown(8)["levels"]["Global"]["si"], octaves);
}

TEST_F(Recordings, ManyAreMeasuredThoughOneFails)
{
    const std::string results = folder.file("new/results");
    const std::vector<std::string> inputs{folder.file("a.wav"), folder.file("no.wav"), folder.file("b.flac")};
    writeSound(inputs[0], sineAndConstant(), 2, kWav16);
    writeSound(inputs[2], std::vector{0.5, -0.5}, 1, kFlac);
    const auto all = [&](std::vector<std::string> options) {
        options.insert(options.begin(), {"analyze", inputs[0], inputs[1], inputs[2], "-o", results});
        return zmxf(options);
    };
    const Outcome run = all({});
    EXPECT_EQ(run.status, 1);
    EXPECT_THAT(run.err, AllOf(HasSubstr("no.wav: No such file"), Not(HasSubstr("a.wav"))));
    for (const char* made : {"/a.zmxf", "/b.zmxf"}) EXPECT_EQ(zmxf({"verify", results + made}).status, 0);
    EXPECT_THAT(all({"--channel-names", "x"}).err, HasSubstr("a.wav: --channel-names: 1 name for 2 channels"));
    EXPECT_EQ(zmxf({"analyze", inputs[2], "-o", folder.file("one/")}).status, 0);
    EXPECT_EQ(zmxf({"info", folder.file("one/b.zmxf")}).status, 0);

    // What can't end well doesn't begin.
    std::filesystem::create_directories(folder.file("other"));
    std::filesystem::copy_file(inputs[2], folder.file("other/a.flac"));
    expectFailure(zmxf({"analyze", inputs[0], folder.file("other/a.flac"), "-o", folder.file("two")}), 2,
                  "would both become");
    EXPECT_FALSE(std::filesystem::exists(folder.file("two")));
    expectFailure(zmxf({"analyze", inputs[0], "-o", "-"}), 2, "can't go to standard output");
    std::filesystem::create_hard_link(inputs[2], folder.file("one/a.zmxf"));
    expectFailure(zmxf({"analyze", inputs[0], inputs[2], "-o", folder.file("one")}), 1, "it is the input");
}

TEST_F(Recordings, SensorsAndCalibratorsTellTheUnit)
{
    const auto analyzed = [&](std::vector<std::string> options) {
        const Outcome run = Analyze(std::move(options));
        EXPECT_EQ(run.status, 0) << run.err;
        return run.out;
    };
    writeSound(recording, sineAndConstant(), 2, kWav16);
    EXPECT_THAT(analyzed({"--sensitivity", "100mV/g,2V/m/s^2", "--range", "10V"}),
                HasSubstr("Channel 1: full scale is 100 g, by a sensor of 100mV/g and a range of 10 V\n"));
    EXPECT_NEAR(Value(3), 50.0, 1e-2) << "peak of half of full scale";
    EXPECT_EQ(Value(7), 1.25) << "a quarter of 5 m/s2";
    expectFailure(Analyze({"--sensitivity", "100mV/g"}), 2, "needs --range");
    for (const char* none : {"100/g", "-1mV/g", "100mV/x", "100mV", "mV/g"})
        expectFailure(Analyze({"--sensitivity", none, "--range", "1V"}), 2, std::string(none) + " is no sensitivity");
    expectFailure(Analyze({"--sensitivity", "1V/g", "--range", "10"}), 2, "10 is no voltage");

    // 94 dB of a tone at 80 % of the level of the tone that is measured.
    const std::string tone = folder.file("tone.wav");
    const auto writeTone = [&](double amplitude, double second, double noise) {
        std::vector<double> samples;
        for (int i = 0; i < 96000; ++i)
            samples.push_back((i < 48000 ? amplitude : second) *
                                  std::sin(2.0 * std::numbers::pi * 1000.3 * i / 48000.0) +
                              (i % 2 == 0 ? noise : -noise));
        writeSound(tone, samples, 1, kWavDouble);
    };
    writeTone(0.4, 0.4, 0.01);
    const std::vector<std::string> calibrate{"--calibrator", "94dB", "--calibration", tone + ",-"};
    EXPECT_THAT(analyzed(calibrate), HasSubstr("by a calibrator of 94dB in tone.wav"));
    EXPECT_NEAR(Shown(1)["value"]["dB"], 94.0 + 20.0 * std::log10(0.5 / 0.4), 0.005);
    EXPECT_EQ(Shown(7)["quantity"]["unit"], "FS");
    analyzed({"--calibrator", "10m/s2", "--calibration", tone});
    EXPECT_NEAR(Value(1), 12.5, 0.01);
    writeTone(0.4, 0.3, 0.0);
    expectFailure(Analyze(calibrate), 1, "no steady tone: its level changes by 2.5 dB");
    writeTone(0.4, 0.4, 0.2);
    expectFailure(Analyze(calibrate), 1, "its strongest frequency is no more than 67 %");
    expectFailure(Analyze({"--calibrator", "94dB"}), 2, "--calibration");
    expectFailure(Analyze({"--calibrator", "94", "--calibration", tone}), 2, "94 is no level");
    write(recording, "x [V]\n1\n0\n");
    EXPECT_THAT(analyzed({"--rate", "10", "--sensitivity", "100mV/g"}), HasSubstr("full scale is 10 g"));
    expectFailure(Analyze({"--rate", "10", "--sensitivity", "100mV/g", "--range", "5V"}), 2, "its values are volts");
}

} // namespace zmxf::test
