// The base of all results.

#include "zelmresult/results/result.h"

#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

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
    const auto isOfTypes = [](const CResult& object, std::uint32_t types) {
        for (std::uint32_t bit = 1; bit != 0; bit <<= 1)
            EXPECT_EQ(object.IsOfType(bit), (types & bit) != 0) << typeid(object).name() << std::hex << bit;
    };
    isOfTypes(CScalar(), 0x401);
    isOfTypes(CVector(), 0x9);
    isOfTypes(CDoubleResult(), 0x80001);
    isOfTypes(CRegVector(), 0x1B);
    isOfTypes(CRefVector(), 0x2D);
    isOfTypes(CRegOrderTrack(), 0x1803);
    isOfTypes(CRefOrderTrack(), 0x2805);
    isOfTypes(CCompressedVector(), 0x40001);
    isOfTypes(CCompressedScalar(), 0x800001);
    isOfTypes(CBroadBand(), 0x20001);
    isOfTypes(CGlobalLevel(), 0x100001);
    isOfTypes(CSuiviOrdre(), 0x400001);
    isOfTypes(CVectorRef(), 0x101);
    isOfTypes(CWaterfallRef(), 0x301);
    isOfTypes(CRefWaterfall(), 0xAD);
    isOfTypes(CWaterfall(), 0x45);
    isOfTypes(CWtfOctave(), 0x200045);
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
