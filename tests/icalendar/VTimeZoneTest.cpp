#include "icalendar/VTimeZone.h"

#include <gtest/gtest.h>

namespace
{

TEST(VTimeZoneTest, DeletesEveryBackslashOfItsTzid)
{
    CVTimeZone zone;
    EXPECT_EQ(zone.SetProperty(L"TZID", L"Eastern\\, US"), 1);
    EXPECT_EQ(zone.tzid, L"Eastern, US");
    zone.SetProperty(L"TZID", L"\\\\a\\b\\");
    EXPECT_EQ(zone.tzid, L"ab");
    EXPECT_EQ(zone.Id(), L"ab");
}

TEST(VTimeZoneTest, DropsEveryOtherProperty)
{
    CVTimeZone zone;
    EXPECT_EQ(zone.SetProperty(L"tzid", L"a"), 1);
    EXPECT_EQ(zone.SetProperty(L"TZID;X=1", L"a"), 1);
    EXPECT_EQ(zone.SetProperty(L"X-LIC-LOCATION", L"a"), 1);
    EXPECT_EQ(zone.tzid, L"");
}

TEST(VTimeZoneTest, WritesItsTzidWithoutPuttingABackslashBack)
{
    CVTimeZone zone;
    zone.SetProperty(L"TZID", L"Eastern\\, US");
    EXPECT_EQ(zone.GetProperties(), L"TZID:Eastern, US\r\n");
}

TEST(VTimeZoneTest, IsNotWrittenWithoutATzid)
{
    CVObject root;
    for (const wchar_t* line :
         {L"BEGIN:VTIMEZONE", L"BEGIN:STANDARD", L"TZNAME:lost", L"END:STANDARD", L"END:VTIMEZONE"})
        root.AddLine(line);
    ASSERT_TRUE(root.FirstChild());
    EXPECT_EQ(root.FirstChild()->GetProperties(), L"");
    std::wstring out;
    root.FirstChild()->Serialize(out);
    EXPECT_EQ(out, L"");
}

} // namespace
