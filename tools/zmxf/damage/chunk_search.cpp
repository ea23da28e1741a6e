#include "tools/zmxf/damage/chunk_search.h"

#include "tools/zmxf/damage/byte_file.h"

#include <fmt/format.h>

namespace zmxf {

bool WalkedList::BelongsOutside(const HeaderBytes& header) const
{
    if (IsCodeOf(ChunkKind::Version, header.code)) return false; // every list has one
    for (const WalkedList* around = outer; around != nullptr; around = around->outer)
        if (around->KindHere(header) != ChunkKind::Unknown) return true;
    return false;
}

bool WalkedList::Knows(const HeaderBytes& header) const
{
    return KindHere(header) != ChunkKind::Unknown || BelongsOutside(header) ||
           MissingListAround(list.kind, header) != ChunkKind::Unknown;
}

std::string WalkedList::Path() const
{
    const std::string name = CodeText(list.Name());
    return outer != nullptr ? fmt::format("{}/{}", outer->Path(), name) : name;
}

HeaderBytes ChunkSearch::HeaderAt(std::int64_t offset) const
{
    HeaderBytes header{NumberAt(m_bytes, offset), NumberAt(m_bytes, offset + 4), 0};
    const bool isList = header.code == ZelmResult::kCodeList || header.code == ZelmResult::kCodeRiff;
    if (isList && offset + 12 <= Size()) header.form = NumberAt(m_bytes, offset + 8);
    return header;
}

bool ChunkSearch::IsEmpty(const WalkedList& place, const HeaderBytes& header, std::int64_t offset) const
{
    const std::int64_t end = offset + kHeaderSize;
    if (header.IsList() || header.size != 0 || end > place.limit) return false;
    return end == place.limit ? place.list.IsWhole() && place.Root().IsWhole() : place.Knows(HeaderAt(end));
}

bool ChunkSearch::IsChunkLike(const WalkedList& place, std::int64_t offset) const
{
    const HeaderBytes header = HeaderAt(offset);
    return IsPrintable(header.code) && (IsSize(header) || IsEmpty(place, header, offset)) &&
           Fits(header, offset, place.limit);
}

bool ChunkSearch::MayBegin(const WalkedList& place, std::int64_t offset) const
{
    if (place.limit - offset < kHeaderSize) return true;
    return place.Knows(HeaderAt(offset)) || IsChunkLike(place, offset);
}

std::int64_t ChunkSearch::FindKnown(const WalkedList& place, std::int64_t from, std::int64_t limit) const
{
    for (std::int64_t offset = from; offset + kHeaderSize <= limit; ++offset) {
        const HeaderBytes header = HeaderAt(offset);
        if (!IsPrintable(header.code) || !place.Knows(header)) continue;
        if (header.IsList() && header.size == 0) return offset;
        if (!IsSize(header) || !Fits(header, offset, Size())) continue;
        const std::int64_t data = offset + kHeaderSize;
        if (header.IsList() || MayBegin(place, Padded(data + header.size, data))) return offset;
    }
    return limit;
}

HeaderBytes ChunkSearch::MendedList(const WalkedList& place, const HeaderBytes& header, std::int64_t offset) const
{
    constexpr std::int64_t versionChunk = 10;
    const std::int64_t first = offset + 12;
    if (!IsCodeOf(ChunkKind::Version, HeaderAt(first).code)) return {};
    const HeaderBytes list{ZelmResult::kCodeList, header.size, NumberAt(m_bytes, offset + kHeaderSize)};
    const ChunkKind kind = place.KindHere(list);
    if (kind != ChunkKind::Unknown && (!IsNode(kind) || place.Previous() == ChunkKind::Identifier)) return list;
    return FirstHeaderOf(ListThatHolds(place.list.kind, HeaderAt(first + versionChunk)), header.size);
}

} // namespace zmxf
