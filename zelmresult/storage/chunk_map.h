#pragma once

#include "zelmresult/storage/chunk_header.h"
#include "zelmresult/storage/flat_table.h"

#include <cstdint>
#include <vector>

namespace ZelmResult {

// The chunk headers that searches in a file have seen, as a value: another open of the same file may begin with it.
// Internal to the storage.
//
// The header that follows another depends only on the offset of that one, so headers form chains. A chain grows while
// searches walk it. One that reaches a known header joins that header's chain.
class ChunkMap {
public:
    static constexpr std::uint32_t kUnknown = 0xFFFFFFFF; // not read yet
    static constexpr std::uint32_t kNone = 0xFFFFFFFE;    // no header

    [[nodiscard]] std::size_t size() const { return m_nodes.size(); }
    [[nodiscard]] const ChunkHeader& header(std::uint32_t node) const { return m_nodes[node].header; }
    // The node at a position, or kUnknown.
    [[nodiscard]] std::uint32_t At(std::int64_t position) const
    {
        return m_places.Find(static_cast<std::uint32_t>(position));
    }
    // The node after another, kNone or kUnknown.
    [[nodiscard]] std::uint32_t After(std::uint32_t node) const { return m_nodes[node].next; }
    void SetAfter(std::uint32_t node, std::uint32_t next) { m_nodes[node].next = next; }
    // Adds a header whose position is unknown.
    std::uint32_t Add(const ChunkHeader& header);
    // The node in this chain, after the given one, from which a search continues: the next match that is known, or the
    // last of the chain when there is none.
    std::uint32_t NextMatchOrLast(std::uint32_t node, const ChunkSearch& search);

private:
    static constexpr std::size_t kGrowingChains = 8; // chains that a search from after their last header can extend

    struct Node {
        ChunkHeader header;
        std::uint32_t chain;
        std::uint32_t next;
    };
    struct Chain {
        std::uint32_t tail = 0;
        std::uint32_t firstUncoded = 0; // its first node that the tables of codes don't know yet
    };
    using CodeKey = std::uint64_t;

    static CodeKey KeyOf(std::uint32_t chain, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
    {
        return (CodeKey{chain} << 8U | flag) << 32U | code;
    }
    [[nodiscard]] std::uint32_t ChainGrowingTo(std::int64_t position) const;
    void CodeChain(std::uint32_t chain);
    void AddCode(std::uint32_t node, OMMIO_DESCEND_FLAG flag, std::uint32_t code);

    std::vector<Node> m_nodes;
    std::vector<Chain> m_chains;
    FlatTable<std::uint32_t> m_places; // position to the node there
    FlatTable<CodeKey> m_firsts;       // chain and code to the first such node; nearly every code occurs once
    FlatTable<CodeKey> m_repeats;      // chain and code to the list of the further nodes
    std::vector<std::vector<std::uint32_t>> m_further;
};

} // namespace ZelmResult
