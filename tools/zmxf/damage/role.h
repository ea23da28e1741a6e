#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace zmxf {

// What a chunk is, by its code and the list that it stands in.
enum class Role {
    Unknown,
    Bare, // bytes between chunks: fields in front of the nodes of settings, and what is none of the format's
    Root,
    Version,
    Head,
    Project,
    Hardware,
    Comment,
    Quantities,
    Quantity,
    System,
    Recording,
    RecordHeader,
    Disk,
    DiskCounts,
    DiskFile,
    Track,
    TrackPart,
    Links,
    Results,
    ResultHeader,
    ResultData,
    Reference,
    Settings,
    Module,
    Submodule,
    Identifier,
    TransferFunctions,
    SettingKey,
    SettingValue,
    ApplicationVersion, // a chunk, or bare in settings of former versions
    Transducers,
    Transducer,
};

// The eight bytes in front of a chunk, and of a list its type.
struct ChunkHeader {
    std::uint32_t code = 0;
    std::uint32_t size = 0;
    std::uint32_t form = 0; // 0 for a plain chunk

    [[nodiscard]] bool IsList() const { return form != 0; }
    // The bytes ahead of what it holds.
    [[nodiscard]] std::int64_t Length() const { return IsList() ? 12 : 8; }
    // The code of a plain chunk, the type of a list.
    [[nodiscard]] std::uint32_t Name() const { return IsList() ? form : code; }
};

// previous is the role of the sibling in front, Unknown for none.
Role RoleOf(Role list, const ChunkHeader& header, Role previous);
// The list that is missing around a chunk that stands in list itself; Unknown when none would help.
Role MissingListAround(Role list, const ChunkHeader& header);
// The head of such a list, of the first number where lists are numbered; of code 0 for nodes of settings.
ChunkHeader ListHeader(Role list, std::uint32_t size);
// The kind of list inside of list that a child tells by standing in it behind the version; Unknown for none.
Role ListThatHolds(Role list, const ChunkHeader& child);
// The code that a plain chunk has but for one bit; its own when it is none that the format knows in that place.
std::uint32_t MendedCode(Role list, const ChunkHeader& header, Role previous);
bool IsList(Role role);
// The version that lists of a role are written with; 0 for what is no list.
std::uint16_t NewestVersion(Role list);
// Whether nothing is read from a chunk, so that it may be empty.
bool MayBeEmpty(Role role, std::uint32_t code);
// Of a list whose children have bare fields behind its version.
bool HasBareFields(Role role);
// Whether a flag stands behind the text there, in a list of that type and version.
bool HasFlag(Role role, std::uint32_t form, std::uint16_t version);

// Where settings of a version hold that of the application.
enum class VersionPlace { None, Behind, AtTheEnd, InAChunk };
VersionPlace PlaceOfVersion(std::uint16_t settings);

std::array<char, 4> CharactersOf(std::uint32_t code);
// The four characters, "\x01" for what can't be printed, without the blanks behind.
std::string CodeText(std::uint32_t code);
// The number that a code of a kind such as V003 or 12 holds; -1 for none.
int NumberIn(std::uint32_t code);

} // namespace zmxf
