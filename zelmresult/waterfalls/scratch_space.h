#pragma once

#include "zelmresult/storage/file_handle.h"

#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

namespace ZelmResult {

// The temporary file that all slices on disk share, so that waterfalls cost no descriptors. It has no name, and ends
// with its last user, also after a crash. Parts that are given back free their disk space, where the platform can do
// that, and are used again.
//
// A forked process shares the file but not its state: it reads what was there, gets no part, writes nothing and gives
// nothing back.
//
// Threads  may use different parts of it at the same time.
class ScratchSpace {
public:
    // Shared by all callers while it lives. After a fork, or when the folder for temporary files changed, it is another
    // one. Null when no file can be made there.
    static std::shared_ptr<ScratchSpace> Shared();
    // Replaces the function that opens files, and gives the former one. For tests.
    static FileHandleFactory SetHandles(FileHandleFactory makeHandle);

    ScratchSpace(std::unique_ptr<FileHandle> handle, std::string directory);

    // Takes a part of that many bytes and returns its position; -1 when there is no memory to manage it. Its content is
    // undefined until it is written.
    std::int64_t Take(std::int64_t bytes);
    // Returns a whole part.
    void GiveBack(std::int64_t position, std::int64_t bytes);
    // Reads or writes all bytes, or returns false.
    bool Read(std::int64_t position, float* values, std::size_t count);
    bool Write(std::int64_t position, const float* values, std::size_t count);

private:
    [[nodiscard]] bool IsOwnProcess() const;
    [[nodiscard]] bool IsFor(const std::string& directory) const;
    void Remember(std::int64_t position, std::int64_t bytes);
    void Forget(std::map<std::int64_t, std::int64_t>::iterator hole);

    const std::unique_ptr<FileHandle> m_handle;
    const std::string m_directory;
    const std::uint64_t m_process;
    std::mutex m_mutex; // guards the members below
    std::int64_t m_end = 0;
    std::map<std::int64_t, std::int64_t> m_holes;                  // position, bytes; no two touch
    std::set<std::pair<std::int64_t, std::int64_t>> m_holesBySize; // bytes, position
};

} // namespace ZelmResult
