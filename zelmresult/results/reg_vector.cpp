#include "zelmresult/results/reg_vector.h"

#include "zelmresult/quantities/result_weighting_function_string.h"
#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

CRegVector::CRegVector() { m_resultType = SizeType::RegVector; }

CRegVector::CRegVector(std::uint32_t process, std::int32_t size, std::uint32_t xnOctave, SignalType type,
                       std::uint32_t wtfProcess, bool isMyDataTabs)
    : StoredRecord(process, size, type, wtfProcess, isMyDataTabs)
{
    m_resultType = SizeType::RegVector;
    CRegXAxis::SetXnOctave(xnOctave);
    CRegVector::ReAlloc();
}

CRegVector::~CRegVector()
{
    if (m_isMyDataTabs) DestroyValueMinMax();
}

void CRegVector::DestroyValueMinMax()
{
    m_realValueMin.Free();
    m_realValueMax.Free();
}

const CRegVector::GlobalLevels& CRegVector::Levels(AvgOctaveTarget target) const
{
    if (target == AvgOctaveTarget::Minimum) return m_globMin;
    return target == AvgOctaveTarget::Maximum ? m_globMax : m_glob;
}

CRegVector::GlobalLevels& CRegVector::Levels(AvgOctaveTarget target)
{
    return const_cast<GlobalLevels&>(static_cast<const CRegVector*>(this)->Levels(target));
}

float CRegVector::GetGlobPondLevel(AvgOctaveTarget target) const { return Levels(target).weighted; }
float CRegVector::GetGlobLevel(AvgOctaveTarget target) const { return Levels(target).linear; }
void CRegVector::SetGlobPondLevel(AvgOctaveTarget target, float level) { Levels(target).weighted = level; }
void CRegVector::SetGlobLevel(AvgOctaveTarget target, float level) { Levels(target).linear = level; }

bool CRegVector::HasMinimum() const
{
    return m_complexType == SignalType::OctaveMinMax || m_complexType == SignalType::OctaveMin;
}

bool CRegVector::HasMaximum() const
{
    return m_complexType == SignalType::OctaveMinMax || m_complexType == SignalType::OctaveMax;
}

FloatArray CRegVector::ShownReal() const
{
    if (m_complexType == SignalType::OctaveMin) return m_realValueMin;
    return m_complexType == SignalType::OctaveMax ? m_realValueMax : m_real;
}

bool CRegVector::BorrowedArraysHold(std::int32_t values) const
{
    return CVector::BorrowedArraysHold(values) && m_realValueMin.Holds(values) && m_realValueMax.Holds(values);
}

// Ends the ownership of all arrays. The minimum and maximum are freed, except for one that is passed in again.
void CRegVector::LetGoOfMinMax(const float* spared)
{
    for (FloatArray* array : {&m_realValueMin, &m_realValueMax}) {
        if (!m_isMyDataTabs) continue;
        if (array->data != spared) array->Free();
        *array = {};
    }
    m_isMyDataTabs = false;
}

void CRegVector::SetRealValueMin(float* values)
{
    LetGoOfMinMax(values);
    m_realValueMin = FloatArray::OfHost(values, m_size);
}

void CRegVector::SetRealValueMax(float* values)
{
    LetGoOfMinMax(values);
    m_realValueMax = FloatArray::OfHost(values, m_size);
}

void CRegVector::ShowMinimum(float* slice)
{
    LetGoOfMinMax(slice);
    m_realValueMin = FloatArray::Lent(slice, m_size);
}

void CRegVector::ShowMaximum(float* slice)
{
    LetGoOfMinMax(slice);
    m_realValueMax = FloatArray::Lent(slice, m_size);
}

void CRegVector::FollowSize()
{
    CVector::FollowSize();
    m_realValueMin.Follow(m_size);
    m_realValueMax.Follow(m_size);
}

void CRegVector::ReInitPtrTab()
{
    CVector::ReInitPtrTab();
    m_realValueMin = {}; // not freed, unlike the arrays of the base
    m_realValueMax = {};
}

void CRegVector::ReAlloc()
{
    CVector::ReAlloc();
    if (!m_isMyDataTabs) return;
    DestroyValueMinMax();
    if (m_size > 0 && HasMinimum()) m_realValueMin.Allocate(m_size);
    if (m_size > 0 && HasMaximum()) m_realValueMax.Allocate(m_size);
}

std::int32_t CRegVector::ArraysPerReAlloc() const
{
    return CVector::ArraysPerReAlloc() + static_cast<int>(HasMinimum()) + static_cast<int>(HasMaximum());
}

void CRegVector::LengthenStoredArrays()
{
    CVector::LengthenStoredArrays();
    if (HasMinimum()) Lengthen(m_realValueMin);
    if (HasMaximum()) Lengthen(m_realValueMax);
}

void CRegVector::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CResult::AddInvolvedGrandeur(counts);
    CRegXAxis::AddInvolvedGrandeur(counts);
}

void CRegVector::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CResult::ReplaceGrandeur(old, replacement);
    CRegXAxis::ReplaceGrandeur(old, replacement);
}

template <class Io, class Self>
bool CRegVector::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{3})) return io.ok();
    io.template base<CVector>(v);
    io.template base<CRegXAxis>(v);
    io.f32("GlobPond", v.m_glob.weighted);
    io.f32("GlobLin", v.m_glob.linear);
    // The format has linear first here, and weighted first above.
    const only minimum{"ComplexType is 3 or 4", v.HasMinimum()};
    io.f32s("RealValueMin", v.m_realValueMin.data, v.m_realValueMin.count, v.m_size, since{2}, minimum);
    io.f32("GlobMinLin", v.m_globMin.linear, since{2}, minimum);
    io.f32("GlobMinPond", v.m_globMin.weighted, since{2}, minimum);
    const only maximum{"ComplexType is 3 or 5", v.HasMaximum()};
    io.f32s("RealValueMax", v.m_realValueMax.data, v.m_realValueMax.count, v.m_size, since{2}, maximum);
    io.f32("GlobMaxLin", v.m_globMax.linear, since{2}, maximum);
    io.f32("GlobMaxPond", v.m_globMax.weighted, since{2}, maximum);
    io.u32("PonderationGlob", v.m_ponderationGlob, since{3});
    io.dumpLines(v, &CRegVector::dumpLines);
    return io.ok();
}

void CRegVector::dumpLines(CMmioFile& file) const
{
    // A sample of the array: its beginning and its quarters.
    const auto arrayLine = [&file, this](const FloatArray& array, const wstring& name) {
        if (array.data == nullptr) return;
        wstring line = Concat(name, u"[0] : ", ToScientific(array.At(0)));
        for (std::int32_t quarter = 1; quarter <= 4; ++quarter) {
            const std::int32_t i = quarter < 4 ? m_size / 4 * quarter : m_size - 1;
            line += Concat(u", ", name, u"[", i, u"] :", ToScientific(array.At(i)));
        }
        file.AddStringToDebugFile(line);
    };
    file.AddStringToDebugFile(u"CRegVector");
    arrayLine(m_realValueMin, u"m_RealValueMin");
    arrayLine(m_realValueMax, u"m_RealValueMax");
    file.AddStringToDebugFile(Concat(u", Global pondere : ", ToFixed(m_glob.weighted), u", Global lin : ",
                                     ToFixed(m_glob.linear), u",Global Min pondere : ", ToFixed(m_globMin.weighted),
                                     u", Global Min lin : ", ToFixed(m_globMin.linear), u",Global Max pondere : ",
                                     ToFixed(m_globMax.weighted), u", Global Max lin : ", ToFixed(m_globMax.linear)));
    file.AddStringToDebugFile(u"PonderationGlob: " + ResultWeightingFunctionString::constant_to_translated_tstring(
                                                         static_cast<int>(m_ponderationGlob)));
}

bool CRegVector::Read(CMmioFile* file)
{
    CVector& plain = *this;
    return m_readAsPlainVector ? plain.CVector::Read(file) : StoredRecord::Read(file);
}

template class StoredRecord<CRegVector, CVector, CRegXAxis>;

CResult& CRegVector::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    if (m_isMyDataTabs) DestroyValueMinMax();
    m_realValueMin = {}; // borrowed ones too: they mustn't be owned when the assignment makes this object an owner
    m_realValueMax = {};
    CVector::operator=(other);
    if (auto* axis = dynamic_cast<CRegXAxis*>(other); axis != nullptr) CRegXAxis::operator=(axis);
    if (const auto* vector = dynamic_cast<CRegVector*>(other); vector != nullptr) {
        m_glob = vector->m_glob;
        m_globMin = vector->m_globMin;
        m_globMax = vector->m_globMax;
        m_ponderationGlob = vector->m_ponderationGlob;
        m_isMyDataTabs = vector->m_isMyDataTabs;
        m_realValueMin = CopyOrShare(vector->m_realValueMin, m_isMyDataTabs);
        m_realValueMax = CopyOrShare(vector->m_realValueMax, m_isMyDataTabs);
    }
    return *this;
}

CResult* CRegVector::GetCopy() { return CopyOf(*this); }

} // namespace ZelmResult
