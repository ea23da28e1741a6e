#include "tools/zmxf/viewer/carried_document.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "zelmresult/reading/document_reader.h"

#include <algorithm>
#include <cstring>
#include <fmt/format.h>
#include <set>
#include <utility>

namespace zmxf {

namespace {

using ZelmResult::ChunkPlace;

// Bytes from one offset to before another.
using Range = std::pair<std::int64_t, std::int64_t>;

// A result that may be left out.
struct Candidate {
    std::size_t document = 0;
    std::size_t number = 0;
    std::string title;
    std::vector<Range> chunks;

    [[nodiscard]] std::int64_t Bytes() const
    {
        std::int64_t bytes = 0;
        for (const auto& [first, end] : chunks) bytes += end - first;
        return bytes;
    }
};

Range RangeOf(const ChunkPlace& place)
{
    constexpr std::int64_t header = 8;
    return {place.offset, place.offset + header + place.size + place.size % 2};
}

std::string Megabytes(std::int64_t bytes) { return fmt::format("{:.1f} MB", static_cast<double>(bytes) / 1e6); }

ChunkTree TreeOf(const CarriedDocument& document, const std::string& path)
{
    if (document.bytes.empty()) throw Failure("cannot read {}: it is empty", Printable(path));
    ChunkTree tree = ReadChunkTree(document.bytes);
    if (!tree.IsResultDocument()) throw Failure("cannot read {}: not a result document", Printable(path));
    return tree;
}

// Those of a document whose chunks are all where they should be.
void AddCandidates(const CarriedDocument& document, std::size_t index, std::vector<Candidate>& candidates)
{
    auto reader = ZelmResult::DocumentReader::OpenBytes(document.bytes);
    if (!reader || reader->CutOff()) return;
    const auto& results = reader->Results();
    for (std::size_t number = 0; number < results.items.size(); ++number) {
        const ZelmResult::ListedResult& listed = results.items[number];
        if (!listed.data.IsThere()) continue;
        candidates.push_back({index,
                              number,
                              fmt::format("result {}, {} of {}", number, Printable(listed.header->processCaption()),
                                          Printable(listed.header->responseName())),
                              {RangeOf(listed.headerChunk), RangeOf(listed.data)}});
    }
}

// Takes what is cut off the sizes of the lists around it.
void ShrinkLists(const Chunk& list, const std::set<Range>& cuts, std::vector<char>& bytes)
{
    if (!list.header.IsList()) return;
    std::uint32_t gone = 0;
    for (auto cut = cuts.lower_bound({list.data, 0}); cut != cuts.end() && cut->first < list.end; ++cut)
        gone += static_cast<std::uint32_t>(cut->second - cut->first);
    if (gone == 0) return;
    const std::uint32_t size = list.header.size - gone;
    std::memcpy(bytes.data() + list.offset + 4, &size, sizeof size);
    for (const Chunk& child : list.children) ShrinkLists(child, cuts, bytes);
}

void Cut(const std::set<Range>& cuts, const ChunkTree& tree, std::vector<char>& bytes)
{
    ShrinkLists(tree.root, cuts, bytes);
    auto kept = bytes.begin();
    auto next = bytes.cbegin();
    for (const auto& [first, end] : cuts) {
        kept = std::copy(next, bytes.cbegin() + first, kept);
        next = bytes.cbegin() + end;
    }
    bytes.erase(std::copy(next, bytes.cend(), kept), bytes.end());
}

// "Left out: result 3, Autospectrum of Channel 1 (12.1 MB); 2 more (1.1 MB)."
std::string NoteOf(const std::vector<Candidate>& left, std::int64_t most)
{
    constexpr std::size_t mostNamed = 10;
    std::vector<std::string> parts;
    std::int64_t others = 0;
    for (std::size_t i = 0; i < left.size(); ++i) {
        if (i < mostNamed)
            parts.push_back(fmt::format("{} ({})", left[i].title, Megabytes(left[i].Bytes())));
        else
            others += left[i].Bytes();
    }
    if (left.size() > mostNamed)
        parts.push_back(fmt::format("{} more ({})", left.size() - mostNamed, Megabytes(others)));
    return fmt::format(
        "Left out, since a page carries no more than {}: {}. The results that are left count from 0 again.",
        Megabytes(most), fmt::join(parts, "; "));
}

std::int64_t Total(const std::vector<CarriedDocument>& documents)
{
    std::int64_t total = 0;
    for (const CarriedDocument& document : documents) total += std::ssize(document.bytes);
    return total;
}

// The largest results, as many as must go.
void LeaveOutResults(std::vector<CarriedDocument>& documents, const std::vector<ChunkTree>& trees, std::int64_t most)
{
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < documents.size(); ++i)
        if (trees[i].damages.empty()) AddCandidates(documents[i], i, candidates);
    std::stable_sort(candidates.begin(), candidates.end(),
                     [](const Candidate& a, const Candidate& b) { return a.Bytes() > b.Bytes(); });
    std::vector<std::vector<Candidate>> left(documents.size());
    std::int64_t total = Total(documents);
    for (const Candidate& candidate : candidates) {
        if (total <= most) break;
        total -= candidate.Bytes();
        left[candidate.document].push_back(candidate);
    }
    for (std::size_t i = 0; i < documents.size(); ++i) {
        if (left[i].empty()) continue;
        std::set<Range> cuts;
        for (const Candidate& candidate : left[i]) cuts.insert(candidate.chunks.begin(), candidate.chunks.end());
        Cut(cuts, trees[i], documents[i].bytes);
        documents[i].note = NoteOf(left[i], most);
    }
}

// The largest documents, as many as must go.
void LeaveOutDocuments(std::vector<CarriedDocument>& documents, std::int64_t most)
{
    std::string note;
    while (Total(documents) > most) {
        const auto largest = std::max_element(documents.begin(), documents.end(), [](const auto& a, const auto& b) {
            return a.bytes.size() < b.bytes.size();
        });
        note += fmt::format("{} ({}) is left out, since a page carries no more than {}. ", Printable(largest->name),
                            Megabytes(std::ssize(largest->bytes)), Megabytes(most));
        documents.erase(largest);
    }
    if (documents.empty()) throw Failure("no document is small enough for a page, which carries {}", Megabytes(most));
    documents.front().note = note + documents.front().note;
}

} // namespace

std::vector<CarriedDocument> CarryDocuments(const std::vector<std::string>& paths, std::int64_t most)
{
    std::vector<CarriedDocument> documents;
    std::vector<ChunkTree> trees;
    for (const std::string& path : paths) {
        documents.push_back({BaseName(path), ReadBytes(path), {}});
        trees.push_back(TreeOf(documents.back(), path));
    }
    if (Total(documents) > most) LeaveOutResults(documents, trees, most);
    LeaveOutDocuments(documents, most);
    return documents;
}

} // namespace zmxf
