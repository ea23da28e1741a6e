#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zmxf {

// The pulses of a tacho channel.
struct TachoPulses {
    std::vector<double> edges; // rising ones, in samples from the start, between samples too
    // How many samples each pulse lasts: those that were above or below when it fell, whichever are fewer.
    std::vector<std::int64_t> widths;

    [[nodiscard]] std::size_t size() const { return edges.size(); }
};

// The first pass over a tacho channel: how low and how high it goes, stretch by stretch.
class TachoExtent {
public:
    static constexpr std::int64_t kStretch = 256; // samples
    struct Range {
        double lowest = 0.0;
        double highest = 0.0;

        [[nodiscard]] double Swing() const { return highest - lowest; }
    };

    void Add(double x);
    // Those of stretches joined to chunks of at least so many samples; at most a sixteenth of the whole each.
    [[nodiscard]] std::vector<Range> Chunks(std::int64_t samples, std::int64_t& chunkSize) const;

private:
    std::vector<Range> m_stretches;
    std::int64_t m_count = 0;
};

// The second pass: finds the rising edges. An edge is where the signal passes 60 % of the swing of the pulses there,
// after it was below 40 %. The swing is a local one, that of the chunks around that pulse alike: neither a spike nor a
// base line that drifts nor an amplitude that grows with the speed moves it much. Where nothing swings that far there
// are no edges.
class TachoMeter {
public:
    // Levels from chunks of at least so many samples.
    TachoMeter(const TachoExtent& extent, std::int64_t chunkSize);
    void Add(double x);
    [[nodiscard]] const TachoPulses& pulses() const { return m_pulses; }

private:
    struct Levels {
        double low = 0.0;
        double high = 0.0;
        bool isPulsing = false;
    };

    void SetLevels(const std::vector<TachoExtent::Range>& chunks);

    std::vector<Levels> m_levels; // per chunk
    std::int64_t m_chunkSize = 1;
    TachoPulses m_pulses;
    double m_former = 0.0;
    bool m_isArmed = false;
    std::int64_t m_count = 0;
    std::int64_t m_rose = 0;
    std::int64_t m_fell = 0;
};

} // namespace zmxf
