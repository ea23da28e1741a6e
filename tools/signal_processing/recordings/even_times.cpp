#include "tools/signal_processing/recordings/even_times.h"

#include "tools/signal_processing/recordings/sample_source.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>

namespace zmxf {

namespace {

constexpr double kUneven = 0.01; // of a step
constexpr double kEven = 1e-9;
constexpr double kOfEven = 1e-6;
constexpr double kCoarse = 0.25;

} // namespace

void EvenTimes::Add(const PrintedNumber& time, std::int64_t line)
{
    const double value = time.value;
    m_areFinite = m_areFinite && std::isfinite(value);
    m_finestPlace = m_count == 0 ? time.lastPlace : std::min(m_finestPlace, time.lastPlace);
    m_mostDigits = std::max(m_mostDigits, time.significant);
    m_furthest = std::max(m_furthest, std::fabs(value));
    const Step step{value - m_last, m_count, line};
    if (m_count == 0) m_first = value;
    if (m_count == 1) m_least = m_most = step;
    if (m_count > 1 && step.value < m_least.value) m_least = step;
    if (m_count > 1 && step.value > m_most.value) m_most = step;
    m_last = value;
    ++m_count;
}

double EvenTimes::Rounding() const
{
    // Some programs print as many decimals everywhere, others as many digits.
    const double leading = std::floor(std::log10(m_furthest));
    const double byDecimals = std::pow(10.0, m_finestPlace);
    const double byDigits = std::pow(10.0, leading + 1.0 - m_mostDigits);
    const double rounding = std::max({byDecimals, byDigits, m_furthest * 1e-12});
    // Round numbers, such as whole seconds, are as exact as their steps are alike.
    const bool isEven = m_most.value - m_least.value <= kEven * MeanStep();
    return isEven ? std::min(rounding, kOfEven * m_furthest) : rounding;
}

std::string EvenTimes::WhyNone(double seconds) const
{
    if (m_count < 2) return "it takes two times to tell a rate";
    if (!m_areFinite) return "not every time is a finite number";
    const double mean = MeanStep();
    if (!(mean > 0.0)) return "the times don't rise";
    const double rounding = Rounding() > kCoarse * mean ? 0.0 : Rounding();
    for (const Step& step : {m_most, m_least})
        if (std::fabs(step.value - mean) > kUneven * mean + rounding)
            return fmt::format("the times are uneven: to {} they step by {:.6g} s, in the mean by {:.6g} s",
                               step.line == 0 ? fmt::format("sample {}", step.sample)
                                              : fmt::format("line {}", step.line),
                               step.value * seconds, mean * seconds);
    const double rate = Rate(seconds);
    if (!(rate >= kLowestRate && rate <= kHighestRate)) return fmt::format("the times mean a rate of {:.6g} Hz", rate);
    return {};
}

double EvenTimes::Rate(double seconds) const
{
    const double span = (m_last - m_first) * seconds;
    const auto steps = static_cast<double>(m_count - 1);
    return ShortestWithin(steps / (span + Rounding() * seconds), steps / (span - Rounding() * seconds));
}

double RateOfStep(const PrintedNumber& step)
{
    const double half = step.Step() / 2.0;
    return ShortestWithin(1.0 / (step.value + half), 1.0 / (step.value - half));
}

} // namespace zmxf
