// The blob around an appointment object: which properties are read and put, and the start in the
// appointment's zone. The expected blobs are the files of tests/data/recurrence, made by hand.
#include "outlook/calendar/RecurrenceBlob.h"

#include "icalendar/RecordingAppointment.h"
#include "outlook/calendar/FixedZones.h"
#include "outlook/calendar/RecurrenceSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
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
