// The fields that the binary forms of a zone share. Portable.
#pragma once

#include "outlook/calendar/ZoneSource.h"
#include "platform/ByteReader.h"
#include "platform/ByteWriter.h"

// The eight numbers of a SYSTEMTIME, in the order in which they stand.
inline constexpr std::uint16_t SYSTEMTIME::*kDateFields[] = {&SYSTEMTIME::wYear,
                                                             &SYSTEMTIME::wMonth,
                                                             &SYSTEMTIME::wDayOfWeek,
                                                             &SYSTEMTIME::wDay,
                                                             &SYSTEMTIME::wHour,
                                                             &SYSTEMTIME::wMinute,
                                                             &SYSTEMTIME::wSecond,
                                                             &SYSTEMTIME::wMilliseconds};

// Each reads or writes its fields where they stand next; the status stays with the cursor.
inline void ReadDate(ByteReader& in, SYSTEMTIME& date)
{
    for (const auto field : kDateFields)
        in.Read(date.*field);
}

// See ReadDate.
inline void WriteDate(ByteWriter& out, const SYSTEMTIME& date)
{
    for (const auto field : kDateFields)
        out.Write<std::uint16_t>(date.*field);
}

// The three biases, in minutes.
inline void ReadBiases(ByteReader& in, ZoneRules& rules)
{
    in.Read(rules.biasMinutes);
    in.Read(rules.standardBiasMinutes);
    in.Read(rules.daylightBiasMinutes);
}

// See ReadBiases.
inline void WriteBiases(ByteWriter& out, const ZoneRules& rules)
{
    out.Write<std::int32_t>(rules.biasMinutes);
    out.Write<std::int32_t>(rules.standardBiasMinutes);
    out.Write<std::int32_t>(rules.daylightBiasMinutes);
}
