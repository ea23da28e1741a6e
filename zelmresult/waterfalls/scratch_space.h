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

// The temporary file that all slices on disk share, so that waterfalls cost no descriptors. It has no name any more and
// ends with the last of those who use it, also after a crash. What is given back leaves the disk, where the platform
// can do that, and its place is used again.
//
// A process that was forked shares the file and not the books: it reads what was there, and gets no part, writes
// nothing and gives nothing back.
//
// Threads  may use different parts of it at the same time.
class ScratchSpace {
public:
    // Shared by all who ask while it lives. A process that was forked, and one that has moved its folder for temporary
    // files, gets another. Null when no file can be made there.
    static std::shared_ptr<ScratchSpace> Shared();
    // Replaces what opens files from now on, and gives the former one. For tests.
    static FileHandleFactory SetHandles(FileHandleFactory makeHandle);

    ScratchSpace(std::unique_ptr<FileHandle> handle, std::string directory);

    // A part of that many bytes, its position; -1 when there is no memory for the books. What it reads as before it is
    // written is nobody's promise.
    std::int64_t Take(std::int64_t bytes);
    // A part as it was taken.
    void GiveBack(std::int64_t position, std::int64_t bytes);
    // All bytes, or false.
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
    std::mutex m_mutex; // of the books below
    std::int64_t m_end = 0;
    std::map<std::int64_t, std::int64_t> m_holes;                  // position, bytes; no two touch
    std::set<std::pair<std::int64_t, std::int64_t>> m_holesBySize; // bytes, position
};

} // namespace ZelmResult
