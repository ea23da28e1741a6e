#include "tests/tools/program.h"
#include "tools/zmxf/base/paths.h"

#include <cstdlib>

// The command line as a shell of Windows passes it.

namespace zmxf::test {

namespace {

class Arguments : public Program {
protected:
    // What zmxf says of files whose names the shell passes on as they are.
    std::vector<std::string> Listed(const std::string& places) const
    {
        const std::string out = folder.file("out");
        const std::string command = "\"\"" ZMXF_PROGRAM "\" ls --json " + places + " > \"" + out + "\"\"";
        (void)std::system(command.c_str());
        std::vector<std::string> names;
        const auto printed = nlohmann::json::parse(ZelmResult::test::readDiskFile(out));
        for (const auto& file : printed["files"]) {
            const std::string path = file["file"];
            names.push_back(path.substr(path.find_last_of("\\/") + 1));
        }
        return names;
    }
};

} // namespace

TEST_F(Arguments, PatternsOutsideOfQuotesBecomeTheFilesThatThereAre)
{
    ASSERT_EQ(Analyze({}, std::vector{0.5, -0.5}).status, 0);
    for (const char* name : {"b c.zmxf", "a.zmxf", "ab.zmxf"}) std::filesystem::copy_file(document, folder.file(name));
    const std::string start = '"' + folder.path() + "\"\\"; // a quoted part of a pattern
    EXPECT_EQ(Listed(start + "*.zmxf"), (std::vector<std::string>{"a.zmxf", "ab.zmxf", "b c.zmxf", "sine.zmxf"}));
    EXPECT_EQ(Listed(start + "?.zmxf"), std::vector<std::string>{"a.zmxf"});
    EXPECT_EQ(Listed('"' + folder.path() + "\\*.zmxf\""), std::vector<std::string>());
    EXPECT_EQ(Listed(start + "*.nothing " + start + "a.zmxf"), std::vector<std::string>{"a.zmxf"});
}

TEST_F(Arguments, BothSeparatorsAndDrivesEndFolders)
{
    ASSERT_EQ(Analyze({}, std::vector{0.5, -0.5}).status, 0);
    const std::string out = folder.file("new\\");
    ASSERT_EQ(zmxf({"export", document, "--to", "json", "-o", out}).status, 0);
    EXPECT_EQ(zmxf({"analyze", recording, "-o", out}).status, 0);
    EXPECT_THAT(zmxf({"info", out + "sine.zmxf"}).err, "");
    EXPECT_TRUE(std::filesystem::exists(out + "sine.json"));
    const std::filesystem::path here = std::filesystem::current_path();
    std::filesystem::current_path(folder.file("new"));
    std::filesystem::remove("sine.zmxf");
    EXPECT_EQ(zmxf({"analyze", recording, "-o", folder.path().substr(0, 2)}).status, 0) << "the folder of the drive";
    EXPECT_TRUE(std::filesystem::exists("sine.zmxf"));
    std::filesystem::current_path(here);
    expectFailure(zmxf({"analyze", recording, folder.file("new/../SINE.wav"), "-o", out}), 2, "would both become");
    expectFailure(zmxf({"info", "/no option"}), 1, "cannot read /no option: No such file");
}

TEST_F(Arguments, FoldersMayBeDeep)
{
    std::string deep = folder.path();
    while (deep.size() < 400) deep += "\\" + std::string(60, 'd');
    ASSERT_EQ(Analyze({}, std::vector{0.5, -0.5}).status, 0);
    ASSERT_EQ(zmxf({"analyze", recording, "-o", deep + '\\'}).status, 0);
    EXPECT_EQ(Listed(deep), std::vector<std::string>{"sine.zmxf"});
    EXPECT_EQ(Listed("-r " + folder.path()), (std::vector<std::string>{"sine.zmxf", "sine.zmxf"}));
    EXPECT_EQ(Listed(deep + "\\*"), std::vector<std::string>{"sine.zmxf"});
    std::filesystem::remove(SystemPath(deep + "\\sine.zmxf"));
    for (; deep != folder.path(); deep = deep.substr(0, deep.rfind('\\'))) std::filesystem::remove(SystemPath(deep));
}

} // namespace zmxf::test
