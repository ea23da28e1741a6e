#include "zelmresult/waterfalls/octave_tools.h"

#include <gtest/gtest.h>
#include <limits>

namespace ZelmResult {

TEST(OctaveTools, FrequenciesOfBands)
{
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, 3, 1, false, false), 1995.262F);
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, 3, 1, false, true), 1778.279F);
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, 3, 1, true, false), 2000.0F);
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, -1, 0, false, false), 501.1872F);
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, 1, 2, false, false), 917.28F * 1.0592537F);
    EXPECT_FLOAT_EQ(OctaveTools::GetOctaveFrequence(1000.0F, 1, 3, false, false), 904.17F * 1.0292005F);
    EXPECT_EQ(OctaveTools::GetOctaveStep(9), OctaveTools::GetOctaveStep(0));
}

TEST(OctaveTools, PreferredValues)
{
    const float infinite = std::numeric_limits<float>::infinity();
    const struct {
        float exact;
        std::uint32_t xn;
        float preferred;
    } rows[] = {{1100.0F, 1, 1000.0F}, {1125.0F, 1, 1250.0F},  {0.0F, 1, 1.0F},       {15.849F, 1, 16.0F},
                {9.7F, 0, 10.0F},      {316.2F, 1, 315.0F},    {0.0251F, 1, 0.025F},  {12300.0F, 2, 12200.0F},
                {9.99F, 2, 9.71F},     {0.9999995F, 3, 1.01F}, {1050.0F, 3, 1040.0F}, {infinite, 1, 10.0F}};
    for (const auto& row : rows)
        EXPECT_FLOAT_EQ(OctaveTools::ConvertOctaveCentralFreq(row.exact, row.xn), row.preferred) << row.exact;
}

} // namespace ZelmResult
