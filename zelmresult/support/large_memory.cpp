#include "zelmresult/support/large_memory.h"

#include "zelmresult/support/system_pages.h"

#include <atomic>
#include <new>

namespace ZelmResult {

namespace {

std::atomic<std::size_t> g_taken = 0;

} // namespace

LargeMemory AllocateZeros(std::size_t floats)
{
    const std::size_t bytes = floats * sizeof(float);
    if (bytes < LeastSystemPages) return LargeMemory(new (std::nothrow) float[floats]());
    const SystemPages pages = TakePages(bytes);
    g_taken += pages.bytes;
    return {static_cast<float*>(pages.start), FreeLargeMemory{pages.bytes}};
}

void FreeLargeMemory::operator()(float* memory) const
{
    if (bytes == 0) {
        delete[] memory;
    } else {
        ReturnPages({memory, bytes});
        g_taken -= bytes;
    }
}

std::size_t LargeMemoryTaken() { return g_taken; }

} // namespace ZelmResult
