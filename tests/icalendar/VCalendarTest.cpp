#include "icalendar/VCalendar.h"

#include <gtest/gtest.h>

namespace
{

TEST(VCalendarTest, WritesItsFourFixedLinesWhateverItRead)
{
    CVCalendar calendar;
    EXPECT_EQ(calendar.GetName(), L"VCALENDAR");
    EXPECT_EQ(calendar.SetProperty(L"PRODID", L"another"), 1);
    EXPECT_EQ(calendar.GetProperties(),
              L"VERSION:2.0\r\n"
              L"PRODID:-//Surezut//Windows Calendar 1.0//EN\r\n"
              L"CALSCALE:GREGORIAN\r\n"
              L"METHOD:PUBLISH\r\n");
}

} // namespace
