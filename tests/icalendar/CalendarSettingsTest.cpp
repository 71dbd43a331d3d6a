#include "icalendar/CalendarSettings.h"

#include <gtest/gtest.h>

#include <string>

namespace
{
std::string WithName(const std::string& name)
{
    return "<CalendarSettings><X-Root><VCalendar>" + name +
           "</VCalendar></X-Root></CalendarSettings>";
}
} // namespace

TEST(CalendarSettingsTest, TakesTheNameWithoutBlanksAndApostrophes)
{
    EXPECT_EQ(L"Work.ics", DefaultCalendarFileName(WithName("<Name>Work</Name>")));
    EXPECT_EQ(L"Work.ics", DefaultCalendarFileName(WithName("<Name>  'Work' </Name>")));
    EXPECT_EQ(L"Work.ics", DefaultCalendarFileName(WithName("<Name>''Work'''</Name>")));
}

TEST(CalendarSettingsTest, TakesAwayBlanksOnlyOutsideTheApostrophes)
{
    EXPECT_EQ(L" Work .ics", DefaultCalendarFileName(WithName("<Name>' Work '</Name>")));
    EXPECT_EQ(L"My 'own' work.ics",
              DefaultCalendarFileName(WithName("<Name>My 'own' work</Name>")));
}

TEST(CalendarSettingsTest, KeepsANameOfApostrophesAlone)
{
    // Trimming leaves a text of nothing else whole.
    EXPECT_EQ(L"''.ics", DefaultCalendarFileName(WithName("<Name>''</Name>")));
}

TEST(CalendarSettingsTest, FindsNothingWhereAnElementIsMissingOrEmpty)
{
    EXPECT_EQ(L"", DefaultCalendarFileName(""));
    EXPECT_EQ(L"", DefaultCalendarFileName("<CalendarSettings/>"));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("")));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name/>")));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name>   </Name>")));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name><b>Work</b></Name>")));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<name>Work</name>")));
    EXPECT_EQ(L"", DefaultCalendarFileName("<Settings/><Name>Work</Name>"));
    EXPECT_EQ(L"",
              DefaultCalendarFileName("<calendarsettings><X-Root><VCalendar><Name>Work</Name>"
                                      "</VCalendar></X-Root></calendarsettings>"));
}

TEST(CalendarSettingsTest, TakesTheFirstElementOfEachName)
{
    EXPECT_EQ(L"One.ics",
              DefaultCalendarFileName(WithName("<Other/><Name>One</Name><Name>Two</Name>")));
    // Only the first X-Root is looked into, although the second would have the name.
    EXPECT_EQ(L"",
              DefaultCalendarFileName("<CalendarSettings><X-Root/><X-Root><VCalendar>"
                                      "<Name>Work</Name></VCalendar></X-Root></CalendarSettings>"));
}

TEST(CalendarSettingsTest, ReadsUtf8AndEntitiesAndLineEnds)
{
    EXPECT_EQ(L"B\u00FCro & M\u00E4rz.ics",
              DefaultCalendarFileName("\xEF\xBB\xBF<?xml version=\"1.0\"?>\r\n" +
                                      WithName("<Name>\r\nB\xC3\xBCro &amp;\r\n"
                                               "  M&#xE4;rz</Name>")));
}

TEST(CalendarSettingsTest, FindsNothingInDamagedText)
{
    const std::string good = WithName("<Name>Work</Name>");
    for (std::size_t length = 0; length < good.size(); ++length)
        EXPECT_EQ(L"", DefaultCalendarFileName(good.substr(0, length))) << length;
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name>W\xFFrk</Name>")));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name a=1 a=2>Work</Name>")));
}

TEST(CalendarSettingsTest, FindsNothingInHostileText)
{
    std::string deep;
    for (int i = 0; i < 10000; ++i)
        deep += "<a>";
    EXPECT_EQ(L"", DefaultCalendarFileName(deep));
    EXPECT_EQ(L"", DefaultCalendarFileName(WithName("<Name>Work</Name>" + deep)));
    const std::string large = WithName("<Name>Work</Name>") + std::string(16 * 1024 * 1024, ' ');
    EXPECT_EQ(L"", DefaultCalendarFileName(large));
}

TEST(CalendarSettingsTest, ExpandsNoEntityOfItsOwn)
{
    const std::string laughs = "<!DOCTYPE a [<!ENTITY b \"ha\"><!ENTITY c \"&b;&b;&b;&b;\">]>";
    // The parser ends at the bracket that closes the declarations, at the outermost level.
    EXPECT_EQ(L"", DefaultCalendarFileName(laughs + WithName("<Name>&c;</Name>")));
    // A name that the parser does not know loses its ampersand and stays a text.
    EXPECT_EQ(L"c;.ics", DefaultCalendarFileName(WithName("<Name>&c;</Name>")));
}
