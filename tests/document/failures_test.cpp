// Saves and loads on a device that fails.

#include "tests/builders/failing_backend.h"
#include "tests/document/samples.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <csignal>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <memory>
#include <sys/resource.h>

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

// Fails the n-th call of a kind for every n. What the document told each time, in order and equal ones once; "saved"
// where it told nothing. All other promises of a failed save are checked on the way.
std::vector<std::string> ToldWhenSaving(unsigned kinds, bool onwards = false)
{
    std::vector<std::string> told;
    CZMXFFile document(true, true);
    FillSmall(document);
    const std::vector<char> good = SavedBytes(document);
    for (int n = 1;; ++n) {
        SCOPED_TRACE("call " + std::to_string(n));
        MemoryDisk disk;
        CallPlan plan{.kinds = kinds, .failAt = n, .onwards = onwards};
        const UseBackend use(failingBackend(disk.backend(), plan));
        const bool saved = document.Save(u"%2");
        const std::string messages = Joined(Messages(document));
        EXPECT_EQ(saved, messages.empty());
        if (plan.calls < n) return told;
        if (const std::string entry = saved ? "saved" : messages; told.empty() || told.back() != entry)
            told.push_back(entry);
        expectBytes(SavedBytes(document), AsBytes(good)); // the next save is fine
        if (saved) continue;
        const UseBackend healthy(disk);
        CZMXFFile reader(true, true);
        EXPECT_FALSE(reader.Load(u"%2", ZMXFFileLoadScope::all())) << "half a file";
    }
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
    // A header that fails is passed over, as long as what follows it works.
    EXPECT_EQ(
        ToldWhenSaving(CallPlan::Create),
        (Told{kRoot, kHeader, kProject, kUnits, "The chunk of magnitude q in file %2 could not be created|" + kQuantity,
              kSystem, "saved", kSystem, kComment, kHardware}));
    EXPECT_EQ(ToldWhenSaving(CallPlan::Ascend), (Told{kRoot, kHeader, kProject, kUnits, kQuantity, kUnitsEnd, kSystem,
                                                      "saved", kSystem, kComment, kHardware, kRootEnd}));
    EXPECT_EQ(ToldWhenSaving(CallPlan::Write),
              (Told{kRoot, kHeader, kProject, kUnits, kQuantity,
                    "The dimension equation of magnitude q in file %2 could not be saved.|" + kQuantity,
                    "The unit of magnitude q in file %2 could not be saved.|" + kQuantity, kQuantity, kSystem, "saved",
                    kSystem, kComment, kHardware}));
    EXPECT_GT(ToldWhenSaving(CallPlan::Any).size(), 10U);
    const std::vector<std::string> gone = ToldWhenSaving(CallPlan::Any, true);
    EXPECT_EQ(std::count(gone.begin(), gone.end(), "saved"), 0) << "on a device that is gone nothing is saved";
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
        document->AjouteResultat(header, result.release(), 0, true);
    };
    for (const int kind : {1, 16, 18, 22, 25, 29, 40, 44, 46, 119, 131, 270}) add(kind, 0);
    for (const int kind : {42, 43}) add(kind, 1);
    for (const int kind : {2, 24}) add(kind, 2);
    document->NeedToRemoveEverything(true);
    return document;
}

TEST(Failures, EveryCallOfASaveOfEverythingMayFail)
{
    const auto document = EverythingInOne();
    const std::vector<char> good = SavedBytes(*document);
    for (int n = 1;; ++n) {
        MemoryDisk disk;
        CallPlan plan{.failAt = n};
        const UseBackend use(failingBackend(disk.backend(), plan));
        const bool saved = document->Save(u"f");
        if (plan.calls < n) {
            EXPECT_TRUE(saved && disk[u"f"] == good) << "in memory nothing has changed";
            break;
        }
        const std::vector<std::string> messages = Messages(*document);
        ASSERT_EQ(saved, messages.empty()) << n;
    }
}

TEST(Failures, EveryCallOfALoadOfEverythingMayFail)
{
    const auto document = EverythingInOne();
    MemoryDisk disk;
    disk[u"f"] = SavedBytes(*document);
    for (int n = 1;; ++n) {
        CallPlan plan{.failAt = n};
        const UseBackend use(failingBackend(disk.backend(), plan));
        CZMXFFile reader(true, false);
        const bool loaded = reader.Load(u"f", ZMXFFileLoadScope::all());
        reader.NeedToRemoveEverything(true);
        if (plan.calls >= n) continue;
        EXPECT_TRUE(loaded);
        break;
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

// As on a device that is full: files of this process may not grow past a limit.
TEST(Failures, ARealFileMayHitALimit)
{
    const auto document = EverythingInOne();
    const std::size_t size = SavedBytes(*document).size();
    const TempFolder folder;
    rlimit former{};
    ASSERT_EQ(getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto formerHandler = std::signal(SIGXFSZ, SIG_IGN);
    for (std::size_t limit = 0; limit <= size + 8; limit += size / 40) {
        const rlimit lowered{limit, former.rlim_max};
        ASSERT_EQ(setrlimit(RLIMIT_FSIZE, &lowered), 0);
        const bool saved = document->Save(folder.wideFile("f").c_str());
        (void)setrlimit(RLIMIT_FSIZE, &former);
        EXPECT_EQ(saved, limit >= size) << limit << " of " << size;
        EXPECT_EQ(Messages(*document).empty(), saved);
    }
    (void)std::signal(SIGXFSZ, formerHandler);
}

TEST(Failures, AFullDiskIsTold)
{
    CZMXFFile document(true, false);
    FillSmall(document);
    const std::vector<char> good = SavedBytes(document);
    for (const std::size_t limit : {std::size_t{0}, std::size_t{7}, good.size() / 2, good.size() - 1}) {
        MemoryDisk disk;
        disk.SetLimit(limit);
        const UseBackend use(disk);
        EXPECT_FALSE(document.Save(u"%2"));
        EXPECT_EQ(Joined(Messages(document)), kRootEnd) << "so far everything was in the window";
        disk.SetLimit(good.size());
        EXPECT_TRUE(document.Save(u"%2"));
        EXPECT_EQ(disk[u"%2"], good);
    }
    // Larger than the window, so that the step itself meets the end.
    document.comments().front()->setComment(wstring(1000000, u'x'));
    MemoryDisk disk;
    disk.SetLimit(1900000);
    const UseBackend use(disk);
    EXPECT_FALSE(document.Save(u"%2"));
    EXPECT_EQ(Joined(Messages(document)), kComment);
    EXPECT_FALSE(CZMXFFile(true, false).Load(u"%2", ZMXFFileLoadScope::all()));
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
    EXPECT_EQ(Joined(Messages(document)), "An error occured saving system 17 in file %2|");
}

// A load, or another look into the file, on a device whose n-th call fails gives less or false, and nothing else.
TEST(Failures, EveryCallOfALoadMayFail)
{
    MemoryDisk disk;
    disk[u"f"] = DataFile("whole.zmxf");
    for (const bool onwards : {false, true})
        for (int n = 1;; ++n) {
            SCOPED_TRACE("call " + std::to_string(n));
            CallPlan plan{.failAt = n, .onwards = onwards};
            CZMXFFile document(true, false);
            std::vector<CResultHeader*> headers;
            {
                const UseBackend use(failingBackend(disk.backend(), plan));
                const bool loaded = document.Load(u"f", ZMXFFileLoadScope::all());
                EXPECT_EQ(document.filename(), loaded ? u"f" : u"");
                document.NeedToRemoveEverything(true);
                if (plan.calls < n) {
                    EXPECT_TRUE(loaded);
                    break;
                }
                EXPECT_LE(document.getNbrSys(), 3);
                EXPECT_LE(document.GetListeGrandeur().size(), 3U);

                plan.calls = 0;
                (void)document.GetResultHeaderListe(u"f", headers);
                for (CResultHeader* header : headers) {
                    const std::unique_ptr<CResultHeader> owner(header);
                    header->setFilename(u"f");
                    CScalar scalar;
                    std::int32_t number = 0;
                    plan.calls = 0;
                    const bool fetched = document.GetResultat(&scalar, header, number);
                    EXPECT_TRUE(!fetched || number >= 0);
                    std::map<CGrandeur*, int> given;
                    scalar.AddInvolvedGrandeur(given);
                    for (const auto& entry : given) delete entry.first;
                }
            }
            EXPECT_FALSE(SavedBytes(document).empty()) << "what was loaded can be saved";
        }
}

} // namespace
} // namespace ZelmResult
