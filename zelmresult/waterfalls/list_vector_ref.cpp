#include "zelmresult/waterfalls/list_vector_ref.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/ref_waterfall.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <algorithm>
#include <memory>
#include <utility>

namespace ZelmResult {

namespace {

template <class T>
bool Holds(const std::vector<T*>& list, const T* entry)
{
    return std::find(list.begin(), list.end(), entry) != list.end();
}

template <class T>
bool Remove(std::vector<T*>& list, const T* entry)
{
    const auto place = std::find(list.begin(), list.end(), entry);
    if (place == list.end()) return false;
    list.erase(place);
    return true;
}

bool HasSameQuantity(const CVectorRef& reference, const CGrandeur& quantity)
{
    const CGrandeur* own = reference.GetMagnitude();
    return own != nullptr && own->Compare(&quantity) == 0;
}

} // namespace

CListVectorRef::CListVectorRef(bool isManager) : m_isManager(isManager) {}

CListVectorRef::~CListVectorRef() { Destroy(); }

CListVectorRef* CListVectorRef::GetCopy() const
{
    auto copy = std::make_unique<CListVectorRef>(false);
    *copy = *this;
    return copy.release();
}

CListVectorRef& CListVectorRef::operator=(const CListVectorRef& other)
{
    if (this == &other) return *this;
    if (!m_isManager) {
        RemoveAll();
        FreeUserList();
    }
    for (CVectorRef* reference : other.m_references)
        if (auto* copy = dynamic_cast<CVectorRef*>(reference->GetCopy()); copy != nullptr) AddVectorRef(copy);
    return *this;
}

void CListVectorRef::Register(CReferencedAxis* axis) { m_users.insert_or_assign(axis, axis); }

void CListVectorRef::UnRegister(CReferencedAxis* axis) { m_users.erase(axis); }

bool CListVectorRef::IsListAlwaysUsed() const
{
    return std::any_of(m_users.begin(), m_users.end(), [](const auto& user) { return user.second != nullptr; });
}

void CListVectorRef::Free(CReferencedAxis* axis)
{
    UnRegister(axis);
    if (CanBeDestroy()) Destroy();
}

void CListVectorRef::AddVectorRef(CVectorRef* reference)
{
    if (reference == nullptr || Holds(reference->m_lists, this)) return; // a reference is in few lists
    m_references.push_back(reference);
    reference->m_lists.push_back(this);
}

bool CListVectorRef::RemoveVectorRef(const CVectorRef* reference)
{
    const auto place = std::find(m_references.begin(), m_references.end(), reference);
    if (place == m_references.end()) return false;
    (void)Remove((*place)->m_lists, this);
    m_references.erase(place);
    return true;
}

bool CListVectorRef::RemoveVectorRef(const wstring& name)
{
    const auto place = std::find_if(m_references.begin(), m_references.end(),
                                    [&name](const CVectorRef* reference) { return reference->name() == name; });
    return place != m_references.end() && RemoveVectorRef(*place);
}

void CListVectorRef::RemoveAll()
{
    for (CVectorRef* reference : m_references) (void)Remove(reference->m_lists, this);
    m_references.clear();
}

void CListVectorRef::Destroy()
{
    const std::vector<CVectorRef*> references = m_references;
    RemoveAll();
    for (CVectorRef* reference : references)
        if (reference->m_lists.empty()) delete reference;
}

void CListVectorRef::DestroyAssociatedWaterfallRef()
{
    const bool wasManager = std::exchange(m_isManager, true); // keeps the list when its last user leaves
    for (CVectorRef* reference : std::vector<CVectorRef*>(m_references)) {
        const auto* ofWaterfall = dynamic_cast<const CWaterfallRef*>(reference);
        if (ofWaterfall != nullptr) delete ofWaterfall->GetMyRefVect(); // which removes itself from the reference
    }
    m_isManager = wasManager;
}

void CListVectorRef::DeleteAllRef()
{
    DestroyAssociatedWaterfallRef();
    Destroy();
}

void CListVectorRef::DuplicateAllReference(const CListVectorRef& source)
{
    for (CVectorRef* reference : std::vector<CVectorRef*>(source.m_references)) { // source may be this list
        auto* original = dynamic_cast<CWaterfallRef*>(reference);
        if (original == nullptr) continue;
        auto* copy = new CWaterfallRef;
        *copy = static_cast<CResult*>(original);
        AddVectorRef(copy);
        CRefWaterfall* shown = original->GetMyRefVect();
        if (shown == nullptr) continue;
        auto* result = new CRefWaterfall(ResultKind::kReference, shown->GetSize(), shown->GetComplexType(), this, copy,
                                         shown->GetWtfProcessType(), true, true);
        *result = static_cast<CResult*>(shown);
        copy->SetMyRefVect(result);
        result->SetMyVecteurReference(copy->name(), copy->GetMagnitude());
    }
}

void CListVectorRef::SetSize(std::int32_t size)
{
    for (CVectorRef* reference : m_references) reference->SetSize(size);
}

CVectorRef* CListVectorRef::GetReference(const wstring& name, const CGrandeur* quantity) const
{
    CVectorRef* sameQuantity = nullptr;
    if (quantity != nullptr) {
        for (CVectorRef* reference : m_references) {
            if (!HasSameQuantity(*reference, *quantity)) continue;
            if (reference->name() == name) return reference;
            if (sameQuantity == nullptr) sameQuantity = reference;
        }
    }
    for (CVectorRef* reference : m_references)
        if (Contains(reference->name(), name)) return reference;
    return sameQuantity;
}

CVectorRef* CListVectorRef::GetRef(std::int32_t index) const
{
    return index >= 0 && index < GetCount() ? m_references[static_cast<std::size_t>(index)] : nullptr;
}

CVectorRef* CListVectorRef::GetNext(Position& position)
{
    CVectorRef* reference = GetAt(position);
    ++position.index;
    position.isValid = position.isValid && position.index < position.references->size();
    return reference;
}

CVectorRef* CListVectorRef::GetAt(const Position& position)
{
    return position.isValid && position.index < position.references->size() ? (*position.references)[position.index]
                                                                            : nullptr;
}

void CListVectorRef::GetAnyRefValue(float*& values, const wstring& name, const CGrandeur* quantity,
                                    bool isWaterfall) const
{
    CVectorRef* reference = GetReference(name, quantity);
    values = nullptr;
    if (reference != nullptr) values = isWaterfall ? SortedValues(*reference) : reference->GetRefValue();
}

// Only references of waterfalls keep their values sorted.
float* CListVectorRef::SortedValues(CVectorRef& reference)
{
    auto* ofWaterfall = dynamic_cast<CWaterfallRef*>(&reference);
    if (ofWaterfall == nullptr || ofWaterfall->GetSortedValues().GetSize() == 0) return nullptr;
    return ofWaterfall->GetSortedValues().GetData();
}

void CListVectorRef::GetRefNames(std::vector<wstring>& names) const
{
    names.clear();
    for (const CVectorRef* reference : m_references) names.push_back(reference->name());
}

void CListVectorRef::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    for (const CVectorRef* reference : m_references) reference->AddInvolvedGrandeur(counts);
}

void CListVectorRef::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    for (CVectorRef* reference : m_references) reference->ReplaceGrandeur(old, replacement);
}

void CListVectorRef::CopyVectorRef(const CListVectorRef* source, const CVectorRef* chosen, CVectorRef*& copyOfChosen)
{
    if (source == nullptr) return;
    const std::vector<CVectorRef*> references = source->m_references; // source may be this list
    for (CVectorRef* reference : references) {
        auto* copy = new CVectorRef;
        *copy = static_cast<CResult*>(reference);
        if (reference == chosen) copyOfChosen = copy;
        AddVectorRef(copy);
    }
}

void CListVectorRef::CopyPrecisionFrom(const CListVectorRef& source)
{
    const std::size_t pairs = std::min(m_references.size(), source.m_references.size());
    for (std::size_t i = 0; i < pairs; ++i) {
        CResult& target = *m_references[i];
        const CResult& from = *source.m_references[i];
        target.m_absPrecisionX = from.GetAbsPrecisionX();
        target.m_relPrecisionX = from.GetRelPrecisionX();
        target.m_absPrecisionZ = from.GetAbsPrecisionZ();
        target.m_relPrecisionZ = from.GetRelPrecisionZ();
        target.m_absPrecisionY = CResult::AtLeastPrecision(from.GetAbsPrecisionY());
        target.m_relPrecisionY = CResult::AtLeastPrecision(from.GetRelPrecisionY());
    }
}

bool CListVectorRef::Write(CMmioFile* file, const CVectorRef* chosen, std::int32_t& chosenIndex, std::int32_t size)
{
    std::int32_t written = 0;
    for (CVectorRef* reference : m_references) {
        if (reference->IsHidenReference()) continue;
        reference->AdjustSize(size);
        reference->SetFilled(size);
        if (!reference->Write(file)) return false;
        if (reference == chosen) chosenIndex = written;
        ++written;
    }
    return true;
}

bool CListVectorRef::Write(CMmioFile* file, std::int32_t index)
{
    for (CVectorRef* reference : m_references) {
        OMMCKINFO chunk;
        if (!file->CreateChunkVectorRef(chunk, index) || !reference->Write(file) || !file->ExitChunk(chunk))
            return false;
    }
    return true;
}

} // namespace ZelmResult
