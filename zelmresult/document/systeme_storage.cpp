// How a system goes to a file and comes back.

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/result.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <memory>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstVersionWithReferences = 0x200;
constexpr std::uint32_t kHiddenInListings = 2;
// What a header and its result take in memory at least. A file may name many in few bytes.
constexpr std::size_t kLeastResultSize = sizeof(CResultHeader) + sizeof(CResult) + 512;

// What a new result of the factory holds for each value of its size.
std::uint64_t BytesPerValue(const CResult& result)
{
    constexpr std::uint64_t orders = 9;
    if (dynamic_cast<const COrderTracking*>(&result) != nullptr) return orders * 2 * sizeof(float);
    if (dynamic_cast<const CCompressedScalar*>(&result) != nullptr) return CCompressedScalar::kTables * sizeof(float);
    return 2 * sizeof(float);
}

} // namespace

bool CSysteme::Save(CMmioFile* file, bool isLXFFile, std::uint32_t type, std::int32_t& resultNumber)
{
    OMMCKINFO system;
    if (!file->CreateChunkSysteme(system, static_cast<std::int16_t>(m_number))) return false;
    if ((type & FileType::kRecording) != 0 && !SaveRecording(*file)) return false;
    if ((type & (FileType::kResults | FileType::kRecordPreview)) != 0 && !SaveResults(*file, resultNumber))
        return false;
    if ((type & FileType::kReferences) != 0) SaveReferences(*file);
    if ((type & FileType::kSettings) != 0 && !SaveSettings(*file, isLXFFile)) return false;
    if ((type & FileType::kTracks) != 0 && !SaveTracks(*file)) return false;
    return file->ExitChunk(system);
}

bool CSysteme::SaveResults(CMmioFile& file, std::int32_t& resultNumber)
{
    OMMCKINFO results;
    if (!file.CreateChunkResultat(results)) return false;
    const std::size_t count = m_headers.size();
    for (std::size_t i = 0; i < count; ++i) {
        if (m_results[i] == nullptr) continue;
        if (!SaveResult(file, *m_headers[i], *m_results[i], resultNumber + static_cast<std::int32_t>(i))) return false;
    }
    resultNumber += static_cast<std::int32_t>(count);
    return file.ExitChunk(results);
}

bool CSysteme::SaveResult(CMmioFile& file, CResultHeader& header, CResult& result, std::int32_t number) const
{
    const std::uint32_t code = StringToFourCC(ToDecimal(number), false); // past 9999 codes repeat
    header.SetChunkId(code);
    ApplyCaptionRule(header);
    (void)header.Save(&file); // the document asks the file whether it failed
    OMMCKINFO data;
    return file.CreateChunk(data, code) && result.Write(&file) && file.ExitChunk(data);
}

bool CSysteme::Load(CMmioFile* file, std::uint32_t type, bool ownQuantities, bool normalisation,
                    ZMXFFileLoadScope scope)
{
    const OMMIOINFO start{0, file->Position()};
    file->CurrentSystemMmmioInfo(start);
    const auto backToStart = [&] { return file->mmioSeek(start.lDiskOffset, OMMIO_SEEK_SET); };
    std::uint16_t version = 0;
    if (!file->ReadChunkVersionSansParent(version)) return false;
    if ((type & FileType::kRecording) != 0)
        if (!backToStart() || !LoadRecording(*file, ownQuantities, normalisation)) return false;
    if ((type & FileType::kResults) != 0)
        if (!backToStart() || !LoadResults(*file, scope)) return false;
    if (version >= kFirstVersionWithReferences && (type & FileType::kReferences) != 0) LoadReferences(*file);
    std::int32_t tracksFrom = start.lDiskOffset;
    if ((type & FileType::kSettings) != 0)
        if (!backToStart() || !LoadSettings(*file, scope, tracksFrom)) return false;
    if ((type & FileType::kTracks) != 0 && MayHoldTracks())
        if (!file->mmioSeek(tracksFrom, OMMIO_SEEK_SET) || !LoadTracks(*file, scope)) return false;
    return true;
}

bool CSysteme::LoadResults(CMmioFile& file, ZMXFFileLoadScope scope)
{
    OMMCKINFO results;
    if (!file.EnterChunkListSansParent(results, FourCC("RESU"))) return false;
    const std::int32_t firstChild = file.Position();
    OMMCKINFO info;
    while (file.EnterChunkSansParent(info, FourCC("INFO"))) {
        // Wherever the header's data stands, the search for the next header goes on behind this one.
        OMMCKINFO headerChunk = info;
        if (!LoadResult(file, results, firstChild, scope)) return false;
        if (!file.ExitChunk(headerChunk)) return false;
    }
    return true;
}

// With the file at the data of a header.
bool CSysteme::LoadResult(CMmioFile& file, OMMCKINFO& results, std::int32_t firstChild, ZMXFFileLoadScope scope)
{
    auto header = std::make_unique<CResultHeader>();
    if (!header->Load(&file)) return false;
    if (!scope.Takes(header->GetChunkId())) return true;
    OMMCKINFO data;
    if (!file.RoomFor(1, kLeastResultSize) || !file.mmioSeek(firstChild, OMMIO_SEEK_SET) ||
        !file.EnterChunk(data, results, header->GetChunkId()))
        return false;
    // Headers may name the same data: each costs the time of its own.
    const auto left = static_cast<std::uint64_t>(file.hFile()->BytesLeft());
    if (!file.Charge(std::min<std::uint64_t>(data.cksize, left))) return false;
    CResult* result = ResultFactory::create(header->processType(), static_cast<int>(header->GetWaterfallDimension()),
                                            header->responseName())
                          .release();
    if (result == nullptr) return true; // a kind of another version of the library
    // What the kind begins with counts too: data of version 0 leaves it.
    const std::int32_t firstSize = result->GetSize();
    const auto values = static_cast<std::uint64_t>(std::max(firstSize, 0));
    const auto staysInProportion = [&] {
        return result->GetSize() != firstSize || file.Charge(values * BytesPerValue(*result));
    };
    if (!file.RoomFor(values, sizeof(float)) || !result->Read(&file) || !staysInProportion()) {
        DeleteWithReferences({result});
        return false;
    }
    AjouteResultat(header.release(), result, true);
    return true;
}

bool CSysteme::GetResultHeaderListe(CMmioFile* file, std::vector<CResultHeader*>& out) const
{
    OMMCKINFO results;
    if (!file->TopOfChunkResultat(results, static_cast<std::int16_t>(m_number))) return false;
    OMMCKINFO info;
    while (file->EnterChunkResultHeader(info, results)) {
        auto header = std::make_unique<CResultHeader>();
        if (!file->RoomFor(1, sizeof(CResultHeader)) || !header->Load(file) || !file->ExitChunk(info)) return false;
        if (header->GetOpere() != kHiddenInListings) out.push_back(header.release());
    }
    return true;
}

} // namespace ZelmResult
