#include "tools/signal_processing/sound_levels.h"

#include <algorithm>
#include <cmath>

namespace zmxf {

namespace {

std::int64_t SamplesOf(double seconds, double sampleRate)
{
    return std::max<std::int64_t>(std::llround(seconds * sampleRate), 1);
}

} // namespace

void IntervalExtremes::Take(double value, bool isFirst)
{
    last = value;
    highest = isFirst ? value : std::max(highest, value);
    lowest = isFirst ? value : std::min(lowest, value);
}

void IntervalMeter::Add(double square)
{
    m_sum += square;
    if (++m_count < m_samples) return;
    m_extremes.Take(m_sum / static_cast<double>(m_samples), m_isFirst);
    m_isFirst = false;
    m_count = 0;
    m_sum = 0.0;
}

IntervalExtremes IntervalMeter::Result() const
{
    IntervalExtremes extremes = m_extremes;
    if (m_isFirst) extremes.Take(m_sum / static_cast<double>(m_count), true);
    return extremes;
}

SoundLevelMeter::Meter::Meter(double sampleRate)
    : shorts(SamplesOf(SoundLevels::kShortInterval, sampleRate)),
      instants(SamplesOf(SoundLevels::kInstantInterval, sampleRate))
{
}

void SoundLevelMeter::Meter::Add(double x)
{
    const double square = x * x;
    sum += square;
    shorts.Add(square);
    instants.Add(square);
}

EquivalentLevels SoundLevelMeter::Meter::Result(std::int64_t samples) const
{
    return {sum / static_cast<double>(samples), shorts.Result(), instants.Result()};
}

SoundLevelMeter::SoundLevelMeter(double sampleRate)
    : m_a(sampleRate), m_c(sampleRate), m_z(sampleRate),
      m_peakSamples(SamplesOf(SoundLevels::kShortInterval, sampleRate))
{
}

void SoundLevelMeter::Add(const WeightedSample& sample)
{
    m_a.Add(sample.a);
    m_c.Add(sample.c);
    m_z.Add(sample.z);
    m_peak = std::max(m_peak, std::fabs(sample.c));
    if (++m_count % m_peakSamples != 0) return;
    m_peaks.Take(m_peak, m_count == m_peakSamples);
    m_peak = 0.0;
}

SoundLevels SoundLevelMeter::Result() const
{
    SoundLevels levels{m_a.Result(m_count), m_c.Result(m_count), m_z.Result(m_count), m_peaks};
    if (m_count < m_peakSamples) levels.cPeak.Take(m_peak, true);
    levels.cPeak.highest = std::max(levels.cPeak.highest, m_peak); // whenever it came
    return levels;
}

} // namespace zmxf
