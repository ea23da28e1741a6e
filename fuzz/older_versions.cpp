#include "fuzz/older_versions.h"

#include "tests/builders/record_check.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/chunk_kinds.h"

#include <algorithm>

namespace ZelmResult::fuzz {

namespace {

using test::Bytes;

bool IsOf(ChunkKind kind, const Chunk& chunk) { return chunk.code == ChunkCode(kind); }

Data VersionData(std::uint16_t version) { return Bytes{}.u16(version).data(); }

// ---- Settings ----

// The version, and the text before the rest without the flag after it.
void MakeNodeOlder(Chunk& node)
{
    std::erase_if(node.children, [](const Chunk& chunk) { return IsOf(ChunkKind::TransferFunctions, chunk); });
    for (Chunk& chunk : node.children) {
        if (chunk.isList()) MakeNodeOlder(chunk);
        if (IsOf(ChunkKind::Version, chunk)) chunk.data = VersionData(kFirstListVersion);
        if (chunk.isBare) chunk.data.resize(4 + 2 * static_cast<std::size_t>(static_cast<std::uint8_t>(chunk.data[3])));
    }
}

// Returns what goes after the list.
std::vector<Chunk> MakeSettingsOlder(Chunk& settings, std::uint16_t version)
{
    const auto isApplication = [](const Chunk& chunk) { return IsOf(ChunkKind::ApplicationVersion, chunk); };
    const VersionTavidePlace place = PlaceOfVersionTavide(version);
    Chunk application;
    for (Chunk& chunk : settings.children) {
        if (IsOf(ChunkKind::Version, chunk)) chunk.data = VersionData(version);
        if (chunk.isList()) MakeNodeOlder(chunk);
        if (isApplication(chunk)) application = {0, 0, chunk.data, {}, 0, true};
    }
    if (place != VersionTavidePlace::InAChunk) std::erase_if(settings.children, isApplication);
    if (place == VersionTavidePlace::AtTheEnd) settings.children.push_back(application);
    return place == VersionTavidePlace::AfterTheList ? std::vector<Chunk>{application} : std::vector<Chunk>{};
}

// ---- Axes ----

// An axis without references, as former versions stored it.
Data FormerAxis(std::uint16_t version, std::int32_t filled, bool isWaterfall)
{
    constexpr std::uint16_t firstWithFilled = 2;
    constexpr std::uint16_t firstOfWaterfalls = 3;
    constexpr std::uint16_t firstWithChosen = 4;
    constexpr std::uint16_t withShortTable = 5;
    Bytes bytes = Bytes{}.u16(version);
    if (version >= firstWithFilled) bytes.i32(filled);
    if (version == 0) return bytes.data();
    if (isWaterfall && version >= firstOfWaterfalls) {
        if (version <= withShortTable) bytes.i32(1).text(u"Time").i32(2).zeros(version == withShortTable ? 4 : 8);
        return bytes.data();
    }
    bytes.i32(0);
    if (version >= firstWithChosen) bytes.i32(0);
    return bytes.data();
}

// Whether the result that a header describes can be read from data, and takes all of it.
bool Reads(const CResultHeader& header, const Data& data)
{
    const OwnedResult result = MakeResult(header.GetProcessType(), header.GetWaterfallDimension());
    std::int32_t taken = 0;
    return test::readFrom(data, test::reading(*result), &taken) && taken == std::ssize(data);
}

void MakeAxisOlder(const CResultHeader& header, Data& data, std::uint16_t version)
{
    const OwnedResult result = MakeResult(header.GetProcessType(), header.GetWaterfallDimension());
    const CReferencedAxis* axis = result != nullptr ? result->GetReferencedAxis() : nullptr;
    if (axis == nullptr) return;
    for (std::int32_t filled = 0; filled < 4; ++filled) {
        CReferencedAxis sample(nullptr, axis->IsWaterfall());
        sample.SetFilled(filled);
        const Data stored = test::written(sample);
        const Data former = FormerAxis(version, filled, axis->IsWaterfall());
        for (auto at = data.begin();; ++at) {
            at = std::search(at, data.end(), stored.begin(), stored.end());
            if (at == data.end()) break;
            Data changed(data.begin(), at);
            changed.insert(changed.end(), former.begin(), former.end());
            changed.insert(changed.end(), at + std::ssize(stored), data.end());
            if (!Reads(header, changed)) continue;
            data = changed;
            return;
        }
    }
}

} // namespace

std::vector<Chunk> WithSettingsOfVersion(std::vector<Chunk> chunks, std::uint16_t version)
{
    std::vector<Chunk> former;
    for (Chunk& chunk : chunks) {
        std::vector<Chunk> after;
        if (chunk.type == ChunkCode(ChunkKind::Settings))
            after = MakeSettingsOlder(chunk, version);
        else
            chunk.children = WithSettingsOfVersion(std::move(chunk.children), version);
        former.push_back(std::move(chunk));
        former.insert(former.end(), after.begin(), after.end());
    }
    return former;
}

std::vector<Chunk> WithAxesOfVersion(std::vector<Chunk> chunks, std::uint16_t version)
{
    CResultHeader header;
    for (Chunk& chunk : chunks) {
        chunk.children = WithAxesOfVersion(std::move(chunk.children), version);
        if (IsOf(ChunkKind::ResultHeader, chunk)) (void)test::readFrom(chunk.data, test::reading(header));
        if (!chunk.isList() && chunk.code == header.GetChunkId()) MakeAxisOlder(header, chunk.data, version);
    }
    return chunks;
}

} // namespace ZelmResult::fuzz
