#pragma once

#include <cstddef>
#include <cstring>

namespace ZelmResult {

// The bytes around the position of a backend that it holds in memory. Code that was lent the cursor takes or puts bytes
// there without a call, which moves the position; the backend works its position out from the pointers. At most one of
// the two ranges isn't empty. Both are when the position is elsewhere or the file is closed.
class ByteCursor {
public:
    // False, and nothing done, when the bytes must go through the backend. No bytes always do: the count of 0 wraps.
    bool Take(void* to, std::size_t count)
    {
        if (count - 1 >= static_cast<std::size_t>(readEnd - read)) return false;
        std::memcpy(to, read, count);
        read += count;
        return true;
    }
    bool Put(const void* from, std::size_t count)
    {
        if (count - 1 >= static_cast<std::size_t>(writeEnd - write)) return false;
        std::memcpy(write, from, count);
        write += count;
        return true;
    }

    const char* read = nullptr;
    const char* readEnd = nullptr;
    char* write = nullptr;
    char* writeEnd = nullptr;
};

} // namespace ZelmResult
