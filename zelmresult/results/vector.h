#pragma once

#include "zelmresult/results/float_array.h"
#include "zelmresult/results/result.h"

namespace ZelmResult {

// One array of values in SI units, or two for complex data, with the limits of their display.
// Stored as  version 1: the base block, the real array (ComplexType below 4) and its limits, then for complex data the
//            imaginary array and its limits. Real and imaginary parts are separate, not interleaved.
// Owns       both arrays while IsMyDataTabs is true; otherwise they belong to another object, such as a waterfall.
// Copies     = and the copy constructor share the arrays, so only one of such copies may be destroyed while it owns
//            them; GetCopy copies owned arrays and shares borrowed ones.
// Reads      at most as many values as its arrays hold, when it doesn't own them; a larger stored size fails.
class CVector : public StoredRecord<CVector, CResult> {
public:
    static constexpr const char* kRecordName = "CVector";

    CVector();
    // Allocates the arrays, all zeros.
    CVector(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess, bool isMyDataTabs);
    CVector(const CVector&) = default;
    CVector& operator=(const CVector&) = default;
    ~CVector() override;

    // lends the values, or null where the type holds none: Size of them, unless AdjustSize has set another size. Octave
    // bands with minimum and maximum return the real array for both.
    [[nodiscard]] virtual float* GetRealValue() { return ShownReal().data; }
    [[nodiscard]] virtual float* GetImValue() { return ShownImaginary().data; }
    // Drops both arrays; frees them when they are owned.
    virtual void ReInitPtrTab();
    // Replaces the pointer and frees nothing: takes the array when the object owns its arrays, else keeps a pointer. It
    // must hold Size floats, also for a Size that AdjustSize or SetSize sets later, and must be made with new[] where
    // it is taken; null is legal.
    void SetRealValue(float* values) { m_real = FloatArray::OfHost(values, m_size); }
    void SetImValue(float* values) { m_imaginary = FloatArray::OfHost(values, m_size); }
    void SetIsMyDataTabs() { m_isMyDataTabs = true; }
    [[nodiscard]] bool IsMyDataTabs() const { return m_isMyDataTabs; }

    // Copies n values; zeros where the array is absent or shorter.
    void GetRealValues(float* target, std::int32_t n) { ShownReal().CopyTo(target, n); }
    void GetRealValues(double* target, std::int32_t n) { ShownReal().CopyTo(target, n); }
    void GetImValues(float* target, std::int32_t n) { ShownImaginary().CopyTo(target, n); }
    void GetImValues(double* target, std::int32_t n) { ShownImaginary().CopyTo(target, n); }

    [[nodiscard]] float GetRealMax() const override { return m_realMax; }
    [[nodiscard]] float GetRealMin() const override { return m_realMin; }
    [[nodiscard]] float GetImMax() const override { return m_imMax; }
    [[nodiscard]] float GetImMin() const override { return m_imMin; }
    void SetRealMax(float value) { m_realMax = value; }
    void SetRealMin(float value) { m_realMin = value; }
    void SetImMax(float value) { m_imMax = value; }
    void SetImMin(float value) { m_imMin = value; }
    // The limits of the real part; 0 for complex data, whose parts have limits of their own.
    [[nodiscard]] float GetYMax() const override { return HasOneLimitPair() ? m_realMax : 0.0F; }
    [[nodiscard]] float GetYMin() const override { return HasOneLimitPair() ? m_realMin : 0.0F; }
    void SetYMin(float value) override { m_realMin = m_imMin = value; } // both parts
    void SetYMax(float value) override { m_realMax = m_imMax = value; }

    void ReAlloc() override; // does nothing to arrays that aren't owned
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x9); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

protected:
    void FollowSize() override;
    // The arrays that the getters return, with their lengths.
    [[nodiscard]] virtual FloatArray ShownReal() const;
    [[nodiscard]] FloatArray ShownImaginary() const;
    // Whether borrowed arrays can hold that many values.
    [[nodiscard]] virtual bool BorrowedArraysHold(std::int32_t values) const;
    // A copy of an array for an assignment: real when the source owns it, else the same array.
    [[nodiscard]] FloatArray CopyOrShare(const FloatArray& source, bool sourceOwns) const;
    // How many arrays of Size floats a read makes.
    [[nodiscard]] virtual std::int32_t ArraysPerReAlloc() const;
    // Makes the arrays that the file holds and ReAlloc doesn't make, for an object that owns its arrays.
    virtual void LengthenStoredArrays();
    [[nodiscard]] bool HoldsMoreThanBlock() const;
    void Lengthen(FloatArray& array) const; // to Size zeros, when it is shorter
    [[nodiscard]] bool StoresReal() const { return m_complexType < SignalType::OctaveMin; }
    [[nodiscard]] bool IsComplex() const { return m_complexType == SignalType::Complex; }

    FloatArray m_real;
    FloatArray m_imaginary;
    float m_realMax = 0.0F;
    float m_realMin = 0.0F;
    float m_imMax = 0.0F;
    float m_imMin = 0.0F;
    bool m_isMyDataTabs = true;

private:
    friend class CWaterfall; // lends its slices

    void ShowReal(float* slice) { m_real = FloatArray::Lent(slice, m_size); }
    void ShowImaginary(float* slice) { m_imaginary = FloatArray::Lent(slice, m_size); }
    [[nodiscard]] bool HasOneLimitPair() const { return !IsComplex() && m_complexType <= SignalType::Compressed; }
    void FreeArrays();
    bool MakeRoom(CMmioFile& file);
    [[nodiscard]] std::int32_t ArraysOfBlock() const;   // that this class stores, of Size floats each
    [[nodiscard]] std::size_t BytesBesideBlock() const; // that a read makes per value beside those
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;
};
extern template class StoredRecord<CVector, CResult>;

} // namespace ZelmResult
