#include "client/core/CivilTime.h"

#include "client/core/FixedZone.h"

#include <gtest/gtest.h>

#include <limits>

using namespace pim;

namespace
{
std::optional<TypedTime> Parse(const wchar_t* text)
{
    return ParseTypedTime(text);
}
} // namespace

TEST(CivilTimeTest, ReadsTheDaysOfADate)
{
    EXPECT_EQ(CivilFromDate(kMay1), (CivilTime{2024, 5, 1}));
    EXPECT_EQ(CivilFromDate(std::optional<DATE>(kMay1)), (CivilTime{2024, 5, 1}));
    EXPECT_EQ(CivilFromDate(std::optional<DATE>()), std::nullopt);
    EXPECT_EQ(CivilFromDate(kMay1 + 10 * kHour), (CivilTime{2024, 5, 1, 10}));
    EXPECT_EQ(CivilFromDate(1.0), (CivilTime{1899, 12, 31}));
    EXPECT_EQ(CivilFromDate(25569.5), (CivilTime{1970, 1, 1, 12}));
}

TEST(CivilTimeTest, CountsTheFractionOfANegativeDateForward)
{
    EXPECT_EQ(CivilFromDate(-1.25), (CivilTime{1899, 12, 29, 6}));
    EXPECT_EQ(DateFromCivil({1899, 12, 29, 6}), -1.25);
}

TEST(CivilTimeTest, RoundsToTheNearestSecond)
{
    EXPECT_EQ(CivilFromDate(kMay1 + 9.0 * kHour - 1e-9), (CivilTime{2024, 5, 1, 9}));
    EXPECT_EQ(CivilFromDate(kMay1 + 1.0 - 1e-9), (CivilTime{2024, 5, 2}));
}

TEST(CivilTimeTest, TakesUnsetAndImpossibleDatesForNone)
{
    EXPECT_FALSE(CivilFromDate(0.0));
    EXPECT_FALSE(CivilFromDate(std::numeric_limits<double>::quiet_NaN()));
    EXPECT_FALSE(CivilFromDate(std::numeric_limits<double>::infinity()));
    EXPECT_FALSE(CivilFromDate(-1e300));
    // 2958465 is 9999-12-31, the last day of automation; -657434 is 0100-01-01, the first.
    EXPECT_EQ(CivilFromDate(2958465.0), (CivilTime{9999, 12, 31}));
    EXPECT_FALSE(CivilFromDate(2958466.0));
    EXPECT_EQ(CivilFromDate(-657434.0), (CivilTime{100, 1, 1}));
    EXPECT_FALSE(CivilFromDate(-657435.0));
}

TEST(CivilTimeTest, WritesWhatItReads)
{
    EXPECT_EQ(DateFromCivil({2024, 5, 1}), kMay1);
    EXPECT_DOUBLE_EQ(DateFromCivil({2024, 5, 1, 10, 30}), kMay1 + 10.5 / 24);
}

TEST(CivilTimeTest, MovesOverTheEndsOfMonthsAndDays)
{
    EXPECT_EQ(AddDays({2024, 2, 28}, 1), (CivilTime{2024, 2, 29}));
    EXPECT_EQ(AddDays({2023, 2, 28}, 1), (CivilTime{2023, 3, 1}));
    EXPECT_EQ(AddDays({2024, 1, 1, 8}, -1), (CivilTime{2023, 12, 31, 8}));
    EXPECT_EQ(AddSeconds({2024, 5, 1}, -1), (CivilTime{2024, 4, 30, 23, 59, 59}));
    EXPECT_EQ(AddSeconds({2024, 4, 30, 23}, 7200), (CivilTime{2024, 5, 1, 1}));
    EXPECT_FALSE(AddDays({9999, 12, 31}, 1));
}

TEST(CivilTimeTest, KnowsTheWeekday)
{
    // 2024-05-01 was a Wednesday, 2000-01-01 a Saturday, 2024-03-31 a Sunday.
    EXPECT_EQ(WeekdayOf({2024, 5, 1}), 3);
    EXPECT_EQ(WeekdayOf({2000, 1, 1}), 6);
    EXPECT_EQ(WeekdayOf({2024, 3, 31}), 0);
}

TEST(CivilTimeTest, FormatsForPeopleAndForPrograms)
{
    const CivilTime time{2024, 5, 1, 9, 5};
    EXPECT_EQ(FormatDay(time), L"2024-05-01");
    EXPECT_EQ(FormatClock(time), L"09:05");
    EXPECT_EQ(FormatDayAndClock(time), L"2024-05-01 09:05");
    EXPECT_EQ(FormatIso(time), L"2024-05-01T09:05:00");
    EXPECT_EQ(FormatClock({2024, 5, 1, 9, 5, 7}), L"09:05:07");
    EXPECT_EQ(FormatDay({101, 1, 1}), L"0101-01-01");
}

TEST(CivilTimeTest, ReadsTypedTimes)
{
    const auto day = Parse(L"2024-05-01");
    ASSERT_TRUE(day);
    EXPECT_EQ(day->time, (CivilTime{2024, 5, 1}));
    EXPECT_FALSE(day->hasClock);

    const auto local = Parse(L"2024-05-01 10:00");
    ASSERT_TRUE(local);
    EXPECT_EQ(local->time, (CivilTime{2024, 5, 1, 10}));
    EXPECT_TRUE(local->hasClock);
    EXPECT_FALSE(local->isUtc);

    const auto utc = Parse(L"2024-05-01T23:59:58Z");
    ASSERT_TRUE(utc);
    EXPECT_EQ(utc->time, (CivilTime{2024, 5, 1, 23, 59, 58}));
    EXPECT_TRUE(utc->isUtc);
}

TEST(CivilTimeTest, RefusesTextThatIsNoTime)
{
    for (const wchar_t* text : {L"",
                                L"2024",
                                L"2024-5-1",
                                L"2024-05-01 ",
                                L"2024-05-01 10",
                                L"2024-05-01 10:0",
                                L"2024-05-01 24:00",
                                L"2024-05-01 10:60",
                                L"2024-05-01 10:00:60",
                                L"2024-05-01 10:00 Z",
                                L"2024-05-01 10:00x",
                                L"2024-02-30",
                                L"2023-02-29",
                                L"2024-13-01",
                                L"0099-01-01",
                                L"2024/05/01",
                                L"-024-05-01",
                                L"tomorrow"})
        EXPECT_FALSE(Parse(text)) << std::string(text, text + std::wcslen(text));
}
