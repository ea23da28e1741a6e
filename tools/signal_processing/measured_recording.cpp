#include "tools/signal_processing/measured_recording.h"

#include "tools/signal_processing/tacho.h"

#include <algorithm>
#include <cmath>
#include <fmt/format.h>
#include <limits>

namespace zmxf {

namespace {

constexpr double kLargestSample = 1e100;
constexpr double kLeadInSeconds = 0.5;      // the lowest pole of the weightings has a time constant of 8 ms
constexpr double kChunksPerSecond = 4.0;    // at most, for the swing of the pulses of a tacho
constexpr double kLongestLeadIn = 262144.0; // samples, whatever the rate of a recording

// How much of a work is done, for whoever wants to know.
class Work {
public:
    Work(std::int64_t total, const ProgressCallback& progress) : m_total(total), m_progress(progress) {}
    void Advance(std::int64_t steps)
    {
        m_done += steps;
        if (m_progress) m_progress(m_done, m_total);
    }

private:
    std::int64_t m_total;
    std::int64_t m_done = 0;
    const ProgressCallback& m_progress;
};

// Gives every sample with its channel and frame to use.
template <class Use>
void ForEachSample(RecordingReader& reader, Work& work, Use use)
{
    reader.Rewind();
    const std::size_t channels = reader.facts().channels;
    std::int64_t frame = 0;
    for (auto block = reader.NextBlock(); !block.empty(); block = reader.NextBlock()) {
        const std::size_t frames = block.size() / channels;
        for (std::size_t i = 0; i < frames; ++i, ++frame)
            for (std::size_t channel = 0; channel < channels; ++channel)
                use(channel, frame, block[i * channels + channel]);
        work.Advance(static_cast<std::int64_t>(frames));
    }
}

struct Extents {
    std::vector<ExtentMeter> channels;
    TachoExtent tacho;
};

Extents MeasureExtents(RecordingReader& reader, const SpectrumSettings& settings, Work& work)
{
    Extents extents{std::vector<ExtentMeter>(reader.facts().channels), {}};
    ForEachSample(reader, work, [&](std::size_t channel, std::int64_t frame, double x) {
        // Squares and sums of larger ones would leave the range of numbers.
        if (!std::isfinite(x) || std::fabs(x) > kLargestSample)
            ThrowUnreadable(reader.path(), fmt::format("sample {} of channel {} {}", frame, channel + 1,
                                                       std::isfinite(x) ? "is too large" : "is not a finite number"));
        extents.channels[channel].Add(x);
        if (settings.tacho && channel == settings.tacho->channel) extents.tacho.Add(x);
    });
    return extents;
}

std::size_t Samples(const RecordingFacts& facts) { return static_cast<std::size_t>(facts.frames); }

// 0 for a recording that is too short for any.
std::size_t BlockSize(const std::string& path, const RecordingFacts& facts, const SpectrumSettings& settings)
{
    if (settings.blockSize == 0) return BlockSizeAtMost(std::min(Samples(facts), MeasuredRecording::kDefaultBlock));
    if (settings.blockSize > Samples(facts))
        throw RecordingError(fmt::format("{} has {} sample{}, fewer than a block of {}", path, Samples(facts),
                                         Samples(facts) == 1 ? "" : "s", settings.blockSize));
    return settings.blockSize;
}

// A second or more, so that lines lie 1 Hz apart or closer.
std::size_t OctaveBlockSize(const RecordingFacts& facts)
{
    const auto second = static_cast<std::size_t>(facts.sampleRate);
    const std::size_t wanted = BlockSizeAtLeast(std::max(second, MeasuredRecording::kDefaultBlock));
    return wanted != 0 && wanted <= Samples(facts) ? wanted : BlockSizeAtMost(Samples(facts));
}

// What needs weighted samples of a channel.
class WeightedPass {
public:
    WeightedPass(const ExtentMeter& extent, double sampleRate)
        : m_mean(extent.Mean()), m_filters(sampleRate), m_sound(sampleRate), m_overview(extent.count()),
          m_leadIn(static_cast<std::size_t>(std::min(kLeadInSeconds * sampleRate, kLongestLeadIn)) + 1)
    {
    }

    void Add(double x)
    {
        m_last = x - m_mean;
        if (m_isStarted) return Take(m_filters.Next(m_last));
        m_start.push_back(m_last);
        if (m_start.size() == m_leadIn) Start();
    }
    void Give(MeasuredRecording& measured) &&
    {
        if (!m_isStarted) Start();
        for (std::size_t i = 0; i < WeightingFilters::kDelay; ++i) Take(m_filters.Next(m_last));
        measured.sound.push_back(m_sound.Result());
        measured.overviews.push_back(std::move(m_overview).Result());
    }

private:
    // Most recordings begin in the middle of a sound. It is led in by its own mirror image, so that the filters have
    // settled when it begins. The mirror is at the first crest or trough, where a tone is its own image.
    void Start()
    {
        m_isStarted = true;
        std::size_t mirror = 0;
        for (std::size_t i = 1; mirror == 0 && 2 * i < m_start.size(); ++i)
            if ((m_start[i] - m_start[i - 1]) * (m_start[i + 1] - m_start[i]) <= 0.0) mirror = i;
        for (std::size_t i = m_start.size(); i-- > 2 * mirror + 1;) (void)m_filters.Next(m_start[i]);
        for (const double x : m_start) Take(m_filters.Next(x));
        m_start = {};
    }
    void Take(const WeightedSample& sample)
    {
        if (m_early > 0) {
            --m_early;
            return;
        }
        m_sound.Add(sample);
        m_overview.Add(sample.z + m_mean, sample);
    }

    double m_mean;
    WeightingFilters m_filters;
    SoundLevelMeter m_sound;
    OverviewMeter m_overview;
    std::size_t m_early = WeightingFilters::kDelay; // samples that come before the first
    std::size_t m_leadIn;                           // samples
    std::vector<double> m_start;
    double m_last = 0.0; // continues after the end, so that the filters see no step
    bool m_isStarted = false;
};

// What needs the mean of each channel.
class SecondPass {
public:
    SecondPass(const RecordingFacts& facts, const Extents& extents, std::size_t blockSize,
               const SpectrumSettings& settings)
        : m_extents(extents.channels), m_moments(m_extents.begin(), m_extents.end())
    {
        m_weighted.reserve(m_extents.size());
        for (const ExtentMeter& extent : m_extents) m_weighted.emplace_back(extent, facts.sampleRate);
        if (blockSize == 0) return;
        std::vector<double> means;
        means.reserve(m_extents.size());
        for (const ExtentMeter& extent : m_extents) means.push_back(extent.Mean());
        m_octaves.emplace(means, OctaveBlockSize(facts), OctaveWindow(settings.window));
        const auto reference = facts.channels > 1 ? std::optional(settings.reference) : std::nullopt;
        m_spectra.emplace(std::move(means), blockSize, settings.window, settings.mostBlocks, reference);
        if (!settings.tacho) return;
        m_tachoChannel = settings.tacho->channel;
        m_tacho.emplace(extents.tacho, std::max(static_cast<std::int64_t>(blockSize),
                                                static_cast<std::int64_t>(facts.sampleRate / kChunksPerSecond)));
    }

    // The number of frames.
    std::int64_t Run(RecordingReader& reader, Work& work)
    {
        std::int64_t frames = 0;
        ForEachSample(reader, work, [&](std::size_t channel, std::int64_t frame, double x) {
            const ExtentMeter& extent = m_extents[channel];
            if (!(x >= extent.minimum() && x <= extent.maximum()))
                ThrowUnreadable(reader.path(), "it changes while it is read");
            m_moments[channel].Add(x);
            m_weighted[channel].Add(x);
            if (m_spectra) m_spectra->Add(channel, x);
            if (m_octaves) m_octaves->Add(channel, x);
            if (m_tacho && channel == m_tachoChannel) m_tacho->Add(x);
            frames = frame + 1;
        });
        return frames;
    }

    void Give(MeasuredRecording& measured) &&
    {
        for (const MomentMeter& meter : m_moments) measured.levels.push_back(meter.Result());
        for (WeightedPass& pass : m_weighted) std::move(pass).Give(measured);
        if (!m_spectra) return;
        measured.spectra = std::move(*m_spectra).Result();
        const Spectra fine = std::move(*m_octaves).Result();
        measured.octaveBlockSize = fine.blockSize;
        for (std::size_t channel = 0; channel < m_moments.size(); ++channel)
            measured.octaves.push_back(GatherBands(fine, channel, measured.facts.sampleRate));
    }
    [[nodiscard]] TachoPulses Pulses() const { return m_tacho ? m_tacho->pulses() : TachoPulses(); }

private:
    std::vector<ExtentMeter> m_extents;
    std::vector<MomentMeter> m_moments;
    std::vector<WeightedPass> m_weighted;
    std::optional<SpectrumMeter> m_spectra;
    std::optional<SpectrumMeter> m_octaves;
    std::optional<TachoMeter> m_tacho;
    std::size_t m_tachoChannel = 0;
};

RunUp RunUpOf(const std::string& path, const MeasuredRecording& measured, const TachoSettings& tacho,
              const TachoPulses& pulses)
{
    const RecordingFacts& facts = measured.facts;
    RunUp runUp{measured.spectra.blockSize, tacho.channel, tacho.pulses, tacho.orders};
    runUp.window = measured.spectra.window;
    CutIntoSlices(runUp, pulses, facts.frames, facts.sampleRate);
    if (const std::string why = WhyNoTacho(runUp, pulses); !why.empty())
        throw RecordingError(fmt::format("{}: channel {} is no tacho: {}", path, tacho.channel + 1, why));
    return runUp;
}

// Collects frames into blocks that overlap by half, and transforms those that are wanted.
class BlockSpectra {
public:
    BlockSpectra(const MeasuredRecording& measured)
        : m_measured(&measured), m_transform(measured.runUp.blockSize, measured.runUp.window),
          m_block(measured.facts.channels, std::vector<double>(measured.runUp.blockSize))
    {
        m_spectra.blockSize = measured.runUp.blockSize;
        m_spectra.blocks = 1;
        m_spectra.window = measured.runUp.window;
        m_spectra.power.assign(measured.facts.channels, std::vector<double>(m_transform.lineCount()));
    }

    void Add(std::size_t channel, double x)
    {
        m_block[channel][m_filled] = x - m_measured->levels[channel].mean;
        if (channel + 1 == m_block.size()) ++m_filled;
    }
    [[nodiscard]] bool IsFull() const { return m_filled == m_transform.blockSize(); }
    [[nodiscard]] std::int64_t firstFrame() const { return m_firstFrame; }
    const Spectra& Transformed()
    {
        for (std::size_t channel = 0; channel < m_block.size(); ++channel) {
            m_transform.Transform(m_block[channel], m_lines);
            for (std::size_t k = 0; k < m_lines.size(); ++k)
                m_spectra.power[channel][k] = std::norm(m_lines[k]) * m_transform.PowerScale(k);
        }
        return m_spectra;
    }
    void StepOn()
    {
        m_filled /= 2;
        m_firstFrame += static_cast<std::int64_t>(m_filled);
        for (std::vector<double>& block : m_block)
            std::copy(block.begin() + static_cast<std::ptrdiff_t>(m_filled), block.end(), block.begin());
    }

private:
    const MeasuredRecording* m_measured;
    BlockTransform m_transform;
    std::vector<std::vector<double>> m_block; // per channel
    BlockTransform::Lines m_lines;
    Spectra m_spectra;
    std::size_t m_filled = 0;
    std::int64_t m_firstFrame = 0;
};

} // namespace

MeasuredRecording MeasureRecording(RecordingReader& reader, const SpectrumSettings& settings,
                                   const ProgressCallback& progress)
{
    const std::string& path = reader.path();
    MeasuredRecording measured;
    RecordingFacts& facts = measured.facts;
    facts = reader.facts();
    Work work(std::min(facts.frames, std::numeric_limits<std::int64_t>::max() / 2) * 2, progress); // both passes
    const Extents extents = MeasureExtents(reader, settings, work);
    facts.frames = extents.channels.front().count();
    if (facts.frames == 0) ThrowUnreadable(path, "it holds no samples");
    SecondPass pass(facts, extents, BlockSize(path, facts, settings), settings);
    if (pass.Run(reader, work) != facts.frames) ThrowUnreadable(path, "it changes while it is read");
    const TachoPulses pulses = pass.Pulses();
    std::move(pass).Give(measured);
    if (settings.tacho) measured.runUp = RunUpOf(path, measured, *settings.tacho, pulses);
    return measured;
}

void ForEachSlice(RecordingReader& reader, const MeasuredRecording& measured,
                  const std::function<void(std::size_t slice, const Spectra& spectra)>& take,
                  const ProgressCallback& progress)
{
    const std::vector<RunUpSlice>& slices = measured.runUp.slices;
    Work work(measured.facts.frames, progress);
    reader.Rewind();
    BlockSpectra blocks(measured);
    const std::size_t channels = measured.facts.channels;
    std::size_t next = 0;
    for (auto samples = reader.NextBlock(); !samples.empty() && next < slices.size(); samples = reader.NextBlock()) {
        for (std::size_t i = 0; i < samples.size() && next < slices.size(); ++i) {
            blocks.Add(i % channels, samples[i]);
            if (!blocks.IsFull()) continue;
            if (blocks.firstFrame() == slices[next].firstFrame) take(next++, blocks.Transformed());
            blocks.StepOn();
        }
        work.Advance(static_cast<std::int64_t>(samples.size() / channels));
    }
    if (next < slices.size()) ThrowUnreadable(reader.path(), "it changes while it is read");
}

} // namespace zmxf
