#include "fuzz/older_versions.h"

#include "tests/builders/record_check.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>

namespace ZelmResult::fuzz {

namespace {

using test::Bytes;

constexpr std::uint32_t kSettings = FourCC("CONF");
constexpr std::uint32_t kVersion = FourCC("VERS");

Data VersionData(std::uint16_t version) { return Bytes{}.u16(version).data(); }

// ---- Settings ----

// The version, and the text before the rest without the flag after it.
void MakeNodeOlder(Chunk& node)
{
    constexpr std::uint16_t former = 256;
    std::erase_if(node.children, [](const Chunk& chunk) { return chunk.code == FourCC("WFRF"); });
    for (Chunk& chunk : node.children) {
        if (chunk.isList()) MakeNodeOlder(chunk);
        if (chunk.code == kVersion) chunk.data = VersionData(former);
        if (chunk.isBare) chunk.data.resize(4 + 2 * static_cast<std::size_t>(static_cast<std::uint8_t>(chunk.data[3])));
    }
}

// Returns what goes after the list.
std::vector<Chunk> MakeSettingsOlder(Chunk& settings, std::uint16_t version)
{
    constexpr std::uint16_t behindTheList = 512;
    constexpr std::uint16_t atTheEnd = 768;
    constexpr std::uint16_t inAChunk = 1024;
    Chunk application;
    for (Chunk& chunk : settings.children) {
        if (chunk.code == kVersion) chunk.data = VersionData(version);
        if (chunk.isList()) MakeNodeOlder(chunk);
        if (chunk.code == FourCC("CFVR")) application = {0, 0, chunk.data, {}, 0, true};
    }
    if (version < inAChunk) std::erase_if(settings.children, [](const Chunk& c) { return c.code == FourCC("CFVR"); });
    if (version == atTheEnd) settings.children.push_back(application);
    return version == behindTheList ? std::vector<Chunk>{application} : std::vector<Chunk>{};
}

// ---- Axes ----

// An axis without references, as stored.
Data AxisData(std::uint16_t version, std::int32_t filled, bool isWaterfall)
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
    constexpr std::uint16_t newest = 6;
    const OwnedResult result = MakeResult(header.GetProcessType(), header.GetWaterfallDimension());
    const CReferencedAxis* axis = result != nullptr ? result->GetReferencedAxis() : nullptr;
    if (axis == nullptr) return;
    for (std::int32_t filled = 0; filled < 4; ++filled) {
        const Data stored = AxisData(newest, filled, axis->IsWaterfall());
        const Data former = AxisData(version, filled, axis->IsWaterfall());
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
        std::vector<Chunk> behind;
        if (chunk.type == kSettings)
            behind = MakeSettingsOlder(chunk, version);
        else
            chunk.children = WithSettingsOfVersion(std::move(chunk.children), version);
        former.push_back(std::move(chunk));
        former.insert(former.end(), behind.begin(), behind.end());
    }
    return former;
}

std::vector<Chunk> WithAxesOfVersion(std::vector<Chunk> chunks, std::uint16_t version)
{
    CResultHeader header;
    for (Chunk& chunk : chunks) {
        chunk.children = WithAxesOfVersion(std::move(chunk.children), version);
        if (chunk.code == FourCC("INFO")) (void)test::readFrom(chunk.data, test::reading(header));
        if (!chunk.isList() && chunk.code == header.GetChunkId()) MakeAxisOlder(header, chunk.data, version);
    }
    return chunks;
}

} // namespace ZelmResult::fuzz
