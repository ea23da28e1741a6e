#pragma once

#include <cstdint>
#include <span>

namespace zmxf {

// The levels of one channel over its whole length, x being its samples and y = x - mean. All but the three ratios are
// in the unit of the samples.
struct Levels {
    double mean = 0.0;
    double rms = 0.0;      // sqrt(mean(x^2))
    double acRms = 0.0;    // sqrt(mean(y^2))
    double peak = 0.0;     // max|x|
    double acPeak = 0.0;   // max|y|
    double crest = 0.0;    // peak / RMS, a NaN for silence
    double kurtosis = 0.0; // mean(y^4) / mean(y^2)^2, not reduced by 3; a NaN for a constant signal
    double skewness = 0.0; // mean(y^3) / mean(y^2)^1.5; a NaN for a constant signal
    double minimum = 0.0;  // of x
    double maximum = 0.0;

    // The levels of the same signal in a unit in which its values are factor times as large; factor is positive.
    [[nodiscard]] Levels Scaled(double factor) const;
};

// The first pass over a channel: its extent, and a mean that is good enough to measure deviations from.
class ExtentMeter {
public:
    // x must be finite.
    void Add(double x);
    [[nodiscard]] std::int64_t count() const { return m_count; }
    [[nodiscard]] double minimum() const { return m_minimum; }
    [[nodiscard]] double maximum() const { return m_maximum; }
    // Within the extent. There must be a sample.
    [[nodiscard]] double Mean() const;

private:
    std::int64_t m_count = 0;
    double m_sum = 0.0;
    double m_lost = 0.0; // what rounding took from the sum
    double m_minimum = 0.0;
    double m_maximum = 0.0;
};

// The second pass, over the same samples. Powers are those of deviations in parts of the largest one, so that neither
// a large offset nor very small or large samples cost digits.
class MomentMeter {
public:
    // The extent of at least one sample.
    explicit MomentMeter(const ExtentMeter& extent);
    void Add(double x);
    [[nodiscard]] Levels Result() const;

private:
    ExtentMeter m_extent;
    double m_center;
    double m_largestDeviation;
    double m_peak;
    double m_squares = 0.0;                                              // of the samples in parts of the peak
    double m_first = 0.0, m_second = 0.0, m_third = 0.0, m_fourth = 0.0; // sums of powers of the deviations
};

// Both passes over at least one finite sample.
Levels MeasureLevels(std::span<const double> samples);

} // namespace zmxf
