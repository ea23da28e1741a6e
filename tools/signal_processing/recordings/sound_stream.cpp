#include "tools/signal_processing/recordings/sound_stream.h"

#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <utility>

namespace zmxf {

namespace {

// Where a file begins after the tags that players of music put before any format, "ID3". libsndfile steps over them
// too, but then takes places in the format for places in the file, and gives other samples. 0 when nothing follows.
std::int64_t AfterTags(ZelmResult::FileHandle& file)
{
    std::array<unsigned char, 10> tag{}; // its name, version and flags, and the size of what it holds in 4 x 7 bits
    const auto isTag = [&tag] { return tag[0] == 'I' && tag[1] == 'D' && tag[2] == '3' && tag[3] >= 2 && tag[3] <= 4; };
    const auto size = static_cast<std::int64_t>(tag.size());
    std::int64_t start = 0;
    while (file.ReadAt(start, reinterpret_cast<char*>(tag.data()), tag.size()) == size && isTag()) {
        std::int64_t held = 0;
        for (std::size_t i = 6; i < tag.size(); ++i) held = held << 7U | (tag[i] & 0x7FU);
        start += size + held;
    }
    return start < file.Size() ? start : 0;
}

} // namespace

SF_VIRTUAL_IO SoundStream::Calls()
{
    SF_VIRTUAL_IO calls{};
    calls.get_filelen = [](void* user) -> sf_count_t { return Of(user).Size(); };
    calls.seek = [](sf_count_t offset, int whence, void* user) { return Of(user).Seek(offset, whence); };
    calls.read = [](void* to, sf_count_t count, void* user) { return Of(user).Read(to, count); };
    calls.write = [](const void* from, sf_count_t count, void* user) { return Of(user).Write(from, count); };
    calls.tell = [](void* user) -> sf_count_t { return Of(user).m_position; };
    return calls;
}

SoundStream::SoundStream(ZelmResult::FileHandle& file, int mode, SF_INFO& info)
    : m_file(&file), m_start(mode == SFM_READ ? AfterTags(file) : 0)
{
    SF_VIRTUAL_IO calls = Calls();
    m_sound = sf_open_virtual(&calls, mode, &info, this);
}

SoundStream::~SoundStream() { (void)Close(); }

bool SoundStream::Close()
{
    const bool isClosed = m_sound == nullptr || sf_close(std::exchange(m_sound, nullptr)) == 0;
    return isClosed && !m_failure;
}

sf_count_t SoundStream::Size() { return std::max<std::int64_t>(m_file->Size() - m_start, 0); }

// -1 for a place that no file has.
sf_count_t SoundStream::Seek(sf_count_t offset, int whence)
{
    const std::int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? m_position : Size();
    if (from < 0 || offset < -from || offset > SF_COUNT_MAX - m_start - from) return -1;
    m_position = from + offset;
    return m_position;
}

sf_count_t SoundStream::Read(void* to, sf_count_t count)
{
    if (count <= 0) return 0; // libsndfile takes sizes from damaged headers
    const std::int64_t got =
        m_file->ReadAt(m_start + m_position, static_cast<char*>(to), static_cast<std::size_t>(count));
    if (got < 0) m_failure = ZelmResult::LastSystemError();
    m_position += std::max<std::int64_t>(got, 0);
    return std::max<std::int64_t>(got, 0);
}

sf_count_t SoundStream::Write(const void* from, sf_count_t count)
{
    if (!m_file->WriteAt(m_position, static_cast<const char*>(from), static_cast<std::size_t>(count))) {
        m_failure = ZelmResult::LastSystemError();
        return 0;
    }
    m_position += count;
    return count;
}

} // namespace zmxf
