// Whole documents as they were stored once: each verb takes them for what they are.

#include "fuzz/older_versions.h"
#include "tests/builders/memory_file.h"
#include "tests/tools/run_zmxf.h"
#include "zelmresult/storage/chunk_codes.h"

#include <fstream>
#include <functional>
#include <gmock/gmock.h>

namespace zmxf::test {

namespace {

using ::testing::HasSubstr;
using ::testing::Not;
using ZelmResult::FourCC;
using ZelmResult::test::readDiskFile;
using ZelmResult::test::TempFolder;
using Chunks = std::vector<ZelmResult::fuzz::Chunk>;
using ZelmResult::fuzz::WithSettingsOfVersion;
using ZelmResult::test::Bytes;

// Of settings, by where the version of the application is.
constexpr std::uint16_t kAfterTheList = 512;
constexpr std::uint16_t kAtTheEnd = 768;
constexpr std::uint16_t kInAChunk = 1024;
constexpr std::uint16_t kVersions[] = {256, 300, kAfterTheList, kAtTheEnd, kInAChunk, 1025};

// The whole documents of the fuzz targets, which are made in memory, where no other file goes.
std::vector<Chunks> wholeDocuments()
{
    const ZelmResult::test::UseBackend back(ZelmResult::CMmioFile::DefaultBackend());
    std::vector<Chunks> all;
    for (const auto& bytes : ZelmResult::fuzz::WholeDocuments()) all.push_back(ZelmResult::fuzz::ChunksOf(bytes));
    return all;
}
Chunks branches() { return wholeDocuments().front(); }

void forAll(Chunks& chunks, const std::function<void(ZelmResult::fuzz::Chunk&)>& change)
{
    for (auto& chunk : chunks) {
        change(chunk);
        forAll(chunk.children, change);
    }
}

// With another version of the application in all settings.
Chunks withApplication(Chunks chunks, const Bytes& version)
{
    forAll(chunks, [&](auto& chunk) {
        if (chunk.code == FourCC("CFVR")) chunk.data = version.data();
    });
    return chunks;
}

// With nodes of settings that hold nothing but their text.
Chunks withEmptyNodes(Chunks chunks)
{
    forAll(chunks, [](auto& chunk) {
        if (chunk.type == FourCC("S1  "))
            std::erase_if(chunk.children, [](const auto& child) {
                return child.code == FourCC("SETT") || child.code == FourCC("R1  ");
            });
    });
    return chunks;
}

std::string write(const std::string& path, const Chunks& chunks)
{
    const auto bytes = ZelmResult::fuzz::BytesOf(chunks);
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    return path;
}

Bytes application(std::uint32_t major, std::uint32_t minor) { return Bytes{}.u32(major).u32(minor); }

} // namespace

TEST(FormerDocuments, ComeOutOfSalvageAsTheyWentIn)
{
    const TempFolder folder;
    std::vector<Chunks> documents;
    for (const Chunks& whole : wholeDocuments()) {
        documents.push_back(whole);
        documents.push_back(WithSettingsOfVersion(withEmptyNodes(whole), kAfterTheList));
        for (std::uint16_t version = 0; version < 6; ++version)
            documents.push_back(ZelmResult::fuzz::WithAxesOfVersion(whole, version));
        // The last two make what is after them begin at an odd offset, and look like an identifier of three
        // characters.
        for (const Bytes& build :
             {Bytes{}.text(u""), Bytes{}.text(u"zmxf 0.1"), Bytes{}.narrow("ab"), Bytes{}.text(u"123")})
            for (const std::uint16_t version : kVersions)
                documents.push_back(
                    WithSettingsOfVersion(withApplication(whole, application(10, 11).append(build)), version));
    }
    for (std::size_t i = 0; i < documents.size(); ++i) {
        SCOPED_TRACE(i);
        const std::string path = write(folder.file("former.zmxf"), documents[i]);
        const Outcome verified = zmxf({"verify", path});
        EXPECT_EQ(verified.status, 0) << verified.out;
        const Outcome salvaged = zmxf({"salvage", path, folder.file("copy.zmxf")});
        EXPECT_THAT(salvaged.out, Not(HasSubstr("Lost")));
        EXPECT_EQ(readDiskFile(folder.file("copy.zmxf")), readDiskFile(path));
    }
}

TEST(FormerDocuments, AreShownAsALoadTakesThem)
{
    const TempFolder folder;
    const std::string path = folder.file("former.zmxf");
    const auto shown = [&](const char* verb) { return zmxf({verb, path, "--json"}).json()["systems"]; };
    for (const std::uint16_t version : {kAfterTheList, kAtTheEnd, kInAChunk}) {
        SCOPED_TRACE(version);
        write(path, WithSettingsOfVersion(withApplication(branches(), application(10, 11).text(u"7")), version));
        const nlohmann::json expected{{"major", 10}, {"minor", 11}, {"build", "7"}};
        for (const auto& system : shown("settings")) EXPECT_EQ(system["application"], expected);
        EXPECT_EQ(shown("tracks")[0]["transducers"].size(), 2U);
        const std::string fields = zmxf({"dump", path, "--fields"}).out;
        EXPECT_THAT(fields, HasSubstr("minor = 11  (u32)"));
        EXPECT_THAT(fields, HasSubstr("build = \"7\"  (text)"));
        write(path, WithSettingsOfVersion(withApplication(branches(), application(1, 1).text(u"7")), version));
        EXPECT_EQ(shown("tracks")[0]["transducers"].size(), 0U) << "which no load takes";
    }
}

TEST(FormerDocuments, WithoutTheirApplicationVersionAreSalvagedForTheRest)
{
    const TempFolder folder;
    for (const std::uint16_t version : {kAfterTheList, kAtTheEnd}) {
        SCOPED_TRACE(version);
        Chunks chunks = WithSettingsOfVersion(branches(), version);
        const auto drop = [&](Chunks& children) {
            if (!children.empty() && children.back().isBare) children.pop_back();
            std::erase_if(children, [](const auto& child) { return child.isBare && child.data.size() == 12; });
        };
        forAll(chunks, [&](auto& chunk) {
            if (chunk.type == FourCC("CONF") || chunk.type == FourCC("SYS0")) drop(chunk.children);
        });
        const std::string path = write(folder.file("former.zmxf"), chunks);
        EXPECT_THAT(zmxf({"verify", path}).out, HasSubstr("the version of the application that wrote CONF is damaged"));
        const std::string copy = folder.file("copy.zmxf");
        const Outcome salvaged = zmxf({"salvage", path, copy});
        EXPECT_THAT(salvaged.out, HasSubstr("Lost the version of the application"));
        EXPECT_THAT(salvaged.out, HasSubstr("Kept 2 of 2 transducers"));
        EXPECT_EQ(zmxf({"verify", copy}).status, 0);
        EXPECT_EQ(zmxf({"settings", copy, "--json"}).json()["systems"][0]["application"]["major"], 0);
    }
}

} // namespace zmxf::test
