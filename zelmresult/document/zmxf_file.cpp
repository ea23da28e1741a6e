#include "zelmresult/document/zmxf_file.h"

#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace ZelmResult {

namespace {

struct ReferenceParameters {
    bool areSet = false;
    wstring entityName;
    wstring referenceNode;
};

ReferenceParameters& TheReferenceParameters()
{
    static ReferenceParameters parameters;
    return parameters;
}

template <class Matches>
CGrandeur* FindQuantity(const QuantityVectorExplicitOwnership& quantities, Matches matches)
{
    const auto found = std::find_if(quantities.begin(), quantities.end(), matches);
    return found == quantities.end() ? nullptr : *found;
}

} // namespace

CZMXFFile::CZMXFFile(bool ownQuantities, bool isLXFFile) : m_ownQuantities(ownQuantities), m_isLXFFile(isLXFFile)
{
    m_quantities.setDefaultOwnership(OwnershipCaller);
}

CZMXFFile::~CZMXFFile()
{
    for (CSysteme* system : m_systems) delete system;
    for (CComment* comment : m_comments) delete comment;
    const bool owns = m_ownQuantities || m_needToRemoveEverything;
    m_quantities.setDefaultOwnership(owns ? OwnershipOwned : OwnershipCaller);
    m_quantities.clear();
}

void CZMXFFile::UpdateFileHeader()
{
    m_fileHeader.SetSystemeNumber(static_cast<std::int16_t>(m_systems.size()));
    m_fileHeader.SetType(m_quantities.empty() ? 0 : FileType::kQuantities);
    for (const CSysteme* system : m_systems) m_fileHeader.AddType(system->TypeBits());
}

// ---- Systems ----

bool CZMXFFile::AddSysteme(CSysteme* system) { return m_systems.Add(system); }

CSysteme* CZMXFFile::getSystem(std::int32_t index) const
{
    return index >= 0 && index < getNbrSys() ? m_systems[static_cast<std::size_t>(index)] : nullptr;
}

CSysteme& CZMXFFile::SystemOrNew(std::uint16_t index)
{
    if (CSysteme* system = getSystem(index); system != nullptr) return *system;
    auto* system = new CSysteme;
    (void)m_systems.Add(system);
    return *system;
}

void CZMXFFile::AjouteResultat(CResultHeader* header, CResult* result, std::uint16_t system, bool registerReference)
{
    SystemOrNew(system).AjouteResultat(header, result, registerReference);
}

bool CZMXFFile::RemoveResultat(const CResultHeader* header, std::uint16_t system)
{
    CSysteme* holder = getSystem(system);
    return holder != nullptr && header != nullptr && holder->RemoveResultat(header);
}

bool CZMXFFile::ReplaceResultat(CResultHeader* newHeader, const CResultHeader* matching, CResult* newResult,
                                std::uint16_t system)
{
    CSysteme* holder = getSystem(system);
    return holder != nullptr && newHeader != nullptr && matching != nullptr &&
           holder->ReplaceResultat(newHeader, matching, newResult);
}

bool CZMXFFile::RemoveAllResultats()
{
    return std::all_of(m_systems.begin(), m_systems.end(),
                       [](CSysteme* system) { return system->RemoveAllResultats(); });
}

void CZMXFFile::NeedToRemoveEverything(bool remove)
{
    m_needToRemoveEverything = remove;
    for (CSysteme* system : m_systems) system->NeedToRemoveEverything(remove);
}

// ---- Quantities ----

void CZMXFFile::AjouteGrandeur(CGrandeur* quantity, EOwnership ownership)
{
    if (quantity == nullptr || m_quantities.isMember(quantity)) return;
    quantity->SetChunkId(ChunkCode(ChunkKind::Quantity, static_cast<int>(m_quantities.size())));
    m_quantities.append(quantity, ownership);
}

bool CZMXFFile::GrandeurExist(const CGrandeur* quantity, std::int32_t& chunkId) const
{
    const CGrandeur* same =
        FindQuantity(m_quantities, [&](CGrandeur* listed) { return listed->Compare(quantity) == 0; });
    chunkId = same != nullptr ? static_cast<std::int32_t>(same->GetChunkId()) : -1;
    return same != nullptr;
}

CGrandeur* CZMXFFile::getGrandeur(std::uint32_t chunkId) const
{
    return FindQuantity(m_quantities, [&](const CGrandeur* listed) { return listed->GetChunkId() == chunkId; });
}

CUnite* CZMXFFile::getUnit(std::uint32_t chunkId) const
{
    const CGrandeur* quantity = getGrandeur(chunkId);
    return quantity != nullptr ? quantity->GetUniteCourante() : nullptr;
}

CGrandeur* CZMXFFile::GetGrandeur(const wstring& name) const
{
    return FindQuantity(m_quantities, [&](const CGrandeur* listed) { return listed->GetNomGrandeur() == name; });
}

void CZMXFFile::AddInvolvedGrandeur(std::map<CGrandeur*, int>& counts) const
{
    for (const CGrandeur* quantity : m_quantities) quantity->AddInvolvedGrandeur(counts);
}

void CZMXFFile::obsolete_ClearListeGrandeurs()
{
    m_quantities.setDefaultOwnership(OwnershipCaller);
    m_quantities.clear();
}

bool CZMXFFile::obsolete_ReplaceGrandeur(CGrandeur* old, EOwnership* oldOwnership, CGrandeur* replacement,
                                         EOwnership ownership)
{
    return m_quantities.replace(old, oldOwnership, replacement, ownership);
}

// ---- Comments, records, switches, messages ----

std::int32_t CZMXFFile::AddComment(CComment* comment)
{
    (void)m_comments.Add(comment);
    return 0;
}

void CZMXFFile::setProjectInfo(const wstring& projectName, const wstring& measurementName, const wstring& userName)
{
    m_projectInfo.setProjectName(projectName);
    m_projectInfo.setMeasurementName(measurementName);
    m_projectInfo.setUserName(userName);
}

void CZMXFFile::getProjectInfo(wstring& projectName, wstring& measurementName, wstring& userName) const
{
    projectName = m_projectInfo.projectName();
    measurementName = m_projectInfo.measurementName();
    userName = m_projectInfo.userName();
}

void CZMXFFile::SetNOctave(int choice, double& bands)
{
    switch (choice) {
    case 1: bands = 3.0; break;
    case 2: bands = 12.0; break;
    case 3: bands = 24.0; break;
    default: bands = 1.0;
    }
}

void CZMXFFile::setReferenceParameters(const wstring& entityName, const wstring& referenceNode)
{
    TheReferenceParameters() = {true, entityName, referenceNode};
}

bool CZMXFFile::getReferenceParameters(wstring& entityName, wstring& referenceNode)
{
    const ReferenceParameters& parameters = TheReferenceParameters();
    if (!parameters.areSet) return false;
    entityName = parameters.entityName;
    referenceNode = parameters.referenceNode;
    return true;
}

void CZMXFFile::fetchErrors(std::vector<wstring>& out, bool clear)
{
    out.insert(out.end(), m_messages.begin(), m_messages.end());
    if (clear) m_messages.clear();
}

} // namespace ZelmResult
