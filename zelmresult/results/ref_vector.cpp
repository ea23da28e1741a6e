#include "zelmresult/results/ref_vector.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <cmath>
#include <limits>

namespace ZelmResult {

CRefVector::CRefVector() { m_resultType = SizeType::RefVector; }

CRefVector::CRefVector(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess)
    : CVector(process, size, type, wtfProcess, true)
{
    m_resultType = SizeType::RefVector;
    CRefVector::ReAlloc();
}

CRefVector::CRefVector(std::uint32_t process, std::int32_t size, SignalType type, CListVectorRef* list,
                       std::uint32_t wtfProcess)
    : CVector(process, size, type, wtfProcess, true), CReferencedAxis(list, wtfProcess != 0)
{
    m_resultType = SizeType::RefVector;
    CRefVector::ReAlloc();
}

CRefVector::~CRefVector() { m_fTabFreq.Free(); }

void CRefVector::SetTabFreq(const float* frequencies, std::int32_t n)
{
    FloatArray copy; // before the old one is freed: the frequencies may be its own
    if (frequencies != nullptr) {
        copy.Allocate(n);
        std::copy_n(frequencies, copy.count, copy.data);
    }
    m_fTabFreq.Free();
    m_fTabFreq = copy;
}

void CRefVector::SetSize(std::int32_t size)
{
    if (size == m_size) return;
    m_size = size;
    m_count = 0;
    m_nFilled = 0;
    m_firstIndex = 0;
    m_nextIndex = 0;
    m_firstBlockNb = 0;
    m_lastBlockNb = 0; // not the -1 of Clean
    SetSizeOfReferences(size);
    ReAlloc();
}

void CRefVector::ReAlloc()
{
    CVector::ReInitPtrTab();
    m_isMyDataTabs = true;
    if (m_size < 1) return;
    m_real.Allocate(m_size);
    if (IsComplex()) m_imaginary.Allocate(m_size);
}

void CRefVector::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddInvolvedGrandeur(counts);
    CReferencedAxis::AddInvolvedGrandeur(counts);
}

void CRefVector::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CResult::ReplaceGrandeur(old, replacement);
    CReferencedAxis::ReplaceGrandeur(old, replacement);
}

void CRefVector::CopyVectorRef(CRefVector* source)
{
    if (source != nullptr) CopyVectorRefOf(*source);
}

void CRefVector::PutIntoRing(float real, float imaginary)
{
    if (m_nextIndex >= 0 && m_nextIndex < m_real.count) m_real.data[m_nextIndex] = real;
    if (m_nextIndex >= 0 && m_nextIndex < m_imaginary.count) m_imaginary.data[m_nextIndex] = imaginary;
    MoveRing(1, m_size);
}

std::int32_t CRefVector::AddNewValue(float real, float imaginary, std::int32_t block)
{
    if (m_size < 1 || m_real.data == nullptr) return -1;
    constexpr float gap = std::numeric_limits<float>::infinity();
    std::int64_t missing = std::int64_t{block} - m_lastBlockNb - 1;
    if (missing > m_size) { // rounds that would be overwritten are only counted
        MoveRing(missing - m_size, m_size);
        missing = m_size;
    }
    for (; missing > 0; --missing) PutIntoRing(gap, gap);
    const std::int32_t position = m_nextIndex;
    PutIntoRing(real, imaginary);
    m_lastBlockNb = block;
    return position;
}

std::int32_t CRefVector::GetValueByBloc(std::int32_t block, float& out) const
{
    std::int32_t index = -1;
    if (!SearchForIndex(block, index) || index >= m_real.count) return -1;
    out = m_real.At(index);
    return std::isfinite(out) ? index : -1;
}

bool CRefVector::GetValueByBlocForConversion(std::int32_t block, float& out) const
{
    out = 0.0F;
    for (std::int32_t i = 0; i < m_size; ++i) {
        const std::int32_t* stored = GetBlocNumberPtr(i);
        if (stored == nullptr) break;
        if (*stored != block) continue;
        out = m_real.At(i);
        return std::isfinite(out);
    }
    return false;
}

void CRefVector::RedimensionnementApresLecture()
{
    const std::int32_t filled = GetFilled();
    if (filled == m_size) return;
    UnshareArrays();
    if (!IsComplex() && m_isMyDataTabs) m_imaginary.Free();
    if (!IsComplex()) m_imaginary = {};
    for (FloatArray* array : {&m_real, &m_imaginary}) {
        if (array == &m_imaginary && !IsComplex()) continue;
        const FloatArray resized = array->Copy(filled);
        if (m_isMyDataTabs) array->Free();
        *array = resized;
    }
    m_isMyDataTabs = true;
    m_size = filled;
}

// Charges the arrays that are made again when a read cuts or extends them to the filled points.
template <class Io, class Self>
void CRefVector::filledFields(Io& io, Self& v)
{
    const std::size_t arrays = v.m_nFilled == v.m_size ? 0 : (v.IsComplex() ? 2 : 1);
    // A number below 0 fails here. References are stored with that many values.
    io.grows("m_nFilled", v.m_nFilled, sizeof(float) * (arrays + v.StoredReferences()));
    io.onRead(v, [](auto& self) { self.RedimensionnementApresLecture(); });
}

// As many frequencies as points are written, and as many as filled points are read.
template <class Io, class Self>
void CRefVector::frequencyFields(Io& io, Self& v, std::int32_t stored)
{
    bool hasFrequencies = v.m_fTabFreq.data != nullptr;
    io.flag("has m_fTabFreq", hasFrequencies, since{3});
    const bool areHeld = hasFrequencies && io.version() >= 3;
    if (areHeld) io.grows("m_fTabFreq", std::max(v.m_nFilled - stored, 0), sizeof(float));
    if (io.version() >= 3) io.onRead(v, [](auto& self) { self.m_fTabFreq.Free(); });
    io.accepts("m_fTabFreq", v, [&](auto& self, CMmioFile& file) {
        if (!areHeld) return true;
        if (!file.RoomFor(static_cast<std::uint64_t>(std::min(self.m_size, stored)), sizeof(float))) return false;
        self.m_fTabFreq.Allocate(self.m_size);
        return true;
    });
    // A read expects one for each filled point.
    io.loses(v, [&](const auto& self) { return hasFrequencies && self.GetFilled() != self.m_size; });
    io.f32s("m_fTabFreq", v.m_fTabFreq.data, v.m_fTabFreq.count, v.m_size, since{3},
            only{"has m_fTabFreq is set", hasFrequencies});
}

template <class Io, class Self>
bool CRefVector::fields(Io& io, Self& v)
{
    (void)io.record(kRecordName, newest{4}, first{0}); // with version 0 it is resized too
    io.template base<CVector>(v, since{1});
    io.template base<CReferencedAxis>(v, since{1});
    io.i32("m_nFilled", v.m_nFilled, since{1}, until{1}); // now in the block of the axis
    const std::int32_t stored = v.m_size;
    filledFields(io, v);
    io.flag("m_bCoupe", v.m_bCoupe, since{3});
    io.f32("m_fConstFreq", v.m_fConstFreq, since{3});
    frequencyFields(io, v, stored);
    io.flag("m_bSkipOperations", v.m_bSkipOperations, since{4});
    io.dumpLines(v, &CRefVector::dumpLines);
    return io.ok();
}

void CRefVector::dumpLines(CMmioFile& file) const
{
    file.AddStringToDebugFile(u"CRefVector");
    file.AddStringToDebugFile(Concat(u"m_bCoupe : ", m_bCoupe, u", m_fConstFreq : ", ToFixed(m_fConstFreq),
                                     u",m_bSkipOperations: ", m_bSkipOperations));
    if (m_fTabFreq.data == nullptr) return;
    wstring frequencies;
    for (std::int32_t i = 0; i < m_size; ++i)
        frequencies += Concat(u"m_fTabFreq[", i, u"]:", ToScientific(m_fTabFreq.At(i)), u",");
    file.AddStringToDebugFile(frequencies);
}

bool CRefVector::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return fields(in, *this);
}

bool CRefVector::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this);
}

void CRefVector::Outline(RecordOutline& out) const { (void)fields(out, *this); }

CResult& CRefVector::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    CVector::operator=(other);
    if (m_isMyDataTabs) FreeBlocNumbers();
    if (const auto* vector = dynamic_cast<CRefVector*>(other); vector != nullptr) {
        m_isMyDataTabs = vector->m_isMyDataTabs;
        if (m_isMyDataTabs)
            CopyBlocNumbersOf(*vector, m_size);
        else
            FreeBlocNumbers();
    }
    if (auto* axis = dynamic_cast<CReferencedAxis*>(other); axis != nullptr) CReferencedAxis::operator=(axis);
    return *this;
}

CResult* CRefVector::GetCopy() { return CopyOf(*this); }

} // namespace ZelmResult
