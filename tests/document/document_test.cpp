#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/results/level_results.h"

#include "tests/builders/waterfall_samples.h"
#include "tests/document/document_fixture.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <map>

namespace ZelmResult {
namespace {

using namespace test;
using Told = std::vector<std::string>;

const char kReferences[] = "[9=1@pressure 100=2@intensity] [42=3 42=0@rotation 42=0@rotation 2=0] [] "
                           "q pressure speed intensity rotation, c, h 2, v 200";
const char kWhole[] = "[9=1@pressure 100=2@intensity] [42=3] [] q pressure speed intensity, c, h 2, v 200";

class Document : public LoadsDocuments {
protected:
    void ExpectGolden(CZMXFFile& document, const std::string& name)
    {
        expectBytes(SavedBytes(document), AsBytes(DataFile(name)));
    }
    static ZMXFFileLoadScope Single(const char* code)
    {
        return ZMXFFileLoadScope::singleResult(static_cast<std::int32_t>(CodeOf(code)));
    }
};

TEST_F(Document, SmallDocumentsAreStoredByteForByte)
{
    CZMXFFile empty(true, false);
    expectBytes(SavedBytes(empty), fileOf(head(0, 0).append(units({})).append(hardware())));
    EXPECT_EQ(Summary(*Load(SavedBytes(empty))), "q, c, h 0, v 200");

    CZMXFFile document(true, true);
    CGrandeur* quantity = NewQuantity(u"p");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    document.AjouteResultat(NewHeader(9, u"level"), NewScalar(9, 1.5F, quantity), 0, true);
    document.AjouteResultat(NewHeader(191), NewScalar(191, 2), 1, true); // which is no class of a preview
    document.NeedToRemoveEverything(true);
    document.setProjectInfo(u"project", u"measurement", u"user");
    document.writeHardInfo().addHardInfoData({"1", "2", "3", "4"});
    auto* comment = new CComment;
    comment->setComment(u"remark");
    EXPECT_EQ(document.AddComment(comment), 0);

    const Bytes level = resultHeader(0, 9, {.caption = u"level"}).append(resultData(0, scalarBytes(9, 1.5F, "0000")));
    const Bytes preview = resultHeader(1, 191).append(resultData(1, scalarBytes(191, 2)));
    const Bytes project = Bytes{}.u16(0x100).text(u"measurement").text(u"project").text(u"user");
    expectBytes(SavedBytes(document, {"Result 1 isn't of the class that its header calls for: it can't be read back."}),
                fileOf(head(2, 1 | 4 | 128)
                           .chunk("PRJI", project)
                           .append(units({quantityBytes(u"p")}))
                           .append(system("0", results(level)))
                           .append(system("1", results(preview)))
                           .chunk("CMTS", Bytes{}.text(u"remark"))
                           .append(hardware({u"1", u"2", u"3", u"4"}))));
    EXPECT_TRUE(document.HasRecordPreview());
    EXPECT_EQ(document.getSystem(1)->systemNumber(), 1);
}

TEST_F(Document, WholeDocumentsComeBackAndAreStoredAgainTheSame)
{
    for (const std::string golden : {"whole.zmxf", "whole_lxf.zmxf", "whole_references.zmxf"}) {
        const bool isLXFFile = golden == "whole_lxf.zmxf";
        const bool hasReferences = golden == "whole_references.zmxf";
        CZMXFFile document(true, isLXFFile);
        FillWhole(document);
        if (hasReferences) (void)AddTiedWaterfall(document, 1);
        for (int time = 0; time < 2; ++time) ExpectGolden(document, golden);

        const auto loaded = Load(DataFile(golden), true, ZMXFFileLoadScope::all(), isLXFFile);
        EXPECT_EQ(Summary(*loaded), hasReferences ? kReferences : kWhole) << "comments don't come back";
        wstring names[3];
        loaded->getProjectInfo(names[0], names[1], names[2]);
        EXPECT_EQ(names[0] + names[1] + names[2], isLXFFile ? u"projectmeasurementuser" : u"");
        CGrandeur* intensity = loaded->GetGrandeur(u"intensity");
        ASSERT_NE(intensity, nullptr);
        EXPECT_EQ(intensity->GetGrandeurLeft(), loaded->GetGrandeur(u"pressure"));
        EXPECT_EQ(intensity->GetGrandeurRight(), loaded->getGrandeur(CodeOf("0001")));
        for (CComment* comment : document.comments()) (void)loaded->AddComment(new CComment(*comment));
        ExpectGolden(*loaded, golden);
    }
}

TEST_F(Document, LoadsAddWhatTheScopeTakes)
{
    const auto loaded = Load(DataFile("whole.zmxf"), true, Single("1   "));
    EXPECT_EQ(Summary(*loaded), "[100=2@intensity] [] [] q pressure speed intensity, c, h 2, v 200");
    ASSERT_TRUE(loaded->Load(kPath.c_str(), Single("2   ")));
    loaded->NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(*loaded).substr(0, 52), "[100=2@intensity] [] [] [] [42=3] [] q pressure spee");
}

// A code has room for four digits: the data of a later result is not found, but no result is lost.
TEST_F(Document, ResultsPastTenThousandTakeTheDataOfTheFirstOfTheirCode)
{
    CZMXFFile document(true, false);
    for (int i = 0; i < 10010; ++i) document.AjouteResultat(NewHeader(9), NewScalar(9, static_cast<float>(i)), 0, true);
    document.NeedToRemoveEverything(true);
    const auto loaded = Load(SavedBytes(document, {"The document has more than 10000 results: those after them come "
                                                   "back with the data of others."}));
    const ResultMap& results = loaded->getSystem(0)->getMapResult();
    ASSERT_EQ(results.size(), 10010U);
    for (const auto& [index, level] : {std::pair{9999, 9999.0F}, {10000, 1000.0F}, {10009, 1000.0F}})
        EXPECT_EQ((results.begin() + index)->second->GetValue(), level);
}

TEST_F(Document, ListsHeadersAndFetchesResultsWithoutLoading)
{
    CZMXFFile reader(false, false);
    // What a listing gives: the kinds, and what is fetched with each header.
    const auto listed = [&](const Bytes& file, bool good) {
        disk.Put(kPath, file);
        std::vector<CResultHeader*> headers(3);
        EXPECT_EQ(reader.GetResultHeaderListe(kPath.c_str(), headers), good);
        std::string text;
        for (CResultHeader* header : headers) {
            const std::unique_ptr<CResultHeader> owner(header);
            text += std::to_string(header->GetProcessType()) + "=" + Fetched(reader, *header, kPath) + " ";
        }
        return text;
    };
    const auto fetches = [&](CResult* result, const CResultHeader* header) {
        std::int32_t number = 99;
        return reader.GetResultat(result, header, number) || number != -1;
    };
    EXPECT_EQ(listed(AsBytes(DataFile("whole.zmxf")), true), "9=0:1/1/2 100=0:2/3/2 42=1:3/0/0 ");
    EXPECT_EQ(reader.fileHeader().GetSystemeNumber(), 3);
    EXPECT_EQ(reader.getNbrSys(), 0);
    EXPECT_FALSE(reader.HasRecordPreview(kPath.c_str()));
    const CResultHeader header = HeaderOf({.filename = kPath, .chunkId = CodeOf("0   ")});
    const CResultHeader unknown = HeaderOf({.filename = kPath, .chunkId = CodeOf("77  ")});
    CScalar scalar;
    EXPECT_FALSE(fetches(&scalar, &unknown));
    EXPECT_FALSE(fetches(nullptr, &header));
    EXPECT_FALSE(fetches(&scalar, nullptr));
    CHardInfo hardInfo;
    EXPECT_TRUE(reader.GetHardInfo(kPath.c_str(), hardInfo));
    EXPECT_EQ(hardInfo.getNbHardInfo(), 2);

    // Headers of style 2 stay hidden, and a later system without its list ends the listing.
    const Bytes first = system("0", results(resultHeader(0, 9, {.opere = 2}).append(result(1, 5000))));
    EXPECT_EQ(listed(fileOf(head(1, 128).append(first)), true), "5000=0:1/0/0 ");
    EXPECT_TRUE(reader.HasRecordPreview(kPath.c_str()));
    EXPECT_EQ(listed(fileOf(head(2, 4).append(first)), false), "5000=0:1/0/0 ");
    EXPECT_EQ(listed(fileOf(head(2, 2).append(first)), true), "5000=0:1/0/0 ") << "where none are promised";
    EXPECT_EQ(Messages(reader), Told());
}

// A quantity that was replaced stays that of the levels inside a result.
TEST_F(Document, FetchesTheQuantitiesOfLevelsToo)
{
    CZMXFFile document(true, false);
    CGrandeurFichier* former = NewQuantity(u"former");
    CGrandeur* present = NewQuantity(u"present");
    for (CGrandeur* quantity : {static_cast<CGrandeur*>(former), present})
        document.AjouteGrandeur(quantity, OwnershipOwned);
    auto* levels = new CGlobalLevel(29, 1, SignalType::Real);
    levels->SetMagnitude(former);
    levels->ReplaceGrandeur(former, present);
    document.AjouteResultat(NewHeader(29), levels, 0, true);
    document.NeedToRemoveEverything(true);
    disk[kPath] = SavedBytes(document);

    const CResultHeader header = HeaderOf({.filename = kPath, .chunkId = CodeOf("0   ")});
    CGlobalLevel fetched;
    std::int32_t number = 0;
    ASSERT_TRUE(document.GetResultat(&fetched, &header, number));
    std::map<CGrandeur*, int> given;
    fetched.AddReferredGrandeur(given);
    EXPECT_EQ(given.size(), 2U);
    EXPECT_EQ(fetched.GetLevel(CGlobalLevel::DC).GetMagnitude()->quantityName(), u"former");
    for (const auto& entry : given) delete entry.first;
}

TEST_F(Document, FilesThatCannotBeOpenedGiveTheirMessage)
{
    CZMXFFile document(true, false);
    std::vector<CResultHeader*> headers;
    CHardInfo hardInfo;
    for (const char16_t* path : {u"nowhere", static_cast<const char16_t*>(nullptr)}) {
        const wstring shown = path == nullptr ? wstring() : path;
        const std::string message = "The file " + ToUtf8(shown) + " could not be opened";
        document.setFilename(u"former");
        EXPECT_FALSE(document.Load(path, ZMXFFileLoadScope::all()));
        EXPECT_EQ(document.filename(), u"");
        EXPECT_FALSE(document.GetResultHeaderListe(path, headers));
        EXPECT_FALSE(document.HasRecordPreview(path));
        CResultHeader header;
        EXPECT_EQ(Fetched(document, header, shown), "");
        EXPECT_EQ(Messages(document), (Told{message, message, message, message}));
        EXPECT_FALSE(document.GetHardInfo(path, hardInfo));
        EXPECT_EQ(Messages(document), Told());
    }
    EXPECT_FALSE(document.Save(nullptr));
    std::vector<wstring> out{u"before"};
    for (const bool clear : {false, true, true}) document.fetchErrors(out, clear);
    const wstring message = u"The file  could not be created";
    EXPECT_EQ(out, (std::vector<wstring>{u"before", message, message}));
}

TEST_F(Document, DumpStandsBesideTheFile)
{
    const UseBackend platform([] { return std::make_unique<CMmioRiff>(); });
    const TempFolder folder;
    const wstring path = folder.wideFile("file.zmxf");
    const auto isOnDisk = [&](const std::string& name, const std::string& golden) {
        const auto bytes = DataFile(golden);
        return readDiskFile(folder.file(name)) == std::string(bytes.begin(), bytes.end());
    };
    CZMXFFile document(true, true);
    FillWhole(document);
    CZMXFFile longer(true, true);
    FillWhole(longer);
    longer.writeHardInfo().addHardInfoData({std::string(10000, 'x'), "", "", ""});
    ASSERT_TRUE(longer.Save(path.c_str()));
    EXPECT_EQ(readDiskFile(folder.file("file.zmxfd")), "");

    document.GenerateInfoFile(true);
    ASSERT_TRUE(document.Save(path.c_str()));
    EXPECT_TRUE(isOnDisk("file.zmxf", "whole_lxf.zmxf")) << "nothing is left of the longer file";
    EXPECT_TRUE(document.Load(path.c_str(), ZMXFFileLoadScope::all()));
    document.NeedToRemoveEverything(true);
    EXPECT_TRUE(isOnDisk("file.zmxfd", "whole_lxf.zmxfd")) << "also after a read, which writes no dump";
}

TEST_F(Document, ResultsGoToTheirSystemOrANewOne)
{
    CZMXFFile document(true, false);
    document.AjouteResultat(NewHeader(9), NewScalar(9, 1), 5, true);
    document.AjouteResultat(NewHeader(10), NewScalar(10, 2), 0, true);
    document.AjouteResultat(NewHeader(11), NewScalar(11, 3), 65535, true);
    document.NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(document).substr(0, 19), "[9=1 10=2] [11=3] q");
    const CResultHeader wanted = *document.getSystem(1)->getMapResult().begin()->first;
    EXPECT_FALSE(document.RemoveResultat(&wanted, 0));
    EXPECT_FALSE(document.RemoveResultat(&wanted, 2));
    EXPECT_TRUE(document.ReplaceResultat(NewHeader(12), &wanted, NewScalar(12, 4), 1));
    EXPECT_EQ(Summary(document).substr(0, 19), "[9=1 10=2] [12=4] q");
    EXPECT_TRUE(document.RemoveResultat(document.getSystem(1)->getMapResult().begin()->first, 1));
    EXPECT_EQ(Summary(document).substr(0, 15), "[9=1 10=2] [] q");
}

TEST_F(Document, QuantitiesAreFoundByCodeNameAndContent)
{
    CZMXFFile document(true, false);
    CGrandeurFichier* a = NewQuantity(u"a");
    CGrandeurFichier* b = NewQuantity(u"b", {a, a});
    for (CGrandeur* quantity : {a, b, a}) document.AjouteGrandeur(quantity, OwnershipOwned);
    EXPECT_EQ(Summary(document), "q a b, c, h 0, v 100");
    EXPECT_EQ(a->GetChunkId(), CodeOf("0000"));
    EXPECT_EQ(document.getGrandeur(CodeOf("0001")), b);
    EXPECT_EQ(document.getUnit(CodeOf("0001")), b->GetUniteCourante());
    EXPECT_EQ(document.getUnit(0), nullptr);
    EXPECT_EQ(document.GetGrandeur(u"b"), b);
    EXPECT_EQ(document.GetGrandeur(u"A"), nullptr);
    std::int32_t code = 0;
    CGrandeur same(*b);
    EXPECT_TRUE(document.GrandeurExist(&same, code));
    EXPECT_EQ(code, static_cast<std::int32_t>(CodeOf("0001")));
    same.SetTypeUFF(5);
    EXPECT_FALSE(document.GrandeurExist(&same, code));
    EXPECT_EQ(code, -1);
    std::map<CGrandeur*, int> counts;
    document.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{a, 2}}));
    EOwnership ownership{};
    EXPECT_TRUE(document.obsolete_ReplaceGrandeur(b, &ownership, &same, OwnershipCaller));
    delete b;
    document.obsolete_ClearListeGrandeurs(); // deletes a, which is owned
    EXPECT_EQ(ownership, OwnershipOwned);
    EXPECT_TRUE(document.GetListeGrandeur().empty());
}

TEST_F(Document, QuantitiesAreDeletedByTheirOwner)
{
    static int alive;
    struct Counted final : CGrandeur {
        Counted() { ++alive; }
        ~Counted() override { --alive; }
    };
    for (const auto& [ownQuantities, removeEverything] : {std::pair{false, false}, {false, true}, {true, false}}) {
        alive = 0;
        auto byDefault = std::make_unique<Counted>();
        const auto byCaller = std::make_unique<Counted>();
        {
            CZMXFFile document(ownQuantities, false);
            document.NeedToRemoveEverything(removeEverything);
            document.AjouteGrandeur(byDefault.get(), OwnershipDefault);
            document.AjouteGrandeur(byCaller.get(), OwnershipCaller);
            document.AjouteGrandeur(new Counted, OwnershipOwned);
        }
        const bool deleted = ownQuantities || removeEverything;
        EXPECT_EQ(alive, deleted ? 1 : 2);
        if (deleted) (void)byDefault.release();
    }
}

} // namespace
} // namespace ZelmResult
