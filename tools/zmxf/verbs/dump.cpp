#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/byte_file.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "tools/zmxf/damage/field_notes.h"
#include "tools/zmxf/damage/record_probe.h"
#include "tools/zmxf/verbs/verbs.h"

#include <fmt/format.h>
#include <iostream>
#include <memory>
#include <optional>

namespace zmxf {

namespace {

struct DumpOptions {
    std::string document;
    bool fields = false;
};

std::string StateText(Chunk::State state)
{
    switch (state) {
    case Chunk::State::Open: return "  open";
    case Chunk::State::Cut: return "  damaged";
    case Chunk::State::Implied: return "  its head is lost";
    case Chunk::State::Whole: break;
    }
    return {};
}

class Dump {
public:
    Dump(std::span<const char> bytes, const FieldNotes::Records* fields)
        : m_bytes(bytes), m_fields(fields), m_file(bytes)
    {
    }

    void Print(const Chunk& chunk, int depth)
    {
        const std::string indent(static_cast<std::size_t>(2 * depth), ' ');
        std::cout << fmt::format("{:>10}  {}{}  {}{}{}\n", OffsetText(chunk.offset), indent, NameOf(chunk),
                                 SizeText(chunk), VersionText(chunk), StateText(chunk.state));
        if (m_fields != nullptr && !IsList(chunk.kind)) PrintFields(chunk, indent);
        for (const Chunk& child : chunk.children) Print(child, depth + 1);
    }

private:
    static std::string NameOf(const Chunk& chunk)
    {
        if (chunk.IsBare()) return chunk.IsWhole() ? "(bare fields)" : "(no chunk)";
        if (!chunk.header.IsList()) return CodeText(chunk.header.code);
        return fmt::format("{} {}", CodeText(chunk.header.code), CodeText(chunk.header.form));
    }
    static std::string SizeText(const Chunk& chunk)
    {
        const std::int64_t claimed = chunk.header.size;
        const std::int64_t there = chunk.end - chunk.offset - (chunk.IsBare() ? 0 : 8);
        if (chunk.IsBare() || claimed == there) return std::to_string(there);
        return fmt::format("{}, there are {}", claimed, there);
    }
    // What a record begins with; a list holds its own in a chunk.
    [[nodiscard]] std::string VersionText(const Chunk& chunk) const
    {
        const bool hasVersion = !IsList(chunk.kind) && chunk.kind != ChunkKind::Unknown &&
                                FactsOf(chunk.kind).content != ZelmResult::ChunkContent::Fields;
        return hasVersion && chunk.Size() >= 2 ? fmt::format("  version {}", VersionIn(m_bytes, chunk)) : "";
    }
    void PrintFields(const Chunk& chunk, const std::string& indent)
    {
        PrintBareFields(chunk, indent);
        for (auto record = m_fields->lower_bound(chunk.data); record != m_fields->end() && record->first < chunk.end;
             ++record)
            for (const ReadField& field : record->second) {
                std::cout << "            " << indent
                          << std::string(static_cast<std::size_t>(2 * (field.depth + 1)), ' ') << field.name;
                if (field.form.empty())
                    std::cout << ", version " << field.version << '\n';
                else
                    std::cout << " = " << FieldText(m_bytes, field) << "  (" << field.form << ")\n";
            }
    }

    // Of what is no record: it has no version in front.
    void PrintBareFields(const Chunk& chunk, const std::string& indent)
    {
        const auto print = [&](const char* name, const char* form, std::int64_t offset) {
            if (offset < chunk.end)
                std::cout << "              " << indent << name << " = "
                          << FieldText(m_bytes, {0, name, form, offset, chunk.end, 0, 0}) << "  (" << form << ")\n";
        };
        switch (chunk.kind) {
        case ChunkKind::Identifier: return print("identifier", "identifier", chunk.data);
        case ChunkKind::Comment:
        case ChunkKind::FormerComment: return print("comment", "text", chunk.data);
        case ChunkKind::TransferFunctions: return print("count", "u32", chunk.data);
        case ChunkKind::ApplicationVersion:
            print("major", "u32", chunk.data);
            print("minor", "u32", chunk.data + 4);
            return print("build", "text", chunk.data + 8);
        case ChunkKind::Unknown:
            if (!chunk.IsBare()) return;
            if (!chunk.IsWhole()) return print("bytes", "bytes", chunk.data);
            print("text", "text", chunk.data);
            return print("visible", "flag", m_file.EndOfText(chunk.data));
        default: return;
        }
    }

    std::span<const char> m_bytes;
    const FieldNotes::Records* m_fields;
    ByteFile m_file;
};

void RunDump(const DumpOptions& options)
{
    const std::vector<char> bytes = ReadBytes(options.document);
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) throw Failure("{} is no result document", Printable(options.document));
    std::optional<FieldNotes> notes;
    if (options.fields) {
        notes.emplace();
        RecordProbe(options.document, &*notes).TryAll(tree.root, [](const Chunk&, std::size_t, RecordProbe::Outcome) {
        });
    }
    Dump(bytes, notes ? &notes->records() : nullptr).Print(tree.root, 0);
    for (const Damage& damage : tree.damages)
        std::cout << "At " << OffsetText(damage.offset) << ": " << damage.text << '\n';
}

} // namespace

void AddDumpVerb(CLI::App& program)
{
    auto options = std::make_shared<DumpOptions>();
    CLI::App* verb = program.add_subcommand("dump", "Prints the chunks of a document, for reports of faults");
    verb->add_option("FILE", options->document, "Result document, damaged or not")->required();
    verb->add_flag("--fields", options->fields, "Print the fields of the records too");
    verb->footer("Example:\n  zmxf dump pump.zmxf --fields");
    verb->callback([options] { RunDump(*options); });
}

} // namespace zmxf
