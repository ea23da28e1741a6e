#include "tools/zmxf/damage/chunk_tree.h"

#include "tools/zmxf/base/failure.h"
#include "tools/zmxf/base/files.h"
#include "tools/zmxf/base/text.h"
#include "tools/zmxf/damage/byte_file.h"
#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>
#include <cstring>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zmxf {

namespace {

using State = Chunk::State;
using ZelmResult::FourCC;

constexpr std::int64_t kHeaderSize = 8;
constexpr std::size_t kMostDamages = 1000;
constexpr std::uint32_t kForm = FourCC("ZMXF");

std::int64_t Padded(std::int64_t end, std::int64_t begin) { return end + ((end - begin) & 1); }

// A list that is being walked, inside the one that holds it.
struct Frame {
    Chunk& list;
    mutable std::int64_t limit; // where it ends at the latest
    const Frame* outer;

    [[nodiscard]] Role Previous() const { return list.children.empty() ? Role::Unknown : list.children.back().role; }
    [[nodiscard]] Role RoleHere(const ChunkHeader& header) const { return RoleOf(list.role, header, Previous()); }
    // Whether one of the lists around this one has a place for the chunk.
    [[nodiscard]] bool BelongsOutside(const ChunkHeader& header) const
    {
        for (const Frame* frame = outer; frame != nullptr; frame = frame->outer)
            if (header.code != FourCC("VERS") && frame->RoleHere(header) != Role::Unknown) return true;
        return false;
    }
    [[nodiscard]] std::string Path() const
    {
        const std::string name = CodeText(list.Name());
        return outer != nullptr ? outer->Path() + '/' + name : name;
    }
};

class Walker {
public:
    explicit Walker(std::span<const char> bytes) : m_bytes(bytes), m_file(bytes) {}

    ChunkTree Walk() &&
    {
        Chunk& root = m_tree.root;
        if (!BeginsDocument()) return std::move(m_tree);
        root.role = Role::Root;
        const Frame frame{root, Size(), nullptr};
        std::int64_t limit = Size();
        if (root.state == State::Whole) {
            const std::int64_t announced = kHeaderSize + root.header.size;
            limit = std::min(announced, Size());
            if (announced > Size()) {
                root.state = State::Cut;
                Report(Size(),
                       "the file ends after " + std::to_string(Size()) + " of " + std::to_string(announced) + " bytes");
            }
        }
        Walk({root, limit, nullptr}, root.data);
        // Behind a size that is too small there may be more.
        if (root.end < Size() && FindKnown(frame, root.end, Size()) < Size()) {
            Report(root.end, "the document goes on behind the size that it tells");
            root.state = State::Cut;
            Walk(frame, root.end);
        } else if (Size() - root.end > 1) {
            Report(root.end, Counted(static_cast<std::size_t>(Size() - root.end), "byte") + " behind the document");
        }
        return std::move(m_tree);
    }

private:
    [[nodiscard]] std::int64_t Size() const { return static_cast<std::int64_t>(m_bytes.size()); }
    [[nodiscard]] ChunkHeader HeaderAt(std::int64_t offset) const
    {
        ChunkHeader header{NumberAt(m_bytes, offset), NumberAt(m_bytes, offset + 4), 0};
        const bool isList = header.code == ZelmResult::kCodeList || header.code == ZelmResult::kCodeRiff;
        if (isList && offset + 12 <= Size()) header.form = NumberAt(m_bytes, offset + 8);
        return header;
    }
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
        return HeaderAt(behindForm).code == FourCC("VERS") && HeaderAt(behindVersion).code == FourCC("HEAD");
    }
    // Fills the root's header. A file whose first bytes are lost is told by what it holds.
    bool BeginsDocument()
    {
        Chunk& root = m_tree.root;
        const ChunkHeader header = HeaderAt(0);
        const bool isOtherForm = header.code == ZelmResult::kCodeRiff && header.form != 0 && header.form != kForm;
        if (isOtherForm && !IsHeadBehindVersion()) return false;
        root.header = {ZelmResult::kCodeRiff, header.size, kForm};
        if (header.code == ZelmResult::kCodeRiff && header.form == kForm) {
            root.data = header.Length();
            if (header.size != 0) return true;
            root.state = State::Open;
            Report(0, "ZMXF is open: the save that wrote it didn't end");
            return true;
        }
        Chunk known{Role::Root, State::Whole, root.header, 0, 0, 0, {}};
        root.data = root.offset = FindKnown({known, Size(), nullptr}, 0, Size());
        if (root.data >= Size()) return false;
        root.state = State::Implied;
        Report(0, "the head of the form ZMXF is damaged");
        return true;
    }

    // Whether the chunk ends within the limit. An open list, which tells no end, may be anywhere.
    static bool Fits(const ChunkHeader& header, std::int64_t offset, std::int64_t limit)
    {
        return offset + kHeaderSize + std::int64_t{header.size} <= limit;
    }
    // Whether it is one of a chunk that was left; that of others is 0.
    static bool IsSize(const ChunkHeader& header) { return header.size >= (header.IsList() ? 4U : 1U); }
    // An empty chunk can be told from one that a save that died never left: another chunk follows right behind it, or
    // the end of a list that is whole.
    [[nodiscard]] bool IsEmpty(const Frame& frame, const ChunkHeader& header, std::int64_t offset) const
    {
        const std::int64_t end = offset + kHeaderSize;
        if (header.IsList() || header.size != 0 || end > frame.limit) return false;
        return end == frame.limit ? frame.list.IsWhole() && m_tree.root.IsWhole() : IsKnown(frame, HeaderAt(end));
    }

    static bool IsKnown(const Frame& frame, const ChunkHeader& header)
    {
        return frame.RoleHere(header) != Role::Unknown || frame.BelongsOutside(header) ||
               MissingListAround(frame.list.role, header) != Role::Unknown;
    }
    static bool IsPrintable(std::uint32_t code)
    {
        for (unsigned i = 0; i < 4; ++i)
            if (const std::uint32_t c = code >> 8 * i & 0xFFU; c < 0x20 || c > 0x7E) return false;
        return true;
    }
    // Whether there is a code that can be printed, and a size that fits.
    [[nodiscard]] bool IsChunkLike(const Frame& frame, std::int64_t offset) const
    {
        const ChunkHeader header = HeaderAt(offset);
        return IsPrintable(header.code) && (IsSize(header) || IsEmpty(frame, header, offset)) &&
               Fits(header, offset, frame.limit);
    }
    // Whether a chunk may begin there: the end of the list does as well.
    [[nodiscard]] bool MayBegin(const Frame& frame, std::int64_t offset) const
    {
        if (frame.limit - offset < kHeaderSize) return true;
        return IsKnown(frame, HeaderAt(offset)) || IsChunkLike(frame, offset);
    }
    // The next chunk that the format knows here, in one of the lists around, or in one that would be missing.
    [[nodiscard]] std::int64_t FindKnown(const Frame& frame, std::int64_t from, std::int64_t limit) const
    {
        for (std::int64_t offset = from; offset + kHeaderSize <= limit; ++offset) {
            const ChunkHeader header = HeaderAt(offset);
            if (!IsPrintable(header.code) || !IsKnown(frame, header)) continue;
            if (header.IsList() && header.size == 0) return offset;
            if (!IsSize(header) || !Fits(header, offset, Size())) continue;
            const std::int64_t data = offset + kHeaderSize;
            if (header.IsList() || MayBegin(frame, Padded(data + header.size, data))) return offset;
        }
        return limit;
    }

    // Takes the children of a list from an offset on, and sets its end. Returns where the next chunk begins.
    std::int64_t Walk(const Frame& frame, std::int64_t from)
    {
        std::int64_t offset = from;
        while (offset < frame.limit) {
            if (const std::int64_t behind = BareFields(frame, offset); behind != offset) {
                offset = behind;
                continue;
            }
            if (frame.limit - offset < kHeaderSize) break;
            const ChunkHeader header = HeaderAt(offset);
            if (const std::int64_t behind = BehindFormerVersion(frame, offset); behind != offset) {
                Add(frame, {Role::ApplicationVersion, State::Whole, {}, offset, offset, behind, {}});
                offset = behind;
                continue;
            }
            if (frame.RoleHere(header) != Role::Unknown)
                offset = TakeKnown(frame, header, offset);
            else if (frame.BelongsOutside(header))
                return Leave(frame, offset);
            else if (const Role missing = MissingListAround(frame.list.role, header); missing != Role::Unknown)
                offset = TakeImplied(frame, missing, header, offset);
            else
                offset = TakeUnknown(frame, header, offset);
        }
        // What is left may be the head of a list behind, in a file that lost some bytes.
        if (offset < frame.limit && Size() - offset >= kHeaderSize && frame.BelongsOutside(HeaderAt(offset)))
            return Leave(frame, offset);
        if (frame.limit - offset > 1)
            Report(offset, Counted(static_cast<std::size_t>(frame.limit - offset), "byte") + " at the end of " +
                               frame.Path() + " are no chunk");
        frame.list.end = frame.limit;
        const std::int64_t behind = Padded(frame.limit, frame.list.offset + kHeaderSize);
        return frame.outer != nullptr ? std::min(behind, frame.outer->limit) : behind;
    }

    // A list whose size is known goes on where another list's chunk begins.
    std::int64_t Leave(const Frame& frame, std::int64_t offset)
    {
        if (frame.list.state == State::Whole) {
            frame.list.state = State::Cut;
            Report(frame.list.offset, frame.Path() + " tells a size that leads past its end");
        }
        frame.list.end = offset;
        return offset;
    }

    // Text and flag behind the version of some lists; returns what lies behind them.
    std::int64_t BareFields(const Frame& frame, std::int64_t offset)
    {
        if (!HasBareFields(frame.list.role) || frame.Previous() != Role::Version || frame.list.children.size() != 1)
            return offset;
        const auto begins = [&](std::int64_t at) {
            if (frame.limit - at < kHeaderSize) return at == frame.limit;
            const ChunkHeader header = HeaderAt(at);
            return frame.RoleHere(header) != Role::Unknown || frame.BelongsOutside(header) ||
                   MendedList(frame, header, at).code != 0 ||
                   MendedCode(frame.list.role, header, Role::Version) != header.code;
        };
        const bool hasFlag = HasFlag(frame.list.role, frame.list.header.form, ListVersion(m_bytes, frame.list));
        const std::int64_t text = m_file.EndOfText(offset);
        std::int64_t behind = text + (hasFlag ? 4 : 0);
        if (text > offset && behind <= frame.limit && (begins(behind) || IsChunkLike(frame, behind))) {
            Add(frame, {Role::Bare, State::Whole, {}, offset, offset, behind, {}});
            return behind;
        }
        behind = offset;
        while (behind < frame.limit && !begins(behind)) ++behind;
        Report(offset, "the fields at the beginning of " + frame.Path() + " are damaged");
        Add(frame, {Role::Bare, State::Cut, {}, offset, offset, behind, {}});
        return behind;
    }
    // The version of the application stands bare at the end of settings, or behind them, in files of two versions.
    // Returns what lies behind it, the offset itself where there is none.
    std::int64_t BehindFormerVersion(const Frame& frame, std::int64_t offset)
    {
        const bool isInside = frame.list.role == Role::Settings;
        if (!isInside && frame.Previous() != Role::Settings) return offset;
        const Chunk& settings = isInside ? frame.list : frame.list.children.back();
        constexpr std::size_t looksAt = 8; // so that the time stays in proportion to the file
        const auto end =
            settings.children.begin() + static_cast<std::ptrdiff_t>(std::min(settings.children.size(), looksAt));
        const auto version = std::find_if(settings.children.begin(), end,
                                          [](const Chunk& child) { return child.role == Role::Version; });
        const VersionPlace place = isInside ? VersionPlace::AtTheEnd : VersionPlace::Behind;
        if (version == end || PlaceOfVersion(VersionIn(m_bytes, *version)) != place) return offset;
        if (IsKnown(frame, HeaderAt(offset)) || MendedList(frame, HeaderAt(offset), offset).code != 0) return offset;
        const std::int64_t behind = m_file.EndOfApplicationVersion(offset);
        const bool isAtEnd = behind == frame.limit;
        const bool isThere = isAtEnd || (behind > offset && behind < frame.limit && !(isInside && settings.IsWhole()) &&
                                         MayBegin(frame, behind));
        // What reaches the end of a file that was cut may have lost its own.
        return isThere && !(isAtEnd && behind == Size() && m_tree.root.state == State::Cut) ? behind : offset;
    }

    static Chunk& Add(const Frame& frame, Chunk chunk)
    {
        frame.list.children.push_back(std::move(chunk));
        return frame.list.children.back();
    }

    std::int64_t TakeKnown(const Frame& frame, const ChunkHeader& header, std::int64_t offset)
    {
        const Role role = frame.RoleHere(header);
        Chunk& chunk = Add(frame, {role, State::Whole, header, offset, offset + header.Length(), 0, {}});
        const std::int64_t data = offset + kHeaderSize;
        const std::string name = frame.Path() + '/' + CodeText(header.Name());
        const bool fits = Fits(header, offset, frame.limit) || Widen(frame, header, offset);
        if (MayBeEmpty(role, header.code) && IsEmpty(frame, header, offset)) return chunk.end = chunk.data;
        if (!IsSize(header) || !fits) {
            chunk.state = IsSize(header) ? State::Cut : State::Open;
            Report(offset, IsSize(header)
                               ? name + " tells " + std::to_string(header.size) + " bytes, of which " +
                                     std::to_string(std::max<std::int64_t>(frame.limit - data, 0)) + " can be there"
                               : name + " is open: its size is " + std::to_string(header.size));
        }
        if (header.IsList())
            return Walk({chunk, chunk.IsWhole() ? data + header.size : frame.limit, &frame}, chunk.data);
        const std::int64_t end = Padded(data + header.size, data);
        if (chunk.IsWhole()) chunk.end = data + header.size;
        const bool isAheadOfBareFields = role == Role::Version && HasBareFields(frame.list.role);
        if (chunk.IsWhole() && (isAheadOfBareFields || MayBegin(frame, end) || BehindFormerVersion(frame, end) != end))
            return std::min(end, frame.limit);
        return FindEnd(frame, chunk, name);
    }

    // Takes a list, and those around it, for ones whose sizes are too small when a child crosses their ends and fits
    // into what is around them.
    bool Widen(const Frame& frame, const ChunkHeader& header, std::int64_t offset)
    {
        const Frame* around = frame.outer;
        while (around != nullptr && !Fits(header, offset, around->limit)) around = around->outer;
        const std::int64_t limit = around != nullptr ? around->limit : Size();
        if (!IsSize(header) || !Fits(header, offset, limit)) return false;
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = Padded(data + header.size, data);
        if (limit - end >= kHeaderSize && !IsKnown(frame, HeaderAt(end))) return false;
        for (const Frame* inner = &frame; inner != around; inner = inner->outer) {
            inner->limit = limit;
            if (inner->list.state != State::Whole) continue;
            inner->list.state = State::Cut;
            Report(inner->list.offset, inner->Path() + " tells a size that is too small");
        }
        return true;
    }

    // Of a plain chunk whose size can't be believed: where the next one begins.
    std::int64_t FindEnd(const Frame& frame, Chunk& chunk, const std::string& name)
    {
        const std::int64_t next = FindKnown(frame, chunk.data, frame.limit);
        const std::int64_t told = chunk.data + chunk.header.size;
        if (chunk.IsWhole() && next >= told) {
            chunk.end = told;
            if (next - told > 1)
                Report(told,
                       Counted(static_cast<std::size_t>(next - told), "byte") + " behind " + name + " are no chunk");
            return next;
        }
        if (chunk.IsWhole()) {
            chunk.state = State::Cut;
            Report(chunk.offset, name + " tells " + std::to_string(chunk.header.size) +
                                     " bytes, but the next chunk begins after " + std::to_string(next - chunk.data));
        }
        chunk.end = next;
        return next;
    }

    // What stands outside of its list goes into the one in front, or one of a lost head.
    std::int64_t TakeImplied(const Frame& frame, Role missing, const ChunkHeader& header, std::int64_t offset)
    {
        std::vector<Chunk>& children = frame.list.children;
        constexpr std::size_t looksBack = 8; // so that the time stays in proportion to the file
        const auto end = children.rbegin() + static_cast<std::ptrdiff_t>(std::min(children.size(), looksBack));
        const auto last =
            std::find_if(children.rbegin(), end, [missing](const Chunk& child) { return child.role == missing; });
        if (last != end && !HoldsBranch(*last, RoleOf(missing, header, Role::Unknown))) {
            Report(offset, frame.Path() + '/' + CodeText(last->Name()) + " goes on behind its end");
            if (last->IsWhole()) last->state = State::Cut;
            return Walk({*last, frame.limit, &frame}, offset);
        }
        const ChunkHeader head = ListHeader(missing, 0);
        if (head.code == 0) return TakeUnknown(frame, header, offset);
        Chunk& list = Add(frame, {missing, State::Implied, head, offset, offset, offset, {}});
        Report(offset, "the head of the list " + frame.Path() + '/' + CodeText(head.form) + " is damaged or missing");
        return Walk({list, frame.limit, &frame}, offset);
    }
    // Of those that a system has one of.
    static bool HoldsBranch(const Chunk& system, Role branch)
    {
        const bool isOne = system.role == Role::System && IsList(branch);
        return isOne && system.Find(branch) != nullptr;
    }

    // A list whose head is damaged, as what it is by its type or by its first child; of code 0 for something else.
    [[nodiscard]] ChunkHeader MendedList(const Frame& frame, const ChunkHeader& header, std::int64_t offset) const
    {
        constexpr std::int64_t versionChunk = 10;
        const std::int64_t first = offset + 12;
        if (HeaderAt(first).code != FourCC("VERS")) return {};
        const ChunkHeader list{ZelmResult::kCodeList, header.size, NumberAt(m_bytes, offset + kHeaderSize)};
        const Role role = frame.RoleHere(list);
        if (role != Role::Unknown && (!HasBareFields(role) || frame.Previous() == Role::Identifier)) return list;
        return ListHeader(ListThatHolds(frame.list.role, HeaderAt(first + versionChunk)), header.size);
    }

    std::int64_t TakeUnknown(const Frame& frame, const ChunkHeader& header, std::int64_t offset)
    {
        if (const ChunkHeader list = MendedList(frame, header, offset); list.code != 0) {
            Report(offset, "the head of " + frame.Path() + '/' + CodeText(list.form) + " is damaged");
            return TakeKnown(frame, list, offset);
        }
        if (const std::uint32_t code = MendedCode(frame.list.role, header, frame.Previous()); code != header.code) {
            Report(offset, "the code " + CodeText(header.code) + " in " + frame.Path() + " is damaged, and taken for " +
                               CodeText(code));
            return TakeKnown(frame, {code, header.size, 0}, offset);
        }
        const std::int64_t data = offset + kHeaderSize;
        const std::int64_t end = data + header.size;
        const bool isLeft = IsSize(header) || IsEmpty(frame, header, offset);
        if (IsPrintable(header.code) && isLeft && Fits(header, offset, frame.limit) &&
            MayBegin(frame, Padded(end, data))) {
            Add(frame, {Role::Unknown, State::Whole, header, offset, offset + header.Length(), end, {}});
            return std::min(Padded(end, data), frame.limit);
        }
        const std::int64_t next = FindKnown(frame, offset + 1, frame.limit);
        Report(offset,
               Counted(static_cast<std::size_t>(next - offset), "byte") + " in " + frame.Path() + " are no chunk");
        Add(frame, {Role::Bare, State::Cut, {}, offset, offset, next, {}});
        return next;
    }

    std::span<const char> m_bytes;
    ByteFile m_file;
    ChunkTree m_tree;
};

} // namespace

const Chunk* Chunk::Find(Role wanted) const
{
    const auto found =
        std::find_if(children.begin(), children.end(), [wanted](const Chunk& child) { return child.role == wanted; });
    return found == children.end() ? nullptr : &*found;
}

ChunkTree ReadChunkTree(std::span<const char> bytes) { return Walker(bytes).Walk(); }

std::vector<char> ReadBytes(const std::string& path)
{
    constexpr std::int64_t most = 0x7FFFFFFF;
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (file.get() < 0 || ::fstat(file.get(), &status) != 0) throw Failure(SystemFailure("cannot read", path));
    if (!S_ISREG(status.st_mode)) throw Failure("cannot read " + Printable(path) + ": not a regular file");
    if (status.st_size > most) throw Failure("cannot read " + Printable(path) + ": it is larger than 2 GiB");
    std::vector<char> bytes(static_cast<std::size_t>(status.st_size));
    std::size_t filled = 0;
    while (filled < bytes.size()) {
        const ssize_t got = ::read(file.get(), bytes.data() + filled, bytes.size() - filled);
        if (got < 0) throw Failure(SystemFailure("cannot read", path));
        if (got == 0) break;
        filled += static_cast<std::size_t>(got);
    }
    bytes.resize(filled);
    return bytes;
}

std::string OffsetText(std::int64_t offset)
{
    std::string text;
    do {
        text.insert(text.begin(), "0123456789ABCDEF"[offset & 0xF]);
        offset >>= 4;
    } while (offset != 0);
    return "0x" + text;
}

std::uint32_t NumberAt(std::span<const char> bytes, std::int64_t offset)
{
    std::uint32_t number = 0;
    if (offset + 4 <= static_cast<std::int64_t>(bytes.size()))
        std::memcpy(&number, bytes.data() + offset, sizeof number);
    return number;
}

std::int64_t EndOfChunkAt(const Chunk& list, std::int64_t offset)
{
    const auto behind = std::upper_bound(list.children.begin(), list.children.end(), offset,
                                         [](std::int64_t at, const Chunk& child) { return at < child.offset; });
    if (behind == list.children.begin()) return INT64_MAX;
    const Chunk& chunk = *std::prev(behind);
    if (IsList(chunk.role)) return EndOfChunkAt(chunk, offset);
    return !chunk.IsBare() && offset < chunk.end ? chunk.end : INT64_MAX;
}

std::uint16_t ListVersion(std::span<const char> bytes, const Chunk& list)
{
    constexpr std::uint16_t first = 0x100; // lists of lower ones hold nothing
    const Chunk* version = list.Find(Role::Version);
    const bool isGood = version != nullptr && version->IsWhole() && VersionIn(bytes, *version) >= first;
    return isGood ? VersionIn(bytes, *version) : NewestVersion(list.role);
}

std::uint16_t VersionIn(std::span<const char> bytes, const Chunk& chunk)
{
    std::uint16_t version = 0;
    if (chunk.Size() >= 2) std::memcpy(&version, bytes.data() + chunk.data, sizeof version);
    return version;
}

} // namespace zmxf
