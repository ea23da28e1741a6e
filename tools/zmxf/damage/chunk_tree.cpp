#include "tools/zmxf/damage/chunk_tree.h"

#include "zelmresult/settings/module_data.h"
#include "zelmresult/settings/node_head.h"

#include <algorithm>
#include <cstring>

namespace zmxf {

const Chunk* Chunk::Find(ChunkKind wanted) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [wanted](const Chunk& child) { return child.kind == wanted; });
    return found == children.end() ? nullptr : &*found;
}

std::int64_t EndOfChunkAt(const Chunk& list, std::int64_t offset)
{
    const auto after = std::upper_bound(list.children.begin(), list.children.end(), offset,
                                        [](std::int64_t at, const Chunk& child) { return at < child.offset; });
    if (after == list.children.begin()) return INT64_MAX;
    const Chunk& chunk = *std::prev(after);
    if (IsList(chunk.kind)) return EndOfChunkAt(chunk, offset);
    return !chunk.IsBare() && offset < chunk.end ? chunk.end : INT64_MAX;
}

std::uint16_t ListVersion(std::span<const char> bytes, const Chunk& list)
{
    const Chunk* version = list.Find(ChunkKind::Version);
    const bool isGood =
        version != nullptr && version->IsWhole() && VersionIn(bytes, *version) >= ZelmResult::kFirstListVersion;
    return isGood ? VersionIn(bytes, *version) : FactsOf(list.kind).version;
}

bool HoldsVisible(const Chunk& node, std::uint16_t version)
{
    using ZelmResult::NodeHead;
    constexpr int withTransferFunctions = ZelmResult::CModuleData::kKindWithFRF;
    if (node.kind == ChunkKind::Submodule) return NodeHead::HoldsVisible(version, NodeHead::kVisibleInSubmodules);
    return node.Name() != ChunkCode(ChunkKind::Module, withTransferFunctions) &&
           NodeHead::HoldsVisible(version, NodeHead::kVisibleInModules);
}

std::uint16_t VersionIn(std::span<const char> bytes, const Chunk& chunk)
{
    std::uint16_t version = 0;
    if (chunk.Size() >= 2) std::memcpy(&version, bytes.data() + chunk.data, sizeof version);
    return version;
}

} // namespace zmxf
