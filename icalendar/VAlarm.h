// VALARM: a reminder before its event. An alarm's own text and ID are not kept. Portable.
#pragma once

#include "icalendar/VObject.h"
#include "platform/Types.h"

#include <cstdint>

class CVAlarm : public CVObject
{
  public:
    static constexpr std::int32_t kNoReminder = -1;

    CVAlarm() noexcept : CVObject(L"VALARM") {}

    // Reads TRIGGER as a lead time, and TRIGGER with parameters as an absolute time. Returns 1.
    int SetProperty(std::wstring_view name, std::wstring_view value) override;
    // Empty for kNoReminder. The ID in it is made anew at every call (platform/GuidSource.h); where
    // none can be made its line is left out. An absolute trigger is never written.
    std::wstring GetProperties() const override;

    std::int32_t minutesBefore = 0; // reminder lead time
    SYSTEMTIME triggerTime{};       // absolute trigger; year 0: none
};
