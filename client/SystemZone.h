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
} // namespace pim
