#include "outlook/categories/CategoryTime.h"

#include "service/StringHelpers.h"
#include "service/TimeConversions.h"

#include <cstdio>

namespace
{
constexpr std::size_t kTimeLength = 23;

// Where a field of the record stands in the text.
struct TimeField
{
    decltype(SYSTEMTIME::wYear) SYSTEMTIME::*field;
    std::size_t position;
    std::size_t length;
};

// clang-format off
constexpr TimeField kTimeFields[] = {
    {&SYSTEMTIME::wYear,          0, 4},
    {&SYSTEMTIME::wMonth,         5, 2},
    {&SYSTEMTIME::wDay,           8, 2},
    {&SYSTEMTIME::wHour,         11, 2},
    {&SYSTEMTIME::wMinute,       14, 2},
    {&SYSTEMTIME::wSecond,       17, 2},
    {&SYSTEMTIME::wMilliseconds, 20, 3},
};
// clang-format on
} // namespace

DATE ParseCategoryTime(std::wstring_view text)
{
    if (text.size() < kTimeLength)
        return 0.0;
    SYSTEMTIME time{};
    for (const TimeField& row : kTimeFields)
        time.*row.field =
            static_cast<std::uint16_t>(ParseInt(text.substr(row.position, row.length)));
    return SystemTimeToDate(time);
}

std::string FormatCategoryTime(DATE utcTime)
{
    SYSTEMTIME time{};
    DateToSystemTime(utcTime, time);
    char text[64];
    std::snprintf(text,
                  sizeof(text),
                  "%04d-%02d-%02dT%02d:%02d:%02d.%03d",
                  time.wYear,
                  time.wMonth,
                  time.wDay,
                  time.wHour,
                  time.wMinute,
                  time.wSecond,
                  time.wMilliseconds);
    return text;
}
