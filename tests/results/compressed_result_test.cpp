#include "zelmresult/results/compressed_result.h"

#include "tests/builders/record_check.h"

#include <array>
#include <climits>
#include <cmath>
#include <deque>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <random>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

template <class Result>
Bytes Base(Result& result, std::int32_t size, float xMax) // the block of the base while it is written
{
    const std::int32_t formerSize = result.GetSize();
    const float formerMax = result.GetXMax();
    result.AdjustSize(size);
    result.SetXMax(xMax);
    const std::vector<char> stored = written([&](CMmioFile& file) { return result.CRegVector::Write(&file); });
    result.AdjustSize(formerSize);
    result.SetXMax(formerMax);
    return Bytes{}.raw({stored.data(), stored.size()});
}

CCompressedVector& Fill(CCompressedVector& vector)
{
    for (int i = 0; i < 4; ++i) {
        vector.TabUp()[i] = static_cast<float>(i + 1);
        vector.TabDown()[i] = static_cast<float>(-i);
    }
    vector.SetCompSize(3);
    vector.SetCompFactor(16);
    vector.SetCurrentDuration(1.5F);
    vector.SetSamplingFrequency(2);
    vector.SetXMax(9);
    return vector;
}

// Points of six values that tell point and table.
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

TEST(CompressedVector, StoresThePointsInUse)
{
    CCompressedVector vector(25, 4, SignalType::Compressed);
    EXPECT_EQ(vector.GetRealValue(), nullptr);
    Fill(vector);
    vector.SetCompSize(9);
    EXPECT_EQ(vector.GetCompSize(), 4);
    vector.SetCompSize(3);
    expectBytes(written(vector), Bytes{}
                                     .u16(1, "version")
                                     .append(Base(vector, 3, 1.5F), "base")
                                     .i32(16, "CompFactor")
                                     .i32(3, "CompSize")
                                     .f32(2, "frequency")
                                     .f32s({1, 2, 3}, "TabUp")
                                     .f32s({0, -1, -2}, "TabDown"));
    EXPECT_TRUE(vector.GetSize() == 4 && vector.GetXMax() == 9);
    EXPECT_THAT(dumpOf(vector), ::testing::HasSubstr("CCompressedVector\nCompFactor : 16, CompSize : 3 , "
                                                     "m_fSamplingFrequency : 2.000000e+00\nUpValue[0] : 1.000000e+00, "
                                                     "UpValue[0] :1.000000e+00, "));
    RecordCheck<CCompressedVector> check{.name = "CCompressedVector", .lowest = 0, .silentReads = -1};
    check.expect = [](CCompressedVector& read, std::uint16_t version) {
        if (version == 0) return;
        double up[4];
        read.GetUpValues(up, 4);
        EXPECT_THAT(up, ::testing::ElementsAre(1, 2, 3, 0));
        EXPECT_TRUE(read.GetSize() == 3 && read.GetCompSize() == 3 && read.GetXMax() == 1.5F);
        EXPECT_TRUE(read.GetRealXMax() == 1.5F && read.CurrentDuration() == 1.5F && read.CompFactor() == 16);
    };
    checkRecord(vector, check);
    vector.AdjustSize(4); // which writes that failed have changed
    CCompressedVector broken(25, 4, SignalType::Compressed);
    EXPECT_FALSE(readFrom({}, [&](CMmioFile&) {
        CMmioFile closed(false);
        return Fill(broken).Write(&closed);
    }));
    EXPECT_TRUE(broken.GetSize() == 3 && broken.GetXMax() == 1.5F) << "a write that failed leaves it so";

    for (const SignalType type : {SignalType::Real, SignalType::Complex, SignalType::Octave}) {
        CCompressedVector ofType(25, 4, type);
        CCompressedVector read(25, 4, SignalType::Compressed);
        readInto(read, Bytes{}.raw({written(Fill(ofType)).data(), written(ofType).size()}));
        EXPECT_EQ(read.TabUp()[2], 3);
    }
    CCompressedVector target(25, 4, SignalType::Compressed);
    vector.TransferResult(&target);
    vector.TransferResult(nullptr);
    EXPECT_TRUE(target.TabUp()[2] == 3 && target.TabUp()[3] == 0 && target.GetCompSize() == 0);
    EXPECT_FALSE(vector == target);
    const std::unique_ptr<CResult> copied(vector.GetCopy());
    auto& copy = dynamic_cast<CCompressedVector&>(*copied);
    EXPECT_TRUE(copy == vector && copy.TabUp() != vector.TabUp());
    copy.TabDown()[3] = 1;
    EXPECT_FALSE(copy == vector) << "all of Size counts";
    vector = static_cast<CResult*>(&vector);
    EXPECT_EQ(vector.TabUp(), nullptr) << "a copy onto itself has never kept the envelopes";
    EXPECT_TRUE(vector.IsOfType(0x40000) && !vector.IsOfType(0x8));
}

TEST(CompressedScalar, StoresThePointsInUse)
{
    CCompressedScalar scalar(270, 4, SignalType::Compressed);
    scalar.SetSamplingFrequency(2);
    scalar.CopyCompressedScalar(Points(0, 3).data(), 18, 7, true);
    scalar.SetXMax(9);
    const Bytes base = Base(scalar, 3, 1.5F);
    Bytes stored = Bytes{}.u16(1, "version").append(base, "base").i32(3, "CompSize").i32(7, "WriteSize").f32(2);
    for (int t = 0; t < 6; ++t)
        stored.f32s({static_cast<float>(t), static_cast<float>(10 + t), static_cast<float>(20 + t)}, "table");
    expectBytes(written(scalar), stored);
    EXPECT_THAT(dumpOf(scalar), ::testing::HasSubstr("CCompressedScalar\nCompSize : 3 , m_fSamplingFrequency : "));
    RecordCheck<CCompressedScalar> check{.name = "CCompressedScalar", .lowest = 0, .silentReads = -1};
    check.expect = [](CCompressedScalar& read, std::uint16_t version) {
        if (version == 0) return;
        EXPECT_EQ(Table(read, 5, 4), (Values{5, 15, 25, 0}));
        EXPECT_TRUE(read.GetSize() == 3 && read.GetRealXMax() == 1.5F && read.GetXMax() == 1.5F);
        EXPECT_TRUE(read.GetXStart() == 3.5F && read.GetScalarTab(static_cast<OffsetScalarArray>(6)) == nullptr);
    };
    checkRecord(scalar, check);
    for (const std::int32_t compSize : {-1, 4, INT_MAX}) {
        CCompressedScalar read;
        EXPECT_FALSE(
            readFrom(Bytes{}.u16(1).append(base).i32(compSize).i32(0).f32(2).zeros(100).data(), reading(read)));
    }
    const std::unique_ptr<CResult> copied(scalar.GetCopy());
    auto& copy = dynamic_cast<CCompressedScalar&>(*copied);
    EXPECT_TRUE(copy == scalar);
    copy.GetScalarTab(OffsetMean5)[0] = 77;
    EXPECT_FALSE(copy == scalar);
    copy.CopyFrom(&scalar);
    EXPECT_TRUE(copy == scalar);
    EXPECT_FALSE(copy == CCompressedScalar(270, 5, SignalType::Compressed));
}

// A window that slides along, as a queue.
TEST(CompressedScalar, KeepsTheNewestPoints)
{
    std::mt19937 random(2);
    for (int round = 0; round < 300; ++round) {
        const auto size = static_cast<std::int32_t>(random() % 9);
        CCompressedScalar scalar(270, size, SignalType::Compressed);
        scalar.SetSamplingFrequency(round % 2 == 0 ? 4.0F : 0.0F);
        std::deque<float> queue;
        std::int32_t next = 0;
        for (int step = 0; step < 12; ++step) {
            const auto count = static_cast<std::int32_t>(random() % 13);
            const bool append = random() % 6 != 0;
            const Values points = Points(next, count + 1);
            if (!append) queue.clear();
            for (std::int32_t i = 0; i < count; ++i) queue.push_back(static_cast<float>(10 * (next + i) + 3));
            while (static_cast<std::int32_t>(queue.size()) > size) queue.pop_front();
            scalar.CopyCompressedScalar(points.data(), 6 * count + static_cast<std::int32_t>(random() % 6), next,
                                        append);
            next += count;
            ASSERT_EQ(scalar.GetCompSize(), static_cast<std::int32_t>(queue.size()));
            ASSERT_EQ(Table(scalar, 3, scalar.GetCompSize()), Values(queue.begin(), queue.end()));
            ASSERT_EQ(scalar.GetRealXMax(), round % 2 == 0 ? static_cast<float>(queue.size()) / 4.0F : 0.0F);
        }
        scalar.CopyCompressedScalar(nullptr, -5, 1, true);
        ASSERT_EQ(scalar.GetCompSize(), static_cast<std::int32_t>(queue.size()));
    }
}

TEST(CompressedScalar, ReducesAStretch)
{
    std::mt19937 random(3);
    const auto pick = [&random](float scale) { return static_cast<float>(random() % 1000) / 1000.0F * scale - 1.0F; };
    int reduced = 0;
    for (int round = 0; round < 3000; ++round) {
        const auto count = static_cast<std::int32_t>(random() % 20);
        CCompressedScalar scalar(270, 20, SignalType::Compressed);
        const float fs = 4;
        scalar.SetSamplingFrequency(fs);
        Values points;
        for (std::int32_t i = 0; i < 6 * count; ++i) points.push_back(pick(10));
        const auto writeSize = static_cast<std::int32_t>(random() % 40);
        scalar.CopyCompressedScalar(points.data(), 6 * count, writeSize, true);
        const float from = pick(12);
        const float to = pick(12);
        const float now = pick(12);
        const float end = static_cast<float>(count) / fs;
        float start = static_cast<float>(writeSize) / fs;
        if (now >= end && start > now - end) start = now - end;
        const int first = std::max(0, static_cast<int>(fs * (from - start)));
        const int last = std::min(count - 1, static_cast<int>(fs * (to - start)));
        const bool good = start <= to && from < end + start && from < to && first < last;
        ASSERT_EQ(scalar.ComputeScalar(from, to, now), good);
        if (!good) {
            ASSERT_EQ(scalar.GetComputedScalar(OffsetUp), 0) << "untouched";
            continue;
        }
        ++reduced;
        std::array<double, 6> wanted = {-1e38, 1e38};
        for (int i = first; i <= last; ++i)
            for (std::size_t t = 0; t < 6; ++t) {
                const auto value = static_cast<double>(points[static_cast<std::size_t>(i) * 6 + t]);
                wanted[t] = t == 0   ? std::max(wanted[t], value)
                            : t == 1 ? std::min(wanted[t], value)
                                     : wanted[t] + value;
            }
        for (std::size_t t = 0; t < 6; ++t)
            ASSERT_FLOAT_EQ(scalar.GetComputedScalar(static_cast<OffsetScalarArray>(t)),
                            static_cast<float>(t < 2 ? wanted[t] : wanted[t] / (last - first + 1)));
    }
    EXPECT_GT(reduced, 300);
    CCompressedScalar scalar(270, 4, SignalType::Compressed);
    EXPECT_FALSE(scalar.ComputeScalar(0, 1, 1)) << "without a frequency";
    scalar.SetSamplingFrequency(1e30F);
    scalar.CopyCompressedScalar(Points(0, 4).data(), 24, 0, true);
    EXPECT_FALSE(scalar.ComputeScalar(-1e30F, NAN, 1e30F));
    EXPECT_FALSE(scalar.ComputeScalar(NAN, 1e30F, 1e30F));
    EXPECT_EQ(CCompressedScalar::GetNumberOfCompressedScalar(), 6);
    scalar.SetCompSize(2);
    scalar.AdjustSize(3);
    scalar.CopyCompressedScalar(Points(7, 2).data(), 12, 0, true);
    EXPECT_TRUE(scalar.GetCompSize() == 3 && Table(scalar, 0, 3) == (Values{10, 70, 80})) << "Size is the room";
}

} // namespace
} // namespace ZelmResult
