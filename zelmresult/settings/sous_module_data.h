#pragma once

#include "zelmresult/settings/node_index.h"
#include "zelmresult/settings/reglage_data.h"

#include <memory>

namespace ZelmResult {

// The settings of one submodule of the analyzer, found by their numbers.
// Stored as  a list "S%d": version 257, title, visible, then the settings.
// Owns       its settings. Copies are deep.
class CSousModuleData {
public:
    CSousModuleData() = default;
    explicit CSousModuleData(const idn::Idn& idn) : m_idn(idn) {}
    CSousModuleData(const CSousModuleData&) = default;
    CSousModuleData& operator=(const CSousModuleData&) = default;
    virtual ~CSousModuleData() = default;

    [[nodiscard]] const idn::Idn& GetIdn() const { return m_idn.Get(); }
    void SetIDN(const idn::Idn& idn) { m_idn.Set(idn); }
    [[nodiscard]] const wstring& titleString() const { return m_titleString; }
    void setTitleString(const wstring& title) { m_titleString = title; }
    [[nodiscard]] bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }
    [[nodiscard]] const std::vector<CReglageData*>& settings() const { return m_settings.all(); } // lends

    // lends the setting of that number, whatever else idn says; null without one.
    [[nodiscard]] CReglageData* GetReglage(const idn::Idn& idn) const { return m_settings.Find(idn.setting()); }
    // takes a setting that no other tree or list holds, and deletes one of the same number. Null, or a setting that is
    // here already, changes nothing.
    void AddReglage(CReglageData* setting) { m_settings.Replace(setting); }
    void clearSettings() { m_settings.clear(); }

    // Makes and leaves the list.
    [[nodiscard]] bool Save(CMmioFile* file) const;
    // Called with the submodule's list as the file's current chunk. False at the first setting that can't be read or is
    // of an unknown kind; those before it are kept.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Reads one value from the same place, without making the others; null without it or when it can't be read.
    static std::unique_ptr<CReglageData> GetReglage(CMmioFile* file, const idn::Idn& idn);

    // The factory: a setting of the kind that info names, with that key; null for any other kind. takes info, and
    // deletes it in any case.
    static std::unique_ptr<CReglageData> CreateReglage(CReglageInfoData* info);

private:
    template <class Node, class Part>
    friend class NodeIndex;

    NodeIdn m_idn;
    ReglageList m_settings;
    wstring m_titleString;
    bool m_visible = false;
};

} // namespace ZelmResult
