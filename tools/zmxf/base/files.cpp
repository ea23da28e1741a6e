#include "tools/zmxf/base/files.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/path_bytes.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <fmt/format.h>
#include <map>
#include <set>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>
#include <utility>

namespace zmxf {

namespace {

constexpr std::array kHeldSignals{SIGINT, SIGTERM, SIGHUP, SIGQUIT, SIGPIPE};

std::string FolderOf(const std::string& path)
{
    const std::size_t slash = path.rfind('/');
    return slash == std::string::npos ? std::string() : path.substr(0, slash + 1);
}

// Of a file that there isn't yet.
void CheckFolderOf(const std::string& path)
{
    const std::string folder = FolderOf(path);
    struct stat status {};
    const bool isNamed = folder.size() < path.size();
    if (!isNamed || ::stat(folder.empty() ? "." : folder.c_str(), &status) != 0)
        throw Failure(SystemFailure("cannot write", path));
}

} // namespace

std::string SystemFailure(const std::string& what, const std::string& path)
{
    return fmt::format("{} {}: {}", what, Printable(path), std::generic_category().message(errno));
}

Descriptor::~Descriptor()
{
    if (m_descriptor >= 0) (void)::close(m_descriptor);
}

ZelmResult::wstring LibraryPath(const std::string& path) { return ZelmResult::PathFromBytes(path); }

std::string BaseName(const std::string& path) { return path.substr(path.rfind('/') + 1); }

std::vector<char> ReadBytes(const std::string& path)
{
    constexpr std::int64_t most = 0x7FFFFFFF;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) throw Failure(SystemFailure("cannot read", path));
    if (!S_ISREG(status.st_mode)) throw Failure("cannot read {}: not a regular file", Printable(path));
    if (status.st_size > most) throw Failure("cannot read {}: it is larger than 2 GiB", Printable(path));
    std::vector<char> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0) throw Failure(SystemFailure("cannot read", path));
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

void MakeFolder(const std::string& folder)
{
    std::error_code error;
    (void)std::filesystem::create_directories(folder, error);
    if (error) throw Failure("cannot make {}: {}", Printable(folder), error.message());
}

void CheckOutput(const std::string& path, const std::string& input) { CheckOutputs({&path, 1}, {&input, 1}); }

void CheckOutputs(std::span<const std::string> paths, std::span<const std::string> inputs)
{
    struct stat status {};
    const auto file = [&status] { return std::pair(status.st_dev, status.st_ino); };
    std::set<std::pair<dev_t, ino_t>> sources;
    for (const std::string& input : inputs)
        if (::stat(input.c_str(), &status) == 0) sources.insert(file());
    std::map<std::pair<dev_t, ino_t>, const std::string*> taken;
    for (const std::string& path : paths) {
        if (::stat(path.c_str(), &status) != 0) {
            CheckFolderOf(path);
            continue;
        }
        if (!S_ISREG(status.st_mode)) throw Failure("cannot write {}: not a regular file", Printable(path));
        if (sources.contains(file())) throw Failure("cannot write {}: it is the input", Printable(path));
        if (const auto [former, isNew] = taken.emplace(file(), &path); !isNew)
            throw Failure("cannot write {}: it is the same file as {}", Printable(path), Printable(*former->second));
    }
}

void HoldStandardStreams()
{
    int descriptor = 0;
    do {
        descriptor = ::open("/dev/null", O_RDONLY); // printing fails, as it does without
    } while (descriptor >= 0 && descriptor <= STDERR_FILENO);
    if (descriptor > STDERR_FILENO) (void)::close(descriptor);
}

SignalsHeld::SignalsHeld()
{
    sigset_t held;
    (void)sigemptyset(&held);
    for (const int signal : kHeldSignals) (void)sigaddset(&held, signal);
    (void)sigprocmask(SIG_BLOCK, &held, &m_former);
}

bool SignalsHeld::IsPending()
{
    sigset_t pending;
    (void)sigpending(&pending);
    return std::any_of(kHeldSignals.begin(), kHeldSignals.end(), [&pending](int signal) {
        struct sigaction action {};
        return sigismember(&pending, signal) == 1 && sigaction(signal, nullptr, &action) == 0 &&
               action.sa_handler != SIG_IGN;
    });
}

SignalsHeld::~SignalsHeld() { (void)sigprocmask(SIG_SETMASK, &m_former, nullptr); }

OutputFile::OutputFile(const std::string& path)
    : m_path(path), m_replacement(LibraryPath(path)),
      m_descriptor(m_replacement.IsMade() ? ::open(temporary().c_str(), O_RDWR | O_CLOEXEC) : -1)
{
    if (!m_replacement.IsMade()) Fail();
    if (m_descriptor.get() < 0) throw Failure(SystemFailure("cannot write", path));
}

std::string OutputFile::temporary() const { return ZelmResult::PathToBytes(m_replacement.temporary()); }

void OutputFile::Commit()
{
    if (!m_replacement.Commit()) Fail();
}

void OutputFile::Fail() const { throw Failure("cannot write {}: {}", Printable(m_path), m_replacement.reason()); }

} // namespace zmxf
