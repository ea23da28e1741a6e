#include "zelmresult/quantities/equation_dim.h"

#include "zelmresult/storage/record_io.h"
#include "zelmresult/support/text.h"

#include <array>

namespace ZelmResult {

namespace {

constexpr int kExponents = 9;

constexpr std::array<std::uint8_t EquationDim::*, kExponents> kExponentFields = {
    &EquationDim::Radians,   &EquationDim::Steradians, &EquationDim::Meters,
    &EquationDim::Kilograms, &EquationDim::Seconds,    &EquationDim::Amperes,
    &EquationDim::Kelvins,   &EquationDim::Moles,      &EquationDim::Candelas};

constexpr std::uint8_t Byte(int value) { return static_cast<std::uint8_t>(value); }

// Each exponent of the result is worked out from those of a and b.
template <class Combine>
CEquationDim PerExponent(const EquationDim& a, const EquationDim& b, Combine combine)
{
    EquationDim result;
    for (auto field : kExponentFields) result.*field = Byte(combine(a.*field, b.*field));
    return CEquationDim(result);
}

int Exponent(std::uint8_t byte) { return (byte - 128) / 2; }

} // namespace

CEquationDim CEquationDim::operator*(const CEquationDim& other) const
{
    return PerExponent(m_dim, other.m_dim, [](int a, int b) { return a + b + 128; });
}

CEquationDim CEquationDim::operator/(const CEquationDim& other) const
{
    return PerExponent(m_dim, other.m_dim, [](int a, int b) { return a - b + 128; });
}

CEquationDim CEquationDim::Square() const
{
    return PerExponent(m_dim, m_dim, [](int a, int) { return 2 * a + 128; });
}

CEquationDim CEquationDim::RootSquare() const
{
    return PerExponent(m_dim, m_dim, [](int a, int) { return a / 2 + 64; });
}

CEquationDim CEquationDim::Inverse() const
{
    return PerExponent(m_dim, m_dim, [](int a, int) { return -a; });
}

void CEquationDim::GetEqDim(short& enumeration, short& radians, short& steradians, short& meters, short& kilograms,
                            short& seconds, short& amperes, short& kelvins, short& moles, short& candelas) const
{
    enumeration = m_dim.Enumeration;
    radians = m_dim.Radians;
    steradians = m_dim.Steradians;
    meters = m_dim.Meters;
    kilograms = m_dim.Kilograms;
    seconds = m_dim.Seconds;
    amperes = m_dim.Amperes;
    kelvins = m_dim.Kelvins;
    moles = m_dim.Moles;
    candelas = m_dim.Candelas;
}

void CEquationDim::SetEqDim(short enumeration, short radians, short steradians, short meters, short kilograms,
                            short seconds, short amperes, short kelvins, short moles, short candelas)
{
    m_dim = {Byte(enumeration), Byte(radians), Byte(steradians), Byte(meters), Byte(kilograms),
             Byte(seconds),     Byte(amperes), Byte(kelvins),    Byte(moles),  Byte(candelas)};
}

template <class Io, class Dim>
bool CEquationDimMmioReaderWriter::fields(Io& io, Dim& dim)
{
    static_assert(sizeof(EquationDim) == 10, "the ten bytes are stored as they lie");
    const EquationDim& d = *dim.GetEqDim();
    io.dump([] { return wstring(u"CEquationDim"); });
    io.dump([&] {
        return Concat(u"Enumeration: ", d.Enumeration, u", Radians: ", Exponent(d.Radians), u",Steradians: ",
                      Exponent(d.Steradians), u", Meters: ", Exponent(d.Meters));
    });
    io.dump([&] {
        return Concat(u"Kilograms: ", Exponent(d.Kilograms), u", Seconds: ", Exponent(d.Seconds), u",Amperes: ",
                      Exponent(d.Amperes));
    });
    io.dump([&] {
        return Concat(u"Kelvins: ", Exponent(d.Kelvins), u", Moles: ", Exponent(d.Moles), u",Candelas: ",
                      Exponent(d.Candelas));
    });
    if (!io.record(kRecordName, newest{256}, first{256})) return io.ok();
    io.bytes("exponents", detail::BytesOf(*dim.GetEqDim()), sizeof(EquationDim));
    return io.ok();
}

bool CEquationDimMmioReaderWriter::Read(CMmioFile& file, CEquationDim& dim) const { return ReadFields(file, dim); }

bool CEquationDimMmioReaderWriter::Write(CMmioFile& file, const CEquationDim& dim) const
{
    return WriteFields(file, dim);
}

template class StoredFields<CEquationDimMmioReaderWriter, CEquationDim>;

} // namespace ZelmResult
