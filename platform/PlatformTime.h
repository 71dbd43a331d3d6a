// The platform's conversions between DATE, SYSTEMTIME and FILETIME under their own names: the
// system's calls on Windows, stand-ins with the same results elsewhere. Each returns zero and
// leaves its output untouched where the input is no time that it can express.
#pragma once

#include "platform/Types.h"

#ifdef _WIN32

#include "platform/WindowsHeaders.h"

#else

// The date may be up to the 31st in any month (what the month lacks rolls over) and day 0 is the
// last day of the month before; years below 50 count from 2000, those from 50 to 99 from 1900.
// Milliseconds are ignored. Years 100 to 9999.
int SystemTimeToVariantTime(SYSTEMTIME* time, double* date);

// To the nearest second, so the milliseconds are 0. DATEs of the years 100 to 9999.
int VariantTimeToSystemTime(double date, SYSTEMTIME* time);

// Milliseconds are cut, not rounded. The value must be below 2^63.
int FileTimeToSystemTime(const FILETIME* fileTime, SYSTEMTIME* time);

// Exact days only. The day of week is ignored. Years 1601 to 30827.
int SystemTimeToFileTime(const SYSTEMTIME* time, FILETIME* fileTime);

#endif
