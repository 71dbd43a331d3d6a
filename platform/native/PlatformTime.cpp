#include "platform/PlatformTime.h"

#include <cmath>

namespace
{
using Days = std::int64_t;

constexpr std::int64_t kSecondsPerDay = 86400;
constexpr std::int64_t kTicksPerMillisecond = 10'000;
constexpr std::int64_t kTicksPerDay = kSecondsPerDay * 1000 * kTicksPerMillisecond;

// Days before the first of each month of a year that is no leap year.
constexpr int kDaysBeforeMonth[] = {0, 31, 59, 90, 120, 151, 181, 212, 243, 273, 304, 334};

constexpr bool IsLeapYear(int year)
{
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

constexpr int DaysInMonth(int year, int month)
{
    if (month == 2)
        return IsLeapYear(year) ? 29 : 28;
    return month == 4 || month == 6 || month == 9 || month == 11 ? 30 : 31;
}

// Days from 0001-01-01 to a date of the Gregorian calendar, which is taken to hold for all years.
constexpr Days DayNumber(int year, int month, int day)
{
    const Days before = year - 1;
    const Days leapDay = month > 2 && IsLeapYear(year) ? 1 : 0;
    return before * 365 + before / 4 - before / 100 + before / 400 + kDaysBeforeMonth[month - 1] +
           leapDay + day - 1;
}

constexpr Days kDateEpoch = DayNumber(1899, 12, 30);
constexpr Days kFileTimeEpoch = DayNumber(1601, 1, 1);
constexpr Days kFirstDateDay = DayNumber(100, 1, 1) - kDateEpoch;
constexpr Days kLastDateDay = DayNumber(9999, 12, 31) - kDateEpoch;
static_assert(kFirstDateDay == -657434 && kLastDateDay == 2958465);

// Fills date and day of week from a day number.
void SetDate(SYSTEMTIME& time, Days dayNumber)
{
    // A guess from the mean length of a year is never more than one year off.
    int year = static_cast<int>(dayNumber * 400 / 146097) + 1;
    while (DayNumber(year, 1, 1) > dayNumber)
        --year;
    while (DayNumber(year + 1, 1, 1) <= dayNumber)
        ++year;
    int month = 12;
    while (DayNumber(year, month, 1) > dayNumber)
        --month;
    time.wYear = static_cast<std::uint16_t>(year);
    time.wMonth = static_cast<std::uint16_t>(month);
    time.wDay = static_cast<std::uint16_t>(dayNumber - DayNumber(year, month, 1) + 1);
    // 0001-01-01 was a Monday.
    time.wDayOfWeek = static_cast<std::uint16_t>((dayNumber + 1) % 7);
}

void SetTimeOfDay(SYSTEMTIME& time, std::int64_t seconds)
{
    time.wHour = static_cast<std::uint16_t>(seconds / 3600);
    time.wMinute = static_cast<std::uint16_t>(seconds / 60 % 60);
    time.wSecond = static_cast<std::uint16_t>(seconds % 60);
}

bool IsTimeOfDay(const SYSTEMTIME& time)
{
    return time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60;
}

std::int64_t SecondsOfDay(const SYSTEMTIME& time)
{
    return time.wHour * 3600 + time.wMinute * 60 + time.wSecond;
}
} // namespace

int SystemTimeToVariantTime(SYSTEMTIME* time, double* date)
{
    int year = time->wYear;
    if (year < 50)
        year += 2000;
    else if (year < 100)
        year += 1900;
    if (year > 9999 || time->wMonth < 1 || time->wMonth > 12 || time->wDay > 31 ||
        !IsTimeOfDay(*time))
        return 0;
    const Days days = DayNumber(year, time->wMonth, time->wDay) - kDateEpoch;
    const double fraction =
        static_cast<double>(SecondsOfDay(*time)) / static_cast<double>(kSecondsPerDay);
    const double whole = static_cast<double>(days);
    // Before the epoch the fraction counts away from zero.
    *date = days < 0 ? whole - fraction : whole + fraction;
    return 1;
}

int VariantTimeToSystemTime(double date, SYSTEMTIME* time)
{
    if (!(date > static_cast<double>(kFirstDateDay - 1) &&
          date < static_cast<double>(kLastDateDay + 1)))
        return 0;
    const double whole = std::trunc(date);
    const double fraction = std::fabs(date - whole);
    // A DATE rarely holds a half second exactly; what is nearer to one than a microsecond is one.
    constexpr double kHalfSecond = 0.5 + 1e-6;
    auto seconds = static_cast<std::int64_t>(
        std::floor(fraction * static_cast<double>(kSecondsPerDay) + kHalfSecond));
    Days days = static_cast<Days>(whole);
    if (seconds == kSecondsPerDay)
    {
        seconds = 0;
        ++days;
    }
    SYSTEMTIME result{};
    SetDate(result, days + kDateEpoch);
    SetTimeOfDay(result, seconds);
    *time = result;
    return 1;
}

int FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time)
{
    if (fileTime->dwHighDateTime & 0x80000000u)
        return 0;
    const std::int64_t ticks =
        (static_cast<std::int64_t>(fileTime->dwHighDateTime) << 32) | fileTime->dwLowDateTime;
    const std::int64_t milliseconds = ticks % kTicksPerDay / kTicksPerMillisecond;
    SYSTEMTIME result{};
    SetDate(result, ticks / kTicksPerDay + kFileTimeEpoch);
    SetTimeOfDay(result, milliseconds / 1000);
    result.wMilliseconds = static_cast<std::uint16_t>(milliseconds % 1000);
    *time = result;
    return 1;
}

int SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime)
{
    if (time->wYear < 1601 || time->wYear > 30827 || time->wMonth < 1 || time->wMonth > 12 ||
        time->wDay < 1 || time->wDay > DaysInMonth(time->wYear, time->wMonth) ||
        !IsTimeOfDay(*time) || time->wMilliseconds > 999)
        return 0;
    const Days days = DayNumber(time->wYear, time->wMonth, time->wDay) - kFileTimeEpoch;
    const std::int64_t ticks =
        days * kTicksPerDay +
        (SecondsOfDay(*time) * 1000 + time->wMilliseconds) * kTicksPerMillisecond;
    fileTime->dwLowDateTime = static_cast<std::uint32_t>(ticks);
    fileTime->dwHighDateTime = static_cast<std::uint32_t>(ticks >> 32);
    return 1;
}
