// Conversions between the four forms of time in the server: FILETIME (100 ns since 1601) in the
// store, DATE (days since 1899-12-30) on the interface, SYSTEMTIME in between, and minutes since
// 1601 in recurrence blobs. Portable. Functions report by value: a step that fails leaves its
// zeroed result, 0.0 for a DATE and zero for a FILETIME.
#pragma once

#include "platform/Types.h"

// --- The platform's conversions, with one guard ------------------------------------------------

// A DATE from a calendar time; 0.0 where it is none. A record with month 0, the zero record
// included, gives 0.0 on every platform (some systems take it for 1999-11-30), and so does an hour,
// minute or second beyond its range. As the platform has it, a day that the month lacks (up to 31)
// rolls over, day 0 is the last day of the month before, and a year of two digits gets a century.
DATE SystemTimeToDate(const SYSTEMTIME& time);

// A calendar time from a DATE, milliseconds 0, to the nearest second as the platform rounds. All
// zero, and false, where the DATE is out of range or not a number.
bool DateToSystemTime(DATE date, SYSTEMTIME& time);

// --- DATE and FILETIME, without a change of zone -----------------------------------------------

// Through the calendar time; parts of a second are lost.
DATE FileTimeToDate(FILETIME time);
FILETIME DateToFileTime(DATE date);

// Minutes since 1601-01-01 00:00.
DATE MinutesToDate(std::uint32_t minutes);

// The other way: whole minutes, cut, and the low 32 bits of them.
std::uint32_t FileTimeToMinutes(FILETIME time);

// The same of a DATE, cut to whole minutes behind the platform's rounding to the nearest second.
// 0 for one that is no time from 1601 on.
std::uint32_t DateToMinutes(DATE date);

// --- Arithmetic --------------------------------------------------------------------------------

// Seconds since 1970 for the years 1971 to 2070, else 0. Kept as it is: a leap year's February
// counts one second more instead of one day, and the year count already holds its 29 February, so
// January and February of a leap year come out one day late and the rest of it one second late.
// Pinned by TimeConversionsTest.
std::int64_t DateToUnixSeconds(DATE date);

// The date plus whole minutes, through DateToUnixSeconds with all that follows from it. 0.0 for a
// date of 0.0, for a sum of 0, and where a step fails.
DATE AddMinutesToDate(DATE date, int minutes);

// Whole minutes from one DATE to the other, cut towards zero after a correction of half a second.
// Beyond 32 bits the nearest limit; 0 where a DATE is not a number.
int DateDiffMinutes(DATE from, DATE to);
