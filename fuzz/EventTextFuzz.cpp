// The texts of dates, durations, triggers and rules: any is read without a crash, and what is
// written of it reads back the same.
#include "Require.h"

#include "icalendar/DateText.h"
#include "icalendar/RecurrenceMapping.h"
#include "icalendar/VAlarm.h"
#include "platform/GuidSource.h"
#include "service/TextConversions.h"
#include "tests/icalendar/SavedText.h"

#include <cstdint>
#include <cstring>

namespace
{

bool SameTime(const SYSTEMTIME& left, const SYSTEMTIME& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

// The value of a line in an unfolded text of lines; empty where it is missing.
std::wstring ValueOf(const std::wstring& lines, const std::wstring& name)
{
    std::wstring text = lines;
    for (std::size_t fold; (fold = text.find(L"\r\n ")) != std::wstring::npos;)
        text.erase(fold, 3);
    const std::size_t start = text.find(name + L":");
    if (start == std::wstring::npos)
        return {};
    const std::size_t value = start + name.size() + 1;
    return text.substr(value, text.find(L"\r\n", value) - value);
}

void CheckDate(const std::wstring& text)
{
    SYSTEMTIME time{};
    ParseDateTime(text, time);
    if (!HasItsDigits(time) || time.wYear < 101)
        return;
    SYSTEMTIME back{};
    ParseDateTime(FormatDateTime(time), back);
    Require(SameTime(time, back));
    ParseDateTime(FormatDate(time), back);
    Require(SameTime(time, back));
}

// A duration ends in a date of the range that a DATE has, or changes nothing.
void CheckDuration(const std::wstring& text)
{
    CVEvent event;
    event.SetProperty(L"DTSTART", L"20060508T101500");
    event.SetProperty(L"DURATION", text);
    const SYSTEMTIME end = event.Fields().end;
    Require(end.wYear >= 100 && end.wYear <= 9999);
    Require(end.wMonth >= 1 && end.wMonth <= 12);
    CVEvent early;
    early.SetProperty(L"DURATION", text);
    CVEvent odd;
    odd.SetProperty(L"DTSTART", text);
    odd.SetProperty(L"DURATION", text);
}

void CheckTrigger(const std::wstring& text)
{
    const ScopedGuidSource noGuid([] { return std::wstring(); });
    CVAlarm alarm;
    alarm.SetProperty(L"TRIGGER", text);
    alarm.SetProperty(L"TRIGGER;VALUE=DATE-TIME", text);
    const std::wstring lines = alarm.GetProperties();
    if (alarm.minutesBefore == CVAlarm::kNoReminder)
    {
        Require(lines.empty());
        return;
    }
    CVAlarm back;
    back.SetProperty(L"TRIGGER", ValueOf(lines, L"TRIGGER"));
    Require(back.minutesBefore == alarm.minutesBefore);
}

void CheckRule(const std::wstring& text)
{
    CVEvent event;
    event.SetProperty(L"RRULE", text);
    const std::wstring lines = event.GetProperties();
    const EventView fields = event.Fields();
    const RecurrenceHead head = RecurrenceFromEvent(fields);
    Require(static_cast<int>(head.eRecurType) == fields.frequency);
    EventNumbers taken;
    RecurrenceToEvent(head, taken);
    Require(taken.frequency == fields.frequency);
    // An interval of 0 is not written and comes back as 1.
    if (!HasItsDigits(fields.until) || fields.interval == 0)
        return;
    CVEvent back;
    back.SetProperty(L"RRULE", ValueOf(lines, L"RRULE"));
    Require(back.Fields().frequency == fields.frequency);
    Require(back.GetProperties() == lines);
}

void CheckStart(const std::wstring& parameters)
{
    CVEvent event;
    event.SetProperty(L"DTSTART;" + parameters, L"20060508T101500");
    const EventView fields = event.Fields();
    Require(fields.tzid.size() <= parameters.size());
    Require(fields.start.wYear == 2006 && !(fields.allDay && !fields.tzid.empty()));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::wstring text =
        WideFromUtf8(std::string_view(reinterpret_cast<const char*>(data), size));
    CheckDate(text);
    CheckDuration(text);
    CheckTrigger(text);
    CheckRule(text);
    CheckStart(text);
    return 0;
}
