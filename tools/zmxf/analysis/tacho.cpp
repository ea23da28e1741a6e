#include "tools/zmxf/analysis/tacho.h"

#include <algorithm>

namespace zmxf {

namespace {

// How many edges have passed at a place between the first and the last, with parts.
double EdgesAt(const std::vector<double>& edges, double sample)
{
    const auto next =
        std::clamp(std::upper_bound(edges.begin(), edges.end(), sample), edges.begin() + 1, edges.end() - 1);
    const double before = *(next - 1);
    return static_cast<double>(next - edges.begin()) - 1.0 + (sample - before) / (*next - before);
}

} // namespace

TachoMeter::TachoMeter(double lowest, double highest)
    : m_low(lowest + 0.4 * (highest - lowest)), m_high(lowest + 0.6 * (highest - lowest))
{
}

void TachoMeter::Add(double x)
{
    if (m_isArmed && x >= m_high) {
        m_isArmed = false;
        m_edges.push_back(static_cast<double>(m_count - 1) + (m_high - m_former) / (x - m_former));
    } else if (x < m_low) {
        m_isArmed = true;
    }
    m_former = x;
    ++m_count;
}

std::optional<double> SpeedAround(const std::vector<double>& edges, double sample, double half)
{
    if (edges.size() < 2) return std::nullopt;
    const double reach = std::min({half, sample - edges.front(), edges.back() - sample});
    if (!(reach > 0.0)) return std::nullopt;
    return (EdgesAt(edges, sample + reach) - EdgesAt(edges, sample - reach)) / (2.0 * reach);
}

} // namespace zmxf
