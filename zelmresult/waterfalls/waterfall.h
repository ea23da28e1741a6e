#pragma once

#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/vector.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <map>
#include <memory>
#include <vector>

namespace ZelmResult {

class CVectorRef;

// Spectra taken one after another, such as during a run-up. X runs along a slice; across slices there are block
// numbers, and references that say what they mean.
//
// Three numberings: a block number counts the steps of the acquisition, of which some may be missing; a raw index names
// the place where a slice is kept, and its entry in the table of block numbers; a slot is a place of the sorted map,
// which leads to a raw index. While a waterfall is filled, it is a ring of ZSize slots, and slots are raw indexes. Once
// it was read from a file, slots are block numbers, and ZSize is the highest one plus 1.
//
// Stored as  version 1: the base block, the axis' block, a CVector per slice, the block numbers, six limits, two
//            quantities.
// Owns       its slices, the table of block numbers, and the vector that shows a slice.
// Copies     by = from a pointer and GetCopy are deep.
class CWaterfall : public CResult, public CReferencedAxis {
public:
    static constexpr const char* kRecordName = "CWaterfall";
    using CSliceHandler = CWaterfallBuffer::CSliceHandler;

    // For a read to fill.
    CWaterfall() : CWaterfall(false) {}
    explicit CWaterfall(bool isWaterfall);
    // For a host to fill: zSize slices of size points. refs as in CReferencedAxis. Without allocate, ReAlloc makes the
    // slices.
    CWaterfall(std::uint32_t process, std::uint32_t wtfProcess, std::int32_t size, std::int32_t zSize,
               CListVectorRef* refs, SignalType type, bool allocate);
    CWaterfall(const CWaterfall&) = delete;
    CWaterfall& operator=(const CWaterfall&) = delete;
    ~CWaterfall() override;

    // ---- Blocks ----
    // The next place of the ring shows a slice: the one of that raw index, or that of the place for -1. Blocks that
    // were left out before it leave empty slots. The place, -1 without slices. A number at or below the last one takes
    // the next place all the same. The host writes the slice, and its number into the table by SetBlocNumber.
    std::int32_t AddBlock(std::int32_t block, std::int32_t rawIndex);
    // Gives a slot the slice of the same number, unless it shows one. The slot, -1 out of range.
    std::int32_t AddBlockByIndex(std::int32_t index);
    [[nodiscard]] std::int32_t GetIndexByBloc(std::int32_t block) const; // the slot of a block, -1 without one
    [[nodiscard]] std::int32_t GetOldestIndex() const { return GetFirstIndex(); }
    // The first slot from cursor on, below GetFilled, that shows a raw index; cursor moves to it. -1 when there is
    // none.
    std::int32_t GetBlockNumberFromWbArray(std::int32_t rawIndex, std::int32_t& cursor) const;
    // A new table of n entries, all -1; lends it.
    std::int32_t* AllocateTabBlockNumber(std::int32_t n) { return MakeBlocNumbers(n); }
    // Turns what was read, slices in their stored order beside a table of block numbers, into the sparse form. Slices
    // are sorted with their numbers, but raw slice 0 never moves. False for numbers that fit no waterfall.
    bool UpdateDataTab();
    void DoSpectrumExchange(std::int32_t a, std::int32_t b) { m_buffers.SwapSortedIndex(a, b); } // two slots

    // ---- Values. dimension 0 is the real part, 1 the imaginary one, or the minimum and 2 the maximum of bands. ----
    [[nodiscard]] CSliceHandler GetTabData(std::int32_t dimension, std::int32_t slot);
    [[nodiscard]] float GetTabPoint(std::int32_t dimension, std::int32_t slot, std::int32_t point); // 0 without one
    // Copy n values; zeros past the slice, and without one.
    void GetValues(std::int32_t dimension, std::int32_t slot, float* out, std::int32_t n);
    void GetValues(std::int32_t dimension, std::int32_t slot, double* out, std::int32_t n);
    // Show a slice, by slot, by raw index, without a copy: what is written to the vector is written to the slice. The
    // vector is lent until the next of these calls, which shows another slice by the same vector; it has no values
    // where there is no slice. Null before the waterfall is allocated.
    [[nodiscard]] virtual CVector* GetTempVector(std::int32_t slot);
    [[nodiscard]] virtual CVector* GetTempVectorFromDimData(std::int32_t rawIndex);
    // For a loop over slots that may be empty: from the first empty one on the table of block numbers tells the slots.
    // useBlockTable is the loop's, false at first.
    [[nodiscard]] CVector* GetTempVector_Verrue(std::int32_t index, bool& useBlockTable);

    // ---- Ranges and quantities, handed on to the vector that shows slices ----
    [[nodiscard]] float GetRealMax() const override { return m_realMax; }
    [[nodiscard]] float GetRealMin() const override { return m_realMin; }
    [[nodiscard]] float GetImMax() const override { return m_imMax; }
    [[nodiscard]] float GetImMin() const override { return m_imMin; }
    [[nodiscard]] float GetXMax() const override { return m_xMax; }
    [[nodiscard]] float GetXMin() const override { return m_xMin; }
    void SetRealMax(float value);
    void SetRealMin(float value);
    void SetImMax(float value);
    void SetImMin(float value);
    void SetXMax(float value) override;
    void SetXMin(float value) override;
    void SetYMin(float value) override; // of both parts
    void SetYMax(float value) override;
    void SetMagnitude(CGrandeur* quantity) override;
    void SetXMagnitude(CGrandeur* quantity) override;
    [[nodiscard]] CGrandeur* GetXMagnitude() const override { return m_xMagnitude; }
    // Of the chosen reference; 0.0 without one.
    [[nodiscard]] virtual float GetZMax() const { return ReferenceMax(); }
    [[nodiscard]] virtual float GetZMin() const { return ReferenceMin(); }
    [[nodiscard]] virtual CGrandeur* GetZMagnitude() const { return m_zMagnitude; }
    [[nodiscard]] float GetPrecisionZ() const { return ReferenceAbsPrecision(0.0F); }
    [[nodiscard]] float GetRelPrecisionZ() const { return ReferenceRelPrecision(0.0F); }
    // Also takes the quantity of the chosen reference for Z.
    void SetReference(const wstring& name, const CGrandeur* quantity, CVectorRef* fallback) override;
    void GetZReference(std::vector<CVectorRef*>& references) const;
    void GetZRefNames(std::vector<wstring>& names) const { GetRefNames(names); }
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;

    // ---- Sizes and life. What changes a size or the type loses the slices and the table. ----
    void SetSize(std::int32_t size) override;
    void SetZSize(std::int32_t slices, bool force);
    [[nodiscard]] std::int32_t GetZSize() const override { return m_zSize; }
    [[nodiscard]] std::int32_t GetFilled() const override { return CReferencedAxis::GetFilled(); }
    [[nodiscard]] virtual std::int32_t GetRealSize(std::int32_t size) const { return size; } // points of a slice
    // How many buffers a type of signal takes, -1 for none.
    static std::int32_t GetComplexDim(SignalType type);
    void ReAlloc() override;
    virtual void ClearTab(); // frees slices and table
    void Clean() override;   // empties the ring; the slices stay
    [[nodiscard]] CReferencedAxis* GetReferencedAxis() override { return this; }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x45); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

    // ---- Storage ----
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void Outline(RecordOutline& out) const;

protected:
    // One record per slice.
    [[nodiscard]] virtual bool WriteData(CMmioFile* file);
    [[nodiscard]] virtual bool ReadData(CMmioFile* file);
    // Makes the vector that shows slices.
    [[nodiscard]] virtual std::unique_ptr<CVector> MakeTempVector() const;

    [[nodiscard]] CWaterfallBufferArray& Buffers() { return m_buffers; }
    [[nodiscard]] CVector* TempVector() const { return m_tempVector.get(); }

private:
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;
    [[nodiscard]] bool WriteBlockNumbers(CMmioFile& file) const;
    [[nodiscard]] bool MakeRoom(CMmioFile& file);
    [[nodiscard]] bool ReadSlice(CMmioFile& file, std::int32_t rawIndex);
    [[nodiscard]] bool ReadBlockNumbers(CMmioFile& file);
    void SortSlices();
    void MoveSlices(const std::vector<std::int32_t>& sources);
    CVector* Show(const CSliceHandler& real, const CSliceHandler& imaginary);
    void HideSlices();

    std::int32_t m_zSize = -1;
    std::int32_t m_complexDim = -1;
    float m_imMax = 0.0F;
    float m_imMin = 0.0F;
    float m_realMax = 0.0F;
    float m_realMin = 0.0F;
    CGrandeur* m_zMagnitude = nullptr;
    CGrandeur* m_xMagnitude = nullptr;
    float m_xMax = 0.0F;
    float m_xMin = 0.0F;
    std::int32_t m_pointCount = -1;
    CWaterfallBufferArray m_buffers; // ahead of the handlers, which mustn't outlive it
    std::unique_ptr<CVector> m_tempVector;
    CSliceHandler m_shownReal;
    CSliceHandler m_shownImaginary;
};

} // namespace ZelmResult
