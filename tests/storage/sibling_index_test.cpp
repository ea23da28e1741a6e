// The remembered headers must change no answer: searches with them are held against searches that read every header.

#include "tests/builders/memory_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_riff.h"

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

Bytes RandomSiblings(Chance& chance, int depth)
{
    Bytes bytes;
    for (std::uint32_t i = chance.below(6) + (depth == 0 ? 8 : 0); i > 0; --i) {
        const std::uint32_t code = chance.code();
        std::string name(4, '\0');
        std::memcpy(name.data(), &code, 4);
        if (chance.oneIn(3) && depth < 3)
            chance.oneIn(5) ? bytes.riff(name, RandomSiblings(chance, depth + 1))
                            : bytes.list(name, RandomSiblings(chance, depth + 1));
        else
            bytes.chunk(name, Bytes{}.zeros(chance.below(12)));
    }
    return bytes;
}

void Damage(Chance& chance, std::vector<char>& file)
{
    for (std::uint32_t i = chance.below(5); i > 0 && file.size() > 4; --i) {
        const std::uint32_t at = chance.below(file.size() - 3) & (chance.oneIn(4) ? ~0U : ~1U);
        const std::uint32_t value = chance.oneIn(3)   ? chance.wrapping()
                                    : chance.oneIn(2) ? chance.code()
                                                      : chance.below(40);
        std::memcpy(file.data() + at, &value, 4);
    }
    if (chance.oneIn(2)) file.resize(chance.below(file.size() + 1));
}

// Two backends over one file, and the records that both have filled so far.
struct Pair {
    explicit Pair(MemoryDisk& disk)
        : indexed(disk.handles(), CMmioRiff::Search::Indexed), plain(disk.handles(), CMmioRiff::Search::Plain)
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
        else if (!Seek(static_cast<std::int32_t>(wanted.dwDataOffset), OMMIO_SEEK_SET)) // misses end anywhere
            return false;
        return ours == theirs && SamePosition();
    }
    bool Seek(std::int32_t offset, OMMIO_SEEK_FLAG origin)
    {
        return indexed.ommioSeek(offset, origin) == plain.ommioSeek(offset, origin) && SamePosition();
    }
    bool Ascend(OMMCKINFO chunk)
    {
        OMMCKINFO other = chunk;
        return indexed.ommioAscend(&chunk) == plain.ommioAscend(&other) && chunk == other && SamePosition();
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
        disk.Put(kPath, chance.oneIn(8) ? Bytes{}.zeros(chance.below(200)) : RandomSiblings(chance, 0));
        if (chance.oneIn(2)) Damage(chance, disk[kPath]);
        const std::size_t size = disk[kPath].size();
        Pair pair(disk);
        for (int step = 0; step < 80; ++step) {
            SCOPED_TRACE("round " + std::to_string(round) + ", step " + std::to_string(step));
            OMMCKINFO known; // a chunk that was found before, or one that never was
            if (!pair.found.empty() && !chance.oneIn(6)) known = pair.found[chance.below(pair.found.size())];
            if (chance.oneIn(6)) known.dwDataOffset = chance.below(size + 8);
            if (chance.oneIn(6)) known.cksize = chance.oneIn(3) ? chance.wrapping() : chance.below(size + 8);
            static constexpr std::int32_t behind[] = {-8, 0, 4, 4};
            const auto place = static_cast<std::int32_t>(known.dwDataOffset);
            switch (chance.below(6)) {
            case 0: ASSERT_TRUE(pair.Ascend(known)); break;
            case 1: ASSERT_TRUE(pair.Seek(place + behind[chance.below(4)], OMMIO_SEEK_SET)); break;
            case 2: // anywhere, odd positions too, in and around the file
                ASSERT_TRUE(pair.Seek(static_cast<std::int32_t>(chance.below(size + 9)) - 4,
                                      static_cast<OMMIO_SEEK_FLAG>(chance.below(3))));
                break;
            default: {
                static constexpr OMMIO_DESCEND_FLAG flags[] = {OMMIO_FINDNEXT, OMMIO_FINDCHUNK, OMMIO_FINDRIFF,
                                                               OMMIO_FINDLIST, OMMIO_FINDLIST,  OMMIO_FINDCHUNK};
                const OMMCKINFO wanted{
                    .ckid = chance.code(), .fccType = chance.code(), .dwDataOffset = known.dwDataOffset & 0xFFFF};
                const bool within = chance.oneIn(2);
                if (within && chance.oneIn(2)) {
                    ASSERT_TRUE(pair.Seek(place, OMMIO_SEEK_SET));
                }
                ASSERT_TRUE(pair.Descend(wanted, within ? &known : nullptr, flags[chance.below(6)]));
            }
            }
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
    CMmioRiff indexed{disks[0].handles()}, plain{disks[1].handles(), CMmioRiff::Search::Plain};
    for (MemoryDisk& disk : disks) disk.Put(kPath, file);
    for (CMmioRiff* riff : {&indexed, &plain}) ASSERT_TRUE(riff->ommioOpen(kPath, nullptr, OMMIO_READ));
    for (int step = 0; step < 300; ++step) {
        const wstring name = u"C" + wstring(1, u'1') + wstring(1, static_cast<char16_t>(u'0' + chance.below(3))) +
                             wstring(1, static_cast<char16_t>(u'0' + chance.below(10)));
        const auto start = static_cast<std::int32_t>(starts[chance.below(starts.size())]);
        OMMCKINFO parent{.cksize = chance.below(file.size()) + 1}, chunks[2];
        for (OMMCKINFO& chunk : chunks) chunk.ckid = StringToFourCC(name, false);
        int which = 0;
        std::uint32_t results[2] = {};
        for (CMmioRiff* riff : {&indexed, &plain}) {
            EXPECT_EQ(riff->ommioSeek(start, OMMIO_SEEK_SET), start);
            results[which] = riff->ommioDescend(&chunks[which], step % 2 == 0 ? &parent : nullptr, OMMIO_FINDCHUNK);
            ++which;
        }
        ASSERT_EQ(results[0], results[1]);
        ASSERT_EQ(chunks[0], chunks[1]);
        ASSERT_LE(disks[0].counts().reads, disks[1].counts().reads);
    }
    EXPECT_LE(disks[0].counts().reads, starts.size() + 1) << "each once, and the end of the file";
}

// Fetches each of n chunks from the start of their list on; gives the calls to the file.
std::size_t ReadsToFetch(std::uint32_t n, bool backwards)
{
    Bytes children;
    for (std::uint32_t i = 0; i < n; ++i)
        children.code("data").u32(100).append(Bytes{}.u32(i).zeros(96)); // the code is replaced below
    MemoryDisk disk;
    disk.Put(kPath, Bytes{}.list("RESU", children));
    for (std::uint32_t i = 0; i < n; ++i) std::memcpy(disk[kPath].data() + 12 + std::size_t{108} * i, &i, 4);
    CMmioRiff riff(disk.handles());
    EXPECT_TRUE(riff.ommioOpen(kPath, nullptr, OMMIO_READ));
    OMMCKINFO list{.fccType = FourCC("RESU")};
    EXPECT_EQ(riff.ommioDescend(&list, nullptr, OMMIO_FINDLIST), 0U);
    for (std::uint32_t i = 0; i < n; ++i) {
        OMMCKINFO chunk{.ckid = backwards ? n - 1 - i : i};
        std::uint32_t data = 0;
        EXPECT_EQ(riff.ommioSeek(12, OMMIO_SEEK_SET), 12);
        EXPECT_EQ(riff.ommioDescend(&chunk, &list, OMMIO_FINDCHUNK), 0U);
        EXPECT_EQ(riff.ommioRead(reinterpret_cast<char*>(&data), 4), 4);
        EXPECT_EQ(data, chunk.ckid);
        EXPECT_EQ(riff.ommioAscend(&chunk), 0U);
    }
    return disk.counts().reads;
}

TEST(SiblingIndex, FetchingChunksByCodeCostsReadsInProportion)
{
    EXPECT_LE(ReadsToFetch(5000, false), 5000 * 108 / 4096 + 2) << "each part of the file once";
    EXPECT_LE(ReadsToFetch(5000, true), 5000 + 5000 * 108 / 4096 + 2) << "and at most one more for each chunk";
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
            ASSERT_TRUE(pair.Seek(from, OMMIO_SEEK_SET));
            EXPECT_TRUE(pair.Descend({.ckid = wanted}, nullptr, OMMIO_FINDCHUNK)) << from;
        }
    ASSERT_EQ(pair.found.size(), 5U);
    EXPECT_EQ(pair.found[1].dwDataOffset, 1000004U * 8);
    EXPECT_EQ(pair.found[4].dwDataOffset, 48U);
}

} // namespace
} // namespace ZelmResult
