#include "zelmresult/support/time.h"

#include <cstdint>
#include <ctime>
#include <gtest/gtest.h>
#include <utility>
#include <vector>

namespace ZelmResult {
namespace {

TEST(Time, CountsAndTheirOrder)
{
    EXPECT_EQ(OTime().GetTime(), 0);
    EXPECT_EQ(OTime::fromSerializable64(INT64_MIN).toSerializable64(), INT64_MIN);
    EXPECT_EQ(OFileTime::fromSerializable64(UINT64_MAX).toSerializable64(), UINT64_MAX);
    EXPECT_LT(OTime(-1), OTime(0));
    EXPECT_LT(OFileTime(), OFileTime::fromOFILETIME(UINT64_MAX)) << "unsigned";

    const FILETIME halves = OFileTime::fromOFILETIME(0x0123456789ABCDEFU).toFILETIME();
    EXPECT_EQ(halves, (FILETIME{0x89ABCDEFU, 0x01234567U}));
    EXPECT_EQ(OFileTime::fromFILETIME(halves).toOFILETIME(), 0x0123456789ABCDEFU);
}

TEST(Time, TicksAndSeconds)
{
    constexpr std::int64_t epoch = 116444736000000000;
    EXPECT_EQ(OFileTime::fromOFILETIME(epoch).toOTime(), OTime(0));
    EXPECT_EQ(OFileTime::fromOFILETIME(epoch - 1).toOTime(), OTime(-1)) << "whole seconds, rounded down";
    EXPECT_EQ(OFileTime().toOTime(), OTime(-11644473600));
    EXPECT_EQ(OFileTime::fromOFILETIME(UINT64_MAX).toOTime(), OTime(1844674407370 - 11644473600));

    const struct {
        std::int64_t seconds;
        std::int64_t kept; // by the wrap into signed 32 bits
    } wraps[] = {{0, 0},           {-1, -1},        {2147483647, 2147483647}, {2147483648, -2147483648},
                 {4294967295, -1}, {4294967296, 0}, {-4294967297, -1}};
    for (const auto& [seconds, kept] : wraps)
        EXPECT_EQ(OFileTime::fromOTime(OTime(seconds)).toOFILETIME(),
                  static_cast<std::uint64_t>(epoch + kept * 10000000));
}

TEST(Time, DateText)
{
    const struct {
        std::int64_t seconds;
        const char* text;
    } dates[] = {
        {0, "1970-01-01 00:00:00Z"},           {951782399, "2000-02-28 23:59:59Z"},
        {951782400, "2000-02-29 00:00:00Z"},   {4107542400, "2100-03-01 00:00:00Z"},
        {1735689599, "2024-12-31 23:59:59Z"},  {32535215999, "3000-12-31 23:59:59Z"},
        {32535216000, "1970-01-01 00:00:00Z"}, {-1, "1970-01-01 00:00:00Z"},
        {INT64_MIN, "1970-01-01 00:00:00Z"},   {INT64_MAX, "1970-01-01 00:00:00Z"},
    };
    for (const auto& [seconds, text] : dates) EXPECT_EQ(OTimeToDateString(OTime(seconds)), text) << seconds;
}

TEST(Time, CalendarOfFileTimes)
{
    const struct {
        SYSTEMTIME parts;
        std::uint64_t ticks;
    } known[] = {
        {{1601, 1, 1, 1, 0, 0, 0, 0}, 0},
        {{1970, 1, 4, 1, 0, 0, 0, 0}, 116444736000000000},
        {{2000, 2, 2, 29, 23, 59, 59, 999}, 125963423999990000},
        {{30827, 12, 5, 31, 23, 59, 59, 999}, 9223149887999990000},
    };
    for (const auto& [parts, ticks] : known) {
        SYSTEMTIME back;
        EXPECT_TRUE(FileTimeToSystemTime(OFileTime::fromOFILETIME(ticks + 9999).toFILETIME(), back));
        EXPECT_EQ(back, parts);
        SYSTEMTIME given = parts;
        given.wDayOfWeek = 99; // worked out, not read
        FILETIME time;
        EXPECT_TRUE(SystemTimeToFileTime(given, time));
        EXPECT_EQ(OFileTime::fromFILETIME(time).toOFILETIME(), ticks);
    }
    // Every day of four centuries has its own count and comes back.
    SYSTEMTIME day{1999, 12, 0, 31, 0, 0, 0, 0};
    FILETIME time;
    ASSERT_TRUE(SystemTimeToFileTime(day, time));
    std::uint64_t ticks = OFileTime::fromFILETIME(time).toOFILETIME();
    for (int i = 0; i < 146097; ++i, ticks += 864000000000) {
        ASSERT_TRUE(FileTimeToSystemTime(OFileTime::fromOFILETIME(ticks).toFILETIME(), day));
        ASSERT_TRUE(SystemTimeToFileTime(day, time));
        ASSERT_EQ(OFileTime::fromFILETIME(time).toOFILETIME(), ticks);
    }
    EXPECT_EQ(day, (SYSTEMTIME{2399, 12, 4, 30, 0, 0, 0, 0}));
}

TEST(Time, ADateThatDoesNotExistStaysAsItIs)
{
    std::vector<SYSTEMTIME> wrong = {{}, {2023, 2, 3, 29}, {2100, 2, 3, 29}, {2024, 4, 3, 31}};
    const std::pair<std::uint16_t SYSTEMTIME::*, std::uint16_t> outOfRange[] = {
        {&SYSTEMTIME::wYear, 1600},  {&SYSTEMTIME::wYear, 30828}, {&SYSTEMTIME::wMonth, 0},
        {&SYSTEMTIME::wMonth, 13},   {&SYSTEMTIME::wDay, 0},      {&SYSTEMTIME::wHour, 24},
        {&SYSTEMTIME::wMinute, 60},  {&SYSTEMTIME::wSecond, 60},  {&SYSTEMTIME::wMilliseconds, 1000},
        {&SYSTEMTIME::wMonth, 65535}};
    for (const auto& [member, value] : outOfRange) wrong.push_back({2024, 1, 3, 1}), wrong.back().*member = value;
    for (const SYSTEMTIME& parts : wrong) {
        FILETIME time{1, 2};
        EXPECT_FALSE(SystemTimeToFileTime(parts, time));
        EXPECT_EQ(time, (FILETIME{1, 2}));
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone(parts), parts);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(parts), parts);
    }
    SYSTEMTIME untouched{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_FALSE(FileTimeToSystemTime(OFileTime::fromOFILETIME(UINT64_MAX).toFILETIME(), untouched));
    EXPECT_FALSE(FileTimeToSystemTime(OFileTime::fromOFILETIME(9223149888000000000).toFILETIME(), untouched));
    EXPECT_EQ(untouched.wMilliseconds, 8);
}

// The zone is whatever the process runs in, so the C library says what to expect.
TEST(Time, LocalTimesInTheZoneOfTheProcess)
{
    const std::time_t moments[] = {0, 951782400, 1704067199, 1720000000, 4102444800, -1000000000};
    for (const std::time_t moment : moments) {
        SYSTEMTIME utc;
        const auto ticks = static_cast<std::uint64_t>((moment + 11644473600) * 10000000);
        ASSERT_TRUE(FileTimeToSystemTime(OFileTime::fromOFILETIME(ticks + 1230000).toFILETIME(), utc));
        ::tzset();
        std::tm expected{};
        ASSERT_NE(::localtime_r(&moment, &expected), nullptr);

        const SYSTEMTIME local = CAbsoluteTimeFormater::ConvertToTimeZone(utc);
        EXPECT_EQ(local.wYear, expected.tm_year + 1900);
        EXPECT_EQ(local.wMonth, expected.tm_mon + 1);
        EXPECT_EQ(local.wDay, expected.tm_mday);
        EXPECT_EQ(local.wDayOfWeek, expected.tm_wday);
        EXPECT_EQ(local.wHour, expected.tm_hour);
        EXPECT_EQ(local.wMinute, expected.tm_min);
        EXPECT_EQ(local.wSecond, expected.tm_sec);
        EXPECT_EQ(local.wMilliseconds, 123);
        EXPECT_EQ(CAbsoluteTimeFormater::ConvertToUTC(local), utc);
    }
    EXPECT_EQ(CAbsoluteTimeFormater::ConvertToTimeZone({1601, 1, 1, 1, 0, 0, 0, 0}).wYear, 1601)
        << "never out of range";
}

} // namespace
} // namespace ZelmResult
