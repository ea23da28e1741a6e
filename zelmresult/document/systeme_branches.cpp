// The branches of a system besides its results: recording, settings, transducers and references.

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/mmio_file_vector_ref.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/document/save_reason.h"
#include "zelmresult/document/systeme.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/result.h"
#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <algorithm>
#include <array>
#include <map>

namespace ZelmResult {

namespace {

using idn::Idn;

constexpr double kSecondsPerTick = 1e-7;

Idn SettingIdn(const Idn& submodule, std::uint32_t number)
{
    return submodule.settingIdn(static_cast<idn::ESetting>(number));
}

} // namespace

std::uint32_t CSysteme::BranchTypeBits() const
{
    std::uint32_t bits = 0;
    if (m_record != nullptr && m_record->getNbrRecord() >= 1) bits |= FileType::kRecording;
    if (m_config != nullptr) bits |= FileType::kSettings;
    if (!m_itracks.empty()) bits |= FileType::kTracks;
    return bits;
}

// ---- Recording ----

std::int32_t CSysteme::getNbrChannel() const { return m_record != nullptr ? m_record->getTrackCount() - 1 : 0; }

double CSysteme::GetRecordDuration() const
{
    if (m_record == nullptr) return 0.0;
    return static_cast<double>(m_record->getRecordHeaderstr().RecordLength) * kSecondsPerTick;
}

bool CSysteme::IsConvertedSignal() const
{
    return m_record != nullptr && m_record->getRecordHeader().IsConvertedSignal();
}

bool CSysteme::SaveRecording(CMmioFile& file)
{
    OMMCKINFO recording;
    if (!file.CreateChunkEnregistrement(recording)) return false;
    // The document asks the file whether it failed.
    if (m_record != nullptr) (void)m_record->Save(&file);
    if (const CGrandeur* quantity = file.quantities().TakeUnexpected(); quantity != nullptr)
        file.AddErrorMessage(SaveReason::RecordingWithUnlistedQuantity(m_number, *quantity));
    return file.ExitChunk(recording);
}

// A recording that can't be read whole is kept as far as it was read.
bool CSysteme::LoadRecording(CMmioFile& file, bool ownQuantities, bool normalisation)
{
    OMMCKINFO recording;
    if (!file.Enter(ChunkKind::Recording, recording)) return false;
    delete m_record;
    m_record = new CRecord(false);
    return m_record->Load(&file, ownQuantities, normalisation) && file.ExitChunk(recording);
}

// ---- Settings ----

void CSysteme::AddReglage(CReglageData* setting)
{
    if (setting == nullptr) return;
    if (m_config == nullptr) m_config = new CConfigData;
    m_config->AddReglage(setting);
}

CReglageData* CSysteme::GetReglage(const Idn& idn) const
{
    return m_config != nullptr ? m_config->GetReglage(idn) : nullptr;
}

std::set<Idn> CSysteme::GetSubmoduleSet(const Idn& idn, idn::ESubmoduleCollection kind) const
{
    return m_config != nullptr ? m_config->GetSubmoduleSet(idn, kind) : std::set<Idn>();
}

// The host sets the text with which a result's caption should begin.
void CSysteme::ApplyCaptionRule(CResultHeader& header) const
{
    if (m_config == nullptr) return;
    const auto* prefix = m_config->GetReglageOf<CChaineData>(
        Idn::generateSettingIdn(idn::Module(300, 1), idn::Submodule(901, 1), static_cast<idn::ESetting>(1)));
    if (prefix == nullptr || header.analyzerCaption().starts_with(prefix->value())) return;
    header.setAnalyzerCaption(prefix->value() + u": " + header.analyzerCaption());
}

void CSysteme::GetFrequencyUsed(float* out) const
{
    constexpr std::array groups{u"fs1", u"fs2", u"slow", u"fast"};
    std::fill_n(out, groups.size(), 0.0F);
    if (m_config == nullptr) return;
    const Idn inputs = Idn::generateModuleIdn(idn::Analyzer(0), idn::Module(3, 1));
    for (const Idn& input : GetSubmoduleSet(inputs, static_cast<idn::ESubmoduleCollection>(365))) {
        const auto* isUsed = m_config->GetReglageOf<CBooleenData>(SettingIdn(input, 2));
        const auto* group = m_config->GetReglageOf<CChaineData>(SettingIdn(input, 14));
        const auto* frequency = m_config->GetReglageOf<CScalaireData>(SettingIdn(input, 11));
        if (isUsed == nullptr || !isUsed->value() || group == nullptr || frequency == nullptr) continue;
        const auto* const found = std::find(groups.begin(), groups.end(), group->value());
        if (found != groups.end()) out[found - groups.begin()] = frequency->value();
    }
}

// A system without settings, in a document where another has some, writes an empty tree: a load looks for one.
bool CSysteme::SaveSettings(CMmioFile& file, bool isLXFFile)
{
    return m_config != nullptr ? m_config->Save(&file, isLXFFile) : CConfigData().Save(&file, isLXFFile);
}

// A tree that can't be read whole is kept as far as it was read, and is no failure. One version has fields without a
// chunk after its list, which no search can skip: after is then set to the position after them, else it isn't changed.
bool CSysteme::LoadSettings(CMmioFile& file, ZMXFFileLoadScope scope, std::int32_t& after)
{
    OMMCKINFO system = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    if (!file.EnterChunkConfig(chunk, system)) return false;
    const NestedChunk settings(file, chunk);
    delete m_config;
    m_config = new CConfigData;
    if (!scope.SkipsConfig()) (void)m_config->Load(&file);
    if (!CConfigData::PassOver(&file)) return false;
    const std::int64_t end = std::int64_t{chunk.dwDataOffset} + chunk.cksize;
    if (file.Position() > end + 1) after = file.Position(); // after the list and its pad byte
    return true;
}

std::unique_ptr<CReglageData> CSysteme::GetReglage(CMmioFile* file, const Idn& idn)
{
    OMMCKINFO system = file->CurrentMmckinfo();
    OMMCKINFO chunk;
    if (!file->EnterChunkConfig(chunk, system)) return nullptr;
    NestedChunk settings(*file, chunk);
    auto setting = CConfigData::GetReglage(file, idn);
    return settings.Exit() ? std::move(setting) : nullptr;
}

// ---- Transducers ----

void CSysteme::AddITrack(CITrack* track) { (void)m_itracks.Add(track); }

bool CSysteme::SaveTracks(CMmioFile& file)
{
    OMMCKINFO tracks;
    if (!file.CreateChunkITRACK(tracks)) return false;
    for (const CITrack* track : m_itracks)
        if (!track->Save(&file) && !file.HasFailed()) file.AddErrorMessage(SaveReason::TransducerUnwritable(m_number));
    return file.ExitChunk(tracks);
}

// Version 1.1 of the application wrote no transducers, whatever the type word says.
bool CSysteme::MayHoldTracks() const
{
    return m_config == nullptr || m_config->versionTavide().major != 1 || m_config->versionTavide().minor != 1;
}

bool CSysteme::LoadTracks(CMmioFile& file, ZMXFFileLoadScope scope)
{
    OMMCKINFO system = file.CurrentMmckinfo();
    OMMCKINFO tracks;
    // Without the settings the version is unknown, and with it whether there are any.
    if (!file.EnterChunkITrack(tracks, system)) return scope.SkipsConfig() && m_config != nullptr;
    if (!file.PassVersionIfThere()) return false;
    for (auto track = std::make_unique<CITrack>(); track->Load(&file); track = std::make_unique<CITrack>()) {
        if (!file.RoomFor(1, 2 * sizeof(CITrack))) return false;
        (void)m_itracks.Add(track.release());
    }
    return file.ExitChunk(tracks);
}

// ---- References ----

// A load connects each stored reference with the first result whose text contains its name; see ShownSeries.
void CSysteme::NoteMistakenReferences(CMmioFile& file) const
{
    ShownSeries series;
    std::map<const CVectorRef*, const CRefWaterfall*> shown;
    for (const auto& [header, result] : m_map) {
        series.Add(*header, result);
        if (CWaterfallRef* reference = ReferenceOfItsOwn(result); reference != nullptr)
            shown.emplace(reference, dynamic_cast<const CRefWaterfall*>(result));
    }
    for (std::size_t i = 0; i < m_referenceLists.size(); ++i) {
        const CListVectorRef* list = m_referenceLists.At(i);
        if (list == nullptr) continue;
        for (const CVectorRef* reference : *list) {
            const CRefWaterfall* found = series.Find(reference->name(), static_cast<std::int32_t>(i));
            const auto wanted = shown.find(reference);
            if (found == nullptr ? wanted == shown.end() : found->GetMyVecteurReference() == reference) continue;
            file.AddErrorMessage(SaveReason::ReferenceOfOtherResult(m_number, reference->name()));
        }
    }
}

void CSysteme::SaveReferences(CMmioFile& file)
{
    NoteMistakenReferences(file);
    const std::int32_t last = LastListNamed(); // from there on a load ends at the first gap
    bool isPastEnd = false;
    for (std::size_t i = 0; i < m_referenceLists.size(); ++i) {
        CListVectorRef* list = m_referenceLists.At(i);
        if (list == nullptr || list->IsEmpty()) {
            isPastEnd = isPastEnd || static_cast<std::int32_t>(i) >= last;
            continue;
        }
        const bool isWritten = list->Write(&file, static_cast<std::int32_t>(i));
        if (file.TakeUnreadable() || (!isWritten && !file.HasFailed()))
            file.AddErrorMessage(SaveReason::ListUnwritable(m_number, i));
        if (isPastEnd) file.AddErrorMessage(SaveReason::ListUnreachable(m_number, i));
        if (const CGrandeur* quantity = file.quantities().TakeUnexpected(); quantity != nullptr)
            file.AddErrorMessage(SaveReason::ListWithUnlistedQuantity(m_number, i, *quantity));
    }
}

// The highest index of a list that a waterfall, or a vector along one, names; -1 without one.
std::int32_t CSysteme::LastListNamed() const
{
    constexpr std::int32_t highest = 999;
    std::int32_t last = -1;
    for (const auto& [header, result] : m_map)
        if (result != nullptr && result->IsOfType(ResultMaskBit::kWaterfall | ResultMaskBit::kRefWaterfall))
            last = std::max(last, header->GetIndexListe());
    return std::min(last, highest);
}

void CSysteme::LoadReferences(CMmioFile& file)
{
    ShownSeries series;
    for (const auto& [header, result] : m_map) series.Add(*header, result);
    MmioFile_VectorRef reader(file);
    // By its place, since the code of system 16 is that of system 1.
    const std::int32_t start = file.CurrentSystemMmmioInfo().lDiskOffset;
    // After a list that died before the save there may be others that results name.
    const std::int32_t last = LastListNamed();
    for (std::int32_t i = 0;; ++i) {
        CListVectorRef* list = reader.ReadVecteurRefFrom(start, series, i);
        if (file.TakeUnreadable()) m_lostReferences = true;
        if (list == nullptr && i >= last) break;
        if (list == nullptr) {
            m_referenceLists.AddEmptyPlace();
            continue;
        }
        m_referenceLists.Add(list);
        m_loadedLists.Add(list);
    }
}

// The list of references that a waterfall, or a vector along one, shares with others.
CListVectorRef* CSysteme::SharedReferenceList(CResult& result)
{
    const CReferencedAxis* axis = result.GetReferencedAxis();
    return axis != nullptr ? axis->GetReferences() : nullptr;
}

// The reference that a vector along a waterfall shows.
CWaterfallRef* CSysteme::ReferenceOfItsOwn(const CResult* result)
{
    const auto* series = dynamic_cast<const CRefWaterfall*>(result);
    return series != nullptr ? series->GetMyVecteurReference() : nullptr;
}

void CSysteme::AffecteReference()
{
    for (const auto& [header, result] : m_map) {
        CReferencedAxis* axis = result != nullptr ? result->GetReferencedAxis() : nullptr;
        // Every other axis was stored with its references.
        if (axis == nullptr || !axis->IsWaterfall() || header->GetIndexListe() < 0) continue;
        CListVectorRef* list = getListeReference(static_cast<std::size_t>(header->GetIndexListe()));
        if (list == nullptr) continue;
        axis->SetReferenceList(list);
        axis->SetReference(header->chosenReference(), nullptr, nullptr);
    }
}

} // namespace ZelmResult
