#include "zelmresult/results/result.h"

#include "zelmresult/results/kinds.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <cmath>

namespace ZelmResult {

namespace {

constexpr float kDefaultPrecision = 0.001F;
constexpr float kEmptyRevPosition = -1.0F;

} // namespace

CResult::CResult() { std::fill(std::begin(m_startRevPosTab), std::end(m_startRevPosTab), kEmptyRevPosition); }

CResult::CResult(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess) : CResult()
{
    m_complexType = type;
    m_dimension = kDimensionUnset;
    m_processType = process;
    m_wtfProcessType = wtfProcess;
    m_size = size;
    m_absPrecisionY = m_absPrecisionX = m_absPrecisionZ = kDefaultPrecision;
    m_relPrecisionX = m_relPrecisionY = m_relPrecisionZ = kDefaultPrecision;
    const bool second =
        otype::ResultProcess_lowlevel::unitType(resultProcess()) == otype::EResultProcessUnitType::Second;
    m_unitFormat = second ? TypeUnite::EU2 : TypeUnite::EU;
}

void CResult::SetSize(std::int32_t size)
{
    if (size == m_size) return;
    AdjustSize(size);
    ReAlloc();
}

void CResult::SetComplexType(SignalType type, bool force)
{
    const bool changed = type != m_complexType;
    m_complexType = type;
    if (changed || force) ReAlloc();
}

otype::ResultProcess CResult::resultProcess() const
{
    const auto step = [](std::uint32_t process) {
        return otype::ElementaryResultProcess::fromInteger(static_cast<std::int32_t>(process));
    };
    return otype::ResultProcess::fromElementaryCouple(step(m_processType), step(m_wtfProcessType));
}

bool CResult::IsReferencedResult() const
{
    return m_resultType == SizeType::RefVector || m_resultType == SizeType::RefOrderTrack ||
           m_resultType == SizeType::Waterfall;
}

void CResult::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CGrandeur::AddInvolved(m_magnitude, counts);
}

void CResult::AddReferredGrandeur(std::map<CGrandeur*, int>& counts) const
{
    AddInvolvedGrandeur(counts);
    CGrandeur::AddInvolved(GetXMagnitude(), counts);
}

void CResult::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CGrandeur::Replace(m_magnitude, old, replacement);
}

void CResult::SetStartRevPosTab(const float* source, std::int32_t n)
{
    std::copy_n(source, std::clamp(n, 0, kStartRevPositions), m_startRevPosTab);
}

void CResult::CopyStartRevPosTab(bool append, const float* source, std::int32_t n)
{
    float* slot = m_startRevPosTab;
    float* const end = slot + kStartRevPositions;
    if (append) slot = std::find(slot, end, kEmptyRevPosition);
    for (std::int32_t i = 0; i < n && slot != end; ++i, ++slot) {
        if (*slot == kEmptyRevPosition && source[i] == kEmptyRevPosition) break;
        *slot = source[i];
    }
}

float CResult::ComputeAbsPrec(float x)
{
    constexpr float epsilon = 1e-6F;
    constexpr int deepest = 6;
    // Beyond the range of an integer there is no last decimal digit, and the conversion would be undefined.
    const auto truncate = [](float value) {
        return std::fabs(value) < 2147483520.0F ? static_cast<std::int32_t>(value) : 0;
    };
    float f = x;
    std::int32_t whole = truncate(f + epsilon);
    int count = 0;
    const auto deepen = [&] {
        f *= 10.0F;
        ++count;
        whole = truncate(f + epsilon);
    };
    if (x < 1.0F)
        while (whole == 0 && count < deepest) deepen();
    while (count < deepest && std::fabs(f - static_cast<float>(whole)) > epsilon) deepen();
    if (count <= 0 || whole <= 0) return x;
    const std::int32_t tens = truncate(static_cast<float>(whole) / 10.0F + epsilon);
    return std::pow(10.0F, static_cast<float>(-count)) * static_cast<float>(whole - 10 * tens);
}

CResult& CResult::operator=(CResult* other)
{
    if (other != nullptr && other != this) CResult::operator=(static_cast<const CResult&>(*other));
    return *this;
}

template <class Io, class Self>
bool CResult::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{5})) return io.ok();
    io.quantity("Magnitude", v.m_magnitude);
    io.u32("ResultType", v.m_resultType);
    io.u32("ComplexType", v.m_complexType);
    io.u32("Dimension", v.m_dimension);
    io.i32("Size", v.m_size);
    io.f32("AbsPrecisionX", v.m_absPrecisionX);
    io.f32("AbsPrecisionY", v.m_absPrecisionY);
    io.f32("AbsPrecisionZ", v.m_absPrecisionZ);
    io.f32("RelPrecisionX", v.m_relPrecisionX);
    io.f32("RelPrecisionY", v.m_relPrecisionY);
    io.f32("RelPrecisionZ", v.m_relPrecisionZ);
    io.u32("UnitFormat", v.m_unitFormat);
    io.u32("ProcessType", v.m_processType, since{2});
    io.u32("WtfProcessType", v.m_wtfProcessType, since{2});
    io.u32("RotationDir", v.m_rotationDir, since{3});
    io.f32("CurrentSpeed", v.m_currentSpeed, since{4});
    io.fileTime("ResultDate", v.m_resultDate, since{4});
    io.f32s("StartRevPosTab", v.m_startRevPosTab, kStartRevPositions, kStartRevPositions, since{5});
    io.dump([] { return wstring(u"CResult"); });
    io.dump([&] {
        const wstring quantity = v.m_magnitude == nullptr ? u"Null" : v.m_magnitude->GetNomGrandeur();
        return Concat(u"Magnitude : ", quantity, u", Type : ", static_cast<std::int32_t>(v.m_resultType), u" , Size : ",
                      v.m_size, u" , Unit format ", v.m_unitFormat == TypeUnite::EU ? u"TypeEU" : u"TypeEU2",
                      u" ,SensRotation ", static_cast<std::int32_t>(v.m_rotationDir));
    });
    io.dump([&] {
        return Concat(u"Abs PrecX : ", ToFixed(v.m_absPrecisionX), u" ,Abs PrecY : ", ToFixed(v.m_absPrecisionY),
                      u",Abs PrecZ : ", ToFixed(v.m_absPrecisionZ), u",Rel PrecX : ", ToFixed(v.m_relPrecisionX),
                      u" ,Rel PrecY : ", ToFixed(v.m_relPrecisionY), u",Rel PrecZ : ", ToFixed(v.m_relPrecisionZ),
                      u",");
    });
    return io.ok();
}

bool CResult::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return fields(in, *this);
}

bool CResult::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this);
}

void CResult::Outline(RecordOutline& out) const { (void)fields(out, *this); }

AvgOctaveTarget CResult::GetOctaveTarget(std::uint32_t process) { return ResultKind::Of(process).empty.octaves; }
bool CResult::IsSpectral(std::uint32_t process) { return ResultKind::Of(process).Has(ResultKind::Spectral); }
bool CResult::IsXSpectrum(std::uint32_t process) { return ResultKind::Of(process).Has(ResultKind::CrossSpectral); }
bool CResult::IsProcessOrbit(std::uint32_t process) { return ResultKind::Of(process).Has(ResultKind::Orbit); }
bool CResult::IsRmsPeakPossible(std::uint32_t process) { return ResultKind::Of(process).Has(ResultKind::Peaks); }

} // namespace ZelmResult
