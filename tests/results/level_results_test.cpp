#include "zelmresult/results/level_results.h"

#include "tests/builders/record_check.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

using namespace test;
using ::testing::HasSubstr;

Type_Level LevelOf(float value) { return {value, value + 0.5F, value - 0.5F, 0, 0}; }

CBroadBand BroadBand()
{
    CBroadBand levels(46, 54, SignalType::Real);
    levels.SetShortLpk(LevelOf(1));
    for (std::int32_t i = 0; i < 3; ++i) {
        const auto triple = static_cast<float>(10 * (i + 1));
        levels.SetInstantLeq(i, LevelOf(triple + 1));
        levels.SetShortLeq(i, LevelOf(triple + 2));
        levels.SetLeq(i, LevelOf(triple + 3));
    }
    return levels;
}

// The base block of an object and then those of scalars with the values.
template <class Result>
Bytes Stored(Result& result, std::uint16_t version, const std::vector<float>& values)
{
    const auto block = [](CResult& object, auto write) {
        const std::vector<char> stored = written([&](CMmioFile& file) { return write(object, file); });
        return Bytes{}.raw({stored.data(), stored.size()});
    };
    Bytes bytes =
        Bytes{}
            .u16(version, "version")
            .append(block(result, [](CResult& object, CMmioFile& file) { return object.CResult::Write(&file); }),
                    "base");
    for (const float value : values) {
        CScalar level;
        level.writeLevelValue() = LevelOf(value);
        bytes.append(block(level, [](CResult& object, CMmioFile& file) { return object.Write(&file); }), "level");
    }
    return bytes;
}

TEST(BroadBand, StoresItsTriplesOneByOne)
{
    CBroadBand levels = BroadBand();
    levels.SetLeq(3, LevelOf(99));
    levels.SetLeq(-1, LevelOf(99));
    EXPECT_EQ(levels.GetResultType(), SizeType::BroadBand);
    EXPECT_TRUE(levels.GetValue() == 1 && levels.GetLeq(2).maxValue() == 33.5F && levels.GetRealMax() == 0);
    expectBytes(written(levels), Stored(levels, 1, {1, 11, 12, 13, 21, 22, 23, 31, 32, 33}));
    EXPECT_THAT(dumpOf(levels), HasSubstr("CBroadBand\nShortLpk : 1.000000, InstantLeq1 : 11.000000 , ShortLeq1 : "
                                          "12.000000 , Leq1 : 13.000000 , InstantLeq2 : 21.000000 , ShortLeq2 : "
                                          "22.000000 , Leq2 : 23.000000 , InstantLeq3 : 31.000000, ShortLeq3 : "
                                          "32.000000, Leq3 : 33.000000 \n"));
    RecordCheck<CBroadBand> check{.name = "CBroadBand", .lowest = 0, .silentReads = -1};
    check.expect = [](CBroadBand& read, std::uint16_t version) {
        EXPECT_EQ(read.GetLeq(1).lastValue(), version == 0 ? 0 : 23);
    };
    checkRecord(levels, check);

    CGrandeurFichier quantity(u"p");
    CGrandeur other;
    levels.SetMagnitude(&quantity);
    levels.SetYMax(7);
    levels.SetXMax(9);
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
    expectBytes(written(levels), Stored(levels, 2, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10}));
    EXPECT_THAT(dumpOf(levels),
                HasSubstr("CGlobalLevel\nDC : 1.000000, Min : 3.000000 , Max : 2.000000 , RMS : 4.000000 , Energy : "
                          "5.000000 , Skew : 6.000000 , Kurtosis : 7.000000, Peak : 8.000000, Peak-Peak : 9.000000, "
                          "Crest Factor : 10.000000\n"));
    RecordCheck<CGlobalLevel> check{.name = "CGlobalLevel", .lowest = 0, .newest = 2, .silentReads = -1};
    check.expect = [](CGlobalLevel& read, std::uint16_t version) {
        EXPECT_EQ(read.GetLevel(CGlobalLevel::Kurtosis).lastValue(), version == 0 ? 0 : 7);
        EXPECT_EQ(read.GetLevel(CGlobalLevel::Peak).lastValue(), version < 2 ? 0 : 8);
    };
    checkRecord(levels, check);
}

TEST(SuiviOrdre, HasEightOrdersAndTheOverallLevel)
{
    CSuiviOrdre levels(44, 9, SignalType::Real);
    for (std::int32_t i = 0; i < 8; ++i) levels.SetOrderValue(i, LevelOf(static_cast<float>(i + 1)));
    levels.SetOverallValue(LevelOf(20));
    levels.SetYMin(-3);
    EXPECT_TRUE(levels.GetValue() == 1 && levels.GetOverall().lastValue() == 20 && levels.GetRealMin() == -3);
    levels.SetYMin(0);
    expectBytes(written(levels), Stored(levels, 1, {1, 2, 3, 4, 5, 6, 7, 8, 20}));
    EXPECT_THAT(dumpOf(levels),
                HasSubstr("CSuiviOrdre\nOrdre1 : 1.000000, Ordre2 : 2.000000 , Ordre3 : 3.000000 , Ordre4 : 4.000000 , "
                          "Ordre5 : 5.000000 , Ordre6 : 6.000000 , Ordre7 : 7.000000, Ordre8 : 8.000000, Overall : "
                          "20.000000 \n"));
    RecordCheck<CSuiviOrdre> check{.name = "CSuiviOrdre", .lowest = 0, .silentReads = -1};
    checkRecord(levels, check);
}

} // namespace
} // namespace ZelmResult
