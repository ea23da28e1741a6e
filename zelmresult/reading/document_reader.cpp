#include "zelmresult/reading/document_reader.h"

#include "zelmresult/document/comment.h"
#include "zelmresult/document/mmio_file_vector_ref.h"
#include "zelmresult/quantities/file_quantities.h"
#include "zelmresult/reading/labelling.h"
#include "zelmresult/reading/result_listing.h"
#include "zelmresult/reading/stored_quantities.h"
#include "zelmresult/results/referenced_axis.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/storage/chunk_kinds.h"
#include "zelmresult/storage/memory_backend.h"
#include "zelmresult/storage/mmio_file.h"
#include "zelmresult/storage/nested_chunk.h"
#include "zelmresult/support/system_error.h"
#include "zelmresult/support/text.h"
#include "zelmresult/waterfalls/waterfall.h"

namespace ZelmResult {

namespace {

wstring Quoted(std::uint32_t code) { return Concat(u"the chunk \"", FourCCToString(code), u"\""); }

// The list of a system, and where its first chunk begins.
struct SystemPlace {
    std::int32_t number = 0;
    OMMCKINFO list;
    std::int32_t start = 0;
};

// Whether a system holds a list of that type.
bool HoldsList(CMmioFile& file, const SystemPlace& system, std::uint32_t type)
{
    OMMCKINFO parent = system.list;
    OMMCKINFO chunk;
    if (!file.mmioSeek(system.start, OMMIO_SEEK_SET)) return false;
    while (file.EnterNextChunk(chunk, parent)) {
        if (chunk.ckid == kCodeList && chunk.fccType == type) return true;
        if (!file.ExitChunk(chunk)) return false;
    }
    return false;
}

} // namespace

struct DocumentReader::State {
    explicit State(const CMmioFile& opened) : file(opened) {}

    ReadError Error(wstring subject) const { return ReadError::Of(file, std::move(subject)); }
    std::optional<ReadError> ReadHead();
    const std::vector<SystemPlace>& Systems();
    // Call it within an operation.
    bool GoTo(const SystemPlace& system)
    {
        file.ForgetFailures();
        return file.mmioSeek(system.start, OMMIO_SEEK_SET);
    }
    void ListResultsOf(SystemPlace system, Listing<ListedResult>& listing);
    const Listing<ListedResult>& Results();
    const Listing<StoredQuantity>& Quantities();
    // Of a waterfall at most the wanted slice, when there is one.
    Outcome<StoredResult> ReadResult(std::size_t number, WantedSlice* wanted = nullptr);
    Outcome<StoredResult> ReadListed(const ListedResult& listed, std::size_t number, WantedSlice* wanted);
    Outcome<LabelledResult> ReadLabelled(std::size_t number, WantedSlice* wanted = nullptr);
    void ReadReferences(StoredResult& stored, std::size_t number);
    StoredRecording ReadRecording(const SystemPlace& system);

    CMmioFile file;
    FileHeader head;
    std::optional<std::uint16_t> version;
    std::optional<ReadError> cutOff;
    std::shared_ptr<StoredQuantities> pool = std::make_shared<StoredQuantities>();
    std::optional<std::vector<SystemPlace>> systems;
    std::optional<Listing<ListedResult>> results;
    std::optional<Listing<StoredQuantity>> quantities;
};

// ---- Opening ----

Outcome<DocumentReader> DocumentReader::Open(const wstring& path) { return Open(path, CMmioFile::DefaultBackend()); }

Outcome<DocumentReader> DocumentReader::OpenBytes(std::span<const char> bytes, const wstring& name)
{
    return Open(name, ReadMemory(bytes));
}

Outcome<DocumentReader> DocumentReader::Open(const wstring& name, BackendFactory makeBackend)
{
    auto state = std::make_unique<State>(CMmioFile(false, std::move(makeBackend)));
    ForgetSystemError();
    if (!state->file.Open(name, nullptr, OMMIO_READ))
        return ReadError{ReadError::Kind::NotOpened, name, 0, -1, {}, LastSystemError()};
    if (auto error = state->ReadHead()) return std::move(*error);
    return DocumentReader(std::move(state));
}

std::optional<ReadError> DocumentReader::State::ReadHead()
{
    OMMCKINFO form;
    if (!file.BeginOperation() || !file.EnterChunkRIFF(form))
        return ReadError{ReadError::Kind::NotADocument, file.FileName(), 0, 0, u"the form \"ZMXF\""};
    const std::int64_t announced = std::int64_t{form.dwDataOffset} + form.cksize;
    const std::int64_t held = file.Position() + file.hFile()->BytesLeft();
    if (held < announced)
        cutOff = ReadError{ReadError::Kind::CutOff, file.FileName(), kCodeRiff, held, Concat(announced, u" bytes")};
    if (std::uint16_t stored = 0; file.ReadChunkVersion(form, stored)) version = stored;
    if (file.BeginOperation() && FileHeaderMmioReaderWriter().Read(file, head)) return std::nullopt;
    return cutOff ? *cutOff : Error(u"its head");
}

DocumentReader::DocumentReader(std::unique_ptr<State> state) : m_state(std::move(state)) {}
DocumentReader::DocumentReader(DocumentReader&&) noexcept = default;
DocumentReader& DocumentReader::operator=(DocumentReader&&) noexcept = default;
DocumentReader::~DocumentReader() = default;

const wstring& DocumentReader::name() const { return m_state->file.FileName(); }
const FileHeader& DocumentReader::head() const { return m_state->head; }
std::optional<std::uint16_t> DocumentReader::version() const { return m_state->version; }
const std::optional<ReadError>& DocumentReader::CutOff() const { return m_state->cutOff; }

// In the order of a load, one after the other: the seventeenth has the code of the second.
const std::vector<SystemPlace>& DocumentReader::State::Systems()
{
    if (systems) return *systems;
    systems.emplace();
    OMMCKINFO form;
    OMMCKINFO list;
    if (!file.BeginOperation() || !file.EnterChunkRIFF(form)) return *systems;
    const int last = FactsOf(ChunkKind::System).highest;
    for (int number = 0; number <= last && file.Enter(ChunkKind::System, list, &form, number); ++number) {
        systems->push_back({number, list, file.Position()});
        if (!file.ExitChunk(list)) break;
    }
    return *systems;
}

// ---- Results ----

const Listing<ListedResult>& DocumentReader::Results() { return m_state->Results(); }

const Listing<ListedResult>& DocumentReader::State::Results()
{
    if (results) return *results;
    Listing<ListedResult> listing;
    const std::vector<SystemPlace>& all = Systems();
    (void)file.BeginOperation();
    for (const SystemPlace& system : all) ListResultsOf(system, listing);
    const bool mustHoldResults = head.HasType(FileType::kResults | FileType::kRecordPreview);
    const auto found = static_cast<std::int32_t>(all.size());
    if (mustHoldResults && found < head.GetSystemeNumber())
        listing.NoteDamage({ReadError::Kind::Damaged, Concat(u"a result header of system ", found), kCodeRiff, -1,
                            Concat(head.GetSystemeNumber(), u" systems")});
    return results.emplace(std::move(listing));
}

void DocumentReader::State::ListResultsOf(SystemPlace system, Listing<ListedResult>& listing)
{
    OMMCKINFO list;
    const bool isInside = GoTo(system) && file.EnterChunkResultat(list, system.list);
    // A load searches past the end of a system, of which the size may be wrong.
    const bool isPromised = head.HasType(FileType::kResults);
    if (isInside || (isPromised && GoTo(system) && file.Enter(ChunkKind::Results, list)))
        ListResults(file, list, system.number, listing);
    else if (head.HasType(FileType::kResults | FileType::kRecordPreview))
        listing.NoteDamage(Error(Concat(u"a result header of system ", system.number)));
}

Outcome<StoredResult> DocumentReader::ReadResult(std::size_t number) { return m_state->ReadResult(number); }

Outcome<StoredResult> DocumentReader::State::ReadResult(std::size_t number, WantedSlice* wanted)
{
    const std::vector<ListedResult>& listed = Results().items;
    if (number < listed.size()) return ReadListed(listed[number], number, wanted);
    return ReadError{ReadError::Kind::NoSuchResult, Concat(u"result ", static_cast<std::int64_t>(number)), 0, -1,
                     Concat(u"a number below ", static_cast<std::int64_t>(listed.size()))};
}

Outcome<StoredResult> DocumentReader::State::ReadListed(const ListedResult& listed, std::size_t number,
                                                        WantedSlice* wanted)
{
    const wstring subject = Concat(u"the data of result ", static_cast<std::int64_t>(number));
    OwnedResult result = MakeResult(*listed.header);
    if (result == nullptr)
        return ReadError{ReadError::Kind::UnknownKind,
                         Concat(u"result ", static_cast<std::int64_t>(number), u" (process type ",
                                listed.header->GetProcessType(), u")"),
                         listed.headerChunk.code,
                         listed.headerChunk.offset,
                         {}};
    if (!listed.data.IsThere())
        return ReadError{ReadError::Kind::Damaged, subject, listed.headerChunk.code, listed.headerChunk.offset,
                         Quoted(listed.data.code)};
    if (wanted != nullptr) {
        auto* waterfall = dynamic_cast<CWaterfall*>(result.get());
        if (waterfall == nullptr)
            return ReadError{ReadError::Kind::NoSuchResult,
                             Concat(u"a slice of result ", static_cast<std::int64_t>(number)), listed.headerChunk.code,
                             listed.headerChunk.offset, u"a waterfall"};
        constexpr std::int64_t headerSize = 8;
        wanted->end = listed.data.offset + headerSize + listed.data.size;
        waterfall->ReadOnly(*wanted);
    }
    (void)Quantities(); // all of them in their order, so that among equal ones the first is always the same
    OMMCKINFO data;
    const bool isRead = file.BeginOperation() && file.mmioSeek(listed.data.offset, OMMIO_SEEK_SET) &&
                        file.EnterChunkSansParent(data, listed.data.code) && result->Read(&file);
    pool->TakeFrom(file); // those that are outside the order
    if (!isRead) return Error(subject);
    StoredResult stored(listed, std::move(result), pool);
    ReadReferences(stored, number);
    pool->TakeFrom(file);
    return stored;
}

Outcome<LabelledResult> DocumentReader::ReadLabelled(std::size_t number) { return m_state->ReadLabelled(number); }

Outcome<LabelledResult> DocumentReader::ReadSlices(std::size_t number)
{
    WantedSlice none;
    return m_state->ReadLabelled(number, &none);
}

Outcome<LabelledResult> DocumentReader::ReadSlice(std::size_t number, SliceChoice choice)
{
    const bool isByIndex = choice.by == SliceChoice::By::Index;
    WantedSlice wanted{isByIndex ? WantedSlice::By::Index : WantedSlice::By::Block, choice.number};
    return m_state->ReadLabelled(number, &wanted);
}

Outcome<LabelledResult> DocumentReader::State::ReadLabelled(std::size_t number, WantedSlice* wanted)
{
    auto stored = ReadResult(number, wanted);
    if (!stored) return stored.error();
    CResult& result = stored->result();
    const ChunkPlace& place = stored->listed().data;
    const wstring name = Concat(u"result ", static_cast<std::int64_t>(number));
    if (!file.Charge(ReferenceBytesOf(result))) return Error(u"the references of " + name);
    const bool isOne = wanted != nullptr && wanted->by != WantedSlice::By::None;
    auto labelled = Label(*stored, number, wanted == nullptr || isOne);
    if (!labelled) return ReadError{ReadError::Kind::UnknownKind, name, place.code, place.offset, {}};
    if (!isOne) return *std::move(labelled);
    const auto& waterfall = static_cast<const CWaterfall&>(result);
    if (labelled->data.empty())
        return ReadError{ReadError::Kind::NoSuchResult, Concat(u"slice ", wanted->number, u" of ", name), place.code,
                         place.offset, Concat(u"one of its ", waterfall.StoredBlocks().size(), u" slices")};
    DropSlices(*labelled, waterfall.ReadIndex());
    return *std::move(labelled);
}

// Ties a result along a waterfall to the references that its system stores.
void DocumentReader::State::ReadReferences(StoredResult& stored, std::size_t number)
{
    CReferencedAxis* axis = stored.result().GetReferencedAxis();
    if (axis == nullptr || !axis->IsWaterfall()) return;
    const SystemPlace& system = Systems()[static_cast<std::size_t>(stored.system())];
    auto references = std::make_unique<CListVectorRef>(true); // the result deletes it, not its axis
    file.ForgetFailures();
    if (!MmioFile_VectorRef(file).FillVecteurRefFrom(system.start, *references, stored.header().GetIndexListe())) {
        stored.m_lostReferences = Error(Concat(u"the references of result ", static_cast<std::int64_t>(number)));
        return;
    }
    axis->SetReferenceList(references.get());
    axis->SetReference(stored.header().chosenReference(), nullptr, nullptr);
    stored.m_references = std::move(references);
}

// ---- The rest ----

const Listing<StoredQuantity>& DocumentReader::Quantities() { return m_state->Quantities(); }

const Listing<StoredQuantity>& DocumentReader::State::Quantities()
{
    if (quantities) return *quantities;
    Listing<StoredQuantity>& listing = quantities.emplace();
    OMMCKINFO list;
    OMMCKINFO chunk;
    if (!file.BeginOperation() || !file.TopOfChunkUnite(list)) return listing; // a document may hold none
    for (int i = 0; file.Enter(ChunkKind::Quantity, chunk, &list, i); ++i) {
        const std::uint32_t code = ChunkCode(ChunkKind::Quantity, i);
        const CGrandeurFichier* quantity = file.quantities().ReadChunk(file, code);
        pool->TakeFrom(file);
        if (quantity != nullptr) listing.items.push_back({code, {pool, quantity}});
        const bool hasEnd = file.ExitChunk(chunk);
        if (quantity == nullptr || !hasEnd) listing.NoteDamage(Error(u"its quantity " + FourCCToString(code)));
        if (!hasEnd) break;
    }
    return listing;
}

std::vector<StoredSettings> DocumentReader::ReadSettings()
{
    State& state = *m_state;
    std::vector<StoredSettings> all;
    if (!state.head.HasType(FileType::kSettings)) return all;
    const std::vector<SystemPlace>& systems = state.Systems();
    (void)state.file.BeginOperation();
    for (SystemPlace system : systems) {
        OMMCKINFO list;
        if (!state.GoTo(system) || !state.file.EnterChunkConfig(list, system.list)) continue;
        const NestedChunk settings(state.file, list);
        StoredSettings stored{system.number, std::make_unique<CConfigData>(), std::nullopt};
        if (!stored.tree->Load(&state.file))
            stored.damage = state.Error(Concat(u"the settings of system ", system.number));
        all.push_back(std::move(stored));
    }
    return all;
}

std::vector<StoredRecording> DocumentReader::ReadRecordings()
{
    std::vector<StoredRecording> all;
    const std::vector<SystemPlace>& systems = m_state->Systems();
    (void)m_state->Quantities();
    (void)m_state->file.BeginOperation();
    all.reserve(systems.size());
    for (const SystemPlace& system : systems) all.push_back(m_state->ReadRecording(system));
    return all;
}

// Loads the recording and the transducers, as far as the type word names them, and the settings, which say whether
// there are transducers.
StoredRecording DocumentReader::State::ReadRecording(const SystemPlace& system)
{
    auto branches = std::make_unique<CSysteme>();
    std::optional<ReadError> damage;
    const auto load = [&](std::uint32_t type) {
        const bool isReady = GoTo(system);
        const NestedChunk nested(file, system.list);
        if (isReady && branches->Load(&file, head.GetType() & type, false, false, ZMXFFileLoadScope::all())) return;
        if (!damage) damage = Error(Concat(u"the recording of system ", system.number));
    };
    // When a recording is missing, a load searches beyond the end of the system.
    if (HoldsList(file, system, ChunkCode(ChunkKind::Recording)))
        load(FileType::kRecording);
    else if (head.HasType(FileType::kRecording))
        damage = ReadError{ReadError::Kind::Damaged, Concat(u"the recording of system ", system.number), kCodeList,
                           system.start, Quoted(ChunkCode(ChunkKind::Recording))};
    load(FileType::kSettings | FileType::kTracks);
    pool->TakeFrom(file);
    return {system.number, std::move(branches), pool, std::move(damage)};
}

Listing<strHardInfo> DocumentReader::ReadHardware()
{
    Listing<strHardInfo> listing;
    CHardInfo info;
    CMmioFile& file = m_state->file;
    if (!file.BeginOperation() || !CHardInfoMmioReaderWriter().Read(file, info)) {
        if (file.WhereReadStopped().missing != ChunkCode(ChunkKind::Hardware))
            listing.NoteDamage(m_state->Error(u"its hardware"));
        return listing;
    }
    strHardInfo entry;
    for (std::int32_t i = 0; info.getHardInfoData(i, entry); ++i) listing.items.push_back(entry);
    return listing;
}

Listing<wstring> DocumentReader::ReadComments()
{
    Listing<wstring> listing;
    CMmioFile& file = m_state->file;
    OMMCKINFO form;
    if (!file.BeginOperation() || !file.EnterChunkRIFF(form)) return listing;
    for (CComment comment; file.RoomFor(1, 2 * sizeof(wstring)) && comment.Load(&file);)
        listing.items.push_back(comment.comment());
    if (file.WhereReadStopped().missing != ChunkCode(ChunkKind::FormerComment))
        listing.NoteDamage(m_state->Error(u"its comments"));
    return listing;
}

} // namespace ZelmResult
