#include "tools/zmxf/damage/role.h"

#include "zelmresult/storage/chunk_codes.h"

#include <algorithm>
#include <array>

namespace zmxf {

namespace {

using ZelmResult::FourCC;

using Characters = std::array<char, 4>;

bool IsDigit(char c) { return c >= '0' && c <= '9'; }

// Whether the code is the prefix and then digits alone.
bool IsNumbered(std::uint32_t code, const char* prefix)
{
    const Characters text = CharactersOf(code);
    std::size_t i = 0;
    for (; prefix[i] != '\0'; ++i)
        if (text[i] != prefix[i]) return false;
    return std::all_of(text.begin() + static_cast<std::ptrdiff_t>(i), text.end(), IsDigit);
}

// Digits, then blanks: as the numbers of results are written. A letter may stand in front.
bool IsPaddedNumber(std::uint32_t code, char letter = '\0')
{
    const Characters text = CharactersOf(code);
    const auto* const begin = letter != '\0' ? text.begin() + 1 : text.begin();
    const auto* const end = std::find_if_not(begin, text.end(), IsDigit);
    return (letter == '\0' || text[0] == letter) && end != begin &&
           std::all_of(end, text.end(), [](char c) { return c == ' '; });
}

// A prefix of three characters and a hexadecimal digit.
bool IsHexNumbered(std::uint32_t code, std::uint32_t first)
{
    const char digit = CharactersOf(code)[3];
    return (code & 0xFFFFFFU) == (first & 0xFFFFFFU) && (IsDigit(digit) || (digit >= 'A' && digit <= 'F'));
}

Role RoleOfList(Role list, std::uint32_t form)
{
    switch (list) {
    case Role::Root:
        if (form == FourCC("UNIT")) return Role::Quantities;
        return IsHexNumbered(form, FourCC("SYS0")) ? Role::System : Role::Unknown;
    case Role::System:
        if (form == FourCC("RCRD")) return Role::Recording;
        if (form == FourCC("RESU")) return Role::Results;
        if (form == FourCC("CONF")) return Role::Settings;
        return form == FourCC("TRAN") ? Role::Transducers : Role::Unknown;
    case Role::Recording:
        if (IsHexNumbered(form, FourCC("DSK0"))) return Role::Disk;
        return IsNumbered(form, "T") ? Role::Track : Role::Unknown;
    case Role::Track: return form == FourCC("LINK") ? Role::Links : Role::Unknown;
    // Whose codes may be any number.
    case Role::Settings:
    case Role::Module:
        if (RoleOfList(Role::System, form) != Role::Unknown || RoleOfList(Role::Root, form) != Role::Unknown ||
            IsPaddedNumber(form, list == Role::Settings ? 'S' : 'M'))
            return Role::Unknown;
        return list == Role::Settings ? Role::Module : Role::Submodule;
    default: return Role::Unknown;
    }
}

Role RoleInRoot(std::uint32_t code)
{
    if (code == FourCC("HEAD")) return Role::Head;
    if (code == FourCC("PRJI")) return Role::Project;
    if (code == FourCC("HRDI")) return Role::Hardware;
    return code == FourCC("CMTS") || code == FourCC("cmts") ? Role::Comment : Role::Unknown;
}

Role RoleInTrack(std::uint32_t code)
{
    constexpr std::array parts{FourCC("INFO"), FourCC("LOCA"), FourCC("OVLD"), FourCC("XUNI"),
                               FourCC("YUNI"), FourCC("VUNI"), FourCC("CORR"), FourCC("HARD")};
    return std::find(parts.begin(), parts.end(), code) != parts.end() ? Role::TrackPart : Role::Unknown;
}

Role RoleInSettings(Role list, std::uint32_t code, Role previous)
{
    if (list == Role::Submodule) {
        if (code == FourCC("SETT")) return Role::SettingKey;
        return previous == Role::SettingKey ? Role::SettingValue : Role::Unknown;
    }
    if (code == FourCC("IDNU")) return Role::Identifier;
    if (list == Role::Settings) return code == FourCC("CFVR") ? Role::ApplicationVersion : Role::Unknown;
    return code == FourCC("WFRF") ? Role::TransferFunctions : Role::Unknown;
}

} // namespace

std::array<char, 4> CharactersOf(std::uint32_t code)
{
    return {static_cast<char>(code & 0xFFU), static_cast<char>(code >> 8U & 0xFFU),
            static_cast<char>(code >> 16U & 0xFFU), static_cast<char>(code >> 24U)};
}

Role RoleOf(Role list, const ChunkHeader& header, Role previous)
{
    if (header.IsList()) return header.code == ZelmResult::kCodeList ? RoleOfList(list, header.form) : Role::Unknown;
    const std::uint32_t code = header.code;
    if (code == FourCC("VERS")) return IsList(list) ? Role::Version : Role::Unknown;
    switch (list) {
    case Role::Root: return RoleInRoot(code);
    case Role::Quantities: return IsNumbered(code, "") ? Role::Quantity : Role::Unknown;
    case Role::System: return IsNumbered(code, "V") ? Role::Reference : Role::Unknown;
    case Role::Recording: return code == FourCC("HREC") ? Role::RecordHeader : Role::Unknown;
    case Role::Disk:
        if (code == FourCC("IDSK")) return Role::DiskCounts;
        return IsNumbered(code, "I") ? Role::DiskFile : Role::Unknown;
    case Role::Track: return RoleInTrack(code);
    case Role::Links: return code == FourCC("LIDN") ? Role::TrackPart : Role::Unknown;
    case Role::Results:
        if (code == FourCC("INFO")) return Role::ResultHeader;
        return IsPaddedNumber(code) ? Role::ResultData : Role::Unknown;
    case Role::Transducers: return code == FourCC("ITRA") ? Role::Transducer : Role::Unknown;
    case Role::Settings:
    case Role::Module:
    case Role::Submodule: return RoleInSettings(list, code, previous);
    default: return Role::Unknown;
    }
}

Role MissingListAround(Role list, const ChunkHeader& header)
{
    const auto fits = [&header](Role missing) { return RoleOf(missing, header, Role::Unknown) != Role::Unknown; };
    if (header.code == FourCC("VERS")) return Role::Unknown; // which stands everywhere
    switch (list) {
    case Role::Root:
        if (fits(Role::Quantities)) return Role::Quantities;
        return fits(Role::System) || MissingListAround(Role::System, header) != Role::Unknown ? Role::System
                                                                                              : Role::Unknown;
    case Role::System:
        for (const Role missing : {Role::Results, Role::Recording, Role::Transducers})
            if (fits(missing)) return missing;
        return header.code == FourCC("IDNU") || header.code == FourCC("CFVR") || IsPaddedNumber(header.form, 'M')
                   ? Role::Settings
                   : Role::Unknown;
    case Role::Recording: return fits(Role::Track) ? Role::Track : Role::Unknown;
    case Role::Settings: return header.IsList() && IsPaddedNumber(header.form, 'S') ? Role::Module : Role::Unknown;
    case Role::Module: return header.code == FourCC("SETT") ? Role::Submodule : Role::Unknown;
    default: return Role::Unknown;
    }
}

ChunkHeader ListHeader(Role list, std::uint32_t size)
{
    switch (list) {
    case Role::Quantities: return {ZelmResult::kCodeList, size, FourCC("UNIT")};
    case Role::System: return {ZelmResult::kCodeList, size, FourCC("SYS0")};
    case Role::Recording: return {ZelmResult::kCodeList, size, FourCC("RCRD")};
    case Role::Disk: return {ZelmResult::kCodeList, size, FourCC("DSK0")};
    case Role::Track: return {ZelmResult::kCodeList, size, FourCC("T000")};
    case Role::Results: return {ZelmResult::kCodeList, size, FourCC("RESU")};
    case Role::Settings: return {ZelmResult::kCodeList, size, FourCC("CONF")};
    case Role::Transducers: return {ZelmResult::kCodeList, size, FourCC("TRAN")};
    default: return {};
    }
}

Role ListThatHolds(Role list, const ChunkHeader& child)
{
    constexpr std::array lists{Role::Quantities, Role::System,  Role::Recording, Role::Disk,
                               Role::Track,      Role::Results, Role::Settings,  Role::Transducers};
    for (const Role held : lists)
        if (RoleOf(list, ListHeader(held, 0), Role::Unknown) == held &&
            RoleOf(held, child, Role::Version) != Role::Unknown)
            return held;
    return Role::Unknown;
}

std::uint32_t MendedCode(Role list, const ChunkHeader& header, Role previous)
{
    constexpr std::array numbered{Role::Unknown,   Role::Quantity, Role::ResultData,
                                  Role::Reference, Role::DiskFile, Role::SettingValue};
    for (unsigned bit = 0; bit < 32; ++bit) {
        const ChunkHeader mended{header.code ^ 1U << bit, header.size, 0};
        const Role role = RoleOf(list, mended, previous);
        if (std::find(numbered.begin(), numbered.end(), role) == numbered.end()) return mended.code;
    }
    return header.code;
}

bool IsList(Role role)
{
    constexpr std::array lists{Role::Root,     Role::Quantities, Role::System,    Role::Recording,
                               Role::Disk,     Role::Track,      Role::Links,     Role::Results,
                               Role::Settings, Role::Module,     Role::Submodule, Role::Transducers};
    return std::find(lists.begin(), lists.end(), role) != lists.end();
}

std::uint16_t NewestVersion(Role list)
{
    switch (list) {
    case Role::Root:
    case Role::System: return 0x200;
    case Role::Settings: return 0x401;
    case Role::Module: return 0x201;
    case Role::Submodule: return 0x101;
    default: return IsList(list) ? 0x100 : 0;
    }
}

bool MayBeEmpty(Role role, std::uint32_t code) { return role == Role::TrackPart && code == FourCC("HARD"); }

bool HasBareFields(Role role) { return role == Role::Module || role == Role::Submodule; }

bool HasFlag(Role role, std::uint32_t form, std::uint16_t version)
{
    return form != FourCC("M16 ") && version >= NewestVersion(role);
}

VersionPlace PlaceOfVersion(std::uint16_t settings)
{
    constexpr std::uint16_t behind = 512;
    constexpr std::uint16_t atTheEnd = 768;
    constexpr std::uint16_t firstInAChunk = 1024;
    if (settings == behind) return VersionPlace::Behind;
    if (settings == atTheEnd) return VersionPlace::AtTheEnd;
    return settings >= firstInAChunk ? VersionPlace::InAChunk : VersionPlace::None;
}

std::string CodeText(std::uint32_t code)
{
    constexpr const char* digits = "0123456789ABCDEF";
    std::string text;
    for (const char c : CharactersOf(code)) {
        const auto byte = static_cast<unsigned char>(c);
        if (byte >= 0x20 && byte < 0x7F)
            text += c;
        else
            text += {'\\', 'x', digits[byte >> 4U], digits[byte & 0xFU]};
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return text;
}

int NumberIn(std::uint32_t code)
{
    int number = -1;
    for (const char c : CharactersOf(code))
        if (IsDigit(c)) number = std::max(number, 0) * 10 + (c - '0');
    return number;
}

} // namespace zmxf
