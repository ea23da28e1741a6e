#pragma once

#include "tools/zmxf/damage/chunk_tree.h"
#include "zelmresult/storage/chunk_kinds.h"

#include <cstdint>
#include <span>
#include <string>

// Where in the bytes of a damaged file chunks may begin.

namespace zmxf {

inline constexpr std::int64_t kHeaderSize = 8;

// Where the sibling after a chunk begins: sizes are rounded up to even.
inline std::int64_t Padded(std::int64_t end, std::int64_t begin) { return end + ((end - begin) & 1); }

// A list that is being walked, inside the one that holds it.
struct WalkedList {
    Chunk& list;
    mutable std::int64_t limit; // where it ends at the latest
    const WalkedList* outer;

    [[nodiscard]] ChunkKind Previous() const
    {
        return list.children.empty() ? ChunkKind::Unknown : list.children.back().kind;
    }
    [[nodiscard]] ChunkKind KindHere(const HeaderBytes& header) const { return KindIn(list.kind, header, Previous()); }
    // Whether one of the lists around this one has a place for the chunk.
    [[nodiscard]] bool BelongsOutside(const HeaderBytes& header) const;
    // Whether the chunk has a place here, in a list around this one, or in one that is missing.
    [[nodiscard]] bool Knows(const HeaderBytes& header) const;
    [[nodiscard]] std::string Path() const;
    [[nodiscard]] const Chunk& Root() const { return outer != nullptr ? outer->Root() : list; }
};

// Looks for headers in bytes, which are lent. The answers depend on the list that is being walked.
class ChunkSearch {
public:
    explicit ChunkSearch(std::span<const char> bytes) : m_bytes(bytes) {}

    [[nodiscard]] std::int64_t Size() const { return static_cast<std::int64_t>(m_bytes.size()); }
    [[nodiscard]] HeaderBytes HeaderAt(std::int64_t offset) const;
    // Whether the chunk ends within the limit. An open list, which says no end, may be anywhere.
    static bool Fits(const HeaderBytes& header, std::int64_t offset, std::int64_t limit)
    {
        return offset + kHeaderSize + std::int64_t{header.size} <= limit;
    }
    // Whether it is the size of a chunk that was left; that of others is 0.
    static bool IsSize(const HeaderBytes& header) { return header.size >= (header.IsList() ? 4U : 1U); }
    // An empty chunk differs from one that a save never left: another chunk follows it at once, or the end of a list
    // that is whole.
    [[nodiscard]] bool IsEmpty(const WalkedList& place, const HeaderBytes& header, std::int64_t offset) const;
    // Whether there is a code that can be printed, and a size that fits.
    [[nodiscard]] bool IsChunkLike(const WalkedList& place, std::int64_t offset) const;
    // Whether a chunk may begin there: the end of the list does as well.
    [[nodiscard]] bool MayBegin(const WalkedList& place, std::int64_t offset) const;
    // The next chunk that the format knows here, in one of the lists around, or in one that would be missing.
    [[nodiscard]] std::int64_t FindKnown(const WalkedList& place, std::int64_t from, std::int64_t limit) const;
    // A list whose head is damaged, as what it is by its type or by its first child; of code 0 for something else.
    [[nodiscard]] HeaderBytes MendedList(const WalkedList& place, const HeaderBytes& header, std::int64_t offset) const;

private:
    std::span<const char> m_bytes;
};

} // namespace zmxf
