#include "fuzz/laws.h"

#include "tests/builders/bytes.h"
#include "tests/builders/counted_memory.h"
#include "tests/builders/reader_check.h"
#include "tests/builders/samples.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/zelmresult.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <map>

namespace ZelmResult::fuzz {

namespace {

using test::Bytes;

constexpr std::size_t kMiB = 1048576;
constexpr std::size_t kTimesTheFile = 16;
constexpr std::size_t kAlways = 64 * kMiB;
constexpr std::size_t kAround = 4 * kMiB;
constexpr std::size_t kReadsPerByte = 2000; // three jumps of 4 KiB for a header of eight bytes
constexpr std::size_t kReadsAlways = kMiB;
constexpr std::size_t kMostSaved = 128 * kMiB; // far more than the inputs of a target can ask for in earnest

const wstring kPath = u"document";
const wstring kSaved = u"saved";

// The quantities of an operation whose caller owns them.
void DeleteAll(const std::map<CGrandeur*, int>& quantities)
{
    for (const auto& [quantity, count] : quantities) delete quantity;
}

} // namespace

void Require(bool holds, const std::string& law)
{
    if (holds) return;
    std::fprintf(stderr, "A law is broken: %s\n", law.c_str());
    std::abort();
}

test::MemoryDisk& Disk()
{
    static test::MemoryDisk disk;
    static const test::UseBackend use(disk);
    disk.SetLimit(kMostSaved);
    return disk;
}

void Bounded(std::size_t fileSize, const std::function<void()>& operation)
{
    const std::size_t before = g_most = g_held;
    Disk().counts() = {};
    operation();
    const auto within = [&](const char* what, std::size_t taken, std::size_t limit) {
        Require(taken <= limit, std::to_string(taken) + " " + what + " for a file of " + std::to_string(fileSize));
    };
    within("bytes held", g_most - before, kTimesTheFile * fileSize + kAlways + kAround);
    within("bytes read", static_cast<std::size_t>(Disk().counts().bytesRead), kReadsPerByte * fileSize + kReadsAlways);
}

// ---- Results ----

OwnedResult MakeResult(std::uint32_t kind, std::uint32_t dimension)
{
    CResultHeader header;
    header.SetProcessType(kind);
    header.SetWaterfallDimension(dimension);
    header.setResponseName(u"Speed");
    return ZelmResult::MakeResult(header);
}

bool MaySettle(CResult& result)
{
    return result.GetReferencedAxis() != nullptr || dynamic_cast<CDoubleResult*>(&result) != nullptr;
}

void Look(CResult& result)
{
    delete result.GetCopy();
    (void)result.name();
    for (const auto limit : {&CResult::GetMax, &CResult::GetMin, &CResult::GetXMax, &CResult::GetXMin,
                             &CResult::GetRealMax, &CResult::GetImMin, &CResult::GetValue, &CResult::GetAbsPrecisionX})
        (void)(result.*limit)();
    std::map<CGrandeur*, int> used;
    result.AddInvolvedGrandeur(used);
    if (auto* waterfall = dynamic_cast<CWaterfall*>(&result); waterfall != nullptr) {
        float values[3] = {};
        for (std::int32_t slot = -1; slot <= std::min(waterfall->GetZSize(), 20); ++slot) {
            (void)waterfall->GetTempVector(slot);
            waterfall->GetValues(1, slot, values, 3);
        }
    }
    const CReferencedAxis* axis = result.GetReferencedAxis();
    if (axis == nullptr) return;
    std::vector<wstring> names;
    axis->GetRefNames(names);
    float* values = nullptr;
    for (const wstring& name : names) axis->GetAnyRefValue(values, name, nullptr);
}

// ---- Settings ----

bool HasBareTable(const std::vector<CReglageData*>& settings)
{
    return std::any_of(settings.begin(), settings.end(), [](const CReglageData* setting) {
        if (const auto* table = dynamic_cast<const CTableauData*>(setting); table != nullptr)
            return table->GetNbrLineVisu() == -1 || HasBareTable(table->GetListReglage());
        const auto* tacho = dynamic_cast<const CVirtualTachoData*>(setting);
        return tacho != nullptr && HasBareTable(tacho->GetListReglage());
    });
}

bool HasBareTable(const CConfigData& tree)
{
    for (const CModuleData* module : tree.modules())
        for (const CSousModuleData* submodule : module->submodules())
            if (HasBareTable(submodule->settings())) return true;
    return false;
}

// ---- Documents ----

namespace {

struct Loaded {
    explicit Loaded(const Data& bytes, bool isLXFFile, ZMXFFileLoadScope scope = ZMXFFileLoadScope::all())
        : document(true, isLXFFile)
    {
        Disk()[kPath] = bytes;
        Bounded(bytes.size(), [&] { good = document.Load(kPath.c_str(), scope); });
        document.NeedToRemoveEverything(true);
    }
    CZMXFFile document;
    bool good = false;
};

void LookAt(const CZMXFFile& document)
{
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        (void)document.getSystem(i)->CreeListesResultatsOrdonnees();
        for (const auto& [header, result] : document.getSystem(i)->getMapResult()) Look(*result);
    }
    (void)document.getNbrChannel();
    std::map<CGrandeur*, int> used;
    document.AddInvolvedGrandeur(used);
}

bool HasBareTable(const CZMXFFile& document)
{
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i) {
        const CConfigData* tree = document.getSystem(i)->getPConfig();
        if (tree != nullptr && fuzz::HasBareTable(*tree)) return true;
    }
    return false;
}

// Whether series show references of their system: those of a damaged file agree from the next load on.
bool HasReferences(const CZMXFFile& document)
{
    for (std::int32_t i = 0; i < document.getNbrSys(); ++i)
        if (!document.getSystem(i)->GetArPtrListeReferences().empty()) return true;
    return false;
}

struct Resaved {
    bool good = false;
    bool hasLosses = false; // which the save reported
    bool maySettle = false;
    Data bytes;
    std::vector<std::int32_t> results; // of each system

    // What must be the same once a document has settled.
    bool operator==(const Resaved& other) const
    {
        return good == other.good && bytes == other.bytes && results == other.results;
    }
};

// What a load and a save make of a file. A save may refuse what was loaded, such as a module whose number no code
// holds: then it says so, and no load takes what it left.
Resaved Resave(const Data& bytes, bool isLXFFile)
{
    Loaded loaded(bytes, isLXFFile);
    Resaved saved;
    if (!loaded.good) return saved;
    for (std::int32_t i = 0; i < loaded.document.getNbrSys(); ++i)
        saved.results.push_back(loaded.document.getSystem(i)->GetResultsNumber());
    saved.maySettle = HasBareTable(loaded.document) || HasReferences(loaded.document);
    std::vector<wstring> messages;
    loaded.document.fetchErrors(messages, true); // of the load
    messages.clear();
    saved.good = loaded.document.Save(kSaved.c_str());
    loaded.document.fetchErrors(messages, true);
    saved.hasLosses = !messages.empty();
    saved.bytes = Disk()[kSaved];
    Require(saved.bytes.size() < kMostSaved / 2, "a save is in proportion to what was loaded");
    if (saved.good) return saved;
    Require(saved.hasLosses, "a save that fails says why");
    Require(!Loaded(saved.bytes, isLXFFile).good, "what a failed save leaves doesn't load");
    return saved;
}

// Comments, which are saved under a code that no load looks for, and points that weren't filled are dropped by the
// first load of what was saved. So that may make the file shorter, once, and bare tables and references may change it.
// All else is restored as it was saved, unless the save said what doesn't.
void CheckStability(const Data& bytes, bool isLXFFile)
{
    const Resaved first = Resave(bytes, isLXFFile);
    if (!first.good || first.hasLosses) return;
    const Resaved second = Resave(first.bytes, isLXFFile);
    Require(second.good, "what was saved loads and is saved again");
    Require(second.results == first.results, "all results come back");
    if (first.maySettle || second.bytes.size() < first.bytes.size())
        Require(Resave(second.bytes, isLXFFile) == second, "a document is saved as it was loaded, once it has settled");
    else
        Require(second == first, "a document is saved as it was loaded");
}

// Reads the file, of that size, without loading it.
void CheckReader(std::size_t size)
{
    constexpr std::size_t most = 3;
    std::optional<DocumentReader> reader;
    Bounded(size, [&] {
        if (auto opened = DocumentReader::Open(kPath); opened) reader.emplace(*std::move(opened));
    });
    if (!reader) return;
    std::size_t listed = 0;
    Bounded(size, [&] { listed = reader->Results().items.size(); });
    Bounded(size, [&] { (void)reader->Quantities(); });
    std::vector<StoredResult> results;
    for (std::size_t i = 0; i < std::min(most, listed); ++i)
        Bounded(size, [&] {
            if (auto result = reader->ReadResult(i); result) results.push_back(*std::move(result));
        });
    Bounded(size, [&] { (void)reader->ReadHardware(), (void)reader->ReadComments(); });
    std::vector<StoredSettings> settings;
    std::vector<StoredRecording> recordings;
    Bounded(size, [&] { settings = reader->ReadSettings(); });
    Bounded(size, [&] { recordings = reader->ReadRecordings(); });
    reader.reset(); // all that it gave lives on
    for (StoredResult& result : results) Look(result.result());
    const std::string difference = test::DifferenceFromLoad(kPath);
    Require(difference.empty(), "a reader gives what a load gives: " + difference);
}

void FetchSettings(CZMXFFile& reader, std::uint16_t system, std::size_t size)
{
    CConfigData config;
    Bounded(size, [&] { (void)reader.GetConfig(kPath.c_str(), config, system); });
    for (const CModuleData* module : config.modules())
        for (const CSousModuleData* submodule : module->submodules()) {
            if (submodule->settings().empty()) continue;
            const idn::Idn idn = submodule->settings().front()->GetIdn();
            const auto setting = reader.GetReglage(kPath.c_str(), idn);
            Require(setting == nullptr || setting->GetIdn() == idn, "the setting is the one that was asked for");
        }
}

void FetchReferences(CZMXFFile& reader, std::int32_t system, std::size_t size)
{
    CListVectorRef list(false);
    Bounded(size, [&] { (void)reader.FillListeVecteurRef(nullptr, u"", list, kPath.c_str(), 0, system); });
    std::map<CGrandeur*, int> given;
    list.AddInvolvedGrandeur(given);
    list.Destroy();
    DeleteAll(given);
}

} // namespace

void CheckDocument(const Data& bytes)
{
    constexpr std::int32_t first = 0x20202031; // "1"
    constexpr std::uint16_t outsideOfSystems = 17;
    const auto loads = [&](ZMXFFileLoadScope scope, bool isLXFFile = false) {
        const Loaded loaded(bytes, isLXFFile, scope);
        LookAt(loaded.document);
        return loaded.good;
    };
    const bool all = loads(ZMXFFileLoadScope::all());
    const bool inParts = loads(ZMXFFileLoadScope::noconfig()) && loads(ZMXFFileLoadScope::singleResult(first));
    Require(!all || inParts, "what loads as a whole loads in every scope");
    (void)loads(ZMXFFileLoadScope::all(), true);
    CheckReader(bytes.size());
    CZMXFFile reader(false, false);
    for (const std::uint16_t system : {std::uint16_t{0}, outsideOfSystems}) {
        FetchSettings(reader, system, bytes.size());
        FetchReferences(reader, system, bytes.size());
    }
    CHardInfo hardware;
    Bounded(bytes.size(), [&] { (void)reader.GetHardInfo(kPath.c_str(), hardware); });
    (void)reader.HasRecordPreview(kPath.c_str());
    for (const bool isLXFFile : {false, true}) CheckStability(bytes, isLXFFile);
}

// ---- Records ----

namespace {

// What comes before a record.
const Data& Frame()
{
    static const Data frame = [] {
        const std::vector<Bytes> quantities = {test::quantityBytes(u"p"), test::quantityBytes(u"v"),
                                               test::quantityBytes(u"i", {"0000", "0001"})};
        Data bytes = test::fileOf(test::head(1, 4).append(test::units(quantities)).list("REST", {})).data();
        bytes[7] = '\1'; // the form continues after the end of the file
        return bytes;
    }();
    return frame;
}

// A file to read records from, with the quantities that they name.
class RecordFile {
public:
    explicit RecordFile(const Data& record) : m_end(Store(record)), m_file(false)
    {
        Require(m_file.Open(kPath, nullptr, OMMIO_READ), "a file opens");
        m_file.LimitSearches();
        const auto start = static_cast<std::int32_t>(Frame().size());
        OMMCKINFO list;
        list.ckid = kCodeList;
        list.cksize = static_cast<std::uint32_t>(record.size()) + 4;
        list.dwDataOffset = static_cast<std::uint32_t>(start) - 4;
        m_file.CurrentMmckinfo(list);
        Require(m_file.mmioSeek(start, OMMIO_SEEK_SET), "a record has a beginning");
    }
    RecordFile(const RecordFile&) = delete;
    RecordFile& operator=(const RecordFile&) = delete;
    ~RecordFile()
    {
        for (const CGrandeurFichier* quantity : m_file.ListeGrandeur()) delete quantity;
    }
    [[nodiscard]] CMmioFile& file() { return m_file; }
    [[nodiscard]] bool isAtEnd() const { return m_file.Position() == m_end; }
    // References to quantities are stored by their codes.
    void GiveCodes() const
    {
        for (CGrandeurFichier* quantity : m_file.ListeGrandeur()) quantity->SetChunkId(quantity->GetChunkOrigine());
    }

private:
    static std::int32_t Store(const Data& record)
    {
        Data& bytes = Disk()[kPath] = Frame();
        bytes.insert(bytes.end(), record.begin(), record.end());
        return static_cast<std::int32_t>(bytes.size());
    }

    std::int32_t m_end;
    CMmioFile m_file;
};

// The bytes that a subject writes.
Data Written(const Subject& subject)
{
    CMmioFile file(false);
    Require(file.Open(kSaved, nullptr, OMMIO_WRITE | OMMIO_CREATE) && subject.write(file), "what was read is written");
    (void)file.Close();
    return Disk()[kSaved];
}

// The same after one more read.
Data Rewritten(const Data& record, const std::function<Subject()>& make)
{
    RecordFile file(record);
    const Subject subject = make();
    Require(subject.read(file.file()), "what was written is read");
    Require(!subject.isWholeRead || file.isAtEnd(), "a read takes all that was written");
    file.GiveCodes();
    return Written(subject);
}

} // namespace

void CheckRecord(const Data& record, const std::function<Subject()>& make)
{
    RecordFile first(record);
    const Subject subject = make();
    bool isRead = false;
    Bounded(Frame().size() + record.size(), [&] { isRead = subject.read(first.file()); });
    if (!isRead) return;
    subject.look();
    const bool maySettle = subject.maySettle();
    first.GiveCodes();
    const Data once = Written(subject);
    const Data twice = Rewritten(once, make);
    if (twice != once && maySettle)
        Require(Rewritten(twice, make) == twice, "a record is written as it was read, once it has settled");
    else
        Require(twice == once, "a record is written as it was read");
    subject.finish();
}

} // namespace ZelmResult::fuzz
