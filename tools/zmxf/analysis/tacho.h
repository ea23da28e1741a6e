#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace zmxf {

// Finds the rising edges of a tacho channel, whose lowest and highest samples are known: an edge is where the signal
// passes 60 % of what lies between them after it was below 40 %.
class TachoMeter {
public:
    TachoMeter(double lowest, double highest);
    void Add(double x);
    // Where edges are, in samples from the start, between samples too.
    [[nodiscard]] const std::vector<double>& edges() const { return m_edges; }

private:
    double m_low;
    double m_high;
    double m_former = 0.0;
    bool m_isArmed = false;
    std::int64_t m_count = 0;
    std::vector<double> m_edges;
};

// The mean speed around a sample, in edges per sample: over half samples to either side, or as far as edges reach on
// both. Between two edges the speed counts as constant. Nothing outside of the edges.
std::optional<double> SpeedAround(const std::vector<double>& edges, double sample, double half);

} // namespace zmxf
