#include "icalendar/VEvent.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <utility>

namespace
{

using Property = std::pair<const wchar_t*, const wchar_t*>;

void Read(CVEvent& event, std::initializer_list<Property> properties)
{
    for (const auto& [name, value] : properties)
        EXPECT_EQ(event.SetProperty(name, value), 1);
}

// year-month-day hour:minute:second without leading zeros.
std::wstring Text(const SYSTEMTIME& time)
{
    return std::to_wstring(time.wYear) + L"-" + std::to_wstring(time.wMonth) + L"-" +
           std::to_wstring(time.wDay) + L" " + std::to_wstring(time.wHour) + L":" +
           std::to_wstring(time.wMinute) + L":" + std::to_wstring(time.wSecond);
}

// The lines of an event with that rule, behind those that every event has.
std::wstring RuleLineOf(const CVEvent& event)
{
    const std::wstring lines = event.GetProperties();
    const std::size_t rule = lines.find(L"RRULE:");
    return rule == std::wstring::npos ? std::wstring() : lines.substr(rule);
}

std::wstring RuleRewritten(const wchar_t* rule)
{
    CVEvent event;
    Read(event, {{L"RRULE", rule}});
    return RuleLineOf(event);
}

std::wstring Weekdays(const CVEvent& event)
{
    std::wstring flags;
    for (const bool flag : event.Fields().weekdays)
        flags += flag ? L'1' : L'0';
    return flags;
}

TEST(VEventTest, StartsWithTheStatedValues)
{
    const CVEvent event;
    EXPECT_EQ(event.GetName(), L"VEVENT");
    EXPECT_EQ(event.Fields().frequency, 0);
    EXPECT_EQ(event.Fields().interval, 1);
    EXPECT_EQ(Weekdays(event), L"0000000");
    EXPECT_FALSE(event.Fields().hasWeekdays);
    EXPECT_FALSE(event.Fields().allDay);
    EXPECT_EQ(event.Fields().nth, 0);
    EXPECT_EQ(event.Fields().month, 0);
    EXPECT_EQ(event.Fields().monthDay, 0);
    EXPECT_EQ(event.Fields().count, 0);
    EXPECT_EQ(Text(event.Fields().until), L"0-0-0 0:0:0");
}

// --- Properties --------------------------------------------------------------------------------

TEST(VEventTest, ReadsItsProperties)
{
    CVEvent event;
    Read(event,
         {{L"UID", L"u 1 "},
          {L"DTSTAMP", L"20060501T010203Z"},
          {L"SUMMARY", L"a\\, b\\n"},
          {L"LOCATION", L"somewhere"},
          {L"DTSTART;TZID=\"Zone\"", L"20060508T101500"},
          {L"DTEND;TZID=\"Other\"", L"20060508T111500"},
          {L"DESCRIPTION", L"text"}});
    EXPECT_EQ(event.Fields().uid, L"u 1 ");
    EXPECT_EQ(event.Id(), L"u 1 ");
    EXPECT_EQ(Text(event.Fields().stamp), L"2006-5-1 1:2:3");
    EXPECT_EQ(event.Fields().summary, L"a\\, b\\n");
    EXPECT_EQ(event.Fields().location, L"somewhere");
    EXPECT_EQ(event.Fields().tzid, L"Zone");
    EXPECT_EQ(Text(event.Fields().start), L"2006-5-8 10:15:0");
    EXPECT_EQ(Text(event.Fields().end), L"2006-5-8 11:15:0");
    EXPECT_EQ(event.Fields().description, L"text");
    EXPECT_FALSE(event.Fields().allDay);
}

TEST(VEventTest, TextPropertiesWithParametersAreDropped)
{
    CVEvent event;
    Read(event,
         {{L"UID;X=1", L"a"},
          {L"SUMMARY;LANGUAGE=en-us", L"a"},
          {L"LOCATION;ALTREP=\"x\"", L"a"},
          {L"DESCRIPTION;X=1", L"a"},
          {L"RRULE;X=1", L"FREQ=DAILY"},
          {L"summary", L"a"},
          {L"EXDATE", L"20060508T101500"},
          {L"RDATE", L"20060508T101500"},
          {L"RECURRENCE-ID", L"20060508T101500"},
          {L"CATEGORIES", L"a"},
          {L"", L""}});
    EXPECT_EQ(event.GetProperties(),
              L"DTSTAMP:20000000T000000\r\n"
              L"DTSTART;TZID=\"\":20000000T000000\r\n"
              L"DTEND;TZID=\"\":20000000T000000\r\n");
}

TEST(VEventTest, DatePropertiesAreToldByTheirBeginning)
{
    CVEvent event;
    Read(event,
         {{L"DTSTAMPX;A=1", L"20060501T010203"},
          {L"DTSTARTED", L"20060502T010203"},
          {L"DTENDING", L"20060503T010203"}});
    EXPECT_EQ(Text(event.Fields().stamp), L"2006-5-1 1:2:3");
    EXPECT_EQ(Text(event.Fields().start), L"2006-5-2 1:2:3");
    EXPECT_EQ(Text(event.Fields().end), L"2006-5-3 1:2:3");
    Read(event, {{L"DURATION;X=1", L"PT1H"}});
    EXPECT_EQ(Text(event.Fields().end), L"2006-5-2 2:2:3");
}

TEST(VEventTest, ARepeatedPropertyOverwrites)
{
    CVEvent event;
    Read(event, {{L"SUMMARY", L"first"}, {L"SUMMARY", L"second"}, {L"UID", L"1"}, {L"UID", L""}});
    EXPECT_EQ(event.Fields().summary, L"second");
    EXPECT_EQ(event.Fields().uid, L"");
}

// --- Packed fields -----------------------------------------------------------------------------

// Every field with a value of its own.
void ReadEverything(CVEvent& event)
{
    Read(event,
         {{L"UID", L"{u}"},
          {L"DTSTAMP", L"20060501T010203Z"},
          {L"SUMMARY", L"\x65E5\x672C"},
          {L"LOCATION", L"R\x00E9union"},
          {L"DTSTART;TZID=\"Zone\"", L"20060508T101500"},
          {L"DTEND", L"20060509T111600"},
          {L"DESCRIPTION", L"text"},
          {L"RRULE",
           L"FREQ=MONTHLY;INTERVAL=4;BYDAY=-2MO,-2SA;BYMONTH=5;BYMONTHDAY=6;COUNT=7;"
           L"UNTIL=20101112T131415Z"}});
}

void ExpectEverything(const CVEvent& event)
{
    const EventView fields = event.Fields();
    EXPECT_EQ(fields.uid, L"{u}");
    EXPECT_EQ(event.Id(), L"{u}");
    EXPECT_EQ(Text(fields.stamp), L"2006-5-1 1:2:3");
    EXPECT_EQ(fields.summary, L"\x65E5\x672C");
    EXPECT_EQ(fields.location, L"R\x00E9union");
    EXPECT_EQ(fields.tzid, L"Zone");
    EXPECT_EQ(Text(fields.start), L"2006-5-8 10:15:0");
    EXPECT_EQ(Text(fields.end), L"2006-5-9 11:16:0");
    EXPECT_EQ(fields.description, L"text");
    EXPECT_EQ(fields.frequency, 3);
    EXPECT_EQ(fields.interval, 4);
    EXPECT_EQ(Weekdays(event), L"0100001");
    EXPECT_TRUE(fields.hasWeekdays);
    EXPECT_FALSE(fields.allDay);
    EXPECT_EQ(fields.nth, -2);
    EXPECT_EQ(fields.month, 5);
    EXPECT_EQ(fields.monthDay, 6);
    EXPECT_EQ(fields.count, 7);
    EXPECT_EQ(Text(fields.until), L"2010-11-12 13:14:15");
}

TEST(VEventTest, KeepsEveryFieldWhenItIsPacked)
{
    CVEvent event;
    ReadEverything(event);
    ExpectEverything(event);
    const std::wstring lines = event.GetProperties();
    event.Close();
    ExpectEverything(event);
    EXPECT_EQ(event.GetProperties(), lines);
    event.Pack();
    ExpectEverything(event);
    EXPECT_EQ(event.Edit().uid, L"{u}"); // unpacked without a change
    ExpectEverything(event);
    event.Pack();
    ExpectEverything(event);
}

TEST(VEventTest, APackedEventTakesFurtherChanges)
{
    CVEvent event;
    ReadEverything(event);
    event.Close();
    Read(event, {{L"SUMMARY", L"new"}, {L"DTSTART;VALUE=DATE", L"20070102"}});
    EXPECT_EQ(event.Fields().summary, L"new");
    EXPECT_TRUE(event.Fields().allDay);
    event.Pack();
    EXPECT_EQ(event.Fields().summary, L"new");
    EXPECT_EQ(event.Fields().location, L"R\x00E9union");
    EXPECT_TRUE(event.Fields().allDay);
    EXPECT_EQ(event.Fields().interval, 4);
    EXPECT_EQ(Text(event.Fields().start), L"2007-1-2 10:15:0");
    event.Edit().uid = L"";
    EXPECT_EQ(event.Id(), L"");
    event.Pack();
    EXPECT_EQ(event.Id(), L"");
    EXPECT_EQ(event.Fields().uid, L"");
    EXPECT_EQ(event.Fields().summary, L"new");
}

TEST(VEventTest, AnEventWithoutAnyPropertyKeepsItsStartValues)
{
    CVEvent event;
    event.Close();
    EXPECT_EQ(event.Fields().interval, 1);
    EXPECT_EQ(event.Id(), L"");
    EXPECT_EQ(event.Edit().interval, 1);
    event.Edit().interval = 0;
    event.Pack();
    EXPECT_EQ(event.Fields().interval, 0);
}

// --- The parameters of DTSTART -----------------------------------------------------------------

std::wstring TzidOf(const wchar_t* name)
{
    CVEvent event;
    Read(event, {{name, L"20060508T101500"}});
    EXPECT_EQ(Text(event.Fields().start), L"2006-5-8 10:15:0") << name;
    EXPECT_FALSE(event.Fields().allDay) << name;
    return std::wstring(event.Fields().tzid);
}

bool IsAllDay(const wchar_t* name)
{
    CVEvent event;
    Read(event, {{name, L"20060508"}});
    EXPECT_EQ(Text(event.Fields().start), L"2006-5-8 0:0:0") << name;
    EXPECT_EQ(event.Fields().tzid, L"") << name;
    return event.Fields().allDay;
}

TEST(VEventTest, ReadsTheTzidOfTheStart)
{
    EXPECT_EQ(TzidOf(L"DTSTART"), L"");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=Zone"), L"Zone");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"Zone\""), L"Zone");
    EXPECT_EQ(TzidOf(L"DTSTART;tzid=Zone"), L"Zone");
    EXPECT_EQ(TzidOf(L"DTSTART; TzId = Zone 1 ;X=2"), L"Zone 1");
    EXPECT_EQ(TzidOf(L"DTSTART;X;Y=1=2;VALUE=DATE-TIME;TZID=Zone"), L"Zone");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=first;TZID=second"), L"first");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID==Zone"), L"Zone");
}

TEST(VEventTest, TakesAllQuotesAtBothEndsOfTheTzidAway)
{
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"\"a\"b\"\"\""), L"a\"b");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\" a \""), L" a ");
}

TEST(VEventTest, KeepsATzidOfQuotesOnly)
{
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"\""), L"\"\"");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\""), L"\"");
}

TEST(VEventTest, KeepsTheBackslashOfATzid)
{
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"Eastern\\, US\""), L"Eastern\\, US");
}

TEST(VEventTest, DividesATzidAtItsSemicolonsAndEqualsSigns)
{
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"a;b\""), L"a");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID=\"a=b\""), L"");
    EXPECT_EQ(TzidOf(L"DTSTART;TZID="), L"");
}

TEST(VEventTest, ReadsTheDateFlagOfTheStart)
{
    EXPECT_TRUE(IsAllDay(L"DTSTART;VALUE=DATE"));
    EXPECT_TRUE(IsAllDay(L"DTSTART;X=1; value = date "));
    EXPECT_FALSE(IsAllDay(L"DTSTART"));
    EXPECT_FALSE(IsAllDay(L"DTSTART;VALUE=DATE-TIME"));
    EXPECT_FALSE(IsAllDay(L"DTSTART;VALUE=\"DATE\""));
}

TEST(VEventTest, OnlyTheFirstOfTzidAndDateTakesEffect)
{
    CVEvent zoned;
    Read(zoned, {{L"DTSTART;TZID=Zone;VALUE=DATE", L"20060508"}});
    EXPECT_EQ(zoned.Fields().tzid, L"Zone");
    EXPECT_FALSE(zoned.Fields().allDay);

    CVEvent dated;
    Read(dated, {{L"DTSTART;VALUE=DATE;TZID=Zone", L"20060508"}});
    EXPECT_EQ(dated.Fields().tzid, L"");
    EXPECT_TRUE(dated.Fields().allDay);
}

TEST(VEventTest, ALaterStartWithoutParametersTakesNeitherTzidNorDateFlagBack)
{
    CVEvent zoned;
    Read(zoned, {{L"DTSTART;TZID=Zone", L"20060508T101500"}, {L"DTSTART", L"20060509T101500"}});
    EXPECT_EQ(zoned.Fields().tzid, L"Zone");
    EXPECT_EQ(Text(zoned.Fields().start), L"2006-5-9 10:15:0");

    CVEvent dated;
    Read(dated,
         {{L"DTSTART;VALUE=DATE", L"20060508"},
          {L"DTSTART;VALUE=DATE-TIME", L"20060508T101500"},
          {L"DTSTART;TZID=Zone", L"20060509T101500"}});
    EXPECT_TRUE(dated.Fields().allDay);
    EXPECT_EQ(dated.Fields().tzid, L"Zone");
}

TEST(VEventTest, ADateAloneLeavesTheClock)
{
    CVEvent event;
    Read(event, {{L"DTSTART", L"20060508T101530"}, {L"DTSTART;VALUE=DATE", L"20070102"}});
    EXPECT_EQ(Text(event.Fields().start), L"2007-1-2 10:15:30");
}

TEST(VEventTest, TheEndHasNoParameters)
{
    CVEvent event;
    Read(event, {{L"DTEND;VALUE=DATE;TZID=Zone", L"20060509"}});
    EXPECT_FALSE(event.Fields().allDay);
    EXPECT_EQ(event.Fields().tzid, L"");
    EXPECT_EQ(Text(event.Fields().end), L"2006-5-9 0:0:0");
}

// --- DURATION ----------------------------------------------------------------------------------

struct DurationRow
{
    const wchar_t* duration;
    const wchar_t* end; // with a start of 2006-05-08 10:00
};

TEST(VEventTest, ReadsADurationInItsSimpleWay)
{
    // clang-format off
    const DurationRow rows[] = {
        {L"PT30M",       L"2006-5-8 10:30:0"},
        {L"PT1H",        L"2006-5-8 11:0:0"},
        {L"P1D",         L"2006-5-9 10:0:0"},
        {L"PT1H30M",     L"2006-5-8 12:10:0"},  // 130 minutes
        {L"P1DT2H",      L"2006-5-8 22:0:0"},   // 12 hours
        {L"P1W",         L"2006-5-8 10:1:0"},   // 1 minute
        {L"PT90M",       L"2006-5-8 10:0:0"},   // the 9 is not gathered: 0 minutes
        {L"PT95M",       L"2006-5-8 10:5:0"},
        {L"PT0S",        L"2006-5-8 10:0:0"},
        {L"-PT1H",       L"2006-5-8 10:0:0"},
        {L"+PT1H",       L"2006-5-8 10:0:0"},
        {L"",            L"2006-5-8 10:0:0"},
        {L"P",           L"2006-5-8 10:0:0"},
        {L"pT1H",        L"2006-5-8 10:0:0"},
        {L"P1d",         L"2006-5-8 10:1:0"},
        {L"PT00000011H", L"2006-5-8 11:0:0"},   // seven digits have room: 0000001
        {L"PT000001100", L"2006-5-8 10:11:0"},
    };
    // clang-format on
    for (const DurationRow& row : rows)
    {
        CVEvent event;
        Read(event, {{L"DTSTART", L"20060508T100000"}, {L"DURATION", row.duration}});
        EXPECT_EQ(Text(event.Fields().end), row.end) << row.duration;
    }
}

TEST(VEventTest, ALongDurationWrapsAsA32BitNumberDoes)
{
    // 8888888 days are 12,799,998,720 minutes; the low 32 bits are -84,903,168, that is 58,960 days
    // and 768 minutes back from 2006-05-08 10:00.
    CVEvent event;
    Read(event, {{L"DTSTART", L"20060508T100000"}, {L"DURATION", L"P8888888D"}});
    EXPECT_EQ(Text(event.Fields().end), L"1844-12-2 21:12:0");
}

TEST(VEventTest, ADurationUsesTheStartReadSoFarAndTheLaterOfEndAndDurationWins)
{
    CVEvent before;
    Read(
        before,
        {{L"DURATION", L"PT1H"}, {L"DTSTART", L"20060508T100000"}, {L"DTEND", L"20060508T120000"}});
    EXPECT_EQ(Text(before.Fields().end), L"2006-5-8 12:0:0");

    CVEvent after;
    Read(
        after,
        {{L"DTSTART", L"20060508T100000"}, {L"DTEND", L"20060508T120000"}, {L"DURATION", L"PT1H"}});
    EXPECT_EQ(Text(after.Fields().end), L"2006-5-8 11:0:0");
}

TEST(VEventTest, ADurationWithoutAStartDoesNotFail)
{
    CVEvent event;
    Read(event, {{L"DURATION", L"P8888888D"}});
    EXPECT_FALSE(event.GetProperties().empty());
}

TEST(VEventTest, ADurationInFebruaryOfALeapYearIsOneDayLate)
{
    // The seconds of that month count a day too many (see TimeConversions.h).
    CVEvent event;
    Read(event, {{L"DTSTART", L"20080210T100000"}, {L"DURATION", L"PT1H"}});
    EXPECT_EQ(Text(event.Fields().end), L"2008-2-11 11:0:0");
}

TEST(VEventTest, ADurationFromMarchOfALeapYearOnIsOneSecondLate)
{
    const auto endOf = [](const wchar_t* start, const wchar_t* duration) {
        CVEvent event;
        Read(event, {{L"DTSTART", start}, {L"DURATION", duration}});
        return Text(event.Fields().end);
    };
    EXPECT_EQ(endOf(L"20240115T100000", L"PT30M"), L"2024-1-16 10:30:0");
    EXPECT_EQ(endOf(L"20240229T100000", L"PT30M"), L"2024-3-1 10:30:0");
    EXPECT_EQ(endOf(L"20240301T100000", L"PT30M"), L"2024-3-1 10:30:1");
    EXPECT_EQ(endOf(L"20241231T100000", L"PT30M"), L"2024-12-31 10:30:1");
    EXPECT_EQ(endOf(L"20250115T100000", L"PT30M"), L"2025-1-15 10:30:0");
}

// --- RRULE, reading ----------------------------------------------------------------------------

TEST(VEventTest, ReadsTheFrequency)
{
    const std::pair<const wchar_t*, int> rows[] = {{L"FREQ=DAILY", 1},
                                                   {L"FREQ=WEEKLY", 2},
                                                   {L"FREQ=MONTHLY", 3},
                                                   {L"FREQ=YEARLY", 4},
                                                   {L"FREQ=HOURLY", 0},
                                                   {L"FREQ=daily", 0},
                                                   {L"freq=DAILY", 0},
                                                   {L"FREQ =DAILY", 0},
                                                   {L" FREQ=DAILY ", 1},
                                                   {L"FREQ", 0},
                                                   {L"", 0},
                                                   {L"FREQ=YEARLY;FREQ=HOURLY", 4}};
    for (const auto& [rule, frequency] : rows)
    {
        CVEvent event;
        Read(event, {{L"RRULE", rule}});
        EXPECT_EQ(event.Fields().frequency, frequency) << rule;
    }
}

TEST(VEventTest, ReadsTheNumbersOfARule)
{
    CVEvent event;
    Read(event,
         {{L"RRULE", L"INTERVAL=3;BYMONTHDAY=15,16;BYMONTH=11,12;COUNT=7;UNTIL=20061231T235959Z"}});
    EXPECT_EQ(event.Fields().interval, 3);
    EXPECT_EQ(event.Fields().monthDay, 15);
    EXPECT_EQ(event.Fields().month, 11);
    EXPECT_EQ(event.Fields().count, 7);
    EXPECT_EQ(Text(event.Fields().until), L"2006-12-31 23:59:59");

    Read(event, {{L"RRULE", L"INTERVAL=x;BYMONTHDAY=-1;BYMONTH=;COUNT=99999999999;UNTIL=2007"}});
    EXPECT_EQ(event.Fields().interval, 0);
    EXPECT_EQ(event.Fields().monthDay, -1);
    EXPECT_EQ(event.Fields().month, 0);
    EXPECT_EQ(event.Fields().count, 2147483647);
    EXPECT_EQ(Text(event.Fields().until), L"2006-12-31 23:59:59");
}

TEST(VEventTest, DropsUnknownPartsOfARule)
{
    CVEvent event;
    Read(event,
         {{L"RRULE", L";;BYSETPOS=1;BYYEARDAY=2;BYWEEKNO=3;WKST=MO;byday=mo;NONSENSE;=;A=B=C;"}});
    EXPECT_FALSE(event.Fields().hasWeekdays);
    EXPECT_EQ(RuleLineOf(event), L"");
}

TEST(VEventTest, ARepeatedRuleKeepsWhatItDoesNotName)
{
    CVEvent event;
    Read(event,
         {{L"RRULE", L"FREQ=MONTHLY;INTERVAL=2;BYDAY=2MO;BYMONTHDAY=15;COUNT=7;UNTIL=20061231"},
          {L"RRULE", L"FREQ=YEARLY;BYDAY=TU;BYMONTH=5"}});
    EXPECT_EQ(RuleLineOf(event),
              L"RRULE:FREQ=YEARLY;BYMONTHDAY=15;BYMONTH=5;BYDAY=2MO,TU;INTERVAL=2;UNTIL=200\r\n"
              L" 61231T000000Z;COUNT=7\r\n");
}

struct WeekdayRow
{
    const wchar_t* value;
    const wchar_t* flags; // Sunday first
    int nth;
};

TEST(VEventTest, ReadsWeekdaysAndTheirOrdinal)
{
    // clang-format off
    const WeekdayRow rows[] = {
        {L"SU,MO,TU,WE,TH,FR,SA", L"1111111", 0},
        {L"TU",                   L"0010000", 0},
        {L" TU , ,FR ",           L"0010010", 0},
        {L"1MO,2TU",              L"0110000", 2},   // the last ordinal wins
        {L"2MO,TU",               L"0110000", 2},
        {L"-1SU",                 L"1000000", -1},
        {L"+1SU",                 L"1000000", 1},
        {L"mo,Mo,X,MON,",         L"0000000", 0},   // "MON" ends in "ON" and has no ordinal digits
        {L"3XX",                  L"0000000", 3},
        {L"",                     L"0000000", 0},
    };
    // clang-format on
    for (const WeekdayRow& row : rows)
    {
        CVEvent event;
        Read(event, {{L"RRULE", (std::wstring(L"BYDAY=") + row.value).c_str()}});
        EXPECT_TRUE(event.Fields().hasWeekdays) << row.value;
        EXPECT_EQ(Weekdays(event), row.flags) << row.value;
        EXPECT_EQ(event.Fields().nth, row.nth) << row.value;
    }
}

// --- Writing -----------------------------------------------------------------------------------

TEST(VEventTest, WritesItsLinesInTheirFixedOrder)
{
    CVEvent event;
    Read(event,
         {{L"RRULE", L"FREQ=DAILY"},
          {L"UID", L"u"},
          {L"LOCATION", L"l"},
          {L"SUMMARY", L"s"},
          {L"DTEND", L"20060508T111500"},
          {L"DTSTART;TZID=Zone", L"20060508T101500"},
          {L"DTSTAMP", L"20060501T010203Z"},
          {L"DESCRIPTION", L"d"}});
    EXPECT_EQ(event.GetProperties(),
              L"DESCRIPTION:d\r\n"
              L"DTSTAMP:20060501T010203\r\n"
              L"DTSTART;TZID=\"Zone\":20060508T101500\r\n"
              L"DTEND;TZID=\"Zone\":20060508T111500\r\n"
              L"SUMMARY:s\r\n"
              L"LOCATION:l\r\n"
              L"UID:u\r\n"
              L"RRULE:FREQ=DAILY;INTERVAL=1\r\n");
}

TEST(VEventTest, WritesAnEmptyEventWithItsThreeDates)
{
    EXPECT_EQ(CVEvent().GetProperties(),
              L"DTSTAMP:20000000T000000\r\n"
              L"DTSTART;TZID=\"\":20000000T000000\r\n"
              L"DTEND;TZID=\"\":20000000T000000\r\n");
}

TEST(VEventTest, WritesAnAllDayEventWithDatesAlone)
{
    CVEvent event;
    Read(event,
         {{L"DTSTART;TZID=Zone", L"20060508T101500"},
          {L"DTSTART;VALUE=DATE", L"20060508"},
          {L"DTEND", L"20060509T101500"}});
    EXPECT_EQ(event.GetProperties(),
              L"DTSTAMP:20000000T000000\r\n"
              L"DTSTART;VALUE=DATE:20060508\r\n"
              L"DTEND;VALUE=DATE:20060509\r\n");
}

TEST(VEventTest, AnEmptyTzidGrowsByTwoQuotesWithEverySave)
{
    const std::wstring expected[] = {L"DTSTART;TZID=\"\":20060508T101500\r\n",
                                     L"DTSTART;TZID=\"\"\"\":20060508T101500\r\n",
                                     L"DTSTART;TZID=\"\"\"\"\"\":20060508T101500\r\n"};
    std::wstring name = L"DTSTART";
    for (const std::wstring& line : expected)
    {
        CVEvent event;
        EXPECT_EQ(event.SetProperty(name, L"20060508T101500"), 1);
        const std::wstring lines = event.GetProperties();
        EXPECT_NE(lines.find(line), std::wstring::npos) << lines;
        name = line.substr(0, line.find(L':'));
    }
}

TEST(VEventTest, ReadingEmptyQuotesBackGivesATzidOfTwoQuotes)
{
    CVEvent event;
    Read(event, {{L"DTSTART;TZID=\"\"", L"20060508T101500"}});
    EXPECT_EQ(event.Fields().tzid, L"\"\"");
}

TEST(VEventTest, FoldsALongLine)
{
    CVEvent event;
    event.Edit().summary = std::wstring(100, L'x');
    // "SUMMARY:" is 8 characters, so 67 of the text stay on the first line.
    const std::wstring lines = event.GetProperties();
    EXPECT_NE(lines.find(L"SUMMARY:" + std::wstring(67, L'x') + L"\r\n " + std::wstring(33, L'x') +
                         L"\r\n"),
              std::wstring::npos)
        << lines;
}

TEST(VEventTest, WritesARuleInItsFixedOrder)
{
    EXPECT_EQ(RuleRewritten(L"COUNT=9;UNTIL=20061231T235959Z;INTERVAL=2;BYDAY=SA,SU;FREQ=WEEKLY"),
              L"RRULE:FREQ=WEEKLY;BYDAY=SU,SA;INTERVAL=2;UNTIL=20061231T235959Z;COUNT=9\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=YEARLY;BYMONTH=5;BYMONTHDAY=8;BYDAY=MO"),
              L"RRULE:FREQ=YEARLY;BYMONTHDAY=8;BYMONTH=5;BYDAY=MO;INTERVAL=1\r\n");
}

TEST(VEventTest, WritesEachFrequencyWithTheFieldsItHas)
{
    // Month day and month are there in all of them, and an ordinal.
    EXPECT_EQ(RuleRewritten(L"FREQ=DAILY;BYMONTHDAY=8;BYMONTH=5;BYDAY=2MO"),
              L"RRULE:FREQ=DAILY;BYDAY=MO;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=WEEKLY;BYMONTHDAY=8;BYMONTH=5;BYDAY=2MO"),
              L"RRULE:FREQ=WEEKLY;BYDAY=MO;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=MONTHLY;BYMONTHDAY=8;BYMONTH=5;BYDAY=2MO"),
              L"RRULE:FREQ=MONTHLY;BYMONTHDAY=8;BYDAY=2MO;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=YEARLY;BYMONTHDAY=8;BYMONTH=5;BYDAY=2MO"),
              L"RRULE:FREQ=YEARLY;BYMONTHDAY=8;BYMONTH=5;BYDAY=2MO;INTERVAL=1\r\n");
}

TEST(VEventTest, OnlyTheFirstWeekdayCarriesTheOrdinal)
{
    EXPECT_EQ(RuleRewritten(L"FREQ=MONTHLY;BYDAY=1MO,2TU"),
              L"RRULE:FREQ=MONTHLY;BYDAY=2MO,TU;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=MONTHLY;BYDAY=-1SU"),
              L"RRULE:FREQ=MONTHLY;BYDAY=-1SU;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=MONTHLY;BYDAY=3XX"), L"RRULE:FREQ=MONTHLY;INTERVAL=1\r\n");
}

TEST(VEventTest, AWeeklyRuleWithoutWeekdaysKeepsFrequencyAndIntervalOnly)
{
    EXPECT_EQ(RuleRewritten(L"FREQ=WEEKLY"), L"RRULE:FREQ=WEEKLY;INTERVAL=1\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=WEEKLY;INTERVAL=0"), L"RRULE:FREQ=WEEKLY\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=WEEKLY;BYDAY=mo"), L"RRULE:FREQ=WEEKLY;INTERVAL=1\r\n");
}

TEST(VEventTest, AnIntervalOfZeroIsNotWrittenAndComesBackAsOne)
{
    EXPECT_EQ(RuleRewritten(L"FREQ=DAILY;INTERVAL=0"), L"RRULE:FREQ=DAILY\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=DAILY;INTERVAL=x"), L"RRULE:FREQ=DAILY\r\n");
    EXPECT_EQ(RuleRewritten(L"FREQ=DAILY"), L"RRULE:FREQ=DAILY;INTERVAL=1\r\n");
}

TEST(VEventTest, AQuoteInsideATzidHidesTheDateFromTheNextLoad)
{
    CVEvent event;
    Read(event, {{L"DTSTART;TZID=\"a\"b", L"20060508T101500"}});
    EXPECT_EQ(event.Fields().tzid, L"a\"b");
    const std::wstring line = L"DTSTART;TZID=\"a\"b\":20060508T101500\r\n";
    EXPECT_NE(event.GetProperties().find(line), std::wstring::npos);
    // Three quotes: the colon counts as quoted, so the line is refused.
    CVObject root;
    root.AddLine(L"BEGIN:VEVENT");
    root.AddLine(line.substr(0, line.size() - 2));
    root.AddLine(L"END:VEVENT");
    EXPECT_EQ(dynamic_cast<CVEvent&>(*root.FirstChild()).Fields().start.wYear, 0);
}

TEST(VEventTest, WritesAnUntilOfADateAloneWithAZeroClock)
{
    EXPECT_EQ(RuleRewritten(L"FREQ=DAILY;UNTIL=20061231"),
              L"RRULE:FREQ=DAILY;INTERVAL=1;UNTIL=20061231T000000Z\r\n");
}

TEST(VEventTest, WritesAnUnknownFrequencyWithoutFreq)
{
    CVEvent event;
    event.Edit().frequency = 9;
    event.Edit().count = -4;
    EXPECT_EQ(RuleLineOf(event), L"RRULE:INTERVAL=1;COUNT=-4\r\n");
    event.Edit().interval = 0;
    event.Edit().count = 0;
    EXPECT_EQ(RuleLineOf(event), L"RRULE:\r\n");
}

TEST(VEventTest, WithoutAFrequencyThereIsNoRule)
{
    EXPECT_EQ(RuleRewritten(L"INTERVAL=2;COUNT=3;BYDAY=MO"), L"");
}

} // namespace
