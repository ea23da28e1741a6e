#include "tools/signal_processing/weighting.h"

#include <cmath>
#include <numbers>

namespace zmxf {

namespace {

constexpr double kNothing = 1e-290;
constexpr double kReferenceFrequency = 1000.0;
// The poles, in Hz. C has the first and the last, each twice; A has the other two besides.
constexpr double kLowest = 20.598997;
constexpr double kSecond = 107.65265;
constexpr double kThird = 737.86223;
constexpr double kHighest = 12194.217;

// The responses before they are set to 1 at 1000 Hz.
double CRatio(double frequency)
{
    const double f2 = frequency * frequency;
    return f2 / ((f2 + kLowest * kLowest) * (f2 + kHighest * kHighest));
}

double ARatio(double frequency)
{
    return CRatio(frequency) * frequency / std::hypot(frequency, kSecond) * frequency / std::hypot(frequency, kThird);
}

// The pole of a digital filter that dies away as that of the analog one.
double Matched(double pole, double sampleRate) { return std::exp(-2.0 * std::numbers::pi * pole / sampleRate); }

// |1 - root / z| at an angle of the unit circle, exact for small angles and roots near 1.
double Distance(double root, double angle)
{
    const double half = std::sin(angle / 2.0);
    return std::hypot(1.0 - root, 2.0 * std::sqrt(root) * half);
}

} // namespace

double AWeighting(double frequency) { return ARatio(frequency) / ARatio(kReferenceFrequency); }

double CWeighting(double frequency) { return CRatio(frequency) / CRatio(kReferenceFrequency); }

WeightingFilters::Filter::Filter(double sampleRate, std::size_t highPasses, Response wanted)
{
    constexpr std::array poles{kHighest, kHighest, kLowest, kLowest, kSecond, kThird};
    for (std::size_t i = 0; i < 2 + highPasses; ++i) sections[i] = {i < 2 ? 0.0 : 1.0, Matched(poles[i], sampleRate)};
    Correct(sampleRate, wanted);
}

// The cosine series of the wanted response over that of the sections.
void WeightingFilters::Filter::Correct(double sampleRate, Response wanted)
{
    constexpr int points = 512; // from 0 to half of the sample rate
    constexpr double nextToZero = 1e-3;
    for (int k = 0; k <= points; ++k) {
        const double angle = std::numbers::pi * (k == 0 ? nextToZero : k) / points;
        double ratio = wanted(angle / (2.0 * std::numbers::pi) * sampleRate);
        for (const Section& section : sections) ratio *= Distance(section.pole, angle) / Distance(section.zero, angle);
        const double share = k == 0 || k == points ? 0.5 / points : 1.0 / points;
        for (std::size_t n = 0; n < taps.size(); ++n)
            taps[n] += share * ratio * std::cos(std::numbers::pi * k * static_cast<double>(n) / points);
    }
}

double WeightingFilters::Filter::Recursive(double x)
{
    for (Section& section : sections) {
        const double y = x - section.zero * section.input + section.pole * section.output;
        section.input = x;
        // What is left long after a sound would slow the computer down.
        section.output = std::fabs(y) < kNothing ? 0.0 : y;
        x = section.output;
    }
    return x;
}

WeightingFilters::WeightingFilters(double sampleRate) : m_a(sampleRate, 4, AWeighting), m_c(sampleRate, 2, CWeighting)
{
}

double WeightingFilters::Symmetric(const std::array<double, kDelay + 1>& taps) const
{
    double even = 0.0;
    double odd = 0.0; // two sums, so that one needn't wait for the other
    for (std::size_t n = 0; n < kDelay; n += 2) {
        even += taps[n + 1] * m_pairs[n];
        odd += taps[n + 2] * m_pairs[n + 1];
    }
    return even + odd;
}

WeightedSample WeightingFilters::Next(double x)
{
    m_history[m_next] = x;
    m_next = (m_next + 1) % m_history.size();
    // From the oldest sample on the ring goes up to the newest.
    const auto at = [this](std::size_t place) {
        const std::size_t index = m_next + place;
        return m_history[index < m_history.size() ? index : index - m_history.size()];
    };
    for (std::size_t n = 0; n < kDelay; ++n) m_pairs[n] = at(kDelay + 1 + n) + at(kDelay - 1 - n);
    const double middle = at(kDelay);
    return {m_a.Recursive(m_a.taps[0] * middle + Symmetric(m_a.taps)),
            m_c.Recursive(m_c.taps[0] * middle + Symmetric(m_c.taps)), middle};
}

} // namespace zmxf
