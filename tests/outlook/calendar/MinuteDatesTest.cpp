#include "outlook/calendar/MinuteDates.h"

#include "service/TimeConversions.h"

#include <gtest/gtest.h>

#include <random>

namespace
{
constexpr std::uint32_t kDay = 1440;
constexpr std::uint32_t kZeroDate = 109205; // 1899-12-30

// Bit for bit, also where a DATE is 0.0.
void ExpectSame(MinuteDates& dates, std::uint32_t minutes)
{
    EXPECT_EQ(MinutesToDate(minutes), dates.DateOf(minutes)) << minutes;
}
} // namespace

TEST(MinuteDatesTest, GivesEveryTimeOfAColumn)
{
    MinuteDates dates;
    // One time of day, over the days at which a DATE changes its exponent.
    for (const std::uint32_t timeOfDay : {0u, 1u, 570u, 601u, 1439u})
        for (std::uint32_t day = 0; day < 4'000'000'000u / kDay; day += 977)
            ExpectSame(dates, day * kDay + timeOfDay);
}

TEST(MinuteDatesTest, GivesTheDaysBesideAChangeOfTheExponentEitherWay)
{
    MinuteDates dates;
    for (int power = 0; power <= 20; ++power)
        for (const std::uint32_t timeOfDay : {1u, 570u, 601u, 1439u})
            for (const int day : {-2, -1, 0, 1, 0, -1, -2})
            {
                const std::uint32_t days = kZeroDate + (1u << power) + static_cast<unsigned>(day);
                ExpectSame(dates, days * kDay + timeOfDay);
            }
}

TEST(MinuteDatesTest, GivesTimesOfAnyOrder)
{
    std::mt19937 random(5);
    MinuteDates dates;
    for (int i = 0; i < 20'000; ++i)
    {
        const std::uint32_t day = random() % 2'900'000;
        // A few times of day, so that most are met again.
        ExpectSame(dates, day * kDay + 570 * (random() % 3));
        ExpectSame(dates, static_cast<std::uint32_t>(random()));
    }
}

TEST(MinuteDatesTest, GivesDaysAroundTheFirst)
{
    MinuteDates dates;
    EXPECT_EQ(-109205.0, dates.DateOf(0));
    EXPECT_EQ(-109204.0, dates.DateOf(kDay));
    EXPECT_EQ(-1.0, dates.DateOf((kZeroDate - 1) * kDay));
    EXPECT_EQ(0.0, dates.DateOf(kZeroDate * kDay));
    EXPECT_EQ(1.0, dates.DateOf((kZeroDate + 1) * kDay));
    EXPECT_EQ(45356.25, dates.DateOf((kZeroDate + 45356) * kDay + 360)); // 2024-03-05 06:00
    EXPECT_EQ(45357.25, dates.DateOf((kZeroDate + 45357) * kDay + 360));
    EXPECT_EQ(-1.25, dates.DateOf((kZeroDate - 1) * kDay + 360));
}
