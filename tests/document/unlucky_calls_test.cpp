// Legal calls at the wrong time or with the oddest arguments, for documents, systems and their small records.

#include "tests/builders/samples.h"
#include "zelmresult/zelmresult.h"

#include <array>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::int32_t kInts[] = {INT32_MIN, -1, 0, 1, 16, 17, 1023, 1024, 65535, INT32_MAX};
const idn::Idn kNowhere(idn::Analyzer(9), {77, 77}, {77, 77}, idn::Setting(77));

// Every operation of a system that asks, or finds nothing to do.
void Call(CSysteme& system)
{
    CResultHeader unknown =
        HeaderOf({.processType = 0xFFFFFFFF, .filename = wstring(70000, u'f'), .opere = 0xFFFFFFFF});
    EXPECT_FALSE(system.RemoveResultat(&unknown) || system.ReplaceResultat(&unknown, &unknown, nullptr));
    system.RemoveResultatsFromArray(&unknown, nullptr);
    system.ReplaceResultatsFromArray(&unknown, nullptr, nullptr, nullptr);
    system.AjouteResultat(nullptr, nullptr, true), system.AddITrack(nullptr), system.AddReglage(nullptr);
    std::vector<CResultHeader*> headers;
    system.GetResultHeaderListe(headers);
    EXPECT_EQ(headers.size(), static_cast<std::size_t>(system.GetResultsNumber()));
    EXPECT_TRUE(system.CreeListesResultatsOrdonnees() && system.headers().size() == headers.size());
    EXPECT_EQ(system.GetReglage(kNowhere), nullptr);
    EXPECT_TRUE(system.GetSubmoduleSet(kNowhere, idn::ESubmoduleCollection(0xFFFFFFFF)).empty());
    EXPECT_TRUE(system.getListeReference(SIZE_MAX) == nullptr && !system.IsInListReferences(nullptr));
    system.AffecteReference(), system.ReplaceGrandeur(nullptr, nullptr), (void)system.TypeBits();
    EXPECT_TRUE(system.getRecord() != nullptr || (system.getNbrChannel() == 0 && system.GetRecordDuration() == 0));
    CMmioFile closed(false, MemoryDisk().backend());
    std::int32_t number = INT32_MAX;
    EXPECT_FALSE(system.Save(&closed, true, 0xFFFFFFFF, number));
    EXPECT_FALSE(system.GetResultHeaderListe(&closed, headers) || CSysteme::GetReglage(&closed, kNowhere));
}

// The same of a document, and what reads files that aren't there or are none.
void Call(CZMXFFile& document)
{
    for (const std::int32_t number : kInts) {
        CSysteme* system = document.getSystem(number);
        if (system != nullptr) Call(*system);
        const auto index = static_cast<std::uint16_t>(number);
        const CResultHeader none = HeaderOf({.processType = 0xFFFFFFFF});
        EXPECT_FALSE(document.RemoveResultat(&none, index) || document.ReplaceResultat(nullptr, &none, nullptr, index));
        EXPECT_EQ(document.GetReglageBySystem(kNowhere, number), nullptr);
        EXPECT_EQ(document.GetReglageByChannel(kNowhere, number), nullptr);
        EXPECT_TRUE(document.getTrackData(number) == nullptr || (number >= 0 && number < 65536));
    }
    std::vector<std::int32_t> numbers(50000);
    (void)document.getNbrChannel(), (void)document.getSampleFrequency();
    (void)document.getTrackBlockSize(numbers.data());
    (void)document.getYUniData(nullptr, nullptr, nullptr, nullptr, nullptr);
    std::int32_t code = 0;
    EXPECT_TRUE(!document.GrandeurExist(nullptr, code) && code == -1 && !document.AddSysteme(nullptr));
    document.AjouteGrandeur(nullptr, EOwnership(99)), (void)document.AddComment(nullptr), document.UpdateFileHeader();
    EXPECT_FALSE(document.ChangeRecordDateAndSave({0, 13, 0, 40, 0, 0, 0, 0}));
    const auto held = std::pair(document.getNbrSys(), document.GetListeGrandeur().size());
    for (const wstring& path : {wstring(u"none"), wstring(u"empty"), wstring(u"noise"), wstring(70000, u'p')}) {
        CHardInfo hardware;
        CConfigData settings;
        CListVectorRef list(true);
        CScalar scalar;
        std::vector<CResultHeader*> headers;
        const CResultHeader header = HeaderOf({.filename = path, .chunkId = 0xFFFFFFFF});
        EXPECT_FALSE(document.GetHardInfo(path.c_str(), hardware) || document.GetReglage(path.c_str(), kNowhere));
        for (const std::int32_t system : {-1, 0, 17, INT32_MAX}) {
            EXPECT_FALSE(document.GetConfig(path.c_str(), settings, static_cast<std::uint16_t>(system)));
            (void)document.FillListeVecteurRef(nullptr, nullptr, list, path.c_str(), system, system);
        }
        EXPECT_TRUE(!document.GetResultat(&scalar, &header, code) && code == -1 && list.IsEmpty());
        EXPECT_FALSE(document.Load(path.c_str(), ZMXFFileLoadScope(ZMXFFileLoadScope::EScope(99), INT32_MIN)));
        EXPECT_EQ(document.filename(), u"");
        CZMXFFile reader(true, false);
        EXPECT_FALSE(reader.GetResultHeaderListe(path.c_str(), headers) || reader.HasRecordPreview(path.c_str()));
        EXPECT_TRUE(headers.empty());
    }
    EXPECT_EQ(held, std::pair(document.getNbrSys(), document.GetListeGrandeur().size()))
        << "a load that fails brings nothing";
    EXPECT_FALSE(document.Save(u""));
    (void)Messages(document);
}

TEST(UnluckyDocuments, InEveryState)
{
    MemoryDisk disk;
    const UseBackend use(disk);
    disk[u"empty"] = {};
    disk[u"noise"] = std::vector<char>(3000, 'R');
    for (const char* golden : {"", "whole.zmxf", "whole_lxf.zmxf", "whole_branches.zmxf", "whole_references.zmxf"}) {
        SCOPED_TRACE(golden);
        CZMXFFile document(true, golden == std::string("whole_lxf.zmxf"));
        Call(document);
        if (golden[0] != 0) {
            disk[u"golden"] = DataFile(golden);
            for (int load = 0; load < 2; ++load) { // the second one adds the same again
                EXPECT_TRUE(document.Load(u"golden", ZMXFFileLoadScope::all()));
                document.setFilename(u"");
                Call(document);
            }
        } else {
            document.AjouteResultat(NewHeader(10), nullptr, 65535, true); // a header without a result
            EXPECT_FALSE(document.AddSysteme(document.getSystem(0)));
            auto* setting = new CBooleenData;
            EXPECT_TRUE(document.AddReglage(setting, 0) && document.AddReglage(setting, 0));
        }
        document.NeedToRemoveEverything(true);
        (void)SavedAnyway(document), Call(document);
        for (int emptied = 0; emptied < 2; ++emptied) {
            EXPECT_TRUE(document.RemoveAllResultats());
            for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
                CSysteme& system = *document.getSystem(i);
                EXPECT_TRUE(system.GetResultsNumber() == 0 && system.GetArPtrListeReferences().empty());
                delete system.getRecord(), delete system.getPConfig();
                system.setRecord(nullptr), system.SetConfig(nullptr);
                Call(system);
                system.AjouteResultat(NewHeader(0xFFFFFFFE), NewScalar(10, 1), true); // of no known kind
                for (const std::uint32_t dimension : {2U, 5U}) {
                    const CResultHeader header = HeaderOf({.processType = 2, .waterfallDimension = dimension});
                    auto made = ResultFactory::create(header.processType(), static_cast<int>(dimension), u"");
                    made->GetReferencedAxis()->SetReferenceList(nullptr); // nothing to register
                    system.AjouteResultat(new CResultHeader(header), made.release(), true);
                }
                system.setSystemNumber(65535);
            }
            Call(document);
            CZMXFFile again(true, false);
            disk[u"again"] = SavedAnyway(document);
            EXPECT_TRUE(document.getNbrSys() == 0 || again.Load(u"again", ZMXFFileLoadScope::all()));
            again.NeedToRemoveEverything(true);
        }
    }
}

} // namespace
} // namespace ZelmResult
