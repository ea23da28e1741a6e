// The base of all results, and scalars, which add only values to it.

#include "zelmresult/results/result.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/level_results.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/wtf_octave.h"

#include <climits>
#include <cmath>
#include <gtest/gtest.h>
#include <memory>
#include <numeric>

namespace ZelmResult {
namespace {

using namespace test;
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

// A value of its own in every field.
template <class Result>
void Fill(Result& result)
{
    result.SetResultType(SizeType(21));
    result.SetComplexType(SignalType(22), false);
    result.SetDimension(23);
    result.SetAbsPrecisionX(1);
    result.SetAbsPrecisionY(2);
    result.SetAbsPrecisionZ(3);
    result.SetRelPrecisionX(4);
    result.SetRelPrecisionY(5);
    result.SetRelPrecisionZ(6);
    result.SetUnitFormat(TypeUnite(25));
    result.SetProcessType(26);
    result.SetWtfProcessType(27);
    result.SetRotationDir(28);
    result.SetCurrentSpeed(29);
    result.SetResultDate({30, 31});
    result.SetStartRevPosTab(FromOn(32).data(), 32);
    result.AdjustSize(24);
}

// The base block of such a result, as each version stored it.
Bytes FilledBlock(std::uint16_t version, std::string_view quantity = "9999")
{
    Bytes bytes = Bytes{}.u16(version, "version");
    if (version >= 1) {
        bytes.code(quantity, "Magnitude").u32(21, "ResultType").u32(22, "ComplexType").u32(23, "Dimension");
        bytes.i32(24, "Size").f32s({1, 2, 3, 4, 5, 6}, "precisions").u32(25, "UnitFormat");
    }
    if (version >= 2) bytes.u32(26, "ProcessType").u32(27, "WtfProcessType");
    if (version >= 3) bytes.u32(28, "RotationDir");
    if (version >= 4) bytes.f32(29, "CurrentSpeed").u32(30, "ResultDate").u32(31, "ResultDate");
    return version >= 5 ? bytes.f32s(FromOn(32), "StartRevPosTab") : bytes;
}

TEST(Result, StoredAtEachVersion)
{
    Bare filled;
    Fill(filled);
    for (std::uint16_t version = 0; version <= 5; ++version) {
        SCOPED_TRACE(version);
        expectBytes(written(filled, {{"CResult", version}}), FilledBlock(version));
        const auto read = readBack<Bare>(FilledBlock(version));
        EXPECT_EQ(read->GetRotationDir(), version < 3 ? 1U : 28U);
        EXPECT_EQ(read->GetCurrentSpeed(), version < 4 ? -1.0F : 29.0F);
        EXPECT_EQ(read->GetStartRevPosTabPtr()[31], version < 5 ? -1.0F : 63.0F);
    }
    checkRecord(filled, RecordCheck<Bare>{.name = "CResult", .lowest = 0, .newest = 5});
    CGrandeur force;
    force.SetChunkId(0x31303030);
    force.SetNomGrandeur(u"Force"); // "0001"
    filled.SetMagnitude(&force);
    expectBytes(written(filled), FilledBlock(5, "0001"));
    EXPECT_EQ(dumpOf(filled), "Chunk de la grandeur: Force\nCResult\n"
                              "Magnitude : Force, Type : 21 , Size : 24 , Unit format TypeEU2 ,SensRotation 28\n"
                              "Abs PrecX : 1.000000 ,Abs PrecY : 2.000000,Abs PrecZ : 3.000000,"
                              "Rel PrecX : 4.000000 ,Rel PrecY : 5.000000,Rel PrecZ : 6.000000,\n");
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

TEST(Scalar, StoredAndCopied)
{
    CScalar scalar(26, 1, SignalType::Real, true);
    Fill(scalar);
    scalar.SetYMin(70);
    scalar.SetYMax(71);
    scalar.SetXMin(1);
    scalar.SetXMax(2);
    EXPECT_EQ(scalar.GetXMin(), 70);
    EXPECT_EQ(scalar.GetXMax(), 71) << "X is Y";
    scalar.writeLevelValue() = {72, 73, 74, 75, 76};
    const Bytes first = Bytes{}.append(FilledBlock(5), "base").f32s({70, 71}, "limits").f32s({72, 73, 74, 75, 76});
    expectBytes(written(scalar), Bytes{}.u16(2).append(first).flag(true, "PhasePossible"));
    expectBytes(written(scalar, {{"CScalar", 1}}), Bytes{}.u16(1).append(first));
    checkRecord(scalar, RecordCheck<CScalar>{.name = "CScalar", .lowest = 0, .newest = 2});
    const std::unique_ptr<CResult> copy(scalar.GetCopy());
    Bare bare, other;
    bare = static_cast<CResult*>(&scalar);
    expectBytes(written(bare), FilledBlock(5));
    other.AdjustSize(99);
    *copy = static_cast<CResult*>(&other); // another class: the shared fields only
    EXPECT_EQ(copy->GetSize(), 99);
    EXPECT_EQ(copy->GetCurrentSpeed(), -1);
    EXPECT_EQ(copy->GetValue(), 72);
    EXPECT_TRUE(readFrom(Bytes{}.u16(2).append(first).data(), reading(scalar)));
    EXPECT_FALSE(scalar.IsPhasePossible()) << "a file that ends there has none";
}

} // namespace
} // namespace ZelmResult
