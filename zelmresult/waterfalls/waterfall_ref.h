#pragma once

#include "zelmresult/waterfalls/sorted_reference_values.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <memory>
#include <vector>

namespace ZelmResult {

class CRefWaterfall;

// A reference of a waterfall: while it is measured, each block adds one value, such as a speed. The values are kept
// twice: as they arrive, in a ring that drops old blocks, with a table of their blocks; and sorted, so that the block
// nearest to a value can be found. The result that shows the series, a CRefWaterfall, keeps the state of the ring and
// shares the values and the table.
//
// Stored as  version 1: the block of a CVectorRef, a block number per value, the flag. Only finite values are stored,
//            and as many block numbers as values, from the start of the table: they match as long as the ring has no
//            gap and was never full.
// Owns       values, table and sorted arrays. The results that view it, and the one set by SetMyRefVect, are not owned:
//            they lose their pointers, and the arrays they share, when it dies, and it loses its pointers when they
//            die. Delete the reference of a result of ResultFactory with it, unless a list holds the reference.
// Copies     by = from a pointer and GetCopy are deep and have no MyRefVect; the others are flat, as in CVectorRef.
class CWaterfallRef : public CVectorRef {
public:
    static constexpr const char* kRecordName = "CWaterfallRef";
    static constexpr std::int32_t kGapBlock = -2; // in the table, for a missing block
    static constexpr std::int32_t kNoBlock = -1;  // in the table, for an empty entry

    CWaterfallRef() = default;
    CWaterfallRef(std::uint32_t process, std::int32_t size, const wstring& name, SignalType type, bool tacho);
    CWaterfallRef(const CWaterfallRef& other);
    CWaterfallRef& operator=(const CWaterfallRef& other);
    ~CWaterfallRef() override;

    [[nodiscard]] std::int32_t* GetBlockNumberPtr() const;           // lends Size block numbers, may be null
    [[nodiscard]] std::uint32_t GetStamp() const { return m_stamp; } // insertions into the sorted arrays
    void SetStamp(std::uint32_t stamp) { m_stamp = stamp; }
    [[nodiscard]] bool IsTacho() const { return m_isTacho; }
    [[nodiscard]] CRefWaterfall* GetMyRefVect() const { return m_myRefVect; } // lends, may be null
    void SetMyRefVect(CRefWaterfall* result);                                 // keeps a pointer
    [[nodiscard]] CRefWaterfall* GetMyRefVectTemp() const { return m_myRefVectTemp; }
    void SetMyRefVectTemp(CRefWaterfall* result);                 // keeps a pointer, for the host's use
    [[nodiscard]] std::vector<CRefWaterfall*> GetViewers() const; // lends those that show this series
    [[nodiscard]] const SortedWaterfallRefValuesArray& GetSortedValues() const { return m_sortedValues; }
    [[nodiscard]] SortedWaterfallRefValuesArray& GetSortedValues() { return m_sortedValues; }
    [[nodiscard]] const SortedWaterfallRefBlocNumberArray& GetSortedBlocNumbers() const { return m_sortedBlocs; }

    // ---- Filling ----
    // The next entry of the ring takes a value and its block, and the ring of MyRefVect is advanced. Returns the block
    // that was there before, -1 for none.
    std::int32_t AddUnsortedValue(float value, std::int32_t block);
    std::int32_t AddUnsortedBlockNumber(std::int32_t block); // the same for just the block
    // Returns the place of the value. Among equal values a new one is first, except for the highest, where it is last,
    // and the lowest, where it is second.
    std::int32_t InsertValueInSortedTabs(float value, std::int32_t block);
    std::int32_t RemoveValueInSortedTabs(std::int32_t block); // the place it had, -1 for none
    void Clean();          // empties the sorted arrays and restarts the ring; keeps values and table
    void CleanSortedTab(); // empties the sorted arrays

    // ---- Look-ups ----
    // The position of a block, with its value in out; -1 without it. With MyRefVect it uses the ring of that: -1 also
    // for a gap, whose infinity is stored in out. Without, it uses the table.
    std::int32_t GetValueByBloc(std::int32_t block, float& out) const;
    // By the table, for a series from a file: false, and 0 in out, without the block; false for a gap. Without a table
    // out isn't changed.
    bool GetValueByBlocForConversion(std::int32_t block, float& out) const;
    // Moves a series from a file into the ring of MyRefVect, sorted by block, with infinities for missing blocks. False
    // without MyRefVect, and for blocks too far apart to hold all between them.
    bool UpdateTabRefValue();

    // Also refreshes the results that share the arrays.
    void ReAlloc() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x301); }
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void Outline(RecordOutline& out) const;

private:
    friend class CRefWaterfall;
    using BlocTable = std::vector<std::int32_t>;

    void CopyOwnFields(const CWaterfallRef& other);
    // Let the results that share the arrays release them, and take them again.
    void HideArrays();
    void ShowArrays();
    void HoldAtLeast(std::int32_t entries);
    void RemoveBlocks(std::int64_t first, std::int64_t end);
    void SortByBlock();
    [[nodiscard]] bool BuildSortedTabs();
    [[nodiscard]] std::int32_t StoredValues(std::int32_t& filled) const;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    void dumpLines(CMmioFile& file) const;

    SortedWaterfallRefValuesArray m_sortedValues;
    SortedWaterfallRefBlocNumberArray m_sortedBlocs;
    std::int32_t m_unsortedPosition = 0;
    bool m_isTacho = false;
    std::uint32_t m_stamp = 0;
    WatchedPointer<CRefWaterfall> m_myRefVect;
    WatchedPointer<CRefWaterfall> m_myRefVectTemp;
    std::shared_ptr<BlocTable> m_blockNumbers;
    std::vector<WatchedPointer<CRefWaterfall>> m_viewers; // with this as MyVecteurReference, null for a dead one
};

} // namespace ZelmResult
