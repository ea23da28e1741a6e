#include "zelmresult/settings/sous_module_data.h"

#include "zelmresult/settings/booleen_data.h"
#include "zelmresult/settings/chaine_data.h"
#include "zelmresult/settings/idn_data.h"
#include "zelmresult/settings/liste_data.h"
#include "zelmresult/settings/node_head.h"
#include "zelmresult/settings/scalaire_data.h"
#include "zelmresult/settings/setting_chunks.h"
#include "zelmresult/settings/tableau_data.h"

namespace ZelmResult {

namespace {

template <class Setting>
std::unique_ptr<CReglageData> Make(const CReglageInfoData& info)
{
    return std::make_unique<Setting>(&info);
}

} // namespace

std::unique_ptr<CReglageData> CSousModuleData::CreateReglage(CReglageInfoData* info)
{
    const std::unique_ptr<CReglageInfoData> key(info);
    if (key == nullptr) return nullptr;
    switch (key->GetType()) {
    case CBooleenData::kType: return Make<CBooleenData>(*key);
    case CTableauData::kType: return Make<CTableauData>(*key);
    case CMatriceData::kType: return Make<CMatriceData>(*key);
    case CChaineData::kType:
    case CChaineData::kType49:
    case CChaineData::kType113: return Make<CChaineData>(*key);
    case CScalaireData::kType: return Make<CScalaireData>(*key);
    case CSelectionSignalFileData::kType: return Make<CSelectionSignalFileData>(*key);
    case CWinTuningData::kType: return Make<CWinTuningData>(*key);
    case CListeData::kType: return Make<CListeData>(*key);
    case CWtfSourceData::kType: return Make<CWtfSourceData>(*key);
    case CVirtualTachoData::kType: return Make<CVirtualTachoData>(*key);
    case CActionData::kType: return Make<CActionData>(*key);
    case CMultiSourcesData::kType: return Make<CMultiSourcesData>(*key);
    case CReglageIdnData::kType: return Make<CReglageIdnData>(*key);
    case CIntegerScalarData::kType: return Make<CIntegerScalarData>(*key);
    default: return nullptr;
    }
}

bool CSousModuleData::Save(CMmioFile* file) const
{
    OMMCKINFO list;
    if (!file->CreateChunkSousModule(list, m_idn.Get())) return false;
    if (file->GenerateInfoFile()) file->AddStringToDebugFile(u"Sous Module :" + m_titleString);
    return file->WriteCString(m_titleString) && file->mmioWriteBool(m_visible) && WriteSettings(*file, m_settings) &&
           file->ExitChunk(list);
}

bool CSousModuleData::Load(CMmioFile* file)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleInSubmodules)) return false;
    if (head.IsEmpty()) return true;
    m_titleString = head.text;
    m_visible = head.visible;
    return ReadSettings(*file, m_settings);
}

std::unique_ptr<CReglageData> CSousModuleData::GetReglage(CMmioFile* file, const idn::Idn& idn)
{
    NodeHead head;
    if (!head.Read(*file, NodeHead::kVisibleInSubmodules) || head.IsEmpty()) return nullptr;
    return FindStoredSetting(*file, idn);
}

} // namespace ZelmResult
