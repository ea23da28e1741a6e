#include "zelmresult/storage/chunk_map.h"

#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>

namespace ZelmResult {

std::uint32_t ChunkMap::Add(const ChunkHeader& header, std::uint32_t before)
{
    const auto node = static_cast<std::uint32_t>(m_nodes.size());
    const std::uint32_t chain = ChainFor(header, before);
    m_nodes.push_back({header, chain, kUnknown});
    m_places.Add(header.position, node, PositionOf{*this});
    if (chain == m_chains.size()) {
        m_chains.push_back({node, node});
        return node;
    }
    m_nodes[m_chains[chain].tail].next = node;
    m_chains[chain].tail = node;
    if (m_chains[chain].firstUncoded == kUnknown) m_chains[chain].firstUncoded = node;
    return node;
}

// The chain whose last header is followed by this one, or a new one. Without that header only the newest chains are
// asked: an older one that grows again meets the new one and joins it.
std::uint32_t ChunkMap::ChainFor(const ChunkHeader& header, std::uint32_t before) const
{
    if (before != kUnknown && m_chains[m_nodes[before].chain].tail == before) return m_nodes[before].chain;
    const std::size_t oldest = m_chains.size() > kGrowingChains ? m_chains.size() - kGrowingChains : 0;
    for (std::size_t chain = m_chains.size(); chain > oldest; --chain)
        if (m_nodes[m_chains[chain - 1].tail].header.Next() == header.position)
            return static_cast<std::uint32_t>(chain - 1);
    return static_cast<std::uint32_t>(m_chains.size());
}

std::uint32_t ChunkMap::NextMatchOrLast(std::uint32_t node, const ChunkSearch& search)
{
    const std::uint32_t chain = m_nodes[node].chain;
    CodeChain(chain);
    const CodeKey key = KeyOf(chain, search.flag, search.code);
    const std::uint32_t first = FirstOf(key, search.flag != OMMIO_FINDCHUNK);
    const std::uint32_t last = m_chains[chain].tail;
    if (first == kUnknown) return last;
    const std::uint32_t here = m_nodes[node].header.position;
    if (m_nodes[first].header.position > here) return first;
    const std::uint32_t repeats = RepeatsOf(key);
    if (repeats == kUnknown) return last;
    const std::vector<std::uint32_t>& further = m_repeats[repeats].nodes;
    const auto next =
        std::upper_bound(further.begin(), further.end(), here, [this](std::uint32_t position, std::uint32_t other) {
            return position < m_nodes[other].header.position;
        });
    return next != further.end() ? *next : last;
}

ChunkMap::CodeKey ChunkMap::CodeOf(std::uint32_t node) const
{
    return KeyOf(m_nodes[node].chain, OMMIO_FINDCHUNK, m_nodes[node].header.ckid);
}

ChunkMap::CodeKey ChunkMap::TypeOf(std::uint32_t node) const
{
    const ChunkHeader& header = m_nodes[node].header;
    return KeyOf(m_nodes[node].chain, header.ckid == kCodeRiff ? OMMIO_FINDRIFF : OMMIO_FINDLIST, header.fccType);
}

std::uint32_t ChunkMap::FirstOf(CodeKey key, bool isType) const
{
    if (isType) return m_firstOfType.Find(key, [this](std::uint32_t node) { return TypeOf(node); });
    return m_firstOfCode.Find(key, [this](std::uint32_t node) { return CodeOf(node); });
}

std::uint32_t ChunkMap::RepeatsOf(CodeKey key) const
{
    return m_repeatsOfKey.Find(key, [this](std::uint32_t repeats) { return m_repeats[repeats].key; });
}

// Notes the codes of the nodes that the chain has gained since the last call.
void ChunkMap::CodeChain(std::uint32_t chain)
{
    std::uint32_t& node = m_chains[chain].firstUncoded;
    while (node < kNone && m_nodes[node].chain == chain) {
        const Node& coded = m_nodes[node];
        AddCode(node, false);
        if (coded.header.HasFormType()) AddCode(node, true);
        if (node == m_chains[chain].tail) {
            node = kUnknown;
            return;
        }
        node = coded.next;
    }
}

void ChunkMap::AddCode(std::uint32_t node, bool isType)
{
    const CodeKey key = isType ? TypeOf(node) : CodeOf(node);
    if (FirstOf(key, isType) == kUnknown) {
        if (isType)
            m_firstOfType.Add(key, node, [this](std::uint32_t other) { return TypeOf(other); });
        else
            m_firstOfCode.Add(key, node, [this](std::uint32_t other) { return CodeOf(other); });
        return;
    }
    std::uint32_t repeats = RepeatsOf(key);
    if (repeats == kUnknown) {
        repeats = static_cast<std::uint32_t>(m_repeats.size());
        m_repeats.push_back({key, {}});
        m_repeatsOfKey.Add(key, repeats, [this](std::uint32_t other) { return m_repeats[other].key; });
    }
    m_repeats[repeats].nodes.push_back(node);
}

} // namespace ZelmResult
