#include "tools/signal_processing/recordings/sound_stream.h"

#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <cstdio>
#include <utility>

namespace zmxf {

SF_VIRTUAL_IO SoundStream::Calls()
{
    SF_VIRTUAL_IO calls{};
    calls.get_filelen = [](void* user) -> sf_count_t { return Of(user).m_file->Size(); };
    calls.seek = [](sf_count_t offset, int whence, void* user) { return Of(user).Seek(offset, whence); };
    calls.read = [](void* to, sf_count_t count, void* user) { return Of(user).Read(to, count); };
    calls.write = [](const void* from, sf_count_t count, void* user) { return Of(user).Write(from, count); };
    calls.tell = [](void* user) -> sf_count_t { return Of(user).m_position; };
    return calls;
}

SoundStream::SoundStream(ZelmResult::FileHandle& file, int mode, SF_INFO& info) : m_file(&file)
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

// -1 for a place that no file has.
sf_count_t SoundStream::Seek(sf_count_t offset, int whence)
{
    const std::int64_t from = whence == SEEK_SET ? 0 : whence == SEEK_CUR ? m_position : m_file->Size();
    if (from < 0 || offset < -from || offset > SF_COUNT_MAX - from) return -1;
    m_position = from + offset;
    return m_position;
}

sf_count_t SoundStream::Read(void* to, sf_count_t count)
{
    const std::int64_t got = m_file->ReadAt(m_position, static_cast<char*>(to), static_cast<std::size_t>(count));
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
