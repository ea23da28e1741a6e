#include "zelmresult/results/reg_x_axis.h"

#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <memory>

namespace ZelmResult {

CRegXAxis::CRegXAxis(CGrandeur* /*quantity*/, float /*min*/, float /*max*/, std::uint32_t /*xnOctave*/) {}

template <class Io, class Self>
bool CRegXAxis::fields(Io& io, Self& axis)
{
    if (!io.record(kRecordName, newest{1})) return io.ok();
    io.quantity("XMagnitude", axis.m_xMagnitude);
    io.f32("XMax", axis.m_xMax);
    io.f32("XMin", axis.m_xMin);
    io.u32("XnOctave", axis.m_xnOctave);
    io.dump([] { return wstring(u"CRegXAxis "); });
    io.dump([&] {
        const wstring quantity = axis.m_xMagnitude == nullptr ? u"Null" : axis.m_xMagnitude->GetNomGrandeur();
        return Concat(u"Magnitude :", quantity, u", xMin : ", ToFixed(axis.m_xMin), u", xMax : ", ToFixed(axis.m_xMax),
                      u", XnOctave : ", static_cast<std::int32_t>(axis.m_xnOctave));
    });
    return io.ok();
}

bool CRegXAxis::Read(CMmioFile* file)
{
    RecordReader in(*file);
    return fields(in, *this);
}

bool CRegXAxis::Write(CMmioFile* file)
{
    RecordWriter out(*file);
    return fields(out, *this);
}

void CRegXAxis::Outline(RecordOutline& out) const { (void)fields(out, *this); }

void CRegXAxis::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    CGrandeur::AddInvolved(m_xMagnitude, counts);
}

void CRegXAxis::ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement)
{
    CGrandeur::Replace(m_xMagnitude, old, replacement);
}

CRegXAxis& CRegXAxis::operator=(CRegXAxis* other)
{
    if (other != nullptr) *this = static_cast<const CRegXAxis&>(*other);
    return *this;
}

CRegXAxis* CRegXAxis::GetXAxisCopy() const
{
    auto copy = std::make_unique<CRegXAxis>();
    *copy = *this;
    return copy.release();
}

bool CRegXAxis::operator==(const CRegXAxis& other) const
{
    return m_xMagnitude == other.m_xMagnitude && m_xnOctave == other.m_xnOctave && m_xMin == other.m_xMin &&
           m_xMax == other.m_xMax;
}

} // namespace ZelmResult
