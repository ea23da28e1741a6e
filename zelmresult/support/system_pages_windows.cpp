#include "zelmresult/support/system_pages.h"

#include <windows.h>

namespace ZelmResult {

const std::size_t LeastSystemPages = std::size_t{4} * 1048576;

// Large pages need a privilege that few users have.
SystemPages TakePages(std::size_t bytes)
{
    void* const start = VirtualAlloc(nullptr, bytes, MEM_RESERVE | MEM_COMMIT, PAGE_READWRITE);
    return {start, start != nullptr ? bytes : 0};
}

void ReturnPages(const SystemPages& pages) { (void)VirtualFree(pages.start, 0, MEM_RELEASE); }

} // namespace ZelmResult
