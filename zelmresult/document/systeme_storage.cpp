// The stored form of a system.

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/document/save_reason.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/results/compressed_result.h"
#include "zelmresult/results/double_result.h"
#include "zelmresult/results/order_track.h"
#include "zelmresult/results/result.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <algorithm>
#include <map>
#include <memory>
#include <typeindex>
#include <utility>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstVersionWithReferences = 0x200;
constexpr std::uint32_t kHiddenInListings = 2;
constexpr std::int32_t kResultsWithCode = 10000; // "0" to "9999"
// The least memory of a header and its result. A file may name many in few bytes.
constexpr std::size_t kLeastResultSize = sizeof(CResultHeader) + sizeof(CResult) + 512;

// The memory of a new result of the factory per value of its size.
std::uint64_t BytesPerValue(const CResult& result)
{
    constexpr std::uint64_t orders = 9;
    if (dynamic_cast<const COrderTracking*>(&result) != nullptr) return orders * 2 * sizeof(float);
    if (dynamic_cast<const CCompressedScalar*>(&result) != nullptr) return CCompressedScalar::kTables * sizeof(float);
    return 2 * sizeof(float);
}

// What a load charges for the arrays of a new result when its data doesn't change their size.
std::uint64_t BytesOfNew(const CResult& result)
{
    return static_cast<std::uint64_t>(std::max(result.GetSize(), 0)) * BytesPerValue(result);
}

std::type_index InnerType(const CResult& result)
{
    const auto* pair = dynamic_cast<const CDoubleResult*>(&result);
    if (pair == nullptr || pair->GetMinVector() == nullptr) return typeid(void);
    const CResult& inner = *pair->GetMinVector();
    return typeid(inner);
}

} // namespace

// The class that a load makes for a header, looked up once for each kind.
class CSysteme::LoadedKinds {
public:
    struct Loaded {
        std::type_index type = typeid(void);  // void: a kind that loads skip
        std::type_index inner = typeid(void); // of the vectors of a pair
        std::int32_t size = 0;                // before the data is read
        std::uint64_t bytes = 0;              // of its arrays
        bool keepsSize = true;                // compressed results are stored as far as they are filled
    };
    const Loaded& Of(const CResultHeader& header)
    {
        const auto [place, isNew] =
            m_known.try_emplace({header.GetProcessType(), header.GetWaterfallDimension()}, Loaded());
        if (isNew) place->second = Describe(header);
        return place->second;
    }

private:
    static Loaded Describe(const CResultHeader& header)
    {
        std::unique_ptr<CResult> result = NewResult(header);
        if (result == nullptr) return {};
        const CResult& made = *result;
        const bool isCompressed = dynamic_cast<const CCompressedAbstract*>(&made) != nullptr;
        const Loaded loaded{typeid(made), InnerType(made), made.GetSize(), BytesOfNew(made), !isCompressed};
        DeleteWithReferences({result.release()});
        return loaded;
    }

    std::map<std::pair<std::uint32_t, std::uint32_t>, Loaded> m_known; // by kind and dimension
};

std::unique_ptr<CResult> CSysteme::NewResult(const CResultHeader& header)
{
    return ResultFactory::create(header.processType(), static_cast<int>(header.GetWaterfallDimension()),
                                 header.responseName());
}

bool CSysteme::Save(CMmioFile* file, bool isLXFFile, std::uint32_t type, std::int32_t& resultNumber)
{
    OMMCKINFO system;
    if (!file->CreateChunkSysteme(system, static_cast<std::int16_t>(m_number))) return false;
    NoteLeftOut(*file, isLXFFile, type);
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
    LoadedKinds kinds;
    const std::size_t count = m_headers.size();
    for (std::size_t i = 0; i < count; ++i) {
        const std::int32_t number = resultNumber + static_cast<std::int32_t>(i);
        if (number == kResultsWithCode) file.AddErrorMessage(SaveReason::ResultsWithoutCode());
        if (m_results[i] == nullptr) {
            file.AddErrorMessage(SaveReason::ResultWithoutData(number, *m_headers[i]));
            continue;
        }
        if (!SaveResult(file, *m_headers[i], *m_results[i], number)) return false;
        NoteLosses(file, *m_headers[i], *m_results[i], number, kinds);
    }
    resultNumber += static_cast<std::int32_t>(count);
    return file.ExitChunk(results);
}

bool CSysteme::SaveResult(CMmioFile& file, CResultHeader& header, CResult& result, std::int32_t number) const
{
    const std::uint32_t code = ChunkCode(ChunkKind::ResultData, number); // after 9999 codes repeat
    header.SetChunkId(code);
    ApplyCaptionRule(header);
    (void)header.Save(&file); // the document asks the file whether it failed
    OMMCKINFO data;
    if (!file.CreateChunk(data, code)) return false;
    const bool isWritten = result.Write(&file);
    if (file.TakeUnreadable() || (!isWritten && !file.HasFailed()))
        file.AddErrorMessage(SaveReason::ResultUnreadable(number, header));
    return isWritten && file.ExitChunk(data);
}

// Notes what a load won't restore of a result that was written.
void CSysteme::NoteLosses(CMmioFile& file, const CResultHeader& header, CResult& result, std::int32_t number,
                          LoadedKinds& kinds) const
{
    const LoadedKinds::Loaded& loaded = kinds.Of(header);
    const bool isOther = loaded.type != typeid(result) && ResultFactory::IsOwnClass(result);
    if (loaded.type == typeid(void) || isOther || (loaded.inner != typeid(void) && loaded.inner != InnerType(result)))
        file.AddErrorMessage(SaveReason::ResultOfOtherKind(number, header));
    const bool mayStay = loaded.keepsSize && loaded.size == result.GetSize();
    (void)file.Charge(kLeastResultSize + (mayStay ? loaded.bytes : 0));
    if (const CGrandeur* quantity = file.quantities().TakeUnexpected(); quantity != nullptr)
        file.AddErrorMessage(SaveReason::ResultWithUnlistedQuantity(number, header, *quantity));
    if (!result.IsOfType(ResultMaskBit::kWaterfall | ResultMaskBit::kRefWaterfall)) return;
    const auto* waterfall = dynamic_cast<const CWaterfall*>(&result);
    if (waterfall != nullptr && waterfall->HasLostSlices())
        file.AddErrorMessage(SaveReason::ResultWithLostSlices(number, header));
    const CListVectorRef* list = SharedReferenceList(result);
    const CListVectorRef* stored = StoredListOf(header);
    const bool hasReferences = list != nullptr && !list->IsEmpty();
    if (hasReferences && list != stored) file.AddErrorMessage(SaveReason::ResultWithOwnReferences(number, header));
    if (!hasReferences && stored != nullptr && !stored->IsEmpty())
        file.AddErrorMessage(SaveReason::ResultWithReferencesOfOthers(number, header));
}

CListVectorRef* CSysteme::StoredListOf(const CResultHeader& header) const
{
    return header.GetIndexListe() >= 0 ? getListeReference(static_cast<std::size_t>(header.GetIndexListe())) : nullptr;
}

// Notes what the type word of the document leaves out, or hides from loads.
void CSysteme::NoteLeftOut(CMmioFile& file, bool isLXFFile, std::uint32_t type) const
{
    if (m_record != nullptr)
        for (const wstring& reason : m_record->Unstorable((type & FileType::kRecording) != 0))
            file.AddErrorMessage(reason);
    if (m_config != nullptr)
        for (const wstring& reason : m_config->Unstorable(isLXFFile)) file.AddErrorMessage(reason);
    if (m_config != nullptr && m_config->CameInPart()) file.AddErrorMessage(SaveReason::SettingsInPart(m_number));
    if ((type & FileType::kReferences) == 0 && m_referenceLists.StartsWithNull() && m_referenceLists.size() > 1)
        file.AddErrorMessage(SaveReason::ListsBeginEmpty(m_number));
    if (m_passedOver > 0) file.AddErrorMessage(SaveReason::ResultsPassedOver(m_number, m_passedOver));
    if (m_lostReferences) file.AddErrorMessage(SaveReason::ReferencesLost(m_number));
    if (!m_itracks.empty() && !MayHoldTracks()) file.AddErrorMessage(SaveReason::TransducersUnread(m_number));
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
    if (!file.Enter(ChunkKind::Results, results)) return false;
    const std::int32_t firstChild = file.Position();
    LoadedKinds kinds;
    OMMCKINFO info;
    while (file.Enter(ChunkKind::ResultHeader, info)) {
        // Wherever the data of the header is, the search for the next header continues after this one.
        OMMCKINFO headerChunk = info;
        if (!LoadResult(file, results, firstChild, scope, kinds)) return false;
        if (!file.ExitChunk(headerChunk)) return false;
    }
    return true;
}

// Called with the file at the data of a header.
bool CSysteme::LoadResult(CMmioFile& file, OMMCKINFO& results, std::int32_t firstChild, ZMXFFileLoadScope scope,
                          LoadedKinds& kinds)
{
    auto header = std::make_unique<CResultHeader>();
    if (!header->Load(&file)) return false;
    if (!scope.Takes(header->GetChunkId())) return true;
    OMMCKINFO data;
    if (!file.RoomFor(1, kLeastResultSize) || !file.mmioSeek(firstChild, OMMIO_SEEK_SET) ||
        !file.EnterChunk(data, results, header->GetChunkId()))
        return false;
    // Headers may name the same data: reading it costs time for each of them.
    const auto left = static_cast<std::uint64_t>(file.hFile()->BytesLeft());
    if (!file.Charge(std::min<std::uint64_t>(data.cksize, left))) return false;
    CResult* result = NewResult(*header).release();
    if (result == nullptr) {
        ++m_passedOver; // a kind of another version of the library
        return true;
    }
    // The arrays of the new object count too: data of version 0 doesn't change them.
    const LoadedKinds::Loaded& made = kinds.Of(*header);
    const auto staysInProportion = [&] { return result->GetSize() != made.size || file.Charge(made.bytes); };
    if (!result->Read(&file) || !staysInProportion()) {
        DeleteWithReferences({result});
        return false;
    }
    AddLoaded(std::move(header), *result);
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
