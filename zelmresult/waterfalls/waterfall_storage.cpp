// The stored form of a waterfall.

#include "zelmresult/waterfalls/waterfall.h"

#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/block_table.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kVersion = 1;
constexpr std::size_t kBooksOfSlice = 16; // bytes of memory beside its points, and fewer than its header in a file

} // namespace

template <class Io, class Self>
void CWaterfall::rangeFields(Io& io, Self& v)
{
    io.f32("RealMin", v.m_realMin);
    io.f32("RealMax", v.m_realMax);
    io.f32("ImMin", v.m_imMin);
    io.f32("ImMax", v.m_imMax);
    io.f32("XMin", v.m_xMin);
    io.f32("XMax", v.m_xMax);
    io.quantity("XMagnitude", v.m_xMagnitude);
    io.quantity("ZMagnitude", v.m_zMagnitude);
}

// Charges the memory of the slices in parts: the sum may exceed 64 bits.
template <class Io, class Self>
void CWaterfall::sliceMemory(Io& io, Self& v)
{
    io.grows("Size", v.m_size, 0); // below 0 either fails
    io.grows("m_nFilled", v.m_nFilled, kBooksOfSlice);
    const auto points = static_cast<std::size_t>(std::max(v.GetRealSize(v.m_size), 0));
    for (std::int32_t i = 0; i < GetComplexDim(v.m_complexType); ++i)
        io.grows("slices", v.m_nFilled, points * sizeof(float));
}

// Two functions and no shared list: a reader has to make room for the slices first.

bool CWaterfall::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    if (!out.record(kRecordName, newest{kVersion})) return out.ok();
    out.base<CResult>(*this);
    out.base<CReferencedAxis>(*this);
    sliceMemory(out, *this);
    out.dump([] { return wstring(u"CWaterfall"); });
    if (out.ok() && !WriteData(file)) out.fail("slices");
    if (out.ok() && !WriteBlockNumbers(*file)) out.fail("block numbers");
    rangeFields(out, *this);
    if (out.ok() && file->GenerateInfoFile()) dumpLines(*file);
    return out.ok();
}

bool CWaterfall::Read(CMmioFile* file)
{
    RecordReader in(*file);
    if (!in.record(kRecordName, newest{kVersion})) return in.ok();
    in.base<CResult>(*this);
    in.base<CReferencedAxis>(*this);
    if (IsReadOnly()) {
        if (in.ok() && !ReadWanted(*file)) in.fail("slices");
        return in.ok() && UpdateDataTab();
    }
    sliceMemory(in, *this);
    if (in.ok() && !(MakeRoom(*file, StoredArrays()) && ReadData(file))) in.fail("slices");
    if (in.ok() && !ReadBlockNumbers(*file, 0)) in.fail("block numbers");
    rangeFields(in, *this);
    return in.ok() && UpdateDataTab();
}

void CWaterfall::Outline(RecordOutline& out) const
{
    (void)out.record(kRecordName, newest{kVersion});
    out.base<CResult>(*this);
    out.base<CReferencedAxis>(*this);
    out.nested("slices", "block CVector, m_nFilled times");
    out.nested("block numbers", "i32 array");
    rangeFields(out, *this);
}

void CWaterfall::dumpLines(CMmioFile& file) const
{
    const auto name = [](const CGrandeur* quantity) {
        return quantity != nullptr ? quantity->GetNomGrandeur() : wstring();
    };
    if (m_nFilled > 0)
        file.AddStringToDebugFile(QuarterEntries(
            m_nFilled, [this](std::int32_t raw) { return ToFixed(static_cast<double>(GetBlocNumber(raw))); }));
    file.AddStringToDebugFile(Concat(u"m_RealMin: ", ToFixed(m_realMin), u", m_RealMax: ", ToFixed(m_realMax),
                                     u", m_ImMin: ", ToFixed(m_imMin), u", m_ImMax: ", ToFixed(m_imMax), u", m_XMin: ",
                                     ToFixed(m_xMin), u", m_XMax: ", ToFixed(m_xMax)));
    file.AddStringToDebugFile(Concat(u"m_pXMagnitude: ", name(m_xMagnitude), u", m_pZMagnitude: ", name(m_zMagnitude)));
}

bool CWaterfall::WriteData(CMmioFile* file)
{
    bool useBlockTable = false;
    for (std::int32_t i = 0; i < m_nFilled; ++i) {
        if (file->GenerateInfoFile()) file->AddStringToDebugFile(Concat(i, u" \u00E8me vecteur du waterfall"));
        CVector* slice = GetTempVector_Verrue(i, useBlockTable);
        if (slice == nullptr || !slice->Write(file)) return false;
    }
    return true;
}

// A read places slices by their blocks, and restores all of them only when the blocks are ascending already.
bool CWaterfall::HasRisingBlocks() const
{
    std::int32_t last = -1;
    for (std::int32_t raw = 0; raw < m_nFilled; ++raw) {
        const std::int32_t block = GetBlocNumber(raw);
        if (block <= last || block == INT32_MAX) return false;
        last = block;
    }
    return true;
}

bool CWaterfall::WriteBlockNumbers(CMmioFile& file) const
{
    if (!HasRisingBlocks()) file.NoteUnreadable();
    RecordWriter out(file);
    BlockNumbers(out, "block numbers", SharedBlocNumbers(), m_nFilled);
    return out.ok();
}

bool CWaterfall::MakeRoom(CMmioFile& file, std::int32_t storedArrays)
{
    const std::int64_t points = std::int64_t{storedArrays} * m_size;
    const auto bytesOfSlice = kBooksOfSlice + static_cast<std::size_t>(points) * sizeof(float);
    if (!file.RoomFor(static_cast<std::uint64_t>(m_nFilled), bytesOfSlice)) return false;
    m_zSize = m_nFilled;
    m_pointCount = GetRealSize(m_size);
    ReAlloc();
    return true;
}

std::int32_t CWaterfall::StoredArrays() const
{
    const bool storesReal = m_complexType < SignalType::OctaveMin;
    return static_cast<int>(storesReal) + static_cast<int>(m_complexType == SignalType::Complex);
}

bool CWaterfall::ChargeSlices(CMmioFile& file)
{
    RecordReader in(file);
    sliceMemory(in, *this);
    return in.ok();
}

bool CWaterfall::ReadData(CMmioFile* file)
{
    for (std::int32_t raw = 0; raw < m_zSize; ++raw)
        if (!ReadSlice(*file, raw)) return false;
    return true;
}

// Skips slices without memory. Fails for a slice of another shape than the waterfall's.
bool CWaterfall::ReadSlice(CMmioFile& file, std::int32_t rawIndex)
{
    if (file.hFile()->BytesLeft() == 0) return false;
    CVector* shown = GetTempVectorFromDimData(rawIndex);
    const bool isWhole = m_shownReal.HasSlice() && (m_complexDim != 2 || m_shownImaginary.HasSlice());
    if (isWhole) {
        const bool read = shown->Read(&file) && HasMyShape(*shown);
        if (!read) m_tempVector->SetComplexType(m_complexType, true);
        return read;
    }
    CVector passedOver(GetProcessType(), 0, m_complexType, 0, true);
    if (!passedOver.Read(&file) || !HasMyShape(passedOver)) return false;
    if (m_shownReal.HasSlice()) passedOver.GetRealValues(m_shownReal.GetSlicePointer(), m_size);
    if (m_shownImaginary.HasSlice()) passedOver.GetImValues(m_shownImaginary.GetSlicePointer(), m_size);
    return true;
}

bool CWaterfall::HasMyShape(const CVector& slice) const
{
    return slice.GetSize() == m_size && slice.GetComplexType() == m_complexType;
}

bool CWaterfall::ReadBlockNumbers(CMmioFile& file, std::int32_t room)
{
    if (room > m_zSize && !file.Charge(static_cast<std::uint64_t>(room) * sizeof(std::int32_t))) return false;
    (void)MakeBlocNumbers(std::max(room, m_zSize));
    std::shared_ptr<BlocTable> table = SharedBlocNumbers();
    RecordReader in(file);
    BlockNumbers(in, "block numbers", table, m_zSize);
    ShareBlocNumbers(table);
    return in.ok();
}

bool CWaterfall::ReadRanges(CMmioFile& file)
{
    RecordReader in(file);
    rangeFields(in, *this);
    return in.ok();
}

} // namespace ZelmResult
