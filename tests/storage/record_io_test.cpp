#include "zelmresult/storage/record_io.h"

#include "tests/builders/record_check.h"

#include <array>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

// A record with every option, and every form that has a rule of its own.
struct Sample {
    std::uint16_t small = 0;
    std::int32_t count = 0;
    float level = 0;
    bool flag = false;
    wstring caption = u"default";
    idn::Idn place;
    OTime date;
    FILETIME fileTime;
    std::array<float, 3> values{};
    std::string note;
    std::vector<std::uint32_t> entries;
};

template <class Io, class Self>
bool sampleFields(Io& io, Self& v)
{
    if (!io.record("Sample", newest{4}, first{2})) return io.ok();
    io.u16("small", v.small);
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
    io.utf8("note", v.note, since{4});
    io.eachOf("entries", v.entries, v.count, [&](auto& entry) { io.u32("entry", entry); });
    return io.ok();
}

RecordCall Writing(const Sample& sample)
{
    return [&sample](CMmioFile& file) {
        RecordWriter out(file);
        return sampleFields(out, sample);
    };
}

const Sample kFull{
    1,          2,       1.5F, false, u"ab", idn::Legacy(9, 5, 0).toIdn(), OTime(0xF0000000), {8, 9}, {10, 11, 12},
    "\xC3\xA9", {15, 16}};

// The fields that every version has, in groups.
Bytes Tail() { return Bytes{}.u32(8, "low").u32(9, "high").f32s({10, 11}, "values"); }
Bytes Entries() { return Bytes{}.u32(15, "entry 0").u32(16, "entry 1"); }

TEST(RecordIo, StoresEachVersionAsItWas)
{
    Bytes newest = Bytes{}.u16(4, "version").u16(1, "small").i32(2, "count").f32(1.5F, "level").flag(false, "flag");
    newest.text(u"ab", "caption").idn(9, 5, 0, "place").time(0xF0000000, "date");
    newest.append(Tail()).text(u"\xE9", "note").append(Entries());
    expectBytes(bytesOf(Writing(kFull)), newest);
    Bytes older = Bytes{}.u16(3, "version").u16(1, "small").i32(2, "count").f32(1.5F, "level").text(u"ab", "caption");
    older.u32(5, "former place").u32(0xF0000000, "date").append(Tail()).append(Entries());
    expectBytes(bytesOf(Writing(kFull), {{"Sample", 3}, {"Other", 1}}), older);
    expectBytes(bytesOf(Writing(kFull), {{"Sample", 1}}), Bytes{}.u16(1, "version")); // below the first with any field
    Sample sample = kFull;
    sample.count = 5; // more than the array holds
    const std::vector<char> padded = bytesOf(Writing(sample), {{"Sample", 3}});
    const Bytes last = Bytes{}.f32s({10, 11, 12, 0, 0}, "values").append(Entries());
    expectBytes({padded.end() - static_cast<std::ptrdiff_t>(last.size()), padded.end()}, last);
}

TEST(RecordIo, NamesTheFirstFieldThatFailed)
{
    Sample sample = kFull;
    sample.count = 4; // the reader's array holds three
    (void)readFrom(bytesOf(Writing(sample)), [](CMmioFile& file) {
        Sample read;
        RecordReader in(file);
        EXPECT_FALSE(sampleFields(in, read));
        EXPECT_EQ(in.failedField(), "values");
        EXPECT_TRUE(read.entries.empty()) << "nothing behind it is read";
        return true;
    });

    const Bytes endless = Bytes{}.u32(1).u32(2); // entries, of which there are said to be 2^31-1
    (void)readFrom(endless.data(), [](CMmioFile& file) {
        std::vector<std::uint32_t> entries;
        RecordReader in(file);
        in.eachOf("entries", entries, 0x7FFFFFFF, [&](std::uint32_t& entry) { in.u32("entry", entry); });
        EXPECT_EQ(entries, (std::vector<std::uint32_t>{1, 2}));
        EXPECT_EQ(in.failedField(), "entries");
        return true;
    });
}

} // namespace
} // namespace ZelmResult
