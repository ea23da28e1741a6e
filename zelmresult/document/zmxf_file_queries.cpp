// One thing from a file, without loading the document.

#include "zelmresult/document/error_message.h"
#include "zelmresult/document/mmio_file_vector_ref.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/waterfalls/list_vector_ref.h"

#include <set>

namespace ZelmResult {

namespace {

// Deletes the quantities of a file that aren't used; the others stay with the objects that use them.
void DeleteUnusedQuantities(const CMmioFile& file, const std::map<CGrandeur*, int>& used)
{
    for (CGrandeurFichier* quantity : file.ListeGrandeur())
        if (!used.contains(quantity)) delete quantity;
}

void AddUser(CGrandeur* quantity)
{
    if (auto* fromFile = dynamic_cast<CGrandeurFichier*>(quantity); fromFile != nullptr) fromFile->AddUser(1);
}

} // namespace

wstring CZMXFFile::PathText(const char16_t* path) { return path != nullptr ? wstring(path) : wstring(); }

CMmioFile CZMXFFile::NewFile() const
{
    CMmioFile file(m_generateInfoFile, m_makeBackend ? m_makeBackend : CMmioFile::DefaultBackend());
    file.SetFieldObserver(m_fieldObserver);
    return file;
}

bool CZMXFFile::OpenForReading(CMmioFile& file, const wstring& path)
{
    if (!file.Open(path, nullptr, OMMIO_READ)) return Failed(ErrorMessage::RIFF_OpenFile(path));
    file.LimitSearches();
    return true;
}

void CZMXFFile::NoteRefusal(const CMmioFile& file)
{
    const Refusal& refusal = file.bounds().FirstRefusal();
    if (refusal.bound != Refusal::Bound::None) addErrorMessage(ErrorMessage::ReadRefused(file.FileName(), refusal));
}

bool CZMXFFile::GetResultHeaderListe(const char16_t* path, std::vector<CResultHeader*>& out)
{
    out.clear();
    CMmioFile file = NewFile();
    if (!OpenForReading(file, PathText(path)) || !file.IsResultFile()) return false;
    if (!FileHeaderMmioReaderWriter().Read(file, m_fileHeader)) return false;
    const bool mustHoldResults = m_fileHeader.HasType(FileType::kResults | FileType::kRecordPreview);
    for (std::int16_t number = 0; number < m_fileHeader.GetSystemeNumber(); ++number) {
        OMMCKINFO results;
        if (!mustHoldResults && !file.TopOfChunkResultat(results, number)) continue;
        CSysteme system;
        system.setSystemNumber(static_cast<std::uint16_t>(number));
        if (!system.GetResultHeaderListe(&file, out)) {
            NoteRefusal(file);
            return false;
        }
    }
    return true;
}

bool CZMXFFile::FindResult(CMmioFile& file, std::uint32_t chunkId, std::int32_t& systemNumber)
{
    OMMCKINFO results;
    OMMCKINFO data;
    for (std::int16_t number = 0; file.TopOfChunkResultat(results, number); ++number) {
        if (!file.EnterChunk(data, results, chunkId)) continue;
        systemNumber = number;
        return true;
    }
    return false;
}

bool CZMXFFile::GetResultat(CResult* result, const CResultHeader* header, std::int32_t& systemNumber)
{
    systemNumber = -1;
    if (result == nullptr || header == nullptr) return false;
    CMmioFile file = NewFile();
    if (!OpenForReading(file, header->filename()) || !file.IsResultFile()) return false;
    if (!FindResult(file, header->GetChunkId(), systemNumber)) return false;
    const bool read = result->Read(&file);
    NoteRefusal(file);
    std::map<CGrandeur*, int> used;
    result->AddReferredGrandeur(used);
    DeleteUnusedQuantities(file, used);
    if (!read) return false;
    NoteLostSlices(*header, *result);
    AddUser(result->GetMagnitude());
    AddUser(result->GetXMagnitude());
    return true;
}

bool CZMXFFile::FillListeVecteurRef(CRefWaterfall* waterfall, const char16_t* name, CListVectorRef& list,
                                    const char16_t* path, std::int32_t listIndex, std::int32_t system)
{
    CMmioFile file = NewFile();
    if (!file.Open(PathText(path), nullptr, OMMIO_READ)) return false;
    file.LimitSearches();
    if (!file.IsResultFile()) return false;
    const bool filled = MmioFile_VectorRef(file).FillVecteurRef(waterfall, PathText(name), list, listIndex, system);
    NoteRefusal(file);
    std::map<CGrandeur*, int> used;
    list.AddInvolvedGrandeur(used);
    DeleteUnusedQuantities(file, used);
    return filled;
}

bool CZMXFFile::GetHardInfo(const char16_t* path, CHardInfo& out)
{
    CMmioFile file = NewFile();
    return file.Open(PathText(path), nullptr, OMMIO_READ) && CHardInfoMmioReaderWriter().Read(file, out);
}

bool CZMXFFile::GetConfig(const char16_t* path, CConfigData& out, std::uint16_t system)
{
    constexpr std::uint16_t last = 16;
    CMmioFile file = NewFile();
    if (!OpenForReading(file, PathText(path)) || !file.IsResultFile() || system > last) return false;
    OMMCKINFO list;
    OMMCKINFO config;
    if (!file.TopOfChunkSystem(list, static_cast<std::int16_t>(system)) || !file.EnterChunkConfig(config, list))
        return false;
    const NestedChunk settings(file, config);
    return out.Load(&file);
}

std::unique_ptr<CReglageData> CZMXFFile::GetReglage(const char16_t* path, const idn::Idn& idn)
{
    CMmioFile file = NewFile();
    if (!file.Open(PathText(path), nullptr, OMMIO_READ)) return nullptr;
    file.LimitSearches();
    OMMCKINFO list;
    if (!file.IsResultFile() || !file.TopOfChunkSystem(list, 0)) return nullptr;
    const NestedChunk system(file, list);
    return CSysteme::GetReglage(&file, idn);
}

bool CZMXFFile::HasRecordPreview(const char16_t* path)
{
    CMmioFile file = NewFile();
    FileHeader header;
    return OpenForReading(file, PathText(path)) && file.IsResultFile() &&
           FileHeaderMmioReaderWriter().Read(file, header) && header.HasType(FileType::kRecordPreview);
}

} // namespace ZelmResult
