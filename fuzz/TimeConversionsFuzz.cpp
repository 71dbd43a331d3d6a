// The conversions between the forms of time agree with each other on every input.
#include "FuzzInput.h"
#include "Require.h"

#include "service/TimeConversions.h"

#include <climits>
#include <cmath>

namespace
{
constexpr double kSecond = 1.0 / 86400.0;
// The coarsest step of a DATE up to the year 9999 is under 50 microseconds.
constexpr double kTolerance = 1e-3 * kSecond;
constexpr double kFirstDay1601 = -109205.0;
constexpr double kFirstDay1970 = 25569.0;

// Days with the fraction counted forward for negative DATEs too.
double PlainDays(DATE date)
{
    const double whole = std::trunc(date);
    return date < 0 ? whole - (date - whole) : date;
}

bool SameTime(const SYSTEMTIME& left, const SYSTEMTIME& right)
{
    return left.wYear == right.wYear && left.wMonth == right.wMonth && left.wDay == right.wDay &&
           left.wHour == right.wHour && left.wMinute == right.wMinute &&
           left.wSecond == right.wSecond && left.wDayOfWeek == right.wDayOfWeek;
}

bool IsZero(const SYSTEMTIME& time)
{
    return SameTime(time, SYSTEMTIME{}) && time.wMilliseconds == 0;
}

double Ticks(const FILETIME& time)
{
    return static_cast<double>((static_cast<std::uint64_t>(time.dwHighDateTime) << 32) |
                               time.dwLowDateTime);
}

void CheckDate(DATE date)
{
    Require(DateToMinutes(date) == FileTimeToMinutes(DateToFileTime(date)));
    SYSTEMTIME time{};
    if (!DateToSystemTime(date, time))
    {
        Require(IsZero(time));
        Require(DateToUnixSeconds(date) == 0);
        Require(Ticks(DateToFileTime(date)) == 0.0);
        return;
    }
    Require(time.wMonth >= 1 && time.wMonth <= 12 && time.wDay >= 1 && time.wDay <= 31);
    Require(time.wHour < 24 && time.wMinute < 60 && time.wSecond < 60 && time.wMilliseconds == 0);
    const DATE again = SystemTimeToDate(time);
    Require(std::fabs(PlainDays(again) - PlainDays(date)) <= 0.5 * kSecond + kTolerance);
    SYSTEMTIME timeAgain{};
    Require(DateToSystemTime(again, timeAgain) && SameTime(time, timeAgain));

    const FILETIME fileTime = DateToFileTime(date);
    if (PlainDays(again) >= kFirstDay1601)
        Require(std::fabs(PlainDays(FileTimeToDate(fileTime)) - PlainDays(again)) <= kTolerance);
    else
        Require(Ticks(fileTime) == 0.0);
}

void CheckAddition(DATE date, int minutes)
{
    const DATE sum = AddMinutesToDate(date, minutes);
    const double seconds =
        static_cast<double>(DateToUnixSeconds(date)) + 60.0 * static_cast<double>(minutes);
    const double days = kFirstDay1970 + seconds * kSecond;
    if (std::fabs(date) < 0.000001 || seconds == 0.0 || days < kFirstDay1601)
        Require(sum == 0.0);
    else
        Require(std::fabs(PlainDays(sum) - days) <= kTolerance);
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    FuzzInput input(data, size);
    const auto date = input.Take<double>();
    const auto other = input.Take<double>();
    const auto minutes = input.Take<int>();
    const auto time = input.Take<SYSTEMTIME>();
    const auto fileTime = input.Take<FILETIME>();

    CheckDate(date);
    CheckDate(SystemTimeToDate(time));
    CheckDate(FileTimeToDate(fileTime));
    CheckAddition(date, minutes);

    const auto minutesFrom1601 = static_cast<std::uint32_t>(minutes);
    const DATE counted = MinutesToDate(minutesFrom1601);
    Require(std::fabs(PlainDays(counted) - (kFirstDay1601 + minutesFrom1601 / 1440.0)) <=
            kTolerance);
    Require(DateToMinutes(counted) == minutesFrom1601);

    const int difference = DateDiffMinutes(date, other);
    const int reversed = DateDiffMinutes(other, date);
    if (difference != INT_MIN && difference != INT_MAX)
        Require(reversed == -difference);
    return 0;
}
