#include "zelmresult/results/level_results.h"

#include "tests/builders/record_check.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;

TEST(BroadBand, HandsLimitsToAllLevelsAndQuantitiesToItself)
{
    CBroadBand levels(46, 54, SignalType::Real);
    levels.SetShortLpk({1, 2, 3, 0, 0});
    for (const std::int32_t none : {3, -1}) levels.SetLeq(none, {9, 9, 9, 0, 0});
    EXPECT_EQ(levels.GetValue(), 1);
    EXPECT_EQ(levels.GetLeq(2).lastValue(), 0);
    checkRecord(levels, RecordCheck<CBroadBand>{.name = "CBroadBand", .lowest = 0, .silentReads = -1});
    CGrandeurFichier quantity(u"p");
    CGrandeur other;
    levels.SetMagnitude(&quantity);
    levels.SetYMax(7);
    EXPECT_EQ(levels.GetLeq(2).GetMagnitude(), &quantity);
    EXPECT_EQ(levels.GetLeq(2).GetYMax(), 7);
    levels.ReplaceGrandeur(&quantity, &other);
    EXPECT_EQ(levels.GetMagnitude(), &other);
    EXPECT_EQ(levels.GetLeq(2).GetMagnitude(), &quantity);
    const std::unique_ptr<CResult> copy(levels.GetCopy());
    CScalar scalar;
    *copy = static_cast<CResult*>(&scalar);
    EXPECT_EQ(copy->GetValue(), 1) << "of another class comes the base alone";
}

TEST(GlobalLevel, GotThreeStatisticsLater)
{
    CGlobalLevel levels(29, 1, SignalType::Real);
    for (int i = 0; i < 10; ++i)
        levels.SetStatistic(static_cast<CGlobalLevel::Statistic>(i), {static_cast<float>(i + 1), 0, 0, 0, 0});
    RecordCheck<CGlobalLevel> check{.name = "CGlobalLevel", .lowest = 0, .newest = 2, .silentReads = -1};
    check.expect = [](CGlobalLevel& read, std::uint16_t version) {
        const float held[] = {0, 7, 10};
        for (int i = 0; i < 10; ++i) {
            const float wanted = static_cast<float>(i) < held[version] ? static_cast<float>(i + 1) : 0.0F;
            EXPECT_EQ(read.GetLevel(static_cast<CGlobalLevel::Statistic>(i)).lastValue(), wanted) << i;
        }
    };
    checkRecord(levels, check);
}

} // namespace
} // namespace ZelmResult
