#include "icalendar/VCalendar.h"

#include "icalendar/LineText.h"

std::wstring CVCalendar::GetProperties() const
{
    std::wstring lines;
    AppendLine(lines, L"VERSION", L"2.0");
    AppendLine(lines, L"PRODID", L"-//Surezut//Windows Calendar 1.0//EN");
    AppendLine(lines, L"CALSCALE", L"GREGORIAN");
    AppendLine(lines, L"METHOD", L"PUBLISH");
    return lines;
}
