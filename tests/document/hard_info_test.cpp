#include "zelmresult/document/hard_info.h"

#include "tests/builders/record_check.h"
#include "tests/builders/samples.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

TEST(HardInfo, IsStoredByteForByteAndReadAtEachVersionAndCount)
{
    CHardInfo info;
    info.addHardInfoData({"name", "SN", "disk SN", "disk \xC3\xA9"});
    info.addHardInfoData({"\xE9", "", "3", "4"}); // no UTF-8: the character of the byte
    expectBytes(written([&](CMmioFile& file) { return CHardInfoMmioReaderWriter().Write(file, info); }),
                hardware({u"name", u"SN", u"disk SN", u"disk \u00E9", u"\u00E9", u"", u"3", u"4"}));

    const auto stored = [&](std::uint16_t version, std::int32_t count) {
        Bytes data = Bytes{}.u16(version).i32(count);
        for (int entry = 0; entry < 2; ++entry) {
            data.narrow("a").narrow("b").narrow("\xE9");
            if (version >= 0x200) data.narrow("d");
        }
        return Bytes{}.chunk("HRDI", data);
    };
    const struct {
        Bytes chunk;
        bool read;
        std::int32_t entries;
        std::string diskName = "d";
    } rows[] = {{stored(0x200, 2), true, 2},          {stored(0xFFFF, 2), true, 2},
                {stored(0x1FF, 2), true, 2, ""},      {stored(0x100, 2), true, 2, ""},
                {stored(0xFF, 2), true, 0},           {stored(0x200, 0), true, 0},
                {stored(0x200, INT32_MIN), true, 0},  {stored(0x200, 3), false, 2},
                {stored(0x200, INT32_MAX), false, 2}, {Bytes{}.chunk("HRDJ", {}), false, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        CHardInfo read;
        read.addHardInfoData({"former", "", "", ""});
        const auto call = [&](CMmioFile& file) { return CHardInfoMmioReaderWriter().Read(file, read); };
        EXPECT_EQ(readFrom(fileOf(row.chunk).data(), call), row.read);
        ASSERT_EQ(read.getNbHardInfo(), row.entries);
        strHardInfo entry{"left", "alone", "", ""};
        for (const std::int32_t outside : {-1, row.entries}) EXPECT_FALSE(read.getHardInfoData(outside, entry));
        EXPECT_EQ(entry, (strHardInfo{"left", "alone", "", ""}));
        if (!row.read || row.entries == 0) continue;
        EXPECT_TRUE(read.getHardInfoData(1, entry));
        EXPECT_EQ(entry, (strHardInfo{"a", "b", "\xC3\xA9", row.diskName}));
    }
}

} // namespace
} // namespace ZelmResult
