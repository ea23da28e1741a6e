#include "tools/signal_processing/recordings/sound_file.h"

#include "tools/signal_processing/recordings/sound_stream.h"
#include "tools/signal_processing/recordings/track_names.h"

#include <algorithm>
#include <fmt/format.h>
#include <sndfile.h>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;

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

bool ReadsFormat(int format)
{
    int count = 0;
    (void)sf_command(nullptr, SFC_GET_FORMAT_MAJOR_COUNT, &count, sizeof count);
    for (int i = 0; i < count; ++i) {
        SF_FORMAT_INFO known{};
        known.format = i;
        if (sf_command(nullptr, SFC_GET_FORMAT_MAJOR, &known, sizeof known) == 0 && known.format == format) return true;
    }
    return false;
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

class SoundFile : public SampleSource {
public:
    SoundFile(FileHandle& file, std::string path, std::unique_ptr<SoundStream> sound, const SF_INFO& info)
        : m_file(file), m_path(std::move(path)), m_sound(std::move(sound))
    {
        m_facts.frames = info.frames;
        m_facts.channels = static_cast<std::size_t>(info.channels);
        m_facts.sampleRate = info.samplerate;
        m_facts.fullScale = FullScale(info.format);
        m_facts.cut = FindCut(file);
        m_facts.comment = CommentOf(m_sound->get());
        m_facts.said.resize(m_facts.channels);
        NameChannels(TextChunk(m_sound->get(), "iXML"), m_facts.said);
    }

    // Opens the file once more: some formats can't go back.
    void Rewind() override
    {
        m_sound.reset();
        m_framesRead = 0;
        SF_INFO info{};
        m_sound = std::make_unique<SoundStream>(m_file, SFM_READ, info);
        if (!m_sound->IsOpen() || static_cast<std::size_t>(info.channels) != m_facts.channels)
            ThrowUnreadable(m_path, "it changes while it is read");
    }

    std::size_t Read(std::span<double> block) override
    {
        const auto wanted = static_cast<sf_count_t>(block.size() / m_facts.channels);
        const sf_count_t frames = sf_readf_double(m_sound->get(), block.data(), wanted);
        if (m_sound->failure()) ThrowUnreadable(m_path, m_sound->failure().message());
        if (sf_error(m_sound->get()) != SF_ERR_NO_ERROR) ThrowUnreadable(m_path, SoundMessage(m_sound->get()));
        m_framesRead += std::max<sf_count_t>(frames, 0);
        if (frames > 0) return static_cast<std::size_t>(frames);
        if (m_framesRead < m_facts.frames && m_facts.frames != SF_COUNT_MAX) // which means an unknown length
            ThrowUnreadable(m_path, fmt::format("it ends after {} of {} samples", m_framesRead, m_facts.frames));
        return 0;
    }

private:
    FileHandle& m_file;
    std::string m_path;
    std::unique_ptr<SoundStream> m_sound;
    std::int64_t m_framesRead = 0;
};

} // namespace

std::unique_ptr<SampleSource> OpenSoundFile(FileHandle& file, const std::string& path)
{
    SF_INFO info{};
    auto sound = std::make_unique<SoundStream>(file, SFM_READ, info);
    if (sound->failure()) ThrowUnreadable(path, sound->failure().message());
    if (!sound->IsOpen() && sf_error(nullptr) == SF_ERR_UNRECOGNISED_FORMAT) return nullptr;
    if (!sound->IsOpen()) ThrowUnreadable(path, SoundMessage(nullptr));
    if (info.channels < 1 || info.samplerate < 1) ThrowUnreadable(path, "it names no channels or no sample rate");
    return std::make_unique<SoundFile>(file, path, std::move(sound), info);
}

void WriteRecording(FileHandle& file, const std::string& path, std::span<const float> samples, int channels,
                    int sampleRate)
{
    SF_INFO info{};
    info.channels = channels;
    info.samplerate = sampleRate;
    info.format = SF_FORMAT_WAV | SF_FORMAT_FLOAT;
    SoundStream sound(file, SFM_WRITE, info);
    const auto check = [&](bool isGood) {
        if (isGood) return;
        throw RecordingError(fmt::format("cannot write {}: {}", path,
                                         sound.failure() ? sound.failure().message() : SoundMessage(sound.get())));
    };
    check(sound.IsOpen());
    (void)sf_command(sound.get(), SFC_SET_ADD_PEAK_CHUNK, nullptr, SF_FALSE); // it holds the time of writing
    const auto count = static_cast<sf_count_t>(samples.size());
    check(sf_write_float(sound.get(), samples.data(), count) == count);
    check(sound.Close());
}

SoundLibrary DescribeSoundLibrary()
{
    return {sf_version_string(), ReadsFormat(SF_FORMAT_FLAC), ReadsFormat(SF_FORMAT_OGG)};
}

} // namespace zmxf
