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
//            block numbers are the reference's, which must live as long as they are wanted: without it they are gone.
//            The reference isn't owned.
// Copies     by = from a pointer and GetCopy are deep: they have arrays of their own, and no reference.
class CRefWaterfall : public CRefVector {
public:
    static constexpr const char* kRecordName = "CRefWaterfall";

    CRefWaterfall();
    // Doesn't share the arrays yet; a change of size, or UpdateVecteurReferencePtr, does. keeps a pointer to ref, which
    // counts only when it is a CWaterfallRef, here and below.
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
    // Takes the arrays of the reference again, in the place of those it has.
    void UpdateVecteurReferencePtr();

    // Puts the value of a block into the ring, infinities for the blocks left out before it, and both into the
    // reference unless skipReference. The position it went to, -1 for an empty array. Where the second kind is
    // ResultKind::kSlidingCount, a block at or past Size moves all values down by 1 and brings Size - 1, whatever the
    // value: a count of slices stays one.
    std::int32_t AddRefValue(float value, std::int32_t block, bool skipReference);
    // Turns a series that came from a file into a ring, sorted by block, with infinities for the blocks left out. False
    // for block numbers that fit no ring, or lie too far apart to hold what is between.
    bool UpdateTabValue();

    void ReAlloc() override;
    void ReInitPtrTab() override;
    void Clean() override; // and the reference
    // Magnitude, limits and filled points go to the reference too, the name to it alone.
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
    // Those of its reference, values and blocks, and the copy that a read makes of what they share.
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
    std::shared_ptr<BlocTable> m_writtenTable; // that a write let go of, for another write
};

} // namespace ZelmResult
