#pragma once

#include "zelmresult/results/float_array.h"
#include "zelmresult/results/result.h"
#include "zelmresult/support/watched.h"

#include <vector>

namespace ZelmResult {

class CListVectorRef;
class RecordWriter;

// A reference: one value per block of acquired data, such as a speed or a time, which other results take as their X
// values. Its quantity is the Magnitude of the base.
//
// Stored as  version 1: the base block, the name, the two limits, then the finite ones of the first Filled values. A
//            reader expects Size values, so make the two agree before a save; a gap in the values shifts what follows.
// Owns       the values. It knows the lists that hold it, and leaves them when it dies.
// Copies     = and the copy constructor share the values, so only one of such copies may be destroyed; GetCopy makes
//            a real copy. No copy is in a list.
class CVectorRef : public StoredRecord<CVectorRef, CResult>, public Watchable {
public:
    static constexpr const char* kRecordName = "CVectorRef";

    CVectorRef();
    // RefMax 30; for ResultKind::kReference it depends on the name: "Slice number" has RefMax size, "Time" 1000.
    CVectorRef(std::uint32_t process, std::int32_t size, const wstring& name, SignalType type);
    CVectorRef(const CVectorRef& other);
    CVectorRef& operator=(const CVectorRef& other);
    ~CVectorRef() override;

    [[nodiscard]] float* GetRefValue() const
    {
        return m_refValue.data;
    } // lends, may be null: Size values, unless AdjustSize, or a list that stored it, has set another size
    // Copies n values; zeros where the array is absent or shorter.
    void GetRefValues(float* target, std::int32_t n) const { m_refValue.CopyTo(target, n); }
    [[nodiscard]] float GetRefMin() const { return m_refMin; }
    [[nodiscard]] float GetRefMax() const { return m_refMax; }
    void SetRefMin(float value) { m_refMin = value; }
    void SetRefMax(float value) { m_refMax = value; }
    [[nodiscard]] std::int32_t GetFilled() const override { return m_filled; } // values held
    virtual void SetFilled(std::int32_t values) { m_filled = values; }
    // A hidden reference is left out when an axis stores its list, but counted. So a vector or order track with hidden
    // references among others is loaded wrong, or not at all: its reader takes what follows for the missing reference.
    // Show all references of a result before it is saved, or remove the hidden ones from its list. The references of
    // waterfalls are stored elsewhere, hidden or not.
    [[nodiscard]] bool IsHidenReference() const { return m_isHidenReference; }
    void SetIsHidenReference(bool hidden) { m_isHidenReference = hidden; }
    [[nodiscard]] wstring name() const override { return m_name; }
    void setName(const wstring& name) override { m_name = name; }
    [[nodiscard]] bool IsInList() const { return !m_lists.empty(); } // the list owns it then
    [[nodiscard]] CGrandeur* GetRefMagnitude() const { return GetMagnitude(); }
    void SetRefMagnitude(CGrandeur* quantity) { SetMagnitude(quantity); }
    void SetXMagnitude(CGrandeur* quantity) override { SetRefMagnitude(quantity); }

    // With a Size below 1 the values are dropped, and Filled doesn't change.
    void ReAlloc() override;
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const override { return SharesBit(mask, 0x101); }
    // From another class than CVectorRef only the base is copied, and no values are left.
    CResult& operator=(CResult* other) override;
    [[nodiscard]] CResult* GetCopy() override;

protected:
    void CopyOwnFields(const CVectorRef& other);

    float m_refMin = 0.0F;
    float m_refMax = 0.0F;
    std::int32_t m_filled = 0;
    bool m_isHidenReference = false;
    FloatArray m_refValue;
    wstring m_name;

private:
    friend class CListVectorRef;

    void LimitsFromName();
    bool MakeRoom(CMmioFile& file);
    friend StoredRecord;
    template <class Io, class Self>
    static bool fields(Io& io, Self& v);
    template <class Io, class Self>
    static void valueFields(Io& io, Self& v);
    template <class Self>
    static void valueFields(RecordWriter& out, Self& v);
    [[nodiscard]] bool WriteFiniteValues(CMmioFile& file) const;
    void dumpLines(CMmioFile& file) const;

    std::vector<CListVectorRef*> m_lists; // that hold it
};
extern template class StoredRecord<CVectorRef, CResult>;

} // namespace ZelmResult
