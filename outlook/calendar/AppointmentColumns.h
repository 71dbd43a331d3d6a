// The properties that are read of each appointment in a mail store.
#pragma once

#include "outlook/store/Proxcy.h"
#include "platform/WindowsHeaders.h"

#include <vector>

// Their positions.
enum AppointmentColumn : ULONG
{
    kColumnLastModified,
    kColumnSubject,
    kColumnReminderSet,
    kColumnReminderMinutes,
    kColumnPlace,
    kColumnIsRecurring,
    kColumnRecurrence,
    kColumnZoneDescription,
    kColumnStart,
    kColumnEnd,
    kColumnIsAllDay,
    kColumnBusyStatus,
    kColumnBody,
    kColumnZoneStructure,
    kColumnStartZone, // this and the next one only where the store knows both
    kColumnEndZone,
    kAppointmentColumns
};

struct AppointmentTags
{
    // The first 14 columns or all 16; of a name that the store does not know it is the tag for
    // that, which reads as absent.
    std::vector<ULONG> tags;
    bool hasZoneDefinition = false; // the store knows the names of both zone definitions
};

// Looks the names up in the folder, without creating any.
// Throws std::bad_alloc.
AppointmentTags FindAppointmentTags(IMAPIProp& folder, CNProxcy& proxy);
