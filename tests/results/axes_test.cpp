// Regular axes, and the vectors on them.

#include "tests/builders/record_check.h"
#include "zelmresult/results/reg_vector.h"

#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using Values = std::vector<float>;

// A value of its own in every field.
std::unique_ptr<CRegVector> Filled(int type, int size = 2)
{
    auto vector = std::make_unique<CRegVector>(18, size, 3, SignalType(type), 9, true);
    float value = 1;
    float* arrays[] = {type < 4 ? vector->GetRealValue() : nullptr, type == 1 ? vector->GetImValue() : nullptr,
                       vector->GetRealValueMin(), vector->GetRealValueMax()};
    for (float* array : arrays)
        for (int i = 0; array != nullptr && i < size; ++i) array[i] = value++;
    vector->SetXMin(21);
    vector->SetXMax(22);
    value = 30;
    for (const auto target : {AvgOctaveTarget::None, AvgOctaveTarget::Minimum, AvgOctaveTarget::Maximum}) {
        vector->SetGlobPondLevel(target, ++value);
        vector->SetGlobLevel(target, ++value);
    }
    vector->SetPonderationGlob(7);
    return vector;
}

Values Shown(const float* values) { return values == nullptr ? Values{} : Values(values, values + 2); }

TEST(RegVector, ArraysAndTheirOwner)
{
    const auto vector = Filled(3);
    EXPECT_EQ(vector->GetGlobLevel(AvgOctaveTarget(5)), 32) << "as of any other target";
    for (const int type : {4, 5}) {
        const auto shows = Filled(type);
        EXPECT_EQ(shows->GetRealValue(), type == 4 ? shows->GetRealValueMin() : shows->GetRealValueMax());
    }
    vector->SetComplexType(SignalType::OctaveMax, false);
    EXPECT_EQ(vector->GetRealValueMin(), nullptr);
    EXPECT_EQ(Shown(vector->GetRealValueMax()), Values(2));

    const auto drops = Filled(3);
    const std::unique_ptr<float[]> min(drops->GetRealValueMin()), max(drops->GetRealValueMax());
    drops->ReInitPtrTab(); // frees the real array only
    EXPECT_EQ(drops->GetRealValue(), nullptr);
    EXPECT_EQ(drops->GetRealValueMin(), nullptr);
    EXPECT_EQ(min[0], 3);
    EXPECT_EQ(max[0], 5);

    Values lent{8, 9};
    const auto borrower = Filled(3);
    const std::unique_ptr<float[]> real(borrower->GetRealValue()), own(borrower->GetRealValueMin());
    borrower->SetRealValueMin(own.get());
    EXPECT_EQ(borrower->GetRealValueMax(), nullptr);
    EXPECT_FALSE(borrower->IsMyDataTabs());
    EXPECT_EQ(own[0], 3) << "handed back in";
    borrower->SetRealValueMax(lent.data());
    EXPECT_EQ(borrower->GetRealValueMin(), own.get()) << "nothing is freed that isn't owned";
    const std::unique_ptr<CResult> shares(borrower->GetCopy());
    EXPECT_EQ(dynamic_cast<CRegVector&>(*shares).GetRealValueMax(), lent.data());
    borrower->SetSize(4); // no array follows
    EXPECT_EQ(borrower->GetRealValueMax(), lent.data());
}

TEST(RegVector, QuantitiesAndValuesOfOthers)
{
    const auto filled = Filled(3);
    CGrandeur y, replacement;
    CGrandeurFichier x;
    filled->SetXMagnitude(&x);
    filled->SetMagnitude(&y);
    CRegXAxis& axis = *filled;
    axis.ReplaceGrandeur(&x, &replacement); // through the second base
    std::map<CGrandeur*, int> counts;
    axis.AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&y, 1}, {&replacement, 1}}));

    CVector vector(2, 2, SignalType::OctaveMinMax, 0, true);
    CRegVector copied;
    copied = static_cast<CResult*>(filled.get());
    copied = static_cast<CResult*>(&vector);
    EXPECT_EQ(copied.GetRealValueMin(), nullptr);
    EXPECT_EQ(Shown(copied.GetRealValue()), Values(2));
    EXPECT_EQ(copied.GetXMax(), 22);
    EXPECT_EQ(copied.GetGlobLevel({}), 32) << "an axis and levels only from their own";
}

} // namespace
} // namespace ZelmResult
