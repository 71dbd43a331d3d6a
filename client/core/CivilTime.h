// Calendar times as a person writes them, and their relation to the DATE of automation. Portable.
// A CivilTime has no zone of its own: each variable's name says whether it is UTC or local.
#pragma once

#include "platform/Types.h"

#include <compare>
#include <optional>
#include <string>
#include <string_view>

namespace pim
{
struct CivilTime
{
    int year = 0;   // 100 to 9999
    int month = 0;  // 1 to 12
    int day = 0;    // 1 to 31
    int hour = 0;   // 0 to 23
    int minute = 0; // 0 to 59
    int second = 0; // 0 to 59

    auto operator<=>(const CivilTime&) const = default;
};

// The calendar time of a DATE, to the nearest second. None for 0.0, which stands for a time that
// was never set, for what is not a number, and outside the years 100 to 9999.
std::optional<CivilTime> CivilFromDate(DATE date);
// None for none, too.
std::optional<CivilTime> CivilFromDate(const std::optional<DATE>& date);

// The DATE of an existing calendar time.
DATE DateFromCivil(const CivilTime& time);

// The same clock time a number of days later; a negative number goes back. None outside the years
// 100 to 9999.
std::optional<CivilTime> AddDays(const CivilTime& time, int days);
std::optional<CivilTime> AddSeconds(const CivilTime& time, long long seconds);

// 0 for Sunday to 6 for Saturday.
int WeekdayOf(const CivilTime& time);

// Whether no part of the day has passed.
bool IsMidnight(const CivilTime& time);

std::wstring FormatDay(const CivilTime& time);         // 2024-05-01
std::wstring FormatClock(const CivilTime& time);       // 10:00, or 10:00:30 where seconds are set
std::wstring FormatDayAndClock(const CivilTime& time); // 2024-05-01 10:00
std::wstring FormatIso(const CivilTime& time);         // 2024-05-01T10:00:00

// What a person typed as a time.
struct TypedTime
{
    CivilTime time;
    bool isUtc = false;    // the text ended in Z
    bool hasClock = false; // the text had a time of day, not a day alone
};

// Reads 2024-05-01, 2024-05-01 10:00 and 2024-05-01 10:00:30, with T in place of the blank and an
// optional Z behind a clock time. None for any other text and for days that do not exist.
std::optional<TypedTime> ParseTypedTime(std::wstring_view text);

// The machine's time zone, as the client needs it.
class ILocalZone
{
  public:
    virtual ~ILocalZone() = default;
    // By the zone's rules for that time; as it is where the system cannot convert it.
    virtual CivilTime LocalFromUtc(const CivilTime& utc) const = 0;
    virtual CivilTime UtcFromLocal(const CivilTime& local) const = 0;
};
} // namespace pim
