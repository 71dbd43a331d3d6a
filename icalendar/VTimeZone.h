// VTIMEZONE: the name of a zone. Its fixed offset stands in its first STANDARD. Portable.
#pragma once

#include "icalendar/VObject.h"

class CVTimeZone : public CVObject
{
  public:
    static constexpr const wchar_t* kName = L"VTIMEZONE";

    CVTimeZone() noexcept : CVObject(kName) {}

    // Keeps TZID, less all its backslashes. Returns 1.
    int SetProperty(std::wstring_view name, std::wstring_view value) override;
    // The TZID line; empty without a TZID, so that such a zone is not written.
    std::wstring GetProperties() const override;

    // What an index finds the zone by.
    const std::wstring& Id() const noexcept { return tzid; }

    std::wstring tzid;
};
