// The few plain types that pure code shares with the platform: on Windows the platform's own, on
// other hosts stand-ins of the same layout and meaning.
//
// Wide strings hold UTF-16 code units on every host. Where wchar_t is wider than 16 bits each
// element still holds one code unit, so that lengths, cuts and folds come out the same.
#pragma once

#include <cstdint>
#include <string>

#ifdef _WIN32

// clang-format off
#include <windef.h>
#include <minwinbase.h>
#include <timezoneapi.h>
#include <wtypes.h>
// clang-format on

#else

// A calendar date and time without a zone. month 1 to 12, day of week 0 (Sunday) to 6.
struct SYSTEMTIME
{
    std::uint16_t wYear;
    std::uint16_t wMonth;
    std::uint16_t wDayOfWeek;
    std::uint16_t wDay;
    std::uint16_t wHour;
    std::uint16_t wMinute;
    std::uint16_t wSecond;
    std::uint16_t wMilliseconds;
};

// 100-nanosecond units since 1601-01-01 00:00, in two halves.
struct FILETIME
{
    std::uint32_t dwLowDateTime;
    std::uint32_t dwHighDateTime;
};

// A zone's rules. Biases are minutes west of UTC; a date with year 0 names the wDay-th wDayOfWeek
// of its month, 5 the last one. Month 0: the zone has no daylight saving.
struct TIME_ZONE_INFORMATION
{
    std::int32_t Bias;
    wchar_t StandardName[32];
    SYSTEMTIME StandardDate;
    std::int32_t StandardBias;
    wchar_t DaylightName[32];
    SYSTEMTIME DaylightDate;
    std::int32_t DaylightBias;
};

// Days since 1899-12-30 00:00; a negative value counts its fraction forward.
using DATE = double;

// 0 or -1 by convention; other bit patterns are kept as they are.
using VARIANT_BOOL = std::int16_t;

#endif
