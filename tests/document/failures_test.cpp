// Saves and loads on a device that fails.

#include "tests/builders/failing_backend.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <filesystem>
#include <functional>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;

// A document of one quantity, one result and one comment, for a file with a project.
void FillSmall(CZMXFFile& document)
{
    CGrandeur* quantity = NewQuantity(u"q");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    document.AjouteResultat(NewHeader(9), NewScalar(9, 1, quantity), 0, true);
    document.NeedToRemoveEverything(true);
    (void)document.AddComment(new CComment);
    document.writeHardInfo().addHardInfoData({});
}

std::string Joined(const std::vector<std::string>& messages)
{
    std::string joined;
    for (const std::string& message : messages) joined += message + "|";
    return joined;
}

// Fails the n-th call of a disk for n = 1, 2, ... until none is left to fail: then all has to be well.
void FailEachCall(CallPlan plan, const std::function<bool(const CallPlan&, MemoryDisk&)>& run,
                  const std::vector<char>& stored = {})
{
    for (plan.failAt = 1; plan.calls >= plan.failAt - 1; ++plan.failAt) {
        SCOPED_TRACE("call " + std::to_string(plan.failAt));
        MemoryDisk disk;
        disk[u"%2"] = stored;
        plan.calls = 0;
        const UseBackend use(failingBackend(disk.backend(), plan));
        EXPECT_TRUE(run(plan, disk) || plan.calls >= plan.failAt);
    }
}

// Fails each call of a kind. The messages of the document each time, in order and equal ones once. All other promises
// of a failed save are checked on the way.
std::vector<std::string> MessagesWhenSaving(unsigned kinds, bool onwards = false)
{
    std::vector<std::string> reported;
    CZMXFFile document(true, true);
    FillSmall(document);
    const std::vector<char> good = SavedBytes(document);
    FailEachCall({.kinds = kinds, .onwards = onwards}, [&](const CallPlan& plan, MemoryDisk& disk) {
        const bool saved = document.Save(u"%2");
        const std::string messages = Joined(Messages(document));
        EXPECT_EQ(saved, messages.empty());
        if (plan.calls < plan.failAt) return saved;
        EXPECT_FALSE(saved);
        if (reported.empty() || reported.back() != messages) reported.push_back(messages);
        expectBytes(SavedBytes(document), AsBytes(good)); // the next save is fine
        const UseBackend healthy(disk);
        EXPECT_FALSE(CZMXFFile(true, true).Load(u"%2", ZMXFFileLoadScope::all())) << "half a file";
        return false;
    });
    return reported;
}

const std::string kRoot = "The RIFF chunck in file %2 could not be created|";
const std::string kHeader = "An error occured saving file header in file %2|";
const std::string kProject = "An error occured saving project information in file %2|";
const std::string kUnits = "The UNIT chunk in file %2 could not be created|";
const std::string kQuantity = "The magnitude q could not be saved in file %2|";
const std::string kUnitsEnd = "An error occured exiting UNIT chunk in file %2|";
const std::string kSystem = "An error occured saving system 0 in file %2|";
const std::string kComment = "An error occured saving comment in file %2|";
const std::string kHardware = "An error occured saving analyzer information in file %2|";
const std::string kRootEnd = "An error ocuured exiting RIFF chunk in file %2|";

TEST(Failures, EachStepOfASaveTellsItsMessages)
{
    using Told = std::vector<std::string>;
    EXPECT_EQ(
        MessagesWhenSaving(CallPlan::Create),
        (Told{kRoot, kHeader, kProject, kUnits, "The chunk of magnitude q in file %2 could not be created|" + kQuantity,
              kSystem, kComment, kHardware}));
    EXPECT_EQ(MessagesWhenSaving(CallPlan::Ascend),
              (Told{kRoot, kHeader, kProject, kUnits, kQuantity, kUnitsEnd, kSystem, kComment, kHardware, kRootEnd}));
    EXPECT_EQ(MessagesWhenSaving(CallPlan::Write),
              (Told{kRoot, kHeader, kProject, kUnits, kQuantity,
                    "The dimension equation of magnitude q in file %2 could not be saved.|" + kQuantity,
                    "The unit of magnitude q in file %2 could not be saved.|" + kQuantity, kQuantity, kSystem, kComment,
                    kHardware}));
    for (const bool onwards : {false, true}) EXPECT_GT(MessagesWhenSaving(CallPlan::Any, onwards).size(), 10U);
}

// A document with a result of every class, waterfalls with references, settings, recordings and transducers.
std::unique_ptr<CZMXFFile> EverythingInOne()
{
    MemoryDisk disk;
    disk[u"f"] = DataFile("whole_branches.zmxf");
    const UseBackend use(disk);
    auto document = std::make_unique<CZMXFFile>(true, false);
    EXPECT_TRUE(document->Load(u"f", ZMXFFileLoadScope::all()));
    const auto add = [&document](int kind, int dimension) {
        auto result = ResultFactory::create(otype::ElementaryResultProcess::fromInteger(kind), dimension, u"Speed");
        ASSERT_NE(result, nullptr) << kind;
        CResultHeader* header = NewHeader(static_cast<std::uint32_t>(kind));
        header->SetWaterfallDimension(static_cast<std::uint32_t>(dimension));
        header->SetIndexListe(-1); // no references
        document->AjouteResultat(header, result.release(), 0, true);
    };
    for (const int kind : {1, 16, 18, 22, 25, 29, 40, 44, 46, 119, 131, 270}) add(kind, 0);
    for (const int kind : {42, 43}) add(kind, 1);
    for (const int kind : {2, 24}) add(kind, 2);
    (void)AddTiedWaterfall(*document);
    document->NeedToRemoveEverything(true);
    return document;
}

TEST(Failures, EveryCallOfASaveOfEverythingMayFail)
{
    const auto document = EverythingInOne();
    const std::vector<char> good = SavedBytes(*document);
    FailEachCall({}, [&](const CallPlan& plan, MemoryDisk& disk) {
        const bool saved = document->Save(u"%2");
        EXPECT_EQ(saved, Messages(*document).empty());
        EXPECT_EQ(saved, plan.calls < plan.failAt);
        return saved && disk[u"%2"] == good; // in memory nothing has changed
    });
}

// A load, or another look into the file, on a device whose n-th call fails gives less or false, and nothing else.
TEST(Failures, EveryCallOfALoadMayFail)
{
    const auto load = [](const CallPlan&, MemoryDisk& disk) {
        CZMXFFile document(true, false);
        const bool loaded = document.Load(u"%2", ZMXFFileLoadScope::all());
        document.NeedToRemoveEverything(true);
        EXPECT_EQ(document.filename(), loaded ? u"%2" : u"");
        const UseBackend healthy(disk);
        EXPECT_FALSE(SavedAnyway(document).empty()) << "what was loaded can be saved";
        return loaded;
    };
    const auto look = [](const CallPlan&, MemoryDisk&) {
        CZMXFFile reader(true, false);
        std::vector<CResultHeader*> headers;
        bool isFetched = reader.GetResultHeaderListe(u"%2", headers);
        for (CResultHeader* header : headers) {
            const std::unique_ptr<CResultHeader> owner(header);
            const std::string fetched = Fetched(reader, *header, u"%2");
            EXPECT_FALSE(fetched.starts_with("-"));
            isFetched = isFetched && !fetched.empty();
        }
        return isFetched;
    };
    for (const bool onwards : {false, true}) {
        FailEachCall({.onwards = onwards}, load, SavedBytes(*EverythingInOne()));
        FailEachCall({.onwards = onwards}, look, DataFile("whole.zmxf"));
    }
}

TEST(Failures, AFileMayShrinkWhileItIsLoaded)
{
    const auto document = EverythingInOne();
    const TempFolder folder;
    const wstring path = folder.wideFile("f");
    const std::string name = folder.file("f");
    for (int n = 1;; n += 97) {
        ASSERT_TRUE(document->Save(path.c_str()));
        const auto size = std::filesystem::file_size(name);
        CallPlan plan{.kinds = CallPlan::Read | CallPlan::Descend, .failAt = n};
        plan.event = [&] { std::filesystem::resize_file(name, size / 3); };
        const UseBackend use(failingBackend([] { return std::make_unique<CMmioRiff>(); }, plan));
        CZMXFFile reader(true, false);
        (void)reader.Load(path.c_str(), ZMXFFileLoadScope::all());
        reader.NeedToRemoveEverything(true);
        if (plan.calls < n) break;
    }
}

TEST(Failures, MoreSystemsThanAFileHoldsAreRefused)
{
    CZMXFFile document(true, false);
    for (int i = 0; i < 17; ++i) (void)document.AddSysteme(new CSysteme);
    EXPECT_FALSE(SavedBytes(document).empty());
    (void)document.AddSysteme(new CSysteme);
    MemoryDisk disk;
    const UseBackend use(disk);
    EXPECT_FALSE(document.Save(u"%2"));
    EXPECT_EQ(Joined(Messages(document)), "The document has 18 systems. A file holds 17.|"
                                          "An error occured saving system 17 in file %2|");
}

} // namespace
} // namespace ZelmResult
