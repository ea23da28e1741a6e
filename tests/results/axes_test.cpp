// Regular axes, and the vectors on them.

#include "tests/builders/record_check.h"
#include "zelmresult/results/reg_vector.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

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
    frequency.SetNomGrandeur(u"Frequency");
    CRegXAxis axis(&frequency, 1, 2, 3);
    EXPECT_TRUE(axis == CRegXAxis()) << "the arguments have no effect";
    axis.SetXMin(1.5F), axis.SetXMax(2), axis.SetXnOctave(0xFFFFFFFF);
    expectBytes(written(axis), AxisBlock(2, 1.5F, 0xFFFFFFFF));
    RecordCheck<CRegXAxis> check{.name = "CRegXAxis", .lowest = 0};
    check.expect = [&](CRegXAxis& read, std::uint16_t version) { EXPECT_EQ(read == axis, version == 1); };
    checkRecord(axis, check);

    axis.SetXMagnitude(&frequency);
    EXPECT_EQ(dumpOf(axis), "Chunk de la grandeur: Frequency\nCRegXAxis \nMagnitude :Frequency, "
                            "xMin : 1.500000, xMax : 2.000000, XnOctave : -1\n");
    const std::unique_ptr<CRegXAxis> copy(axis.GetXAxisCopy());
    EXPECT_TRUE(*copy == axis);
    copy->SetXMagnitude(nullptr);
    EXPECT_FALSE(*copy == axis);
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
    Bytes bytes = Bytes{}.u16(version, "version");
    if (version == 0) return bytes;
    bytes.append(baseBlockOf<CVector>(vector), "base").append(AxisBlock(22, 21, 3), "axis");
    bytes.f32(31, "GlobPond").f32(32, "GlobLin");
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
            expectBytes(written(*read, {{"CRegVector", version}}), stored);
            if (version == 1) {
                EXPECT_EQ(Shown(read->GetRealValueMin()), type == 3 || type == 4 ? Values(2) : Values());
            }
        }
        checkRecord(*filled, RecordCheck<CRegVector>{.name = "CRegVector", .lowest = 0, .newest = 3});
    }
    const auto filled = Filled(3);
    CRegXAxis& asAxis = *filled;
    EXPECT_EQ(written(asAxis), written(*filled)) << "the whole object through either base";
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

TEST(RegVector, ArraysAndTheirOwner)
{
    const auto vector = Filled(3);
    EXPECT_EQ(vector->GetGlobLevel(AvgOctaveTarget(5)), 32) << "as of any other target";
    for (const int type : {4, 5}) {
        const auto shows = Filled(type);
        EXPECT_EQ(shows->GetRealValue(), type == 4 ? shows->GetRealValueMin() : shows->GetRealValueMax());
    }
    vector->SetComplexType(SignalType::OctaveMax, false);
    EXPECT_TRUE(vector->GetRealValueMin() == nullptr && Shown(vector->GetRealValueMax()) == Values(2));

    const auto drops = Filled(3);
    const std::unique_ptr<float[]> min(drops->GetRealValueMin()), max(drops->GetRealValueMax());
    drops->ReInitPtrTab(); // frees the real array only
    EXPECT_TRUE(drops->GetRealValue() == nullptr && drops->GetRealValueMin() == nullptr && min[0] == 3 && max[0] == 5);

    Values lent{8, 9};
    const auto borrower = Filled(3);
    const std::unique_ptr<float[]> real(borrower->GetRealValue()), own(borrower->GetRealValueMin());
    borrower->SetRealValueMin(own.get());
    EXPECT_TRUE(borrower->GetRealValueMax() == nullptr && !borrower->IsMyDataTabs());
    EXPECT_EQ(own[0], 3) << "handed back in";
    borrower->SetRealValueMax(lent.data());
    EXPECT_EQ(borrower->GetRealValueMin(), own.get()) << "nothing is freed that isn't owned";
    const std::unique_ptr<CResult> shares(borrower->GetCopy());
    EXPECT_EQ(dynamic_cast<CRegVector&>(*shares).GetRealValueMax(), lent.data());
    borrower->SetSize(4); // no array follows
    EXPECT_EQ(borrower->GetRealValueMax(), lent.data());
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
    EXPECT_NE(copied.GetRealValueMax(), filled->GetRealValueMax());
    CRegXAxis& axis = *filled;
    axis.ReplaceGrandeur(&x, &replacement); // through the second base
    std::map<CGrandeur*, int> counts;
    axis.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&y, 1}, {&replacement, 1}}));

    CVector vector(2, 2, SignalType::OctaveMinMax, 0, true);
    copied = static_cast<CResult*>(&vector);
    EXPECT_TRUE(copied.GetRealValueMin() == nullptr && Shown(copied.GetRealValue()) == Values(2));
    EXPECT_TRUE(copied.GetXMax() == 22 && copied.GetGlobLevel({}) == 32) << "an axis and levels only from their own";
}

} // namespace
} // namespace ZelmResult
