#include "tests/builders/memory_file.h"
#include "zelmresult/storage/mmio_file.h"

#include <gtest/gtest.h>
#include <vector>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kWriteFlags = OMMIO_WRITE | OMMIO_CREATE;
const wstring kPath = u"f";

TEST(MmioFileLife, OpenCloseAndCopies)
{
    MemoryDisk disk;
    CMmioFile file(false, disk.backend());
    ASSERT_TRUE(file.Open(kPath, nullptr, kWriteFlags));
    file.CurrentMmckinfo(OMMCKINFO{.ckid = 1});
    file.CurrentSystemMmmioInfo({2, 3});
    {
        const CMmioFile copy = file; // NOLINT(performance-unnecessary-copy-initialization): copies share the file
        EXPECT_EQ(copy.CurrentMmckinfo().ckid, 1U);
    }
    EXPECT_TRUE(file.mmioWrite_byte(1)) << "the copy's end closed nothing";
    EXPECT_TRUE(CMmioFile(file).Close());
    EXPECT_FALSE(file.mmioWrite_byte(1)) << "closed by the copy";
    EXPECT_EQ(file.FileName(), kPath);
    EXPECT_TRUE(file.Close());
    EXPECT_EQ(file.FileName(), u"");
    expectBytes(disk[kPath], Bytes{}.u8(1));
    EXPECT_EQ(disk.counts().closes, 1U);
    ASSERT_TRUE(file.Open(kPath, nullptr, OMMIO_READ));
    EXPECT_EQ(file.CurrentMmckinfo(), OMMCKINFO{}) << "a fresh backend";
    EXPECT_EQ(file.CurrentSystemMmmioInfo().lDiskOffset, 0);

    file.AddErrorMessage(u"a");
    file.AddErrorMessage(u"b");
    std::vector<wstring> messages;
    for (const bool clear : {false, true, true}) file.fetchErrors(messages, clear);
    EXPECT_EQ(messages, (std::vector<wstring>{u"a", u"b", u"a", u"b"}));
}

} // namespace
} // namespace ZelmResult
