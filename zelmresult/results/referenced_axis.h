#pragma once

#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/support/watched.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

namespace ZelmResult {

class CListVectorRef;
class CMmioFile;
class CVectorRef;
class RecordOutline;

// An X axis without limits of its own: each point is a block of acquired data, and its X value comes from a reference,
// chosen from a list that axes share. It also keeps the state of a ring of consecutive blocks. It is a second base of
// the results that use it, with its own stored block.
// Stored as  version 6: the number of filled points, then, unless the axis belongs to a waterfall, the references and
//            the place of the chosen one. Older versions hold less, or a table that is skipped.
// Owns       the table of block numbers, and, together with its other users, the list: the last user of a list that is
//            no manager deletes it. The chosen reference belongs to the list. List and chosen reference become null
//            when they die, and the list may be null after a read.
// Copies     the copy constructor and = share list, chosen reference and table; the table lives as long as one of its
//            users.
class CReferencedAxis : public Watchable {
public:
    static constexpr const char* kRecordName = "CReferencedAxis";

    CReferencedAxis();
    // Registers with the list, or a new empty one for null, and chooses its first reference.
    CReferencedAxis(CListVectorRef* list, bool isWaterfall);
    CReferencedAxis(const CReferencedAxis& other);
    CReferencedAxis& operator=(const CReferencedAxis& other);
    virtual ~CReferencedAxis();

    [[nodiscard]] virtual bool Write(CMmioFile* file);
    [[nodiscard]] virtual bool Read(CMmioFile* file);
    virtual void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    virtual void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);
    [[nodiscard]] virtual CListVectorRef* GetReferences() const { return m_references; } // lends, may be null
    // Chooses the reference of that name; without one, the first with the quantity of fallback, or without a fallback
    // the best candidate for name and quantity, or else the first of the list. quantity and fallback may be null.
    virtual void SetReference(const wstring& name, const CGrandeur* quantity, CVectorRef* fallback);
    // Takes over the ring of another axis and chooses the reference of the same name; list and table don't change.
    virtual CReferencedAxis& operator=(CReferencedAxis* other);
    virtual void SetFilled(std::int32_t points) { m_nFilled = points; }
    [[nodiscard]] virtual std::int32_t GetFilled() const { return m_nFilled; }
    // Empties the ring. Table and references don't change.
    virtual void Clean();
    [[nodiscard]] virtual CReferencedAxis* GetRefAxisCopy(); // gives

    // ---- References; all pointers are lent and may be null ----
    [[nodiscard]] const std::vector<CVectorRef*>* GetReferencesList() const;
    [[nodiscard]] std::vector<CVectorRef*> GetValidReferencesList() const; // without the hidden ones
    void GetRefNames(std::vector<wstring>& names) const;
    [[nodiscard]] CVectorRef* GetReference(const wstring& name, const CGrandeur* quantity) const;
    [[nodiscard]] CVectorRef* GetChosenReference() const { return m_references.HasDied() ? nullptr : m_chosen.get(); }
    // Leaves the list, which dies with its last user unless it is a manager list, and joins another; null joins none.
    void SetReferenceList(CListVectorRef* list);
    // Chooses a reference of the list; the first, when the list has another one or none of that name; none for null.
    void SetChosenReference(CVectorRef* reference);
    void AddVectorRef(CVectorRef* reference); // the list takes it, unless it holds it
    // The caller gets it back from the list. When it was chosen, the first of the list becomes the chosen one.
    void RemoveVectorRef(CVectorRef* reference);
    void DeleteAllRef(); // and the results that show references of waterfalls
    // The values of a reference by name; for a waterfall's axis the sorted ones.
    void GetAnyRefValue(float*& values, const wstring& name, const CGrandeur* quantity) const;
    // Shares the references of another list and chooses the last of them that fits.
    void CopyReference(const CListVectorRef& source, std::uint32_t size, bool build);

    // ---- Blocks ----
    [[nodiscard]] std::int32_t GetCount() const { return m_count; } // values in the ring
    [[nodiscard]] std::int32_t GetFirstIndex() const { return m_firstIndex; }
    [[nodiscard]] std::int32_t GetNextIndex() const { return m_nextIndex; }
    [[nodiscard]] std::int32_t GetFirstBlockNb() const { return m_firstBlockNb; }
    [[nodiscard]] std::int32_t GetLastBlockNb() const { return m_lastBlockNb; }
    void SetLastBlockNb(std::int32_t block) { m_lastBlockNb = block; }
    [[nodiscard]] bool IsWaterfall() const { return m_isWaterfall; }
    void SetIsWaterfall(bool isWaterfall) { m_isWaterfall = isWaterfall; }
    // The block number of a point: -1, null or nothing without a table or past its end.
    [[nodiscard]] std::int32_t GetBlocNumber(std::int32_t point) const;
    [[nodiscard]] std::int32_t* GetBlocNumberPtr(std::int32_t point) const;
    void SetBlocNumber(std::int32_t point, std::int32_t block);
    // Copies n block numbers, into a new table when there is none. False for null, for n below 1, and for more than
    // are filled or the table holds.
    bool CopyBlocNumber(const std::int32_t* source, std::int32_t n);
    bool CopyBlocNumber(const std::int32_t* source, std::uint64_t n);
    // Counts one more value in a ring of that size, for an owner that stores the value itself. Returns the block that
    // was dropped, or -1.
    std::int32_t UpdateIndex(std::int32_t size);
    // The place of a block's value in a ring of that size. False, and -1, for a block that isn't in it.
    bool SearchForRefIndex(std::int32_t block, std::int32_t& index, std::int32_t size) const;

    bool operator==(const CReferencedAxis& /*other*/) const { return true; } // always equal
    void Outline(RecordOutline& out) const;

protected:
    using BlocTable = std::vector<std::int32_t>;

    void FreeBlocNumbers() { m_blocNumbers.reset(); }
    // Replaces the table by one of n entries, all -1; lends it. For n below 1 there is none, and it returns null.
    std::int32_t* MakeBlocNumbers(std::int32_t n);
    // Replaces the table by one with the first n block numbers of the other axis, as far as it has them; none for n
    // below 1.
    void CopyBlocNumbersOf(const CReferencedAxis& other, std::int32_t n);
    // The table itself, which others may share.
    [[nodiscard]] const std::shared_ptr<BlocTable>& SharedBlocNumbers() const { return m_blocNumbers; }
    void ShareBlocNumbers(std::shared_ptr<BlocTable> table) { m_blocNumbers = std::move(table); }
    // Counts one or many more values in a ring of that size, which must be above 0.
    void MoveRing(std::int64_t values, std::int32_t size);
    // Leaves the list; see SetReferenceList.
    void Detach();

    // Properties of the chosen reference; 0 or null without one.
    [[nodiscard]] float ReferenceMin() const;
    [[nodiscard]] float ReferenceMax() const;
    void SetReferenceMin(float value);
    void SetReferenceMax(float value);
    [[nodiscard]] CGrandeur* ReferenceMagnitude() const;
    void SetReferenceMagnitude(CGrandeur* quantity);
    [[nodiscard]] float ReferenceRelPrecision(float otherwise) const;
    [[nodiscard]] float ReferenceAbsPrecision(float otherwise) const;
    void SetSizeOfReferences(std::int32_t size);
    void CopyVectorRefOf(const CReferencedAxis& other);

    std::int32_t m_count = 0;
    std::int32_t m_nFilled = 0;
    std::int32_t m_firstIndex = 0;
    std::int32_t m_nextIndex = 0;
    std::int32_t m_firstBlockNb = 0;
    std::int32_t m_lastBlockNb = -1;

    // How many references are stored with this axis, each with as many values as there are filled points.
    [[nodiscard]] std::size_t StoredReferences() const;

private:
    void Choose(CVectorRef* reference);
    void Hold(CListVectorRef* list);
    void CopyBooks(const CReferencedAxis& other);
    [[nodiscard]] CListVectorRef& ListOrNew();
    bool ReadReferences(CMmioFile& file, std::uint16_t version);
    [[nodiscard]] bool HoldsPlainReferences() const;
    static bool SkipFormerTable(CMmioFile& file, std::uint16_t version);

    WatchedPointer<CListVectorRef> m_references; // when it dies, no reference is chosen any more
    WatchedPointer<CVectorRef> m_chosen;
    std::shared_ptr<BlocTable> m_blocNumbers;
    bool m_isWaterfall = false;
};

} // namespace ZelmResult
