#include "tools/zmxf/showing/stored_document.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/document/zmxf_file.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/results/result_factory.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/ref_waterfall.h"

#include <cerrno>
#include <map>

namespace zmxf {

namespace {

using ZelmResult::CMmioFile;
using ZelmResult::CResultHeader;
using ZelmResult::FileHeader;
using ZelmResult::OMMCKINFO;

constexpr std::int32_t kLastSystem = 16;

// A document that is open for reading. The quantities which its readers meet are its own until they are taken.
class OpenDocument {
public:
    explicit OpenDocument(const std::string& path) : m_path(path), m_libraryPath(LibraryPath(path))
    {
        errno = 0;
        if (!m_file.Open(m_libraryPath, nullptr, ZelmResult::OMMIO_READ))
            throw Failure(errno != 0 ? SystemFailure("cannot read", path) : Text("not a regular file"));
        m_file.LimitSearches();
        if (!m_file.IsResultFile()) throw Failure(Text("not a result document"));
        CheckLength();
        Need(ZelmResult::FileHeaderMmioReaderWriter().Read(m_file, m_header), "its head");
    }
    OpenDocument(const OpenDocument&) = delete;
    OpenDocument& operator=(const OpenDocument&) = delete;
    ~OpenDocument() { (void)TakeQuantities(); }

    [[nodiscard]] CMmioFile& file() { return m_file; }
    [[nodiscard]] const FileHeader& header() const { return m_header; }
    [[nodiscard]] const ZelmResult::wstring& libraryPath() const { return m_libraryPath; }

    void Need(bool read, const std::string& what) const
    {
        if (!read) throw Failure(Text(what + " cannot be read, the document is damaged"));
    }
    std::vector<std::unique_ptr<ZelmResult::CGrandeurFichier>> TakeQuantities()
    {
        std::vector<std::unique_ptr<ZelmResult::CGrandeurFichier>> taken;
        if (std::exchange(m_taken, true)) return taken;
        for (ZelmResult::CGrandeurFichier* quantity : m_file.ListeGrandeur()) taken.emplace_back(quantity);
        return taken;
    }

private:
    // What was cut off reads as zeros and as branches that aren't there.
    void CheckLength()
    {
        OMMCKINFO form;
        Need(m_file.TopOfFile() && m_file.EnterChunkRIFF(form), "its head");
        const std::int64_t announced = std::int64_t{form.dwDataOffset} + form.cksize;
        const std::int64_t held = m_file.Position() + m_file.hFile()->BytesLeft();
        if (held < announced)
            throw Failure(Text("it ends after " + std::to_string(held) + " of " + std::to_string(announced) +
                               " bytes, the document is damaged"));
    }

    [[nodiscard]] std::string Text(const std::string& reason) const
    {
        return "cannot read " + Printable(m_path) + ": " + reason;
    }

    std::string m_path;
    ZelmResult::wstring m_libraryPath;
    CMmioFile m_file{false};
    FileHeader m_header;
    bool m_taken = false;
};

void ReadVersion(OpenDocument& document, DocumentOutline& outline)
{
    OMMCKINFO form;
    CMmioFile& file = document.file();
    document.Need(file.TopOfFile() && file.EnterChunkRIFF(form) && file.ReadChunkVersion(form, outline.version),
                  "its version");
}

// Older documents have no such record.
void ReadHardware(OpenDocument& document, DocumentOutline& outline)
{
    ZelmResult::CHardInfo info;
    if (!ZelmResult::CHardInfoMmioReaderWriter().Read(document.file(), info)) return;
    ZelmResult::strHardInfo entry;
    for (std::int32_t i = 0; info.getHardInfoData(i, entry); ++i) outline.hardware.push_back(entry);
}

// Their codes are "0000", "0001" and so on. A document without quantities has no list of them.
void ReadQuantities(OpenDocument& document, DocumentOutline& outline)
{
    constexpr int mostCodes = 10000;
    CMmioFile& file = document.file();
    OMMCKINFO list;
    if (!file.TopOfChunkUnite(list)) return;
    OMMCKINFO chunk;
    for (int i = 0; i < mostCodes; ++i) {
        const ZelmResult::wstring code = ZelmResult::ToDecimalPadded(i, 4);
        const std::uint32_t id = ZelmResult::StringToFourCC(code, true);
        if (!file.EnterChunk(chunk, list, id)) break;
        const std::string text = ZelmResult::ToUtf8(code);
        outline.codes.emplace_back(text, file.quantities().ReadChunk(file, id));
        document.Need(outline.codes.back().second != nullptr && file.ExitChunk(chunk), "its quantity " + text);
    }
}

// The headers of all systems, as CZMXFFile::GetResultHeaderListe gives them, but each with its system.
std::vector<ListedResult> ReadHeaders(OpenDocument& document)
{
    namespace FileType = ZelmResult::FileType;
    const bool mustHoldResults = document.header().HasType(FileType::kResults | FileType::kRecordPreview);
    std::vector<ListedResult> results;
    for (std::int16_t number = 0; number < document.header().GetSystemeNumber(); ++number) {
        OMMCKINFO list;
        if (!mustHoldResults && !document.file().TopOfChunkResultat(list, number)) continue;
        ZelmResult::CSysteme system;
        system.setSystemNumber(static_cast<std::uint16_t>(number));
        std::vector<CResultHeader*> headers;
        const bool read = system.GetResultHeaderListe(&document.file(), headers);
        for (CResultHeader* header : headers) results.push_back({number, std::unique_ptr<CResultHeader>(header)});
        document.Need(read, "a result header of system " + std::to_string(number));
    }
    return results;
}

// Goes through the systems one behind the other, as a load does: the seventeenth has the code of the second. take gets
// each with the file inside of its list, the current chunk.
template <class Take>
void EachSystem(CMmioFile& file, Take take)
{
    OMMCKINFO form;
    OMMCKINFO list;
    if (!file.TopOfFile() || !file.EnterChunkRIFF(form)) return;
    for (std::int16_t number = 0; number <= kLastSystem && file.EnterChunkSysteme(list, form, number); ++number) {
        ZelmResult::NestedChunk system(file, list);
        take(number, list);
        if (!system.Exit()) return;
    }
}

// Whether a list stands in the system that the file is inside of, where it stays.
bool HoldsBranch(CMmioFile& file, const OMMCKINFO& system, std::uint32_t type)
{
    OMMCKINFO parent = system;
    OMMCKINFO branch;
    branch.fccType = type;
    const std::int32_t position = file.Position();
    const bool isThere = file.hFile()->ommioDescend(&branch, &parent, ZelmResult::OMMIO_FINDLIST) == 0;
    return file.mmioSeek(position, ZelmResult::OMMIO_SEEK_SET) && isThere;
}

// Loads what the type word names of recording and transducers, with the settings, which tell whether there are any.
StoredRecording ReadRecording(OpenDocument& document, std::int16_t number, const OMMCKINFO& list)
{
    namespace FileType = ZelmResult::FileType;
    CMmioFile& file = document.file();
    const std::int32_t begin = file.Position();
    const auto load = [&](ZelmResult::CSysteme& system, std::uint32_t type) {
        return file.mmioSeek(begin, ZelmResult::OMMIO_SEEK_SET) &&
               system.Load(&file, document.header().GetType() & type, false, false,
                           ZelmResult::ZMXFFileLoadScope::all());
    };
    StoredRecording stored{number, std::make_unique<ZelmResult::CSysteme>(), true};
    const bool isNamed = document.header().HasType(FileType::kRecording);
    const bool isThere = HoldsBranch(file, list, ZelmResult::FourCC("RCRD")); // a load searches on behind the system
    stored.isWhole = (!isNamed || isThere) && (!isThere || load(*stored.branches, FileType::kRecording));
    const bool areRead = load(*stored.branches, FileType::kSettings | FileType::kTracks);
    stored.isWhole = stored.isWhole && areRead;
    return stored;
}

// Ties a result along a waterfall to the references that its document holds.
bool ReadReferences(StoredResult& stored, const ZelmResult::wstring& path)
{
    ZelmResult::CReferencedAxis* axis = stored.result->GetReferencedAxis();
    if (axis == nullptr || !axis->IsWaterfall()) return true;
    const CResultHeader& header = *stored.listed.header;
    stored.references = std::make_unique<ZelmResult::CListVectorRef>(true);
    if (!ZelmResult::CZMXFFile(true, false)
             .FillListeVecteurRef(nullptr, u"", *stored.references, path.c_str(), header.GetIndexListe(),
                                  stored.listed.system))
        return false;
    axis->SetReferenceList(stored.references.get());
    axis->SetReference(header.chosenReference(), nullptr, nullptr);
    return true;
}

// What a result uses by now goes with it, whether its data could be read or not.
void TakeQuantities(StoredResult& stored)
{
    std::map<ZelmResult::CGrandeur*, int> used;
    stored.result->AddReferredGrandeur(used);
    if (stored.references != nullptr) stored.references->AddInvolvedGrandeur(used); // as far as they could be read
    for (const auto& taken : stored.quantities) used.erase(taken.get());
    for (const auto& [quantity, count] : used) {
        if (ZelmResult::CUnite* unit = quantity->GetUniteCourante(); unit != nullptr)
            unit->SetRef0dB(unit->GetRef0dB()); // a stored unit comes without the inverse of its reference
        stored.quantities.emplace_back(quantity);
    }
}

} // namespace

DocumentOutline ReadOutline(const std::string& path)
{
    OpenDocument document(path);
    DocumentOutline outline;
    outline.type = document.header().GetType();
    outline.systems = document.header().GetSystemeNumber();
    ReadVersion(document, outline);
    ReadHardware(document, outline);
    ReadQuantities(document, outline);
    outline.results = ReadHeaders(document);
    outline.quantities = document.TakeQuantities();
    return outline;
}

std::vector<std::unique_ptr<StoredSettings>> ReadSettings(const std::string& path)
{
    OpenDocument document(path);
    std::vector<std::unique_ptr<StoredSettings>> all;
    if (!document.header().HasType(ZelmResult::FileType::kSettings)) return all;
    EachSystem(document.file(), [&](std::int16_t number, OMMCKINFO& system) {
        OMMCKINFO list;
        if (!document.file().EnterChunkConfig(list, system)) return;
        const ZelmResult::NestedChunk settings(document.file(), list);
        auto stored = std::make_unique<StoredSettings>();
        stored->system = number;
        stored->isWhole = stored->config.Load(&document.file());
        all.push_back(std::move(stored));
    });
    return all;
}

StoredRecordings ReadRecordings(const std::string& path)
{
    OpenDocument document(path);
    StoredRecordings all;
    EachSystem(document.file(), [&](std::int16_t number, const OMMCKINFO& system) {
        all.systems.push_back(ReadRecording(document, number, system));
    });
    for (auto& quantity : document.TakeQuantities()) all.quantities.push_back(std::move(quantity));
    return all;
}

std::vector<ListedResult> ReadHeaders(const std::string& path)
{
    OpenDocument document(path);
    return ReadHeaders(document);
}

Failure Unshowable(const std::string& path, const StoredResult& stored, std::size_t number)
{
    return Failure(Printable(path) + ": result " + std::to_string(number) + " is of process type " +
                   std::to_string(stored.listed.header->GetProcessType()) + ", which cannot be shown");
}

StoredResult ReadResult(const std::string& path, std::size_t number)
{
    std::vector<ListedResult> results = ReadHeaders(path);
    const auto name = Printable(path);
    if (number >= results.size())
        throw Failure(name + " has no result " + std::to_string(number) + ": it holds " +
                      Counted(results.size(), "result") + ", counted from 0");
    StoredResult stored{std::move(results[number]), {}, nullptr, nullptr, nullptr};
    CResultHeader& header = *stored.listed.header;
    stored.result = ZelmResult::ResultFactory::create(
        header.processType(), static_cast<int>(header.GetWaterfallDimension()), header.responseName());
    if (stored.result == nullptr) throw Unshowable(path, stored, number);
    if (const auto* series = dynamic_cast<const ZelmResult::CRefWaterfall*>(stored.result.get()); series != nullptr)
        stored.ownReference.reset(series->GetMyVecteurReference());
    const ZelmResult::wstring libraryPath = LibraryPath(path);
    CResultHeader located = header; // headers name the file that they were written to, which may have moved
    located.setFilename(libraryPath);
    const bool read =
        ZelmResult::CZMXFFile(true, false).GetResultat(stored.result.get(), &located, stored.listed.system);
    TakeQuantities(stored);
    const bool isTied = !read || ReadReferences(stored, libraryPath);
    TakeQuantities(stored); // those of the references, some in the place of the result's
    if (!isTied) throw Failure(name + ": the references of result " + std::to_string(number) + " cannot be read");
    if (!read) throw Failure(name + ": the data of result " + std::to_string(number) + " cannot be read");
    return stored;
}

} // namespace zmxf
