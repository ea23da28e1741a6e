#include "tests/builders/platform.h"
#include "zelmresult/support/time.h"

#include <cstdint>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace ZelmResult {
namespace {

constexpr std::int64_t kEpoch = 116444736000000000; // in ticks

OSYSTEMTIME PartsOf(std::int64_t ticks)
{
    OSYSTEMTIME parts;
    EXPECT_TRUE(FileTimeToSystemTime(OFileTime::fromOFILETIME(static_cast<std::uint64_t>(ticks)).toFILETIME(), parts));
    return parts;
}

std::int64_t TicksOf(const OSYSTEMTIME& parts)
{
    OFILETIME time;
    EXPECT_TRUE(SystemTimeToFileTime(parts, time));
    return static_cast<std::int64_t>(OFileTime::fromFILETIME(time).toOFILETIME());
}

TEST(Time, TicksAndSeconds)
{
    EXPECT_EQ(OFileTime::fromOFILETIME(0x0123456789ABCDEFU).toFILETIME(), (OFILETIME{0x89ABCDEFU, 0x01234567U}));
    EXPECT_EQ(OFileTime::fromOFILETIME(kEpoch - 1).toOTime(), OTime(-1)) << "whole seconds, rounded down";
    EXPECT_EQ(OFileTime::fromOFILETIME(UINT64_MAX).toOTime(), OTime(1844674407370 - 11644473600));
    const std::pair<std::int64_t, std::int64_t> wraps[] = {// into signed 32 bits
                                                           {0, 0},
                                                           {2147483647, 2147483647},
                                                           {2147483648, -2147483648},
                                                           {-4294967297, -1}};
    for (const auto& [seconds, kept] : wraps)
        EXPECT_EQ(OFileTime::fromOTime(OTime(seconds)).toOFILETIME(),
                  static_cast<std::uint64_t>(kEpoch + kept * 10000000));
}

TEST(Time, DateText)
{
    const std::pair<std::int64_t, const char*> dates[] = {
        {0, "1970-01-01 00:00:00Z"},           {951782400, "2000-02-29 00:00:00Z"},
        {4107542400, "2100-03-01 00:00:00Z"},  {32535215999, "3000-12-31 23:59:59Z"},
        {32535216000, "1970-01-01 00:00:00Z"}, {INT64_MIN, "1970-01-01 00:00:00Z"}};
    for (const auto& [seconds, text] : dates) EXPECT_EQ(OTimeToDateString(OTime(seconds)), text) << seconds;
}

TEST(Time, CalendarOfFileTimes)
{
    const std::pair<OSYSTEMTIME, std::int64_t> known[] = {
        {{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
        {{2000, 2, 2, 29, 23, 59, 59, 999}, 125963423999990000},
        {{30827, 12, 5, 31, 23, 59, 59, 999}, 9223149887999990000},
    };
    for (const auto& [parts, ticks] : known) {
        EXPECT_EQ(PartsOf(ticks + 9999), parts);
        OSYSTEMTIME given = parts;
        given.wDayOfWeek = 99; // worked out, not read
        EXPECT_EQ(TicksOf(given), ticks);
    }
    // Every day of four centuries has its own count and is restored.
    const std::int64_t first = TicksOf({1999, 12, 0, 31, 0, 0, 0, 0});
    for (int i = 0; i < 146097; ++i) {
        const std::int64_t ticks = first + i * 864000000000;
        ASSERT_EQ(TicksOf(PartsOf(ticks)), ticks);
    }
}

TEST(Time, ADateThatDoesNotExistStaysAsItIs)
{
    std::vector<OSYSTEMTIME> wrong = {{}, {2023, 2, 3, 29}, {2100, 2, 3, 29}, {2024, 4, 3, 31}};
    const std::pair<std::uint16_t OSYSTEMTIME::*, std::uint16_t> outOfRange[] = {
        {&OSYSTEMTIME::wYear, 1600},  {&OSYSTEMTIME::wYear, 30828}, {&OSYSTEMTIME::wMonth, 0},
        {&OSYSTEMTIME::wMonth, 13},   {&OSYSTEMTIME::wDay, 0},      {&OSYSTEMTIME::wHour, 24},
        {&OSYSTEMTIME::wMinute, 60},  {&OSYSTEMTIME::wSecond, 60},  {&OSYSTEMTIME::wMilliseconds, 1000},
        {&OSYSTEMTIME::wMonth, 65535}};
    for (const auto& [member, value] : outOfRange) {
        wrong.push_back({2024, 1, 3, 1});
        wrong.back().*member = value;
    }
    for (const OSYSTEMTIME& parts : wrong) {
        OFILETIME time{1, 2};
        EXPECT_FALSE(SystemTimeToFileTime(parts, time));
        EXPECT_EQ(time, (OFILETIME{1, 2}));
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone(parts), parts);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(parts), parts);
    }
    OSYSTEMTIME untouched{1, 2, 3, 4, 5, 6, 7, 8};
    for (const std::uint64_t ticks : {UINT64_MAX, std::uint64_t{9223149888000000000}})
        EXPECT_FALSE(FileTimeToSystemTime(OFileTime::fromOFILETIME(ticks).toFILETIME(), untouched));
    EXPECT_EQ(untouched.wMilliseconds, 8);
}

TEST(Time, EveryHourAroundAClockChangeHasOneAnswer)
{
    // Days of 2024 by their clocks; minutes of the local clock, and by how many it is ahead of UTC.
    const struct {
        const char* zone;
        int month, day;
        std::vector<std::pair<int, int>> minutes;
    } changes[] = {
        {"CET-1CEST,M3.5.0,M10.5.0/3", 10, 27, {{119, 120}, {120, 60}, {179, 60}, {180, 60}}}, // repeats 2 to 3
        {"CET-1CEST,M3.5.0,M10.5.0/3", 3, 31, {{119, 60}, {120, 60}, {179, 60}, {180, 120}}},  // skips 2 to 3
        {"EST5EDT,M3.2.0,M11.1.0", 11, 3, {{59, -240}, {60, -300}, {119, -300}, {120, -300}}}, // repeats 1 to 2
        {"EST5EDT,M3.2.0,M11.1.0", 3, 10, {{119, -300}, {120, -300}, {179, -300}, {180, -240}}},
        {"LHST-10:30LHDT-11,M10.1.0,M4.1.0", 4, 7, {{89, 660}, {90, 630}, {119, 630}, {120, 630}}}, // half an hour
        {"LHST-10:30LHDT-11,M10.1.0,M4.1.0", 10, 6, {{119, 630}, {120, 630}, {149, 630}, {150, 660}}}};
    int zones = 0;
    for (const auto& change : changes) {
#ifdef _WIN32 // a process there keeps the zone that it began in, so a run is for one
        if (change.zone != test::Variable::Value("TZ")) continue;
#endif
        ++zones;
        const test::Variable zone("TZ", change.zone);
        const auto wall = [&](int month, int day, int minute) {
            return PartsOf(TicksOf({2024, std::uint16_t(month), 0, std::uint16_t(day)}) + minute * 600000000LL);
        };
        for (const int earlier : {1, 7}) // winter and summer: no answer depends on the one before it
            for (const auto& [minute, ahead] : change.minutes) {
                (void)CAbsoluteTimeFormater::ConvertToUTC(wall(earlier, 1, 0));
                EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(wall(change.month, change.day, minute)),
                          wall(change.month, change.day, minute - ahead))
                    << change.zone << ", minute " << minute << " of month " << change.month;
            }
    }
    EXPECT_GT(zones, 0);
}

} // namespace
} // namespace ZelmResult
