#pragma once

#include "zelmresult/storage/mmio_file.h"

namespace ZelmResult {

// As long as it lives, a chunk that was entered is the file's current one, in which nested readers search. The former
// one comes back with its end, on whatever way out.
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

// As long as it lives, a value that may hold others of its kind is being read or written.
class NestedValue {
public:
    static constexpr int kDeepest = 64;

    explicit NestedValue(CMmioFile& file) : m_file(file) { ++m_file.m_nestedValues; }
    NestedValue(const NestedValue&) = delete;
    NestedValue& operator=(const NestedValue&) = delete;
    ~NestedValue() { --m_file.m_nestedValues; }

    // Whether values may nest so deep, the innermost one inside of all that hold others; neither reader nor writer goes
    // on when they don't.
    [[nodiscard]] bool IsLegal() const { return m_file.m_nestedValues <= kDeepest + 1; }

private:
    CMmioFile& m_file;
};

} // namespace ZelmResult
