#include "zelmresult/storage/sibling_index.h"

#include "zelmresult/storage/chunk_codes.h"

#include <cstring>

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

SiblingWalk::SiblingWalk(BufferedFile& file) : m_file(file), m_visitsLeft(file.Size() * kVisitsPerByte + kVisitsAlways)
{
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

std::size_t SiblingIndex::CodeKeyHash::operator()(const CodeKey& key) const
{
    std::uint64_t mixed =
        (static_cast<std::uint64_t>(key.code) << 32U | key.chain) ^ static_cast<std::uint64_t>(key.flag) << 24U;
    mixed *= 0x9E3779B97F4A7C15U;
    return static_cast<std::size_t>(mixed ^ mixed >> 32U);
}

std::optional<ChunkHeader> SiblingIndex::Find(const ChunkSearch& search)
{
    if (!search.Holds(search.start, 8)) return std::nullopt;
    std::uint32_t node = NodeAt(search.start);
    while (node < kNone) {
        const ChunkHeader& header = m_nodes[node].header;
        if (!search.Holds(header.position, header.Length())) break;
        if (search.Matches(header)) return header;
        node = NearestKnown(node, search);
        if (!search.Matches(m_nodes[node].header)) node = Behind(node, search);
    }
    return std::nullopt;
}

// The node in this chain, at or behind the given one, from which the search goes on: a match that is known to be the
// next one, the node itself when a match lies somewhere ahead, or the tail when none is known.
std::uint32_t SiblingIndex::NearestKnown(std::uint32_t node, const ChunkSearch& search) const
{
    const std::uint32_t chain = m_nodes[node].chain;
    const auto found = m_codes.find({chain, search.flag, search.code});
    if (found == m_codes.end()) return m_tails[chain];
    const std::uint32_t here = m_nodes[node].header.position;
    if (m_nodes[found->second.first].header.position > here) return found->second.first;
    return m_nodes[found->second.last].header.position > here ? node : m_tails[chain];
}

// The node behind a given one; reads its header when nobody has yet and the search may look there.
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
    const auto key = static_cast<std::uint32_t>(position);
    if (const auto known = m_places.find(key); known != m_places.end()) return known->second;
    const auto header = ReadChunkHeader(m_file, position);
    if (!header) return kNone;

    const auto tail = m_growth.find(key);
    if (tail == m_growth.end()) {
        m_tails.push_back(0);
        return AddNode(*header, static_cast<std::uint32_t>(m_tails.size() - 1));
    }
    const std::uint32_t before = tail->second;
    m_growth.erase(tail);
    m_nodes[before].next = static_cast<std::uint32_t>(m_nodes.size());
    return AddNode(*header, m_nodes[before].chain);
}

std::uint32_t SiblingIndex::AddNode(const ChunkHeader& header, std::uint32_t chain)
{
    const auto node = static_cast<std::uint32_t>(m_nodes.size());
    m_nodes.push_back({header, chain, kUnknown});
    m_tails[chain] = node;
    m_places.emplace(header.position, node);
    if (header.Next() <= BufferedFile::kLastPosition) m_growth.emplace(static_cast<std::uint32_t>(header.Next()), node);
    AddCode(node, OMMIO_FINDCHUNK, header.ckid);
    if (header.HasFormType()) AddCode(node, header.ckid == kCodeRiff ? OMMIO_FINDRIFF : OMMIO_FINDLIST, header.fccType);
    return node;
}

void SiblingIndex::AddCode(std::uint32_t node, OMMIO_DESCEND_FLAG flag, std::uint32_t code)
{
    const auto [range, isNew] = m_codes.try_emplace({m_nodes[node].chain, flag, code}, CodeRange{node, node});
    if (!isNew) range->second.last = node;
}

} // namespace ZelmResult
