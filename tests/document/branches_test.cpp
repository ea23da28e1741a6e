// Recordings, settings and transducers in documents.

#include "tests/document/samples.h"
#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using idn::Idn;
using ::testing::ElementsAre;

constexpr std::uint32_t kBranches = FileType::kRecording | FileType::kSettings | FileType::kTracks;
const wstring kPath = u"document.zmxf";

template <class Setting>
Setting* New(std::uint32_t module, std::uint32_t submodule, std::uint32_t setting, std::uint32_t instance = 1)
{
    auto* made = new Setting;
    made->info().SetIDN(
        {idn::Analyzer(0), idn::Module(module, 1), idn::Submodule(submodule, instance), idn::Setting(setting)});
    return made;
}

CChaineData* NewText(std::uint32_t module, std::uint32_t submodule, std::uint32_t setting, const wstring& value,
                     std::uint32_t instance = 1)
{
    auto* text = New<CChaineData>(module, submodule, setting, instance);
    text->setValue(value);
    return text;
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

CITrack* NewITrack(const wstring& id)
{
    auto* track = new CITrack;
    track->setId(id);
    return track;
}

class Branches : public ::testing::Test {
protected:
    std::unique_ptr<CZMXFFile> Load(const std::vector<char>& bytes, bool good = true,
                                    ZMXFFileLoadScope scope = ZMXFFileLoadScope::all())
    {
        disk[kPath] = bytes;
        auto document = std::make_unique<CZMXFFile>(true, false);
        EXPECT_EQ(document->Load(kPath.c_str(), scope), good);
        document->NeedToRemoveEverything(true);
        return document;
    }
    std::unique_ptr<CZMXFFile> Load(const Bytes& file, bool good = true,
                                    ZMXFFileLoadScope scope = ZMXFFileLoadScope::all())
    {
        return Load(file.data(), good, scope);
    }

    MemoryDisk disk;
    UseBackend use{disk};
};

Bytes OneSystem(std::uint32_t type, const Bytes& branches)
{
    return fileOf(head(1, type).append(units({})).append(system("0", branches)).append(hardware()));
}
Bytes Transducers()
{
    return Bytes{}.list("TRAN", Bytes{}.versionChunk(0x100).chunk(
                                    "ITRA", Bytes{}.u16(0x100).text(u"i").text(u"").text(u"").text(u"").text(u"")));
}
Bytes Version(std::uint32_t major, std::uint32_t minor) { return Bytes{}.u32(major).u32(minor).text(u""); }
Bytes Settings(std::uint32_t major = 0, std::uint32_t minor = 0)
{
    return Bytes{}.list("CONF", Bytes{}.versionChunk(1025).chunk("CFVR", Version(major, minor)));
}

} // namespace

TEST_F(Branches, OfOneSystemComeBackFromDocumentsOfSeveral)
{
    CZMXFFile document(true, false);
    CGrandeur* quantity = NewQuantity(u"q");
    document.AjouteGrandeur(quantity, OwnershipOwned);
    EXPECT_FALSE(document.SetRecord(nullptr, 1)) << "a system past the next isn't made";
    EXPECT_TRUE(document.SetRecord(NewRecord(2, 100, quantity), 0));
    EXPECT_TRUE(document.AddReglage(NewText(3, 7, 1, u"v"), 1));
    EXPECT_TRUE(document.SetITrack(NewITrack(u"i"), 2) && document.SetITrack(NewITrack(u"j"), 2));
    EXPECT_TRUE(document.SetConfig(nullptr, 99));
    EXPECT_EQ(document.getNbrSys(), 4);
    document.UpdateFileHeader();
    EXPECT_EQ(document.fileHeader().GetType(), kBranches | FileType::kQuantities);

    const auto bytes = SavedBytes(document);
    const auto loaded = Load(bytes);
    EXPECT_EQ(loaded->getRecord(0)->getTrackCount(), 2);
    EXPECT_EQ(loaded->getTrackData(1)->YMagnitude, loaded->GetGrandeur(u"q"));
    EXPECT_TRUE(loaded->getRecord(1) != nullptr && loaded->getRecord(1)->getTrackCount() == 0);
    EXPECT_EQ(loaded->getSystem(0)->GetRecordDuration(), 2.5);
    EXPECT_EQ(loaded->getSystem(0)->getNbrChannel(), 1);
    EXPECT_TRUE(loaded->getSystem(0)->IsConvertedSignal() && !CSysteme().IsConvertedSignal());
    const Idn idn(idn::Analyzer(0), idn::Module(3, 1), idn::Submodule(7, 1), idn::Setting(1));
    EXPECT_TRUE(loaded->GetReglage(idn) == nullptr && loaded->GetReglageBySystem(idn, 1) != nullptr);
    EXPECT_EQ(loaded->GetReglageByChannel(idn, 1500), loaded->GetReglageBySystem(idn, 1));
    EXPECT_TRUE(loaded->GetReglageByChannel(idn, -1) == nullptr && loaded->GetReglageBySystem(idn, 9) == nullptr);
    EXPECT_TRUE(loaded->getSystem(2)->getNbrTransducer() == 2 && loaded->getSystem(2)->iTracks()[1]->id() == u"j");
    const auto again = SavedBytes(*loaded); // with the empty recordings that a load makes
    EXPECT_TRUE(SavedBytes(*Load(again)) == again);
    disk[kPath] = bytes;

    CConfigData config;
    CZMXFFile reader(true, false);
    EXPECT_TRUE(reader.GetConfig(kPath.c_str(), config, 1) && config.GetReglage(idn) != nullptr);
    EXPECT_FALSE(reader.GetConfig(kPath.c_str(), config, 4) || reader.GetConfig(kPath.c_str(), config, 17));
    EXPECT_EQ(reader.GetReglage(kPath.c_str(), idn), nullptr) << "only system 0 is asked";
}

TEST_F(Branches, SettingsAreReadFromSystem0WithoutALoad)
{
    CZMXFFile document(true, false);
    (void)document.AddReglage(NewText(3, 7, 1, u"v"), 0);
    const auto bytes = SavedBytes(document);
    disk[kPath] = bytes;
    const Idn idn = document.getSystem(0)->getPConfig()->modules()[0]->submodules()[0]->settings()[0]->GetIdn();
    const auto setting = document.GetReglage(kPath.c_str(), idn);
    ASSERT_NE(setting, nullptr);
    EXPECT_EQ(dynamic_cast<CChaineData&>(*setting).value(), u"v");
    EXPECT_EQ(document.GetReglage(u"elsewhere", idn), nullptr);
    EXPECT_EQ(Messages(document), std::vector<std::string>());
}

TEST_F(Branches, HaveToBeThereWhenTheTypeWordSaysSo)
{
    using namespace FileType;
    const Bytes record = Bytes{}.list("RCRD", Bytes{}.versionChunk(0x100));
    const Bytes broken = Bytes{}.list("RCRD", Bytes{}.list("T000", Bytes{}.versionChunk(1)));
    const Bytes bare512 = Bytes{}.list("CONF", Bytes{}.versionChunk(512)).append(Version(5, 6));
    const Bytes broken512 =
        Bytes{}.list("CONF", Bytes{}.versionChunk(512).chunk("IDNU", Bytes{}.idn(3, 0, 0))).append(Version(5, 6));
    const auto noconfig = ZMXFFileLoadScope::noconfig();
    const struct {
        std::uint32_t type;
        Bytes branches;
        bool all;
        bool withoutConfig;
        int transducers;
    } rows[] = {
        {kRecording, record, true, true, 0},
        {kRecording, {}, false, false, 0},
        {kRecording, broken, false, false, 0},
        {kSettings, Settings(), true, true, 0},
        {kSettings, {}, false, false, 0},
        {kSettings, Bytes{}.list("CONF", {}), true, true, 0}, // the tree's own failures are none of the load
        {kTracks, Transducers(), true, true, 1},
        {kTracks, Bytes{}.list("TRAN", Bytes{}), true, true, 0}, // without its version
        {kTracks, {}, false, false, 0},
        {kSettings | kTracks, Settings(1, 2), false, true, 0},
        {kSettings | kTracks, Settings(1, 1), true, true, 0}, // which held none
        {kSettings | kTracks, Settings().append(Transducers()), true, true, 1},
        {kSettings | kTracks, Bytes(bare512).append(Transducers()), true, true, 1},
        {kSettings | kTracks, Bytes(broken512).append(Transducers()), true, true, 1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const Bytes file = OneSystem(row.type, row.branches);
        const auto document = Load(file, row.all);
        if (row.all && document->getNbrSys() == 1) {
            EXPECT_EQ(document->getSystem(0)->getNbrTransducer(), row.transducers);
        }
        const auto without = Load(file, row.withoutConfig, noconfig);
        if (row.withoutConfig && without->getNbrSys() == 1 && (row.type & kSettings) != 0) {
            EXPECT_TRUE(without->getSystem(0)->getPConfig()->modules().empty());
            EXPECT_EQ(without->getSystem(0)->getNbrTransducer(), row.transducers);
        }
    }
}

TEST_F(Branches, CaptionsBeginWithTheSettingOnce)
{
    CZMXFFile document(true, false);
    document.AjouteResultat(NewHeader(9), NewScalar(9, 1), 0, false);
    document.NeedToRemoveEverything(true);
    CResultHeader& header = *document.getSystem(0)->getMapResult().begin()->first;
    header.setAnalyzerCaption(u"the analyzer");
    (void)document.AddReglage(NewText(300, 901, 1, u"analyzer"), 0);
    (void)SavedBytes(document);
    EXPECT_EQ(header.analyzerCaption(), u"analyzer: the analyzer") << "it stood later";
    (void)SavedBytes(document);
    EXPECT_EQ(header.analyzerCaption(), u"analyzer: the analyzer");
    (void)document.AddReglage(New<CBooleenData>(300, 901, 1), 0); // no text
    (void)SavedBytes(document);
    EXPECT_EQ(header.analyzerCaption(), u"analyzer: the analyzer");
}

TEST_F(Branches, FrequenciesOfGroupsComeFromUsedInputs)
{
    CSysteme system;
    float out[4] = {9, 9, 9, 9};
    system.GetFrequencyUsed(out);
    EXPECT_THAT(out, ElementsAre(0, 0, 0, 0));
    const auto input = [&](std::uint32_t instance, const wstring& group, float frequency, bool used) {
        auto* flag = New<CBooleenData>(3, 365, 2, instance);
        flag->setValue(used);
        auto* scalar = New<CScalaireData>(3, 365, 11, instance);
        scalar->setValue(frequency);
        system.AddReglage(flag);
        system.AddReglage(NewText(3, 365, 14, group, instance));
        system.AddReglage(scalar);
    };
    input(1, u"slow", 1, true);
    input(3, u"slow", 3, true);
    input(2, u"slow", 2, true);
    input(4, u"fast", 4, false);
    input(5, u"fast2", 5, true);
    input(6, u"fs1", 6, true);
    system.AddReglage(New<CBooleenData>(3, 365, 11, 6)); // in the place of the number
    system.GetFrequencyUsed(out);
    EXPECT_THAT(out, ElementsAre(0, 0, 3, 0)) << "the later one of a group";
}

TEST_F(Branches, ChannelsGoAcrossSystems)
{
    CZMXFFile document(true, false);
    EXPECT_EQ(document.getSampleFrequency(), 0.0);
    (void)document.SetRecord(NewRecord(2, 100), 0);
    (void)document.SetConfig(nullptr, 1); // a system without a recording
    (void)document.SetRecord(NewRecord(3, 200), 2);
    EXPECT_EQ(document.getNbrChannel(), 1 - 1 + 2);
    EXPECT_EQ(document.getTrackData(2 * 1024 + 2)->SampleFrequency, 202);
    EXPECT_TRUE(document.getTrackData(2) == nullptr && document.getTrackData(1024) == nullptr &&
                document.getTrackData(-1) == nullptr);
    EXPECT_EQ(document.getNbrRecord(), 1);

    std::vector<std::int16_t> marks(3 * 1024);
    EXPECT_EQ(document.getNbrChannel(marks.data()), 2);
    EXPECT_TRUE(marks[1] == 1 && marks[2] == 0 && marks[1024] == 0 && marks[2050] == 1 && marks[2051] == 0);
    std::vector<float> frequencies(5 + 3 * 1024);
    EXPECT_EQ(document.getTrackFreq(frequencies.data()), 2);
    EXPECT_TRUE(frequencies[1] == 101 && frequencies[2 + 1024 + 1024] == 200 && frequencies[2 + 1024] == 0);
    for (const std::int32_t system : {0, 2})
        for (const auto& [key, track] : document.getRecord(static_cast<std::uint16_t>(system))->tracks())
            (void)track->updateLOCA(10 * system + key, 0, 20 * system + key, 30 * system + key);
    std::int32_t values[5];
    (void)document.getTrackBlockFirst(values);
    EXPECT_THAT(values, ElementsAre(0, 1, 20, 21, 22)) << "without gaps";
    (void)document.getTrackBlockSize(values);
    EXPECT_EQ(values[4], 42);
    (void)document.getTrackFirstOffset(values);
    EXPECT_EQ(values[4], 62);
    std::int32_t factors[5];
    (void)document.getTrackFormat(nullptr, nullptr, nullptr, factors);
    float sensitivity[5], volt[5], offset[5], a[5], b[5];
    (void)document.getYUniData(sensitivity, volt, offset, a, b);
    EXPECT_TRUE(factors[4] == 0 && sensitivity[4] == 1 && a[4] == 1 && b[4] == 0);
}

TEST_F(Branches, RecordingsAreDatedAnew)
{
    CZMXFFile document(true, false);
    const SYSTEMTIME date{2026, 7, 0, 1, 12, 0, 0, 0};
    EXPECT_FALSE(document.ChangeRecordDateAndSave(date));
    (void)document.SetRecord(NewRecord(1, 1), 0);
    document.setFilename(kPath);
    strEnregHeader header = document.getRecord(0)->getRecordHeaderstr();
    header.RecordDate = {2026, 7, 0, 1, 11, 0, 0, 0};
    header.ReferenceTime = OFileTime::fromOFILETIME(5).toFILETIME();
    document.getRecord(0)->setRecordHeaderstr(&header);
    EXPECT_TRUE(document.ChangeRecordDateAndSave(date));
    EXPECT_EQ(document.getRecord(0)->getReferenceTime(), 5 + 36000000000U);
    EXPECT_TRUE(disk.Holds(kPath));
    EXPECT_FALSE(document.ChangeRecordDateAndSave({2026, 2, 0, 30, 0, 0, 0, 0}));
    EXPECT_EQ(document.getRecord(0)->getRecordHeaderstr().RecordDate, date);
}

} // namespace ZelmResult
