// The same expected tables run against the system's calls (on Windows) and the stand-ins
// (natively). Day numbers are worked out by hand from published ones: 1900-01-01 is day 2,
// 1970-01-01 day 25569 and FILETIME 116444736000000000, 9999-12-31 day 2958465, 0100-01-01 day
// -657434.
#include "platform/PlatformTime.h"

#include "support/SystemTimes.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{
void ExpectTime(const SYSTEMTIME& expected, const SYSTEMTIME& actual)
{
    EXPECT_EQ(expected.wYear, actual.wYear);
    EXPECT_EQ(expected.wMonth, actual.wMonth);
    EXPECT_EQ(expected.wDay, actual.wDay);
    EXPECT_EQ(expected.wHour, actual.wHour);
    EXPECT_EQ(expected.wMinute, actual.wMinute);
    EXPECT_EQ(expected.wSecond, actual.wSecond);
    EXPECT_EQ(expected.wMilliseconds, actual.wMilliseconds);
}

struct DateCase
{
    SYSTEMTIME time;
    double date;
};

// Exact pairs, read in both directions.
const DateCase kDateCases[] = {
    {Time(100, 1, 1), -657434.0},
    {Time(100, 1, 1, 12), -657434.5},
    {Time(1582, 10, 15), -115858.0}, // 1601-01-01 less 6653 days: 18 years, 5 leap days, 78 days
    {Time(1600, 12, 31), -109206.0},
    {Time(1601, 1, 1), -109205.0},
    {Time(1899, 12, 28, 18), -2.75},
    {Time(1899, 12, 29), -1.0},
    {Time(1899, 12, 29, 6), -1.25},
    {Time(1899, 12, 30), 0.0},
    {Time(1899, 12, 30, 6), 0.25},
    {Time(1899, 12, 31), 1.0},
    {Time(1900, 1, 1), 2.0},
    {Time(1900, 2, 28), 60.0},
    {Time(1900, 3, 1), 61.0}, // 1900 is no leap year
    {Time(1970, 1, 1), 25569.0},
    {Time(1999, 12, 31), 36525.0},
    {Time(2000, 2, 29), 36585.0},
    {Time(2000, 3, 1), 36586.0},
    {Time(2000, 12, 31), 36891.0},
    {Time(2001, 2, 28), 36950.0},
    {Time(2001, 3, 1), 36951.0},
    {Time(2014, 3, 5, 9, 30), 41703.0 + 9.5 / 24.0},
    {Time(2100, 3, 1), 73110.0}, // 2070-01-01 is 62094; 30 years, 7 leap days, 59 days
    {Time(9999, 12, 31), 2958465.0},
    {Time(9999, 12, 31, 23, 59, 59), 2958465.0 + 86399.0 / 86400.0},
};
} // namespace

TEST(PlatformTimeTest, TurnsCalendarTimesIntoDates)
{
    for (const DateCase& row : kDateCases)
    {
        SYSTEMTIME time = row.time;
        double date = -7.0;
        EXPECT_TRUE(SystemTimeToVariantTime(&time, &date));
        EXPECT_NEAR(row.date, date, 1e-9);
    }
}

TEST(PlatformTimeTest, TurnsDatesIntoCalendarTimes)
{
    for (const DateCase& row : kDateCases)
    {
        SCOPED_TRACE(row.date);
        SYSTEMTIME time{};
        EXPECT_TRUE(VariantTimeToSystemTime(row.date, &time));
        ExpectTime(row.time, time);
    }
}

TEST(PlatformTimeTest, LetsTheDayRollOverButNoOtherField)
{
    const DateCase cases[] = {
        {Time(2001, 2, 29), 36951.0}, // 1 March
        {Time(2001, 2, 31), 36953.0},
        {Time(2000, 2, 31), 36587.0},
        {Time(2001, 4, 31), 37012.0}, // 1 May
        {Time(2001, 4, 0), 36981.0},  // 31 March
        {Time(2001, 1, 0), 36891.0},  // 31 December 2000
    };
    for (const DateCase& row : cases)
    {
        SYSTEMTIME time = row.time;
        double date = -7.0;
        EXPECT_TRUE(SystemTimeToVariantTime(&time, &date));
        EXPECT_EQ(row.date, date);
    }
    for (SYSTEMTIME time : {Time(2001, 4, 32), Time(2000, 13, 1), Time(10000, 1, 1)})
    {
        double date = -7.0;
        EXPECT_FALSE(SystemTimeToVariantTime(&time, &date));
        EXPECT_EQ(-7.0, date);
    }
}

TEST(PlatformTimeTest, GivesTwoDigitYearsACentury)
{
    const DateCase cases[] = {
        {Time(0, 1, 1), 36526.0},
        {Time(1, 1, 1), 36892.0},
        {Time(29, 1, 1), 47119.0},
        {Time(99, 1, 1), 36161.0},
    };
    for (const DateCase& row : cases)
    {
        SYSTEMTIME time = row.time;
        double date = -7.0;
        EXPECT_TRUE(SystemTimeToVariantTime(&time, &date));
        EXPECT_EQ(row.date, date);
    }
}

TEST(PlatformTimeTest, IgnoresMillisecondsOnTheWayToADate)
{
    SYSTEMTIME time = Time(2000, 1, 1, 0, 0, 59);
    time.wMilliseconds = 999;
    double date = 0.0;
    EXPECT_TRUE(SystemTimeToVariantTime(&time, &date));
    EXPECT_NEAR(36526.0 + 59.0 / 86400.0, date, 1e-9);
}

TEST(PlatformTimeTest, RoundsADateToTheNearestSecond)
{
    struct
    {
        double date;
        SYSTEMTIME time;
    } const cases[] = {
        {40000.25 + 0.49 / 86400.0, Time(2009, 7, 6, 6, 0, 0)},
        {40000.25 + 0.51 / 86400.0, Time(2009, 7, 6, 6, 0, 1)},
        {40000.25 + 0.5 / 86400.0, Time(2009, 7, 6, 6, 0, 1)},
        {40000.25 - 0.49 / 86400.0, Time(2009, 7, 6, 6, 0, 0)},
        {40000.25 - 0.51 / 86400.0, Time(2009, 7, 6, 5, 59, 59)},
        {2.9999999, Time(1900, 1, 2)}, // to midnight of the next day
        {0.9999999, Time(1899, 12, 31)},
        // The fraction of a negative DATE counts forward, so rounding goes forward too.
        {-3.0 - 0.51 / 86400.0, Time(1899, 12, 27, 0, 0, 1)},
        {-3.0 - 0.49 / 86400.0, Time(1899, 12, 27, 0, 0, 0)},
        {-0.25, Time(1899, 12, 30, 6)},
        {-0.9999999, Time(1899, 12, 31)},
        {-657434.9999999, Time(100, 1, 2)},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.date);
        SYSTEMTIME time{};
        EXPECT_TRUE(VariantTimeToSystemTime(row.date, &time));
        ExpectTime(row.time, time);
    }
}

TEST(PlatformTimeTest, RefusesDatesBeyondTheYears100To9999)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double date :
         {-657435.0, -657436.5, 2958466.0, 1e10, -1e10, 1e300, -1e300, infinity, -infinity})
    {
        SCOPED_TRACE(date);
        SYSTEMTIME time = Time(1, 2, 3);
        EXPECT_FALSE(VariantTimeToSystemTime(date, &time));
        ExpectTime(Time(1, 2, 3), time);
    }
}

TEST(PlatformTimeTest, ReadsEverySecondOfADayBack)
{
    for (const double day : {-657434.0, -5.0, 0.0, 40000.0, 2958465.0})
    {
        for (int second = 0; second < 86400; ++second)
        {
            const double fraction = second / 86400.0;
            SYSTEMTIME time{};
            ASSERT_TRUE(VariantTimeToSystemTime(day < 0 ? day - fraction : day + fraction, &time));
            ASSERT_EQ(second, time.wHour * 3600 + time.wMinute * 60 + time.wSecond) << day;
            ASSERT_EQ(0, time.wMilliseconds);
        }
    }
}

TEST(PlatformTimeTest, CountsTheDaysOfTheCalendarOneByOne)
{
    // Walks a calendar of its own beside the conversions, over 400 years and both ends. The last
    // 200 years hold 48 leap days, so 9800-01-01 is 73,048 days before day 2958466.
    const int monthDays[] = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
    struct
    {
        int firstYear, lastYear;
        double firstDay;
    } const spans[] = {{100, 420, -657434.0}, {1899, 2299, -363.0}, {9800, 9999, 2885418.0}};
    for (const auto& span : spans)
    {
        double day = span.firstDay;
        for (int year = span.firstYear; year <= span.lastYear; ++year)
        {
            const bool leap = (year % 4 == 0 && year % 100 != 0) || year % 400 == 0;
            for (int month = 1; month <= 12; ++month)
            {
                const int days = monthDays[month - 1] + (leap && month == 2 ? 1 : 0);
                for (int dayOfMonth = 1; dayOfMonth <= days; ++dayOfMonth, day += 1.0)
                {
                    SYSTEMTIME time = Time(year, month, dayOfMonth);
                    double date = 0.5;
                    ASSERT_TRUE(SystemTimeToVariantTime(&time, &date));
                    ASSERT_EQ(day, date);
                    SYSTEMTIME back{};
                    ASSERT_TRUE(VariantTimeToSystemTime(day, &back));
                    ASSERT_EQ(year, back.wYear);
                    ASSERT_EQ(month, back.wMonth);
                    ASSERT_EQ(dayOfMonth, back.wDay);
                }
            }
        }
    }
}

TEST(PlatformTimeTest, TurnsFileTimesIntoCalendarTimesAndBack)
{
    struct
    {
        std::uint64_t ticks;
        SYSTEMTIME time;
        int milliseconds, dayOfWeek;
    } const cases[] = {
        {0, Time(1601, 1, 1), 0, 1},
        {10'000, Time(1601, 1, 1), 1, 1},
        {864'000'000'000, Time(1601, 1, 2), 0, 2},
        {116'444'736'000'000'000, Time(1970, 1, 1), 0, 4},
        {125'911'584'000'000'000, Time(2000, 1, 1), 0, 6},
        // 2038-01-19 03:14:07, 2^31 - 1 seconds of the Unix epoch
        {137'919'572'470'000'000, Time(2038, 1, 19, 3, 14, 7), 0, 2},
        {2'650'467'743'999'990'000, Time(9999, 12, 31, 23, 59, 59), 999, 5},
        {2'650'467'744'000'000'000, Time(10000, 1, 1), 0, 6},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.ticks);
        SYSTEMTIME expected = row.time;
        expected.wMilliseconds = static_cast<std::uint16_t>(row.milliseconds);
        const FILETIME fileTime = FromTicks(row.ticks);
        SYSTEMTIME time{};
        EXPECT_TRUE(FileTimeToSystemTime(&fileTime, &time));
        ExpectTime(expected, time);
        EXPECT_EQ(row.dayOfWeek, time.wDayOfWeek);
        FILETIME back{};
        EXPECT_TRUE(SystemTimeToFileTime(&expected, &back));
        EXPECT_EQ(row.ticks, Ticks(back));
    }
}

TEST(PlatformTimeTest, CutsAFileTimeToMilliseconds)
{
    const FILETIME fileTime = FromTicks(19'999);
    SYSTEMTIME time{};
    EXPECT_TRUE(FileTimeToSystemTime(&fileTime, &time));
    EXPECT_EQ(1, time.wMilliseconds);
}

TEST(PlatformTimeTest, TakesFileTimesBelowTheSignBitOnly)
{
    FILETIME fileTime = FromTicks(0x7fffffffffffffff);
    SYSTEMTIME time{};
    EXPECT_TRUE(FileTimeToSystemTime(&fileTime, &time));
    EXPECT_EQ(30828, time.wYear);
    EXPECT_EQ(9, time.wMonth);
    EXPECT_EQ(14, time.wDay);
    for (const std::uint64_t ticks : {0x8000000000000000ull, ~0ull})
    {
        fileTime = FromTicks(ticks);
        time = Time(1, 2, 3);
        EXPECT_FALSE(FileTimeToSystemTime(&fileTime, &time));
        ExpectTime(Time(1, 2, 3), time);
    }
}

TEST(PlatformTimeTest, RefusesCalendarTimesThatAreNone)
{
    SYSTEMTIME badMilliseconds = Time(2000, 1, 1);
    badMilliseconds.wMilliseconds = 1000;
    for (const SYSTEMTIME& time : {Time(0, 0, 0),
                                   Time(1600, 12, 31),
                                   Time(2000, 2, 30),
                                   Time(2000, 4, 31),
                                   Time(2000, 1, 0),
                                   Time(2000, 0, 1),
                                   Time(2000, 13, 1),
                                   Time(2000, 1, 1, 24),
                                   Time(2000, 1, 1, 0, 60),
                                   Time(2000, 1, 1, 0, 0, 60),
                                   badMilliseconds})
    {
        FILETIME fileTime = FromTicks(77);
        EXPECT_FALSE(SystemTimeToFileTime(&time, &fileTime));
        EXPECT_EQ(77u, Ticks(fileTime));
    }
}
