#pragma once

#include "tools/signal_processing/run_up.h"

#include <vector>

namespace zmxf {

// The power of a sine of a frequency that lies in the lines of a spectrum, those beside it included: the main lobe
// of the window, and half of smear, by which the frequency moves in the block. Not further than reach, so that the
// neighbours stay out. A NaN for a frequency beyond the last line.
double PowerAround(const std::vector<double>& lines, double spacing, double frequency, double smear, double reach,
                   Window window);

// Revolutions per second below which the lines of whole orders run into each other.
double LowestOrderSpeed(const RunUp& runUp, double sampleRate);

// Follows the orders of a channel, slice by slice.
class OrderTracker {
public:
    // Keeps pointers to both.
    OrderTracker(const RunUp& runUp, double sampleRate);
    // Slices in their order, each with the lines of the channel. At speeds below LowestOrderSpeed orders have a NaN.
    void Add(std::size_t slice, const std::vector<double>& lines);
    [[nodiscard]] std::size_t count() const { return m_powers.size(); }
    // The powers of an order, by slice.
    [[nodiscard]] const std::vector<double>& powers(std::size_t order) const { return m_powers[order]; }

private:
    // By how much the speed changes over the block of a slice.
    [[nodiscard]] double SpeedChange(std::size_t slice) const;

    const RunUp* m_runUp;
    double m_spacing;
    double m_lowest; // speed
    std::vector<std::vector<double>> m_powers;
};

} // namespace zmxf
