// The records of a recording by their bytes, and recordings as wholes.

#include "tests/builders/platform.h"
#include "tests/builders/record_check.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/zelmresult.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// The data of "HREC" with a value of its own in every field.
Bytes HeaderBytes(std::uint16_t version, std::uint16_t hour = 12, std::int64_t reference = 0x0102030405060708)
{
    Bytes bytes = Bytes{}.u16(version);
    if (version < 0x100) return bytes;
    bytes.i32(1).raw({"\0\0\0\0\0\0\xF8\x3F", 8}, "SampleFrequency").i32(3).i32(4);
    bytes.u16(2026).u16(7).u16(3).u16(1).u16(hour).u16(30).u16(0).u16(250); // date, with the day of the week
    bytes.i64(-50000000).i32(6).i32(7).i32(8).text(u"n");
    if (version >= 0x200) bytes.flag(true);
    if (version >= 0x300) bytes.i64(reference);
    if (version >= 0x400) bytes.i32(9);
    return bytes;
}

CRecordHeader HeaderFrom(const Bytes& stored)
{
    CRecordHeader header(false);
    readInto(header, stored);
    return header;
}

Bytes Info(std::uint16_t version = 0x101)
{
    Bytes bytes =
        Bytes{}.u16(version).idn(1, 2, 3).i32(1).i32(2).i32(3).i32(4).i32(5).i32(6).f32(7).text(u"n").text(u"c");
    return version > 0x100 ? bytes.idn(4, 5, 6).idn(7, 8, 9).text(u"t") : bytes;
}
Bytes Location(std::uint16_t version = 0x200)
{
    Bytes bytes = Bytes{}.u16(version).i32(10).i32(11).i32(12).i32(13);
    return version > 0x100 ? bytes.i32(14) : bytes;
}
Bytes Overload(float min = -2, float max = 1.5F) { return Bytes{}.u16(0x100).flag(true).f32(min).f32(max); }
Bytes XUnit() { return Bytes{}.u16(0x100).code("9999").f32s({15, 16, 17, 18}); }
Bytes YUnit(float scale = 1e-8F) { return Bytes{}.u16(0x100).code("9999").f32s({scale, 20, 1, 22, 23}); }
Bytes VUnit() { return Bytes{}.u16(0x100).code("9999").i32(24).f32s({25, 26, 27, 28}); }
Bytes Links()
{
    const Bytes two = Bytes{}.u16(0x100).u16(2).idn(1, 2, 3).idn(4, 5, 6);
    return Bytes{}.versionChunk(0x100).chunk("LIDN", two).chunk("LIDN", Bytes{}.u16(0x100).u16(0));
}
Bytes Correction(std::uint16_t format = 6)
{
    Bytes bytes = Bytes{}.u16(0x100).u16(format).f32(29).f32(30).i32(2).f32s({31, 32});
    return format == 6 ? bytes : bytes.f32s({33, 34});
}
Bytes WholeTrack()
{
    Bytes track = Bytes{}.versionChunk(0x100).chunk("INFO", Info()).chunk("LOCA", Location());
    track.chunk("OVLD", Overload()).chunk("XUNI", XUnit()).chunk("YUNI", YUnit()).chunk("VUNI", VUnit());
    return track.list("LINK", Links()).chunk("CORR", Correction());
}

// A track that is read from its list.
struct ReadTrack {
    CZMTrackDesc track;
    bool good = false;

    explicit ReadTrack(const Bytes& children, bool normalisation = false)
    {
        good = readFrom(Bytes{}.list("T000", children).data(), [&](CMmioFile& file) {
            OMMCKINFO list;
            return file.EnterChunkTrackDesc(list, 0) && track.Load(&file, true, normalisation);
        });
    }
};

Bytes Disk()
{
    Bytes disk = Bytes{}.versionChunk(0x100).chunk("IDSK", Bytes{}.u16(0x200).u16(1).u16(2).u16(3).u16(4));
    return disk.chunk("I000", Bytes{}.u16(0x100).u32(5).u32(6)).chunk("I001", Bytes{}.u16(0x100).u32(7).u32(8));
}

bool LoadRecord(CRecord& record, const Bytes& children)
{
    return readFrom(Bytes{}.list("RCRD", children).data(), [&](CMmioFile& file) {
        OMMCKINFO list;
        return file.EnterChunkListSansParent(list, FourCC("RCRD")) && record.Load(&file, true, false);
    });
}

} // namespace

TEST(RecordHeader, IsStoredByteForByteAndReadAtEachVersion)
{
    const CRecordHeader header = HeaderFrom(HeaderBytes(0x401));
    EXPECT_EQ(header.getSampleFrequency(), 1.5);
    EXPECT_EQ(header.getReferenceTime(), 0x0102030405060708U);
    expectBytes(written(header), Bytes{}.chunk("HREC", HeaderBytes(0x401)));
    EXPECT_THAT(dumpOf(header),
                HasSubstr("------Time divider : 1 , Sample frequency : 1.500000 , Block size : 3 , Nb "
                          "track : 4, Nb Compressed track : 9\n------Recode length  : -5.000000 , Record "
                          "number : 6 ,, Marker number : 7 Disk number : 8 , Name : n\n"));
    for (const std::uint16_t version : std::initializer_list<std::uint16_t>{0x100, 0x1FF, 0x200, 0x300, 0x400, 0x401}) {
        const CRecordHeader read = HeaderFrom(HeaderBytes(version));
        EXPECT_EQ(read.getNbrChannelComp(), version >= 0x400 ? 9 : 0) << version;
        EXPECT_EQ(read.getReferenceTime() != 0, version >= 0x300) << version;
        EXPECT_EQ(read.IsConvertedSignal(), version >= 0x200) << version;
    }
    EXPECT_EQ(HeaderFrom(HeaderBytes(0xFF)).getRecordHeaderStr(), strEnregHeader());
}

// Before 0x401 the date, and before 0x301 the reference time, are local times of the machine that reads them.
TEST(RecordHeader, LocalTimesBecomeUTC)
{
    const Variable zone("TZ", "Asia/Kolkata");
    constexpr std::int64_t moment = 134000000000001234; // with ticks below a millisecond
    constexpr std::int64_t inUTC = (moment / 10000 - 19800000) * 10000;
    for (const std::uint16_t version : std::initializer_list<std::uint16_t>{0x100, 0x300, 0x301, 0x400, 0x401}) {
        const CRecordHeader read = HeaderFrom(HeaderBytes(version, 3, moment));
        const OSYSTEMTIME& date = read.getRecordHeaderStr().RecordDate;
        EXPECT_EQ(date.wDay * 24 + date.wHour, version < 0x401 ? 30 * 24 + 22 : 24 + 3) << version;
        EXPECT_EQ(date.wMinute, version < 0x401 ? 0 : 30);
        const std::int64_t stored = version < 0x301 ? inUTC : moment;
        EXPECT_EQ(read.getReferenceTime(), static_cast<std::uint64_t>(version < 0x300 ? 0 : stored)) << version;
    }
    constexpr std::int64_t later = 138765432100000000; // in 2040, past what 32 bits of seconds count
    EXPECT_EQ(HeaderFrom(HeaderBytes(0x300, 3, later)).getReferenceTime(), std::uint64_t{later - 198000000000});
}

TEST(RecordInfo, IsStoredByteForByte)
{
    CRecordInfo info;
    const auto read = [&](const Bytes& children) {
        return readFrom(Bytes{}.list("DSK0", children).data(), [&](CMmioFile& file) {
            OMMCKINFO list;
            return file.EnterChunkRecInfo(list, 0) && info.Load(&file);
        });
    };
    const auto counts = [](const CFileInfo& of) {
        strFileInfo data;
        EXPECT_EQ(of.getData(&data), 0);
        return data;
    };
    EXPECT_EQ(info.GetNbOfDescriptors(), 0U);
    ASSERT_TRUE(read(Disk()));
    EXPECT_EQ(counts(info.getFileInfo()), (strFileInfo{1, 4, 2, 3}));
    EXPECT_EQ(info.fileBlockInfos().size(), 2U);
    EXPECT_EQ(info.GetNbOfDescriptors(), 6U);
    expectBytes(written([&](CMmioFile& file) { return info.Save(&file, 10); }), Bytes{}.list("DSKA", Disk()));
    EXPECT_THAT(dumpOf([&](CMmioFile& file) { return info.Save(&file, 0); }),
                HasSubstr("CFileInfo\n------------Number of tracks : 1 , Number of compressed tracks : 4 , Number of "
                          "files : 2 , Disks number : 3 \n"));
    EXPECT_TRUE(info.updateFileBlocEndNbr(0, 99));
    EXPECT_EQ(info.GetNbOfDescriptors(), 99U);
    EXPECT_TRUE(read(Bytes{}.versionChunk(1).chunk("IDSK", Bytes{}.u16(0xFF)))) << "and holds no counts";
    EXPECT_FALSE(read(Bytes{}.chunk("IDSK", Bytes{}.u16(0x200)))) << "without a version";
    EXPECT_FALSE(read(Bytes{}.versionChunk(1))) << "without counts";
    CFileInfo former;
    readInto(former, Bytes{}.u16(0x100).u16(1).u16(2).u16(3));
    EXPECT_EQ(counts(former), (strFileInfo{1, 0, 2, 3}));
}

TEST(IdentifierLists, KeepTheFirst65535)
{
    std::vector<idn::Idn> list(70000, idn::Legacy(1, 2, 3).toIdn());
    const auto stored = written([&](CMmioFile& file) { return CLIDN::mmioSaveCLIDN(&file, list); });
    EXPECT_EQ(stored.size(), 8 + 4 + 65535 * 6U);
    const auto read = [&](CMmioFile& file) { return CLIDN::mmioLoadCLIDN(&file, list); };
    EXPECT_TRUE(readFrom({stored.begin() + 8, stored.end()}, read));
    EXPECT_EQ(list.size(), 65535U);
    EXPECT_FALSE(readFrom(Bytes{}.u16(0x100).u16(2).idn(1, 2, 3).data(), read));
}

// Older chunks hold less, a HARD is lost in a save, and only the first two chunks have a place of their own.
TEST(Track, IsReadInItsOtherForms)
{
    const Bytes info = Bytes{}.chunk("INFO", Info());
    const Bytes location = Bytes{}.chunk("LOCA", Location());
    Bytes stored = Bytes{}.chunk("HARD", Bytes{}.u16(1)).chunk("VUNI", VUnit()).versionChunk(0x100);
    stored.chunk("CORR", Correction(1)).chunk("INFO", Info(0x100)).chunk("XUNI", XUnit());
    const ReadTrack former(stored.chunk("LOCA", Location(0x100)));
    ASSERT_TRUE(former.good);
    EXPECT_TRUE(former.track.Idn2.isNull());
    EXPECT_EQ(former.track.Offset, 0);
    EXPECT_TRUE(former.track.HasChunk(TrackChunk::Hard));
    EXPECT_FALSE(former.track.HasChunk(TrackChunk::Ovld));
    EXPECT_EQ(former.track.VVal0, 28);
    EXPECT_EQ(former.track.CorrData[3], 34);
    const Bytes middle = Bytes{}.chunk("LOCA", Location(0x101).i32(14));
    EXPECT_EQ(ReadTrack(Bytes{}.versionChunk(1).append(info).append(middle)).track.Offset, 14);
    const Bytes huge = Bytes{}.u16(0x100).u16(1).f32(0).f32(0).i32(0x7FFFFFFF);
    for (const Bytes& broken :
         {Bytes{}.versionChunk(1).append(location).append(info), Bytes{}.versionChunk(1).append(info),
          Bytes(info).append(location), Bytes{}.versionChunk(1).append(info).append(location).chunk("CORR", huge)})
        EXPECT_FALSE(ReadTrack(broken).good);
}

TEST(Track, ScalesAreTightenedToThePeak)
{
    const Bytes exempt = Bytes{}.u16(0x100).idn(1, 2, 3).i32(0x10002).zeros(24).text(u"").text(u"");
    const struct {
        Bytes overload;
        float scale = 1e-8F;
        bool normalisation = true;
        Bytes info = Info();
    } rows[] = {{Overload(-2, 1.5F), 2.0F / 2147483648.0F},
                {Overload(-30, 1.5F)}, // past full scale
                {Overload(2, 2)},
                {Overload(-2, 1.5F), 1e-8F, false},
                {{}},
                {Overload(-2, 1.5F), 1e-8F, true, exempt}};
    for (const auto& row : rows) {
        Bytes children =
            Bytes{}.versionChunk(1).chunk("INFO", row.info).chunk("LOCA", Location()).chunk("YUNI", YUnit());
        if (row.overload.size() > 0) children.chunk("OVLD", row.overload);
        const ReadTrack read(children, row.normalisation);
        EXPECT_TRUE(read.good) << &row - rows;
        EXPECT_EQ(read.track.ConvLogToVolt, row.scale) << &row - rows;
    }
}

TEST(Track, DataAreCopiedWithTheirTable)
{
    CZMTrackDesc track;
    strTrackDescData data;
    data.SizeCorr = 2;
    data.CorrFormat = 5;
    data.CorrData = new float[2]{1, 2};
    data.Name = u"n";
    (void)track.setData(&data);
    (void)track.setData(track.getTrackData());
    EXPECT_NE(track.CorrData, data.CorrData);
    EXPECT_EQ(track.CorrData[1], 2);
    EXPECT_EQ(track.Name, u"n");
    data.CorrData[1] = 7;
    (void)track.getData(&data);
    EXPECT_EQ(data.CorrData[1], 2);
    track.SizeCorr = 0;
    (void)track.getData(&data);
    EXPECT_EQ(data.CorrData, nullptr);

    CGrandeur pressure;
    CUnite unit;
    unit.SetCoeffA(3);
    unit.SetCoeffB(4);
    pressure.AjouteUniteDynamique(&unit);
    (void)pressure.SetUniteCourante(&unit);
    track.YOffset = 1;
    track.Sensitivity = 2;
    const std::int16_t second = 1;
    for (CGrandeur* quantity : {static_cast<CGrandeur*>(nullptr), &pressure}) {
        track.YMagnitude = quantity;
        float values[5][2] = {};
        (void)track.getYUniData(values[0], values[1], values[2], values[3], values[4], &second);
        EXPECT_EQ(values[0][1], 2);
        EXPECT_EQ(values[2][1], 0.5F);
        EXPECT_EQ(values[3][0], 0);
        EXPECT_EQ(values[3][1], quantity != nullptr ? 3 : 1);
        EXPECT_EQ(values[4][1], quantity != nullptr ? 4 : 0);
    }
    std::map<CGrandeur*, int> used;
    track.AddInvolvedGrandeur(used);
    EXPECT_EQ(used[&pressure], 1);
}

TEST(Recording, IsStoredByteForByte)
{
    Bytes children = Bytes{}.chunk("HREC", HeaderBytes(0x401)).list("DSK0", Disk()).list("DSK1", Disk());
    children.list("T000", WholeTrack()).list("T001", WholeTrack());
    CRecord record(false);
    ASSERT_TRUE(LoadRecord(record, Bytes{}.versionChunk(0x100).append(children)));
    expectBytes(written([&](CMmioFile& file) { return record.Save(&file); }), children);
    CRecord empty(true);
    EXPECT_TRUE(LoadRecord(empty, {})) << "without version and header";
    CRecord broken(false);
    EXPECT_FALSE(LoadRecord(broken, Bytes(children).list("T002", Bytes{}.versionChunk(1))));
    EXPECT_EQ(broken.getTrackCount(), 2) << "what was read stays";
}

// A recording with as many of each as a test wants, all of which a file can hold.
struct Recording {
    CRecord record{false};

    Recording(int disks, int tracks)
    {
        record.setNbrRecord(1);
        for (int n = 0; n < disks; ++n) record.AddRecordInfo(new CRecordInfo);
        for (int n = 0; n < tracks; ++n) {
            auto* track = new CZMTrackDesc;
            track->SetHasChunk(TrackChunk::Info, true);
            track->SetHasChunk(TrackChunk::Loca, true);
            record.AddTrackDesc(track, -1);
        }
    }
    [[nodiscard]] CZMTrackDesc& Track(std::int16_t n) const { return *record.getTrackDesc(n); }
};

// What isn't named is restored whole.
TEST(Recording, NamesWhatCantBeStored)
{
    Recording whole(17, 1000);
    auto* disk = whole.record.getFirstRecordInfo();
    for (int n = 0; n < 1000; ++n) disk->AddFileBlockInfo(new CFileBlockInfo);
    whole.Track(7).addLIDN(new std::vector<idn::Idn>(65535));
    whole.Track(7).SetHasChunk(TrackChunk::Link, true);
    EXPECT_TRUE(whole.record.Unstorable(true).empty());
    const auto stored = written([&](CMmioFile& file) { return whole.record.Save(&file); });
    CRecord again(false);
    EXPECT_TRUE(LoadRecord(again, Bytes{}.versionChunk(0x100).raw({stored.data(), stored.size()})));
    EXPECT_EQ(again.getTrackCount(), 1000);
    EXPECT_EQ(again.recordInfos().size(), 17U);
    EXPECT_EQ(again.getFirstRecordInfo()->fileBlockInfos().size(), 1000U);
    EXPECT_EQ(again.getTrackDesc(7)->linkLists().front()->size(), 65535U);

    disk->AddFileBlockInfo(new CFileBlockInfo);
    whole.Track(7).linkLists().front()->resize(65536);
    whole.Track(8).addLIDN(new std::vector<idn::Idn>);
    whole.Track(9).SetHasChunk(TrackChunk::Loca, false);
    EXPECT_THAT(whole.record.Unstorable(true),
                ElementsAre(u"Disk 0 of the recording has more than 1000 files: the rest is not saved",
                            u"A list of links of track 7 is longer than 65535: the rest is not saved",
                            u"Track 8 of the recording has links but not the flag LINK: they are not saved",
                            u"Track 9 of the recording has no INFO or no LOCA: no load reads it"));
    Recording tooMany(18, 1001);
    tooMany.record.AddTrackDesc(nullptr, 1001); // after those that are saved anyway
    EXPECT_THAT(tooMany.record.Unstorable(true),
                ElementsAre(u"The recording has 18 disks: only 17 are saved, and no track",
                            u"The recording has 1002 tracks: only the first 1000 are saved"));
    Recording gap(1, 2);
    gap.record.AddTrackDesc(nullptr, 9);
    EXPECT_THAT(gap.record.Unstorable(true),
                ElementsAre(u"Track 9 of the recording is null: it and the tracks after it are not saved"));
    gap.record.setNbrRecord(0);
    EXPECT_THAT(gap.record.Unstorable(false), ElementsAre(u"The recording counts 0 records: it is not saved"));
    EXPECT_TRUE(CRecord(false).Unstorable(false).empty());
}

TEST(Recording, TracksGoByTheirKeys)
{
    CRecord record(false);
    for (const std::int32_t key : {5, 0, -1}) {
        auto* track = new CZMTrackDesc;
        track->SampleFrequency = static_cast<float>(100 + key);
        record.AddTrackDesc(track, key);
    }
    float frequencies[7] = {};
    std::int16_t index = 1; // one array for several recordings
    for (int time = 0; time < 2; ++time) EXPECT_EQ(record.getTrackFreq(frequencies, &index), 0);
    EXPECT_THAT(frequencies, ElementsAre(0, 100, 105, 99, 100, 105, 99));

    const std::int32_t first[] = {1, 2, 3}, last[] = {4, 5, 6}, size[] = {7, 8, 9};
    const float low[] = {-1, -2, -3}, high[] = {1, 2, 3};
    const bool over[] = {true, false, true};
    EXPECT_TRUE(record.updateLOCATrackDesc(first, last, size));
    EXPECT_TRUE(record.updateTrackOverload(low, high, over));
    const CZMTrackDesc &front = *record.getTrackDesc(0), &back = *record.getTrackDesc(6);
    EXPECT_EQ(front.LastBlock, 4);
    EXPECT_FALSE(front.HasChunk(TrackChunk::Ovld));
    EXPECT_EQ(record.getTrackDesc(5)->Max, 2);
    EXPECT_EQ(back.BlockSize, 9);
    EXPECT_EQ(back.Min, -3);
    EXPECT_TRUE(back.Overload);
    EXPECT_TRUE(back.HasChunk(TrackChunk::Ovld));
}

} // namespace ZelmResult
