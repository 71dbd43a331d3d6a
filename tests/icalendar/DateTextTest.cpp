#include "icalendar/DateText.h"

#include "support/SystemTimes.h"

#include <gtest/gtest.h>

namespace
{

// year, month, day, hour, minute, second as text; every other field has to be as given.
std::wstring Digits(const SYSTEMTIME& time)
{
    std::wstring text;
    for (const unsigned field :
         {time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute, time.wSecond})
        text += (text.empty() ? L"" : L" ") + std::to_wstring(field);
    return text;
}

SYSTEMTIME Filled()
{
    SYSTEMTIME time{};
    time.wYear = 1;
    time.wMonth = 2;
    time.wDayOfWeek = 3;
    time.wDay = 4;
    time.wHour = 5;
    time.wMinute = 6;
    time.wSecond = 7;
    time.wMilliseconds = 8;
    return time;
}

std::wstring Parsed(std::wstring_view text)
{
    SYSTEMTIME time = Filled();
    ParseDateTime(text, time);
    EXPECT_EQ(time.wDayOfWeek, 3);
    EXPECT_EQ(time.wMilliseconds, 0);
    return Digits(time);
}

TEST(DateTextTest, ReadsTheDigitsByTheirPositions)
{
    EXPECT_EQ(Parsed(L"20060508T101530"), L"2006 5 8 10 15 30");
    EXPECT_EQ(Parsed(L"20060508T101530Z"), L"2006 5 8 10 15 30");
    EXPECT_EQ(Parsed(L"20060508x101530 and more"), L"2006 5 8 10 15 30");
}

TEST(DateTextTest, LeavesWhatAShortTextDoesNotReach)
{
    EXPECT_EQ(Parsed(L""), L"1 2 4 5 6 7");
    EXPECT_EQ(Parsed(L"2006050"), L"1 2 4 5 6 7");
    EXPECT_EQ(Parsed(L"20060508"), L"2006 5 8 5 6 7");
    EXPECT_EQ(Parsed(L"20060508T10153"), L"2006 5 8 5 6 7");
}

TEST(DateTextTest, CountsTextWithoutDigitsAsZero)
{
    EXPECT_EQ(Parsed(L"abcdefghijklmno"), L"0 0 0 0 0 0");
    EXPECT_EQ(Parsed(L"2006-05-08T10:15"), L"2006 0 5 8 10 0");
}

TEST(DateTextTest, TakesANegativeNumberAsThe16BitFieldDoes)
{
    EXPECT_EQ(Parsed(L"-001-1-2"), L"65535 65535 65534 5 6 7");
}

TEST(DateTextTest, WritesADateTimeAndADate)
{
    EXPECT_EQ(FormatDateTime(Time(2006, 5, 8, 1, 2, 3)), L"20060508T010203");
    EXPECT_EQ(FormatDate(Time(2006, 5, 8, 1, 2, 3)), L"20060508");
    EXPECT_EQ(FormatDateTime(Time(12345, 12, 31, 23, 59, 59)), L"123451231T235959");
}

TEST(DateTextTest, WritesAYearBelow101BehindALiteralCentury)
{
    EXPECT_EQ(FormatDateTime(SYSTEMTIME{}), L"20000000T000000");
    EXPECT_EQ(FormatDate(SYSTEMTIME{}), L"20000000");
    EXPECT_EQ(FormatDate(Time(7, 1, 2)), L"20070102");
    EXPECT_EQ(FormatDateTime(Time(99, 1, 2)), L"20990102T000000");
    EXPECT_EQ(FormatDate(Time(100, 1, 2)), L"201000102");
    EXPECT_EQ(FormatDateTime(Time(100, 1, 2)), L"201000102T000000");
    EXPECT_EQ(FormatDate(Time(101, 1, 2)), L"01010102");
}

TEST(DateTextTest, WritesFieldsThatDoNotFitInFull)
{
    EXPECT_EQ(FormatDateTime(Time(65535, 65535, 100, 101, 102, 103)), L"6553565535100T101102103");
}

TEST(DateTextTest, WritesTheLastDateOfARuleWithItsYearAsItIs)
{
    EXPECT_EQ(FormatUntil(Time(2006, 5, 8, 1, 2, 3)), L"20060508T010203Z");
    EXPECT_EQ(FormatUntil(Time(7, 1, 2)), L"00070102T000000Z");
}
} // namespace
