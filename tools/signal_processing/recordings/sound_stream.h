#pragma once

#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <sndfile.h>
#include <system_error>

namespace zmxf {

// A file as libsndfile reads or writes it, from its first byte on, or from the first one after tags. Keeps a pointer to
// the file.
class SoundStream {
public:
    // mode and info are those of sf_open.
    SoundStream(ZelmResult::FileHandle& file, int mode, SF_INFO& info);
    SoundStream(const SoundStream&) = delete;
    SoundStream& operator=(const SoundStream&) = delete;
    ~SoundStream();

    [[nodiscard]] bool IsOpen() const { return m_sound != nullptr; }
    [[nodiscard]] SNDFILE* get() const { return m_sound; }
    // Why the file couldn't be read or written, of which libsndfile knows nothing; empty while it could.
    [[nodiscard]] const std::error_code& failure() const { return m_failure; }
    // Writes what is left. False when the file isn't whole.
    [[nodiscard]] bool Close();

private:
    static SF_VIRTUAL_IO Calls();
    static SoundStream& Of(void* user) { return *static_cast<SoundStream*>(user); }
    sf_count_t Size();
    sf_count_t Seek(sf_count_t offset, int whence);
    sf_count_t Read(void* to, sf_count_t count);
    sf_count_t Write(const void* from, sf_count_t count);

    ZelmResult::FileHandle* m_file;
    std::int64_t m_start;        // of the stream in the file
    std::int64_t m_position = 0; // in the stream
    std::error_code m_failure;
    SNDFILE* m_sound = nullptr;
};

} // namespace zmxf
