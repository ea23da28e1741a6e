// One result of every kind that the factory knows, and one setting of every kind, in documents.

#include "tests/document/document_fixture.h"
#include "zelmresult/zelmresult.h"

namespace ZelmResult {
namespace {

using namespace test;

class AllKinds : public LoadsDocuments {};

TEST_F(AllKinds, OfResultsComeBack)
{
    CZMXFFile document(true, false);
    CGrandeur* quantity = NewQuantity(u"q");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    const std::uint32_t afterAll = ResultKind::All().back().numbers.last + 1;
    for (const std::uint32_t dimension : {0U, 1U, 2U, 5U})
        for (std::uint32_t kind = 0; kind <= afterAll; ++kind) {
            auto header = std::make_unique<CResultHeader>(
                HeaderOf({.processType = kind, .responseName = u"Speed", .waterfallDimension = dimension}));
            auto result = ResultFactory::create(header->processType(), static_cast<int>(dimension), u"Speed");
            if (result == nullptr) continue;
            if (dynamic_cast<CDoubleResult*>(result.get()) == nullptr) result->SetMagnitude(quantity);
            document.AjouteResultat(header.release(), result.release(), 0, true);
        }
    document.NeedToRemoveEverything(true);
    const std::int32_t results = document.getSystem(0)->GetResultsNumber();
    EXPECT_GT(results, 1100);
    // What came from a file has the filled points alone; from then on it stays as it is.
    const auto bytes = SavedBytes(*Load(SavedBytes(document)));
    const auto loaded = Load(bytes);
    ASSERT_EQ(loaded->getSystem(0)->GetResultsNumber(), results);
    for (const auto& [header, result] : loaded->getSystem(0)->getMapResult())
        EXPECT_NE(std::unique_ptr<CResult>(result->GetCopy()), nullptr) << header->GetProcessType();
    expectBytes(SavedBytes(*loaded), AsBytes(bytes));
}

TEST_F(AllKinds, OfSettingsMatchAGoldenFile)
{
    CZMXFFile document(true, false);
    FillWhole(document);
    std::uint32_t number = 0;
    for (const std::uint32_t type :
         {3U, 8193U, 17U, 49U, 113U, 129U, 641U, 65537U, 1024U, 9U, 16385U, 32769U, 2049U, 273U, 5U, 4097U}) {
        const idn::Idn idn(idn::Analyzer(0), idn::Module(3, 1), idn::Submodule(7, 1), idn::Setting(++number));
        auto setting = CSousModuleData::CreateReglage(new CReglageInfoData(idn, type));
        ASSERT_NE(setting, nullptr) << type;
        setting->setTitleString(u"Setting " + ToDecimal(number));
        EXPECT_TRUE(document.AddReglage(setting.release(), 0));
    }
    auto* record = new CRecord(true);
    record->setNbrRecord(1);
    for (int i = 0; i < 2; ++i) {
        auto* track = new CZMTrackDesc;
        for (const TrackChunk chunk : {TrackChunk::Info, TrackChunk::Loca, TrackChunk::Ovld, TrackChunk::Xuni,
                                       TrackChunk::Yuni, TrackChunk::Vuni, TrackChunk::Corr})
            track->SetHasChunk(chunk, true);
        track->Name = u"Track " + ToDecimal(i);
        record->AddTrackDesc(track, -1);
        auto* transducer = new CITrack;
        transducer->setId(i == 0 ? u"i" : u"j");
        EXPECT_TRUE(document.SetITrack(transducer, 0));
    }
    EXPECT_TRUE(document.SetRecord(record, 0));
    expectBytes(SavedBytes(document), AsBytes(DataFile("whole_branches.zmxf")));
    const auto again = SavedBytes(*Load(SavedBytes(document))); // with the empty recordings that a load makes
    expectBytes(SavedBytes(*Load(again)), AsBytes(again));
}

} // namespace
} // namespace ZelmResult
