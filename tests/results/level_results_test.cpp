#include "zelmresult/results/level_results.h"

#include "tests/builders/record_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::HasSubstr;

Type_Level LevelOf(float value) { return {value, value + 0.5F, value - 0.5F, 0, 0}; }

// The stored bytes are the base block and then those of scalars with the values; of the former version so many fewer.
template <class Result>
void CheckStored(Result& result, std::uint16_t newest, const std::vector<float>& values, std::size_t fewer = 0)
{
    for (std::uint16_t version = 1; version <= newest; ++version) {
        Bytes stored = Bytes{}.u16(version, "version").append(baseBlockOf<CResult>(result), "base");
        for (std::size_t i = 0; i < values.size() - (version < newest ? fewer : 0); ++i) {
            CScalar level;
            level.writeLevelValue() = LevelOf(values[i]);
            stored.append(blockOf(level), "level");
        }
        expectBytes(written(result, {{Result::kRecordName, version}}), stored);
    }
    checkRecord(result,
                RecordCheck<Result>{.name = Result::kRecordName, .lowest = 0, .newest = newest, .silentReads = -1});
}

TEST(BroadBand, StoresItsTriplesOneByOne)
{
    CBroadBand levels(46, 54, SignalType::Real);
    levels.SetShortLpk(LevelOf(1));
    for (const std::int32_t i : {0, 1, 2, 3, -1}) { // the last two are none
        const auto triple = static_cast<float>(10 * (i + 1));
        levels.SetInstantLeq(i, LevelOf(triple + 1));
        levels.SetShortLeq(i, LevelOf(triple + 2));
        levels.SetLeq(i, LevelOf(triple + 3));
    }
    EXPECT_TRUE(levels.GetValue() == 1 && levels.GetLeq(2).maxValue() == 33.5F && levels.GetRealMax() == 0);
    CheckStored(levels, 1, {1, 11, 12, 13, 21, 22, 23, 31, 32, 33});
    EXPECT_THAT(dumpOf(levels), HasSubstr("CBroadBand\nShortLpk : 1.000000, InstantLeq1 : 11.000000 , ShortLeq1 : "
                                          "12.000000 , Leq1 : 13.000000 , InstantLeq2 : 21.000000 , ShortLeq2 : "
                                          "22.000000 , Leq2 : 23.000000 , InstantLeq3 : 31.000000, ShortLeq3 : "
                                          "32.000000, Leq3 : 33.000000 \n"));
    CGrandeurFichier quantity(u"p");
    CGrandeur other;
    levels.SetMagnitude(&quantity), levels.SetYMax(7);
    EXPECT_TRUE(levels.GetLeq(2).GetMagnitude() == &quantity && levels.GetLeq(2).GetYMax() == 7);
    levels.ReplaceGrandeur(&quantity, &other);
    EXPECT_TRUE(levels.GetMagnitude() == &other && levels.GetLeq(2).GetMagnitude() == &quantity);
    const std::unique_ptr<CResult> copy(levels.GetCopy());
    EXPECT_TRUE(copy->GetYMax() == 7 && dynamic_cast<CBroadBand&>(*copy).GetShortLeq(0).minValue() == 11.5F);
    CScalar scalar;
    *copy = static_cast<CResult*>(&scalar);
    EXPECT_EQ(copy->GetValue(), 1) << "of another class comes the base alone";
}

TEST(GlobalLevel, GotThreeStatisticsLater)
{
    CGlobalLevel levels(29, 1, SignalType::Real);
    for (std::size_t i = 0; i < 10; ++i)
        levels.SetStatistic(static_cast<CGlobalLevel::Statistic>(i), LevelOf(static_cast<float>(i + 1)));
    CheckStored(levels, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}, 3);
    EXPECT_THAT(dumpOf(levels),
                HasSubstr("CGlobalLevel\nDC : 1.000000, Min : 3.000000 , Max : 2.000000 , RMS : 4.000000 , Energy : "
                          "5.000000 , Skew : 6.000000 , Kurtosis : 7.000000, Peak : 8.000000, Peak-Peak : 9.000000, "
                          "Crest Factor : 10.000000\n"));
}

TEST(SuiviOrdre, HasEightOrdersAndTheOverallLevel)
{
    CSuiviOrdre levels(44, 9, SignalType::Real);
    for (std::int32_t i = 0; i < 8; ++i) levels.SetOrderValue(i, LevelOf(static_cast<float>(i + 1)));
    levels.SetOverallValue(LevelOf(20));
    CheckStored(levels, 1, {1, 2, 3, 4, 5, 6, 7, 8, 20});
    EXPECT_THAT(dumpOf(levels),
                HasSubstr("CSuiviOrdre\nOrdre1 : 1.000000, Ordre2 : 2.000000 , Ordre3 : 3.000000 , Ordre4 : 4.000000 , "
                          "Ordre5 : 5.000000 , Ordre6 : 6.000000 , Ordre7 : 7.000000, Ordre8 : 8.000000, Overall : "
                          "20.000000 \n"));
    levels.SetYMin(-3);
    EXPECT_TRUE(levels.GetValue() == 1 && levels.GetRealMin() == -3);
}

} // namespace
} // namespace ZelmResult
