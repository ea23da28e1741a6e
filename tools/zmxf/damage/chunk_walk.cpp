#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/byte_file.h"
#include "tools/zmxf/damage/chunk_search.h"
#include "tools/zmxf/damage/chunk_tree.h"
#include "zelmresult/settings/config_data.h"

#include <algorithm>

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
        const WalkedList frame{root, m_search.Size(), nullptr};
        std::int64_t limit = m_search.Size();
        if (root.state == State::Whole) {
            const std::int64_t announced = kHeaderSize + root.header.size;
            limit = std::min(announced, m_search.Size());
            if (announced > m_search.Size()) {
                root.state = State::Cut;
                Report(m_search.Size(), "the file ends after " + std::to_string(m_search.Size()) + " of " +
                                            std::to_string(announced) + " bytes");
            }
        }
        Walk({root, limit, nullptr}, root.data);
        // Behind a size that is too small there may be more.
        if (root.end < m_search.Size() && m_search.FindKnown(frame, root.end, m_search.Size()) < m_search.Size()) {
            Report(root.end, "the document is longer than the size in its header");
            root.state = State::Cut;
            Walk(frame, root.end);
        } else if (m_search.Size() - root.end > 1) {
            Report(root.end,
                   Counted(static_cast<std::size_t>(m_search.Size() - root.end), "byte") + " after the document");
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

    [[nodiscard]] bool IsHeadBehindVersion() const
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
        if (isOtherForm && !IsHeadBehindVersion()) return false;
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
    std::int64_t Walk(const WalkedList& frame, std::int64_t from)
    {
        std::int64_t offset = from;
        while (offset < frame.limit) {
            if (const std::int64_t behind = BareFields(frame, offset); behind != offset) {
                offset = behind;
                continue;
            }
            if (frame.limit - offset < kHeaderSize) break;
            const HeaderBytes header = m_search.HeaderAt(offset);
            if (const std::int64_t behind = BehindFormerVersion(frame, offset); behind != offset) {
                Add(frame, {ChunkKind::ApplicationVersion, State::Whole, {}, offset, offset, behind, {}});
                offset = behind;
                continue;
            }
            if (frame.KindHere(header) != ChunkKind::Unknown)
                offset = TakeKnown(frame, header, offset);
            else if (frame.BelongsOutside(header))
                return Leave(frame, offset);
            else if (const ChunkKind missing = MissingListAround(frame.list.kind, header);
                     missing != ChunkKind::Unknown)
                offset = TakeImplied(frame, missing, header, offset);
            else
                offset = TakeUnknown(frame, header, offset);
        }
        // What is left may be the head of the next list, in a file that lost some bytes.
        if (offset < frame.limit && m_search.Size() - offset >= kHeaderSize &&
            frame.BelongsOutside(m_search.HeaderAt(offset)))
            return Leave(frame, offset);
        if (frame.limit - offset > 1)
            Report(offset, Counted(static_cast<std::size_t>(frame.limit - offset), "byte") + " at the end of " +
                               frame.Path() + " are no chunk");
        frame.list.end = frame.limit;
        const std::int64_t behind = Padded(frame.limit, frame.list.offset + kHeaderSize);
        return frame.outer != nullptr ? std::min(behind, frame.outer->limit) : behind;
    }

    // A list whose size is known continues where another list's chunk begins.
    std::int64_t Leave(const WalkedList& frame, std::int64_t offset)
    {
        if (frame.list.state == State::Whole) {
            frame.list.state = State::Cut;
            Report(frame.list.offset, frame.Path() + " has a size that is too large");
        }
        frame.list.end = offset;
        return offset;
    }

    // Text and flag after the version of some lists; returns the position after them.
    std::int64_t BareFields(const WalkedList& frame, std::int64_t offset)
    {
        if (!IsNode(frame.list.kind) || frame.Previous() != ChunkKind::Version || frame.list.children.size() != 1)
            return offset;
        const auto begins = [&](std::int64_t at) {
            if (frame.limit - at < kHeaderSize) return at == frame.limit;
            const HeaderBytes header = m_search.HeaderAt(at);
            return frame.KindHere(header) != ChunkKind::Unknown || frame.BelongsOutside(header) ||
                   m_search.MendedList(frame, header, at).code != 0 ||
                   MendedCode(frame.list.kind, header, ChunkKind::Version) != header.code;
        };
        const bool hasFlag = HoldsVisible(frame.list, ListVersion(m_bytes, frame.list));
        const std::int64_t text = m_file.EndOfText(offset);
        std::int64_t behind = text + (hasFlag ? 4 : 0);
        if (text > offset && behind <= frame.limit && (begins(behind) || m_search.IsChunkLike(frame, behind))) {
            Add(frame, {ChunkKind::Unknown, State::Whole, {}, offset, offset, behind, {}});
            return behind;
        }
        behind = offset;
        while (behind < frame.limit && !begins(behind)) ++behind;
        Report(offset, "the fields at the beginning of " + frame.Path() + " are damaged");
        Add(frame, {ChunkKind::Unknown, State::Cut, {}, offset, offset, behind, {}});
        return behind;
    }
    // In files of two versions the version of the application is at the end of the settings, or after them, without a
    // chunk. Returns the position after it, the offset itself where there is none.
    std::int64_t BehindFormerVersion(const WalkedList& frame, std::int64_t offset)
    {
        const bool isInside = frame.list.kind == ChunkKind::Settings;
        if (!isInside && frame.Previous() != ChunkKind::Settings) return offset;
        const Chunk& settings = isInside ? frame.list : frame.list.children.back();
        constexpr std::size_t looksAt = 8; // so that the time stays in proportion to the file
        const auto end =
            settings.children.begin() + static_cast<std::ptrdiff_t>(std::min(settings.children.size(), looksAt));
        const auto version = std::find_if(settings.children.begin(), end,
                                          [](const Chunk& child) { return child.kind == ChunkKind::Version; });
        const VersionTavidePlace place = isInside ? VersionTavidePlace::AtTheEnd : VersionTavidePlace::AfterTheList;
        if (version == end || ZelmResult::PlaceOfVersionTavide(VersionIn(m_bytes, *version)) != place) return offset;
        if (frame.Knows(m_search.HeaderAt(offset)) ||
            m_search.MendedList(frame, m_search.HeaderAt(offset), offset).code != 0)
            return offset;
        const std::int64_t behind = m_file.EndOfApplicationVersion(offset);
        const bool isAtEnd = behind == frame.limit;
        const bool isThere = isAtEnd || (behind > offset && behind < frame.limit && !(isInside && settings.IsWhole()) &&
                                         m_search.MayBegin(frame, behind));
        // What reaches the end of a file that was cut may have lost its own.
        return isThere && !(isAtEnd && behind == m_search.Size() && m_tree.root.state == State::Cut) ? behind : offset;
    }

    static Chunk& Add(const WalkedList& frame, Chunk chunk)
    {
        frame.list.children.push_back(std::move(chunk));
        return frame.list.children.back();
    }

    std::int64_t TakeKnown(const WalkedList& frame, const HeaderBytes& header, std::int64_t offset)
    {
        const ChunkKind kind = frame.KindHere(header);
        Chunk& chunk = Add(frame, {kind, State::Whole, header, offset, offset + header.Length(), 0, {}});
        const std::int64_t data = offset + kHeaderSize;
        const std::string name = frame.Path() + '/' + CodeText(header.Name());
        const bool fits = ChunkSearch::Fits(header, offset, frame.limit) || Widen(frame, header, offset);
        if (FactsOf(kind).content == ZelmResult::ChunkContent::Nothing && m_search.IsEmpty(frame, header, offset))
            return chunk.end = chunk.data;
        if (!ChunkSearch::IsSize(header) || !fits) {
            chunk.state = ChunkSearch::IsSize(header) ? State::Cut : State::Open;
            Report(offset, ChunkSearch::IsSize(header)
                               ? name + " claims " + std::to_string(header.size) + " bytes, of which " +
                                     std::to_string(std::max<std::int64_t>(frame.limit - data, 0)) + " can be there"
                               : name + " is open: its size is " + std::to_string(header.size));
        }
        if (header.IsList())
            return Walk({chunk, chunk.IsWhole() ? data + header.size : frame.limit, &frame}, chunk.data);
        const std::int64_t end = Padded(data + header.size, data);
        if (chunk.IsWhole()) chunk.end = data + header.size;
        const bool isAheadOfBareFields = kind == ChunkKind::Version && IsNode(frame.list.kind);
        if (chunk.IsWhole() &&
            (isAheadOfBareFields || m_search.MayBegin(frame, end) || BehindFormerVersion(frame, end) != end))
            return std::min(end, frame.limit);
        return FindEnd(frame, chunk, name);
    }

    // Takes a list, and those around it, for ones whose sizes are too small when a child crosses their ends and fits
    // into what is around them.
    bool Widen(const WalkedList& frame, const HeaderBytes& header, std::int64_t offset)
    {
        const WalkedList* around = frame.outer;
        while (around != nullptr && !ChunkSearch::Fits(header, offset, around->limit)) around = around->outer;
        const std::int64_t limit = around != nullptr ? around->limit : m_search.Size();
        if (!ChunkSearch::IsSize(header) || !ChunkSearch::Fits(header, offset, limit)) return false;
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = Padded(data + header.size, data);
        if (limit - end >= kHeaderSize && !frame.Knows(m_search.HeaderAt(end))) return false;
        for (const WalkedList* inner = &frame; inner != around; inner = inner->outer) {
            inner->limit = limit;
            if (inner->list.state != State::Whole) continue;
            inner->list.state = State::Cut;
            Report(inner->list.offset, inner->Path() + " has a size that is too small");
        }
        return true;
    }

    // Of a plain chunk whose size can't be believed: where the next one begins.
    std::int64_t FindEnd(const WalkedList& frame, Chunk& chunk, const std::string& name)
    {
        const std::int64_t next = m_search.FindKnown(frame, chunk.data, frame.limit);
        const std::int64_t told = chunk.data + chunk.header.size;
        if (chunk.IsWhole() && next >= told) {
            chunk.end = told;
            if (next - told > 1)
                Report(told,
                       Counted(static_cast<std::size_t>(next - told), "byte") + " after " + name + " are no chunk");
            return next;
        }
        if (chunk.IsWhole()) {
            chunk.state = State::Cut;
            Report(chunk.offset, name + " claims " + std::to_string(chunk.header.size) +
                                     " bytes, but the next chunk begins after " + std::to_string(next - chunk.data));
        }
        chunk.end = next;
        return next;
    }

    // A chunk outside of its list goes into the list before it, or into one whose head is lost.
    std::int64_t TakeImplied(const WalkedList& frame, ChunkKind missing, const HeaderBytes& header, std::int64_t offset)
    {
        std::vector<Chunk>& children = frame.list.children;
        constexpr std::size_t looksBack = 8; // so that the time stays in proportion to the file
        const auto end = children.rbegin() + static_cast<std::ptrdiff_t>(std::min(children.size(), looksBack));
        const auto last =
            std::find_if(children.rbegin(), end, [missing](const Chunk& child) { return child.kind == missing; });
        if (last != end && !HoldsBranch(*last, KindIn(missing, header, ChunkKind::Unknown))) {
            Report(offset, frame.Path() + '/' + CodeText(last->Name()) + " continues after its end");
            if (last->IsWhole()) last->state = State::Cut;
            return Walk({*last, frame.limit, &frame}, offset);
        }
        const HeaderBytes head = FirstHeaderOf(missing, 0);
        if (head.code == 0) return TakeUnknown(frame, header, offset);
        Chunk& list = Add(frame, {missing, State::Implied, head, offset, offset, offset, {}});
        Report(offset, "the head of the list " + frame.Path() + '/' + CodeText(head.form) + " is damaged or missing");
        return Walk({list, frame.limit, &frame}, offset);
    }
    // Of those that a system has one of.
    static bool HoldsBranch(const Chunk& system, ChunkKind branch)
    {
        const bool isOne = system.kind == ChunkKind::System && IsList(branch);
        return isOne && system.Find(branch) != nullptr;
    }

    std::int64_t TakeUnknown(const WalkedList& frame, const HeaderBytes& header, std::int64_t offset)
    {
        if (const HeaderBytes list = m_search.MendedList(frame, header, offset); list.code != 0) {
            Report(offset, "the head of " + frame.Path() + '/' + CodeText(list.form) + " is damaged");
            return TakeKnown(frame, list, offset);
        }
        if (const std::uint32_t code = MendedCode(frame.list.kind, header, frame.Previous()); code != header.code) {
            Report(offset, "the code " + CodeText(header.code) + " in " + frame.Path() + " is damaged, and taken for " +
                               CodeText(code));
            return TakeKnown(frame, {code, header.size, 0}, offset);
        }
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = data + header.size;
        const bool isLeft = ChunkSearch::IsSize(header) || m_search.IsEmpty(frame, header, offset);
        if (IsPrintable(header.code) && isLeft && ChunkSearch::Fits(header, offset, frame.limit) &&
            m_search.MayBegin(frame, Padded(end, data))) {
            Add(frame, {ChunkKind::Unknown, State::Whole, header, offset, offset + header.Length(), end, {}});
            return std::min(Padded(end, data), frame.limit);
        }
        const std::int64_t next = m_search.FindKnown(frame, offset + 1, frame.limit);
        Report(offset,
               Counted(static_cast<std::size_t>(next - offset), "byte") + " in " + frame.Path() + " are no chunk");
        Add(frame, {ChunkKind::Unknown, State::Cut, {}, offset, offset, next, {}});
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
