// The structures are composed field by field after the published format ([MS-OXOCAL]); those that
// mail clients wrote are read where they lie beside the project.
#include "outlook/calendar/AppointmentZone.h"

#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"
#include "outlook/calendar/ZoneBlobs.h"
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>
#include <string>

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

// The zone structure among the properties of a sample, which are one a line; empty where it has
// none.
std::vector<std::byte> StructureIn(const std::string& sample)
{
    const std::size_t property = sample.find("\"id\": \"0x8233\"");
    const std::string head = "\"hex\": \"";
    const std::size_t value = sample.find(head, property);
    std::vector<std::byte> bytes;
    if (property == std::string::npos || value == std::string::npos)
        return bytes;
    const std::size_t digits = value + head.size();
    for (std::size_t i = digits; i + 1 < sample.size() && sample[i] != '"'; i += 2)
        bytes.push_back(static_cast<std::byte>(std::stoi(sample.substr(i, 2), nullptr, 16)));
    return bytes;
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

TEST_F(AppointmentZoneTest, TakesTheFirstRuleAlsoWhereALaterOneHolds)
{
    std::vector<std::byte> definition = Definition("Somewhere", {kDistinct, kIndia});
    // Behind six bytes and the name with its length stands the count, and behind that the rules of
    // 66 bytes each, of which six come before the year of its start.
    constexpr std::size_t kFirstYear = 6 + 2 + 2 * 9 + 2 + 6;
    const auto putYear = [&](std::size_t offset, std::uint32_t year) {
        ASSERT_EQ(definition.at(offset), std::byte{0xEE}); // of 2030, 0x07EE
        definition.at(offset) = static_cast<std::byte>(year & 0xFF);
        definition.at(offset + 1) = static_cast<std::byte>(year >> 8);
    };
    putYear(kFirstYear, 1601);
    putYear(kFirstYear + 66, 2007);
    EXPECT_TRUE(HasRules(Read(std::nullopt, definition), kDistinct));
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

TEST_F(AppointmentZoneTest, ReadsTheStructuresThatMailClientsWrote)
{
    // Nine hours east; some clients tell an hour of summer time, but no date on which it begins.
    const ZoneRules plain = FixedRules(-540);
    ZoneRules withHour = plain;
    withHour.daylightBiasMinutes = -60;
    zones.rules = {{L"Eastern Standard Time", kEastern},
                   {L"Tokyo Standard Time", withHour},
                   {L"Zone without an hour", plain}};
    struct Sample
    {
        ZoneRules rules;
        const wchar_t* name;
    };
    const std::map<std::string, Sample> samples = {
        {"hiraoka-msg_A_monthly_1", {plain, L"Zone without an hour"}},
        {"hiraoka-msg_A_weekly_1", {plain, L"Zone without an hour"}},
        {"hiraoka-msg_Lanch_time_every_friday_in_2023_org", {withHour, L"Tokyo Standard Time"}},
        {"mimekit_christmas_attach2_msg", {kEastern, L"Eastern Standard Time"}},
    };
    const auto paths = SharedSamples("msg/appointments", ".jsonl");
    std::size_t known = 0;
    for (const auto& path : paths)
    {
        const auto sample = samples.find(path.stem().string());
        if (sample == samples.end())
            continue;
        ++known;
        const std::vector<std::byte> structure = StructureIn(ReadSample(path));
        EXPECT_EQ(structure.size(), 48u) << path;
        const TIME_ZONE_INFORMATION zone = Read(structure, std::nullopt);
        EXPECT_TRUE(HasRules(zone, sample->second.rules)) << path;
        EXPECT_STREQ(zone.StandardName, sample->second.name) << path;
        // Where no zone has the same rules, the first of that bias gives its name.
        zones.rules.erase(L"Zone without an hour");
        EXPECT_STREQ(Read(structure, std::nullopt).StandardName,
                     zone.Bias == 300 ? L"Eastern Standard Time" : L"Tokyo Standard Time");
        zones.rules[L"Zone without an hour"] = plain;
    }
    EXPECT_EQ(known, paths.empty() ? 0u : 4u);
}
