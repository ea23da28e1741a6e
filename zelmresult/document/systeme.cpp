#include "zelmresult/document/systeme.h"

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/result_header.h"
#include "zelmresult/recordings/itrack.h"
#include "zelmresult/recordings/record.h"
#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <algorithm>
#include <optional>
#include <set>
#include <tuple>

namespace ZelmResult {

namespace {

bool IsRecordPreview(const CResultHeader* header) { return header->GetProcessType() == ResultKind::kRecordingPreview; }

auto SortKey(const CResultHeader& header)
{
    return std::make_tuple(header.GetIdnResponse().module(), header.GetProcessType(),
                           header.GetIdnResponse().submodule(), header.GetIdnReference().submodule(),
                           header.GetTemporel(), static_cast<std::uint32_t>(header.GetNumReference()));
}

} // namespace

CSysteme::~CSysteme()
{
    std::set<CResult*> results;
    for (const auto& [header, result] : m_map) {
        delete header;
        results.insert(result);
    }
    if (m_needToRemoveEverything) DeleteWithReferences(results);
    DeleteUnusedLists();
    delete m_record;
    for (const CITrack* track : m_itracks) delete track;
    delete m_config;
}

void CSysteme::AjouteResultat(CResultHeader* header, CResult* result, bool registerReference)
{
    if (header == nullptr) return;
    if (m_map.Set(header, result)) {
        m_headers.push_back(header);
        m_results.push_back(result);
    } else {
        ReplaceResultatsFromArray(header, nullptr, header, result);
    }
    if (registerReference && result != nullptr) RegisterReferenceList(*header, *result);
}

// As AjouteResultat, for a header that nobody knows yet.
void CSysteme::AddLoaded(std::unique_ptr<CResultHeader> header, CResult& result)
{
    CResultHeader* const added = header.release();
    m_map.Append(added, &result);
    m_headers.push_back(added);
    m_results.push_back(&result);
    RegisterReferenceList(*added, result);
}

void CSysteme::RegisterReferenceList(CResultHeader& header, CResult& result)
{
    if (!result.IsOfType(ResultMaskBit::kWaterfall) && !result.IsOfType(ResultMaskBit::kRefWaterfall)) return;
    CListVectorRef* list = SharedReferenceList(result);
    if (list == nullptr || list->IsEmpty()) return;
    const std::optional<std::size_t> known = m_referenceLists.IndexOf(list);
    header.SetIndexListe(static_cast<std::int32_t>(known.value_or(m_referenceLists.size())));
    if (!known) m_referenceLists.Add(list);
}

// Deletes a pair that has been removed from the map, but not a result that another header shares.
void CSysteme::DeleteTaken(const ResultMap::Entry& entry)
{
    RemoveResultatsFromArray(entry.first, entry.second);
    delete entry.first;
    DeleteUnlessShared(entry.second);
}

void CSysteme::DeleteUnlessShared(CResult* result) const
{
    if (std::none_of(m_map.begin(), m_map.end(), [result](const auto& entry) { return entry.second == result; }))
        DeleteWithReferences({result});
}

// Deletes the references that only these results show first: a list that dies with a result deletes what it holds.
// References in a list belong to the list.
void CSysteme::DeleteWithReferences(const std::set<CResult*>& results)
{
    std::set<CWaterfallRef*> references;
    for (const CResult* result : results) {
        CWaterfallRef* reference = ReferenceOfItsOwn(result);
        if (reference == nullptr || reference->IsInList()) continue;
        const auto& viewers = reference->GetViewers();
        if (std::all_of(viewers.begin(), viewers.end(),
                        [&](CRefWaterfall* viewer) { return results.contains(viewer); }))
            references.insert(reference);
    }
    for (CWaterfallRef* reference : references) delete reference;
    for (CResult* result : results) delete result;
}

void CSysteme::DeleteUnusedLists()
{
    for (std::size_t i = 0; i < m_loadedLists.size(); ++i) {
        CListVectorRef* list = m_loadedLists.At(i);
        if (list == nullptr || !list->CanBeDestroy()) continue;
        // A result that isn't deleted keeps the reference that it shows.
        for (const CVectorRef* reference : std::vector<CVectorRef*>(*list->GetReferences()))
            if (const auto* shown = dynamic_cast<const CWaterfallRef*>(reference);
                shown != nullptr && !shown->GetViewers().empty())
                (void)list->RemoveVectorRef(reference);
        delete list;
    }
    m_loadedLists.Clear();
}

void CSysteme::DeleteOperatedResults(const CResultHeader& of, const CResultHeader* spared)
{
    const auto operated = m_map.TakeIf(
        [&](const ResultMap::Entry& entry) { return entry.first != spared && entry.first->IsOperatedResultOf(of); });
    for (const ResultMap::Entry& entry : operated) DeleteTaken(entry);
}

const ResultMap::Entry* CSysteme::FirstCorresponding(const CResultHeader& header) const
{
    const auto found =
        std::find_if(m_map.begin(), m_map.end(), [&](const auto& entry) { return entry.first->CorrespondA(header); });
    return found == m_map.end() ? nullptr : &*found;
}

bool CSysteme::RemoveResultat(const CResultHeader* header)
{
    const ResultMap::Entry* found = header != nullptr ? FirstCorresponding(*header) : nullptr;
    if (found == nullptr) return false;
    const CResultHeader wanted = *header; // it may be the stored one, which is deleted now
    const ResultMap::Entry entry = *found;
    (void)m_map.TakeIf([&](const ResultMap::Entry& other) { return other.first == entry.first; });
    DeleteTaken(entry);
    DeleteOperatedResults(wanted, nullptr);
    return true;
}

bool CSysteme::ReplaceResultat(CResultHeader* newHeader, const CResultHeader* matching, CResult* newResult)
{
    const ResultMap::Entry* found =
        newHeader != nullptr && matching != nullptr ? FirstCorresponding(*matching) : nullptr;
    if (found == nullptr) return false;
    const CResultHeader wanted = *matching;
    const ResultMap::Entry old = *found;
    // A header that is in the system already moves to the new place; its former result is removed.
    if (newHeader != old.first) {
        RemoveResultatsFromArray(newHeader, nullptr);
        const auto former = m_map.TakeIf([&](const ResultMap::Entry& other) { return other.first == newHeader; });
        for (const ResultMap::Entry& entry : former)
            if (entry.second != newResult) DeleteUnlessShared(entry.second);
    }
    ReplaceResultatsFromArray(old.first, old.second, newHeader, newResult);
    (void)m_map.TakeIf([&](const ResultMap::Entry& other) { return other.first == old.first; });
    (void)m_map.Set(newHeader, newResult);
    if (old.first != newHeader) delete old.first;
    DeleteUnlessShared(old.second);
    DeleteOperatedResults(wanted, newHeader);
    return true;
}

bool CSysteme::RemoveAllResultats()
{
    std::set<CResult*> results;
    std::set<const CVectorRef*> listed;
    for (const CListVectorRef* list : m_referenceLists.All())
        if (list != nullptr) listed.insert(list->begin(), list->end());
    std::set<CWaterfallRef*> references; // of all results, collected before any is deleted
    for (const auto& [header, result] : m_map) {
        results.insert(result);
        CWaterfallRef* reference = ReferenceOfItsOwn(result);
        if (reference != nullptr && !listed.contains(reference)) references.insert(reference);
        delete header;
    }
    m_map.Clear();
    m_headers.clear();
    m_results.clear();
    m_referenceLists.Clear();
    for (CWaterfallRef* reference : references) delete reference;
    for (CResult* result : results) delete result;
    DeleteUnusedLists();
    return true;
}

// The two lists match index by index, so the place of the header counts for both.
void CSysteme::RemoveResultatsFromArray(const CResultHeader* header, const CResult* /*result*/)
{
    const auto place = std::find(m_headers.begin(), m_headers.end(), header);
    if (place == m_headers.end()) return;
    m_results.erase(m_results.begin() + (place - m_headers.begin()));
    m_headers.erase(place);
}

void CSysteme::ReplaceResultatsFromArray(const CResultHeader* header, const CResult* /*result*/,
                                         CResultHeader* newHeader, CResult* newResult)
{
    const auto place = std::find(m_headers.begin(), m_headers.end(), header);
    if (place == m_headers.end() || newHeader == nullptr) return;
    m_results[static_cast<std::size_t>(place - m_headers.begin())] = newResult;
    *place = newHeader;
}

void CSysteme::GetResultHeaderListe(std::vector<CResultHeader*>& out) const
{
    for (const auto& entry : m_map) out.push_back(entry.first);
}

bool CSysteme::HasRecordPreview() const { return std::any_of(m_headers.begin(), m_headers.end(), IsRecordPreview); }

bool CSysteme::CreeListesResultatsOrdonnees()
{
    std::vector<ResultMap::Entry> ordered(m_map.begin(), m_map.end());
    std::stable_sort(ordered.begin(), ordered.end(),
                     [](const auto& a, const auto& b) { return SortKey(*a.first) < SortKey(*b.first); });
    m_orderedHeaders.clear();
    m_orderedResults.clear();
    for (const auto& [header, result] : ordered) {
        m_orderedHeaders.push_back(header);
        m_orderedResults.push_back(result);
    }
    return true;
}

void CSysteme::SetArPtrListeReferences(const std::vector<CListVectorRef*>& lists)
{
    for (CListVectorRef* list : std::vector<CListVectorRef*>(lists)) m_referenceLists.Add(list);
}

CListVectorRef* CSysteme::getListeReference(std::size_t index) const { return m_referenceLists.At(index); }

bool CSysteme::IsInListReferences(const CVectorRef* reference) const
{
    const std::vector<CListVectorRef*>& lists = m_referenceLists.All();
    return std::any_of(lists.begin(), lists.end(), [reference](const CListVectorRef* list) {
        return list != nullptr && std::find(list->begin(), list->end(), reference) != list->end();
    });
}

void CSysteme::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    for (const auto& entry : m_map)
        if (entry.second != nullptr) entry.second->ReplaceGrandeur(old, replacement);
    if (m_record != nullptr) m_record->ReplaceGrandeur(old, replacement);
}

std::uint32_t CSysteme::TypeBits() const
{
    std::uint32_t bits = BranchTypeBits();
    if (HasRecordPreview()) bits |= FileType::kRecordPreview;
    if (!std::all_of(m_headers.begin(), m_headers.end(), IsRecordPreview)) bits |= FileType::kResults;
    const std::vector<CListVectorRef*>& lists = m_referenceLists.All();
    const bool hasLists = std::any_of(lists.begin(), lists.end(), [](const auto* list) { return list != nullptr; });
    if (hasLists && !m_referenceLists.StartsWithNull()) bits |= FileType::kReferences;
    return bits;
}

} // namespace ZelmResult
