#include "icalendar/AppointmentMapping.h"

#include "icalendar/VAlarm.h"
#include "icalendar/VStandard.h"
#include "service/TimeConversions.h"

#include <utility>

namespace
{

constexpr double kMinutesPerHour = 60.0;
constexpr double kHoursPerDay = 24.0;
constexpr std::int64_t kSecondsPerDay = 86400;

// A zone's one offset, if its first child tells one. A first child that is no STANDARD counts as
// none.
CVStandard* StandardOf(const CVTimeZone& zone)
{
    return dynamic_cast<CVStandard*>(zone.FirstChild());
}

CVAlarm* FirstAlarmOf(const CVEvent& event)
{
    for (CVObject* child = event.FirstChild(); child; child = child->NextSibling())
    {
        if (child->Name() == L"VALARM")
            return dynamic_cast<CVAlarm*>(child);
    }
    return nullptr;
}

// --- From event to appointment -----------------------------------------------------------------

// What to add to the zone's local digits to have UTC. Kept as it is: only a text of exactly five
// characters counts here, where writing takes longer ones too. Pinned by AppointmentMappingTest.
double DaysToUtc(const CVStandard& standard)
{
    const std::int32_t minutes = standard.offsetTo.size() == 5 ? standard.GetOffsetMinutes() : 0;
    return minutes == 0 ? 0.0 : (-minutes / kMinutesPerHour) / kHoursPerDay;
}

// Sets timeZone and returns the days to add for UTC.
double ReadZone(const CCalendarFile& file, std::wstring_view tzid, AppointmentView& values)
{
    const CVTimeZone* zone = tzid.empty() ? nullptr : file.TimeZones().Find(tzid);
    if (!zone)
    {
        values.timeZone = L"UTC";
        return 0.0;
    }
    const CVStandard* standard = StandardOf(*zone);
    if (!standard)
        return 0.0;
    values.timeZone = standard->name;
    return DaysToUtc(*standard);
}

std::uint32_t ReminderMinutes(const CVAlarm& alarm, DATE start)
{
    if (alarm.triggerTime.wYear == 0)
        return static_cast<std::uint32_t>(alarm.minutesBefore);
    const double minutes =
        (start - SystemTimeToDate(alarm.triggerTime)) * kHoursPerDay * kMinutesPerHour;
    // Cut to a whole number; an alarm behind the start wraps. Two DATEs are never so far apart that
    // their minutes leave 64 bits.
    return static_cast<std::uint32_t>(static_cast<std::int64_t>(minutes));
}

// --- From appointment to event -----------------------------------------------------------------

void SetText(std::wstring& field, const std::optional<std::wstring>& value)
{
    if (value)
        field = value->substr(0, value->find(L'\0'));
}

std::wstring OffsetText(wchar_t sign, std::uint32_t hours, std::uint32_t minutes)
{
    const auto digits = [](std::uint32_t number) {
        return (number < 10 ? L"0" : L"") + std::to_wstring(number);
    };
    return sign + digits(hours) + digits(minutes);
}

std::unique_ptr<CVStandard> MakeStandard(const MachineZone& machine)
{
    const bool west = machine.biasMinutes > 0;
    const auto bias = static_cast<std::uint32_t>(machine.biasMinutes);
    const std::uint32_t distance = west ? bias : 0u - bias;
    const wchar_t sign = west ? L'-' : L'+';
    auto standard = std::make_unique<CVStandard>();
    standard->start = L"20000101T000000";
    standard->name = machine.standardName;
    // Kept as it is: one hour more in either direction and whether the zone has daylight saving or
    // not. Pinned by AppointmentMappingTest.
    standard->offsetFrom = OffsetText(sign, distance / 60 + 1, distance % 60);
    standard->offsetTo = OffsetText(sign, distance / 60, distance % 60);
    return standard;
}

// The machine's zone in the file, with its STANDARD; both are made where missing. A first child
// that is no STANDARD counts as none; the new one goes before it, so that it is found from now on.
std::pair<CVTimeZone*, CVStandard*> MachineZoneIn(CCalendarFile& file, const MachineZone& machine)
{
    CVTimeZone* zone = file.TimeZones().Find(machine.standardName);
    if (!zone)
    {
        auto made = std::make_unique<CVTimeZone>();
        made->tzid = machine.standardName;
        zone = made.get();
        file.TimeZones().Attach(std::move(made));
    }
    CVStandard* standard = StandardOf(*zone);
    if (!standard)
    {
        auto made = MakeStandard(machine);
        standard = made.get();
        zone->AddChildInFront(std::move(made));
    }
    return {zone, standard};
}

// What to add to UTC to have the zone's local digits; a text of more than four characters counts.
double DaysToLocal(const CVStandard& standard)
{
    return standard.offsetTo.size() > 4
               ? standard.GetOffsetMinutes() / kMinutesPerHour / kHoursPerDay
               : 0.0;
}

// A value that is no date leaves the field.
void SetTime(SYSTEMTIME& field, const std::optional<DATE>& value, double addDays)
{
    SYSTEMTIME time{};
    if (value && DateToSystemTime(*value + addDays, time))
        field = time;
}

} // namespace

AppointmentView AppointmentFromEvent(const CCalendarFile& file, const CVEvent& event)
{
    EventView fields = event.Fields();
    AppointmentView values;
    values.entityId = fields.uid;
    values.utcLastModified = SystemTimeToDate(fields.stamp);
    values.subject = fields.summary;
    values.place = fields.location;
    values.description = fields.description;
    values.texts = std::move(fields.texts);
    const double daysToUtc = ReadZone(file, fields.tzid, values);
    values.recurrence = RecurrenceFromEvent(fields);

    const DATE start = SystemTimeToDate(fields.start);
    const DATE end = SystemTimeToDate(fields.end);
    const bool allDay =
        fields.allDay && DateToUnixSeconds(end) - DateToUnixSeconds(start) == kSecondsPerDay;
    values.allDay = allDay;
    values.startTime = allDay ? start : start + daysToUtc;
    values.endTime = allDay ? end : end + daysToUtc;

    if (const CVAlarm* alarm = FirstAlarmOf(event))
        values.reminderMinutes = ReminderMinutes(*alarm, start);
    return values;
}

DATE EventFromAppointment(CCalendarFile& file,
                          const AppointmentValues& values,
                          const MachineZone& machine,
                          const SYSTEMTIME& utcNow,
                          CVEvent& event)
{
    EventFields& fields = event.Edit();
    const std::wstring oldId = fields.uid;
    SetText(fields.uid, values.entityId);
    if (fields.uid != oldId)
        file.Events().IdsChanged();
    fields.stamp = utcNow;
    SetText(fields.summary, values.subject);
    SetText(fields.location, values.place);
    SetText(fields.description, values.description);

    if (values.reminderMinutes && *values.reminderMinutes != kNoReminderMinutes &&
        !FirstAlarmOf(event))
    {
        auto alarm = std::make_unique<CVAlarm>();
        alarm->minutesBefore = static_cast<std::int32_t>(*values.reminderMinutes);
        event.AddChild(std::move(alarm));
    }

    const auto [zone, standard] = MachineZoneIn(file, machine);
    fields.tzid = zone->tzid;

    if (values.recurrence && values.startTime && values.endTime)
        RecurrenceToEvent(*values.recurrence, fields);

    const bool allDay = values.allDay.value_or(false);
    if (allDay)
        fields.allDay = true;
    const double addDays = allDay ? 0.0 : DaysToLocal(*standard);
    SetTime(fields.start, values.startTime, addDays);
    SetTime(fields.end, values.endTime, addDays);
    event.Pack();
    return SystemTimeToDate(utcNow);
}
