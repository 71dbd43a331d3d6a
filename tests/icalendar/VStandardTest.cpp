#include "icalendar/VStandard.h"

#include <gtest/gtest.h>

namespace
{

TEST(VStandardTest, KeepsItsFourPropertiesAsTheyStand)
{
    CVStandard standard;
    EXPECT_EQ(standard.SetProperty(L"TZOFFSETTO", L" +0100 "), 1);
    EXPECT_EQ(standard.SetProperty(L"TZOFFSETFROM", L"\\+0200"), 1);
    EXPECT_EQ(standard.SetProperty(L"TZNAME", L"Mitteleurop\u00E4ische Zeit"), 1);
    EXPECT_EQ(standard.SetProperty(L"DTSTART", L"no date"), 1);
    EXPECT_EQ(standard.start, L"no date");
    EXPECT_EQ(standard.name, L"Mitteleurop\u00E4ische Zeit");
    EXPECT_EQ(standard.offsetFrom, L"\\+0200");
    EXPECT_EQ(standard.offsetTo, L" +0100 ");
    EXPECT_EQ(standard.GetProperties(),
              L"DTSTART:no date\r\n"
              L"TZNAME:Mitteleurop\u00E4ische Zeit\r\n"
              L"TZOFFSETFROM:\\+0200\r\n"
              L"TZOFFSETTO: +0100 \r\n");
}

TEST(VStandardTest, DropsPropertiesWithParametersAndUnknownOnes)
{
    CVStandard standard;
    EXPECT_EQ(standard.SetProperty(L"DTSTART;VALUE=DATE", L"20000101"), 1);
    EXPECT_EQ(standard.SetProperty(L"TZNAME;LANGUAGE=en", L"x"), 1);
    EXPECT_EQ(standard.SetProperty(L"RRULE", L"FREQ=YEARLY"), 1);
    EXPECT_EQ(standard.SetProperty(L"tzoffsetto", L"+0100"), 1);
    EXPECT_EQ(standard.GetProperties(), L"");
}

TEST(VStandardTest, WritesOnlyWhatIsNotEmpty)
{
    CVStandard standard;
    standard.offsetTo = L"+0100";
    EXPECT_EQ(standard.GetProperties(), L"TZOFFSETTO:+0100\r\n");
}

struct OffsetRow
{
    const wchar_t* text;
    std::int32_t minutes;
};

TEST(VStandardTest, ReadsTheOffsetFromItsPositions)
{
    // clang-format off
    const OffsetRow rows[] = {
        {L"+0530",   330},
        {L"-0800",   -480},
        {L"+0000",   0},
        {L"-0030",   -30},
        {L"x0100",   60},   // only a minus counts as a sign
        {L"+013045", 90},   // seconds are ignored
        {L"-01304",  -90},
        {L"+1",      0},
        {L"0530",    0},    // four characters
        {L"",        0},
        {L"+abcd",   0},
        {L"+9999",   6039},
        {L"-1-1-1",  -61},  // "1-" is one hour and one minute
    };
    // clang-format on
    for (const OffsetRow& row : rows)
    {
        CVStandard standard;
        standard.offsetTo = row.text;
        EXPECT_EQ(standard.GetOffsetMinutes(), row.minutes) << row.text;
    }
}

} // namespace
