#include "tests/tools/program.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/damage/verification.h"
#include "tools/zmxf/viewer/page_writing.h"
#include "tools/zmxf/viewer/viewer_page.h"

#include <sstream>

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ZelmResult::test::readDiskFile;

std::string TextOf(const CarriedDocument& document) { return {document.bytes.begin(), document.bytes.end()}; }

} // namespace

TEST_F(Program, PagesLeaveOutTheResultsWithTheMostData)
{
    ASSERT_EQ(Analyze({}, sineAndConstant(), 2).status, 0);
    const std::string whole = readDiskFile(document);
    const auto size = static_cast<std::int64_t>(whole.size());
    const auto all = CarryDocuments({document, document}, 2 * size);
    EXPECT_EQ(TextOf(all[1]), whole);
    EXPECT_EQ(all[0].note + all[1].note, "");

    const nlohmann::json before = Json("ls")["files"][0]["results"];
    const auto fewer = CarryDocuments({document}, size - 20000);
    EXPECT_LE(std::ssize(fewer[0].bytes), size - 20000);
    EXPECT_THAT(fewer[0].note, HasSubstr("Overview"));
    const std::string reduced = folder.file("reduced.zmxf");
    write(reduced, TextOf(fewer[0]));
    const Verification found = Verify(reduced);
    EXPECT_EQ(found.verdict, Verification::Verdict::Whole) << found.damages.front().text;
    EXPECT_LT(found.results, before.size());
    const nlohmann::json level = zmxf({"show", document, "--kind", "level", "--json"}).json()["results"];
    const nlohmann::json kept = zmxf({"show", reduced, "--kind", "level", "--json"}).json()["results"];
    ASSERT_EQ(kept.size(), level.size()) << "levels have less data";
    EXPECT_EQ(kept.front()["value"], level.front()["value"]);

    const std::string cut = folder.file("cut.zmxf");
    write(cut, whole.substr(0, whole.size() - 10));
    const auto one = CarryDocuments({cut, document}, size);
    ASSERT_EQ(one.size(), 1) << "what is damaged can't be reduced, only left out";
    EXPECT_THAT(one[0].note, HasSubstr("is left out"));
    EXPECT_THROW((void)CarryDocuments({cut}, 1000), Failure);
    EXPECT_THROW((void)CarryDocuments({recording}), Failure);
}

TEST_F(Program, PagesHoldDocumentsAsTheyAre)
{
    std::ostringstream out;
    const auto bytes = [](const std::string& text) { return std::vector<char>(text.begin(), text.end()); };
    WritePage(out, "<p><!-- documents --></p>",
              {{"\"><script>&\n.zmxf",
                bytes("\xFB\xEF\xBE"
                      "abcd"),
                {}},
               {"b", bytes("ab"), "a < b"}});
    EXPECT_EQ(out.str(),
              "<p><script type=\"application/x-zmxf\" data-name=\"&quot;&gt;&lt;script&gt;&amp; .zmxf\" "
              "data-note=\"\">++++YWJjZA==</script>\n"
              "<script type=\"application/x-zmxf\" data-name=\"b\" data-note=\"a &lt; b\">YWI=</script>\n</p>");
    EXPECT_THROW(WritePage(out, "<p></p>", {}), Failure);

    ASSERT_EQ(Analyze({}, sineAndConstant(), 2).status, 0);
    const Outcome report = zmxf({"report", document, "-o", "-"});
    if (ViewerPage().empty())
        expectFailure(report, 1, "-DZELMRESULT_VIEWER");
    else
        EXPECT_THAT(report.out, HasSubstr("data-name=\"sine.zmxf\""));
}

} // namespace zmxf::test
