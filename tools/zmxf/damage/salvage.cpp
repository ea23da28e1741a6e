#include "tools/zmxf/damage/salvage.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/branches.h"
#include "tools/zmxf/damage/byte_file.h"
#include "tools/zmxf/damage/document_rebuild.h"
#include "tools/zmxf/damage/field_notes.h"
#include "tools/zmxf/damage/load_outcome.h"
#include "tools/zmxf/damage/record_probe.h"
#include "zelmresult/results/kinds.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <optional>

namespace zmxf {

namespace {

using Result = SalvagePlan::Result;
using System = SalvagePlan::System;

using ZelmResult::kCodeOfNoQuantity;

class Salvager {
public:
    // Lends the bytes and the tree.
    Salvager(const std::string& path, std::span<const char> bytes, const Chunk& root)
        : m_bytes(bytes), m_root(root), m_source(path, nullptr)
    {
        FindQuantities();
        FindSystems();
        for (System& system : m_plan.systems) FindResults(system);
    }

    // Writes the document, until all that is in it can be read. Throws Failure when nothing helps.
    Salvaged Write(const std::string& path)
    {
        do WriteOnce(path);
        while (Improve(path));
        if (!TryToLoad(path, nullptr).isLoaded) throw Failure("nothing can be salvaged");
        std::vector<std::string>& lost = m_rebuilt.report.lost;
        lost.insert(lost.begin(), m_lost.begin(), m_lost.end());
        return std::move(m_rebuilt.report);
    }

private:
    void WriteOnce(const std::string& path) { m_rebuilt = RebuildDocument(path, m_bytes, m_root, m_plan); }

    void Lose(const Chunk& chunk, const std::string& what)
    {
        m_lost.push_back(fmt::format("at {}: {}", OffsetText(chunk.offset), what));
    }

    // ---- What there is ----

    void FindQuantities()
    {
        for (const Chunk& list : m_root.children)
            if (list.kind == ChunkKind::Quantities)
                for (const Chunk& chunk : list.children)
                    if (chunk.kind == ChunkKind::Quantity) FindQuantity(chunk);
    }
    void FindQuantity(const Chunk& chunk)
    {
        const auto number = NumberOf(chunk.header.code);
        ++m_plan.foundQuantities;
        if (!chunk.IsWhole() || !m_plan.quantities.try_emplace(number, &chunk).second)
            Lose(chunk, fmt::format("quantity {}", number));
    }

    // The contents of a list whose head is lost belong to the system before it, unless that has such branches already.
    void FindSystems()
    {
        for (const Chunk& child : m_root.children) {
            if (child.kind != ChunkKind::System) continue;
            const bool isNew = child.state != Chunk::State::Implied || m_plan.systems.empty() ||
                               BringsAnother(m_plan.systems.back(), child);
            if (isNew && std::cmp_less(m_plan.systems.size(), MostOf(ChunkKind::System))) m_plan.systems.emplace_back();
            m_plan.systems.back().parts.push_back(&child);
        }
    }
    static bool BringsAnother(const System& system, const Chunk& part)
    {
        return std::any_of(std::begin(kBranches), std::end(kBranches), [&](const Branch& branch) {
            const bool isOne = IsList(branch.kind) && branch.kind != ChunkKind::Results; // of its kind in a system
            return isOne && part.Find(branch.kind) != nullptr && !system.All(branch.kind).empty();
        });
    }

    // The data of a system that no header has yet, by code, and where each of them is.
    struct Data {
        using ByCode = std::multimap<std::uint32_t, const Chunk*>;

        ByCode byCode;
        std::map<const Chunk*, ByCode::iterator> places;

        void Add(const Chunk& chunk) { places[&chunk] = byCode.emplace(chunk.header.code, &chunk); }
        [[nodiscard]] bool Holds(const Chunk* chunk) const { return places.contains(chunk); }
        void Take(const Chunk* chunk)
        {
            byCode.erase(places[chunk]);
            places.erase(chunk);
        }
    };

    // Of each header the data directly after it, or else the first of its code that no other header has.
    void FindResults(System& system)
    {
        Data data;
        std::map<const Chunk*, const Chunk*> next;
        for (const Chunk* list : system.All(ChunkKind::Results))
            for (std::size_t i = 0; i < list->children.size(); ++i) {
                const Chunk& chunk = list->children[i];
                if (chunk.kind == ChunkKind::ResultData) data.Add(chunk);
                if (chunk.kind == ChunkKind::ResultHeader && i + 1 < list->children.size())
                    next[&chunk] = &list->children[i + 1];
            }
        std::vector<Result> found;
        std::vector<Result> alone;
        for (const Chunk* list : system.All(ChunkKind::Results))
            for (const Chunk& header : list->children) {
                if (header.kind != ChunkKind::ResultHeader) continue;
                std::optional<Result> result = ReadHeader(header);
                if (!result) continue;
                const Chunk* own = next[&header];
                const bool isOwn = data.Holds(own) && own->header.code == result->code;
                if (isOwn) TakeData(data, *result, own);
                (isOwn ? found : alone).push_back(std::move(*result));
            }
        for (Result& result : alone) {
            const auto named = data.byCode.find(result.code);
            const Chunk* other = named != data.byCode.end() ? named->second : next[result.header];
            if (!data.Holds(other) || (named == data.byCode.end() && !Rename(result, *other))) {
                Lose(*result.header, fmt::format("{}, its data", result.name));
                continue;
            }
            TakeData(data, result, other);
            found.push_back(result);
        }
        std::stable_sort(found.begin(), found.end(),
                         [](const Result& a, const Result& b) { return a.header->offset < b.header->offset; });
        for (Result& result : found) AddResult(system, std::move(result));
        for (const auto& [code, chunk] : data.byCode)
            Lose(*chunk, fmt::format("the data {}, which no header names", CodeText(code)));
    }
    static void TakeData(Data& data, Result& result, const Chunk* chunk)
    {
        result.data = chunk;
        data.Take(chunk);
    }
    // A result without its data; nothing for a header that can't be read.
    std::optional<Result> ReadHeader(const Chunk& header)
    {
        const std::string number = fmt::format("result {}", m_plan.foundResults++);
        const auto read = m_source.ReadHeader(header);
        if (read == nullptr || !IsAllThere(header)) {
            Lose(header, fmt::format("{}, its header", number));
            return std::nullopt;
        }
        std::string name = number;
        if (!read->processCaption().empty())
            name += fmt::format(", {} of {}", Printable(read->processCaption()), Printable(read->responseName()));
        return Result{&header, nullptr, read->GetChunkId(), name,
                      read->GetProcessType() == ZelmResult::ResultKind::kRecordingPreview};
    }
    // Lets a header that names no data name those directly after it, when they can be read as what the header
    // describes.
    bool Rename(Result& result, const Chunk& data)
    {
        if (m_source.TryResult(*result.header, data) != RecordProbe::Outcome::Readable) return false;
        const std::int64_t field = OffsetOfCode(*result.header);
        if (field < 0) return false;
        result.code = data.header.code;
        m_plan.patches[field] = CharactersOf(result.code);
        return true;
    }
    void AddResult(System& system, Result result)
    {
        const bool isRead = m_source.TryResult(*result.header, *result.data) != RecordProbe::Outcome::Unreadable;
        if (!result.data->IsWhole() && !(isRead && IsAllThere(*result.data)))
            return Lose(*result.data, fmt::format("{}, its data", result.name));
        if (!m_codes.insert(result.code).second && !GiveOtherCode(result))
            return Lose(*result.header, fmt::format("{}, whose data has the number of another result", result.name));
        system.results.push_back(std::move(result));
    }
    // Whether a chunk is whole, or only its size isn't true: its record, which was read right now, ends where the next
    // chunk begins.
    [[nodiscard]] bool IsAllThere(const Chunk& chunk) const
    {
        const bool isFollowed = chunk.end < static_cast<std::int64_t>(m_bytes.size());
        return chunk.IsWhole() || (isFollowed && m_source.Position() + m_source.Position() % 2 == chunk.end);
    }
    // A number that no result of the document has, for the header.
    bool GiveOtherCode(Result& result)
    {
        const int last = FactsOf(ChunkKind::ResultData).highest;
        const std::int64_t field = OffsetOfCode(*result.header);
        while (m_nextCode <= last && !m_codes.insert(ChunkCode(ChunkKind::ResultData, m_nextCode)).second) ++m_nextCode;
        if (field < 0 || m_nextCode > last) return false;
        result.code = ChunkCode(ChunkKind::ResultData, m_nextCode);
        m_plan.patches[field] = CharactersOf(result.code);
        return true;
    }
    std::int64_t OffsetOfCode(const Chunk& header)
    {
        FieldNotes notes;
        m_source.Observe(&notes);
        (void)m_source.ReadHeader(header);
        m_source.Observe(nullptr);
        for (const auto& [offset, fields] : notes.records())
            for (const ReadField& field : fields)
                if (field.name == "ChunkId") return field.offset;
        return -1;
    }

    // ---- What of it can be read ----

    // Reads what was written, and gives up what can't be. False when nothing is left to do.
    bool Improve(const std::string& path)
    {
        const std::vector<char> bytes = ReadBytes(path);
        const ChunkTree tree = ReadChunkTree(bytes);
        FieldNotes notes(FieldNotes::Keep::Telling);
        const bool isLoaded = TryToLoad(path, &notes).isLoaded;
        RecordProbe probe(path, &notes);
        std::vector<const Chunk*> unreadable;
        std::vector<const Chunk*> trees; // of settings
        const RecordProbe::Report report = [&](const Chunk& list, std::size_t place, RecordProbe::Outcome outcome) {
            const Chunk& chunk = list.children[place];
            const bool isResult = chunk.kind == ChunkKind::ResultHeader;
            if (chunk.kind == ChunkKind::Settings) return trees.push_back(OriginOf(chunk.offset));
            if (!isResult || outcome == RecordProbe::Outcome::Unreadable) unreadable.push_back(OriginOf(chunk.offset));
        };
        probe.TryAll(tree.root, report);
        for (const auto& [offset, fields] : notes.records())
            if (std::any_of(fields.begin(), fields.end(), std::mem_fn(&ReadField::IsEmptyRecord)))
                unreadable.push_back(OriginOf(offset));
        for (const auto& [offset, end] : notes.ends())
            if (end > EndOfChunkAt(tree.root, offset)) unreadable.push_back(OriginOf(offset));
        std::erase(unreadable, nullptr);
        // A quantity that isn't there fails what names it.
        bool changed = GiveUpQuantities(bytes, unreadable, notes.records());
        for (const auto& [offset, fields] : notes.records())
            for (const ReadField& field : fields) changed |= field.IsQuantity() && MendName(bytes, field);
        if (changed) return true;
        for (const Chunk* chunk : unreadable) changed |= GiveUp(*chunk);
        changed |= GiveUpResults({unreadable.begin(), unreadable.end()});
        if (changed) return true;
        // One of which each part can be read, but not all of it.
        for (const Chunk* settings : trees) changed |= settings != nullptr && GiveUp(*settings);
        return changed || (!isLoaded && GiveUpBranch(path));
    }

    // The chunk of the source that is now around an offset, and where it begins now; null for what was new.
    [[nodiscard]] std::pair<std::int64_t, const Chunk*> PlaceOf(std::int64_t offset) const
    {
        const auto after = m_rebuilt.origins.upper_bound(offset);
        if (after == m_rebuilt.origins.begin()) return {0, nullptr};
        return *std::prev(after);
    }
    [[nodiscard]] const Chunk* OriginOf(std::int64_t offset) const { return PlaceOf(offset).second; }

    // A quantity that names another one that can't be read may be readable without it.
    bool GiveUpQuantities(std::span<const char> bytes, const std::vector<const Chunk*>& unreadable,
                          const FieldNotes::Records& records)
    {
        std::set<const Chunk*> quantities;
        for (const Chunk* chunk : unreadable)
            if (chunk->kind == ChunkKind::Quantity) quantities.insert(chunk);
        std::set<const Chunk*> wait;
        for (const auto& [offset, fields] : records) {
            const Chunk* chunk = OriginOf(offset);
            const bool names = std::any_of(fields.begin(), fields.end(), [&](const ReadField& field) {
                const auto other = m_plan.quantities.find(NumberOf(bytes, field));
                return other != m_plan.quantities.end() && other->second != chunk && quantities.contains(other->second);
            });
            if (names && quantities.contains(chunk)) wait.insert(chunk);
        }
        bool changed = false;
        for (const Chunk* chunk : quantities)
            if (wait.size() == quantities.size() || !wait.contains(chunk)) changed |= GiveUpQuantity(*chunk);
        return changed;
    }
    bool GiveUpQuantity(const Chunk& chunk)
    {
        const auto found = m_plan.quantities.find(NumberOf(chunk.header.code));
        if (found == m_plan.quantities.end() || found->second != &chunk) return false;
        Lose(chunk, fmt::format("quantity {}, which can't be read", found->first));
        m_plan.quantities.erase(found);
        return true;
    }
    // The number of a quantity's code; one that none has for other characters.
    static std::size_t NumberOf(std::uint32_t code)
    {
        const std::optional<int> number = NumberInChunkCode(ChunkKind::Quantity, code);
        return number ? static_cast<std::size_t>(*number) : SIZE_MAX;
    }
    // The number of the quantity that a field names; one that none has for other fields.
    static std::size_t NumberOf(std::span<const char> bytes, const ReadField& field)
    {
        return field.IsQuantity() ? NumberOf(NumberAt(bytes, field.offset)) : SIZE_MAX;
    }
    // Sees to it that a field names a quantity that is there: one that was lost is stood for by a name without a unit.
    // A number far above all others, and what is no number, never was a quantity, so the field names none from now on.
    bool MendName(std::span<const char> bytes, const ReadField& field)
    {
        constexpr std::size_t mostAfter = 20;
        const std::size_t number = NumberOf(bytes, field);
        if (NumberAt(bytes, field.offset) == kCodeOfNoQuantity || number < m_plan.QuantityCount()) return false;
        const std::size_t known = m_plan.quantities.empty() ? 0 : m_plan.quantities.rbegin()->first + 1;
        if (number < known + mostAfter) {
            m_plan.quantityCount = number + 1;
            return true;
        }
        const auto [offset, origin] = PlaceOf(field.offset);
        if (origin == nullptr) return false;
        const std::int64_t header = origin->data - origin->offset; // of bare bytes none
        const std::int64_t place = origin->data + field.offset - offset - header;
        if (place + 4 > origin->end || !m_plan.patches.emplace(place, CharactersOf(kCodeOfNoQuantity)).second)
            return false;
        m_lost.push_back(fmt::format("at {}: the quantity of {}", OffsetText(place), field.name));
        return true;
    }

    bool GiveUp(const Chunk& chunk)
    {
        switch (chunk.kind) {
        case ChunkKind::Quantity: return GiveUpQuantity(chunk);
        case ChunkKind::ResultHeader:
        case ChunkKind::ResultData: return false; // see GiveUpResults
        case ChunkKind::Module:
        case ChunkKind::Submodule: return m_plan.misnamed.insert(&chunk).second || m_plan.givenUp.insert(&chunk).second;
        default: return m_plan.givenUp.insert(&chunk).second;
        }
    }
    bool GiveUpResults(const std::set<const Chunk*>& unreadable)
    {
        bool changed = false;
        for (System& system : m_plan.systems)
            std::erase_if(system.results, [&](const Result& result) {
                if (!unreadable.contains(result.header) && !unreadable.contains(result.data)) return false;
                Lose(*result.data, fmt::format("{}, which can't be read", result.name));
                return changed = true;
            });
        return changed;
    }

    // A branch whose records can be read, but not all of it, is given up for the rest: the one that helps, or else one
    // after the other.
    bool GiveUpBranch(const std::string& path)
    {
        static constexpr std::pair<ChunkKind, const char*> branches[] = {{ChunkKind::Recording, "recordings"},
                                                                         {ChunkKind::Transducers, "transducers"},
                                                                         {ChunkKind::Settings, "settings"},
                                                                         {ChunkKind::Reference, "references"},
                                                                         {ChunkKind::Hardware, "hardware entries"}};
        const std::pair<ChunkKind, const char*>* given = nullptr;
        for (const auto& branch : branches) {
            if (!m_plan.leftOut.insert(branch.first).second) continue;
            if (given == nullptr) given = &branch;
            WriteOnce(path);
            const bool helps = TryToLoad(path, nullptr).isLoaded;
            m_plan.leftOut.erase(branch.first);
            if (!helps) continue;
            given = &branch;
            break;
        }
        if (given == nullptr) return false;
        m_plan.leftOut.insert(given->first);
        m_lost.push_back(fmt::format("the {}, which can't be read", given->second));
        return true;
    }

    std::span<const char> m_bytes;
    const Chunk& m_root;
    RecordProbe m_source;
    SalvagePlan m_plan;
    std::set<std::uint32_t> m_codes; // of data
    int m_nextCode = 0;
    std::vector<std::string> m_lost;
    Rebuilt m_rebuilt;
};

} // namespace

Salvaged Salvage(const std::string& bad, const std::string& good)
{
    CheckOutput(good, bad);
    const std::vector<char> bytes = ReadBytes(bad);
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) throw Failure("{} is no result document", Printable(bad));
    OutputFile output(good);
    Salvaged salvaged = Salvager(bad, bytes, tree.root).Write(output.temporary());
    output.Commit();
    return salvaged;
}

} // namespace zmxf
