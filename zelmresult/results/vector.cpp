#include "zelmresult/results/vector.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult {

CVector::CVector() { m_dimension = kDimensionVector; }

CVector::CVector(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess, bool isMyDataTabs)
    : StoredRecord(process, size, type, wtfProcess), m_isMyDataTabs(isMyDataTabs)
{
    m_dimension = kDimensionVector;
    CVector::ReAlloc();
}

CVector::~CVector()
{
    if (m_isMyDataTabs) FreeArrays();
}

void CVector::FreeArrays()
{
    m_real.Free();
    m_imaginary.Free();
}

void CVector::ReInitPtrTab()
{
    if (m_isMyDataTabs) FreeArrays();
    m_real = {};
    m_imaginary = {};
}

void CVector::FollowSize()
{
    m_real.Follow(m_size);
    m_imaginary.Follow(m_size);
}

void CVector::ReAlloc()
{
    if (!m_isMyDataTabs) return;
    FreeArrays();
    if (StoresReal() || m_complexType > SignalType::Compressed) m_real.Allocate(m_size);
    if (IsComplex()) m_imaginary.Allocate(m_size);
}

FloatArray CVector::ShownReal() const { return m_complexType == SignalType::Compressed ? FloatArray() : m_real; }

FloatArray CVector::ShownImaginary() const
{
    if (IsComplex()) return m_imaginary;
    const bool showsReal = m_complexType == SignalType::OctaveMinMax || m_complexType > SignalType::Compressed;
    return showsReal ? m_real : FloatArray();
}

bool CVector::BorrowedArraysHold(std::int32_t values) const
{
    return m_real.Holds(values) && m_imaginary.Holds(values);
}

std::int32_t CVector::ArraysPerReAlloc() const
{
    if (IsComplex()) return 2;
    return StoresReal() || m_complexType > SignalType::Compressed ? 1 : 0;
}

std::int32_t CVector::ArraysOfBlock() const { return static_cast<int>(StoresReal()) + static_cast<int>(IsComplex()); }

std::size_t CVector::BytesBesideBlock() const
{
    return sizeof(float) * static_cast<std::size_t>(std::max(ArraysPerReAlloc() - ArraysOfBlock(), 0));
}

// Sizes the arrays from the base block that was just read.
bool CVector::MakeRoom(CMmioFile& file)
{
    const auto bytesPerValue = sizeof(float) * static_cast<std::size_t>(ArraysOfBlock());
    if (bytesPerValue != 0 && !file.RoomFor(static_cast<std::uint64_t>(m_size), bytesPerValue)) return false;
    if (!m_isMyDataTabs && !BorrowedArraysHold(m_size)) return false;
    ReAlloc();
    if (m_isMyDataTabs) LengthenStoredArrays();
    return true;
}

void CVector::LengthenStoredArrays()
{
    if (StoresReal()) Lengthen(m_real);
    if (IsComplex()) Lengthen(m_imaginary);
}

void CVector::Lengthen(FloatArray& array) const
{
    if (array.count >= m_size) return;
    array.Free();
    array.Allocate(m_size);
}

template <class Io, class Self>
bool CVector::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.template base<CResult>(v);
    io.grows("Size", v.m_size, v.BytesBesideBlock()); // a size below 0 fails here
    io.accepts("Size", v, &CVector::MakeRoom);
    io.f32s("real array", v.m_real.data, v.m_real.count, v.m_size, only{"ComplexType below 4", v.StoresReal()});
    io.f32("RealMax", v.m_realMax);
    io.f32("RealMin", v.m_realMin);
    const only complex{"ComplexType is 1", v.IsComplex()};
    io.f32s("imaginary array", v.m_imaginary.data, v.m_imaginary.count, v.m_size, complex);
    io.f32("ImMax", v.m_imMax, complex);
    io.f32("ImMin", v.m_imMin, complex);
    io.loses(v, &CVector::HoldsMoreThanBlock);
    io.dumpLines(v, &CVector::dumpLines);
    return io.ok();
}

// Whether there are values in arrays that the block doesn't store.
bool CVector::HoldsMoreThanBlock() const
{
    const auto holdsValues = [this](const FloatArray& array) {
        for (std::int32_t i = 0; i < std::min(m_size, array.count); ++i)
            if (array.data[i] != 0.0F) return true;
        return false;
    };
    return (!StoresReal() && holdsValues(m_real)) || (!IsComplex() && holdsValues(m_imaginary));
}

void CVector::dumpLines(CMmioFile& file) const
{
    const auto arrayLines = [&file, this](const FloatArray& array, const wstring& part, float min, float max) {
        if (array.data == nullptr) return;
        file.AddStringToDebugFile(
            Concat(part, u"Min : ", ToScientific(min), u", ", part, u"Max : ", ToScientific(max)));
        wstring values;
        for (std::int32_t i = 0; i < m_size; ++i)
            values += Concat(part, u"Value[", i, u"]:", ToScientific(array.At(i)), u",");
        file.AddStringToDebugFile(values);
    };
    file.AddStringToDebugFile(u"CVector ");
    arrayLines(m_real, u"Real", m_realMin, m_realMax);
    arrayLines(m_imaginary, u"Im", m_imMin, m_imMax);
}

template class StoredRecord<CVector, CResult>;

FloatArray CVector::CopyOrShare(const FloatArray& source, bool sourceOwns) const
{
    return source.data != nullptr && sourceOwns ? source.Copy(m_size) : source;
}

CResult& CVector::operator=(CResult* other)
{
    if (other == nullptr || other == this) return *this;
    CVector::ReInitPtrTab();
    CResult::operator=(other);
    if (const auto* vector = dynamic_cast<CVector*>(other); vector != nullptr) {
        m_isMyDataTabs = vector->m_isMyDataTabs;
        m_real = CopyOrShare(vector->m_real, m_isMyDataTabs);
        m_imaginary = CopyOrShare(vector->m_imaginary, m_isMyDataTabs);
        m_realMax = vector->m_realMax;
        m_realMin = vector->m_realMin;
        m_imMax = vector->m_imMax;
        m_imMin = vector->m_imMin;
    }
    return *this;
}

CResult* CVector::GetCopy() { return CopyOf(*this); }

} // namespace ZelmResult
