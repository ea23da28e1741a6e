#include "zelmresult/document/zmxf_file.h"

#include "tests/builders/waterfall_samples.h"
#include "tests/document/document_fixture.h"
#include "zelmresult/storage/mmio_riff.h"

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
};

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
