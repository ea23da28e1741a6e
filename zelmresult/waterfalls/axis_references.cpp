// What an axis does with its references: the axis is declared with the results and knows the lists by name only.

#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/vector_ref.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <algorithm>
#include <memory>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kVersion = 6;
constexpr std::uint16_t kFirstWithFilled = 2;
constexpr std::uint16_t kFirstOfWaterfalls = 3; // from here on a waterfall's references are stored elsewhere
constexpr std::uint16_t kFirstWithChosen = 4;
constexpr std::uint16_t kLastWithTable = 5;
constexpr std::size_t kFormerEntrySize = 16;
constexpr std::uint16_t kShortTable = 5; // the one version whose former table holds 2-byte values

} // namespace

CReferencedAxis::CReferencedAxis() : CReferencedAxis(nullptr, false) {}

CReferencedAxis::CReferencedAxis(CListVectorRef* list, bool isWaterfall) : m_isWaterfall(isWaterfall)
{
    SetReferenceList(list != nullptr ? list : new CListVectorRef(false));
    Choose(m_references->GetFirstRef());
}

CReferencedAxis::CReferencedAxis(const CReferencedAxis& other) : Watchable(other) { *this = other; }

CReferencedAxis& CReferencedAxis::operator=(const CReferencedAxis& other)
{
    if (this == &other) return *this;
    CopyBooks(other);
    m_blocNumbers = other.m_blocNumbers;
    SetReferenceList(other.m_references);
    if (m_references != nullptr) m_references->Register(this);
    Choose(other.GetChosenReference());
    return *this;
}

CReferencedAxis::~CReferencedAxis() { Detach(); }

// The next choice forgets that a list died.
void CReferencedAxis::Choose(CVectorRef* reference)
{
    if (m_references.HasDied()) m_references = nullptr;
    m_chosen = reference;
}

void CReferencedAxis::Hold(CListVectorRef* list)
{
    if (m_references.HasDied()) m_chosen = nullptr;
    m_references = list;
}

void CReferencedAxis::Detach()
{
    CListVectorRef* list = m_references;
    if (list == nullptr) return;
    list->Free(this);
    if (list->CanBeDestroy()) delete list;
}

void CReferencedAxis::SetReferenceList(CListVectorRef* list)
{
    if (list == m_references) return;
    Detach();
    Hold(list);
    if (m_references != nullptr) m_references->Register(this);
}

CListVectorRef& CReferencedAxis::ListOrNew()
{
    if (m_references == nullptr) SetReferenceList(new CListVectorRef(false));
    return *m_references;
}

const std::vector<CVectorRef*>* CReferencedAxis::GetReferencesList() const
{
    return m_references != nullptr ? m_references->GetReferences() : nullptr;
}

std::vector<CVectorRef*> CReferencedAxis::GetValidReferencesList() const
{
    std::vector<CVectorRef*> valid;
    if (m_references != nullptr)
        std::copy_if(m_references->begin(), m_references->end(), std::back_inserter(valid),
                     [](const CVectorRef* reference) { return !reference->IsHidenReference(); });
    return valid;
}

void CReferencedAxis::GetRefNames(std::vector<wstring>& names) const
{
    names.clear();
    if (m_references != nullptr) m_references->GetRefNames(names);
}

CVectorRef* CReferencedAxis::GetReference(const wstring& name, const CGrandeur* quantity) const
{
    return m_references != nullptr ? m_references->GetReference(name, quantity) : nullptr;
}

void CReferencedAxis::SetChosenReference(CVectorRef* reference)
{
    if (reference != nullptr && GetReference(reference->name(), nullptr) != reference)
        reference = m_references != nullptr ? m_references->GetFirstRef() : nullptr;
    Choose(reference);
}

void CReferencedAxis::SetReference(const wstring& name, const CGrandeur* quantity, CVectorRef* fallback)
{
    if (m_references == nullptr) return Choose(nullptr);
    if (CVectorRef* named = GetReference(name, nullptr); named != nullptr) return Choose(named);
    if (fallback == nullptr) {
        CVectorRef* best = GetReference(name, quantity);
        return Choose(best != nullptr ? best : m_references->GetFirstRef());
    }
    const CGrandeur* wanted = fallback->GetMagnitude();
    if (wanted == nullptr) return;
    for (CVectorRef* reference : *m_references)
        if (wanted->Compare(reference->GetMagnitude()) == 0) return Choose(reference);
}

void CReferencedAxis::AddVectorRef(CVectorRef* reference) { ListOrNew().AddVectorRef(reference); }

void CReferencedAxis::RemoveVectorRef(CVectorRef* reference)
{
    if (m_references == nullptr || reference == nullptr) return;
    (void)m_references->RemoveVectorRef(reference);
    if (GetChosenReference() == reference) Choose(m_references->GetFirstRef());
}

void CReferencedAxis::DeleteAllRef()
{
    Choose(nullptr);
    CListVectorRef* list = m_references;
    if (list == nullptr) return;
    list->DeleteAllRef(); // this axis may belong to a result that is deleted with them
    if (list->CanBeDestroy()) delete list;
}

void CReferencedAxis::GetAnyRefValue(float*& values, const wstring& name, const CGrandeur* quantity) const
{
    values = nullptr;
    if (m_references != nullptr) m_references->GetAnyRefValue(values, name, quantity, m_isWaterfall);
}

// build has no effect.
void CReferencedAxis::CopyReference(const CListVectorRef& source, std::uint32_t /*size*/, bool /*build*/)
{
    const std::vector<CVectorRef*> references = *source.GetReferences(); // source may be this axis' own list
    for (CVectorRef* reference : references) {
        AddVectorRef(reference);
        SetReference(reference->name(), reference->GetMagnitude(), reference);
    }
}

CReferencedAxis& CReferencedAxis::operator=(CReferencedAxis* other)
{
    if (other == nullptr || other == this) return *this;
    Choose(nullptr);
    const CListVectorRef& list = ListOrNew();
    const CVectorRef* wanted = other->GetChosenReference();
    const auto same = std::find_if(list.begin(), list.end(), [wanted](const CVectorRef* reference) {
        return wanted != nullptr && reference->name() == wanted->name();
    });
    if (same != list.end()) Choose(*same);
    CopyBooks(*other);
    return *this;
}

void CReferencedAxis::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    if (m_references != nullptr) m_references->AddInvolvedGrandeur(counts);
}

void CReferencedAxis::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    if (m_references != nullptr) m_references->ReplaceGrandeur(old, replacement);
}

// ---- Stored form. Two functions and no shared list: the writer counts hidden references that it doesn't write and
// ignores failures of the list, the reader skips a table that isn't written any more. ----

bool CReferencedAxis::Write(CMmioFile* file)
{
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"CReferencedAxis");
    if (!file->mmioWrite_ushort(kVersion) || !file->mmioWrite_int(m_nFilled)) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(Concat(u"m_nFilled: ", m_nFilled));
    if (m_isWaterfall) return true;
    const std::int32_t count = m_references != nullptr ? m_references->GetCount() : 0;
    std::int32_t chosen = 0;
    if (!file->mmioWrite_int(count)) return false;
    if (m_references != nullptr) (void)m_references->Write(file, GetChosenReference(), chosen, m_nFilled);
    if (!HoldsPlainReferences()) file->NoteUnreadable();
    if (!file->mmioWrite_int(chosen)) return false;
    if (file->GenerateInfoFile())
        file->AddStringToDebugFile(Concat(u"CReferencedXAxis: Nbre elmts ", count, u", Reference: ", chosen, u" "));
    return true;
}

std::size_t CReferencedAxis::StoredReferences() const
{
    return m_isWaterfall || m_references == nullptr ? 0 : static_cast<std::size_t>(m_references->GetCount());
}

// A read makes as many references as are counted, all of them plain.
bool CReferencedAxis::HoldsPlainReferences() const
{
    return m_references == nullptr ||
           std::all_of(m_references->begin(), m_references->end(), [](const CVectorRef* reference) {
               return !reference->IsHidenReference() && dynamic_cast<const CWaterfallRef*>(reference) == nullptr;
           });
}

bool CReferencedAxis::Read(CMmioFile* file)
{
    std::uint16_t version = 0;
    if (!file->mmioRead_ushort(version)) return false;
    if (version >= kFirstWithFilled && !file->mmioRead_int(m_nFilled)) return false;
    if (version == 0) return true;
    Detach();
    if (!m_isWaterfall || version < kFirstOfWaterfalls) return ReadReferences(*file, version);
    if (m_references != nullptr) m_references->Register(this);
    return version > kLastWithTable || SkipFormerTable(*file, version);
}

bool CReferencedAxis::ReadReferences(CMmioFile& file, std::uint16_t version)
{
    std::int32_t count = 0;
    if (!file.mmioRead_int(count)) return false;
    for (std::int32_t i = 0; i < count; ++i) {
        if (file.hFile()->BytesLeft() == 0 || !file.RoomFor(1, sizeof(CVectorRef))) return false;
        auto reference = std::make_unique<CVectorRef>();
        if (!reference->Read(&file)) return false;
        ListOrNew().AddVectorRef(reference.release());
    }
    std::int32_t chosen = 0;
    if (version >= kFirstWithChosen && !file.mmioRead_int(chosen)) return false;
    if (m_references != nullptr) m_references->Register(this);
    Choose(count > 0 && m_references != nullptr ? m_references->GetRef(chosen) : nullptr);
    return true;
}

bool CReferencedAxis::SkipFormerTable(CMmioFile& file, std::uint16_t version)
{
    const std::int64_t valueSize = version == kShortTable ? 2 : 4;
    std::int32_t entries = 0;
    if (!file.mmioRead_int(entries)) return false;
    for (std::int32_t i = 0; i < entries; ++i) {
        wstring name;
        std::int32_t values = 0;
        if (file.hFile()->BytesLeft() == 0 || !file.RoomFor(1, kFormerEntrySize) || !file.ReadCString(name) ||
            !file.mmioRead_int(values))
            return false;
        const std::int64_t bytes = std::max(values, 0) * valueSize;
        if (bytes > file.hFile()->BytesLeft() || !file.mmioSeek(static_cast<std::int32_t>(bytes), OMMIO_SEEK_CUR))
            return false;
    }
    return true;
}

void CReferencedAxis::Outline(RecordOutline& out) const
{
    (void)out.record(kRecordName, newest{kVersion});
    out.i32("m_nFilled", m_nFilled, since{kFirstWithFilled});
    const only stored{"IsWaterfall is false, or version below 3", true};
    out.i32("reference count", m_count, stored);
    out.nested("references", "block CVectorRef, count times", stored);
    out.i32("chosen index", m_count, since{kFirstWithChosen}, stored);
    const only former{"IsWaterfall is true", true};
    out.nested("former table", "i32 count; each a text, i32 n, n values of 4 bytes, of 2 in version 5", since{3},
               until{5}, former);
}

// ---- Properties of the chosen reference ----

float CReferencedAxis::ReferenceMin() const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetRefMin() : 0.0F;
}
float CReferencedAxis::ReferenceMax() const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetRefMax() : 0.0F;
}

void CReferencedAxis::SetReferenceMin(float value)
{
    if (GetChosenReference() != nullptr) GetChosenReference()->SetRefMin(value);
}

void CReferencedAxis::SetReferenceMax(float value)
{
    if (GetChosenReference() != nullptr) GetChosenReference()->SetRefMax(value);
}

CGrandeur* CReferencedAxis::ReferenceMagnitude() const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetMagnitude() : nullptr;
}

void CReferencedAxis::SetReferenceMagnitude(CGrandeur* quantity)
{
    if (GetChosenReference() != nullptr) GetChosenReference()->SetMagnitude(quantity);
}

float CReferencedAxis::ReferenceRelPrecision(float otherwise) const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetRelPrecisionY() : otherwise;
}

float CReferencedAxis::ReferenceAbsPrecision(float otherwise) const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetAbsPrecisionY() : otherwise;
}

void CReferencedAxis::SetSizeOfReferences(std::int32_t size)
{
    if (m_references != nullptr) m_references->SetSize(size);
}

void CReferencedAxis::CopyVectorRefOf(const CReferencedAxis& other)
{
    CVectorRef* copy = GetChosenReference();
    ListOrNew().CopyVectorRef(other.m_references, other.GetChosenReference(), copy);
    Choose(copy);
}

} // namespace ZelmResult
