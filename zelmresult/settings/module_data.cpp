#include "zelmresult/settings/module_data.h"

#include "zelmresult/settings/node_head.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/storage/record_io.h"

#include <algorithm>

namespace ZelmResult {

namespace {

constexpr std::uint16_t kFirstWithFRF = 512;

} // namespace

CModuleData::CModuleData(const CModuleData& other) { *this = other; }

CModuleData& CModuleData::operator=(const CModuleData& other)
{
    if (this == &other) return *this;
    m_idn = other.m_idn;
    m_debugString = other.m_debugString;
    m_visible = other.m_visible;
    clearSubmodules();
    for (const CSousModuleData* submodule : other.m_submodules) m_submodules.push_back(new CSousModuleData(*submodule));
    return *this;
}

void CModuleData::clearSubmodules()
{
    for (const CSousModuleData* submodule : m_submodules) delete submodule;
    m_submodules.clear();
    m_bySubmodule.Clear();
}

CSousModuleData* CModuleData::GetSousModule(const idn::Idn& idn) const
{
    const auto found = std::find_if(m_submodules.begin(), m_submodules.end(), [&idn](const CSousModuleData* submodule) {
        return submodule->GetIdn().submodule() == idn.submodule();
    });
    return found == m_submodules.end() ? nullptr : *found;
}

CReglageData* CModuleData::GetReglage(const idn::Idn& idn) const
{
    const CSousModuleData* submodule = GetSousModule(idn);
    return submodule != nullptr ? submodule->GetReglage(idn) : nullptr;
}

std::set<idn::Idn> CModuleData::GetSubmoduleSet(idn::ESubmoduleCollection kind) const
{
    std::set<idn::Idn> identifiers;
    for (const CSousModuleData* submodule : m_submodules)
        if (submodule->GetIdn().submodule().kind == static_cast<std::uint32_t>(kind))
            identifiers.insert(submodule->GetIdn());
    return identifiers;
}

void CModuleData::AddReglage(CReglageData* setting)
{
    if (setting == nullptr) return;
    const idn::Idn& idn = setting->GetIdn();
    CSousModuleData* submodule = m_bySubmodule.Find(m_submodules, idn);
    if (submodule == nullptr) {
        submodule = new CSousModuleData(idn::Idn::generateSubmoduleIdn(idn.analyzer(), idn.module(), idn.submodule()));
        m_submodules.push_back(submodule);
    }
    submodule->AddReglage(setting);
}

// ---- Storage ----

bool CModuleData::Save(CMmioFile* file)
{
    OMMCKINFO list;
    if (m_idn.Get().module().kind == kKindWithFRF) return SaveWithFRF(*file, {});
    if (!file->CreateChunkModule(list, m_idn.Get())) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"Module :" + m_debugString);
    return file->WriteCString(m_debugString) && file->mmioWriteBool(m_visible) && SaveSubmodules(*file) &&
           file->ExitChunk(list);
}

bool CModuleData::SaveWithFRF(CMmioFile& file, const std::vector<CWaterfallFRFInfo*>& infos) const
{
    OMMCKINFO list;
    OMMCKINFO chunk;
    const auto count = static_cast<std::uint32_t>(infos.size());
    if (!file.CreateChunkModule(list, m_idn.Get())) return false;
    if (file.GenerateInfoFile()) file.AddStringToDebugFile(u"DeepResultGenerator :" + m_debugString);
    if (!file.WriteCString(m_debugString) || !file.CreateChunkWaterfallFRF(chunk) || !file.mmioWrite_ulong(count))
        return false;
    if (file.GenerateInfoFile()) file.AddStringToDebugFile(Concat(u"Nombre de waterfall de FRF: ", count));
    const bool wrote =
        std::all_of(infos.begin(), infos.end(), [&file](const CWaterfallFRFInfo* info) { return info->Save(&file); });
    return wrote && file.ExitChunk(chunk) && SaveSubmodules(file) && file.ExitChunk(list);
}

bool CModuleData::SaveSubmodules(CMmioFile& file) const
{
    return std::all_of(m_submodules.begin(), m_submodules.end(), [&file](const CSousModuleData* submodule) {
        return file.WriteChunkIDN(submodule->GetIdn()) && submodule->Save(&file);
    });
}

bool CModuleData::Load(CMmioFile* file)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleInModules)) return false;
    if (head.IsEmpty()) return true;
    m_debugString = head.text;
    m_visible = head.visible;
    return LoadSubmodules(*file);
}

// An identifier that can't be read ends the list, as a missing one does.
bool CModuleData::LoadSubmodules(CMmioFile& file)
{
    OMMCKINFO parent = file.CurrentMmckinfo();
    idn::Idn idn;
    while (file.ReadChunkIDN(parent, idn)) {
        OMMCKINFO chunk;
        auto submodule = std::make_unique<CSousModuleData>(idn);
        if (!file.RoomFor(1, sizeof(CSousModuleData)) || !file.EnterChunkSousModule(chunk, parent, idn)) return false;
        NestedChunk list(file, chunk);
        if (!submodule->Load(&file) || !list.Exit()) return false;
        m_submodules.push_back(submodule.release());
    }
    return true;
}

std::unique_ptr<CReglageData> CModuleData::FindInSubmodules(CMmioFile& file, const idn::Idn& idn)
{
    const idn::Idn wanted = idn::Idn::generateSubmoduleIdn(idn.analyzer(), idn.module(), idn.submodule());
    OMMCKINFO parent = file.CurrentMmckinfo();
    idn::Idn found;
    do {
        if (!file.ReadChunkIDN(parent, found)) return nullptr;
    } while (found != wanted);
    OMMCKINFO chunk;
    if (!file.EnterChunkSousModule(chunk, parent, wanted)) return nullptr;
    NestedChunk list(file, chunk);
    auto setting = CSousModuleData::GetReglage(&file, idn);
    return list.Exit() ? std::move(setting) : nullptr;
}

std::unique_ptr<CReglageData> CModuleData::GetReglage(CMmioFile* file, const idn::Idn& idn)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleInModules) || head.IsEmpty()) return nullptr;
    return FindInSubmodules(*file, idn);
}

// ---- Transfer functions of waterfalls ----

template <class Io, class Self>
bool CWaterfallFRFInfo::fields(Io& io, Self& info)
{
    if (!io.record(kRecordName, newest{512}, first{256})) return io.ok();
    io.u32("ProcessType", info.m_processType);
    io.idn("IdResponse", info.m_idResponse);
    io.idn("IdReference", info.m_idReference);
    io.dump([&] { return Concat(u"Process ", info.m_processType, u" - IDN Rep - IDN Ref"); });
    return io.ok();
}

bool CWaterfallFRFInfo::Save(CMmioFile* file) const { return WriteFields(*file, *this); }

bool CWaterfallFRFInfo::Load(CMmioFile* file) { return ReadFields(*file, *this); }

template class StoredFields<CWaterfallFRFInfo>;

CDeepResultGeneratorData::CDeepResultGeneratorData(const CDeepResultGeneratorData& other) : CModuleData(other)
{
    AddCopiesOfInfos(other);
}

CDeepResultGeneratorData& CDeepResultGeneratorData::operator=(const CDeepResultGeneratorData& other)
{
    if (this == &other) return *this;
    CModuleData::operator=(other);
    ClearFRFInfos();
    AddCopiesOfInfos(other);
    return *this;
}

void CDeepResultGeneratorData::AddCopiesOfInfos(const CDeepResultGeneratorData& other)
{
    for (const CWaterfallFRFInfo* info : other.m_frfInfos) m_frfInfos.AddNew(new CWaterfallFRFInfo(*info));
}

void CDeepResultGeneratorData::AddFRFInfo(CWaterfallFRFInfo* info) { (void)m_frfInfos.Add(info); }

void CDeepResultGeneratorData::ClearFRFInfos()
{
    for (const CWaterfallFRFInfo* info : m_frfInfos) delete info;
    m_frfInfos.Clear();
}

bool CDeepResultGeneratorData::Save(CMmioFile* file)
{
    return GetIdn().module().kind == kKindWithFRF ? SaveWithFRF(*file, m_frfInfos.All()) : CModuleData::Save(file);
}

bool CDeepResultGeneratorData::Load(CMmioFile* file)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleNever)) return false;
    if (head.IsEmpty()) return true;
    m_debugString = head.text;
    return (head.version < kFirstWithFRF || LoadFRFInfos(*file)) && LoadSubmodules(*file);
}

bool CDeepResultGeneratorData::LoadFRFInfos(CMmioFile& file)
{
    OMMCKINFO parent = file.CurrentMmckinfo();
    OMMCKINFO chunk;
    std::uint32_t count = 0;
    if (!file.EnterChunkWaterfallFRF(chunk, parent) || !file.mmioRead_ulong(count)) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        if (file.hFile()->BytesLeft() == 0 || !file.RoomFor(1, 2 * sizeof(CWaterfallFRFInfo))) return false;
        auto info = std::make_unique<CWaterfallFRFInfo>();
        if (!info->Load(&file)) return false;
        m_frfInfos.AddNew(info.release());
    }
    return file.ExitChunk(chunk);
}

std::unique_ptr<CReglageData> CDeepResultGeneratorData::GetReglage(CMmioFile* file, const idn::Idn& idn)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleNever) || head.IsEmpty()) return nullptr;
    return FindInSubmodules(*file, idn);
}

} // namespace ZelmResult
