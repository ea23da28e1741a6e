#include "zelmresult/reading/document_reader.h"

#include "tests/builders/reader_check.h"
#include "tests/builders/samples.h"
#include "tests/builders/waterfall_samples.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cstring>
#include <functional>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using Kind = ReadError::Kind;

// What a document that owns what it holds is stored as.
std::vector<char> Stored(const std::function<void(CZMXFFile&)>& fill)
{
    CZMXFFile document(true, false);
    fill(document);
    document.NeedToRemoveEverything(true);
    return SavedBytes(document);
}

std::vector<char> TiedWaterfalls(std::uint16_t systems)
{
    return Stored([&](CZMXFFile& document) {
        for (std::uint16_t i = 0; i < systems; ++i) {
            (void)document.AddSysteme(new CSysteme);
            (void)AddTiedWaterfall(document, i);
        }
    });
}

// The golden document of branches, with a track that uses a quantity.
std::unique_ptr<CZMXFFile> Branches()
{
    auto document = std::make_unique<CZMXFFile>(true, false);
    const auto bytes = DataFile("whole_branches.zmxf");
    EXPECT_TRUE(document->LoadFromMemory(bytes, ZMXFFileLoadScope::all()));
    document->NeedToRemoveEverything(true);
    CZMTrackDesc* track = document->getRecord(0)->getTrackDesc(0);
    track->YMagnitude = document->GetGrandeur(u"pressure");
    track->SetHasChunk(TrackChunk::Yuni, true);
    return document;
}

class Reader : public ::testing::Test {
protected:
    DocumentReader Open(const std::vector<char>& bytes)
    {
        disk[kPath] = bytes;
        auto opened = DocumentReader::Open(kPath);
        EXPECT_TRUE(opened) << ToUtf8(opened.error().Text());
        return *std::move(opened);
    }
    // What a call of ReadResult costs at the device.
    std::size_t ReadsOf(DocumentReader& reader, std::size_t number)
    {
        disk.counts() = {};
        EXPECT_TRUE(reader.ReadResult(number));
        return disk.counts().reads;
    }

    const wstring kPath = u"document.zmxf";
    MemoryDisk disk;
    UseBackend use{disk};
};

} // namespace

TEST_F(Reader, GivesWhatALoadGives)
{
    const Bytes hidden =
        results(resultHeader(0, 9, {.opere = 2}).append(result(1, 9)).append(resultData(0, scalarBytes(9, 1))));
    for (const auto& bytes :
         {DataFile("whole.zmxf"), DataFile("whole_branches.zmxf"), DataFile("whole_lxf.zmxf"), TiedWaterfalls(17),
          fileOf(head(3, 4).append(system("0", hidden)).append(hardware())).data()}) {
        disk[kPath] = bytes;
        EXPECT_EQ(DifferenceFromLoad(kPath), "");
    }
    const auto whole = DataFile("whole_references.zmxf");
    for (std::size_t place = 0; place + 4 <= whole.size() && !HasFailure(); ++place) {
        SCOPED_TRACE(place);
        disk[kPath].assign(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(place));
        EXPECT_EQ(DifferenceFromLoad(kPath), "");
        for (const std::uint32_t word : {0U, 0x7FFFFFFFU}) {
            disk[kPath] = whole;
            std::memcpy(disk[kPath].data() + place, &word, sizeof word);
            EXPECT_EQ(DifferenceFromLoad(kPath), "");
        }
    }
}

TEST_F(Reader, WhatItGaveOutlivesIt)
{
    std::vector<StoredResult> results;
    Listing<StoredQuantity> quantities;
    {
        DocumentReader first = Open(TiedWaterfalls(2));
        DocumentReader reader = std::move(first);
        for (std::size_t i = 0; i < reader.Results().items.size(); ++i) results.push_back(*reader.ReadResult(i));
        quantities = reader.Quantities();
    }
    ASSERT_EQ(results.size(), 6U);
    StoredResult waterfall = std::move(results[5]);
    results[4] = std::move(results[1]);
    EXPECT_EQ(waterfall.system(), 1);
    EXPECT_EQ(waterfall.header().responseName(), u"Microphone");
    ASSERT_NE(waterfall.references(), nullptr);
    EXPECT_EQ(waterfall.references()->GetCount(), 2);
    const CReferencedAxis* axis = waterfall.result().GetReferencedAxis();
    ASSERT_NE(axis->GetChosenReference(), nullptr);
    EXPECT_EQ(axis->GetChosenReference()->name(), u"Speed");
    EXPECT_EQ(axis->GetChosenReference()->GetMagnitude(), quantities.items[0].quantity.get());
    EXPECT_EQ(results[4].result().GetMagnitude(), quantities.items[0].quantity.get());
    EXPECT_EQ(results[4].result().GetFilled(), 4);
    EXPECT_FLOAT_EQ(quantities.items[0].quantity->LinTodB(20 * 2.0F), 26.0206F) << "the unit's reference is 2";
}

TEST_F(Reader, GoesStraightToWhatItListed)
{
    constexpr int count = 500;
    const auto bytes = Stored([&](CZMXFFile& document) {
        for (int i = 0; i < count; ++i)
            document.AjouteResultat(NewHeader(9), NewScalar(9, static_cast<float>(i)), 0, true);
    });
    ASSERT_GT(bytes.size(), 2U * 65536) << "more than what one window holds";
    for (const auto search : {CMmioRiff::Search::Indexed, CMmioRiff::Search::Plain}) {
        const UseBackend backend(disk.backend(search));
        DocumentReader reader = Open(bytes);
        EXPECT_LE(disk.counts().reads, 2U) << "opening reads the head";
        EXPECT_EQ(reader.Results().items.size(), std::size_t{count});
        EXPECT_LE(disk.counts().bytesRead, static_cast<std::int64_t>(bytes.size() + 3 * 65536)) << "one walk";
        (void)reader.Quantities();
        EXPECT_EQ(ReadsOf(reader, count - 1), 1U);
        EXPECT_EQ(ReadsOf(reader, 0), 1U);
        EXPECT_EQ(reader.ReadResult(7)->result().GetValue(), 7.0F);
    }
}

TEST_F(Reader, EachCallHasTheBoundsForItself)
{
    DocumentReader reader = Open(Stored([](CZMXFFile& document) {
        auto* spectrum = new CRegVector(2, 250000, 0, SignalType::Real, 0, true);
        document.AjouteResultat(NewHeader(2), spectrum, 0, false);
    }));
    for (int i = 0; i < 100; ++i) ASSERT_TRUE(reader.ReadResult(0)) << "of 80 MB, after " << i << " MB";
}

TEST_F(Reader, SaysWhatIsWrongAndWhere)
{
    const auto text = [](const ReadError& error) { return ToUtf8(error.Text()); };
    // Of reading the first result of a document with these chunks in its list of results.
    const auto reason = [&](const Bytes& inResults) {
        DocumentReader reader = Open(
            fileOf(head(1, 4).append(units({quantityBytes(u"p")})).append(system("0", results(inResults)))).data());
        return text(reader.ReadResult(0).error());
    };
    EXPECT_EQ(DocumentReader::Open(u"none").error().kind, Kind::NotOpened);
    disk[kPath] = Bytes{}.riff("WAVE", {}).data();
    EXPECT_EQ(text(DocumentReader::Open(kPath).error()),
              "document.zmxf is no result document, at byte 0: expected the form \"ZMXF\"");
    EXPECT_EQ(reason({}), "result 0 is not in the document: expected a number below 0");
    EXPECT_EQ(reason(result(0, 5000)),
              "result 0 (process type 5000) is of a kind that has no class, at byte 210 in the chunk \"INFO\"");
    EXPECT_EQ(reason(resultHeader(0, 9)),
              "the data of result 0 cannot be read, at byte 210 in the chunk \"INFO\": expected the chunk \"0   \"");
    EXPECT_EQ(reason(result(0, 9, "0007")),
              "the data of result 0 cannot be read, at byte 50 in the chunk \"UNIT\": expected the chunk \"0007\"");
    const Bytes huge = Bytes{}.u16(3).u16(1).u16(5).code(kNoQuantity).u32(2).u32(0).u32(2).i32(0x7000000).zeros(400);
    EXPECT_EQ(reason(resultHeader(0, 2).append(resultData(0, huge))),
              "the data of result 0 cannot be read, at byte 598 in the chunk \"0   \": expected no more than the bytes "
              "that the file still holds");
}

TEST_F(Reader, GivesTheRestOfWhatIsDamaged)
{
    const auto whole = DataFile("whole.zmxf");
    DocumentReader cut = Open({whole.begin(), whole.end() - 100});
    ASSERT_TRUE(cut.CutOff());
    EXPECT_EQ(cut.CutOff()->offset, static_cast<std::int64_t>(whole.size()) - 100);
    EXPECT_EQ(cut.Results().items.size(), 3U);
    EXPECT_FALSE(Open(whole).CutOff());

    DocumentReader fewer = Open(fileOf(head(2, 4).append(system("0", results(result(0, 9))))).data());
    EXPECT_EQ(fewer.Results().items.size(), 1U);
    EXPECT_EQ(fewer.Results().damage->expected, u"2 systems");

    auto bytes = TiedWaterfalls(1);
    const std::string code = "V000";
    const auto reference = std::search(bytes.begin(), bytes.end(), code.begin(), code.end());
    ASSERT_NE(reference, bytes.end());
    reference[7] = '\xFF'; // its size
    DocumentReader reader = Open(bytes);
    const auto waterfall = reader.ReadResult(2);
    ASSERT_TRUE(waterfall);
    EXPECT_EQ(waterfall->result().GetFilled(), 4);
    EXPECT_EQ(waterfall->references(), nullptr);
    ASSERT_TRUE(waterfall->lostReferences());
    EXPECT_EQ(waterfall->lostReferences()->chunk, CodeOf(code));
}

TEST_F(Reader, ReadsTheOtherBranches)
{
    std::vector<StoredSettings> settings;
    std::vector<StoredRecording> recordings;
    {
        const auto bytes = SavedBytes(*Branches());
        auto opened = DocumentReader::OpenBytes(bytes);
        settings = opened->ReadSettings();
        recordings = opened->ReadRecordings();
    }
    ASSERT_EQ(settings.size(), 3U);
    EXPECT_EQ(settings[0].tree->modules().size(), 1U);
    EXPECT_FALSE(settings[0].damage);
    ASSERT_EQ(recordings.size(), 3U);
    ASSERT_NE(recordings[0].record(), nullptr);
    EXPECT_EQ(recordings[0].record()->tracks().at(0)->YMagnitude->quantityName(), u"pressure");
    EXPECT_EQ(recordings[0].transducers().size(), 2U);
    EXPECT_FALSE(recordings[0].damage());

    const Bytes remarks = Bytes{}.chunk("cmts", Bytes{}.text(u"one")).chunk("cmts", Bytes{}.text(u"two"));
    DocumentReader reader = Open(fileOf(head(0, 0).append(remarks).append(hardware({u"a", u"b", u"c", u"d"}))).data());
    EXPECT_EQ(reader.ReadComments().items, (std::vector<wstring>{u"one", u"two"}));
    EXPECT_EQ(reader.ReadHardware().items, (std::vector<strHardInfo>{{"a", "b", "c", "d"}}));
    EXPECT_EQ(reader.version(), 0x200);
    EXPECT_TRUE(reader.Results().items.empty());
}

} // namespace ZelmResult
