// The blobs are composed field by field after the published format ([MS-OXOCAL]); those that mail
// clients wrote are read where they lie beside the project.
#include "outlook/calendar/ZoneDefinition.h"

#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"
#include "support/SharedData.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

namespace
{
bool Same(const ZoneRules& left, const ZoneRules& right)
{
    return std::memcmp(&left, &right, sizeof(left)) == 0;
}

std::optional<ZoneDefinition> Parse(const std::vector<std::byte>& blob)
{
    const std::vector<std::byte> exact(blob.begin(), blob.end()); // so that a read behind it shows
    return ParseZoneDefinition(exact);
}

BlobFields Header(std::uint32_t flags)
{
    BlobFields blob;
    blob.U8(2).U8(1).U16(0).U16(flags);
    return blob;
}

void AddDate(BlobFields& blob, const SYSTEMTIME& date)
{
    blob.U16(date.wYear).U16(date.wMonth).U16(date.wDayOfWeek).U16(date.wDay);
    blob.U16(date.wHour).U16(date.wMinute).U16(date.wSecond).U16(date.wMilliseconds);
}

void AddRule(BlobFields& blob, const ZoneRules& rules, std::uint32_t size = 62)
{
    blob.U8(2).U8(1).U16(size).U16(2);
    AddDate(blob, {2007, 1, 1, 1, 0, 0, 0, 0});
    blob.U32(static_cast<std::uint32_t>(rules.biasMinutes));
    blob.U32(static_cast<std::uint32_t>(rules.standardBiasMinutes));
    blob.U32(static_cast<std::uint32_t>(rules.daylightBiasMinutes));
    AddDate(blob, rules.standardDate);
    AddDate(blob, rules.daylightDate);
}

BlobFields WithName(const std::string& name)
{
    BlobFields blob = Header(2);
    blob.U16(static_cast<std::uint32_t>(name.size()));
    for (const char letter : name)
        blob.U16(static_cast<std::uint8_t>(letter));
    return blob;
}

// Every number differs, so that each shows where it goes.
ZoneRules DistinctRules()
{
    ZoneRules rules;
    rules.biasMinutes = -330;
    rules.standardBiasMinutes = 7;
    rules.daylightBiasMinutes = -61;
    rules.standardDate = {1, 10, 2, 3, 4, 5, 6, 7};
    rules.daylightDate = {8, 9, 4, 11, 12, 13, 14, 15};
    return rules;
}
} // namespace

TEST(ZoneDefinitionTest, ReadsNameAndRules)
{
    BlobFields blob = WithName("Berlin");
    blob.U16(2);
    AddRule(blob, DistinctRules());
    AddRule(blob, kEastern);
    const auto definition = Parse(blob.Bytes());
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->keyName, L"Berlin");
    ASSERT_EQ(definition->rules.size(), 2u);
    EXPECT_TRUE(Same(definition->rules[0], DistinctRules()));
    EXPECT_TRUE(Same(definition->rules[1], kEastern));
}

TEST(ZoneDefinitionTest, PassesOverAGuid)
{
    BlobFields guidAlone = Header(1);
    guidAlone.Text(std::string(16, '\xEE')).U16(1);
    AddRule(guidAlone, kIndia);
    const auto nameless = Parse(guidAlone.Bytes());
    ASSERT_TRUE(nameless);
    EXPECT_TRUE(nameless->keyName.empty());
    ASSERT_EQ(nameless->rules.size(), 1u);
    EXPECT_TRUE(Same(nameless->rules[0], kIndia));

    BlobFields both = Header(3);
    both.Text(std::string(16, '\xEE')).U16(1).U16('X').U16(0);
    const auto named = Parse(both.Bytes());
    ASSERT_TRUE(named);
    EXPECT_EQ(named->keyName, L"X");
    EXPECT_TRUE(named->rules.empty());
}

TEST(ZoneDefinitionTest, TakesADefinitionWithoutNameOrRules)
{
    EXPECT_TRUE(Parse(Header(0).U16(0).Bytes()));
    EXPECT_TRUE(Parse(Header(0xFFFC).U16(0).Bytes())); // other flags announce nothing
    const auto emptyName = Parse(Header(2).U16(0).U16(0).Bytes());
    ASSERT_TRUE(emptyName);
    EXPECT_TRUE(emptyName->keyName.empty());
}

TEST(ZoneDefinitionTest, KeepsAnyUnitOfAName)
{
    const auto definition = Parse(Header(2).U16(3).U16(0x65E5).U16(0).U16(0xD800).U16(0).Bytes());
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->keyName, (std::wstring{L'\x65E5', L'\0', static_cast<wchar_t>(0xD800)}));
}

TEST(ZoneDefinitionTest, RefusesOtherVersions)
{
    for (const std::uint32_t major : {0u, 1u, 3u, 0x82u})
        EXPECT_FALSE(Parse(BlobFields().U8(major).U8(1).U16(0).U16(0).U16(0).Bytes())) << major;
    EXPECT_FALSE(Parse(BlobFields().U8(2).U8(0).U16(0).U16(0).U16(0).Bytes()));
    EXPECT_TRUE(Parse(BlobFields().U8(2).U8(255).U16(0).U16(0).U16(0).Bytes()));

    for (const std::uint32_t versions : {0x0103u, 0x0101u, 0x0002u}) // minor and major
    {
        BlobFields blob = Header(0);
        blob.U16(2);
        AddRule(blob, kIndia);
        blob.U16(versions).U16(62).Zeros(62);
        EXPECT_FALSE(Parse(blob.Bytes())) << versions;
    }
    BlobFields good = Header(0);
    good.U16(2);
    AddRule(good, kIndia);
    good.U16(0xFF02).U16(62).Zeros(62);
    EXPECT_TRUE(Parse(good.Bytes()));
}

TEST(ZoneDefinitionTest, RefusesABlobThatEndsTooEarly)
{
    BlobFields blob = Header(3);
    blob.Text(std::string(16, 'g')).U16(2).U16('A').U16('B').U16(2);
    AddRule(blob, kCentralEurope);
    AddRule(blob, kEastern);
    const std::vector<std::byte>& whole = blob.Bytes();
    // The second rule may lack its last 16 bytes, the daylight date.
    const std::size_t least = whole.size() - 16;
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        const auto definition =
            Parse({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)});
        ASSERT_EQ(definition.has_value(), size >= least) << size;
        if (!definition)
            continue;
        ZoneRules expected = kEastern;
        std::memset(reinterpret_cast<char*>(&expected) + sizeof(expected) - (whole.size() - size),
                    0,
                    whole.size() - size);
        EXPECT_TRUE(Same(definition->rules[1], expected)) << size;
    }
    EXPECT_FALSE(ParseZoneDefinition({}));
}

TEST(ZoneDefinitionTest, StepsFromRuleToRuleByTheirSize)
{
    // 10 bytes between the rules.
    BlobFields wide = Header(0);
    wide.U16(2);
    AddRule(wide, kIndia, 72);
    wide.Text(std::string(10, '\xFF'));
    AddRule(wide, kEastern);
    const auto apart = Parse(wide.Bytes());
    ASSERT_TRUE(apart);
    EXPECT_TRUE(Same(apart->rules[1], kEastern));

    // A size of 0: the next rule stands 4 bytes on, in the flags and the start of this one, and its
    // versions are wrong there.
    BlobFields narrow = Header(0);
    narrow.U16(2);
    AddRule(narrow, kIndia, 0);
    EXPECT_FALSE(Parse(narrow.Bytes()));
    // One whose flags look like versions is a rule.
    BlobFields again = Header(0);
    again.U16(2);
    again.U8(2).U8(1).U16(0).U16(0x0102).U16(62).Zeros(60);
    EXPECT_TRUE(Parse(again.Bytes()));

    // A size beyond the end: no next rule, but none is needed behind the last.
    BlobFields beyond = Header(0);
    beyond.U16(1);
    AddRule(beyond, kIndia, 0xFFFF);
    EXPECT_TRUE(Parse(beyond.Bytes()));
    BlobFields more = Header(0);
    more.U16(2);
    AddRule(more, kIndia, 0xFFFF);
    AddRule(more, kIndia);
    EXPECT_FALSE(Parse(more.Bytes()));
}

TEST(ZoneDefinitionTest, ReadsAsManyRulesAsTheCountSays)
{
    BlobFields blob = Header(0);
    blob.U16(1);
    AddRule(blob, kIndia);
    AddRule(blob, kEastern); // behind the last: left alone
    const auto definition = Parse(blob.Bytes());
    ASSERT_TRUE(definition);
    EXPECT_EQ(definition->rules.size(), 1u);

    BlobFields hostile = Header(0);
    hostile.U16(0xFFFF);
    AddRule(hostile, kIndia);
    EXPECT_FALSE(Parse(hostile.Bytes()));
}

TEST(ZoneDefinitionTest, ReadsWhatMailClientsWrote)
{
    // Pakistan: 5 hours east. Eastern: 300 minutes west, the rules of 2006: the last Sunday of
    // October to the first of April, at 2:00.
    const ZoneRules pakistan = FixedRules(-300);
    ZoneRules pakistanWithBias = pakistan;
    pakistanWithBias.daylightBiasMinutes = -60;
    const ZoneRules eastern2006 =
        SummerRules(300, TransitionAt(4, 0, 1, 2), TransitionAt(10, 0, 5, 2));
    struct Sample
    {
        const wchar_t* name;
        std::size_t rules;
        ZoneRules first;
    };
    const std::map<std::string, Sample> samples = {
        {"item_tzdefend_aspose-net_SampleOstFile_214304.bin",
         {L"Pakistan Standard Time", 1, pakistan}},
        {"item_tzdefend_hiraoka-msg_Appointment_sample_EST.bin",
         {L"Eastern Standard Time", 2, eastern2006}},
        {"item_tzdefstart_aspose-net_Meeting_with_Recurring_Occurrences.bin",
         {L"Pakistan Standard Time", 1, pakistanWithBias}},
        {"item_tzdefstart_aspose-net_SampleOstFile_214304.bin",
         {L"Pakistan Standard Time", 4, pakistan}},
        {"mfcmapi_tzdef3.bin", {L"Eastern Standard Time", 0, {}}},
    };
    const auto paths = SharedSamples("timezone", ".bin");
    std::size_t known = 0;
    for (const auto& path : paths)
    {
        const std::vector<std::byte> blob = BytesOf(ReadSample(path));
        for (std::size_t size = 0; size < blob.size(); ++size)
            Parse({blob.begin(), blob.begin() + static_cast<std::ptrdiff_t>(size)});
        const auto sample = samples.find(path.filename().string());
        if (sample == samples.end())
            continue;
        ++known;
        const auto definition = Parse(blob);
        ASSERT_TRUE(definition) << path;
        EXPECT_EQ(definition->keyName, sample->second.name) << path;
        ASSERT_EQ(definition->rules.size(), sample->second.rules) << path;
        if (!definition->rules.empty())
        {
            EXPECT_TRUE(Same(definition->rules[0], sample->second.first)) << path;
        }
    }
    EXPECT_EQ(known, paths.empty() ? 0u : 5u);
}
