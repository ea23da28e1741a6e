#include "tools/signal_processing/recording.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <fmt/format.h>
#include <sndfile.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

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

} // namespace

void ThrowUnreadable(const std::string& path, const std::string& reason)
{
    throw RecordingError(fmt::format("cannot read {}: {}", path, reason));
}

struct RecordingReader::OpenFile {
    explicit OpenFile(int opened) : descriptor(opened) {}
    OpenFile(const OpenFile&) = delete;
    OpenFile& operator=(const OpenFile&) = delete;
    ~OpenFile()
    {
        sound.reset();
        if (descriptor >= 0) (void)::close(descriptor);
    }

    int descriptor;
    SoundFile sound;
};

RecordingReader::RecordingReader(const std::string& path)
    : m_path(path), m_file(std::make_unique<OpenFile>(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC)))
{
    struct stat status {};
    const int descriptor = m_file->descriptor;
    if (descriptor < 0 || ::fstat(descriptor, &status) != 0)
        ThrowUnreadable(path, std::generic_category().message(errno));
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
    if (m_framesRead < m_facts.frames && m_facts.frames != SF_COUNT_MAX) // which means an unknown length
        ThrowUnreadable(m_path, fmt::format("it ends after {} of {} samples", m_framesRead, m_facts.frames));
    return {};
}

void WriteRecording(int descriptor, const std::string& path, std::span<const float> samples, int channels,
                    int sampleRate)
{
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = sampleRate;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    const auto failed = [&](SNDFILE* file) {
        return RecordingError(fmt::format("cannot write {}: {}", path, SoundMessage(file)));
    };
    SoundFile sound(sf_open_fd(descriptor, SFM_WRITE, &info, SF_FALSE));
    if (sound == nullptr) throw failed(nullptr);
    (void)sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE); // it holds the time of writing
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_float(sound.get(), samples.data(), count) != count) throw failed(sound.get());
    if (sf_close(sound.release()) != 0) throw failed(nullptr);
}

} // namespace zmxf
