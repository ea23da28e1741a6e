#include "tools/zmxf/damage/document_rebuild.h"

#include "zelmresult/document/file_header.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/text.h"

#include <algorithm>

namespace zmxf {

namespace {

using ZelmResult::FourCC;
namespace FileType = ZelmResult::FileType;
using System = SalvagePlan::System;

// The branches of systems besides results, with their bits of the type word.
constexpr std::pair<Role, std::uint32_t> kBranches[] = {{Role::Recording, FileType::kRecording},
                                                        {Role::Settings, FileType::kSettings},
                                                        {Role::Transducers, FileType::kTracks},
                                                        {Role::Reference, FileType::kReferences}};

// The seventeenth system and disk have the code of the second.
std::uint32_t HexNumberedCode(const char* prefix, std::size_t number)
{
    const std::string digit(1, "0123456789ABCDEF1"[std::min<std::size_t>(number, 16)]);
    return ZelmResult::StringToFourCC(ZelmResult::FromUtf8(prefix + digit), false);
}

// The number of a node of settings that the identifier in front of it holds, when it is a short one.
int ShortNumber(std::span<const char> bytes, const Chunk& identifier, Role node)
{
    constexpr std::int64_t size = 6;
    constexpr std::uint32_t last = 999;
    if (identifier.Size() != size) return -1;
    const std::uint32_t numbers = NumberAt(bytes, identifier.data);
    const std::uint32_t number = node == Role::Module ? numbers & 0xFFFFU : numbers >> 16U;
    return number <= last ? static_cast<int>(number) : -1;
}

class Rebuilder {
public:
    Rebuilder(const std::string& path, std::span<const char> bytes, const Chunk& root, const SalvagePlan& plan)
        : m_bytes(bytes), m_root(root), m_plan(plan), m_writer(path, bytes, plan.patches)
    {
        m_type = Type();
    }

    Rebuilt Write() &&
    {
        m_writer.List(
            FourCC("ZMXF"), &m_root, [&] { WriteRoot(); }, ZelmResult::OMMIO_CREATERIFF);
        m_writer.Need(m_writer.file().Close());
        for (const auto& [what, count] : m_counts)
            if (count.found != 0) m_report.counts.push_back({what, count.kept, count.found});
        return {std::move(m_report), m_writer.origins()};
    }

private:
    struct Count {
        std::size_t kept = 0;
        std::size_t found = 0;
    };

    void Keep(const char* what, bool kept)
    {
        Count& count = m_counts[what];
        ++count.found;
        if (kept) ++count.kept;
    }
    void Lose(const Chunk& chunk, const std::string& place)
    {
        const std::string name =
            chunk.IsBare() ? Counted(static_cast<std::size_t>(chunk.Size()), "byte") : CodeText(chunk.Name());
        m_report.lost.push_back("at " + OffsetText(chunk.offset) + ": " + name + " in " + place +
                                (m_plan.givenUp.contains(&chunk) ? ", which can't be read" : ""));
    }

    // ---- The whole ----

    // Whether anything of a branch will be written, besides empty lists.
    [[nodiscard]] bool Holds(Role role) const
    {
        const auto isWritten = [this](const Chunk& child) {
            return child.role != Role::Version && child.role != Role::Identifier && child.role != Role::Bare &&
                   IsWorthIt(child);
        };
        return !m_plan.leftOut.contains(role) &&
               std::any_of(m_plan.systems.begin(), m_plan.systems.end(), [&](const System& system) {
                   const auto found = system.All(role);
                   if (role == Role::Reference)
                       return std::any_of(found.begin(), found.end(),
                                          [this](const Chunk* chunk) { return m_plan.IsKept(*chunk); });
                   return !found.empty() &&
                          std::any_of(found.front()->children.begin(), found.front()->children.end(), isWritten);
               });
    }
    [[nodiscard]] std::uint32_t Type() const
    {
        std::uint32_t type = 0;
        for (const System& system : m_plan.systems)
            for (const SalvagePlan::Result& result : system.results)
                type |= result.isPreview ? FileType::kRecordPreview : FileType::kResults;
        if (m_plan.QuantityCount() != 0) type |= FileType::kQuantities;
        for (const auto& [role, bit] : kBranches)
            if (Holds(role)) type |= bit;
        return type | NamedBranches();
    }
    // What the head names stays named where it is there: a branch may be empty. References may be missing.
    [[nodiscard]] std::uint32_t NamedBranches() const
    {
        const Chunk* head = m_root.Find(Role::Head);
        if (head == nullptr || !m_plan.IsKept(*head) || head->Size() < 8) return 0;
        const std::uint32_t told = NumberAt(m_bytes, head->data + 4); // behind version and count
        std::uint32_t named = 0;
        for (const auto& [branch, bit] : kBranches) {
            const Role role = branch; // bindings can't be captured by every compiler
            const bool isThere = std::any_of(m_plan.systems.begin(), m_plan.systems.end(),
                                             [role](const System& system) { return !system.All(role).empty(); });
            if ((isThere || role == Role::Reference) && !m_plan.leftOut.contains(role)) named |= told & bit;
        }
        return named;
    }

    void WriteRoot()
    {
        m_counts["quantities"] = {m_plan.quantities.size(), m_plan.foundQuantities};
        m_counts["results"].found = m_plan.foundResults;
        m_writer.Version(&m_root, 0x200);
        ZelmResult::FileHeader head;
        head.SetSystemeNumber(static_cast<std::int16_t>(m_plan.systems.size()));
        head.SetType(m_type);
        m_writer.Need(ZelmResult::FileHeaderMmioReaderWriter().Write(m_writer.Anew(), head));
        (void)CopyRecords(Role::Project, nullptr);
        WriteQuantities();
        for (std::size_t i = 0; i < m_plan.systems.size(); ++i) {
            const System& system = m_plan.systems[i];
            m_writer.List(HexNumberedCode("SYS", i), system.parts.front(), [&] { WriteSystem(system); });
        }
        (void)CopyRecords(Role::Comment, "comments");
        if (!CopyRecords(Role::Hardware, nullptr))
            m_writer.Need(ZelmResult::CHardInfoMmioReaderWriter().Write(m_writer.Anew(), ZelmResult::CHardInfo()));
        CopyUnknown(m_root, "ZMXF");
    }

    // what counts them, unless it is null.
    bool CopyRecords(Role role, const char* what)
    {
        bool any = false;
        for (const Chunk& chunk : m_root.children) {
            if (chunk.role != role) continue;
            const bool kept = m_plan.IsKept(chunk) && !m_plan.leftOut.contains(role);
            if (kept)
                m_writer.Copy(chunk);
            else
                Lose(chunk, "ZMXF");
            any = any || kept;
            if (what != nullptr) Keep(what, kept);
        }
        return any;
    }
    // Chunks that a later version may know.
    void CopyUnknown(const Chunk& list, const char* name)
    {
        for (const Chunk& chunk : list.children) {
            if (chunk.role != Role::Unknown && chunk.role != Role::Bare) continue;
            if (chunk.role == Role::Unknown && chunk.IsWhole() && !chunk.header.IsList())
                m_writer.Copy(chunk);
            else
                Lose(chunk, name);
        }
    }
    void LoseUnknown(const Chunk& list, const char* name)
    {
        for (const Chunk& chunk : list.children)
            if (chunk.role == Role::Unknown || chunk.role == Role::Bare) Lose(chunk, name);
    }

    // A quantity that is lost leaves one without a unit, so that those behind it are found, and what names it.
    void WriteQuantities()
    {
        m_writer.List(FourCC("UNIT"), m_root.Find(Role::Quantities), [&] {
            m_writer.Version(m_root.Find(Role::Quantities), 0x100);
            for (std::size_t number = 0; number < m_plan.QuantityCount(); ++number) {
                const std::uint32_t code = NumberedCode("", 4, number);
                if (const auto found = m_plan.quantities.find(number); found != m_plan.quantities.end()) {
                    m_writer.Copy(*found->second, code);
                    continue;
                }
                ZelmResult::CGrandeurFichier placeholder({}, code);
                placeholder.SetNomGrandeur(ZelmResult::FromUtf8("Lost quantity " + std::to_string(number)));
                placeholder.SetChunkId(code);
                m_writer.Need(ZelmResult::CGrandeurMmioReaderWriter().Write(m_writer.Anew(), placeholder));
                m_report.lost.push_back("quantity " + std::to_string(number) + " stays as a name without a unit");
            }
        });
        for (const Chunk& list : m_root.children)
            if (list.role == Role::Quantities) LoseUnknown(list, "UNIT");
    }

    // ---- Systems ----

    void WriteSystem(const System& system)
    {
        m_writer.Version(system.parts.front(), 0x200);
        if ((m_type & FileType::kRecording) != 0) WriteBranch(system, Role::Recording, FourCC("RCRD"));
        if ((m_type & (FileType::kResults | FileType::kRecordPreview)) != 0) WriteResults(system);
        if ((m_type & FileType::kReferences) != 0)
            for (const Chunk* reference : system.All(Role::Reference)) {
                const bool kept = m_plan.IsKept(*reference);
                Keep("references", kept);
                if (kept)
                    m_writer.Copy(*reference);
                else
                    Lose(*reference, "a system");
            }
        if ((m_type & FileType::kSettings) != 0) WriteBranch(system, Role::Settings, FourCC("CONF"));
        if ((m_type & FileType::kTracks) != 0) WriteBranch(system, Role::Transducers, FourCC("TRAN"));
        for (const Chunk* part : system.parts) CopyUnknown(*part, "a system");
    }

    void WriteResults(const System& system)
    {
        m_counts["results"].kept += system.results.size();
        const auto lists = system.All(Role::Results);
        const Chunk* first = lists.empty() ? nullptr : lists.front();
        m_writer.List(FourCC("RESU"), first, [&] {
            m_writer.Version(first, 0x100);
            for (const SalvagePlan::Result& result : system.results) {
                m_writer.Copy(*result.header);
                m_writer.Copy(*result.data, result.code);
            }
        });
        for (const Chunk* list : lists) LoseUnknown(*list, "RESU");
    }

    // A branch that another system has can't be missing here: then it holds its version alone.
    void WriteBranch(const System& system, Role role, std::uint32_t form)
    {
        const auto lists = system.All(role);
        const bool isGivenUp = !lists.empty() && m_plan.givenUp.contains(lists.front());
        if (isGivenUp) LoseSettings(*lists.front());
        if (isGivenUp) Lose(*lists.front(), "a system");
        if (!lists.empty() && !isGivenUp) {
            WriteList(*lists.front(), form);
            if (VersionPlaceIn(*lists.front()) == VersionPlace::Behind) WriteBareVersion(BehindSettings(system));
        } else {
            m_writer.List(form, nullptr,
                          [&] { m_writer.Need(m_writer.Anew().WriteChunkVersion(NewestVersion(role))); });
        }
        for (std::size_t i = 1; i < lists.size(); ++i) Lose(*lists[i], "a system, which has one");
    }

    // The whole children of a list, and of lists inside it; numbers that must be without gaps are given anew.
    void WriteList(const Chunk& list, std::uint32_t form)
    {
        m_writer.List(form, &list, [&] {
            m_writer.Version(&list, NewestVersion(list.role));
            if (HasBareFields(list.role)) WriteBareFields(list);
            std::map<Role, std::size_t> numbers;
            for (std::size_t i = 0; i < list.children.size(); ++i) {
                const Chunk& child = list.children[i];
                const Chunk* next = i + 1 < list.children.size() ? &list.children[i + 1] : nullptr;
                if (child.role == Role::Version || (child.role == Role::Bare && m_plan.IsKept(child))) continue;
                if (child.role == Role::ApplicationVersion && child.IsBare()) continue;
                if (child.role == Role::SettingKey)
                    i += WriteSetting(child, next, form) ? 1 : 0;
                else if (child.role == Role::Identifier && next != nullptr && HasBareFields(next->role))
                    WriteNode(&child, list.children[++i], form);
                else if (HasBareFields(child.role))
                    WriteNode(nullptr, child, form);
                else
                    WriteChild(child, form, numbers);
            }
            if (VersionPlaceIn(list) == VersionPlace::AtTheEnd) WriteBareVersion(list.Find(Role::ApplicationVersion));
        });
    }

    [[nodiscard]] VersionPlace VersionPlaceIn(const Chunk& list) const
    {
        return list.role == Role::Settings ? PlaceOfVersion(ListVersion(m_bytes, list)) : VersionPlace::None;
    }
    // Null without one.
    static const Chunk* BehindSettings(const System& system)
    {
        const auto found = system.All(Role::ApplicationVersion);
        return found.empty() ? nullptr : found.front();
    }
    // A load takes what stands in its place for one: zeros where it is lost. version may be null.
    void WriteBareVersion(const Chunk* version)
    {
        if (version != nullptr && m_plan.IsKept(*version)) return m_writer.CopyBare(*version);
        ZelmResult::CMmioFile& file = m_writer.Anew();
        m_writer.Need(file.mmioWrite_ulong(0) && file.mmioWrite_ulong(0) && file.WriteCString({}));
        m_report.lost.emplace_back("the version of the application that wrote the settings");
    }

    // Those of a node whose own are lost: no text, and visible.
    void WriteBareFields(const Chunk& node)
    {
        const Chunk* bare = node.Find(Role::Bare);
        if (bare != nullptr && m_plan.IsKept(*bare)) return m_writer.CopyBare(*bare);
        const bool hasFlag = HasFlag(node.role, node.header.form, ListVersion(m_bytes, node));
        m_writer.Need(m_writer.Anew().WriteCString({}) && (!hasFlag || m_writer.file().mmioWriteBool(true)));
    }
    // Whether next is the value of the key.
    bool WriteSetting(const Chunk& key, const Chunk* next, std::uint32_t form)
    {
        const bool isPair = next != nullptr && next->role == Role::SettingValue;
        const bool kept = isPair && m_plan.IsKept(key) && m_plan.IsKept(*next);
        Keep("settings", kept);
        if (!kept) {
            Lose(isPair ? *next : key, CodeText(form));
            return isPair;
        }
        m_writer.Copy(key);
        m_writer.Copy(*next);
        return true;
    }
    // A list of settings that lost its identifier gets the one that its code tells, and the other way round.
    void WriteNode(const Chunk* identifier, const Chunk& node, std::uint32_t form)
    {
        const bool isNamed = identifier != nullptr && m_plan.IsKept(*identifier);
        const bool isMisnamed = isNamed && m_plan.misnamed.contains(&node);
        const int number = isNamed ? ShortNumber(m_bytes, *identifier, node.role) : NumberIn(node.header.form);
        const bool kept = !m_plan.givenUp.contains(&node) && (number >= 0 || (isNamed && !isMisnamed));
        if (!kept) {
            LoseSettings(node);
            return Lose(node, CodeText(form));
        }
        if (isNamed)
            m_writer.Copy(*identifier);
        else
            WriteIdentifier(node.role, static_cast<std::uint16_t>(number), form);
        const char* prefix = node.role == Role::Module ? "M" : "S";
        WriteList(node, isMisnamed ? NumberedCode(prefix, 0, static_cast<std::size_t>(number)) : node.header.form);
    }
    void WriteIdentifier(Role node, std::uint16_t number, std::uint32_t form)
    {
        const auto module = node == Role::Module ? number : static_cast<std::uint16_t>(std::max(NumberIn(form), 0));
        const idn::Legacy identifier(module, node == Role::Module ? std::uint16_t{0} : number, 0);
        m_writer.Need(m_writer.Anew().WriteChunkIDN(identifier.toIdn()));
    }
    void LoseSettings(const Chunk& node)
    {
        for (const Chunk& child : node.children) {
            if (child.role == Role::SettingKey) Keep("settings", false);
            LoseSettings(child);
        }
    }

    void WriteChild(const Chunk& child, std::uint32_t form, std::map<Role, std::size_t>& numbers)
    {
        const bool kept = IsWorthIt(child);
        if (child.role == Role::Track) Keep("tracks", kept);
        if (child.role == Role::Transducer) Keep("transducers", kept);
        if (!kept && child.role == Role::TransferFunctions) WriteNoTransferFunctions();
        if (!kept) {
            LoseSettings(child);
            return Lose(child, CodeText(form));
        }
        const std::size_t number = numbers[child.role]++;
        if (child.role == Role::Disk) return WriteList(child, HexNumberedCode("DSK", number));
        if (child.role == Role::Track) return WriteList(child, NumberedCode("T", 3, number));
        if (child.role == Role::DiskFile) return m_writer.Copy(child, NumberedCode("I", 3, number));
        if (IsList(child.role)) return WriteList(child, child.header.form);
        m_writer.Copy(child);
    }
    // A module that may hold some has the chunk in any case.
    void WriteNoTransferFunctions()
    {
        ZelmResult::OMMCKINFO chunk;
        m_writer.Need(m_writer.Anew().CreateChunkWaterfallFRF(chunk) && m_writer.file().mmioWrite_ulong(0) &&
                      m_writer.file().ExitChunk(chunk));
    }

    // A list goes with what it can't be read without.
    [[nodiscard]] bool IsWorthIt(const Chunk& child) const
    {
        if (m_plan.givenUp.contains(&child)) return false;
        if (child.role == Role::Disk) return HasPart(child, FourCC("IDSK"));
        if (child.role == Role::Track) return HasPart(child, FourCC("INFO")) && HasPart(child, FourCC("LOCA"));
        if (child.role == Role::SettingValue || child.role == Role::Identifier)
            return false; // without what stands in front of it, or behind
        if (child.role == Role::Unknown && child.header.IsList()) return false;
        return IsList(child.role) || child.IsWhole();
    }
    [[nodiscard]] bool HasPart(const Chunk& list, std::uint32_t code) const
    {
        return std::any_of(list.children.begin(), list.children.end(),
                           [&](const Chunk& part) { return part.header.code == code && m_plan.IsKept(part); });
    }

    std::span<const char> m_bytes;
    const Chunk& m_root;
    const SalvagePlan& m_plan;
    ChunkWriter m_writer;
    std::uint32_t m_type = 0;
    Salvaged m_report;
    std::map<std::string, Count> m_counts;
};

} // namespace

std::uint32_t NumberedCode(const char* prefix, std::size_t digits, std::size_t number)
{
    std::string text = std::to_string(number);
    text.insert(0, digits > text.size() ? digits - text.size() : 0, '0');
    return ZelmResult::StringToFourCC(ZelmResult::FromUtf8(prefix + text), false);
}

Rebuilt RebuildDocument(const std::string& path, std::span<const char> bytes, const Chunk& root,
                        const SalvagePlan& plan)
{
    return Rebuilder(path, bytes, root, plan).Write();
}

} // namespace zmxf
