#include "outlook/calendar/AppointmentZone.h"

#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"
#include "outlook/calendar/ZoneBlobs.h"

#include <gtest/gtest.h>

#include <cstring>

namespace
{
bool SameDate(const SYSTEMTIME& left, const SYSTEMTIME& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

bool HasRules(const TIME_ZONE_INFORMATION& zone, const ZoneRules& rules)
{
    return zone.Bias == rules.biasMinutes && zone.StandardBias == rules.standardBiasMinutes &&
           zone.DaylightBias == rules.daylightBiasMinutes &&
           SameDate(zone.StandardDate, rules.standardDate) &&
           SameDate(zone.DaylightDate, rules.daylightDate);
}

bool Same(const TIME_ZONE_INFORMATION& left, const TIME_ZONE_INFORMATION& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

class AppointmentZoneTest : public ::testing::Test
{
  protected:
    AppointmentZoneTest()
    {
        zones.rules = {{L"Berlin", kCentralEurope},
                       {L"Alger", FixedRules(-60)},
                       {L"Eastern", kEastern},
                       {L"India", kIndia}};
        SetMachine(zones, kEastern, L"Machine's own");
    }

    TIME_ZONE_INFORMATION Read(std::optional<std::vector<std::byte>> structure,
                               std::optional<std::vector<std::byte>> definition) const
    {
        MessageZone message;
        if (structure)
            message.structure = *structure;
        if (definition)
            message.definition = *definition;
        return ZoneOfMessage(message, LoadZoneTable(zones), zones);
    }

    FixedZones zones;
};

// 12 bytes of biases, then year, date, year, date; every number differs.
const ZoneRules kDistinct = [] {
    ZoneRules rules;
    rules.biasMinutes = -61;
    rules.standardBiasMinutes = 2;
    rules.daylightBiasMinutes = -3;
    rules.standardDate = {1, 2, 3, 4, 5, 6, 7, 8};
    rules.daylightDate = {9, 10, 5, 11, 12, 13, 14, 15};
    return rules;
}();
} // namespace

TEST_F(AppointmentZoneTest, TakesRulesAndNameOfTheStructure)
{
    const TIME_ZONE_INFORMATION zone = Read(Structure(kCentralEurope), std::nullopt);
    EXPECT_TRUE(HasRules(zone, kCentralEurope));
    EXPECT_STREQ(zone.StandardName, L"Berlin");
    EXPECT_STREQ(zone.DaylightName, L"Machine's own");
    // The years beside the dates do not count, nor does what stands behind the 48 bytes.
    std::vector<std::byte> longer = Structure(kCentralEurope, 2024);
    longer.push_back(std::byte{0xFF});
    EXPECT_TRUE(Same(Read(longer, std::nullopt), zone));
}

TEST_F(AppointmentZoneTest, NamesRulesThatNoZoneHasByTheirBias)
{
    const ZoneRules odd = SummerRules(-60, TransitionAt(4, 0, 1, 2), TransitionAt(9, 0, 1, 3));
    const TIME_ZONE_INFORMATION zone = Read(Structure(odd), std::nullopt);
    EXPECT_STREQ(zone.StandardName, L"Alger");
    EXPECT_TRUE(HasRules(zone, odd));
}

TEST_F(AppointmentZoneTest, KeepsRulesWhoseBiasNoZoneHasUnderTheNameUtc)
{
    const TIME_ZONE_INFORMATION zone = Read(Structure(kDistinct), std::nullopt);
    EXPECT_STREQ(zone.StandardName, L"UTC");
    EXPECT_TRUE(HasRules(zone, kDistinct));
}

TEST_F(AppointmentZoneTest, KeepsTheMachinesZoneForAShortStructure)
{
    // Not even the definition counts then.
    for (std::size_t size = 0; size < 48; ++size)
    {
        std::vector<std::byte> structure = Structure(kCentralEurope);
        structure.resize(size);
        EXPECT_TRUE(Same(Read(structure, Definition("India", {kIndia})), zones.machine)) << size;
    }
}

TEST_F(AppointmentZoneTest, KeepsTheMachinesZoneWithoutStructureAndDefinition)
{
    EXPECT_TRUE(Same(Read(std::nullopt, std::nullopt), zones.machine));
    EXPECT_STREQ(Read(std::nullopt, std::nullopt).StandardName, L"Machine's own");
}

TEST_F(AppointmentZoneTest, TakesTheDefinitionWhereThereIsNoStructure)
{
    const TIME_ZONE_INFORMATION zone =
        Read(std::nullopt, Definition("Somewhere", {kDistinct, kIndia}));
    EXPECT_TRUE(HasRules(zone, kDistinct));
    EXPECT_STREQ(zone.StandardName, L"Somewhere");
    EXPECT_STREQ(zone.DaylightName, L"Somewhere");
    // With a structure it does not count.
    EXPECT_STREQ(Read(Structure(kEastern), Definition("Somewhere", {kIndia})).StandardName,
                 L"Eastern");
}

TEST_F(AppointmentZoneTest, KeepsTheMachinesNameForADefinitionWithoutOne)
{
    const TIME_ZONE_INFORMATION zone = Read(std::nullopt, Definition("", {kIndia}));
    EXPECT_TRUE(HasRules(zone, kIndia));
    EXPECT_STREQ(zone.StandardName, L"Machine's own");
    EXPECT_STREQ(zone.DaylightName, L"Machine's own");
}

TEST_F(AppointmentZoneTest, IgnoresADefinitionWithoutRulesOrThatCannotBeRead)
{
    EXPECT_TRUE(Same(Read(std::nullopt, Definition("Somewhere", {})), zones.machine));
    EXPECT_TRUE(Same(Read(std::nullopt, Definition("Somewhere", {kIndia}, 3)), zones.machine));
    EXPECT_TRUE(Same(Read(std::nullopt, std::vector<std::byte>()), zones.machine));
}

TEST_F(AppointmentZoneTest, CutsNamesAt31Units)
{
    const std::wstring name40(40, L'n');
    const std::wstring name31(31, L'n');
    zones.rules[name40] = kIndia;

    const TIME_ZONE_INFORMATION defined =
        Read(std::nullopt, Definition(std::string(40, 'n'), {kIndia}));
    EXPECT_EQ(defined.StandardName, name31);
    EXPECT_EQ(defined.DaylightName, name31);
    EXPECT_EQ(ZoneOfRecurrence(name40, zones).StandardName, name31);

    zones.rules = {{name40, kDistinct}};
    EXPECT_EQ(Read(Structure(kDistinct), std::nullopt).StandardName, name31);
    // A shorter name leaves nothing of the one before.
    zones.rules = {{L"X", kDistinct}};
    const TIME_ZONE_INFORMATION zone = Read(Structure(kDistinct), std::nullopt);
    EXPECT_STREQ(zone.StandardName, L"X");
    EXPECT_EQ(zone.StandardName[31], L'\0');
    EXPECT_EQ(zone.StandardName[3], L'\0');
}

TEST_F(AppointmentZoneTest, GivesTheZoneOfARecurrenceOneDateForBothTransitions)
{
    const TIME_ZONE_INFORMATION zone = ZoneOfRecurrence(L"Berlin", zones);
    ZoneRules expected = kCentralEurope;
    expected.standardDate = kCentralEurope.daylightDate;
    EXPECT_TRUE(HasRules(zone, expected));
    EXPECT_STREQ(zone.StandardName, L"Berlin");
    EXPECT_STREQ(zone.DaylightName, L"");
    // Without summer time both are empty anyway.
    EXPECT_TRUE(HasRules(ZoneOfRecurrence(L"India", zones), kIndia));
}

TEST_F(AppointmentZoneTest, GivesARecurrenceTheMachinesZoneWhereTheNameHasNone)
{
    EXPECT_TRUE(Same(ZoneOfRecurrence(std::nullopt, zones), zones.machine));
    EXPECT_TRUE(Same(ZoneOfRecurrence(L"", zones), zones.machine));
    EXPECT_TRUE(Same(ZoneOfRecurrence(L"Atlantis", zones), zones.machine));
}

TEST_F(AppointmentZoneTest, WritesTheStructureOfTheNamedZone)
{
    zones.rules[L"Distinct"] = kDistinct;
    // -61, 2 and -3; then the year of the date and the date, twice.
    EXPECT_EQ(HexOf(ZoneStructureBytes(L"Distinct", zones)),
              "c3ffffff 02000000 fdffffff 00000100 02000300 04000500 06000700 08000000 "
              "09000a00 05000b00 0c000d00 0e000f00 ");
    EXPECT_EQ(HexOf(ZoneStructureBytes(L"Berlin", zones)),
              "c4ffffff 00000000 c4ffffff 00000000 0a000000 05000300 00000000 00000000 "
              "00000300 00000500 02000000 00000000 ");
}

TEST_F(AppointmentZoneTest, WritesTheStructureOfTheMachinesZoneForAnUnknownName)
{
    // Eastern: 300, the first Sunday of November and the second of March, each in its place.
    const char* const eastern =
        "2c010000 00000000 c4ffffff 00000000 0b000000 01000200 00000000 00000000 "
        "00000300 00000200 02000000 00000000 ";
    EXPECT_EQ(HexOf(ZoneStructureBytes(std::nullopt, zones)), eastern);
    EXPECT_EQ(HexOf(ZoneStructureBytes(L"Atlantis", zones)), eastern);
}

TEST_F(AppointmentZoneTest, ReadsTheStructureThatItWrites)
{
    for (const ZoneRules& rules : {kDistinct, kCentralEurope, kEastern, kIndia})
    {
        zones.rules = {{L"Zone", rules}};
        const TIME_ZONE_INFORMATION zone = Read(ZoneStructureBytes(L"Zone", zones), std::nullopt);
        EXPECT_TRUE(HasRules(zone, rules));
        EXPECT_STREQ(zone.StandardName, L"Zone");
    }
}
