#include "icalendar/VAlarm.h"

#include "platform/GuidSource.h"

#include <gtest/gtest.h>

#include <limits>

namespace
{

constexpr const wchar_t* kGuid = L"{00000000-1111-2222-3333-444444444444}";

std::int32_t MinutesOf(const wchar_t* trigger, std::int32_t before = 0)
{
    CVAlarm alarm;
    alarm.minutesBefore = before;
    EXPECT_EQ(alarm.SetProperty(L"TRIGGER", trigger), 1);
    return alarm.minutesBefore;
}

TEST(VAlarmTest, ReadsALeadTimeOfOneUnit)
{
    EXPECT_EQ(MinutesOf(L"-PT15M"), 15);
    EXPECT_EQ(MinutesOf(L"-PT2H"), 120);
    EXPECT_EQ(MinutesOf(L"-P1D"), 1440);
    EXPECT_EQ(MinutesOf(L"-P1W"), 10080);
    EXPECT_EQ(MinutesOf(L"-PT0M"), 0);
    EXPECT_EQ(MinutesOf(L"-PT90M"), 90);
}

TEST(VAlarmTest, ReadsTheDigitsAtFixedPositionsWhateverStandsThere)
{
    EXPECT_EQ(MinutesOf(L"-P1DT2H", 5), 0); // the number begins at "T"
    EXPECT_EQ(MinutesOf(L"-PT1H30M"), 1);   // the number is "1H30"
    EXPECT_EQ(MinutesOf(L"-P5M", 5), 0);    // an empty number
    EXPECT_EQ(MinutesOf(L"-PM", 5), 0);
    EXPECT_EQ(MinutesOf(L"-PH", 5), 0);
    EXPECT_EQ(MinutesOf(L"-PD", 5), 0);
    EXPECT_EQ(MinutesOf(L"-PW", 5), 0);
    EXPECT_EQ(MinutesOf(L"-PT-5M"), -5);
}

TEST(VAlarmTest, LeavesTheLeadTimeForAnyOtherValue)
{
    for (const wchar_t* value :
         {L"", L"-", L"-P", L"PT15M", L"+PT15M", L"P0W", L"-PT0S", L"-PT30S", L"-pT15M", L"-PT15m"})
        EXPECT_EQ(MinutesOf(value, 5), 5) << value;
    EXPECT_EQ(MinutesOf(L"PT0S"), 0);
    EXPECT_EQ(MinutesOf(L"P0W"), 0);
    EXPECT_EQ(MinutesOf(L"PT15M"), 0);
}

TEST(VAlarmTest, WrapsANumberThatIsTooLarge)
{
    // 2147483647 * 60 = 0x1D_FFFFFFC4; the low 32 bits are -60.
    EXPECT_EQ(MinutesOf(L"-PT99999999999H"), -60);
    EXPECT_EQ(MinutesOf(L"-PT99999999999M"), std::numeric_limits<std::int32_t>::max());
}

TEST(VAlarmTest, ReadsATriggerWithParametersAsAnAbsoluteTime)
{
    CVAlarm alarm;
    EXPECT_EQ(alarm.SetProperty(L"TRIGGER;VALUE=DATE-TIME", L"20060508T093000Z"), 1);
    EXPECT_EQ(alarm.minutesBefore, 0);
    EXPECT_EQ(alarm.triggerTime.wYear, 2006);
    EXPECT_EQ(alarm.triggerTime.wMonth, 5);
    EXPECT_EQ(alarm.triggerTime.wDay, 8);
    EXPECT_EQ(alarm.triggerTime.wHour, 9);
    EXPECT_EQ(alarm.triggerTime.wMinute, 30);

    // The name decides, so a lead time with parameters is read as a date: "-PT1" is no year.
    EXPECT_EQ(alarm.SetProperty(L"TRIGGER;RELATED=START", L"-PT15M"), 1);
    EXPECT_EQ(alarm.triggerTime.wYear, 2006);
    EXPECT_EQ(alarm.minutesBefore, 0);
}

TEST(VAlarmTest, DropsEverythingElse)
{
    CVAlarm alarm;
    for (const wchar_t* name :
         {L"ACTION", L"DESCRIPTION", L"X-WR-ALARMUID", L"trigger", L"XTRIGGER"})
        EXPECT_EQ(alarm.SetProperty(name, L"-PT15M"), 1);
    EXPECT_EQ(alarm.minutesBefore, 0);
    EXPECT_EQ(alarm.triggerTime.wYear, 0);
}

std::wstring TriggerLineOf(std::int32_t minutes)
{
    const ScopedGuidSource noGuid([] { return std::wstring(); });
    CVAlarm alarm;
    alarm.minutesBefore = minutes;
    const std::wstring lines = alarm.GetProperties();
    const std::wstring head = L"ACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\n";
    EXPECT_TRUE(lines.starts_with(head)) << lines;
    return lines.substr(head.size());
}

TEST(VAlarmTest, WritesTheLeadTimeInItsLargestWholeUnit)
{
    EXPECT_EQ(TriggerLineOf(0), L"TRIGGER:P0W\r\n");
    EXPECT_EQ(TriggerLineOf(15), L"TRIGGER:-PT15M\r\n");
    EXPECT_EQ(TriggerLineOf(60), L"TRIGGER:-PT1H\r\n");
    EXPECT_EQ(TriggerLineOf(90), L"TRIGGER:-PT90M\r\n");
    EXPECT_EQ(TriggerLineOf(120), L"TRIGGER:-PT2H\r\n");
    EXPECT_EQ(TriggerLineOf(1440), L"TRIGGER:-P1D\r\n");
    EXPECT_EQ(TriggerLineOf(1500), L"TRIGGER:-PT25H\r\n");
    EXPECT_EQ(TriggerLineOf(2880), L"TRIGGER:-P2D\r\n");
    EXPECT_EQ(TriggerLineOf(10080), L"TRIGGER:-P1W\r\n");
    EXPECT_EQ(TriggerLineOf(20160), L"TRIGGER:-P2W\r\n");
}

TEST(VAlarmTest, DividesWithoutASign)
{
    // -2 is 4294967294 without a sign, and 14 modulo 60.
    EXPECT_EQ(TriggerLineOf(-2), L"TRIGGER:-PT-2M\r\n");
    // -16 is 4294967280 = 71582788 hours, which is 4 modulo 24.
    EXPECT_EQ(TriggerLineOf(-16), L"TRIGGER:-PT71582788H\r\n");
}

TEST(VAlarmTest, WritesANewIdAtEveryCall)
{
    int calls = 0;
    const ScopedGuidSource source([&calls] {
        ++calls;
        return std::wstring(kGuid);
    });
    CVAlarm alarm;
    alarm.SetProperty(L"X-WR-ALARMUID", L"another");
    alarm.minutesBefore = 15;
    const std::wstring expected = L"ACTION:DISPLAY\r\n"
                                  L"DESCRIPTION:Reminder\r\n"
                                  L"TRIGGER:-PT15M\r\n"
                                  L"X-WR-ALARMUID:{00000000-1111-2222-3333-444444444444}\r\n";
    EXPECT_EQ(alarm.GetProperties(), expected);
    EXPECT_EQ(alarm.GetProperties(), expected);
    EXPECT_EQ(calls, 2);
}

TEST(VAlarmTest, TwoWritesHaveDifferentIdsFromTheSystem)
{
    CVAlarm alarm;
    EXPECT_NE(alarm.GetProperties(), alarm.GetProperties());
}

TEST(VAlarmTest, WithoutAReminderThereIsNoAlarm)
{
    CVAlarm alarm;
    alarm.minutesBefore = -1;
    EXPECT_EQ(alarm.GetProperties(), L"");
}

TEST(VAlarmTest, AnAbsoluteTriggerGoesOutAsNoLeadTime)
{
    const ScopedGuidSource noGuid([] { return std::wstring(); });
    CVAlarm alarm;
    alarm.SetProperty(L"TRIGGER;VALUE=DATE-TIME", L"20060508T093000Z");
    EXPECT_EQ(alarm.GetProperties(), L"ACTION:DISPLAY\r\nDESCRIPTION:Reminder\r\nTRIGGER:P0W\r\n");
}

} // namespace
