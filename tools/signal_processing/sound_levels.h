#pragma once

#include "tools/signal_processing/weighting.h"

#include <cstdint>

namespace zmxf {

// What intervals of a recording measured: of the last one, and of the highest and the lowest.
struct IntervalExtremes {
    double last = 0.0;
    double highest = 0.0;
    double lowest = 0.0;

    void Take(double value, bool isFirst);
};

// Equivalent levels of one weighting, as mean squares.
struct EquivalentLevels {
    double whole = 0.0;
    IntervalExtremes shorts;   // of intervals
    IntervalExtremes instants; // of shorter ones
};

struct SoundLevels {
    static constexpr double kShortInterval = 1.0;     // s
    static constexpr double kInstantInterval = 0.125; // s

    EquivalentLevels a;
    EquivalentLevels c;
    EquivalentLevels z;
    IntervalExtremes cPeak; // the highest absolute C weighted sample of each short interval
};

// The mean squares of intervals that follow each other. What is left at the end counts only when there was no whole
// interval.
class IntervalMeter {
public:
    explicit IntervalMeter(std::int64_t samples) : m_samples(samples) {}
    void Add(double square);
    [[nodiscard]] IntervalExtremes Result() const;

private:
    std::int64_t m_samples;
    std::int64_t m_count = 0;
    double m_sum = 0.0;
    bool m_isFirst = true;
    IntervalExtremes m_extremes;
};

// The sound levels of samples as they come.
class SoundLevelMeter {
public:
    explicit SoundLevelMeter(double sampleRate);
    void Add(const WeightedSample& sample);
    // Of at least one sample.
    [[nodiscard]] SoundLevels Result() const;

private:
    struct Meter {
        explicit Meter(double sampleRate);
        void Add(double x);
        [[nodiscard]] EquivalentLevels Result(std::int64_t samples) const;

        double sum = 0.0;
        IntervalMeter shorts;
        IntervalMeter instants;
    };

    Meter m_a, m_c, m_z;
    std::int64_t m_count = 0;
    std::int64_t m_peakSamples;
    IntervalExtremes m_peaks;
    double m_peak = 0.0;
};

} // namespace zmxf
