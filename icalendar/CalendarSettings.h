// The settings of a calendar folder, "Settings.xml": the one value in it that matters here is the
// name of the default calendar. Portable.
#pragma once

#include <string>
#include <string_view>

// The default calendar's file name by the bytes of the settings file: the text of the element
// CalendarSettings/X-Root/VCalendar/Name (first child elements, exact names) without blanks and
// then without apostrophes at its ends, with ".ics" behind it. Empty where the text is damaged,
// beyond the limits of the XML scan, or has no such element or an empty one.
std::wstring DefaultCalendarFileName(std::string_view settings);
