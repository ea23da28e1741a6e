#pragma once

#include <cstddef>
#include <memory>

namespace ZelmResult {

// Floats in one block. A large one comes straight from the system, on large pages where the system has them, and takes
// memory only as far as it is written to.
struct FreeLargeMemory {
    std::size_t bytes = 0;
    void operator()(float* memory) const;
};
using LargeMemory = std::unique_ptr<float[], FreeLargeMemory>;

// Zeros; null without memory.
LargeMemory AllocateZeros(std::size_t floats);
// The bytes that the process has from the system in this way, not by new.
std::size_t LargeMemoryTaken();

} // namespace ZelmResult
