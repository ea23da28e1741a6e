#pragma once

#include "zelmresult/settings/sous_module_data.h"
#include "zelmresult/storage/stored_record.h"
#include "zelmresult/support/pointer_list.h"

#include <memory>
#include <set>
#include <vector>

namespace ZelmResult {

class CWaterfallFRFInfo;

// The submodules of one module of the analyzer. Look-ups compare kind and instance, and ignore the analyzer.
// Stored as  a list "M%d": version 513, debugString, visible, then per submodule its identifier and its list.
// Owns       its submodules. Copies are deep.
class CModuleData {
public:
    static constexpr std::uint32_t kKindWithFRF = 16;

    CModuleData() = default;
    explicit CModuleData(const idn::Idn& idn) : m_idn(idn) {}
    CModuleData(const CModuleData& other);
    CModuleData& operator=(const CModuleData& other);
    virtual ~CModuleData() { clearSubmodules(); }

    // Makes and leaves the list.
    [[nodiscard]] virtual bool Save(CMmioFile* file);
    // Called with the module's list as the file's current chunk. False at the first submodule that can't be read; those
    // before it are kept.
    [[nodiscard]] virtual bool Load(CMmioFile* file);

    [[nodiscard]] const idn::Idn& GetIdn() const { return m_idn.Get(); }
    void SetIDN(const idn::Idn& idn) { m_idn.Set(idn); }
    [[nodiscard]] const wstring& debugString() const { return m_debugString; }
    void setDebugString(const wstring& text) { m_debugString = text; }
    [[nodiscard]] bool isVisible() const { return m_visible; }
    void setVisible(bool visible) { m_visible = visible; }
    [[nodiscard]] const std::vector<CSousModuleData*>& submodules() const { return m_submodules; } // lends

    // All lend; null without a match.
    [[nodiscard]] CSousModuleData* GetSousModule(const idn::Idn& idn) const;
    [[nodiscard]] CReglageData* GetReglage(const idn::Idn& idn) const;
    // The identifiers of the submodules of a kind.
    [[nodiscard]] std::set<idn::Idn> GetSubmoduleSet(idn::ESubmoduleCollection kind) const;
    // takes a setting that no other tree or list holds, and makes the submodule when it is missing. Else like
    // CSousModuleData::AddReglage.
    void AddReglage(CReglageData* setting);
    void clearSubmodules();

    // Reads one value without making the others; null without it or when it can't be read. The file must be where Load
    // expects it.
    static std::unique_ptr<CReglageData> GetReglage(CMmioFile* file, const idn::Idn& idn);

protected:
    static std::unique_ptr<CReglageData> FindInSubmodules(CMmioFile& file, const idn::Idn& idn);
    // The list of a module of kind 16, which has a layout of its own, whatever the class.
    [[nodiscard]] bool SaveWithFRF(CMmioFile& file, const std::vector<CWaterfallFRFInfo*>& infos) const;
    [[nodiscard]] bool SaveSubmodules(CMmioFile& file) const;
    [[nodiscard]] bool LoadSubmodules(CMmioFile& file);

    template <class Node, class Part>
    friend class NodeIndex;

    NodeIdn m_idn;
    std::vector<CSousModuleData*> m_submodules;
    NodeIndex<CSousModuleData, idn::Submodule> m_bySubmodule{&idn::Idn::submodule}; // for additions
    wstring m_debugString;
    bool m_visible = false;
};

// A transfer function for which a waterfall is kept. A plain value.
// Stored as version 512.
class CWaterfallFRFInfo : public StoredFields<CWaterfallFRFInfo> {
public:
    static constexpr const char* kRecordName = "CWaterfallFRFInfo";

    [[nodiscard]] std::uint32_t GetProcessType() const { return m_processType; }
    void SetProcessType(std::uint32_t process) { m_processType = process; }
    [[nodiscard]] const idn::Idn& GetIdResponse() const { return m_idResponse; }
    void SetIdResponse(const idn::Idn& idn) { m_idResponse = idn; }
    [[nodiscard]] const idn::Idn& GetIdReference() const { return m_idReference; }
    void SetIdReference(const idn::Idn& idn) { m_idReference = idn; }

    [[nodiscard]] bool Save(CMmioFile* file) const;
    [[nodiscard]] bool Load(CMmioFile* file);

private:
    friend StoredFields;
    template <class Io, class Self>
    static bool fields(Io& io, Self& info);

    std::uint32_t m_processType = 0;
    idn::Idn m_idResponse;
    idn::Idn m_idReference;
};
extern template class StoredFields<CWaterfallFRFInfo>;

// The module of kind 16, which has a list of transfer functions as well. Its visible flag isn't stored. With another
// kind it is stored as a plain module.
// Stored as  a module's list, with a chunk "WFRF" instead of the flag.
// Owns       its infos.
// Copies     are deep; a copy as a CModuleData leaves the infos out.
class CDeepResultGeneratorData : public CModuleData {
public:
    CDeepResultGeneratorData() = default;
    explicit CDeepResultGeneratorData(const idn::Idn& idn) : CModuleData(idn) {}
    CDeepResultGeneratorData(const CDeepResultGeneratorData& other);
    CDeepResultGeneratorData& operator=(const CDeepResultGeneratorData& other);
    ~CDeepResultGeneratorData() override { ClearFRFInfos(); }

    [[nodiscard]] bool Save(CMmioFile* file) override;
    [[nodiscard]] bool Load(CMmioFile* file) override;

    [[nodiscard]] const std::vector<CWaterfallFRFInfo*>& FRFInfos() const { return m_frfInfos.All(); } // lends
    void AddFRFInfo(CWaterfallFRFInfo* info);                                                          // takes

    static std::unique_ptr<CReglageData> GetReglage(CMmioFile* file, const idn::Idn& idn);
    using CModuleData::GetReglage;

private:
    void ClearFRFInfos();
    void AddCopiesOfInfos(const CDeepResultGeneratorData& other);
    [[nodiscard]] bool LoadFRFInfos(CMmioFile& file);

    PointerList<CWaterfallFRFInfo> m_frfInfos;
};

} // namespace ZelmResult
