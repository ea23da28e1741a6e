#pragma once

#include "tools/zmxf/damage/chunk_guess.h"
#include "tools/zmxf/damage/code_text.h"
#include "zelmresult/storage/chunk_kinds.h"

#include <cstdint>
#include <span>
#include <string>
#include <vector>

// The chunks of a file, damaged or not.

namespace zmxf {

struct Chunk {
    enum class State {
        Whole,
        Open,    // its size is 0, as in a save that died
        Cut,     // its size leads past what holds it, or to where no chunk begins
        Implied, // a list whose own header is lost
    };

    ChunkKind kind = ChunkKind::Unknown;
    State state = State::Whole;
    HeaderBytes header;
    std::int64_t offset = 0; // of the header
    std::int64_t data = 0;   // of what it holds, after the type of a list
    std::int64_t end = 0;    // of what is there of it, without the pad byte
    std::vector<Chunk> children;

    [[nodiscard]] bool IsWhole() const { return state == State::Whole; }
    // Fields or other bytes without a header.
    [[nodiscard]] bool IsBare() const { return header.code == 0; }
    // The fields of a node of settings, or bytes that are no chunk.
    [[nodiscard]] bool IsBareBytes() const { return IsBare() && kind == ChunkKind::Unknown; }
    // A chunk of a kind that this version doesn't know.
    [[nodiscard]] bool IsForeign() const { return !IsBare() && kind == ChunkKind::Unknown; }
    [[nodiscard]] std::uint32_t Name() const { return header.Name(); }
    // The bytes that it holds.
    [[nodiscard]] std::int64_t Size() const { return end - data; }
    // The first child of that kind, null without one.
    [[nodiscard]] const Chunk* Find(ChunkKind wanted) const;
};

// Something that is wrong, and where.
struct Damage {
    std::int64_t offset = 0;
    std::string text;
};

struct ChunkTree {
    Chunk root; // of the kind Unknown for a file that is no result document
    std::vector<Damage> damages;

    [[nodiscard]] bool IsResultDocument() const { return root.kind == ChunkKind::Document; }
};

// Walks all chunks. Where a size can't be right it continues at the next chunk that the format allows there. Costs time
// in proportion to the bytes.
ChunkTree ReadChunkTree(std::span<const char> bytes);

// Where the plain chunk that holds an offset ends; the greatest number when none does.
std::int64_t EndOfChunkAt(const Chunk& list, std::int64_t offset);
// The version of a list; the one that is written today where the list's own is damaged or lost.
std::uint16_t ListVersion(std::span<const char> bytes, const Chunk& list);
// Whether a node of settings, in a list of that version, says whether it is visible.
bool HoldsVisible(const Chunk& node, std::uint16_t version);
// The u16 that a chunk begins with, 0 when it is shorter.
std::uint16_t VersionIn(std::span<const char> bytes, const Chunk& chunk);

} // namespace zmxf
