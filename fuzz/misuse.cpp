// A byte that says what is misused, then how; see misuse/rooms.h.

#include "fuzz/misuse/rooms.h"
#include "zelmresult/support/time.h"

#include <cfloat>
#include <cmath>

namespace ZelmResult::fuzz {

std::int32_t Odd::number()
{
    constexpr std::int32_t numbers[] = {INT32_MIN, INT32_MIN + 1, -2,       -1, 0, 1, 2, 3, 4, 33, 999,
                                        65535,     INT32_MAX - 1, INT32_MAX};
    return numbers[choice(std::size(numbers))];
}

std::int16_t Odd::shortNumber() { return pick<std::int16_t>({INT16_MIN, -1, 0, 1, 3, 16, 17, 999, 1000, INT16_MAX}); }

std::uint32_t Odd::word()
{
    return pick<std::uint32_t>({0, 1, 255, 999, 1000, 10000, 65533, 65534, 65535, 65536, 0x7FFFFFFF, 0xFFFFFFFF});
}

float Odd::value()
{
    return pick({NAN, INFINITY, -INFINITY, FLT_MAX, -FLT_MAX, 1e-45F, 1e-38F, -1e-30F, -1.0F, 0.0F, 7.0F, 9.9999F});
}

std::int32_t Odd::size() { return pick<std::int32_t>({INT32_MIN, -1, 0, 1, 2, 3}); }

wstring Odd::text()
{
    constexpr std::size_t kLong = 70000;
    switch (choice(6)) {
    case 0: return {};
    case 1: return u"Time";
    case 2: return u"Slice number";
    case 3: return u"rpm";
    case 4: return u"\xD800";
    default: return wstring(choice(4) == 0 ? kLong : 5, u't');
    }
}

idn::Idn Odd::idn()
{
    const idn::Module module(word(), word());
    const idn::Submodule submodule(word(), word());
    return {idn::Analyzer(word()), module, submodule, idn::Setting(word())};
}

namespace {

// Times and identifiers.
struct SupportMisuse {
    Odd& odd;

    explicit SupportMisuse(Odd& input) : odd(input) {}
    void Step() const
    {
        const OTime time(odd.pick<std::int64_t>({INT64_MIN, INT64_MIN + 1, -1, 0, INT64_MAX}));
        const OFileTime ticks = OFileTime::fromOTime(time);
        Require(OFileTime::fromFILETIME(ticks.toFILETIME()) == ticks, "a time has its own ticks");
        Require(OTimeToDateString(time) == "1970-01-01 00:00:00Z", "a time past the calendar has the text of 0");
        const auto n = odd.pick<std::uint16_t>({0, 13, 65535});
        Require(CAbsoluteTimeFormater::ConvertToTimeZone({n, n, n, n, n, n, n, n}).wDay == n, "no date is left alone");
        Require(CAbsoluteTimeFormater::ConvertToUTC({n, n, n, n, n, n, n, n}).wDay == n, "no local date is left alone");
        const idn::Idn idn = odd.idn();
        idn::Idn back;
        Require(idn::IdnString::stringToIdn(idn::IdnString::idnToStringT(idn), back), "an identifier has a text");
        Require(back == idn, "the text of an identifier is its own");
        idn::Legacy legacy;
        if (idn::Legacy::convertIdnToLegacy(idn, legacy, false))
            Require(legacy.toIdn() == idn, "short numbers are the identifier's own");
    }
};

void MisuseSupport(Odd& odd) { Run<SupportMisuse>(odd); }

} // namespace

} // namespace ZelmResult::fuzz

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace ZelmResult::fuzz;
    constexpr void (*rooms[])(Odd&) = {MisuseSupport,  MisuseFiles,      MisuseQuantities,
                                       MisuseResults,  MisuseWaterfalls, MisuseReferences,
                                       MisuseSettings, MisuseRecordings, MisuseDocuments};
    Odd odd(data, size);
    rooms[odd.choice(std::size(rooms))](odd);
    return 0;
}
