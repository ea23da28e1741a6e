// The remembered headers must change no answer: searches with them are held against searches that read every header.

#include "tests/builders/memory_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cstring>
#include <gtest/gtest.h>
#include <random>
#include <string>
#include <vector>

namespace ZelmResult {
namespace {

using namespace test;

const wstring kPath = u"f";

class Chance {
public:
    explicit Chance(unsigned seed) : m_engine(seed) {}
    std::uint32_t below(std::size_t n) { return static_cast<std::uint32_t>(m_engine() % n); }
    bool oneIn(std::size_t n) { return below(n) == 0; }
    std::uint32_t code()
    {
        static constexpr std::uint32_t codes[] = {FourCC("AAAA"), FourCC("BBBB"), FourCC("CCCC"),
                                                  kCodeList,      kCodeRiff,      0};
        return codes[below(6)];
    }
    std::uint32_t wrapping() { return (oneIn(2) ? 0xFFFFFFFF : 0x7FFFFFFF) - below(24); }

private:
    std::mt19937 m_engine;
};

// Headers one after the other, whose sizes lead over any number of them, and nearly always to another one.
Bytes RandomHeaders(Chance& chance)
{
    Bytes bytes;
    for (std::uint32_t i = chance.below(60); i > 0; --i) {
        const std::uint32_t code = chance.code();
        const bool isList = code == kCodeList || code == kCodeRiff;
        bytes.u32(code);
        bytes.u32(chance.oneIn(40) ? chance.wrapping() : chance.oneIn(3) ? chance.below(80) : isList ? 4 : 0);
        if (isList) bytes.u32(chance.code());
    }
    return bytes;
}

// Two backends over one file, and the records that both have filled so far.
struct Pair {
    explicit Pair(const MemoryDisk& disk) : Pair(disk, disk) {}
    Pair(const MemoryDisk& first, const MemoryDisk& second)
        : indexed(first.handles()), plain(second.handles(), CMmioRiff::Search::Plain)
    {
        for (CMmioRiff* riff : {&indexed, &plain}) EXPECT_TRUE(riff->ommioOpen(kPath, nullptr, OMMIO_READ));
    }
    static std::int32_t Position(CMmioRiff& riff)
    {
        OMMIOINFO info;
        EXPECT_EQ(riff.ommioGetInfo(&info), 0U);
        return info.lDiskOffset;
    }
    bool SamePosition() { return Position(indexed) == Position(plain); }

    // False when the two differ.
    bool Descend(OMMCKINFO wanted, const OMMCKINFO* parent, OMMIO_DESCEND_FLAG flag)
    {
        OMMCKINFO ours = wanted, theirs = wanted, parents[2];
        if (parent != nullptr) std::fill_n(parents, 2, *parent);
        const std::uint32_t result = plain.ommioDescend(&theirs, parent != nullptr ? parents : nullptr, flag);
        if (indexed.ommioDescend(&ours, parent != nullptr ? parents + 1 : nullptr, flag) != result) return false;
        if (result == 0)
            found.push_back(theirs);
        else if (!Seek(static_cast<std::int32_t>(wanted.dwDataOffset))) // misses end anywhere
            return false;
        return ours == theirs && SamePosition();
    }
    bool Seek(std::int32_t offset)
    {
        return indexed.ommioSeek(offset, OMMIO_SEEK_SET) == plain.ommioSeek(offset, OMMIO_SEEK_SET) && SamePosition();
    }

    CMmioRiff indexed, plain;
    std::vector<OMMCKINFO> found;
};

TEST(SiblingIndex, RandomWalksGiveWhatThePlainWalkGives)
{
    Chance chance(42);
    std::size_t hits = 0;
    for (int round = 0; round < 3000; ++round) {
        MemoryDisk disk;
        disk.Put(kPath, RandomHeaders(chance));
        const std::size_t size = chance.below(disk[kPath].size() + 1);
        if (chance.oneIn(2)) disk[kPath].resize(size);
        Pair pair(disk);
        for (int step = 0; step < 80; ++step) {
            SCOPED_TRACE("round " + std::to_string(round) + ", step " + std::to_string(step));
            OMMCKINFO known; // a chunk that was found before, or one that never was
            if (!pair.found.empty() && !chance.oneIn(6)) known = pair.found[chance.below(pair.found.size())];
            if (chance.oneIn(6)) known.dwDataOffset = chance.below(size + 8);
            if (chance.oneIn(6)) known.cksize = chance.oneIn(3) ? chance.wrapping() : chance.below(size + 8);
            const auto place = static_cast<std::int32_t>(known.dwDataOffset);
            if (chance.oneIn(4)) { // anywhere, odd positions too, in and around the file
                ASSERT_TRUE(pair.Seek(static_cast<std::int32_t>(chance.below(size + 9)) - 4));
            } else if (chance.oneIn(2)) { // at the data, or after a list type
                ASSERT_TRUE(pair.Seek(chance.oneIn(2) ? place : place + 4));
            }
            static constexpr OMMIO_DESCEND_FLAG flags[] = {OMMIO_FINDNEXT, OMMIO_FINDCHUNK, OMMIO_FINDRIFF,
                                                           OMMIO_FINDLIST, OMMIO_FINDLIST,  OMMIO_FINDCHUNK};
            const OMMCKINFO wanted{
                .ckid = chance.code(), .fccType = chance.code(), .dwDataOffset = known.dwDataOffset & 0xFFFF};
            ASSERT_TRUE(pair.Descend(wanted, chance.oneIn(2) ? &known : nullptr, flags[chance.below(6)]));
        }
        hits += pair.found.size();
    }
    EXPECT_GT(hits, 10000U) << "the searches are worth something";
}

// Chunks so far apart that each header takes a read of its own.
TEST(SiblingIndex, ReadsNoHeaderThatThePlainWalkWouldNotRead)
{
    Chance chance(7);
    Bytes file;
    std::vector<std::uint32_t> starts;
    for (std::uint32_t i = 0; i < 30; ++i) {
        starts.push_back(static_cast<std::uint32_t>(file.size()));
        file.chunk("C" + std::to_string(100 + i % 20), Bytes{}.zeros(70000 + chance.below(50)));
    }
    MemoryDisk disks[2];
    for (MemoryDisk& disk : disks) disk.Put(kPath, file);
    for (int round = 0; round < 100; ++round) {
        Pair pair(disks[0], disks[1]);
        for (MemoryDisk& disk : disks) disk.counts() = {};
        for (int step = 0; step < 3; ++step) {
            const OMMCKINFO parent{.cksize = chance.below(file.size()) + 1};
            const OMMCKINFO wanted{.ckid = StringToFourCC(u"C" + ToDecimal(100 + chance.below(30)), false)};
            ASSERT_TRUE(pair.Seek(static_cast<std::int32_t>(starts[chance.below(starts.size())])));
            ASSERT_TRUE(pair.Descend(wanted, chance.oneIn(2) ? &parent : nullptr, OMMIO_FINDCHUNK));
            ASSERT_LE(disks[0].counts().reads, disks[1].counts().reads);
        }
    }
}

TEST(SiblingIndex, FetchingChunksByCodeCostsReadsInProportion)
{
    constexpr std::uint32_t n = 5000;
    MemoryDisk disk;
    disk[kPath].resize(std::size_t{108} * n);
    for (std::uint32_t i = 0; i < n; ++i) {
        const std::uint32_t words[] = {i, 100, i}; // code, size and the first of the data
        std::memcpy(disk[kPath].data() + std::size_t{108} * i, words, sizeof words);
    }
    for (const bool backwards : {false, true}) {
        CMmioRiff riff(disk.handles());
        ASSERT_TRUE(riff.ommioOpen(kPath, nullptr, OMMIO_READ));
        disk.counts() = {};
        for (std::uint32_t i = 0; i < n; ++i) { // each from the start on
            OMMCKINFO chunk{.ckid = backwards ? n - 1 - i : i};
            std::uint32_t data = 0;
            EXPECT_EQ(riff.ommioSeek(0, OMMIO_SEEK_SET), 0);
            EXPECT_EQ(riff.ommioDescend(&chunk, nullptr, OMMIO_FINDCHUNK), 0U);
            EXPECT_EQ(riff.ommioRead(reinterpret_cast<char*>(&data), 4), 4);
            EXPECT_EQ(data, chunk.ckid);
        }
        EXPECT_LE(disk.counts().reads, (backwards ? n : 0) + n * 108 / 4096 + 2) << "each once, and one more for each";
    }
}

TEST(SiblingIndex, PastAMillionHeadersThePlainWalkAnswers)
{
    MemoryDisk disk;
    disk[kPath].assign(std::size_t{1100000} * 8, '\0'); // empty chunks of code 0
    const std::uint32_t code = FourCC("AAAA");
    for (const std::size_t at : {5U, 1000003U, 1099999U}) std::memcpy(disk[kPath].data() + at * 8, &code, 4);
    Pair pair(disk);
    for (const std::int32_t from : {0, 48, 8 * 1000000, 8 * 1000004, 0})
        for (const std::uint32_t wanted : {FourCC("AAAA"), FourCC("BBBB")}) {
            ASSERT_TRUE(pair.Seek(from));
            EXPECT_TRUE(pair.Descend({.ckid = wanted}, nullptr, OMMIO_FINDCHUNK)) << from;
        }
    ASSERT_EQ(pair.found.size(), 5U);
    EXPECT_EQ(pair.found[1].dwDataOffset, 1000004U * 8);
    EXPECT_EQ(pair.found[4].dwDataOffset, 48U);
}

} // namespace
} // namespace ZelmResult
