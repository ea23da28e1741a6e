// The base of all results, and scalars, which add only values to it.

#include "zelmresult/results/result.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/scalar.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <climits>
#include <cmath>
#include <gmock/gmock.h>
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
    result.SetResultType(SizeType(21)), result.SetComplexType(SignalType(22), false), result.SetDimension(23);
    result.SetAbsPrecisionX(1), result.SetAbsPrecisionY(2), result.SetAbsPrecisionZ(3);
    result.SetRelPrecisionX(4), result.SetRelPrecisionY(5), result.SetRelPrecisionZ(6);
    result.SetUnitFormat(TypeUnite(25)), result.SetProcessType(26), result.SetWtfProcessType(27);
    result.SetRotationDir(28), result.SetCurrentSpeed(29), result.SetResultDate({30, 31});
    result.SetStartRevPosTab(FromOn(32).data(), 32), result.AdjustSize(24);
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
    Bare filled, empty;
    Fill(filled);
    for (std::uint16_t version = 0; version <= 5; ++version) {
        SCOPED_TRACE(version);
        expectBytes(written(filled, {{"CResult", version}}), FilledBlock(version));
        const auto read = readBack<Bare>(FilledBlock(version));
        EXPECT_EQ(read->GetSize(), version < 1 ? 0 : 24);
        EXPECT_EQ(read->GetProcessType(), version < 2 ? 0U : 26U);
        EXPECT_EQ(read->GetRotationDir(), version < 3 ? 1U : 28U);
        EXPECT_EQ(read->GetCurrentSpeed(), version < 4 ? -1.0F : 29.0F);
        EXPECT_EQ(read->GetResultDate().dwHighDateTime, version < 4 ? 0U : 31U);
        EXPECT_EQ(read->GetStartRevPosTabPtr()[31], version < 5 ? -1.0F : 63.0F);
    }
    RecordCheck<Bare> check{.name = "CResult", .lowest = 0, .newest = 5};
    checkRecord(filled, check);
    CGrandeur force;
    force.SetChunkId(0x31303030), force.SetNomGrandeur(u"Force"); // "0001"
    filled.SetMagnitude(&force);
    expectBytes(written(filled), FilledBlock(5, "0001"));
    EXPECT_EQ(dumpOf(filled), "Chunk de la grandeur: Force\nCResult\n"
                              "Magnitude : Force, Type : 21 , Size : 24 , Unit format TypeEU2 ,SensRotation 28\n"
                              "Abs PrecX : 1.000000 ,Abs PrecY : 2.000000,Abs PrecZ : 3.000000,"
                              "Rel PrecX : 4.000000 ,Rel PrecY : 5.000000,Rel PrecZ : 6.000000,\n");
    EXPECT_THAT(dumpOf(empty), ::testing::StartsWith("CResult\nMagnitude : Null, Type : 0 , Size : 0 , Unit format "
                                                     "TypeEU ,SensRotation 1\nAbs PrecX : 0.000000 ,"));
}

TEST(Result, Precisions)
{
    const Bare made(26, 3, SignalType::Complex, 27);
    EXPECT_TRUE(made.GetAbsPrecisionX() == 0.001F && made.GetRelPrecisionZ() == 0.001F);
    Bare result;
    EXPECT_TRUE(result.GetAbsPrecisionY() == 0.0F && result.GetDimension() == 0 && made.GetDimension() == 0xFFFFFFFF);
    result.SetAbsPrecisionY(0.0F), result.SetRelPrecisionY(-1.0F);
    EXPECT_TRUE(result.GetAbsPrecisionY() == 1e-30F && result.GetRelPrecisionY() == 1e-30F);
    result.SetAbsPrecisionY(NAN), result.SetAbsPrecisionX(-1.0F), result.SetRelPrecisionZ(0.0F);
    EXPECT_TRUE(std::isnan(result.GetAbsPrecisionY()));
    EXPECT_TRUE(result.GetAbsPrecisionX() == -1.0F && result.GetRelPrecisionZ() == 0.0F) << "no floor here";

    const std::pair<float, float> digits[] = {{0.25F, 0.05F},   {2.5F, 0.5F},   {3.0F, 3.0F}, {0.0F, 0.0F},
                                              {-2.5F, -2.5F},   {10.0F, 10.0F}, {0.1F, 0.1F}, {12.5F, 0.5F},
                                              {-0.25F, -0.25F}, {1e-9F, 1e-9F}, {3e9F, 3e9F}, {INFINITY, INFINITY}};
    for (const auto& [x, digit] : digits) EXPECT_FLOAT_EQ(CResult::ComputeAbsPrec(x), digit) << x;
}

TEST(Result, SizesAndTypes)
{
    Bare result;
    result.SetSize(0), result.SetComplexType(SignalType::Real, false), result.AdjustSize(4);
    EXPECT_EQ(result.reallocations, 0);
    result.SetSize(5), result.SetComplexType(SignalType::Complex, false);
    EXPECT_EQ(result.reallocations, 2);
    result.SetComplexType(SignalType::Complex, true);
    EXPECT_EQ(result.reallocations, 3);
    for (unsigned type = 0; type <= 14; ++type) {
        result.SetResultType(SizeType(type));
        EXPECT_EQ(result.IsReferencedResult(), type == 3 || type == 7 || type == 8) << type;
    }
    const CScalar scalar;
    const CVector vector;
    const CDoubleResult pair;
    const CVectorRef reference;
    const std::pair<const CResult*, std::uint32_t> types[] = {
        {&result, 0}, {&scalar, 0x401}, {&vector, 0x9}, {&pair, 0x80001}, {&reference, 0x101}};
    for (const auto& [object, constant] : types)
        for (std::uint32_t bit = 1; bit != 0; bit <<= 1)
            EXPECT_EQ(object->IsOfType(bit) && !object->IsOfType(0), (constant & bit) != 0) << std::hex << bit;
}

TEST(Result, StartPositions)
{
    const Values full = FromOn(1), almostFull(full.begin(), full.begin() + 31);
    const struct {
        Values before;
        bool append;
        Values source, after; // the rest of the slots is empty
    } rows[] = {{{1, 2}, true, {3, 4}, {1, 2, 3, 4}},
                {{1, 2, 3}, false, {7, -1, 8}, {7, -1, 8}}, // an empty value clears a filled slot
                {{1, 2}, false, {7, 8, -1, 9}, {7, 8}},     // and stops at an empty one
                {{1, -1, 3}, true, {7, 8, 9}, {1, 7, 8, 9}},
                {full, true, {9}, full},
                {almostFull, true, {32, 33}, full},
                {{}, false, Values(40, 6), Values(32, 6)},
                {Values(40, 6), false, {}, Values(32, 6)}};
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

TEST(Result, Quantities)
{
    CGrandeur length, speed, replacement;
    speed.SetGrandeurLeft(&length);
    CGrandeurFichier fromFile;
    Bare result;
    std::map<CGrandeur*, int> counts;
    result.AddInvolvedGrandeur(counts), result.ReplaceGrandeur(&fromFile, &replacement);
    EXPECT_TRUE(counts.empty() && result.GetMagnitude() == nullptr);
    result.SetMagnitude(&speed);
    result.AddInvolvedGrandeur(counts), result.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&speed, 2}, {&length, 2}}));
    counts[&speed] = INT_MAX; // where counts stay
    result.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts[&speed], INT_MAX);

    speed.SetGrandeurLeft(&fromFile);
    result.ReplaceGrandeur(&fromFile, &replacement);
    EXPECT_TRUE(result.GetYMagnitude() == &speed && speed.GetGrandeurLeft() == &replacement);
    result.SetMagnitude(&fromFile);
    result.ReplaceGrandeur(&fromFile, &replacement);
    EXPECT_EQ(result.GetMagnitude(), &replacement);
}

CScalar FilledScalar()
{
    CScalar scalar(26, 1, SignalType::Real, true);
    Fill(scalar);
    scalar.SetYMin(70), scalar.SetYMax(71);
    scalar.writeLevelValue() = {72, 73, 74, 75, 76};
    return scalar;
}

TEST(Scalar, Stored)
{
    CScalar scalar = FilledScalar();
    const Bytes first = Bytes{}.append(FilledBlock(5), "base").f32s({70, 71}, "limits").f32s({72, 73, 74, 75, 76});
    expectBytes(written(scalar), Bytes{}.u16(2).append(first).flag(true, "PhasePossible"));
    expectBytes(written(scalar, {{"CScalar", 1}}), Bytes{}.u16(1).append(first));
    RecordCheck<CScalar> check{.name = "CScalar", .lowest = 0, .newest = 2};
    check.expect = [&](CScalar& read, std::uint16_t version) {
        EXPECT_EQ(read.readLevelValue() == scalar.readLevelValue(), version > 0);
        EXPECT_EQ(read.IsPhasePossible(), version == 2);
    };
    checkRecord(scalar, check);
    EXPECT_THAT(dumpOf(scalar),
                ::testing::EndsWith("\nCScalar\nMin : 74.000000 , Max : 73.000000 , Value : 72.000000 \n"));
    EXPECT_TRUE(readFrom(Bytes{}.u16(2).append(first).data(), [&](CMmioFile& file) { return scalar.Read(&file); }));
    EXPECT_FALSE(scalar.IsPhasePossible()) << "a file that ends there has none";
}

TEST(Scalar, ValuesAndCopies)
{
    CScalar scalar = FilledScalar();
    CResult& result = scalar;
    result.SetXMin(1), result.SetXMax(2), result.SetXnOctave(3), result.ReAlloc();
    EXPECT_TRUE(result.GetXMin() == 70 && result.GetYMin() == 70 && result.GetRealMin() == 70);
    EXPECT_TRUE(result.GetXMax() == 71 && result.GetYMax() == 71 && result.GetRealMax() == 71);
    EXPECT_TRUE(scalar.GetValue() == 72 && scalar.GetCurMax() == 73 && scalar.GetCurMin() == 74);
    EXPECT_TRUE(scalar.GetRealValue() == 75 && scalar.GetImagValue() == 76);

    const std::unique_ptr<CResult> copy(result.GetCopy());
    EXPECT_EQ(written(*copy), written(scalar));
    Bare bare, other;
    bare = &result;
    expectBytes(written(bare), FilledBlock(5));
    other.AdjustSize(99);
    *copy = static_cast<CResult*>(&other); // another class: the shared fields only
    *copy = static_cast<CResult*>(nullptr);
    EXPECT_TRUE(copy->GetSize() == 99 && copy->GetCurrentSpeed() == -1 && copy->GetValue() == 72);
    EXPECT_EQ(bare.GetCopy(), nullptr);
}

} // namespace
} // namespace ZelmResult
