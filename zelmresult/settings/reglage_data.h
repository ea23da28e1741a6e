#pragma once

#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/wstring.h"

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <unordered_set>
#include <vector>

namespace ZelmResult {

// The key of a setting: its identifier and its kind. A plain value.
// Stored in a chunk "SETT" before the chunk of the value, as version 256.
class CReglageInfoData : public StoredFields<CReglageInfoData> {
public:
    static constexpr const char* kRecordName = "CReglageInfoData";
    static constexpr std::uint32_t kUnsetType = 0xFFFFFFFF;

    CReglageInfoData() = default;
    CReglageInfoData(const idn::Idn& idn, std::uint32_t type) : m_idn(idn), m_type(type) {}
    CReglageInfoData(const CReglageInfoData& other) : m_idn(other.m_idn), m_type(other.m_type) {}
    CReglageInfoData& operator=(const CReglageInfoData& other);
    virtual ~CReglageInfoData() = default;

    [[nodiscard]] const idn::Idn& GetIdn() const { return m_idn; }
    void SetIDN(const idn::Idn& idn);
    // A set of bits: those of a class hold the bits of its base. Each class has one in kType.
    [[nodiscard]] std::uint32_t GetType() const { return m_type; }
    void SetType(std::uint32_t type) { m_type = type; }
    void AddType(std::uint32_t mask) { m_type |= mask; }

    // The fields without their chunk.
    [[nodiscard]] bool Write(CMmioFile* file) const;
    [[nodiscard]] bool Read(CMmioFile* file);

private:
    friend class ReglageList;
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& info);

    idn::Idn m_idn;
    std::uint32_t m_type = kUnsetType;
    bool* m_renamed = nullptr; // a flag of the list that finds settings by identifier; set by each change of it
};
extern template class StoredFields<CReglageInfoData>;

// One setting of the analyzer: key, title, visibility, and the value that the derived class holds. A derived class is
// made by the factory, CSousModuleData::CreateReglage, from the kind in the key, or by the host.
// Stored as  version 257: title, visible; then what the derived class adds, with a version of its own.
// Copies     are deep, all of them.
class CReglageData {
public:
    static constexpr const char* kRecordName = "CReglageData";
    static constexpr std::uint32_t kType = 1;

    CReglageData() : CReglageData(nullptr) {}
    // Copies the key; null leaves it at its default, the kind of this class.
    explicit CReglageData(const CReglageInfoData* info);
    CReglageData(const CReglageData&) = default;
    CReglageData& operator=(const CReglageData&) = default;
    virtual ~CReglageData() = default;

    // Reads or writes at the current position. False at the first field that fails.
    [[nodiscard]] virtual bool Write(CMmioFile* file);
    [[nodiscard]] virtual bool Read(CMmioFile* file);
    [[nodiscard]] virtual CReglageData* GetCopy() const = 0; // gives
    // lends the title, in every class; null when it is empty.
    [[nodiscard]] virtual const char16_t* GetStringValue() const;
    // Whether a setting of the kind in the key is of this class. Saving one that isn't fails, since it couldn't be read
    // back.
    [[nodiscard]] virtual bool HasKindOfItsClass() const = 0;

    [[nodiscard]] const CReglageInfoData& info() const { return m_info; }
    CReglageInfoData& info() { return m_info; }
    [[nodiscard]] const idn::Idn& GetIdn() const { return m_info.GetIdn(); }
    [[nodiscard]] std::uint32_t GetType() const { return m_info.GetType(); }
    // Whether every bit of the mask is set in the kind.
    [[nodiscard]] bool IsOfType(std::uint32_t mask) const { return (m_info.GetType() & mask) == mask; }
    [[nodiscard]] const wstring& titleString() const { return m_titleString; }
    void setTitleString(const wstring& title) { m_titleString = title; }
    [[nodiscard]] bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }
    void Outline(RecordOutline& out) const;

protected:
    CReglageInfoData m_info;

private:
    template <class Io, class Self>
    static bool fields(Io& io, Self& setting);

    wstring m_titleString;
    bool m_visible = false;
};

// What every class of settings has besides its storage.
template <class Derived, class Base = CReglageData>
class StoredReglage : public StoredRecord<Derived, Base> {
public:
    StoredReglage() { this->m_info.SetType(Derived::kType); }
    explicit StoredReglage(const CReglageInfoData* info) : StoredRecord<Derived, Base>(info)
    {
        if (info == nullptr) this->m_info.SetType(Derived::kType);
    }

    [[nodiscard]] CReglageData* GetCopy() const override { return new Derived(static_cast<const Derived&>(*this)); }
    [[nodiscard]] bool HasKindOfItsClass() const override { return Derived::IsKind(this->GetType()); }
    static bool IsKind(std::uint32_t type) { return type == Derived::kType; }
};

// A list that owns its settings. Copies are deep. The time to add one doesn't depend on the length of the list.
class ReglageList {
public:
    ReglageList() = default;
    ReglageList(const ReglageList& other) { Append(other); }
    ReglageList& operator=(const ReglageList& other);
    ~ReglageList() { clear(); }

    // Takes a setting that is new for certain.
    void Take(std::unique_ptr<CReglageData> setting) { m_settings.push_back(setting.release()); }
    void Add(CReglageData* setting); // takes; null, and one that is there already, add nothing
    // Takes it, and deletes a setting of the same number. A setting that is in the list already, or null, changes
    // nothing.
    void Replace(CReglageData* setting);
    void Append(const ReglageList& other); // copies of its settings
    void clear();
    // lends the first setting of that number, null without one.
    [[nodiscard]] CReglageData* Find(const idn::Setting& number) const;
    [[nodiscard]] const std::vector<CReglageData*>& all() const { return m_settings; }

private:
    [[nodiscard]] bool Holds(const CReglageData* setting); // true for null
    void IndexNumbers();

    std::vector<CReglageData*> m_settings;
    // Each look-up brings these up to date first: they cover the settings up to the last look-up.
    std::unordered_set<const CReglageData*> m_members;
    std::unordered_map<std::uint32_t, std::size_t> m_first; // number to the place of the first with it
    std::size_t m_numbered = 0;
    std::unique_ptr<bool> m_renamed; // one of those got another identifier
};

} // namespace ZelmResult
