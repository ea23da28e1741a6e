#include "zelmresult/results/vector.h"

#include "tests/builders/record_check.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/reg_vector.h"

#include <array>
#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <memory>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::ElementsAre;
using Values = std::vector<float>;

std::unique_ptr<CVector> FilledVector(SignalType type, int size = 2)
{
    auto vector = std::make_unique<CVector>(2, size, type, 0, true);
    for (int i = 0; i < size; ++i) vector->GetRealValue()[i] = static_cast<float>(i + 1);
    return vector;
}

Values Shown(float* values, int n = 2) { return values == nullptr ? Values{} : Values(values, values + n); }

TEST(Vector, BorrowedArraysBoundWhatIsRead)
{
    Values lent = {1, 2, 3};
    CVector borrower(2, 3, SignalType::OctaveMinMax, 0, false);
    borrower.SetRealValue(lent.data());
    borrower.ReAlloc();
    EXPECT_EQ(borrower.GetImValue(), lent.data());
    const auto smaller = FilledVector(SignalType::OctaveMinMax), larger = FilledVector(SignalType::OctaveMinMax, 4);
    smaller->GetRealValue()[0] = 7;
    EXPECT_TRUE(readFrom(written(*smaller), reading(borrower)));
    EXPECT_FALSE(readFrom(written(*larger), reading(borrower)));
    EXPECT_THAT(lent, ElementsAre(7, 2, 3));
    borrower.ReInitPtrTab();
    EXPECT_EQ(borrower.GetRealValue(), nullptr);
}

// In whatever order a host sets array and size.
TEST(Vector, ArraysOfAHostAreAsLongAsItSays)
{
    Values real{1, 2, 3}, least{4, 5, 6}, most{7, 8, 9};
    for (const bool adjusts : {false, true}) {
        CRegVector borrower(18, 1, 1, SignalType::OctaveMinMax, 0, false);
        borrower.SetRealValue(real.data());
        borrower.SetRealValueMin(least.data());
        borrower.SetRealValueMax(most.data());
        adjusts ? borrower.AdjustSize(3) : borrower.SetSize(3);
        std::array<float, 3> shown{};
        borrower.GetRealValuesMin(shown.data(), 3);
        EXPECT_THAT(shown, ElementsAre(4, 5, 6));
        CRegVector read;
        readInto(read, written(borrower));
        EXPECT_THAT(Shown(read.GetRealValue(), 3), ElementsAre(1, 2, 3));
        EXPECT_THAT(Shown(read.GetRealValueMax(), 3), ElementsAre(7, 8, 9));
    }
    CVector owner;
    owner.SetRealValue(new float[2]{1, 2});
    owner.AdjustSize(2);
    const std::unique_ptr<CResult> copy(owner.GetCopy());
    EXPECT_THAT(Shown(dynamic_cast<CVector&>(*copy).GetRealValue()), ElementsAre(1, 2));
}

TEST(Vector, MayBeCutOffInAFile)
{
    CVector sample(2, 0, SignalType::Real, 0, true);
    sample.AdjustSize(1000);
    const auto cut = readBack<CVector>(Bytes{}.u16(1).append(baseBlockOf<CResult>(sample)).f32s({5}));
    EXPECT_EQ(cut->GetRealValue()[0], 5);
    EXPECT_EQ(cut->GetRealValue()[999], 0);
}

std::unique_ptr<CDoubleResult> Pair()
{
    return std::make_unique<CDoubleResult>(FilledVector(SignalType::Real).release(),
                                           new CVector(37, 2, SignalType::Complex, 0, true));
}

TEST(DoubleResult, ForwardsToItsVectors)
{
    const auto pair = Pair();
    CGrandeur quantity, replacement;
    CGrandeurFichier fromFile;
    pair->SetMagnitude(&quantity);
    EXPECT_EQ(pair->GetMagnitude(), nullptr);
    pair->GetMaxVector()->SetMagnitude(&fromFile);
    pair->ReplaceGrandeur(&fromFile, &replacement);
    std::map<CGrandeur*, int> counts;
    pair->AddInvolvedGrandeur(counts);
    EXPECT_EQ(counts, (std::map<CGrandeur*, int>{{&quantity, 1}, {&replacement, 1}}));
}

} // namespace
} // namespace ZelmResult
