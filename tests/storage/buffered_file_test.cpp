#include "zelmresult/storage/buffered_file.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <string>
#include <utility>
#include <vector>

namespace ZelmResult {
namespace {

// A device in memory that notes the writes that it is asked for, and refuses some.
struct Device {
    std::string bytes;
    std::vector<std::pair<std::int64_t, std::size_t>> writes; // position, bytes
    std::int64_t refusesBelow = 0;                            // this position
};

class DeviceHandle final : public FileHandle {
public:
    explicit DeviceHandle(Device& device) : m_device(device) {}
    bool Open(const wstring& /*path*/, Access /*access*/) override { return true; }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        if (position >= std::ssize(m_device.bytes)) return 0;
        return static_cast<std::int64_t>(m_device.bytes.copy(buffer, count, static_cast<std::size_t>(position)));
    }
    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        if (position < m_device.refusesBelow) return false;
        const auto start = static_cast<std::size_t>(position);
        m_device.bytes.resize(std::max(m_device.bytes.size(), start + count));
        std::memcpy(m_device.bytes.data() + start, buffer, count);
        m_device.writes.emplace_back(position, count);
        return true;
    }
    std::int64_t Size() override { return std::ssize(m_device.bytes); }
    bool Close() override { return true; }

private:
    Device& m_device;
};

class Buffered : public ::testing::Test {
protected:
    BufferedFile Open(bool writable, std::int64_t buffer = 65536)
    {
        return {std::make_unique<DeviceHandle>(device), writable, buffer};
    }
    static bool Write(BufferedFile& file, const std::string& text)
    {
        return file.Write(text.data(), static_cast<std::int32_t>(text.size())) == std::ssize(text);
    }
    static std::string Read(BufferedFile& file, std::int32_t count)
    {
        std::string text(static_cast<std::size_t>(count), '\0');
        text.resize(static_cast<std::size_t>(std::max(file.Read(text.data(), count), 0)));
        return text;
    }

    Device device;
};

TEST_F(Buffered, WindowsDoubleAndEndAtMultiplesOfTheirSize)
{
    constexpr std::int64_t most = 1048576;
    BufferedFile file = Open(true, most);
    std::string whole;
    for (int i = 0; i < 30000; ++i) {
        const std::string part(static_cast<std::size_t>(1 + i % 257), static_cast<char>('a' + i % 26));
        whole += part;
        ASSERT_TRUE(Write(file, part));
    }
    ASSERT_TRUE(file.Close());
    EXPECT_EQ(device.bytes, whole);
    std::int64_t size = 65536;
    for (std::size_t i = 0; i + 1 < device.writes.size(); ++i, size = std::min(2 * size, most)) {
        const auto [position, count] = device.writes[i];
        EXPECT_EQ((position + static_cast<std::int64_t>(count)) % size, 0) << "write " << i;
        EXPECT_LE(count, static_cast<std::size_t>(size)) << "write " << i;
    }
    EXPECT_LE(device.writes.size(), 8U);
}

TEST_F(Buffered, AReadGivesWhatWasWrittenPastTheWindow)
{
    device.bytes.assign(300000, 'a');
    for (const std::size_t count : {1U, 65535U, 65536U, 65537U, 131072U}) {
        BufferedFile file = Open(true);
        ASSERT_TRUE(file.Seek(0));
        EXPECT_EQ(Read(file, 4).size(), 4U);
        ASSERT_TRUE(file.Seek(0));
        ASSERT_TRUE(Write(file, std::string(count, 'B')));
        ASSERT_TRUE(file.Seek(0));
        EXPECT_EQ(Read(file, 1), "B") << count;
        device.bytes.assign(300000, 'a');
    }
}

TEST_F(Buffered, AfterAWriteThatFailedAllWritesFail)
{
    BufferedFile file = Open(true);
    ASSERT_TRUE(Write(file, std::string(70000, 'x'))); // the first window is out
    device.refusesBelow = 100;
    const char patch[] = "1234";
    EXPECT_FALSE(file.Patch(8, patch, 4));
    EXPECT_EQ(file.Position(), 8) << "where the write failed";
    ASSERT_TRUE(file.Seek(70000));
    EXPECT_FALSE(Write(file, "y"));
    EXPECT_EQ(file.Position(), 70000);
    EXPECT_TRUE(Read(file, 1).empty());
    EXPECT_FALSE(file.Close());
}

TEST_F(Buffered, AFileThatWasShortenedEndsWhereAReadSaysSo)
{
    device.bytes.assign(500000, 'a');
    BufferedFile file = Open(false);
    EXPECT_EQ(file.Size(), 500000);
    device.bytes.resize(200000);
    ASSERT_TRUE(file.Seek(190000));
    EXPECT_EQ(Read(file, 20000).size(), 10000U);
    EXPECT_EQ(file.Size(), 200000);
}

} // namespace
} // namespace ZelmResult
