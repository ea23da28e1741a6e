#include "zelmresult/storage/temporary_files.h"

#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace ZelmResult {

std::string TemporaryDirectory()
{
    const char* set = std::getenv("TMPDIR");
    std::string directory = set != nullptr && *set != '\0' ? set : "/tmp";
    if (directory.back() != '/') directory += '/';
    return directory;
}

Creation CreateExclusively(const std::string& path)
{
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (descriptor < 0) return errno == EEXIST ? Creation::NameInUse : Creation::Failed;
    return ::close(descriptor) == 0 ? Creation::Made : Creation::Failed;
}

bool RemoveFile(const std::string& path) { return ::unlink(path.c_str()) == 0; }

bool FreeBytes(const std::string& directory, std::uint64_t& bytes)
{
    struct statvfs status {};
    if (::statvfs(directory.c_str(), &status) != 0) return false;
    bytes = std::uint64_t{status.f_bavail} * status.f_frsize;
    return true;
}

std::uint64_t ProcessNumber() { return static_cast<std::uint64_t>(::getpid()); }

std::uint64_t PhysicalMemory()
{
    const long pages = ::sysconf(_SC_PHYS_PAGES);
    const long pageSize = ::sysconf(_SC_PAGE_SIZE);
    return pages > 0 && pageSize > 0 ? static_cast<std::uint64_t>(pages) * static_cast<std::uint64_t>(pageSize)
                                     : UINT64_MAX;
}

} // namespace ZelmResult
