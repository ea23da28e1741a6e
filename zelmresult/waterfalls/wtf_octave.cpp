#include "zelmresult/waterfalls/wtf_octave.h"

#include "zelmresult/results/reg_vector.h"
#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/octave_tools.h"

#include <algorithm>

namespace ZelmResult {

namespace {

// The places of the global levels, counted from the last band.
constexpr std::int32_t kLinear = 0;
constexpr std::int32_t kWeighted = 1;
constexpr std::int32_t kLevels = 2;

} // namespace

CWtfOctave::CWtfOctave(std::uint32_t process, std::uint32_t wtfProcess, std::int32_t size, std::int32_t zSize,
                       CListVectorRef* refs, SignalType type)
    : CWaterfall(process, wtfProcess, size, zSize, refs, type, false)
{
    SetPointCount(CWtfOctave::GetRealSize(size));
    CWtfOctave::ReAlloc();
}

CWtfOctave::~CWtfOctave() { HideMinMax(); }

std::int32_t CWtfOctave::GetRealSize(std::int32_t size) const
{
    return size > INT32_MAX - kLevels ? -1 : size + kLevels;
}

CRegVector* CWtfOctave::Bands() const { return dynamic_cast<CRegVector*>(TempVector()); }

bool CWtfOctave::HasSimple() const
{
    return m_complexType == SignalType::Octave || m_complexType == SignalType::OctaveMinMax;
}

bool CWtfOctave::HasMinimum() const
{
    return m_complexType == SignalType::OctaveMin || m_complexType == SignalType::OctaveMinMax;
}

bool CWtfOctave::HasMaximum() const
{
    return m_complexType == SignalType::OctaveMax || m_complexType == SignalType::OctaveMinMax;
}

void CWtfOctave::SetXnOctave(std::uint32_t bands)
{
    m_xnOctave = bands;
    if (TempVector() != nullptr) TempVector()->SetXnOctave(bands);
}

float CWtfOctave::GetXMinOctave() const { return GetXMin() * OctaveTools::GetOctaveCoeff(m_xnOctave); }

// ---- Global levels ----

std::int32_t CWtfOctave::DimensionOr0(std::int32_t dimension) const { return dimension < ComplexDim() ? dimension : 0; }

bool CWtfOctave::HasLevel(const CSliceHandler& slice, std::int32_t place) const
{
    return slice.HasSlice() && m_size >= 0 && m_size < Buffers().GetRealSize() - place;
}

float CWtfOctave::LevelOf(const CSliceHandler& slice, std::int32_t place) const
{
    return HasLevel(slice, place) ? slice.GetSinglePoint(m_size + place) : 0.0F;
}

void CWtfOctave::SetLevel(CSliceHandler& slice, std::int32_t place, float level) const
{
    if (HasLevel(slice, place)) slice.SetSinglePoint(m_size + place, level);
}

float CWtfOctave::GetGlobalLevelByIndex(std::int32_t dimension, std::int32_t slot)
{
    return LevelOf(GetTabData(dimension, slot), kLinear);
}

float CWtfOctave::GetGlobalLevelPondByIndex(std::int32_t dimension, std::int32_t slot)
{
    return LevelOf(GetTabData(dimension, slot), kWeighted);
}

namespace {

std::int32_t DimensionOf(AvgOctaveTarget target)
{
    if (target == AvgOctaveTarget::Minimum) return 1;
    return target == AvgOctaveTarget::Maximum ? 2 : 0;
}

} // namespace

float CWtfOctave::GetGlobLevel(std::int32_t slot, AvgOctaveTarget target)
{
    return GetGlobalLevelByIndex(DimensionOr0(DimensionOf(target)), slot);
}

float CWtfOctave::GetGlobalLevelPond(std::int32_t slot, AvgOctaveTarget target)
{
    return GetGlobalLevelPondByIndex(DimensionOr0(DimensionOf(target)), slot);
}

void CWtfOctave::SetGlobalLevelByIndex(std::int32_t dimension, std::int32_t slot, float level)
{
    CSliceHandler slice = GetTabData(DimensionOr0(dimension), slot);
    SetLevel(slice, kLinear, level);
}

void CWtfOctave::SetGlobalLevelPondByIndex(std::int32_t dimension, std::int32_t slot, float level)
{
    CSliceHandler slice = GetTabData(DimensionOr0(dimension), slot);
    SetLevel(slice, kWeighted, level);
}

// ---- The vector that shows slices ----

std::unique_ptr<CVector> CWtfOctave::MakeTempVector() const
{
    return std::make_unique<CRegVector>(GetProcessType(), m_size, m_xnOctave, m_complexType, GetWtfProcessType(),
                                        false);
}

void CWtfOctave::ShowMinimum(const CSliceHandler& slice)
{
    m_shownMin = slice;
    FitTempVector();
    Bands()->ShowMinimum(m_shownMin.GetSlicePointer());
}

void CWtfOctave::ShowMaximum(const CSliceHandler& slice)
{
    m_shownMax = slice;
    FitTempVector();
    Bands()->ShowMaximum(m_shownMax.GetSlicePointer());
}

void CWtfOctave::HideMinMax()
{
    if (CRegVector* bands = Bands(); bands != nullptr) {
        bands->SetRealValueMin(nullptr);
        bands->SetRealValueMax(nullptr);
    }
    m_shownMin.Detach();
    m_shownMax.Detach();
}

void CWtfOctave::SetOctaveSimpleVector(std::int32_t slot)
{
    ShowReal(GetTabData(0, slot));
    Bands()->SetGlobLevel(AvgOctaveTarget::Octave, LevelOf(ShownReal(), kLinear));
    Bands()->SetGlobPondLevel(AvgOctaveTarget::Octave, LevelOf(ShownReal(), kWeighted));
}

void CWtfOctave::SetOctaveMinVector(std::int32_t slot)
{
    ShowMinimum(GetTabData(DimensionOr0(1), slot));
    Bands()->SetGlobLevel(AvgOctaveTarget::Minimum, LevelOf(m_shownMin, kLinear));
    Bands()->SetGlobPondLevel(AvgOctaveTarget::Minimum, LevelOf(m_shownMin, kWeighted));
}

void CWtfOctave::SetOctaveMaxVector(std::int32_t slot)
{
    ShowMaximum(GetTabData(DimensionOr0(2), slot));
    Bands()->SetGlobLevel(AvgOctaveTarget::Maximum, LevelOf(m_shownMax, kLinear));
    Bands()->SetGlobPondLevel(AvgOctaveTarget::Maximum, LevelOf(m_shownMax, kWeighted));
}

CVector* CWtfOctave::GetTempVector(std::int32_t slot)
{
    if (Bands() == nullptr) return nullptr;
    if (HasSimple()) SetOctaveSimpleVector(slot);
    if (HasMinimum()) SetOctaveMinVector(slot);
    if (HasMaximum()) SetOctaveMaxVector(slot);
    return WithQuantities();
}

CVector* CWtfOctave::GetTempVectorFromDimData(std::int32_t rawIndex)
{
    if (Bands() == nullptr || !IsAllocated()) return TempVector();
    const auto slice = [&](std::int32_t dimension) {
        return Buffers()[DimensionOr0(dimension)]->GetRawSlice(rawIndex);
    };
    if (HasSimple()) ShowReal(slice(0));
    if (HasMinimum()) ShowMinimum(slice(1));
    if (HasMaximum()) ShowMaximum(slice(2));
    return WithQuantities();
}

// ---- Life ----

void CWtfOctave::ReAlloc()
{
    CWtfOctave::ClearTab();
    if (Bands() == nullptr) SetTempVector(CWtfOctave::MakeTempVector());
    Bands()->SetXnOctave(m_xnOctave);
    Bands()->SetSize(m_size);
    CWaterfall::ReAlloc();
    Bands()->SetXMagnitude(GetXMagnitude());
}

void CWtfOctave::ClearTab()
{
    HideMinMax();
    CWaterfall::ClearTab();
}

void CWtfOctave::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CWaterfall::AddInvolvedGrandeur(counts);
    if (TempVector() != nullptr) TempVector()->AddInvolvedGrandeur(counts);
}

void CWtfOctave::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CWaterfall::ReplaceGrandeur(old, replacement);
    if (TempVector() != nullptr) TempVector()->ReplaceGrandeur(old, replacement);
}

CResult& CWtfOctave::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    HideMinMax();
    CWaterfall::operator=(other);
    if (const auto* octave = dynamic_cast<const CWtfOctave*>(other); octave != nullptr) m_xnOctave = octave->m_xnOctave;
    return *this;
}

CResult* CWtfOctave::GetCopy() { return CopyOf(*this); }

CWtfOctave* CWtfOctave::GetWholeCopy()
{
    auto copy = std::make_unique<CWtfOctave>();
    copy->CopyWhole(*this);
    copy->m_xnOctave = m_xnOctave;
    return copy.release();
}

// ---- Storage ----

std::int32_t CWtfOctave::StoredArrays() const
{
    return CWaterfall::StoredArrays() + static_cast<int>(HasMinimum()) + static_cast<int>(HasMaximum());
}

template <class Io, class Self>
bool CWtfOctave::fieldsSinceVersion2(Io& io, Self& v)
{
    io.template base<CWaterfall>(v, since{2});
    io.u32("XnOctave", v.m_xnOctave, since{2});
    io.dump([] { return wstring(u"CWaterfall"); }); // the name of the base, in this class too
    io.dump([&v] { return Concat(u"m_XnOctave : ", v.m_xnOctave); });
    return io.ok();
}

bool CWtfOctave::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    if (!out.record(kRecordName, newest{2})) return out.ok();
    // Slices of bands are stored for these two alone.
    out.loses(*this, [](const CWtfOctave& v) {
        return v.m_nFilled > 0 && v.m_complexType != SignalType::Octave && v.m_complexType != SignalType::OctaveMinMax;
    });
    return fieldsSinceVersion2(out, *this);
}

bool CWtfOctave::Read(CMmioFile* file)
{
    RecordReader in(*file);
    if (!in.record(kRecordName, newest{2})) return in.ok();
    if (in.version() > 1) return fieldsSinceVersion2(in, *this);
    if (!ReadFormerLayout(*file)) in.fail("former layout");
    return in.ok();
}

void CWtfOctave::Outline(RecordOutline& out) const
{
    (void)out.record(kRecordName, newest{2});
    out.nested("former layout", "version 1 is laid out as below", since{1}, until{1});
    (void)fieldsSinceVersion2(out, *this);
}

bool CWtfOctave::ReadSlice(CMmioFile& file, std::int32_t rawIndex)
{
    return m_hasFormerLayout ? ReadFormerSlice(file, rawIndex) : ReadSpectrum(file, rawIndex);
}

std::int64_t CWtfOctave::BytesAfterRanges() const
{
    constexpr std::int64_t number = sizeof(std::uint32_t);
    return m_hasFormerLayout ? 3 * number : number;
}

// Skips slices without memory. Fails for a slice of another shape than the waterfall's.
bool CWtfOctave::ReadSpectrum(CMmioFile& file, std::int32_t rawIndex)
{
    if (file.hFile()->BytesLeft() == 0) return false;
    (void)GetTempVectorFromDimData(rawIndex);
    const bool isHeld = (HasSimple() || HasMinimum() || HasMaximum()) && (!HasSimple() || ShownReal().HasSlice()) &&
                        (!HasMinimum() || m_shownMin.HasSlice()) && (!HasMaximum() || m_shownMax.HasSlice());
    CRegVector passedOver(GetProcessType(), 0, m_xnOctave, m_complexType, 0, true);
    CRegVector& spectrum = isHeld && Bands() != nullptr ? *Bands() : passedOver;
    if (!spectrum.Read(&file) || !HasMyShape(spectrum)) {
        TempVector()->SetComplexType(m_complexType, true);
        return false;
    }
    if (HasSimple()) SetOctaveSimpleLevel(rawIndex);
    if (HasMinimum()) SetOctaveMinLevel(rawIndex);
    if (HasMaximum()) SetOctaveMaxLevel(rawIndex);
    return true;
}

void CWtfOctave::SetOctaveSimpleLevel(std::int32_t /*rawIndex*/)
{
    SetLevel(ShownReal(), kLinear, Bands()->GetGlobLevel(AvgOctaveTarget::Octave));
    SetLevel(ShownReal(), kWeighted, Bands()->GetGlobPondLevel(AvgOctaveTarget::Octave));
}

void CWtfOctave::SetOctaveMinLevel(std::int32_t /*rawIndex*/)
{
    SetLevel(m_shownMin, kLinear, Bands()->GetGlobLevel(AvgOctaveTarget::Minimum));
    SetLevel(m_shownMin, kWeighted, Bands()->GetGlobPondLevel(AvgOctaveTarget::Minimum));
}

void CWtfOctave::SetOctaveMaxLevel(std::int32_t /*rawIndex*/)
{
    SetLevel(m_shownMax, kLinear, Bands()->GetGlobLevel(AvgOctaveTarget::Maximum));
    SetLevel(m_shownMax, kWeighted, Bands()->GetGlobPondLevel(AvgOctaveTarget::Maximum));
}

// Version 1: a second version, what is now in the block of the waterfall with plain vectors for slices, and two numbers
// without a meaning. The slices come without global levels.
bool CWtfOctave::ReadFormerLayout(CMmioFile& file)
{
    m_hasFormerLayout = true;
    std::uint16_t ignored = 0;
    if (!file.mmioRead_ushort(ignored) || !ReadBases(file)) return false;
    const bool isRead = IsReadOnly() ? ReadWanted(file)
                                     : ChargeSlices(file) && MakeRoom(file, CWaterfall::StoredArrays()) &&
                                           ReadData(&file) && ReadBlockNumbers(file, m_size) && ReadRanges(file);
    if (!isRead) return false;
    std::uint32_t unused = 0;
    if (!file.mmioRead_ulong(m_xnOctave)) return false;
    TempVector()->SetXMax(GetXMax());
    TempVector()->SetXMin(GetXMin());
    TempVector()->SetXnOctave(m_xnOctave);
    return file.mmioRead_ulong(unused) && file.mmioRead_ulong(unused) && UpdateDataTab();
}

bool CWtfOctave::ReadFormerSlice(CMmioFile& file, std::int32_t rawIndex)
{
    if (file.hFile()->BytesLeft() == 0) return false;
    const bool isAllocated = IsAllocated();
    CRegVector passedOver(GetProcessType(), 0, m_xnOctave, m_complexType, 0, true);
    CRegVector& spectrum = isAllocated ? *Bands() : passedOver;
    if (isAllocated) {
        HideMinMax();
        ShowReal(Buffers()[0]->GetRawSlice(rawIndex));
        if (ComplexDim() == 2) ShowImaginary(Buffers()[1]->GetRawSlice(rawIndex));
    }
    spectrum.SetReadAsPlainVector(true);
    const bool read = spectrum.Read(&file) && HasMyShape(spectrum);
    spectrum.SetReadAsPlainVector(false);
    if (!read) TempVector()->SetComplexType(m_complexType, true);
    return read;
}

} // namespace ZelmResult
