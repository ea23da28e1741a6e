#pragma once

#include "zelmresult/support/watched.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <map>
#include <vector>

namespace ZelmResult {

class CGrandeur;
class CGrandeurFichier;
class CMmioFile;
class CReferencedAxis;
class CVectorRef;

// The candidate references that several axes share. The list knows its references and the axes that use it.
//
// Owns     its references, together with the other lists that hold them: Destroy, and with it the destructor, deletes a
//          reference that no other list holds, and leaves one that another list holds. A reference that must outlive
//          its list is removed first, with RemoveVectorRef or RemoveAll. Axes are not owned.
// Life     a list dies with its last user (see Free); a manager list only when its owner deletes it.
// Copies   = appends real copies of the references; see there.
class CListVectorRef : public Watchable {
public:
    // A place in a list, for a walk. It must not outlive a change of the list.
    struct Position {
        const std::vector<CVectorRef*>* references = nullptr;
        std::size_t index = 0;
        bool isValid = false;
    };

    explicit CListVectorRef(bool isManager);
    CListVectorRef(const CListVectorRef&) = delete;
    virtual ~CListVectorRef();
    // gives a new list, which is no manager list, with copies of the references.
    [[nodiscard]] virtual CListVectorRef* GetCopy() const;
    // Appends a copy of each reference of the other list. A list that is no manager list first loses its references and
    // users, without deleting any.
    virtual CListVectorRef& operator=(const CListVectorRef& other);
    // Always true: lists aren't compared.
    bool operator==(const CListVectorRef& /*other*/) const { return true; }

    // ---- Users ----
    void Register(CReferencedAxis* axis); // keeps a pointer, once
    void UnRegister(CReferencedAxis* axis);
    // Unregisters; destroys the references of a list that is no manager list and has no user left. The last user then
    // deletes the list object.
    void Free(CReferencedAxis* axis);
    void FreeUserList() { m_users.clear(); }
    [[nodiscard]] bool IsListAlwaysUsed() const;
    [[nodiscard]] bool CanBeDestroy() const { return !m_isManager && !IsListAlwaysUsed(); }
    [[nodiscard]] bool IsWaterfallReferenceManagerList() const { return m_isManager; }
    void SetIsWaterfallReferenceManagerList(bool isManager) { m_isManager = isManager; }

    // ---- References ----
    void AddVectorRef(CVectorRef* reference); // takes, unless it is in the list
    // Give the reference back. True when it was in the list; by name the first of exactly that name.
    bool RemoveVectorRef(const CVectorRef* reference);
    bool RemoveVectorRef(const wstring& name);
    void RemoveAll(); // gives all references back
    void FreeRefList() { RemoveAll(); }
    void Destroy(); // deletes what no other list holds
    // Deletes the results that show references of waterfalls, their MyRefVect. The list outlives this, even without
    // users.
    void DestroyAssociatedWaterfallRef();
    void DeleteAllRef(); // those results and the references
    // Appends a copy of each reference of a waterfall of source, and for each that is shown by a result a new result
    // that shows the copy along this list; it is the MyRefVect of the copy. Delete it with the copy, for example by
    // DeleteAllRef.
    void DuplicateAllReference(const CListVectorRef& source);
    void SetSize(std::int32_t size); // of every reference

    // All lend; null when there is none.
    //
    // The best candidate: the first with that name and an equal quantity; else the first whose name contains name;
    // else the first with an equal quantity. quantity may be null.
    [[nodiscard]] CVectorRef* GetReference(const wstring& name, const CGrandeur* quantity) const;
    [[nodiscard]] CVectorRef* GetRef(std::int32_t index) const;
    [[nodiscard]] CVectorRef* GetFirstRef() const { return GetRef(0); }
    [[nodiscard]] CVectorRef* GetHead() const { return GetRef(0); }
    [[nodiscard]] Position GetHeadPosition() const { return {&m_references, 0, !m_references.empty()}; }
    // The entry at the position, which is advanced, and becomes invalid after the last entry.
    static CVectorRef* GetNext(Position& position);
    static CVectorRef* GetAt(const Position& position);
    // The values of the best candidate; for a waterfall's reference the sorted ones.
    void GetAnyRefValue(float*& values, const wstring& name, const CGrandeur* quantity, bool isWaterfall) const;

    [[nodiscard]] auto begin() const { return m_references.begin(); }
    [[nodiscard]] auto end() const { return m_references.end(); }
    [[nodiscard]] std::int32_t GetCount() const { return static_cast<std::int32_t>(m_references.size()); }
    [[nodiscard]] bool IsEmpty() const { return m_references.empty(); }
    [[nodiscard]] const std::vector<CVectorRef*>* GetReferences() const { return &m_references; } // lends, never null
    void GetReferences(std::vector<CVectorRef*>& out) const { out = m_references; }
    void GetRefNames(std::vector<wstring>& names) const;

    void AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const;
    void ReplaceGrandeur(CGrandeurFichier* old, CGrandeur* replacement);
    // Appends a plain CVectorRef with the values of each reference of source; copyOfChosen becomes the copy of chosen,
    // and doesn't change when chosen isn't there.
    void CopyVectorRef(const CListVectorRef* source, const CVectorRef* chosen, CVectorRef*& copyOfChosen);
    // Copies the precisions, entry by entry, up to the end of the shorter list.
    void CopyPrecisionFrom(const CListVectorRef& source);

    // Stores the references that aren't hidden in the block of an axis, each with that size and as many filled values,
    // and they keep both: one with a shorter array stores zeros, and from then on claims more values than it lends.
    // chosenIndex becomes the place of chosen among those written, and doesn't change when chosen isn't written. False
    // at the first that fails.
    [[nodiscard]] bool Write(CMmioFile* file, const CVectorRef* chosen, std::int32_t& chosenIndex, std::int32_t size);
    // Stores each reference in a chunk of its own, all under the code of that index (0 to 999).
    [[nodiscard]] bool Write(CMmioFile* file, std::int32_t index);

private:
    static float* SortedValues(CVectorRef& reference);

    std::vector<CVectorRef*> m_references;
    std::map<const CReferencedAxis*, WatchedPointer<CReferencedAxis>> m_users; // null for one that died
    bool m_isManager;
};

} // namespace ZelmResult
