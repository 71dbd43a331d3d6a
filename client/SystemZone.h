// The time zone that this machine is set to, with the daylight saving of each date.
#pragma once

#include "client/core/CivilTime.h"

namespace pim
{
class SystemZone : public ILocalZone
{
  public:
    // Times that the system cannot convert, as those before 1601, come back unchanged.
    CivilTime LocalFromUtc(const CivilTime& utc) const override;
    CivilTime UtcFromLocal(const CivilTime& local) const override;
};

// What people call the zone of that key, such as "(UTC+01:00) Berlin"; none where this system has
// no such zone.
std::optional<std::wstring> ZoneDisplay(const std::wstring& keyName);
} // namespace pim
