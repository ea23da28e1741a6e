#include "zelmresult/document/mmio_file_vector_ref.h"

#include "zelmresult/document/result_header.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::size_t kIndexed = 3; // characters

std::uint64_t IndexKey(const wstring& text, std::size_t at)
{
    return std::uint64_t{text[at]} << 32U | std::uint64_t{text[at + 1]} << 16U | std::uint64_t{text[at + 2]};
}

void AddUser(const CVectorRef* reference)
{
    if (auto* quantity = dynamic_cast<CGrandeurFichier*>(reference->GetMagnitude()); quantity != nullptr)
        quantity->AddUser(1);
}

} // namespace

void ShownSeries::Add(const CResultHeader& header, CResult* result)
{
    auto* series = dynamic_cast<CRefWaterfall*>(result);
    if (series == nullptr || series->GetMyVecteurReference() == nullptr) return;
    List& list = m_lists[header.GetIndexListe()];
    list.series.push_back(
        {header.analyzerCaption() + u"." + header.processCaption() + u" " + header.responseName(), series});
    const wstring& text = list.series.back().text;
    for (std::size_t i = 0; i + kIndexed <= text.size(); ++i) {
        std::vector<std::size_t>& places = list.byThree[IndexKey(text, i)];
        if (places.empty() || places.back() + 1 != list.series.size()) places.push_back(list.series.size() - 1);
    }
}

// Compares only with those that hold the rarest three characters of the name.
CRefWaterfall* ShownSeries::Search(const List& list, const wstring& name)
{
    const auto fits = [&](std::size_t i) { return Contains(list.series[i].text, name); };
    const std::vector<std::size_t>* rarest = nullptr; // null for a name that is too short
    for (std::size_t i = 0; i + kIndexed <= name.size(); ++i) {
        const auto places = list.byThree.find(IndexKey(name, i));
        if (places == list.byThree.end()) return nullptr;
        if (rarest == nullptr || places->second.size() < rarest->size()) rarest = &places->second;
    }
    if (rarest == nullptr) {
        for (std::size_t i = 0; i < list.series.size(); ++i)
            if (fits(i)) return list.series[i].result;
        return nullptr;
    }
    const auto found = std::find_if(rarest->begin(), rarest->end(), fits);
    return found != rarest->end() ? list.series[*found].result : nullptr;
}

CRefWaterfall* ShownSeries::Find(const wstring& name, std::int32_t listIndex)
{
    const auto place = m_lists.find(listIndex);
    if (place == m_lists.end()) return nullptr;
    List& list = place->second;
    const auto [known, isNew] = list.found.try_emplace(name, nullptr);
    if (!isNew) return known->second;
    known->second = Search(list, name);
    return known->second;
}

bool MmioFile_VectorRef::GoTo(std::int32_t system)
{
    OMMCKINFO chunk;
    if (system < MostOf(ChunkKind::System)) return m_file.TopOfChunkSystem(chunk, static_cast<std::int16_t>(system));
    return m_file.TopOfFile() && m_file.EnterChunkRIFF(chunk);
}

// The next reference after the position.
MmioFile_VectorRef::Found MmioFile_VectorRef::Next(std::int32_t listIndex, std::unique_ptr<CWaterfallRef>& reference)
{
    OMMCKINFO chunk;
    OMMCKINFO noParent;
    if (!m_file.EnterChunkVectorRef(chunk, noParent, listIndex)) return Found::None;
    if (!m_file.RoomFor(1, sizeof(CWaterfallRef))) return Found::Failure;
    reference = std::make_unique<CWaterfallRef>();
    return reference->Read(&m_file) && m_file.ExitChunk(chunk) ? Found::Reference : Found::Failure;
}

template <class Results>
CListVectorRef* MmioFile_VectorRef::ReadFor(const Results& results, std::int32_t listIndex, std::int32_t system)
{
    ShownSeries series;
    for (const auto& [header, result] : results) series.Add(*header, result);
    return GoTo(system) ? ReadList(series, listIndex) : nullptr;
}

CListVectorRef* MmioFile_VectorRef::ReadVecteurRef(const std::map<CResultHeader*, CResult*>& results,
                                                   std::int32_t listIndex, std::int32_t system)
{
    return ReadFor(results, listIndex, system);
}

CListVectorRef* MmioFile_VectorRef::ReadVecteurRef(const ResultMap& results, std::int32_t listIndex,
                                                   std::int32_t system)
{
    return ReadFor(results, listIndex, system);
}

CListVectorRef* MmioFile_VectorRef::ReadVecteurRefFrom(std::int32_t position, ShownSeries& series,
                                                       std::int32_t listIndex)
{
    return m_file.mmioSeek(position, OMMIO_SEEK_SET) ? ReadList(series, listIndex) : nullptr;
}

// The list of that index, from the position on.
CListVectorRef* MmioFile_VectorRef::ReadList(ShownSeries& series, std::int32_t listIndex)
{
    std::unique_ptr<CListVectorRef> list;
    std::vector<CVectorRef*> adopted; // that belong to results
    while (true) {
        std::unique_ptr<CWaterfallRef> reference;
        const Found found = Next(listIndex, reference);
        if (found == Found::None) {
            if (list != nullptr) std::for_each(list->begin(), list->end(), AddUser);
            return list.release();
        }
        if (found == Found::Failure) break;
        if (list == nullptr) list = std::make_unique<CListVectorRef>(false);
        if (CRefWaterfall* shown = series.Find(reference->name(), listIndex); shown != nullptr) {
            CWaterfallRef* own = shown->GetMyVecteurReference();
            *own = static_cast<CResult*>(reference.get());
            shown->UpdateVecteurReferencePtr();
            if (!own->IsInList()) adopted.push_back(own);
            list->AddVectorRef(own);
        } else {
            list->AddVectorRef(reference.release());
        }
    }
    for (const CVectorRef* own : adopted) (void)list->RemoveVectorRef(own);
    m_file.NoteUnreadable();
    return nullptr;
}

bool MmioFile_VectorRef::FillVecteurRef(CRefWaterfall* waterfall, const wstring& /*name*/, CListVectorRef& list,
                                        std::int32_t listIndex, std::int32_t system)
{
    return GoTo(system) && Append(list, listIndex) && (waterfall == nullptr || waterfall->UpdateTabValue());
}

bool MmioFile_VectorRef::FillVecteurRefFrom(std::int32_t position, CListVectorRef& list, std::int32_t listIndex)
{
    return m_file.mmioSeek(position, OMMIO_SEEK_SET) && Append(list, listIndex);
}

// The references of that index, from the position on.
bool MmioFile_VectorRef::Append(CListVectorRef& list, std::int32_t listIndex)
{
    while (true) {
        std::unique_ptr<CWaterfallRef> reference;
        const Found found = Next(listIndex, reference);
        if (found != Found::Reference) return found == Found::None;
        AddUser(reference.get());
        list.AddVectorRef(reference.release());
    }
}

} // namespace ZelmResult
