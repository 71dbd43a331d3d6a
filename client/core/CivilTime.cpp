#include "client/core/CivilTime.h"

#include <chrono>
#include <cmath>

namespace pim
{
namespace
{
using std::chrono::sys_days;

constexpr int kSecondsPerDay = 86400;
constexpr int kFirstYear = 100;
constexpr int kLastYear = 9999;

// Day 0 of a DATE.
constexpr sys_days kDateEpoch = std::chrono::year(1899) / std::chrono::December / 30;

sys_days DayOf(const CivilTime& time)
{
    return sys_days(std::chrono::year(time.year) / std::chrono::month(unsigned(time.month)) /
                    std::chrono::day(unsigned(time.day)));
}

int SecondOfDay(const CivilTime& time)
{
    return time.hour * 3600 + time.minute * 60 + time.second;
}

// None outside the years that a DATE can hold.
std::optional<CivilTime> FromDayAndSecond(long long daysSinceEpoch, long long secondOfDay)
{
    constexpr long long kFarthestDay = 4'000'000;
    if (daysSinceEpoch < -kFarthestDay || daysSinceEpoch > kFarthestDay)
        return std::nullopt;
    const std::chrono::year_month_day day(kDateEpoch + std::chrono::days(daysSinceEpoch));
    const int year = int(day.year());
    if (year < kFirstYear || year > kLastYear)
        return std::nullopt;
    return CivilTime{year,
                     int(unsigned(day.month())),
                     int(unsigned(day.day())),
                     int(secondOfDay / 3600),
                     int(secondOfDay / 60 % 60),
                     int(secondOfDay % 60)};
}

std::wstring Digits(int value, int width)
{
    std::wstring digits = std::to_wstring(value);
    if (digits.size() < std::size_t(width))
        digits.insert(0, std::size_t(width) - digits.size(), L'0');
    return digits;
}

// Takes exactly that many digits off the front of the text.
std::optional<int> TakeDigits(std::wstring_view& text, std::size_t count)
{
    if (text.size() < count)
        return std::nullopt;
    int value = 0;
    for (const wchar_t c : text.substr(0, count))
    {
        if (c < L'0' || c > L'9')
            return std::nullopt;
        value = value * 10 + (c - L'0');
    }
    text.remove_prefix(count);
    return value;
}

bool TakeOneOf(std::wstring_view& text, std::wstring_view characters)
{
    if (text.empty() || characters.find(text.front()) == std::wstring_view::npos)
        return false;
    text.remove_prefix(1);
    return true;
}
} // namespace

std::optional<CivilTime> CivilFromDate(DATE date)
{
    constexpr double kLimit = 4'000'000.0;
    if (!(date > -kLimit && date < kLimit) || date == 0.0)
        return std::nullopt;
    // The fraction of a negative DATE counts forward too.
    const double whole = std::trunc(date);
    long long days = std::llround(whole);
    long long second = std::llround(std::abs(date - whole) * kSecondsPerDay);
    if (second == kSecondsPerDay)
    {
        ++days;
        second = 0;
    }
    return FromDayAndSecond(days, second);
}

std::optional<CivilTime> CivilFromDate(const std::optional<DATE>& date)
{
    return date ? CivilFromDate(*date) : std::nullopt;
}

DATE DateFromCivil(const CivilTime& time)
{
    const double days = double((DayOf(time) - kDateEpoch).count());
    const double fraction = double(SecondOfDay(time)) / kSecondsPerDay;
    return days < 0 ? days - fraction : days + fraction;
}

std::optional<CivilTime> AddDays(const CivilTime& time, int days)
{
    return FromDayAndSecond((DayOf(time) - kDateEpoch).count() + days, SecondOfDay(time));
}

std::optional<CivilTime> AddSeconds(const CivilTime& time, long long seconds)
{
    const long long total = SecondOfDay(time) + seconds;
    long long days = total / kSecondsPerDay;
    long long rest = total % kSecondsPerDay;
    if (rest < 0)
    {
        rest += kSecondsPerDay;
        --days;
    }
    return FromDayAndSecond((DayOf(time) - kDateEpoch).count() + days, rest);
}

int WeekdayOf(const CivilTime& time)
{
    return int(std::chrono::weekday(DayOf(time)).c_encoding());
}

bool IsMidnight(const CivilTime& time)
{
    return time.hour == 0 && time.minute == 0 && time.second == 0;
}

std::wstring FormatDay(const CivilTime& time)
{
    return Digits(time.year, 4) + L"-" + Digits(time.month, 2) + L"-" + Digits(time.day, 2);
}

std::wstring FormatClock(const CivilTime& time)
{
    std::wstring text = Digits(time.hour, 2) + L":" + Digits(time.minute, 2);
    if (time.second != 0)
        text += L":" + Digits(time.second, 2);
    return text;
}

std::wstring FormatDayAndClock(const CivilTime& time)
{
    return FormatDay(time) + L" " + FormatClock(time);
}

std::wstring FormatIso(const CivilTime& time)
{
    return FormatDay(time) + L"T" + Digits(time.hour, 2) + L":" + Digits(time.minute, 2) + L":" +
           Digits(time.second, 2);
}

std::optional<TypedTime> ParseTypedTime(std::wstring_view text)
{
    TypedTime typed;
    const auto year = TakeDigits(text, 4);
    if (!year || !TakeOneOf(text, L"-"))
        return std::nullopt;
    const auto month = TakeDigits(text, 2);
    if (!month || !TakeOneOf(text, L"-"))
        return std::nullopt;
    const auto day = TakeDigits(text, 2);
    if (!day)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(unsigned(*month)),
                                           std::chrono::day(unsigned(*day))};
    if (!date.ok() || *year < kFirstYear)
        return std::nullopt;
    typed.time = {*year, *month, *day};
    if (text.empty())
        return typed;

    if (!TakeOneOf(text, L" T"))
        return std::nullopt;
    const auto hour = TakeDigits(text, 2);
    if (!hour || !TakeOneOf(text, L":"))
        return std::nullopt;
    const auto minute = TakeDigits(text, 2);
    if (!minute || *hour > 23 || *minute > 59)
        return std::nullopt;
    typed.hasClock = true;
    typed.time.hour = *hour;
    typed.time.minute = *minute;
    if (TakeOneOf(text, L":"))
    {
        const auto second = TakeDigits(text, 2);
        if (!second || *second > 59)
            return std::nullopt;
        typed.time.second = *second;
    }
    typed.isUtc = TakeOneOf(text, L"Zz");
    if (!text.empty())
        return std::nullopt;
    return typed;
}
} // namespace pim
