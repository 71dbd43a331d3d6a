// VEVENT: the property lines of one event as plain fields, and back. Properties without a field
// here are dropped, exceptions to a recurrence among them. Nothing is validated. Portable.
#pragma once

#include "icalendar/VObject.h"
#include "platform/Types.h"

#include <array>
#include <cstdint>

// In the order of the weekday flags; Sunday first.
inline constexpr std::array<std::wstring_view, 7> kWeekdayNames = {
    L"SU", L"MO", L"TU", L"WE", L"TH", L"FR", L"SA"};

class CVEvent : public CVObject
{
  public:
    static constexpr const wchar_t* kName = L"VEVENT";

    CVEvent() noexcept : CVObject(kName) {}

    // A repeated property overwrites the earlier one. Returns 1, whether the property was taken or
    // not.
    int SetProperty(std::wstring_view name, std::wstring_view value) override;
    // Never empty: DTSTAMP is always there. Order and conditions are part of the format.
    std::wstring GetProperties() const override;

    // What an index finds the event by.
    const std::wstring& Id() const noexcept { return uid; }

    // Every record holds the digits as they stand in the file; year 0: never set.
    std::wstring uid;
    SYSTEMTIME stamp{};
    std::wstring summary;
    std::wstring location;
    std::wstring tzid; // the TZID parameter of DTSTART
    SYSTEMTIME start{};
    SYSTEMTIME end{};
    std::wstring description;

    std::int32_t frequency = 0; // a _tagNAppointmentRecurringType; 0: no recurrence
    std::int32_t interval = 1;
    std::array<bool, 7> weekdays{};
    bool hasWeekdays = false; // a BYDAY was there, whether it named a day or not
    bool allDay = false;      // DTSTART is a date
    std::int32_t nth = 0;     // ordinal of the weekdays, negative from the end
    std::int32_t month = 0;
    std::int32_t monthDay = 0;
    std::int32_t count = 0;
    SYSTEMTIME until{};
};
