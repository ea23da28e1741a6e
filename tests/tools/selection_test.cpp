#include "tests/tools/program.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/glob.h"
#include "tools/zmxf/base/selection.h"
#include "zelmresult/support/text.h"

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;
using ZelmResult::ListedResult;

ListedResult listed(std::uint32_t type, const char* name, const char* channel, std::int32_t number,
                    std::uint32_t dimension = 0, std::int32_t system = 0)
{
    auto header = std::make_shared<ZelmResult::CResultHeader>();
    header->SetProcessType(type);
    header->SetWaterfallDimension(dimension);
    header->setProcessCaption(ZelmResult::FromUtf8(name));
    header->setResponseName(ZelmResult::FromUtf8(channel));
    header->SetNumReponse(number);
    return {system, header, {}, {}};
}

const std::vector<ListedResult> kResults = {
    listed(10, "RMS", "Bearing 1", 1),
    listed(2, "Autospectrum", "Bearing 1", 1),
    listed(2, "Run-up", "Bearing 1", 1, 2),
    listed(24, "Third octaves", "Bearing*", 2),
    listed(33, "Coherence", "3", 7),
    listed(31, "H1", "Gear [a]", 3),
    listed(24, "Bands of a run-up", "3", 7, 2),
    listed(43, "Speed", "\u00DCber", 4, 1),
    listed(10, "RMS", "Gear b", 5, 0, 1),
};

std::vector<std::size_t> channels(const std::vector<std::string>& texts)
{
    Selection selection;
    selection.channels = texts;
    return selection.Of(kResults);
}

std::vector<std::size_t> kinds(const std::vector<std::string>& texts)
{
    Selection selection;
    for (const std::string& text : texts) selection.kinds.push_back(ParseKind(text).value());
    return selection.Of(kResults);
}

} // namespace

TEST(Glob, DescribesWholeTexts)
{
    const auto matches = [](const char16_t* pattern, const char16_t* text) { return MatchesGlob(pattern, text); };
    for (const char16_t* pattern : {u"*", u"a*", u"*c", u"a?c", u"a*b*c", u"[a-c]b[!d]", u"[]a]bc", u"abc**", u"?*?"})
        EXPECT_TRUE(matches(pattern, u"abc")) << ZelmResult::ToUtf8(pattern);
    for (const char16_t* pattern : {u"", u"ab", u"bc", u"a?", u"abc?", u"[!a-c]bc", u"[b]*", u"*b", u"A*"})
        EXPECT_FALSE(matches(pattern, u"abc")) << ZelmResult::ToUtf8(pattern);
    EXPECT_TRUE(matches(u"", u""));
    EXPECT_TRUE(matches(u"a[b", u"a[b"));
    EXPECT_TRUE(matches(u"*ab", u"aaab")) << "a star that took too little";
    EXPECT_TRUE(matches(u"[a-]", u"-"));
    const std::u16string many(2000, u'a');
    EXPECT_FALSE(MatchesGlob(u"*a*a*a*a*a*a*a*a*a*a*a*a*b", many)) << "and ends";
}

TEST(Selection, TakesExactNamesBeforePatternsAndNumbers)
{
    EXPECT_THAT(channels({"Bearing*"}), ElementsAre(3)) << "a channel of that name";
    EXPECT_THAT(channels({"Bearing ?"}), ElementsAre(0, 1, 2));
    EXPECT_THAT(channels({"Gear [a]"}), ElementsAre(5));
    EXPECT_THAT(channels({"Gear [b]"}), ElementsAre(8));
    EXPECT_THAT(channels({"3"}), ElementsAre(4, 6)) << "not the channel of that number";
    EXPECT_THAT(channels({"#3"}), ElementsAre(5));
    EXPECT_THAT(channels({"2"}), ElementsAre(3)) << "a number, where no name is like it";
    EXPECT_THAT(channels({"?ber"}), ElementsAre(7)) << "one character of two bytes";
    EXPECT_THAT(channels({"bearing 1"}), IsEmpty());
    EXPECT_THAT(channels({"2", "Gear*"}), ElementsAre(3, 5, 8)) << "either";
}

TEST(Selection, KindsAreWordsOrTypes)
{
    EXPECT_THAT(kinds({"autospectrum"}), ElementsAre(1));
    EXPECT_THAT(kinds({"Waterfall"}), ElementsAre(2, 6));
    EXPECT_THAT(kinds({"2"}), ElementsAre(1, 2)) << "type 2, alone and along a run-up";
    EXPECT_THAT(kinds({"octave", "FRF", "coherence", "series"}), ElementsAre(3, 4, 5, 7));
    for (const char* text : {"", "spectra", "-2", "2x", "4294967296"}) EXPECT_FALSE(ParseKind(text)) << text;
}

TEST(Selection, HoldsAllThatIsAskedFor)
{
    Selection selection;
    EXPECT_THAT(selection.Of(kResults), ::testing::SizeIs(kResults.size()));
    selection.names = {"RMS"};
    EXPECT_THAT(selection.Of(kResults), ElementsAre(0, 8));
    selection.systems = {1};
    EXPECT_THAT(selection.Require("x", kResults), ElementsAre(8));
    selection.results = {NumberRange::Parse("3").value(), NumberRange::Parse("7-8").value()};
    EXPECT_THAT(selection.Require("x", kResults), ElementsAre(8));
    selection.results = {{3, 7}};
    EXPECT_THAT(selection.Of(kResults), IsEmpty());
    EXPECT_THROW((void)selection.Require("x", kResults), Failure);
    for (const char* text : {"", "-", "3-", "-3", "4-3", "3-4-5", " 3", "a"})
        EXPECT_FALSE(NumberRange::Parse(text)) << text;
}

// The demo: 55 results, of which 23 is the autospectrum of channel 2.
TEST_F(Program, ShowTakesWhatWasSelected)
{
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    document = folder.file("demo.zmxf");
    const auto show = [this](std::vector<std::string> options) {
        options.insert(options.begin(), {"show", document});
        return zmxf(options);
    };
    const std::vector<std::string> one{"--channel", "2", "--kind", "autospectrum"};
    EXPECT_EQ(show(one).out, Show("23").out);
    EXPECT_EQ(show({"--channel", "2", "--kind", "autospectrum", "--json"}).out, Show("23", {"--json"}).out);

    EXPECT_EQ(show({"--result", "8-9"}).out, Show("8").out + "\n" + Show("9").out);
    auto single = Shown(9);
    single.erase("schema");
    const auto both = show({"--channel", "#2", "--name", "AC RMS", "--name", "RMS", "--json"}).json();
    EXPECT_EQ(both["schema"], 1);
    ASSERT_EQ(both["results"].size(), 2U);
    EXPECT_EQ(both["results"][1], single);

    const Outcome some = show({"--result", "8,26", "--top", "1"});
    EXPECT_EQ(some.status, 1);
    EXPECT_THAT(some.out, ::testing::StartsWith("Result 26 of"));
    EXPECT_THAT(some.err, HasSubstr("result 8 has no points"));

    expectFailure(show({"--channel", "9"}), 1, "there are channels Channel 1, Channel 2, Channel 3, Slice number");
    expectFailure(show({"--kind", "frf", "--reference", "2"}), 1, "references Channel 1; kinds level, autospectrum");
    expectFailure(show({"--name", "none"}), 1, " and 7 more\n");
    expectFailure(show({"--result", "8,50-60"}), 1, "no result 60: it holds 55 results");
    expectFailure(show({"--kind", "spectra"}), 2, "there are level, autospectrum,");
    expectFailure(show({"--result", "9-8"}), 2, "a range like 7-9");
    expectFailure(show({"8", "--channel", "2"}), 2, "exclude each other");
    EXPECT_EQ(zmxf({"info", document, "--kind", "frf", "--json"}).json()["results"].size(), 2U);
}

} // namespace zmxf::test
