#include "zelmresult/support/time.h"

#include "zelmresult/support/file_time.h"
#include "zelmresult/support/time_zone.h"

namespace ZelmResult {

namespace {

constexpr std::int64_t kTicksPerMillisecond = 10000;
constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kLastPrintableTime = 32535215999;
constexpr int kFirstYear = 1601;
constexpr int kLastYear = 30827;

struct CivilDate {
    std::int64_t year;
    unsigned month;
    unsigned day;
};

// Days are counted from 1970-01-01. Years are shifted to begin in March, so that the leap day is the last of a year.
constexpr std::int64_t DaysFromCivil(CivilDate date)
{
    const std::int64_t year = date.year - (date.month <= 2 ? 1 : 0);
    const std::int64_t era = (year >= 0 ? year : year - 399) / 400;
    const auto yearOfEra = static_cast<unsigned>(year - era * 400);
    const unsigned dayOfYear = (153 * (date.month + (date.month > 2 ? -3U : 9U)) + 2) / 5 + date.day - 1;
    const unsigned dayOfEra = yearOfEra * 365 + yearOfEra / 4 - yearOfEra / 100 + dayOfYear;
    return era * 146097 + static_cast<std::int64_t>(dayOfEra) - 719468;
}

constexpr CivilDate CivilFromDays(std::int64_t days)
{
    const std::int64_t shifted = days + 719468;
    const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146096) / 146097;
    const auto dayOfEra = static_cast<unsigned>(shifted - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned shiftedMonth = (5 * dayOfYear + 2) / 153;
    const unsigned month = shiftedMonth < 10 ? shiftedMonth + 3 : shiftedMonth - 9;
    const std::int64_t year = static_cast<std::int64_t>(yearOfEra) + era * 400 + (month <= 2 ? 1 : 0);
    return {year, month, dayOfYear - (153 * shiftedMonth + 2) / 5 + 1};
}

constexpr unsigned DayOfWeek(std::int64_t days)
{
    return static_cast<unsigned>(((days + 4) % 7 + 7) % 7); // 1970-01-01 was a Thursday
}

bool IsValid(const OSYSTEMTIME& time)
{
    if (time.wYear < kFirstYear || time.wYear > kLastYear || time.wMonth < 1 || time.wMonth > 12 || time.wDay < 1)
        return false;
    const CivilDate date{time.wYear, time.wMonth, time.wDay};
    const CivilDate same = CivilFromDays(DaysFromCivil(date));
    return same.month == date.month && same.day == date.day && time.wHour < 24 && time.wMinute < 60 &&
           time.wSecond < 60 && time.wMilliseconds < 1000;
}

std::int64_t SecondsSince1970(const OSYSTEMTIME& time)
{
    const std::int64_t days = DaysFromCivil({time.wYear, time.wMonth, time.wDay});
    return days * kSecondsPerDay + std::int64_t{time.wHour} * 3600 + std::int64_t{time.wMinute} * 60 + time.wSecond;
}

// False when the year is out of the range that an OSYSTEMTIME holds.
bool FromSecondsSince1970(std::int64_t seconds, std::uint16_t milliseconds, OSYSTEMTIME& out)
{
    std::int64_t days = seconds / kSecondsPerDay;
    std::int64_t rest = seconds % kSecondsPerDay;
    if (rest < 0) {
        rest += kSecondsPerDay;
        --days;
    }
    const CivilDate date = CivilFromDays(days);
    if (date.year < kFirstYear || date.year > kLastYear) return false;
    out.wYear = static_cast<std::uint16_t>(date.year);
    out.wMonth = static_cast<std::uint16_t>(date.month);
    out.wDayOfWeek = static_cast<std::uint16_t>(DayOfWeek(days));
    out.wDay = static_cast<std::uint16_t>(date.day);
    out.wHour = static_cast<std::uint16_t>(rest / 3600);
    out.wMinute = static_cast<std::uint16_t>(rest / 60 % 60);
    out.wSecond = static_cast<std::uint16_t>(rest % 60);
    out.wMilliseconds = milliseconds;
    return true;
}

// By how much local time is ahead of UTC at a local time, in seconds since 1970-01-01 00:00 of the local clock. Not by
// the system, whose answer for a repeated hour may depend on earlier calls. No zone is a day from UTC, so a day earlier
// and a day later are on both sides of a nearby change. The offset before the change is right only if it leads to a
// moment that still has it; the offset after the change is tried first, since in a repeated hour both are right.
bool OffsetOfLocalTime(std::int64_t local, std::int64_t& offset)
{
    std::int64_t before = 0;
    std::int64_t after = 0;
    std::int64_t there = 0;
    if (!OffsetOfZone(local - kSecondsPerDay, before) || !OffsetOfZone(local + kSecondsPerDay, after) ||
        !OffsetOfZone(local - after, there))
        return false;
    offset = there == after ? after : before;
    return true;
}

} // namespace

bool SystemTimeToFileTime(const OSYSTEMTIME& time, OFILETIME& out)
{
    if (!IsValid(time)) return false;
    const std::int64_t ticks =
        (SecondsSince1970(time) + kEpochDifference) * kTicksPerSecond + time.wMilliseconds * kTicksPerMillisecond;
    out = OFileTime::fromOFILETIME(static_cast<std::uint64_t>(ticks)).toFILETIME();
    return true;
}

bool FileTimeToSystemTime(const OFILETIME& time, OSYSTEMTIME& out)
{
    const std::uint64_t ticks = OFileTime::fromFILETIME(time).toOFILETIME();
    if (ticks > INT64_MAX) return false;
    const auto count = static_cast<std::int64_t>(ticks);
    const auto milliseconds = static_cast<std::uint16_t>(count % kTicksPerSecond / kTicksPerMillisecond);
    return FromSecondsSince1970(count / kTicksPerSecond - kEpochDifference, milliseconds, out);
}

OFILETIME OFileTime::toFILETIME() const
{
    return {static_cast<std::uint32_t>(m_ticks), static_cast<std::uint32_t>(m_ticks >> 32U)};
}

OFileTime OFileTime::fromFILETIME(const OFILETIME& time)
{
    return OFileTime(static_cast<std::uint64_t>(time.dwHighDateTime) << 32U | time.dwLowDateTime);
}

OTime OFileTime::toOTime() const
{
    return OTime(static_cast<std::int64_t>(m_ticks / static_cast<std::uint64_t>(kTicksPerSecond)) - kEpochDifference);
}

OFileTime OFileTime::fromOTime(const OTime& time)
{
    const auto seconds = static_cast<std::int32_t>(static_cast<std::uint32_t>(time.GetTime()));
    return OFileTime(static_cast<std::uint64_t>((seconds + kEpochDifference) * kTicksPerSecond));
}

OSYSTEMTIME CAbsoluteTimeFormater::ConvertToTimeZone(OSYSTEMTIME utc)
{
    std::int64_t offset = 0;
    if (!IsValid(utc)) return utc;
    const std::int64_t seconds = SecondsSince1970(utc);
    OSYSTEMTIME out = utc;
    return OffsetOfZone(seconds, offset) && FromSecondsSince1970(seconds + offset, utc.wMilliseconds, out) ? out : utc;
}

OSYSTEMTIME CAbsoluteTimeFormater::ConvertToUTC(const OSYSTEMTIME& local)
{
    std::int64_t offset = 0;
    if (!IsValid(local)) return local;
    const std::int64_t seconds = SecondsSince1970(local);
    OSYSTEMTIME out = local;
    return OffsetOfLocalTime(seconds, offset) && FromSecondsSince1970(seconds - offset, local.wMilliseconds, out)
               ? out
               : local;
}

std::string OTimeToDateString(const OTime& time)
{
    std::int64_t seconds = time.GetTime();
    if (seconds < 0 || seconds > kLastPrintableTime) seconds = 0;
    OSYSTEMTIME parts;
    (void)FromSecondsSince1970(seconds, 0, parts); // the test above keeps it in range
    const auto digits = [](unsigned value, unsigned count) {
        std::string text(count, '0');
        for (; count > 0; value /= 10) text[--count] = static_cast<char>('0' + value % 10);
        return text;
    };
    return digits(parts.wYear, 4) + '-' + digits(parts.wMonth, 2) + '-' + digits(parts.wDay, 2) + ' ' +
           digits(parts.wHour, 2) + ':' + digits(parts.wMinute, 2) + ':' + digits(parts.wSecond, 2) + 'Z';
}

} // namespace ZelmResult
