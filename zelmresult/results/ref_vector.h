#pragma once

#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/vector.h"

namespace ZelmResult {

// A vector on a referenced axis: one value per block of acquired data, and a ring of consecutive blocks while it is
// filled. The value of a missing block is infinity.
// Stored as  version 4: the vector's block, the axis' block, the data of a cut, SkipOperations. A read leaves exactly
//            the filled points.
// Owns       its arrays while IsMyDataTabs is true, and the frequencies of a cut in any case.
// Copies     as CVector and CReferencedAxis; GetCopy doesn't copy what makes a cut.
class CRefVector : public CVector, public CReferencedAxis {
public:
    static constexpr const char* kRecordName = "CRefVector";

    CRefVector();
    CRefVector(std::uint32_t process, std::int32_t size, SignalType type, std::uint32_t wtfProcess);
    // The axis joins the list, and belongs to a waterfall exactly when wtfProcess isn't 0.
    CRefVector(std::uint32_t process, std::int32_t size, SignalType type, CListVectorRef* list,
               std::uint32_t wtfProcess);
    CRefVector(const CRefVector&) = default;
    CRefVector& operator=(const CRefVector&) = default;
    ~CRefVector() override;

    // A cut through a waterfall, at a constant frequency (-1 unknown) or at one per point.
    [[nodiscard]] bool isCoupe() const { return m_bCoupe; }
    void setCoupe(bool coupe) { m_bCoupe = coupe; }
    [[nodiscard]] float GetConstFreq() const { return m_fConstFreq; }
    void SetConstFreq(float frequency) { m_fConstFreq = frequency; }
    [[nodiscard]] float* GetTabFreq() const { return m_fTabFreq.data; } // lends Size values, may be null
    void SetTabFreq(const float* frequencies, std::int32_t n);          // copies n values; null drops them
    [[nodiscard]] bool skipOperations() const { return m_bSkipOperations; }
    void setSkipOperations(bool skip) { m_bSkipOperations = skip; }

    // X is the value of the chosen reference, and its Y precision is the precision of X. Without a reference the limits
    // are 0 and can't be set, and the vector's own X precisions count.
    [[nodiscard]] float GetXMin() const override { return ReferenceMin(); }
    [[nodiscard]] float GetXMax() const override { return ReferenceMax(); }
    void SetXMin(float value) override { SetReferenceMin(value); }
    void SetXMax(float value) override { SetReferenceMax(value); }
    [[nodiscard]] CGrandeur* GetXMagnitude() const override { return ReferenceMagnitude(); }
    void SetXMagnitude(CGrandeur* quantity) override { SetReferenceMagnitude(quantity); }
    [[nodiscard]] float GetRelPrecisionX() const override { return ReferenceRelPrecision(CVector::GetRelPrecisionX()); }
    [[nodiscard]] float GetAbsPrecisionX() const override { return ReferenceAbsPrecision(CVector::GetAbsPrecisionX()); }

    [[nodiscard]] std::int32_t GetFilled() const override { return m_nFilled; }
    // Also resizes the references and empties the ring.
    void SetSize(std::int32_t size) override;
    // Afterwards the arrays are owned, and every type has a real one.
    void ReAlloc() override;
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;
    [[nodiscard]] CReferencedAxis* GetReferencedAxis() override { return this; }
    // Copies the references of another vector into this one's list, and chooses the copy of its chosen one.
    void CopyVectorRef(CRefVector* source);

    // Puts a value into the ring, and infinities for missing blocks before it. Returns the position of the value, -1
    // for an empty array. A block number that doesn't exceed the last takes the next place too.
    std::int32_t AddNewValue(float real, float imaginary, std::int32_t block);
    bool SearchForIndex(std::int32_t block, std::int32_t& index) const
    {
        return SearchForRefIndex(block, index, m_size);
    }
    // The position of a block in the ring, with its value in out; -1 when there is none, and for a gap, whose
    // infinity goes to out.
    std::int32_t GetValueByBloc(std::int32_t block, float& out) const;
    // The same by the table of block numbers, for a vector from a file. Without the block out is 0.
    bool GetValueByBlocForConversion(std::int32_t block, float& out) const;

    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x2D); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    bool operator==(const CRefVector& /*other*/) const { return true; } // always equal
    void Outline(RecordOutline& out) const;

protected:
    [[nodiscard]] std::int32_t ArraysPerReAlloc() const override { return IsComplex() ? 2 : 1; }
    // A read makes arrays of its own.
    [[nodiscard]] bool BorrowedArraysHold(std::int32_t /*values*/) const override { return true; }
    // Turns arrays that are shared with a reference into copies of this vector's own.
    virtual void UnshareArrays() {}
    // Cuts or extends the arrays to the filled points.
    void RedimensionnementApresLecture();

private:
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    template <class Io, class Self>
    static void filledFields(Io& io, Self& v);
    template <class Io, class Self>
    static void frequencyFields(Io& io, Self& v, std::int32_t stored);
    void dumpLines(CMmioFile& file) const;
    void PutIntoRing(float real, float imaginary);

    bool m_bCoupe = false;
    float m_fConstFreq = -1.0F;
    FloatArray m_fTabFreq;
    bool m_bSkipOperations = false;
};

} // namespace ZelmResult
