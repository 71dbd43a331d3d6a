#include "icalendar/RecurrenceMapping.h"

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

namespace
{

constexpr DATE kDay20061231 = 39082.0; // 2006-12-31 00:00

EventNumbers EventWithRule(const wchar_t* rule)
{
    CVEvent event;
    event.SetProperty(L"RRULE", rule);
    return event.Fields();
}

template <typename Record> std::wstring Flags(const Record& record)
{
    std::wstring text;
    for (const VARIANT_BOOL flag : record.bValidWeekday)
        text += flag == 0 ? L'0' : flag == -1 ? L'1' : L'?';
    return text;
}

std::wstring WeekdayFlags(const EventNumbers& event)
{
    std::wstring text;
    for (const bool flag : event.weekdays)
        text += flag ? L'1' : L'0';
    return text;
}

// Whether two heads are the same byte by byte, their padding zeroed in both.
bool Same(const RecurrenceHead& left, const RecurrenceHead& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

RecurrenceHead Zero()
{
    RecurrenceHead head;
    std::memset(&head, 0, sizeof(head));
    return head;
}

TEST(RecurrenceMappingTest, AnEventWithoutAFrequencyGivesAZeroRecord)
{
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"INTERVAL=3;BYDAY=MO;COUNT=5")), Zero()));
}

TEST(RecurrenceMappingTest, DailyRuleToRecord)
{
    RecurrenceHead expected = Zero();
    expected.eRecurType = Daily;
    expected.tDaily.bIsByDayMode = -1;
    expected.tDaily.ulIntervalDay = 3;
    EXPECT_TRUE(
        Same(RecurrenceFromEvent(EventWithRule(L"FREQ=DAILY;INTERVAL=3;BYDAY=MO")), expected));
    expected.tDaily.ulIntervalDay = 0;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=DAILY;INTERVAL=0")), expected));
}

TEST(RecurrenceMappingTest, WeeklyRuleToRecord)
{
    const RecurrenceHead head =
        RecurrenceFromEvent(EventWithRule(L"FREQ=WEEKLY;INTERVAL=2;BYDAY=SU,MO,SA"));
    EXPECT_EQ(head.eRecurType, Weekly);
    EXPECT_EQ(head.tWeekly.ulIntervalWeek, 2u);
    EXPECT_EQ(Flags(head.tWeekly), L"1100001");
    EXPECT_EQ(head.tEndInfo.eEndType, NoEnd);
}

TEST(RecurrenceMappingTest, AWeeklyRuleWithoutWeekdaysGivesNoInterval)
{
    RecurrenceHead expected = Zero();
    expected.eRecurType = Weekly;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=WEEKLY;INTERVAL=2")), expected));
    // A BYDAY that names no day counts as one.
    expected.tWeekly.ulIntervalWeek = 2;
    EXPECT_TRUE(
        Same(RecurrenceFromEvent(EventWithRule(L"FREQ=WEEKLY;INTERVAL=2;BYDAY=mo")), expected));
}

TEST(RecurrenceMappingTest, MonthlyRuleToRecord)
{
    RecurrenceHead expected = Zero();
    expected.eRecurType = Monthly;
    expected.tMonthly.ulIntervalMonth = 2;
    expected.tMonthly.bIsByMonthDayMode = -1;
    expected.tMonthly.lMonthDay = 15;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=MONTHLY;INTERVAL=2;BYMONTHDAY=15")),
                     expected));
    expected.tMonthly.lMonthDay = 0;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=MONTHLY;INTERVAL=2")), expected));

    expected = Zero();
    expected.eRecurType = Monthly;
    expected.tMonthly.ulIntervalMonth = 1;
    expected.tMonthly.bIsByDayMode = -1;
    expected.tMonthly.lNth = -1;
    expected.tMonthly.bValidWeekday[5] = -1;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=MONTHLY;BYDAY=-1FR;BYMONTHDAY=15")),
                     expected));
}

TEST(RecurrenceMappingTest, YearlyRuleToRecordLosesItsWeekdays)
{
    RecurrenceHead expected = Zero();
    expected.eRecurType = Yearly;
    expected.tYearly.ulIntervalYear = 1;
    expected.tYearly.lMonth = 5;
    expected.tYearly.lDay = 8;
    EXPECT_TRUE(
        Same(RecurrenceFromEvent(EventWithRule(L"FREQ=YEARLY;BYMONTH=5;BYMONTHDAY=8;BYDAY=2MO")),
             expected));
    expected.tYearly.lMonth = 0;
    expected.tYearly.lDay = 0;
    EXPECT_TRUE(Same(RecurrenceFromEvent(EventWithRule(L"FREQ=YEARLY;BYDAY=2MO")), expected));
}

TEST(RecurrenceMappingTest, EndOfTheSeriesToRecord)
{
    const auto endOf = [](const wchar_t* rule) {
        return RecurrenceFromEvent(EventWithRule(rule)).tEndInfo;
    };
    EXPECT_EQ(endOf(L"FREQ=DAILY").eEndType, NoEnd);

    const _tagEndInfo byCount = endOf(L"FREQ=DAILY;COUNT=7");
    EXPECT_EQ(byCount.eEndType, EndByCount);
    EXPECT_EQ(byCount.ulTimesAfter, 7u);
    EXPECT_EQ(byCount.dtEndDateTime, 0.0);

    const _tagEndInfo byDate = endOf(L"FREQ=DAILY;COUNT=7;UNTIL=20061231T120000Z");
    EXPECT_EQ(byDate.eEndType, EndByDate);
    EXPECT_EQ(byDate.ulTimesAfter, 0u);
    EXPECT_EQ(byDate.dtEndDateTime, kDay20061231 + 0.5);

    // A year that is no date still counts as a date.
    const _tagEndInfo noDate = endOf(L"FREQ=DAILY;UNTIL=20061331");
    EXPECT_EQ(noDate.eEndType, EndByDate);
    EXPECT_EQ(noDate.dtEndDateTime, 0.0);
}

TEST(RecurrenceMappingTest, ARecordOfNoKindChangesNothing)
{
    RecurrenceHead head = Zero();
    head.tDaily.ulIntervalDay = 5;
    head.tEndInfo.eEndType = EndByCount;
    head.tEndInfo.ulTimesAfter = 5;
    EventNumbers event = EventWithRule(L"FREQ=WEEKLY;INTERVAL=2;COUNT=3");
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 2);
    EXPECT_EQ(event.interval, 2);
    EXPECT_EQ(event.count, 3);
}

TEST(RecurrenceMappingTest, DailyRecordToRule)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Daily;
    head.tDaily.ulIntervalDay = 4;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 1);
    EXPECT_EQ(event.interval, 4);
}

TEST(RecurrenceMappingTest, AnIntervalOfZeroLeavesTheField)
{
    for (const auto kind : {Daily, Weekly, Monthly, Yearly})
    {
        RecurrenceHead head = Zero();
        head.eRecurType = kind;
        EventNumbers fresh;
        RecurrenceToEvent(head, fresh);
        EXPECT_EQ(fresh.frequency, static_cast<int>(kind));
        EXPECT_EQ(fresh.interval, 1);
        EventNumbers existing = EventWithRule(L"INTERVAL=6");
        RecurrenceToEvent(head, existing);
        EXPECT_EQ(existing.interval, 6);
    }
}

TEST(RecurrenceMappingTest, WeeklyRecordToRule)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Weekly;
    head.tWeekly.ulIntervalWeek = 2;
    head.tWeekly.bValidWeekday[0] = -1;
    head.tWeekly.bValidWeekday[3] = 1; // any bits but none count
    EventNumbers event = EventWithRule(L"BYDAY=MO");
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 2);
    EXPECT_EQ(event.interval, 2);
    EXPECT_EQ(WeekdayFlags(event), L"1001000");
    EXPECT_TRUE(event.hasWeekdays);

    head.tWeekly.bValidWeekday[0] = 0;
    head.tWeekly.bValidWeekday[3] = 0;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(WeekdayFlags(event), L"0000000");
    EXPECT_FALSE(event.hasWeekdays);
}

TEST(RecurrenceMappingTest, MonthlyRecordByMonthDayToRule)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Monthly;
    head.tMonthly.ulIntervalMonth = 3;
    head.tMonthly.bIsByMonthDayMode = 1;
    head.tMonthly.bIsByDayMode = -1;
    head.tMonthly.lMonthDay = 31;
    head.tMonthly.lNth = 2;
    head.tMonthly.bValidWeekday[1] = -1;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 3);
    EXPECT_EQ(event.interval, 3);
    EXPECT_EQ(event.monthDay, 31);
    EXPECT_EQ(event.nth, 0);
    EXPECT_FALSE(event.hasWeekdays);
    EXPECT_EQ(WeekdayFlags(event), L"0000000");

    head.tMonthly.lMonthDay = 0;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.monthDay, 31);
}

TEST(RecurrenceMappingTest, MonthlyRecordByWeekdayToRule)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Monthly;
    head.tMonthly.bIsByDayMode = -1;
    head.tMonthly.lMonthDay = 31;
    head.tMonthly.lNth = -1;
    head.tMonthly.bValidWeekday[6] = -1;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.monthDay, 0);
    EXPECT_EQ(event.nth, -1);
    EXPECT_EQ(WeekdayFlags(event), L"0000001");
    EXPECT_TRUE(event.hasWeekdays);

    head.tMonthly.lNth = 0;
    head.tMonthly.bValidWeekday[6] = 0;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.nth, -1);
    EXPECT_EQ(WeekdayFlags(event), L"0000000");
    EXPECT_TRUE(event.hasWeekdays);
}

TEST(RecurrenceMappingTest, AMonthlyRecordOfNeitherModeSetsItsIntervalOnly)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Monthly;
    head.tMonthly.ulIntervalMonth = 2;
    head.tMonthly.lMonthDay = 31;
    head.tMonthly.lNth = 2;
    head.tMonthly.bValidWeekday[1] = -1;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.interval, 2);
    EXPECT_EQ(event.monthDay, 0);
    EXPECT_EQ(event.nth, 0);
    EXPECT_FALSE(event.hasWeekdays);
}

TEST(RecurrenceMappingTest, YearlyRecordToRuleLosesItsWeekdays)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Yearly;
    head.tYearly.ulIntervalYear = 2;
    head.tYearly.bIsByDayMode = -1;
    head.tYearly.lMonth = 5;
    head.tYearly.lDay = 8;
    head.tYearly.lNth = 2;
    head.tYearly.bValidWeekday[1] = -1;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 4);
    EXPECT_EQ(event.interval, 2);
    EXPECT_EQ(event.month, 5);
    EXPECT_EQ(event.monthDay, 8);
    EXPECT_EQ(event.nth, 0);
    EXPECT_FALSE(event.hasWeekdays);

    head.tYearly.lMonth = 0;
    head.tYearly.lDay = 0;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.month, 5);
    EXPECT_EQ(event.monthDay, 8);
}

TEST(RecurrenceMappingTest, EndOfTheSeriesToRule)
{
    RecurrenceHead head = Zero();
    head.eRecurType = Daily;
    head.tEndInfo.dtEndDateTime = kDay20061231 + 0.25;
    head.tEndInfo.ulTimesAfter = 7;

    EventNumbers noEnd;
    RecurrenceToEvent(head, noEnd);
    EXPECT_EQ(noEnd.count, 0);
    EXPECT_EQ(noEnd.until.wYear, 0);

    head.tEndInfo.eEndType = EndByCount;
    EventNumbers byCount;
    RecurrenceToEvent(head, byCount);
    EXPECT_EQ(byCount.count, 7);
    EXPECT_EQ(byCount.until.wYear, 0);

    head.tEndInfo.eEndType = EndByDate;
    EventNumbers byDate;
    RecurrenceToEvent(head, byDate);
    EXPECT_EQ(byDate.count, 0);
    EXPECT_EQ(byDate.until.wYear, 2006);
    EXPECT_EQ(byDate.until.wMonth, 12);
    EXPECT_EQ(byDate.until.wDay, 31);
    EXPECT_EQ(byDate.until.wHour, 6);

    // A date that is none leaves the field.
    head.tEndInfo.dtEndDateTime = 1e300;
    RecurrenceToEvent(head, byDate);
    EXPECT_EQ(byDate.until.wYear, 2006);
}

TEST(RecurrenceMappingTest, ARecordTakesNothingBackThatTheRuleHad)
{
    constexpr const wchar_t* kRule =
        L"FREQ=MONTHLY;INTERVAL=2;BYDAY=2MO;BYMONTHDAY=15;BYMONTH=5;COUNT=7;UNTIL=20061231";
    RecurrenceHead head = Zero();
    head.eRecurType = Monthly;
    head.tMonthly.bIsByMonthDayMode = -1;
    head.tMonthly.lMonthDay = 20;
    EventNumbers byMonthDay = EventWithRule(kRule);
    RecurrenceToEvent(head, byMonthDay);
    EXPECT_EQ(byMonthDay.monthDay, 20);
    EXPECT_EQ(byMonthDay.nth, 2);
    EXPECT_EQ(WeekdayFlags(byMonthDay), L"0100000");
    EXPECT_TRUE(byMonthDay.hasWeekdays);
    EXPECT_EQ(byMonthDay.count, 7);
    EXPECT_EQ(byMonthDay.until.wYear, 2006);

    // A new end stands beside the old one.
    head = Zero();
    head.eRecurType = Daily;
    head.tEndInfo.eEndType = EndByCount;
    head.tEndInfo.ulTimesAfter = 3;
    EventNumbers daily = EventWithRule(kRule);
    RecurrenceToEvent(head, daily);
    EXPECT_EQ(daily.frequency, 1);
    EXPECT_EQ(daily.month, 5);
    EXPECT_EQ(daily.monthDay, 15);
    EXPECT_TRUE(daily.hasWeekdays);
    EXPECT_EQ(daily.count, 3);
    EXPECT_EQ(daily.until.wYear, 2006);
}

TEST(RecurrenceMappingTest, AKindThatIsNoneGoesBothWaysWithItsEnd)
{
    RecurrenceHead head = Zero();
    const std::int32_t kind = 9; // as a client writes it
    static_assert(sizeof(kind) == sizeof(head.eRecurType));
    std::memcpy(&head.eRecurType, &kind, sizeof(kind));
    head.tDaily.ulIntervalDay = 4;
    head.tEndInfo.eEndType = EndByCount;
    head.tEndInfo.ulTimesAfter = 3;
    EventNumbers event;
    RecurrenceToEvent(head, event);
    EXPECT_EQ(event.frequency, 9);
    EXPECT_EQ(event.interval, 1);
    EXPECT_EQ(event.count, 3);

    RecurrenceHead expected = Zero();
    expected.eRecurType = head.eRecurType;
    expected.tEndInfo = head.tEndInfo;
    EXPECT_TRUE(Same(RecurrenceFromEvent(event), expected));
}

TEST(RecurrenceMappingTest, TheHeadGoesIntoARecordAndComesBackWithoutTouchingTheArrays)
{
    const auto record = std::make_unique<_tagRecurringInfo>();
    std::memset(record.get(), 0, sizeof(*record));
    record->arrDeletedInstance[0] = 1.5;
    record->arrModifiedInstance[31].szLocation[259] = 7;
    RecurrenceHead head = Zero();
    head.eRecurType = Monthly;
    head.tMonthly.lNth = -1;
    head.tEndInfo.ulTimesAfter = 9;
    PutHead(head, *record);
    EXPECT_EQ(record->eRecurType, Monthly);
    EXPECT_EQ(record->tMonthly.lNth, -1);
    EXPECT_EQ(record->tEndInfo.ulTimesAfter, 9u);
    EXPECT_EQ(record->arrDeletedInstance[0], 1.5);
    EXPECT_EQ(record->arrModifiedInstance[31].szLocation[259], 7);
    EXPECT_TRUE(Same(HeadOf(*record), head));
}

} // namespace
