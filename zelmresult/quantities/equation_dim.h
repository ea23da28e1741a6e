#pragma once

#include "zelmresult/storage/stored_record.h"

#include <cstdint>

namespace ZelmResult {

// The dimension of a quantity as ten stored bytes. Every field but Enumeration is a biased exponent of a base unit:
// 128 + 2 * exponent, so that the half exponents of root spectra are exact.
struct EquationDim {
    std::uint8_t Enumeration = 0; // a plain number
    std::uint8_t Radians = 128;
    std::uint8_t Steradians = 128;
    std::uint8_t Meters = 128;
    std::uint8_t Kilograms = 128;
    std::uint8_t Seconds = 128;
    std::uint8_t Amperes = 128;
    std::uint8_t Kelvins = 128;
    std::uint8_t Moles = 128;
    std::uint8_t Candelas = 128;

    bool operator==(const EquationDim&) const = default;
};

// A dimension with its algebra. All byte arithmetic wraps; the Enumeration of every result is 0. A plain value.
class CEquationDim {
public:
    CEquationDim() = default;
    explicit CEquationDim(const EquationDim& dim) : m_dim(dim) {}

    CEquationDim operator*(const CEquationDim& other) const;
    CEquationDim operator/(const CEquationDim& other) const;
    [[nodiscard]] CEquationDim Square() const;
    // Halves each biased exponent; an odd byte loses its low bit, so the root of an exponent of 1/2 is 0.
    [[nodiscard]] CEquationDim RootSquare() const;
    [[nodiscard]] CEquationDim Inverse() const;
    // All ten bytes, Enumeration included.
    [[nodiscard]] bool IsEqual(const CEquationDim& other) const { return m_dim == other.m_dim; }

    // lends the ten bytes, never null.
    [[nodiscard]] const EquationDim* GetEqDim() const { return &m_dim; }
    EquationDim* GetEqDim() { return &m_dim; }
    // In field order: the stored bytes, widened; each number is cut to a byte when set.
    void GetEqDim(short& enumeration, short& radians, short& steradians, short& meters, short& kilograms,
                  short& seconds, short& amperes, short& kelvins, short& moles, short& candelas) const;
    void SetEqDim(short enumeration, short radians, short steradians, short meters, short kilograms, short seconds,
                  short amperes, short kelvins, short moles, short candelas);

private:
    EquationDim m_dim;
};

// The stored form of a dimension. False at the first failed field.
class CEquationDimMmioReaderWriter : public StoredFields<CEquationDimMmioReaderWriter, CEquationDim> {
public:
    static constexpr const char* kRecordName = "CEquationDim";
    [[nodiscard]] bool Read(CMmioFile& file, CEquationDim& dim) const;
    [[nodiscard]] bool Write(CMmioFile& file, const CEquationDim& dim) const;

private:
    friend StoredFields;
    template <class Io, class Dim>
    static bool fields(Io& io, Dim& dim);
};
extern template class StoredFields<CEquationDimMmioReaderWriter, CEquationDim>;

} // namespace ZelmResult
