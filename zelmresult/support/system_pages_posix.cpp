#include "zelmresult/support/system_pages.h"

#include <cstdint>
#include <sys/mman.h>

namespace ZelmResult {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} * 1048576;

} // namespace

const std::size_t LeastSystemPages = 2 * kLargePage;

// They begin at a large page and are whole large ones, of which small ones are a part.
SystemPages TakePages(std::size_t bytes)
{
    const std::size_t whole = (bytes + kLargePage - 1) / kLargePage * kLargePage;
    const std::size_t mapped = whole + kLargePage;
    void* const memory = ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return {};
    auto* const first = static_cast<char*>(memory);
    const std::size_t before = (kLargePage - reinterpret_cast<std::uintptr_t>(first) % kLargePage) % kLargePage;
    if (before > 0) (void)::munmap(first, before);
    char* const start = first + before;
    (void)::munmap(start + whole, mapped - before - whole);
#ifdef MADV_HUGEPAGE
    (void)::madvise(start, whole, MADV_HUGEPAGE);
#endif
    return {start, whole};
}

void ReturnPages(const SystemPages& pages) { (void)::munmap(pages.start, pages.bytes); }

} // namespace ZelmResult
