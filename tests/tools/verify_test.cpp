// What verify says of documents whose chunks are all in order.

#include "fuzz/documents.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "tests/tools/run_zmxf.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/waterfalls/vector_ref.h"
#include "zelmresult/zelmresult.h"

#include <fstream>
#include <functional>
#include <gmock/gmock.h>

namespace zmxf::test {

namespace {

using namespace ZelmResult;
using ::testing::HasSubstr;
using ZelmResult::test::TempFolder;

// What verify prints of a document.
std::string verified(CZMXFFile& document)
{
    const TempFolder folder;
    EXPECT_TRUE(document.Save(folder.wideFile("document.zmxf").c_str()));
    document.NeedToRemoveEverything(true);
    return zmxf({"verify", folder.file("document.zmxf")}).out;
}

// Adds a result of that kind, of points values.
CResult& add(CZMXFFile& document, int kind, std::int32_t points)
{
    CResult* result = ResultFactory::create(otype::ElementaryResultProcess::fromInteger(kind), 0, {}).release();
    result->SetSize(points);
    document.AjouteResultat(ZelmResult::test::NewHeader(static_cast<std::uint32_t>(kind)), result, 0, false);
    return *result;
}

} // namespace

TEST(Verify, NotesSlicesWhoseBlocksAReferenceLacks)
{
    CZMXFFile whole(true, false);
    (void)ZelmResult::test::AddTiedWaterfall(whole, 0, true, true);
    EXPECT_THAT(verified(whole), ::testing::Not(HasSubstr("blocks")));
    CZMXFFile gap(true, false);
    ZelmResult::test::AddTiedWaterfall(gap, 0, true, true).waterfall->SetBlocNumber(1, 15);
    EXPECT_THAT(verified(gap), HasSubstr("have blocks that a reference holds no value for, the first is block 15"));
}

TEST(Verify, NotesAHiddenReferenceBesideAVisibleOne)
{
    constexpr std::int32_t points = 3;
    constexpr int alongAReference = 16;
    for (const std::size_t chosen : {0U, 1U}) {
        SCOPED_TRACE(chosen);
        CZMXFFile document(true, false);
        CReferencedAxis& axis = *add(document, alongAReference, points).GetReferencedAxis();
        for (const char16_t* name : {u"Speed", u"Load", u"hidden"}) {
            auto* reference = new CVectorRef;
            reference->setName(name);
            reference->SetSize(points);
            reference->SetIsHidenReference(reference->name() == u"hidden");
            axis.AddVectorRef(reference);
        }
        axis.SetChosenReference(axis.GetReferencesList()->at(chosen));
        EXPECT_THAT(verified(document), HasSubstr("a reference that was hidden when the document was saved"));
    }
}

TEST(Verify, TellsATreeOfSettingsThatComesInPart)
{
    const TempFolder folder;
    const std::string path = folder.file("document.zmxf");
    auto chunks = fuzz::ChunksOf(ZelmResult::test::DataFile("whole_branches.zmxf"));
    const std::function<void(std::vector<fuzz::Chunk>&)> change = [&](std::vector<fuzz::Chunk>& children) {
        for (fuzz::Chunk& chunk : children) {
            if (chunk.code == FourCC("SETT")) chunk.data[9] = '\x7F'; // a kind that no class has
            change(chunk.children);
        }
    };
    change(chunks);
    const auto bytes = fuzz::BytesOf(chunks);
    std::ofstream(path, std::ios::binary).write(bytes.data(), std::ssize(bytes));
    EXPECT_THAT(zmxf({"verify", path}).out, HasSubstr("CONF in SYS0 is loaded in part"));
    EXPECT_THAT(zmxf({"settings", path}).out, HasSubstr("The rest could not be read"));
    const auto system = zmxf({"settings", path, "--json"}).json()["systems"][0];
    EXPECT_EQ(system["whole"], false);
    EXPECT_TRUE(system["application"].is_null());
}

// Each header may have its data, but a load of all takes more memory than a file of that size may.
TEST(Verify, TellsTheBoundThatALoadMeets)
{
    constexpr std::int32_t points = 60000;
    constexpr std::size_t headers = 400;
    constexpr int spectrum = 4;
    const TempFolder folder;
    CZMXFFile document(true, false);
    (void)add(document, spectrum, points);
    const std::string path = folder.file("document.zmxf");
    ASSERT_TRUE(document.Save(folder.wideFile("document.zmxf").c_str()));
    document.NeedToRemoveEverything(true);
    const std::string bytes = ZelmResult::test::readDiskFile(path);
    auto chunks = fuzz::ChunksOf({bytes.begin(), bytes.end()});
    for (auto& system : chunks.front().children)
        for (auto& list : system.children)
            if (list.type == FourCC("RESU")) list.children.insert(list.children.end(), headers, list.children[1]);
    const auto many = fuzz::BytesOf(chunks);
    std::ofstream(path, std::ios::binary).write(many.data(), std::ssize(many));
    EXPECT_THAT(
        zmxf({"verify", path}).out,
        HasSubstr("a load as a whole ends here: a result of system 0 can't be read, it asks for more memory than "
                  "a file of this size may (in "));
}

} // namespace zmxf::test
