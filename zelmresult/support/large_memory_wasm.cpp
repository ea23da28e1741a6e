#include "zelmresult/support/large_memory.h"

#include <new>

namespace ZelmResult {

// All memory is one block that the process has from the browser, so large arrays come from new as well.

LargeMemory AllocateZeros(std::size_t floats) { return LargeMemory(new (std::nothrow) float[floats]()); }

void FreeLargeMemory::operator()(float* memory) const { delete[] memory; }

std::size_t LargeMemoryTaken() { return 0; }

} // namespace ZelmResult
