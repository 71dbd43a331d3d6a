#include "icalendar/AppointmentMapping.h"

#include "icalendar/VAlarm.h"
#include "icalendar/VStandard.h"
#include "platform/GuidSource.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace
{

constexpr DATE kDay20060508 = 38845.0; // 2006-05-08 00:00

SYSTEMTIME UtcNow()
{
    SYSTEMTIME now{};
    now.wYear = 2006;
    now.wMonth = 5;
    now.wDay = 8;
    now.wHour = 18;
    now.wMinute = 1;
    now.wSecond = 2;
    return now;
}

MachineZone Zone(std::int32_t biasMinutes, const wchar_t* name = L"Machine Time")
{
    return {name, biasMinutes};
}

// A zone with a STANDARD that has the offset, and one event of those lines.
std::string FileText(const std::string& offset, const std::string& eventLines)
{
    return "BEGIN:VCALENDAR\n"
           "BEGIN:VTIMEZONE\nTZID:Zone\nBEGIN:STANDARD\nTZNAME:Zone Name\nTZOFFSETTO:" +
           offset + "\nEND:STANDARD\nEND:VTIMEZONE\nBEGIN:VEVENT\n" + eventLines +
           "END:VEVENT\nEND:VCALENDAR\n";
}

// The same with texts that outlive the file.
AppointmentValues Owned(const AppointmentView& view)
{
    const auto text = [](const std::optional<std::wstring_view>& value) {
        return value ? std::optional(std::wstring(*value)) : std::nullopt;
    };
    return {text(view.entityId),
            view.utcLastModified,
            text(view.subject),
            text(view.place),
            text(view.description),
            text(view.timeZone),
            view.recurrence,
            view.allDay,
            view.startTime,
            view.endTime,
            view.reminderMinutes};
}

AppointmentValues ValuesOf(const std::string& fileText)
{
    CCalendarFile file(L"", 0);
    file.LoadFromText(fileText);
    std::vector<CVEvent*> events;
    file.Events().Snapshot(events);
    EXPECT_EQ(events.size(), 1u);
    return events.empty() ? AppointmentValues{}
                          : Owned(AppointmentFromEvent(file, *events.front()));
}

std::wstring Text(const SYSTEMTIME& time)
{
    return std::to_wstring(time.wYear) + L"-" + std::to_wstring(time.wMonth) + L"-" +
           std::to_wstring(time.wDay) + L" " + std::to_wstring(time.wHour) + L":" +
           std::to_wstring(time.wMinute) + L":" + std::to_wstring(time.wSecond);
}

// --- From event to appointment -----------------------------------------------------------------

TEST(AppointmentMappingTest, CarriesIdTextsAndStamp)
{
    const AppointmentValues values = ValuesOf(FileText("+0000",
                                                       "UID:{u}\n"
                                                       "DTSTAMP:20060508T180000Z\n"
                                                       "SUMMARY:s\\, t\n"
                                                       "LOCATION:l\n"
                                                       "DESCRIPTION:d\n"));
    EXPECT_EQ(values.entityId, L"{u}");
    EXPECT_EQ(values.utcLastModified, kDay20060508 + 0.75);
    EXPECT_EQ(values.subject, L"s\\, t");
    EXPECT_EQ(values.place, L"l");
    EXPECT_EQ(values.description, L"d");
}

TEST(AppointmentMappingTest, AnEmptyEventGivesEmptyTextsAndZeroTimes)
{
    const AppointmentValues values = ValuesOf(FileText("+0000", ""));
    EXPECT_EQ(values.entityId, L"");
    EXPECT_EQ(values.utcLastModified, 0.0);
    EXPECT_EQ(values.subject, L"");
    EXPECT_EQ(values.place, L"");
    EXPECT_EQ(values.description, L"");
    EXPECT_EQ(values.timeZone, L"UTC");
    EXPECT_EQ(values.startTime, 0.0);
    EXPECT_EQ(values.endTime, 0.0);
    EXPECT_EQ(values.allDay, false);
    EXPECT_EQ(values.reminderMinutes, std::nullopt);
    ASSERT_TRUE(values.recurrence);
    EXPECT_EQ(values.recurrence->eRecurType, None);
}

constexpr const char* kNoonInZone = "DTSTART;TZID=\"Zone\":20060508T120000\n"
                                    "DTEND;TZID=\"Zone\":20060508T180000\n";

TEST(AppointmentMappingTest, ShiftsTheZonesLocalDigitsToUtc)
{
    const AppointmentValues east = ValuesOf(FileText("+0600", kNoonInZone));
    EXPECT_EQ(east.timeZone, L"Zone Name");
    EXPECT_EQ(east.startTime, kDay20060508 + 0.25);
    EXPECT_EQ(east.endTime, kDay20060508 + 0.5);
    EXPECT_EQ(east.allDay, false);

    const AppointmentValues west = ValuesOf(FileText("-0600", kNoonInZone));
    EXPECT_EQ(west.startTime, kDay20060508 + 0.75);
    EXPECT_EQ(west.endTime, kDay20060508 + 1.0);
}

TEST(AppointmentMappingTest, OnlyAnOffsetTextOfFiveCharactersCountsOnReading)
{
    for (const char* offset : {"", "+060", "+06000", "+060000", "+0000"})
    {
        const AppointmentValues values = ValuesOf(FileText(offset, kNoonInZone));
        EXPECT_EQ(values.timeZone, L"Zone Name") << offset;
        EXPECT_EQ(values.startTime, kDay20060508 + 0.5) << offset;
    }
}

TEST(AppointmentMappingTest, WithoutAMatchingZoneTheTimeIsUtc)
{
    const AppointmentValues noZone =
        ValuesOf(FileText("+0600", "DTSTART:20060508T120000\nDTEND:20060508T180000\n"));
    EXPECT_EQ(noZone.timeZone, L"UTC");
    EXPECT_EQ(noZone.startTime, kDay20060508 + 0.5);

    const AppointmentValues otherZone =
        ValuesOf(FileText("+0600", "DTSTART;TZID=zone:20060508T120000\nDTEND:20060508T180000\n"));
    EXPECT_EQ(otherZone.timeZone, L"UTC");
    EXPECT_EQ(otherZone.startTime, kDay20060508 + 0.5);
    EXPECT_EQ(otherZone.endTime, kDay20060508 + 0.75);
}

TEST(AppointmentMappingTest, AZoneWithAnEscapedNameIsNotFound)
{
    // The zone loses its backslash, the event keeps it.
    const AppointmentValues values = ValuesOf("BEGIN:VCALENDAR\n"
                                              "BEGIN:VTIMEZONE\n"
                                              "TZID:Eastern\\, US\n"
                                              "BEGIN:STANDARD\n"
                                              "TZOFFSETTO:-0500\n"
                                              "END:STANDARD\n"
                                              "END:VTIMEZONE\n"
                                              "BEGIN:VEVENT\n"
                                              "DTSTART;TZID=\"Eastern\\, US\":20060508T120000\n"
                                              "END:VEVENT\n"
                                              "END:VCALENDAR\n");
    EXPECT_EQ(values.timeZone, L"UTC");
    EXPECT_EQ(values.startTime, kDay20060508 + 0.5);
}

TEST(AppointmentMappingTest, AZoneWithoutAStandardFirstSetsNoTimeZoneAndNoShift)
{
    for (const char* child : {"",
                              "BEGIN:VALARM\nEND:VALARM\n"
                              "BEGIN:STANDARD\nTZNAME:x\nTZOFFSETTO:+0600\nEND:STANDARD\n"})
    {
        const AppointmentValues values =
            ValuesOf(std::string("BEGIN:VCALENDAR\nBEGIN:VTIMEZONE\nTZID:Zone\n") + child +
                     "END:VTIMEZONE\nBEGIN:VEVENT\n" + kNoonInZone + "END:VEVENT\nEND:VCALENDAR\n");
        EXPECT_EQ(values.timeZone, std::nullopt);
        EXPECT_EQ(values.startTime, kDay20060508 + 0.5);
    }
}

TEST(AppointmentMappingTest, TheFirstZoneOfANameDecides)
{
    const AppointmentValues values = ValuesOf(
        "BEGIN:VTIMEZONE\nTZID:Zone\nBEGIN:STANDARD\nTZNAME:1\nTZOFFSETTO:+0600\nEND:STANDARD\n"
        "END:VTIMEZONE\n" +
        FileText("-0600", kNoonInZone));
    EXPECT_EQ(values.timeZone, L"1");
    EXPECT_EQ(values.startTime, kDay20060508 + 0.25);
}

std::string DateLines(const char* start, const char* end)
{
    // A zone first, so that a shift would show; then the flag for dates.
    return std::string("DTSTART;TZID=\"Zone\":20000101T000000\nDTSTART;VALUE=DATE:") + start +
           "\nDTEND;VALUE=DATE:" + end + "\n";
}

TEST(AppointmentMappingTest, ADateOnlyEventOfOneDayIsAllDayAndUnshifted)
{
    const AppointmentValues values = ValuesOf(FileText("+0600", DateLines("20060508", "20060509")));
    EXPECT_EQ(values.allDay, true);
    EXPECT_EQ(values.startTime, kDay20060508);
    EXPECT_EQ(values.endTime, kDay20060508 + 1.0);
    EXPECT_EQ(values.timeZone, L"Zone Name");
}

TEST(AppointmentMappingTest, ADateOnlyEventOfAnotherLengthIsTimedAndShifted)
{
    const AppointmentValues twoDays =
        ValuesOf(FileText("+0600", DateLines("20060508", "20060510")));
    EXPECT_EQ(twoDays.allDay, false);
    EXPECT_EQ(twoDays.startTime, kDay20060508 - 0.25);
    EXPECT_EQ(twoDays.endTime, kDay20060508 + 1.75);

    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20060508", "20060508"))).allDay, false);
}

TEST(AppointmentMappingTest, ADateOnlyEventOfTwoDaysWithoutATzidIsTimedAndUnshifted)
{
    const AppointmentValues values =
        ValuesOf(FileText("+0600", "DTSTART;VALUE=DATE:20060508\nDTEND;VALUE=DATE:20060510\n"));
    EXPECT_EQ(values.allDay, false);
    EXPECT_EQ(values.timeZone, L"UTC");
    EXPECT_EQ(values.startTime, kDay20060508);
    EXPECT_EQ(values.endTime, kDay20060508 + 2.0);
}

TEST(AppointmentMappingTest, AOneDayEventOutside1971To2070IsTimed)
{
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("19710101", "19710102"))).allDay, true);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20701230", "20701231"))).allDay, true);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("19700601", "19700602"))).allDay, false);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20710101", "20710102"))).allDay, false);
    // The year 2070 itself ends in a day whose next is unknown.
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20701231", "20710101"))).allDay, false);
}

TEST(AppointmentMappingTest, OneDayEventsAtTheSeamsOfALeapYearAreTimed)
{
    // The seconds of a leap year: January and February a day late, the rest a second late.
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20080210", "20080211"))).allDay, true);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20080510", "20080511"))).allDay, true);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20071231", "20080101"))).allDay, false);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20080229", "20080301"))).allDay, false);
    EXPECT_EQ(ValuesOf(FileText("+0600", DateLines("20081231", "20090101"))).allDay, false);
}

TEST(AppointmentMappingTest, AOneDayEventWithoutTheDateFlagIsTimed)
{
    const AppointmentValues values =
        ValuesOf(FileText("+0600", "DTSTART:20060508T000000\nDTEND:20060509T000000\n"));
    EXPECT_EQ(values.allDay, false);
    EXPECT_EQ(values.startTime, kDay20060508);
}

std::optional<std::uint32_t> ReminderOf(const std::string& alarmLines)
{
    return ValuesOf(FileText("+0600", std::string(kNoonInZone) + alarmLines)).reminderMinutes;
}

TEST(AppointmentMappingTest, TheFirstAlarmDecidesTheReminder)
{
    EXPECT_EQ(ReminderOf(""), std::nullopt);
    EXPECT_EQ(ReminderOf("BEGIN:VALARM\nEND:VALARM\n"), 0u);
    EXPECT_EQ(ReminderOf("BEGIN:VALARM\nTRIGGER:-PT15M\nEND:VALARM\n"
                         "BEGIN:VALARM\nTRIGGER:-PT30M\nEND:VALARM\n"),
              15u);
    EXPECT_EQ(ReminderOf("BEGIN:STANDARD\nEND:STANDARD\n"
                         "BEGIN:VALARM\nTRIGGER:-PT-1M\nEND:VALARM\n"),
              0xFFFFFFFFu);
}

TEST(AppointmentMappingTest, AnAbsoluteTriggerIsTakenFromTheUnshiftedStart)
{
    const auto absolute = [](const char* time) {
        return ReminderOf(std::string("BEGIN:VALARM\nTRIGGER:-PT15M\n"
                                      "TRIGGER;VALUE=DATE-TIME:") +
                          time + "\nEND:VALARM\n");
    };
    EXPECT_EQ(absolute("20060508T060000Z"), 360u);
    EXPECT_EQ(absolute("20060508T120000Z"), 0u);
    // Behind the start: -360 without a sign.
    EXPECT_EQ(absolute("20060508T180000Z"), 4294966936u);
    // (38845.5 - 38845.489583333336) * 24 * 60 is 14.99999999650754 in doubles; it is cut.
    EXPECT_EQ(absolute("20060508T114500Z"), 14u);
}

TEST(AppointmentMappingTest, CarriesTheRecurrence)
{
    const AppointmentValues values =
        ValuesOf(FileText("+0600", "RRULE:FREQ=DAILY;INTERVAL=2;COUNT=5\n"));
    ASSERT_TRUE(values.recurrence);
    EXPECT_EQ(values.recurrence->eRecurType, Daily);
    EXPECT_EQ(values.recurrence->tDaily.ulIntervalDay, 2u);
    EXPECT_EQ(values.recurrence->tEndInfo.eEndType, EndByCount);
    EXPECT_EQ(values.recurrence->tEndInfo.ulTimesAfter, 5u);
}

// --- From appointment to event -----------------------------------------------------------------

// One event in a file of its own, written to by those values.
struct Written
{
    explicit Written(const MachineZone& zone = Zone(-120)) : machine(zone)
    {
        auto made = std::make_unique<CVEvent>();
        event = made.get();
        file.Events().Attach(std::move(made));
    }
    void Write(const AppointmentValues& values)
    {
        lastModified = EventFromAppointment(file, values, machine, UtcNow(), *event);
    }
    CVTimeZone* FirstZone()
    {
        std::vector<CVTimeZone*> zones;
        file.TimeZones().Snapshot(zones);
        return zones.empty() ? nullptr : zones.front();
    }
    CVStandard* FirstStandard()
    {
        return FirstZone() ? dynamic_cast<CVStandard*>(FirstZone()->FirstChild()) : nullptr;
    }

    MachineZone machine;
    CCalendarFile file{L"", 0};
    CVEvent* event = nullptr;
    DATE lastModified = 0.0;
};

TEST(AppointmentMappingTest, WritesIdTextsAndStamp)
{
    Written written;
    AppointmentValues values;
    values.entityId = L"{u}";
    values.utcLastModified = 5.0;
    values.subject = L"s";
    values.place = L"p";
    values.description = L"d";
    written.Write(values);
    EXPECT_EQ(written.event->Fields().uid, L"{u}");
    EXPECT_EQ(written.event->Fields().summary, L"s");
    EXPECT_EQ(written.event->Fields().location, L"p");
    EXPECT_EQ(written.event->Fields().description, L"d");
    EXPECT_EQ(Text(written.event->Fields().stamp), L"2006-5-8 18:1:2");
    // 18:01:02 is 64,862 seconds.
    EXPECT_NEAR(written.lastModified, kDay20060508 + 64862.0 / 86400.0, 1e-9);
    EXPECT_EQ(written.file.Events().Find(L"{u}"), written.event);
}

TEST(AppointmentMappingTest, AnEventIsFoundByTheIdThatItWasGiven)
{
    Written written;
    auto made = std::make_unique<CVEvent>();
    made->Edit().uid = L"b";
    const CVEvent* other = made.get();
    written.file.Events().Attach(std::move(made));
    AppointmentValues values;
    values.entityId = L"a";
    written.Write(values);
    ASSERT_EQ(written.file.Events().Find(L"a"), written.event);
    values.entityId = L"c";
    written.Write(values);
    EXPECT_EQ(written.file.Events().Find(L"c"), written.event);
    EXPECT_EQ(written.file.Events().Find(L"b"), other);
    EXPECT_FALSE(written.file.Events().Find(L"a"));
}

TEST(AppointmentMappingTest, AbsentValuesLeaveTheirFields)
{
    Written written;
    for (const auto& [name, value] : {std::pair{L"UID", L"u"},
                                      {L"SUMMARY", L"s"},
                                      {L"LOCATION", L"l"},
                                      {L"DESCRIPTION", L"d"},
                                      {L"DTSTART", L"20060508T101500"},
                                      {L"DTEND", L"20060508T111500"},
                                      {L"RRULE", L"FREQ=DAILY"}})
        written.event->SetProperty(name, value);
    written.Write({});
    EXPECT_EQ(written.event->Fields().uid, L"u");
    EXPECT_EQ(written.event->Fields().summary, L"s");
    EXPECT_EQ(written.event->Fields().location, L"l");
    EXPECT_EQ(written.event->Fields().description, L"d");
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 10:15:0");
    EXPECT_EQ(Text(written.event->Fields().end), L"2006-5-8 11:15:0");
    EXPECT_EQ(written.event->Fields().frequency, 1);
    EXPECT_FALSE(written.event->Fields().allDay);
    EXPECT_FALSE(written.event->FirstChild());
    // Stamp and zone are set in any case.
    EXPECT_EQ(Text(written.event->Fields().stamp), L"2006-5-8 18:1:2");
    EXPECT_EQ(written.event->Fields().tzid, L"Machine Time");
}

TEST(AppointmentMappingTest, AnEmptyTextClearsItsField)
{
    Written written;
    AppointmentValues values;
    values.entityId = L"u";
    values.subject = values.place = values.description = L"old";
    written.Write(values);
    values.entityId = values.subject = values.place = values.description = L"";
    written.Write(values);
    EXPECT_EQ(written.event->Fields().uid, L"");
    EXPECT_EQ(written.event->Fields().summary, L"");
    EXPECT_EQ(written.event->Fields().location, L"");
    EXPECT_EQ(written.event->Fields().description, L"");
}

TEST(AppointmentMappingTest, TextsEndAtTheirFirstNul)
{
    Written written;
    AppointmentValues values;
    values.subject = std::wstring(L"a\0b", 3);
    written.Write(values);
    EXPECT_EQ(written.event->Fields().summary, L"a");
}

TEST(AppointmentMappingTest, MakesAnAlarmWhereThereIsNone)
{
    Written written;
    AppointmentValues values;
    values.reminderMinutes = 15;
    written.Write(values);
    const auto* alarm = dynamic_cast<CVAlarm*>(written.event->FirstChild());
    ASSERT_TRUE(alarm);
    EXPECT_EQ(alarm->minutesBefore, 15);
    EXPECT_FALSE(alarm->NextSibling());
}

TEST(AppointmentMappingTest, AChangedReminderDoesNotReachAnExistingAlarm)
{
    Written written;
    auto made = std::make_unique<CVAlarm>();
    made->minutesBefore = 15;
    const CVAlarm* alarm = made.get();
    written.event->AddChild(std::move(made));
    AppointmentValues values;
    for (const std::uint32_t reminder : {30u, 0u, 0xFFFFFFFFu})
    {
        values.reminderMinutes = reminder;
        written.Write(values);
        EXPECT_EQ(written.event->FirstChild(), alarm);
        EXPECT_EQ(alarm->minutesBefore, 15);
        EXPECT_FALSE(alarm->NextSibling());
    }
}

TEST(AppointmentMappingTest, NoReminderMakesNoAlarm)
{
    Written written;
    AppointmentValues values;
    values.reminderMinutes = 0xFFFFFFFF;
    written.Write(values);
    EXPECT_FALSE(written.event->FirstChild());
    values.reminderMinutes = 0;
    written.Write(values);
    EXPECT_TRUE(written.event->FirstChild());
}

TEST(AppointmentMappingTest, MakesTheMachinesZone)
{
    struct Row
    {
        std::int32_t biasMinutes;
        const wchar_t* from;
        const wchar_t* to;
    };
    // clang-format off
    const Row rows[] = {
        {-120,  L"+0300",   L"+0200"},
        {300,   L"-0600",   L"-0500"},
        {480,   L"-0900",   L"-0800"},
        {0,     L"+0100",   L"+0000"},
        {-330,  L"+0630",   L"+0530"},
        {210,   L"-0430",   L"-0330"},
        {-6000, L"+10100",  L"+10000"},
        {std::numeric_limits<std::int32_t>::min(), L"+3579139508", L"+3579139408"},
    };
    // clang-format on
    for (const Row& row : rows)
    {
        Written written(Zone(row.biasMinutes));
        written.Write({});
        ASSERT_TRUE(written.FirstZone());
        EXPECT_EQ(written.FirstZone()->tzid, L"Machine Time");
        const CVStandard* standard = written.FirstStandard();
        ASSERT_TRUE(standard);
        EXPECT_EQ(standard->start, L"20000101T000000");
        EXPECT_EQ(standard->name, L"Machine Time");
        EXPECT_EQ(standard->offsetFrom, row.from);
        EXPECT_EQ(standard->offsetTo, row.to);
    }
}

TEST(AppointmentMappingTest, UsesTheMachinesZoneThatIsThereUnchanged)
{
    Written written;
    auto zone = std::make_unique<CVTimeZone>();
    zone->tzid = L"Machine Time";
    auto standard = std::make_unique<CVStandard>();
    standard->offsetTo = L"+060000"; // longer than five: counts when writing
    zone->AddChild(std::move(standard));
    written.file.TimeZones().Attach(std::move(zone));
    AppointmentValues values;
    values.startTime = kDay20060508;
    values.endTime = kDay20060508 + 0.25;
    written.Write(values);
    EXPECT_EQ(written.file.TimeZones().Size(), 1u);
    EXPECT_EQ(written.FirstStandard()->GetProperties(), L"TZOFFSETTO:+060000\r\n");
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 6:0:0");
    EXPECT_EQ(Text(written.event->Fields().end), L"2006-5-8 12:0:0");
}

TEST(AppointmentMappingTest, AShortOffsetTextCountsAsZeroWhenWriting)
{
    Written written;
    auto zone = std::make_unique<CVTimeZone>();
    zone->tzid = L"Machine Time";
    auto standard = std::make_unique<CVStandard>();
    standard->offsetTo = L"+060";
    zone->AddChild(std::move(standard));
    written.file.TimeZones().Attach(std::move(zone));
    AppointmentValues values;
    values.startTime = kDay20060508;
    written.Write(values);
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 0:0:0");
}

TEST(AppointmentMappingTest, AZoneWithoutAStandardFirstIsGivenOneAndNotAgain)
{
    Written written;
    auto zone = std::make_unique<CVTimeZone>();
    zone->tzid = L"Machine Time";
    zone->AddChild(std::make_unique<CVAlarm>());
    written.file.TimeZones().Attach(std::move(zone));
    written.Write({});
    written.Write({});
    ASSERT_TRUE(written.FirstStandard());
    EXPECT_EQ(written.FirstStandard()->offsetTo, L"+0200");
    std::vector<CVObject*> children;
    written.FirstZone()->GetChildren(children);
    EXPECT_EQ(children.size(), 2u);
}

TEST(AppointmentMappingTest, TheItemsOwnTimeZoneIsNotRead)
{
    Written written;
    AppointmentValues values;
    values.timeZone = L"Another";
    written.Write(values);
    EXPECT_EQ(written.event->Fields().tzid, L"Machine Time");
    EXPECT_EQ(written.file.TimeZones().Size(), 1u);
}

TEST(AppointmentMappingTest, WritesUtcAsLocalDigitsAndReadsItBack)
{
    Written written(Zone(-120));
    AppointmentValues values;
    values.startTime = kDay20060508 + 10.0 / 24.0;
    values.endTime = kDay20060508 + 11.0 / 24.0;
    written.Write(values);
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 12:0:0");
    EXPECT_EQ(Text(written.event->Fields().end), L"2006-5-8 13:0:0");

    const AppointmentView back = AppointmentFromEvent(written.file, *written.event);
    EXPECT_EQ(back.timeZone, L"Machine Time");
    EXPECT_NEAR(*back.startTime, kDay20060508 + 10.0 / 24.0, 1e-9);
    EXPECT_NEAR(*back.endTime, kDay20060508 + 11.0 / 24.0, 1e-9);
}

TEST(AppointmentMappingTest, AnAllDayItemKeepsItsTimes)
{
    Written written(Zone(-120));
    AppointmentValues values;
    values.allDay = true;
    values.startTime = kDay20060508;
    values.endTime = kDay20060508 + 1.0;
    written.Write(values);
    EXPECT_TRUE(written.event->Fields().allDay);
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 0:0:0");
    EXPECT_EQ(Text(written.event->Fields().end), L"2006-5-9 0:0:0");
}

TEST(AppointmentMappingTest, FromAllDayToTimedTheDateFlagStaysAndTheTimesShift)
{
    Written written(Zone(-120));
    AppointmentValues values;
    values.allDay = true;
    values.startTime = kDay20060508;
    values.endTime = kDay20060508 + 1.0;
    written.Write(values);
    values.allDay = false;
    values.startTime = kDay20060508 + 23.0 / 24.0;
    values.endTime = kDay20060508 + 23.5 / 24.0;
    written.Write(values);
    EXPECT_TRUE(written.event->Fields().allDay);
    // 23:00 UTC is 01:00 of the next day there.
    EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-9 1:0:0");
    EXPECT_NE(written.event->GetProperties().find(L"DTSTART;VALUE=DATE:20060509\r\n"
                                                  L"DTEND;VALUE=DATE:20060509\r\n"),
              std::wstring::npos);
}

TEST(AppointmentMappingTest, AValueThatIsNoDateLeavesTheField)
{
    Written written;
    written.event->SetProperty(L"DTSTART", L"20060508T101500");
    AppointmentValues values;
    for (const DATE noDate : {1e300,
                              -1e300,
                              std::numeric_limits<DATE>::infinity(),
                              std::numeric_limits<DATE>::quiet_NaN()})
    {
        values.startTime = noDate;
        written.Write(values);
        EXPECT_EQ(Text(written.event->Fields().start), L"2006-5-8 10:15:0");
    }
}

TEST(AppointmentMappingTest, WritesARecurrenceOnlyTogetherWithBothTimes)
{
    AppointmentValues values;
    values.recurrence = RecurrenceHead{};
    values.recurrence->eRecurType = Daily;
    values.recurrence->tDaily.ulIntervalDay = 2;
    Written noTimes;
    noTimes.Write(values);
    EXPECT_EQ(noTimes.event->Fields().frequency, 0);

    values.startTime = kDay20060508;
    Written noEnd;
    noEnd.Write(values);
    EXPECT_EQ(noEnd.event->Fields().frequency, 0);

    values.endTime = kDay20060508;
    Written all;
    all.Write(values);
    EXPECT_EQ(all.event->Fields().frequency, 1);
    EXPECT_EQ(all.event->Fields().interval, 2);

    // An item without a recurrence doesn't take it away.
    values.recurrence = RecurrenceHead{};
    all.Write(values);
    EXPECT_EQ(all.event->Fields().frequency, 1);
}

TEST(AppointmentMappingTest, TheFirstEventOfANewFileIsWrittenWithCalendarAndZone)
{
    const ScopedGuidSource guid([] { return std::wstring(L"{G}"); });
    CCalendarFile file(L"default.ics", 1);
    auto event = std::make_unique<CVEvent>();
    AppointmentValues values;
    values.entityId = L"{0123}";
    values.subject = L"Lunch";
    values.reminderMinutes = 15;
    values.startTime = kDay20060508 + 0.5;
    values.endTime = kDay20060508 + 0.75;
    values.recurrence = RecurrenceHead{};
    values.recurrence->eRecurType = Weekly;
    values.recurrence->tWeekly.ulIntervalWeek = 1;
    values.recurrence->tWeekly.bValidWeekday[1] = -1;
    EventFromAppointment(file, values, Zone(300), UtcNow(), *event);
    file.Events().Attach(std::move(event));
    EXPECT_EQ(file.SaveToText(),
              "BEGIN:VCALENDAR\r\n"
              "VERSION:2.0\r\n"
              "PRODID:-//Surezut//Windows Calendar 1.0//EN\r\n"
              "CALSCALE:GREGORIAN\r\n"
              "METHOD:PUBLISH\r\n"
              "BEGIN:VTIMEZONE\r\n"
              "TZID:Machine Time\r\n"
              "BEGIN:STANDARD\r\n"
              "DTSTART:20000101T000000\r\n"
              "TZNAME:Machine Time\r\n"
              "TZOFFSETFROM:-0600\r\n"
              "TZOFFSETTO:-0500\r\n"
              "END:STANDARD\r\n"
              "END:VTIMEZONE\r\n"
              "BEGIN:VEVENT\r\n"
              "DTSTAMP:20060508T180102\r\n"
              "DTSTART;TZID=\"Machine Time\":20060508T070000\r\n"
              "DTEND;TZID=\"Machine Time\":20060508T130000\r\n"
              "SUMMARY:Lunch\r\n"
              "UID:{0123}\r\n"
              "RRULE:FREQ=WEEKLY;BYDAY=MO;INTERVAL=1\r\n"
              "BEGIN:VALARM\r\n"
              "ACTION:DISPLAY\r\n"
              "DESCRIPTION:Reminder\r\n"
              "TRIGGER:-PT15M\r\n"
              "X-WR-ALARMUID:{G}\r\n"
              "END:VALARM\r\n"
              "END:VEVENT\r\n"
              "END:VCALENDAR\r\n");
}

} // namespace
