#include "tools/signal_processing/pulse_train.h"

#include <algorithm>
#include <cmath>

namespace zmxf {

namespace {

constexpr double kLeastSamples = 4.0;     // from pulse to pulse
constexpr double kSafeSamples = 20.0;     // from pulse to pulse, where pulses last a single sample
constexpr double kTolerance = 0.2;        // of an interval; a sample at least, by which edges of squares are off
constexpr double kLikeness = 0.1;         // of the same interval in two revolutions
constexpr int kLongestStep = 3;           // pulses from one that came to the next that came
constexpr double kMostMended = 0.25;      // of the pulses
constexpr std::size_t kFewIntervals = 8;  // fewer don't show what is usual
constexpr std::size_t kLeastForSlope = 6; // intervals

// Edges from the first to the last, both included.
struct Span {
    std::size_t first = 0;
    std::size_t last = 0;

    [[nodiscard]] std::size_t Intervals() const { return last - first; }
};

double ToleranceOf(double interval) { return std::max(kTolerance * interval, 1.0); }

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// How many edges have passed at a place between the first and the last, with parts.
double EdgesAt(const std::vector<double>& edges, double sample)
{
    const auto next =
        std::clamp(std::upper_bound(edges.begin(), edges.end(), sample), edges.begin() + 1, edges.end() - 1);
    const double before = *(next - 1);
    return static_cast<double>(next - edges.begin()) - 1.0 + (sample - before) / (*next - before);
}

std::optional<double> MeanSpeed(const std::vector<double>& edges, double sample, double half)
{
    if (edges.size() < 2) return std::nullopt;
    const double reach = std::min({half, sample - edges.front(), edges.back() - sample});
    if (!(reach > 0.0)) return std::nullopt;
    return (EdgesAt(edges, sample + reach) - EdgesAt(edges, sample - reach)) / (2.0 * reach);
}

// The intervals of some edges, and the line through the medians of their first and last third, which single outliers
// don't bend.
class UsualInterval {
public:
    UsualInterval(const std::vector<double>& edges, Span span)
    {
        std::vector<double> middles;
        std::vector<double> intervals;
        for (std::size_t i = span.first; i < span.last; ++i) {
            middles.push_back((edges[i] + edges[i + 1]) / 2.0);
            intervals.push_back(edges[i + 1] - edges[i]);
        }
        m_median = Median(intervals);
        m_from = edges[span.first];
        m_to = edges[span.last];
        if (intervals.size() < kLeastForSlope) return;
        const auto third = static_cast<std::ptrdiff_t>(intervals.size() / 3);
        const double early = Median({middles.begin(), middles.begin() + third});
        const double late = Median({middles.end() - third, middles.end()});
        const double atEarly = Median({intervals.begin(), intervals.begin() + third});
        m_slope = (Median({intervals.end() - third, intervals.end()}) - atEarly) / (late - early);
        m_atFrom = atEarly - m_slope * (early - m_from);
    }

    [[nodiscard]] double median() const { return m_median; }
    [[nodiscard]] double At(double sample) const
    {
        if (m_slope == 0.0) return m_median;
        const double onLine = m_atFrom + m_slope * (std::clamp(sample, m_from, m_to) - m_from);
        return std::clamp(onLine, m_median / 4.0, m_median * 4.0);
    }

private:
    double m_median = 0.0;
    double m_from = 0.0;
    double m_to = 0.0;
    double m_slope = 0.0;
    double m_atFrom = 0.0;
};

// Goes from pulse to pulse, over those that are missing or too many.
class PulseWalk {
public:
    PulseWalk(const std::vector<double>& edges, const UsualInterval& usual) : m_edges(&edges), m_usual(&usual) {}

    // From the most usual interval of the span to both of its ends.
    SpeedFlaw Run(Span span)
    {
        std::size_t start = span.first;
        for (std::size_t i = span.first; i < span.last; ++i)
            if (Oddity(i) < Oddity(start)) start = i;
        if (Oddity(start) > 1.0) return IsGap(start, 1.0) ? SpeedFlaw::NoPulses : SpeedFlaw::Irregular;
        const SpeedFlaw before = Walk(start + 1, span.first, -1.0);
        std::reverse(m_train.begin(), m_train.end());
        const SpeedFlaw after = Walk(start + 1, span.last, 1.0);
        if (before == SpeedFlaw::NoPulses || after == SpeedFlaw::NoPulses) return SpeedFlaw::NoPulses;
        const bool isEnough = static_cast<double>(m_mended) <= kMostMended * static_cast<double>(m_train.size());
        return before == SpeedFlaw::None && after == SpeedFlaw::None && isEnough ? SpeedFlaw::None
                                                                                 : SpeedFlaw::Irregular;
    }
    [[nodiscard]] const std::vector<double>& train() const { return m_train; }
    [[nodiscard]] bool IsMended() const { return m_mended != 0; }

private:
    // How far an interval is from the usual one, in parts of what is tolerated.
    [[nodiscard]] double Oddity(std::size_t i) const
    {
        const double interval = (*m_edges)[i + 1] - (*m_edges)[i];
        const double usual = m_usual->At((*m_edges)[i] + interval / 2.0);
        return std::fabs(interval - usual) / ToleranceOf(usual);
    }

    // From after one edge to another one; where there are no more, the walk ends too.
    SpeedFlaw Walk(std::size_t from, std::size_t to, double direction)
    {
        const std::size_t end = direction < 0.0 ? 0 : m_edges->size() - 1;
        const double goal = (*m_edges)[to];
        std::size_t at = from;
        if (direction < 0.0) m_train.push_back((*m_edges)[at]);
        while (at != end && ((*m_edges)[at] - goal) * direction < 0.0) {
            const auto [next, steps] = Step(at, direction);
            if (steps == 0) return IsGap(at, direction) ? SpeedFlaw::NoPulses : SpeedFlaw::Irregular;
            Append(at, next, steps);
            at = next;
        }
        return SpeedFlaw::None;
    }

    struct Found {
        std::size_t edge = 0;
        int steps = 0;
    };

    // The next edge where one belongs.
    [[nodiscard]] Found Step(std::size_t at, double direction) const
    {
        const double here = (*m_edges)[at];
        for (int steps = 1; steps <= kLongestStep; ++steps) {
            const double usual = m_usual->At(here + direction * steps * m_usual->At(here) / 2.0);
            const double wanted = here + direction * steps * usual;
            const std::size_t nearest = Nearest(wanted);
            const bool isOnTheWay = direction < 0.0 ? nearest < at : nearest > at;
            if (isOnTheWay && std::fabs((*m_edges)[nearest] - wanted) <= ToleranceOf(usual)) return {nearest, steps};
        }
        return {};
    }

    [[nodiscard]] std::size_t Nearest(double sample) const
    {
        const auto above = std::lower_bound(m_edges->begin(), m_edges->end(), sample);
        if (above == m_edges->begin()) return 0;
        const bool isBelow = above == m_edges->end() || sample - *(above - 1) < *above - sample;
        return static_cast<std::size_t>((isBelow ? above - 1 : above) - m_edges->begin());
    }

    [[nodiscard]] bool IsGap(std::size_t at, double direction) const
    {
        const double here = (*m_edges)[at];
        const double next = (*m_edges)[direction < 0.0 ? at - 1 : at + 1];
        return std::fabs(next - here) > kLongestStep * m_usual->At(here);
    }

    void Append(std::size_t at, std::size_t next, int steps)
    {
        const double here = (*m_edges)[at];
        const double width = ((*m_edges)[next] - here) / steps;
        for (int i = 1; i <= steps; ++i) m_train.push_back(i == steps ? (*m_edges)[next] : here + i * width);
        const std::size_t distance = next > at ? next - at : at - next;
        m_mended += static_cast<std::size_t>(steps - 1) + (distance - 1);
    }

    const std::vector<double>* m_edges;
    const UsualInterval* m_usual;
    std::vector<double> m_train;
    std::size_t m_mended = 0; // pulses that were missing or too many
};

// Whether all intervals come again a revolution later, so that pulses that lie unevenly do so by their marks.
bool IsRepeating(const std::vector<double>& edges, Span span, double perRevolution)
{
    if (perRevolution < 2.0 || perRevolution != std::floor(perRevolution)) return false;
    const auto marks = static_cast<std::size_t>(perRevolution);
    if (span.Intervals() < marks) return false;
    const std::size_t first = span.first - std::min(span.first, marks);
    if (span.last - first < 2 * marks) return false;
    for (std::size_t i = first; i + marks < span.last; ++i) {
        const double once = edges[i + 1] - edges[i];
        const double again = edges[i + marks + 1] - edges[i + marks];
        if (std::fabs(again - once) > kLikeness * std::max(once, again) + 1.0) return false;
    }
    return true;
}

bool HasTooFewSamples(const TachoPulses& pulses, Span span, double interval)
{
    if (interval < kLeastSamples) return true;
    if (interval >= kSafeSamples) return false;
    // Were pulses longer than a sample, some would be seen in two.
    const auto first = pulses.widths.begin() + static_cast<std::ptrdiff_t>(span.first);
    const auto longer = std::count_if(first, first + static_cast<std::ptrdiff_t>(span.Intervals() + 1),
                                      [](std::int64_t width) { return width > 1; });
    return static_cast<double>(longer) < 0.05 * static_cast<double>(span.Intervals());
}

} // namespace

TachoSpeed SpeedAround(const TachoPulses& pulses, double perRevolution, double sample, double half)
{
    const std::vector<double>& edges = pulses.edges;
    if (edges.size() < 2 || !(sample > edges.front() && sample < edges.back())) return {};
    const double reach = std::min({half, sample - edges.front(), edges.back() - sample});
    const auto above = std::upper_bound(edges.begin(), edges.end(), sample - reach);
    const auto after = std::lower_bound(edges.begin(), edges.end(), sample + reach);
    const Span span{static_cast<std::size_t>(std::max(above, edges.begin() + 1) - edges.begin() - 1),
                    static_cast<std::size_t>(std::min(after, edges.end() - 1) - edges.begin())};
    const std::size_t more = kFewIntervals - std::min(span.Intervals(), kFewIntervals);
    const UsualInterval usual(edges,
                              {span.first - std::min(span.first, more), std::min(span.last + more, edges.size() - 1)});
    if (HasTooFewSamples(pulses, span, usual.median())) return {std::nullopt, SpeedFlaw::TooFewSamples};
    if (IsRepeating(edges, span, perRevolution)) return {MeanSpeed(edges, sample, half)};
    PulseWalk walk(edges, usual);
    const SpeedFlaw flaw = walk.Run(span);
    if (flaw != SpeedFlaw::None) return {std::nullopt, flaw};
    const auto speed = MeanSpeed(walk.train(), sample, half);
    return {speed, speed ? SpeedFlaw::None : SpeedFlaw::Irregular, walk.IsMended()};
}

} // namespace zmxf
