#pragma once

#include "zelmresult/results/reg_vector.h"

#include <array>
#include <utility>

namespace ZelmResult {

// A signal as envelopes: what compressed results share. Size is the room for compressed points, CompSize the number in
// use.
//
// Stored as  a derived class says. Only the points in use are stored: while it is written, a result has that size, and
//            keeps it when the write fails. A loaded result has no spare room.
// Owns       its arrays.
// Copies     = and the copy constructor share the arrays, as in CVector: only one of such copies may be destroyed or
//            resized. By = from a pointer and GetCopy they are deep.
class CCompressedAbstract : public CRegVector {
public:
    CCompressedAbstract() = default;
    CCompressedAbstract(std::uint32_t process, std::int32_t size, SignalType type);
    CCompressedAbstract(const CCompressedAbstract&) = default;
    CCompressedAbstract& operator=(const CCompressedAbstract&) = default;

    [[nodiscard]] std::int32_t GetCompSize() const { return m_compSize; }
    void SetCompSize(std::int32_t points) { m_compSize = (std::min)(points, m_size); }
    [[nodiscard]] float GetSamplingFrequency() const { return m_samplingFrequency; } // points per X unit
    void SetSamplingFrequency(float frequency) { m_samplingFrequency = frequency; }
    [[nodiscard]] float GetRealXMax() const { return m_realXMax; } // the X span of the points in use
    void SetRealXMax(float span) { m_realXMax = span; }

    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    // The axis, the quantity by pointer, and the three fields above.
    virtual bool operator==(const CCompressedAbstract& other) const;

protected:
    // The points that a write may store: CompSize, limited to the room.
    [[nodiscard]] std::int32_t StoredPoints() const { return std::clamp(m_compSize, 0, (std::max)(m_size, 0)); }
    // Writes the fields while the result has the size and the span of the points in use.
    template <class WriteFields>
    bool WriteInUse(float span, WriteFields writeFields)
    {
        const std::int32_t size = m_size;
        const float xMax = GetXMax();
        const std::int32_t compSize = std::exchange(m_compSize, StoredPoints());
        m_size = m_compSize;
        SetXMax(span);
        if (!writeFields()) return false;
        m_size = size;
        m_compSize = compSize;
        SetXMax(xMax);
        return true;
    }
    // Whether a stored CompSize is valid.
    [[nodiscard]] bool IsCompSizeLegal() const { return m_compSize >= 0 && m_compSize <= m_size; }
    static bool HoldSame(const FloatArray& a, const FloatArray& b, std::int32_t n);
    void dumpEnvelope(CMmioFile& file, const FloatArray& up, const FloatArray& down) const;

    std::int32_t m_compSize = 0;
    float m_samplingFrequency = 0.0F;
    float m_realXMax = 0.0F;
};

// An upper and a lower envelope.
// Stored as  version 1: the block of a CRegVector, CompFactor, CompSize, the frequency, both envelopes.
class CCompressedVector : public StoredRecord<CCompressedVector, CCompressedAbstract> {
public:
    static constexpr const char* kRecordName = "CCompressedVector";

    CCompressedVector();
    CCompressedVector(std::uint32_t process, std::int32_t size, SignalType type);
    CCompressedVector(const CCompressedVector&) = default;
    CCompressedVector& operator=(const CCompressedVector&) = default;
    ~CCompressedVector() override;

    [[nodiscard]] std::int32_t CompFactor() const { return m_compFactor; } // samples per point, for the host
    void SetCompFactor(std::int32_t samples) { m_compFactor = samples; }
    [[nodiscard]] float CurrentDuration() const { return m_currentDuration; } // the current X span
    void SetCurrentDuration(float span) { m_currentDuration = span; }
    [[nodiscard]] float* TabUp() const { return m_up.data; } // lend Size values, may be null
    [[nodiscard]] float* TabDown() const { return m_down.data; }
    // Copy the first n values; zeros past the end.
    virtual void GetUpValues(double* target, std::int32_t n) const { m_up.CopyTo(target, n); }
    virtual void GetUpValues(float* target, std::int32_t n) const { m_up.CopyTo(target, n); }
    virtual void GetDownValues(double* target, std::int32_t n) const { m_down.CopyTo(target, n); }
    virtual void GetDownValues(float* target, std::int32_t n) const { m_down.CopyTo(target, n); }
    // Copies only the points in use into a result of the same Size; does nothing for any other.
    void TransferResult(CCompressedVector* target) const;

    using CCompressedAbstract::operator==;
    bool operator==(const CCompressedVector& other) const; // also all values
    void ReAlloc() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x40001); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    [[nodiscard]] bool Write(CMmioFile* file) override;

protected:
    [[nodiscard]] std::int32_t ArraysPerReAlloc() const override { return 2 + CRegVector::ArraysPerReAlloc(); }

private:
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void FreeEnvelopes();

    FloatArray m_up;
    FloatArray m_down;
    std::int32_t m_compFactor = 1;
    float m_currentDuration = 0.0F;
};
extern template class StoredRecord<CCompressedVector, CCompressedAbstract>;

// The tables of a CCompressedScalar: the envelopes, and four further values per point that have a mean.
enum OffsetScalarArray : std::int32_t {
    OffsetUp = 0,
    OffsetDown = 1,
    OffsetMean2 = 2,
    OffsetMean3 = 3,
    OffsetMean4 = 4,
    OffsetMean5 = 5
};

// Six values per point, as a window that slides along a signal.
// Stored as  version 1: the block of a CRegVector, CompSize, WriteSize, the frequency, the six tables.
class CCompressedScalar : public StoredRecord<CCompressedScalar, CCompressedAbstract> {
public:
    static constexpr const char* kRecordName = "CCompressedScalar";
    static constexpr std::size_t kTables = 6;

    CCompressedScalar();
    CCompressedScalar(std::uint32_t process, std::int32_t size, SignalType type);
    CCompressedScalar(const CCompressedScalar&) = default;
    CCompressedScalar& operator=(const CCompressedScalar&) = default;
    ~CCompressedScalar() override;

    static std::int32_t GetNumberOfCompressedScalar() { return kTables; }
    [[nodiscard]] std::int32_t GetWriteSize() const { return m_writeSize; } // position in the signal, in points
    void SetWriteSize(std::int32_t points) { m_writeSize = points; }
    [[nodiscard]] float GetXStart() const { return static_cast<float>(m_writeSize) / m_samplingFrequency; }
    // Null, 0 and zeros for what is missing.
    [[nodiscard]] float* GetScalarTab(OffsetScalarArray table) const { return Table(table).data; } // lends
    [[nodiscard]] float GetScalar(OffsetScalarArray table, std::int32_t point) const { return Table(table).At(point); }
    void GetScalarValues(OffsetScalarArray table, float* target, std::int32_t n) const
    {
        Table(table).CopyTo(target, n);
    }
    virtual void GetUpValues(double* target, std::int32_t n) const { Table(OffsetUp).CopyTo(target, n); }
    virtual void GetUpValues(float* target, std::int32_t n) const { Table(OffsetUp).CopyTo(target, n); }
    virtual void GetDownValues(double* target, std::int32_t n) const { Table(OffsetDown).CopyTo(target, n); }
    virtual void GetDownValues(float* target, std::int32_t n) const { Table(OffsetDown).CopyTo(target, n); }

    // Appends points of six values each, n values in all; without append it first drops the points. Beyond Size the
    // oldest points are dropped. writeSize is the current position in the signal.
    void CopyCompressedScalar(const float* values, std::int32_t n, std::int32_t writeSize, bool append);
    // Reduces the points between two X positions to six figures: the highest of table 0, the lowest of table 1, the
    // means of the others. now is the current end of the signal. False, and nothing changes, for less than two points.
    bool ComputeScalar(float from, float to, float now);
    [[nodiscard]] float GetComputedScalar(OffsetScalarArray table) const;
    // Copies the points of a result of the same Size, with its position, span and frequency; does nothing for any
    // other.
    void CopyFrom(const CCompressedScalar* source);

    using CCompressedAbstract::operator==;
    virtual bool operator==(const CCompressedScalar& other) const; // also all tables
    void ReAlloc() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x800001); }
    CResult& operator=(CResult* other) override; // without the computed figures
    [[nodiscard]] CResult* GetCopy() override;
    [[nodiscard]] bool Write(CMmioFile* file) override;

protected:
    [[nodiscard]] std::int32_t ArraysPerReAlloc() const override
    {
        return static_cast<std::int32_t>(kTables) + CRegVector::ArraysPerReAlloc();
    }

private:
    [[nodiscard]] FloatArray Table(OffsetScalarArray table) const
    {
        const auto place = static_cast<std::size_t>(table);
        return place < kTables ? m_tables[place] : FloatArray();
    }
    void DropOldest(std::int32_t points);
    void FreeTables();
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);

    std::array<FloatArray, kTables> m_tables;
    std::int32_t m_writeSize = 0;
    std::array<double, kTables> m_computed{};
};
extern template class StoredRecord<CCompressedScalar, CCompressedAbstract>;

} // namespace ZelmResult
