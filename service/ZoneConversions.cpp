#include "service/ZoneConversions.h"

#include "service/TimeConversions.h"

namespace
{
// The caller's zone, or the machine's own in *ownZone; null where that cannot be had.
const TIME_ZONE_INFORMATION* ZoneOrOwn(const TIME_ZONE_INFORMATION* zone,
                                       TIME_ZONE_INFORMATION& ownZone)
{
    if (zone)
        return zone;
    return GetTimeZoneInformation(&ownZone) != TIME_ZONE_ID_INVALID ? &ownZone : nullptr;
}

DATE LocalDateOf(const SYSTEMTIME& utcTime, const TIME_ZONE_INFORMATION* zone)
{
    TIME_ZONE_INFORMATION ownZone{};
    const TIME_ZONE_INFORMATION* const rules = ZoneOrOwn(zone, ownZone);
    SYSTEMTIME localTime{};
    if (!rules || !SystemTimeToTzSpecificLocalTime(rules, &utcTime, &localTime))
        return 0.0;
    return SystemTimeToDate(localTime);
}
} // namespace

FILETIME LocalDateToUtcFileTime(DATE localDate, const TIME_ZONE_INFORMATION* zone)
{
    TIME_ZONE_INFORMATION ownZone{};
    const TIME_ZONE_INFORMATION* const rules = ZoneOrOwn(zone, ownZone);
    SYSTEMTIME localTime{};
    SYSTEMTIME utcTime{};
    FILETIME utcFileTime{};
    if (!rules || !DateToSystemTime(localDate, localTime) ||
        !TzSpecificLocalTimeToSystemTime(rules, &localTime, &utcTime) ||
        !SystemTimeToFileTime(&utcTime, &utcFileTime))
        return {};
    return utcFileTime;
}

DATE UtcFileTimeToLocalDate(FILETIME utcTime, const TIME_ZONE_INFORMATION* zone)
{
    SYSTEMTIME calendarTime{};
    return FileTimeToSystemTime(&utcTime, &calendarTime) ? LocalDateOf(calendarTime, zone) : 0.0;
}

DATE UtcDateToLocalDate(DATE utcDate, const TIME_ZONE_INFORMATION* zone)
{
    SYSTEMTIME calendarTime{};
    return DateToSystemTime(utcDate, calendarTime) ? LocalDateOf(calendarTime, zone) : 0.0;
}
