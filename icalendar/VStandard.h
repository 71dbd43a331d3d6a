// STANDARD: the one offset that a zone of this system has. Texts are kept as read. Portable.
#pragma once

#include "icalendar/VObject.h"

#include <cstdint>

class CVStandard : public CVObject
{
  public:
    CVStandard() noexcept : CVObject(L"STANDARD") {}

    // Keeps the four properties below, told by their exact names. Returns 1.
    int SetProperty(std::wstring_view property, std::wstring_view value) override;
    std::wstring GetProperties() const override;

    // Minutes east of UTC from the offset-to text: a sign, two digits of hours, two of minutes;
    // what follows is ignored. 0 for a text of fewer than five code units.
    std::int32_t GetOffsetMinutes() const;

    std::wstring start;      // DTSTART
    std::wstring name;       // TZNAME
    std::wstring offsetFrom; // TZOFFSETFROM
    std::wstring offsetTo;   // TZOFFSETTO
};
