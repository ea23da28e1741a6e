#include "zelmresult/reading/result_listing.h"

#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::uint32_t kHiddenInListings = 2;
constexpr std::size_t kEntriesHeld = 3; // a growing vector holds its old and its new entries at once

ChunkPlace PlaceOf(const OMMCKINFO& chunk)
{
    constexpr std::uint32_t headerSize = 8;
    return {chunk.ckid, static_cast<std::int32_t>(chunk.dwDataOffset - headerSize), chunk.cksize};
}

// The chunks of one list by their codes.
class Places {
public:
    void Add(const ChunkPlace& place) { m_places.push_back(place); }
    // Call it when all are added.
    void Sort()
    {
        std::stable_sort(m_places.begin(), m_places.end(),
                         [](const ChunkPlace& one, const ChunkPlace& other) { return one.code < other.code; });
    }
    // The first chunk of that code. After ten thousand results codes repeat.
    [[nodiscard]] ChunkPlace First(std::uint32_t code) const
    {
        const auto found =
            std::lower_bound(m_places.begin(), m_places.end(), code,
                             [](const ChunkPlace& place, std::uint32_t wanted) { return place.code < wanted; });
        return found != m_places.end() && found->code == code ? *found : ChunkPlace{code};
    }

private:
    std::vector<ChunkPlace> m_places;
};

// Reads a header, with the file at its data. Null when it can't be read.
std::shared_ptr<const CResultHeader> ReadHeader(CMmioFile& file)
{
    if (!file.RoomFor(1, sizeof(CResultHeader) + kEntriesHeld * sizeof(ListedResult))) return nullptr;
    auto header = std::make_shared<CResultHeader>();
    return header->Load(&file) ? header : nullptr;
}

// Headers may follow the list, of which the size may be wrong: a load finds them too.
bool EnterNext(CMmioFile& file, OMMCKINFO& chunk, OMMCKINFO& results)
{
    return file.EnterNextChunk(chunk, results) || file.Enter(ChunkKind::ResultHeader, chunk);
}

} // namespace

void ListResults(CMmioFile& file, OMMCKINFO& results, std::int32_t system, Listing<ListedResult>& listing)
{
    const std::size_t first = listing.items.size();
    const wstring subject = Concat(u"a result header of system ", system);
    Places places;
    OMMCKINFO chunk;
    while (EnterNext(file, chunk, results)) {
        const bool isHeader = chunk.ckid == ChunkCode(ChunkKind::ResultHeader);
        const bool hasRoom = file.Charge(kEntriesHeld * sizeof(ChunkPlace));
        const auto header = isHeader && hasRoom ? ReadHeader(file) : nullptr;
        if (!hasRoom || (isHeader && header == nullptr)) listing.NoteDamage(ReadError::Of(file, subject));
        if (!hasRoom) break;
        places.Add(PlaceOf(chunk));
        if (header != nullptr && header->GetOpere() != kHiddenInListings)
            listing.items.push_back({system, header, PlaceOf(chunk), {}});
        if (file.ExitChunk(chunk)) continue;
        if (isHeader) listing.NoteDamage(ReadError::Of(file, subject));
        break;
    }
    places.Sort();
    for (std::size_t i = first; i < listing.items.size(); ++i)
        listing.items[i].data = places.First(listing.items[i].header->GetChunkId());
}

} // namespace ZelmResult
