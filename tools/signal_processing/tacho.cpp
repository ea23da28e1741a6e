#include "tools/signal_processing/tacho.h"

#include <algorithm>

namespace zmxf {

namespace {

using Range = TachoExtent::Range;

constexpr std::size_t kLeastChunks = 16;
constexpr std::size_t kNeighbours = 4; // chunks to either side
constexpr double kAlike = 0.5;         // of the swing that chunks are held against
constexpr double kStill = 0.05;        // of the largest swing: what stays below it is no pulse

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

// A chunk and those beside it.
std::vector<Range> Around(const std::vector<Range>& chunks, std::size_t chunk)
{
    const std::size_t first = chunk - std::min(chunk, kNeighbours);
    const std::size_t end = std::min(chunk + kNeighbours + 1, chunks.size());
    return {chunks.begin() + static_cast<std::ptrdiff_t>(first), chunks.begin() + static_cast<std::ptrdiff_t>(end)};
}

// The largest swing but one: the largest may be that of a spike.
double SwingOf(std::vector<Range> chunks)
{
    const std::size_t place = std::min<std::size_t>(1, chunks.size() - 1);
    std::nth_element(chunks.begin(), chunks.begin() + static_cast<std::ptrdiff_t>(place), chunks.end(),
                     [](const Range& a, const Range& b) { return a.Swing() > b.Swing(); });
    return chunks[place].Swing();
}

// The medians of the chunks that swing about as far.
Range PulsesOf(const std::vector<Range>& chunks, double swing)
{
    std::vector<double> lowest;
    std::vector<double> highest;
    for (const Range& chunk : chunks) {
        if (chunk.Swing() < kAlike * swing || chunk.Swing() > swing / kAlike) continue;
        lowest.push_back(chunk.lowest);
        highest.push_back(chunk.highest);
    }
    return {Median(std::move(lowest)), Median(std::move(highest))};
}

} // namespace

void TachoExtent::Add(double x)
{
    if (m_count++ % kStretch == 0) m_stretches.push_back({x, x});
    Range& stretch = m_stretches.back();
    stretch.lowest = std::min(stretch.lowest, x);
    stretch.highest = std::max(stretch.highest, x);
}

std::vector<Range> TachoExtent::Chunks(std::int64_t samples, std::int64_t& chunkSize) const
{
    const auto wanted = static_cast<std::size_t>((samples + kStretch - 1) / kStretch);
    const std::size_t perChunk = std::max<std::size_t>(std::min(wanted, m_stretches.size() / kLeastChunks), 1);
    chunkSize = static_cast<std::int64_t>(perChunk) * kStretch;
    std::vector<Range> chunks;
    for (std::size_t i = 0; i < m_stretches.size(); ++i) {
        if (i % perChunk == 0) chunks.push_back(m_stretches[i]);
        chunks.back().lowest = std::min(chunks.back().lowest, m_stretches[i].lowest);
        chunks.back().highest = std::max(chunks.back().highest, m_stretches[i].highest);
    }
    return chunks;
}

TachoMeter::TachoMeter(const TachoExtent& extent, std::int64_t chunkSize)
{
    SetLevels(extent.Chunks(chunkSize, m_chunkSize));
}

void TachoMeter::SetLevels(const std::vector<Range>& chunks)
{
    std::vector<double> swings(chunks.size());
    for (std::size_t i = 0; i < chunks.size(); ++i) swings[i] = SwingOf(Around(chunks, i));
    const double largest = chunks.empty() ? 0.0 : *std::max_element(swings.begin(), swings.end());
    m_levels.resize(chunks.size());
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        if (!(swings[i] > kStill * largest)) continue;
        const Range pulses = PulsesOf(Around(chunks, i), swings[i]);
        m_levels[i] = {pulses.lowest + 0.4 * pulses.Swing(), pulses.lowest + 0.6 * pulses.Swing(), true};
    }
}

void TachoMeter::Add(double x)
{
    const Levels& levels = m_levels[static_cast<std::size_t>(m_count / m_chunkSize)];
    if (!levels.isPulsing) {
        m_isArmed = false;
    } else if (m_isArmed && x >= levels.high) {
        m_isArmed = false;
        // The levels of the sample before may have been others.
        const double part = std::clamp((levels.high - m_former) / (x - m_former), 0.0, 1.0);
        m_pulses.edges.push_back(static_cast<double>(m_count - 1) + part);
        m_pulses.widths.push_back(m_count - m_fell);
        m_rose = m_count;
    } else if (!m_isArmed && x < levels.low) {
        m_isArmed = true;
        m_fell = m_count;
        if (!m_pulses.widths.empty()) m_pulses.widths.back() = std::min(m_pulses.widths.back(), m_count - m_rose);
    }
    m_former = x;
    ++m_count;
}

} // namespace zmxf
