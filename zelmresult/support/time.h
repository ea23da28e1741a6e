#pragma once

#include <cstdint>
#include <string>

namespace ZelmResult {

// A date and time of day in parts: eight numbers of 16 bits. Sunday is day of week 0. Windows has a SYSTEMTIME and a
// FILETIME of the same layout, which a std::bit_cast turns into these and back; elsewhere these have those names too.
struct OSYSTEMTIME {
    std::uint16_t wYear = 0;
    std::uint16_t wMonth = 0;
    std::uint16_t wDayOfWeek = 0;
    std::uint16_t wDay = 0;
    std::uint16_t wHour = 0;
    std::uint16_t wMinute = 0;
    std::uint16_t wSecond = 0;
    std::uint16_t wMilliseconds = 0;

    bool operator==(const OSYSTEMTIME&) const = default;
};

// A count of 100 ns since 1601-01-01 00:00:00 UTC, in two halves.
struct OFILETIME {
    std::uint32_t dwLowDateTime = 0;
    std::uint32_t dwHighDateTime = 0;

    bool operator==(const OFILETIME&) const = default;
};

#ifndef _WIN32
using SYSTEMTIME = OSYSTEMTIME;
using FILETIME = OFILETIME;
#endif

// Both conversions go by the Gregorian calendar, without any time zone. They return false, and don't change the target,
// for a date that doesn't exist or is outside the years 1601 to 30827. The day of week is calculated, not read.
bool SystemTimeToFileTime(const OSYSTEMTIME& time, OFILETIME& out);
bool FileTimeToSystemTime(const OFILETIME& time, OSYSTEMTIME& out);

// Seconds since 1970-01-01 00:00:00 UTC. Stored as the signed 64-bit count.
class OTime {
public:
    OTime() = default;
    explicit OTime(std::int64_t seconds) : m_seconds(seconds) {}

    [[nodiscard]] std::int64_t GetTime() const { return m_seconds; }
    [[nodiscard]] std::int64_t toSerializable64() const { return m_seconds; }
    static OTime fromSerializable64(std::int64_t count) { return OTime(count); }

    bool operator==(const OTime&) const = default;
    bool operator<(const OTime& other) const { return m_seconds < other.m_seconds; }

private:
    std::int64_t m_seconds = 0;
};

// Ticks of 100 ns since 1601-01-01 00:00:00 UTC. Stored as the unsigned 64-bit count.
class OFileTime {
public:
    OFileTime() = default;

    [[nodiscard]] std::uint64_t toSerializable64() const { return m_ticks; }
    [[nodiscard]] std::uint64_t toOFILETIME() const { return m_ticks; }
    static OFileTime fromSerializable64(std::uint64_t count) { return OFileTime(count); }
    static OFileTime fromOFILETIME(std::uint64_t count) { return OFileTime(count); }

    [[nodiscard]] OFILETIME toFILETIME() const;
    static OFileTime fromFILETIME(const OFILETIME& time);

    // Whole seconds; the full range of the ticks is kept.
    [[nodiscard]] OTime toOTime() const;
    // Only the low 32 bits of the seconds count, widened with their sign: times after 2038-01-19 wrap. Files of older
    // versions depend on it, so outside that range the two conversions don't undo each other.
    static OFileTime fromOTime(const OTime& time);

    bool operator==(const OFileTime&) const = default;
    bool operator<(const OFileTime& other) const { return m_ticks < other.m_ticks; }

private:
    explicit OFileTime(std::uint64_t ticks) : m_ticks(ticks) {}

    std::uint64_t m_ticks = 0;
};

// Conversions between UTC and the time zone that the process runs in, by what the system knows of that zone. Windows
// goes by the rules that the zone has now, also for earlier years.
class CAbsoluteTimeFormater {
public:
    // Milliseconds are kept and the day of week is calculated. A date that doesn't exist, the all-zero one too, comes
    // back unchanged. A local time that a clock change repeats is taken as the second of the two, which is standard
    // time where summer time ends; one that a change skips takes the offset from before the change. Earlier conversions
    // have no effect.
    static OSYSTEMTIME ConvertToTimeZone(OSYSTEMTIME utc);
    static OSYSTEMTIME ConvertToUTC(const OSYSTEMTIME& local);
};

// "1970-01-01 00:00:00Z". A time outside 1970 to the year 3000 prints as the epoch.
std::string OTimeToDateString(const OTime& time);

} // namespace ZelmResult
