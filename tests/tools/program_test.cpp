#include "tests/tools/program.h"

#include <cmath>
#include <filesystem>
#include <gmock/gmock.h>
#include <limits>
#include <numbers>

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;
using ZelmResult::test::readDiskFile;

} // namespace

TEST_F(Program, DemoMeasuresItsOwnRecordingAsAnalyzeDoes)
{
    const std::string place = folder.file("new/machine");
    const Outcome demo = zmxf({"demo", place});
    ASSERT_EQ(demo.status, 0) << demo.err;
    EXPECT_THAT(demo.out, ::testing::EndsWith("\n" + place + "/demo.zmxf\n"));

    const std::string again = folder.file("again.zmxf");
    const std::vector<std::string> analyze = {
        "analyze", place + "/demo.wav", "--unit", "m/s2,m/s2,V", "--full-scale", "50,50,10", "--block-size",
        "8000",    "--tacho",           "3",      "-o",          again};
    ASSERT_EQ(zmxf(analyze).status, 0);
    std::vector<nlohmann::json> both;
    for (const std::string& each : {again, place + "/demo.zmxf"}) {
        document = each;
        both.push_back({Shown(0)["quantity"], Shown(0)["value"], Shown(6)["value"], Shown(8)["value"]});
    }
    EXPECT_EQ(both[0], both[1]);

    // Slices on disk, in a folder where nothing is left, make the same document.
    const std::string inMemory = readDiskFile(again);
    std::filesystem::create_directory(folder.file("tmp"));
    std::vector<std::string> onDisk = analyze;
    onDisk.emplace_back("--disk");
    EXPECT_EQ(zmxf(onDisk, 0, folder.file("tmp")).status, 0);
    EXPECT_EQ(readDiskFile(again), inMemory);
    EXPECT_TRUE(std::filesystem::is_empty(folder.file("tmp")));
    expectFailure(zmxf(onDisk, 0, folder.file("nowhere")), 1, "no room for the slices");
    EXPECT_FALSE(std::filesystem::exists(folder.file("nowhere")));

    const std::string former = readDiskFile(place + "/demo.wav");
    ASSERT_EQ(zmxf({"demo", place}).status, 0);
    EXPECT_TRUE(readDiskFile(place + "/demo.wav") == former) << "not the same recording twice";
}

// 600 to 6000 rpm in 40 s: 3000 rpm come at 17.78 s, between two slices.
TEST_F(Program, RunUpComesBackWithItsReferences)
{
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    recording = folder.file("demo.wav");
    document = folder.file("demo.zmxf");
    const auto slice = [this](const std::string& number, std::vector<std::string> options) {
        options.insert(options.begin(), {"--json", "--top", "1"});
        return Show(number, options).json();
    };
    const auto at3000 = slice("34", {"--at", "3000rpm"});
    EXPECT_EQ(at3000["peaks"][0]["x"], 50.0) << "order 1";
    const auto& references = at3000["slice"]["references"];
    EXPECT_NEAR(references["Speed"]["si"].get<double>(), 50.0, 0.3);
    EXPECT_NEAR(references["Speed"]["inUnit"].get<double>(), 3000.0, 18.0);
    EXPECT_NEAR(references["Time"]["si"].get<double>(), 17.78, 0.13);
    const int index = at3000["slice"]["index"];
    EXPECT_EQ(references["Slice number"]["si"], index);
    EXPECT_EQ(slice("34", {"--block", std::to_string(index)}), at3000);
    EXPECT_EQ(slice("34", {"--slice", std::to_string(index)}), at3000);
    EXPECT_EQ(slice("34", {"--at", "17.75 s"}), at3000);
    EXPECT_EQ(slice("35", {"--at", "3000rpm"})["slice"], at3000["slice"]);
    const double global = slice("35", {"--at", "3000rpm"})["levels"]["Global"]["si"];
    EXPECT_NEAR(global, std::hypot(2.42, 1.6, 0.95) / std::sqrt(2.0), 0.2);

    const auto all = Shown(34)["slices"];
    ASSERT_EQ(all.size(), 159U);
    for (std::size_t i = 0; i < all.size(); ++i) { // the middle of each block, at the speed there
        const double time = 0.25 * static_cast<double>(i + 1);
        EXPECT_NEAR(all[i]["references"]["Time"]["si"].get<double>(), time, 1e-5);
        EXPECT_NEAR(all[i]["references"]["Speed"]["si"].get<double>(), 10.0 + 2.25 * time, 0.02);
    }
    const auto speed = Shown(33);
    EXPECT_EQ(speed["x"]["name"], "Time");
    EXPECT_EQ(speed["x"]["si"][70], 17.75);
    EXPECT_EQ(speed["columns"][0]["si"][70], references["Speed"]["si"]);
    EXPECT_THAT(Show("34").out, HasSubstr("  70     70            70  17.75 s  "));
    EXPECT_EQ(slice("34", {"--at", "6000rpm"})["slice"]["index"], 158) << "a step after the last";
}

TEST_F(Program, SlicesThatAreNotThereAreRefused)
{
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    recording = folder.file("demo.wav");
    document = folder.file("demo.zmxf");
    expectFailure(Show("34", {"--at", "3000rmp"}), 1, "no reference for 3000rmp");
    expectFailure(Show("34", {"--at", "fast"}), 1, "no value with a unit");
    expectFailure(Show("34", {"--at", "30000rpm"}), 1, "Speed goes from 634 rpm to 5967 rpm");
    expectFailure(Show("34", {"--block", "159"}), 1, "no slice of block 159");
    expectFailure(Show("34", {"--slice", "159"}), 1, "holds 159 slices");
    expectFailure(Show("34", {"--top", "1"}), 1, "choose a slice");
    expectFailure(Show("3", {"--slice", "1"}), 1, "is no waterfall");
    expectFailure(Show("34", {"--slice", "1", "--block", "1"}), 2, "at most 1");
    expectFailure(Analyze({"--tacho", "4"}), 2, "from 1 to 3");
    expectFailure(Analyze({"--pulses", "2"}), 2, "--tacho");
    expectFailure(Analyze({"--tacho", "2"}, sineAndConstant(), 2), 1, "channel 2 is no tacho: it has 0 pulses");
}

TEST_F(Program, AnalyzeStoresSIValuesAndShowsThemInTheUnit)
{
    for (const int format : {kWav16, kFlac}) {
        const Outcome run = Analyze({"--unit", "g", "--full-scale", "8"}, sineAndConstant(), 2, format);
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_THAT(run.out, AllOf(HasSubstr("full scale is 8 g"), HasSubstr("not reduced by 3")));
        const auto rms = Shown(1);
        const double inUnit = 4.0 / std::numbers::sqrt2;
        EXPECT_EQ(rms["header"]["process"], "RMS");
        EXPECT_EQ(rms["header"]["responseChannel"], 1);
        EXPECT_EQ(rms["header"]["caption"], "sine.wav");
        EXPECT_EQ(rms["quantity"]["unit"], "g");
        EXPECT_EQ(rms["quantity"]["uffType"], 12);
        EXPECT_EQ(rms["quantity"]["dimension"], (nlohmann::json{{"m", 1}, {"s", -2}}));
        EXPECT_NEAR(rms["value"]["inUnit"], inUnit, 1e-4);
        EXPECT_NEAR(rms["value"]["si"], inUnit * 9.80665, 1e-3);
        EXPECT_NEAR(rms["value"]["dB"], 20.0 * std::log10(inUnit * 9.80665 / 1e-6), 1e-3);
        EXPECT_NEAR(rms["minimum"]["inUnit"], -4.0, 1e-3);
        EXPECT_NEAR(Shown(6)["value"]["si"], 1.5, 1e-4) << "kurtosis of a sine";
        EXPECT_EQ(Shown(6)["value"]["dB"], nullptr);
        EXPECT_EQ(Shown(7)["value"]["inUnit"], 2.0) << "mean of the constant";
        EXPECT_EQ(Shown(13)["value"]["si"], nullptr) << "kurtosis of a constant";
        EXPECT_THAT(Show("13").out, HasSubstr("N.A."));
    }
}

// A tone of 60 dB and half of it a quarter of a turn later, in Pa of which full scale is 0.1.
TEST_F(Program, AnalyzeStoresSpectraThatShowPrints)
{
    std::vector<double> samples;
    for (int i = 0; i < 16000; ++i) {
        const double turn = 2.0 * std::numbers::pi * 1000.0 * i / 16000.0;
        samples.push_back(0.2 * std::numbers::sqrt2 * std::sin(turn));
        samples.push_back(0.1 * std::numbers::sqrt2 * -std::cos(turn));
    }
    const auto analyzed = [&](const std::string& option, const std::string& value) {
        return Analyze({"--unit", "Pa", "--full-scale", "0.1", option, value}, samples, 2, kWavDouble, 16000);
    };
    ASSERT_EQ(analyzed("--block-size", "1600").status, 0);
    EXPECT_THAT(Show("14", {"--top", "1"}).out, HasSubstr("1000 Hz          20 mPa\n"));
    EXPECT_THAT(Show("14", {"--top", "1", "--db"}).out, HasSubstr("dB re 20 \u00B5Pa\n    1000 Hz"));
    EXPECT_THAT(Show("15", {"--db"}).out, HasSubstr("Global              20 mPa (60.0 dB re 20 \u00B5Pa)\n"));
    EXPECT_THAT(Show("15", {"--db"}).out, HasSubstr("mPa(A) (60.0 dBA re"));
    EXPECT_THAT(Show("15", {"--db"}).out, HasSubstr("   1000 Hz                       60.0 dB\n"));

    // The levels that gather others, and the overviews.
    const auto global = Shown(20)["levels"];
    EXPECT_NEAR(global["Crest factor"]["value"]["si"], std::numbers::sqrt2, 1e-4);
    EXPECT_EQ(global["Crest factor"]["value"]["dB"], nullptr);
    EXPECT_NEAR(global["Energy"]["value"]["si"], 4e-4, 1e-9);
    EXPECT_THAT(Show("20").out, HasSubstr(" 0.0004 Pa\u00B2 s\n"));
    const auto sound = Shown(21)["levels"];
    for (const char* weighting : {"A", "C", "Z"})
        for (const char* level : {"Leq ", "Short Leq ", "Instant Leq "})
            EXPECT_NEAR(sound[std::string(level) + weighting]["maximum"]["dB"], 60.0, 0.02) << level << weighting;
    EXPECT_NEAR(sound["Short Lpk C"]["maximum"]["dB"], 63.01, 0.02);
    EXPECT_THAT(Show("21").out, HasSubstr("  Leq Z                  20 mPa"));
    EXPECT_THAT(Show("21", {"--db"}).out, HasSubstr(" dBA"));
    const auto overview = Shown(23);
    EXPECT_EQ(overview["columns"].size(), 6U);
    EXPECT_EQ(overview["columns"][4]["name"], "A weighted RMS");
    EXPECT_EQ(overview["x"]["si"].size(), 3200U);
    EXPECT_NEAR(overview["x"]["si"][3199].get<double>(), 1.0 - 1.0 / 3200.0, 1e-6);
    EXPECT_EQ(Shown(22)["columns"][0]["si"], overview["columns"][0]["si"]);
    EXPECT_THAT(Show("22", {"--top", "1"}).out, HasSubstr("Lower"));

    // Channel 2: spectrum, bands, then what relates it to channel 1.
    const auto coherence = Shown(18);
    EXPECT_EQ(coherence["header"]["process"], "Coherence");
    EXPECT_EQ(coherence["header"]["reference"], "Channel 1");
    EXPECT_EQ(coherence["x"]["si"].size(), 801U);
    EXPECT_EQ(coherence["x"]["si"][100], 1000.0);
    EXPECT_NEAR(coherence["columns"][0]["si"][100], 1.0, 1e-6);
    const auto transfer = Show("19", {"--json", "--db"}).json();
    EXPECT_EQ(transfer["quantity"]["unit"], "Pa/Pa");
    EXPECT_NEAR(transfer["real"][100], 0.0, 1e-6);
    EXPECT_NEAR(transfer["imaginary"][100], -0.5, 1e-6);
    EXPECT_NEAR(transfer["columns"][0]["dB"][100], -6.0206, 1e-3);
    EXPECT_THAT(Show("19").out, HasSubstr("-90.0\u00B0"));
    expectFailure(Show("18", {"--db"}), 1, "without decibels");

    const auto peak = Show("14", {"--json", "--top", "1"}).json()["peaks"][0];
    EXPECT_EQ(peak["point"], 100);
    EXPECT_NEAR(peak["value"]["dB"], 60.0, 1e-4);

    EXPECT_THAT(analyzed("--averages", "1").out, HasSubstr("1 block\n"));
    EXPECT_THAT(analyzed("--reference", "2").out, HasSubstr("against Channel 2"));
    expectFailure(analyzed("--reference", "3"), 2, "from 1 to 2");
    expectFailure(analyzed("--block-size", "16200"), 1, "16000 samples, fewer than a block of 16200");
}

TEST_F(Program, DocumentsTellOfTheRecordingAndOfTheAnalysis)
{
    ASSERT_EQ(Analyze({"--unit", "g,V", "--full-scale", "8,10", "--block-size", "4096", "--reference", "2"},
                      sineAndConstant(), 2, kWav16)
                  .status,
              0);
    const auto tracks = Json("tracks")["systems"][0];
    const auto& stored = tracks["recording"];
    EXPECT_EQ(stored["name"], "sine.wav");
    EXPECT_EQ(stored["seconds"], 1.0);
    EXPECT_EQ(stored["sampleRate"], 48000.0);
    EXPECT_EQ(stored["records"], 1);
    EXPECT_EQ(stored["disks"][0]["files"][0], (nlohmann::json{{"firstBlock", 0}, {"lastBlock", 47999}}));
    const auto& track = stored["tracks"][0];
    EXPECT_EQ(track["name"], "Channel 1");
    EXPECT_EQ(track["quantity"]["unit"], "g");
    EXPECT_EQ(track["overload"], false);
    EXPECT_NEAR(track["minimum"], -4.0 * 9.80665, 1e-2);
    // A count of 2^30 is half of full scale.
    EXPECT_NEAR(1073741824.0 * double{track["voltsPerCount"]} / double{track["sensitivity"]}, 4.0 * 9.80665, 1e-4);
    EXPECT_EQ(tracks["transducers"][1]["type"], "Voltage");
    EXPECT_THAT(zmxf({"tracks", document}).out, HasSubstr("-4 g      4 g  no        full scale is 8 g\n"));

    const auto modules = Json("settings")["systems"][0]["modules"];
    EXPECT_EQ(modules[0]["submodules"][1]["settings"][1]["value"], 10.0);
    const auto& spectra = modules[1]["submodules"][0]["settings"];
    EXPECT_EQ(spectra[0]["value"], "Hann");
    EXPECT_EQ(spectra[1]["value"]["value"], 4096);
    EXPECT_EQ(spectra[2]["value"], 50.0);
    EXPECT_EQ(spectra[3]["value"]["value"], 22);
    EXPECT_EQ(spectra[4]["value"], "0/1.1/2.1/0");
    EXPECT_THAT(zmxf({"settings", document}).out, HasSubstr("      0/2.1/1.1/1  text        Window"));
}

TEST_F(Program, NamesMayHoldAnyBytesAndDocumentsMayMove)
{
    recording = folder.file("f\xFF\n'x");
    document = recording + "\xC0.zmxf";
    ASSERT_EQ(Analyze({}, std::vector{0.5, -0.5}).status, 0);
    EXPECT_EQ(Json("info")["results"].size(), 11U);
    std::filesystem::rename(document, folder.file("moved"));
    expectFailure(zmxf({"info", document}), 1, "No such file");
    document = folder.file("moved");
    EXPECT_EQ(Shown(3)["value"]["si"], 0.5);
}

TEST_F(Program, FailedWritesLeaveWhatWasThere)
{
    writeSound(recording, sineAndConstant(), 2, kWav16);
    write(document, "what was there");
    std::filesystem::create_symlink(recording, folder.file("link"));
    const std::string before = readDiskFile(recording);
    expectFailure(zmxf({"analyze", recording, "-o", document}, 4), 1, "could not be saved");
    expectFailure(zmxf({"demo", folder.path()}, 4), 1, "demo.wav");
    expectFailure(zmxf({"analyze", recording, "-o", recording}), 1, "it is the input");
    expectFailure(zmxf({"analyze", recording, "-o", folder.file("link")}), 1, "it is the input");
    const std::string tone = folder.file("sine.zmxf");
    expectFailure(zmxf({"analyze", recording, "--calibrator", "94dB", "--calibration", tone, "-o", tone}), 1,
                  "it is the input");
    expectFailure(zmxf({"analyze", recording, "-o", folder.path()}), 1, "not a regular file");
    expectFailure(zmxf({"analyze", recording, "-o", folder.file("no/x")}), 1, "No such file");
    EXPECT_EQ(readDiskFile(document), "what was there");
    EXPECT_TRUE(readDiskFile(recording) == before);
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre("sine.wav", "sine.zmxf", "link"));

    // A success replaces the file that a link names, and keeps its permissions.
    std::filesystem::permissions(document, std::filesystem::perms(0600));
    std::filesystem::create_symlink(document, folder.file("other"));
    EXPECT_EQ(zmxf({"analyze", recording, "-o", folder.file("other")}).status, 0);
    EXPECT_EQ(zmxf({"info", document}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("other")));
    EXPECT_EQ(std::filesystem::status(document).permissions(), std::filesystem::perms(0600));
}

TEST_F(Program, UnusableInputIsRefused)
{
    const auto fails = [this](std::span<const double> samples, int channels, const std::string& what,
                              const std::string& fullScale = "1") {
        writeSound(recording, samples, channels, kWavDouble);
        expectFailure(Analyze({"--unit", "V", "--full-scale", fullScale}), 1, what);
    };
    expectFailure(Analyze({}), 1, "No such file");
    expectFailure(zmxf({"analyze", "", "-o", document}), 1, "cannot read : No such file");
    write(recording, "no recording");
    expectFailure(Analyze({}), 1, "Format not recognised");
    write(recording, std::string(2'000'000, '\0')); // and no end of a line
    expectFailure(Analyze({}), 1, "Format not recognised");
    expectFailure(zmxf({"info", recording}), 1, "not a result document");
    fails({}, 1, "no samples");
    fails(std::vector{0.0, 0.0, 0.0, std::numeric_limits<double>::quiet_NaN()}, 2, "sample 1 of channel 2");
    fails(std::vector{1e39, 0.0}, 1, "too large");
    fails(std::vector{0.0, 1e200}, 1, "sample 1 of channel 1 is too large", "1e-200");
    fails(std::vector<double>(910), 910, "10000 results");
    ASSERT_EQ(Analyze({}, std::vector{1.0, 0.0}).status, 0);
    expectFailure(Analyze({"--unit", "V,V"}), 2, "--unit");
    expectFailure(Analyze({"--unit", "V", "--full-scale", "1,2"}), 2, "--full-scale");

    // A document that was cut off.
    expectFailure(Show("11"), 1, "it holds 11 results");
    const std::string whole = readDiskFile(document);
    document = folder.file("cut");
    for (std::size_t size = 0; size < whole.size(); size += 197) {
        write(document, whole.substr(0, size));
        for (const Outcome& run : {Show("6"), zmxf({"settings", document}), zmxf({"tracks", document})})
            if (run.status != 0) expectFailure(run, 1, "cut");
    }
}

TEST_F(Program, WrongUsageHasAStatusOfItsOwn)
{
    const std::vector<std::vector<std::string>> wrong{
        {},
        {"measure"},
        {"analyze", "a.wav"},
        {"analyze", "-o", "b"},
        {"analyze", "a.wav", "-o", "b", "--unit", "kg"},
        {"analyze", "a.wav", "-o", "b", "--full-scale", "2"},
        {"analyze", "a.wav", "-o", "b", "--unit", "V", "--full-scale", "nan"},
        {"analyze", "a.wav", "-o", "b", "--unit", "V", "--full-scale=-1"},
        {"analyze", "a.wav", "-o", "b", "--block-size", "1023"},
        {"analyze", "a.wav", "-o", "b", "--averages", "0"},
        {"show", "a.zmxf", "--top", "0"},
        {"show", "a.zmxf", "-1"},
        {"show", "a.zmxf", "one"},
        {"info", "a.zmxf", "b.zmxf"},
        {"info", "a.zmxf", "--bad\noption"},
    };
    expectFailure(zmxf({"shwo"}), 2, "there is no verb shwo: did you mean show?");
    expectFailure(zmxf({"foo"}), 2, "there is no verb foo: there are demo, analyze,");
    for (const auto& arguments : wrong) expectFailure(zmxf(arguments), 2, "--help");
    for (const char* verb : {"demo", "analyze", "info", "show", "settings", "tracks"}) {
        const Outcome help = zmxf({verb, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.out, HasSubstr(std::string("Example:\n  zmxf ") + verb));
    }
    const std::string version = zmxf({"--version"}).out;
    EXPECT_THAT(version, ::testing::StartsWith("zmxf "));
    EXPECT_THAT(version, HasSubstr("\nlibsndfile-"));
    EXPECT_THAT(version, HasSubstr("\nFLAC: "));
}

} // namespace zmxf::test
