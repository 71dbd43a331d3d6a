// Date texts of an .ics file. Portable. No zone is applied: the record holds the digits as they
// stand.
#pragma once

#include "platform/Types.h"

#include <string>
#include <string_view>

// Reads the digits by their positions: year, month and day from a text of 8 or more code units, and
// hour, minute and second from one of 15 or more. Milliseconds become 0 in every case, the day of
// week is never written, and what a short text does not reach stays as it was. Text that is no
// number counts as 0; a "Z" at the end is ignored.
void ParseDateTime(std::wstring_view text, SYSTEMTIME& time);

// YYYYMMDDThhmmss. Kept as it is: a year below 101 is written in two digits behind a literal "20",
// so that the zero record gives 20000000T000000 and the year 100 five digits. Pinned by
// DateTextTest.
std::wstring FormatDateTime(const SYSTEMTIME& time);

// YYYYMMDD, with the same rule for the year.
std::wstring FormatDate(const SYSTEMTIME& time);

// YYYYMMDDThhmmssZ with the year as it is, whatever it is: the form of a rule's last date.
std::wstring FormatUntil(const SYSTEMTIME& time);
