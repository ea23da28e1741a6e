#include "zelmresult/support/large_memory.h"

#include <atomic>
#include <cstdint>
#include <new>
#include <sys/mman.h>

namespace ZelmResult {

namespace {

constexpr std::size_t kLargePage = std::size_t{2} * 1048576;
constexpr std::size_t kLeastFromSystem = 2 * kLargePage;

std::atomic<std::size_t> g_taken = 0;

// Begins at a large page.
float* Map(std::size_t bytes)
{
    const std::size_t mapped = bytes + kLargePage;
    void* const memory = ::mmap(nullptr, mapped, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (memory == MAP_FAILED) return nullptr;
    auto* const first = static_cast<char*>(memory);
    const std::size_t before = (kLargePage - reinterpret_cast<std::uintptr_t>(first) % kLargePage) % kLargePage;
    if (before > 0) (void)::munmap(first, before);
    char* const start = first + before;
    (void)::munmap(start + bytes, mapped - before - bytes);
#ifdef MADV_HUGEPAGE
    (void)::madvise(start, bytes, MADV_HUGEPAGE);
#endif
    return static_cast<float*>(static_cast<void*>(start));
}

// Whole large pages, of which small ones are a part.
std::size_t Rounded(std::size_t bytes) { return (bytes + kLargePage - 1) / kLargePage * kLargePage; }

} // namespace

LargeMemory AllocateZeros(std::size_t floats)
{
    const std::size_t bytes = floats * sizeof(float);
    if (bytes < kLeastFromSystem) return LargeMemory(new (std::nothrow) float[floats]());
    const std::size_t whole = Rounded(bytes);
    float* const memory = Map(whole);
    if (memory != nullptr) g_taken += whole;
    return {memory, FreeLargeMemory{whole}};
}

void FreeLargeMemory::operator()(float* memory) const
{
    if (bytes == 0) {
        delete[] memory;
    } else {
        (void)::munmap(memory, bytes);
        g_taken -= bytes;
    }
}

std::size_t LargeMemoryTaken() { return g_taken; }

} // namespace ZelmResult
