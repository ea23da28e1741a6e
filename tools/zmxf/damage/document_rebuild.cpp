#include "tools/zmxf/damage/document_rebuild.h"

#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/branches.h"
#include "tools/zmxf/damage/byte_file.h"
#include "zelmresult/document/hard_info.h"
#include "zelmresult/quantities/grandeur.h"
#include "zelmresult/settings/config_data.h"
#include "zelmresult/support/idn.h"
#include "zelmresult/support/text.h"

#include <algorithm>
#include <fmt/format.h>
#include <functional>
#include <optional>
#include <utility>

namespace zmxf {

namespace {

using ZelmResult::ChunkFacts;
using ZelmResult::VersionTavidePlace;
namespace FileType = ZelmResult::FileType;
using System = SalvagePlan::System;

std::uint32_t NumberedCode(ChunkKind kind, std::size_t number) { return ChunkCode(kind, static_cast<int>(number)); }

// The number of a node of settings that the identifier before it holds, when it is a short one.
std::optional<int> ShortNumber(std::span<const char> bytes, const Chunk& identifier, ChunkKind node)
{
    constexpr std::int64_t size = 6;
    if (identifier.Size() != size) return std::nullopt;
    const std::uint32_t numbers = NumberAt(bytes, identifier.data);
    const std::uint32_t number = node == ChunkKind::Module ? numbers & 0xFFFFU : numbers >> 16U;
    return std::cmp_less(number, MostOf(node)) ? std::optional(static_cast<int>(number)) : std::nullopt;
}

// The kinds in a document and its systems that are written one by one. Others are copied.
bool IsRebuilt(ChunkKind kind)
{
    constexpr ZelmResult::ChunkKinds others{
        ChunkKind::Version,       ChunkKind::Head,     ChunkKind::Project,
        ChunkKind::Quantities,    ChunkKind::System,   ChunkKind::Comment,
        ChunkKind::FormerComment, ChunkKind::Hardware, ChunkKind::ApplicationVersion};
    return IsBranch(kind) || others.Has(kind);
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
            m_root.Name(), &m_root, [&] { WriteRoot(); }, ZelmResult::OMMIO_CREATERIFF);
        m_writer.Check(m_writer.file().Close());
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
        m_report.lost.push_back(fmt::format("at {}: {} in {}{}", OffsetText(chunk.offset), name, place,
                                            m_plan.givenUp.contains(&chunk) ? ", which can't be read" : ""));
    }

    // ---- The whole ----

    // Whether anything of a branch will be written, besides empty lists.
    [[nodiscard]] bool Holds(ChunkKind kind) const
    {
        const auto isWritten = [this](const Chunk& child) {
            return child.kind != ChunkKind::Version && child.kind != ChunkKind::Identifier && !child.IsBareBytes() &&
                   IsWorthIt(child);
        };
        return !m_plan.leftOut.contains(kind) &&
               std::any_of(m_plan.systems.begin(), m_plan.systems.end(), [&](const System& system) {
                   const auto found = system.All(kind);
                   if (kind == ChunkKind::Reference)
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
        for (const Branch& branch : kBranches)
            if (branch.kind != ChunkKind::Results && Holds(branch.kind)) type |= branch.bits;
        return type | NamedBranches();
    }
    // What the head names stays named where it is there: a branch may be empty. References may be missing.
    [[nodiscard]] std::uint32_t NamedBranches() const
    {
        const Chunk* head = m_root.Find(ChunkKind::Head);
        if (head == nullptr || !m_plan.IsKept(*head) || head->Size() < 8) return 0;
        std::uint32_t bits = 0;
        for (const Branch& branch : kBranches) {
            const ChunkKind kind = branch.kind;
            if (kind == ChunkKind::Results || m_plan.leftOut.contains(kind)) continue;
            const bool isThere = std::any_of(m_plan.systems.begin(), m_plan.systems.end(),
                                             [kind](const System& system) { return !system.All(kind).empty(); });
            if (isThere || kind == ChunkKind::Reference) bits |= branch.bits;
        }
        return bits & NumberAt(m_bytes, head->data + 4); // after version and count
    }

    void WriteRoot()
    {
        m_counts["quantities"] = {m_plan.quantities.size(), m_plan.foundQuantities};
        m_counts["results"].found = m_plan.foundResults;
        m_writer.Version(&m_root, FactsOf(ChunkKind::Document).version);
        ZelmResult::FileHeader head;
        head.SetSystemeNumber(static_cast<std::int16_t>(m_plan.systems.size()));
        head.SetType(m_type);
        m_writer.Check(ZelmResult::FileHeaderMmioReaderWriter().Write(m_writer.NewChunk(), head));
        (void)CopyRecords({ChunkKind::Project}, nullptr);
        WriteQuantities();
        for (std::size_t i = 0; i < m_plan.systems.size(); ++i) {
            const System& system = m_plan.systems[i];
            m_writer.List(NumberedCode(ChunkKind::System, i), system.parts.front(), [&] { WriteSystem(system); });
        }
        (void)CopyRecords({ChunkKind::Comment, ChunkKind::FormerComment}, "comments");
        if (!CopyRecords({ChunkKind::Hardware}, nullptr))
            m_writer.Check(ZelmResult::CHardInfoMmioReaderWriter().Write(m_writer.NewChunk(), ZelmResult::CHardInfo()));
        CopyOthers(m_root, CodeText(m_root.Name()));
    }

    // what counts them, unless it is null.
    bool CopyRecords(ZelmResult::ChunkKinds kinds, const char* what)
    {
        bool any = false;
        for (const Chunk& chunk : m_root.children) {
            if (!kinds.Has(chunk.kind)) continue;
            const bool kept = m_plan.IsKept(chunk) && !m_plan.leftOut.contains(chunk.kind);
            if (kept)
                m_writer.Copy(chunk);
            else
                Lose(chunk, CodeText(m_root.Name()));
            any = any || kept;
            if (what != nullptr) Keep(what, kept);
        }
        return any;
    }
    // Chunks that a later version may know, and those of kinds that have no writer here.
    void CopyOthers(const Chunk& list, const std::string& name)
    {
        for (const Chunk& chunk : list.children) {
            if (IsRebuilt(chunk.kind)) continue;
            const bool isLegal = chunk.IsForeign() || chunk.kind != ChunkKind::Unknown;
            if (isLegal && chunk.IsWhole() && !chunk.header.IsList())
                m_writer.Copy(chunk);
            else
                Lose(chunk, name);
        }
    }
    void LoseUnknown(const Chunk& list)
    {
        for (const Chunk& chunk : list.children)
            if (chunk.kind == ChunkKind::Unknown) Lose(chunk, CodeText(list.Name()));
    }

    // A quantity that is lost leaves one without a unit, so that those after it are found, and what names it.
    void WriteQuantities()
    {
        const Chunk* former = m_root.Find(ChunkKind::Quantities);
        m_writer.List(ChunkCode(ChunkKind::Quantities), former, [&] {
            m_writer.Version(former, FactsOf(ChunkKind::Quantities).version);
            for (std::size_t number = 0; number < m_plan.QuantityCount(); ++number) {
                const std::uint32_t code = NumberedCode(ChunkKind::Quantity, number);
                if (const auto found = m_plan.quantities.find(number); found != m_plan.quantities.end()) {
                    m_writer.Copy(*found->second, code);
                    continue;
                }
                ZelmResult::CGrandeurFichier placeholder({}, code);
                placeholder.SetNomGrandeur(ZelmResult::FromUtf8(fmt::format("Lost quantity {}", number)));
                placeholder.SetChunkId(code);
                m_writer.Check(ZelmResult::CGrandeurMmioReaderWriter().Write(m_writer.NewChunk(), placeholder));
                m_report.lost.push_back(fmt::format("quantity {} stays as a name without a unit", number));
            }
        });
        for (const Chunk& list : m_root.children)
            if (list.kind == ChunkKind::Quantities) LoseUnknown(list);
    }

    // ---- Systems ----

    void WriteSystem(const System& system)
    {
        m_writer.Version(system.parts.front(), FactsOf(ChunkKind::System).version);
        if ((m_type & FileType::kRecording) != 0) WriteBranch(system, ChunkKind::Recording);
        if ((m_type & (FileType::kResults | FileType::kRecordPreview)) != 0) WriteResults(system);
        if ((m_type & FileType::kReferences) != 0)
            for (const Chunk* reference : system.All(ChunkKind::Reference)) {
                const bool kept = m_plan.IsKept(*reference);
                Keep("references", kept);
                if (kept)
                    m_writer.Copy(*reference);
                else
                    Lose(*reference, "a system");
            }
        if ((m_type & FileType::kSettings) != 0) WriteBranch(system, ChunkKind::Settings);
        if ((m_type & FileType::kTracks) != 0) WriteBranch(system, ChunkKind::Transducers);
        for (const Chunk* part : system.parts) CopyOthers(*part, "a system");
    }

    void WriteResults(const System& system)
    {
        m_counts["results"].kept += system.results.size();
        const auto lists = system.All(ChunkKind::Results);
        const Chunk* first = lists.empty() ? nullptr : lists.front();
        m_writer.List(ChunkCode(ChunkKind::Results), first, [&] {
            m_writer.Version(first, FactsOf(ChunkKind::Results).version);
            for (const SalvagePlan::Result& result : system.results) {
                m_writer.Copy(*result.header);
                m_writer.Copy(*result.data, result.code);
            }
        });
        for (const Chunk* list : lists) LoseUnknown(*list);
    }

    // A branch that another system has can't be missing here: then it holds its version alone.
    void WriteBranch(const System& system, ChunkKind kind)
    {
        const std::uint32_t form = ChunkCode(kind);
        const auto lists = system.All(kind);
        const bool isGivenUp = !lists.empty() && m_plan.givenUp.contains(lists.front());
        if (isGivenUp) LoseSettings(*lists.front());
        if (isGivenUp) Lose(*lists.front(), "a system");
        if (!lists.empty() && !isGivenUp) {
            WriteList(*lists.front(), form);
            if (VersionPlaceIn(*lists.front()) == VersionTavidePlace::AfterTheList)
                WriteBareVersion(AfterSettings(system));
        } else {
            m_writer.List(form, nullptr,
                          [&] { m_writer.Check(m_writer.NewChunk().WriteChunkVersion(FactsOf(kind).version)); });
        }
        for (std::size_t i = 1; i < lists.size(); ++i) Lose(*lists[i], "a system, which has one");
    }

    // The whole children of a list, and of lists inside it; numbers that must be without gaps are given again.
    void WriteList(const Chunk& list, std::uint32_t form)
    {
        m_writer.List(form, &list, [&] {
            m_writer.Version(&list, FactsOf(list.kind).version);
            if (IsNode(list.kind)) WriteBareFields(list);
            std::map<ChunkKind, std::size_t> numbers;
            for (std::size_t i = 0; i < list.children.size(); ++i) {
                const Chunk& child = list.children[i];
                const Chunk* next = i + 1 < list.children.size() ? &list.children[i + 1] : nullptr;
                if (child.kind == ChunkKind::Version || (child.IsBareBytes() && m_plan.IsKept(child))) continue;
                if (child.kind == ChunkKind::ApplicationVersion && child.IsBare()) continue;
                if (child.kind == ChunkKind::SettingKey)
                    i += WriteSetting(child, next, form) ? 1 : 0;
                else if (child.kind == ChunkKind::Identifier && next != nullptr && IsNode(next->kind))
                    WriteNode(&child, list.children[++i], form);
                else if (IsNode(child.kind))
                    WriteNode(nullptr, child, form);
                else
                    WriteChild(child, form, numbers);
            }
            if (VersionPlaceIn(list) == VersionTavidePlace::AtTheEnd)
                WriteBareVersion(list.Find(ChunkKind::ApplicationVersion));
        });
    }

    [[nodiscard]] VersionTavidePlace VersionPlaceIn(const Chunk& list) const
    {
        return list.kind == ChunkKind::Settings ? ZelmResult::PlaceOfVersionTavide(ListVersion(m_bytes, list))
                                                : VersionTavidePlace::Nowhere;
    }
    // Null without one.
    static const Chunk* AfterSettings(const System& system)
    {
        const auto found = system.All(ChunkKind::ApplicationVersion);
        return found.empty() ? nullptr : found.front();
    }
    // A load takes what is in its place for one: zeros where it is lost. version may be null.
    void WriteBareVersion(const Chunk* version)
    {
        if (version != nullptr && m_plan.IsKept(*version)) return m_writer.CopyBare(*version);
        m_writer.Check(WriteVersionTavide(m_writer.NewChunk(), {}));
        m_report.lost.emplace_back("the version of the application that wrote the settings");
    }

    // Those of a node whose own are lost: no text, and visible.
    void WriteBareFields(const Chunk& node)
    {
        const auto bare = std::find_if(node.children.begin(), node.children.end(), std::mem_fn(&Chunk::IsBareBytes));
        if (bare != node.children.end() && m_plan.IsKept(*bare)) return m_writer.CopyBare(*bare);
        const bool hasFlag = HoldsVisible(node, ListVersion(m_bytes, node));
        m_writer.Check(m_writer.NewChunk().WriteCString({}) && (!hasFlag || m_writer.file().mmioWriteBool(true)));
    }
    // Whether next is the value of the key.
    bool WriteSetting(const Chunk& key, const Chunk* next, std::uint32_t form)
    {
        const bool isPair = next != nullptr && next->kind == ChunkKind::SettingValue;
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
    // A list of settings that lost its identifier gets the one that its code names, and the other way round.
    void WriteNode(const Chunk* identifier, const Chunk& node, std::uint32_t form)
    {
        const bool isNamed = identifier != nullptr && m_plan.IsKept(*identifier);
        const bool isMisnamed = isNamed && m_plan.misnamed.contains(&node);
        const std::optional<int> number =
            isNamed ? ShortNumber(m_bytes, *identifier, node.kind) : NumberInChunkCode(node.kind, node.Name());
        const bool kept = !m_plan.givenUp.contains(&node) && (number || (isNamed && !isMisnamed));
        if (!kept) {
            LoseSettings(node);
            return Lose(node, CodeText(form));
        }
        if (isNamed)
            m_writer.Copy(*identifier);
        else
            WriteIdentifier(node.kind, *number, form);
        WriteList(node, isMisnamed ? ChunkCode(node.kind, *number) : node.Name());
    }
    // form is the type of the list that the node is in: of a submodule it is its module's.
    void WriteIdentifier(ChunkKind node, int number, std::uint32_t form)
    {
        const bool isModule = node == ChunkKind::Module;
        const int module = isModule ? number : NumberInChunkCode(ChunkKind::Module, form).value_or(0);
        const idn::Legacy identifier(static_cast<std::uint16_t>(module),
                                     static_cast<std::uint16_t>(isModule ? 0 : number), 0);
        m_writer.Check(m_writer.NewChunk().WriteChunkIDN(identifier.toIdn()));
    }
    void LoseSettings(const Chunk& node)
    {
        for (const Chunk& child : node.children) {
            if (child.kind == ChunkKind::SettingKey) Keep("settings", false);
            LoseSettings(child);
        }
    }

    void WriteChild(const Chunk& child, std::uint32_t form, std::map<ChunkKind, std::size_t>& numbers)
    {
        const bool kept = IsWorthIt(child);
        if (child.kind == ChunkKind::Track) Keep("tracks", kept);
        if (child.kind == ChunkKind::Transducer) Keep("transducers", kept);
        if (!kept && child.kind == ChunkKind::TransferFunctions) WriteNoTransferFunctions();
        if (!kept) {
            LoseSettings(child);
            return Lose(child, CodeText(form));
        }
        const std::size_t number = numbers[child.kind]++;
        if (child.kind == ChunkKind::Disk || child.kind == ChunkKind::Track)
            return WriteList(child, NumberedCode(child.kind, number));
        if (child.kind == ChunkKind::DiskFile) return m_writer.Copy(child, NumberedCode(child.kind, number));
        if (IsList(child.kind)) return WriteList(child, child.header.form);
        m_writer.Copy(child);
    }
    // A module that may hold some has the chunk in any case.
    void WriteNoTransferFunctions()
    {
        ZelmResult::OMMCKINFO chunk;
        m_writer.Check(m_writer.NewChunk().CreateChunkWaterfallFRF(chunk) && m_writer.file().mmioWrite_ulong(0) &&
                       m_writer.file().ExitChunk(chunk));
    }

    // A list goes with what it can't be read without.
    [[nodiscard]] bool IsWorthIt(const Chunk& child) const
    {
        if (m_plan.givenUp.contains(&child)) return false;
        for (const ChunkFacts& facts : ZelmResult::AllChunkFacts()) {
            const bool isNeeded = FactsOf(child.kind).needs.Has(facts.kind) && facts.kind != ChunkKind::Version;
            if (isNeeded && !HasPart(child, facts.kind)) return false; // versions are written again
        }
        if (child.kind == ChunkKind::SettingValue || child.kind == ChunkKind::Identifier)
            return false; // without what comes before it, or after it
        if (child.kind == ChunkKind::Unknown && child.header.IsList()) return false;
        return IsList(child.kind) || child.IsWhole();
    }
    [[nodiscard]] bool HasPart(const Chunk& list, ChunkKind kind) const
    {
        return std::any_of(list.children.begin(), list.children.end(),
                           [&](const Chunk& part) { return part.kind == kind && m_plan.IsKept(part); });
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

Rebuilt RebuildDocument(const std::string& path, std::span<const char> bytes, const Chunk& root,
                        const SalvagePlan& plan)
{
    return Rebuilder(path, bytes, root, plan).Write();
}

} // namespace zmxf
