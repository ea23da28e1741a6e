#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/results/level_results.h"

#include "tests/document/samples.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <cmath>
#include <gtest/gtest.h>
#include <map>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;

const wstring kPath = u"document.zmxf";
const char kWhole[] = "[9=1@pressure 100=2@intensity] [42=3] [] q pressure speed intensity, c, h 2, v 200";

class Document : public ::testing::Test {
protected:
    // Loads a file into a fresh document, which owns what it loads.
    std::unique_ptr<CZMXFFile> Load(const std::vector<char>& bytes, bool isLXFFile = false,
                                    ZMXFFileLoadScope scope = ZMXFFileLoadScope::all())
    {
        disk[kPath] = bytes;
        auto document = std::make_unique<CZMXFFile>(true, isLXFFile);
        EXPECT_TRUE(document->Load(kPath.c_str(), scope));
        EXPECT_EQ(Messages(*document), std::vector<std::string>());
        EXPECT_EQ(document->filename(), kPath);
        document->NeedToRemoveEverything(true);
        return document;
    }
    void ExpectGolden(CZMXFFile& document, const std::string& name)
    {
        expectBytes(SavedBytes(document), AsBytes(DataFile(name)));
    }

    MemoryDisk disk;
    UseBackend use{disk};
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
    document.AjouteResultat(NewHeader(191, u"preview"), NewScalar(191, 2), 1, true);
    document.NeedToRemoveEverything(true);
    document.setProjectInfo(u"project", u"measurement", u"user");
    document.writeHardInfo().addHardInfoData({"1", "2", "3", "4"});
    auto* comment = new CComment;
    comment->setComment(u"remark");
    EXPECT_EQ(document.AddComment(comment), 0);

    HeaderFields level;
    level.caption = u"level";
    HeaderFields preview;
    preview.caption = u"preview";
    const Bytes project = Bytes{}.u16(0x100).text(u"measurement").text(u"project").text(u"user");
    expectBytes(
        SavedBytes(document),
        fileOf(
            head(2, 1 | 4 | 128)
                .chunk("PRJI", project)
                .append(units({quantityBytes(u"p")}))
                .append(
                    system("0", results(resultHeader(0, 9, level).append(resultData(0, scalarBytes(9, 1.5F, "0000"))))))
                .append(system("1", results(resultHeader(1, 191, preview).append(resultData(1, scalarBytes(191, 2))))))
                .chunk("CMTS", Bytes{}.text(u"remark"))
                .append(hardware({u"1", u"2", u"3", u"4"}))));
    EXPECT_EQ(document.fileHeader().GetType(), 1U | 4U | 128U);
    EXPECT_TRUE(document.HasRecordPreview());
    EXPECT_EQ(document.getSystem(1)->systemNumber(), 1);
}

TEST_F(Document, WholeDocumentsComeBackAndAreStoredAgainTheSame)
{
    for (const bool isLXFFile : {false, true}) {
        const std::string golden = isLXFFile ? "whole_lxf.zmxf" : "whole.zmxf";
        CZMXFFile document(true, isLXFFile);
        FillWhole(document);
        ExpectGolden(document, golden);
        ExpectGolden(document, golden); // once more from the same document

        const auto loaded = Load(DataFile(golden), isLXFFile);
        EXPECT_EQ(Summary(*loaded), kWhole) << "comments don't come back";
        EXPECT_EQ(loaded->GetIsLXFFile(), isLXFFile);
        wstring names[3];
        loaded->getProjectInfo(names[0], names[1], names[2]);
        EXPECT_EQ(names[0] + names[1] + names[2], isLXFFile ? u"projectmeasurementuser" : u"");
        CGrandeur* intensity = loaded->GetGrandeur(u"intensity");
        ASSERT_NE(intensity, nullptr);
        EXPECT_EQ(intensity->GetGrandeurLeft(), loaded->GetGrandeur(u"pressure"));
        EXPECT_EQ(intensity->GetGrandeurRight(), loaded->getGrandeur(CodeOf("0001")));

        if (!isLXFFile) loaded->setProjectInfo(u"project", u"measurement", u"user");
        for (CComment* comment : document.comments()) (void)loaded->AddComment(new CComment(*comment));
        ExpectGolden(*loaded, golden);
    }
}

TEST_F(Document, ReferenceListsAreStored)
{
    CListVectorRef list(true);
    CZMXFFile document(true, false);
    FillWhole(document);
    auto* reference = new CVectorRef(23, 3, u"Slice number", SignalType::Real);
    reference->SetMagnitude(document.GetGrandeur(u"speed"));
    reference->SetFilled(3);
    for (int i = 0; i < 3; ++i) reference->GetRefValue()[i] = static_cast<float>(10 * i);
    list.AddVectorRef(reference);
    document.getSystem(1)->SetArPtrListeReferences({&list});
    ExpectGolden(document, "whole_references.zmxf");
    EXPECT_TRUE(document.fileHeader().HasType(FileType::kReferences));
    EXPECT_EQ(Summary(*Load(DataFile("whole_references.zmxf"))), kWhole);
}

TEST_F(Document, LoadsWhatTheScopeTakes)
{
    const auto whole = DataFile("whole.zmxf");
    const auto single = [](const char* code) {
        return ZMXFFileLoadScope::singleResult(static_cast<std::int32_t>(CodeOf(code)));
    };
    EXPECT_EQ(Summary(*Load(whole, false, ZMXFFileLoadScope::noconfig())), kWhole);
    EXPECT_EQ(Summary(*Load(whole, false, single("1   "))).substr(0, 25), "[100=2@intensity] [] [] q");
    EXPECT_EQ(Summary(*Load(whole, false, single("2   "))).substr(0, 15), "[] [42=3] [] q ");
    EXPECT_EQ(Summary(*Load(whole, false, single("3   "))).substr(0, 11), "[] [] [] q ");

    // Into the same document it adds.
    const auto twice = Load(whole);
    ASSERT_TRUE(twice->Load(kPath.c_str(), single("2   ")));
    twice->NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(*twice).substr(0, 62), "[9=1@pressure 100=2@intensity] [42=3] [] [] [42=3] [] q pressu");
    EXPECT_EQ(ZMXFFileLoadScope(), ZMXFFileLoadScope::all());
}

// A code has room for four digits: the data of a later result is not found, but no result is lost.
TEST_F(Document, ResultsPastTenThousandTakeTheDataOfTheFirstOfTheirCode)
{
    CZMXFFile document(true, false);
    for (int i = 0; i < 10010; ++i) document.AjouteResultat(NewHeader(9), NewScalar(9, static_cast<float>(i)), 0, true);
    document.NeedToRemoveEverything(true);
    const auto loaded = Load(SavedBytes(document));
    const ResultMap& results = loaded->getSystem(0)->getMapResult();
    ASSERT_EQ(results.size(), 10010U);
    for (const auto& [index, level] : {std::pair{9999, 9999.0F}, {10000, 1000.0F}, {10009, 1000.0F}})
        EXPECT_EQ((results.begin() + index)->second->GetValue(), level);
}

TEST_F(Document, ListsHeadersAndFetchesResultsWithoutLoading)
{
    disk[kPath] = DataFile("whole.zmxf");
    CZMXFFile reader(false, false);
    std::vector<CResultHeader*> listed(3);
    ASSERT_TRUE(reader.GetResultHeaderListe(kPath.c_str(), listed));
    EXPECT_EQ(reader.fileHeader().GetSystemeNumber(), 3);
    EXPECT_EQ(reader.getNbrSys(), 0);
    std::string fetched;
    for (CResultHeader* header : listed) {
        const std::unique_ptr<CResultHeader> owner(header);
        header->setFilename(kPath);
        CScalar scalar;
        std::int32_t number = 99;
        ASSERT_TRUE(reader.GetResultat(&scalar, header, number));
        fetched += std::to_string(number) + ":" + std::to_string(std::lround(scalar.GetValue()));
        std::map<CGrandeur*, int> given;
        scalar.AddInvolvedGrandeur(given);
        for (const auto& [quantity, ways] : given) {
            if (quantity == scalar.GetMagnitude()) {
                EXPECT_EQ(dynamic_cast<CGrandeurFichier*>(quantity)->GetUserNumber(), 2);
            }
            delete quantity;
        }
        fetched += "/" + std::to_string(given.size()) + " ";
        header->SetChunkId(CodeOf("77  "));
        EXPECT_FALSE(reader.GetResultat(&scalar, header, number));
        EXPECT_EQ(number, -1);
        EXPECT_FALSE(reader.GetResultat(nullptr, header, number));
        EXPECT_FALSE(reader.GetResultat(&scalar, nullptr, number));
    }
    EXPECT_EQ(fetched, "0:1/1 0:2/3 1:3/0 ");
    CHardInfo hardInfo;
    EXPECT_TRUE(reader.GetHardInfo(kPath.c_str(), hardInfo));
    EXPECT_EQ(hardInfo.getNbHardInfo(), 2);
    EXPECT_FALSE(reader.HasRecordPreview(kPath.c_str()));
    EXPECT_EQ(Messages(reader), std::vector<std::string>());

    // Headers of style 2 stay hidden, and a later system without its list ends the listing.
    HeaderFields hidden;
    hidden.opere = 2;
    const Bytes first = system("0", results(resultHeader(0, 9, hidden).append(result(1, 5000)).append(result(2, 10))));
    disk.Put(kPath, fileOf(head(1, 128).append(first)));
    EXPECT_TRUE(reader.GetResultHeaderListe(kPath.c_str(), listed));
    ASSERT_EQ(listed.size(), 2U);
    EXPECT_EQ(listed[0]->GetProcessType() + listed[1]->GetProcessType(), 5010U);
    for (CResultHeader* header : listed) delete header;
    EXPECT_TRUE(reader.HasRecordPreview(kPath.c_str()));
    disk.Put(kPath, fileOf(head(2, 4).append(first)));
    EXPECT_FALSE(reader.GetResultHeaderListe(kPath.c_str(), listed));
    EXPECT_EQ(listed.size(), 2U);
    for (CResultHeader* header : listed) delete header;
}

// A quantity that was replaced stays that of the levels inside a result.
TEST_F(Document, FetchesTheQuantitiesOfLevelsToo)
{
    CZMXFFile document(true, false);
    CGrandeurFichier* former = NewQuantity(u"former");
    CGrandeur* present = NewQuantity(u"present");
    document.AjouteGrandeur(former, OwnershipOwned);
    document.AjouteGrandeur(present, OwnershipOwned);
    auto* levels = new CGlobalLevel(29, 1, SignalType::Real);
    levels->SetMagnitude(former);
    levels->ReplaceGrandeur(former, present);
    document.AjouteResultat(NewHeader(29), levels, 0, true);
    document.NeedToRemoveEverything(true);
    ASSERT_TRUE(document.Save(kPath.c_str()));

    std::vector<CResultHeader*> listed;
    ASSERT_TRUE(document.GetResultHeaderListe(kPath.c_str(), listed));
    const std::unique_ptr<CResultHeader> header(listed.front());
    header->setFilename(kPath);
    CGlobalLevel fetched;
    std::int32_t number = 0;
    ASSERT_TRUE(document.GetResultat(&fetched, header.get(), number));
    std::map<CGrandeur*, int> given;
    fetched.AddReferredGrandeur(given);
    EXPECT_EQ(given.size(), 2U);
    EXPECT_EQ(fetched.GetLevel(CGlobalLevel::DC).GetMagnitude()->quantityName(), u"former");
    for (const auto& entry : given) delete entry.first;
}

TEST_F(Document, FilesThatCannotBeOpenedGiveTheirMessage)
{
    using Told = std::vector<std::string>;
    CZMXFFile document(true, false);
    std::vector<CResultHeader*> headers;
    CHardInfo hardInfo;
    CScalar scalar;
    std::int32_t number = 0;
    for (const char16_t* path : {u"nowhere", u"", static_cast<const char16_t*>(nullptr)}) {
        const wstring shown = path == nullptr ? wstring() : path;
        const std::string message = "The file " + ToUtf8(shown) + " could not be opened";
        CResultHeader header;
        header.setFilename(shown);
        document.setFilename(u"former");
        EXPECT_FALSE(document.Load(path, ZMXFFileLoadScope::all()));
        EXPECT_EQ(document.filename(), u"");
        EXPECT_FALSE(document.GetResultHeaderListe(path, headers));
        EXPECT_FALSE(document.GetResultat(&scalar, &header, number));
        EXPECT_FALSE(document.HasRecordPreview(path));
        EXPECT_EQ(Messages(document), (Told{message, message, message, message}));
        EXPECT_FALSE(document.GetHardInfo(path, hardInfo));
        EXPECT_EQ(Messages(document), Told());
        if (!shown.empty()) continue;
        EXPECT_FALSE(document.Save(path));
        EXPECT_EQ(Messages(document), Told{"The file  could not be created"});
    }
    disk.Put(kPath, Bytes{}.riff("WAVE", Bytes{}.versionChunk(0x200)));
    EXPECT_FALSE(document.GetResultHeaderListe(kPath.c_str(), headers));
    EXPECT_FALSE(document.HasRecordPreview(kPath.c_str()));
    EXPECT_EQ(Messages(document), Told());

    document.addErrorMessage(u"kept");
    std::vector<wstring> out{u"before"};
    for (const bool clear : {false, true, true}) document.fetchErrors(out, clear);
    EXPECT_EQ(out, (std::vector<wstring>{u"before", u"kept", u"kept"}));
}

TEST_F(Document, DumpStandsBesideTheFile)
{
    const UseBackend platform([] { return std::make_unique<CMmioRiff>(); });
    const TempFolder folder;
    const std::string path = folder.file("file.zmxf");
    CZMXFFile document(true, true);
    FillWhole(document);
    EXPECT_FALSE(document.Save(FromUtf8(folder.path()).c_str())) << "a folder";
    EXPECT_EQ(Messages(document), std::vector<std::string>{"The file " + folder.path() + " could not be created"});
    document.writeHardInfo().addHardInfoData({std::string(10000, 'x'), "", "", ""});
    ASSERT_TRUE(document.Save(folder.wideFile("file.zmxf").c_str()));
    EXPECT_EQ(readDiskFile(path + "d"), "");

    CZMXFFile shorter(true, true);
    FillWhole(shorter);
    shorter.GenerateInfoFile(true);
    ASSERT_TRUE(shorter.Save(folder.wideFile("file.zmxf").c_str()));
    const auto golden = DataFile("whole_lxf.zmxf");
    EXPECT_EQ(readDiskFile(path), std::string(golden.begin(), golden.end())) << "nothing is left of the longer file";
    const auto dump = DataFile("whole_lxf.zmxfd");
    EXPECT_EQ(readDiskFile(path + "d"), std::string(dump.begin(), dump.end()));
    EXPECT_TRUE(shorter.Load(folder.wideFile("file.zmxf").c_str(), ZMXFFileLoadScope::all()));
    shorter.NeedToRemoveEverything(true);
    EXPECT_EQ(readDiskFile(path + "d").size(), dump.size()) << "reading writes no dump";
}

TEST_F(Document, ResultsGoToTheirSystemOrANewOne)
{
    CZMXFFile document(true, false);
    document.AjouteResultat(NewHeader(9), NewScalar(9, 1), 5, true);
    document.AjouteResultat(NewHeader(10), NewScalar(10, 2), 0, true);
    document.AjouteResultat(NewHeader(11), NewScalar(11, 3), 65535, true);
    document.NeedToRemoveEverything(true);
    EXPECT_EQ(Summary(document).substr(0, 19), "[9=1 10=2] [11=3] q");
    EXPECT_FALSE(document.AddSysteme(nullptr));
    for (const std::int32_t index : {-1, 2, INT32_MAX, INT32_MIN}) EXPECT_EQ(document.getSystem(index), nullptr);

    const CResultHeader wanted = *document.getSystem(1)->getMapResult().begin()->first;
    CResultHeader* replacement = NewHeader(12);
    CResult* newResult = NewScalar(12, 4);
    for (const std::uint16_t absent : std::initializer_list<std::uint16_t>{0, 2, 65535}) {
        EXPECT_FALSE(document.RemoveResultat(&wanted, absent));
        EXPECT_FALSE(document.ReplaceResultat(replacement, &wanted, newResult, absent));
    }
    EXPECT_FALSE(document.RemoveResultat(nullptr, 1));
    EXPECT_FALSE(document.ReplaceResultat(nullptr, &wanted, newResult, 1));
    EXPECT_FALSE(document.ReplaceResultat(replacement, nullptr, newResult, 1));
    EXPECT_TRUE(document.ReplaceResultat(replacement, &wanted, newResult, 1));
    EXPECT_EQ(Summary(document).substr(0, 19), "[9=1 10=2] [12=4] q");
    EXPECT_TRUE(document.RemoveResultat(replacement, 1));
    EXPECT_TRUE(document.RemoveAllResultats());
    EXPECT_EQ(Summary(document).substr(0, 7), "[] [] q");
}

TEST_F(Document, QuantitiesAreFoundByCodeNameAndContent)
{
    CZMXFFile document(true, false);
    CGrandeurFichier* a = NewQuantity(u"a");
    CGrandeurFichier* b = NewQuantity(u"b", {a, a});
    document.AjouteGrandeur(nullptr, OwnershipOwned);
    for (CGrandeur* quantity : {a, b, a}) document.AjouteGrandeur(quantity, OwnershipOwned);
    EXPECT_EQ(document.GetListeGrandeur().size(), 2U);
    EXPECT_EQ(a->GetChunkId(), CodeOf("0000"));
    EXPECT_EQ(b->GetChunkId(), CodeOf("0001"));
    EXPECT_EQ(document.getGrandeur(CodeOf("0001")), b);
    EXPECT_EQ(document.getUnit(CodeOf("0001")), b->GetUniteCourante());
    EXPECT_EQ(document.GetGrandeur(u"a"), a);
    EXPECT_EQ(document.getGrandeur(0), nullptr);
    EXPECT_EQ(document.getUnit(0), nullptr);
    EXPECT_EQ(document.GetGrandeur(u"A"), nullptr);

    std::int32_t code = 0;
    const std::unique_ptr<CGrandeur> same(NewQuantity(u"b"));
    EXPECT_TRUE(document.GrandeurExist(same.get(), code));
    EXPECT_EQ(code, static_cast<std::int32_t>(CodeOf("0001")));
    same->SetTypeUFF(5);
    EXPECT_FALSE(document.GrandeurExist(same.get(), code));
    EXPECT_EQ(code, -1);
    EXPECT_FALSE(document.GrandeurExist(nullptr, code));
    std::map<CGrandeur*, int> counts;
    document.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{a, 2}}));

    EOwnership ownership{};
    EXPECT_FALSE(document.obsolete_ReplaceGrandeur(same.get(), &ownership, a, OwnershipOwned));
    EXPECT_TRUE(document.obsolete_ReplaceGrandeur(b, &ownership, same.get(), OwnershipCaller));
    EXPECT_EQ(ownership, OwnershipOwned);
    delete b;
    EXPECT_EQ(Summary(document).substr(0, 5), "q a b");
    document.obsolete_ClearListeGrandeurs(); // deletes a, which is owned
    EXPECT_TRUE(document.GetListeGrandeur().empty());
}

TEST_F(Document, QuantitiesAreDeletedByTheirOwner)
{
    static int alive;
    struct Counted final : CGrandeur {
        Counted() { ++alive; }
        ~Counted() override { --alive; }
    };
    for (const bool ownQuantities : {false, true})
        for (const bool removeEverything : {false, true}) {
            alive = 0;
            std::unique_ptr<Counted> byDefault = std::make_unique<Counted>();
            const std::unique_ptr<Counted> byCaller = std::make_unique<Counted>();
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

TEST_F(Document, HasItsSwitchesAndStatics)
{
    wstring entity = u"e";
    wstring node = u"n";
    EXPECT_FALSE(CZMXFFile::getReferenceParameters(entity, node));
    EXPECT_EQ(entity + node, u"en");
    CZMXFFile::setReferenceParameters(u"entity", u"");
    EXPECT_TRUE(CZMXFFile::getReferenceParameters(entity, node));
    EXPECT_EQ(entity + node, u"entity");
    for (const auto& [choice, bands] : {std::pair{0, 1.0}, {1, 3.0}, {2, 12.0}, {3, 24.0}, {4, 1.0}, {-1, 1.0}}) {
        double given = 0;
        CZMXFFile::SetNOctave(choice, given);
        EXPECT_EQ(given, bands);
    }
    CZMXFFile document(false, false);
    EXPECT_EQ(document.GetVersion(), 256);
    EXPECT_FALSE(document.GetInvert() || document.GetIsLXFFile() || document.HasRecordPreview());
    document.SetInvert(true);
    document.SetIsLXFFile(true);
    EXPECT_TRUE(document.GetInvert() && document.GetIsLXFFile());
}

} // namespace
} // namespace ZelmResult
