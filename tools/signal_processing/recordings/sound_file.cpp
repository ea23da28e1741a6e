#include "tools/signal_processing/recordings/sound_file.h"

#include "tools/signal_processing/recordings/track_names.h"

#include <algorithm>
#include <fcntl.h>
#include <fmt/format.h>
#include <sndfile.h>
#include <unistd.h>

namespace zmxf {

namespace {

struct SoundFileCloser {
    void operator()(SNDFILE* file) const { sf_close(file); }
};
using SoundHandle = std::unique_ptr<SNDFILE, SoundFileCloser>;

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

// The text of a chunk that libsndfile doesn't read by itself.
std::string TextChunk(SNDFILE* file, std::string_view code)
{
    constexpr std::uint32_t longest = 1U << 20U;
    SF_CHUNK_INFO chunk{};
    std::copy(code.begin(), code.end(), chunk.id);
    chunk.id_size = static_cast<unsigned>(code.size());
    SF_CHUNK_ITERATOR* found = sf_get_chunk_iterator(file, &chunk);
    if (found == nullptr || sf_get_chunk_size(found, &chunk) != SF_ERR_NO_ERROR || chunk.datalen > longest) return {};
    std::string text(chunk.datalen, '\0');
    chunk.data = text.data();
    if (sf_get_chunk_data(found, &chunk) != SF_ERR_NO_ERROR) return {};
    return text;
}

constexpr std::size_t kLongestComment = 1000; // every result holds it

// Title, comment and what a recorder described, each once.
std::string CommentOf(SNDFILE* file)
{
    std::string comment;
    const auto add = [&comment](std::string_view text) {
        text = text.substr(0, std::min(text.find('\0'), kLongestComment));
        while (!text.empty() && static_cast<unsigned char>(text.back()) <= ' ') text.remove_suffix(1);
        if (text.empty() || comment.find(text) != std::string::npos) return;
        comment += fmt::format("{}{}", comment.empty() ? "" : "; ", text);
    };
    for (const int field : {SF_STR_TITLE, SF_STR_COMMENT})
        if (const char* text = sf_get_string(file, field)) add(text);
    SF_BROADCAST_INFO broadcast{};
    if (sf_command(file, SFC_GET_BROADCAST_INFO, &broadcast, sizeof broadcast) == SF_TRUE)
        add({broadcast.description, sizeof broadcast.description});
    return comment;
}

// By a descriptor of its own, since libsndfile closes that of a file that it doesn't recognise.
SoundHandle OpenSound(int descriptor, SF_INFO& info)
{
    const int own = ::fcntl(descriptor, F_DUPFD_CLOEXEC, 0);
    if (own < 0 || ::lseek(own, 0, SEEK_SET) != 0) return nullptr;
    return SoundHandle(sf_open_fd(own, SFM_READ, &info, SF_TRUE));
}

class SoundFile : public SampleSource {
public:
    SoundFile(int descriptor, std::string path, SoundHandle sound, const SF_INFO& info)
        : m_descriptor(descriptor), m_path(std::move(path)), m_sound(std::move(sound))
    {
        m_facts.frames = info.frames;
        m_facts.channels = static_cast<std::size_t>(info.channels);
        m_facts.sampleRate = info.samplerate;
        m_facts.fullScale = FullScale(info.format);
        m_facts.cut = FindCut(descriptor);
        m_facts.comment = CommentOf(m_sound.get());
        m_facts.said.resize(m_facts.channels);
        NameChannels(TextChunk(m_sound.get(), "iXML"), m_facts.said);
    }

    // Opens the file once more: some formats can't go back.
    void Rewind() override
    {
        m_sound.reset();
        m_framesRead = 0;
        SF_INFO info{};
        m_sound = OpenSound(m_descriptor, info);
        if (m_sound == nullptr || static_cast<std::size_t>(info.channels) != m_facts.channels)
            ThrowUnreadable(m_path, "it changes while it is read");
    }

    std::size_t Read(std::span<double> block) override
    {
        const auto wanted = static_cast<sf_count_t>(block.size() / m_facts.channels);
        const sf_count_t frames = sf_readf_double(m_sound.get(), block.data(), wanted);
        if (sf_error(m_sound.get()) != SF_ERR_NO_ERROR) ThrowUnreadable(m_path, SoundMessage(m_sound.get()));
        m_framesRead += std::max<sf_count_t>(frames, 0);
        if (frames > 0) return static_cast<std::size_t>(frames);
        if (m_framesRead < m_facts.frames && m_facts.frames != SF_COUNT_MAX) // which means an unknown length
            ThrowUnreadable(m_path, fmt::format("it ends after {} of {} samples", m_framesRead, m_facts.frames));
        return 0;
    }

private:
    int m_descriptor;
    std::string m_path;
    SoundHandle m_sound;
    std::int64_t m_framesRead = 0;
};

} // namespace

std::unique_ptr<SampleSource> OpenSoundFile(int descriptor, const std::string& path)
{
    SF_INFO info{};
    SoundHandle sound = OpenSound(descriptor, info);
    if (sound == nullptr && sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) return nullptr;
    if (sound == nullptr) ThrowUnreadable(path, SoundMessage(nullptr));
    if (info.channels < 1 || info.samplerate < 1) ThrowUnreadable(path, "it names no channels or no sample rate");
    return std::make_unique<SoundFile>(descriptor, path, std::move(sound), info);
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
    SoundHandle sound(sf_open_fd(descriptor, SFM_WRITE, &info, SF_FALSE));
    if (sound == nullptr) throw failed(nullptr);
    (void)sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE); // it holds the time of writing
    const auto count = static_cast<sf_count_t>(samples.size());
    if (sf_write_float(sound.get(), samples.data(), count) != count) throw failed(sound.get());
    if (sf_close(sound.release()) != 0) throw failed(nullptr);
}

} // namespace zmxf
