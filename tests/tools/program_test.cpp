#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"

#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <limits>
#include <numbers>
#include <sndfile.h>

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::UnorderedElementsAre;
using ZelmResult::test::readDiskFile;
using ZelmResult::test::TempFolder;

constexpr int kWav16 = SF_FORMAT_WAV | SF_FORMAT_PCM_16;
constexpr int kWavDouble = SF_FORMAT_WAV | SF_FORMAT_DOUBLE;
constexpr int kFlac = SF_FORMAT_FLAC | SF_FORMAT_PCM_16;

// A second of a sine of half of full scale beside a constant of a quarter.
std::vector<double> sineAndConstant()
{
    std::vector<double> samples;
    for (int i = 0; i < 48000; ++i) {
        samples.push_back(0.5 * std::sin(2.0 * std::numbers::pi * 100.0 * i / 48000.0));
        samples.push_back(0.25);
    }
    return samples;
}

std::vector<std::string> namesIn(const TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.path()))
        names.push_back(entry.path().filename());
    return names;
}

nlohmann::json shown(const std::string& document, int number)
{
    return zmxf({"show", document, std::to_string(number), "--json"}).json();
}

void write(const std::string& path, const std::string& bytes) { std::ofstream(path, std::ios::binary) << bytes; }

} // namespace

TEST(Program, DemoMeasuresItsOwnRecordingAsAnalyzeDoes)
{
    const TempFolder folder;
    const std::string place = folder.file("new/machine");
    const Outcome demo = zmxf({"demo", place});
    ASSERT_EQ(demo.status, 0) << demo.err;
    const std::string document = place + "/demo.zmxf";
    EXPECT_EQ(demo.lastLine(), document);
    EXPECT_EQ(demo.err, "");

    const std::string again = folder.file("again.zmxf");
    const std::vector<std::string> analyze = {
        "analyze", place + "/demo.wav", "--unit", "m/s2,m/s2,V", "--full-scale", "50,50,10", "--block-size",
        "8000",    "--tacho",           "3",      "-o",          again};
    ASSERT_EQ(zmxf(analyze).status, 0);
    for (const int number : {0, 6, 8, 20}) {
        EXPECT_EQ(shown(again, number)["value"], shown(document, number)["value"]);
        EXPECT_EQ(shown(again, number)["quantity"], shown(document, number)["quantity"]);
    }

    // Slices on disk, in a folder where nothing is left, make the same document.
    const std::string inMemory = readDiskFile(again);
    std::filesystem::create_directory(folder.file("tmp"));
    std::vector<std::string> onDisk = analyze;
    onDisk.emplace_back("--disk");
    EXPECT_EQ(zmxf(onDisk, 0, folder.file("tmp")).status, 0);
    EXPECT_TRUE(readDiskFile(again) == inMemory && std::filesystem::is_empty(folder.file("tmp")));
    expectFailure(zmxf(onDisk, 0, folder.file("nowhere")), 1, "no room for the slices");
    EXPECT_FALSE(std::filesystem::exists(folder.file("nowhere")));

    const std::string recording = readDiskFile(place + "/demo.wav");
    ASSERT_EQ(zmxf({"demo", place}).status, 0);
    EXPECT_TRUE(readDiskFile(place + "/demo.wav") == recording) << "not the same recording twice";
}

// 600 to 6000 rpm in 40 s: 3000 rpm come at 17.78 s, between two slices.
TEST(Program, RunUpComesBackWithItsReferences)
{
    const TempFolder folder;
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    const std::string document = folder.file("demo.zmxf");
    const auto slice = [&document](const std::string& number, std::vector<std::string> options) {
        options.insert(options.begin(), {"show", document, number, "--json", "--top", "1"});
        return zmxf(options).json();
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
    for (const char* same : {"3000", "17.75 s"}) EXPECT_EQ(slice("34", {"--at", same}), at3000) << same;
    EXPECT_EQ(slice("35", {"--at", "3000rpm"})["slice"], at3000["slice"]);
    const double global = slice("35", {"--at", "3000rpm"})["levels"]["Global"]["si"];
    EXPECT_NEAR(global, std::hypot(2.42, 1.6, 0.95) / std::sqrt(2.0), 0.2);

    const auto all = zmxf({"show", document, "34", "--json"}).json()["slices"];
    ASSERT_EQ(all.size(), 159U);
    for (std::size_t i = 0; i < all.size(); ++i) { // the middle of each block, at the speed there
        const double time = 0.25 * static_cast<double>(i + 1);
        EXPECT_NEAR(all[i]["references"]["Time"]["si"].get<double>(), time, 1e-5);
        EXPECT_NEAR(all[i]["references"]["Speed"]["si"].get<double>(), 10.0 + 2.25 * time, 0.02);
    }

    // The orders of channel 1 along the speed: 2 m/s2 and 0.5 m/s2, amplified by the resonance at 120 Hz.
    const auto orders = shown(document, 40);
    EXPECT_EQ(orders["x"]["name"], "Speed");
    EXPECT_EQ(orders["x"]["si"][70], references["Speed"]["si"]);
    ASSERT_EQ(orders["columns"].size(), 3U);
    EXPECT_EQ(orders["columns"][2]["name"], "Order 4");
    const auto amplified = [](double amplitude, double frequency) {
        const double ratio = frequency / 120.0;
        return amplitude / std::hypot(1.0 - ratio * ratio, 0.06 * ratio) / std::sqrt(2.0);
    };
    for (const std::size_t at : {0U, 30U, 70U, 120U, 158U}) {
        const double atSpeed = orders["x"]["si"][at];
        EXPECT_NEAR(orders["columns"][0]["si"][at].get<double>() / amplified(2.0, atSpeed), 1.0, 0.03) << at;
        EXPECT_NEAR(orders["columns"][1]["si"][at].get<double>() / amplified(0.5, 2.0 * atSpeed), 1.0, 0.06) << at;
        EXPECT_LT(orders["columns"][2]["si"][at].get<double>(), 0.06) << "there is no order 4";
    }
    EXPECT_THAT(zmxf({"show", document, "40", "--top", "1", "--db"}).out, HasSubstr("Order 1, dB re"));

    const auto speed = zmxf({"show", document, "33", "--json"}).json();
    EXPECT_TRUE(speed["x"]["name"] == "Time" && speed["x"]["si"][70] == 17.75);
    EXPECT_EQ(speed["columns"][0]["si"][70], references["Speed"]["si"]);
    EXPECT_NE(zmxf({"show", document, "34"}).out.find("  70     70            70  17.75 s  "), std::string::npos);
    expectFailure(zmxf({"show", document, "34", "--at", "3000rmp"}), 1, "no reference for 3000rmp");
    expectFailure(zmxf({"show", document, "34", "--at", "fast"}), 1, "no value with a unit");
    expectFailure(zmxf({"show", document, "34", "--block", "159"}), 1, "no slice of block 159");
    expectFailure(zmxf({"show", document, "34", "--slice", "159"}), 1, "holds 159 slices");
    expectFailure(zmxf({"show", document, "34", "--top", "1"}), 1, "choose a slice");
    expectFailure(zmxf({"show", document, "3", "--slice", "1"}), 1, "is no waterfall");
    expectFailure(zmxf({"show", document, "34", "--slice", "1", "--block", "1"}), 2, "at most 1");
    const std::string out = folder.file("x.zmxf");
    const std::string wav = folder.file("demo.wav");
    expectFailure(zmxf({"analyze", wav, "-o", out, "--tacho", "4"}), 2, "from 1 to 3");
    expectFailure(zmxf({"analyze", wav, "-o", out, "--pulses", "2"}), 2, "--tacho");
    writeSound(wav, sineAndConstant(), 2, kWav16);
    expectFailure(zmxf({"analyze", wav, "-o", out, "--tacho", "2"}), 1, "channel 2 is no tacho: it has 0 pulses");
}

TEST(Program, AnalyzeStoresSIValuesAndShowsThemInTheUnit)
{
    const TempFolder folder;
    for (const int format : {kWav16, kFlac}) {
        const std::string recording = folder.file("sine");
        const std::string document = folder.file("sine.zmxf");
        writeSound(recording, sineAndConstant(), 2, format);
        const Outcome run = zmxf({"analyze", recording, "--unit", "g", "--full-scale", "8", "-o", document});
        ASSERT_EQ(run.status, 0) << run.err;
        EXPECT_THAT(run.out, HasSubstr("full scale is 8 g"));
        EXPECT_THAT(run.out, HasSubstr("not reduced by 3"));

        const auto rms = shown(document, 1);
        const double inUnit = 4.0 / std::numbers::sqrt2;
        EXPECT_EQ(rms["header"]["process"], "RMS");
        EXPECT_EQ(rms["header"]["responseChannel"], 1);
        EXPECT_EQ(rms["header"]["caption"], "sine");
        EXPECT_EQ(rms["quantity"]["unit"], "g");
        EXPECT_EQ(rms["quantity"]["dimension"], (nlohmann::json{{"m", 1}, {"s", -2}}));
        EXPECT_EQ(rms["quantity"]["uffType"], 12);
        EXPECT_NEAR(rms["value"]["inUnit"], inUnit, 1e-4);
        EXPECT_NEAR(rms["value"]["si"], inUnit * 9.80665, 1e-3);
        EXPECT_NEAR(rms["value"]["dB"], 20.0 * std::log10(inUnit * 9.80665 / 1e-6), 1e-3);
        EXPECT_NEAR(rms["minimum"]["inUnit"], -4.0, 1e-3);
        EXPECT_NEAR(shown(document, 6)["value"]["si"], 1.5, 1e-4) << "kurtosis of a sine";
        EXPECT_EQ(shown(document, 6)["value"]["dB"], nullptr);
        EXPECT_EQ(shown(document, 7)["value"]["inUnit"], 2.0) << "mean of the constant";
        EXPECT_EQ(shown(document, 13)["value"]["si"], nullptr) << "kurtosis of a constant";
        EXPECT_THAT(zmxf({"show", document, "13"}).out, HasSubstr("N.A."));
    }
}

// A tone of 60 dB and half of it a quarter of a turn later, in Pa of which full scale is 0.1.
TEST(Program, AnalyzeStoresSpectraThatShowPrints)
{
    const TempFolder folder;
    const std::string document = folder.file("tone.zmxf");
    std::vector<double> samples;
    for (int i = 0; i < 16000; ++i) {
        const double turn = 2.0 * std::numbers::pi * 1000.0 * i / 16000.0;
        samples.push_back(0.2 * std::numbers::sqrt2 * std::sin(turn));
        samples.push_back(0.1 * std::numbers::sqrt2 * -std::cos(turn));
    }
    writeSound(folder.file("tone.wav"), samples, 2, kWavDouble, 16000);
    const auto analyzed = [&](const std::string& option, const std::string& value) {
        return zmxf(
            {"analyze", folder.file("tone.wav"), "--unit", "Pa", "--full-scale", "0.1", option, value, "-o", document});
    };
    ASSERT_EQ(analyzed("--block-size", "1600").status, 0);
    const auto shownText = [&](const char* number, const std::vector<std::string>& options) {
        std::vector<std::string> arguments{"show", document, number};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return zmxf(arguments).out;
    };
    EXPECT_THAT(shownText("14", {"--top", "1"}), HasSubstr("1 kHz          20 mPa\n"));
    EXPECT_THAT(shownText("14", {"--top", "1", "--db"}), HasSubstr("dB re 20 \u00B5Pa\n      1 kHz"));
    EXPECT_THAT(shownText("15", {"--db"}), HasSubstr("Global              20 mPa (60.0 dB re 20 \u00B5Pa)\n"));
    EXPECT_THAT(shownText("15", {"--db"}), HasSubstr("mPa(A) (60.0 dBA re"));
    EXPECT_THAT(shownText("15", {"--db"}), HasSubstr("     1 kHz                       60.0 dB\n"));

    // The levels that gather others, and the overviews.
    const auto global = shown(document, 20)["levels"];
    EXPECT_NEAR(global["Crest factor"]["value"]["si"], std::numbers::sqrt2, 1e-4);
    EXPECT_EQ(global["Crest factor"]["value"]["dB"], nullptr);
    EXPECT_NEAR(global["Energy"]["value"]["si"], 4e-4, 1e-9);
    EXPECT_THAT(shownText("20", {}), HasSubstr(" 0.0004 Pa\u00B2 s\n"));
    const auto sound = shown(document, 21)["levels"];
    for (const char* weighting : {"A", "C", "Z"})
        for (const char* level : {"Leq ", "Short Leq ", "Instant Leq "})
            EXPECT_NEAR(sound[std::string(level) + weighting]["maximum"]["dB"], 60.0, 0.02) << level << weighting;
    EXPECT_NEAR(sound["Short Lpk C"]["maximum"]["dB"], 63.01, 0.02);
    EXPECT_THAT(shownText("21", {}), HasSubstr("  Leq Z                  20 mPa"));
    EXPECT_THAT(shownText("21", {"--db"}), HasSubstr(" dBA"));
    const auto overview = shown(document, 23);
    EXPECT_EQ(overview["columns"].size(), 6U);
    EXPECT_EQ(overview["columns"][4]["name"], "A weighted RMS");
    EXPECT_EQ(overview["x"]["si"].size(), 3200U);
    EXPECT_NEAR(overview["x"]["si"][3199].get<double>(), 1.0 - 1.0 / 3200.0, 1e-6);
    EXPECT_EQ(shown(document, 22)["columns"][0]["si"], overview["columns"][0]["si"]);
    EXPECT_THAT(shownText("22", {"--top", "1"}), HasSubstr("Lower"));

    // Channel 2: spectrum, bands, then what relates it to channel 1.
    const auto coherence = zmxf({"show", document, "18", "--json"}).json();
    EXPECT_EQ(coherence["header"]["process"], "Coherence");
    EXPECT_EQ(coherence["header"]["reference"], "Channel 1");
    EXPECT_EQ(coherence["x"]["si"].size(), 801U);
    EXPECT_EQ(coherence["x"]["si"][100], 1000.0);
    EXPECT_NEAR(coherence["columns"][0]["si"][100], 1.0, 1e-6);
    const auto transfer = zmxf({"show", document, "19", "--json", "--db"}).json();
    EXPECT_EQ(transfer["quantity"]["unit"], "Pa/Pa");
    EXPECT_NEAR(transfer["real"][100], 0.0, 1e-6);
    EXPECT_NEAR(transfer["imaginary"][100], -0.5, 1e-6);
    EXPECT_NEAR(transfer["columns"][0]["dB"][100], -6.0206, 1e-3);
    EXPECT_THAT(shownText("19", {}), HasSubstr("-90.0\u00B0"));
    expectFailure(zmxf({"show", document, "18", "--db"}), 1, "without decibels");

    const auto peak = zmxf({"show", document, "14", "--json", "--top", "1"}).json();
    EXPECT_EQ(peak["peaks"][0]["point"], 100);
    EXPECT_NEAR(peak["peaks"][0]["value"]["dB"], 60.0, 1e-4);

    EXPECT_THAT(analyzed("--averages", "1").out, HasSubstr("1 block\n"));
    EXPECT_THAT(analyzed("--reference", "2").out, HasSubstr("against Channel 2"));
    expectFailure(analyzed("--reference", "3"), 2, "from 1 to 2");
    expectFailure(analyzed("--block-size", "16200"), 1, "16000 samples, fewer than a block of 16200");
}

TEST(Program, DocumentsTellOfTheRecordingAndOfTheAnalysis)
{
    const TempFolder folder;
    const std::string document = folder.file("sine.zmxf");
    writeSound(folder.file("sine.wav"), sineAndConstant(), 2, kWav16);
    ASSERT_EQ(zmxf({"analyze", folder.file("sine.wav"), "--unit", "g,V", "--full-scale", "8,10", "--block-size", "4096",
                    "--reference", "2", "-o", document})
                  .status,
              0);
    const auto tracks = zmxf({"tracks", document, "--json"}).json()["systems"][0];
    const auto& recording = tracks["recording"];
    EXPECT_EQ(recording["name"], "sine.wav");
    EXPECT_TRUE(recording["seconds"] == 1.0 && recording["sampleRate"] == 48000.0 && recording["records"] == 1);
    EXPECT_EQ(recording["disks"][0]["files"][0], (nlohmann::json{{"firstBlock", 0}, {"lastBlock", 47999}}));
    const auto& track = recording["tracks"][0];
    EXPECT_TRUE(track["name"] == "Channel 1" && track["quantity"]["unit"] == "g" && track["overload"] == false);
    EXPECT_NEAR(track["minimum"], -4.0 * 9.80665, 1e-2);
    // A count of 2^30 is half of full scale.
    EXPECT_NEAR(1073741824.0 * double{track["voltsPerCount"]} / double{track["sensitivity"]}, 4.0 * 9.80665, 1e-4);
    EXPECT_EQ(tracks["transducers"][1]["type"], "Voltage");
    EXPECT_THAT(zmxf({"tracks", document}).out, HasSubstr("-4 g      4 g  no        full scale is 8 g\n"));

    const auto modules = zmxf({"settings", document, "--json"}).json()["systems"][0]["modules"];
    EXPECT_EQ(modules[0]["submodules"][1]["settings"][1]["value"], 10.0);
    const auto& spectra = modules[1]["submodules"][0]["settings"];
    EXPECT_TRUE(spectra[0]["value"] == "Hann" && spectra[1]["value"]["value"] == 4096 && spectra[2]["value"] == 50.0);
    EXPECT_EQ(spectra[3]["value"]["value"], 22);
    EXPECT_EQ(spectra[4]["value"], "0/1.1/2.1/0");
    EXPECT_THAT(zmxf({"settings", document}).out, HasSubstr("      0/2.1/1.1/1  text        Window"));

    const std::string whole = readDiskFile(document); // of damaged ones as much as is there
    for (std::size_t size = 0; size < whole.size(); size += 9973) {
        write(folder.file("cut"), whole.substr(0, size));
        for (const char* verb : {"settings", "tracks"}) {
            const Outcome run = zmxf({verb, folder.file("cut")});
            if (run.status != 0) expectFailure(run, 1, "cut");
        }
    }
}

TEST(Program, UncalibratedInputIsSaidToBeSo)
{
    const TempFolder folder;
    const std::string document = folder.file("x.zmxf");
    writeSound(folder.file("x.wav"), std::vector{0.5, -0.5}, 1, kWavDouble);
    EXPECT_THAT(zmxf({"analyze", folder.file("x.wav"), "-o", document}).out, HasSubstr("uncalibrated"));
    const auto info = zmxf({"info", document, "--json"}).json();
    EXPECT_EQ(info["quantities"][0]["name"], "Full scale (uncalibrated)");
    EXPECT_EQ(info["quantities"][0]["dimension"], nlohmann::json::object());
    for (const auto& header : info["results"]) EXPECT_THAT(header["comment"], HasSubstr("uncalibrated"));
    EXPECT_THAT(zmxf({"show", document, "1"}).out, HasSubstr("500 mFS (-6.02 dB re 1 FS)"));
}

TEST(Program, InfoListsTheDocument)
{
    const TempFolder folder;
    const std::string document = folder.file("x.zmxf");
    writeSound(folder.file("x.wav"), std::vector{0.5, -0.5}, 1, kWavDouble);
    ASSERT_EQ(zmxf({"analyze", folder.file("x.wav"), "--unit", "Pa", "-o", document}).status, 0);
    const Outcome run = zmxf({"info", document, "--json"});
    EXPECT_EQ(run.out.back(), '\n');
    const auto info = run.json();
    EXPECT_EQ(info["contents"],
              (nlohmann::json{"quantities", "recording", "results", "settings", "tracks", "recording preview"}));
    EXPECT_EQ(info["hardware"][0]["shortName"], "zmxf");
    EXPECT_EQ(info["systems"], nlohmann::json::parse(R"([{"number": 0, "results": 11}])"));
    std::vector<std::string> quantities;
    for (const auto& quantity : info["quantities"]) quantities.push_back(quantity["key"]);
    EXPECT_THAT(quantities, ElementsAre("Pressure", "Crest factor", "Kurtosis", "Time"));
    EXPECT_EQ(info["quantities"][0]["decibels"], (nlohmann::json{{"reference", 2e-5}, {"factor", 20}}));
    EXPECT_EQ(info["quantities"][1]["decibels"], nullptr);
    EXPECT_EQ(info["results"][5]["process"], "Crest factor");
    EXPECT_EQ(info["results"][5]["file"], document);
    EXPECT_THAT(zmxf({"info", document}).out, HasSubstr("20 \u00B5Pa  m^-1 kg s^-2"));
}

TEST(Program, NamesMayHoldAnyBytesAndDocumentsMayMove)
{
    const TempFolder folder;
    const std::string odd = folder.file("f\xFF\n'x");
    writeSound(odd, std::vector{0.5, -0.5}, 1, kWavDouble);
    ASSERT_EQ(zmxf({"analyze", odd, "-o", odd + "\xC0.zmxf"}).status, 0);
    EXPECT_EQ(zmxf({"info", odd + "\xC0.zmxf", "--json"}).json()["results"].size(), 11U);
    std::filesystem::rename(odd + "\xC0.zmxf", folder.file("moved"));
    EXPECT_EQ(shown(folder.file("moved"), 3)["value"]["si"], 0.5);
    expectFailure(zmxf({"info", odd + "\xC1.zmxf"}), 1, "No such file");
}

TEST(Program, FailedWritesLeaveWhatWasThere)
{
    const TempFolder folder;
    const std::string recording = folder.file("x.wav");
    const std::string document = folder.file("x.zmxf");
    writeSound(recording, sineAndConstant(), 2, kWav16);
    write(document, "what was there");
    std::filesystem::create_symlink(recording, folder.file("link"));
    const std::string before = readDiskFile(recording);
    expectFailure(zmxf({"analyze", recording, "-o", document}, 4), 1, "could not be saved");
    expectFailure(zmxf({"demo", folder.path()}, 4), 1, "demo.wav");
    expectFailure(zmxf({"analyze", recording, "-o", recording}), 1, "it is the input");
    expectFailure(zmxf({"analyze", recording, "-o", folder.file("link")}), 1, "it is the input");
    expectFailure(zmxf({"analyze", recording, "-o", folder.path()}), 1, "not a regular file");
    expectFailure(zmxf({"analyze", recording, "-o", folder.file("no/x")}), 1, "No such file");
    EXPECT_EQ(readDiskFile(document), "what was there");
    EXPECT_TRUE(readDiskFile(recording) == before);
    EXPECT_THAT(namesIn(folder), UnorderedElementsAre("x.wav", "x.zmxf", "link"));

    // A success replaces the file behind a link, and keeps its permissions.
    std::filesystem::permissions(document, std::filesystem::perms(0600));
    std::filesystem::create_symlink(document, folder.file("other"));
    EXPECT_EQ(zmxf({"analyze", recording, "-o", folder.file("other")}).status, 0);
    EXPECT_EQ(zmxf({"info", document}).status, 0);
    EXPECT_TRUE(std::filesystem::is_symlink(folder.file("other")));
    EXPECT_EQ(std::filesystem::status(document).permissions(), std::filesystem::perms(0600));
}

TEST(Program, UnusableInputIsRefused)
{
    const TempFolder folder;
    const auto analyzed = [&](const std::string& unit = "V", const std::string& fullScale = "1") {
        return zmxf({"analyze", folder.file("in"), "--unit", unit, "--full-scale", fullScale, "-o", folder.file("o")});
    };
    expectFailure(analyzed(), 1, "No such file");
    write(folder.file("in"), "no recording");
    expectFailure(analyzed(), 1, "Format not recognised");
    expectFailure(zmxf({"info", folder.file("in")}), 1, "not a result document");
    writeSound(folder.file("in"), {}, 1, kWavDouble);
    expectFailure(analyzed(), 1, "no samples");
    writeSound(folder.file("in"), std::vector{0.0, 0.0, 0.0, std::numeric_limits<double>::quiet_NaN()}, 2, kWavDouble);
    expectFailure(analyzed(), 1, "sample 1 of channel 2");
    writeSound(folder.file("in"), std::vector{1e39, 0.0}, 1, kWavDouble);
    expectFailure(analyzed(), 1, "too large");
    writeSound(folder.file("in"), std::vector{0.0, 1e200}, 1, kWavDouble);
    expectFailure(analyzed("V", "1e-200"), 1, "sample 1 of channel 1 is too large");
    writeSound(folder.file("in"), std::vector<double>(910), 910, kWav16);
    expectFailure(analyzed(), 1, "10000 results");
    writeSound(folder.file("in"), std::vector{1.0, 0.0}, 1, kWavDouble);
    expectFailure(analyzed("V,V"), 2, "--unit");
    expectFailure(analyzed("V", "1,2"), 2, "--full-scale");
    ASSERT_EQ(analyzed().status, 0);

    // A document that was cut off.
    expectFailure(zmxf({"show", folder.file("o"), "11"}), 1, "it holds 11 results");
    const std::string whole = readDiskFile(folder.file("o"));
    for (std::size_t size = 0; size < whole.size(); size += 97) {
        write(folder.file("cut"), whole.substr(0, size));
        const Outcome run = zmxf({"show", folder.file("cut"), "6", "--json"});
        if (run.status != 0) expectFailure(run, 1, "cut");
    }
}

TEST(Program, WrongUsageHasAStatusOfItsOwn)
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
    for (const auto& arguments : wrong) expectFailure(zmxf(arguments), 2, "--help");
    for (const char* verb : {"demo", "analyze", "info", "show", "settings", "tracks"}) {
        const Outcome help = zmxf({verb, "--help"});
        EXPECT_EQ(help.status, 0);
        EXPECT_THAT(help.out, HasSubstr(std::string("Example:\n  zmxf ") + verb));
    }
    EXPECT_THAT(zmxf({"--version"}).out, ::testing::MatchesRegex("zmxf [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

} // namespace zmxf::test
