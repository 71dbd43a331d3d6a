// Expected values are worked out by hand from the rules given in each test.
#include "service/ZoneConversions.h"

#include "service/TimeConversions.h"

#include "support/SystemTimes.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>

namespace
{
constexpr double kTolerance = 1e-9;

DATE At(int year, int month, int day, int hour = 0, int minute = 0)
{
    return SystemTimeToDate(Time(year, month, day, hour, minute));
}

// A rule "the n-th Sunday of a month at an hour"; 5 is the last one.
SYSTEMTIME Sunday(int month, int nth, int hour)
{
    return Time(0, month, nth, hour);
}

TIME_ZONE_INFORMATION FixedZone(LONG biasMinutes)
{
    TIME_ZONE_INFORMATION zone{};
    zone.Bias = biasMinutes;
    return zone;
}

// One hour east of UTC, two from the last Sunday of March, 2:00, to the last of October, 3:00.
TIME_ZONE_INFORMATION CentralEurope()
{
    TIME_ZONE_INFORMATION zone = FixedZone(-60);
    zone.DaylightBias = -60;
    zone.DaylightDate = Sunday(3, 5, 2);
    zone.StandardDate = Sunday(10, 5, 3);
    return zone;
}

// Five hours west of UTC, four from the second Sunday of March to the first of November, 2:00.
TIME_ZONE_INFORMATION Eastern()
{
    TIME_ZONE_INFORMATION zone = FixedZone(300);
    zone.DaylightBias = -60;
    zone.DaylightDate = Sunday(3, 2, 2);
    zone.StandardDate = Sunday(11, 1, 2);
    return zone;
}
} // namespace

TEST(ZoneConversionsTest, AppliesAFixedBias)
{
    const TIME_ZONE_INFORMATION east = FixedZone(-330);
    const TIME_ZONE_INFORMATION west = FixedZone(480);
    EXPECT_NEAR(
        At(2001, 6, 15, 15, 30), UtcDateToLocalDate(At(2001, 6, 15, 10), &east), kTolerance);
    EXPECT_NEAR(At(2001, 6, 15, 2), UtcDateToLocalDate(At(2001, 6, 15, 10), &west), kTolerance);
    EXPECT_NEAR(At(2001, 6, 15, 15, 30),
                UtcFileTimeToLocalDate(DateToFileTime(At(2001, 6, 15, 10)), &east),
                kTolerance);
    EXPECT_EQ(Ticks(DateToFileTime(At(2001, 6, 15, 10))),
              Ticks(LocalDateToUtcFileTime(At(2001, 6, 15, 15, 30), &east)));
    EXPECT_EQ(Ticks(DateToFileTime(At(2001, 6, 15, 10))),
              Ticks(LocalDateToUtcFileTime(At(2001, 6, 15, 2), &west)));
}

TEST(ZoneConversionsTest, CrossesTheEndOfAYear)
{
    const TIME_ZONE_INFORMATION west = FixedZone(480);
    EXPECT_NEAR(At(1999, 12, 31, 20), UtcDateToLocalDate(At(2000, 1, 1, 4), &west), kTolerance);
    EXPECT_EQ(Ticks(DateToFileTime(At(2000, 1, 1, 4))),
              Ticks(LocalDateToUtcFileTime(At(1999, 12, 31, 20), &west)));
}

TEST(ZoneConversionsTest, AppliesDaylightSavingByTheDate)
{
    struct
    {
        TIME_ZONE_INFORMATION zone;
        DATE utc, local;
    } const cases[] = {
        {CentralEurope(), At(2014, 1, 15, 12), At(2014, 1, 15, 13)},
        {CentralEurope(), At(2014, 7, 15, 12), At(2014, 7, 15, 14)},
        // The last Sunday of March 2014 is the 30th; 2:00 local is 1:00 UTC.
        {CentralEurope(), At(2014, 3, 30, 0, 59), At(2014, 3, 30, 1, 59)},
        {CentralEurope(), At(2014, 3, 30, 1), At(2014, 3, 30, 3)},
        // The last Sunday of October 2014 is the 26th.
        {CentralEurope(), At(2014, 10, 26, 2), At(2014, 10, 26, 3)},
        {Eastern(), At(2014, 1, 15, 12), At(2014, 1, 15, 7)},
        {Eastern(), At(2014, 7, 15, 12), At(2014, 7, 15, 8)},
        // The second Sunday of March 2014 is the 9th; 2:00 local is 7:00 UTC.
        {Eastern(), At(2014, 3, 9, 6, 59), At(2014, 3, 9, 1, 59)},
        {Eastern(), At(2014, 3, 9, 7), At(2014, 3, 9, 3)},
    };
    for (const auto& row : cases)
    {
        SCOPED_TRACE(row.utc);
        EXPECT_NEAR(row.local, UtcDateToLocalDate(row.utc, &row.zone), kTolerance);
        EXPECT_NEAR(
            row.local, UtcFileTimeToLocalDate(DateToFileTime(row.utc), &row.zone), kTolerance);
        EXPECT_EQ(Ticks(DateToFileTime(row.utc)),
                  Ticks(LocalDateToUtcFileTime(row.local, &row.zone)));
    }
}

TEST(ZoneConversionsTest, TakesTheMachinesZoneForNull)
{
    TIME_ZONE_INFORMATION own{};
    ASSERT_NE(TIME_ZONE_ID_INVALID, GetTimeZoneInformation(&own));
    for (const DATE utc : {At(2001, 1, 15, 10), At(2014, 7, 15, 22, 30)})
    {
        EXPECT_EQ(UtcDateToLocalDate(utc, &own), UtcDateToLocalDate(utc, nullptr));
        const FILETIME fileTime = DateToFileTime(utc);
        EXPECT_EQ(UtcFileTimeToLocalDate(fileTime, &own),
                  UtcFileTimeToLocalDate(fileTime, nullptr));
        EXPECT_EQ(Ticks(LocalDateToUtcFileTime(utc, &own)),
                  Ticks(LocalDateToUtcFileTime(utc, nullptr)));
    }
}

TEST(ZoneConversionsTest, GivesZeroWhereAStepFails)
{
    const TIME_ZONE_INFORMATION zone = CentralEurope();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const TIME_ZONE_INFORMATION* rules : {&zone, static_cast<decltype(&zone)>(nullptr)})
    {
        for (const double date : {-657435.0, 2958466.0, 1e300, notANumber})
        {
            EXPECT_EQ(0u, Ticks(LocalDateToUtcFileTime(date, rules)));
            EXPECT_EQ(0.0, UtcDateToLocalDate(date, rules));
        }
        // A FILETIME counts from 1601.
        EXPECT_EQ(0u, Ticks(LocalDateToUtcFileTime(At(1500, 1, 1), rules)));
        EXPECT_EQ(0.0, UtcFileTimeToLocalDate({0xFFFFFFFF, 0xFFFFFFFF}, rules));
    }
}

TEST(ZoneConversionsTest, SurvivesRulesThatAreNone)
{
    TIME_ZONE_INFORMATION zone{};
    FillMemory(&zone, sizeof(zone), 0xFF);
    UtcDateToLocalDate(At(2014, 7, 15), &zone);
    LocalDateToUtcFileTime(At(2014, 7, 15), &zone);
    zone = CentralEurope();
    zone.Bias = std::numeric_limits<LONG>::max();
    const DATE date = UtcDateToLocalDate(At(2014, 7, 15), &zone);
    EXPECT_TRUE(date == 0.0 || date < At(2014, 7, 15));
}
