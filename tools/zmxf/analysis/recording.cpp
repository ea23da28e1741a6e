#include "tools/zmxf/analysis/recording.h"

#include "tools/zmxf/failure.h"
#include "tools/zmxf/files.h"
#include "tools/zmxf/progress.h"
#include "tools/zmxf/text.h"

#include <algorithm>
#include <cmath>
#include <fcntl.h>
#include <sndfile.h>
#include <sys/stat.h>

namespace zmxf {

namespace {

constexpr std::size_t kSamplesPerBlock = 65536;

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
    m_facts = {info.frames, static_cast<std::size_t>(info.channels), info.samplerate, status.st_mtime};
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

MeasuredRecording MeasureRecording(const std::string& path)
{
    MeasuredRecording measured{RecordingReader(path).facts(), {}};
    RecordingFacts& facts = measured.facts;
    Progress progress("measuring " + Printable(path), std::min(facts.frames, SF_COUNT_MAX / 2) * 2);
    std::vector<ExtentMeter> extents(facts.channels);
    ForEachSample(path, facts, progress, [&](std::size_t channel, std::int64_t frame, double x) {
        if (!std::isfinite(x))
            ThrowUnreadable(path, "sample " + std::to_string(frame) + " of channel " + std::to_string(channel + 1) +
                                      " is not a finite number");
        extents[channel].Add(x);
    });
    facts.frames = extents.front().count();
    if (facts.frames == 0) ThrowUnreadable(path, "it holds no samples");
    std::vector<MomentMeter> moments(extents.begin(), extents.end());
    std::int64_t framesAgain = 0;
    ForEachSample(path, facts, progress, [&](std::size_t channel, std::int64_t frame, double x) {
        moments[channel].Add(x);
        framesAgain = frame + 1;
    });
    if (framesAgain != facts.frames) ThrowUnreadable(path, "it changes while it is read");
    for (const MomentMeter& meter : moments) measured.channels.push_back(meter.Result());
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
