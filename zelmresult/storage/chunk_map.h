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
        return m_places.Find(static_cast<std::uint64_t>(position), PositionOf{*this});
    }
    // The node after another, kNone or kUnknown.
    [[nodiscard]] std::uint32_t After(std::uint32_t node) const { return m_nodes[node].next; }
    void SetAfter(std::uint32_t node, std::uint32_t next) { m_nodes[node].next = next; }
    // Adds a header whose position is unknown; before is the node that it follows, if that is known.
    std::uint32_t Add(const ChunkHeader& header, std::uint32_t before = kUnknown);
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
    // What is searched for in a chain, as one number; and the further nodes that have it.
    using CodeKey = std::uint64_t;
    struct Repeats {
        CodeKey key;
        std::vector<std::uint32_t> nodes;
    };
    struct PositionOf {
        const ChunkMap& map;
        std::uint64_t operator()(std::uint32_t node) const { return map.m_nodes[node].header.position; }
    };

    static CodeKey KeyOf(std::uint32_t chain, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
    {
        return (CodeKey{chain} << 8U | flag) << 32U | code;
    }
    // As a chunk of any kind, and as a list or form.
    [[nodiscard]] CodeKey CodeOf(std::uint32_t node) const;
    [[nodiscard]] CodeKey TypeOf(std::uint32_t node) const;
    [[nodiscard]] std::uint32_t FirstOf(CodeKey key, bool isType) const;
    [[nodiscard]] std::uint32_t RepeatsOf(CodeKey key) const;
    [[nodiscard]] std::uint32_t ChainFor(const ChunkHeader& header, std::uint32_t before) const;
    void CodeChain(std::uint32_t chain);
    void AddCode(std::uint32_t node, bool isType);

    std::vector<Node> m_nodes;
    std::vector<Chain> m_chains;
    FlatTable m_places;       // nodes by position
    FlatTable m_firstOfCode;  // the first node of each code in a chain; nearly every code occurs once
    FlatTable m_firstOfType;  // the same for the types of lists and forms
    FlatTable m_repeatsOfKey; // numbers in m_repeats
    std::vector<Repeats> m_repeats;
};

} // namespace ZelmResult
