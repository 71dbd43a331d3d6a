#include "client/core/Recurrence.h"

#include "client/core/FixedZone.h"

#include <gtest/gtest.h>

#include <memory>

using namespace pim;

namespace
{
Recurrence Series(_tagNAppointmentRecurringType type, unsigned interval)
{
    Recurrence series;
    series.type = type;
    series.interval = interval;
    return series;
}

Recurrence OnDays(Recurrence series, std::initializer_list<int> days)
{
    for (const int day : days)
        series.weekdays[std::size_t(day)] = true;
    return series;
}

Recurrence OnNth(Recurrence series, int nth, std::initializer_list<int> days)
{
    series.rule = Recurrence::Rule::Weekdays;
    series.nth = nth;
    return OnDays(series, days);
}

Recurrence OnMonthDay(Recurrence series, int day, int month = 0)
{
    series.rule = Recurrence::Rule::MonthDay;
    series.monthDay = day;
    series.month = month;
    return series;
}

std::unique_ptr<_tagRecurringInfo> EmptyRecord()
{
    return std::make_unique<_tagRecurringInfo>();
}

struct WordingCase
{
    Recurrence series;
    const wchar_t* words;
};
} // namespace

TEST(RecurrenceTest, TellsEveryKindOfSeriesInWords)
{
    const WordingCase cases[] = {
        {Series(None, 1), L""},
        {Series(Daily, 1), L"every day"},
        {Series(Daily, 3), L"every 3 days"},
        {Series(Daily, 0), L"daily"},
        {OnDays(Series(Weekly, 1), {1}), L"every week on Monday"},
        {OnDays(Series(Weekly, 2), {5, 1}), L"every 2 weeks on Monday and Friday"},
        {OnDays(Series(Weekly, 1), {0, 1, 6}), L"every week on Monday, Saturday and Sunday"},
        {OnDays(Series(Weekly, 1), {1, 2, 3, 4, 5}), L"every week on weekdays"},
        {OnDays(Series(Weekly, 4), {0, 1, 2, 3, 4, 5, 6}), L"every 4 weeks on every day"},
        {Series(Weekly, 0), L"weekly"},
        {OnMonthDay(Series(Monthly, 1), 15), L"every month on day 15"},
        {OnMonthDay(Series(Monthly, 3), -1), L"every 3 months on the last day"},
        {OnMonthDay(Series(Monthly, 1), 0), L"every month"},
        {Series(Monthly, 2), L"every 2 months"},
        {OnNth(Series(Monthly, 1), 2, {2}), L"every month on the second Tuesday"},
        {OnNth(Series(Monthly, 1), -1, {5}), L"every month on the last Friday"},
        {OnNth(Series(Monthly, 1), -1, {1, 2, 3, 4, 5}), L"every month on the last weekday"},
        {OnNth(Series(Monthly, 1), 1, {0, 6}), L"every month on the first weekend day"},
        {OnNth(Series(Monthly, 1), -1, {0, 1, 2, 3, 4, 5, 6}), L"every month on the last day"},
        {OnNth(Series(Monthly, 2), 0, {1}), L"every 2 months on every Monday"},
        {OnNth(Series(Monthly, 1), 5, {1}), L"every month on the fifth Monday"},
        {OnNth(Series(Monthly, 1), -2, {1}), L"every month on the second to last Monday"},
        {OnNth(Series(Monthly, 1), 2, {1, 2}), L"every month on the second Monday and Tuesday"},
        {OnMonthDay(Series(Yearly, 1), 24, 12), L"every year on December 24"},
        {OnMonthDay(Series(Yearly, 2), 0, 2), L"every 2 years in February"},
        {OnMonthDay(Series(Yearly, 1), 7, 0), L"every year on day 7"},
        {OnMonthDay(Series(Yearly, 1), 7, 99), L"every year on month 99 7"},
        {Series(Yearly, 1), L"every year"},
    };
    for (const WordingCase& one : cases)
        EXPECT_EQ(RecurrenceText(one.series), one.words);

    Recurrence thanksgiving = OnNth(Series(Yearly, 1), 4, {4});
    thanksgiving.month = 11;
    EXPECT_EQ(RecurrenceText(thanksgiving), L"every year on the fourth Thursday of November");
    Recurrence weekdays = Series(Daily, 1);
    weekdays.everyWeekday = true;
    EXPECT_EQ(RecurrenceText(weekdays), L"every weekday");
}

TEST(RecurrenceTest, TellsTheEndOfASeries)
{
    Recurrence series = OnDays(Series(Weekly, 2), {1, 5});
    series.endType = EndByDate;
    series.until = kMay1 + 23 * kHour;
    EXPECT_EQ(RecurrenceText(series), L"every 2 weeks on Monday and Friday, until 2024-05-01");
    series.until = 0;
    EXPECT_EQ(RecurrenceText(series), L"every 2 weeks on Monday and Friday, until an unknown day");
    series.endType = EndByCount;
    series.count = 10;
    EXPECT_EQ(RecurrenceText(series), L"every 2 weeks on Monday and Friday, 10 times");
    series.count = 1;
    EXPECT_EQ(RecurrenceText(series), L"every 2 weeks on Monday and Friday, 1 time");
}

TEST(RecurrenceTest, CountsDeletedAndChangedInstances)
{
    Recurrence series = Series(Daily, 1);
    series.deletedLocalDays = {kMay1, kMay1 + 1};
    EXPECT_EQ(RecurrenceText(series), L"every day, 2 days left out");
    series.modified.resize(1);
    EXPECT_EQ(RecurrenceText(series), L"every day, 2 days left out, 1 day changed");
}

TEST(RecurrenceTest, CountsTheOriginalDayOfAChangedInstanceAsChangedAlone)
{
    Recurrence series = Series(Daily, 1);
    series.deletedLocalDays = {kMay1, kMay1 + 1, kMay1 + 2};
    series.modified.resize(2);
    series.modified[0].localOriginalStart = kMay1 + 1 + 9 * kHour;
    series.modified[1].localOriginalStart = kMay1 + 5;
    EXPECT_EQ(LeftOutDays(series), (std::vector<DATE>{kMay1, kMay1 + 2}));
    EXPECT_EQ(RecurrenceText(series), L"every day, 2 days left out, 2 days changed");
    series.deletedLocalDays = {kMay1 + 1};
    EXPECT_EQ(RecurrenceText(series), L"every day, 2 days changed");
}

TEST(RecurrenceTest, TakesTheMonthOfAYearlySeriesFromItsStart)
{
    const auto wordsOf = [](Recurrence series, DATE start) {
        TakeMonthFromStart(series, start);
        return RecurrenceText(series);
    };
    const Recurrence first = OnMonthDay(Series(Yearly, 1), 1);
    EXPECT_EQ(wordsOf(first, kMay1), L"every year on May 1");
    // The start in UTC lies in the evening before, or behind midnight of the day that follows.
    EXPECT_EQ(wordsOf(first, kMay1 - 2 * kHour), L"every year on May 1");
    EXPECT_EQ(wordsOf(first, kMay1 + 25 * kHour), L"every year on May 1");
    EXPECT_EQ(wordsOf(first, kMay1 + 3), L"every year on day 1");
    EXPECT_EQ(wordsOf(first, 0.0), L"every year on day 1");
    EXPECT_EQ(wordsOf(OnMonthDay(Series(Yearly, 1), 1, 3), kMay1), L"every year on March 1");
    EXPECT_EQ(wordsOf(OnNth(Series(Yearly, 1), -1, {5}), kMay1 + 9),
              L"every year on the last Friday of May");
    EXPECT_EQ(wordsOf(Series(Yearly, 1), kMay1), L"every year");
    EXPECT_EQ(wordsOf(OnMonthDay(Series(Monthly, 1), 1), kMay1), L"every month on day 1");
}

TEST(RecurrenceTest, ReadsOnlyThePartThatTheTypeMakesValid)
{
    const auto record = EmptyRecord();
    record->eRecurType = Weekly;
    record->tDaily.ulIntervalDay = 9;
    record->tMonthly.lMonthDay = 9;
    record->tWeekly.ulIntervalWeek = 2;
    record->tWeekly.bValidWeekday[1] = -1;
    record->tWeekly.bValidWeekday[5] = 1;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)), L"every 2 weeks on Monday and Friday");
}

TEST(RecurrenceTest, TakesTheDayOfAYearlySeriesWithoutAModeFlag)
{
    const auto record = EmptyRecord();
    record->eRecurType = Yearly;
    record->tYearly.ulIntervalYear = 1;
    record->tYearly.lMonth = 12;
    record->tYearly.lDay = 24;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)), L"every year on December 24");
    record->tYearly.bIsByDayMode = -1;
    record->tYearly.lNth = -1;
    record->tYearly.bValidWeekday[0] = -1;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)),
              L"every year on the last Sunday of December");
}

TEST(RecurrenceTest, ReadsTheEndOnlyWhereTheEndTypeSaysSo)
{
    const auto record = EmptyRecord();
    record->eRecurType = Daily;
    record->tDaily.ulIntervalDay = 1;
    record->tEndInfo.ulTimesAfter = 7;
    record->tEndInfo.dtEndDateTime = kMay1;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)), L"every day");
    record->tEndInfo.eEndType = EndByCount;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)), L"every day, 7 times");
    record->tEndInfo.eEndType = EndByDate;
    EXPECT_EQ(RecurrenceText(ReadRecurrence(*record)), L"every day, until 2024-05-01");
}

TEST(RecurrenceTest, TakesUnknownTypesForNone)
{
    const auto record = EmptyRecord();
    record->eRecurType = static_cast<_tagNAppointmentRecurringType>(5);
    EXPECT_EQ(ReadRecurrence(*record), Recurrence());
}

TEST(RecurrenceTest, ReadsFullArraysAndTextWithoutATerminator)
{
    const auto record = EmptyRecord();
    record->eRecurType = Daily;
    for (int i = 0; i < kMaxDeletedInstances; ++i)
        record->arrDeletedInstance[i] = kMay1 + i;
    for (int i = 0; i < kMaxModifiedInstances; ++i)
        record->arrModifiedInstance[i].dtModifiedDate = kMay1 + i;
    for (auto& unit : record->arrModifiedInstance[0].szSubject)
        unit = 'x';
    const Recurrence series = ReadRecurrence(*record);
    EXPECT_EQ(series.deletedLocalDays.size(), 64u);
    ASSERT_EQ(series.modified.size(), 32u);
    EXPECT_EQ(series.modified[0].subject, std::wstring(260, L'x'));
    EXPECT_EQ(series.modified[1].subject, L"");
}

TEST(RecurrenceTest, WritesWhatItReads)
{
    Recurrence monthly = OnNth(Series(Monthly, 3), -1, {5});
    monthly.endType = EndByDate;
    monthly.until = kMay1;
    monthly.deletedLocalDays = {kMay1 + 1, kMay1 + 2};
    monthly.modified = {{kMay1, kMay1 + 0.25, kMay1 + 0.5, kMay1 + 0.125, L"Moved", L"There"}};
    Recurrence weekdays = Series(Daily, 1);
    weekdays.everyWeekday = true;
    weekdays.endType = EndByCount;
    weekdays.count = 3;
    for (const Recurrence& series : {monthly,
                                     weekdays,
                                     OnDays(Series(Weekly, 2), {0, 6}),
                                     OnMonthDay(Series(Monthly, 1), 31),
                                     OnMonthDay(Series(Yearly, 1), 29, 2),
                                     OnNth(Series(Yearly, 1), 4, {4})})
    {
        const auto record = EmptyRecord();
        WriteRecurrence(series, *record);
        EXPECT_EQ(ReadRecurrence(*record), series);
    }
}

TEST(RecurrenceTest, CutsWhatTheRecordHasNoRoomFor)
{
    Recurrence series = Series(Daily, 1);
    series.deletedLocalDays.assign(100, kMay1);
    series.modified.assign(40, {kMay1, 0, 0, 0, std::wstring(300, L'y'), L""});
    const auto record = EmptyRecord();
    WriteRecurrence(series, *record);
    const Recurrence read = ReadRecurrence(*record);
    EXPECT_EQ(read.deletedLocalDays.size(), 64u);
    ASSERT_EQ(read.modified.size(), 32u);
    EXPECT_EQ(read.modified[31].subject, std::wstring(259, L'y'));
}

TEST(RecurrenceTest, TellsReminders)
{
    struct
    {
        std::uint32_t minutes;
        const wchar_t* words;
    } const cases[] = {
        {0, L"at the start"},
        {0xFFFFFFFF, L"none"},
        {1, L"1 minute before"},
        {15, L"15 minutes before"},
        {60, L"1 hour before"},
        {90, L"1 hour and 30 minutes before"},
        {120, L"2 hours before"},
        {1440, L"1 day before"},
        {1501, L"1 day, 1 hour and 1 minute before"},
        {10080, L"1 week before"},
        {20160, L"2 weeks before"},
        {11520, L"8 days before"},
        {0xFFFFFFF6, L"10 minutes after the start"}, // -10 as a signed number
    };
    for (const auto& one : cases)
        EXPECT_EQ(ReminderText(one.minutes), one.words) << one.minutes;
}
