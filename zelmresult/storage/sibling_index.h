#pragma once

#include "zelmresult/storage/buffered_file.h"

#include <cstdint>
#include <optional>
#include <unordered_map>
#include <vector>

namespace ZelmResult {

// The header of a chunk as it is in the file. Internal to the storage.
struct ChunkHeader {
    std::uint32_t position = 0;
    std::uint32_t ckid = 0;
    std::uint32_t cksize = 0;
    std::uint32_t fccType = 0; // 0 for a plain chunk

    [[nodiscard]] bool HasFormType() const;
    [[nodiscard]] std::uint32_t Length() const { return HasFormType() ? 12 : 8; }
    // Where the next sibling is. The size is rounded up to even, not the sum.
    [[nodiscard]] std::int64_t Next() const
    {
        return std::int64_t{position} + 8 + ((std::int64_t{cksize} + 1) & ~std::int64_t{1});
    }
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

// Positions with a number each, in one array of slots, since searches look up a position at every step.
class PositionTable {
public:
    static constexpr std::uint32_t kAbsent = 0xFFFFFFFF;

    [[nodiscard]] std::uint32_t Find(std::uint32_t position) const;
    // The position must be absent.
    void Add(std::uint32_t position, std::uint32_t number);

private:
    struct Slot {
        std::uint32_t position = 0;
        std::uint32_t number = kAbsent;
    };
    [[nodiscard]] std::size_t SlotOf(std::uint32_t position) const;
    void Grow();

    std::vector<Slot> m_slots; // a power of two, at most half of it used
    std::size_t m_used = 0;
};

// Searches among siblings with a memory of the headers seen so far, so that fetching n chunks of a list by code costs
// n header reads and not n * n. Every answer is that of SiblingWalk, and no header is read that the walk wouldn't read.
//
// The header that follows another depends only on the offset of that one, so headers form chains. A chain grows while
// searches walk it. One that reaches a known header joins that header's chain. A search first looks at the next few
// headers, which suits one that continues from its last hit, and only then looks up the code's places in the chain.
class SiblingIndex {
public:
    explicit SiblingIndex(BufferedFile& file) : m_file(file) {}

    std::optional<ChunkHeader> Find(const ChunkSearch& search);
    // Beyond a million headers the index gives up: from then on, that last search included, only the walk answers.
    [[nodiscard]] bool IsFull() const { return m_nodes.size() >= kMostNodes; }

private:
    static constexpr std::size_t kMostNodes = 1000000;
    static constexpr std::uint32_t kUnknown = 0xFFFFFFFF; // the header after this one wasn't read yet
    static constexpr std::uint32_t kNone = 0xFFFFFFFE;    // no header follows
    static constexpr int kStepsBeforeLookup = 4;
    static constexpr std::size_t kGrowingChains = 8; // chains that a search from after their last header can extend

    struct Node {
        ChunkHeader header;
        std::uint32_t chain;
        std::uint32_t next;
    };
    struct Chain {
        std::uint32_t tail = 0;
        std::uint32_t firstUncoded = 0; // its first node that m_codes doesn't know yet
    };
    struct CodeKey {
        std::uint32_t chain;
        std::uint32_t flag;
        std::uint32_t code;
        bool operator==(const CodeKey&) const = default;
    };
    struct CodeKeyHash {
        std::size_t operator()(const CodeKey& key) const;
    };
    struct Places { // the nodes of one code in one chain, by position; nearly every code occurs once
        std::uint32_t first;
        std::vector<std::uint32_t> more;
    };

    std::uint32_t NodeAt(std::int64_t position);
    std::uint32_t AddNode(const ChunkHeader& header, std::uint32_t chain);
    [[nodiscard]] std::uint32_t ChainGrowingTo(std::int64_t position) const;
    std::uint32_t Behind(std::uint32_t node, const ChunkSearch& search);
    std::uint32_t NearestKnown(std::uint32_t node, const ChunkSearch& search);
    void CodeChain(std::uint32_t chain);
    void AddCode(std::uint32_t node, OMMIO_DESCEND_FLAG flag, std::uint32_t code);

    BufferedFile& m_file;
    std::vector<Node> m_nodes;
    std::vector<Chain> m_chains;
    PositionTable m_places; // position to the node there
    std::unordered_map<CodeKey, Places, CodeKeyHash> m_codes;
};

} // namespace ZelmResult
