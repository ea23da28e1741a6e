#include "tools/signal_processing/levels.h"

#include <algorithm>
#include <cmath>
#include <gtest/gtest.h>
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

    long double mean = 0;
    long double rms = 0;
    long double acRms = 0;
    long double peak = 0;
    long double acPeak = 0;
    long double kurtosis = 0;
};

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
    const struct {
        const char* name;
        double actual;
        long double expected;
    } rows[] = {{"mean", levels.mean, direct.mean},
                {"RMS", levels.rms, direct.rms},
                {"AC RMS", levels.acRms, direct.acRms},
                {"peak", levels.peak, direct.peak},
                {"AC peak", levels.acPeak, direct.acPeak},
                {"crest factor", levels.crest, direct.peak / direct.rms},
                {"kurtosis", levels.kurtosis, direct.kurtosis}};
    for (const auto& row : rows)
        EXPECT_LE(std::fabs(row.actual - row.expected), tolerance * std::fabs(row.expected)) << row.name;
    EXPECT_EQ(levels.minimum, *std::min_element(samples.begin(), samples.end()));
    const Levels scaled = levels.Scaled(10.0);
    EXPECT_DOUBLE_EQ(scaled.acPeak, 10.0 * levels.acPeak);
    EXPECT_DOUBLE_EQ(scaled.maximum, 10.0 * levels.maximum);
    EXPECT_EQ(scaled.kurtosis, levels.kurtosis);
}

INSTANTIATE_TEST_SUITE_P(OffsetsAndScales, LevelsOfNoise,
                         ::testing::Values(Signal{0, 1, 1e-12}, Signal{-1e3, 1, 1e-12}, Signal{0, 1e-300, 1e-12},
                                           Signal{0, 1e150, 1e-12}, Signal{1e6, 1e-3, 1e-10}, Signal{1e9, 1e-5, 1e-5}));

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
