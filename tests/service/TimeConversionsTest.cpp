// Expected values are worked out by hand from the calendar: 1970-01-01 is day 25569 of a DATE, 1601
// begins at day -109205, and 1970 at FILETIME 116444736000000000.
#include "service/TimeConversions.h"

#include "support/SystemTimes.h"

#include <gtest/gtest.h>

#include <climits>
#include <cmath>
#include <limits>

namespace
{
constexpr double kSecond = 1.0 / 86400.0;
// A DATE of these years holds a time of day to better than a microsecond.
constexpr double kTolerance = 1e-9;

const double kNotANumber = std::numeric_limits<double>::quiet_NaN();
const double kInfinity = std::numeric_limits<double>::infinity();
} // namespace

TEST(TimeConversionsTest, GivesZeroForCalendarTimesThatAreNone)
{
    for (const SYSTEMTIME& time : {Time(0, 0, 0),
                                   Time(2000, 0, 5),
                                   Time(2000, 13, 1),
                                   Time(2000, 1, 32),
                                   Time(2000, 1, 1, 24),
                                   Time(2000, 1, 1, 0, 60),
                                   Time(2000, 1, 1, 0, 0, 60),
                                   Time(10000, 1, 1),
                                   Time(65535, 65535, 65535, 65535, 65535, 65535)})
        EXPECT_EQ(0.0, SystemTimeToDate(time)) << time.wYear;
}

TEST(TimeConversionsTest, TurnsCalendarTimesIntoDates)
{
    EXPECT_EQ(25569.0, SystemTimeToDate(Time(1970, 1, 1)));
    EXPECT_NEAR(
        25569.0 + 86399 * kSecond, SystemTimeToDate(Time(1970, 1, 1, 23, 59, 59)), kTolerance);
    EXPECT_EQ(-1.25, SystemTimeToDate(Time(1899, 12, 29, 6)));
}

TEST(TimeConversionsTest, TurnsDatesIntoCalendarTimes)
{
    SYSTEMTIME time{};
    EXPECT_TRUE(
        DateToSystemTime(41703.75, time)); // 2014-03-05: 25569 + 44 years, 11 leap days, 63 days
    EXPECT_EQ(2014, time.wYear);
    EXPECT_EQ(3, time.wMonth);
    EXPECT_EQ(5, time.wDay);
    EXPECT_EQ(3, time.wDayOfWeek); // a Wednesday
    EXPECT_EQ(18, time.wHour);
    EXPECT_EQ(0, time.wMilliseconds);
}

TEST(TimeConversionsTest, CarriesTheDayOfWeekAcrossMidnight)
{
    SYSTEMTIME time{};
    EXPECT_TRUE(DateToSystemTime(0.9999999, time)); // rounds to Sunday 1899-12-31
    EXPECT_EQ(31, time.wDay);
    EXPECT_EQ(0, time.wDayOfWeek);
    EXPECT_TRUE(DateToSystemTime(-657434.0, time)); // Friday 0100-01-01
    EXPECT_EQ(5, time.wDayOfWeek);
}

TEST(TimeConversionsTest, ZeroesTheCalendarTimeOfADateThatIsNone)
{
    // The last one would round up to the year 10000.
    for (const double date :
         {-657435.0, 2958466.0, 1e300, -1e300, kInfinity, -kInfinity, kNotANumber, 2958465.9999999})
    {
        SYSTEMTIME time = Time(1, 2, 3, 4, 5, 6);
        EXPECT_FALSE(DateToSystemTime(date, time)) << date;
        EXPECT_EQ(0, time.wYear);
        EXPECT_EQ(0, time.wMonth);
        EXPECT_EQ(0, time.wSecond);
    }
}

TEST(TimeConversionsTest, ConvertsFileTimesWithoutAChangeOfZone)
{
    EXPECT_EQ(-109205.0, FileTimeToDate(FromTicks(0)));
    EXPECT_EQ(25569.0, FileTimeToDate(FromTicks(116'444'736'000'000'000)));
    EXPECT_EQ(25569.5, FileTimeToDate(FromTicks(116'445'168'000'000'000)));
    // Fractions of a second are cut.
    EXPECT_NEAR(25569.0 + kSecond, FileTimeToDate(FromTicks(116'444'736'019'999'999)), kTolerance);
    EXPECT_EQ(116'444'736'000'000'000u, Ticks(DateToFileTime(25569.0)));
    EXPECT_EQ(116'445'168'000'000'000u, Ticks(DateToFileTime(25569.5)));
    EXPECT_EQ(0u, Ticks(DateToFileTime(-109205.0)));
    EXPECT_EQ(864'000'000'000u, Ticks(DateToFileTime(-109204.0)));
}

TEST(TimeConversionsTest, GivesZeroWhereAFileTimeOrDateHasNoCounterpart)
{
    EXPECT_EQ(0.0, FileTimeToDate(FromTicks(~0ull)));
    EXPECT_EQ(0.0, FileTimeToDate(FromTicks(2'650'467'744'000'000'000))); // the year 10000
    EXPECT_EQ(0u, Ticks(DateToFileTime(-109206.0)));                      // before 1601
    EXPECT_EQ(0u, Ticks(DateToFileTime(2958466.0)));
    EXPECT_EQ(0u, Ticks(DateToFileTime(kNotANumber)));
}

TEST(TimeConversionsTest, CountsMinutesFrom1601)
{
    EXPECT_EQ(-109205.0, MinutesToDate(0));
    EXPECT_EQ(-109204.0, MinutesToDate(1440));
    EXPECT_NEAR(-109205.0 - 1.0 / 1440.0, MinutesToDate(1), kTolerance);
    // 2000-01-01 is 36526 + 109205 days later.
    EXPECT_EQ(36526.0, MinutesToDate(145731u * 1440u));
    EXPECT_EQ(36526.5, MinutesToDate(145731u * 1440u + 720u));
    // 2^32 - 1 minutes are 2,982,616 days and 255 minutes.
    EXPECT_NEAR(2873411.0 + 255.0 / 1440.0, MinutesToDate(UINT_MAX), kTolerance);
}

TEST(TimeConversionsTest, CutsFileTimesToWholeMinutes)
{
    const auto fileTimeOf = [](std::uint64_t ticks) {
        return FILETIME{static_cast<decltype(FILETIME::dwLowDateTime)>(ticks),
                        static_cast<decltype(FILETIME::dwHighDateTime)>(ticks >> 32)};
    };
    EXPECT_EQ(0u, FileTimeToMinutes(fileTimeOf(599'999'999)));
    EXPECT_EQ(1u, FileTimeToMinutes(fileTimeOf(600'000'000)));
    EXPECT_EQ(UINT_MAX, FileTimeToMinutes(fileTimeOf(0xFFFFFFFFull * 600'000'000)));
    EXPECT_EQ(0u, FileTimeToMinutes(fileTimeOf(0x100000000ull * 600'000'000)));
}

TEST(TimeConversionsTest, CutsDatesToWholeMinutes)
{
    constexpr std::uint32_t kMillennium = 145731u * 1440u; // 2000-01-01, day 36526
    EXPECT_EQ(0u, DateToMinutes(-109205.0));
    EXPECT_EQ(109205u * 1440u, DateToMinutes(0.0));
    EXPECT_EQ(109204u * 1440u + 720u, DateToMinutes(-1.5)); // 1899-12-29 12:00
    EXPECT_EQ(kMillennium + 570u, DateToMinutes(36526.0 + 570.0 / 1440.0));
    // To the nearest second first.
    EXPECT_EQ(kMillennium + 570u, DateToMinutes(36526.0 + (570.0 * 60.0 - 0.4) * kSecond));
    EXPECT_EQ(kMillennium + 569u, DateToMinutes(36526.0 + (570.0 * 60.0 - 0.6) * kSecond));
    EXPECT_EQ(kMillennium + 570u, DateToMinutes(36526.0 + (570.0 * 60.0 + 59.4) * kSecond));
    EXPECT_EQ(kMillennium + 1440u, DateToMinutes(36527.0 - 0.4 * kSecond));
    // 4417444800 minutes, less 2^32.
    EXPECT_EQ(122477504u, DateToMinutes(2958465.0));
    for (const double none :
         {-109206.0, -657434.0, 2958466.0, 1e300, -1e300, kInfinity, kNotANumber})
        EXPECT_EQ(0u, DateToMinutes(none)) << none;
}

TEST(TimeConversionsTest, CutsAnyDateAsItsFileTime)
{
    // Every kind of second of a minute, halves and what lies just beside them among them.
    for (double date = -1000.0; date < 2'958'470.0; date += 4711.0)
        for (const double minute : {0.0, 1.0, 719.0, 720.0, 1439.0})
            for (const double second : {0.0, 0.3, 29.5, 59.0, 59.4, 59.4999, 59.5, 59.5001, 59.9})
            {
                const double time = (minute * 60.0 + second) * kSecond;
                const DATE whole = date < 0.0 ? date - time : date + time;
                ASSERT_EQ(FileTimeToMinutes(DateToFileTime(whole)), DateToMinutes(whole)) << whole;
            }
}

TEST(TimeConversionsTest, CountsUnixSecondsThroughACommonYear)
{
    // 2001-01-01 is 11,323 days after 1970-01-01; the months add their own days.
    const std::int64_t firstOfMonth[] = {978307200,
                                         980985600,
                                         983404800,
                                         986083200,
                                         988675200,
                                         991353600,
                                         993945600,
                                         996624000,
                                         999302400,
                                         1001894400,
                                         1004572800,
                                         1007164800};
    for (int month = 1; month <= 12; ++month)
        EXPECT_EQ(firstOfMonth[month - 1],
                  DateToUnixSeconds(SystemTimeToDate(Time(2001, month, 1))));
    EXPECT_EQ(1009843199, DateToUnixSeconds(SystemTimeToDate(Time(2001, 12, 31, 23, 59, 59))));
}

TEST(TimeConversionsTest, CountsJanuaryAndFebruaryOfALeapYearOneDayLate)
{
    // True values are one day less: 1072915200 for 2004-01-01, 1078012800 for 2004-02-29.
    EXPECT_EQ(1072915200 + 86400, DateToUnixSeconds(SystemTimeToDate(Time(2004, 1, 1))));
    EXPECT_EQ(1075593600 + 86400, DateToUnixSeconds(SystemTimeToDate(Time(2004, 2, 1))));
    EXPECT_EQ(1078012800 + 86400, DateToUnixSeconds(SystemTimeToDate(Time(2004, 2, 29))));
    EXPECT_EQ(951914096, DateToUnixSeconds(SystemTimeToDate(Time(2000, 2, 29, 12, 34, 56))));
}

TEST(TimeConversionsTest, CountsOneSecondForALeapDay)
{
    // True values are one second less: 1078099200 for 2004-03-01.
    EXPECT_EQ(1078099201, DateToUnixSeconds(SystemTimeToDate(Time(2004, 3, 1))));
    EXPECT_EQ(1080777601, DateToUnixSeconds(SystemTimeToDate(Time(2004, 4, 1))));
    EXPECT_EQ(1104537600, DateToUnixSeconds(SystemTimeToDate(Time(2004, 12, 31, 23, 59, 59))));
    EXPECT_EQ(1104537600, DateToUnixSeconds(SystemTimeToDate(Time(2005, 1, 1))));
    EXPECT_EQ(68256001, DateToUnixSeconds(SystemTimeToDate(Time(1972, 3, 1))));
}

TEST(TimeConversionsTest, CountsUnixSecondsFrom1971To2070Only)
{
    EXPECT_EQ(31536000, DateToUnixSeconds(SystemTimeToDate(Time(1971, 1, 1))));
    EXPECT_EQ(3155760000, DateToUnixSeconds(SystemTimeToDate(Time(2070, 1, 1))));
    EXPECT_EQ(3187295999, DateToUnixSeconds(SystemTimeToDate(Time(2070, 12, 31, 23, 59, 59))));
    EXPECT_EQ(0, DateToUnixSeconds(SystemTimeToDate(Time(1970, 1, 1))));
    EXPECT_EQ(0, DateToUnixSeconds(SystemTimeToDate(Time(1970, 12, 31, 23, 59, 59))));
    EXPECT_EQ(0, DateToUnixSeconds(SystemTimeToDate(Time(2071, 1, 1))));
    EXPECT_EQ(0, DateToUnixSeconds(0.0));
    EXPECT_EQ(0, DateToUnixSeconds(-700000.0));
    EXPECT_EQ(0, DateToUnixSeconds(1e300));
    EXPECT_EQ(0, DateToUnixSeconds(kNotANumber));
}

TEST(TimeConversionsTest, CountsADayFromEveryMidnightToTheNextButAtTheSeamsOfALeapYear)
{
    // 1971-01-01 is day 25,934 and 2070-12-31 day 62,458.
    EXPECT_EQ(0, DateToUnixSeconds(25933.0));
    EXPECT_EQ(0, DateToUnixSeconds(62459.0));
    int seams = 0;
    for (int day = 25934; day < 62458; ++day)
    {
        SYSTEMTIME time{};
        ASSERT_TRUE(DateToSystemTime(day, time));
        // None of these years is a century but 2000, which is a leap year.
        const bool isLeap = time.wYear % 4 == 0;
        const bool isLastOfYear = time.wMonth == 12 && time.wDay == 31;
        std::int64_t expected = 86400;
        if (isLastOfYear && time.wYear % 4 == 3)
            expected = 172800; // into a leap year, whose first day is one late
        else if (isLastOfYear && isLeap)
            expected = 86399; // the extra second goes
        else if (time.wMonth == 2 && time.wDay == 29)
            expected = 1; // a second in place of the day
        seams += expected != 86400;
        ASSERT_EQ(expected, DateToUnixSeconds(day + 1) - DateToUnixSeconds(day)) << day;
    }
    // The leap years 1972 to 2068 are 25, with three seams each.
    EXPECT_EQ(75, seams);
}

TEST(TimeConversionsTest, AddsMinutesWithinACommonYear)
{
    const DATE start = SystemTimeToDate(Time(2001, 6, 15, 10));
    EXPECT_NEAR(
        SystemTimeToDate(Time(2001, 6, 15, 10, 30)), AddMinutesToDate(start, 30), kTolerance);
    EXPECT_NEAR(
        SystemTimeToDate(Time(2001, 6, 14, 10)), AddMinutesToDate(start, -1440), kTolerance);
    EXPECT_NEAR(start, AddMinutesToDate(start, 0), kTolerance);
}

TEST(TimeConversionsTest, AddsMinutesLateInALeapYear)
{
    EXPECT_NEAR(SystemTimeToDate(Time(2004, 1, 16, 10)),
                AddMinutesToDate(SystemTimeToDate(Time(2004, 1, 15, 10)), 0),
                kTolerance);
    EXPECT_NEAR(SystemTimeToDate(Time(2004, 6, 15, 11, 0, 1)),
                AddMinutesToDate(SystemTimeToDate(Time(2004, 6, 15, 10)), 60),
                kTolerance);
}

TEST(TimeConversionsTest, AddsNothingToTheZeroDate)
{
    for (const int minutes : {0, 1, -1, INT_MAX, INT_MIN})
    {
        EXPECT_EQ(0.0, AddMinutesToDate(0.0, minutes));
        EXPECT_EQ(0.0, AddMinutesToDate(0.0000009, minutes));
        EXPECT_EQ(0.0, AddMinutesToDate(-0.0000009, minutes));
    }
    // The limit itself counts as any date before 1971.
    EXPECT_NEAR(25569.0 + 1.0 / 1440.0, AddMinutesToDate(0.000001, 1), kTolerance);
    EXPECT_NEAR(25569.0 + 1.0 / 1440.0, AddMinutesToDate(-0.000001, 1), kTolerance);
}

TEST(TimeConversionsTest, AddsMinutesToTheUnixEpochForDatesOutside1971To2070)
{
    for (const SYSTEMTIME& time : {Time(1950, 5, 5, 12), Time(1970, 7, 1), Time(2071, 1, 1)})
    {
        const DATE date = SystemTimeToDate(time);
        EXPECT_NEAR(25569.0 + 90.0 / 1440.0, AddMinutesToDate(date, 90), kTolerance);
        EXPECT_NEAR(25568.0 + 23.0 / 24.0, AddMinutesToDate(date, -60), kTolerance);
        EXPECT_EQ(0.0, AddMinutesToDate(date, 0));
    }
}

TEST(TimeConversionsTest, GivesZeroForASumOfZeroOrBefore1601)
{
    // 1971-01-01 less 525,600 minutes is 1970-01-01, whose seconds are 0.
    EXPECT_EQ(0.0, AddMinutesToDate(25934.0, -525600));
    EXPECT_NEAR(25569.0 + 1.0 / 1440.0, AddMinutesToDate(25934.0, -525599), kTolerance);
    // 1601-01-01 is 134,774 days before 1970-01-01.
    EXPECT_EQ(-109205.0, AddMinutesToDate(1.0, -134774 * 1440));
    EXPECT_EQ(0.0, AddMinutesToDate(1.0, -134774 * 1440 - 1));
    EXPECT_EQ(0.0, AddMinutesToDate(1.0, INT_MIN));
    // 2^31 - 1 minutes are 1,491,308 days and 127 minutes.
    EXPECT_NEAR(25569.0 + 1491308.0 + 127.0 / 1440.0, AddMinutesToDate(1.0, INT_MAX), kTolerance);
}

TEST(TimeConversionsTest, CountsWholeMinutesBetweenDates)
{
    const double start = 40000.25;
    struct
    {
        double seconds;
        int minutes;
    } const cases[] = {{0, 0},
                       {58, 0},
                       {59.4, 0},
                       {59.6, 1},
                       {60, 1},
                       {61, 1},
                       {119, 1},
                       {120, 2},
                       {3600, 60},
                       {86400, 1440},
                       {7 * 86400, 10080}};
    for (const auto& row : cases)
    {
        EXPECT_EQ(row.minutes, DateDiffMinutes(start, start + row.seconds * kSecond))
            << row.seconds;
        EXPECT_EQ(-row.minutes, DateDiffMinutes(start + row.seconds * kSecond, start))
            << row.seconds;
    }
}

TEST(TimeConversionsTest, CountsTheFractionOfANegativeDateForward)
{
    EXPECT_EQ(720, DateDiffMinutes(-1.25, -1.75)); // 06:00 to 18:00 of one day
    EXPECT_EQ(-720, DateDiffMinutes(-1.75, -1.25));
    EXPECT_EQ(720, DateDiffMinutes(-1.75, 0.25)); // 18:00 to 06:00 of the next day
    EXPECT_EQ(1440, DateDiffMinutes(-1.0, 0.0));
    EXPECT_EQ(0, DateDiffMinutes(-0.25, 0.25)); // two writings of one time
}

TEST(TimeConversionsTest, StaysWithinAnIntForAnyPairOfDates)
{
    EXPECT_EQ(INT_MAX, DateDiffMinutes(-657434.0, 2958465.0));
    EXPECT_EQ(INT_MIN, DateDiffMinutes(2958465.0, -657434.0));
    EXPECT_EQ(INT_MAX, DateDiffMinutes(0.0, kInfinity));
    EXPECT_EQ(INT_MIN, DateDiffMinutes(0.0, -1e300));
    EXPECT_EQ(0, DateDiffMinutes(0.0, kNotANumber));
    EXPECT_EQ(0, DateDiffMinutes(kInfinity, kInfinity));
}

TEST(TimeConversionsTest, KeepsEveryMinuteOfACenturyConsistent)
{
    // What AddMinutesToDate makes of a date is the time that DateToUnixSeconds counts for it.
    for (double date = 25934.0; date < 62459.0; date += 7.3)
    {
        const DATE again = AddMinutesToDate(date, 0);
        const double seconds = (again - 25569.0) * 86400.0;
        ASSERT_NEAR(static_cast<double>(DateToUnixSeconds(date)), seconds, 0.01) << date;
    }
}
