#pragma once

#include "zelmresult/results/ref_vector.h"
#include "zelmresult/waterfalls/waterfall_ref.h"

#include <memory>
#include <vector>

namespace ZelmResult {

// A series along a waterfall, such as its speed, as a result that can be shown and stored: one point per block.
//
// Stored as  version 1: the block of a CRefVector, a block number per filled point.
// Owns       its arrays. While IsWaterfallReference is set and there is a reference, the real values and the table of
//            block numbers belong to the reference, and are lost when it dies. The reference isn't owned.
// Copies     by = from a pointer and GetCopy are deep: they have arrays of their own, and no reference.
class CRefWaterfall : public CRefVector {
public:
    static constexpr const char* kRecordName = "CRefWaterfall";

    CRefWaterfall();
    // Doesn't share the arrays yet; a change of size, or UpdateVecteurReferencePtr, does. keeps a pointer to ref; here
    // and below any class but CWaterfallRef is ignored.
    CRefWaterfall(bool isWaterfall, CVectorRef* ref, bool hasReference);
    CRefWaterfall(std::uint32_t process, SignalType type); // one point, no reference
    // list as in CReferencedAxis. With hasReference the arrays are those of ref.
    CRefWaterfall(std::uint32_t process, std::int32_t size, SignalType type, CListVectorRef* list, CVectorRef* ref,
                  std::uint32_t wtfProcess, bool hasReference, bool isWaterfall);
    CRefWaterfall(const CRefWaterfall&) = delete;
    CRefWaterfall& operator=(const CRefWaterfall&) = delete;
    ~CRefWaterfall() override;

    [[nodiscard]] CWaterfallRef* GetMyVecteurReference() const { return m_reference; } // lends, may be null
    [[nodiscard]] bool IsWaterfallReference() const { return m_isWaterfallReference; }
    [[nodiscard]] std::int32_t GetOldestIndex() const { return GetFirstIndex(); }
    // Shows the best candidate of the axis' list, as GetReference finds it, and shares its arrays. Without one, and
    // without IsWaterfallReference, nothing changes.
    void SetMyVecteurReference(const wstring& name, const CGrandeur* magnitude);
    // Replaces its arrays by those of the reference.
    void UpdateVecteurReferencePtr();

    // Puts the value of a block into the ring, and infinities for missing blocks before it; also into the reference,
    // unless skipReference. Returns the position of the value, -1 for an empty array. When the second kind is
    // ResultKind::kSlidingCount, a block at or above Size lowers all values by 1 and adds Size - 1, whatever the value,
    // so that it remains a count of slices.
    std::int32_t AddRefValue(float value, std::int32_t block, bool skipReference);
    // Turns a series from a file into a ring, sorted by block, with infinities for missing blocks. False for block
    // numbers that fit no ring, or are too far apart to hold all blocks between them.
    bool UpdateTabValue();

    void ReAlloc() override;
    void ReInitPtrTab() override;
    void Clean() override; // and the reference
    // Magnitude, limits and filled points are also set in the reference, the name only there.
    void SetMagnitude(CGrandeur* quantity) override;
    void SetYMin(float value) override;
    void SetYMax(float value) override;
    void SetFilled(std::int32_t points) override;
    void setName(const wstring& name) override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0xAD); }
    bool operator==(const CRefWaterfall& other) const; // the same reference and flag
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;
    // A result without reference and flag loses its table of block numbers, deliberately.
    [[nodiscard]] bool Write(CMmioFile* file) override;
    [[nodiscard]] bool Read(CMmioFile* file) override;
    void Outline(RecordOutline& out) const;

protected:
    // Those of its reference, values and blocks, and the copy that a read makes of the shared arrays.
    [[nodiscard]] std::int32_t ArraysPerReAlloc() const override
    {
        constexpr std::int32_t ofReference = 3;
        return CRefVector::ArraysPerReAlloc() + (m_reference != nullptr && m_isWaterfallReference ? ofReference : 0);
    }
    void UnshareArrays() override;

private:
    friend class CWaterfallRef;
    friend class MmioFile_VectorRef;

    [[nodiscard]] bool SharesArrays() const;
    void View(CWaterfallRef* reference);
    void LetGoOfArrays();
    void OwnArrays();
    void AddGaps(std::int64_t missing, CWaterfallRef* reference);
    void PutReal(float value);
    void PutSliding(std::int32_t block, CWaterfallRef& reference);
    static bool IsSpanHeld(std::int64_t blocks, std::int32_t filled);
    void SortByBlock();
    void MakeRing(std::int32_t size);
    template <class Io, class Self>
    static bool fields(Io& io, Self& v, std::shared_ptr<BlocTable>& table);
    void dumpLines(CMmioFile& file, const std::shared_ptr<BlocTable>& table) const;

    WatchedPointer<CWaterfallRef> m_reference;
    bool m_isWaterfallReference = false;
    std::shared_ptr<BlocTable> m_writtenTable; // released by a write, kept for another write
};

} // namespace ZelmResult
