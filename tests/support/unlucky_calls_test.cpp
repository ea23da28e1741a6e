// The oddest arguments for times and identifiers.

#include "zelmresult/support/idn.h"
#include "zelmresult/support/time.h"

#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

TEST(UnluckySupport, TimesAtTheirEnds)
{
    for (const std::int64_t seconds : {INT64_MIN, INT64_MIN + 1, std::int64_t{-1}, std::int64_t{0}, INT64_MAX}) {
        const OTime time(seconds);
        const OFileTime ticks = OFileTime::fromOTime(time);
        EXPECT_EQ(OFileTime::fromFILETIME(ticks.toFILETIME()), ticks);
        EXPECT_EQ(OTimeToDateString(time), "1970-01-01 00:00:00Z");
        (void)OFileTime::fromOFILETIME(static_cast<std::uint64_t>(seconds)).toOTime();
    }
    for (const int number : {0, 13, 65535}) {
        const auto n = static_cast<std::uint16_t>(number);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone({n, n, n, n, n, n, n, n}).wDay, n);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC({n, n, n, n, n, n, n, n}).wDay, n);
    }
}

TEST(UnluckySupport, Identifiers)
{
    constexpr std::uint32_t numbers[] = {0, 1, 255, 65533, 65534, 65535, 65536, 0xFFFFFFFF};
    for (const std::uint32_t a : numbers)
        for (const std::uint32_t b : numbers)
            for (const std::uint32_t c : numbers) {
                const idn::Idn idn(idn::Analyzer(c), idn::Module(a, b), idn::Submodule(b, c), idn::Setting(c));
                idn::Idn back;
                ASSERT_TRUE(idn::IdnString::stringToIdn(idn::IdnString::idnToStringT(idn), back) && back == idn);
                idn::Legacy legacy;
                ASSERT_TRUE(!idn::Legacy::convertIdnToLegacy(idn, legacy, false) || legacy.toIdn() == idn);
            }
}

} // namespace
} // namespace ZelmResult
