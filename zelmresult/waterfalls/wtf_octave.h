#pragma once

#include "zelmresult/waterfalls/waterfall.h"

namespace ZelmResult {

class CRegVector;

// A waterfall of octave spectra. After its bands each slice holds two more points: the linear and the weighted global
// level. By the type of signal, a step has a plain spectrum (2), a plain one with its minimum and maximum (3, in the
// dimensions 0, 1 and 2), a minimum (4) or a maximum (5) alone.
//
// Stored as  version 2: the block of a CWaterfall, whose slices are CRegVectors, and the fraction of an octave. Version
//            1 has a layout of its own, without the global levels.
// Owns       as CWaterfall; the vector that shows slices is a CRegVector.
// Copies     by = from a pointer and GetCopy are deep.
class CWtfOctave : public CWaterfall {
public:
    static constexpr const char* kRecordName = "CWtfOctave";

    // An object for a copy to fill, or with true for a read: see CWaterfall.
    CWtfOctave() : CWtfOctave(false) {}
    explicit CWtfOctave(bool isWaterfall) : CWaterfall(isWaterfall) {}
    // An object for a host to fill: zSize slices of size bands. refs as in CReferencedAxis.
    CWtfOctave(std::uint32_t process, std::uint32_t wtfProcess, std::int32_t size, std::int32_t zSize,
               CListVectorRef* refs, SignalType type);
    ~CWtfOctave() override;

    // The fraction of an octave: 0 for 1/1, 1 for 1/3, 2 for 1/12, 3 for 1/24.
    [[nodiscard]] std::uint32_t GetXnOctave() const override { return m_xnOctave; }
    void SetXnOctave(std::uint32_t bands) override;
    [[nodiscard]] float GetXMinOctave() const; // Hz, the middle of the lowest band

    // Global levels in SI units, linear and weighted; 0.0 for a slot without a slice. By dimension, or by kind of
    // level: Minimum and Maximum mean the dimensions 1 and 2; anything else, or a missing dimension, means 0.
    [[nodiscard]] float GetGlobalLevelByIndex(std::int32_t dimension, std::int32_t slot);
    [[nodiscard]] float GetGlobalLevelPondByIndex(std::int32_t dimension, std::int32_t slot);
    [[nodiscard]] float GetGlobLevel(std::int32_t slot, AvgOctaveTarget target);
    [[nodiscard]] float GetGlobalLevelPond(std::int32_t slot, AvgOctaveTarget target);
    void SetGlobalLevelByIndex(std::int32_t dimension, std::int32_t slot, float level);
    void SetGlobalLevelPondByIndex(std::int32_t dimension, std::int32_t slot, float level);

    // A CRegVector with the global levels of the slice; changes of its levels don't reach the slice.
    [[nodiscard]] CVector* GetTempVector(std::int32_t slot) override;
    [[nodiscard]] CVector* GetTempVectorFromDimData(std::int32_t rawIndex) override; // without the levels

    [[nodiscard]] std::int32_t GetRealSize(std::int32_t size) const override;
    void ReAlloc() override;
    void ClearTab() override;
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x200045); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    [[nodiscard]] CWtfOctave* GetWholeCopy() override;
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void Outline(RecordOutline& out) const;

protected:
    [[nodiscard]] bool ReadSlice(CMmioFile& file, std::int32_t rawIndex) override;
    [[nodiscard]] std::int64_t BytesAfterRanges() const override;
    [[nodiscard]] std::int32_t StoredArrays() const override;
    [[nodiscard]] std::unique_ptr<CVector> MakeTempVector() const override;
    // Write the levels of the vector after the bands that it shows.
    void SetOctaveSimpleLevel(std::int32_t rawIndex);
    void SetOctaveMinLevel(std::int32_t rawIndex);
    void SetOctaveMaxLevel(std::int32_t rawIndex);
    // Show a slot as one kind of values, with its levels.
    void SetOctaveSimpleVector(std::int32_t slot);
    void SetOctaveMinVector(std::int32_t slot);
    void SetOctaveMaxVector(std::int32_t slot);

private:
    [[nodiscard]] CRegVector* Bands() const;
    [[nodiscard]] bool HasSimple() const;
    [[nodiscard]] bool HasMinimum() const;
    [[nodiscard]] bool HasMaximum() const;
    // The dimension, or 0 when it doesn't exist.
    [[nodiscard]] std::int32_t DimensionOr0(std::int32_t dimension) const;
    [[nodiscard]] bool HasLevel(const CSliceHandler& slice, std::int32_t place) const;
    [[nodiscard]] float LevelOf(const CSliceHandler& slice, std::int32_t place) const;
    void SetLevel(CSliceHandler& slice, std::int32_t place, float level) const;
    void ShowMinimum(const CSliceHandler& slice);
    void ShowMaximum(const CSliceHandler& slice);
    void HideMinMax();
    [[nodiscard]] bool ReadSpectrum(CMmioFile& file, std::int32_t rawIndex);
    [[nodiscard]] bool ReadFormerLayout(CMmioFile& file);
    [[nodiscard]] bool ReadFormerSlice(CMmioFile& file, std::int32_t rawIndex);
    template <class Io, class Self>
    static bool fieldsSinceVersion2(Io& io, Self& v);

    std::uint32_t m_xnOctave = 0;
    bool m_hasFormerLayout = false; // of the record that is read
    CSliceHandler m_shownMin;
    CSliceHandler m_shownMax;
};

} // namespace ZelmResult
