#include "zelmresult/storage/file_handle.h"

#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"

#include <algorithm>
#include <cerrno>
#include <ctime>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace ZelmResult {

namespace {

constexpr std::int64_t kSecond = 1000000000;

std::int64_t Nanoseconds(const timespec& time) { return std::int64_t{time.tv_sec} * kSecond + time.tv_nsec; }

// How far two changes must be apart to be seen in these times: some file systems note them in steps of two seconds, the
// others of some milliseconds.
std::int64_t GrainOf(std::int64_t modified, std::int64_t changed)
{
    return modified % kSecond == 0 && changed % kSecond == 0 ? 3 * kSecond : kSecond / 10;
}

class PosixFileHandle final : public FileHandle {
public:
    ~PosixFileHandle() override { (void)PosixFileHandle::Close(); }

    bool Open(const wstring& path, Access access) override
    {
        (void)Close();
        ForgetSystemError();
        if (path.find(u'\0') != wstring::npos) return false;
        // A FIFO or a device must not block the open; anything but a regular file is refused directly after it.
        int flags = O_CLOEXEC | O_NONBLOCK | O_NOCTTY;
        flags |= access == Access::Read ? O_RDONLY : O_RDWR;
        if (access == Access::Create) flags |= O_CREAT;
        if (access == Access::Scratch) flags |= O_NOFOLLOW;
        const std::string name = PathToBytes(path);
        m_descriptor = ::open(name.c_str(), flags, 0666);
        const bool empties = access == Access::Create || access == Access::Scratch;
        const bool usable = m_descriptor >= 0 && IsUsable(access) && (!empties || ::ftruncate(m_descriptor, 0) == 0) &&
                            (access != Access::Scratch || ::unlink(name.c_str()) == 0);
        if (!usable) (void)Close();
        return usable;
    }

    std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) override
    {
        std::size_t done = 0;
        while (done < count) {
            const ssize_t n = ::pread(m_descriptor, buffer + done, count - done, position + static_cast<off_t>(done));
            if (n < 0 && errno == EINTR) continue;
            if (n < 0) return -1;
            if (n == 0) break;
            done += static_cast<std::size_t>(n);
        }
        return static_cast<std::int64_t>(done);
    }

    bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) override
    {
        std::size_t done = 0;
        while (done < count) {
            const ssize_t n = ::pwrite(m_descriptor, buffer + done, count - done, position + static_cast<off_t>(done));
            if (n < 0 && errno == EINTR) continue;
            if (n <= 0) return false;
            done += static_cast<std::size_t>(n);
        }
        return true;
    }

#if defined(FALLOC_FL_PUNCH_HOLE) && !defined(__EMSCRIPTEN__) // which declares it only
    void Discard(std::int64_t position, std::int64_t count) override
    {
        (void)::fallocate(m_descriptor, FALLOC_FL_PUNCH_HOLE | FALLOC_FL_KEEP_SIZE, position, count);
    }
#endif

    std::int64_t Size() override
    {
        struct stat status {};
        return m_descriptor >= 0 && ::fstat(m_descriptor, &status) == 0 ? status.st_size : -1;
    }

    std::optional<FileStamp> Stamp() override
    {
        struct stat status {};
        timespec now{};
        if (::fstat(m_descriptor, &status) != 0 || ::clock_gettime(CLOCK_REALTIME, &now) != 0) return std::nullopt;
        const std::int64_t modified = Nanoseconds(status.st_mtim);
        const std::int64_t changed = Nanoseconds(status.st_ctim);
        if (Nanoseconds(now) - std::max(modified, changed) < GrainOf(modified, changed)) return std::nullopt;
        return FileStamp{status.st_dev, status.st_ino, status.st_size, modified, changed};
    }

    std::optional<std::int64_t> ModifiedAt() override
    {
        struct stat status {};
        if (::fstat(m_descriptor, &status) != 0) return std::nullopt;
        return status.st_mtime;
    }

    bool Close() override
    {
        if (m_descriptor < 0) return true;
        const int descriptor = m_descriptor;
        m_descriptor = -1;
        return ::close(descriptor) == 0;
    }

private:
    [[nodiscard]] bool IsUsable(Access access) const
    {
        struct stat status {};
        if (::fstat(m_descriptor, &status) != 0 || !S_ISREG(status.st_mode)) return false;
        return access != Access::Scratch || (status.st_nlink == 1 && status.st_uid == ::geteuid());
    }

    int m_descriptor = -1;
};

} // namespace

std::unique_ptr<FileHandle> MakePlatformFileHandle() { return std::make_unique<PosixFileHandle>(); }

} // namespace ZelmResult
