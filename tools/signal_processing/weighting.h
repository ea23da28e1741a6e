#pragma once

#include <array>
#include <cstddef>

// The frequency weightings A and C of sound level meters. Z is no weighting.

namespace zmxf {

// As factors for amplitudes, 1 at 1000 Hz.
double AWeighting(double frequency);
double CWeighting(double frequency);

// A sample with its weighted ones.
struct WeightedSample {
    double a = 0.0;
    double c = 0.0;
    double z = 0.0;
};

// Weights samples as they come, within 0.06 dB up to 95 % of half of the sample rate, from rates of 500 Hz on. The
// poles of the weightings become poles of a recursive filter. A short symmetric filter before it makes up for what such
// a filter does otherwise, above all near half of the sample rate, and sets the gain at 1000 Hz.
class WeightingFilters {
public:
    static constexpr std::size_t kDelay = 16; // samples

    explicit WeightingFilters(double sampleRate);
    // The sample that came kDelay before, weighted. Starts as if zeros had come.
    WeightedSample Next(double x);

private:
    static constexpr std::size_t kMostSections = 6;

    // (1 - zero / z) / (1 - pole / z)
    struct Section {
        double zero = 0.0;
        double pole = 0.0;
        double input = 0.0;
        double output = 0.0;
    };
    struct Filter {
        using Response = double (*)(double frequency);

        Filter(double sampleRate, std::size_t highPasses, Response wanted);
        void Correct(double sampleRate, Response wanted);
        [[nodiscard]] double Recursive(double x);

        std::array<double, kDelay + 1> taps{}; // of one side, the middle first
        std::array<Section, kMostSections> sections{};
    };

    [[nodiscard]] double Symmetric(const std::array<double, kDelay + 1>& taps) const;

    std::array<double, 2 * kDelay + 1> m_history{}; // a ring
    std::size_t m_next = 0;
    Filter m_a;
    Filter m_c;
    std::array<double, kDelay> m_pairs{}; // of samples at the same distance from the middle
};

} // namespace zmxf
