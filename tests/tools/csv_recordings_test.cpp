#include "tests/tools/program.h"
#include "tools/signal_processing/recording.h"

#include <fmt/format.h>

// Recordings as columns of numbers.

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ::testing::ThrowsMessage;

class CsvRecordings : public Program {
protected:
    struct Content {
        RecordingFacts facts;
        std::vector<double> samples; // channels side by side
    };

    Content Read(const std::string& text, const CsvFormat& format) const
    {
        write(recording, text);
        RecordingReader reader({recording, 0.0, {}, format});
        Content content{reader.facts(), {}};
        for (auto block = reader.NextBlock(); !block.empty(); block = reader.NextBlock())
            content.samples.insert(content.samples.end(), block.begin(), block.end());
        return content;
    }
    void ExpectRefused(const std::string& text, const CsvFormat& format, const std::string& why) const
    {
        EXPECT_THAT(([&] { (void)Read(text, format); }), ThrowsMessage<RecordingError>(HasSubstr(why))) << text;
    }
    // Rows with the times of that many samples, printed as the format says.
    static std::string Times(int count, double step, const char* format)
    {
        std::string text = "t,x\n";
        for (int i = 0; i < count; ++i) text += fmt::format(fmt::runtime(format), i * step, i);
        return text;
    }
};

const CsvFormat kTenHertz{10.0};
const CsvFormat kTimesFirst{{}, 1};

} // namespace

TEST_F(CsvRecordings, AreReadHoweverTheyAreWritten)
{
    const std::vector<std::string> ways = {
        "1,-2.5\n3,4e1\n",
        "1;-2.5\n3;+40\n",
        "1;-2,5\r\n3;40,0\r\n",
        "a\tb\n1\t-2,5\n3\t40",
        "  1   -2.5\n 3 40.0 \n",
        "\"1\",\"-2.5\"\n\"3\",\"40\"",
        "\xEF\xBB\xBF"
        "1,-2.5,\n\n3,40,\n\n",
        "a , b\n1 , -25D-1\n3,4.d+1",
    };
    for (const std::string& way : ways) EXPECT_THAT(Read(way, kTenHertz).samples, ElementsAre(1, -2.5, 3, 40)) << way;
    EXPECT_THAT(Read("0,5\n1,5\n", {10.0, 0, {}, ','}).samples, ElementsAre(0.5, 1.5)) << "else two columns";
    EXPECT_THAT(Read("x\n0,5\n1,5\n", kTenHertz).samples, ElementsAre(0.5, 1.5)) << "one name, so one column";
    EXPECT_THAT(Read("made by\n2 rows\nx|y\n1|2\n", {10.0, 0, '|', {}, 2}).samples, ElementsAre(1, 2));
}

TEST_F(CsvRecordings, HeadersNameChannelsAndUnits)
{
    const auto facts =
        Read("Time [ms];\"Shaft; left [m/s\u00B2]\";Casing (g)\n0;1;2\n0,5;1;2\n1;1;2\n", kTimesFirst).facts;
    EXPECT_THAT(facts.said, ElementsAre(ChannelFacts{"Shaft; left", "m/s\u00B2"}, ChannelFacts{"Casing", "g"}));
    EXPECT_EQ(facts.sampleRate, 2000.0);
    EXPECT_EQ(facts.frames, 3);
    const Outcome run = Analyze({"--time-column", "1"});
    ASSERT_EQ(run.status, 0) << run.err;
    EXPECT_THAT(run.out, HasSubstr("Casing: values are in g, as the recording says"));
    EXPECT_EQ(Shown(1)["header"]["response"], "Shaft; left");
    EXPECT_EQ(Shown(1)["quantity"]["unit"], "m/s2");
    write(recording, "x [EU]\n1\n2\n");
    EXPECT_THAT(Analyze({"--rate", "10"}).err, HasSubstr("gives x in EU, which is no unit"));
    EXPECT_EQ(Analyze({"--rate", "10", "--unit", "N"}).err, "");
}

TEST_F(CsvRecordings, TimesTellTheRateThatTheyWereRoundedFrom)
{
    const auto rate = [&](const std::string& text) { return Read(text, kTimesFirst).facts.sampleRate; };
    EXPECT_EQ(rate(Times(4096, 1.0 / 3437.5, "{:.6g},{}\n")), 3437.5);
    EXPECT_EQ(rate(Times(5000, 1.0 / 51200.0, "{:.7f},{}\n")), 51200.0);
    EXPECT_EQ(rate(Times(1000, 1.0 / 65536.0, "{:.17g},{}\n")), 65536.0);
    EXPECT_NEAR(rate(Times(100, 60.0, "{:g},{}\n")), 1.0 / 60.0, 1e-8);
    EXPECT_EQ(Read(Times(100, 60.0, "{:g},{}\n"), {44.5, 1}).facts.sampleRate, 44.5);

    // A sample that is missing, and one that comes 2 % of a step late.
    ExpectRefused("0,1\n1,1\n2,1\n4,1\n5,1\n6,1\n", kTimesFirst, "uneven: to line 4 they step by 2 s");
    ExpectRefused("0.000,1\n1.000,1\n2.020,1\n3.000,1\n", kTimesFirst, "uneven");
    EXPECT_EQ(rate("0.000,1\n1.000,1\n2.009,1\n3.000,1\n"), 1.0);
    ExpectRefused(Times(1000, 1e-4, "{:.3f},{}\n"), kTimesFirst, "uneven");
    ExpectRefused("1,1\n0,1\n", kTimesFirst, "don't rise");
    ExpectRefused("0,1\n", kTimesFirst, "two times");
    ExpectRefused("Time [h],x\n0,1\n1,1\n", kTimesFirst, "in h, not in s");
}

TEST_F(CsvRecordings, AFirstColumnThatIsCalledATimeAndIsOneIsNoChannel)
{
    for (const char* title : {"Time", "t", "TIME [s]", "Zeit (s)"}) {
        const Content content = Read(std::string(title) + ";x\n0,0;1\n0,5;2\n1,0;3\n", {});
        EXPECT_EQ(content.facts.sampleRate, 2.0) << title;
        EXPECT_THAT(content.samples, ElementsAre(1, 2, 3)) << title;
    }
    EXPECT_THAT(Read("Time,x\n0,1\n1,2\n", kTenHertz).samples, ElementsAre(1, 2))
        << "the rate is the one that is given";
    EXPECT_THAT(Read("Time [h],x\n0,1\n1,2\n", kTenHertz).samples, ElementsAre(1, 2));
    // Other titles, a torque and a temperature, a lone column, and what the user says isn't one.
    for (const char* text : {"x,y\n0,1\n1,2\n", "T,y\n0,1\n1,2\n-1,5\n", "t [K],y\n0,1\n1,2\n", "t\n0\n1\n"})
        EXPECT_EQ(Read(text, kTenHertz).samples.front(), 0) << text;
    EXPECT_THAT(Read("Time,x\n0,1\n1,2\n", {10.0, 0}).samples, ElementsAre(0, 1, 1, 2));
    ExpectRefused("Time,x\n0,1\n1,2\n5,3\n", kTenHertz, "--time-column 1 takes it as times");
    ExpectRefused("Time,x\n0,1\n1,2\n0,3\n", kTenHertz, "--time-column 0 as a channel");
    ExpectRefused("Time,x\n0,1\n1,2\n5,3\n", {}, "uneven");
    ExpectRefused("Time [h],x\n0,1\n1,2\n", {}, "in h, not in s");

    write(recording, "Time [ms],x\n0,1\n1,2\n2,1\n3,2\n");
    const std::string said = "Column 1, \"Time [ms]\", is taken as times; --time-column 0";
    const Outcome run = Analyze({"--unit", "g"});
    EXPECT_THAT(run.out, HasSubstr("1 channel, 1000 Hz, 4 samples"));
    EXPECT_THAT(run.out, HasSubstr(said));
    EXPECT_EQ(run.err, "");
    EXPECT_THAT(Analyze({"--unit", "g", "--time-column", "1"}).out, Not(HasSubstr(said)));
    EXPECT_THAT(Analyze({"--unit", "g", "--time-column", "0", "--rate", "1000"}).out, HasSubstr("2 channels"));
}

TEST_F(CsvRecordings, WhatIsWrongIsToldByLineAndColumn)
{
    ExpectRefused("x,y\n1,2\n3,4\n5,oops\n", kTenHertz, "line 4, column 2: \"oops\" is no number");
    ExpectRefused("1,2\n3,\n", kTenHertz, "line 2 has 1 columns instead of 2");
    ExpectRefused("1,2\n3,4\n,6\n", kTenHertz, "line 3, column 1: \"\" is no number");
    ExpectRefused("1\nnan\n", kTenHertz, "line 2, column 1: \"nan\" is no number");
    ExpectRefused("1,2\n", {}, "--rate");
    ExpectRefused("1,2\n", {10.0, 3}, "it has 2 columns, so none is number 3");
    ExpectRefused("1\n", {10.0, 1}, "times only");
    ExpectRefused(std::string("1,2\n") + std::string(2 << 20, '1'), kTenHertz, "line 2 is longer");
    for (const char* other : {"a\nb\nc\n", "", "1,2\n\x01\x02\n"}) ExpectRefused(other, kTenHertz, "nor CSV");
    expectFailure(Analyze({"--rate", "0"}), 2, "no rate");
    expectFailure(Analyze({"--delimiter", "x"}), 2, "no delimiter");
    expectFailure(Analyze({"--delimiter", ",", "--decimal", ","}), 2, "another mark");
    expectFailure(Analyze({"--rate", "100"}, std::vector{1.0, 0.5}), 1, "it is no CSV");
}

} // namespace zmxf::test
