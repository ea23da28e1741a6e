#include "zelmresult/storage/sibling_index.h"

#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::int64_t kVisitsPerByte = 4;
constexpr std::int64_t kVisitsAlways = 1000000;

} // namespace

bool ChunkHeader::HasFormType() const { return ckid == kCodeRiff || ckid == kCodeList; }

bool ChunkSearch::Matches(const ChunkHeader& header) const
{
    switch (flag) {
    case OMMIO_FINDCHUNK: return header.ckid == code;
    case OMMIO_FINDRIFF: return header.ckid == kCodeRiff && header.fccType == code;
    case OMMIO_FINDLIST: return header.ckid == kCodeList && header.fccType == code;
    default: return true;
    }
}

std::optional<ChunkHeader> ReadChunkHeader(BufferedFile& file, std::int64_t position)
{
    std::uint32_t words[3] = {};
    if (!file.Seek(position) || file.Read(reinterpret_cast<char*>(words), 8) != 8) return std::nullopt;
    ChunkHeader header{static_cast<std::uint32_t>(position), words[0], words[1], 0};
    if (header.HasFormType()) {
        if (file.Read(reinterpret_cast<char*>(words + 2), 4) != 4) return std::nullopt;
        header.fccType = words[2];
    }
    return header;
}

void SiblingWalk::LimitVisits()
{
    m_visitsLeft =
        std::clamp<std::int64_t>(m_file.Size(), 0, BufferedFile::kLastPosition) * kVisitsPerByte + kVisitsAlways;
}

std::optional<ChunkHeader> SiblingWalk::Find(const ChunkSearch& search)
{
    for (std::int64_t position = search.start; search.Holds(position, 8) && m_visitsLeft > 0; --m_visitsLeft) {
        const auto header = ReadChunkHeader(m_file, position);
        if (!header || !search.Holds(position, header->Length())) break;
        if (search.Matches(*header)) return header;
        position = header->Next();
    }
    return std::nullopt;
}

std::size_t PositionTable::SlotOf(std::uint32_t position) const
{
    const std::size_t mask = m_slots.size() - 1;
    std::size_t slot = (position * std::uint64_t{0x9E3779B97F4A7C15} >> 32U) & mask;
    while (m_slots[slot].number != kAbsent && m_slots[slot].position != position) slot = (slot + 1) & mask;
    return slot;
}

std::uint32_t PositionTable::Find(std::uint32_t position) const
{
    return m_slots.empty() ? kAbsent : m_slots[SlotOf(position)].number;
}

void PositionTable::Add(std::uint32_t position, std::uint32_t number)
{
    if (2 * (m_used + 1) > m_slots.size()) Grow();
    m_slots[SlotOf(position)] = {position, number};
    ++m_used;
}

void PositionTable::Grow()
{
    const std::vector<Slot> old = std::move(m_slots);
    m_slots.assign(old.empty() ? 64 : 2 * old.size(), Slot());
    for (const Slot& slot : old)
        if (slot.number != kAbsent) m_slots[SlotOf(slot.position)] = slot;
}

std::size_t SiblingIndex::CodeKeyHash::operator()(const CodeKey& key) const
{
    std::uint64_t mixed = (std::uint64_t{key.code} << 32U | key.chain) ^ std::uint64_t{key.flag} << 24U;
    mixed *= 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed ^ mixed >> 32U);
}

std::optional<ChunkHeader> SiblingIndex::Find(const ChunkSearch& search)
{
    if (!search.Holds(search.start, 8)) return std::nullopt;
    int steps = 0;
    std::uint32_t node = NodeAt(search.start);
    while (node < kNone) {
        const ChunkHeader& header = m_nodes[node].header;
        if (!search.Holds(header.position, header.Length())) break;
        if (search.Matches(header)) return header;
        if (++steps > kStepsBeforeLookup) node = NearestKnown(node, search);
        if (!search.Matches(m_nodes[node].header)) node = Behind(node, search);
    }
    return std::nullopt;
}

// The node in this chain, after the given one, from which the search continues: the next known match, or the tail when
// there is none.
std::uint32_t SiblingIndex::NearestKnown(std::uint32_t node, const ChunkSearch& search)
{
    const std::uint32_t chain = m_nodes[node].chain;
    CodeChain(chain);
    const auto found = m_codes.find({chain, search.flag, search.code});
    if (found == m_codes.end()) return m_chains[chain].tail;
    const auto& [first, more] = found->second;
    const std::uint32_t here = m_nodes[node].header.position;
    if (m_nodes[first].header.position > here) return first;
    const auto next =
        std::upper_bound(more.begin(), more.end(), here, [this](std::uint32_t position, std::uint32_t other) {
            return position < m_nodes[other].header.position;
        });
    return next != more.end() ? *next : m_chains[chain].tail;
}

// Notes the codes of the nodes that the chain has gained since the last call.
void SiblingIndex::CodeChain(std::uint32_t chain)
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

void SiblingIndex::AddCode(std::uint32_t node, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
{
    const auto [places, isNew] = m_codes.try_emplace({m_nodes[node].chain, flag, code}, Places{node, {}});
    if (!isNew) places->second.more.push_back(node);
}

// The node after a given one; reads its header if that wasn't done yet and the search may look there.
std::uint32_t SiblingIndex::Behind(std::uint32_t node, const ChunkSearch& search)
{
    if (m_nodes[node].next != kUnknown) return m_nodes[node].next;
    const std::int64_t position = m_nodes[node].header.Next();
    if (!search.Holds(position, 8)) return kNone;
    const std::uint32_t next = NodeAt(position);
    m_nodes[node].next = next;
    return next;
}

std::uint32_t SiblingIndex::NodeAt(std::int64_t position)
{
    if (position > BufferedFile::kLastPosition || IsFull()) return kNone;
    const std::uint32_t known = m_places.Find(static_cast<std::uint32_t>(position));
    if (known != PositionTable::kAbsent) return known;
    const auto header = ReadChunkHeader(m_file, position);
    return header ? AddNode(*header, ChainGrowingTo(position)) : kNone;
}

// The chain whose last header is followed by that position, or a new one. Only the newest chains are asked: an older
// one that grows again meets the new one and joins it.
std::uint32_t SiblingIndex::ChainGrowingTo(std::int64_t position) const
{
    const std::size_t oldest = m_chains.size() > kGrowingChains ? m_chains.size() - kGrowingChains : 0;
    for (std::size_t chain = m_chains.size(); chain > oldest; --chain)
        if (m_nodes[m_chains[chain - 1].tail].header.Next() == position) return static_cast<std::uint32_t>(chain - 1);
    return static_cast<std::uint32_t>(m_chains.size());
}

std::uint32_t SiblingIndex::AddNode(const ChunkHeader& header, std::uint32_t chain)
{
    const auto node = static_cast<std::uint32_t>(m_nodes.size());
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

} // namespace ZelmResult
