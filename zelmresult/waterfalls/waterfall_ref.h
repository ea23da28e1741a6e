#pragma once

#include "zelmresult/waterfalls/sorted_reference_values.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <memory>
#include <vector>

namespace ZelmResult {

class CRefWaterfall;

// A reference of a waterfall: while it is measured, each block brings one value, such as a speed. The values are kept
// twice: as they arrive, in a ring that old blocks fall out of, beside a table of their blocks; and sorted, so that the
// block nearest to a value can be found. The result that shows the series, a CRefWaterfall, keeps the ring's books and
// shares the values and the table.
//
// Stored as  version 1: the block of a CVectorRef, a block number per value, the flag. Only finite values are stored,
//            and as many block numbers as values, from the front of the table: they match as long as the ring has no
//            gap and hasn't come round.
// Owns       values, table and sorted arrays. The results that view it, and the one set by SetMyRefVect, are not
//            owned: they lose their pointers, and the arrays they share, when it dies, and it loses its pointers when
//            they die. Whoever deletes a result of ResultFactory deletes its reference too, unless a list holds it.
// Copies     by = from a pointer and GetCopy are deep and have no MyRefVect; the others are flat, as in CVectorRef.
class CWaterfallRef : public CVectorRef {
public:
    static constexpr const char* kRecordName = "CWaterfallRef";
    static constexpr std::int32_t kGapBlock = -2; // in the table, for a block that was left out
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
    // The next entry of the ring takes a value and its block, and the ring of MyRefVect moves on. The block that stood
    // there before, -1 for none.
    std::int32_t AddUnsortedValue(float value, std::int32_t block);
    std::int32_t AddUnsortedBlockNumber(std::int32_t block); // the same for the block alone
    // The place it took. Among equal values a new one comes first, but for the highest, where it comes last, and the
    // lowest, where it comes second.
    std::int32_t InsertValueInSortedTabs(float value, std::int32_t block);
    std::int32_t RemoveValueInSortedTabs(std::int32_t block); // the place it had, -1 for none
    void Clean();          // empties the sorted arrays and begins the ring anew; values and table stay
    void CleanSortedTab(); // empties the sorted arrays

    // ---- Asking ----
    // The position of a block, with its value in out; -1 without it. With MyRefVect by its ring: -1 also for a gap,
    // whose infinity goes to out. Without, by the table.
    std::int32_t GetValueByBloc(std::int32_t block, float& out) const;
    // By the table, for a series that came from a file: false, and 0 in out, without the block; false for a gap.
    // Without a table out stays.
    bool GetValueByBlocForConversion(std::int32_t block, float& out) const;
    // Brings a series that came from a file into the ring of MyRefVect, sorted by block, with infinities for the blocks
    // left out. False without MyRefVect, and for blocks too far apart to hold what lies between.
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
    // Results that share the arrays let go of them, and take them again.
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
    std::vector<WatchedPointer<CRefWaterfall>> m_viewers; // whose MyVecteurReference this is, null for one that died
};

} // namespace ZelmResult
