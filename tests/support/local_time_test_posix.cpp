#include "zelmresult/support/time.h"

#include <ctime>
#include <gtest/gtest.h>

namespace ZelmResult {
namespace {

OSYSTEMTIME PartsOf(std::int64_t seconds)
{
    constexpr std::int64_t epoch = 11644473600;
    const auto ticks = static_cast<std::uint64_t>((epoch + seconds) * 10000000 + 1230000);
    OSYSTEMTIME parts;
    EXPECT_TRUE(FileTimeToSystemTime(OFileTime::fromOFILETIME(ticks).toFILETIME(), parts));
    return parts;
}

// The zone is whatever the process runs in, so the C library says what to expect.
TEST(LocalTime, IsThatOfTheZoneOfTheProcess)
{
    ::tzset();
    for (const std::int64_t seconds : {0LL, 951782400LL, 1720000000LL, 4102444800LL, -1000000000LL, -1LL}) {
        const auto moment = static_cast<std::time_t>(seconds);
        if (moment != seconds) continue; // beyond the last moment of a system whose times have 32 bits
        std::tm expected{};
        ASSERT_NE(::localtime_r(&moment, &expected), nullptr);
        const OSYSTEMTIME utc = PartsOf(seconds);
        const OSYSTEMTIME local = CAbsoluteTimeFormater::ConvertToTimeZone(utc);
        EXPECT_EQ(local, PartsOf(seconds + expected.tm_gmtoff));
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(local), utc);
    }
    EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone({1601, 1, 1, 1, 0, 0, 0, 0}).wYear, 1601)
        << "never out of range";
}

} // namespace
} // namespace ZelmResult
