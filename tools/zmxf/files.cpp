#include "tools/zmxf/files.h"

#include "tools/zmxf/failure.h"
#include "tools/zmxf/text.h"
#include "zelmresult/support/text.h"

#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zmxf {

namespace {

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// The file behind a link, so that writing replaces the file and not the link.
std::string BehindLinks(const std::string& path)
{
    std::error_code error;
    const auto target = std::filesystem::canonical(path, error);
    return error ? path : target.string();
}

bool IsUtf8(const std::string& text) { return ZelmResult::ToUtf8(ZelmResult::FromUtf8(text)) == text; }

int OpenTemporary(std::string& name, const std::string& folder)
{
    const std::string start = folder + ".zmxf-" + std::to_string(::getpid()) + '-';
    for (int attempt = 0;; ++attempt) {
        name = start + std::to_string(attempt) + ".tmp";
        const int descriptor = ::open(name.c_str(), O_RDWR | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (descriptor >= 0 || errno != EEXIST) return descriptor;
    }
}

void SyncFolder(const std::string& folder)
{
    const Descriptor opened(::open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    (void)::fsync(opened.get()); // some file systems have no such thing; the file itself is safe
}

} // namespace

std::string SystemFailure(const std::string& what, const std::string& path)
{
    return what + ' ' + Printable(path) + ": " + std::generic_category().message(errno);
}

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) (void)::close(m_descriptor);
}

LibraryPath::LibraryPath(const std::string& path)
    : m_descriptor(IsUtf8(path) ? -1 : ::open(path.c_str(), O_PATH | O_CLOEXEC)), m_text(ZelmResult::FromUtf8(path))
{
    if (IsUtf8(path)) return;
    if (m_descriptor.get() < 0) throw Failure(SystemFailure("cannot open", path));
    m_text = ZelmResult::FromUtf8("/proc/self/fd/" + std::to_string(m_descriptor.get()));
}

void CheckOutput(const std::string& path, const std::string& input)
{
    struct stat status {};
    struct stat source {};
    if (::stat(path.c_str(), &status) == 0) {
        if (!S_ISREG(status.st_mode)) throw Failure("cannot write " + Printable(path) + ": not a regular file");
        const bool same = !input.empty() && ::stat(input.c_str(), &source) == 0 && source.st_dev == status.st_dev &&
                          source.st_ino == status.st_ino;
        if (same) throw Failure("cannot write " + Printable(path) + ": it is the input");
        return;
    }
    const std::string folder = FolderOf(path);
    const bool named = folder.size() < path.size();
    if (!named || ::stat(folder.empty() ? "." : folder.c_str(), &status) != 0)
        throw Failure(SystemFailure("cannot write", path));
}

OutputFile::SignalsHeld::SignalsHeld()
{
    sigset_t held;
    (void)sigemptyset(&held);
    for (const int signal : {SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE}) (void)sigaddset(&held, signal);
    (void)sigprocmask(SIG_BLOCK, &held, &m_former);
}

OutputFile::SignalsHeld::~SignalsHeld() { (void)sigprocmask(SIG_SETMASK, &m_former, nullptr); }

OutputFile::OutputFile(const std::string& path)
    : m_path(BehindLinks(path)), m_descriptor(OpenTemporary(m_temporary, FolderOf(m_path)))
{
    if (m_descriptor.get() < 0) throw Failure(SystemFailure("cannot write", path));
    struct stat former {};
    if (::stat(m_path.c_str(), &former) == 0) (void)::fchmod(m_descriptor.get(), former.st_mode & 07777U);
}

OutputFile::~OutputFile()
{
    if (!m_temporary.empty()) (void)::unlink(m_temporary.c_str());
}

void OutputFile::Commit()
{
    if (::fsync(m_descriptor.get()) != 0 || ::rename(m_temporary.c_str(), m_path.c_str()) != 0)
        throw Failure(SystemFailure("cannot write", m_path));
    m_temporary.clear();
    SyncFolder(FolderOf(m_path));
}

} // namespace zmxf
