#pragma once

#include "zelmresult/support/large_memory.h"

#include <algorithm>
#include <cstddef>
#include <cstdlib>
#include <malloc.h>
#include <new>

// Counts what a program holds by new, and the large memory of slices. Only one source of a program may include this: it
// replaces the operators.

namespace {

std::size_t SizeOf(void* memory) noexcept
{
#ifdef _WIN32
    return _msize(memory);
#else
    return malloc_usable_size(memory);
#endif
}

// Bytes that this program holds by new, the most it held since the last mark, and how often it allocated.
std::size_t g_held = 0;
std::size_t g_most = 0;
std::size_t g_allocations = 0;

void* Allocate(std::size_t size) noexcept
{
    void* memory = std::malloc(size);
    ++g_allocations;
    if (memory != nullptr) g_held += SizeOf(memory);
    g_most = std::max(g_most, g_held + ZelmResult::LargeMemoryTaken());
    return memory;
}
void* AllocateOrThrow(std::size_t size)
{
    if (void* memory = Allocate(size); memory != nullptr) return memory;
    throw std::bad_alloc();
}
void Free(void* memory) noexcept
{
    if (memory != nullptr) g_held -= SizeOf(memory);
    std::free(memory);
}

} // namespace

void* operator new(std::size_t size) { return AllocateOrThrow(size); }
void* operator new[](std::size_t size) { return AllocateOrThrow(size); }
void* operator new(std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Allocate(size); }
void* operator new[](std::size_t size, const std::nothrow_t& /*tag*/) noexcept { return Allocate(size); }
void operator delete(void* memory) noexcept { Free(memory); }
void operator delete[](void* memory) noexcept { Free(memory); }
void operator delete(void* memory, std::size_t /*size*/) noexcept { Free(memory); }
void operator delete[](void* memory, std::size_t /*size*/) noexcept { Free(memory); }
