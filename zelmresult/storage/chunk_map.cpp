#include "zelmresult/storage/chunk_map.h"

#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>

namespace ZelmResult {

std::uint32_t ChunkMap::Add(const ChunkHeader& header)
{
    const auto node = static_cast<std::uint32_t>(m_nodes.size());
    const std::uint32_t chain = ChainGrowingTo(header.position);
    m_nodes.push_back({header, chain, kUnknown});
    m_places.Add(header.position, node);
    if (chain == m_chains.size()) {
        m_chains.push_back({node, node});
        return node;
    }
    m_nodes[m_chains[chain].tail].next = node;
    m_chains[chain].tail = node;
    if (m_chains[chain].firstUncoded == kUnknown) m_chains[chain].firstUncoded = node;
    return node;
}

// The chain whose last header is followed by that position, or a new one. Only the newest chains are asked: an older
// one that grows again meets the new one and joins it.
std::uint32_t ChunkMap::ChainGrowingTo(std::int64_t position) const
{
    const std::size_t oldest = m_chains.size() > kGrowingChains ? m_chains.size() - kGrowingChains : 0;
    for (std::size_t chain = m_chains.size(); chain > oldest; --chain)
        if (m_nodes[m_chains[chain - 1].tail].header.Next() == position) return static_cast<std::uint32_t>(chain - 1);
    return static_cast<std::uint32_t>(m_chains.size());
}

std::uint32_t ChunkMap::NextMatchOrLast(std::uint32_t node, const ChunkSearch& search)
{
    const std::uint32_t chain = m_nodes[node].chain;
    CodeChain(chain);
    const CodeKey key = KeyOf(chain, search.flag, search.code);
    const std::uint32_t first = m_firsts.Find(key);
    const std::uint32_t last = m_chains[chain].tail;
    if (first == kUnknown) return last;
    const std::uint32_t here = m_nodes[node].header.position;
    if (m_nodes[first].header.position > here) return first;
    const std::uint32_t list = m_repeats.Find(key);
    if (list == kUnknown) return last;
    const std::vector<std::uint32_t>& further = m_further[list];
    const auto next =
        std::upper_bound(further.begin(), further.end(), here, [this](std::uint32_t position, std::uint32_t other) {
            return position < m_nodes[other].header.position;
        });
    return next != further.end() ? *next : last;
}

// Notes the codes of the nodes that the chain has gained since the last call.
void ChunkMap::CodeChain(std::uint32_t chain)
{
    std::uint32_t& node = m_chains[chain].firstUncoded;
    while (node < kNone && m_nodes[node].chain == chain) {
        const Node& coded = m_nodes[node];
        AddCode(node, OMMIO_FINDCHUNK, coded.header.ckid);
        if (coded.header.HasFormType())
            AddCode(node, coded.header.ckid == kCodeRiff ? OMMIO_FINDRIFF : OMMIO_FINDLIST, coded.header.fccType);
        if (node == m_chains[chain].tail) {
            node = kUnknown;
            return;
        }
        node = coded.next;
    }
}

void ChunkMap::AddCode(std::uint32_t node, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
{
    const CodeKey key = KeyOf(m_nodes[node].chain, flag, code);
    if (m_firsts.Find(key) == kUnknown) {
        m_firsts.Add(key, node);
        return;
    }
    std::uint32_t list = m_repeats.Find(key);
    if (list == kUnknown) {
        list = static_cast<std::uint32_t>(m_further.size());
        m_further.emplace_back();
        m_repeats.Add(key, list);
    }
    m_further[list].push_back(node);
}

} // namespace ZelmResult
