#include "client/core/ItemOptions.h"

#include "client/core/FixedZone.h"

#include <gmock/gmock.h>

using namespace pim;

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace
{
const FixedZone kZone(2);

ItemOptions StartingAt(const wchar_t* start)
{
    ItemOptions options;
    options.start = ParseTypedTime(start);
    return options;
}

Appointment Made(const ItemOptions& options)
{
    Appointment item;
    EXPECT_EQ(MakeItem(options, kZone, item), L"");
    return item;
}

std::wstring Refusal(const ItemOptions& options)
{
    Appointment item;
    return MakeItem(options, kZone, item);
}

std::wstring SeriesText(const RepeatOptions& repeat)
{
    // 2024-05-01 was a Wednesday.
    ItemOptions options = StartingAt(L"2024-05-01 10:00");
    options.repeat = repeat;
    Appointment item;
    const std::wstring problem = MakeItem(options, kZone, item);
    return problem.empty() ? RecurrenceText(*item.recurrence) : problem;
}

RepeatOptions Repeat(_tagNAppointmentRecurringType type)
{
    RepeatOptions repeat;
    repeat.type = type;
    return repeat;
}

Appointment StoredMeeting()
{
    Appointment item;
    item.id = L"{1}";
    item.subject = L"Old";
    item.start = kMay1 + 8 * kHour;
    item.end = kMay1 + 9 * kHour;
    item.allDay = false;
    item.reminderMinutes = 15;
    return item;
}
} // namespace

TEST(ItemOptionsTest, MakesAnHourWithoutAReminder)
{
    const Appointment item = Made(StartingAt(L"2024-05-01 10:00"));
    EXPECT_EQ(CivilFromDate(*item.start), (CivilTime{2024, 5, 1, 8}));
    EXPECT_EQ(CivilFromDate(*item.end), (CivilTime{2024, 5, 1, 9}));
    EXPECT_EQ(item.allDay, false);
    EXPECT_EQ(item.reminderMinutes, kNoReminder);
    EXPECT_FALSE(item.subject);
    EXPECT_FALSE(item.recurrence);
}

TEST(ItemOptionsTest, TakesUtcTimesAsTheyAre)
{
    ItemOptions options = StartingAt(L"2024-05-01 10:00Z");
    options.end = ParseTypedTime(L"2024-05-01 13:30");
    const Appointment item = Made(options);
    EXPECT_EQ(CivilFromDate(*item.start), (CivilTime{2024, 5, 1, 10}));
    EXPECT_EQ(CivilFromDate(*item.end), (CivilTime{2024, 5, 1, 11, 30}));
}

TEST(ItemOptionsTest, MakesAllDayItemsOfLocalDays)
{
    ItemOptions options = StartingAt(L"2024-05-01");
    options.allDay = true;
    EXPECT_EQ(Made(options).start, kMay1);
    EXPECT_EQ(Made(options).end, kMay1 + 1);
    options.end = ParseTypedTime(L"2024-05-03");
    EXPECT_EQ(Made(options).end, kMay1 + 3);
}

TEST(ItemOptionsTest, RefusesTimesThatMakeNoItem)
{
    EXPECT_NE(Refusal(ItemOptions()), L"");
    EXPECT_NE(Refusal(StartingAt(L"2024-05-01")), L"");
    ItemOptions day = StartingAt(L"2024-05-01 10:00");
    day.allDay = true;
    EXPECT_NE(Refusal(day), L"");
    ItemOptions backwards = StartingAt(L"2024-05-01 10:00");
    backwards.end = ParseTypedTime(L"2024-05-01 09:59");
    EXPECT_NE(Refusal(backwards), L"");
    backwards.end = ParseTypedTime(L"2024-05-01 10:00");
    EXPECT_EQ(Refusal(backwards), L"");
    backwards.end = ParseTypedTime(L"2024-05-02");
    EXPECT_NE(Refusal(backwards), L"");
}

TEST(ItemOptionsTest, TakesTheDaysOfASeriesFromTheStart)
{
    EXPECT_EQ(SeriesText(Repeat(Daily)), L"every day");
    EXPECT_EQ(SeriesText(Repeat(Weekly)), L"every week on Wednesday");
    EXPECT_EQ(SeriesText(Repeat(Monthly)), L"every month on day 1");
    EXPECT_EQ(SeriesText(Repeat(Yearly)), L"every year on May 1");
}

TEST(ItemOptionsTest, TakesTheLocalDayOfTheStart)
{
    // 23:30 UTC of April 30, a Tuesday, is May 1 in the zone.
    ItemOptions options = StartingAt(L"2024-04-30 23:30Z");
    options.repeat = Repeat(Weekly);
    EXPECT_EQ(RecurrenceText(*Made(options).recurrence), L"every week on Wednesday");
}

TEST(ItemOptionsTest, TakesTheDetailsOfASeries)
{
    RepeatOptions weekly = Repeat(Weekly);
    weekly.interval = 2;
    weekly.weekdays = {false, true, false, false, false, true, false};
    weekly.untilDay = CivilTime{2024, 6, 30};
    EXPECT_EQ(SeriesText(weekly), L"every 2 weeks on Monday and Friday, until 2024-06-30");

    RepeatOptions monthly = Repeat(Monthly);
    monthly.nth = -1;
    monthly.weekdays = {false, false, false, false, false, true, false};
    monthly.count = 5;
    EXPECT_EQ(SeriesText(monthly), L"every month on the last Friday, 5 times");

    RepeatOptions monthDay = Repeat(Monthly);
    monthDay.monthDay = 31;
    EXPECT_EQ(SeriesText(monthDay), L"every month on day 31");

    RepeatOptions yearly = Repeat(Yearly);
    yearly.month = 2;
    yearly.monthDay = 29;
    EXPECT_EQ(SeriesText(yearly), L"every year on February 29");
}

TEST(ItemOptionsTest, EndsASeriesWithTheLastSecondOfItsDay)
{
    ItemOptions options = StartingAt(L"2024-05-01 10:00");
    options.repeat = Repeat(Daily);
    options.repeat.untilDay = CivilTime{2024, 5, 3};
    EXPECT_EQ(CivilFromDate(Made(options).recurrence->until), (CivilTime{2024, 5, 3, 23, 59, 59}));
}

TEST(ItemOptionsTest, RefusesDetailsThatDoNotFitTheSeries)
{
    RepeatOptions noKind;
    noKind.count = 3;
    EXPECT_THAT(SeriesText(noKind), HasSubstr(L"--repeat"));

    RepeatOptions dailyDays = Repeat(Daily);
    dailyDays.weekdays.emplace();
    EXPECT_THAT(SeriesText(dailyDays), HasSubstr(L"--days"));

    RepeatOptions weeklyNth = Repeat(Weekly);
    weeklyNth.nth = 1;
    EXPECT_THAT(SeriesText(weeklyNth), HasSubstr(L"--nth"));

    RepeatOptions nthOfNothing = Repeat(Monthly);
    nthOfNothing.nth = 1;
    EXPECT_THAT(SeriesText(nthOfNothing), HasSubstr(L"--days"));

    RepeatOptions anyOfDays = Repeat(Monthly);
    anyOfDays.weekdays = {true, false, false, false, false, false, false};
    EXPECT_THAT(SeriesText(anyOfDays), HasSubstr(L"--nth"));
    anyOfDays.nth = 1;
    anyOfDays.monthDay = 3;
    EXPECT_THAT(SeriesText(anyOfDays), HasSubstr(L"--month-day"));

    RepeatOptions weeklyMonthDay = Repeat(Weekly);
    weeklyMonthDay.monthDay = 3;
    EXPECT_THAT(SeriesText(weeklyMonthDay), HasSubstr(L"--month-day"));

    RepeatOptions monthlyMonth = Repeat(Monthly);
    monthlyMonth.month = 3;
    EXPECT_THAT(SeriesText(monthlyMonth), HasSubstr(L"--month "));

    RepeatOptions yearlyWeekday = Repeat(Yearly);
    yearlyWeekday.weekdays.emplace();
    EXPECT_THAT(SeriesText(yearlyWeekday), HasSubstr(L"yearly"));

    RepeatOptions twoEnds = Repeat(Daily);
    twoEnds.count = 3;
    twoEnds.untilDay = CivilTime{2024, 6, 1};
    EXPECT_THAT(SeriesText(twoEnds), HasSubstr(L"--until"));
}

TEST(ItemOptionsTest, ChangesOnlyWhatIsGiven)
{
    const Appointment before = StoredMeeting();
    Appointment item = before;
    ItemOptions options;
    options.subject = L"New";
    EXPECT_EQ(ChangeItem(options, kZone, item), L"");
    EXPECT_EQ(item.subject, L"New");
    item.subject = before.subject;
    EXPECT_EQ(item.start, before.start);
    EXPECT_EQ(item.end, before.end);
    EXPECT_EQ(item.reminderMinutes, before.reminderMinutes);
    EXPECT_EQ(item.allDay, before.allDay);
    EXPECT_FALSE(item.recurrence);
}

TEST(ItemOptionsTest, RefusesAChangedStartBehindTheEnd)
{
    Appointment item = StoredMeeting();
    EXPECT_EQ(ChangeItem(StartingAt(L"2024-05-01 10:30"), kZone, item), L"");
    EXPECT_EQ(CivilFromDate(*item.end), (CivilTime{2024, 5, 1, 9}));
    EXPECT_NE(ChangeItem(StartingAt(L"2024-05-02 10:30"), kZone, item), L"");
}

TEST(ItemOptionsTest, TakesTheLocalDaysAlongWhenAnItemBecomesAllDay)
{
    Appointment item = StoredMeeting();
    item.end = kMay1 + 30 * kHour; // 08:00 of the next day in the zone
    ItemOptions options;
    options.allDay = true;
    EXPECT_EQ(ChangeItem(options, kZone, item), L"");
    EXPECT_EQ(item.allDay, true);
    EXPECT_EQ(item.start, kMay1);
    EXPECT_EQ(item.end, kMay1 + 2);
}

TEST(ItemOptionsTest, AsksForATimeWhenAnItemCeasesToBeAllDay)
{
    Appointment item = StoredMeeting();
    item.allDay = true;
    item.start = kMay1;
    item.end = kMay1 + 1;
    ItemOptions options;
    options.allDay = false;
    EXPECT_NE(ChangeItem(options, kZone, item), L"");
    options.start = ParseTypedTime(L"2024-05-01 10:00");
    EXPECT_EQ(ChangeItem(options, kZone, item), L"");
    EXPECT_EQ(CivilFromDate(*item.start), (CivilTime{2024, 5, 1, 8}));
    EXPECT_EQ(CivilFromDate(*item.end), (CivilTime{2024, 5, 1, 9}));
}

TEST(ItemOptionsTest, ChangesTheEndOfASeriesThatStands)
{
    Appointment item = StoredMeeting();
    item.recurrence = Recurrence();
    item.recurrence->type = Weekly;
    item.recurrence->interval = 2;
    item.recurrence->weekdays[1] = true;
    item.recurrence->deletedLocalDays = {kMay1};
    ItemOptions options;
    options.repeat.count = 4;
    EXPECT_EQ(ChangeItem(options, kZone, item), L"");
    EXPECT_EQ(RecurrenceText(*item.recurrence),
              L"every 2 weeks on Monday, 4 times, 1 day left out");
}

TEST(ItemOptionsTest, NamesTheFieldsThatAStoreDidNotKeep)
{
    const Appointment before = StoredMeeting();
    Appointment wanted = before;
    wanted.subject = L"New";
    wanted.reminderMinutes = 30;
    wanted.start = kMay1 + 7 * kHour;
    wanted.recurrence = Recurrence();
    wanted.recurrence->type = Daily;
    EXPECT_THAT(FieldsNotKept(before, wanted, wanted), IsEmpty());
    EXPECT_THAT(FieldsNotKept(before, wanted, before),
                ElementsAre(L"subject", L"start", L"reminder", L"repeat"));

    Appointment kept = wanted;
    kept.start = *wanted.start + 1e-9; // the same second
    kept.timeZone = L"changed by the store";
    kept.reminderMinutes = 15;
    EXPECT_THAT(FieldsNotKept(before, wanted, kept), ElementsAre(L"reminder"));
}

TEST(ItemOptionsTest, TakesAReminderOfZeroForNoneWhereNoneWasAsked)
{
    const Appointment before = StoredMeeting();
    Appointment wanted = before;
    wanted.reminderMinutes = kNoReminder;
    Appointment kept = before;
    kept.reminderMinutes = 0;
    EXPECT_THAT(FieldsNotKept(before, wanted, kept), IsEmpty());
}
