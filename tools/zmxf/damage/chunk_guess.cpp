#include "tools/zmxf/damage/chunk_guess.h"

#include <algorithm>

namespace zmxf {

namespace {

using ZelmResult::ChunkContent;
using ZelmResult::ChunkFacts;
using ZelmResult::ChunkKinds;
using ZelmResult::ChunkNumber;
using ZelmResult::FactsOf;

// Whether a chunk fits into a list without anything before it. Any code may be the raw number of an identifier, so such
// a code says nothing.
bool FitsInto(ChunkKind list, const HeaderBytes& header)
{
    const ChunkKind kind = KindIn(list, header, ChunkKind::Unknown);
    return kind != ChunkKind::Unknown && IsCodeOf(kind, header.Name());
}

// The lists that are missed when one of their chunks is directly in the list around them.
ChunkKinds ListsMissedIn(ChunkKind list)
{
    switch (list) {
    case ChunkKind::Document: return {ChunkKind::Quantities, ChunkKind::System};
    case ChunkKind::System:
        return {ChunkKind::Results, ChunkKind::Recording, ChunkKind::Transducers, ChunkKind::Settings};
    case ChunkKind::Recording: return {ChunkKind::Track};
    case ChunkKind::Settings: return {ChunkKind::Module};
    case ChunkKind::Module: return {ChunkKind::Submodule};
    default: return {};
    }
}

} // namespace

bool IsList(ChunkKind kind) { return FactsOf(kind).IsList(); }

bool IsNode(ChunkKind kind) { return FactsOf(kind).content == ChunkContent::FieldsAndChunks; }

ChunkKind KindIn(ChunkKind list, const HeaderBytes& header, ChunkKind previous)
{
    if (header.IsList() && header.code != ZelmResult::kCodeList) return ChunkKind::Unknown;
    const ChunkKind kind = ZelmResult::ChunkKindIn(list, header.IsList(), header.Name());
    const bool isWithoutKey = kind == ChunkKind::SettingValue && previous != ChunkKind::SettingKey;
    return isWithoutKey ? ChunkKind::Unknown : kind;
}

ChunkKind MissingListAround(ChunkKind list, const HeaderBytes& header)
{
    if (IsCodeOf(ChunkKind::Version, header.code)) return ChunkKind::Unknown; // every list has one
    const ChunkKinds missed = ListsMissedIn(list);
    for (const ChunkFacts& facts : ZelmResult::AllChunkFacts()) {
        if (!missed.Has(facts.kind)) continue;
        // A module is missed by its submodules alone.
        if (facts.kind == ChunkKind::Module && !header.IsList()) continue;
        if (FitsInto(facts.kind, header)) return facts.kind;
        if (facts.kind == ChunkKind::System && MissingListAround(facts.kind, header) != ChunkKind::Unknown)
            return facts.kind;
    }
    return ChunkKind::Unknown;
}

HeaderBytes FirstHeaderOf(ChunkKind list, std::uint32_t size)
{
    if (!IsList(list) || FactsOf(list).number == ChunkNumber::Identifier) return {};
    return {ZelmResult::kCodeList, size, ZelmResult::ChunkCode(list)};
}

ChunkKind ListThatHolds(ChunkKind list, const HeaderBytes& child)
{
    for (const ChunkFacts& facts : ZelmResult::AllChunkFacts())
        if (facts.IsList() && facts.parents.Has(list) && facts.number != ChunkNumber::Identifier &&
            KindIn(facts.kind, child, ChunkKind::Version) != ChunkKind::Unknown)
            return facts.kind;
    return ChunkKind::Unknown;
}

std::uint32_t MendedCode(ChunkKind list, const HeaderBytes& header, ChunkKind previous)
{
    for (unsigned bit = 0; bit < 32; ++bit) {
        const HeaderBytes mended{header.code ^ 1U << bit, header.size, 0};
        const ChunkKind kind = KindIn(list, mended, previous);
        // One bit away from a number there are other numbers.
        if (kind != ChunkKind::Unknown && FactsOf(kind).number == ChunkNumber::None) return mended.code;
    }
    return header.code;
}

} // namespace zmxf
