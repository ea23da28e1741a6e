#pragma once

#include "tools/zmxf/damage/chunk_tree.h"
#include "zelmresult/storage/chunk_kinds.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace zmxf {

// Four other bytes for those at an offset of the source.
using Patches = std::map<std::int64_t, std::array<char, 4>>;

// What of a damaged document goes into the new one. The chunks are those of its tree, lent.
struct SalvagePlan {
    // A result of which header and data are whole.
    struct Result {
        const Chunk* header;
        const Chunk* data;
        std::uint32_t code; // of the data in the new document
        std::string name;
        bool isPreview;
    };
    // What stood in lists of a lost head counts for the system in front.
    struct System {
        std::vector<const Chunk*> parts; // lists of systems
        std::vector<Result> results;

        [[nodiscard]] std::vector<const Chunk*> All(ChunkKind kind) const
        {
            std::vector<const Chunk*> found;
            for (const Chunk* part : parts)
                for (const Chunk& child : part->children)
                    if (child.kind == kind) found.push_back(&child);
            return found;
        }
    };

    std::map<std::size_t, const Chunk*> quantities; // by number
    std::size_t quantityCount = 0;                  // at least: those that aren't there get a name without a unit
    std::vector<System> systems;
    std::set<const Chunk*> givenUp;  // whole, but can't be read
    std::set<const Chunk*> misnamed; // lists of settings under another code than their identifier's
    std::set<ChunkKind> leftOut;     // branches that keep the rest from being loaded
    Patches patches;
    std::size_t foundQuantities = 0;
    std::size_t foundResults = 0;

    [[nodiscard]] std::size_t QuantityCount() const
    {
        return std::max(quantityCount, quantities.empty() ? 0 : quantities.rbegin()->first + 1);
    }
    [[nodiscard]] bool IsKept(const Chunk& chunk) const { return chunk.IsWhole() && !givenUp.contains(&chunk); }
};

} // namespace zmxf
