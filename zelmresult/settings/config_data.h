#pragma once

#include "zelmresult/settings/module_data.h"

#include <memory>
#include <set>
#include <vector>

namespace ZelmResult {

// The version of the application that wrote the settings. A plain value.
struct VersionTavide {
    std::uint32_t major = 0;
    std::uint32_t minor = 0;
    wstring build;

    bool operator==(const VersionTavide&) const = default;
};

// Where a tree of settings holds the version of the application.
enum class VersionTavidePlace : std::uint8_t {
    Nowhere,
    AfterTheList, // bare
    AtTheEnd,     // of the list, bare
    InAChunk,
};
// By the version of the list "CONF".
[[nodiscard]] VersionTavidePlace PlaceOfVersionTavide(std::uint16_t listVersion);
// At the position, whichever of the places it is.
[[nodiscard]] bool ReadVersionTavide(CMmioFile& file, VersionTavide& version);
[[nodiscard]] bool WriteVersionTavide(CMmioFile& file, const VersionTavide& version);

// The settings of the analyzer that a system's results were made with: modules, their submodules, their settings.
// Look-ups compare kind and instance of module and submodule and the number of the setting; they ignore the analyzer.
// Stored as  a list "CONF": version 1025, per module its identifier and its list, then the application's version.
// Owns       its modules.
// Copies     are deep, but each module is copied as a plain CModuleData, so a module of kind 16 loses its transfer
//            functions. The assignment appends to what is there.
class CConfigData {
public:
    CConfigData() = default;
    CConfigData(const CConfigData& other) { *this = other; }
    CConfigData& operator=(const CConfigData& other);
    virtual ~CConfigData();

    // Makes and leaves the list "CONF". With isLXFFile only the modules of kind 1 and 3 are written.
    [[nodiscard]] bool Save(CMmioFile* file, bool isLXFFile) const;
    // Called with "CONF" as the file's current chunk. Adds to what is there. False at the first node that can't be
    // read; those before it are kept, and CameInPart is true. Afterwards the position of the file is undefined.
    [[nodiscard]] bool Load(CMmioFile* file);
    // Leaves "CONF", the file's current chunk, from any position in it, and what a tree of its version has after it.
    [[nodiscard]] static bool PassOver(CMmioFile* file);

    [[nodiscard]] const std::vector<CModuleData*>& modules() const { return m_modules; } // lends
    // All lend; null without a match.
    [[nodiscard]] CModuleData* GetModule(const idn::Idn& idn) const;
    [[nodiscard]] CSousModuleData* GetSousModule(const idn::Idn& idn) const;
    [[nodiscard]] CReglageData* GetReglage(const idn::Idn& idn) const;
    // The same when it is a setting of that class.
    template <class Setting>
    [[nodiscard]] const Setting* GetReglageOf(const idn::Idn& idn) const
    {
        return dynamic_cast<const Setting*>(GetReglage(idn));
    }
    // The identifiers of the submodules of a kind in the module of an identifier.
    [[nodiscard]] std::set<idn::Idn> GetSubmoduleSet(const idn::Idn& idn, idn::ESubmoduleCollection kind) const;
    // takes a setting that no other tree or list holds, and makes module and submodule when they are missing. Deletes a
    // setting of the same number there.
    void AddReglage(CReglageData* setting);

    [[nodiscard]] const VersionTavide& versionTavide() const { return m_versionTavide; }
    void setVersionTavide(const VersionTavide& version) { m_versionTavide = version; }
    // Whether the version is older than that one. Corrects this one first, permanently: 1.1 build "1" was really 10.11,
    // every other 1.1 was 1.10. A build of digits only is older than any other build.
    bool IsMyVersionOlder(const VersionTavide& than);
    // Whether the file held visibility flags.
    [[nodiscard]] bool IsDataVisibilityFilled() const { return m_dataVisibilityFilled; }
    // Whether a load stopped before the end of the tree in its file, for example at a setting of an unknown kind: the
    // settings after that place are missing, and so is the application's version. A save of this tree would lose them.
    [[nodiscard]] bool CameInPart() const { return m_cameInPart; }
    // Each reason why a save of this tree would fail, or why a load would not give a setting back, as a sentence; empty
    // when there is none. isLXFFile as in Save.
    [[nodiscard]] std::vector<wstring> Unstorable(bool isLXFFile) const;
    // A code for the module of idn, calculated from its settings; 0 when it isn't there, or of another kind than 10 and
    // 14.
    [[nodiscard]] std::uint16_t ComputeInstanceID(const idn::Idn& idn) const;

    // Reads one value without making the others; null without it or when it can't be read. The file must be where Load
    // expects it. Identifiers are compared as a whole here, with the analyzer. Afterwards the position of the file is
    // undefined.
    static std::unique_ptr<CReglageData> GetReglage(CMmioFile* file, const idn::Idn& idn);

private:
    [[nodiscard]] static bool IsWritten(const CModuleData& module, bool isLXFFile);
    [[nodiscard]] bool LoadAll(CMmioFile& file);
    [[nodiscard]] bool LoadModule(CMmioFile& file, const idn::Idn& idn);
    [[nodiscard]] bool LoadApplicationVersion(CMmioFile& file, std::uint16_t version, std::int32_t firstChild,
                                              std::int32_t afterModules);
    [[nodiscard]] bool ReadVersionAtEnd(CMmioFile& file, std::int32_t afterModules);
    void RepairVersion();

    std::vector<CModuleData*> m_modules;
    NodeIndex<CModuleData, idn::Module> m_byModule{&idn::Idn::module}; // for additions
    VersionTavide m_versionTavide;
    bool m_dataVisibilityFilled = false;
    bool m_cameInPart = false;
};

} // namespace ZelmResult
