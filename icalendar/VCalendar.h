// VCALENDAR: the fixed frame of a file. What a file says of its calendar is dropped. Portable.
#pragma once

#include "icalendar/VObject.h"

class CVCalendar : public CVObject
{
  public:
    CVCalendar() noexcept : CVObject(L"VCALENDAR") {}

    // The same four lines always.
    std::wstring GetProperties() const override;
};
