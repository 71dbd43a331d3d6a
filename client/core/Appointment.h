// One calendar item as the client holds it: what the server gave. A field is absent where reading
// it failed or where it has no value. Portable.
#pragma once

#include "client/core/Recurrence.h"

#include <cstdint>
#include <optional>
#include <string>

namespace pim
{
struct Appointment
{
    std::optional<std::wstring> id;
    std::optional<std::wstring> persistId;
    std::optional<std::wstring> folderId;
    std::optional<std::wstring> subject;
    std::optional<std::wstring> place;
    std::optional<std::wstring> description;
    std::optional<std::wstring> timeZone;        // mostly the key of a zone of the system
    std::optional<std::wstring> timeZoneDisplay; // "(UTC+01:00) Berlin", where this system has it
    std::optional<DATE> modifiedUtc;
    // UTC; for an all-day item the local days.
    std::optional<DATE> start;
    std::optional<DATE> end;
    std::optional<bool> allDay;
    std::optional<bool> busy;
    std::optional<std::uint32_t> reminderMinutes; // kNoReminder: none
    std::optional<Recurrence> recurrence;

    bool IsAllDay() const noexcept { return allDay.value_or(false); }
};

// The order in which a list shows items: by start as an instant, items without one first, then by
// ID.
bool ComesBefore(const Appointment& left, const Appointment& right, const ILocalZone& zone);
} // namespace pim
