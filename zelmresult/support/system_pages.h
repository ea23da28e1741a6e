#pragma once

#include <cstddef>

namespace ZelmResult {

// Memory straight from the system, in whole pages, large ones where the system has them.
struct SystemPages {
    void* start = nullptr; // null without memory
    std::size_t bytes = 0;
};

// From how many bytes on pages are worth it.
extern const std::size_t LeastSystemPages;

// At least that many bytes, all zero. They take memory only as far as they are written to.
SystemPages TakePages(std::size_t bytes);
void ReturnPages(const SystemPages& pages);

} // namespace ZelmResult
