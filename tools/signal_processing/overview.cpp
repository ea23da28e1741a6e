#include "tools/signal_processing/overview.h"

#include <algorithm>
#include <cmath>

namespace zmxf {

OverviewMeter::OverviewMeter(std::int64_t samples)
{
    m_overview.samplesPerPoint = std::max<std::int64_t>((samples - 1) / Overview::kMostPoints + 1, 1);
}

void OverviewMeter::Add(double x, const WeightedSample& weighted)
{
    m_sums.upper = m_count == 0 ? x : std::max(m_sums.upper, x);
    m_sums.lower = m_count == 0 ? x : std::min(m_sums.lower, x);
    m_sums.mean += x;
    m_sums.rms += x * x;
    m_sums.aRms += weighted.a * weighted.a;
    m_sums.cRms += weighted.c * weighted.c;
    if (++m_count == m_overview.samplesPerPoint) FinishPoint();
}

void OverviewMeter::FinishPoint()
{
    const auto n = static_cast<double>(m_count);
    m_overview.points.push_back({m_sums.upper, m_sums.lower, m_sums.mean / n, std::sqrt(m_sums.rms / n),
                                 std::sqrt(m_sums.aRms / n), std::sqrt(m_sums.cRms / n)});
    m_sums = {};
    m_count = 0;
}

Overview OverviewMeter::Result() &&
{
    if (m_count != 0) FinishPoint();
    return std::move(m_overview);
}

} // namespace zmxf
