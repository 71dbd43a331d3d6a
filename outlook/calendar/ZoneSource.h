// Where time zones come from: the system's registry in the product, a fixed table in tests.
// Portable.
#pragma once

#include "platform/Types.h"

#include <cstdint>
#include <string>
#include <vector>

// The rules of a zone as the registry's value "TZI" holds them. Biases are minutes west of UTC.
struct ZoneRules
{
    std::int32_t biasMinutes = 0;
    std::int32_t standardBiasMinutes = 0;
    std::int32_t daylightBiasMinutes = 0;
    SYSTEMTIME standardDate{};
    SYSTEMTIME daylightDate{};
};
static_assert(sizeof(ZoneRules) == 44);

class IZoneSource
{
  public:
    virtual ~IZoneSource() = default;

    // The key name of every zone, in any order, none empty.
    virtual std::vector<std::wstring> KeyNames() const = 0;

    // False, and the rules all zero, where they cannot be read.
    [[nodiscard]] virtual bool ReadRules(const std::wstring& keyName, ZoneRules& rules) const = 0;

    // What people call the zone, such as "(UTC+01:00) Berlin"; empty where that cannot be read.
    virtual std::wstring Display(const std::wstring& keyName) const = 0;

    // The zone that the machine is set to; all zero where that cannot be had.
    virtual TIME_ZONE_INFORMATION Machine() const = 0;
};
