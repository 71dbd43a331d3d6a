// A zone that is always the same number of hours east of UTC.
#pragma once

#include "client/core/CivilTime.h"

class FixedZone : public pim::ILocalZone
{
  public:
    explicit FixedZone(int hoursEast) : m_secondsEast(hoursEast * 3600) {}
    pim::CivilTime LocalFromUtc(const pim::CivilTime& utc) const override
    {
        return AddSeconds(utc, m_secondsEast).value_or(utc);
    }
    pim::CivilTime UtcFromLocal(const pim::CivilTime& local) const override
    {
        return AddSeconds(local, -m_secondsEast).value_or(local);
    }

  private:
    int m_secondsEast;
};

// DATE values of 2024, worked out by hand: 2024-01-01 is day 45292 (124 years of 365 days and 30
// leap days behind 1899-12-30, plus the two days to 1900-01-01), 2024-05-01 is 121 days later.
inline constexpr DATE kMay1 = 45413.0;
inline constexpr DATE kHour = 1.0 / 24.0;
