#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

namespace ZelmResult {

// Which file it is, and its state: equal for the same file that nobody changed.
struct FileStamp {
    std::uint64_t device = 0;
    std::uint64_t number = 0; // on the device
    std::int64_t size = 0;
    std::int64_t modified = 0; // nanoseconds
    std::int64_t changed = 0;  // nanoseconds

    bool operator==(const FileStamp&) const = default;
};

// A file as the operating system gives it: bytes at positions. The one part of the storage that differs between
// platforms; tests implement it over memory.
class FileHandle {
public:
    // Create truncates an existing file. Scratch empties an existing file that has only one name, isn't reached by a
    // link and, on POSIX systems, belongs to this user, and removes the name, so that the file ends with the handle.
    enum class Access { Read, ReadWrite, Create, Scratch };

    FileHandle() = default;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    virtual ~FileHandle() = default; // closes

    // Regular files only. A path that is empty or holds a NUL fails. After false the handles of the platform have a
    // LastSystemError() only where the system said why.
    virtual bool Open(const wstring& path, Access access) = 0;
    // Bytes read, fewer than count only at the end of the file; -1 on error.
    virtual std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) = 0;
    // All bytes or false.
    virtual bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) = 0;
    // These bytes are no longer needed: the device may drop them, and later reads may return anything.
    virtual void Discard(std::int64_t /*position*/, std::int64_t /*count*/) {}
    // -1 on error.
    virtual std::int64_t Size() = 0;
    // Empty, as here, where there is none, and when the file changed so recently that another change may leave the
    // times alone.
    virtual std::optional<FileStamp> Stamp() { return std::nullopt; }
    // When somebody wrote to it last, in seconds since 1970-01-01 00:00:00 UTC; empty, as here, where that isn't known.
    virtual std::optional<std::int64_t> ModifiedAt() { return std::nullopt; }
    virtual bool Close() = 0;
};

using FileHandleFactory = std::function<std::unique_ptr<FileHandle>()>;

// A closed handle to a file of this platform.
std::unique_ptr<FileHandle> MakePlatformFileHandle();

} // namespace ZelmResult
