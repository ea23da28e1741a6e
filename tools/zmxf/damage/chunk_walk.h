#pragma once

#include "tools/zmxf/damage/chunk_tree.h"

#include <span>

namespace zmxf {

// Walks all chunks. Where a size can't be believed it goes on at the next chunk that the format knows at that place.
// Costs time in proportion to the bytes.
ChunkTree ReadChunkTree(std::span<const char> bytes);

} // namespace zmxf
