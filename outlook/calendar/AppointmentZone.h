// Which zone stands for an appointment at each step, and the zone structure that is written with
// it. Portable.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "outlook/calendar/ZoneTable.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

// The zone properties of a message; nothing where one is absent.
struct MessageZone
{
    std::optional<std::span<const std::byte>> structure;
    std::optional<std::span<const std::byte>> definition;
};

// The zone that a message is read in. It starts from the machine's zone; a structure of 48 bytes or
// more puts its rules there and the name that the table has for them, as StandardName alone. A
// shorter one changes nothing. Only where the structure is absent does the definition count: its
// first rule, if there is one, and its key name, if there is one, as both names.
// Names are cut at 31 units.
TIME_ZONE_INFORMATION ZoneOfMessage(const MessageZone& message,
                                    const ZoneTable& table,
                                    const IZoneSource& source);

// The zone in which the start of a recurrence is local: that of the name where its rules can be
// read, else the machine's.
// Kept as it is: of a named zone both transitions stand at the date where daylight time begins, so
// that its daylight bias holds nearly all year. Pinned by AppointmentZoneTest.
TIME_ZONE_INFORMATION ZoneOfRecurrence(const std::optional<std::wstring>& keyName,
                                       const IZoneSource& source);

// The 48 bytes of the zone structure: of the name where its rules can be read, else of the
// machine's zone. Throws std::bad_alloc.
std::vector<std::byte> ZoneStructureBytes(const std::optional<std::wstring>& keyName,
                                          const IZoneSource& source);
