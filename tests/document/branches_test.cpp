// Recordings, settings and transducers in documents.

#include "tests/builders/new_setting.h"
#include "tests/document/document_fixture.h"
#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>

namespace ZelmResult {
namespace {

using namespace test;
using idn::Idn;
using ::testing::ElementsAre;

constexpr std::uint32_t kBranches = FileType::kRecording | FileType::kSettings | FileType::kTracks;

Idn At(std::uint32_t module, std::uint32_t submodule, std::uint32_t setting, std::uint32_t instance = 1)
{
    return {idn::Analyzer(0), idn::Module(module, 1), idn::Submodule(submodule, instance), idn::Setting(setting)};
}

CRecord* NewRecord(int tracks, float frequency, CGrandeur* quantity = nullptr)
{
    auto* record = new CRecord(true);
    record->setNbrRecord(1);
    record->updateRecordLength(25000000);
    for (int i = 0; i < tracks; ++i) {
        auto* track = new CZMTrackDesc;
        track->SampleFrequency = frequency + static_cast<float>(i);
        track->YMagnitude = quantity;
        for (const TrackChunk chunk : {TrackChunk::Info, TrackChunk::Loca, TrackChunk::Yuni})
            track->SetHasChunk(chunk, true);
        record->AddTrackDesc(track, -1);
    }
    return record;
}

class Branches : public LoadsDocuments {};

} // namespace

TEST_F(Branches, OfOneSystemComeBackFromDocumentsOfSeveral)
{
    const Idn idn = At(3, 7, 1);
    CZMXFFile document(true, false);
    CGrandeur* quantity = NewQuantity(u"q");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    EXPECT_FALSE(document.SetRecord(nullptr, 1)) << "a system past the next isn't made";
    EXPECT_TRUE(document.SetRecord(NewRecord(2, 100, quantity), 0));
    EXPECT_TRUE(document.AddReglage(NewSetting<CChaineData>(idn, u"v"), 1));
    for (const wstring& id : {wstring(u"i"), wstring(u"j")}) {
        auto* track = new CITrack;
        track->setId(id);
        EXPECT_TRUE(document.SetITrack(track, 2));
    }
    EXPECT_TRUE(document.SetConfig(nullptr, 99));
    EXPECT_EQ(document.getNbrSys(), 4);
    document.UpdateFileHeader();
    EXPECT_EQ(document.fileHeader().GetType(), kBranches | FileType::kQuantities);

    const auto bytes = SavedBytes(document);
    const auto loaded = Load(bytes);
    EXPECT_EQ(loaded->getRecord(0)->getTrackCount(), 2);
    EXPECT_EQ(loaded->getTrackData(1)->YMagnitude, loaded->GetGrandeur(u"q"));
    EXPECT_NE(loaded->getRecord(1), nullptr);
    EXPECT_EQ(loaded->getRecord(1)->getTrackCount(), 0);
    EXPECT_EQ(loaded->getSystem(0)->GetRecordDuration(), 2.5);
    EXPECT_EQ(loaded->getSystem(0)->getNbrChannel(), 1);
    EXPECT_TRUE(loaded->getSystem(0)->IsConvertedSignal());
    EXPECT_FALSE(CSysteme().IsConvertedSignal());
    EXPECT_EQ(loaded->GetReglage(idn), nullptr);
    EXPECT_NE(loaded->GetReglageBySystem(idn, 1), nullptr);
    EXPECT_EQ(loaded->GetReglageByChannel(idn, 1500), loaded->GetReglageBySystem(idn, 1));
    (void)document.AddReglage(NewSetting<CChaineData>(idn, u"w"), 0);
    EXPECT_NE(document.GetReglage(idn), nullptr);
    EXPECT_EQ(document.GetReglageByChannel(idn, -1), nullptr);
    EXPECT_EQ(loaded->getSystem(2)->getNbrTransducer(), 2);
    EXPECT_EQ(loaded->getSystem(2)->iTracks()[1]->id(), u"j");
    const auto again = SavedBytes(*loaded); // with the empty recordings that a load makes
    EXPECT_TRUE(SavedBytes(*Load(again)) == again);

    disk[kPath] = bytes;
    CConfigData config;
    CZMXFFile reader(true, false);
    EXPECT_TRUE(reader.GetConfig(kPath.c_str(), config, 1));
    EXPECT_NE(config.GetReglage(idn), nullptr);
    EXPECT_FALSE(reader.GetConfig(kPath.c_str(), config, 4));
    EXPECT_FALSE(reader.GetConfig(kPath.c_str(), config, 17));
    EXPECT_EQ(reader.GetReglage(kPath.c_str(), idn), nullptr) << "only system 0 is asked";
    disk[kPath] = SavedBytes(document);
    const auto setting = reader.GetReglage(kPath.c_str(), idn);
    ASSERT_NE(setting, nullptr);
    EXPECT_EQ(dynamic_cast<CChaineData&>(*setting).value(), u"w");
}

TEST_F(Branches, HaveToBeThereWhenTheTypeWordSaysSo)
{
    using namespace FileType;
    const auto recording = [](const Bytes& children) { return Bytes{}.list("RCRD", children); };
    const auto version = [](std::uint32_t major, std::uint32_t minor) {
        return Bytes{}.u32(major).u32(minor).text(u"");
    };
    const auto settings = [&](std::uint32_t major, std::uint32_t minor) {
        return Bytes{}.list("CONF", Bytes{}.versionChunk(1025).chunk("CFVR", version(major, minor)));
    };
    const auto settings512 = [&](const Bytes& modules) {
        return Bytes{}.list("CONF", Bytes{}.versionChunk(512).append(modules)).append(version(5, 6));
    };
    const Bytes transducer = Bytes{}.chunk("ITRA", Bytes{}.u16(0x100).text(u"i").zeros(4));
    const Bytes tracks = Bytes{}.list("TRAN", Bytes{}.versionChunk(0x100).append(transducer));
    const struct {
        std::uint32_t type;
        Bytes branches;
        bool all;
        bool withoutConfig;
        int transducers = 0;
    } rows[] = {
        {kRecording, recording(Bytes{}.versionChunk(0x100)), true, true},
        {kRecording, {}, false, false},
        {kRecording, recording(Bytes{}.list("T000", Bytes{}.versionChunk(1))), false, false},
        {kSettings, settings(0, 0), true, true},
        {kSettings, {}, false, false},
        {kSettings, Bytes{}.list("CONF", {}), true, true}, // the tree's own failures are none of the load
        {kTracks, tracks, true, true, 1},
        {kTracks, Bytes{}.list("TRAN", {}), true, true}, // without its version
        {kTracks, {}, false, false},
        {kSettings | kTracks, settings(1, 2), false, true},
        {kSettings | kTracks, settings(1, 1), true, true}, // which held none
        {kSettings | kTracks, settings(0, 0).append(tracks), true, true, 1},
        {kSettings | kTracks, settings512({}).append(tracks), true, true, 1},
        {kSettings | kTracks, settings512(Bytes{}.chunk("IDNU", Bytes{}.idn(3, 0, 0))).append(tracks), true, true, 1},
    };
    mayReport = true; // of settings that come in part
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const Bytes file =
            fileOf(head(1, row.type).append(units({})).append(system("0", row.branches)).append(hardware()));
        for (const auto& [scope, good] : {std::pair{ZMXFFileLoadScope::all(), row.all},
                                          std::pair{ZMXFFileLoadScope::noconfig(), row.withoutConfig}}) {
            const auto document = Load(file.data(), good, scope);
            EXPECT_EQ(good ? document->getSystem(0)->getNbrTransducer() : 0, good ? row.transducers : 0);
        }
    }
    CZMXFFile document(true, false);
    (void)document.AddReglage(NewSetting<CChaineData>(At(3, 7, 1), u"v"), 0);
    const auto without = Load(SavedBytes(document), true, ZMXFFileLoadScope::noconfig());
    EXPECT_TRUE(without->getSystem(0)->getPConfig()->modules().empty());
}

TEST_F(Branches, CaptionsBeginWithTheSettingOnce)
{
    CZMXFFile document(true, false);
    document.AjouteResultat(NewHeader(9), NewScalar(9, 1), 0, false);
    document.NeedToRemoveEverything(true);
    CResultHeader& header = *document.getSystem(0)->getMapResult().begin()->first;
    header.setAnalyzerCaption(u"the analyzer");
    (void)document.AddReglage(NewSetting<CChaineData>(At(300, 901, 1), u"analyzer"), 0);
    for (int save = 0; save < 3; ++save) {
        (void)SavedBytes(document);
        EXPECT_EQ(header.analyzerCaption(), u"analyzer: the analyzer") << "it stood later";
        if (save == 1) (void)document.AddReglage(NewSetting<CBooleenData>(At(300, 901, 1), true), 0); // no text
    }
}

TEST_F(Branches, FrequenciesOfGroupsComeFromUsedInputs)
{
    CSysteme system;
    float out[4] = {9, 9, 9, 9};
    system.GetFrequencyUsed(out);
    EXPECT_THAT(out, ElementsAre(0, 0, 0, 0));
    const struct {
        std::uint32_t instance;
        wstring group;
        bool isUsed = true;
    } inputs[] = {{1, u"slow"}, {3, u"slow"}, {2, u"slow"}, {4, u"fast", false}, {5, u"fast2"}, {6, u"fs1"}};
    for (const auto& [instance, group, isUsed] : inputs) {
        system.AddReglage(NewSetting<CBooleenData>(At(3, 365, 2, instance), isUsed));
        system.AddReglage(NewSetting<CChaineData>(At(3, 365, 14, instance), group));
        system.AddReglage(NewSetting<CScalaireData>(At(3, 365, 11, instance), static_cast<float>(instance)));
    }
    system.AddReglage(NewSetting<CBooleenData>(At(3, 365, 11, 6), true)); // instead of the number
    system.GetFrequencyUsed(out);
    EXPECT_THAT(out, ElementsAre(0, 0, 3, 0)) << "the later one of a group";
}

TEST_F(Branches, ChannelsGoAcrossSystems)
{
    CZMXFFile document(true, false);
    (void)document.SetRecord(NewRecord(2, 100), 0);
    (void)document.SetConfig(nullptr, 1); // a system without a recording
    (void)document.SetRecord(NewRecord(3, 200), 2);
    EXPECT_EQ(document.getNbrChannel(), 1 - 1 + 2);
    EXPECT_EQ(document.getTrackData(2 * 1024 + 2)->SampleFrequency, 202);
    for (const std::int32_t none : {2, 1024, -1}) EXPECT_EQ(document.getTrackData(none), nullptr);
    EXPECT_TRUE(document.setNbrMarker(7, 2));
    EXPECT_EQ(document.getSystem(2)->getNbrMarker(), 7);
    EXPECT_FALSE(document.setNbrMarker(7, 3)) << "no such system";
    strEnregHeader blocks;
    blocks.BlockSize = 4;
    EXPECT_TRUE(document.setRecordHeaderstr(&blocks, 2));
    EXPECT_EQ(document.getSystem(2)->getBlockSize(), 4);

    std::vector<std::int16_t> marks(3 * 1024);
    EXPECT_EQ(document.getNbrChannel(marks.data()), 2);
    EXPECT_EQ(marks[1], 1);
    EXPECT_EQ(marks[2], 0);
    EXPECT_EQ(marks[1024], 0);
    EXPECT_EQ(marks[2050], 1);
    EXPECT_EQ(marks[2051], 0);
    std::vector<float> frequencies(5 + 3 * 1024);
    EXPECT_EQ(document.getTrackFreq(frequencies.data()), 2);
    EXPECT_EQ(frequencies[1], 101);
    EXPECT_EQ(frequencies[2 + 1024 + 1024], 200);
    EXPECT_EQ(frequencies[2 + 1024], 0);
    for (const std::int32_t system : {0, 2})
        for (const auto& [key, track] : document.getRecord(static_cast<std::uint16_t>(system))->tracks())
            (void)track->updateLOCA(10 * system + key, 0, 20 * system + key, 30 * system + key);
    std::int32_t first[5], size[5], offset[5], factor[5] = {7, 7, 7, 7, 7};
    (void)document.getTrackBlockFirst(first);
    (void)document.getTrackBlockSize(size);
    (void)document.getTrackFirstOffset(offset);
    (void)document.getTrackFormat(nullptr, nullptr, nullptr, factor);
    EXPECT_THAT(first, ElementsAre(0, 1, 20, 21, 22)) << "without gaps";
    EXPECT_EQ(size[4], 42);
    EXPECT_EQ(offset[4], 62);
    EXPECT_EQ(factor[4], 0);
    float units[5][5];
    (void)document.getYUniData(units[0], units[1], units[2], units[3], units[4]);
    EXPECT_EQ(units[0][4], 1);
    EXPECT_EQ(units[3][4], 1);
    EXPECT_EQ(units[4][4], 0);
}

TEST_F(Branches, RecordingsAreDatedAnew)
{
    CZMXFFile document(true, false);
    const OSYSTEMTIME date{2026, 7, 0, 1, 12, 0, 0, 0};
    EXPECT_FALSE(document.ChangeRecordDateAndSave(date));
    (void)document.SetRecord(NewRecord(1, 1), 0);
    document.setFilename(kPath);
    strEnregHeader header = document.getRecord(0)->getRecordHeaderstr();
    header.RecordDate = {2026, 7, 0, 1, 11, 0, 0, 0};
    header.ReferenceTime = OFileTime::fromOFILETIME(5).toFILETIME();
    document.getRecord(0)->setRecordHeaderstr(&header);
    EXPECT_TRUE(document.ChangeRecordDateAndSave(date));
    EXPECT_TRUE(disk.Holds(kPath));
    EXPECT_EQ(document.getRecord(0)->getReferenceTime(), 5 + 36000000000U);
    EXPECT_FALSE(document.ChangeRecordDateAndSave({2026, 2, 0, 30, 0, 0, 0, 0}));
    EXPECT_EQ(document.getRecord(0)->getRecordHeaderstr().RecordDate, date);
}

} // namespace ZelmResult
