#include "tools/zmxf/base/files.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/support/path_bytes.h"
#include "zelmresult/support/system_error.h"

#include <fmt/format.h>
#include <map>
#include <set>
#include <utility>

namespace zmxf {

namespace {

using ZelmResult::FileHandle;
using ZelmResult::LastSystemError;

std::unique_ptr<FileHandle> OpenFile(const std::string& path, FileHandle::Access access, const std::string& failure)
{
    auto file = ZelmResult::MakePlatformFileHandle();
    if (!file->Open(LibraryPath(path), access)) throw Failure(SystemFailure(failure, path, LastSystemError()));
    return file;
}

// Of a file that there isn't yet.
void CheckFolderOf(const std::string& path)
{
    const std::string folder = FolderOf(path);
    const bool isNamed = folder.size() < path.size();
    const PathFacts facts = FactsOf(!isNamed ? path : folder.empty() ? "." : folder);
    if (facts.kind == PathFacts::Kind::Missing) throw Failure(SystemFailure("cannot write", path, facts.reason));
}

} // namespace

std::string SystemFailure(const std::string& what, const std::string& path, const std::error_code& reason)
{
    return fmt::format("{} {}: {}", what, Printable(path),
                       reason ? reason.default_error_condition().message() : "not a regular file");
}

std::vector<char> ReadBytes(const std::string& path)
{
    constexpr std::int64_t most = 0x7FFFFFFF;
    const auto file = OpenFile(path, FileHandle::Access::Read, "cannot read");
    const std::int64_t size = file->Size();
    if (size > most) throw Failure("cannot read {}: it is larger than 2 GiB", Printable(path));
    std::vector<char> bytes(size < 0 ? 0 : static_cast<std::size_t>(size));
    const std::int64_t got = size < 0 ? size : file->ReadAt(0, bytes.data(), bytes.size());
    if (got < 0) throw Failure(SystemFailure("cannot read", path, LastSystemError()));
    bytes.resize(static_cast<std::size_t>(got));
    return bytes;
}

void MakeFolder(const std::string& folder)
{
    if (FactsOf(folder).kind == PathFacts::Kind::Folder) return; // "C:" is one, but no name that can be made
    std::error_code error;
    (void)std::filesystem::create_directories(SystemPath(folder), error);
    if (error) throw Failure(SystemFailure("cannot make", folder, error));
}

void CheckOutput(const std::string& path, const std::string& input) { CheckOutputs({&path, 1}, {&input, 1}); }

void CheckOutputs(std::span<const std::string> paths, std::span<const std::string> inputs)
{
    std::set<std::pair<std::uint64_t, std::uint64_t>> sources;
    for (const std::string& input : inputs)
        if (const PathFacts facts = FactsOf(input); facts.kind != PathFacts::Kind::Missing) sources.insert(facts.file);
    std::map<std::pair<std::uint64_t, std::uint64_t>, const std::string*> taken;
    for (const std::string& path : paths) {
        const PathFacts facts = FactsOf(path);
        if (facts.kind == PathFacts::Kind::Missing) {
            CheckFolderOf(path);
            continue;
        }
        if (facts.kind != PathFacts::Kind::File) throw Failure("cannot write {}: not a regular file", Printable(path));
        if (sources.contains(facts.file)) throw Failure("cannot write {}: it is the input", Printable(path));
        if (const auto [former, isNew] = taken.emplace(facts.file, &path); !isNew)
            throw Failure("cannot write {}: it is the same file as {}", Printable(path), Printable(*former->second));
    }
}

OutputFile::OutputFile(const std::string& path) : m_path(path), m_replacement(LibraryPath(path))
{
    if (!m_replacement.IsMade()) Fail();
    m_file = OpenFile(temporary(), FileHandle::Access::ReadWrite, "cannot write");
}

std::string OutputFile::temporary() const { return ZelmResult::PathToBytes(m_replacement.temporary()); }

void OutputFile::Commit()
{
    if (!m_file->Close()) throw Failure(SystemFailure("cannot write", m_path, LastSystemError()));
    if (!m_replacement.Commit()) Fail();
}

void OutputFile::Fail() const { throw Failure("cannot write {}: {}", Printable(m_path), m_replacement.reason()); }

} // namespace zmxf
