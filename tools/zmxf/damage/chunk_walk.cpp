#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/byte_file.h"
#include "tools/zmxf/damage/chunk_search.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "zelmresult/settings/config_data.h"

#include <algorithm>
#include <fmt/format.h>

namespace zmxf {

namespace {

using State = Chunk::State;
using ZelmResult::VersionTavidePlace;

constexpr std::size_t kMostDamages = 1000;

class Walker {
public:
    explicit Walker(std::span<const char> bytes) : m_bytes(bytes), m_search(bytes), m_file(bytes) {}

    ChunkTree Walk() &&
    {
        Chunk& root = m_tree.root;
        if (!BeginsDocument()) return std::move(m_tree);
        root.kind = ChunkKind::Document;
        const WalkedList walked{root, m_search.Size(), nullptr};
        std::int64_t limit = m_search.Size();
        if (root.state == State::Whole) {
            const std::int64_t announced = kHeaderSize + root.header.size;
            limit = std::min(announced, m_search.Size());
            if (announced > m_search.Size()) {
                root.state = State::Cut;
                Report(m_search.Size(), fmt::format("the file ends after {} of {} bytes", m_search.Size(), announced));
            }
        }
        Walk({root, limit, nullptr}, root.data);
        // After a size that is too small there may be more.
        if (root.end < m_search.Size() && m_search.FindKnown(walked, root.end, m_search.Size()) < m_search.Size()) {
            Report(root.end, "the document is longer than the size in its header");
            root.state = State::Cut;
            Walk(walked, root.end);
        } else if (m_search.Size() - root.end > 1) {
            Report(root.end, fmt::format("{} after the document",
                                         Counted(static_cast<std::size_t>(m_search.Size() - root.end), "byte")));
        }
        return std::move(m_tree);
    }

private:
    // As many as a person may read.
    void Report(std::int64_t offset, std::string text)
    {
        if (m_tree.damages.size() < kMostDamages)
            m_tree.damages.push_back({offset, std::move(text)});
        else
            m_tree.damages.back() = {offset, "and more damages that are not listed"};
    }

    [[nodiscard]] bool IsHeadAfterVersion() const
    {
        constexpr std::int64_t behindForm = 12;
        constexpr std::int64_t behindVersion = 22;
        return IsCodeOf(ChunkKind::Version, m_search.HeaderAt(behindForm).code) &&
               IsCodeOf(ChunkKind::Head, m_search.HeaderAt(behindVersion).code);
    }
    // Fills the root's header. A file whose first bytes are lost is recognised by what it holds.
    bool BeginsDocument()
    {
        Chunk& root = m_tree.root;
        const HeaderBytes header = m_search.HeaderAt(0);
        const bool isOtherForm =
            header.code == ZelmResult::kCodeRiff && header.form != 0 && !IsCodeOf(ChunkKind::Document, header.form);
        if (isOtherForm && !IsHeadAfterVersion()) return false;
        root.header = {ZelmResult::kCodeRiff, header.size, ChunkCode(ChunkKind::Document)};
        if (header.code == ZelmResult::kCodeRiff && IsCodeOf(ChunkKind::Document, header.form)) {
            root.data = header.Length();
            if (header.size != 0) return true;
            root.state = State::Open;
            Report(0, "ZMXF is open: the save that wrote it didn't end");
            return true;
        }
        Chunk known{ChunkKind::Document, State::Whole, root.header, 0, 0, 0, {}};
        root.data = root.offset = m_search.FindKnown({known, m_search.Size(), nullptr}, 0, m_search.Size());
        if (root.data >= m_search.Size()) return false;
        root.state = State::Implied;
        Report(0, "the head of the form ZMXF is damaged");
        return true;
    }

    // Takes the children of a list from an offset on, and sets its end. Returns where the next chunk begins.
    std::int64_t Walk(const WalkedList& walked, std::int64_t from)
    {
        std::int64_t offset = from;
        while (offset < walked.limit) {
            if (const std::int64_t after = BareFields(walked, offset); after != offset) {
                offset = after;
                continue;
            }
            if (walked.limit - offset < kHeaderSize) break;
            const HeaderBytes header = m_search.HeaderAt(offset);
            if (const std::int64_t after = AfterFormerVersion(walked, offset); after != offset) {
                Add(walked, {ChunkKind::ApplicationVersion, State::Whole, {}, offset, offset, after, {}});
                offset = after;
                continue;
            }
            if (walked.KindHere(header) != ChunkKind::Unknown)
                offset = TakeKnown(walked, header, offset);
            else if (walked.BelongsOutside(header))
                return Leave(walked, offset);
            else if (const ChunkKind missing = MissingListAround(walked.list.kind, header);
                     missing != ChunkKind::Unknown)
                offset = TakeImplied(walked, missing, header, offset);
            else
                offset = TakeUnknown(walked, header, offset);
        }
        // What is left may be the head of the next list, in a file that lost some bytes.
        if (offset < walked.limit && m_search.Size() - offset >= kHeaderSize &&
            walked.BelongsOutside(m_search.HeaderAt(offset)))
            return Leave(walked, offset);
        if (walked.limit - offset > 1)
            Report(offset,
                   fmt::format("{} at the end of {} are no chunk",
                               Counted(static_cast<std::size_t>(walked.limit - offset), "byte"), walked.Path()));
        walked.list.end = walked.limit;
        const std::int64_t after = Padded(walked.limit, walked.list.offset + kHeaderSize);
        return walked.outer != nullptr ? std::min(after, walked.outer->limit) : after;
    }

    // A list whose size is known continues where another list's chunk begins.
    std::int64_t Leave(const WalkedList& walked, std::int64_t offset)
    {
        if (walked.list.state == State::Whole) {
            walked.list.state = State::Cut;
            Report(walked.list.offset, fmt::format("{} has a size that is too large", walked.Path()));
        }
        walked.list.end = offset;
        return offset;
    }

    // Text and flag after the version of some lists; returns the position after them.
    std::int64_t BareFields(const WalkedList& walked, std::int64_t offset)
    {
        if (!IsNode(walked.list.kind) || walked.Previous() != ChunkKind::Version || walked.list.children.size() != 1)
            return offset;
        const auto begins = [&](std::int64_t at) {
            if (walked.limit - at < kHeaderSize) return at == walked.limit;
            const HeaderBytes header = m_search.HeaderAt(at);
            return walked.KindHere(header) != ChunkKind::Unknown || walked.BelongsOutside(header) ||
                   m_search.MendedList(walked, header, at).code != 0 ||
                   MendedCode(walked.list.kind, header, ChunkKind::Version) != header.code;
        };
        const bool hasFlag = HoldsVisible(walked.list, ListVersion(m_bytes, walked.list));
        const std::int64_t text = m_file.EndOfText(offset);
        std::int64_t after = text + (hasFlag ? 4 : 0);
        if (text > offset && after <= walked.limit && (begins(after) || m_search.IsChunkLike(walked, after))) {
            Add(walked, {ChunkKind::Unknown, State::Whole, {}, offset, offset, after, {}});
            return after;
        }
        after = offset;
        while (after < walked.limit && !begins(after)) ++after;
        Report(offset, fmt::format("the fields at the beginning of {} are damaged", walked.Path()));
        Add(walked, {ChunkKind::Unknown, State::Cut, {}, offset, offset, after, {}});
        return after;
    }
    // In files of two versions the version of the application is at the end of the settings, or after them, without a
    // chunk. Returns the position after it, the offset itself where there is none.
    std::int64_t AfterFormerVersion(const WalkedList& walked, std::int64_t offset)
    {
        const bool isInside = walked.list.kind == ChunkKind::Settings;
        if (!isInside && walked.Previous() != ChunkKind::Settings) return offset;
        const Chunk& settings = isInside ? walked.list : walked.list.children.back();
        constexpr std::size_t looksAt = 8; // so that the time stays in proportion to the file
        const auto end =
            settings.children.begin() + static_cast<std::ptrdiff_t>(std::min(settings.children.size(), looksAt));
        const auto version = std::find_if(settings.children.begin(), end,
                                          [](const Chunk& child) { return child.kind == ChunkKind::Version; });
        const VersionTavidePlace place = isInside ? VersionTavidePlace::AtTheEnd : VersionTavidePlace::AfterTheList;
        if (version == end || ZelmResult::PlaceOfVersionTavide(VersionIn(m_bytes, *version)) != place) return offset;
        if (walked.Knows(m_search.HeaderAt(offset)) ||
            m_search.MendedList(walked, m_search.HeaderAt(offset), offset).code != 0)
            return offset;
        const std::int64_t after = m_file.EndOfApplicationVersion(offset);
        const bool isAtEnd = after == walked.limit;
        const bool isThere = isAtEnd || (after > offset && after < walked.limit && !(isInside && settings.IsWhole()) &&
                                         m_search.MayBegin(walked, after));
        // What reaches the end of a file that was cut may have lost its own.
        return isThere && !(isAtEnd && after == m_search.Size() && m_tree.root.state == State::Cut) ? after : offset;
    }

    static Chunk& Add(const WalkedList& walked, Chunk chunk)
    {
        walked.list.children.push_back(std::move(chunk));
        return walked.list.children.back();
    }

    std::int64_t TakeKnown(const WalkedList& walked, const HeaderBytes& header, std::int64_t offset)
    {
        const ChunkKind kind = walked.KindHere(header);
        Chunk& chunk = Add(walked, {kind, State::Whole, header, offset, offset + header.Length(), 0, {}});
        const std::int64_t data = offset + kHeaderSize;
        const std::string name = fmt::format("{}/{}", walked.Path(), CodeText(header.Name()));
        const bool fits = ChunkSearch::Fits(header, offset, walked.limit) || Widen(walked, header, offset);
        if (FactsOf(kind).content == ZelmResult::ChunkContent::Nothing && m_search.IsEmpty(walked, header, offset))
            return chunk.end = chunk.data;
        if (!ChunkSearch::IsSize(header) || !fits) {
            chunk.state = ChunkSearch::IsSize(header) ? State::Cut : State::Open;
            Report(offset, ChunkSearch::IsSize(header)
                               ? fmt::format("{} claims {} bytes, of which {} can be there", name, header.size,
                                             std::max<std::int64_t>(walked.limit - data, 0))
                               : fmt::format("{} is open: its size is {}", name, header.size));
        }
        if (header.IsList())
            return Walk({chunk, chunk.IsWhole() ? data + header.size : walked.limit, &walked}, chunk.data);
        const std::int64_t end = Padded(data + header.size, data);
        if (chunk.IsWhole()) chunk.end = data + header.size;
        const bool isBeforeBareFields = kind == ChunkKind::Version && IsNode(walked.list.kind);
        if (chunk.IsWhole() &&
            (isBeforeBareFields || m_search.MayBegin(walked, end) || AfterFormerVersion(walked, end) != end))
            return std::min(end, walked.limit);
        return FindEnd(walked, chunk, name);
    }

    // Takes a list, and those around it, for ones whose sizes are too small when a child crosses their ends and fits
    // into what is around them.
    bool Widen(const WalkedList& walked, const HeaderBytes& header, std::int64_t offset)
    {
        const WalkedList* around = walked.outer;
        while (around != nullptr && !ChunkSearch::Fits(header, offset, around->limit)) around = around->outer;
        const std::int64_t limit = around != nullptr ? around->limit : m_search.Size();
        if (!ChunkSearch::IsSize(header) || !ChunkSearch::Fits(header, offset, limit)) return false;
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = Padded(data + header.size, data);
        if (limit - end >= kHeaderSize && !walked.Knows(m_search.HeaderAt(end))) return false;
        for (const WalkedList* inner = &walked; inner != around; inner = inner->outer) {
            inner->limit = limit;
            if (inner->list.state != State::Whole) continue;
            inner->list.state = State::Cut;
            Report(inner->list.offset, fmt::format("{} has a size that is too small", inner->Path()));
        }
        return true;
    }

    // Of a plain chunk whose size can't be believed: where the next one begins.
    std::int64_t FindEnd(const WalkedList& walked, Chunk& chunk, const std::string& name)
    {
        const std::int64_t next = m_search.FindKnown(walked, chunk.data, walked.limit);
        const std::int64_t claimed = chunk.data + chunk.header.size;
        if (chunk.IsWhole() && next >= claimed) {
            chunk.end = claimed;
            if (next - claimed > 1)
                Report(claimed, fmt::format("{} after {} are no chunk",
                                            Counted(static_cast<std::size_t>(next - claimed), "byte"), name));
            return next;
        }
        if (chunk.IsWhole()) {
            chunk.state = State::Cut;
            Report(chunk.offset, fmt::format("{} claims {} bytes, but the next chunk begins after {}", name,
                                             chunk.header.size, next - chunk.data));
        }
        chunk.end = next;
        return next;
    }

    // A chunk outside of its list goes into the list before it, or into one whose head is lost.
    std::int64_t TakeImplied(const WalkedList& walked, ChunkKind missing, const HeaderBytes& header,
                             std::int64_t offset)
    {
        std::vector<Chunk>& children = walked.list.children;
        constexpr std::size_t looksBack = 8; // so that the time stays in proportion to the file
        const auto end = children.rbegin() + static_cast<std::ptrdiff_t>(std::min(children.size(), looksBack));
        const auto last =
            std::find_if(children.rbegin(), end, [missing](const Chunk& child) { return child.kind == missing; });
        if (last != end && !HoldsBranch(*last, KindIn(missing, header, ChunkKind::Unknown))) {
            Report(offset, fmt::format("{}/{} continues after its end", walked.Path(), CodeText(last->Name())));
            if (last->IsWhole()) last->state = State::Cut;
            return Walk({*last, walked.limit, &walked}, offset);
        }
        const HeaderBytes head = FirstHeaderOf(missing, 0);
        if (head.code == 0) return TakeUnknown(walked, header, offset);
        Chunk& list = Add(walked, {missing, State::Implied, head, offset, offset, offset, {}});
        Report(offset,
               fmt::format("the head of the list {}/{} is damaged or missing", walked.Path(), CodeText(head.form)));
        return Walk({list, walked.limit, &walked}, offset);
    }
    // Of those that a system has one of.
    static bool HoldsBranch(const Chunk& system, ChunkKind branch)
    {
        const bool isOne = system.kind == ChunkKind::System && IsList(branch);
        return isOne && system.Find(branch) != nullptr;
    }

    std::int64_t TakeUnknown(const WalkedList& walked, const HeaderBytes& header, std::int64_t offset)
    {
        if (const HeaderBytes list = m_search.MendedList(walked, header, offset); list.code != 0) {
            Report(offset, fmt::format("the head of {}/{} is damaged", walked.Path(), CodeText(list.form)));
            return TakeKnown(walked, list, offset);
        }
        if (const std::uint32_t code = MendedCode(walked.list.kind, header, walked.Previous()); code != header.code) {
            Report(offset, fmt::format("the code {} in {} is damaged, and taken for {}", CodeText(header.code),
                                       walked.Path(), CodeText(code)));
            return TakeKnown(walked, {code, header.size, 0}, offset);
        }
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = data + header.size;
        const bool isLeft = ChunkSearch::IsSize(header) || m_search.IsEmpty(walked, header, offset);
        if (IsPrintable(header.code) && isLeft && ChunkSearch::Fits(header, offset, walked.limit) &&
            m_search.MayBegin(walked, Padded(end, data))) {
            Add(walked, {ChunkKind::Unknown, State::Whole, header, offset, offset + header.Length(), end, {}});
            return std::min(Padded(end, data), walked.limit);
        }
        const std::int64_t next = m_search.FindKnown(walked, offset + 1, walked.limit);
        Report(offset, fmt::format("{} in {} are no chunk", Counted(static_cast<std::size_t>(next - offset), "byte"),
                                   walked.Path()));
        Add(walked, {ChunkKind::Unknown, State::Cut, {}, offset, offset, next, {}});
        return next;
    }

    std::span<const char> m_bytes;
    ChunkSearch m_search;
    ByteFile m_file;
    ChunkTree m_tree;
};

} // namespace

ChunkTree ReadChunkTree(std::span<const char> bytes) { return Walker(bytes).Walk(); }

} // namespace zmxf
