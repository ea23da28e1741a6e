#include "tests/tools/program.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/support/text.h"

#include <filesystem>

namespace zmxf::test {

namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;
using ZelmResult::test::readDiskFile;

// The documents, in the order in which they are listed.
std::vector<std::string> files(const Outcome& run)
{
    std::vector<std::string> paths;
    const nlohmann::json listed = run.json();
    for (const auto& file : listed["files"]) paths.push_back(file["file"]);
    return paths;
}

class Ls : public Program {
protected:
    // Two documents, one that was cut off and other things.
    void SetUp() override
    {
        std::filesystem::create_directories(folder.file("archive/old/older"));
        document = folder.file("archive/b.zmxf");
        ASSERT_EQ(Analyze({}, std::vector{0.5, -0.5}).status, 0);
        const std::string whole = readDiskFile(document);
        for (const char* name : {"7", "3", "a document", "9", "5"})
            write(folder.file("archive/old/older/") + name, whole);
        write(folder.file("archive/a.zmxf"), whole.substr(0, whole.size() - 100));
        write(folder.file("archive/c.zmxf"), "a text");
        write(folder.file("archive/d.zmxf"), "");
        std::error_code without; // Wine makes no links
        std::filesystem::create_symlink("nowhere", folder.file("archive/e"), without);
        std::filesystem::create_directory_symlink("..", folder.file("archive/old/loop"), without);
    }

    std::string archive = folder.file("archive");
};

} // namespace

TEST_F(Ls, FindsDocumentsByWhatTheyHold)
{
    const std::string cut = archive + "/a.zmxf: it ends after";
    const Outcome here = zmxf({"ls", archive, "--json"});
    EXPECT_EQ(here.status, 1);
    EXPECT_THAT(files(here), ElementsAre(document));
    EXPECT_THAT(here.err, AllOf(HasSubstr(cut), Not(HasSubstr("c.zmxf"))));

    std::filesystem::remove(folder.file("archive/a.zmxf"));
    const std::string older = archive + "/old/older/";
    const Outcome below = zmxf({"ls", "-r", archive, document, "--json"});
    EXPECT_EQ(below.status, 0) << below.err;
    EXPECT_THAT(files(below), ElementsAre(document, older + "3", older + "5", older + "7", older + "9",
                                          older + "a document", document));

    expectFailure(zmxf({"ls", archive + "/old"}), 1, "there are no result documents");
    const Outcome named = zmxf({"ls", archive + "/c.zmxf", folder.file("none"), document});
    EXPECT_EQ(named.status, 1);
    EXPECT_THAT(named.err, AllOf(HasSubstr("c.zmxf: not a result document"), HasSubstr("No such file")));
    EXPECT_THAT(named.out, HasSubstr("b.zmxf: 11 results"));
}

TEST_F(Ls, SelectsInEachDocument)
{
    std::filesystem::remove(folder.file("archive/a.zmxf"));
    writeSound(recording, sineAndConstant(), 2, kWavDouble);
    document = folder.file("archive/a pair");
    ASSERT_EQ(Analyze({"--block-size", "4096"}).status, 0);
    const Outcome second = zmxf({"ls", archive, "--channel", "2", "--kind", "level,frf", "--json"});
    EXPECT_THAT(files(second), ElementsAre(document)) << "not those without such results";
    const nlohmann::json results = second.json()["files"][0]["results"];
    EXPECT_EQ(results[0]["number"], 7);
    EXPECT_EQ(results.back()["kind"], "level");
    expectFailure(zmxf({"ls", archive, "--channel", "3"}), 1, "there are channels Channel 1, Channel 2\n");

    // Channel by channel, and what all have in common once.
    const std::string text = zmxf({"ls", document, "--name", "RMS", "--name", "H1*", "--name", "Auto*"}).out;
    EXPECT_THAT(text, HasSubstr(": 5 results, System 0, Date "));
    EXPECT_THAT(text, HasSubstr("Caption sine.wav\n"
                                "     N  Kind          Process               Reference\n"
                                "  #1 Channel 1\n"
                                "     1  level         RMS\n"
                                "    14  autospectrum  Autospectrum\n"
                                "  #2 Channel 2\n"
                                "     8  level         RMS\n"
                                "    16  autospectrum  Autospectrum\n"
                                "    19  frf           H1 transfer function  Channel 1\n"));
    const std::string info = zmxf({"info", document}).out;
    EXPECT_THAT(info, HasSubstr("\nResults: System 0, Date "));
    EXPECT_THAT(info, HasSubstr("\n   N  Type  Process                                                Response   "
                                "Reference\n   0     9  Mean   "));
}

TEST_F(Ls, LongListsTellWhatDataIsLike)
{
    ASSERT_EQ(zmxf({"demo", folder.path()}).status, 0);
    document = folder.file("demo.zmxf");
    const auto run = zmxf({"ls", "-l", document, "--result", "5,10,22,26,33,34,35,40,43,46", "--json"}).json();
    nlohmann::json shapes;
    for (const auto& result : run["files"][0]["results"]) shapes.push_back({result["shape"], result["unit"]});
    const auto expected = nlohmann::json::parse(
        R"j([[[], ""], [[], "m/s2"], [[27], "m/s2"], [[4001], "(m/s2)/(m/s2)"], [[159], "rpm"], [[159, 4001], "m/s2"],)j"
        R"j( [[159, 24], "m/s2"], [[3, 159], "m/s2"], [[10], "m/s2"], [[6, 3200], "m/s2"]])j");
    EXPECT_EQ(shapes, expected);
    EXPECT_THAT(zmxf({"ls", "-l", document}).out, HasSubstr("    34  waterfall     Autospectra of a run-up"));
    EXPECT_THAT(zmxf({"ls", "-l", document}).out, HasSubstr("  159 x 4001  m/s2\n"));
}

TEST_F(Ls, CommaSeparatedValuesSurviveAnyName)
{
    recording = folder.file("=1+1,\"x\".wav");
    ASSERT_EQ(Analyze({"--channel-names", "-SUM(A1)"}, std::vector{0.5, -0.5}).status, 0);
    const std::string csv = zmxf({"ls", document, "--csv", "--result", "0"}).out;
    EXPECT_THAT(csv, ::testing::StartsWith("file,number,system,channel number,channel,kind,type,process,reference,date,"
                                           "caption\n" +
                                           document + ",0,0,1,'-SUM(A1),level,9,Mean,,"));
    EXPECT_THAT(csv, ::testing::EndsWith("Z,\"'=1+1,\"\"x\"\".wav\"\n"));
    EXPECT_THAT(zmxf({"ls", "-l", document, "--csv", "--result", "1"}).out, ::testing::EndsWith(",1,FS\n"));
    expectFailure(zmxf({"ls", document, "--csv", "--json"}), 2, "excludes");
}

TEST_F(Ls, DocumentsWithoutResultsAreListed)
{
    ASSERT_TRUE(ZelmResult::CZMXFFile(true, false).Save(ZelmResult::FromUtf8(document).c_str()));
    EXPECT_EQ(zmxf({"ls", document}).out, document + ": 0 results\n");
    EXPECT_EQ(zmxf({"ls", document, "--json"}).json()["files"][0]["results"], nlohmann::json::array());
}

} // namespace zmxf::test
