#include "zelmresult/storage/sibling_index.h"

namespace ZelmResult {

std::optional<ChunkHeader> SiblingIndex::Find(const ChunkSearch& search)
{
    if (!search.Holds(search.start, 8) || search.start > BufferedFile::kLastPosition || IsFull()) return std::nullopt;
    const std::uint32_t node = m_map.At(search.start);
    return node == ChunkMap::kUnknown ? FindFromUnknown(search) : FindFromNode(node, search);
}

std::optional<ChunkHeader> SiblingIndex::FindFromUnknown(const ChunkSearch& search)
{
    auto found = ReadChunkHeader(m_file, search.start);
    if (found && !search.Matches(*found))
        found = FindFromNode(m_map.Add(*found), search);
    else if (found && !search.Holds(search.start, found->Length()))
        found.reset();
    return found;
}

std::optional<ChunkHeader> SiblingIndex::FindFromNode(std::uint32_t first, const ChunkSearch& search)
{
    const std::uint32_t node = FindNode(first, search);
    if (node >= ChunkMap::kNone) return std::nullopt;
    if (node >= m_kept || IsStillThere(node)) return m_map.header(node);
    m_map = {};
    m_kept = 0;
    return Find(search);
}

bool SiblingIndex::IsStillThere(std::uint32_t node)
{
    const ChunkHeader& known = m_map.header(node);
    const auto read = ReadChunkHeader(m_file, known.position);
    return read && *read == known;
}

std::uint32_t SiblingIndex::FindNode(std::uint32_t node, const ChunkSearch& search)
{
    int steps = 0;
    while (node < ChunkMap::kNone) {
        const ChunkHeader& header = m_map.header(node);
        if (!search.Holds(header.position, header.Length())) break;
        if (search.Matches(header)) return node;
        if (++steps > kStepsBeforeLookup) node = m_map.NextMatchOrLast(node, search);
        if (!search.Matches(m_map.header(node))) node = After(node, search);
    }
    return ChunkMap::kNone;
}

// The node after a given one; reads its header if that wasn't done yet and the search may look there.
std::uint32_t SiblingIndex::After(std::uint32_t node, const ChunkSearch& search)
{
    if (m_map.After(node) != ChunkMap::kUnknown) return m_map.After(node);
    const std::int64_t position = m_map.header(node).Next();
    if (!search.Holds(position, 8)) return ChunkMap::kNone;
    const std::uint32_t next = NodeAt(position, node);
    m_map.SetAfter(node, next);
    return next;
}

std::uint32_t SiblingIndex::NodeAt(std::int64_t position, std::uint32_t before)
{
    if (position > BufferedFile::kLastPosition || IsFull()) return ChunkMap::kNone;
    const std::uint32_t known = m_map.At(position);
    if (known != ChunkMap::kUnknown) return known;
    const auto header = ReadChunkHeader(m_file, position);
    return header ? m_map.Add(*header, before) : ChunkMap::kNone;
}

} // namespace ZelmResult
