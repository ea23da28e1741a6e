// The stored form of a document.

#include "zelmresult/document/error_message.h"
#include "zelmresult/document/merged_quantities.h"
#include "zelmresult/document/operand_depths.h"
#include "zelmresult/document/save_reason.h"
#include "zelmresult/document/saved_codes.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/discarding_file_handle.h"
#include "zelmresult/storage/file_replacement.h"
#include "zelmresult/storage/memory_backend.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/mmio_riff.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/waterfall.h"

#include <exception>
#include <istream>
#include <memory>
#include <ostream>
#include <utility>

namespace ZelmResult {

namespace {

constexpr std::uint32_t kSaveFlags = OMMIO_CREATE | OMMIO_WRITE | OMMIO_ALLOCBUF;
constexpr std::int32_t kSaveBuffer = 1048576;
constexpr std::size_t kStreamPart = 1048576;
constexpr std::size_t kCommentSize = 1024; // in memory, with its entry in the list: a file may hold one in 8 bytes

std::uint32_t QuantityCode(int index) { return ChunkCode(ChunkKind::Quantity, index); }

} // namespace

bool CZMXFFile::Failed(const wstring& message)
{
    addErrorMessage(message);
    return false;
}

// The messages of the readers and writers of the file come first.
bool CZMXFFile::Failed(CMmioFile& file, const wstring& message)
{
    file.fetchErrors(m_messages, true);
    return Failed(message);
}

bool CZMXFFile::Save(const char16_t* path)
{
    const wstring name = PathText(path);
    CMmioFile file = NewFile();
    const bool saved = WriteTo(file, name, name);
    (void)file.Close();
    return saved;
}

bool CZMXFFile::SaveToMemory(std::vector<char>& bytes)
{
    bytes.clear();
    CMmioFile file(false, WriteMemory(bytes));
    const bool saved = WriteTo(file, m_filename, m_filename);
    (void)file.Close();
    if (!saved) bytes.clear();
    return saved;
}

bool CZMXFFile::SaveToStream(std::ostream& stream)
{
    std::vector<char> bytes;
    if (!SaveToMemory(bytes)) return false;
    try {
        stream.write(bytes.data(), std::ssize(bytes)).flush();
    } catch (const std::exception&) { // a host may have asked the stream for them
        return Failed(ErrorMessage::RIFF_ExitChunk(m_filename));
    }
    return stream.good() || Failed(ErrorMessage::RIFF_ExitChunk(m_filename));
}

bool CZMXFFile::SaveSafely(const char16_t* path, bool acceptLosses)
{
    const wstring name = PathText(path);
    FileReplacement target(name);
    if (!target.IsMade()) {
        addErrorMessage(FromUtf8(target.reason() + '.'));
        return Failed(ErrorMessage::RIFF_CreateFile(name));
    }
    CMmioFile file(m_generateInfoFile, [] { return std::make_unique<CMmioRiff>(); });
    const SavedCodes former = Codes();
    const FileHeader header = m_fileHeader;
    const std::size_t messages = m_messages.size();
    const bool isWritten = WriteTo(file, target.temporary(), name);
    const bool isWanted = acceptLosses || m_messages.size() == messages;
    if (!isWritten || !isWanted) file.SetFileName({}); // so that its dump doesn't replace a former one
    (void)file.Close();
    if (isWritten && isWanted && target.Commit()) return true;
    former.Restore();
    m_fileHeader = header;
    if (!isWritten) return false; // which was reported
    if (isWanted) addErrorMessage(FromUtf8(target.reason() + '.'));
    return Failed(isWanted ? ErrorMessage::RIFF_CreateFile(name) : ErrorMessage::FileNotReplaced(name));
}

bool CZMXFFile::CheckSave(std::vector<wstring>& reasons)
{
    std::vector<wstring> others = std::exchange(m_messages, {});
    const auto discard = [] { return std::make_unique<DiscardingFileHandle>(); };
    CMmioFile file(false, [&] { return std::make_unique<CMmioRiff>(discard); });
    const SavedCodes former = Codes();
    const FileHeader header = m_fileHeader;
    const bool saved = WriteTo(file, m_filename, m_filename);
    former.Restore();
    m_fileHeader = header;
    const std::vector<wstring> found = std::exchange(m_messages, std::move(others));
    reasons.insert(reasons.end(), found.begin(), found.end());
    return saved && found.empty();
}

SavedCodes CZMXFFile::Codes() const
{
    SavedCodes codes;
    for (CGrandeur* quantity : m_quantities) codes.Note(*quantity);
    for (CSysteme* system : m_systems) {
        codes.Note(*system);
        for (CResultHeader* stored : system->m_headers) codes.Note(*stored);
    }
    return codes;
}

// Writes to a path, under a name that may be another one. Takes over the messages of the writers.
bool CZMXFFile::WriteTo(CMmioFile& file, const wstring& path, const wstring& name)
{
    OMMIOINFO info{kSaveBuffer, 0};
    if (!file.Open(path, &info, kSaveFlags)) return Failed(ErrorMessage::RIFF_CreateFile(name));
    file.SetFileName(name);
    const bool saved = SaveForm(file, name);
    if (saved && !file.bounds().WillLoad(file.Position())) file.AddErrorMessage(SaveReason::FormTooEmpty());
    if (saved) file.fetchErrors(m_messages, true);
    return saved;
}

bool CZMXFFile::SaveForm(CMmioFile& file, const wstring& path)
{
    OMMCKINFO form;
    if (!file.CreateChunkRIFF(form)) return Failed(ErrorMessage::RIFF_CreateChunkRIFF(path));
    UpdateFileHeader();
    if (m_fileHeader.HasType(FileType::kRecordPreview) && !m_fileHeader.HasType(FileType::kResults))
        file.AddErrorMessage(SaveReason::PreviewsAlone());
    if (!FileHeaderMmioReaderWriter().Write(file, m_fileHeader))
        return Failed(file, ErrorMessage::RIFF_SaveHeader(path));
    if (m_isLXFFile && !ProjectInfoMmioReaderWriter().Write(file, m_projectInfo))
        return Failed(file, ErrorMessage::RIFF_SaveProjectInfo(path));
    if (!SaveQuantities(file, path) || !SaveSystems(file, path) || !SaveRecords(file, path)) return false;
    return file.ExitChunk(form) || Failed(ErrorMessage::RIFF_ExitChunk(path));
}

bool CZMXFFile::SaveQuantities(CMmioFile& file, const wstring& path)
{
    OMMCKINFO list;
    if (!file.CreateChunkUnite(list)) return Failed(ErrorMessage::RIFF_CreateChunkUnit(path));
    NoteUnreadableQuantities(file);
    // Every quantity has its code before the first is written, since quantities refer to each other.
    int index = 0;
    for (CGrandeur* quantity : m_quantities) quantity->SetChunkId(QuantityCode(index++));
    index = 0;
    for (CGrandeur* quantity : m_quantities) {
        quantity->SetChunkId(QuantityCode(index++)); // again, for one that is in the list twice
        if (!CGrandeurMmioReaderWriter().Write(file, *quantity))
            return Failed(file, ErrorMessage::RIFF_SaveMagnitude(path, quantity->GetNomGrandeur()));
        if (const CGrandeur* operand = file.quantities().TakeUnexpected(); operand != nullptr)
            file.AddErrorMessage(SaveReason::UnlistedOperand(*quantity, *operand));
    }
    return file.ExitChunk(list) || Failed(ErrorMessage::RIFF_ExitChunkUnit(path));
}

void CZMXFFile::NoteUnreadableQuantities(CMmioFile& file) const
{
    if (std::cmp_greater(m_quantities.size(), MostOf(ChunkKind::Quantity)))
        file.AddErrorMessage(SaveReason::TooManyQuantities(m_quantities.size()));
    file.quantities().Expect({m_quantities.begin(), m_quantities.end()});
    MergedQuantities merged;
    for (const CGrandeur* quantity : m_quantities)
        if (merged.Add(*quantity) != nullptr) file.AddErrorMessage(SaveReason::QuantityMerged(*quantity));
    OperandDepths depths;
    for (const CGrandeur* quantity : m_quantities) {
        if (depths.Of(*quantity) <= CGrandeurMmioReaderWriter::kDeepestOperand) continue;
        file.AddErrorMessage(SaveReason::OperandsTooDeep(*quantity));
        break; // those that are built from it are deep too
    }
}

bool CZMXFFile::SaveSystems(CMmioFile& file, const wstring& path)
{
    if (std::cmp_greater(m_systems.size(), MostOf(ChunkKind::System)))
        file.AddErrorMessage(SaveReason::TooManySystems(m_systems.size()));
    std::int32_t resultNumber = 0;
    for (std::size_t i = 0; i < m_systems.size(); ++i) {
        m_systems[i]->setSystemNumber(static_cast<std::uint16_t>(i));
        // A system may skip parts that can't be saved, but a failure of the device must end the save.
        if (!m_systems[i]->Save(&file, m_isLXFFile, m_fileHeader.GetType(), resultNumber) || file.HasFailed())
            return Failed(file, ErrorMessage::RIFF_SaveSystem(path, ToDecimal(static_cast<std::int64_t>(i))));
    }
    return true;
}

bool CZMXFFile::SaveRecords(CMmioFile& file, const wstring& path)
{
    for (const CComment* comment : m_comments)
        if (!comment->Save(&file)) return Failed(file, ErrorMessage::RIFF_SaveComment(path));
    return CHardInfoMmioReaderWriter().Write(file, m_hardInfo) || Failed(file, ErrorMessage::RIFF_SaveHardInfo(path));
}

bool CZMXFFile::Load(const char16_t* path, ZMXFFileLoadScope scope)
{
    const wstring name = PathText(path); // path may be the text that is cleared now
    CMmioFile file = NewFile();
    return LoadFile(file, name, scope);
}

bool CZMXFFile::LoadFromMemory(std::span<const char> bytes, ZMXFFileLoadScope scope, const char16_t* name)
{
    const wstring given = PathText(name);
    CMmioFile file(false, ReadMemory(bytes));
    file.SetFieldObserver(m_fieldObserver);
    return LoadFile(file, given, scope);
}

bool CZMXFFile::LoadFromStream(std::istream& stream, ZMXFFileLoadScope scope, const char16_t* name)
{
    const wstring given = PathText(name);
    m_filename.clear();
    std::vector<char> bytes;
    try {
        if (!stream.good()) return Failed(ErrorMessage::RIFF_OpenFile(given));
        std::vector<char> part(kStreamPart);
        while (const std::streamsize n = stream.rdbuf()->sgetn(part.data(), std::ssize(part)))
            bytes.insert(bytes.end(), part.begin(), part.begin() + n);
    } catch (const std::exception&) { // of the stream's own buffer, which may be a host's
        return Failed(ErrorMessage::RIFF_OpenFile(given));
    }
    return LoadFromMemory(bytes, scope, given.c_str());
}

bool CZMXFFile::LoadFile(CMmioFile& file, const wstring& name, ZMXFFileLoadScope scope)
{
    m_filename.clear();
    if (!OpenForReading(file, name)) return false;
    const bool loaded = ReadFrom(file, scope);
    AdoptQuantities(file); // those that only results refer to, and those of a failed load
    NoteRefusal(file);
    if (loaded) m_filename = name;
    if (loaded) NoteMissing();
    (void)file.Close();
    return loaded;
}

bool CZMXFFile::ReadFrom(CMmioFile& file, ZMXFFileLoadScope scope)
{
    OMMCKINFO form;
    if (!file.EnterChunkRIFF(form)) return false;
    const std::int32_t top = file.Position();
    const auto backToTop = [&] { return file.mmioSeek(top, OMMIO_SEEK_SET); };
    if (!file.ReadChunkVersion(form, m_version)) return false;
    if (!FileHeaderMmioReaderWriter().Read(file, m_fileHeader)) return false;
    if (m_isLXFFile && !ProjectInfoMmioReaderWriter().Read(file, m_projectInfo)) return false;
    if (!backToTop() || !LoadQuantities(file)) return false;
    if (!backToTop() || !LoadSystems(file, form, scope)) return false;
    if (!m_isLXFFile) {
        if (!backToTop()) return false;
        LoadComments(file);
    }
    const CHardInfoMmioReaderWriter hardware;
    return m_version < CHardInfoMmioReaderWriter::kFirstDocumentVersion || hardware.Read(file, m_hardInfo);
}

bool CZMXFFile::LoadQuantities(CMmioFile& file)
{
    OMMCKINFO list;
    if (!file.Enter(ChunkKind::Quantities, list)) return true;
    const std::int32_t firstChild = file.Position();
    std::uint16_t version = 0;
    if (!file.ReadChunkVersion(list, version) && !file.mmioSeek(firstChild, OMMIO_SEEK_SET)) return false;
    OMMCKINFO chunk;
    for (std::uint16_t i = 0; file.EnterChunkSansParent(chunk, QuantityCode(i)); ++i)
        if (file.quantities().ReadChunk(file, QuantityCode(i)) == nullptr || !file.ExitChunk(chunk)) return false;
    AdoptQuantities(file);
    return true;
}

void CZMXFFile::NoteLostSlices(const CResultHeader& header, const CResult& result)
{
    const auto* waterfall =
        result.IsOfType(ResultMaskBit::kWaterfall) ? dynamic_cast<const CWaterfall*>(&result) : nullptr;
    if (waterfall == nullptr || !waterfall->HasLostSlices()) return;
    const wstring code = FourCCToString(header.GetChunkId());
    addErrorMessage(ErrorMessage::SlicesWithoutPlace(
        m_filename, Concat(code, u" ", header.caption(), u" ", header.responseName())));
}

// Reports what a successful load had to leave out.
void CZMXFFile::NoteMissing()
{
    for (const CSysteme* system : m_systems) {
        if (system->getPConfig() != nullptr && system->getPConfig()->CameInPart())
            addErrorMessage(ErrorMessage::SettingsInPart(m_filename, ToDecimal(system->systemNumber())));
        for (const auto& [header, result] : system->getMapResult())
            if (result != nullptr) NoteLostSlices(*header, *result);
    }
}

// The document's list takes the quantities of a file, which have no other owner.
void CZMXFFile::AdoptQuantities(const CMmioFile& file)
{
    for (CGrandeurFichier* quantity : file.ListeGrandeur()) AjouteGrandeur(quantity, OwnershipDefault);
}

bool CZMXFFile::LoadSystems(CMmioFile& file, OMMCKINFO& form, ZMXFFileLoadScope scope)
{
    OMMCKINFO list;
    for (std::int16_t number = 0; file.EnterChunkSysteme(list, form, number); ++number) {
        file.CurrentMmckinfo(list);
        auto system = std::make_unique<CSysteme>();
        system->setSystemNumber(static_cast<std::uint16_t>(number));
        if (!system->Load(&file, m_fileHeader.GetType(), m_ownQuantities, m_normalisation, scope)) {
            system->NeedToRemoveEverything(true); // no one else has its results
            return false;
        }
        CSysteme& loaded = *system;
        (void)AddSysteme(system.release());
        loaded.AffecteReference();
        if (!file.ExitChunk(list)) return false;
    }
    return true;
}

void CZMXFFile::LoadComments(CMmioFile& file)
{
    auto comment = std::make_unique<CComment>();
    while (file.RoomFor(1, kCommentSize) && comment->Load(&file)) {
        (void)AddComment(comment.release());
        comment = std::make_unique<CComment>();
    }
}

} // namespace ZelmResult
