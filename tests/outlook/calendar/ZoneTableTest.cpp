#include "outlook/calendar/ZoneTable.h"

#include "outlook/calendar/FixedZones.h"

#include <gtest/gtest.h>

namespace
{
ZoneTable SomeZones()
{
    FixedZones zones;
    zones.rules = {{L"W. Europe", kCentralEurope},
                   {L"Berlin", kCentralEurope},
                   {L"Alger", FixedRules(-60)},
                   {L"Eastern", kEastern},
                   {L"India", kIndia}};
    return LoadZoneTable(zones);
}
} // namespace

TEST(ZoneTableTest, NamesTheLowestKeyWithTheSameRules)
{
    EXPECT_EQ(FindZoneName(SomeZones(), kCentralEurope), L"Berlin");
    EXPECT_EQ(FindZoneName(SomeZones(), kEastern), L"Eastern");
    EXPECT_EQ(FindZoneName(SomeZones(), FixedRules(-60)), L"Alger");
}

TEST(ZoneTableTest, ComparesEveryByteOfTheRules)
{
    FixedZones zones;
    zones.rules = {{L"A", FixedRules(-60)}, {L"Z", kCentralEurope}};
    const ZoneTable table = LoadZoneTable(zones);
    auto* const first = reinterpret_cast<const unsigned char*>(&kCentralEurope);
    for (std::size_t at = 4; at < sizeof(ZoneRules); ++at) // behind the bias
    {
        ZoneRules changed = kCentralEurope;
        reinterpret_cast<unsigned char*>(&changed)[at] =
            static_cast<unsigned char>(first[at] ^ 0x40);
        EXPECT_EQ(FindZoneName(table, changed), L"A") << at;
    }
    EXPECT_EQ(FindZoneName(table, kCentralEurope), L"Z");
}

TEST(ZoneTableTest, NamesTheLowestKeyWithTheSameBiasForUnknownRules)
{
    EXPECT_EQ(FindZoneName(SomeZones(),
                           SummerRules(-60, TransitionAt(4, 0, 1, 2), TransitionAt(9, 0, 1, 3))),
              L"Alger");
    EXPECT_EQ(FindZoneName(SomeZones(), FixedRules(300)), L"Eastern");
}

TEST(ZoneTableTest, NamesUtcForABiasThatNoZoneHas)
{
    EXPECT_EQ(FindZoneName(SomeZones(), FixedRules(-345)), L"UTC");
    EXPECT_EQ(FindZoneName({}, FixedRules(0)), L"UTC");
}

TEST(ZoneTableTest, OrdersNamesByCharacterCode)
{
    FixedZones zones;
    zones.rules = {{L"a", FixedRules(-60)}, {L"Z", FixedRules(-60)}, {L"\xC4", FixedRules(-60)}};
    EXPECT_EQ(FindZoneName(LoadZoneTable(zones), FixedRules(-60)), L"Z");
}

TEST(ZoneTableTest, KeepsAZoneThatCannotBeReadWithRulesOfZeros)
{
    FixedZones zones;
    zones.unreadable = {L"Broken", L"Also broken"};
    zones.rules = {
        {L"Greenwich", FixedRules(0)},
        {L"London", SummerRules(0, TransitionAt(3, 0, 5, 1), TransitionAt(10, 0, 5, 2))}};
    const ZoneTable table = LoadZoneTable(zones);
    EXPECT_EQ(table.size(), 4u);
    EXPECT_EQ(FindZoneName(table, FixedRules(0)), L"Also broken");
    EXPECT_EQ(FindZoneName(table, zones.rules[L"London"]), L"London");
    EXPECT_EQ(
        FindZoneName(table, SummerRules(0, TransitionAt(4, 0, 5, 1), TransitionAt(10, 0, 5, 2))),
        L"Also broken");
}
