#include "tests/builders/failing_backend.h"
#include "tests/builders/record_check.h"
#include "zelmresult/storage/mmio_file.h"

#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace ZelmResult {
namespace {

using namespace test;
using namespace std::string_literals;

const wstring kPath = u"f";

// A value of each form, marked as untouched.
struct Values {
    std::uint8_t byte = 99;
    std::uint16_t word = 99;
    std::int32_t number = 99;
    std::uint32_t uint = 99, ulong = 99, code = 99;
    float real = 99;
    std::int64_t wide = 99;
    OTime time{99};
    bool flag = true;
    std::array<std::uint8_t, 3> bytes{99, 99, 99};
    std::array<std::uint16_t, 2> words{99, 99};
    std::array<std::uint32_t, 2> ulongs{99, 99};
    std::array<float, 2> reals{99, 99};
    bool operator==(const Values&) const = default;
};

std::vector<RecordCall> Fields(Values& v, bool write)
{
    const auto field = [write](RecordCall writeField, RecordCall readField) { return write ? writeField : readField; };
#define FIELD(type, value)                                                                                             \
    field([&](CMmioFile& f) { return f.mmioWrite_##type(v.value); },                                                   \
          [&](CMmioFile& f) { return f.mmioRead_##type(v.value); })
#define FIELDS(type, values)                                                                                           \
    field([&](CMmioFile& f) { return f.mmioWrite_##type(v.values.data(), v.values.size()); },                          \
          [&](CMmioFile& f) { return f.mmioRead_##type(v.values.data(), v.values.size()); })
    return {
        FIELD(byte, byte),
        FIELD(ushort, word),
        FIELD(int, number),
        FIELD(uint, uint),
        FIELD(ulong, ulong),
        field([&](CMmioFile& f) { return f.WriteChunk(v.code); }, [&](CMmioFile& f) { return f.ReadChunk(v.code); }),
        FIELD(float, real),
        FIELD(int64, wide),
        FIELD(OTime, time),
        field([&](CMmioFile& f) { return f.mmioWriteBool(v.flag); },
              [&](CMmioFile& f) { return f.mmioReadBool(v.flag); }),
        FIELDS(byte, bytes),
        FIELDS(ushort, words),
        FIELDS(ulong, ulongs),
        FIELDS(float, reals)};
}

TEST(MmioFileFields, FormsOfValuesWholeMissingAndFailing)
{
    Values values{0x80, 0x8001,    -2,   0x80000003, 4,           0x44434241, -1.5F,
                  -6,   OTime(-7), true, {1, 2, 3},  {4, 0xFFFF}, {6, 7},     {8, 9}};
    const Bytes bytes = Bytes{}
                            .u8(0x80, "byte")
                            .u16(0x8001, "ushort")
                            .i32(-2, "int")
                            .u32(0x80000003, "uint")
                            .u32(4, "ulong")
                            .code("ABCD", "code")
                            .f32(-1.5F, "float")
                            .i64(-6, "int64")
                            .i64(-7, "time")
                            .u32(1, "true")
                            .raw("\x1\x2\x3", "bytes")
                            .raw("\x4\0\xFF\xFF"s, "ushorts")
                            .u32(6, "ulongs")
                            .u32(7)
                            .f32s({8, 9}, "floats");
    Values read;
    const auto all = [](std::vector<RecordCall> fields) {
        return [fields](CMmioFile& f) {
            return std::ranges::all_of(fields, [&](const RecordCall& field) { return field(f); });
        };
    };
    expectBytes(written(all(Fields(values, true))), bytes);
    readInto(all(Fields(read, false)), bytes);
    EXPECT_TRUE(read == values);
    readInto([&](CMmioFile& f) { return f.mmioReadBool(read.flag); }, Bytes{}.u32(0x100));
    EXPECT_TRUE(read.flag) << "by any bit";

    Values none, expected; // the end of the file is no failure and leaves values alone, but for two
    expected.time = OTime(0);
    expected.flag = false;
    EXPECT_TRUE(readFrom({}, all(Fields(none, false))));
    EXPECT_TRUE(none == expected);

    MemoryDisk disk;
    disk.Put(kPath, bytes);
    CallPlan plan{.failAt = 1, .onwards = true};
    CMmioFile file(false, failingBackend(disk.backend(), plan));
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE));
    for (const bool write : {false, true})
        for (const RecordCall& field : Fields(none, write)) EXPECT_FALSE(field(file));
    EXPECT_TRUE(none == expected);
    plan.calls = 0;
    const float* tooMany = none.reals.data();
    EXPECT_FALSE(file.mmioWrite_float(tooMany, 0x20000000)) << "past 2^31-1 bytes";
    EXPECT_FALSE(file.mmioWrite_float(tooMany, std::size_t{1} << 62U)) << "whose count of bytes would wrap to 0";
    EXPECT_FALSE(file.mmioRead_float(none.reals.data(), std::size_t{1} << 62U));
    EXPECT_EQ(plan.calls, 0) << "the backend wasn't asked for those";
}

TEST(MmioFileFields, TextsByTheirLength)
{
    const struct {
        std::size_t length;
        Bytes prefix;
    } cases[] = {{0, Bytes{}.u8(0)},
                 {1, Bytes{}.u8(1)},
                 {254, Bytes{}.u8(254)},
                 {255, Bytes{}.u8(255).u16(255)},
                 {65533, Bytes{}.u8(255).u16(65533)},
                 {65534, Bytes{}.u8(255).u16(65535).u32(65534)},
                 {65535, Bytes{}.u8(255).u16(65535).u32(65535)},
                 {200000, Bytes{}.u8(255).u16(65535).u32(200000)}};
    for (const auto& [length, prefix] : cases) {
        SCOPED_TRACE(length);
        wstring text(length, u'\xD83D'); // half a surrogate pair: stored as it is
        if (length > 1) text[1] = u'\0';
        const Bytes wide = Bytes{}
                               .raw("\xFF\xFE\xFF", "marker")
                               .append(prefix, "length")
                               .raw({reinterpret_cast<const char*>(text.data()), 2 * length}, "text");
        expectBytes(written([&](CMmioFile& f) { return f.WriteCString(text); }), wide);
        expectBytes(Bytes{}.text(text).data(), wide);
        wstring read = u"before";
        readInto([&](CMmioFile& f) { return f.ReadCString(read); }, wide);
        EXPECT_EQ(read, text);

        const std::string narrow(length, '\x80'); // the older form, one byte per character
        readInto([&](CMmioFile& f) { return f.ReadCString(read); }, Bytes{}.append(prefix).raw(narrow));
        EXPECT_EQ(read, wstring(length, u'\x20AC'));
    }
}

TEST(MmioFileFields, TextsThatEndEarlyOrLie)
{
    const auto read = [](const Bytes& bytes, wstring& text) {
        text = u"before";
        return readFrom(bytes.data(), [&](CMmioFile& f) { return f.ReadCString(text); });
    };
    wstring text;
    const Bytes cut[] = {Bytes{},
                         Bytes{}.u8(0xFF),
                         Bytes{}.u8(0xFF).u16(0xFFFE),
                         Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF),
                         Bytes{}.u8(0xFF).u16(0xFFFF),
                         Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF)};
    for (const Bytes& bytes : cut) {
        EXPECT_TRUE(read(bytes, text)) << bytes.size();
        EXPECT_EQ(text, u"") << bytes.size();
    }
    EXPECT_TRUE(read(Bytes{}.u8(0xFF).u16(0xFFFE).u8(3).raw("a"), text)) << "a short read is no failure";
    EXPECT_EQ(text.size(), 3U);
    EXPECT_TRUE(read(Bytes{}.u8(3).raw("a"), text));
    EXPECT_EQ(text, wstring(u"a\0\0", 3));
    for (const std::uint32_t length : {262145U, 0x7FFFFFFFU, 0x80000000U, 0xFFFFFFFEU}) {
        EXPECT_FALSE(read(Bytes{}.u8(0xFF).u16(0xFFFF).u32(length).zeros(100), text)) << length;
        EXPECT_FALSE(read(Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFF).u32(length).zeros(100), text)) << length;
    }
    EXPECT_FALSE(read(Bytes{}.u8(0xFF).u16(0xFFFE).u8(0xFF).u16(0xFFFE).zeros(100), text)) << "a marker as a length";
}

TEST(MmioFileFields, Identifiers)
{
    const auto read = [](const Bytes& bytes, idn::Idn& idn) {
        return readFrom(bytes.data(), [&](CMmioFile& f) { return f.mmioReadIDN(idn); });
    };
    const idn::Idn former = idn::Legacy(255, 255, 255).toIdn();
    const idn::Idn wide{idn::Analyzer{1}, {2, 3}, {4, 5}, idn::Setting{6}};
    const struct {
        idn::Idn idn;
        Bytes bytes;
    } cases[] = {{idn::Legacy(1, 2, 3).toIdn(), Bytes{}.idn(1, 2, 3)},
                 {idn::Legacy(0, 65534, 0).toIdn(), Bytes{}.idn(0, 65534, 0)},
                 {idn::Idn(), Bytes{}.idn(65535, 65535, 65535)},
                 {former, Bytes{}.idn(65534, 65534, 65534).text(u"0/255.1/255.1/255")},
                 {idn::Legacy::magic().toIdn(), Bytes{}.idnText(u"0/65534.1/65534.1/65534")},
                 {wide, Bytes{}.idnText(u"1/2.3/4.5/6")}};
    for (const auto& row : cases) {
        expectBytes(written([&](CMmioFile& f) { return f.mmioWriteIDN(row.idn); }), row.bytes);
        idn::Idn back = wide;
        EXPECT_TRUE(read(row.bytes, back));
        EXPECT_EQ(back, row.idn);
    }
    idn::Idn idn = wide;
    EXPECT_TRUE(read(Bytes{}.idn(255, 255, 255), idn));
    EXPECT_TRUE(idn.isNull()) << "the former spelling of nothing";
    EXPECT_TRUE(read(Bytes{}.idn(255, 255, 0), idn));
    EXPECT_FALSE(idn.isNull());
    EXPECT_FALSE(read(Bytes{}.idnText(u"1/2.3/4.5/4294967296"), idn));
    EXPECT_FALSE(read(Bytes{}.idnText(u""), idn));
    EXPECT_EQ(dumpOf([&](CMmioFile& f) {
                  return f.mmioWriteIDN(cases[0].idn) && f.mmioWriteIDN(wide) && f.mmioWriteIDN({});
              }),
              "1/2/3\n");
}

TEST(MmioFileBounds, RoomIsGivenForWhatTheFileCanHold)
{
    MemoryDisk disk;
    disk[kPath].resize(1 << 20);
    CMmioFile file(false, disk.backend());
    EXPECT_FALSE(file.RoomFor(0, 1)) << "closed";
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_TRUE(file.RoomFor(1 << 17, 8));
    EXPECT_FALSE(file.RoomFor((1 << 17) + 1, 8)) << "more than the file has";
    EXPECT_FALSE(file.RoomFor(0x80000000U, 1));
    EXPECT_FALSE(file.RoomFor(std::uint64_t{1} << 61U, 8)) << "a product that would wrap to 0";
    EXPECT_TRUE(file.mmioSeek(-100, OMMIO_SEEK_END));
    EXPECT_TRUE(file.RoomFor(1 << 16, 4)) << "as much is always given";
    EXPECT_FALSE(file.RoomFor((1 << 16) + 1, 4));

    // All answers together stop at 16 times the file and 64 MiB; 1.25 MiB are spent already.
    ASSERT_TRUE(file.TopOfFile());
    for (int i = 0; i < 78; ++i) EXPECT_TRUE(file.RoomFor(1 << 20, 1)) << i;
    EXPECT_FALSE(file.RoomFor(1 << 20, 1));
    EXPECT_TRUE(file.RoomFor(3 << 18, 1));
    EXPECT_FALSE(file.RoomFor(1, 1)) << "not even a little";
    EXPECT_TRUE(file.RoomFor(0, 8));
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_TRUE(file.RoomFor(1 << 20, 1)) << "each open begins anew";
}

TEST(MmioFileMessages, AreFetchedInOrderAndClearedWhenAsked)
{
    CMmioFile file(false);
    file.AddErrorMessage(u"a");
    file.AddErrorMessage(u"b");
    std::vector<wstring> out = {u"before"};
    file.fetchErrors(out, false);
    file.fetchErrors(out, true);
    file.fetchErrors(out, true);
    EXPECT_EQ(out, (std::vector<wstring>{u"before", u"a", u"b", u"a", u"b"}));
}

} // namespace
} // namespace ZelmResult
