#pragma once

#include "tools/zmxf/analysis/run_up.h"

#include <array>
#include <vector>

namespace zmxf {

struct MeasuredRecording;

// The multiples of the speed that are followed through a run-up.
inline constexpr std::array kTrackedOrders{1.0, 2.0, 4.0};

// The power of a sine of a frequency that lies in the lines of a spectrum, those beside it included: two lines for the
// window, and half of smear, by which the frequency moves in the block. Not further than reach, so that the neighbours
// stay out. A NaN for a frequency beyond the last line.
double PowerAround(const std::vector<double>& lines, double spacing, double frequency, double smear, double reach);

// Follows the orders of a channel, slice by slice.
class OrderTracker {
public:
    // Keeps pointers to both.
    OrderTracker(const RunUp& runUp, int sampleRate);
    // Slices in their order, each with the lines of the channel.
    void Add(std::size_t slice, const std::vector<double>& lines);
    // The powers of an order, by slice.
    [[nodiscard]] const std::vector<double>& powers(std::size_t order) const { return m_powers[order]; }

private:
    // By how much the speed changes over the block of a slice.
    [[nodiscard]] double SpeedChange(std::size_t slice) const;

    const RunUp* m_runUp;
    double m_spacing;
    std::array<std::vector<double>, kTrackedOrders.size()> m_powers;
};

} // namespace zmxf
