#pragma once

#include "zelmresult/storage/mmio_file.h"

namespace ZelmResult {

// While it lives, a chunk that was entered is the file's current one, in which nested readers search. Its destructor
// restores the former one.
class NestedChunk {
public:
    NestedChunk(CMmioFile& file, const OMMCKINFO& chunk)
        : m_file(file), m_chunk(chunk), m_former(file.CurrentMmckinfo())
    {
        m_file.CurrentMmckinfo(m_chunk);
    }
    NestedChunk(const NestedChunk&) = delete;
    NestedChunk& operator=(const NestedChunk&) = delete;
    ~NestedChunk() { m_file.CurrentMmckinfo(m_former); }

    // Leaves the chunk.
    [[nodiscard]] bool Exit() { return m_file.ExitChunk(m_chunk); }

private:
    CMmioFile& m_file;
    OMMCKINFO m_chunk;
    OMMCKINFO m_former;
};

// While it lives, a value that may hold others of its kind is being read or written.
class NestedValue {
public:
    static constexpr int kDeepest = 64;

    explicit NestedValue(CMmioFile& file) : m_file(file) { ++m_file.m_nestedValues; }
    NestedValue(const NestedValue&) = delete;
    NestedValue& operator=(const NestedValue&) = delete;
    ~NestedValue() { --m_file.m_nestedValues; }

    // Whether values may nest as deep as they do now; readers and writers stop when they may not.
    [[nodiscard]] bool IsLegal() const { return m_file.m_nestedValues <= kDeepest + 1; }

private:
    CMmioFile& m_file;
};

} // namespace ZelmResult
