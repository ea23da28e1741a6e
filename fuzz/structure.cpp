// A valid document whose chunks are changed: a byte that says which, then changes of eight bytes each.

#include "fuzz/documents.h"

#include <algorithm>
#include <iterator>

using namespace ZelmResult;
using fuzz::Chunk;
using fuzz::Data;

namespace {

// Where a chunk is.
struct Place {
    std::vector<Chunk>* siblings;
    std::ptrdiff_t index;

    [[nodiscard]] Chunk& chunk() const { return (*siblings)[static_cast<std::size_t>(index)]; }
};

void Collect(std::vector<Chunk>& chunks, std::vector<Place>& places)
{
    for (std::size_t i = 0; i < chunks.size(); ++i) {
        places.push_back({&chunks, static_cast<std::ptrdiff_t>(i)});
        Collect(chunks[i].children, places);
    }
}

struct Change {
    std::uint8_t kind;
    std::uint8_t offset; // into data, from its end with the highest bit
    std::uint16_t place;
    std::uint32_t value;
};

template <class T>
void Put(Data& data, std::uint8_t offset, T value)
{
    if (data.size() < sizeof value) return;
    const std::size_t last = data.size() - sizeof value;
    const std::size_t fromStart = std::min<std::size_t>(offset & 0x7FU, last);
    std::memcpy(data.data() + ((offset & 0x80U) != 0 ? last - fromStart : fromStart), &value, sizeof value);
}

void Apply(const Change& change, std::vector<Chunk>& roots)
{
    constexpr std::size_t kMostChunks = 2000;
    std::vector<Place> places;
    Collect(roots, places);
    if (places.empty()) return;
    const Place place = places[change.place % places.size()];
    std::vector<Chunk>& siblings = *place.siblings;
    const auto here = siblings.begin() + place.index;
    const auto other = siblings.begin() + change.value % std::ssize(siblings);
    Chunk& chunk = place.chunk();
    switch (change.kind % 12) {
    case 0: chunk.falseSize = change.value; break;
    case 1: chunk.falseSize = change.value & 0xFFU; break;
    case 2: (chunk.isList() ? chunk.type : chunk.code) = change.value; break;
    case 3: (chunk.isList() ? chunk.type : chunk.code) = other->isList() ? other->type : other->code; break;
    case 4: Put(chunk.data, 0, static_cast<std::uint16_t>(change.value)); break; // the version
    case 5: Put(chunk.data, change.offset, static_cast<std::uint8_t>(change.value)); break;
    case 6: Put(chunk.data, change.offset, change.value); break; // a count, or what it falls on
    case 7: std::iter_swap(here, other); break;
    case 8:
        if (places.size() < kMostChunks) siblings.insert(other, Chunk(chunk));
        break;
    case 9: siblings.erase(here); break;
    case 10: chunk.data.resize(change.value % (chunk.data.size() + 1)); break;
    default: // into another list
        if (Chunk& target = places[change.value % places.size()].chunk();
            target.isList() && places.size() < kMostChunks)
            target.children.push_back(Chunk(chunk));
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    constexpr int kMostChanges = 40;
    fuzz::Input input(data, size);
    const auto& wholes = fuzz::WholeDocuments();
    std::vector<Chunk> roots = fuzz::ChunksOf(wholes[input.choice(wholes.size())]);
    const auto cut = input.take<std::uint16_t>(); // from the end
    for (int i = 0; i < kMostChanges && !input.empty(); ++i) Apply(input.take<Change>(), roots);
    Data bytes = fuzz::BytesOf(roots);
    bytes.resize(bytes.size() - cut % (bytes.size() + 1));
    fuzz::CheckDocument(bytes);
    return 0;
}
