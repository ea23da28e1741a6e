#pragma once

#include "zelmresult/storage/buffered_file.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio.h"

#include <cstdint>
#include <optional>

namespace ZelmResult {

// The header of a chunk as it is in the file. Internal to the storage.
struct ChunkHeader {
    std::uint32_t position = 0;
    std::uint32_t ckid = 0;
    std::uint32_t cksize = 0;
    std::uint32_t fccType = 0; // 0 for a plain chunk

    [[nodiscard]] bool HasFormType() const { return ckid == kCodeRiff || ckid == kCodeList; }
    [[nodiscard]] std::uint32_t Length() const { return HasFormType() ? 12 : 8; }
    // Where the next sibling is. The size is rounded up to even, not the sum.
    [[nodiscard]] std::int64_t Next() const
    {
        return std::int64_t{position} + 8 + ((std::int64_t{cksize} + 1) & ~std::int64_t{1});
    }
    bool operator==(const ChunkHeader&) const = default;
};

// What a search looks for.
struct ChunkSearch {
    std::int64_t start = 0;
    std::int64_t end = 0; // of the parent's data, or above every position when there is no parent
    OMMIO_DESCEND_FLAG flag = OMMIO_FINDNEXT;
    std::uint32_t code = 0;

    [[nodiscard]] bool Matches(const ChunkHeader& header) const;
    // A header that would cross the end is none; one that just fits is an empty chunk.
    [[nodiscard]] bool Holds(std::int64_t position, std::uint32_t length) const { return position + length <= end; }
};

// Reads the header at a position. Empty when the file ends within it.
std::optional<ChunkHeader> ReadChunkHeader(BufferedFile& file, std::int64_t position);

// Searches among siblings by reading header after header.
class SiblingWalk {
public:
    explicit SiblingWalk(BufferedFile& file) : m_file(file) {}
    std::optional<ChunkHeader> Find(const ChunkSearch& search);
    // From now on all searches together visit at most a small multiple of the file's size: in a file of millions of
    // empty chunks, not every search may visit them all.
    void LimitVisits();

private:
    BufferedFile& m_file;
    std::int64_t m_visitsLeft = INT64_MAX;
};

} // namespace ZelmResult
