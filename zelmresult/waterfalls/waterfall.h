#pragma once

#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/results/vector.h"
#include "zelmresult/waterfalls/waterfall_buffer_array.h"

#include <map>
#include <memory>
#include <optional>
#include <vector>

namespace ZelmResult {

class CVectorRef;

// What a read takes of the slices of a stored waterfall, in place of all.
struct WantedSlice {
    enum class By : std::uint8_t { Index, Block, None };

    By by = By::None; // by its place in the order of blocks, by its block number, or no slice at all
    std::int64_t number = 0;
    std::int64_t end = 0; // where the stored record ends in the file
};

// Spectra taken one after another, such as during a run-up. X runs along a slice; across slices there are block
// numbers, and references that give their meaning.
//
// Three numberings: a block number counts the steps of the acquisition, of which some may be missing; a raw index
// names the place where a slice is kept, and its entry in the table of block numbers; a slot is an entry of the sorted
// map, which holds a raw index. While a waterfall is filled, it is a ring of ZSize slots, and slots are raw indexes.
// Once it was read from a file, slots are block numbers, and ZSize is the highest one plus 1.
//
// Stored as  version 1: the base block, the axis' block, a CVector per slice, the block numbers, six limits, two
//            quantities.
// Room       for slices is in memory or on disk, as CWaterfallBufferFactory is set. Without room (no memory, no
//            temporary folder, no descriptor, of which all buffers on disk together take one) everything still works,
//            but there are no slices: they read as nothing and are stored as zeros. AddBlock then returns -1, and
//            HasLostSlices is true.
// Owns       its slices, the table of block numbers, and the vector that shows a slice.
// Handlers   on slices must end before ReAlloc, a change of size or type, a read, an assignment, or the destructor.
// Copies     by = from a pointer and GetCopy are deep, except for the table of block numbers: it gets as many entries
//            as a slice has points. A copy with more slices than that can't be saved, and a copy of a waterfall that
//            was read with gaps between its blocks shows no slices. GetWholeCopy has neither limit.
class CWaterfall : public CResult, public CReferencedAxis {
public:
    static constexpr const char* kRecordName = "CWaterfall";
    using CSliceHandler = CWaterfallBuffer::CSliceHandler;

    // An object for a copy to fill. Don't read stored data into it: its axis would read the references of a vector.
    CWaterfall() : CWaterfall(false) {}
    // An object for a read to fill, with true. Each read needs a new object, since it doesn't clear former data.
    explicit CWaterfall(bool isWaterfall);
    // An object for a host to fill: zSize slices of size points. refs as in CReferencedAxis. Without allocate, ReAlloc
    // makes the slices.
    CWaterfall(std::uint32_t process, std::uint32_t wtfProcess, std::int32_t size, std::int32_t zSize,
               CListVectorRef* refs, SignalType type, bool allocate);
    CWaterfall(const CWaterfall&) = delete;
    CWaterfall& operator=(const CWaterfall&) = delete;
    ~CWaterfall() override;

    // ---- Blocks ----
    // The next place of the ring shows a slice: the one of that raw index, or for -1 that of the place. Missing blocks
    // before it leave empty slots. Returns the place, -1 without slices. A number at or below the last one takes the
    // next place too. The host then writes the slice, and its number with SetBlocNumber.
    std::int32_t AddBlock(std::int32_t block, std::int32_t rawIndex);
    // Gives a slot the slice of the same number, unless it shows one. Returns the slot, -1 out of range.
    std::int32_t AddBlockByIndex(std::int32_t index);
    [[nodiscard]] std::int32_t GetIndexByBloc(std::int32_t block) const; // the slot of a block, -1 without one
    [[nodiscard]] std::int32_t GetOldestIndex() const { return GetFirstIndex(); }
    // The first slot from cursor on, below GetFilled, that shows a raw index; cursor moves to it. -1 when there is
    // none.
    std::int32_t GetBlockNumberFromWbArray(std::int32_t rawIndex, std::int32_t& cursor) const;
    // A new table of n entries, all -1; lends it.
    std::int32_t* AllocateTabBlockNumber(std::int32_t n) { return MakeBlocNumbers(n); }
    // Turns the form that was read, slices in stored order and a table of block numbers, into the sparse form. Slices
    // are sorted with their numbers, but raw slice 0 never moves. False for numbers that fit no waterfall.
    bool UpdateDataTab();
    void DoSpectrumExchange(std::int32_t a, std::int32_t b) { m_buffers.SwapSortedIndex(a, b); } // two slots

    // ---- Values. dimension 0 is the real part, 1 the imaginary one, or the minimum and 2 the maximum of bands. ----
    [[nodiscard]] CSliceHandler GetTabData(std::int32_t dimension, std::int32_t slot);
    [[nodiscard]] float GetTabPoint(std::int32_t dimension, std::int32_t slot, std::int32_t point); // 0 without one
    // Copy n values; zeros beyond the slice, and without one.
    void GetValues(std::int32_t dimension, std::int32_t slot, float* out, std::int32_t n);
    void GetValues(std::int32_t dimension, std::int32_t slot, double* out, std::int32_t n);
    // Show a slice, by slot or by raw index, without a copy: values written to the vector are written to the slice. The
    // vector is lent until the next of these calls, which shows another slice by the same vector; it has no values
    // where there is no slice. Null before the waterfall is allocated.
    [[nodiscard]] virtual CVector* GetTempVector(std::int32_t slot);
    [[nodiscard]] virtual CVector* GetTempVectorFromDimData(std::int32_t rawIndex);
    // For a loop over slots that may be empty: from the first empty one on the slots come from the table of block
    // numbers. useBlockTable belongs to the loop, false at first.
    [[nodiscard]] CVector* GetTempVector_Verrue(std::int32_t index, bool& useBlockTable);

    // ---- Ranges and quantities, forwarded to the vector that shows slices ----
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
    [[nodiscard]] float GetPrecisionZ() const;
    [[nodiscard]] float GetRelPrecisionZ() const;
    // Also takes the quantity of the chosen reference for Z.
    void SetReference(const wstring& name, const CGrandeur* quantity, CVectorRef* fallback) override;
    void GetZReference(std::vector<CVectorRef*>& references) const;
    void FreeRefList(); // deletes the list, and gives the references in it back
    void GetZRefNames(std::vector<wstring>& names) const { GetRefNames(names); }
    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const override;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement) override;

    // ---- Sizes and life. A change of a size or of the type drops the slices and the table. ----
    void SetSize(std::int32_t size) override;
    void SetZSize(std::int32_t slices, bool force);
    [[nodiscard]] std::int32_t GetZSize() const override { return m_zSize; }
    [[nodiscard]] std::int32_t GetFilled() const override { return CReferencedAxis::GetFilled(); }
    [[nodiscard]] virtual std::int32_t GetRealSize(std::int32_t size) const { return size; } // points of a slice
    // How many buffers a type of signal takes, -1 for none.
    static std::int32_t GetComplexDim(SignalType type);
    void ReAlloc() override;
    virtual void ClearTab(); // frees slices and table
    // Whether there was no room for slices, or slices were lost on their way to the disk or back: they read as nothing
    // or as zeros, and a save stores zeros. Also after a load and in a copy of such a waterfall, until the slices are
    // made again.
    [[nodiscard]] bool HasLostSlices() const;
    void Clean() override; // empties the ring and keeps the slices
    [[nodiscard]] CReferencedAxis* GetReferencedAxis() override { return this; }
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x45); }
    CResult& operator=(CResult* other) override;
    // Shows no slices, and stores zeros, when the waterfall was read with gaps between its blocks: see GetWholeCopy.
    [[nodiscard]] CResult* GetCopy() override;
    // gives a new object of the same class with all slices and block numbers, whatever their gaps and their number;
    // else like GetCopy: its list of references is empty. Takes as much memory as the slices, and may find no room: see
    // HasLostSlices.
    [[nodiscard]] virtual CWaterfall* GetWholeCopy();

    // ---- Storage ----
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void Outline(RecordOutline& out) const;
    // The next Read takes at most one slice, with the memory of one. In a record of slices of one size, as all writers
    // make them, it goes straight to it; else it walks through all. The waterfall then has that slice, or none when no
    // slice is wanted or there is none like that.
    void ReadOnly(const WantedSlice& wanted) { m_wanted = wanted; }
    // After such a read: the blocks of all stored slices in their order, and the place of the slice among them; -1
    // without one.
    [[nodiscard]] const std::vector<std::int32_t>& StoredBlocks() const { return m_storedBlocks; }
    [[nodiscard]] std::int32_t ReadIndex() const { return m_readIndex; }

protected:
    // One record per slice.
    [[nodiscard]] virtual bool WriteData(CMmioFile* file);
    [[nodiscard]] virtual bool ReadData(CMmioFile* file);
    // Makes the vector that shows slices.
    [[nodiscard]] virtual std::unique_ptr<CVector> MakeTempVector() const;

    [[nodiscard]] CWaterfallBufferArray& Buffers() { return m_buffers; }
    [[nodiscard]] const CWaterfallBufferArray& Buffers() const { return m_buffers; }
    [[nodiscard]] CWaterfallBuffer& GetWaterfallBuffer(std::int32_t dimension) { return *m_buffers[dimension]; }
    [[nodiscard]] bool IsAllocated() const { return !m_buffers.IsEmpty() && m_buffers[0]->IsAllocated(); }
    [[nodiscard]] CVector* TempVector() const { return m_tempVector.get(); }
    void SetTempVector(std::unique_ptr<CVector> vector) { m_tempVector = std::move(vector); }
    // Points the vector at a slice and releases the former one.
    void ShowReal(const CSliceHandler& slice);
    void ShowImaginary(const CSliceHandler& slice);
    [[nodiscard]] CSliceHandler& ShownReal() { return m_shownReal; }
    // Gives the vector the quantities of the waterfall; lends it.
    CVector* WithQuantities();
    void FitTempVector();
    // Makes a new waterfall a copy of another one with all of its slices.
    void CopyWhole(CWaterfall& other);
    void SetPointCount(std::int32_t points) { m_pointCount = points; } // of a slice
    [[nodiscard]] std::int32_t ComplexDim() const { return m_complexDim; }
    // The blocks of the base and of the axis.
    [[nodiscard]] bool ReadBases(CMmioFile& file) { return CResult::Read(&file) && CReferencedAxis::Read(&file); }
    // Charges the memory of the slices that the base and the axis announce. False beyond the budget of a load.
    [[nodiscard]] bool ChargeSlices(CMmioFile& file);
    // Then makes the slices, each stored as that many arrays of Size values. False for more than the file can hold.
    [[nodiscard]] bool MakeRoom(CMmioFile& file, std::int32_t storedArrays);
    [[nodiscard]] virtual std::int32_t StoredArrays() const; // of a slice, by its type of signal
    // Whether the vector into which a slice was read has the shape of this waterfall's slices.
    [[nodiscard]] bool HasMyShape(const CVector& slice) const;
    // Reads as many block numbers as slices into a new table, with space for at least room of them.
    [[nodiscard]] bool ReadBlockNumbers(CMmioFile& file, std::int32_t room);
    // The limits and quantities, which follow the block numbers.
    [[nodiscard]] bool ReadRanges(CMmioFile& file);
    [[nodiscard]] virtual bool ReadSlice(CMmioFile& file, std::int32_t rawIndex);
    // The slices as ReadOnly wants them, with block numbers, limits and quantities.
    [[nodiscard]] bool IsReadOnly() const { return m_wanted.has_value(); }
    [[nodiscard]] bool ReadWanted(CMmioFile& file);
    [[nodiscard]] virtual std::int64_t BytesAfterRanges() const { return 0; } // that a record stores

private:
    template <class Io, class Self>
    static void sliceMemory(Io& io, Self& v);
    template <class Io, class Self>
    static void rangeFields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;
    [[nodiscard]] bool WriteBlockNumbers(CMmioFile& file) const;
    [[nodiscard]] bool HasRisingBlocks() const;
    [[nodiscard]] bool ReadEvenSlices(CMmioFile& file, std::int32_t stored, std::int32_t& raw);
    [[nodiscard]] bool WalkSlices(CMmioFile& file, std::int32_t stored, std::int32_t& raw);
    [[nodiscard]] bool ReadBooks(CMmioFile& file, std::int32_t stored, std::int32_t& raw);
    [[nodiscard]] static bool HasSlots(std::size_t slices, std::int32_t highest);
    [[nodiscard]] bool ChooseSlice(const std::vector<std::int32_t>& blocks, std::int32_t& raw);
    [[nodiscard]] CWaterfallBuffer* BufferOf(std::int32_t dimension) const;
    template <class T>
    void CopyValues(std::int32_t dimension, std::int32_t slot, T* out, std::int32_t n);
    void SortSlices();
    void MoveSlices(const std::vector<std::int32_t>& sources);
    CVector* Show(const CSliceHandler& real, const CSliceHandler& imaginary);
    void HideSlices();
    void CopyOwnFields(CWaterfall& other);

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
    CWaterfallBufferArray m_buffers; // before the handlers, which mustn't outlive it
    bool m_copiesLostSlices = false; // copied from a waterfall that had lost them
    std::unique_ptr<CVector> m_tempVector;
    CSliceHandler m_shownReal;
    CSliceHandler m_shownImaginary;
    std::optional<WantedSlice> m_wanted;
    std::vector<std::int32_t> m_storedBlocks;
    std::int32_t m_readIndex = -1;
};

} // namespace ZelmResult
