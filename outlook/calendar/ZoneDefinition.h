// Reads the zone that an appointment was made in: the blob that [MS-OXOCAL] publishes as
// TimeZoneDefinition. Portable.
#pragma once

#include "outlook/calendar/ZoneSource.h"

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <vector>

struct ZoneDefinition
{
    std::wstring keyName; // empty where the blob has none
    std::vector<ZoneRules> rules;
};

// Nothing for a blob of fewer than 6 bytes or of other versions, and for one that ends before its
// rule count or within the first 50 bytes of a rule. A rule that is cut behind those has zeros for
// what is missing. When each rule begins to hold is not looked at, nor are bytes behind the last.
// Throws std::bad_alloc.
std::optional<ZoneDefinition> ParseZoneDefinition(std::span<const std::byte> blob);
