// The recurrence of an appointment object from and to the blob that a mail store keeps of it. What
// the blob holds is RecurrencePattern's; these fetch and put the object's properties around it.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

// Puts RecurringInfo. Subject and Place must have been put before: exceptions that override neither
// take them over as they stand now. Nothing is put where the blob is refused; whether the put works
// is not looked at.
void ParseRecurrenceBlob(INAppointment& appointment, std::span<const std::byte> blob);

// The blob of the appointment's RecurringInfo, in the zone that TimeZone names, else the machine's.
//   recurrenceType: 1 daily, 2 weekly, 3 monthly, 4 yearly, as the store keeps it beside the blob;
//                   0 where no blob is made.
// Returns: the blob's length in bytes; 0, and an empty blob, where there is no recurrence, where
//          RecurringInfo, StartTime, EndTime or AllDay cannot be read, where the end is not behind
//          the start, and where the rule cannot be written (see EncodeRecurrencePattern).
// Throws std::bad_alloc.
std::size_t BuildRecurrenceBlob(INAppointment& appointment,
                                const IZoneSource& zones,
                                std::vector<std::byte>& blob,
                                std::uint32_t& recurrenceType);
