// Regular axes, the vectors on them, and the pairs of vectors that the factory makes.

#include "tests/builders/record_check.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/ref_vector.h"
#include "zelmresult/results/reg_vector.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/results/scalar.h"

#include <array>
#include <climits>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>
#include <type_traits>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

Bytes AxisBlock(float max, float min, std::uint32_t bands)
{
    return Bytes{}.u16(1, "version").code("9999", "no quantity").f32(max, "XMax").f32(min, "XMin").u32(bands, "bands");
}

TEST(RegXAxis, Stored)
{
    CGrandeur frequency;
    frequency.SetNomGrandeur(u"Frequency"), frequency.SetChunkId(0x31303030); // "0001"
    CRegXAxis axis(&frequency, 1, 2, 3);
    EXPECT_TRUE(axis == CRegXAxis()) << "the arguments have no effect";
    axis.SetXMin(1.5F), axis.SetXMax(2), axis.SetXnOctave(0xFFFFFFFF);
    expectBytes(written(axis), AxisBlock(2, 1.5F, 0xFFFFFFFF));
    EXPECT_EQ(dumpOf(axis), "CRegXAxis \nMagnitude :Null, xMin : 1.500000, xMax : 2.000000, XnOctave : -1\n");
    RecordCheck<CRegXAxis> check{.name = "CRegXAxis", .lowest = 0};
    check.expect = [&](CRegXAxis& read, std::uint16_t version) { EXPECT_EQ(read == axis, version == 1); };
    checkRecord(axis, check);

    axis.SetXMagnitude(&frequency);
    const std::vector<char> stored = written(axis);
    expectBytes({stored.begin() + 2, stored.begin() + 6}, Bytes{}.code("0001"));
    EXPECT_THAT(dumpOf(axis), ::testing::StartsWith("Chunk de la grandeur: Frequency\nCRegXAxis \nMagnitude "
                                                    ":Frequency, xMin"));
    const std::unique_ptr<CRegXAxis> copy(axis.GetXAxisCopy());
    EXPECT_TRUE(*copy == axis);
    copy->SetXMagnitude(nullptr);
    EXPECT_FALSE(*copy == axis);
    *copy = static_cast<CRegXAxis*>(nullptr);
    *copy = &axis;
    EXPECT_TRUE(*copy == axis && copy->GetXMagnitude() == &frequency);
}

// A value of its own in every field.
std::unique_ptr<CRegVector> Filled(int type, int size = 2)
{
    auto vector = std::make_unique<CRegVector>(18, size, 3, SignalType(type), 9, true);
    float value = 1;
    float* arrays[] = {type < 4 ? vector->GetRealValue() : nullptr, type == 1 ? vector->GetImValue() : nullptr,
                       vector->GetRealValueMin(), vector->GetRealValueMax()};
    for (float* array : arrays)
        for (int i = 0; array != nullptr && i < size; ++i) array[i] = value++;
    vector->SetXMin(21), vector->SetXMax(22);
    value = 30;
    for (const auto target : {AvgOctaveTarget::None, AvgOctaveTarget::Minimum, AvgOctaveTarget::Maximum})
        vector->SetGlobPondLevel(target, ++value), vector->SetGlobLevel(target, ++value);
    vector->SetPonderationGlob(7);
    return vector;
}

Values Shown(const float* values) { return values == nullptr ? Values{} : Values(values, values + 2); }

Bytes FilledBlock(CRegVector& vector, int type, std::uint16_t version)
{
    const std::vector<char> base = written([&](CMmioFile& file) { return vector.CResult::Write(&file); });
    Bytes bytes = Bytes{}.u16(version, "version");
    if (version == 0) return bytes;
    bytes.u16(1, "vector version").raw({base.data(), base.size()}, "base");
    if (type < 4) bytes.f32s({1, 2}, "real");
    bytes.f32s({0, 0}, "limits");
    if (type == 1) bytes.f32s({3, 4}, "imaginary").f32s({0, 0}, "limits");
    bytes.append(AxisBlock(22, 21, 3), "axis").f32(31, "GlobPond").f32(32, "GlobLin");
    if (version >= 2 && type == 3) bytes.f32s({3, 4, 34, 33}, "min").f32s({5, 6, 36, 35}, "max");
    if (version >= 2 && type == 4) bytes.f32s({1, 2, 34, 33}, "min");
    if (version >= 2 && type == 5) bytes.f32s({1, 2, 36, 35}, "max");
    return version >= 3 ? bytes.u32(7, "PonderationGlob") : bytes;
}

TEST(RegVector, StoredAtEachVersionAndType)
{
    for (int type = 0; type <= 5; ++type) {
        const auto filled = Filled(type);
        for (std::uint16_t version = 0; version <= 3; ++version) {
            SCOPED_TRACE(std::to_string(type) + " at " + std::to_string(version));
            const Bytes stored = FilledBlock(*filled, type, version);
            expectBytes(written(*filled, {{"CRegVector", version}}), stored);
            const auto read = readBack<CRegVector>(stored);
            const bool min = type == 3 || type == 4, max = type == 3 || type == 5;
            const auto held = [&](const float* array) { return version == 1 ? Values(2) : Shown(array); };
            EXPECT_EQ(Shown(read->GetRealValueMin()), min && version > 0 ? held(filled->GetRealValueMin()) : Values());
            EXPECT_EQ(Shown(read->GetRealValueMax()), max && version > 0 ? held(filled->GetRealValueMax()) : Values());
            if (type < 4) {
                EXPECT_EQ(Shown(read->GetRealValue()), version > 0 ? Values({1, 2}) : Values());
            }
            EXPECT_EQ(read->GetXMax(), version > 0 ? 22 : 0);
            EXPECT_EQ(read->GetGlobLevel(AvgOctaveTarget::Octave), version > 0 ? 32 : 0);
            EXPECT_EQ(read->GetGlobPondLevel(AvgOctaveTarget::Minimum), version >= 2 && min ? 33 : 0);
            EXPECT_EQ(read->GetGlobLevel(AvgOctaveTarget::Maximum), version >= 2 && max ? 36 : 0);
            EXPECT_EQ(read->GetPonderationGlob(), version >= 3 ? 7U : 0U);
        }
        RecordCheck<CRegVector> check{.name = "CRegVector", .lowest = 0, .newest = 3};
        checkRecord(*filled, check);
    }
    const auto filled = Filled(3);
    CRegXAxis& asAxis = *filled;
    EXPECT_EQ(written(asAxis), written(*filled)) << "the whole object through either base";
    CRegVector plain;
    plain.SetReadAsPlainVector(true);
    readInto(plain, written([&](CMmioFile& file) { return filled->CVector::Write(&file); }));
    EXPECT_TRUE(Shown(plain.GetRealValue()) == Values({1, 2}) && plain.GetXMax() == 0);
}

TEST(RegVector, DumpsItsLines)
{
    const auto filled = Filled(3, 9), minimum = Filled(4);
    EXPECT_THAT(
        dumpOf(*filled),
        ::testing::EndsWith(
            "\nCRegXAxis \nMagnitude :Null, xMin : 21.000000, xMax : 22.000000, XnOctave : 3\nCRegVector\n"
            "m_RealValueMin[0] : 1.000000e+01, m_RealValueMin[2] :1.200000e+01, m_RealValueMin[4] :1.400000e+01, "
            "m_RealValueMin[6] :1.600000e+01, m_RealValueMin[8] :1.800000e+01\n"
            "m_RealValueMax[0] : 1.900000e+01, m_RealValueMax[2] :2.100000e+01, m_RealValueMax[4] :2.300000e+01, "
            "m_RealValueMax[6] :2.500000e+01, m_RealValueMax[8] :2.700000e+01\n"
            ", Global pondere : 31.000000, Global lin : 32.000000,Global Min pondere : 33.000000, "
            "Global Min lin : 34.000000,Global Max pondere : 35.000000, Global Max lin : 36.000000\n"
            "PonderationGlob: (A*D)\n"));
    EXPECT_THAT(dumpOf(*minimum), ::testing::Not(::testing::HasSubstr("m_RealValueMax")));
}

TEST(RegVector, ArraysAndLevels)
{
    const auto filled = Filled(3), minimum = Filled(4), maximum = Filled(5);
    CRegVector& vector = *filled;
    EXPECT_TRUE(vector.GetResultType() == SizeType::RegVector && vector.GetDimension() == 2);
    EXPECT_TRUE(vector.GetXnOctave() == 3 && vector.IsOfType(2) && !vector.IsOfType(4));
    for (const int target : {0, 1, 2, 5, -1}) {
        EXPECT_EQ(vector.GetGlobPondLevel(AvgOctaveTarget(target)), 31);
        EXPECT_EQ(vector.GetGlobLevel(AvgOctaveTarget(target)), 32);
    }
    EXPECT_EQ(minimum->GetRealValue(), minimum->GetRealValueMin());
    EXPECT_EQ(maximum->GetRealValue(), maximum->GetRealValueMax());
    EXPECT_EQ(Shown(vector.GetRealValue()), Values({1, 2}));
    std::array<double, 3> wide{9, 9, 9};
    vector.GetRealValuesMax(wide.data(), 3);
    EXPECT_THAT(wide, ::testing::ElementsAre(5, 6, 0));
    minimum->GetRealValues(wide.data(), 3);
    EXPECT_THAT(wide, ::testing::ElementsAre(1, 2, 0)) << "what the type shows";
    minimum->GetRealValuesMax(wide.data(), 2);
    EXPECT_THAT(wide, ::testing::ElementsAre(0, 0, 0));

    vector.SetComplexType(SignalType::OctaveMax, false);
    EXPECT_TRUE(vector.GetRealValueMin() == nullptr && Shown(vector.GetRealValueMax()) == Values(2));
    vector.SetSize(-3);
    EXPECT_EQ(vector.GetRealValueMax(), nullptr);

    const auto drops = Filled(3);
    const std::unique_ptr<float[]> min(drops->GetRealValueMin()), max(drops->GetRealValueMax());
    drops->ReInitPtrTab(); // frees the real array only
    EXPECT_TRUE(drops->GetRealValue() == nullptr && drops->GetRealValueMin() == nullptr && min[0] == 3 && max[0] == 5);

    Values lent{8, 9};
    const auto borrower = Filled(3);
    const std::unique_ptr<float[]> real(borrower->GetRealValue());
    borrower->SetRealValueMin(lent.data());
    EXPECT_TRUE(borrower->GetRealValueMax() == nullptr && !borrower->IsMyDataTabs());
    borrower->SetRealValueMax(lent.data());
    EXPECT_EQ(borrower->GetRealValueMin(), lent.data()) << "nothing is freed that isn't owned";
    const std::unique_ptr<CResult> shares(borrower->GetCopy());
    EXPECT_EQ(dynamic_cast<CRegVector&>(*shares).GetRealValueMin(), lent.data());
    borrower->SetSize(4); // no array follows
    EXPECT_EQ(Shown(borrower->GetRealValueMin()), Values({8, 9}));
}

TEST(RegVector, CopiesAndQuantities)
{
    const auto filled = Filled(3);
    CGrandeur y, replacement;
    CGrandeurFichier x;
    filled->SetXMagnitude(&x), filled->SetMagnitude(&y);
    const std::unique_ptr<CResult> copy(filled->GetCopy());
    auto& copied = dynamic_cast<CRegVector&>(*copy);
    EXPECT_EQ(written(copied), written(*filled));
    EXPECT_TRUE(copied.GetRealValueMax() != filled->GetRealValueMax() && copied.GetXMagnitude() == &x);
    CRegXAxis& axis = *filled;
    axis.ReplaceGrandeur(&x, &replacement); // through the second base
    std::map<CGrandeur*, int> counts;
    axis.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&y, 1}, {&replacement, 1}}));

    CVector vector(2, 2, SignalType::OctaveMinMax, 0, true);
    copied = static_cast<CResult*>(&vector);
    EXPECT_TRUE(copied.GetRealValueMin() == nullptr && Shown(copied.GetRealValue()) == Values(2));
    EXPECT_TRUE(copied.GetXMax() == 22 && copied.GetGlobLevel({}) == 32) << "an axis and levels only from their own";
    copied = static_cast<CResult*>(filled.get());
    copied = static_cast<CResult*>(&copied);
    copied = static_cast<CResult*>(nullptr);
    EXPECT_EQ(Shown(copied.GetRealValueMax()), Values({5, 6}));
}

TEST(RegVector, HostileSizesAskForNothing)
{
    for (const int type : {0, 3, 4, 5})
        for (const int size : {1 << 20, INT_MAX}) {
            CRegVector sample(18, 0, 3, SignalType(type), 0, true), read;
            sample.AdjustSize(size);
            const auto base = written([&](CMmioFile& file) { return sample.CResult::Write(&file); });
            const Bytes stored = Bytes{}.u16(3).u16(1).raw({base.data(), base.size()}).zeros(64);
            EXPECT_FALSE(readFrom(stored.data(), [&](CMmioFile& file) { return read.Read(&file); })) << type;
            EXPECT_TRUE(read.GetRealValue() == nullptr && read.GetRealValueMin() == nullptr);
        }
}

TEST(ResultFactory, MakesPairsOfTheSingleKind)
{
    const auto check = []<class Vector>(std::type_identity<Vector>, int kind, unsigned single) {
        const auto result = ResultFactory::create(otype::ElementaryResultProcess::fromInteger(kind), 0, u"");
        const auto* pair = dynamic_cast<CDoubleResult*>(result.get());
        ASSERT_NE(pair, nullptr) << kind;
        EXPECT_NE(pair->GetMinVector(), pair->GetMaxVector());
        for (CVector* vector : {pair->GetMinVector(), pair->GetMaxVector()}) {
            ASSERT_TRUE(typeid(*vector) == typeid(Vector)) << kind;
            EXPECT_EQ(vector->GetProcessType(), single);
            EXPECT_TRUE(vector->GetSize() == 401 && vector->GetComplexType() == SignalType::Real);
            EXPECT_TRUE(vector->GetWtfProcessType() == 0 && vector->IsMyDataTabs());
            EXPECT_EQ(vector->GetXnOctave(), 0U);
        }
    };
    check(std::type_identity<CRefVector>(), 40, 37);
    check(std::type_identity<CRegVector>(), 119, 118);
    check(std::type_identity<CRefVector>(), 123, 122);
    check(std::type_identity<CRegVector>(), 125, 124);
}

TEST(RegVector, TakesItsOwnArrayBack)
{
    CRegVector bands(131, 4, 1, SignalType::OctaveMinMax, 0, true);
    const std::unique_ptr<float[]> real(bands.CVector::GetRealValue()), minimum(bands.GetRealValueMin());
    bands.SetRealValueMin(minimum.get());
    EXPECT_EQ(bands.GetRealValueMin(), minimum.get());
    EXPECT_EQ(minimum[0], 0);
    EXPECT_EQ(bands.GetRealValueMax(), nullptr);
}

} // namespace
} // namespace ZelmResult
