#include "tests/builders/failing_backend.h"
#include "tests/builders/record_check.h"
#include "zelmresult/storage/mmio_file.h"

#include <array>
#include <gtest/gtest.h>
#include <string>

namespace ZelmResult {
namespace {

using namespace test;

const wstring kPath = u"f";

// The bounds on hostile files are for files that others wrote.
TEST(MmioFileFields, AFileBeingWrittenIsReadWithoutABudget)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE | OMMIO_CREATE));
    const wstring text(4000000, u'x');
    ASSERT_TRUE(file.WriteCString(text));
    wstring read;
    for (int i = 0; i < 40; ++i) {
        ASSERT_TRUE(file.mmioSeek(0, OMMIO_SEEK_SET));
        ASSERT_TRUE(file.ReadCString(read)) << i;
    }
    EXPECT_EQ(read, text);
    EXPECT_EQ(file.bounds().FirstRefusal().bound, Refusal::Bound::None);
}

TEST(MmioFileFields, BlocksArePositiveNumbersOfBytes)
{
    MemoryDisk disk;
    CallPlan plan;
    CMmioFile file(false, failingBackend(disk.backend(), plan));
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_WRITE | OMMIO_CREATE));
    plan.calls = 0;
    std::array<std::uint32_t, 2> words{};
    EXPECT_FALSE(file.mmioWrite_ulong(words.data(), 0x20000000)) << "past 2^31-1 bytes";
    EXPECT_FALSE(file.mmioWrite_ulong(words.data(), SIZE_MAX / 4 + 1)) << "whose count of bytes would wrap to 0";
    EXPECT_FALSE(file.mmioRead_ulong(words.data(), SIZE_MAX / 4 + 1));
    EXPECT_EQ(plan.calls, 0) << "the backend wasn't asked for those";
}

TEST(MmioFileFields, TextsByTheirLength)
{
    const std::pair<std::size_t, Bytes> cases[] = {{0, Bytes{}.u8(0)},
                                                   {254, Bytes{}.u8(254)},
                                                   {255, Bytes{}.u8(255).u16(255)},
                                                   {65533, Bytes{}.u8(255).u16(65533)},
                                                   {65534, Bytes{}.u8(255).u16(65535).u32(65534)}};
    for (const auto& [length, prefix] : cases) {
        SCOPED_TRACE(length);
        wstring text(length, u'\xD83D'); // half a surrogate pair: stored as it is
        if (length > 1) text[1] = u'\0';
        Bytes wide = Bytes{}.raw("\xFF\xFE\xFF", "marker").append(prefix, "length");
        wide.raw({reinterpret_cast<const char*>(text.data()), 2 * length}, "text");
        expectBytes(written([&](CMmioFile& f) { return f.WriteCString(text); }), wide);
        wstring read = u"before";
        readInto([&](CMmioFile& f) { return f.ReadCString(read); }, wide);
        EXPECT_EQ(read, text);

        const std::string narrow(length, '\x80'); // the older form, one byte per character
        readInto([&](CMmioFile& f) { return f.ReadCString(read); }, Bytes{}.append(prefix).raw(narrow));
        EXPECT_EQ(read, wstring(length, u'\x20AC'));
    }
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
    EXPECT_FALSE(file.RoomFor(0x80000000U, 0));
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
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_TRUE(file.RoomFor(1 << 20, 1)) << "each open begins again";
}

} // namespace
} // namespace ZelmResult
