#include "tools/signal_processing/run_up.h"

#include "tools/signal_processing/recording.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>

namespace zmxf {

namespace {

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

void Count(const TachoSpeed& speed, SpeedTally& tally)
{
    auto* const count = [&]() -> std::size_t* {
        switch (speed.flaw) {
        case SpeedFlaw::NoPulses: return &tally.noPulses;
        case SpeedFlaw::Irregular: return &tally.irregular;
        case SpeedFlaw::TooFewSamples: return &tally.tooFewSamples;
        case SpeedFlaw::None: break;
        }
        if (!speed.pulsesPerSample) return &tally.outside;
        return speed.isBridged ? &tally.bridged : nullptr;
    }();
    if (count != nullptr) ++*count;
}

} // namespace

void CutIntoSlices(RunUp& runUp, const TachoPulses& pulses, std::int64_t frames, int sampleRate)
{
    const auto size = static_cast<std::int64_t>(runUp.blockSize);
    const double half = static_cast<double>(runUp.blockSize) / 2.0;
    for (std::int64_t first = 0; size > 0 && first + size <= frames; first += size / 2) {
        const double middle = static_cast<double>(first) + half;
        const TachoSpeed speed = SpeedAround(pulses, runUp.pulses, middle, half);
        if (speed.pulsesPerSample)
            runUp.slices.push_back({first, middle / sampleRate, *speed.pulsesPerSample / runUp.pulses * sampleRate});
        Count(speed, runUp.tally);
    }
}

std::string WhyNoTacho(const RunUp& runUp, const TachoPulses& pulses)
{
    const SpeedTally& tally = runUp.tally;
    const std::string count = Counted(pulses.size(), "pulse");
    if (tally.tooFewSamples > runUp.slices.size())
        return "its " + count + " come or go too fast for the sample rate, which would miss some: a tacho needs " +
               "pulses that last two samples, four samples apart";
    if (tally.irregular > runUp.slices.size()) return "the intervals between its " + count + " follow no speed";
    if (runUp.slices.empty())
        return "it has " + count + ", which give no block of " + std::to_string(runUp.blockSize) + " samples a speed";
    return {};
}

void ForEachSlice(const std::string& path, const MeasuredRecording& measured,
                  const std::function<void(std::size_t slice, const Spectra& spectra)>& take)
{
    const std::vector<RunUpSlice>& slices = measured.runUp.slices;
    Progress progress("cutting " + Printable(path) + " into slices", measured.facts.frames);
    RecordingReader reader(path);
    BlockSpectra blocks(measured);
    const std::size_t channels = measured.facts.channels;
    std::size_t next = 0;
    bool isSame = reader.facts().channels == channels;
    for (auto samples = reader.NextBlock(); isSame && !samples.empty() && next < slices.size();
         samples = reader.NextBlock()) {
        for (std::size_t i = 0; i < samples.size() && next < slices.size(); ++i) {
            blocks.Add(i % channels, samples[i]);
            if (!blocks.IsFull()) continue;
            if (blocks.firstFrame() == slices[next].firstFrame) take(next++, blocks.Transformed());
            blocks.StepOn();
        }
        progress.Advance(static_cast<std::int64_t>(samples.size() / channels));
    }
    if (next < slices.size()) throw Failure("cannot read " + Printable(path) + ": it changes while it is read");
}

} // namespace zmxf
