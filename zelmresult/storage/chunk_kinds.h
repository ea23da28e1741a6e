#pragma once

#include "zelmresult/storage/chunk_codes.h"
#include "zelmresult/support/wstring.h"

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <optional>
#include <span>

namespace ZelmResult {

// Every kind of chunk that the format knows, in the order of a whole document.
enum class ChunkKind : std::uint8_t {
    Unknown,
    Document,
    Version,
    Head,
    Project,
    Quantities,
    Quantity,
    System,
    Recording,
    RecordHeader,
    Disk,
    DiskCounts,
    DiskFile,
    Track,
    TrackInfo,
    TrackLocation,
    TrackOverload,
    TrackXUnit,
    TrackYUnit,
    TrackThirdUnit,
    Links,
    LinkedIdentifiers,
    TrackCorrection,
    TrackHardware,
    Results,
    ResultHeader,
    ResultData,
    Reference,
    Settings,
    Identifier,
    Module,
    TransferFunctions,
    Submodule,
    SettingKey,
    SettingValue,
    ApplicationVersion,
    Transducers,
    Transducer,
    Comment,
    FormerComment,
    Hardware,
};

// A set of kinds.
class ChunkKinds {
public:
    constexpr ChunkKinds(std::initializer_list<ChunkKind> kinds)
    {
        for (const ChunkKind kind : kinds) m_bits |= Bit(kind);
    }
    [[nodiscard]] constexpr bool Has(ChunkKind kind) const { return (m_bits & Bit(kind)) != 0; }

private:
    static constexpr std::uint64_t Bit(ChunkKind kind) { return std::uint64_t{1} << static_cast<unsigned>(kind); }

    std::uint64_t m_bits = 0;
};

// How a code holds the number of a chunk. Codes are cut after four characters and padded with blanks.
enum class ChunkNumber : std::uint8_t {
    None,
    Hexadecimal, // SYSF; number 16 has the code of number 1
    Decimal,     // 12
    ThreeDigits, // V012
    FourDigits,  // 0012
    Identifier,  // M12: the short number of an identifier; one without a short number is the code as it is
};

// What is inside a chunk.
enum class ChunkContent : std::uint8_t {
    Nothing,         // that a reader takes
    Record,          // which begins with its version
    Fields,          // without a version before them
    Chunks,          // a list, with the chunk of its version first
    FieldsAndChunks, // a list with fields between the chunk of its version and the other chunks
};

// What the format says of one kind of chunk.
struct ChunkFacts {
    ChunkKind kind = ChunkKind::Unknown;
    ChunkKinds parents{};
    ChunkContent content = ChunkContent::Nothing;
    wstring_view code; // the part before the number, if there is one
    ChunkNumber number = ChunkNumber::None;
    int highest = 0;           // number; codes of higher ones repeat or don't exist
    std::uint16_t version = 0; // that lists are written with
    wstring_view label;        // in the debug dump; empty for the text of the code
    ChunkKinds needs{};        // the children that readers of a list expect

    [[nodiscard]] constexpr bool IsList() const { return content >= ChunkContent::Chunks; }
};

// All kinds except Unknown, in their order.
std::span<const ChunkFacts> AllChunkFacts();
const ChunkFacts& FactsOf(ChunkKind kind);
// How many of a numbered kind one list holds: the numbers start at 0.
std::ptrdiff_t MostOf(ChunkKind kind);

// The text from which the code of a chunk is made.
wstring ChunkCodeText(ChunkKind kind, int number = 0);
// The code of a chunk without a number, and of a numbered one.
std::uint32_t ChunkCode(ChunkKind kind, int number = 0);
// Whether a code is one of that kind; raw numbers of identifiers aren't.
bool IsCodeOf(ChunkKind kind, std::uint32_t code);
// The number in a code of a numbered kind; no value for another code.
std::optional<int> NumberInChunkCode(ChunkKind kind, std::uint32_t code);
// What a chunk is by the list that holds it; code is the type of a list. In lists of settings, a code that no other
// kind has is the raw number of an identifier.
ChunkKind ChunkKindIn(ChunkKind list, bool isList, std::uint32_t code);

// Lists of settings with a lower version hold nothing.
inline constexpr std::uint16_t kFirstListVersion = 0x100;

// The code by which a record refers to no quantity. The quantity of that number can't be referred to.
inline constexpr std::uint32_t kCodeOfNoQuantity = FourCC("9999");

} // namespace ZelmResult
