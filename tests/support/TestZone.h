// The zones in which tests run, by the variable TZ that the test runner sets.
#pragma once

#include <cstdlib>
#include <stdexcept>
#include <string>
#include <string_view>

// What the zone of the running test adds to local time for UTC, daylight saving aside: worked out
// by hand from the names of the zones. Throws std::runtime_error for a zone that is not listed.
inline int TestZoneBiasMinutes()
{
    constexpr struct
    {
        std::string_view zone;
        int minutes;
    } kZones[] = {
        {"", 0},
        {"UTC0", 0},
        {"NST3:30NDT,M3.2.0,M11.1.0", 3 * 60 + 30}, // saves from March to November
        {"AEST-10AEDT,M10.1.0,M4.1.0/3", -10 * 60}, // saves from October to April
    };
    const char* const value = std::getenv("TZ");
    const std::string_view present = value ? value : "";
    for (const auto& row : kZones)
        if (row.zone == present)
            return row.minutes;
    throw std::runtime_error("no known zone: " + std::string(present));
}

// The same in days, and in units of 100 ns.
inline double TestZoneBiasDays()
{
    return TestZoneBiasMinutes() / 60.0 / 24.0;
}
inline long long TestZoneBiasUnits()
{
    return TestZoneBiasMinutes() * 600'000'000ll;
}
