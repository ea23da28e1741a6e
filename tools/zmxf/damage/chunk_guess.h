#pragma once

#include "zelmresult/storage/chunk_kinds.h"

#include <cstdint>

// What the bytes at a place of a damaged file are, or were before something happened to them. The codes and the places
// of chunks are the library's; what to make of those that fit nowhere is decided here.

namespace zmxf {

using ZelmResult::ChunkKind;

// The eight bytes before what a chunk holds, and the type of a list.
struct HeaderBytes {
    std::uint32_t code = 0;
    std::uint32_t size = 0;
    std::uint32_t form = 0; // 0 for a plain chunk

    [[nodiscard]] bool IsList() const { return form != 0; }
    // The bytes before what it holds.
    [[nodiscard]] std::int64_t Length() const { return IsList() ? 12 : 8; }
    // The code of a plain chunk, the type of a list.
    [[nodiscard]] std::uint32_t Name() const { return IsList() ? form : code; }
};

bool IsList(ChunkKind kind);
// Of a list with fields before its chunks: a node of settings.
bool IsNode(ChunkKind kind);

// What a chunk in a list is. previous is the kind of the sibling before it, Unknown for none: a value of a setting is
// one only right after its key.
ChunkKind KindIn(ChunkKind list, const HeaderBytes& header, ChunkKind previous);
// The list that is missing around a chunk that is directly in list; Unknown when none would help.
ChunkKind MissingListAround(ChunkKind list, const HeaderBytes& header);
// The header of such a list, of the first number where lists are numbered; of code 0 for nodes of settings.
HeaderBytes FirstHeaderOf(ChunkKind list, std::uint32_t size);
// The kind of list inside of list that has a place for child right after its version; Unknown for none.
ChunkKind ListThatHolds(ChunkKind list, const HeaderBytes& child);
// The code that a plain chunk has except for one bit; its own when the format knows no such code in that place.
std::uint32_t MendedCode(ChunkKind list, const HeaderBytes& header, ChunkKind previous);

} // namespace zmxf
