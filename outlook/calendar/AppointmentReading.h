// From a message of a mail store to an appointment object.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "outlook/calendar/ZoneTable.h"
#include "outlook/store/PropertyView.h"
#include "outlook/store/Proxcy.h"
#include "outlook/store/RichEditHelper.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <memory>

// What a table has for the reading of its messages.
struct AppointmentReading
{
    IMAPIProp* message; // the open message; may be null
    CNProxcy& proxy;
    const IZoneSource& zones;
    const ZoneTable& zoneTable;
    bool hasZoneDefinition; // the column of the zone definition was asked for
    // Of the table; made where a body has to be converted for the first time.
    std::unique_ptr<CRichEditHelper>& converter;
};

// Puts the values, by the positions of AppointmentColumn, into the item. A value that is absent, or
// of another type than its property has, leaves the object's initial one; only Reminder and
// TimeZone are always put. Results of the puts are not looked at. An item that is no appointment
// stays as it is.
//   StartTime, EndTime: UTC; of an all-day appointment local in the message's zone.
//   Reminder:           minutes before the start; 0xFFFFFFFF where the reminder is not set or its
//                       minutes are absent.
//   Description:        PR_BODY, also an empty one; without it what the compressed RTF converts to.
// Throws std::bad_alloc.
void FillAppointment(INEntityItem& item,
                     const PropertyView& values,
                     const AppointmentReading& reading);
