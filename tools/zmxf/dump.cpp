#include "tools/zmxf/chunks/chunk_tree.h"
#include "tools/zmxf/chunks/field_notes.h"
#include "tools/zmxf/chunks/read_trial.h"
#include "tools/zmxf/failure.h"
#include "tools/zmxf/text.h"
#include "tools/zmxf/verbs.h"

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
    Dump(std::span<const char> bytes, const FieldNotes::Records* fields) : m_bytes(bytes), m_fields(fields) {}

    void Print(const Chunk& chunk, int depth)
    {
        const std::string indent(static_cast<std::size_t>(2 * depth), ' ');
        std::string offset = OffsetText(chunk.offset);
        offset.insert(0, std::max<std::size_t>(offset.size(), 10) - offset.size(), ' ');
        std::cout << offset << "  " << indent << NameOf(chunk) << "  " << SizeText(chunk) << VersionText(chunk)
                  << StateText(chunk.state) << '\n';
        if (m_fields != nullptr && !IsList(chunk.role)) PrintFields(chunk, indent);
        for (const Chunk& child : chunk.children) Print(child, depth + 1);
    }

private:
    static std::string NameOf(const Chunk& chunk)
    {
        if (chunk.role == Role::Bare) return chunk.IsWhole() ? "(bare fields)" : "(no chunk)";
        if (!chunk.header.IsList()) return CodeText(chunk.header.code);
        return CodeText(chunk.header.code) + ' ' + CodeText(chunk.header.form);
    }
    static std::string SizeText(const Chunk& chunk)
    {
        const std::int64_t told = chunk.header.size;
        const std::int64_t there = chunk.end - chunk.offset - (chunk.role == Role::Bare ? 0 : 8);
        if (chunk.role == Role::Bare || told == there) return std::to_string(there);
        return std::to_string(told) + ", there are " + std::to_string(there);
    }
    // What a record begins with; a list holds its own in a chunk.
    [[nodiscard]] std::string VersionText(const Chunk& chunk) const
    {
        const bool hasVersion = !IsList(chunk.role) && chunk.role != Role::Bare && chunk.role != Role::Unknown &&
                                chunk.role != Role::Comment && chunk.role != Role::Identifier &&
                                chunk.role != Role::TransferFunctions && chunk.role != Role::ApplicationVersion;
        return hasVersion && chunk.Size() >= 2 ? "  version " + std::to_string(VersionIn(m_bytes, chunk)) : "";
    }
    void PrintFields(const Chunk& chunk, const std::string& indent) const
    {
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

    std::span<const char> m_bytes;
    const FieldNotes::Records* m_fields;
};

// Reads whatever can be read, for its fields.
void ReadEverything(const std::string& path, const Chunk& root)
{
    if (CanBeLoaded(path)) return;
    ResultTrial trial(path);
    for (const Chunk& system : root.children)
        if (system.role == Role::System)
            for (const Chunk& list : system.children)
                if (list.role == Role::Results)
                    for (std::size_t i = 0; i + 1 < list.children.size(); ++i)
                        if (list.children[i].role == Role::ResultHeader)
                            (void)trial.Try(list.children[i], list.children[i + 1]);
}

void RunDump(const DumpOptions& options)
{
    const std::vector<char> bytes = ReadBytes(options.document);
    const ChunkTree tree = ReadChunkTree(bytes);
    if (!tree.IsResultDocument()) throw Failure(Printable(options.document) + " is no result document");
    std::optional<FieldNotes> notes;
    if (options.fields) {
        notes.emplace();
        ReadEverything(options.document, tree.root);
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
