#include "tools/signal_processing/levels.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace zmxf {

namespace {

double RatioOrNaN(double numerator, double denominator)
{
    return denominator > 0.0 ? numerator / denominator : std::numeric_limits<double>::quiet_NaN();
}

// 0 for 0/0: a signal without any deviation, or without any value.
double InParts(double value, double whole) { return whole > 0.0 ? value / whole : 0.0; }

} // namespace

Levels Levels::Scaled(double factor) const
{
    Levels scaled = *this;
    for (double Levels::*level : {&Levels::mean, &Levels::rms, &Levels::acRms, &Levels::peak, &Levels::acPeak,
                                  &Levels::minimum, &Levels::maximum})
        scaled.*level *= factor;
    return scaled;
}

void ExtentMeter::Add(double x)
{
    m_minimum = m_count == 0 ? x : std::min(m_minimum, x);
    m_maximum = m_count == 0 ? x : std::max(m_maximum, x);
    ++m_count;
    const double sum = m_sum + x;
    m_lost += std::fabs(m_sum) >= std::fabs(x) ? (m_sum - sum) + x : (x - sum) + m_sum;
    m_sum = sum;
}

double ExtentMeter::Mean() const
{
    return std::clamp((m_sum + m_lost) / static_cast<double>(m_count), m_minimum, m_maximum);
}

MomentMeter::MomentMeter(const ExtentMeter& extent)
    : m_extent(extent), m_center(extent.Mean()),
      m_largestDeviation(std::max(extent.maximum() - m_center, m_center - extent.minimum())),
      m_peak(std::max(std::fabs(extent.minimum()), std::fabs(extent.maximum())))
{
}

void MomentMeter::Add(double x)
{
    const double part = InParts(x, m_peak);
    m_squares += part * part;
    const double deviation = InParts(x - m_center, m_largestDeviation);
    const double square = deviation * deviation;
    m_first += deviation;
    m_second += square;
    m_third += square * deviation;
    m_fourth += square * square;
}

Levels MomentMeter::Result() const
{
    const auto n = static_cast<double>(m_extent.count());
    // The center is the mean except for its rounding, which counts beside a large offset; e is the rest.
    const double e = m_first / n;
    const double variance = std::max(m_second / n - e * e, 0.0);
    const double third = m_third / n - 3 * e * m_second / n + 2 * e * e * e;
    const double fourth = m_fourth / n - 4 * e * m_third / n + 6 * e * e * m_second / n - 3 * e * e * e * e;

    Levels levels;
    levels.minimum = m_extent.minimum();
    levels.maximum = m_extent.maximum();
    const double rest = m_largestDeviation * e;
    levels.mean = m_center + rest;
    levels.rms = m_peak * std::sqrt(m_squares / n);
    levels.acRms = m_largestDeviation * std::sqrt(variance);
    levels.peak = m_peak;
    levels.acPeak = std::max(levels.maximum - m_center - rest, m_center - levels.minimum + rest);
    levels.crest = RatioOrNaN(levels.peak, levels.rms);
    levels.skewness = RatioOrNaN(third, variance * std::sqrt(variance));
    levels.kurtosis = RatioOrNaN(fourth, variance * variance);
    return levels;
}

Levels MeasureLevels(std::span<const double> samples)
{
    ExtentMeter extent;
    for (const double x : samples) extent.Add(x);
    MomentMeter moments(extent);
    for (const double x : samples) moments.Add(x);
    return moments.Result();
}

} // namespace zmxf
