#include "tools/signal_processing/orders.h"
#include "tools/signal_processing/overview.h"
#include "tools/signal_processing/sound_levels.h"

#include <cmath>
#include <gmock/gmock.h>
#include <numbers>
#include <vector>

namespace zmxf {

namespace {

using ::testing::ElementsAre;

// The standard's table for the 34 nominal frequencies from 10 Hz to 20 kHz, in dB.
constexpr struct {
    double a;
    double c;
} kTable[] = {{-70.4, -14.3}, {-63.4, -11.2}, {-56.7, -8.5}, {-50.5, -6.2}, {-44.7, -4.4}, {-39.4, -3.0}, {-34.6, -2.0},
              {-30.2, -1.3},  {-26.2, -0.8},  {-22.5, -0.5}, {-19.1, -0.3}, {-16.1, -0.2}, {-13.4, -0.1}, {-10.9, 0.0},
              {-8.6, 0.0},    {-6.6, 0.0},    {-4.8, 0.0},   {-3.2, 0.0},   {-1.9, 0.0},   {-0.8, 0.0},   {0.0, 0.0},
              {0.6, 0.0},     {1.0, -0.1},    {1.2, -0.2},   {1.3, -0.3},   {1.2, -0.5},   {1.0, -0.8},   {0.5, -1.3},
              {-0.1, -2.0},   {-1.1, -3.0},   {-2.5, -4.4},  {-4.3, -6.2},  {-6.6, -8.5},  {-9.3, -11.2}};

double Frequency(std::size_t row) { return 1000.0 * std::pow(10.0, (static_cast<double>(row) - 20.0) / 10.0); }

// The gains of the filters in dB, once a sine has lasted for a while.
std::pair<double, double> GainsAt(double frequency, double sampleRate)
{
    WeightingFilters filters(sampleRate);
    const double step = 2.0 * std::numbers::pi * frequency / sampleRate;
    const auto settled = static_cast<int>(sampleRate / 2.0);
    double a = 0.0;
    double c = 0.0;
    double z = 0.0;
    for (int i = 0; i < 2 * settled; ++i) {
        const WeightedSample sample = filters.Next(std::sin(step * i));
        // A Hann window, so that the number of periods doesn't matter.
        const double weight = std::pow(std::sin(std::numbers::pi * (i - settled) / settled), 2.0);
        if (i < settled) continue;
        a += weight * sample.a * sample.a;
        c += weight * sample.c * sample.c;
        z += weight * sample.z * sample.z;
    }
    return {10.0 * std::log10(a / z), 10.0 * std::log10(c / z)};
}

} // namespace

TEST(Weighting, FollowsTheTableOfTheStandardAtAnySampleRate)
{
    for (const double sampleRate : {48000.0, 44100.0, 16000.0, 2000.0, 192000.0}) {
        for (std::size_t row = 0; row < std::size(kTable) && Frequency(row) < 0.475 * sampleRate; ++row) {
            const auto [a, c] = GainsAt(Frequency(row), sampleRate);
            EXPECT_NEAR(a, kTable[row].a, 0.1) << Frequency(row) << " Hz at " << sampleRate;
            EXPECT_NEAR(c, kTable[row].c, 0.1) << Frequency(row) << " Hz at " << sampleRate;
            EXPECT_NEAR(a, 20.0 * std::log10(AWeighting(Frequency(row))), 0.05);
            EXPECT_NEAR(c, 20.0 * std::log10(CWeighting(Frequency(row))), 0.05);
        }
    }
    WeightingFilters filters(48000.0);
    for (int i = 0; i < 100; ++i) { // Z is the sample itself, as late as the others
        const double expected = i < static_cast<int>(WeightingFilters::kDelay) ? 0.0 : i - 15.0;
        EXPECT_EQ(filters.Next(i + 1.0).z, expected);
    }
}

TEST(SoundLevels, IntervalsAreWholeAndPeaksCountAlways)
{
    IntervalMeter whole(2);
    for (const double square : {1.0, 3.0, 9.0, 9.0, 4.0, 4.0, 100.0}) whole.Add(square);
    EXPECT_THAT((std::vector{whole.Result().last, whole.Result().highest, whole.Result().lowest}),
                ElementsAre(4, 9, 2));
    IntervalMeter part(4);
    for (const double square : {1.0, 3.0}) part.Add(square);
    EXPECT_THAT((std::vector{part.Result().last, part.Result().lowest}), ElementsAre(2, 2));

    SoundLevelMeter meter(8.0); // instant intervals of one sample, short ones of eight
    for (int i = 0; i < 17; ++i) meter.Add({1.0, i == 16 ? -5.0 : 2.0, i == 3 ? 4.0 : 0.0});
    const SoundLevels levels = meter.Result();
    EXPECT_EQ(levels.a.whole, 1.0);
    EXPECT_EQ(levels.a.shorts.lowest, 1.0);
    EXPECT_EQ(levels.a.instants.last, 1.0);
    EXPECT_DOUBLE_EQ(levels.z.whole, 16.0 / 17.0);
    EXPECT_THAT((std::vector{levels.z.shorts.highest, levels.z.shorts.last, levels.z.instants.highest}),
                ElementsAre(2, 0, 16));
    EXPECT_THAT((std::vector{levels.cPeak.last, levels.cPeak.highest, levels.cPeak.lowest}), ElementsAre(2, 5, 2));
}

TEST(Overview, PointsShareTheSamples)
{
    OverviewMeter few(5);
    for (const double x : {1.0, -2.0}) few.Add(x, {0.5, 0.25, 7.0});
    const Overview all = std::move(few).Result();
    EXPECT_EQ(all.samplesPerPoint, 1);
    ASSERT_EQ(all.points.size(), 2U);
    EXPECT_EQ(all.points[1].upper, -2.0);
    EXPECT_EQ(all.points[1].rms, 2.0);
    EXPECT_EQ(all.points[1].aRms, 0.5);

    OverviewMeter many(Overview::kMostPoints * 3 - 1);
    for (std::int64_t i = 0; i < Overview::kMostPoints * 3 - 1; ++i) many.Add(static_cast<double>(i % 3), {});
    const Overview thirds = std::move(many).Result();
    EXPECT_EQ(thirds.points.size(), 3200U);
    const auto& point = thirds.points[1000];
    EXPECT_EQ(point.upper, 2.0);
    EXPECT_EQ(point.lower, 0.0);
    EXPECT_EQ(point.mean, 1.0);
    EXPECT_DOUBLE_EQ(point.rms, std::sqrt(5.0 / 3.0));
    EXPECT_EQ(thirds.points.back().mean, 0.5) << "of the two samples that were left";
}

TEST(Orders, TakeTheLinesAroundThem)
{
    std::vector<double> lines(101); // 2 Hz apart, a line of power n at n
    for (std::size_t i = 0; i < lines.size(); ++i) lines[i] = static_cast<double>(i);
    const auto sum = [&lines](double frequency, double smear, double reach) {
        return PowerAround(lines, 2.0, frequency, smear, reach, Window::Hann) * 1.5;
    };
    EXPECT_DOUBLE_EQ(sum(20.0, 0.0, 100.0), 8 + 9 + 10 + 11 + 12);
    EXPECT_DOUBLE_EQ(sum(21.0, 0.0, 100.0), 9 + 10 + 11 + 12);
    EXPECT_DOUBLE_EQ(sum(20.0, 4.0, 100.0), 7 + 8 + 9 + 10 + 11 + 12 + 13);
    EXPECT_DOUBLE_EQ(sum(20.0, 400.0, 2.0), 9 + 10 + 11);
    EXPECT_DOUBLE_EQ(sum(20.6, 0.0, 0.1), 10) << "the nearest line at least";
    EXPECT_DOUBLE_EQ(sum(200.0, 0.0, 100.0), 98 + 99 + 100);
    EXPECT_DOUBLE_EQ(sum(0.0, 0.0, 100.0), 0 + 1 + 2);
    EXPECT_TRUE(std::isnan(sum(200.1, 0.0, 100.0)));
    EXPECT_NEAR(PowerAround(lines, 2.0, 100.0, 0.0, 100.0, Window::FlatTop) * 3.77,
                45 + 46 + 47 + 48 + 49 + 50 + 51 + 52 + 53 + 54 + 55, 0.1);
    EXPECT_EQ(LowestOrderSpeed({800, 0, 1.0, {}, {}, {}, Window::FlatTop}, 8000.0), 90.0) << "nine lines";
}

} // namespace zmxf
