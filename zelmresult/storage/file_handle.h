#pragma once

#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

namespace ZelmResult {

// A file as the operating system gives it: bytes at positions. The one part of the storage that differs between
// platforms; tests implement it over memory.
class FileHandle {
public:
    // Create truncates an existing file. Scratch empties an existing file that has only one name, belongs to this user
    // and isn't reached by a link, and removes the name, so that the file ends with the handle.
    enum class Access { Read, ReadWrite, Create, Scratch };

    FileHandle() = default;
    FileHandle(const FileHandle&) = delete;
    FileHandle& operator=(const FileHandle&) = delete;
    virtual ~FileHandle() = default; // closes

    // Regular files only. A path that is empty or holds a NUL fails.
    virtual bool Open(const wstring& path, Access access) = 0;
    // Bytes read, fewer than count only at the end of the file; -1 on error.
    virtual std::int64_t ReadAt(std::int64_t position, char* buffer, std::size_t count) = 0;
    // All bytes or false.
    virtual bool WriteAt(std::int64_t position, const char* buffer, std::size_t count) = 0;
    // These bytes are no longer needed: the device may drop them, and later reads may return anything.
    virtual void Discard(std::int64_t /*position*/, std::int64_t /*count*/) {}
    // -1 on error.
    virtual std::int64_t Size() = 0;
    virtual bool Close() = 0;
};

using FileHandleFactory = std::function<std::unique_ptr<FileHandle>()>;

// A closed handle to a file of this platform.
std::unique_ptr<FileHandle> MakePlatformFileHandle();

} // namespace ZelmResult
