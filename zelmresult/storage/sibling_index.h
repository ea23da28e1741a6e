#pragma once

#include "zelmresult/storage/chunk_map.h"

#include <cstdint>
#include <optional>

namespace ZelmResult {

// Searches among siblings with a memory of the headers seen so far, so that fetching n chunks of a list by code costs
// n header reads and not n * n. Every answer is that of SiblingWalk, and no header is read that the walk wouldn't read.
// Internal to the storage.
//
// A search first looks at the next few headers, which suits one that continues from its last hit, and only then looks
// up the code's places in the chain. One whose first header matches notes nothing.
class SiblingIndex {
public:
    // kept is what an earlier index of the same file, in the same state, knew. Each header that it finds is read again
    // before it is given, and all of it is dropped when one is another. That a header isn't there, it is trusted.
    explicit SiblingIndex(BufferedFile& file, ChunkMap kept = {})
        : m_file(file), m_map(std::move(kept)), m_kept(m_map.size())
    {
    }

    std::optional<ChunkHeader> Find(const ChunkSearch& search);
    // Beyond a million headers the index gives up: from then on, that last search included, only the walk answers.
    [[nodiscard]] bool IsFull() const { return m_map.size() >= kMostNodes; }
    // Gives what it knows.
    ChunkMap Release() { return std::move(m_map); }

private:
    static constexpr std::size_t kMostNodes = 1000000;
    static constexpr int kStepsBeforeLookup = 4;

    [[nodiscard]] bool IsStillThere(std::uint32_t node);
    std::uint32_t NodeAt(std::int64_t position, std::uint32_t before);
    std::uint32_t After(std::uint32_t node, const ChunkSearch& search);
    std::uint32_t FindNode(std::uint32_t node, const ChunkSearch& search);
    std::optional<ChunkHeader> FindFromNode(std::uint32_t first, const ChunkSearch& search);
    std::optional<ChunkHeader> FindFromUnknown(const ChunkSearch& search); // the header at its start wasn't read yet

    BufferedFile& m_file;
    ChunkMap m_map;
    std::size_t m_kept; // nodes that were read by an earlier index
};

} // namespace ZelmResult
