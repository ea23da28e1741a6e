#include "zelmresult/storage/file_replacement.h"

#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace ZelmResult {

namespace {

// The file to which a chain of links leads, whether it exists or not.
std::string AfterLinks(const std::string& path)
{
    constexpr int most = 40; // the system follows as many
    std::filesystem::path target = path;
    std::error_code error;
    for (int i = 0; i < most && std::filesystem::is_symlink(target, error); ++i) {
        const std::filesystem::path next = std::filesystem::read_symlink(target, error);
        if (error) break;
        target = next.is_absolute() ? next : target.parent_path() / next;
    }
    return target.string();
}

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

int MakeTemporary(std::string& name, const std::string& folder)
{
    const std::string start = folder + ".zmxf-" + std::to_string(::getpid()) + '-';
    for (int attempt = 0;; ++attempt) {
        name = start + std::to_string(attempt) + ".tmp";
        const int descriptor = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
}

// Whether a file may take that name: the name is free, or is that of a regular file that may be written.
bool MayReplace(const std::string& path, struct stat& former, bool& exists)
{
    exists = ::stat(path.c_str(), &former) == 0;
    if (!exists) return errno == ENOENT;
    if (!S_ISREG(former.st_mode)) {
        errno = S_ISDIR(former.st_mode) ? EISDIR : EINVAL;
        return false;
    }
    return ::access(path.c_str(), W_OK) == 0;
}

bool Sync(const std::string& path, int flags)
{
    const int descriptor = ::open(path.c_str(), flags | O_CLOEXEC);
    if (descriptor < 0) return false;
    const bool synced = ::fsync(descriptor) == 0;
    return ::close(descriptor) == 0 && synced;
}

} // namespace

FileReplacement::FileReplacement(const wstring& path)
{
    const std::string name = PathToBytes(path);
    if (name.empty() || path.find(u'\0') != wstring::npos) {
        errno = ENOENT;
        (void)Fail();
        return;
    }
    const std::string target = AfterLinks(name);
    struct stat former {};
    bool exists = false;
    std::string temporary;
    const int descriptor = MayReplace(target, former, exists) ? MakeTemporary(temporary, FolderOf(target)) : -1;
    if (descriptor < 0) {
        (void)Fail();
        return;
    }
    if (exists) {
        // Only root may give a file away, but its group may be one of the user's.
        if (::fchown(descriptor, former.st_uid, former.st_gid) != 0 &&
            ::fchown(descriptor, static_cast<uid_t>(-1), former.st_gid) != 0)
            errno = 0;
        (void)::fchmod(descriptor, former.st_mode & 07777U);
    }
    (void)::close(descriptor);
    m_path = PathFromBytes(target);
    m_temporary = PathFromBytes(temporary);
}

FileReplacement::~FileReplacement()
{
    if (IsMade()) (void)::unlink(PathToBytes(m_temporary).c_str());
}

bool FileReplacement::Commit()
{
    const std::string temporary = PathToBytes(m_temporary);
    const std::string path = PathToBytes(m_path);
    if (!IsMade() || !Sync(temporary, O_RDWR) || ::rename(temporary.c_str(), path.c_str()) != 0) return Fail();
    m_temporary.clear();
    const std::string folder = FolderOf(path);
    (void)Sync(folder.empty() ? "." : folder, O_RDONLY | O_DIRECTORY); // not every file system can
    return true;
}

bool FileReplacement::Fail()
{
    m_reason = LastSystemError().message();
    return false;
}

} // namespace ZelmResult
