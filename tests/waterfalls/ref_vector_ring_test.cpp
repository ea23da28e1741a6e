// The rings of blocks: of a vector on a referenced axis, and of the pair of a waterfall's reference and its result.

#include "zelmresult/waterfalls/ref_waterfall.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <limits>
#include <random>
#include <vector>

namespace ZelmResult {
namespace {

using Values = std::vector<float>;
using Numbers = std::vector<std::int32_t>;

constexpr float kGap = std::numeric_limits<float>::infinity();

// Both, block by block and value by value, as they were first written down.
struct Model {
    std::int32_t size, next = 0, count = 0, first = 0, firstBlock = 0, last = -1, unsorted = 0;
    Values ring = Values(static_cast<std::size_t>(size), 0.0F);
    Numbers table = Numbers(static_cast<std::size_t>(size), -1);
    CWaterfallRef sorted = {}; // its sorted arrays only

    float& At(std::int32_t place) { return ring[static_cast<std::size_t>(place % size)]; }
    void Put(float value)
    {
        At(next) = value;
        next = (next + 1) % size;
        if (count < size) {
            ++count;
            return;
        }
        first = next;
        (void)sorted.RemoveValueInSortedTabs(firstBlock++);
    }
    void Unsorted(std::int32_t block)
    {
        table[static_cast<std::size_t>(unsorted)] = block;
        unsorted = (unsorted + 1) % size;
    }
    std::int32_t Add(float value, std::int32_t block, bool slides)
    {
        for (std::int32_t missing = last + 1; missing < block; ++missing) {
            if (count < size) Unsorted(-2);
            Put(kGap);
        }
        const std::int32_t position = next;
        if (slides && block >= size) {
            for (float& entry : ring)
                if (entry != kGap) entry -= 1.0F;
            value = static_cast<float>(size - 1);
            Put(value);
            sorted.CleanSortedTab();
            for (std::int32_t i = 0; i + 1 < size; ++i)
                if (At(next + i) != kGap) (void)sorted.InsertValueInSortedTabs(At(next + i), firstBlock + i);
        } else {
            Put(value);
        }
        Unsorted(block);
        (void)sorted.InsertValueInSortedTabs(value, block);
        last = block;
        return position;
    }
};

Values Shown(CRefVector& vector) { return {vector.GetRealValue(), vector.GetRealValue() + vector.GetSize()}; }

template <class Array>
auto Entries(const Array& array)
{
    std::vector<std::decay_t<decltype(array[0])>> entries;
    for (std::int32_t i = 0; i < array.GetSize(); ++i) entries.push_back(array[i]);
    return entries;
}

void ExpectSame(CRefVector& vector, const Model& model)
{
    ASSERT_THAT(Shown(vector), ::testing::ContainerEq(model.ring));
    ASSERT_EQ(vector.GetCount(), model.count);
    ASSERT_EQ(vector.GetNextIndex(), model.next);
    ASSERT_EQ(vector.GetFirstIndex(), model.first);
    ASSERT_EQ(vector.GetFirstBlockNb(), model.firstBlock);
    ASSERT_EQ(vector.GetLastBlockNb(), model.last);
}

} // namespace

TEST(Rings, AgreeWithThePlainOne)
{
    std::mt19937 random(7);
    const auto draw = [&random](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int round = 0; round < 500; ++round) {
        const int size = draw(1, 9);
        const bool onwards = round % 2 == 0; // blocks as they come; else some come again
        const bool slides = round % 3 == 0;
        CRefVector vector(16, size, SignalType::Complex, 0);
        CWaterfallRef reference(23, size, u"Speed", SignalType::Real, true);
        CRefWaterfall result(141, size, SignalType::Real, nullptr, &reference, slides ? 128 : 43, true, true);
        reference.SetMyRefVect(&result);
        Model plain{.size = size}, pair{.size = size};
        for (int step = 0; step < 40 && !HasFatalFailure(); ++step) {
            const int jump = draw(onwards ? 0 : -2 * size, draw(0, 9) > 0 ? size : 5 * size);
            const int block = std::max(onwards ? 0 : INT_MIN, plain.last + 1 + (draw(0, 3) > 0 ? 0 : jump));
            const auto value = static_cast<float>(draw(0, 5));
            ASSERT_EQ(vector.AddNewValue(value, -value, block), plain.Add(value, block, false));
            ExpectSame(vector, plain);
            const auto newest = static_cast<std::size_t>((plain.next + size - 1) % size);
            ASSERT_EQ(vector.GetImValue()[newest], -plain.ring[newest]);
            for (int asked = block - 2 * size; onwards && asked <= block + 2; ++asked) {
                std::int32_t index = 9;
                float found = -7;
                const bool isHeld = asked >= 0 && asked > block - size && asked <= block;
                ASSERT_EQ(vector.SearchForIndex(asked, index), isHeld);
                ASSERT_EQ(index, isHeld ? asked % size : -1);
                const float wanted = isHeld ? plain.At(asked) : -7;
                ASSERT_EQ(vector.GetValueByBloc(asked, found), isHeld && wanted != kGap ? index : -1);
                ASSERT_EQ(found, wanted);
            }
            ASSERT_EQ(result.AddRefValue(value, block, false), pair.Add(value, block, slides));
            ExpectSame(result, pair);
            ASSERT_EQ(Numbers(reference.GetBlockNumberPtr(), reference.GetBlockNumberPtr() + size), pair.table);
            ASSERT_EQ(Entries(reference.GetSortedValues()), Entries(pair.sorted.GetSortedValues()));
            ASSERT_EQ(Entries(reference.GetSortedBlocNumbers()), Entries(pair.sorted.GetSortedBlocNumbers()));
        }
    }
}

// Which stores no values itself.
TEST(Rings, OfAnAxisAlone)
{
    CReferencedAxis axis;
    for (int block = 0; block < 11; ++block) {
        EXPECT_EQ(axis.UpdateIndex(4), block < 4 ? -1 : block - 4);
        axis.SetLastBlockNb(block);
        std::int32_t index = 0;
        EXPECT_TRUE(axis.SearchForRefIndex(block, index, 4));
        EXPECT_EQ(index, block % 4);
    }
}

TEST(Rings, ValuesByTheTableOfBlocks)
{
    CRefVector vector(16, 4, SignalType::Real, 0);
    std::copy_n(std::begin({1.0F, kGap, 3.0F, 4.0F}), 4, vector.GetRealValue());
    float value = 9;
    EXPECT_FALSE(vector.GetValueByBlocForConversion(7, value));
    const std::int32_t blocks[] = {7, 8, 9};
    EXPECT_TRUE(vector.CopyBlocNumber(blocks, 3));
    EXPECT_TRUE(vector.GetValueByBlocForConversion(9, value));
    EXPECT_EQ(value, 3);
    EXPECT_FALSE(vector.GetValueByBlocForConversion(8, value));
    EXPECT_EQ(value, kGap);
    EXPECT_FALSE(vector.GetValueByBlocForConversion(10, value));
    EXPECT_EQ(value, 0);
}

} // namespace ZelmResult
