// Waterfalls: the ring, the sparse form after a load, their bytes and copies.

#include "zelmresult/waterfalls/waterfall.h"

#include "tests/builders/record_check.h"
#include "zelmresult/waterfalls/slice_order.h"

#include <algorithm>
#include <gtest/gtest.h>
#include <numeric>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using Numbers = std::vector<std::int32_t>;
using Values = std::vector<float>;

// Slices of two points whose values say block and dimension.
void Fill(CWaterfall& waterfall, const Numbers& blocks)
{
    if (waterfall.GetBlocNumberPtr(0) == nullptr) (void)waterfall.AllocateTabBlockNumber(waterfall.GetZSize());
    for (const std::int32_t block : blocks) {
        const std::int32_t place = waterfall.AddBlock(block, -1);
        waterfall.SetBlocNumber(place, block);
        for (std::int32_t dimension = 0; dimension < 2; ++dimension)
            if (auto slice = waterfall.GetTabData(dimension, place); slice.HasSlice())
                slice.CopySliceFrom(Values{static_cast<float>(10 * block + dimension), 0.5F}.data(), 2);
    }
    waterfall.SetFilled(waterfall.GetCount());
}

std::unique_ptr<CWaterfall> NewRing(std::int32_t slots, SignalType type = SignalType::Real)
{
    return std::make_unique<CWaterfall>(2, 20, 2, slots, nullptr, type, true);
}

// The first point that each slot shows, -1 for an empty one.
Values Shown(CWaterfall& waterfall)
{
    Values values;
    for (std::int32_t slot = 0; slot < waterfall.GetZSize(); ++slot) {
        const auto slice = waterfall.GetTabData(0, slot);
        values.push_back(slice.HasSlice() ? slice.GetSinglePoint(0) : -1);
    }
    return values;
}

// The insertion sort that files were made for, slice by slice.
Numbers LiteralSort(Numbers blocks)
{
    Numbers content(blocks.size());
    std::iota(content.begin(), content.end(), 0);
    for (std::size_t i = 1; i < blocks.size(); ++i) {
        const std::int32_t key = blocks[i];
        std::size_t j = i;
        for (; j > 0 && key < blocks[j - 1]; --j) {
            blocks[j] = blocks[j - 1];
            if (j > 1) content[j] = content[j - 1];
        }
        blocks[j] = key;
        if (j >= 1) content[j] = static_cast<std::int32_t>(i);
    }
    return content;
}

} // namespace

TEST(Waterfall, RingShowsTheLastBlocks)
{
    const auto four = NewRing(4);
    Fill(*four, {0, 1, 2, 3, 4, 5});
    EXPECT_EQ(four->GetOldestIndex(), 2);
    EXPECT_EQ(four->GetIndexByBloc(5), 1);
    EXPECT_EQ(four->GetIndexByBloc(1), -1);
    EXPECT_EQ(four->AddBlock(INT32_MAX, -1), (INT32_MAX - 6 + 2) % 4);
    four->Clean();
    EXPECT_EQ(four->GetCount(), 0);
    EXPECT_EQ(four->GetBlocNumber(2), -1);
    EXPECT_FALSE(four->GetTabData(0, 1).HasSlice());
    EXPECT_EQ(four->AddBlockByIndex(3), 3);
    EXPECT_EQ(four->AddBlockByIndex(4), -1);
    std::int32_t cursor = 0;
    four->SetFilled(3);
    EXPECT_EQ(four->GetBlockNumberFromWbArray(3, cursor), -1);
    four->SetFilled(4);
    EXPECT_EQ(four->GetBlockNumberFromWbArray(3, cursor), 3);
    EXPECT_EQ(cursor, 3);

    // Turn by turn, in random order with gaps.
    std::mt19937 random(5);
    for (int round = 0; round < 200; ++round) {
        auto slots = static_cast<std::int32_t>(1 + random() % 6);
        const auto waterfall = NewRing(slots);
        std::vector<bool> isShown(static_cast<std::size_t>(slots));
        std::int32_t next = 0, last = -1;
        const auto mark = [&](bool shows) {
            if (next < slots) isShown[static_cast<std::size_t>(next)] = shows;
            next = next + 1 >= slots ? 0 : next + 1;
        };
        for (int step = 0; step < 30; ++step) {
            if (step == 15 && round % 2 == 0) { // the ring continues where it was, in another size
                slots = static_cast<std::int32_t>(1 + random() % 6);
                waterfall->SetZSize(slots, true);
                isShown.assign(static_cast<std::size_t>(slots), false);
            }
            const std::int32_t block = std::max(0, last - 1 + static_cast<std::int32_t>(random() % 12));
            for (std::int32_t missing = last + 1; missing < block; ++missing) mark(false);
            ASSERT_EQ(waterfall->AddBlock(block, -1), next);
            mark(true);
            last = block;
            for (std::int32_t slot = 0; slot < slots; ++slot)
                ASSERT_EQ(waterfall->GetTabData(0, slot).HasSlice(), isShown[static_cast<std::size_t>(slot)]);
        }
    }
}

TEST(Waterfall, SortMovesSlicesAsEver)
{
    std::mt19937 random(6);
    for (int round = 0; round < 3000; ++round) {
        Numbers blocks(1 + random() % 12);
        for (std::int32_t& block : blocks) block = static_cast<std::int32_t>(random() % 10);
        const Numbers sources = SourcesOfSort(blocks);
        ASSERT_EQ(sources, LiteralSort(blocks));
        Numbers content(blocks.size());
        std::iota(content.begin(), content.end(), 0);
        std::int32_t spare = -1;
        for (const SliceMove& move : MovesOf(sources)) {
            ASSERT_NE(move.from, 0);
            ASSERT_NE(move.to, 0);
            const std::int32_t moved = move.from < 0 ? spare : content[static_cast<std::size_t>(move.from)];
            (move.to < 0 ? spare : content[static_cast<std::size_t>(move.to)]) = moved;
        }
        ASSERT_EQ(content, sources);
    }
}

// What is stored as a ring is restored sparse: slots are block numbers, and slice 0 stays where it is.
TEST(Waterfall, OneVectorShowsAllSlices)
{
    const auto ring = NewRing(3, SignalType::Complex);
    Fill(*ring, {0, 2});
    CVector* slice = ring->GetTempVector(2);
    EXPECT_EQ(slice->GetRealValue()[0], 20);
    EXPECT_EQ(slice->GetImValue()[0], 21);
    slice->GetRealValue()[1] = 9;
    EXPECT_EQ(ring->GetTabPoint(0, 2, 1), 9);
    EXPECT_EQ(ring->GetTempVector(1), slice);
    EXPECT_EQ(slice->GetRealValue(), nullptr);
    Values values(3, 7);
    ring->GetValues(1, 2, values.data(), 3);
    EXPECT_EQ(values, Values({21, 0.5, 0}));
}

TEST(Waterfall, ComesBackByBlockNumber)
{
    const struct {
        Numbers blocks;
        Values shown;
        Numbers table;
    } rows[] = {
        {{2, 5}, {-1, -1, 20, -1, -1, 50}, {2, 5}},
        {{0, 1, 2, 3, 4, 5}, {-1, -1, 40, 30, 50, 50}, {2, 3, 4, 5}}, // places 4, 5, 2, 3
        {{9, 5, 2}, {-1, -1, 90, -1, -1, 50, -1, -1, -1, 50}, {2, 5, 9}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        const auto ring = NewRing(std::min<std::int32_t>(4, static_cast<std::int32_t>(row.blocks.size())));
        for (const std::int32_t block : row.blocks) {
            ring->SetLastBlockNb(block - 1); // no gaps in the ring
            Fill(*ring, {block});
        }
        CWaterfall read(true);
        readInto(read, blockOf(*ring));
        EXPECT_EQ(Shown(read), row.shown);
        EXPECT_EQ(read.GetFilled(), std::ssize(row.table));
        EXPECT_EQ(Numbers(read.GetBlocNumberPtr(0), read.GetBlocNumberPtr(0) + read.GetFilled()), row.table);
        const std::unique_ptr<CResult> copy(read.GetCopy());
        EXPECT_EQ(Shown(dynamic_cast<CWaterfall&>(*copy)), Values(row.shown.size(), -1)) << "no mapping";
        const std::unique_ptr<CWaterfall> whole(read.GetWholeCopy());
        EXPECT_EQ(Shown(*whole), row.shown);
        expectBytes(written(*whole), blockOf(read));
    }

    const auto stored = [](const Numbers& blocks) { // the slices of blocks 0 to n - 1, with other numbers
        const auto ring = NewRing(static_cast<std::int32_t>(blocks.size()));
        Numbers count(blocks.size());
        std::iota(count.begin(), count.end(), 0);
        Fill(*ring, count);
        std::copy(blocks.begin(), blocks.end(), ring->GetBlocNumberPtr(0));
        return written(*ring);
    };
    CWaterfall twice(true), far(true);
    EXPECT_TRUE(readFrom(stored({7, 7, 9}), reading(twice)));
    EXPECT_EQ(twice.GetTabPoint(0, 7, 0), 0) << "of a block that stands twice the first slice counts";
    EXPECT_EQ(twice.GetTabPoint(0, 9, 0), 20);
    EXPECT_TRUE(readFrom(stored({5, INT32_MAX - 1}), reading(far)));
    EXPECT_EQ(far.GetZSize(), INT32_MAX);
    EXPECT_EQ(far.GetTabPoint(0, INT32_MAX - 1, 0), 10);
    const std::unique_ptr<CResult> copyOfFar(far.GetCopy()); // in no more memory than it is worth
    EXPECT_EQ(dynamic_cast<CWaterfall&>(*copyOfFar).GetTabPoint(0, INT32_MAX - 1, 0), 0);
    for (const Numbers& blocks : {Numbers{0, 1, 1}, Numbers{-5, -4}, Numbers{0, INT32_MAX}})
        EXPECT_FALSE(readFrom(stored(blocks), reading(twice)));
}

TEST(Waterfall, Stored)
{
    const auto ring = NewRing(3, SignalType::Complex);
    Fill(*ring, {0, 1, 2});
    ring->SetYMax(3);
    ring->SetYMin(4);
    ring->SetXMin(1);
    ring->SetXMax(2);
    Bytes stored = Bytes{}.u16(1).append(baseBlockOf<CResult>(*ring)).append(baseBlockOf<CReferencedAxis>(*ring));
    for (std::int32_t slot = 0; slot < 3; ++slot) stored.append(blockOf(*ring->GetTempVector(slot)), "slice");
    stored.i32(0, "block numbers").i32(1).i32(2).f32s({4, 3, 4, 3, 1, 2}, "ranges").raw("99999999", "quantities");
    expectBytes(written(*ring), stored);
    RecordCheck<CWaterfall> check{.name = "CWaterfall", .lowest = 0, .newest = 1, .silentReads = -1};
    check.make = [] { return std::make_unique<CWaterfall>(true); };
    checkRecord(*ring, check);
    ring->ClearTab();
    EXPECT_FALSE(isWritten(writing(*ring))) << "without a table";
}

} // namespace ZelmResult
