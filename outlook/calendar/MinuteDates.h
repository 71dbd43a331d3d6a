// DATEs from a column of minutes since 1601 whose times of day mostly agree, such as the starts of
// a series' exceptions. Portable.
#pragma once

#include "service/TimeConversions.h"

#include <bit>
#include <cstdint>

// Gives bit for bit what MinutesToDate gives, and asks the platform for one of a run of times
// alone: the others stand whole days from it. That sum is exact as long as both DATEs have the same
// exponent, so that the platform's rounding of the time of day is the same for each.
class MinuteDates
{
  public:
    // The DATE of one time of the column.
    DATE DateOf(std::uint32_t minutes)
    {
        const std::uint32_t day = minutes / kMinutesPerDay;
        const std::uint32_t timeOfDay = minutes % kMinutesPerDay;
        const int scale = day > kDayOfZeroDate ? std::bit_width(day - kDayOfZeroDate) : 0;
        if (scale == 0 || scale != m_scale || timeOfDay != m_timeOfDay)
        {
            m_scale = scale;
            m_timeOfDay = timeOfDay;
            m_day = day;
            m_date = MinutesToDate(minutes);
        }
        return m_date + (static_cast<DATE>(day) - static_cast<DATE>(m_day));
    }

  private:
    static constexpr std::uint32_t kMinutesPerDay = 1440;
    static constexpr std::uint32_t kDayOfZeroDate = 109205; // 1899-12-30

    // The time that the platform converted last; scale 0: none that others can stand on.
    int m_scale = 0;
    std::uint32_t m_timeOfDay = 0;
    std::uint32_t m_day = 0;
    DATE m_date = 0.0;
};
