// The blob around an appointment object: which properties are read and put, and the start in the
// appointment's zone. The expected blobs are the files of tests/data/recurrence, made by hand.
#include "outlook/calendar/RecurrenceBlob.h"

#include "icalendar/RecordingAppointment.h"
#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <string>
#include <vector>

namespace
{
using Calls = std::vector<std::string>;

class RecurrenceBlobTest : public ::testing::Test
{
  protected:
    RecurrenceBlobTest() : item(RecordingAppointment::Make())
    {
        zones.rules = {{L"Berlin", kCentralEurope},
                       {L"Eastern", kEastern},
                       {L"India", kIndia},
                       {L"Island", kIsland}};
        SetMachine(zones, kEastern, L"Machine's own");
        item->recurringInfo = NoRecurrence();
        item->recurringInfo.eRecurType = Daily;
        item->recurringInfo.tDaily.ulIntervalDay = 2;
        SetTimes(DateOf(2024, 3, 5, 9, 30));
    }

    // An hour from then on, in UTC.
    void SetTimes(DATE start)
    {
        item->startTime = start;
        item->endTime = start + 1.0 / 24.0;
    }

    std::string Built()
    {
        std::vector<std::byte> blob{std::byte{1}};
        std::uint32_t type = 99;
        const std::size_t length = BuildRecurrenceBlob(*item.Get(), zones, blob, type);
        EXPECT_EQ(length, blob.size());
        EXPECT_EQ(type, blob.empty() ? 0u : static_cast<unsigned>(item->recurringInfo.eRecurType));
        return HexOf(blob);
    }

    static std::string File(const std::string& name)
    {
        return HexOf(HexFile("recurrence/" + name + ".hex"));
    }

    // Every second day from then on, an hour, without an end. On all days that the tests use the
    // first date is 1,440: they are odd counts from 1601-01-01 on, as 2024-03-05 is, day 154561.
    static std::string EverySecondDay(std::uint32_t localStart)
    {
        const std::uint32_t minutes = localStart % 1440;
        BlobFields blob;
        blob.U16(0x3004).U16(0x3004).U16(0x200A).U16(0).U16(0).U32(1440).U32(2880).U32(0);
        blob.Lists(0x2023, 10, {}, {}).U32(localStart - minutes).U32(0x5AE980DF);
        blob.U32(0x3006).U32(0x3009).U32(minutes).U32(minutes + 60).U16(0).U32(0).U32(0);
        return HexOf(blob.Bytes());
    }

    Microsoft::WRL::ComPtr<RecordingAppointment> item;
    FixedZones zones;
};
} // namespace

TEST_F(RecurrenceBlobTest, TurnsTheStartIntoTheTimeOfItsZone)
{
    struct Row
    {
        const wchar_t* zone;
        DATE utcStart;
        const char* file;
    };
    const Row rows[] = {
        {L"India", DateOf(2024, 3, 5, 20, 30), "zone_east"},
        {L"Island", DateOf(2024, 3, 5, 2, 30), "zone_west"},
        {L"Eastern", DateOf(2024, 1, 15, 14, 0), "zone_winter"},
        {L"Eastern", DateOf(2024, 7, 15, 14, 0), "zone_summer"},
        {L"Eastern", DateOf(2024, 3, 9, 14, 0), "zone_before_change"},
        {L"Eastern", DateOf(2024, 3, 11, 14, 0), "zone_after_change"},
        {L"Atlantis", DateOf(2024, 1, 15, 14, 0), "machine_winter"},
        {L"Atlantis", DateOf(2024, 7, 15, 14, 0), "machine_summer"},
        {L"", DateOf(2024, 1, 15, 14, 0), "machine_winter"},
    };
    for (const Row& row : rows)
    {
        item->texts["TimeZone"] = row.zone;
        SetTimes(row.utcStart);
        EXPECT_EQ(Built(), File(row.file)) << row.file;
    }
    item->nulls = {"TimeZone"};
    SetTimes(DateOf(2024, 7, 15, 14, 0));
    EXPECT_EQ(Built(), File("machine_summer"));
    item->nulls.clear();
    item->failing = {"get TimeZone"};
    EXPECT_EQ(Built(), File("machine_summer"));
}

TEST_F(RecurrenceBlobTest, ChangesToSummerTimeAsTheMachinesZoneDoes)
{
    // South of the equator: ten hours east, summer time from October to April.
    const ZoneRules southern =
        SummerRules(-600, TransitionAt(10, 0, 1, 2), TransitionAt(4, 0, 1, 3));
    // An hour of summer time, but no dates, as the registry has zones without it.
    ZoneRules dateless = FixedRules(-540);
    dateless.daylightBiasMinutes = -60;
    struct Row
    {
        const ZoneRules& machine;
        DATE utcStart;
        std::uint32_t localStart;
    };
    const Row rows[] = {
        // The changes are on 2024-03-10 and 2024-11-03.
        {kEastern, DateOf(2024, 3, 9, 14, 0), MinutesAt(2024, 3, 9, 9, 0)},
        {kEastern, DateOf(2024, 3, 11, 14, 0), MinutesAt(2024, 3, 11, 10, 0)},
        {kEastern, DateOf(2024, 11, 2, 14, 0), MinutesAt(2024, 11, 2, 10, 0)},
        {kEastern, DateOf(2024, 11, 4, 14, 0), MinutesAt(2024, 11, 4, 9, 0)},
        // On 2024-04-07 and 2024-10-06.
        {southern, DateOf(2024, 1, 15, 0, 0), MinutesAt(2024, 1, 15, 11, 0)},
        {southern, DateOf(2024, 4, 6, 0, 0), MinutesAt(2024, 4, 6, 11, 0)},
        {southern, DateOf(2024, 4, 8, 0, 0), MinutesAt(2024, 4, 8, 10, 0)},
        {southern, DateOf(2024, 10, 5, 0, 0), MinutesAt(2024, 10, 5, 10, 0)},
        {southern, DateOf(2024, 10, 7, 0, 0), MinutesAt(2024, 10, 7, 11, 0)},
        {dateless, DateOf(2024, 1, 15, 0, 0), MinutesAt(2024, 1, 15, 9, 0)},
        {dateless, DateOf(2024, 7, 15, 0, 0), MinutesAt(2024, 7, 15, 9, 0)},
    };
    item->texts["TimeZone"] = L"Atlantis";
    for (const Row& row : rows)
    {
        SetMachine(zones, row.machine, L"Machine's own");
        SetTimes(row.utcStart);
        EXPECT_EQ(Built(), EverySecondDay(row.localStart)) << row.utcStart;
    }
    // The same by its name.
    SetMachine(zones, kEastern, L"Machine's own");
    zones.rules[L"Tokyo"] = dateless;
    item->texts["TimeZone"] = L"Tokyo";
    EXPECT_EQ(Built(), EverySecondDay(MinutesAt(2024, 7, 15, 9, 0)));
}

TEST_F(RecurrenceBlobTest, TakesTheStartOfAnAllDayAppointmentAsItStands)
{
    item->texts["TimeZone"] = L"India";
    item->allDay = -1;
    item->startTime = DateOf(2024, 3, 5);
    item->endTime = DateOf(2024, 3, 6);
    EXPECT_EQ(Built(), File("all_day"));
    item->allDay = 1; // anything but 0
    EXPECT_EQ(Built(), File("all_day"));
}

// Whole blobs, worked out field by field from the published format in zones without summer time.
// The yearly one is what a mail client wrote for the same series, byte for byte.
TEST_F(RecurrenceBlobTest, WritesSeriesOfEveryKindInZonesOfEitherSide)
{
    zones.rules[L"UTC"] = FixedRules(0);
    zones.rules[L"Tokyo"] = FixedRules(-540);
    zones.rules[L"Bogota"] = FixedRules(300);
    struct Row
    {
        const wchar_t* zone;
        DATE utcStart;
        int minutes;
        void (*set)(_tagRecurringInfo& rule);
        const char* blob;
    };
    const Row rows[] = {
        {L"UTC",
         DateOf(2024, 3, 5, 9, 30),
         60,
         [](_tagRecurringInfo& rule) {
             rule.eRecurType = Daily;
             rule.tDaily.ulIntervalDay = 2;
         },
         "043004300A2000000000A0050000400B000000000000232000000A00000000000000000000000000"
         "0000A01D440DDF80E95A06300000093000003A0200007602000000000000000000000000"},
        {L"Tokyo",
         DateOf(2024, 3, 4, 5, 0),
         90,
         [](_tagRecurringInfo& rule) {
             rule.eRecurType = Weekly;
             rule.tWeekly.ulIntervalWeek = 2;
             SetWeekdays(rule.tWeekly.bValidWeekday, {1, 3});
             rule.tEndInfo = {EndByCount, 0.0, 5};
         },
         "043004300B20010000002049000002000000000000000A0000002220000005000000000000000000"
         "0000000000000018440D80B5440D063000000930000048030000A203000000000000000000000000"},
        {L"Bogota",
         DateOf(2024, 3, 15, 13, 0),
         45,
         [](_tagRecurringInfo& rule) {
             rule.eRecurType = Monthly;
             rule.tMonthly.ulIntervalMonth = 3;
             rule.tMonthly.bIsByMonthDayMode = -1;
             rule.tMonthly.lMonthDay = 15;
             rule.tEndInfo = {EndByDate, DateOf(2024, 12, 15), 0};
             rule.arrDeletedInstance[0] = DateOf(2024, 9, 15);
             rule.arrDeletedInstance[1] = DateOf(2024, 6, 15);
         },
         "043004300C2002000000E04B010003000000000000000F000000212000000A000000000000000200"
         "0000605B460DE060480D00000000E055440DC0604A0D0630000009300000E00100000D0200000000"
         "0000000000000000"},
        {L"Bogota",
         DateOf(2018, 12, 25, 12, 0),
         120,
         [](_tagRecurringInfo& rule) {
             rule.eRecurType = Yearly;
             rule.tYearly.ulIntervalYear = 1;
             rule.tYearly.bIsByMonthDayMode = -1;
             rule.tYearly.lDay = 25;
         },
         "043004300D2002000000C05607000C0000000000000019000000232000000A000000000000000000"
         "000000000000006F1A0DDF80E95A0630000009300000A40100001C02000000000000000000000000"},
        {L"UTC",
         DateOf(2024, 4, 9, 10, 0),
         60,
         [](_tagRecurringInfo& rule) {
             rule.eRecurType = Monthly;
             rule.tMonthly.ulIntervalMonth = 2;
             rule.tMonthly.bIsByDayMode = -1;
             rule.tMonthly.lNth = 2;
             SetWeekdays(rule.tMonthly.bValidWeekday, {2});
             rule.tEndInfo = {EndByCount, 0.0, 3};
             rule.arrDeletedInstance[0] = DateOf(2024, 6, 11);
             _tagModifiedInstanceInfo& moved = rule.arrModifiedInstance[0];
             moved.dtModifiedDate = DateOf(2024, 6, 11);
             moved.dtStartDateTime = DateOf(2024, 6, 12, 11, 0);
             moved.dtEndDateTime = DateOf(2024, 6, 12, 12, 0);
             moved.dtOriginalDateTime = DateOf(2024, 6, 11, 10, 0);
             std::ranges::copy(std::wstring_view(L"Moved"), moved.szSubject);
         },
         "043004300C200300000060AE00000200000000000000040000000200000022200000030000000000"
         "000001000000E044460D01000000E044460D80E2440D20F3480D0630000009300000580200009402"
         "00000100144D460D504D460D3847460D1100060005004D6F76656401000000000000000400000000"
         "00000000000000144D460D504D460D3847460D05004D006F00760065006400000000000000000000"
         "00"},
    };
    for (const Row& row : rows)
    {
        item->texts["TimeZone"] = row.zone;
        item->startTime = row.utcStart;
        item->endTime = row.utcStart + row.minutes / 1440.0;
        item->recurringInfo = NoRecurrence();
        row.set(item->recurringInfo);
        std::string built = Built();
        std::erase(built, ' ');
        std::ranges::transform(built, built.begin(), [](char digit) {
            return static_cast<char>(std::toupper(static_cast<unsigned char>(digit)));
        });
        EXPECT_EQ(row.blob, built);
    }
}

TEST_F(RecurrenceBlobTest, ReadsThePropertiesOnceAndPutsNone)
{
    Built();
    EXPECT_EQ(
        item->calls,
        (Calls{"get RecurringInfo", "get StartTime", "get EndTime", "get AllDay", "get TimeZone"}));
}

TEST_F(RecurrenceBlobTest, MakesNoBlobOfWhatCannotBeRead)
{
    Calls expected;
    for (const char* const name : {"RecurringInfo", "StartTime", "EndTime", "AllDay"})
    {
        expected.push_back(std::string("get ") + name);
        item->failing = {expected.back()};
        item->calls.clear();
        EXPECT_EQ(Built(), "") << name;
        EXPECT_EQ(item->calls, expected);
    }
}

TEST_F(RecurrenceBlobTest, MakesNoBlobWithoutARuleOrADuration)
{
    item->recurringInfo.eRecurType = None;
    EXPECT_EQ(Built(), "");
    EXPECT_EQ(item->calls, (Calls{"get RecurringInfo"}));
    item->recurringInfo.eRecurType = Daily;
    item->endTime = item->startTime;
    EXPECT_EQ(Built(), "");
    item->endTime = item->startTime - 1;
    EXPECT_EQ(Built(), "");
    SetTimes(item->startTime);
    EXPECT_NE(Built(), "");
    item->recurringInfo.tDaily.ulIntervalDay = 0;
    EXPECT_EQ(Built(), "");
    item->recurringInfo.eRecurType = static_cast<_tagNAppointmentRecurringType>(7);
    EXPECT_EQ(Built(), "");
}

TEST_F(RecurrenceBlobTest, TellsTheTypeOfTheRecurrence)
{
    item->recurringInfo.tWeekly.ulIntervalWeek = 1;
    item->recurringInfo.tMonthly.ulIntervalMonth = 1;
    for (const auto kind : {Daily, Weekly, Monthly, Yearly})
    {
        item->recurringInfo.eRecurType = kind;
        EXPECT_NE(Built(), "") << kind;
    }
}

TEST_F(RecurrenceBlobTest, PutsTheRecordThatItRead)
{
    item->texts = {{"Subject", L"Own subject"}, {"Place", L"Own place"}};
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob;
    blob.Pattern(0x200A, 0, 1440).Lists(0x2022, 4, {day}, {day, day + 1440});
    blob.Span(MinutesAt(2024, 3, 5), 0, 2);
    for (const std::uint32_t overrides : {0x0000u, 0x0011u})
    {
        blob.U32(day + 600).U32(day + 660).U32(day + 570).U16(overrides);
        if (overrides != 0)
            blob.U16(2).U16(1).Text("s").U16(2).U16(1).Text("p");
    }
    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
    EXPECT_EQ(item->calls.back(), "put RecurringInfo [1]");
    EXPECT_EQ(TextOf(item->recurringInfo),
              "kind 1\ndaily.interval 1\nend.kind 1\nend.times 4\ndeleted0 2024-03-07 00:00\n"
              "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
              "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
              "modified0.subject Own subject\nmodified0.location Own place\n"
              "modified1 2024-03-08 00:00\nmodified1.start 2024-03-07 10:00\n"
              "modified1.end 2024-03-07 11:00\nmodified1.original 2024-03-07 09:30\n"
              "modified1.subject s\nmodified1.location p\n");

    // Texts that cannot be read are empty.
    item->failing = {"get Subject"};
    item->nulls = {"Place"};
    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
    EXPECT_EQ(TextOf(item->recurringInfo).find("Own"), std::string::npos);
    // A warning is not good enough either.
    item->failing.clear();
    item->nulls.clear();
    item->textResult = S_FALSE;
    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
    EXPECT_EQ(TextOf(item->recurringInfo).find("Own"), std::string::npos);
    item->textResult = S_OK;
    // That the put fails does not matter.
    item->failing = {"put RecurringInfo"};
    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
}

TEST_F(RecurrenceBlobTest, PutsARecordOfNoKindForAnUnknownPattern)
{
    BlobFields blob;
    blob.Pattern(0x200D, 5, 12).Lists(0x2022, 9, {MinutesAt(2024, 3, 7)}, {});
    blob.Span(MinutesAt(2024, 3, 5), 0);
    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
    EXPECT_EQ(item->calls.back(), "put RecurringInfo [0]");
    EXPECT_EQ(TextOf(item->recurringInfo), "end.kind 1\nend.times 9\ndeleted0 2024-03-07 00:00\n");
}

TEST_F(RecurrenceBlobTest, KeepsTextsInTheSystemsCodePage)
{
    const wchar_t text[] = L"\x00E9\x20AC";
    char encoded[16] = {};
    const int encodedBytes =
        WideCharToMultiByte(CP_ACP, 0, text, 2, encoded, sizeof(encoded), nullptr, nullptr);
    ASSERT_LT(0, encodedBytes);
    const std::string bytes(encoded, static_cast<std::size_t>(encodedBytes));
    wchar_t decoded[16] = {};
    ASSERT_LT(0, MultiByteToWideChar(CP_ACP, 0, encoded, encodedBytes, decoded, 16));

    const std::uint32_t day = MinutesAt(2024, 3, 7);
    const auto length = static_cast<std::uint32_t>(bytes.size());
    BlobFields blob;
    blob.Pattern(0x200A, 0, 1440).Lists(0x2023, 10, {day}, {day});
    blob.Span(MinutesAt(2024, 3, 5), 0x5AE980DF, 1);
    blob.U32(day + 600).U32(day + 660).U32(day + 570).U16(0x0011);
    blob.U16(length + 1).U16(length).Text(bytes).U16(length + 1).U16(length).Text(bytes);
    blob.U32(0).U32(4).U32(0).U32(0).U32(day + 600).U32(day + 660).U32(day + 570);
    blob.U16(2).U16(0xE9).U16(0x20AC).U16(2).U16(0xE9).U16(0x20AC).U32(0).U32(0);

    _tagRecurringInfo& record = item->recurringInfo;
    record.tDaily.ulIntervalDay = 1;
    record.arrDeletedInstance[0] = DateOf(2024, 3, 7);
    _tagModifiedInstanceInfo& instance = record.arrModifiedInstance[0];
    instance.dtModifiedDate = DateOf(2024, 3, 7);
    instance.dtStartDateTime = DateOf(2024, 3, 7, 10, 0);
    instance.dtEndDateTime = DateOf(2024, 3, 7, 11, 0);
    instance.dtOriginalDateTime = DateOf(2024, 3, 7, 9, 30);
    PutText(text, instance.szSubject);
    PutText(text, instance.szLocation);
    item->allDay = -1; // so that the start counts as local
    EXPECT_EQ(Built(), HexOf(blob.Bytes()));

    ParseRecurrenceBlob(*item.Get(), blob.Bytes());
    std::uint16_t expected[260];
    PutText(decoded, expected);
    EXPECT_TRUE(std::ranges::equal(expected, instance.szSubject));
    EXPECT_TRUE(std::ranges::equal(expected, instance.szLocation));
}

TEST_F(RecurrenceBlobTest, PutsNothingForABlobThatEndsTooEarly)
{
    const std::vector<std::byte> blob = HexFile("recurrence/daily_never.hex");
    const std::size_t least = 22 + 12 + 4 + 4 + 8; // up to the end of the end date
    for (std::size_t size = 0; size <= blob.size(); ++size)
    {
        item->calls.clear();
        const std::vector<std::byte> prefix(blob.begin(),
                                            blob.begin() + static_cast<std::ptrdiff_t>(size));
        ParseRecurrenceBlob(*item.Get(), prefix);
        const auto puts = std::ranges::count(item->calls, std::string("put RecurringInfo [1]"));
        EXPECT_EQ(puts, size >= least ? 1 : 0) << size;
    }
    item->calls.clear();
    ParseRecurrenceBlob(*item.Get(), {});
    EXPECT_EQ(std::ranges::count(item->calls, std::string("put RecurringInfo [1]")), 0);
}
