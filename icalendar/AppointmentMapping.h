// What an event says of an appointment, and back, on plain values. Portable: the caller reads and
// puts the properties of the item object, and knows the machine's zone and the time.
//
// A zone has one fixed offset here, that of its first STANDARD, all year round. Exceptions to a
// recurrence do not exist.
#pragma once

#include "icalendar/CalendarFile.h"
#include "icalendar/RecurrenceMapping.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

// The properties of one appointment. Reading an event, an absent value means that the property is
// not put at all; writing one, that the item's property could not be read or was null.
template <typename Text> struct AppointmentProperties
{
    std::optional<Text> entityId; // EntityID and PersistID
    std::optional<DATE> utcLastModified;
    std::optional<Text> subject;
    std::optional<Text> place;
    std::optional<Text> description;
    std::optional<Text> timeZone;
    std::optional<RecurrenceHead> recurrence;
    std::optional<bool> allDay;
    std::optional<DATE> startTime;                // UTC; local for an all-day appointment
    std::optional<DATE> endTime;                  // as startTime
    std::optional<std::uint32_t> reminderMinutes; // before the start
};

// With texts of its own.
using AppointmentValues = AppointmentProperties<std::wstring>;
// With views of texts that are its own, the event's or its file's, good until those change.
struct AppointmentView : AppointmentProperties<std::wstring_view>
{
    std::unique_ptr<wchar_t[]> texts;
};

// The reminder value that says there is none.
inline constexpr std::uint32_t kNoReminderMinutes = 0xFFFFFFFF;

// The zone that written events are in.
struct MachineZone
{
    std::wstring standardName;
    std::int32_t biasMinutes = 0; // west of UTC
};

// The values of an event in that file. Present are all but:
// - timeZone, where the event's zone is in the file but has no STANDARD as its first child;
// - reminderMinutes, where the event has no alarm. Kept as it is: an item then keeps its initial 0,
//   not the value for no reminder.
// Kept as it is: only an event of exactly one day between 1971 and 2070, by the seconds of
// DateToUnixSeconds, is all-day; any other date-only event counts as timed. Pinned by
// AppointmentMappingTest.
AppointmentView AppointmentFromEvent(const CCalendarFile& file, const CVEvent& event);

// Writes the values into an event of that file, or one that will be attached to it. Absent values
// leave their fields. utcNow becomes the event's stamp, whatever utcLastModified says, and the
// result is the same time for the item's LastModificationTime. The machine's zone is added to the
// file where it lacks it. timeZone is not read.
// Kept as it is: neither an existing alarm's lead time, nor an existing recurrence or date-only
// flag, is ever taken back. Pinned by AppointmentMappingTest.
// Texts count up to their first NUL.
DATE EventFromAppointment(CCalendarFile& file,
                          const AppointmentValues& values,
                          const MachineZone& machine,
                          const SYSTEMTIME& utcNow,
                          CVEvent& event);
