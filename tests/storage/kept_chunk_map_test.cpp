#include "tests/builders/platform.h"
#include "zelmresult/storage/mmio_riff.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <gtest/gtest.h>
#include <numeric>
#include <thread>

namespace ZelmResult {
namespace {

using test::TempFolder;

constexpr std::uint32_t kChunks = 3000;
constexpr std::size_t kChunkSize = 1008;

// A file of the platform that counts its reads.
class CountingHandle final : public FileHandle {
public:
    explicit CountingHandle(std::size_t& reads) : m_reads(reads) {}
    bool Open(const wstring& path, Access access) override { return m_file->Open(path, access); }
    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        ++m_reads;
        return m_file->ReadAt(position, buffer, count);
    }
    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        return m_file->WriteAt(position, buffer, count);
    }
    std::int64_t Size() override { return m_file->Size(); }
    std::optional<FileStamp> Stamp() override { return m_file->Stamp(); }
    bool Close() override { return m_file->Close(); }

private:
    std::unique_ptr<FileHandle> m_file = MakePlatformFileHandle();
    std::size_t& m_reads;
};

// Chunks of one size whose data begins with their place; the code of a chunk is what stands at its place in codes.
std::string FileOf(const std::vector<std::uint32_t>& codes)
{
    std::string bytes(codes.size() * kChunkSize, '\0');
    for (std::uint32_t i = 0; i < codes.size(); ++i) {
        const std::uint32_t words[] = {codes[i], kChunkSize - 8, i};
        std::memcpy(bytes.data() + i * kChunkSize, words, sizeof words);
    }
    return bytes;
}

class KeptMap : public ::testing::Test {
protected:
    void Put(const std::string& bytes) const { std::ofstream(path, std::ios::binary) << bytes; }
    // Until a change of the file shows in its times.
    static void Wait() { std::this_thread::sleep_for(std::chrono::milliseconds(120)); }
    // The place of the chunk with that code, from the file opened for it alone.
    std::uint32_t Fetch(std::uint32_t code)
    {
        CMmioRiff riff([this] { return std::make_unique<CountingHandle>(reads); });
        reads = 0;
        OMMCKINFO chunk{.ckid = code};
        std::uint32_t place = 0;
        EXPECT_TRUE(riff.ommioOpen(folder.wideFile("file"), nullptr, OMMIO_READ));
        EXPECT_EQ(riff.ommioDescend(&chunk, nullptr, OMMIO_FINDCHUNK), 0U);
        EXPECT_EQ(riff.ommioRead(reinterpret_cast<char*>(&place), sizeof place), 4);
        return place;
    }

    TempFolder folder;
    std::string path = folder.file("file");
    std::vector<std::uint32_t> codes = [] {
        std::vector<std::uint32_t> all(kChunks);
        std::iota(all.begin(), all.end(), 1000U);
        return all;
    }();
    std::size_t reads = 0;
};

TEST_F(KeptMap, FetchesFromOneFileWalkItOnce)
{
    Put(FileOf(codes));
    Wait();
    EXPECT_EQ(Fetch(codes.back()), kChunks - 1);
    EXPECT_GT(reads, 20U) << "the walk";
    for (const std::uint32_t place : {kChunks - 2, 1700U, 5U, kChunks - 1}) {
        EXPECT_EQ(Fetch(codes[place]), place);
        EXPECT_LE(reads, 2U);
    }
    std::filesystem::copy_file(path, folder.file("other"));
    std::filesystem::rename(folder.file("other"), path);
    EXPECT_EQ(Fetch(codes.back()), kChunks - 1);
    EXPECT_GT(reads, 20U) << "another file";
}

TEST_F(KeptMap, FilesThatChangedAreWalkedAgain)
{
    const std::string former = FileOf(codes);
    std::reverse(codes.begin(), codes.end());
    const std::string changed = FileOf(codes);
    const auto inPlace = [&] { std::fstream(path, std::ios::in | std::ios::out | std::ios::binary) << changed; };
    const auto withItsTime = [&] {
        const auto time = std::filesystem::last_write_time(path);
        inPlace();
        std::filesystem::last_write_time(path, time);
    };
    const auto replaced = [&] {
        std::ofstream(folder.file("new"), std::ios::binary) << changed;
        std::filesystem::rename(folder.file("new"), path);
    };
    const std::pair<const char*, std::function<void()>> ways[] = {
        {"in place", inPlace},
        {"written again", [&] { Put(changed); }},
        {"with its time", withItsTime},
        {"replaced", replaced},
        {"mapped", [&] { test::WriteMapped(path, changed); }}};
    for (const auto& [name, change] : ways) {
        Put(former);
        Wait();
        EXPECT_EQ(Fetch(1000), 0U) << name;
        EXPECT_EQ(Fetch(1000 + kChunks - 1), kChunks - 1) << name;
        change();
        EXPECT_EQ(Fetch(1000 + 7), kChunks - 8) << name << ", at once";
        Wait();
        EXPECT_EQ(Fetch(1000 + 9), kChunks - 10) << name << ", later";
        EXPECT_EQ(Fetch(1000 + 3), kChunks - 4) << name << ", with the new map";
    }
}

// A kept map is a hint: a header that isn't where it was drops the map.
TEST_F(KeptMap, AHeaderThatMovedUnderTheSameStampIsNotTrusted)
{
    class Stamped final : public FileHandle {
    public:
        explicit Stamped(const std::string& bytes) : m_bytes(bytes) {}
        bool Open(const wstring&, Access) override { return true; }
        std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
        {
            return static_cast<std::int64_t>(m_bytes.copy(buffer, count, static_cast<std::size_t>(position)));
        }
        bool WriteAt(std::int64_t, const char*, std::size_t) override { return false; }
        std::int64_t Size() override { return std::ssize(m_bytes); }
        std::optional<FileStamp> Stamp() override { return FileStamp{1, 2, std::ssize(m_bytes), 3, 4}; }
        bool Close() override { return true; }

    private:
        const std::string& m_bytes;
    };
    std::string bytes = FileOf(codes);
    const auto fetch = [&](std::uint32_t code) {
        CMmioRiff riff([&] { return std::make_unique<Stamped>(bytes); });
        OMMCKINFO chunk{.ckid = code};
        EXPECT_TRUE(riff.ommioOpen(u"any", nullptr, OMMIO_READ));
        EXPECT_EQ(riff.ommioDescend(&chunk, nullptr, OMMIO_FINDCHUNK), 0U);
        return (chunk.dwDataOffset - 8) / kChunkSize;
    };
    EXPECT_EQ(fetch(1000 + kChunks - 1), kChunks - 1);
    std::reverse(codes.begin(), codes.end());
    bytes = FileOf(codes);
    EXPECT_EQ(fetch(1000 + 5), kChunks - 6);
    EXPECT_EQ(fetch(1000 + kChunks - 1), 0U);
}

} // namespace
} // namespace ZelmResult
