#include "zelmresult/storage/mmio_riff.h"

#include "tests/builders/platform.h"
#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <random>
#include <string_view>
#include <tuple>

namespace ZelmResult {
namespace {

using namespace test;

constexpr std::uint32_t kWriteFlags = OMMIO_WRITE | OMMIO_CREATE | OMMIO_ALLOCBUF;
const wstring kPath = u"f";

class Riff : public ::testing::Test {
protected:
    void Open(std::uint32_t flags, std::int32_t buffer = 0)
    {
        OMMIOINFO info{buffer, 0};
        ASSERT_TRUE(riff.ommioOpen(kPath, buffer == 0 ? nullptr : &info, flags));
    }
    void OpenStored(const Bytes& bytes)
    {
        disk.Put(kPath, bytes);
        Open(OMMIO_READ);
    }
    OMMCKINFO Create(std::uint32_t code, OMMIO_CREATE_CHUNK_FLAG flag = OMMIO_CREATECHUNK)
    {
        OMMCKINFO chunk;
        (flag == OMMIO_CREATECHUNK ? chunk.ckid : chunk.fccType) = code;
        EXPECT_EQ(riff.ommioCreateChunk(&chunk, flag), 0U);
        return chunk;
    }
    bool Write(std::string_view text)
    {
        return riff.ommioWrite(text.data(), static_cast<std::int32_t>(text.size())) ==
               static_cast<std::int32_t>(text.size());
    }
    // The data offset of what a search from a position finds, -1 for a miss.
    std::int64_t Find(std::int32_t from, OMMIO_DESCEND_FLAG flag, std::uint32_t code, OMMCKINFO* parent = nullptr)
    {
        OMMCKINFO chunk;
        (flag == OMMIO_FINDCHUNK ? chunk.ckid : chunk.fccType) = code;
        EXPECT_EQ(riff.ommioSeek(from, OMMIO_SEEK_SET), from);
        return riff.ommioDescend(&chunk, parent, flag) == 0 ? std::int64_t{chunk.dwDataOffset} : -1;
    }
    std::int32_t Position()
    {
        OMMIOINFO info;
        EXPECT_EQ(riff.ommioGetInfo(&info), 0U);
        return info.lDiskOffset;
    }

    MemoryDisk disk;
    CMmioRiff riff{disk.handles()};
};

TEST_F(Riff, SizesThatWrapNeitherGoBackNorHang)
{
    for (const std::uint32_t size : {0xFFFFFFFFU, 0xFFFFFFF8U, 0x80000000U, 0x7FFFFFF8U}) {
        OpenStored(Bytes{}.chunk("AAAA", {}).code("BBBB").u32(size).chunk("AAAA", {}));
        EXPECT_EQ(Find(8, OMMIO_FINDCHUNK, FourCC("AAAA")), -1) << size;
        OMMCKINFO chunk{.ckid = FourCC("BBBB"), .cksize = size, .dwDataOffset = 16};
        EXPECT_NE(riff.ommioAscend(&chunk), 0U) << "past 2^31-1";
        EXPECT_EQ(Find(16, OMMIO_FINDCHUNK, FourCC("AAAA"), &chunk), 24) << "an endless parent still holds it";
    }
}

TEST_F(Riff, SizesArePatchedInTheWindowWhereTheyStillLieThere)
{
    Open(kWriteFlags, 4096);
    OMMCKINFO form = Create(FourCC("ZMXF"), OMMIO_CREATERIFF);
    Bytes children;
    for (const std::size_t size : {0U, 1U, 1000U, 4087U, 4096U, 5000U, 9001U, 2U}) {
        OMMCKINFO chunk = Create(FourCC("data"));
        const std::string data(size, static_cast<char>('a' + size % 26));
        for (std::size_t done = 0; done < size; done += 7) EXPECT_TRUE(Write(std::string_view(data).substr(done, 7)));
        EXPECT_EQ(riff.ommioAscend(&chunk), 0U);
        children.chunk("data", Bytes{}.raw(data));
    }
    EXPECT_EQ(riff.ommioAscend(&form), 0U);
    expectBytes(disk[kPath], Bytes{}.riff("ZMXF", children)); // written out before the file is closed
    EXPECT_LE(disk.counts().writes, disk[kPath].size() / 4096 + 12) << "few patches";
}

TEST_F(Riff, WritesSeeksAndReadsGiveWhatAPlainArrayGives)
{
    std::mt19937 random(2024);
    const auto below = [&random](std::size_t n) { return random() % n; };
    for (int round = 0; round < 20; ++round) {
        std::string model;
        std::size_t position = 0;
        Open(kWriteFlags, 1); // the smallest window there is
        for (int step = 0; step < 300; ++step) {
            const std::size_t count = below(8) == 0 ? below(9000) : below(40);
            if (below(5) == 0) {
                std::string got(count, '?');
                const auto n = static_cast<std::size_t>(riff.ommioRead(got.data(), static_cast<std::int32_t>(count)));
                const std::string held = position < model.size() ? model.substr(position, count) : "";
                ASSERT_EQ(got.substr(0, n), held);
                position += n;
            } else if (below(3) == 0) { // near the end, now and then far away or past it
                position =
                    below(4) == 0 ? below(model.size() + 5000) : model.size() - std::min(model.size(), below(600));
                ASSERT_NE(riff.ommioSeek(static_cast<std::int32_t>(position), OMMIO_SEEK_SET), -1);
            } else {
                const std::string data(count, static_cast<char>('A' + step % 50));
                ASSERT_TRUE(Write(data));
                if (count > 0) model.resize(std::max(model.size(), position + count));
                if (count > 0) model.replace(position, count, data);
                position += count;
            }
            ASSERT_EQ(riff.BytesLeft(), static_cast<std::int64_t>(model.size() - std::min(model.size(), position)));
        }
        riff.ommioClose();
        expectBytes(disk[kPath], Bytes{}.raw(model));
    }
}

TEST_F(Riff, TheDefaultCountOfBytesLeftSeeks)
{
    OpenStored(Bytes{}.zeros(10));
    for (const std::int32_t position : {0, 4, 10, 12}) {
        EXPECT_EQ(riff.ommioSeek(position, OMMIO_SEEK_SET), position);
        EXPECT_EQ(riff.CMmio::BytesLeft(), std::max(0, 10 - position));
        EXPECT_EQ(Position(), position) << "comes back";
    }
}

TEST(RiffOnDisk, OnlyRegularFilesOpen)
{
    const TempFolder folder;
    CMmioRiff riff;
    std::vector<wstring> paths = test::NamesOfNoFile(folder);
    paths.insert(paths.end(), {folder.wideFile(""), wstring(), folder.wideFile("missing/f"),
                               folder.wideFile("a") + wstring(1, u'\0')});
    for (const wstring& path : paths)
        for (const std::uint32_t flags : {OMMIO_READ, OMMIO_WRITE, kWriteFlags})
            EXPECT_FALSE(riff.ommioOpen(path, nullptr, flags)) << path.size() << " " << flags;
    EXPECT_FALSE(riff.ommioOpen(folder.wideFile("f"), nullptr, OMMIO_WRITE)) << "does not create";
}

} // namespace
} // namespace ZelmResult
