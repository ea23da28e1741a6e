#include "zelmresult/settings/config_data.h"

#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <optional>

namespace ZelmResult {

namespace {

std::unique_ptr<CModuleData> MakeModule(const idn::Idn& idn)
{
    if (idn.module().kind == CModuleData::kKindWithFRF) return std::make_unique<CDeepResultGeneratorData>(idn);
    return std::make_unique<CModuleData>(idn);
}

// The number that a build's text means, when it is one.
std::optional<std::int32_t> BuildNumber(const wstring& build)
{
    if (build.empty()) return std::nullopt;
    std::int64_t number = 0;
    for (const char16_t c : build) {
        if (c < u'0' || c > u'9') return std::nullopt;
        number = std::min<std::int64_t>(number * 10 + (c - u'0'), INT32_MAX);
    }
    return static_cast<std::int32_t>(number);
}

bool IsBuildOlder(const wstring& build, const wstring& other)
{
    const auto number = BuildNumber(build);
    const auto otherNumber = BuildNumber(other);
    if (number && otherNumber) return *number < *otherNumber;
    if (number || otherNumber) return number.has_value();
    return build < other;
}

} // namespace

VersionTavidePlace PlaceOfVersionTavide(std::uint16_t listVersion)
{
    constexpr std::uint16_t afterTheList = 512;
    constexpr std::uint16_t atTheEnd = 768;
    constexpr std::uint16_t firstInAChunk = 1024;
    if (listVersion == afterTheList) return VersionTavidePlace::AfterTheList;
    if (listVersion == atTheEnd) return VersionTavidePlace::AtTheEnd;
    return listVersion >= firstInAChunk ? VersionTavidePlace::InAChunk : VersionTavidePlace::Nowhere;
}

bool ReadVersionTavide(CMmioFile& file, VersionTavide& version)
{
    return file.mmioRead_ulong(version.major) && file.mmioRead_ulong(version.minor) && file.ReadCString(version.build);
}

bool WriteVersionTavide(CMmioFile& file, const VersionTavide& version)
{
    return file.mmioWrite_ulong(version.major) && file.mmioWrite_ulong(version.minor) &&
           file.WriteCString(version.build);
}

CConfigData& CConfigData::operator=(const CConfigData& other)
{
    if (this == &other) return *this;
    for (const CModuleData* module : other.m_modules) m_modules.push_back(new CModuleData(*module));
    m_versionTavide = other.m_versionTavide;
    m_dataVisibilityFilled = other.m_dataVisibilityFilled;
    m_cameInPart = other.m_cameInPart;
    return *this;
}

CConfigData::~CConfigData()
{
    for (const CModuleData* module : m_modules) delete module;
}

// ---- Look-ups ----

CModuleData* CConfigData::GetModule(const idn::Idn& idn) const
{
    const auto found = std::find_if(m_modules.begin(), m_modules.end(), [&idn](const CModuleData* module) {
        return module->GetIdn().module() == idn.module();
    });
    return found == m_modules.end() ? nullptr : *found;
}

CSousModuleData* CConfigData::GetSousModule(const idn::Idn& idn) const
{
    const CModuleData* module = GetModule(idn);
    return module != nullptr ? module->GetSousModule(idn) : nullptr;
}

CReglageData* CConfigData::GetReglage(const idn::Idn& idn) const
{
    const CModuleData* module = GetModule(idn);
    return module != nullptr ? module->GetReglage(idn) : nullptr;
}

std::set<idn::Idn> CConfigData::GetSubmoduleSet(const idn::Idn& idn, idn::ESubmoduleCollection kind) const
{
    const CModuleData* module = GetModule(idn);
    return module != nullptr ? module->GetSubmoduleSet(kind) : std::set<idn::Idn>();
}

void CConfigData::AddReglage(CReglageData* setting)
{
    if (setting == nullptr) return;
    const idn::Idn& idn = setting->GetIdn();
    CModuleData* module = m_byModule.Find(m_modules, idn);
    if (module == nullptr)
        module =
            m_modules.emplace_back(MakeModule(idn::Idn::generateModuleIdn(idn.analyzer(), idn.module())).release());
    module->AddReglage(setting);
}

// ---- Storage ----

bool CConfigData::IsWritten(const CModuleData& module, bool isLXFFile)
{
    const std::uint32_t kind = module.GetIdn().module().kind;
    return !isLXFFile || kind == 1 || kind == 3;
}

bool CConfigData::Save(CMmioFile* file, bool isLXFFile) const
{
    OMMCKINFO list;
    OMMCKINFO version;
    if (!file->CreateChunkConfig(list)) return false;
    for (CModuleData* module : m_modules) {
        if (!IsWritten(*module, isLXFFile)) continue;
        if (!file->WriteChunkIDN(module->GetIdn()) || !module->Save(file)) return false;
    }
    if (!file->CreateChunkVersionConfig(version) || !WriteVersionTavide(*file, m_versionTavide)) return false;
    if (file->GenerateInfoFile())
        file->AddStringToDebugFile(Concat(u"Version Tavide ", m_versionTavide.major, u".", m_versionTavide.minor, u".",
                                          m_versionTavide.build));
    return file->ExitChunk(version) && file->ExitChunk(list);
}

bool CConfigData::Load(CMmioFile* file)
{
    const auto isRefused = [file] { return file->bounds().FirstRefusal().bound != Refusal::Bound::None; };
    const bool wasRefused = isRefused();
    const bool isLoaded = LoadAll(*file);
    // An invalid identifier ends a list without a failure.
    if (!isLoaded || (!wasRefused && isRefused())) m_cameInPart = true;
    return isLoaded;
}

bool CConfigData::LoadAll(CMmioFile& file)
{
    constexpr std::uint16_t firstWithVisibility = 1025;
    OMMCKINFO config = file.CurrentMmckinfo();
    std::uint16_t version = 0;
    if (!file.ReadChunkVersion(config, version)) return false;
    const std::int32_t firstChild = file.Position();
    if (version >= firstWithVisibility) m_dataVisibilityFilled = true;
    std::int32_t afterModules = firstChild;
    idn::Idn idn;
    while (version >= kFirstListVersion && file.ReadChunkIDN(config, idn)) {
        if (!LoadModule(file, idn)) return false;
        afterModules = file.Position(); // a search that finds nothing may end anywhere
    }
    return LoadApplicationVersion(file, version, firstChild, afterModules);
}

bool CConfigData::LoadModule(CMmioFile& file, const idn::Idn& idn)
{
    OMMCKINFO config = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    auto module = MakeModule(idn);
    if (!file.RoomFor(1, sizeof(CDeepResultGeneratorData)) || !file.EnterChunkModule(chunk, config, idn)) return false;
    NestedChunk list(file, chunk);
    if (!module->Load(&file) || !list.Exit()) return false;
    m_modules.push_back(module.release());
    return true;
}

// Lists of other versions than those of the three places hold none.
bool CConfigData::LoadApplicationVersion(CMmioFile& file, std::uint16_t version, std::int32_t firstChild,
                                         std::int32_t afterModules)
{
    OMMCKINFO config = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    switch (PlaceOfVersionTavide(version)) {
    case VersionTavidePlace::AfterTheList: return file.ExitChunk(config) && ReadVersionTavide(file, m_versionTavide);
    case VersionTavidePlace::AtTheEnd: return ReadVersionAtEnd(file, afterModules) && file.ExitChunk(config);
    case VersionTavidePlace::Nowhere: return true;
    case VersionTavidePlace::InAChunk: break;
    }
    if (!file.mmioSeek(firstChild, OMMIO_SEEK_SET)) return false;
    if (file.EnterChunkVersionConfig(chunk, config) &&
        (!ReadVersionTavide(file, m_versionTavide) || !file.ExitChunk(chunk)))
        return false;
    return file.ExitChunk(config);
}

// The version follows the last module, without a chunk. When what is there doesn't end where the list does, it is read
// from the place that a version without a build would have.
bool CConfigData::ReadVersionAtEnd(CMmioFile& file, std::int32_t afterModules)
{
    constexpr std::int64_t withoutBuild = 18;
    const OMMCKINFO& config = file.CurrentMmckinfo();
    const std::int64_t end = std::int64_t{config.dwDataOffset} + config.cksize;
    if (!file.mmioSeek(afterModules, OMMIO_SEEK_SET) || !ReadVersionTavide(file, m_versionTavide)) return false;
    const std::int64_t place = end - withoutBuild;
    if (file.Position() == end || place <= afterModules) return true;
    return file.mmioSeek(static_cast<std::int32_t>(place), OMMIO_SEEK_SET) && ReadVersionTavide(file, m_versionTavide);
}

bool CConfigData::PassOver(CMmioFile* file)
{
    constexpr std::int32_t listType = 4;
    OMMCKINFO config = file->CurrentMmckinfo();
    std::uint16_t version = 0;
    const bool hasVersion = file->mmioSeek(static_cast<std::int32_t>(config.dwDataOffset) + listType, OMMIO_SEEK_SET) &&
                            file->ReadChunkVersion(config, version);
    if (!file->ExitChunk(config)) return false;
    if (!hasVersion || PlaceOfVersionTavide(version) != VersionTavidePlace::AfterTheList) return true;
    VersionTavide passed;
    const std::int32_t end = file->Position();
    return ReadVersionTavide(*file, passed) || file->mmioSeek(end, OMMIO_SEEK_SET);
}

std::unique_ptr<CReglageData> CConfigData::GetReglage(CMmioFile* file, const idn::Idn& idn)
{
    const idn::Idn wanted = idn::Idn::generateModuleIdn(idn.analyzer(), idn.module());
    OMMCKINFO config = file->CurrentMmckinfo();
    std::uint16_t version = 0;
    if (!file->ReadChunkVersion(config, version) || version < kFirstListVersion) return nullptr;
    idn::Idn found;
    do {
        if (!file->ReadChunkIDN(config, found)) return nullptr;
    } while (found != wanted);
    OMMCKINFO chunk;
    if (!file->EnterChunkModule(chunk, config, wanted)) return nullptr;
    NestedChunk list(*file, chunk);
    const bool isDeep = wanted.module().kind == CModuleData::kKindWithFRF;
    auto setting = isDeep ? CDeepResultGeneratorData::GetReglage(file, idn) : CModuleData::GetReglage(file, idn);
    return list.Exit() ? std::move(setting) : nullptr;
}

// ---- What follows from the settings ----

void CConfigData::RepairVersion()
{
    if (m_versionTavide.major != 1 || m_versionTavide.minor != 1) return;
    if (m_versionTavide.build == u"1")
        m_versionTavide = {10, 11, {}};
    else
        m_versionTavide.minor = 10;
}

bool CConfigData::IsMyVersionOlder(const VersionTavide& than)
{
    const VersionTavide other = than; // which may be this tree's own, and be repaired now
    RepairVersion();
    if (m_versionTavide.major != other.major) return m_versionTavide.major < other.major;
    if (m_versionTavide.minor != other.minor) return m_versionTavide.minor < other.minor;
    return IsBuildOlder(m_versionTavide.build, other.build);
}

std::uint16_t CConfigData::ComputeInstanceID(const idn::Idn& idn) const
{
    const std::uint32_t kind = idn.module().kind;
    if ((kind != 10 && kind != 14) || GetModule(idn) == nullptr) return 0;
    const auto place = [&idn](std::uint32_t submodule, std::uint32_t setting) {
        return idn::Idn::generateSubmoduleIdn(idn.analyzer(), idn.module(), idn::Submodule(submodule, 1))
            .settingIdn(static_cast<idn::ESetting>(setting));
    };
    const auto isOn = [this](const idn::Idn& setting) {
        const auto* flag = GetReglageOf<CBooleenData>(setting);
        return flag != nullptr && flag->value();
    };
    const auto* first = GetReglageOf<CChaineData>(place(361, 84));
    if (first == nullptr) return 0;
    std::uint16_t code = first->value() == u"1" ? 1 : 2;
    const auto* second = kind == 10 ? GetReglageOf<CChaineData>(place(362, 85)) : nullptr;
    if (second != nullptr && second->value() != u"0") code |= 512U;
    if (kind == 10 && isOn(place(362, 391))) code |= 1024U;
    if (isOn(place(754, 412))) code |= 2048U;
    return code;
}

} // namespace ZelmResult
