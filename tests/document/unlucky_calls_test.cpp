// Legal calls at the wrong time or with the oddest arguments, for documents, systems and their small records.

#include "tests/document/samples.h"
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
    CResultHeader unknown;
    unknown.SetProcessType(0xFFFFFFFF), unknown.SetOpere(0xFFFFFFFF), unknown.setFilename(wstring(70000, u'f'));
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
    std::array<float, 5> frequencies{1, 1, 1, 1, 7};
    system.GetFrequencyUsed(frequencies.data());
    EXPECT_EQ(frequencies[4], 7);
    system.AffecteReference(), system.ReplaceGrandeur(nullptr, nullptr), (void)system.TypeBits();
    if (system.getRecord() == nullptr)
        EXPECT_TRUE(system.getNbrChannel() == 0 && system.GetRecordDuration() == 0 && !system.IsConvertedSignal());
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
        EXPECT_EQ(system != nullptr, number >= 0 && number < document.getNbrSys());
        if (system != nullptr) Call(*system);
        const auto index = static_cast<std::uint16_t>(number);
        const CResultHeader none = HeaderOf({.processType = 0xFFFFFFFF});
        EXPECT_FALSE(document.RemoveResultat(&none, index) || document.ReplaceResultat(nullptr, &none, nullptr, index));
        if (number > document.getNbrSys() && number < 65536)
            EXPECT_FALSE(document.SetRecord(nullptr, index) || document.SetITrack(nullptr, index));
        EXPECT_EQ(document.GetReglageBySystem(kNowhere, number), nullptr);
        EXPECT_EQ(document.GetReglageByChannel(kNowhere, number), nullptr);
        EXPECT_EQ(document.getRecord(index) != nullptr,
                  document.getSystem(index) != nullptr && document.getSystem(index)->getRecord() != nullptr);
        if (number < 0 || number > 1000000) EXPECT_EQ(document.getTrackData(number), nullptr);
        EXPECT_EQ(document.getGrandeur(0xFFFFFFFF - index), nullptr);
        EXPECT_EQ(document.getUnit(0xFFFFFFFF - index), nullptr);
        double bands = 0;
        CZMXFFile::SetNOctave(number, bands);
        EXPECT_GE(bands, 1);
    }
    std::vector<float> floats(50000);
    std::vector<std::int32_t> numbers(50000);
    std::vector<std::int16_t> marks(50000);
    (void)document.getNbrChannel(), (void)document.getNbrChannel(marks.data()), (void)document.getSampleFrequency();
    (void)document.getTrackFreq(floats.data()), (void)document.getTrackBlockSize(numbers.data());
    (void)document.getYUniData(nullptr, nullptr, nullptr, nullptr, nullptr);
    (void)document.getTrackFormat(nullptr, nullptr, nullptr, nullptr);
    std::int32_t code = 0;
    EXPECT_TRUE(!document.GrandeurExist(nullptr, code) && code == -1 && !document.AddSysteme(nullptr));
    document.AjouteGrandeur(nullptr, EOwnership(99)), (void)document.AddComment(nullptr), document.UpdateFileHeader();
    EXPECT_FALSE(document.ChangeRecordDateAndSave({0, 13, 0, 40, 0, 0, 0, 0}));
    const auto held = std::pair(document.getNbrSys(), document.GetListeGrandeur().size());
    CHardInfo hardware;
    CConfigData settings;
    CListVectorRef list(true);
    CScalar scalar;
    std::vector<CResultHeader*> headers;
    for (const wstring& path :
         {wstring(), wstring(u"none"), wstring(u"empty"), wstring(u"noise"), wstring(70000, u'p')}) {
        CResultHeader header;
        header.setFilename(path), header.SetChunkId(0xFFFFFFFF);
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
        (void)SavedBytes(document), Call(document);
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
                    CResultHeader* header = NewHeader(2);
                    header->SetWaterfallDimension(dimension);
                    auto made = ResultFactory::create(header->processType(), static_cast<int>(dimension), u"");
                    made->GetReferencedAxis()->SetReferenceList(nullptr); // nothing to register
                    system.AjouteResultat(header, made.release(), true);
                }
                system.setSystemNumber(65535);
            }
            Call(document);
            CZMXFFile again(true, false);
            disk[u"again"] = SavedBytes(document);
            EXPECT_TRUE(document.getNbrSys() == 0 || again.Load(u"again", ZMXFFileLoadScope::all()));
            again.NeedToRemoveEverything(true);
        }
    }
}

TEST(UnluckyDocuments, SmallRecords)
{
    CHardInfo hardware;
    strHardInfo entry{"former", "", "", ""};
    for (const std::int32_t i : kInts)
        EXPECT_TRUE(!hardware.getHardInfoData(i, entry) && entry.HardShortName == "former");
    ShownSeries series;
    EXPECT_EQ(series.Find(wstring(70000, u'x'), INT32_MIN), nullptr);
    CRefWaterfall shown;
    CResultHeader header;
    series.Add(header, &shown), series.Add(header, nullptr); // texts that are empty
    EXPECT_EQ(series.Find(u"none", 0), nullptr);
    for (const std::int32_t number : kInts) {
        const auto bits = static_cast<std::uint32_t>(number);
        header.SetWaterfallDimension(bits), header.SetOpUniteAffichage(number), header.SetProcessType(bits);
        header.SetIndexListe(number), header.setDate(OTime(INT64_MIN)), header.SetNumWindow(number);
        header.setComment(wstring(70000, u'\xDC00')), header.SetIdnResponse({{}, {bits, bits}, {bits, bits}, {}});
        EXPECT_TRUE(header == header && header.CorrespondA(header));
        CMmioFile closed(false, MemoryDisk().backend());
        EXPECT_FALSE(header.Save(&closed) || header.Load(&closed));
    }
}

} // namespace
} // namespace ZelmResult
