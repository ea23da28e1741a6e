#pragma once

#include "tools/zmxf/damage/role.h"

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

    Role role = Role::Unknown;
    State state = State::Whole;
    ChunkHeader header;
    std::int64_t offset = 0; // of the header
    std::int64_t data = 0;   // of what it holds, behind the type of a list
    std::int64_t end = 0;    // of what is there of it, without the pad byte
    std::vector<Chunk> children;

    [[nodiscard]] bool IsWhole() const { return state == State::Whole; }
    // Fields or other bytes without a header.
    [[nodiscard]] bool IsBare() const { return header.code == 0; }
    [[nodiscard]] std::uint32_t Name() const { return header.Name(); }
    // The bytes that it holds.
    [[nodiscard]] std::int64_t Size() const { return end - data; }
    // The first child of that role, null without one.
    [[nodiscard]] const Chunk* Find(Role wanted) const;
};

// Something that is wrong, and where.
struct Damage {
    std::int64_t offset = 0;
    std::string text;
};

struct ChunkTree {
    Chunk root; // of the role Unknown for a file that is no result document
    std::vector<Damage> damages;

    [[nodiscard]] bool IsResultDocument() const { return root.role == Role::Root; }
};

// Walks all chunks. Where a size can't be believed it goes on at the next chunk that the format knows at that place.
// Costs time in proportion to the bytes.
ChunkTree ReadChunkTree(std::span<const char> bytes);

// The bytes of a file of at most 2 GiB. Throws Failure.
std::vector<char> ReadBytes(const std::string& path);

// "0x1F4"
std::string OffsetText(std::int64_t offset);
// The u32 at an offset, 0 when the file ends before its end.
std::uint32_t NumberAt(std::span<const char> bytes, std::int64_t offset);
// Where the plain chunk that holds an offset ends; the greatest number when none does.
std::int64_t EndOfChunkAt(const Chunk& list, std::int64_t offset);
// The version of a list; the one that is written today where the list's own is damaged or lost.
std::uint16_t ListVersion(std::span<const char> bytes, const Chunk& list);
// The u16 that a chunk begins with, 0 when it is shorter.
std::uint16_t VersionIn(std::span<const char> bytes, const Chunk& chunk);

} // namespace zmxf
