#include "tools/zmxf/analysis/run_up.h"

#include "tools/zmxf/analysis/tacho.h"

#include <cmath>
#include <gmock/gmock.h>

namespace zmxf {

namespace {

std::vector<double> EdgesOf(const std::vector<double>& samples)
{
    const auto [least, most] = std::minmax_element(samples.begin(), samples.end());
    TachoMeter meter(*least, *most);
    for (const double x : samples) meter.Add(x);
    return meter.edges();
}

} // namespace

TEST(Tacho, CountsRisingEdgesThatGoAllTheWay)
{
    // At 6 of 0 to 10; a start in the upper half, a bounce and a half-hearted pulse are none.
    EXPECT_THAT(EdgesOf({10, 10, 0, 10, 5, 9, 0, 5, 0, 0, 8, 10}),
                ::testing::ElementsAre(::testing::DoubleEq(2.6), ::testing::DoubleEq(9.75)));
    EXPECT_TRUE(EdgesOf({3, 3, 3}).empty());
    EXPECT_EQ(EdgesOf({-7, 0, -7, 0}).size(), 2U) << "negative pulses rise too";
}

TEST(Tacho, SpeedIsThatAroundTheSample)
{
    const std::vector<double> edges = {10, 20, 30, 50, 70};
    EXPECT_DOUBLE_EQ(*SpeedAround(edges, 20, 10), 0.1);
    EXPECT_DOUBLE_EQ(*SpeedAround(edges, 30, 10), (1.0 + 0.5) / 20.0);
    EXPECT_DOUBLE_EQ(*SpeedAround(edges, 65, 100), 0.05) << "no further than the edges reach on both sides";
    for (const double outside : {5.0, 10.0, 70.0, 80.0}) EXPECT_FALSE(SpeedAround(edges, outside, 10));
    EXPECT_FALSE(SpeedAround({5}, 5, 10));
}

TEST(RunUp, SlicesAreTheBlocksThatHaveASpeed)
{
    std::vector<double> edges;
    for (int i = 0; i <= 50; ++i) edges.push_back(100.0 + 10.0 * i); // up to sample 600
    const auto slices = SlicesOf(edges, 2.0, 100, 1000, 50);
    ASSERT_EQ(slices.size(), 9U) << "middles at 150 to 550";
    EXPECT_TRUE(slices.front().firstFrame == 100 && slices.back().firstFrame == 500);
    EXPECT_DOUBLE_EQ(slices.front().seconds, 3.0);
    for (const RunUpSlice& slice : slices) EXPECT_NEAR(slice.speed, 0.1 / 2.0 * 50.0, 1e-12);
    EXPECT_TRUE(SlicesOf(edges, 2.0, 100, 99, 50).empty());
    EXPECT_TRUE(SlicesOf(edges, 2.0, 0, 1000, 50).empty());
}

} // namespace zmxf
