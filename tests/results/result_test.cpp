// The base of all results.

#include "zelmresult/results/result.h"

#include <cmath>
#include <gtest/gtest.h>
#include <numeric>
#include <vector>

namespace ZelmResult {
namespace {

using Values = std::vector<float>;

// The base and nothing else.
struct Bare : CResult {
    using CResult::CResult;
    using CResult::operator=;
    void ReAlloc() override { ++reallocations; }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0); }
    int reallocations = 0;
};

Values FromOn(float first) // 32 of them
{
    Values values(32);
    std::iota(values.begin(), values.end(), first);
    return values;
}

TEST(Result, Precisions)
{
    Bare result, made(26, 3, SignalType::Complex, 27);
    EXPECT_EQ(result.GetAbsPrecisionY(), 0.0F);
    EXPECT_EQ(made.GetAbsPrecisionX(), 0.001F);
    result.SetAbsPrecisionY(0.0F);
    result.SetRelPrecisionY(-1.0F);
    result.SetAbsPrecisionX(-1.0F);
    EXPECT_EQ(result.GetAbsPrecisionY(), 1e-30F);
    EXPECT_EQ(result.GetRelPrecisionY(), 1e-30F);
    EXPECT_EQ(result.GetAbsPrecisionX(), -1.0F) << "no floor here";
    result.SetAbsPrecisionY(NAN);
    EXPECT_TRUE(std::isnan(result.GetAbsPrecisionY()));
    const std::pair<float, float> digits[] = {{0.25F, 0.05F}, {2.5F, 0.5F},      {3.0F, 3.0F}, {0.0F, 0.0F},
                                              {-2.5F, -2.5F}, {12.5F, 0.5F},     {0.1F, 0.1F}, {1e-9F, 1e-9F},
                                              {3e9F, 3e9F},   {0.0003F, 0.0003F}};
    for (const auto& [x, digit] : digits) EXPECT_FLOAT_EQ(CResult::ComputeAbsPrec(x), digit) << x;
}

TEST(Result, SizesAndTypes)
{
    Bare result;
    result.SetSize(0);
    result.SetComplexType(SignalType::Real, false);
    result.AdjustSize(4);
    EXPECT_EQ(result.reallocations, 0);
    result.SetSize(5);
    result.SetComplexType(SignalType::Complex, false);
    EXPECT_EQ(result.reallocations, 2);
    result.SetComplexType(SignalType::Complex, true);
    EXPECT_EQ(result.reallocations, 3);
    for (unsigned type = 0; type <= 14; ++type) {
        result.SetResultType(SizeType(type));
        EXPECT_EQ(result.IsReferencedResult(), type == 3 || type == 7 || type == 8) << type;
    }
}

TEST(Result, StartPositions)
{
    const Values full = FromOn(1), almostFull(full.begin(), full.begin() + 31);
    const struct {
        Values before;
        bool append;
        Values source, after;                               // the rest of the slots is empty
    } rows[] = {{{1, 2, 3}, false, {7, -1, 8}, {7, -1, 8}}, // an empty value clears a filled slot
                {{1, 2}, false, {7, 8, -1, 9}, {7, 8}},     // and stops at an empty one
                {{1, -1, 3}, true, {7, 8, 9}, {1, 7, 8, 9}}, {full, true, {9}, full},
                {almostFull, true, {32, 33}, full},          {Values(40, 6), false, {}, Values(32, 6)}};
    for (const auto& row : rows) {
        Bare result;
        result.SetStartRevPosTab(row.before.data(), static_cast<int>(row.before.size()));
        result.CopyStartRevPosTab(row.append, row.source.data(), static_cast<int>(row.source.size()));
        Values wanted = row.after;
        wanted.resize(32, -1.0F);
        EXPECT_EQ(Values(result.GetStartRevPosTabPtr(), result.GetStartRevPosTabPtr() + 32), wanted)
            << "row " << &row - rows;
    }
}

} // namespace
} // namespace ZelmResult
