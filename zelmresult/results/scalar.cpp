#include "zelmresult/results/scalar.h"

#include "zelmresult/results/result_copy.h"
#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

namespace ZelmResult {

CScalar::CScalar()
{
    m_resultType = SizeType::Scalar;
    m_dimension = kDimensionScalar;
}

CScalar::CScalar(std::uint32_t process, std::int32_t size, SignalType type, bool phasePossible)
    : StoredRecord(process, size, type, 0), m_phasePossible(phasePossible)
{
    m_resultType = SizeType::Scalar;
    m_dimension = kDimensionScalar;
}

template <class Io, class Self>
bool CScalar::fields(Io& io, Self& v)
{
    if (!io.record(kRecordName, newest{2})) return io.ok();
    io.template base<CResult>(v);
    io.f32("YMin", v.m_yMin);
    io.f32("YMax", v.m_yMax);
    io.f32("lastValue", v.m_level.lastValue);
    io.f32("maxValue", v.m_level.maxValue);
    io.f32("minValue", v.m_level.minValue);
    io.f32("realValue", v.m_level.realValue);
    io.f32("imagValue", v.m_level.imagValue);
    io.flag("PhasePossible", v.m_phasePossible, since{2});
    io.dump([] { return wstring(u"CScalar"); });
    io.dump([&] {
        return Concat(u"Min : ", ToFixed(v.m_level.minValue), u" , Max : ", ToFixed(v.m_level.maxValue), u" , Value : ",
                      ToFixed(v.m_level.lastValue), u" ");
    });
    return io.ok();
}

template class StoredRecord<CScalar, CResult>;

CResult& CScalar::operator=(CResult* other)
{
    CResult::operator=(other);
    if (const auto* scalar = dynamic_cast<CScalar*>(other); scalar != nullptr) {
        m_yMin = scalar->m_yMin;
        m_yMax = scalar->m_yMax;
        m_level = scalar->m_level;
        m_phasePossible = scalar->m_phasePossible;
    }
    return *this;
}

CResult* CScalar::GetCopy() { return CopyOf(*this); }

} // namespace ZelmResult
