// The ring of blocks of a vector on a referenced axis.

#include "zelmresult/results/ref_vector.h"

#include <climits>
#include <cmath>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>
#include <vector>

namespace ZelmResult {
namespace {

using Values = std::vector<float>;

// One turn after the other.
struct PlainRing {
    explicit PlainRing(int size) : values(static_cast<std::size_t>(size)) {}
    Values values;
    std::int64_t count = 0, first = 0, next = 0, firstBlock = 0, lastBlock = -1;

    void put(float value)
    {
        const auto size = static_cast<std::int64_t>(values.size());
        values[static_cast<std::size_t>(next)] = value;
        next = (next + 1) % size;
        if (count < size)
            ++count;
        else
            ++firstBlock, first = next;
    }
    std::int64_t add(float value, std::int64_t block)
    {
        for (std::int64_t missing = lastBlock + 1; missing < block; ++missing) put(INFINITY);
        const std::int64_t position = next;
        put(value);
        lastBlock = block;
        return position;
    }
    [[nodiscard]] std::int64_t find(std::int64_t block) const
    {
        if (block < firstBlock || block > lastBlock) return -1;
        const std::int64_t place = first - firstBlock + block, size = static_cast<std::int64_t>(values.size());
        return place >= size ? place - size : place;
    }
};

TEST(RefVector, RingAgreesWithThePlainOne)
{
    std::mt19937 random(7);
    const auto draw = [&random](int low, int high) { return std::uniform_int_distribution(low, high)(random); };
    for (int round = 0; round < 400; ++round) {
        const int size = draw(1, 9);
        const bool onwards = round % 2 == 0; // blocks as they come; else some come again
        CRefVector vector(16, size, SignalType::Complex, 0);
        PlainRing ring(size);
        std::map<int, float> put;
        for (int step = 0; step < 60; ++step) {
            const int block = static_cast<int>(ring.lastBlock) + 1 +
                              (draw(0, 3) > 0 ? 0 : draw(onwards ? 0 : -2 * size, draw(0, 9) > 0 ? size : 5 * size));
            const auto value = static_cast<float>(step);
            ASSERT_EQ(vector.AddNewValue(value, -value, block), ring.add(value, block));
            put[block] = value;
            ASSERT_THAT(Values(vector.GetRealValue(), vector.GetRealValue() + size),
                        ::testing::ContainerEq(ring.values));
            ASSERT_TRUE(vector.GetCount() == ring.count && vector.GetNextIndex() == ring.next);
            ASSERT_TRUE(vector.GetFirstIndex() == ring.first && vector.GetFirstBlockNb() == ring.firstBlock);
            ASSERT_EQ(vector.GetLastBlockNb(), ring.lastBlock);
            for (int asked = block - 2 * size; asked <= block + 2; ++asked) {
                std::int32_t index = 9;
                float found = -7;
                const std::int64_t place = ring.find(asked);
                ASSERT_EQ(vector.SearchForIndex(asked, index), place >= 0);
                const int position = vector.GetValueByBloc(asked, found);
                if (!onwards) continue; // a block that comes again leaves the books astray
                ASSERT_EQ(index, place);
                const bool isHeld = asked >= 0 && asked > block - size && asked <= block;
                ASSERT_EQ(place >= 0, isHeld);
                ASSERT_EQ(position, isHeld && put.contains(asked) ? place : -1);
                ASSERT_EQ(found, !isHeld ? -7 : put.contains(asked) ? put[asked] : INFINITY);
            }
            const std::size_t at = static_cast<std::size_t>(draw(0, size - 1));
            ASSERT_TRUE(vector.GetImValue()[at] == -ring.values[at] || std::isinf(ring.values[at]));
        }
    }
}

TEST(RefVector, RingAtItsEnds)
{
    CRefVector vector(16, 3, SignalType::Real, 0);
    EXPECT_EQ(vector.AddNewValue(1, 0, INT_MAX), INT_MAX % 3);
    EXPECT_TRUE(vector.GetFirstBlockNb() == INT_MAX - 2 && vector.GetCount() == 3);
    float value = 0;
    EXPECT_EQ(vector.GetValueByBloc(INT_MAX, value), INT_MAX % 3);
    EXPECT_EQ(vector.GetValueByBloc(INT_MAX - 1, value), -1);
    EXPECT_TRUE(std::isinf(value));
    for (const int block : {INT_MIN, INT_MAX, INT_MAX, INT_MIN}) EXPECT_GE(vector.AddNewValue(2, 0, block), 0);
    vector.Clean();
    EXPECT_TRUE(vector.GetLastBlockNb() == -1 && vector.GetCount() == 0 && vector.GetFirstBlockNb() == 0);
    EXPECT_EQ(vector.AddNewValue(3, 0, 0), 0);
    vector.SetSize(2);
    EXPECT_EQ(vector.GetLastBlockNb(), 0) << "not -1";
    EXPECT_TRUE(vector.GetCount() == 0 && vector.GetNextIndex() == 0);
    EXPECT_EQ(vector.AddNewValue(3, 0, 1), 0) << "so block 0 counts as there";
    vector.SetSize(0);
    EXPECT_EQ(vector.AddNewValue(1, 1, 5), -1);
    EXPECT_EQ(vector.GetValueByBloc(0, value), -1);

    CReferencedAxis axis; // whose holder stores the values
    for (int block = 0; block < 11; ++block) {
        EXPECT_EQ(axis.UpdateIndex(4), block < 4 ? -1 : block - 4);
        axis.SetLastBlockNb(block);
        std::int32_t index = 0;
        EXPECT_TRUE(axis.SearchForRefIndex(block, index, 4) && index == block % 4);
        EXPECT_EQ(axis.SearchForRefIndex(block - 4, index, 4), false);
        EXPECT_EQ(index, -1);
    }
    EXPECT_EQ(axis.UpdateIndex(0), -1);
}

TEST(RefVector, ValuesByTheTableOfBlocks)
{
    CRefVector vector(16, 4, SignalType::Real, 0);
    std::copy_n(std::begin({1.0F, INFINITY, 3.0F, 4.0F}), 4, vector.GetRealValue());
    float value = 9;
    EXPECT_FALSE(vector.GetValueByBlocForConversion(7, value));
    const std::int32_t blocks[] = {7, 8, 9};
    EXPECT_TRUE(vector.CopyBlocNumber(blocks, 3));
    EXPECT_TRUE(vector.GetValueByBlocForConversion(9, value) && value == 3);
    EXPECT_FALSE(vector.GetValueByBlocForConversion(8, value));
    EXPECT_TRUE(std::isinf(value));
    EXPECT_FALSE(vector.GetValueByBlocForConversion(10, value));
    EXPECT_EQ(value, 0);
}

} // namespace
} // namespace ZelmResult
