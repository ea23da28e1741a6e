#include "zelmresult/storage/chunk_kinds.h"

#include "zelmresult/support/text.h"

#include <algorithm>
#include <array>

namespace ZelmResult {

namespace {

using enum ChunkKind;

constexpr ChunkKinds kLists{Document, Quantities, System,   Recording, Disk,      Track,
                            Links,    Results,    Settings, Module,    Submodule, Transducers};
constexpr auto kNothing = ChunkContent::Nothing;
constexpr auto kRecord = ChunkContent::Record;
constexpr auto kFields = ChunkContent::Fields;
constexpr auto kList = ChunkContent::Chunks;
constexpr auto kNode = ChunkContent::FieldsAndChunks;
constexpr auto kUnnumbered = ChunkNumber::None;

// clang-format off
constexpr std::array kChunks = std::to_array<ChunkFacts>({
    // kind              parents             content   code     number                    highest version label           needs
    {Document,           {},                 kList,    u"ZMXF", kUnnumbered,              0,    0x200, u"",            {Version, Head, Quantities, Hardware}},
    {Version,            kLists,             kRecord,  u"VERS", kUnnumbered,              0,    0,     u"vers"},
    {Head,               {Document},         kRecord,  u"HEAD", kUnnumbered,              0,    0,     u"head"},
    {Project,            {Document},         kRecord,  u"PRJI", kUnnumbered,              0,    0,     u"ProjectInfo"},
    {Quantities,         {Document},         kList,    u"UNIT", kUnnumbered,              0,    0x100, u""},
    {Quantity,           {Quantities},       kRecord,  u"",     ChunkNumber::FourDigits,  9998, 0,     u"ckid"},
    {System,             {Document},         kList,    u"SYS",  ChunkNumber::Hexadecimal, 16,   0x200, u"",            {Version}},
    {Recording,          {System},           kList,    u"RCRD", kUnnumbered,              0,    0x100, u""},
    {RecordHeader,       {Recording},        kRecord,  u"HREC", kUnnumbered,              0,    0,     u""},
    {Disk,               {Recording},        kList,    u"DSK",  ChunkNumber::Hexadecimal, 16,   0x100, u"",            {DiskCounts}},
    {DiskCounts,         {Disk},             kRecord,  u"IDSK", kUnnumbered,              0,    0,     u""},
    {DiskFile,           {Disk},             kRecord,  u"I",    ChunkNumber::ThreeDigits, 999,  0,     u""},
    {Track,              {Recording},        kList,    u"T",    ChunkNumber::ThreeDigits, 999,  0x100, u"",            {TrackInfo, TrackLocation}},
    {TrackInfo,          {Track},            kRecord,  u"INFO", kUnnumbered,              0,    0,     u""},
    {TrackLocation,      {Track},            kRecord,  u"LOCA", kUnnumbered,              0,    0,     u""},
    {TrackOverload,      {Track},            kRecord,  u"OVLD", kUnnumbered,              0,    0,     u""},
    {TrackXUnit,         {Track},            kRecord,  u"XUNI", kUnnumbered,              0,    0,     u""},
    {TrackYUnit,         {Track},            kRecord,  u"YUNI", kUnnumbered,              0,    0,     u""},
    {TrackThirdUnit,     {Track},            kRecord,  u"VUNI", kUnnumbered,              0,    0,     u""},
    {Links,              {Track},            kList,    u"LINK", kUnnumbered,              0,    0x100, u"link"},
    {LinkedIdentifiers,  {Links},            kRecord,  u"LIDN", kUnnumbered,              0,    0,     u""},
    {TrackCorrection,    {Track},            kRecord,  u"CORR", kUnnumbered,              0,    0,     u""},
    {TrackHardware,      {Track},            kNothing, u"HARD", kUnnumbered,              0,    0,     u""},
    {Results,            {System},           kList,    u"RESU", kUnnumbered,              0,    0x100, u""},
    {ResultHeader,       {Results},          kRecord,  u"INFO", kUnnumbered,              0,    0,     u"info"},
    {ResultData,         {Results},          kRecord,  u"",     ChunkNumber::Decimal,     9999, 0,     u"ckid"},
    {Reference,          {System},           kRecord,  u"V",    ChunkNumber::ThreeDigits, 999,  0,     u""},
    {Settings,           {System},           kList,    u"CONF", kUnnumbered,              0,    0x401, u"",            {Version}},
    {Identifier,         {Settings, Module}, kFields,  u"IDNU", kUnnumbered,              0,    0,     u"idnu"},
    {Module,             {Settings},         kNode,    u"M",    ChunkNumber::Identifier,  999,  0x201, u"",            {Version}},
    {TransferFunctions,  {Module},           kFields,  u"WFRF", kUnnumbered,              0,    0,     u"wfrf"},
    {Submodule,          {Module},           kNode,    u"S",    ChunkNumber::Identifier,  999,  0x101, u"",            {Version}},
    {SettingKey,         {Submodule},        kRecord,  u"SETT", kUnnumbered,              0,    0,     u"sett"},
    {SettingValue,       {Submodule},        kRecord,  u"R",    ChunkNumber::Identifier,  999,  0,     u""},
    {ApplicationVersion, {Settings},         kFields,  u"CFVR", kUnnumbered,              0,    0,     u""},
    {Transducers,        {System},           kList,    u"TRAN", kUnnumbered,              0,    0x100, u""},
    {Transducer,         {Transducers},      kRecord,  u"ITRA", kUnnumbered,              0,    0,     u""},
    {Comment,            {Document},         kFields,  u"CMTS", kUnnumbered,              0,    0,     u"CComment"},
    // The code for which loads search: it finds comments of older files, and none that are written today.
    {FormerComment,      {Document},         kFields,  u"cmts", kUnnumbered,              0,    0,     u""},
    {Hardware,           {Document},         kRecord,  u"HRDI", kUnnumbered,              0,    0,     u"CHardInfo"},
});
// clang-format on

constexpr bool IsInOrder()
{
    for (std::size_t i = 0; i < kChunks.size(); ++i)
        if (static_cast<std::size_t>(kChunks[i].kind) != i + 1) return false;
    return true;
}
static_assert(IsInOrder());

using Codes = std::array<std::uint32_t, kChunks.size() + 1>;

constexpr Codes CodesByKind()
{
    Codes codes{};
    for (std::size_t i = 0; i < kChunks.size(); ++i) codes[i + 1] = StringToFourCC(kChunks[i].code, false);
    return codes;
}
constexpr Codes kCodes = CodesByKind(); // only those of kinds without a number count

// A walk over a damaged file asks at each byte which kind a code is of, so these tables make the answer cheap.

// The kinds that a list may hold, as indices into the table.
struct Children {
    std::array<std::size_t, 12> places{};
    std::size_t count = 0;

    [[nodiscard]] std::span<const std::size_t> All() const { return {places.data(), count}; }
};

constexpr auto kChildren = [] {
    std::array<Children, kChunks.size() + 1> all; // by the number of the kind
    for (const ChunkFacts& list : kChunks) {
        Children& children = all[static_cast<std::size_t>(list.kind)];
        for (std::size_t i = 0; i < kChunks.size(); ++i)
            if (kChunks[i].parents.Has(list.kind)) children.places[children.count++] = i;
    }
    return all;
}();

// What all codes of a kind have in common: the bits under the mask.
struct CommonBits {
    std::uint32_t bits = 0;
    std::uint32_t mask = 0;
};

using AllCommonBits = std::array<CommonBits, kChunks.size()>;

constexpr AllCommonBits CommonBitsOfKinds()
{
    AllCommonBits all;
    for (std::size_t i = 0; i < kChunks.size(); ++i) {
        const wstring_view text = kChunks[i].code;
        const bool isWhole = kChunks[i].number == ChunkNumber::None || text.size() == 4;
        all[i].mask = isWhole ? ~std::uint32_t{0} : (std::uint32_t{1} << 8U * text.size()) - 1;
        all[i].bits = StringToFourCC(text, false) & all[i].mask;
    }
    return all;
}
constexpr AllCommonBits kCommonBits = CommonBitsOfKinds();

bool IsDigit(char16_t c) { return c >= u'0' && c <= u'9'; }

int HexDigit(char16_t c)
{
    if (IsDigit(c)) return c - u'0';
    return c >= u'A' && c <= u'F' ? c - u'A' + 10 : -1;
}

// The number in a text of nothing but digits, of that count when one is given.
std::optional<int> NumberIn(wstring_view digits, std::size_t count)
{
    if (digits.empty() || (count != 0 && digits.size() != count)) return std::nullopt;
    int number = 0;
    for (const char16_t c : digits) {
        if (!IsDigit(c)) return std::nullopt;
        number = number * 10 + (c - u'0');
    }
    return number;
}

} // namespace

std::span<const ChunkFacts> AllChunkFacts() { return kChunks; }

const ChunkFacts& FactsOf(ChunkKind kind)
{
    static constexpr ChunkFacts unknown;
    return kind == Unknown ? unknown : kChunks[static_cast<std::size_t>(kind) - 1];
}

std::ptrdiff_t MostOf(ChunkKind kind) { return std::ptrdiff_t{FactsOf(kind).highest} + 1; }

wstring ChunkCodeText(ChunkKind kind, int number)
{
    const ChunkFacts& facts = FactsOf(kind);
    wstring text(facts.code);
    switch (facts.number) {
    case ChunkNumber::Hexadecimal: return text += ToHex(static_cast<std::uint32_t>(number));
    case ChunkNumber::ThreeDigits: return text += ToDecimalPadded(number, 3);
    case ChunkNumber::FourDigits: return text += ToDecimalPadded(number, 4);
    case ChunkNumber::Decimal:
    case ChunkNumber::Identifier: return text += ToDecimal(number);
    case ChunkNumber::None: break;
    }
    return text;
}

std::uint32_t ChunkCode(ChunkKind kind, int number)
{
    return FactsOf(kind).number == ChunkNumber::None ? kCodes[static_cast<std::size_t>(kind)]
                                                     : StringToFourCC(ChunkCodeText(kind, number), true);
}

bool IsCodeOf(ChunkKind kind, std::uint32_t code)
{
    if (kind == Unknown) return false;
    const CommonBits& common = kCommonBits[static_cast<std::size_t>(kind) - 1];
    if ((code & common.mask) != common.bits) return false;
    return FactsOf(kind).number == ChunkNumber::None || NumberInChunkCode(kind, code).has_value();
}

std::optional<int> NumberInChunkCode(ChunkKind kind, std::uint32_t code)
{
    const ChunkFacts& facts = FactsOf(kind);
    const std::array<char16_t, 4> characters{
        static_cast<char16_t>(code & 0xFFU), static_cast<char16_t>(code >> 8U & 0xFFU),
        static_cast<char16_t>(code >> 16U & 0xFFU), static_cast<char16_t>(code >> 24U & 0xFFU)};
    const wstring_view text(characters.data(), characters.size());
    if (text.substr(0, facts.code.size()) != facts.code) return std::nullopt;
    const wstring_view rest = text.substr(facts.code.size());
    const wstring_view unpadded = rest.substr(0, rest.find_last_not_of(u' ') + 1);
    switch (facts.number) {
    case ChunkNumber::Hexadecimal:
        return rest.size() == 1 && HexDigit(rest.front()) >= 0 ? std::optional(HexDigit(rest.front())) : std::nullopt;
    case ChunkNumber::ThreeDigits: return NumberIn(rest, 3);
    case ChunkNumber::FourDigits: return NumberIn(rest, 4);
    case ChunkNumber::Decimal:
    case ChunkNumber::Identifier: return NumberIn(unpadded, 0);
    case ChunkNumber::None: break;
    }
    return std::nullopt;
}

ChunkKind ChunkKindIn(ChunkKind list, bool isList, std::uint32_t code)
{
    ChunkKind byRawNumber = Unknown;
    for (const std::size_t place : kChildren[static_cast<std::size_t>(list)].All()) {
        const ChunkFacts& facts = kChunks[place];
        if (facts.IsList() != isList) continue;
        if (IsCodeOf(facts.kind, code)) return facts.kind;
        if (facts.number == ChunkNumber::Identifier) byRawNumber = facts.kind;
    }
    if (byRawNumber == Unknown || !isList) return byRawNumber;
    const bool isKnownElsewhere = std::any_of(kChunks.begin(), kChunks.end(), [code](const ChunkFacts& facts) {
        return facts.IsList() && IsCodeOf(facts.kind, code);
    });
    return isKnownElsewhere ? Unknown : byRawNumber;
}

} // namespace ZelmResult
