#include "icalendar/VTimeZone.h"

#include "icalendar/LineText.h"

int CVTimeZone::SetProperty(std::wstring_view name, std::wstring_view value)
{
    if (name == L"TZID")
    {
        tzid = value;
        // Kept as it is: the same text in an event's DTSTART keeps its backslashes, so that a zone
        // with escaped characters is not found from there. Pinned by AppointmentMappingTest.
        std::erase(tzid, L'\\');
    }
    return 1;
}

std::wstring CVTimeZone::GetProperties() const
{
    return tzid.empty() ? std::wstring() : FormatLine(L"TZID", tzid);
}
