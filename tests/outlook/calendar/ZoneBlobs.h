// The zone blobs of a message, field by field after the published format.
#pragma once

#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"

#include <cstdint>
#include <string>
#include <vector>

inline void AddDate(BlobFields& blob, const SYSTEMTIME& date)
{
    blob.U16(date.wYear).U16(date.wMonth).U16(date.wDayOfWeek).U16(date.wDay);
    blob.U16(date.wHour).U16(date.wMinute).U16(date.wSecond).U16(date.wMilliseconds);
}

// The 48 bytes of a structure; the two years as a client may have filled them.
inline std::vector<std::byte> Structure(const ZoneRules& rules, std::uint32_t years = 0)
{
    BlobFields blob;
    blob.U32(static_cast<std::uint32_t>(rules.biasMinutes));
    blob.U32(static_cast<std::uint32_t>(rules.standardBiasMinutes));
    blob.U32(static_cast<std::uint32_t>(rules.daylightBiasMinutes));
    blob.U16(years);
    AddDate(blob, rules.standardDate);
    blob.U16(years);
    AddDate(blob, rules.daylightDate);
    return blob.Bytes();
}

inline std::vector<std::byte> Definition(const std::string& name,
                                         const std::vector<ZoneRules>& rules,
                                         std::uint32_t version = 2)
{
    BlobFields blob;
    blob.U8(version).U8(1).U16(0).U16(name.empty() ? 0 : 2);
    if (!name.empty())
        blob.U16(static_cast<std::uint32_t>(name.size()));
    for (const char letter : name)
        blob.U16(static_cast<std::uint8_t>(letter));
    blob.U16(static_cast<std::uint32_t>(rules.size()));
    for (const ZoneRules& rule : rules)
    {
        blob.U8(2).U8(1).U16(62).U16(0);
        AddDate(blob, {2030, 1, 2, 1, 0, 0, 0, 0}); // a start that lies ahead
        blob.U32(static_cast<std::uint32_t>(rule.biasMinutes));
        blob.U32(static_cast<std::uint32_t>(rule.standardBiasMinutes));
        blob.U32(static_cast<std::uint32_t>(rule.daylightBiasMinutes));
        AddDate(blob, rule.standardDate);
        AddDate(blob, rule.daylightDate);
    }
    return blob.Bytes();
}
