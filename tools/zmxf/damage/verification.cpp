#include "tools/zmxf/damage/verification.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/field_notes.h"
#include "tools/zmxf/damage/load_failure.h"
#include "tools/zmxf/damage/read_trial.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <functional>
#include <map>
#include <set>

namespace zmxf {

namespace {

namespace FileType = ZelmResult::FileType;
using ZelmResult::FourCC;

constexpr std::uint32_t kNoQuantity = FourCC("9999");

class Verifier {
public:
    Verifier(const std::string& path, std::span<const char> bytes, const ChunkTree& tree)
        : m_path(path), m_bytes(bytes), m_root(tree.root)
    {
        m_found.damages = tree.damages;
    }

    Verification Run() &&
    {
        const LoadTrial load = TryToLoad(m_path, &m_notes);
        m_found.isLoaded = load.isLoaded;
        CheckRoot();
        CheckQuantities();
        for (const Chunk& child : m_root.children)
            if (child.role == Role::System) CheckSystem(child);
        CheckUnknown(m_root);
        TryRecords();
        CheckRecords(m_notes.records());
        for (const auto& [offset, end] : m_notes.ends())
            if (end > EndOfChunkAt(m_root, offset)) Report(offset, "a record goes on behind the end of its chunk");
        if (load.isLoaded) CheckLoad(load);
        CheckBlocks(load);
        if (!load.isLoaded) {
            const Damage failure = ExplainLoadFailure(m_path, m_notes);
            Report(failure.offset, failure.text);
        }
        m_found.verdict = m_found.damages.empty() ? Verification::Verdict::Whole : Verification::Verdict::Damaged;
        for (std::vector<Damage>* list : {&m_found.damages, &m_found.notes})
            std::stable_sort(list->begin(), list->end(),
                             [](const Damage& a, const Damage& b) { return a.offset < b.offset; });
        return std::move(m_found);
    }

private:
    // As many as a person may read.
    static void Add(std::vector<Damage>& list, std::int64_t offset, std::string text)
    {
        constexpr std::size_t most = 2000;
        if (list.size() < most) return list.push_back({offset, std::move(text)});
        list.back() = {offset, "and more that are not listed"};
    }
    void Report(std::int64_t offset, std::string text) { Add(m_found.damages, offset, std::move(text)); }
    void Note(std::int64_t offset, std::string text) { Add(m_found.notes, offset, std::move(text)); }
    void Need(const Chunk& list, Role role, const char* code)
    {
        if (list.Find(role) == nullptr) Report(list.offset, CodeText(list.Name()) + " has no " + code);
    }

    void CheckRoot()
    {
        Need(m_root, Role::Version, "VERS");
        Need(m_root, Role::Head, "HEAD");
        Need(m_root, Role::Quantities, "UNIT");
        Need(m_root, Role::Hardware, "HRDI");
        CheckNumbers(m_root, Role::System, "system");
        const auto isLeft = [](const Chunk& c) { return c.role == Role::Comment && c.header.code == FourCC("CMTS"); };
        const auto comment = std::find_if(m_root.children.begin(), m_root.children.end(), isLeft);
        if (comment != m_root.children.end())
            Note(comment->offset, "comments under the code CMTS, which a load doesn't look for");
        CheckType();
    }

    // The branches that the type word names must be there, and those that are there should be named.
    void CheckType()
    {
        const Chunk* head = m_root.Find(Role::Head);
        if (head == nullptr || head->Size() < 8) return;
        const std::uint32_t type = NumberAt(m_bytes, head->data + 4); // behind version and count
        const std::size_t told = NumberAt(m_bytes, head->data + 2) & 0xFFFFU;
        if (const std::size_t systems = Count(m_root, Role::System); told != systems)
            Report(head->offset,
                   "HEAD tells " + Counted(told, "system") + ", and there are " + std::to_string(systems));
        for (const Chunk& system : m_root.children) {
            if (system.role != Role::System) continue;
            CheckBranch(system, Role::Recording, "RCRD", (type & FileType::kRecording) != 0);
            CheckBranch(system, Role::Results, "RESU", (type & (FileType::kResults | FileType::kRecordPreview)) != 0);
            CheckBranch(system, Role::Settings, "CONF", (type & FileType::kSettings) != 0);
            // Systems need not hold these two.
            if ((type & FileType::kTracks) == 0) CheckBranch(system, Role::Transducers, "TRAN", false);
            if ((type & FileType::kReferences) == 0) CheckBranch(system, Role::Reference, "references", false);
        }
        if ((type & FileType::kReferences) != 0 && Count(m_root, Role::Reference) == 0)
            Note(head->offset, "HEAD names references, and there are none");
        const bool previewsAlone = (type & FileType::kRecordPreview) != 0 && (type & FileType::kResults) == 0;
        if (previewsAlone) Note(head->offset, "recording previews alone are not loaded");
    }
    void CheckBranch(const Chunk& system, Role role, const char* code, bool isNamed)
    {
        const bool isThere = system.Find(role) != nullptr;
        if (isNamed && !isThere)
            Report(system.offset, CodeText(system.Name()) + " has no " + code + ", which HEAD names");
        if (!isNamed && isThere)
            Report(system.offset,
                   CodeText(system.Name()) + " holds " + code + ", which HEAD doesn't name: it isn't loaded");
    }

    // Those of a role in a list and the lists inside it.
    static std::size_t Count(const Chunk& list, Role role)
    {
        std::size_t count = 0;
        for (const Chunk& child : list.children) count += (child.role == role ? 1 : 0) + Count(child, role);
        return count;
    }

    // What a load passes over without a failure.
    void CheckLoad(const LoadTrial& load)
    {
        const std::pair<Role, std::pair<const char*, std::size_t>> taken[] = {
            {Role::SettingKey, {"setting", load.settings}},
            {Role::Track, {"track", load.tracks}},
            {Role::Transducer, {"transducer", load.transducers}},
            {Role::Reference, {"reference", load.references}}};
        for (const auto& [role, what] : taken)
            if (const std::size_t there = Count(m_root, role); what.second < there)
                Report(m_root.offset,
                       "a load takes " + std::to_string(what.second) + " of " + Counted(there, what.first));
    }

    // A reading along a reference finds no value for such slices, or another one's.
    void CheckBlocks(const LoadTrial& load)
    {
        for (const BlocksWithoutReference& without : load.withoutReference)
            if (const auto data = m_dataOf.find(without.code); data != m_dataOf.end())
                Note(data->second, std::to_string(without.count) + " of " + Counted(without.slices, "slice") +
                                       " have blocks that a reference holds no value for, the first is block " +
                                       std::to_string(without.first));
    }

    void CheckUnknown(const Chunk& list)
    {
        const Chunk* version = list.Find(Role::Version);
        if (version != nullptr && VersionIn(m_bytes, *version) > NewestVersion(list.role))
            Note(list.offset, CodeText(list.Name()) + " of version " + std::to_string(VersionIn(m_bytes, *version)) +
                                  ": this version knows " + std::to_string(NewestVersion(list.role)));
        if (version != nullptr && version->IsWhole() && VersionIn(m_bytes, *version) != ListVersion(m_bytes, list))
            Report(version->offset, "the version of " + CodeText(list.Name()) + " is damaged");
        for (const Chunk& child : list.children) {
            if (child.role == Role::Unknown)
                Note(child.offset, CodeText(child.Name()) + " is no chunk that this version knows");
            CheckUnknown(child);
        }
    }

    // All but results, which are told apart by their headers.
    void TryRecords()
    {
        RecordTrial trial(m_path, &m_notes);
        trial.TryAll(m_root, [this, &trial](const Chunk& list, std::size_t place, RecordTrial::Fate fate) {
            const Chunk& chunk = list.children[place];
            if (chunk.role == Role::ResultHeader) return;
            const std::string name = CodeText(chunk.Name()) + " in " + CodeText(list.Name());
            if (chunk.role == Role::Module || chunk.role == Role::Submodule)
                Report(chunk.offset, name + " isn't what the identifier in front of it names");
            else if (chunk.role == Role::Bare)
                ReportUnread(trial, chunk,
                             "the fields at the beginning of " + CodeText(list.Name()) + " can't be read");
            else if (chunk.role == Role::Settings)
                ReportUnread(trial, chunk,
                             name + " is loaded in part, up to the first setting that can't be read; the version of "
                                    "the application counts as 0.0");
            else if (chunk.role == Role::SettingKey && fate == RecordTrial::Fate::UnknownKind)
                Report(chunk.offset, "a setting in " + CodeText(list.Name()) +
                                         " is of a kind that isn't known: a load takes no setting behind it");
            else if (chunk.role == Role::SettingKey)
                ReportUnread(trial, chunk, "a setting in " + CodeText(list.Name()) + " can't be read");
            else
                ReportUnread(trial, chunk, name + " can't be read");
        });
    }
    // With the bound that the library met, or else the field that it read last.
    void ReportUnread(RecordTrial& trial, const Chunk& chunk, std::string text)
    {
        const ReadField* last = m_notes.last();
        const bool isInside = last != nullptr && last->offset >= chunk.data && last->offset < chunk.end;
        if (const std::string refusal = trial.TakeRefusal(); !refusal.empty())
            text += ": " + refusal;
        else if (isInside && chunk.role != Role::Settings)
            text += "; the last field that was read is " + std::string(last->name) + " at " + OffsetText(last->offset);
        Report(chunk.offset, text);
    }

    // Numbered chunks are looked for one by one, up to the first that is missing.
    void CheckNumbers(const Chunk& list, Role role, const std::string& what)
    {
        constexpr int systemsBeforeCodesRepeat = 16;
        int expected = 0;
        for (const Chunk& child : list.children) {
            if (child.role != role) continue;
            const std::uint32_t name = child.Name();
            const int number = role == Role::System || role == Role::Disk ? HexNumber(name) : NumberIn(name);
            const bool repeats = expected == systemsBeforeCodesRepeat && number == 1;
            if (number == expected || repeats) {
                ++expected;
            } else if (number < expected) {
                Report(child.offset,
                       "the code " + CodeText(name) + " is there twice, and the first counts, or out of order");
            } else {
                Report(child.offset,
                       what + ' ' + std::to_string(expected) + " is missing: what is behind it isn't loaded");
                expected = number + 1;
            }
        }
    }
    static int HexNumber(std::uint32_t name)
    {
        const char digit = CodeText(name).back();
        return digit >= 'A' ? digit - 'A' + 10 : digit - '0';
    }

    void CheckQuantities()
    {
        const Chunk* list = m_root.Find(Role::Quantities);
        if (list == nullptr) return;
        CheckNumbers(*list, Role::Quantity, "quantity");
        for (const Chunk& child : list->children)
            if (child.role == Role::Quantity) m_quantities.insert(child.header.code);
    }

    void CheckSystem(const Chunk& system)
    {
        Need(system, Role::Version, "VERS");
        for (const Chunk& list : system.children) {
            if (list.role == Role::Results) CheckResults(list);
            if (list.role == Role::Recording) CheckRecording(list);
            if (list.role == Role::Settings) {
                CheckPairs(list);
                CheckBareVersion(system, list);
            }
        }
    }

    // A load takes whatever stands in its place for the version of the application.
    void CheckBareVersion(const Chunk& system, const Chunk& settings)
    {
        const VersionPlace place = PlaceOfVersion(ListVersion(m_bytes, settings));
        const bool isBare = place == VersionPlace::Behind || place == VersionPlace::AtTheEnd;
        const Chunk& holder = place == VersionPlace::AtTheEnd ? settings : system;
        if (isBare && holder.Find(Role::ApplicationVersion) == nullptr)
            Report(settings.offset,
                   "the version of the application that wrote " + CodeText(settings.Name()) + " is damaged or missing");
    }

    void CheckRecording(const Chunk& list)
    {
        CheckNumbers(list, Role::Disk, "disk");
        CheckNumbers(list, Role::Track, "track");
        for (const Chunk& child : list.children) {
            if (child.role == Role::Disk) CheckNumbers(child, Role::DiskFile, "file");
            if (child.role != Role::Track) continue;
            for (const auto code : {FourCC("INFO"), FourCC("LOCA")})
                if (std::none_of(child.children.begin(), child.children.end(),
                                 [code](const Chunk& part) { return part.header.code == code; }))
                    Report(child.offset, "track " + CodeText(child.Name()) + " has no " + CodeText(code));
        }
    }

    // A key stands right in front of what it belongs to.
    void CheckPairs(const Chunk& list)
    {
        for (std::size_t i = 0; i < list.children.size(); ++i) {
            const Chunk& child = list.children[i];
            const Role next = i + 1 < list.children.size() ? list.children[i + 1].role : Role::Unknown;
            if (child.role == Role::SettingKey && next != Role::SettingValue)
                Report(child.offset, "a setting without a value");
            if (child.role == Role::Identifier && next != Role::Module && next != Role::Submodule)
                Report(child.offset, "the identifier of a list that isn't there");
            if (IsList(child.role)) CheckPairs(child);
        }
    }

    void CheckResults(const Chunk& list)
    {
        RecordTrial trial(m_path, &m_notes);
        std::map<std::uint32_t, const Chunk*> data;
        for (const Chunk& child : list.children)
            if (child.role == Role::ResultData && !data.emplace(child.header.code, &child).second)
                Report(child.offset,
                       "the data " + CodeText(child.header.code) + " is there twice, and the first counts");
        std::set<std::uint32_t> named;
        for (const Chunk& header : list.children)
            if (header.role == Role::ResultHeader) CheckResult(trial, header, data, named);
        for (const auto& [code, chunk] : data)
            if (!named.contains(code)) Report(chunk->offset, "the data " + CodeText(code) + " has no header");
    }

    void CheckResult(RecordTrial& trial, const Chunk& header, const std::map<std::uint32_t, const Chunk*>& data,
                     std::set<std::uint32_t>& named)
    {
        const std::string number = "result " + std::to_string(m_found.results++);
        const auto read = trial.ReadHeader(header);
        const bool isAllThere = header.IsWhole() || trial.Position() + trial.Position() % 2 == header.end;
        if (read == nullptr || !isAllThere)
            return ReportUnread(trial, header, "the header of " + number + " can't be read");
        const std::uint32_t code = read->GetChunkId();
        const int place = NumberIn(code);
        if (place > m_nextResult) Note(header.offset, "the numbers of results skip " + std::to_string(m_nextResult));
        m_nextResult = place + 1;
        const auto found = data.find(code);
        if (found == data.end()) return Report(header.offset, number + " has no data " + CodeText(code));
        if (!named.insert(code).second) Report(header.offset, number + " names the data of another result");
        const RecordTrial::Fate fate = trial.TryResult(header, *found->second);
        if (fate == RecordTrial::Fate::Unreadable || !found->second->IsWhole())
            return ReportUnread(trial, *found->second, "the data of " + number + " can't be read");
        if (m_notes.HasLostRecord(header.data, header.end) ||
            m_notes.HasLostRecord(found->second->data, found->second->end))
            return;
        ++m_found.readable;
        m_dataOf.emplace(code, found->second->offset);
        if (fate == RecordTrial::Fate::UnknownKind)
            Note(header.offset, number + " is of a kind that a load passes over");
    }

    void CheckRecords(const FieldNotes::Records& records)
    {
        for (const auto& [offset, fields] : records) {
            if (fields.front().name == ZelmResult::CVectorRef::kRecordName &&
                std::any_of(fields.begin(), fields.end(), std::mem_fn(&ReadField::IsEmptyRecord)))
                Note(offset, "maybe a reference that was hidden when the document was saved: it is counted and not "
                             "stored, so that what stands behind it comes back wrong");
            for (const ReadField& field : fields) {
                if (field.IsLaterRecord())
                    Note(field.offset, std::string(field.name) + " of version " + std::to_string(field.version) +
                                           ": this version knows " + std::to_string(field.newest));
                if (field.IsEmptyRecord())
                    Report(field.offset, std::string(field.name) + " of version 0, of which nothing is read");
                if (field.IsQuantity()) CheckQuantity(field);
            }
        }
    }
    void CheckQuantity(const ReadField& field)
    {
        const std::uint32_t number = NumberAt(m_bytes, field.offset);
        if (number != kNoQuantity && !m_quantities.contains(number))
            Report(field.offset, "the field " + std::string(field.name) + " names the quantity " + CodeText(number) +
                                     ", which isn't there");
    }

    const std::string& m_path;
    std::span<const char> m_bytes;
    const Chunk& m_root;
    std::set<std::uint32_t> m_quantities;
    std::map<std::uint32_t, std::int64_t> m_dataOf; // of readable results
    int m_nextResult = 0;                           // through all systems
    FieldNotes m_notes{FieldNotes::Keep::Telling};
    Verification m_found;
};

} // namespace

Verification Verify(const std::string& path)
{
    const std::vector<char> bytes = ReadBytes(path);
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) return {Verification::Verdict::NoDocument, {}, {}, 0, 0, false};
    return Verifier(path, bytes, tree).Run();
}

} // namespace zmxf
