#include "tools/zmxf/chunks/salvage.h"

#include "tools/zmxf/chunks/chunk_tree.h"
#include "tools/zmxf/chunks/chunk_writer.h"
#include "tools/zmxf/chunks/field_notes.h"
#include "tools/zmxf/chunks/read_trial.h"
#include "zelmresult/document/file_header.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <map>
#include <set>

namespace zmxf {

namespace {

using ZelmResult::FourCC;
namespace FileType = ZelmResult::FileType;

constexpr std::uint32_t kRecordingPreview = 191;
constexpr std::size_t kMostSystems = 17; // that have codes

std::uint32_t NumberedCode(const char* prefix, std::size_t digits, std::size_t number)
{
    std::string text = std::to_string(number);
    text.insert(0, digits > text.size() ? digits - text.size() : 0, '0');
    return ZelmResult::StringToFourCC(ZelmResult::FromUtf8(prefix + text), false);
}

std::uint32_t HexNumberedCode(const char* prefix, std::size_t number)
{
    const std::string digit(1, "0123456789ABCDEF"[number % 16]);
    return ZelmResult::StringToFourCC(ZelmResult::FromUtf8(prefix + digit), false);
}

// A result of which header and data are whole.
struct WholeResult {
    const Chunk* header;
    const Chunk* data;
    std::string name;
    bool isPreview;
};

// A system as it goes into the new document: what stood in lists of a lost head counts for the one in front.
struct System {
    std::vector<const Chunk*> parts; // lists of systems
    std::vector<WholeResult> results;

    [[nodiscard]] std::vector<const Chunk*> All(Role role) const
    {
        std::vector<const Chunk*> found;
        for (const Chunk* part : parts)
            for (const Chunk& child : part->children)
                if (child.role == role) found.push_back(&child);
        return found;
    }
};

class Salvager {
public:
    // Lends the bytes and the tree.
    Salvager(const std::string& path, std::span<const char> bytes, const Chunk& root)
        : m_bytes(bytes), m_root(root), m_source(path)
    {
        FindQuantities();
        for (const Chunk& child : root.children) {
            if (child.role != Role::System) continue;
            const bool isNew = child.state != Chunk::State::Implied || m_systems.empty();
            if (isNew && m_systems.size() < kMostSystems) m_systems.emplace_back();
            m_systems.back().parts.push_back(&child);
        }
        for (System& system : m_systems) FindResults(system);
    }

    // Writes the document, until all that is in it can be read. Throws Failure when nothing helps.
    Salvaged Write(const std::string& path)
    {
        do WriteOnce(path);
        while (Improve(path));
        if (!CanBeLoaded(path)) throw Failure("nothing can be salvaged");
        for (const auto& [what, count] : m_counts)
            if (count.found != 0) m_report.counts.push_back({what, count.kept, count.found});
        m_report.lost.insert(m_report.lost.begin(), m_lost.begin(), m_lost.end());
        return std::move(m_report);
    }

private:
    struct Count {
        std::size_t kept = 0;
        std::size_t found = 0;
    };

    void WriteOnce(const std::string& path)
    {
        m_report = {};
        m_counts.clear();
        m_type = Type();
        ChunkWriter writer(path, m_bytes);
        writer.List(
            FourCC("ZMXF"), [&] { WriteRoot(writer); }, ZelmResult::OMMIO_CREATERIFF);
        writer.Need(writer.file().Close());
    }

    // ---- What there is ----

    void FindQuantities()
    {
        for (const Chunk& list : m_root.children)
            if (list.role == Role::Quantities)
                for (const Chunk& chunk : list.children)
                    if (chunk.role == Role::Quantity) FindQuantity(chunk);
    }
    void FindQuantity(const Chunk& chunk)
    {
        const auto number = static_cast<std::size_t>(NumberIn(chunk.header.code));
        ++m_foundQuantities;
        if (!chunk.IsWhole() || !m_quantities.try_emplace(number, &chunk).second)
            Lose(chunk, "quantity " + std::to_string(number));
    }

    void FindResults(System& system)
    {
        std::map<std::uint32_t, const Chunk*> data;
        for (const Chunk* list : system.All(Role::Results))
            for (const Chunk& chunk : list->children)
                if (chunk.role == Role::ResultData && chunk.IsWhole()) data.try_emplace(chunk.header.code, &chunk);
        for (const Chunk* list : system.All(Role::Results))
            for (const Chunk& header : list->children)
                if (header.role == Role::ResultHeader) FindResult(system, header, data);
    }
    void FindResult(System& system, const Chunk& header, const std::map<std::uint32_t, const Chunk*>& data)
    {
        const std::string name = "result " + std::to_string(m_foundResults++);
        const auto read = header.IsWhole() ? m_source.ReadHeader(header) : nullptr;
        if (read == nullptr) return Lose(header, name + ", its header");
        std::string fullName = name;
        if (!read->processCaption().empty())
            fullName += ", " + Printable(read->processCaption()) + " of " + Printable(read->responseName());
        const auto found = data.find(read->GetChunkId());
        if (found == data.end()) return Lose(header, fullName + ", its data");
        system.results.push_back({&header, found->second, fullName, read->GetProcessType() == kRecordingPreview});
    }

    void Lose(const Chunk& chunk, const std::string& what)
    {
        constexpr std::size_t most = 10000; // lines that a person may read
        if (m_lost.size() < most) m_lost.push_back("at " + OffsetText(chunk.offset) + ": " + what);
    }
    void Keep(const char* what, bool kept)
    {
        Count& count = m_counts[what];
        ++count.found;
        if (kept) ++count.kept;
    }

    // ---- What of it can be read ----

    // Reads what was written, and gives up what can't be. False when nothing is left to do.
    bool Improve(const std::string& path)
    {
        const std::vector<char> bytes = ReadBytes(path);
        const ChunkTree tree = ReadChunkTree(bytes);
        const FieldNotes notes;
        const bool isLoaded = CanBeLoaded(path);
        ResultTrial trial(path);
        bool changed = false;
        if (const Chunk* list = tree.root.Find(Role::Quantities); list != nullptr)
            for (const Chunk& chunk : list->children)
                if (chunk.role == Role::Quantity &&
                    (!trial.IsQuantity(chunk) || notes.HasEmptyRecord(chunk.data, chunk.end)))
                    changed |= GiveUpQuantity(chunk);
        const std::vector<Unreadable> unreadable = TryResults(tree.root, trial, notes);
        // A quantity that isn't there fails what names it.
        changed |= AddPlaceholders(bytes, notes.records());
        if (changed) return true;
        for (const auto& [system, result] : unreadable) GiveUpResult(*system, result);
        if (!unreadable.empty() || isLoaded) return !unreadable.empty();
        return GiveUpBranch(path);
    }

    using Unreadable = std::pair<System*, std::size_t>; // the last first
    std::vector<Unreadable> TryResults(const Chunk& root, ResultTrial& trial, const FieldNotes& notes)
    {
        std::vector<Unreadable> unreadable;
        std::size_t number = 0;
        for (const Chunk& system : root.children) {
            if (system.role != Role::System || number == m_systems.size()) continue;
            System& written = m_systems[number++];
            const Chunk* list = system.Find(Role::Results);
            std::size_t result = 0;
            for (std::size_t i = 0; list != nullptr && i + 1 < list->children.size(); ++i) {
                if (list->children[i].role != Role::ResultHeader || result == written.results.size()) continue;
                const Chunk& data = list->children[i + 1];
                if (trial.Try(list->children[i], data) == ResultTrial::Fate::Unreadable ||
                    notes.HasEmptyRecord(data.data, data.end))
                    unreadable.emplace(unreadable.begin(), &written, result);
                ++result;
            }
        }
        return unreadable;
    }

    bool GiveUpQuantity(const Chunk& chunk)
    {
        const auto found = m_quantities.find(static_cast<std::size_t>(NumberIn(chunk.header.code)));
        if (found == m_quantities.end()) return false;
        Lose(*found->second, "quantity " + std::to_string(found->first) + ", which can't be read");
        m_quantities.erase(found);
        return true;
    }
    void GiveUpResult(System& system, std::size_t result)
    {
        const auto place = system.results.begin() + static_cast<std::ptrdiff_t>(result);
        Lose(*place->data, place->name + ", which can't be read");
        system.results.erase(place);
    }
    bool AddPlaceholders(std::span<const char> bytes, const FieldNotes::Records& records)
    {
        bool changed = false;
        for (const auto& [offset, fields] : records)
            for (const ReadField& field : fields) {
                const std::string code = field.form == "quantity" ? FieldText(bytes, field) : std::string();
                if (code.size() != 4 || code == "9999" || code.find_first_not_of("0123456789") != std::string::npos)
                    continue;
                const auto number = static_cast<std::size_t>(std::stoi(code));
                if (number >= QuantityCount()) {
                    m_quantityCount = number + 1;
                    changed = true;
                }
            }
        return changed;
    }
    // A branch that can't be read as a whole is given up for the rest: the one that helps, or else one after the other.
    bool GiveUpBranch(const std::string& path)
    {
        static constexpr std::pair<Role, const char*> branches[] = {{Role::Recording, "recordings"},
                                                                    {Role::Transducers, "transducers"},
                                                                    {Role::Settings, "settings"},
                                                                    {Role::Reference, "references"},
                                                                    {Role::Hardware, "hardware entries"}};
        const auto* first = std::end(branches);
        const auto* helps = std::end(branches);
        for (const auto* branch = std::begin(branches); branch != std::end(branches) && helps == std::end(branches);
             ++branch) {
            if (m_leftOut.contains(branch->first) || (!Holds(branch->first) && branch->first != Role::Hardware))
                continue;
            if (first == std::end(branches)) first = branch;
            m_leftOut.insert(branch->first);
            WriteOnce(path);
            if (CanBeLoaded(path)) helps = branch;
            m_leftOut.erase(branch->first);
        }
        const auto* given = helps != std::end(branches) ? helps : first;
        if (given == std::end(branches)) return false;
        m_leftOut.insert(given->first);
        m_lost.push_back(std::string("the ") + given->second + ", which can't be read");
        return true;
    }

    // ---- What is written ----

    [[nodiscard]] bool Holds(Role role) const
    {
        return !m_leftOut.contains(role) &&
               std::any_of(m_systems.begin(), m_systems.end(), [role](const System& system) {
                   const auto lists = system.All(role);
                   return std::any_of(lists.begin(), lists.end(), [](const Chunk* list) {
                       return !IsList(list->role) || list->children.size() > 1; // more than a version
                   });
               });
    }
    [[nodiscard]] std::uint32_t Type() const
    {
        std::uint32_t type = 0;
        for (const System& system : m_systems)
            for (const WholeResult& result : system.results)
                type |= result.isPreview ? FileType::kRecordPreview : FileType::kResults;
        if (QuantityCount() != 0) type |= FileType::kQuantities;
        if (Holds(Role::Recording)) type |= FileType::kRecording;
        if (Holds(Role::Settings)) type |= FileType::kSettings;
        if (Holds(Role::Transducers)) type |= FileType::kTracks;
        if (Holds(Role::Reference)) type |= FileType::kReferences;
        return type;
    }

    void WriteRoot(ChunkWriter& writer)
    {
        writer.Version(&m_root, 0x200);
        ZelmResult::FileHeader head;
        head.SetSystemeNumber(static_cast<std::int16_t>(m_systems.size()));
        head.SetType(m_type);
        writer.Need(ZelmResult::FileHeaderMmioReaderWriter().Write(writer.file(), head));
        CopyWhole(writer, Role::Project, nullptr);
        WriteQuantities(writer);
        for (std::size_t i = 0; i < m_systems.size(); ++i)
            writer.List(HexNumberedCode("SYS", i), [&] { WriteSystem(writer, m_systems[i]); });
        CopyWhole(writer, Role::Comment, "comments");
        if (!CopyWhole(writer, Role::Hardware, nullptr))
            writer.Need(ZelmResult::CHardInfoMmioReaderWriter().Write(writer.file(), ZelmResult::CHardInfo()));
    }

    bool CopyWhole(ChunkWriter& writer, Role role, const char* what)
    {
        bool any = false;
        for (const Chunk& chunk : m_root.children) {
            if (chunk.role != role || m_leftOut.contains(role)) continue;
            if (chunk.IsWhole()) writer.Copy(chunk);
            any = any || chunk.IsWhole();
            if (what != nullptr) Keep(what, chunk.IsWhole());
        }
        return any;
    }

    // As many as are there or named.
    [[nodiscard]] std::size_t QuantityCount() const
    {
        return std::max(m_quantityCount, m_quantities.empty() ? 0 : m_quantities.rbegin()->first + 1);
    }
    // A quantity that is lost leaves one without a unit, so that those behind it are found, and what names it.
    void WriteQuantities(ChunkWriter& writer)
    {
        m_counts["quantities"] = {m_quantities.size(), m_foundQuantities};
        writer.List(FourCC("UNIT"), [&] {
            writer.Version(m_root.Find(Role::Quantities), 0x100);
            for (std::size_t number = 0; number < QuantityCount(); ++number) {
                const std::uint32_t code = NumberedCode("", 4, number);
                if (const auto found = m_quantities.find(number); found != m_quantities.end()) {
                    writer.Copy(*found->second, code);
                    continue;
                }
                ZelmResult::CGrandeurFichier placeholder({}, code);
                placeholder.SetNomGrandeur(ZelmResult::FromUtf8("Lost quantity " + std::to_string(number)));
                placeholder.SetChunkId(code);
                writer.Need(ZelmResult::CGrandeurMmioReaderWriter().Write(writer.file(), placeholder));
                m_report.lost.push_back("quantity " + std::to_string(number) + " stays as a name without a unit");
            }
        });
    }

    void WriteSystem(ChunkWriter& writer, const System& system)
    {
        const std::uint32_t type = m_type;
        writer.Version(system.parts.front(), 0x200);
        if ((type & FileType::kRecording) != 0) WriteBranch(writer, system, Role::Recording, FourCC("RCRD"), 0x100);
        if ((type & (FileType::kResults | FileType::kRecordPreview)) != 0) WriteResults(writer, system);
        if ((type & FileType::kReferences) != 0)
            for (const Chunk* reference : system.All(Role::Reference)) {
                Keep("references", reference->IsWhole());
                if (reference->IsWhole()) writer.Copy(*reference);
            }
        if ((type & FileType::kSettings) != 0) WriteBranch(writer, system, Role::Settings, FourCC("CONF"), 0x401);
        if ((type & FileType::kTracks) != 0) WriteBranch(writer, system, Role::Transducers, FourCC("TRAN"), 0x100);
    }

    void WriteResults(ChunkWriter& writer, const System& system)
    {
        m_counts["results"].found = m_foundResults;
        m_counts["results"].kept += system.results.size();
        const auto lists = system.All(Role::Results);
        writer.List(FourCC("RESU"), [&] {
            writer.Version(lists.empty() ? nullptr : lists.front(), 0x100);
            for (const WholeResult& result : system.results) {
                writer.Copy(*result.header);
                writer.Copy(*result.data);
            }
        });
    }

    // A branch that another system has can't be missing here: then it holds its version alone.
    void WriteBranch(ChunkWriter& writer, const System& system, Role role, std::uint32_t form, std::uint16_t version)
    {
        const auto lists = system.All(role);
        if (!lists.empty())
            Rebuild(writer, *lists.front(), form);
        else
            writer.List(form, [&] { writer.Need(writer.file().WriteChunkVersion(version)); });
    }

    // The whole children of a list, and of lists inside it; numbers that must be without gaps are given anew.
    void Rebuild(ChunkWriter& writer, const Chunk& list, std::uint32_t form)
    {
        writer.List(form, [&] {
            if (list.Find(Role::Version) == nullptr) writer.Version(nullptr, 0x100);
            std::map<Role, std::size_t> numbers;
            for (std::size_t i = 0; i < list.children.size(); ++i) {
                const Chunk& child = list.children[i];
                const Chunk* next = i + 1 < list.children.size() ? &list.children[i + 1] : nullptr;
                const bool kept = IsWorthIt(child, next);
                if (const char* what = CountedAs(child.role); what != nullptr) Keep(what, kept);
                if (!kept) {
                    if (child.role != Role::Bare || !child.IsWhole())
                        m_report.lost.push_back("at " + OffsetText(child.offset) + ": " + CodeText(child.Name()) +
                                                " in " + CodeText(form));
                    continue;
                }
                WriteChild(writer, child, numbers[child.role]++);
            }
        });
    }
    void WriteChild(ChunkWriter& writer, const Chunk& child, std::size_t number)
    {
        if (child.role == Role::Bare) return writer.CopyBytes(child);
        if (child.role == Role::Disk) return Rebuild(writer, child, HexNumberedCode("DSK", number));
        if (child.role == Role::Track) return Rebuild(writer, child, NumberedCode("T", 3, number));
        if (child.role == Role::DiskFile) return writer.Copy(child, NumberedCode("I", 3, number));
        if (IsList(child.role)) return Rebuild(writer, child, child.header.form);
        writer.Copy(child);
    }
    static const char* CountedAs(Role role)
    {
        if (role == Role::Track) return "tracks";
        if (role == Role::SettingValue) return "settings";
        return role == Role::Transducer ? "transducers" : nullptr;
    }

    // A key goes with what it belongs to, and a list with what it can't be read without.
    static bool IsWorthIt(const Chunk& child, const Chunk* next)
    {
        if (child.role == Role::SettingKey)
            return child.IsWhole() && next != nullptr && next->role == Role::SettingValue && next->IsWhole();
        if (child.role == Role::Identifier)
            return child.IsWhole() && next != nullptr && IsList(next->role) && IsWorthIt(*next, nullptr);
        if (HasBareFields(child.role)) return child.Find(Role::Version) != nullptr && child.Find(Role::Bare) != nullptr;
        if (child.role == Role::Disk) return child.Find(Role::DiskCounts) != nullptr;
        if (child.role == Role::Track) return HasPart(child, FourCC("INFO")) && HasPart(child, FourCC("LOCA"));
        return IsList(child.role) || child.IsWhole();
    }
    static bool HasPart(const Chunk& track, std::uint32_t code)
    {
        return std::any_of(track.children.begin(), track.children.end(),
                           [code](const Chunk& part) { return part.header.code == code && part.IsWhole(); });
    }

    std::span<const char> m_bytes;
    const Chunk& m_root;
    ResultTrial m_source;
    std::map<std::size_t, const Chunk*> m_quantities; // by number
    std::vector<System> m_systems;
    std::size_t m_quantityCount = 0; // at least
    std::size_t m_foundQuantities = 0;
    std::size_t m_foundResults = 0;
    std::vector<std::string> m_lost;

    Salvaged m_report;
    std::uint32_t m_type = 0;
    std::set<Role> m_leftOut;
    std::map<std::string, Count> m_counts;
};

} // namespace

Salvaged Salvage(const std::string& bad, const std::string& good)
{
    CheckOutput(good, bad);
    const std::vector<char> bytes = ReadBytes(bad);
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) throw Failure(Printable(bad) + " is no result document");
    OutputFile output(good);
    Salvaged salvaged = Salvager(bad, bytes, tree.root).Write(output.temporary());
    output.Commit();
    return salvaged;
}

} // namespace zmxf
