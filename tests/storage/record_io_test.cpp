#include "zelmresult/storage/record_io.h"

#include "tests/builders/record_check.h"

#include <array>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

enum class Shape : std::uint32_t { Round = 7 };

// A record with a field of every form and every option.
struct Sample {
    std::uint16_t small = 0;
    Shape shape{};
    std::int32_t count = 0;
    float level = 0;
    bool flag = false;
    wstring caption = u"default";
    idn::Idn place;
    OTime date;
    FILETIME fileTime;
    std::array<float, 3> values{};
    std::array<std::uint8_t, 2> bytes{};
    std::string note;
    std::vector<std::uint32_t> entries;
    bool Read(CMmioFile* file);
    bool Write(CMmioFile* file);
};

template <class Io, class Self>
bool sampleFields(Io& io, Self& v)
{
    if (!io.record("Sample", newest{4}, first{2})) return io.ok();
    io.u16("small", v.small);
    io.u32("shape", v.shape);
    io.i32("count", v.count, since{3});
    io.f32("level", v.level, only{"count above 1", v.count > 1});
    io.flag("flag", v.flag, since{4}, absent{true});
    io.text("caption", v.caption, since{3}, absent{u"old"});
    io.idn("place", v.place, since{4});
    io.formerIdn("former place", v.place, 9, until{3});
    io.time("date", v.date, shortBefore{4});
    io.fileTime("file time", v.fileTime);
    io.unusedU32("spare", until{2});
    io.f32s("values", v.values.data(), 3, v.count);
    io.bytes("bytes", v.bytes.data(), 2);
    io.utf8("note", v.note, since{4});
    io.eachOf("entries", v.entries, v.count, [&](auto& entry) { io.u32("entry", entry); });
    return io.ok();
}

bool Sample::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return sampleFields(in, *this);
}

bool Sample::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return sampleFields(out, *this);
}

Sample FullSample()
{
    Sample sample;
    sample.small = 1;
    sample.shape = Shape::Round;
    sample.count = 2;
    sample.level = 1.5F;
    sample.caption = u"ab";
    sample.place = idn::Legacy(9, 5, 0).toIdn();
    sample.date = OTime(0xF0000000);
    sample.fileTime = {8, 9};
    sample.values = {10, 11, 12};
    sample.bytes = {13, 14};
    sample.note = "\xC3\xA9";
    sample.entries = {15, 16};
    return sample;
}

// The fields that every version has, in groups.
Bytes Head(std::uint16_t version) { return Bytes{}.u16(version, "version").u16(1, "small").u32(7, "shape"); }
Bytes Tail() { return Bytes{}.u32(8, "low").u32(9, "high").f32s({10, 11}, "values").u8(13, "bytes").u8(14); }
Bytes Entries() { return Bytes{}.u32(15, "entry 0").u32(16, "entry 1"); }

TEST(RecordIo, StoresEachVersionAsItWas)
{
    Sample sample = FullSample();
    const Bytes newest = Head(4)
                             .i32(2, "count")
                             .f32(1.5F, "level")
                             .flag(false, "flag")
                             .text(u"ab", "caption")
                             .idn(9, 5, 0, "place")
                             .time(0xF0000000, "date")
                             .append(Tail())
                             .text(u"\xE9", "note")
                             .append(Entries());
    expectBytes(written(sample), newest);
    const Bytes older = Head(3)
                            .i32(2, "count")
                            .f32(1.5F, "level")
                            .text(u"ab", "caption")
                            .u32(5, "former place")
                            .u32(0xF0000000, "date")
                            .append(Tail())
                            .append(Entries());
    expectBytes(written(sample, {{"Sample", 3}, {"Other", 1}}), older);
    expectBytes(written(sample, {{"Sample", 1}}), Bytes{}.u16(1, "version")); // below the first with any field
    sample.count = 5;                                                         // more than the array holds
    const std::vector<char> padded = written(sample, {{"Sample", 3}});
    const Bytes last = Bytes{}.f32s({10, 11, 12, 0, 0}, "values").u8(13).u8(14).append(Entries());
    expectBytes({padded.end() - static_cast<std::ptrdiff_t>(last.size()), padded.end()}, last);
}

TEST(RecordIo, PassesTheChecksOfEveryRecord)
{
    Sample sample = FullSample();
    RecordCheck<Sample> check{.name = "Sample", .lowest = 1, .newest = 4, .silentReads = 6};
    check.expect = [&](Sample& read, std::uint16_t version) {
        EXPECT_EQ(read.small, version < 2 ? 0 : 1);
        EXPECT_EQ(read.count, version < 3 ? 0 : 2);
        EXPECT_EQ(read.level, version < 3 ? 0.0F : 1.5F) << "its condition fails while the count is 0";
        EXPECT_EQ(read.flag, version == 2 || version == 3) << "the absent value";
        EXPECT_EQ(read.caption, version < 2 ? u"default" : version < 3 ? u"old" : u"ab");
        EXPECT_EQ(read.place, version < 2 ? idn::Idn() : sample.place);
        EXPECT_EQ(read.note, version < 4 ? "" : sample.note);
        EXPECT_EQ(read.entries.size(), version < 3 ? 0U : 2U);
        EXPECT_EQ(read.date, version < 2 ? OTime() : sample.date) << "the short form is unsigned";
    };
    // A version without the count holds nothing that is counted by it.
    check.write = [](CMmioFile& file, Sample& o) {
        Sample copy = o;
        if (file.StoredVersion("Sample", 4) < 3) copy.count = 0, copy.entries.clear();
        return copy.Write(&file);
    };
    checkRecord(sample, check);
}

TEST(RecordIo, NamesTheFirstFieldThatFailed)
{
    Sample sample = FullSample();
    sample.count = 4; // the reader's array holds three
    EXPECT_FALSE(readFrom(written(sample), [](CMmioFile& file) {
        Sample read;
        RecordReader in(file);
        const bool succeeded = sampleFields(in, read);
        EXPECT_EQ(in.failedField(), "values");
        EXPECT_EQ(read.bytes[0], 0) << "nothing behind it is read";
        return succeeded;
    }));

    const Bytes endless = Bytes{}.u32(1).u32(2); // entries, of which there are said to be 2^31-1
    EXPECT_FALSE(readFrom(endless.data(), [](CMmioFile& file) {
        std::vector<std::uint32_t> entries;
        RecordReader in(file);
        in.eachOf("entries", entries, 0x7FFFFFFF, [&](std::uint32_t& entry) { in.u32("entry", entry); });
        EXPECT_EQ(entries, (std::vector<std::uint32_t>{1, 2}));
        EXPECT_EQ(in.failedField(), "entries");
        return in.ok();
    }));
}

TEST(RecordIo, OutlineListsTheFieldsAsATable)
{
    RecordOutline outline;
    const Sample sample;
    (void)sampleFields(outline, sample);
    EXPECT_EQ(outline.name(), "Sample");
    EXPECT_EQ(outline.Table(), "| field | form | from version | when absent | present when |\n"
                               "|---|---|---|---|---|\n"
                               "| version | u16, written 4 |  |  |  |\n"
                               "| small | u16 | 2 |  |  |\n"
                               "| shape | u32 | 2 |  |  |\n"
                               "| count | i32 | 3 |  |  |\n"
                               "| level | f32 | 2 |  | count above 1 |\n"
                               "| flag | flag | 4 | true |  |\n"
                               "| caption | text | 3 | empty |  |\n"
                               "| place | identifier | 4 |  |  |\n"
                               "| former place | u32, second number behind 9 | 2 to 3 |  |  |\n"
                               "| date | time, a u32 before version 4 | 2 |  |  |\n"
                               "| file time | file time | 2 |  |  |\n"
                               "| spare | u32, not kept | 2 to 2 |  |  |\n"
                               "| values | f32 array | 2 |  |  |\n"
                               "| bytes | 2 bytes | 2 |  |  |\n"
                               "| note | text | 4 |  |  |\n"
                               "| entries | count times: | 2 |  |  |\n"
                               "| entry | u32 | 2 |  |  |\n");
}

} // namespace
} // namespace ZelmResult
