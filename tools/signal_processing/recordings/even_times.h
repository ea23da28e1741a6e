#pragma once

#include "tools/signal_processing/recordings/printed_number.h"

#include <cstdint>
#include <string>

namespace zmxf {

// The times of samples as they are printed: whether they are even, and what rate they mean.
class EvenTimes {
public:
    // In their order, with the line that each is on, 0 where there are none.
    void Add(const PrintedNumber& time, std::int64_t line);
    // Whether no time is before the former one, and the last one after the first.
    [[nodiscard]] bool Rise() const { return m_count > 1 && m_least.value >= 0.0 && m_last > m_first; }
    // Why the times give no rate that a recording may have: fewer than two, or steps that differ from their mean by
    // more than 1 % and what the rounding to a small part of a step explains. Empty when they do. seconds is what a
    // time of 1 means.
    [[nodiscard]] std::string WhyNone(double seconds) const;
    // In Hz: the rate with the fewest digits that the printed times allow.
    [[nodiscard]] double Rate(double seconds) const;

private:
    struct Step {
        double value = 0.0;
        std::int64_t sample = 0; // at its end, counted from 0
        std::int64_t line = 0;
    };

    [[nodiscard]] double MeanStep() const { return (m_last - m_first) / static_cast<double>(m_count - 1); }
    // By how much two times may be nearer to each other than they are printed.
    [[nodiscard]] double Rounding() const;

    std::int64_t m_count = 0;
    bool m_areFinite = true;
    double m_first = 0.0;
    double m_last = 0.0;
    double m_furthest = 0.0; // from 0
    int m_finestPlace = 0;
    int m_mostDigits = 0;
    Step m_least;
    Step m_most;
};

// Of samples that are the printed number of seconds apart.
double RateOfStep(const PrintedNumber& step);

} // namespace zmxf
