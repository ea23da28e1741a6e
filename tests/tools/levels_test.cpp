#include "tools/zmxf/analysis/levels.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
#include <numbers>
#include <random>
#include <vector>

namespace zmxf {

namespace {

// The definitions, word for word, in a wider type.
struct Direct {
    explicit Direct(const std::vector<double>& samples)
    {
        const auto n = static_cast<long double>(samples.size());
        for (const double x : samples) mean += x / n;
        long double rest = 0; // what the sum lost beside a large offset
        for (const double x : samples) rest += (x - mean) / n;
        mean += rest;
        long double squares = 0;
        long double second = 0;
        long double fourth = 0;
        for (const long double x : samples) {
            squares += x * x / n;
            second += (x - mean) * (x - mean) / n;
            fourth += (x - mean) * (x - mean) * (x - mean) * (x - mean) / n;
            peak = std::max(peak, std::fabs(x));
            acPeak = std::max(acPeak, std::fabs(x - mean));
        }
        rms = std::sqrt(squares);
        acRms = std::sqrt(second);
        kurtosis = fourth / (second * second);
    }

    long double mean = 0, rms = 0, acRms = 0, peak = 0, acPeak = 0, kurtosis = 0;
};

void expectNear(double actual, long double expected, double tolerance, const char* what)
{
    EXPECT_LE(std::fabs(actual - expected), tolerance * std::fabs(expected)) << what << ": " << actual;
}

struct Signal {
    double offset;
    double scale;
    double tolerance;
};

class LevelsOfNoise : public ::testing::TestWithParam<Signal> {};

} // namespace

// Skewed noise: its third moment shows a mean that is off by its rounding.
TEST_P(LevelsOfNoise, AgreeWithTheDefinitions)
{
    const auto [offset, scale, tolerance] = GetParam();
    std::mt19937 random(7);
    std::exponential_distribution<double> noise;
    std::vector<double> samples(20000);
    for (double& x : samples) x = offset + scale * noise(random);
    const Direct direct(samples);
    const Levels levels = MeasureLevels(samples);
    expectNear(levels.mean, direct.mean, tolerance, "mean");
    expectNear(levels.rms, direct.rms, tolerance, "RMS");
    expectNear(levels.acRms, direct.acRms, tolerance, "AC RMS");
    expectNear(levels.peak, direct.peak, tolerance, "peak");
    expectNear(levels.acPeak, direct.acPeak, tolerance, "AC peak");
    expectNear(levels.crest, direct.peak / direct.rms, tolerance, "crest factor");
    expectNear(levels.kurtosis, direct.kurtosis, tolerance, "kurtosis");
}

INSTANTIATE_TEST_SUITE_P(OffsetsAndScales, LevelsOfNoise,
                         ::testing::Values(Signal{0, 1, 1e-12}, Signal{-1e3, 1, 1e-12}, Signal{0, 1e-300, 1e-12},
                                           Signal{0, 1e150, 1e-12}, Signal{1e6, 1e-3, 1e-10}, Signal{1e9, 1e-5, 1e-5}));

TEST(Levels, OfKnownSignals)
{
    constexpr std::size_t count = 4800;
    std::vector<double> sine(count);
    for (std::size_t i = 0; i < count; ++i)
        sine[i] = 0.25 + 2.0 * std::sin(2.0 * std::numbers::pi * 10.0 * static_cast<double>(i) / count);
    const Levels levels = MeasureLevels(sine);
    EXPECT_NEAR(levels.mean, 0.25, 1e-14);
    EXPECT_NEAR(levels.acRms, std::numbers::sqrt2, 1e-13);
    EXPECT_NEAR(levels.kurtosis, 1.5, 1e-13);
    EXPECT_DOUBLE_EQ(levels.minimum, -1.75);
    EXPECT_DOUBLE_EQ(levels.peak, 2.25);

    const Levels scaled = levels.Scaled(10.0);
    EXPECT_DOUBLE_EQ(scaled.acPeak, 20.0);
    EXPECT_DOUBLE_EQ(scaled.maximum, 22.5);
    EXPECT_EQ(scaled.kurtosis, levels.kurtosis);
}

TEST(Levels, OfWhatDoesNotVary)
{
    const Levels constant = MeasureLevels(std::vector<double>(1000, 0.1)); // whose sum isn't 100
    EXPECT_EQ(constant.mean, 0.1);
    EXPECT_EQ(constant.acRms, 0.0);
    EXPECT_DOUBLE_EQ(constant.crest, 1.0);
    EXPECT_TRUE(std::isnan(constant.kurtosis));
    const Levels silence = MeasureLevels(std::vector<double>(3, 0.0));
    EXPECT_EQ(silence.rms, 0.0);
    EXPECT_TRUE(std::isnan(silence.crest));
}

} // namespace zmxf
