#include "tools/zmxf/damage/verification.h"

#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/branches.h"
#include "tools/zmxf/damage/byte_file.h"
#include "tools/zmxf/damage/field_notes.h"
#include "tools/zmxf/damage/load_failure.h"
#include "tools/zmxf/damage/load_outcome.h"
#include "tools/zmxf/damage/record_probe.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/waterfalls/vector_ref.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <map>
#include <set>

namespace zmxf {

namespace {

namespace FileType = ZelmResult::FileType;
using ZelmResult::VersionTavidePlace;

// The number that the digits of a code make, whatever else is in it; -1 for none.
int NumberInDigits(std::uint32_t code)
{
    int number = -1;
    for (const char c : CharactersOf(code))
        if (c >= '0' && c <= '9') number = std::max(number, 0) * 10 + (c - '0');
    return number;
}

class Verifier {
public:
    Verifier(const std::string& path, std::span<const char> bytes, const ChunkTree& tree)
        : m_path(path), m_bytes(bytes), m_root(tree.root)
    {
        m_found.damages = tree.damages;
    }

    Verification Run() &&
    {
        const LoadOutcome load = TryToLoad(m_path, &m_notes);
        m_found.isLoaded = load.isLoaded;
        CheckRoot();
        CheckQuantities();
        for (const Chunk& child : m_root.children)
            if (child.kind == ChunkKind::System) CheckSystem(child);
        CheckUnknown(m_root);
        TryRecords();
        CheckRecords(m_notes.records());
        for (const auto& [offset, end] : m_notes.ends())
            if (end > EndOfChunkAt(m_root, offset)) Report(offset, "a record exceeds its chunk");
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
    // The children that a list needs; name is what a person calls the list.
    void CheckNeeds(const Chunk& list, const std::string& name)
    {
        for (const ZelmResult::ChunkFacts& facts : ZelmResult::AllChunkFacts())
            if (FactsOf(list.kind).needs.Has(facts.kind) && list.Find(facts.kind) == nullptr)
                Report(list.offset, fmt::format("{} has no {}", name, CodeText(ChunkCode(facts.kind))));
    }

    void CheckRoot()
    {
        CheckNeeds(m_root, CodeText(m_root.Name()));
        CheckNumbers(m_root, ChunkKind::System, "system");
        if (const Chunk* comment = m_root.Find(ChunkKind::Comment); comment != nullptr)
            Note(comment->offset, "comments under the code CMTS, which a load doesn't look for");
        CheckType();
    }

    // The branches that the type word names must be there, and those that are there should be named.
    void CheckType()
    {
        const Chunk* head = m_root.Find(ChunkKind::Head);
        if (head == nullptr || head->Size() < 8) return;
        const std::uint32_t type = NumberAt(m_bytes, head->data + 4); // after version and count
        const std::size_t named = NumberAt(m_bytes, head->data + 2) & 0xFFFFU;
        if (const std::size_t systems = Count(m_root, ChunkKind::System); named != systems)
            Report(head->offset, fmt::format("HEAD names {}, but there are {}", Counted(named, "system"), systems));
        for (const Chunk& system : m_root.children) {
            if (system.kind != ChunkKind::System) continue;
            for (const Branch& branch : kBranches)
                if (branch.isNeeded) CheckBranch(system, branch.kind, (type & branch.bits) != 0);
            for (const Branch& branch : kBranches)
                if (!branch.isNeeded && (type & branch.bits) == 0) CheckBranch(system, branch.kind, false);
        }
        if ((type & FileType::kReferences) != 0 && Count(m_root, ChunkKind::Reference) == 0)
            Note(head->offset, "HEAD names references, and there are none");
        const bool previewsAlone = (type & FileType::kRecordPreview) != 0 && (type & FileType::kResults) == 0;
        if (previewsAlone) Note(head->offset, "recording previews alone are not loaded");
    }
    void CheckBranch(const Chunk& system, ChunkKind kind, bool isNamed)
    {
        const std::string name = kind == ChunkKind::Reference ? "references" : CodeText(ChunkCode(kind));
        const bool isThere = system.Find(kind) != nullptr;
        if (isNamed && !isThere)
            Report(system.offset, fmt::format("{} has no {}, which HEAD names", CodeText(system.Name()), name));
        if (!isNamed && isThere)
            Report(system.offset,
                   fmt::format("{} holds {}, which HEAD doesn't name: it isn't loaded", CodeText(system.Name()), name));
    }

    // Those of a kind in a list and the lists inside it.
    static std::size_t Count(const Chunk& list, ChunkKind kind)
    {
        std::size_t count = 0;
        for (const Chunk& child : list.children) count += (child.kind == kind ? 1 : 0) + Count(child, kind);
        return count;
    }

    // What a load skips without a failure.
    void CheckLoad(const LoadOutcome& load)
    {
        const std::pair<ChunkKind, std::pair<const char*, std::size_t>> taken[] = {
            {ChunkKind::SettingKey, {"setting", load.settings}},
            {ChunkKind::Track, {"track", load.tracks}},
            {ChunkKind::Transducer, {"transducer", load.transducers}},
            {ChunkKind::Reference, {"reference", load.references}}};
        for (const auto& [kind, what] : taken)
            if (const std::size_t there = Count(m_root, kind); what.second < there)
                Report(m_root.offset, fmt::format("a load takes {} of {}", what.second, Counted(there, what.first)));
    }

    // A reading along a reference finds no value for such slices, or another one's.
    void CheckBlocks(const LoadOutcome& load)
    {
        for (const BlocksWithoutReference& without : load.withoutReference)
            if (const auto data = m_dataOf.find(without.code); data != m_dataOf.end())
                Note(data->second,
                     fmt::format("{} of {} have blocks that a reference holds no value for, the first is block {}",
                                 without.count, Counted(without.slices, "slice"), without.first));
    }

    void CheckUnknown(const Chunk& list)
    {
        const Chunk* version = list.Find(ChunkKind::Version);
        if (version != nullptr && VersionIn(m_bytes, *version) > FactsOf(list.kind).version)
            Note(list.offset, fmt::format("{} of version {}: this version knows {}", CodeText(list.Name()),
                                          VersionIn(m_bytes, *version), FactsOf(list.kind).version));
        if (version != nullptr && version->IsWhole() && VersionIn(m_bytes, *version) != ListVersion(m_bytes, list))
            Report(version->offset, fmt::format("the version of {} is damaged", CodeText(list.Name())));
        for (const Chunk& child : list.children) {
            if (child.IsForeign())
                Note(child.offset, fmt::format("{} is no chunk that this version knows", CodeText(child.Name())));
            CheckUnknown(child);
        }
    }

    // All except results, which differ by their headers.
    void TryRecords()
    {
        RecordProbe probe(m_path, &m_notes);
        probe.TryAll(m_root, [this, &probe](const Chunk& list, std::size_t place, RecordProbe::Outcome outcome) {
            const Chunk& chunk = list.children[place];
            if (chunk.kind == ChunkKind::ResultHeader) return;
            const std::string name = fmt::format("{} in {}", CodeText(chunk.Name()), CodeText(list.Name()));
            if (chunk.kind == ChunkKind::Module || chunk.kind == ChunkKind::Submodule)
                Report(chunk.offset, fmt::format("{} isn't what the identifier before it names", name));
            else if (chunk.IsBareBytes())
                ReportUnread(probe, chunk,
                             fmt::format("the fields at the beginning of {} can't be read", CodeText(list.Name())));
            else if (chunk.kind == ChunkKind::Settings)
                ReportUnread(probe, chunk,
                             fmt::format("{} is loaded in part, up to the first setting that can't be read; the "
                                         "version of the application counts as 0.0",
                                         name));
            else if (chunk.kind == ChunkKind::SettingKey && outcome == RecordProbe::Outcome::UnknownKind)
                Report(chunk.offset,
                       fmt::format("a setting in {} is of an unknown kind: a load reads no setting after it",
                                   CodeText(list.Name())));
            else if (chunk.kind == ChunkKind::SettingKey)
                ReportUnread(probe, chunk, fmt::format("a setting in {} can't be read", CodeText(list.Name())));
            else
                ReportUnread(probe, chunk, fmt::format("{} can't be read", name));
        });
    }
    // With the bound that the library met, or else the field that it read last.
    void ReportUnread(RecordProbe& probe, const Chunk& chunk, std::string text)
    {
        const ReadField* last = m_notes.last();
        const bool isInside = last != nullptr && last->offset >= chunk.data && last->offset < chunk.end;
        if (const std::string refusal = probe.TakeRefusal(); !refusal.empty())
            text += fmt::format(": {}", refusal);
        else if (isInside && chunk.kind != ChunkKind::Settings)
            text += fmt::format("; the last field that was read is {} at {}", last->name, OffsetText(last->offset));
        Report(chunk.offset, text);
    }

    // Numbered chunks are looked for one by one, up to the first that is missing.
    void CheckNumbers(const Chunk& list, ChunkKind kind, const std::string& what)
    {
        const ZelmResult::ChunkFacts& facts = FactsOf(kind);
        int expected = 0;
        for (const Chunk& child : list.children) {
            if (child.kind != kind) continue;
            const std::uint32_t name = child.Name();
            const int number = NumberInChunkCode(kind, name).value_or(0);
            // The highest number may have the code of another one.
            const bool isHighest = expected == facts.highest && name == ChunkCode(kind, expected);
            if (number == expected || isHighest) {
                ++expected;
            } else if (number < expected) {
                Report(child.offset, fmt::format("the code {} is there twice, and the first counts, or out of order",
                                                 CodeText(name)));
            } else {
                Report(child.offset, fmt::format("{} {} is missing: what comes after it isn't loaded", what, expected));
                expected = number + 1;
            }
        }
    }

    void CheckQuantities()
    {
        const Chunk* list = m_root.Find(ChunkKind::Quantities);
        if (list == nullptr) return;
        CheckNumbers(*list, ChunkKind::Quantity, "quantity");
        for (const Chunk& child : list->children)
            if (child.kind == ChunkKind::Quantity) m_quantities.insert(child.header.code);
    }

    void CheckSystem(const Chunk& system)
    {
        CheckNeeds(system, CodeText(system.Name()));
        for (const Chunk& list : system.children) {
            if (list.kind == ChunkKind::Results) CheckResults(list);
            if (list.kind == ChunkKind::Recording) CheckRecording(list);
            if (list.kind == ChunkKind::Settings) {
                CheckPairs(list);
                CheckBareVersion(system, list);
            }
        }
    }

    // A load takes whatever is in its place for the version of the application.
    void CheckBareVersion(const Chunk& system, const Chunk& settings)
    {
        const VersionTavidePlace place = ZelmResult::PlaceOfVersionTavide(ListVersion(m_bytes, settings));
        const bool isBare = place == VersionTavidePlace::AfterTheList || place == VersionTavidePlace::AtTheEnd;
        const Chunk& holder = place == VersionTavidePlace::AtTheEnd ? settings : system;
        if (isBare && holder.Find(ChunkKind::ApplicationVersion) == nullptr)
            Report(settings.offset, fmt::format("the version of the application that wrote {} is damaged or missing",
                                                CodeText(settings.Name())));
    }

    void CheckRecording(const Chunk& list)
    {
        CheckNumbers(list, ChunkKind::Disk, "disk");
        CheckNumbers(list, ChunkKind::Track, "track");
        for (const Chunk& child : list.children) {
            if (child.kind == ChunkKind::Disk) CheckNumbers(child, ChunkKind::DiskFile, "file");
            if (child.kind == ChunkKind::Track) CheckNeeds(child, fmt::format("track {}", CodeText(child.Name())));
        }
    }

    // A key comes directly before what it belongs to.
    void CheckPairs(const Chunk& list)
    {
        for (std::size_t i = 0; i < list.children.size(); ++i) {
            const Chunk& child = list.children[i];
            const ChunkKind next = i + 1 < list.children.size() ? list.children[i + 1].kind : ChunkKind::Unknown;
            if (child.kind == ChunkKind::SettingKey && next != ChunkKind::SettingValue)
                Report(child.offset, "a setting without a value");
            if (child.kind == ChunkKind::Identifier && next != ChunkKind::Module && next != ChunkKind::Submodule)
                Report(child.offset, "the identifier of a list that isn't there");
            if (IsList(child.kind)) CheckPairs(child);
        }
    }

    void CheckResults(const Chunk& list)
    {
        RecordProbe probe(m_path, &m_notes);
        std::map<std::uint32_t, const Chunk*> data;
        for (const Chunk& child : list.children)
            if (child.kind == ChunkKind::ResultData && !data.emplace(child.header.code, &child).second)
                Report(child.offset,
                       fmt::format("the data {} is there twice, and the first counts", CodeText(child.header.code)));
        std::set<std::uint32_t> named;
        for (const Chunk& header : list.children)
            if (header.kind == ChunkKind::ResultHeader) CheckResult(probe, header, data, named);
        for (const auto& [code, chunk] : data)
            if (!named.contains(code)) Report(chunk->offset, fmt::format("the data {} has no header", CodeText(code)));
    }

    void CheckResult(RecordProbe& probe, const Chunk& header, const std::map<std::uint32_t, const Chunk*>& data,
                     std::set<std::uint32_t>& named)
    {
        const std::string number = fmt::format("result {}", m_found.results++);
        const auto read = probe.ReadHeader(header);
        const bool isAllThere = header.IsWhole() || probe.Position() + probe.Position() % 2 == header.end;
        if (read == nullptr || !isAllThere)
            return ReportUnread(probe, header, fmt::format("the header of {} can't be read", number));
        const std::uint32_t code = read->GetChunkId();
        const int place = NumberInDigits(code);
        if (place > m_nextResult) Note(header.offset, fmt::format("the numbers of results skip {}", m_nextResult));
        m_nextResult = place + 1;
        const auto found = data.find(code);
        if (found == data.end()) return Report(header.offset, fmt::format("{} has no data {}", number, CodeText(code)));
        if (!named.insert(code).second)
            Report(header.offset, fmt::format("{} names the data of another result", number));
        const RecordProbe::Outcome outcome = probe.TryResult(header, *found->second);
        if (outcome == RecordProbe::Outcome::Unreadable || !found->second->IsWhole())
            return ReportUnread(probe, *found->second, fmt::format("the data of {} can't be read", number));
        if (m_notes.HasLostRecord(header.data, header.end) ||
            m_notes.HasLostRecord(found->second->data, found->second->end))
            return;
        ++m_found.readable;
        m_dataOf.emplace(code, found->second->offset);
        if (outcome == RecordProbe::Outcome::UnknownKind)
            Note(header.offset, fmt::format("{} is of a kind that loads skip", number));
    }

    void CheckRecords(const FieldNotes::Records& records)
    {
        for (const auto& [offset, fields] : records) {
            if (fields.front().name == ZelmResult::CVectorRef::kRecordName &&
                std::any_of(fields.begin(), fields.end(), std::mem_fn(&ReadField::IsEmptyRecord)))
                Note(offset, "maybe a reference that was hidden when the document was saved: it is counted and not "
                             "stored, so that what follows is loaded wrong");
            for (const ReadField& field : fields) {
                if (field.IsLaterRecord())
                    Note(field.offset, fmt::format("{} of version {}: this version knows {}", field.name, field.version,
                                                   field.newest));
                if (field.IsEmptyRecord())
                    Report(field.offset, fmt::format("{} of version 0, of which nothing is read", field.name));
                if (field.IsQuantity()) CheckQuantity(field);
            }
        }
    }
    void CheckQuantity(const ReadField& field)
    {
        const std::uint32_t number = NumberAt(m_bytes, field.offset);
        if (number != ZelmResult::kCodeOfNoQuantity && !m_quantities.contains(number))
            Report(field.offset,
                   fmt::format("the field {} names the quantity {}, which isn't there", field.name, CodeText(number)));
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

const char* NameOf(Verification::Verdict verdict)
{
    switch (verdict) {
    case Verification::Verdict::Whole: return "whole";
    case Verification::Verdict::Damaged: return "damaged";
    case Verification::Verdict::NoDocument: break;
    }
    return "no result document";
}

Verification Verify(const std::string& path) { return VerifyBytes(ReadBytes(path), path); }

Verification VerifyBytes(std::span<const char> bytes, const std::string& path)
{
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) return {Verification::Verdict::NoDocument, {}, {}, 0, 0, false};
    return Verifier(path, bytes, tree).Run();
}

} // namespace zmxf
