// Conversions between UTC and local time by a zone's rules; null stands for the machine's own zone.
// A failed platform call leaves 0.0 or zero.
#pragma once

#include "platform/WindowsHeaders.h"

// Each converts by the rules of the zone for that time.
FILETIME LocalDateToUtcFileTime(DATE localDate, const TIME_ZONE_INFORMATION* zone);
DATE UtcFileTimeToLocalDate(FILETIME utcTime, const TIME_ZONE_INFORMATION* zone);
DATE UtcDateToLocalDate(DATE utcDate, const TIME_ZONE_INFORMATION* zone);
