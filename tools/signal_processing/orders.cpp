#include "tools/signal_processing/orders.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace zmxf {

double PowerAround(const std::vector<double>& lines, double spacing, double frequency, double smear, double reach,
                   Window window)
{
    const double last = static_cast<double>(lines.size()) - 1.0;
    const double middle = frequency / spacing;
    if (!(middle <= last)) return std::numeric_limits<double>::quiet_NaN();
    const double half = std::min(MainLobe(window) + smear / 2.0 / spacing, reach / spacing);
    // At least the line that is nearest to the frequency.
    const double from = std::min(std::ceil(std::max(middle - half, 0.0)), std::round(middle));
    const double to = std::max(std::floor(std::min(middle + half, last)), std::round(middle));
    const auto at = [&lines](double line) { return lines.begin() + static_cast<std::ptrdiff_t>(line); };
    return std::accumulate(at(from), at(to) + 1, 0.0) / NoiseBandwidth(window);
}

double LowestOrderSpeed(const RunUp& runUp, double sampleRate)
{
    // Then an order takes the lines up to half of the speed away, which a sine between two lines must not leave.
    const double lines = 2.0 * MainLobe(runUp.window) - 1.0;
    return lines * sampleRate / static_cast<double>(runUp.blockSize);
}

OrderTracker::OrderTracker(const RunUp& runUp, double sampleRate)
    : m_runUp(&runUp), m_spacing(sampleRate / static_cast<double>(runUp.blockSize)),
      m_lowest(LowestOrderSpeed(runUp, sampleRate)), m_powers(runUp.orders.size())
{
}

double OrderTracker::SpeedChange(std::size_t slice) const
{
    const std::vector<RunUpSlice>& slices = m_runUp->slices;
    const RunUpSlice& before = slices[slice == 0 ? 0 : slice - 1];
    const RunUpSlice& after = slices[std::min(slice + 1, slices.size() - 1)];
    const auto frames = static_cast<double>(after.firstFrame - before.firstFrame);
    if (frames == 0.0) return 0.0;
    return std::fabs(after.speed - before.speed) * static_cast<double>(m_runUp->blockSize) / frames;
}

void OrderTracker::Add(std::size_t slice, const std::vector<double>& lines)
{
    const double speed = m_runUp->slices[slice].speed;
    const double change = SpeedChange(slice);
    for (std::size_t i = 0; i < m_powers.size(); ++i) {
        const double order = m_runUp->orders[i];
        m_powers[i].push_back(speed < m_lowest ? std::numeric_limits<double>::quiet_NaN()
                                               : PowerAround(lines, m_spacing, order * speed, order * change,
                                                             speed / 2.0, m_runUp->window));
    }
}

} // namespace zmxf
