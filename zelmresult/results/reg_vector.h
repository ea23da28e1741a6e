#pragma once

#include "zelmresult/results/reg_x_axis.h"
#include "zelmresult/results/vector.h"

namespace ZelmResult {

// A vector on a regular axis: a spectrum, or octave bands with their global levels and, by the type, the minimum and
// maximum of each band.
// Stored as  version 3: the vector's block, the axis' block, the global levels, the minimum and maximum arrays with
//            their levels, the weighting of the global level.
// Owns       its arrays while IsMyDataTabs is true.
// Copies     as CVector.
class CRegVector : public StoredRecord<CRegVector, CVector, CRegXAxis> {
public:
    static constexpr const char* kRecordName = "CRegVector";

    CRegVector();
    // The limits and the quantity of the axis start empty.
    CRegVector(std::uint32_t process, std::int32_t size, std::uint32_t xnOctave, SignalType type,
               std::uint32_t wtfProcess, bool isMyDataTabs);
    CRegVector(const CRegVector&) = default;
    CRegVector& operator=(const CRegVector&) = default;
    ~CRegVector() override;

    // Global levels in SI units, weighted and linear; of the minimum or the maximum for those targets.
    [[nodiscard]] float GetGlobPondLevel(AvgOctaveTarget target) const;
    [[nodiscard]] float GetGlobLevel(AvgOctaveTarget target) const;
    void SetGlobPondLevel(AvgOctaveTarget target, float level);
    void SetGlobLevel(AvgOctaveTarget target, float level);
    // The constant of the weighting function of the weighted level.
    [[nodiscard]] std::uint32_t GetPonderationGlob() const { return m_ponderationGlob; }
    void SetPonderationGlob(std::uint32_t weighting) { m_ponderationGlob = weighting; }

    // GetRealValue returns the array that fits the type: the minimum, the maximum or the real array.
    [[nodiscard]] float* GetRealValueMin() const { return m_realValueMin.data; } // lends, may be null
    [[nodiscard]] float* GetRealValueMax() const { return m_realValueMax.data; }
    // Copy n values; zeros where the array is absent or shorter.
    void GetRealValuesMin(float* target, std::int32_t n) const { m_realValueMin.CopyTo(target, n); }
    void GetRealValuesMin(double* target, std::int32_t n) const { m_realValueMin.CopyTo(target, n); }
    void GetRealValuesMax(float* target, std::int32_t n) const { m_realValueMax.CopyTo(target, n); }
    void GetRealValuesMax(double* target, std::int32_t n) const { m_realValueMax.CopyTo(target, n); }
    // Keep a pointer to Size floats. Owned minimum and maximum arrays are freed first, both of them, and from then on
    // the object owns no array: a real array that it made is given to the caller.
    void SetRealValueMin(float* values);
    void SetRealValueMax(float* values);
    // Gives the minimum and maximum arrays to those who have a pointer to them; the others as in CVector.
    void ReInitPtrTab() override;

    void SetXMagnitude(CGrandeur* quantity) override { CRegXAxis::SetXMagnitude(quantity); }
    [[nodiscard]] CGrandeur* GetXMagnitude() const override { return CRegXAxis::GetXMagnitude(); }
    [[nodiscard]] float GetXMin() const override { return CRegXAxis::GetXMin(); }
    [[nodiscard]] float GetXMax() const override { return CRegXAxis::GetXMax(); }
    void SetXMin(float value) override { CRegXAxis::SetXMin(value); }
    void SetXMax(float value) override { CRegXAxis::SetXMax(value); }
    [[nodiscard]] std::uint32_t GetXnOctave() const override { return CRegXAxis::GetXnOctave(); }
    void SetXnOctave(std::uint32_t bands) override { CRegXAxis::SetXnOctave(bands); }
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;

    // The whole object, through either base too.
    [[nodiscard]] bool Read(CMmioFile* file) override;
    // Whether Read takes the block of a CVector only, as some waterfalls store their slices.
    void SetReadAsPlainVector(bool plain) { m_readAsPlainVector = plain; }
    void ReAlloc() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x1B); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

protected:
    void FollowSize() override;
    [[nodiscard]] std::int32_t ArraysPerReAlloc() const override;
    void LengthenStoredArrays() override;
    [[nodiscard]] FloatArray ShownReal() const override;
    [[nodiscard]] bool BorrowedArraysHold(std::int32_t values) const override;
    void DestroyValueMinMax();
    void LetGoOfMinMax(const float* spared);

private:
    friend class CWtfOctave; // lends its slices

    struct GlobalLevels {
        float weighted = 0.0F;
        float linear = 0.0F;
    };

    [[nodiscard]] const GlobalLevels& Levels(AvgOctaveTarget target) const;
    GlobalLevels& Levels(AvgOctaveTarget target);
    void ShowMinimum(float* slice);
    void ShowMaximum(float* slice);
    [[nodiscard]] bool HasMinimum() const;
    [[nodiscard]] bool HasMaximum() const;
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;

    GlobalLevels m_glob;
    GlobalLevels m_globMin;
    GlobalLevels m_globMax;
    FloatArray m_realValueMin;
    FloatArray m_realValueMax;
    std::uint32_t m_ponderationGlob = 0;
    bool m_readAsPlainVector = false;
};
extern template class StoredRecord<CRegVector, CVector, CRegXAxis>;

} // namespace ZelmResult
