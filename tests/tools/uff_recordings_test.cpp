#include "tests/tools/program.h"
#include "tools/signal_processing/recording.h"

#include <bit>
#include <fmt/format.h>

// Recordings as functions of a Universal File, put together here by the columns of its lines.

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::ElementsAreArray;
using ::testing::HasSubstr;
using ::testing::ThrowsMessage;

// One function; what a test leaves alone is a plain time signal at 200 Hz.
struct Function {
    std::vector<double> values = {1.0, -2.5, 3e-7, 40.0, 5.0, 6.0, -7e3};
    std::string name = "Casing";
    std::string unit = "m/s^2";
    int function = 1;
    int abscissa = 17;
    int type = 2; // 2 single, 4 double, 5 complex single
    std::string step = "  5.00000E-03";
    std::vector<double> times = {};
    std::size_t points = values.size(); // as the header says
    std::string end = "\n";             // of lines

    [[nodiscard]] std::string Header(const std::string& kind) const
    {
        std::string text;
        for (const std::string& line :
             {std::string("    -1"), kind, name,
              std::string("run \xFC"
                          "ber 3"),
              std::string("18-Apr-16"), std::string("NONE"), std::string("NONE"),
              fmt::format("{:5}{:10}{:5}{:10} {:<10}{:10}{:4} NONE               0   0", function, 1, 0, 0, "Top", 7,
                          3),
              fmt::format("{:10}{:10}{:10}  0.00000E+00{}  0.00000E+00", type, points, times.empty() ? 1 : 0, step),
              fmt::format("{:10}    0    0    0 Time                 s                   ", abscissa),
              fmt::format("        12    0    0    0 Acceleration         {:<20}", unit),
              std::string("         0    0    0    0 NONE                 NONE"),
              std::string("         0    0    0    0 NONE                 NONE")})
            text += line + end;
        return text;
    }
    [[nodiscard]] std::string Ascii(const char* exponent = "E") const
    {
        std::string text = Header("    58");
        const std::size_t perLine = type == 2 ? 6 : 4;
        std::size_t count = 0;
        const auto add = [&](const std::string& number) {
            text += number;
            if (++count % perLine == 0) text += "  " + end;
        };
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!times.empty()) add(Printed(times[i], 13, 5, exponent));
            add(type == 2 ? Printed(values[i], 13, 5, exponent) : Printed(values[i], 20, 12, exponent));
        }
        if (count % perLine != 0) text += end;
        return text + "    -1" + end;
    }
    [[nodiscard]] std::string Binary(bool isBigEndian, std::size_t bytes) const
    {
        std::string text = Header(fmt::format("    58b{:6}{:6}{:12}{:12}", isBigEndian ? 2 : 1, 2, 11, bytes));
        const auto add = [&](std::uint64_t bits, std::size_t size) {
            for (std::size_t i = 0; i < size; ++i)
                text += static_cast<char>(bits >> 8 * (isBigEndian ? size - 1 - i : i) & 0xFFU);
        };
        for (std::size_t i = 0; i < values.size(); ++i) {
            if (!times.empty()) add(std::bit_cast<std::uint32_t>(static_cast<float>(times[i])), 4);
            if (type == 4)
                add(std::bit_cast<std::uint64_t>(values[i]), 8);
            else
                add(std::bit_cast<std::uint32_t>(static_cast<float>(values[i])), 4);
        }
        return text + end + "    -1" + end;
    }
    static std::string Printed(double value, int width, int digits, const char* exponent)
    {
        std::string text = fmt::format("{:{}.{}E}", value, width, digits);
        return text.replace(text.find('E'), 1, exponent);
    }
};

class UffRecordings : public Program {
protected:
    struct Content {
        RecordingFacts facts;
        std::vector<double> samples;
    };

    Content Read(const std::string& bytes) const
    {
        write(recording, bytes);
        RecordingReader reader({recording});
        Content content{reader.facts(), {}};
        for (int pass = 0; pass < 2; ++pass) {
            content.samples.clear();
            for (auto block = reader.NextBlock(); !block.empty(); block = reader.NextBlock())
                content.samples.insert(content.samples.end(), block.begin(), block.end());
            reader.Rewind();
        }
        return content;
    }
    void ExpectRefused(const std::string& bytes, const std::string& why) const
    {
        EXPECT_THAT(([&] { (void)Read(bytes); }), ThrowsMessage<RecordingError>(HasSubstr(why)));
    }
    void ExpectRead(const std::string& bytes, const std::string& what) const
    {
        const Content content = Read(bytes);
        const Function plain;
        ASSERT_EQ(content.samples.size(), plain.values.size()) << what;
        for (std::size_t i = 0; i < content.samples.size(); ++i)
            EXPECT_NEAR(content.samples[i], plain.values[i], 1e-7 * std::fabs(plain.values[i])) << what;
        EXPECT_EQ(content.facts.sampleRate, 200.0) << what;
        EXPECT_THAT(content.facts.said, ElementsAre(ChannelFacts{plain.name, plain.unit})) << what;
    }
};

// Another dataset, as files have them in front of the functions.
const std::string kUnits = "    -1\n   164\n         1  SI\n  1.0\n    -1\n";

} // namespace

TEST_F(UffRecordings, AreReadInEachForm)
{
    for (const int type : {2, 4}) {
        for (const char* end : {"\n", "\r\n"}) {
            Function function;
            function.type = type;
            function.end = end;
            const std::size_t bytes = function.values.size() * (type == 2 ? 4 : 8);
            for (const char* exponent : {"E", "D", "e"}) ExpectRead(function.Ascii(exponent), exponent);
            for (const bool isBigEndian : {false, true}) {
                ExpectRead(function.Binary(isBigEndian, bytes), "binary");
                ExpectRead(function.Binary(isBigEndian, 0), "a wrong count of bytes");
                Function miscounted = function;
                miscounted.points = 5;
                ExpectRead(miscounted.Binary(isBigEndian, bytes), "a wrong count of points");
            }
            // Times that are written out.
            function.times = {1.0, 1.005, 1.01, 1.015, 1.02, 1.025, 1.03};
            ExpectRead(function.Ascii(), "uneven");
            ExpectRead(function.Binary(true, 0), "uneven, binary");
            function.times[3] = 1.016;
            ExpectRefused(function.Ascii(), "uneven: to line");
            ExpectRefused(function.Binary(false, 0), "uneven: to sample 3");
            function.times[3] = NAN;
            ExpectRefused(function.Binary(false, 0), "finite");
        }
    }
    Function touching;
    touching.values = {-1e-300, -2e-300, -3e300};
    touching.points = 3;
    touching.type = 4;
    std::string bytes = touching.Ascii();
    EXPECT_THAT(Read(bytes).samples, ElementsAreArray(touching.values));
    for (std::size_t at = bytes.find("  -"); at != std::string::npos; at = bytes.find("  -", at))
        if (bytes[at + 3] >= '1' && bytes[at + 4] == '.')
            bytes.erase(at, 2);
        else
            ++at;
    EXPECT_THAT(Read(bytes).samples, ElementsAreArray(touching.values)) << "without blanks between them";
}

TEST_F(UffRecordings, ChannelsAreDatasetsAndOthersAreLeftOut)
{
    Function second;
    second.values = {1, 2, 3, 4, 5, 6, 7};
    second.name = "Shaft";
    second.unit = "g";
    Function transfer;
    transfer.function = 4;
    transfer.abscissa = 18;
    transfer.type = 5;
    transfer.points = 3;
    transfer.values = {1, 2, 3, 4, 5, 6};
    const std::string both = kUnits + Function().Ascii() + transfer.Binary(false, 24) + second.Binary(true, 28);
    const Content content = Read(both);
    EXPECT_EQ(content.samples.size(), 14U);
    EXPECT_EQ(content.samples[13], 7.0);
    const Outcome run = Analyze({});
    EXPECT_THAT(run.err, HasSubstr("1 function of the file that is no time signal is left out"));
    EXPECT_THAT(run.out, HasSubstr("Shaft: values are in g, as the recording says"));
    EXPECT_THAT(Show("0").out, HasSubstr("the recording says: run \u00FCber 3"));
    EXPECT_EQ(Shown(0)["header"]["response"], "Casing");

    second.name = Function().name;
    EXPECT_EQ(Read(Function().Ascii() + second.Ascii()).facts.said[1].name, "Top") << "the names don't tell them apart";
    second.step = "  4.00000E-03";
    ExpectRefused(Function().Ascii() + second.Ascii(), "its signals differ: 7 samples at 200 Hz on line 2");
    ExpectRefused(transfer.Binary(false, 24), "no time signal");
    ExpectRefused(kUnits, "no time signal");
}

TEST_F(UffRecordings, CutAndDamagedOnesAreRefused)
{
    const Function function;
    for (const std::string& whole : {kUnits + function.Ascii(), kUnits + function.Binary(false, 28)}) {
        const std::size_t end = whole.rfind("-1");
        for (std::size_t size = kUnits.size() + 10; size < end + 2; size += 5) {
            write(recording, whole.substr(0, size));
            EXPECT_THROW(RecordingReader({recording}), RecordingError) << size;
        }
    }
    Function wrong;
    wrong.points = 6;
    ExpectRead(Function().Ascii(), "as it should be");
    wrong.points = 13;
    ExpectRefused(wrong.Ascii(), "line 16: the dataset ends after 7 of 13 numbers");
    wrong.points = 0;
    ExpectRefused(wrong.Ascii(), "it has 0 points");
    wrong = {};
    wrong.step = "  0.00000E+00";
    ExpectRefused(wrong.Ascii(), "0 s apart");
    wrong = {};
    wrong.type = 9;
    ExpectRefused(wrong.Ascii(), "unknown type 9");
    std::string stars = function.Ascii();
    stars.replace(stars.find("-2.50000E+00"), 12, "************");
    ExpectRefused(stars, "line 14: \"************");
    std::string foreign = function.Binary(false, 28);
    foreign.replace(foreign.find("     1     2"), 12, "     1     1");
    ExpectRefused(foreign, "not that of IEEE");
}

} // namespace zmxf::test
