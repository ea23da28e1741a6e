#include "tools/zmxf/damage/chunk_tree.h"

#include <algorithm>
#include <cstring>

namespace zmxf {

const Chunk* Chunk::Find(Role wanted) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [wanted](const Chunk& child) { return child.role == wanted; });
    return found == children.end() ? nullptr : &*found;
}

std::uint32_t NumberAt(std::span<const char> bytes, std::int64_t offset)
{
    std::uint32_t number = 0;
    if (offset + 4 <= static_cast<std::int64_t>(bytes.size()))
        std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

std::int64_t EndOfChunkAt(const Chunk& list, std::int64_t offset)
{
    const auto behind = std::upper_bound(list.children.begin(), list.children.end(), offset,
                                         [](std::int64_t at, const Chunk& child) { return at < child.offset; });
    if (behind == list.children.begin()) return INT64_MAX;
    const Chunk& chunk = *std::prev(behind);
    if (IsList(chunk.role)) return EndOfChunkAt(chunk, offset);
    return !chunk.IsBare() && offset < chunk.end ? chunk.end : INT64_MAX;
}

std::uint16_t ListVersion(std::span<const char> bytes, const Chunk& list)
{
    constexpr std::uint16_t first = 0x100; // lists of lower ones hold nothing
    const Chunk* version = list.Find(Role::Version);
    const bool isGood = version != nullptr && version->IsWhole() && VersionIn(bytes, *version) >= first;
    return isGood ? VersionIn(bytes, *version) : NewestVersion(list.role);
}

std::uint16_t VersionIn(std::span<const char> bytes, const Chunk& chunk)
{
    std::uint16_t version = 0;
    if (chunk.Size() >= 2) std::memcpy(&version, bytes.data() + chunk.data, sizeof version);
    return version;
}

} // namespace zmxf
