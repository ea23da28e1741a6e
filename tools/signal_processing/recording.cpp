#include "tools/signal_processing/recording.h"

#include "tools/signal_processing/tacho.h"
#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/progress.h"
#include "tools/zmxf/base/text.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <optional>
#include <sndfile.h>
#include <sys/stat.h>

namespace zmxf {

namespace {

constexpr std::size_t kSamplesPerBlock = 65536;
constexpr double kLargestSample = 1e100;
constexpr double kLeadInSeconds = 0.5;       // the lowest pole of the weightings has a time constant of 8 ms
constexpr std::int64_t kChunksPerSecond = 4; // at most, to tell how far the pulses of a tacho swing
constexpr double kLongestLeadIn = 262144.0;  // samples, whatever rate a recording tells

struct SoundFileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundFile = std::unique_ptr<SNDFILE, SoundFileCloser>;

// libsndfile ends its messages with a full stop, some with more.
std::string SoundMessage(SNDFILE* file)
{
    std::string message = sf_strerror(file);
    while (!message.empty() && (message.back() == '.' || message.back() == '\n')) message.pop_back();
    return message;
}

// The highest value of an integer format lies a step below 1. Those that aren't of whole numbers come near 1 at least.
std::optional<double> FullScale(int format)
{
    switch (format & SF_FORMAT_SUBMASK) {
    case SF_FORMAT_FLOAT:
    case SF_FORMAT_DOUBLE: return std::nullopt;
    case SF_FORMAT_PCM_S8:
    case SF_FORMAT_PCM_U8: return 1.0 - 0x1p-7;
    case SF_FORMAT_PCM_16: return 1.0 - 0x1p-15;
    case SF_FORMAT_PCM_24: return 1.0 - 0x1p-23;
    case SF_FORMAT_PCM_32: return 1.0 - 0x1p-31;
    case SF_FORMAT_ULAW:
    case SF_FORMAT_ALAW: return 0.98;
    default: return 1.0;
    }
}

[[noreturn]] void ThrowUnreadable(const std::string& path, const std::string& reason)
{
    throw Failure("cannot read " + Printable(path) + ": " + reason);
}

// Gives every sample with its channel and frame to use.
template <class Use>
void ForEachSample(const std::string& path, const RecordingFacts& expected, Progress& progress, Use use)
{
    RecordingReader reader(path);
    if (reader.facts().channels != expected.channels) ThrowUnreadable(path, "it changes while it is read");
    std::int64_t frame = 0;
    for (auto block = reader.NextBlock(); !block.empty(); block = reader.NextBlock()) {
        const std::size_t frames = block.size() / expected.channels;
        for (std::size_t i = 0; i < frames; ++i, ++frame)
            for (std::size_t channel = 0; channel < expected.channels; ++channel)
                use(channel, frame, block[i * expected.channels + channel]);
        progress.Advance(static_cast<std::int64_t>(frames));
    }
}

struct Extents {
    std::vector<ExtentMeter> channels;
    TachoExtent tacho;
};

Extents MeasureExtents(const std::string& path, const RecordingFacts& facts, const SpectrumSettings& settings,
                       Progress& progress)
{
    Extents extents{std::vector<ExtentMeter>(facts.channels), {}};
    ForEachSample(path, facts, progress, [&](std::size_t channel, std::int64_t frame, double x) {
        // Squares and sums of larger ones would leave the range of numbers.
        if (!std::isfinite(x) || std::fabs(x) > kLargestSample)
            ThrowUnreadable(path, "sample " + std::to_string(frame) + " of channel " + std::to_string(channel + 1) +
                                      (std::isfinite(x) ? " is too large" : " is not a finite number"));
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
        throw Failure(Printable(path) + " has " + Counted(Samples(facts), "sample") + ", fewer than a block of " +
                      std::to_string(settings.blockSize));
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
    // settled when it begins. The mirror stands at the first crest or trough, where a tone is its own image.
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
    double m_last = 0.0; // goes on behind the end, which is no step to the filters then
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
        m_octaves.emplace(means, OctaveBlockSize(facts), settings.window);
        const auto reference = facts.channels > 1 ? std::optional(settings.reference) : std::nullopt;
        m_spectra.emplace(std::move(means), blockSize, settings.window, settings.mostBlocks, reference);
        if (!settings.tacho) return;
        m_tachoChannel = settings.tacho->channel;
        m_tacho.emplace(extents.tacho,
                        std::max(static_cast<std::int64_t>(blockSize), facts.sampleRate / kChunksPerSecond));
    }

    // The number of frames.
    std::int64_t Run(const std::string& path, const RecordingFacts& facts, Progress& progress)
    {
        std::int64_t frames = 0;
        ForEachSample(path, facts, progress, [&](std::size_t channel, std::int64_t frame, double x) {
            const ExtentMeter& extent = m_extents[channel];
            if (!(x >= extent.minimum() && x <= extent.maximum())) ThrowUnreadable(path, "it changes while it is read");
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
        throw Failure(Printable(path) + ": channel " + std::to_string(tacho.channel + 1) + " is no tacho: " + why);
    return runUp;
}

} // namespace

struct RecordingReader::OpenFile {
    explicit OpenFile(int opened) : descriptor(opened) {}

    Descriptor descriptor; // closed behind the sound file
    SoundFile sound;
};

RecordingReader::RecordingReader(const std::string& path)
    : m_path(path), m_file(std::make_unique<OpenFile>(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)))
{
    struct stat status {};
    const int descriptor = m_file->descriptor.get();
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0) throw Failure(SystemFailure("cannot read", path));
    if (!S_ISREG(status.st_mode)) ThrowUnreadable(path, "not a regular file");
    SF_INFO info{};
    m_file->sound.reset(sf_open_fd(descriptor, SFM_READ, &info, SF_FALSE));
    if (m_file->sound == nullptr) ThrowUnreadable(path, SoundMessage(nullptr));
    if (info.channels < 1 || info.samplerate < 1) ThrowUnreadable(path, "it names no channels or no sample rate");
    m_facts = {info.frames,
               static_cast<std::size_t>(info.channels),
               info.samplerate,
               status.st_mtime,
               FullScale(info.format),
               FindCut(descriptor)};
    m_block.resize(std::max<std::size_t>(kSamplesPerBlock / m_facts.channels, 1) * m_facts.channels);
}

RecordingReader::~RecordingReader() = default;

std::span<const double> RecordingReader::NextBlock()
{
    const auto wanted = static_cast<sf_count_t>(m_block.size() / m_facts.channels);
    const sf_count_t frames = sf_readf_double(m_file->sound.get(), m_block.data(), wanted);
    if (sf_error(m_file->sound.get()) != SF_ERR_NO_ERROR) ThrowUnreadable(m_path, SoundMessage(m_file->sound.get()));
    m_framesRead += std::max<sf_count_t>(frames, 0);
    if (frames > 0) return {m_block.data(), static_cast<std::size_t>(frames) * m_facts.channels};
    if (m_framesRead < m_facts.frames && m_facts.frames != SF_COUNT_MAX) // which stands for an unknown length
        ThrowUnreadable(m_path, "it ends after " + std::to_string(m_framesRead) + " of " +
                                    std::to_string(m_facts.frames) + " samples");
    return {};
}

MeasuredRecording MeasureRecording(const std::string& path, const SpectrumSettings& settings)
{
    MeasuredRecording measured;
    RecordingFacts& facts = measured.facts;
    facts = RecordingReader(path).facts();
    Progress progress("measuring " + Printable(path), std::min(facts.frames, SF_COUNT_MAX / 2) * 2);
    const Extents extents = MeasureExtents(path, facts, settings, progress);
    facts.frames = extents.channels.front().count();
    if (facts.frames == 0) ThrowUnreadable(path, "it holds no samples");
    SecondPass pass(facts, extents, BlockSize(path, facts, settings), settings);
    if (pass.Run(path, facts, progress) != facts.frames) ThrowUnreadable(path, "it changes while it is read");
    const TachoPulses pulses = pass.Pulses();
    std::move(pass).Give(measured);
    if (settings.tacho) measured.runUp = RunUpOf(path, measured, *settings.tacho, pulses);
    return measured;
}

void WriteRecording(const std::string& path, std::span<const float> samples, int channels, int sampleRate)
{
    OutputFile output(path);
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = sampleRate;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const auto failed = [&](SNDFILE* file) {
        return Failure("cannot write " + Printable(path) + ": " + SoundMessage(file));
    };
    SoundFile sound(sf_open_fd(output.descriptor(), SFM_WRITE, &info, SF_FALSE));
    if (sound == nullptr) throw failed(nullptr);
    (void)sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE); // it holds the time of writing
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_float(sound.get(), samples.data(), count) != count) throw failed(sound.get());
    if (sf_close(sound.release()) != 0) throw failed(nullptr);
    output.Commit();
}

} // namespace zmxf
