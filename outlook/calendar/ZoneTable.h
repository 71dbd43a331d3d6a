// From the rules of a zone to its name. Portable.
#pragma once

#include "outlook/calendar/ZoneSource.h"

#include <map>
#include <string>

// By key name, in the order of plain character codes.
using ZoneTable = std::map<std::wstring, ZoneRules>;

// Every zone of the source; one whose rules cannot be read has rules of zeros.
ZoneTable LoadZoneTable(const IZoneSource& source);

// The lowest key name with exactly these rules, else the lowest with this bias, else "UTC".
std::wstring FindZoneName(const ZoneTable& table, const ZoneRules& rules);
