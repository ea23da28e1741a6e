#pragma once

#include "bench/peers/case.h"

#include <cstddef>
#include <cstdint>
#include <vector>

// What the limits are made of: the calls that no store can do without.

namespace peers {

class PlainFile {
public:
    enum class Access { Create, Read };

    PlainFile(const Path& path, Access access);
    PlainFile(const PlainFile&) = delete;
    PlainFile& operator=(const PlainFile&) = delete;
    ~PlainFile();

    void WriteAt(std::size_t position, const void* bytes, std::size_t n) const;
    // As many as there are; the number that was read.
    std::size_t ReadAt(std::size_t position, void* bytes, std::size_t n) const;

private:
    int m_descriptor;
};

// Memory straight from the system: an allocator would hand out what the last job left in the cache.
class FreshMemory {
public:
    FreshMemory() = default;
    explicit FreshMemory(std::size_t size);
    FreshMemory(FreshMemory&& other) noexcept;
    FreshMemory& operator=(FreshMemory&& other) noexcept;
    ~FreshMemory();

    [[nodiscard]] char* data() const { return m_data; }
    [[nodiscard]] std::size_t size() const { return m_size; }

private:
    char* m_data = nullptr;
    std::size_t m_size = 0;
};

void WritePlainly(const Path& path, const std::vector<char>& bytes); // 1 MiB at a time
FreshMemory ReadPlainly(const Path& path);

// Walks over the chunks of a document from header to header, and copies those that say what a result is.
std::vector<std::vector<char>> WalkHeaders(const Path& path);

} // namespace peers
