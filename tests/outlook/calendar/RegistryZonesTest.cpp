// The system's registry as the source of zones: a sandbox for what is odd, the prefix's own keys
// for what is real. The rules of the real zones are those that their countries publish.
#include "outlook/calendar/RegistryZones.h"

#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/ZoneTable.h"
#include "platform/WindowsHeaders.h"
#include "support/RegistrySandbox.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
const std::wstring kZones = L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\Time Zones";

bool Same(const ZoneRules& left, const ZoneRules& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}
} // namespace

TEST(RegistryZonesTest, ReadsTheSystemsZones)
{
    const RegistryZones zones;
    const ZoneTable table = LoadZoneTable(zones);
    EXPECT_GT(table.size(), 100u);
    ZoneRules rules;
    // No summer time, although a bias for it stands there.
    ZoneRules india = kIndia;
    india.daylightBiasMinutes = -60;
    ASSERT_TRUE(zones.ReadRules(L"India Standard Time", rules));
    EXPECT_TRUE(Same(rules, india));
    EXPECT_EQ(FindZoneName(table, FixedRules(-330)), L"India Standard Time");
    ASSERT_TRUE(zones.ReadRules(L"Eastern Standard Time", rules));
    EXPECT_TRUE(Same(rules, kEastern));
    EXPECT_EQ(table.count(L"W. Europe Standard Time"), 1u);
    EXPECT_FALSE(zones.Display(L"W. Europe Standard Time").empty());
}

TEST(RegistryZonesTest, FindsNoZoneOfAnotherName)
{
    const RegistryZones zones;
    for (const wchar_t* const name : {L"", L"Atlantis", L"\\", L"India Standard Time\\Nothing"})
    {
        ZoneRules rules = kEastern;
        EXPECT_FALSE(zones.ReadRules(name, rules));
        EXPECT_TRUE(Same(rules, ZoneRules{}));
        EXPECT_EQ(zones.Display(name), L"");
    }
}

TEST(RegistryZonesTest, TellsTheMachinesZone)
{
    TIME_ZONE_INFORMATION expected{};
    ASSERT_NE(GetTimeZoneInformation(&expected), TIME_ZONE_ID_INVALID);
    const TIME_ZONE_INFORMATION zone = RegistryZones().Machine();
    EXPECT_EQ(std::memcmp(&zone, &expected, sizeof(zone)), 0);
}

TEST(RegistryZonesTest, FillsAShortValueAndRefusesALongOne)
{
    RegistrySandbox sandbox(HKEY_LOCAL_MACHINE);
    unsigned char bytes[45];
    std::memset(bytes, 0x11, sizeof(bytes));
    sandbox.SetValue(kZones + L"\\Short", L"TZI", REG_BINARY, bytes, 6);
    sandbox.SetValue(kZones + L"\\Whole", L"TZI", REG_BINARY, bytes, 44);
    sandbox.SetValue(kZones + L"\\Long", L"TZI", REG_BINARY, bytes, 45);
    sandbox.AddKey(kZones + L"\\Empty");

    const RegistryZones zones;
    ZoneRules rules = kEastern;
    ASSERT_TRUE(zones.ReadRules(L"Short", rules));
    EXPECT_EQ(rules.biasMinutes, 0x11111111);
    EXPECT_EQ(rules.standardBiasMinutes, 0x1111);
    EXPECT_EQ(rules.daylightBiasMinutes, 0);
    EXPECT_EQ(rules.daylightDate.wMilliseconds, 0);
    ASSERT_TRUE(zones.ReadRules(L"Whole", rules));
    EXPECT_EQ(rules.daylightDate.wMilliseconds, 0x1111);
    EXPECT_FALSE(zones.ReadRules(L"Long", rules));
    EXPECT_TRUE(Same(rules, ZoneRules{}));
    EXPECT_FALSE(zones.ReadRules(L"Empty", rules));

    // All four are in the table, the unreadable ones with zeros.
    const ZoneTable table = LoadZoneTable(zones);
    EXPECT_EQ(table.size(), 4u);
    EXPECT_EQ(FindZoneName(table, FixedRules(0)), L"Empty");
    EXPECT_TRUE(Same(table.at(L"Long"), ZoneRules{}));
}

TEST(RegistryZonesTest, ReadsDisplayTextsOfUpTo260Characters)
{
    RegistrySandbox sandbox(HKEY_LOCAL_MACHINE);
    sandbox.SetText(kZones + L"\\Usual", L"Display", L"(UTC+01:00) Berlin");
    sandbox.SetText(kZones + L"\\Empty", L"Display", L"");
    sandbox.SetText(kZones + L"\\Full", L"Display", std::wstring(259, L'd'));
    sandbox.SetText(kZones + L"\\Long", L"Display", std::wstring(260, L'd'));
    const RegistryZones zones;
    EXPECT_EQ(zones.Display(L"Usual"), L"(UTC+01:00) Berlin");
    EXPECT_EQ(zones.Display(L"Empty"), L"");
    EXPECT_EQ(zones.Display(L"Full"), std::wstring(259, L'd'));
    EXPECT_EQ(zones.Display(L"Long"), L"");
}

TEST(RegistryZonesTest, HasNoZonesWithoutTheirKey)
{
    RegistrySandbox sandbox(HKEY_LOCAL_MACHINE);
    EXPECT_TRUE(RegistryZones().KeyNames().empty());
    EXPECT_EQ(FindZoneName(LoadZoneTable(RegistryZones()), kIndia), L"UTC");
}
