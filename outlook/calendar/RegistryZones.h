// The time zones of the system: its registry under HKEY_LOCAL_MACHINE, and the zone that it is set
// to. Nothing is kept: each call reads again.
#pragma once

#include "outlook/calendar/ZoneSource.h"

class RegistryZones final : public IZoneSource
{
  public:
    std::vector<std::wstring> KeyNames() const override;
    // A value "TZI" of fewer than 44 bytes is filled with zeros; a longer one cannot be read.
    [[nodiscard]] bool ReadRules(const std::wstring& keyName, ZoneRules& rules) const override;
    // The value "Display", of at most 260 characters with its end.
    std::wstring Display(const std::wstring& keyName) const override;
    TIME_ZONE_INFORMATION Machine() const override;
};
