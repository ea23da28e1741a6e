#include "zelmresult/waterfalls/ref_waterfall.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/block_table.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <algorithm>
#include <limits>
#include <numeric>
#include <utility>

namespace ZelmResult {

namespace {

constexpr float kGap = std::numeric_limits<float>::infinity();
constexpr std::int32_t kShortTable = 5; // below it the dump names no entries of the table

template <class T>
void Permute(T* values, const std::vector<std::int32_t>& order)
{
    std::vector<T> sorted;
    sorted.reserve(order.size());
    for (const std::int32_t from : order) sorted.push_back(values[from]);
    std::copy(sorted.begin(), sorted.end(), values);
}

} // namespace

CRefWaterfall::CRefWaterfall() = default;

CRefWaterfall::CRefWaterfall(bool isWaterfall, CVectorRef* ref, bool hasReference)
    : m_isWaterfallReference(hasReference)
{
    SetIsWaterfall(isWaterfall);
    View(dynamic_cast<CWaterfallRef*>(ref));
}

CRefWaterfall::CRefWaterfall(std::uint32_t process, SignalType type) : CRefVector(process, 1, type, 0) {}

CRefWaterfall::CRefWaterfall(std::uint32_t process, std::int32_t size, SignalType type, CListVectorRef* list,
                             CVectorRef* ref, std::uint32_t wtfProcess, bool hasReference, bool isWaterfall)
    : CRefVector(process, size, type, list, wtfProcess), m_isWaterfallReference(hasReference)
{
    if (isWaterfall) SetIsWaterfall(true);
    if (!hasReference) return;
    View(dynamic_cast<CWaterfallRef*>(ref));
    UpdateVecteurReferencePtr();
}

CRefWaterfall::~CRefWaterfall()
{
    LetGoOfArrays();
    LoseWatchers(); // the reference may die with the list of the axis
}

// ---- The reference and its arrays ----

bool CRefWaterfall::SharesArrays() const
{
    return m_reference != nullptr && m_real.data != nullptr && m_real.data == m_reference->m_refValue.data;
}

// A reference knows the results that view it.
void CRefWaterfall::View(CWaterfallRef* reference)
{
    if (reference == m_reference) return;
    LetGoOfArrays();
    if (m_reference != nullptr) std::erase(m_reference->m_viewers, this);
    m_reference = reference;
    if (m_reference == nullptr) return;
    std::erase(m_reference->m_viewers, nullptr);
    m_reference->m_viewers.emplace_back(this);
}

void CRefWaterfall::LetGoOfArrays()
{
    if (SharesArrays()) m_real = {};
    if (m_reference != nullptr && SharedBlocNumbers() == m_reference->m_blockNumbers) FreeBlocNumbers();
}

void CRefWaterfall::UpdateVecteurReferencePtr()
{
    if (m_reference == nullptr || !m_isWaterfallReference) return;
    m_reference->HoldAtLeast(m_size);
    OwnArrays();
    if (!SharesArrays()) m_real.Free();
    m_real = m_reference->m_refValue;
    ShareBlocNumbers(m_reference->m_blockNumbers);
}

// Arrays that were borrowed from another object than the reference become this result's own.
void CRefWaterfall::OwnArrays()
{
    if (m_isMyDataTabs) return;
    m_isMyDataTabs = true;
    if (!SharesArrays()) m_real = {};
    if (m_imaginary.data != nullptr) m_imaginary = m_imaginary.Copy(m_size);
}

void CRefWaterfall::UnshareArrays()
{
    if (!SharesArrays()) return;
    m_real = m_real.Copy(m_real.count);
    CopyBlocNumbersOf(*this, m_size);
}

void CRefWaterfall::SetMyVecteurReference(const wstring& name, const CGrandeur* magnitude)
{
    if (!m_isWaterfallReference) return;
    auto* found = dynamic_cast<CWaterfallRef*>(GetReference(name, magnitude));
    if (found == nullptr) return;
    View(found);
    UpdateVecteurReferencePtr();
}

void CRefWaterfall::ReInitPtrTab()
{
    LetGoOfArrays();
    CRefVector::ReInitPtrTab();
}

void CRefWaterfall::ReAlloc()
{
    LetGoOfArrays();
    m_writtenTable.reset();
    CRefVector::ReAlloc();
    if (m_reference == nullptr || !m_isWaterfallReference) return;
    m_reference->SetSize(m_size);
    UpdateVecteurReferencePtr();
}

// ---- Operations that also change the reference ----

void CRefWaterfall::Clean()
{
    CRefVector::Clean();
    m_writtenTable.reset();
    for (std::int32_t i = 0; i < m_size && GetBlocNumberPtr(i) != nullptr; ++i)
        SetBlocNumber(i, CWaterfallRef::kNoBlock);
    if (m_reference != nullptr && m_isWaterfallReference) m_reference->Clean();
}

void CRefWaterfall::SetMagnitude(CGrandeur* quantity)
{
    CRefVector::SetMagnitude(quantity);
    if (m_reference != nullptr) m_reference->SetMagnitude(quantity);
}

void CRefWaterfall::SetYMin(float value)
{
    CRefVector::SetYMin(value);
    if (m_reference != nullptr) m_reference->SetRefMin(value);
}

void CRefWaterfall::SetYMax(float value)
{
    CRefVector::SetYMax(value);
    if (m_reference != nullptr) m_reference->SetRefMax(value);
}

void CRefWaterfall::SetFilled(std::int32_t points)
{
    CRefVector::SetFilled(points);
    if (m_reference != nullptr) m_reference->SetFilled(points);
}

void CRefWaterfall::setName(const wstring& name)
{
    if (m_reference != nullptr) m_reference->setName(name);
}

bool CRefWaterfall::operator==(const CRefWaterfall& other) const
{
    return m_isWaterfallReference == other.m_isWaterfallReference && m_reference == other.m_reference;
}

CResult& CRefWaterfall::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    View(nullptr);
    CRefVector::operator=(other);
    m_writtenTable.reset();
    if (const auto* source = dynamic_cast<const CRefWaterfall*>(other); source != nullptr) {
        m_isWaterfallReference = source->m_isWaterfallReference;
        if (source->m_writtenTable != nullptr) m_writtenTable = std::make_shared<BlocTable>(*source->m_writtenTable);
    }
    return *this;
}

CResult* CRefWaterfall::GetCopy() { return CopyOf(*this); }

// ---- Filling ----

void CRefWaterfall::PutReal(float value)
{
    if (m_size < 1) return;
    if (m_nextIndex >= 0 && m_nextIndex < m_real.count) m_real.data[m_nextIndex] = value;
    MoveRing(1, m_size);
}

// Adds infinities for missing blocks. Those that would be overwritten at once are only counted.
void CRefWaterfall::AddGaps(std::int64_t missing, CWaterfallRef* reference)
{
    if (missing < 1 || m_size < 1) return;
    const std::int64_t room = std::max(0, m_size - m_count);
    if (reference != nullptr) {
        for (std::int64_t i = std::min(missing, room); i > 0; --i)
            (void)reference->AddUnsortedBlockNumber(CWaterfallRef::kGapBlock);
        if (missing > room) reference->RemoveBlocks(m_firstBlockNb, m_firstBlockNb + (missing - room));
    }
    if (missing > m_size) MoveRing(missing - m_size, m_size);
    for (std::int64_t i = std::min<std::int64_t>(missing, m_size); i > 0; --i) PutReal(kGap);
}

std::int32_t CRefWaterfall::AddRefValue(float value, std::int32_t block, bool skipReference)
{
    if (m_size < 1 || m_real.data == nullptr) return -1;
    CWaterfallRef* reference = m_isWaterfallReference && !skipReference ? m_reference : nullptr;
    AddGaps(std::int64_t{block} - m_lastBlockNb - 1, reference);
    const std::int32_t position = m_nextIndex;
    if (reference != nullptr && GetWtfProcessType() == ResultKind::kSlidingCount && block >= m_size) {
        PutSliding(block, *reference);
    } else {
        const bool replaces = m_count >= m_size;
        const std::int32_t replaced = m_firstBlockNb;
        PutReal(value);
        if (reference != nullptr) {
            if (replaces) (void)reference->RemoveValueInSortedTabs(replaced);
            (void)reference->AddUnsortedBlockNumber(block);
            (void)reference->InsertValueInSortedTabs(value, block);
        }
    }
    m_lastBlockNb = block;
    return position;
}

// Lowers all values except gaps by 1; the newest is Size - 1.
void CRefWaterfall::PutSliding(std::int32_t block, CWaterfallRef& reference)
{
    const std::int32_t held = std::min(m_size, m_real.count);
    for (std::int32_t i = 0; i < held; ++i)
        if (m_real.data[i] != kGap) m_real.data[i] -= 1.0F;
    const std::int32_t position = m_nextIndex;
    const auto newest = static_cast<float>(m_size - 1);
    PutReal(newest);
    reference.CleanSortedTab();
    std::int64_t entryBlock = m_firstBlockNb;
    const auto insert = [&](std::int32_t begin, std::int32_t end) {
        for (std::int32_t i = begin; i < end; ++i, ++entryBlock)
            if (m_real.At(i) != kGap)
                (void)reference.InsertValueInSortedTabs(m_real.At(i), static_cast<std::int32_t>(entryBlock));
    };
    if (m_nextIndex != 0) insert(m_nextIndex, held);
    insert(0, std::min(position, held));
    (void)reference.AddUnsortedBlockNumber(block);
    (void)reference.InsertValueInSortedTabs(newest, block);
}

// Whether a ring may be made for that many blocks: block numbers in a small file can be far apart.
bool CRefWaterfall::IsSpanHeld(std::int64_t blocks, std::int32_t filled)
{
    constexpr std::int64_t kAlwaysHeld = 1 << 22;
    return blocks <= std::max(kAlwaysHeld, std::int64_t{filled} * 16);
}

void CRefWaterfall::SortByBlock()
{
    std::int32_t* blocks = GetBlocNumberPtr(0);
    if (std::is_sorted(blocks, blocks + m_nFilled)) return;
    std::vector<std::int32_t> order(static_cast<std::size_t>(m_nFilled));
    std::iota(order.begin(), order.end(), 0);
    std::stable_sort(order.begin(), order.end(),
                     [blocks](std::int32_t a, std::int32_t b) { return blocks[a] < blocks[b]; });
    Permute(blocks, order);
    if (m_nFilled <= m_real.count) Permute(m_real.data, order);
    if (IsComplex() && m_nFilled <= m_imaginary.count) Permute(m_imaginary.data, order);
}

bool CRefWaterfall::UpdateTabValue()
{
    if (m_nFilled < 1 || GetBlocNumberPtr(m_nFilled - 1) == nullptr) return false;
    SortByBlock();
    const std::vector<std::int32_t> blocks(GetBlocNumberPtr(0), GetBlocNumberPtr(0) + m_nFilled);
    const std::int64_t span = std::int64_t{blocks.back()} - blocks.front() + 1;
    if (span < m_nFilled || !IsSpanHeld(span, m_nFilled)) return false;
    std::vector<float> real;
    std::vector<float> imaginary;
    for (std::int32_t i = 0; i < m_nFilled; ++i) {
        real.push_back(m_real.At(i));
        imaginary.push_back(IsComplex() ? m_imaginary.At(i) : 0.0F);
    }
    MakeRing(static_cast<std::int32_t>(span));
    std::int32_t last = -1;
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        if (blocks[i] <= last) continue;
        (void)AddNewValue(real[i], imaginary[i], blocks[i]);
        last = blocks[i];
    }
    return true;
}

// Makes arrays of that many entries, and extends shared ones.
void CRefWaterfall::MakeRing(std::int32_t size)
{
    m_size = size;
    if (SharesArrays()) {
        m_reference->HoldAtLeast(size);
        m_imaginary.Free();
        if (IsComplex()) m_imaginary.Allocate(size);
    } else {
        CRefVector::ReAlloc();
    }
    std::fill_n(m_real.data, std::min(size, m_real.count), kGap);
}

// ---- Storage ----

template <class Io, class Self>
bool CRefWaterfall::fields(Io& io, Self& v, SharedBlocTable& table)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CRefVector>(v);
    BlockNumbers(io, "block numbers", table, v.m_size);
    io.dumpLines(v, [&table](const auto& self, CMmioFile& file) { self.dumpLines(file, table); });
    return io.ok();
}

void CRefWaterfall::dumpLines(CMmioFile& file, const std::shared_ptr<BlocTable>& table) const
{
    const auto block = [&table](std::int32_t i) { return EntryOf(table, i); };
    file.AddStringToDebugFile(u"CRefWaterfall");
    wstring line = Concat(u"m_plBlockNumber: size: ", m_size);
    if (m_size >= kShortTable) line += u" " + QuarterEntries(m_size, block);
    file.AddStringToDebugFile(line);
    file.AddStringToDebugFile(AllEntries(m_size, block));
}

bool CRefWaterfall::Write(CMmioFile* file)
{
    const std::int32_t size = std::exchange(m_size, m_nFilled); // the arrays keep their length
    RecordWriter out(*file);
    auto table = SharedBlocNumbers() != nullptr ? SharedBlocNumbers() : m_writtenTable;
    const bool written = fields(out, *this, table);
    m_size = size;
    if (m_reference == nullptr && !m_isWaterfallReference && SharedBlocNumbers() != nullptr) {
        m_writtenTable = SharedBlocNumbers();
        FreeBlocNumbers();
    }
    return written;
}

bool CRefWaterfall::Read(CMmioFile* file)
{
    m_writtenTable.reset();
    RecordReader in(*file);
    auto table = SharedBlocNumbers();
    const bool read = fields(in, *this, table);
    ShareBlocNumbers(table);
    return read;
}

void CRefWaterfall::Outline(RecordOutline& out) const
{
    SharedBlocTable table;
    (void)fields(out, *this, table);
}

} // namespace ZelmResult
