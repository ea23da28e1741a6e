// The records of a recording by their bytes, and recordings as wholes.

#include "tests/builders/record_check.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/zelmresult.h"

#include <cstdlib>
#include <ctime>
#include <functional>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using ::testing::HasSubstr;

// Runs the process in a time zone as long as it lives.
class InZone {
public:
    explicit InZone(const char* zone) : m_former(std::getenv("TZ") != nullptr ? std::getenv("TZ") : "") { Set(zone); }
    InZone(const InZone&) = delete;
    InZone& operator=(const InZone&) = delete;
    ~InZone() { Set(m_former.c_str()); }

private:
    static void Set(const char* zone)
    {
        (void)(*zone == '\0' ? unsetenv("TZ") : setenv("TZ", zone, 1));
        tzset();
    }
    std::string m_former;
};

SYSTEMTIME Date(std::uint16_t year, std::uint16_t month, std::uint16_t day, std::uint16_t hour, std::uint16_t minute,
                std::uint16_t millisecond = 0)
{
    SYSTEMTIME date{year, month, 0, day, hour, minute, 0, millisecond};
    FILETIME ticks;
    if (SystemTimeToFileTime(date, ticks)) (void)FileTimeToSystemTime(ticks, date); // with the day of the week
    return date;
}

std::uint64_t Ticks(const SYSTEMTIME& date)
{
    FILETIME ticks;
    (void)SystemTimeToFileTime(date, ticks);
    return OFileTime::fromFILETIME(ticks).toOFILETIME();
}

Bytes& Put(Bytes& bytes, const SYSTEMTIME& d)
{
    return bytes.u16(d.wYear)
        .u16(d.wMonth)
        .u16(d.wDayOfWeek)
        .u16(d.wDay)
        .u16(d.wHour)
        .u16(d.wMinute)
        .u16(d.wSecond)
        .u16(d.wMilliseconds);
}

// The data of "HREC" with a value of its own in every field.
Bytes HeaderBytes(std::uint16_t version, const SYSTEMTIME& date, std::uint64_t reference = 0x0102030405060708)
{
    Bytes bytes = Bytes{}.u16(version);
    if (version < 0x100) return bytes;
    bytes.i32(1).raw({"\0\0\0\0\0\0\xF8\x3F", 8}, "SampleFrequency").i32(3).i32(4);
    Put(bytes, date).i64(-50000000).i32(6).i32(7).i32(8).text(u"n");
    if (version >= 0x200) bytes.flag(true);
    if (version >= 0x300) bytes.i64(static_cast<std::int64_t>(reference));
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
    return Bytes{}
        .versionChunk(0x100)
        .chunk("LIDN", Bytes{}.u16(0x100).u16(2).idn(1, 2, 3).idn(4, 5, 6))
        .chunk("LIDN", Bytes{}.u16(0x100).u16(0));
}
Bytes Correction(std::uint16_t format = 6)
{
    Bytes bytes = Bytes{}.u16(0x100).u16(format).f32(29).f32(30).i32(2).f32s({31, 32});
    return format == 6 ? bytes : bytes.f32s({33, 34});
}
Bytes WholeTrack()
{
    return Bytes{}
        .versionChunk(0x100)
        .chunk("INFO", Info())
        .chunk("LOCA", Location())
        .chunk("OVLD", Overload())
        .chunk("XUNI", XUnit())
        .chunk("YUNI", YUnit())
        .chunk("VUNI", VUnit())
        .list("LINK", Links())
        .chunk("CORR", Correction());
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
    return Bytes{}
        .versionChunk(0x100)
        .chunk("IDSK", Bytes{}.u16(0x200).u16(1).u16(2).u16(3).u16(4))
        .chunk("I000", Bytes{}.u16(0x100).u32(5).u32(6))
        .chunk("I001", Bytes{}.u16(0x100).u32(7).u32(8));
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
    const InZone utc("UTC");
    const SYSTEMTIME date = Date(2026, 7, 1, 12, 30, 250);
    CRecordHeader header = HeaderFrom(HeaderBytes(0x401, date));
    EXPECT_EQ(header.getRecordHeaderStr().RecordDate, date);
    EXPECT_TRUE(header.getReferenceTime() == 0x0102030405060708 && header.IsConvertedSignal());
    EXPECT_TRUE(header.getSampleFrequency() == 1.5 && header.getNbrChannelComp() == 9);
    expectBytes(written(header), Bytes{}.chunk("HREC", HeaderBytes(0x401, date)));
    EXPECT_THAT(dumpOf(header),
                HasSubstr("------Time divider : 1 , Sample frequency : 1.500000 , Block size : 3 , Nb "
                          "track : 4, Nb Compressed track : 9\n------Recode length  : -5.000000 , Record "
                          "number : 6 ,, Marker number : 7 Disk number : 8 , Name : n\n"));
    for (const std::uint16_t version :
         std::initializer_list<std::uint16_t>{0x100, 0x1FF, 0x200, 0x300, 0x301, 0x400, 0x401}) {
        const CRecordHeader read = HeaderFrom(HeaderBytes(version, date));
        EXPECT_EQ(read.getNbrChannelComp(), version >= 0x400 ? 9 : 0) << version;
        EXPECT_EQ(read.getReferenceTime() != 0, version >= 0x300) << version;
        EXPECT_EQ(read.IsConvertedSignal(), version >= 0x200) << version;
        EXPECT_EQ(read.getRecordHeaderStr().Name, u"n");
    }
    EXPECT_EQ(HeaderFrom(HeaderBytes(0xFF, date)).getRecordHeaderStr(), strEnregHeader());
    RecordCheck<CRecordHeader> check{.name = "CRecordHeader", .lowest = 0x401, .newest = 0x401, .silentReads = 3};
    check.make = [] { return std::make_unique<CRecordHeader>(false); };
    check.write = [](CMmioFile& file, CRecordHeader& h) { return h.Save(&file); };
    check.read = [](CMmioFile& file, CRecordHeader& h) {
        OMMCKINFO chunk;
        return file.EnterChunkSansParent(chunk, FourCC("HREC")) && h.Load(&file);
    };
    checkRecord(header, check);
}

// Before 0x401 the date, and before 0x301 the reference time, are local times of the machine that reads them.
TEST(RecordHeader, LocalTimesBecomeUTC)
{
    const SYSTEMTIME none{};
    const struct {
        const char* zone;
        SYSTEMTIME local;
        SYSTEMTIME utc;
        SYSTEMTIME otherUtc; // of an hour that a change of clocks skips or repeats: either answer is right
    } rows[] = {
        {"Europe/Berlin", Date(2026, 1, 15, 12, 0), Date(2026, 1, 15, 11, 0), none},
        {"Europe/Berlin", Date(2026, 7, 15, 0, 30, 7), Date(2026, 7, 14, 22, 30, 7), none},
        {"Europe/Berlin", Date(2026, 10, 25, 2, 30), Date(2026, 10, 25, 0, 30), Date(2026, 10, 25, 1, 30)},
        {"Europe/Berlin", Date(2026, 3, 29, 2, 30), Date(2026, 3, 29, 0, 30), Date(2026, 3, 29, 1, 30)},
        {"America/St_Johns", Date(2026, 12, 31, 23, 0), Date(2027, 1, 1, 2, 30), none},
        {"Asia/Kolkata", Date(2026, 7, 1, 3, 0), Date(2026, 6, 30, 21, 30), none},
        {"Asia/Kolkata", none, none, none},                                                 // no date at all
        {"Asia/Kolkata", {2026, 2, 0, 30, 1, 0, 0, 0}, {2026, 2, 0, 30, 1, 0, 0, 0}, none}, // none that exists
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const InZone zone(row.zone);
        const auto dateOf = [&](std::uint16_t version) {
            return HeaderFrom(HeaderBytes(version, row.local)).getRecordHeaderStr().RecordDate;
        };
        for (const std::uint16_t version : std::initializer_list<std::uint16_t>{0x100, 0x400})
            EXPECT_TRUE(dateOf(version) == row.utc || (row.otherUtc.wYear != 0 && dateOf(version) == row.otherUtc));
        EXPECT_EQ(dateOf(0x401), row.local);
        if (row.utc == row.local) continue;
        const std::uint64_t odd = Ticks(row.local) + 1234; // which is no whole millisecond
        const auto referenceOf = [&](std::uint16_t version) {
            return HeaderFrom(HeaderBytes(version, row.local, odd)).getReferenceTime();
        };
        EXPECT_TRUE(referenceOf(0x300) == Ticks(row.utc) || referenceOf(0x300) == Ticks(row.otherUtc));
        EXPECT_EQ(referenceOf(0x301), odd);
    }
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
    EXPECT_EQ(info.GetNbOfDescriptors(), 0U);
    ASSERT_TRUE(read(Disk()));
    strFileInfo counts;
    EXPECT_EQ(info.getFileInfo().getData(&counts), 0);
    EXPECT_EQ(counts, (strFileInfo{1, 4, 2, 3}));
    EXPECT_TRUE(info.fileBlockInfos().size() == 2 && info.GetNbOfDescriptors() == 6);
    expectBytes(written([&](CMmioFile& file) { return info.Save(&file, 10); }), Bytes{}.list("DSKA", Disk()));
    EXPECT_THAT(dumpOf([&](CMmioFile& file) { return info.Save(&file, 0); }),
                HasSubstr("CFileInfo\n------------Number of tracks : 1 , Number of compressed tracks : 4 , Number of "
                          "files : 2 , Disks number : 3 \n"));
    EXPECT_TRUE(info.updateFileBlocEndNbr(0, 99) && info.updateFileBlocEndNbr(2, 1) &&
                info.updateFileBlocEndNbr(-1, 1));
    EXPECT_EQ(info.GetNbOfDescriptors(), 99U);
    EXPECT_TRUE(read(Bytes{}.versionChunk(1).chunk("IDSK", Bytes{}.u16(0xFF)))) << "and holds no counts";
    EXPECT_FALSE(read(Bytes{}.chunk("IDSK", Bytes{}.u16(0x200))));
    EXPECT_FALSE(read(Bytes{}.versionChunk(1)));
    CFileInfo former;
    readInto(former, Bytes{}.u16(0x100).u16(1).u16(2).u16(3));
    (void)former.getData(&counts);
    EXPECT_EQ(counts, (strFileInfo{1, 0, 2, 3}));
}

TEST(IdentifierLists, KeepTheFirst65535)
{
    std::vector<idn::Idn> list(70000, idn::Legacy(1, 2, 3).toIdn());
    const auto stored = written([&](CMmioFile& file) { return CLIDN::mmioSaveCLIDN(&file, list); });
    EXPECT_EQ(stored.size(), 8 + 4 + 65535 * 6U);
    list.resize(3);
    EXPECT_TRUE(readFrom({stored.begin() + 8, stored.end()},
                         [&](CMmioFile& file) { return CLIDN::mmioLoadCLIDN(&file, list); }));
    EXPECT_EQ(list.size(), 65535U);
    EXPECT_FALSE(readFrom(Bytes{}.u16(0x100).u16(2).idn(1, 2, 3).data(),
                          [&](CMmioFile& file) { return CLIDN::mmioLoadCLIDN(&file, list); }));
}

TEST(TransducerIdentity, IsStoredByteForByte)
{
    CITrack track;
    track.setId(u"i"), track.setType(u"t"), track.setSerialNb(u"s"), track.setModel(u"m"), track.setManu(u"f");
    const Bytes stored =
        Bytes{}.chunk("ITRA", Bytes{}.u16(0x100).text(u"i").text(u"t").text(u"s").text(u"m").text(u"f"));
    expectBytes(written(track), stored);
    RecordCheck<CITrack> check{.name = "CITrack", .lowest = 0x100, .newest = 0x100, .silentReads = -1};
    checkRecord(track, check);
    EXPECT_THAT(dumpOf(track), HasSubstr("ID : i , Type : t , Serial Nb : s , Model : m , Manufacturer : f\n"));
}

TEST(Track, IsStoredByteForByte)
{
    ReadTrack read(WholeTrack());
    ASSERT_TRUE(read.good);
    CZMTrackDesc& track = read.track;
    expectBytes(written([&](CMmioFile& file) { return track.Save(&file, 999); }), Bytes{}.list("T999", WholeTrack()));
    EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return track.Save(&file, 1000); }));
    EXPECT_TRUE(track.CompressedTrack == 4 && track.Idn3.setting().value == 9 && track.Offset == 14 &&
                track.XVal0 == 18);
    EXPECT_TRUE(track.AxisType == 24 && track.VVal0 == 28 && track.Sensitivity == 1 && track.YPrecRel == 23);
    EXPECT_TRUE(track.linkLists().size() == 2 && track.linkLists()[0]->size() == 2 && track.CorrData[1] == 32);
    EXPECT_EQ(track.ConvLogToVolt, 1e-8F);
    const std::string dump = dumpOf([&](CMmioFile& file) { return track.Save(&file, 0); });
    EXPECT_THAT(dump, HasSubstr("Format : 1 , Domain : 2 , Type : 3 , CompressedTrack : 4\n"));
    EXPECT_THAT(
        dump,
        HasSubstr("Compression factor : 5 , Time : 6 , Sample frequency : 7.000000 , Track name : n, Comment : c\n"));
    EXPECT_THAT(dump, HasSubstr(", Conv log to volt : 1.000000e-08 , Offset : 20.000000 , sensitivity : 1.000000, "
                                "Precision absolue : 22.000000 , Precision relative : 23.000000\n"));

    // Older chunks hold less, a HARD is lost in a save, and only the first two chunks have a place of their own.
    ReadTrack former(Bytes{}
                         .chunk("VUNI", VUnit())
                         .append(Bytes{}.versionChunk(0x100))
                         .chunk("CORR", Correction(1))
                         .chunk("INFO", Info(0x100))
                         .chunk("XUNI", XUnit())
                         .chunk("LOCA", Location(0x100))
                         .chunk("HARD", Bytes{}.u16(1)));
    ASSERT_TRUE(former.good);
    EXPECT_TRUE(former.track.Idn2.isNull() && former.track.Text3.empty() && former.track.Offset == 0);
    EXPECT_TRUE(former.track.HasChunk(TrackChunk::Hard) && !former.track.HasChunk(TrackChunk::Ovld));
    EXPECT_EQ(former.track.CorrData[3], 34);
    expectBytes(written([&](CMmioFile& file) { return CZMTrackDesc().Save(&file, 0); }),
                Bytes{}.list("T000", Bytes{}.versionChunk(0x100)));
    EXPECT_FALSE(ReadTrack(Bytes{}.versionChunk(1).chunk("LOCA", Location()).chunk("INFO", Info())).good);
    EXPECT_FALSE(ReadTrack(Bytes{}.versionChunk(1).chunk("INFO", Info())).good);
    EXPECT_FALSE(ReadTrack(Bytes{}.chunk("INFO", Info()).chunk("LOCA", Location())).good);
    const Bytes huge = Bytes{}.u16(0x100).u16(1).f32(0).f32(0).i32(0x7FFFFFFF);
    EXPECT_FALSE(
        ReadTrack(Bytes{}.versionChunk(1).chunk("INFO", Info()).chunk("LOCA", Location()).chunk("CORR", huge)).good);
}

TEST(Track, ScalesAreTightenedToThePeak)
{
    const auto scale = [](const Bytes& info, const Bytes& overload, bool normalisation) {
        const Bytes children = Bytes{}.versionChunk(1).chunk("INFO", info).chunk("LOCA", Location());
        ReadTrack read(Bytes(children).append(overload).chunk("YUNI", YUnit()), normalisation);
        EXPECT_TRUE(read.good);
        return read.track.ConvLogToVolt;
    };
    const auto seen = [](float min, float max) { return Bytes{}.chunk("OVLD", Overload(min, max)); };
    const Bytes exempt = Bytes{}.u16(0x100).idn(1, 2, 3).i32(0x10002).zeros(24).text(u"").text(u"");
    EXPECT_EQ(scale(Info(), seen(-2, 1.5F), true), 2.0F / 2147483648.0F);
    EXPECT_EQ(scale(Info(), seen(-30, 1.5F), true), 1e-8F) << "past full scale";
    EXPECT_EQ(scale(Info(), seen(2, 2), true), 1e-8F);
    EXPECT_EQ(scale(Info(), seen(-2, 1.5F), false), 1e-8F);
    EXPECT_EQ(scale(Info(), {}, true), 1e-8F);
    EXPECT_EQ(scale(exempt, seen(-2, 1.5F), true), 1e-8F);
}

TEST(Track, DataAreCopiedWithTheirTable)
{
    CZMTrackDesc track;
    strTrackDescData data;
    data.SizeCorr = 2;
    data.CorrFormat = 5;
    data.CorrData = new float[2]{1, 2};
    data.Name = u"n";
    EXPECT_EQ(track.setData(&data), 0);
    EXPECT_EQ(track.setData(track.getTrackData()), 0);
    EXPECT_TRUE(track.CorrData != data.CorrData && track.CorrData[1] == 2 && track.Name == u"n");
    EXPECT_FALSE(track.HasChunk(TrackChunk::Info));
    data.CorrData[1] = 7;
    EXPECT_EQ(track.getData(&data), 0);
    EXPECT_EQ(data.CorrData[1], 2);
    track.SizeCorr = 0;
    (void)track.getData(&data);
    EXPECT_EQ(data.CorrData, nullptr);
    (void)track.getData(nullptr), (void)track.setData(nullptr);

    CGrandeur pressure;
    CUnite unit;
    unit.SetCoeffA(3), unit.SetCoeffB(4);
    pressure.AjouteUniteDynamique(&unit);
    (void)pressure.SetUniteCourante(&unit);
    track.YOffset = 1, track.Sensitivity = 2;
    float values[5][2] = {};
    const std::int16_t second = 1;
    (void)track.getYUniData(values[0], values[1], values[2], values[3], values[4], &second);
    EXPECT_TRUE(values[2][1] == 0.5F && values[3][1] == 1 && values[4][1] == 0 && values[3][0] == 0);
    track.YMagnitude = &pressure;
    (void)track.getYUniData(values[0], values[1], values[2], values[3], values[4], &second);
    EXPECT_TRUE(values[3][1] == 3 && values[4][1] == 4);
    std::map<CGrandeur*, int> used;
    track.AddInvolvedGrandeur(used);
    EXPECT_EQ(used[&pressure], 1);
}

TEST(Recording, IsStoredByteForByte)
{
    const SYSTEMTIME date = Date(2026, 7, 1, 12, 30);
    const Bytes children = Bytes{}
                               .chunk("HREC", HeaderBytes(0x401, date))
                               .list("DSK0", Disk())
                               .list("DSK1", Disk())
                               .list("T000", WholeTrack())
                               .list("T001", WholeTrack());
    CRecord record(false);
    ASSERT_TRUE(LoadRecord(record, Bytes{}.versionChunk(0x100).append(children)));
    expectBytes(written([&](CMmioFile& file) { return record.Save(&file); }), children);
    EXPECT_TRUE(record.getTrackCount() == 2 && record.recordInfos().size() == 2);
    EXPECT_TRUE(record.getTrackDesc(1) != nullptr && record.getTrackDesc(2) == nullptr);
    EXPECT_EQ(record.getTrackData(1), record.getTrackDesc(1));

    CRecord empty(true);
    EXPECT_TRUE(LoadRecord(empty, {})) << "without version and header";
    CRecord broken(false);
    EXPECT_FALSE(LoadRecord(broken, Bytes(children).list("T002", Bytes{}.versionChunk(1))));
    EXPECT_EQ(broken.getTrackCount(), 2) << "what was read stays";
}

TEST(Recording, TracksGoByTheirKeys)
{
    CRecord record(false);
    for (const std::int32_t key : {5, 0, -1}) {
        auto* track = new CZMTrackDesc;
        track->SampleFrequency = static_cast<float>(100 + key);
        record.AddTrackDesc(track, key);
    }
    EXPECT_TRUE(record.getTrackDesc(6) != nullptr && record.getTrackCount() == 3);
    float frequencies[7] = {};
    std::int16_t index = 1;
    EXPECT_EQ(record.getTrackFreq(frequencies, &index), 0);
    EXPECT_THAT(frequencies, ElementsAre(0, 100, 105, 99, 0, 0, 0));
    EXPECT_EQ(record.getTrackFreq(frequencies, &index), 0); // one array for several recordings
    EXPECT_TRUE(index == 7 && frequencies[6] == 99);

    const std::int32_t first[] = {1, 2, 3}, last[] = {4, 5, 6}, size[] = {7, 8, 9};
    const float low[] = {-1, -2, -3}, high[] = {1, 2, 3};
    const bool over[] = {true, false, true};
    EXPECT_TRUE(record.updateLOCATrackDesc(first, last, size) && record.updateTrackOverload(low, high, over));
    EXPECT_TRUE(record.getTrackDesc(0)->LastBlock == 4 && record.getTrackDesc(6)->BlockSize == 9);
    EXPECT_TRUE(record.getTrackDesc(0)->Max == 0 && !record.getTrackDesc(0)->HasChunk(TrackChunk::Ovld));
    EXPECT_TRUE(record.getTrackDesc(5)->Max == 2 && record.getTrackDesc(6)->Min == -3 &&
                record.getTrackDesc(6)->Overload);
    std::int32_t blocks[3];
    index = 0;
    (void)record.getTrackBlockFirst(blocks, &index);
    EXPECT_THAT(blocks, ElementsAre(1, 2, 3));

    record.AddTrackDesc(nullptr, 9);
    index = 0;
    float four[4];
    (void)record.getTrackFreq(four, &index);
    EXPECT_EQ(four[3], 0);
    const std::int32_t four32[] = {1, 2, 3, 4};
    EXPECT_FALSE(record.updateLOCATrackDesc(four32, four32, four32)) << "a null track";
    EXPECT_FALSE(readFrom({}, [&](CMmioFile& file) { return record.Save(&file); }));
    for (int i = 0; i < 18; ++i) record.AddRecordInfo(new CRecordInfo);
    EXPECT_TRUE(record.updateFileBlocEndNbr(99, 0, 1) && record.getFirstRecordInfo() != nullptr);
}

} // namespace ZelmResult
