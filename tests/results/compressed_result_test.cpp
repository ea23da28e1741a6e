#include "zelmresult/results/compressed_result.h"

#include "tests/builders/record_check.h"

#include <climits>
#include <cmath>
#include <cstddef>
#include <deque>
#include <gtest/gtest.h>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

Bytes BaseOf(const CResult& result) // while it is written: three points in use, of 1.5 s
{
    CRegVector base(result.GetProcessType(), 0, 0, SignalType::Compressed, 0, true);
    base.SetResultType(result.GetResultType());
    base.AdjustSize(3);
    base.SetXMax(1.5F);
    return blockOf(base);
}

// Points of six values that say point and table.
Values Points(std::int32_t first, std::int32_t count)
{
    Values values;
    for (std::int32_t i = first; i < first + count; ++i)
        for (std::int32_t t = 0; t < 6; ++t) values.push_back(static_cast<float>(10 * i + t));
    return values;
}

Values Table(const CCompressedScalar& scalar, int table, std::int32_t n)
{
    Values values(static_cast<std::size_t>(n));
    scalar.GetScalarValues(static_cast<OffsetScalarArray>(table), values.data(), n);
    return values;
}

TEST(CompressedVector, HandsOverThePointsInUse)
{
    CCompressedVector vector(25, 4, SignalType::Compressed), target(25, 4, SignalType::Compressed);
    for (int i = 0; i < 4; ++i) vector.TabUp()[i] = static_cast<float>(i + 1);
    vector.SetCompSize(3);
    vector.TransferResult(&target);
    EXPECT_EQ(target.TabUp()[2], 3);
    EXPECT_EQ(target.TabUp()[3], 0);
    EXPECT_EQ(target.GetCompSize(), 0);
}

TEST(CompressedScalar, StoresThePointsInUse)
{
    CCompressedScalar scalar(270, 4, SignalType::Compressed);
    scalar.SetSamplingFrequency(2);
    scalar.CopyCompressedScalar(Points(0, 3).data(), 18, 7, true);
    scalar.SetXMax(9);
    const Bytes start = Bytes{}.u16(1, "version").append(BaseOf(scalar), "base");
    Bytes stored = Bytes(start).i32(3, "CompSize").i32(7, "WriteSize").f32(2, "frequency");
    for (const float t : {0.0F, 1.0F, 2.0F, 3.0F, 4.0F, 5.0F}) stored.f32s({t, 10 + t, 20 + t}, "table");
    expectBytes(written(scalar), stored);
    const auto read = readBack<CCompressedScalar>(stored);
    EXPECT_EQ(read->GetSize(), 3);
    EXPECT_EQ(read->GetRealXMax(), 1.5F);
    EXPECT_EQ(read->GetXStart(), 3.5F);
    checkRecord(scalar, RecordCheck<CCompressedScalar>{.name = "CCompressedScalar", .lowest = 0, .silentReads = -1});
    for (const std::int32_t compSize : {-1, 4, INT_MAX})
        EXPECT_FALSE(readFrom(Bytes(start).i32(compSize).zeros(100).data(), reading(*read)));
    const std::unique_ptr<CResult> copied(scalar.GetCopy());
    auto& copy = dynamic_cast<CCompressedScalar&>(*copied);
    copy.GetScalarTab(OffsetMean5)[0] = 77;
    EXPECT_FALSE(copy == scalar);
    copy.CopyFrom(&scalar);
    EXPECT_EQ(copy, scalar);
}

// A window that slides along, as a queue.
TEST(CompressedScalar, KeepsTheNewestPoints)
{
    std::mt19937 random(2);
    const auto below = [&random](unsigned n) { return static_cast<std::int32_t>(random() % n); };
    for (int round = 0; round < 300; ++round) {
        const std::int32_t size = below(9);
        CCompressedScalar scalar(270, size, SignalType::Compressed);
        scalar.SetSamplingFrequency(round % 2 == 0 ? 4.0F : 0.0F);
        std::deque<float> queue;
        for (std::int32_t step = 0, next = 0; step < 12; ++step) {
            const std::int32_t count = below(13);
            const bool append = below(6) != 0;
            if (!append) queue.clear();
            scalar.CopyCompressedScalar(Points(next, count + 1).data(), 6 * count + below(6), next, append);
            for (const std::int32_t end = next + count; next < end; ++next)
                queue.push_back(static_cast<float>(10 * next + 3));
            while (std::ssize(queue) > size) queue.pop_front();
            ASSERT_EQ(scalar.GetCompSize(), std::ssize(queue));
            ASSERT_EQ(Table(scalar, 3, scalar.GetCompSize()), Values(queue.begin(), queue.end()));
            ASSERT_EQ(scalar.GetRealXMax(), round % 2 == 0 ? static_cast<float>(queue.size()) / 4.0F : 0.0F);
        }
    }
}

TEST(CompressedScalar, ReducesAStretch)
{
    // Eight points, 0.25 s apart, of which writeSize came later than the first.
    const struct {
        std::int32_t writeSize;
        float from, to, now;
        std::int32_t first, last; // points from -4 on; equal ones for a refusal
    } rows[] = {{0, 0, 2, 2, -4, 3},   {0, 0.5F, 1.1F, 2, -2, 0}, {8, 3, 3.5F, 5, 0, 2},   {20, 3, 4, 4.5F, -2, 2},
                {20, 3, 4, 1, 0, 0},   {8, 0, 2, 5, 0, 0},        {8, 0, 2.5F, 5, -4, -2}, {8, 3.9F, 9, 5, 0, 0},
                {8, 3.7F, 9, 5, 2, 3}, {0, 1.5F, 1.4F, 2, 0, 0},  {0, -1, NAN, 2, 0, 0},   {0, NAN, 2, 2, 0, 0}};
    for (const auto& row : rows) {
        SCOPED_TRACE(&row - rows);
        CCompressedScalar scalar(270, 20, SignalType::Compressed);
        EXPECT_FALSE(scalar.ComputeScalar(row.from, row.to, row.now)) << "without a frequency";
        scalar.SetSamplingFrequency(4);
        scalar.CopyCompressedScalar(Points(-4, 8).data(), 48, row.writeSize, true);
        const bool isReduced = row.first != row.last;
        ASSERT_EQ(scalar.ComputeScalar(row.from, row.to, row.now), isReduced);
        Values wanted(6); // of a refusal, which touches nothing
        const auto first = static_cast<float>(row.first), last = static_cast<float>(row.last);
        if (isReduced) wanted = {10 * last, 10 * first + 1};
        for (std::size_t t = wanted.size(); t < 6; ++t) wanted.push_back(5 * (first + last) + static_cast<float>(t));
        for (std::size_t t = 0; t < 6; ++t)
            EXPECT_FLOAT_EQ(scalar.GetComputedScalar(static_cast<OffsetScalarArray>(t)), wanted[t]);
    }
    CCompressedScalar scalar(270, 4, SignalType::Compressed);
    scalar.CopyCompressedScalar(Points(0, 2).data(), 12, 0, true);
    scalar.AdjustSize(3);
    scalar.CopyCompressedScalar(Points(7, 2).data(), 12, 0, true);
    EXPECT_EQ(scalar.GetCompSize(), 3);
    EXPECT_EQ(Table(scalar, 0, 3), (Values{10, 70, 80})) << "Size is the room";
}

} // namespace
} // namespace ZelmResult
