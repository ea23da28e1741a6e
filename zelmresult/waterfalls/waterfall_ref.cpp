#include "zelmresult/waterfalls/waterfall_ref.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/block_table.h"
#include "zelmresult/waterfalls/insertion_order.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace ZelmResult {

namespace {

constexpr float kGap = std::numeric_limits<float>::infinity();
// NaNs have no order, so values with NaNs are inserted one by one, each moving those after it. No writer stores NaNs; a
// file with more values than this isn't worth the time.
constexpr std::int32_t kMostUnordered = 1 << 14;

} // namespace

CWaterfallRef::CWaterfallRef(std::uint32_t process, std::int32_t size, const wstring& name, SignalType type, bool tacho)
    : CVectorRef(process, size, name, type), m_isTacho(tacho)
{
    CWaterfallRef::ReAlloc();
}

CWaterfallRef::CWaterfallRef(const CWaterfallRef& other) : CVectorRef(other) { CopyOwnFields(other); }

CWaterfallRef& CWaterfallRef::operator=(const CWaterfallRef& other)
{
    if (this == &other) return *this;
    HideArrays();
    CVectorRef::operator=(other);
    CopyOwnFields(other);
    ShowArrays();
    return *this;
}

void CWaterfallRef::CopyOwnFields(const CWaterfallRef& other)
{
    m_sortedValues = other.m_sortedValues;
    m_sortedBlocs = other.m_sortedBlocs;
    m_unsortedPosition = other.m_unsortedPosition;
    m_isTacho = other.m_isTacho;
    m_stamp = other.m_stamp;
    m_blockNumbers = other.m_blockNumbers;
    SetMyRefVect(other.m_myRefVect);
    SetMyRefVectTemp(other.m_myRefVectTemp);
}

CWaterfallRef::~CWaterfallRef() { HideArrays(); }

void CWaterfallRef::SetMyRefVect(CRefWaterfall* result) { m_myRefVect = result; }
void CWaterfallRef::SetMyRefVectTemp(CRefWaterfall* result) { m_myRefVectTemp = result; }

std::int32_t* CWaterfallRef::GetBlockNumberPtr() const
{
    return m_blockNumbers != nullptr ? m_blockNumbers->data() : nullptr;
}

// ---- The arrays and the objects that share them ----

std::vector<CRefWaterfall*> CWaterfallRef::GetViewers() const
{
    std::vector<CRefWaterfall*> living(m_viewers.begin(), m_viewers.end());
    std::erase(living, nullptr);
    return living;
}

void CWaterfallRef::HideArrays()
{
    for (CRefWaterfall* viewer : GetViewers()) viewer->LetGoOfArrays();
}

void CWaterfallRef::ShowArrays()
{
    for (CRefWaterfall* viewer : GetViewers()) viewer->UpdateVecteurReferencePtr();
}

void CWaterfallRef::ReAlloc()
{
    HideArrays();
    CVectorRef::ReAlloc();
    m_blockNumbers.reset();
    if (m_size > 0) m_blockNumbers = std::make_shared<BlocTable>(static_cast<std::size_t>(m_size), kNoBlock);
    CleanSortedTab();
    m_unsortedPosition = 0;
    ShowArrays();
}

// A result from a file may have more points than its reference, which stores no gaps.
void CWaterfallRef::HoldAtLeast(std::int32_t entries)
{
    const bool hasNewTable = m_blockNumbers == nullptr && entries > 0;
    if (hasNewTable) m_blockNumbers = std::make_shared<BlocTable>();
    if (m_blockNumbers != nullptr && entries > std::ssize(*m_blockNumbers))
        m_blockNumbers->resize(static_cast<std::size_t>(entries), kNoBlock);
    if (entries <= m_refValue.count) {
        if (hasNewTable) ShowArrays();
        return;
    }
    const FloatArray longer = m_refValue.Copy(entries);
    std::fill(longer.data + m_refValue.count, longer.data + longer.count, kGap);
    HideArrays();
    m_refValue.Free();
    m_refValue = longer;
    ShowArrays();
}

// ---- Filling ----

std::int32_t CWaterfallRef::AddUnsortedBlockNumber(std::int32_t block)
{
    if (m_size < 1 || m_blockNumbers == nullptr) return kNoBlock;
    std::int32_t former = kNoBlock;
    if (m_unsortedPosition < std::ssize(*m_blockNumbers))
        former = std::exchange((*m_blockNumbers)[static_cast<std::size_t>(m_unsortedPosition)], block);
    ++m_unsortedPosition;
    if (m_unsortedPosition >= m_size) m_unsortedPosition = 0;
    return former;
}

std::int32_t CWaterfallRef::AddUnsortedValue(float value, std::int32_t block)
{
    if (m_size < 1) return kNoBlock;
    if (m_unsortedPosition < m_refValue.count) m_refValue.data[m_unsortedPosition] = value;
    const std::int32_t former = AddUnsortedBlockNumber(block);
    if (m_myRefVect != nullptr) m_myRefVect->MoveRing(1, m_size);
    (void)InsertValueInSortedTabs(value, block);
    return former;
}

std::int32_t CWaterfallRef::InsertValueInSortedTabs(float value, std::int32_t block)
{
    ++m_stamp;
    const std::int32_t count = m_sortedValues.GetSize();
    std::int32_t place = 0;
    if (count == 0 || value >= m_sortedValues[count - 1]) {
        place = count;
    } else if (!(value < m_sortedValues[0])) {
        std::int32_t low = 0;
        std::int32_t high = count - 1;
        std::int32_t middle = (low + high) / 2;
        while (middle != low) {
            (m_sortedValues[middle] >= value ? high : low) = middle;
            middle = (low + high) / 2;
        }
        place = middle + 1;
    }
    m_sortedValues.InsertAt(place, value);
    m_sortedBlocs.InsertAt(place, block);
    return place;
}

std::int32_t CWaterfallRef::RemoveValueInSortedTabs(std::int32_t block)
{
    for (std::int32_t i = 0; i < m_sortedBlocs.GetSize(); ++i) {
        if (m_sortedBlocs[i] != block) continue;
        m_sortedValues.RemoveAt(i);
        m_sortedBlocs.RemoveAt(i);
        return i;
    }
    return -1;
}

// Removes the first entry of each of those blocks, as RemoveValueInSortedTabs would one by one.
void CWaterfallRef::RemoveBlocks(std::int64_t first, std::int64_t end)
{
    if (end == first + 1) return (void)RemoveValueInSortedTabs(static_cast<std::int32_t>(first));
    std::vector<std::int32_t> removed;
    std::int32_t kept = 0;
    std::vector<std::int32_t> candidates;
    for (std::int32_t i = 0; i < m_sortedBlocs.GetSize(); ++i)
        if (m_sortedBlocs[i] >= first && m_sortedBlocs[i] < end) candidates.push_back(i);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [this](std::int32_t a, std::int32_t b) { return m_sortedBlocs[a] < m_sortedBlocs[b]; });
    for (std::size_t i = 0; i < candidates.size(); ++i)
        if (i == 0 || m_sortedBlocs[candidates[i]] != m_sortedBlocs[candidates[i - 1]])
            removed.push_back(candidates[i]);
    std::sort(removed.begin(), removed.end());
    auto next = removed.begin();
    for (std::int32_t i = 0; i < m_sortedBlocs.GetSize(); ++i) {
        if (next != removed.end() && *next == i) {
            ++next;
            continue;
        }
        m_sortedValues[kept] = m_sortedValues[i];
        m_sortedBlocs[kept++] = m_sortedBlocs[i];
    }
    m_sortedValues.SetSize(kept);
    m_sortedBlocs.SetSize(kept);
}

void CWaterfallRef::Clean()
{
    CleanSortedTab();
    m_stamp = 0;
    m_unsortedPosition = 0;
    SetFilled(0);
}

void CWaterfallRef::CleanSortedTab()
{
    m_sortedValues.RemoveAll();
    m_sortedBlocs.RemoveAll();
}

// ---- Look-ups ----

std::int32_t CWaterfallRef::GetValueByBloc(std::int32_t block, float& out) const
{
    if (m_myRefVect != nullptr) return m_myRefVect->GetValueByBloc(block, out);
    if (m_blockNumbers == nullptr || m_size < 1) return -1;
    const auto end = m_blockNumbers->begin() + std::min<std::ptrdiff_t>(m_size, std::ssize(*m_blockNumbers));
    const auto found = std::find(m_blockNumbers->begin(), end, block);
    if (found == end) return -1;
    const auto index = static_cast<std::int32_t>(found - m_blockNumbers->begin());
    out = m_refValue.At(index);
    return index;
}

bool CWaterfallRef::GetValueByBlocForConversion(std::int32_t block, float& out) const
{
    if (m_myRefVect != nullptr) return m_myRefVect->GetValueByBlocForConversion(block, out);
    if (m_blockNumbers == nullptr) return false;
    out = 0.0F;
    const auto end = m_blockNumbers->begin() + std::clamp<std::ptrdiff_t>(m_size, 0, std::ssize(*m_blockNumbers));
    const auto found = std::find(m_blockNumbers->begin(), end, block);
    if (found == end) return false;
    out = m_refValue.At(static_cast<std::int32_t>(found - m_blockNumbers->begin()));
    return std::isfinite(out);
}

// Entries of a block are moved to the front in their order and then sorted, with zeros after them.
void CWaterfallRef::SortByBlock()
{
    BlocTable& blocks = *m_blockNumbers;
    const auto size = static_cast<std::size_t>(m_size);
    if (std::is_sorted(blocks.begin(), blocks.begin() + m_size)) return;
    std::vector<std::pair<std::int32_t, float>> entries;
    entries.reserve(size);
    for (std::size_t i = 0; i < size; ++i)
        if (blocks[i] >= 0) entries.emplace_back(blocks[i], m_refValue.data[i]);
    entries.resize(size);
    std::stable_sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
    for (std::size_t i = 0; i < size; ++i) std::tie(blocks[i], m_refValue.data[i]) = entries[i];
}

bool CWaterfallRef::UpdateTabRefValue()
{
    if (m_myRefVect == nullptr) return false;
    if (m_size < 1) return true;
    HoldAtLeast(m_size);
    SortByBlock();
    const std::vector<float> values(m_refValue.data, m_refValue.data + m_size);
    const BlocTable blocks(m_blockNumbers->begin(), m_blockNumbers->begin() + m_size);
    const std::int64_t span = std::int64_t{blocks.back()} - blocks.front() + 1;
    if (!CRefWaterfall::IsSpanHeld(span, m_size)) return false;
    HoldAtLeast(static_cast<std::int32_t>(span));
    if (span > m_size) std::fill_n(m_refValue.data, m_refValue.count, kGap);
    CRefWaterfall& ring = *m_myRefVect;
    ring.UpdateVecteurReferencePtr();
    ring.SetLastBlockNb(blocks.front());
    for (std::size_t i = 0; i < blocks.size(); ++i) {
        ring.AddGaps(std::int64_t{blocks[i]} - ring.GetLastBlockNb() - 1, nullptr);
        ring.PutReal(values[i]);
        ring.SetLastBlockNb(blocks[i]);
    }
    return true;
}

CResult& CWaterfallRef::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    HideArrays();
    CVectorRef::operator=(other);
    m_blockNumbers.reset();
    CleanSortedTab();
    if (const auto* source = dynamic_cast<const CWaterfallRef*>(other); source != nullptr) {
        m_sortedValues = source->m_sortedValues;
        m_sortedBlocs = source->m_sortedBlocs;
        m_isTacho = source->m_isTacho;
        m_unsortedPosition = source->m_unsortedPosition;
        m_stamp = source->m_stamp;
        SetMyRefVect(nullptr);
        if (source->m_blockNumbers != nullptr) {
            m_blockNumbers = std::make_shared<BlocTable>(*source->m_blockNumbers);
            m_blockNumbers->resize(static_cast<std::size_t>(std::max(m_size, 0)), kNoBlock);
        }
    }
    ShowArrays();
    return *this;
}

CResult* CWaterfallRef::GetCopy() { return CopyOf(*this); }

// ---- Storage ----

template <class Io, class Self>
bool CWaterfallRef::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CVectorRef>(v);
    BlockNumbers(io, "block numbers", v.m_blockNumbers, v.m_size);
    io.flag("IsTacho", v.m_isTacho);
    io.dumpLines(v, &CWaterfallRef::dumpLines);
    return io.ok();
}

void CWaterfallRef::dumpLines(CMmioFile& file) const
{
    file.AddStringToDebugFile(u"CWaterfallRef");
    const auto block = [this](std::int32_t i) { return EntryOf(m_blockNumbers, i); };
    if (m_size > 0) file.AddStringToDebugFile(QuarterEntries(m_size, block));
    file.AddStringToDebugFile(AllEntries(m_size, block));
}

// How many values are written, and in filled how many entries hold them: one per sorted value, and only existing ones,
// so that the file can be read.
std::int32_t CWaterfallRef::StoredValues(std::int32_t& filled) const
{
    std::int32_t values = 0;
    std::int32_t end = 0;
    for (std::int32_t i = 0; i < filled && values < m_sortedBlocs.GetSize(); ++i) {
        if (!std::isfinite(m_refValue.At(i))) continue;
        ++values;
        end = i + 1;
    }
    filled = end;
    return values;
}

bool CWaterfallRef::Write(CMmioFile* file)
{
    const std::int32_t size = m_size;
    if (m_myRefVect != nullptr) SetFilled(m_myRefVect->CReferencedAxis::GetCount());
    AdjustSize(StoredValues(m_filled));
    RecordWriter out(*file);
    const bool written = fields(out, *this);
    AdjustSize(size);
    SetFilled(size); // not what it was
    return written;
}

bool CWaterfallRef::Read(CMmioFile* file)
{
    RecordReader in(*file);
    if (!fields(in, *this)) return false;
    return in.version() == 0 || BuildSortedTabs();
}

void CWaterfallRef::Outline(RecordOutline& out) const { (void)fields(out, *this); }

bool CWaterfallRef::BuildSortedTabs()
{
    CleanSortedTab();
    const auto order = InsertionOrder({m_refValue.data, static_cast<std::size_t>(m_size)});
    if (!order && m_size > kMostUnordered) return false;
    for (std::int32_t i = 0; i < m_size; ++i) {
        const std::int32_t from = order ? (*order)[static_cast<std::size_t>(i)] : i;
        const std::int32_t block = EntryOf(m_blockNumbers, from);
        if (!order) {
            (void)InsertValueInSortedTabs(m_refValue.data[i], block);
            continue;
        }
        m_sortedValues.Add(m_refValue.data[from]);
        m_sortedBlocs.Add(block);
        ++m_stamp;
    }
    return true;
}

} // namespace ZelmResult
