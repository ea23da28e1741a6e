#pragma once

#include "tools/signal_processing/weighting.h"

#include <cstdint>
#include <vector>

namespace zmxf {

// A signal in so few points that the whole of it can be drawn at once.
struct Overview {
    static constexpr std::int64_t kMostPoints = 3200;

    struct Point {
        double upper = 0.0; // the highest sample
        double lower = 0.0;
        double mean = 0.0;
        double rms = 0.0;
        double aRms = 0.0; // of the A weighted samples
        double cRms = 0.0;
    };

    std::int64_t samplesPerPoint = 1; // the last point may have fewer
    std::vector<Point> points;
};

// Makes the overview of samples as they come.
class OverviewMeter {
public:
    // samples is how many will come.
    explicit OverviewMeter(std::int64_t samples);
    void Add(double x, const WeightedSample& weighted);
    // Of at least one sample; ends the measurement.
    [[nodiscard]] Overview Result() &&;

private:
    void FinishPoint();

    Overview m_overview;
    Overview::Point m_sums; // the RMS values as sums of squares
    std::int64_t m_count = 0;
};

} // namespace zmxf
