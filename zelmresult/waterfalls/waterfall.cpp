#include "zelmresult/waterfalls/waterfall.h"

#include "zelmresult/waterfalls/list_vector_ref.h"
#include "zelmresult/waterfalls/slice_order.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <array>

namespace ZelmResult {

CWaterfall::CWaterfall(bool isWaterfall) : CReferencedAxis(nullptr, isWaterfall)
{
    m_resultType = SizeType::Waterfall;
    m_dimension = kDimensionWaterfall;
}

CWaterfall::CWaterfall(std::uint32_t process, std::uint32_t wtfProcess, std::int32_t size, std::int32_t zSize,
                       CListVectorRef* refs, SignalType type, bool allocate)
    : CResult(process, size, type, wtfProcess), CReferencedAxis(refs, true), m_zSize(zSize),
      m_complexDim(GetComplexDim(type)), m_pointCount(size)
{
    m_resultType = SizeType::Waterfall;
    m_dimension = kDimensionWaterfall;
    if (!allocate) return;
    m_tempVector = CWaterfall::MakeTempVector();
    CWaterfallBufferFactory::FillAndAllocateArray(m_buffers, m_complexDim, m_pointCount, m_zSize);
}

CWaterfall::~CWaterfall() { HideSlices(); }

std::int32_t CWaterfall::GetComplexDim(SignalType type)
{
    switch (type) {
    case SignalType::Real:
    case SignalType::Octave:
    case SignalType::OctaveMin:
    case SignalType::OctaveMax: return 1;
    case SignalType::Complex: return 2;
    case SignalType::OctaveMinMax: return 3;
    default: return -1;
    }
}

// ---- Blocks ----

std::int32_t CWaterfall::AddBlock(std::int32_t block, std::int32_t rawIndex)
{
    if (m_zSize < 1 || !IsAllocated()) return -1;
    std::int64_t missing = std::max<std::int64_t>(std::int64_t{block} - m_lastBlockNb - 1, 0);
    if (missing > 0 && m_nextIndex >= m_zSize) { // the ring was larger
        MoveRing(1, m_zSize);
        --missing;
    }
    if (missing > 0) {
        // The missing blocks may fill the ring more than once.
        const auto cleared = static_cast<std::int32_t>(std::min<std::int64_t>(missing, m_zSize));
        const std::int32_t atEnd = std::min(cleared, m_zSize - m_nextIndex);
        m_buffers.ClearSortedIndexes(m_nextIndex, atEnd);
        m_buffers.ClearSortedIndexes(0, cleared - atEnd);
        MoveRing(missing, m_zSize);
    }
    const std::int32_t place = m_nextIndex;
    m_buffers.SetSortedIndex(place, rawIndex == -1 ? place : rawIndex);
    MoveRing(1, m_zSize);
    m_lastBlockNb = block;
    return place;
}

std::int32_t CWaterfall::AddBlockByIndex(std::int32_t index)
{
    if (index < 0 || index >= m_zSize || !IsAllocated()) return -1;
    if (!m_buffers.HasMapToRawIndex(index)) m_buffers.SetSortedIndex(index, index);
    return index;
}

std::int32_t CWaterfall::GetIndexByBloc(std::int32_t block) const
{
    if (block < m_firstBlockNb || block > m_lastBlockNb) return -1;
    std::int64_t place = std::int64_t{m_firstIndex} - m_firstBlockNb + block;
    if (place >= m_zSize) place -= m_zSize;
    const bool isShown =
        place >= 0 && place <= INT32_MAX && m_buffers.HasMapToRawIndex(static_cast<std::int32_t>(place));
    return isShown ? static_cast<std::int32_t>(place) : -1;
}

std::int32_t CWaterfall::GetBlockNumberFromWbArray(std::int32_t rawIndex, std::int32_t& cursor) const
{
    if (m_buffers.IsEmpty()) return -1;
    for (std::int32_t slot = std::max(cursor, 0); slot < m_nFilled; ++slot) {
        if (m_buffers[0]->MapToRawIndex(slot) != rawIndex) continue;
        cursor = slot;
        return slot;
    }
    return -1;
}

bool CWaterfall::UpdateDataTab()
{
    if (m_nFilled < 1) {
        m_zSize = 0;
        return true;
    }
    if (GetBlocNumberPtr(m_nFilled - 1) == nullptr) return false; // there are fewer slices than Filled says
    SortSlices();
    const std::int64_t slots = std::int64_t{GetBlocNumber(m_nFilled - 1)} + 1;
    if (slots < 1 || slots < m_nFilled || slots > INT32_MAX) return false;
    m_buffers.ClearSortedIndexMap();
    m_buffers.SetZSparseSize(static_cast<std::int32_t>(slots));
    m_zSize = static_cast<std::int32_t>(slots);
    std::int32_t last = -1;
    for (std::int32_t raw = 0; raw < m_nFilled; ++raw) {
        const std::int32_t block = GetBlocNumber(raw);
        if (block <= last) continue; // when two slices have the same block, the first counts
        (void)AddBlock(block, raw);
        last = block;
    }
    return true;
}

// Sorts the table in ascending order, and moves the slices with it where they can move.
void CWaterfall::SortSlices()
{
    std::vector<std::int32_t> blocks(static_cast<std::size_t>(m_nFilled));
    for (std::int32_t raw = 0; raw < m_nFilled; ++raw) blocks[static_cast<std::size_t>(raw)] = GetBlocNumber(raw);
    if (std::is_sorted(blocks.begin(), blocks.end())) return;
    MoveSlices(SourcesOfSort(blocks));
    std::stable_sort(blocks.begin(), blocks.end());
    for (std::int32_t raw = 0; raw < m_nFilled; ++raw) SetBlocNumber(raw, blocks[static_cast<std::size_t>(raw)]);
}

// Copies into each raw slice the former content of its source, with memory for one slice.
void CWaterfall::MoveSlices(const std::vector<std::int32_t>& sources)
{
    for (std::int32_t dimension = 0; dimension < m_buffers.GetCount(); ++dimension) {
        CWaterfallBuffer& buffer = *m_buffers[dimension];
        std::vector<float> spare(static_cast<std::size_t>(std::max(buffer.GetRealSize(), 0)));
        const auto points = static_cast<std::int32_t>(spare.size());
        for (const SliceMove& move : MovesOf(sources)) {
            if (move.from == SliceMove::kSpare) {
                if (CSliceHandler slice = buffer.GetRawSlice(move.to); slice.HasSlice())
                    slice.CopySliceFrom(spare.data(), points);
            } else if (move.to == SliceMove::kSpare) {
                if (const CSliceHandler slice = buffer.GetRawSlice(move.from); slice.HasSlice())
                    slice.CopySliceTo(spare.data(), points);
            } else {
                buffer.CopySingleRawSlice(move.from, move.to);
            }
        }
    }
}

// ---- Values ----

// Null for a dimension that the waterfall doesn't have.
CWaterfallBuffer* CWaterfall::BufferOf(std::int32_t dimension) const
{
    if (dimension < 0 || dimension >= m_complexDim || dimension >= m_buffers.GetCount()) return nullptr;
    return m_buffers[dimension];
}

CWaterfall::CSliceHandler CWaterfall::GetTabData(std::int32_t dimension, std::int32_t slot)
{
    CWaterfallBuffer* const buffer = BufferOf(dimension);
    return buffer != nullptr ? buffer->GetSortedSlice(slot) : CSliceHandler();
}

float CWaterfall::GetTabPoint(std::int32_t dimension, std::int32_t slot, std::int32_t point)
{
    CWaterfallBuffer* const buffer = BufferOf(dimension);
    return buffer != nullptr ? buffer->GetSortedSinglePoint(slot, point) : 0.0F;
}

template <class T>
void CWaterfall::CopyValues(std::int32_t dimension, std::int32_t slot, T* out, std::int32_t n)
{
    CWaterfallBuffer* const buffer = BufferOf(dimension);
    const float* values = buffer != nullptr ? buffer->PeekRawSlice(buffer->MapToRawIndex(slot)) : nullptr;
    const CSliceHandler pinned = values == nullptr ? GetTabData(dimension, slot) : CSliceHandler();
    if (values == nullptr) values = pinned.GetSlicePointer();
    const std::int32_t held = values != nullptr ? std::clamp(n, 0, m_buffers.GetRealSize()) : 0;
    std::copy_n(values, held, out);
    if (n > held) std::fill(out + held, out + n, T{0});
}

void CWaterfall::GetValues(std::int32_t dimension, std::int32_t slot, float* out, std::int32_t n)
{
    CopyValues(dimension, slot, out, n);
}

void CWaterfall::GetValues(std::int32_t dimension, std::int32_t slot, double* out, std::int32_t n)
{
    CopyValues(dimension, slot, out, n);
}

void CWaterfall::ShowReal(const CSliceHandler& slice)
{
    m_shownReal = slice;
    FitTempVector();
    m_tempVector->ShowReal(m_shownReal.GetSlicePointer());
}

void CWaterfall::ShowImaginary(const CSliceHandler& slice)
{
    m_shownImaginary = slice;
    FitTempVector();
    m_tempVector->ShowImaginary(m_shownImaginary.GetSlicePointer());
}

// The vector never claims more points than its slices have, whatever sizes were set or failed to be read.
void CWaterfall::FitTempVector()
{
    m_tempVector->AdjustSize(IsAllocated() ? std::min(m_size, m_buffers.GetRealSize()) : m_size);
}

CVector* CWaterfall::WithQuantities()
{
    m_tempVector->SetMagnitude(GetMagnitude());
    m_tempVector->SetXMagnitude(m_xMagnitude);
    return m_tempVector.get();
}

// Points the vector at two slices and releases the former ones.
CVector* CWaterfall::Show(const CSliceHandler& real, const CSliceHandler& imaginary)
{
    if (m_tempVector == nullptr) return nullptr;
    ShowReal(real);
    if (m_complexDim == 2) ShowImaginary(imaginary);
    return WithQuantities();
}

void CWaterfall::HideSlices()
{
    if (m_tempVector != nullptr) {
        m_tempVector->SetRealValue(nullptr);
        m_tempVector->SetImValue(nullptr);
    }
    m_shownReal.Detach();
    m_shownImaginary.Detach();
}

CVector* CWaterfall::GetTempVector(std::int32_t slot)
{
    return Show(GetTabData(0, slot), m_complexDim == 2 ? GetTabData(1, slot) : CSliceHandler());
}

CVector* CWaterfall::GetTempVectorFromDimData(std::int32_t rawIndex)
{
    if (!IsAllocated()) return m_tempVector.get();
    return Show(m_buffers[0]->GetRawSlice(rawIndex),
                m_complexDim == 2 ? m_buffers[1]->GetRawSlice(rawIndex) : CSliceHandler());
}

CVector* CWaterfall::GetTempVector_Verrue(std::int32_t index, bool& useBlockTable)
{
    if (!useBlockTable) {
        if (GetTabData(0, index).HasSlice()) return GetTempVector(index);
        useBlockTable = true;
    }
    return GetTempVector(GetBlocNumber(index));
}

// ---- Ranges and quantities ----

void CWaterfall::SetRealMax(float value)
{
    m_realMax = value;
    if (m_tempVector != nullptr) m_tempVector->SetRealMax(value);
}

void CWaterfall::SetRealMin(float value)
{
    m_realMin = value;
    if (m_tempVector != nullptr) m_tempVector->SetRealMin(value);
}

void CWaterfall::SetImMax(float value)
{
    m_imMax = value;
    if (m_tempVector != nullptr) m_tempVector->SetImMax(value);
}

void CWaterfall::SetImMin(float value)
{
    m_imMin = value;
    if (m_tempVector != nullptr) m_tempVector->SetImMin(value);
}

void CWaterfall::SetXMax(float value)
{
    m_xMax = value;
    if (m_tempVector != nullptr) m_tempVector->SetXMax(value);
}

void CWaterfall::SetXMin(float value)
{
    m_xMin = value;
    if (m_tempVector != nullptr) m_tempVector->SetXMin(value);
}

void CWaterfall::SetYMin(float value)
{
    m_realMin = m_imMin = value;
    if (m_tempVector != nullptr) m_tempVector->SetYMin(value);
}

void CWaterfall::SetYMax(float value)
{
    m_realMax = m_imMax = value;
    if (m_tempVector != nullptr) m_tempVector->SetYMax(value);
}

void CWaterfall::SetMagnitude(CGrandeur* quantity)
{
    CResult::SetMagnitude(quantity);
    if (m_tempVector != nullptr) m_tempVector->SetMagnitude(quantity);
}

void CWaterfall::SetXMagnitude(CGrandeur* quantity)
{
    m_xMagnitude = quantity;
    if (m_tempVector != nullptr) m_tempVector->SetXMagnitude(quantity);
}

void CWaterfall::SetReference(const wstring& name, const CGrandeur* quantity, CVectorRef* fallback)
{
    CReferencedAxis::SetReference(name, quantity, fallback);
    if (GetChosenReference() != nullptr) m_zMagnitude = ReferenceMagnitude();
}

void CWaterfall::GetZReference(std::vector<CVectorRef*>& references) const
{
    const std::vector<CVectorRef*>* all = GetReferencesList();
    references = all != nullptr ? *all : std::vector<CVectorRef*>();
}

float CWaterfall::GetPrecisionZ() const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetAbsPrecisionX() : 0.0F;
}

float CWaterfall::GetRelPrecisionZ() const
{
    return GetChosenReference() != nullptr ? GetChosenReference()->GetRelPrecisionX() : 0.0F;
}

void CWaterfall::FreeRefList()
{
    CListVectorRef* list = GetReferences();
    if (list == nullptr) return;
    list->FreeRefList();
    SetChosenReference(nullptr);
    delete list; // which leaves its users
}

void CWaterfall::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddInvolvedGrandeur(counts);
    CReferencedAxis::AddInvolvedGrandeur(counts);
    CGrandeur::AddInvolved(m_xMagnitude, counts);
    CGrandeur::AddInvolved(m_zMagnitude, counts);
}

void CWaterfall::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CResult::ReplaceGrandeur(old, replacement);
    CReferencedAxis::ReplaceGrandeur(old, replacement);
    CGrandeur::Replace(m_xMagnitude, old, replacement);
    CGrandeur::Replace(m_zMagnitude, old, replacement);
}

// ---- Sizes and life ----

std::unique_ptr<CVector> CWaterfall::MakeTempVector() const
{
    return std::make_unique<CVector>(GetProcessType(), m_size, m_complexType, GetWtfProcessType(), false);
}

void CWaterfall::SetSize(std::int32_t size)
{
    if (size == m_size) return;
    m_size = size;
    m_pointCount = GetRealSize(size);
    m_nFilled = 0;
    ReAlloc();
}

void CWaterfall::SetZSize(std::int32_t slices, bool force)
{
    if (slices == m_zSize && !force) return;
    m_zSize = slices;
    m_nFilled = 0;
    ReAlloc();
}

void CWaterfall::ReAlloc()
{
    ClearTab();
    m_complexDim = GetComplexDim(m_complexType);
    m_pointCount = GetRealSize(m_size);
    CWaterfallBufferFactory::FillAndAllocateArray(m_buffers, m_complexDim, m_pointCount, m_zSize);
    if (m_tempVector == nullptr) m_tempVector = MakeTempVector();
    m_tempVector->SetComplexType(m_complexType, true);
    m_tempVector->SetSize(m_size);
}

bool CWaterfall::HasLostSlices() const
{
    const bool areWanted = m_zSize > 0 && (m_size > 0 || m_pointCount > 0);
    for (std::int32_t i = 0; i < m_buffers.GetCount(); ++i)
        if (m_buffers[i]->HasLostSlices() || (areWanted && !m_buffers[i]->IsAllocated())) return true;
    return m_copiesLostSlices;
}

void CWaterfall::ClearTab()
{
    HideSlices();
    m_buffers.Clear();
    m_copiesLostSlices = false;
    FreeBlocNumbers();
}

void CWaterfall::Clean()
{
    CReferencedAxis::Clean();
    for (std::int32_t raw = 0; GetBlocNumberPtr(raw) != nullptr; ++raw) SetBlocNumber(raw, -1);
    m_buffers.ClearSortedIndexMap();
}

} // namespace ZelmResult
