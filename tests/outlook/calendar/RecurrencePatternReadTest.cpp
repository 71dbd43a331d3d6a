// Blobs to records. The blobs are composed field by field after the published format, or are the
// files of tests/data/recurrence; the expected records were worked out from the fields by hand.
#include "outlook/calendar/RecurrencePattern.h"

#include "outlook/calendar/RecurrenceSupport.h"
#include "support/TestPaths.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <string>

namespace
{
constexpr unsigned kWestern = 1252;
constexpr AppointmentTexts kTexts{L"Own subject", L"Own place"};
const std::uint32_t kStartDay = MinutesAt(2024, 3, 5);
const std::uint32_t kEndDay = MinutesAt(2024, 6, 30);

// The blob in memory of exactly its size, so that a read behind it shows; the record full of bits
// before.
RecurrenceRead ReadInto(const std::vector<std::byte>& blob,
                        _tagRecurringInfo& record,
                        unsigned codePage = kWestern)
{
    const std::vector<std::byte> exact(blob.begin(), blob.end());
    std::memset(&record, 0xA5, sizeof(record));
    return DecodeRecurrencePattern(exact, kTexts, codePage, record);
}

std::string Read(const std::vector<std::byte>& blob, unsigned codePage = kWestern)
{
    _tagRecurringInfo record;
    EXPECT_EQ(CodecStatus::Ok, ReadInto(blob, record, codePage).status);
    return TextOf(record);
}

std::string Read(const BlobFields& blob, unsigned codePage = kWestern)
{
    return Read(blob.Bytes(), codePage);
}

std::string ReadFile(const std::string& name)
{
    return Read(HexFile("recurrence/" + name + ".hex"));
}

// A daily rule with these modified instances, and room for their exceptions behind it.
BlobFields WithModified(const std::vector<std::uint32_t>& modified)
{
    BlobFields blob;
    blob.Pattern(0x200A, 0, 1440).Lists(0x2023, 10, {}, modified);
    blob.Span(kStartDay, 0x5AE980DF, static_cast<std::uint32_t>(modified.size()));
    return blob;
}

void AddTimes(BlobFields& blob, std::uint32_t day)
{
    blob.U32(day + 600).U32(day + 660).U32(day + 570);
}

// Every file of tests/data/recurrence.
std::vector<std::string> AllFiles()
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(TestData() / "recurrence"))
        if (entry.path().extension() == ".hex")
            names.push_back(entry.path().stem().string());
    std::sort(names.begin(), names.end());
    return names;
}

// Up to the end of EndDate: the fields before, the pattern's own, and both lists.
std::size_t LeastBytes(const std::vector<std::byte>& blob, std::size_t specificBytes)
{
    const auto countAt = [&](std::size_t at) {
        return std::to_integer<std::size_t>(blob[at]) * 4 + 4;
    };
    std::size_t at = 22 + specificBytes + 12;
    at += countAt(at);
    at += countAt(at);
    return at + 8;
}
} // namespace

TEST(RecurrencePatternReadTest, ReadsDailyRulesWithEveryKindOfEnd)
{
    EXPECT_EQ(ReadFile("daily_never"), "kind 1\ndaily.interval 2\n");
    EXPECT_EQ(ReadFile("daily_by_count"), "kind 1\ndaily.interval 3\nend.kind 1\nend.times 7\n");
    EXPECT_EQ(ReadFile("daily_by_date"),
              "kind 1\ndaily.interval 1\nend.kind 2\nend.date 2024-06-30 00:00\n");
    // Any other end, as mail clients also write it, is none; the count and date beside it are not
    // read.
    for (const std::uint32_t type : {0xFFFFFFFFu, 0u, 0x2020u, 0x2024u})
    {
        BlobFields blob;
        blob.Pattern(0x200A, 0, 4320).Lists(type, 7, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(blob), "kind 1\ndaily.interval 3\n") << type;
    }
}

TEST(RecurrencePatternReadTest, CutsADailyIntervalToWholeDays)
{
    BlobFields blob;
    blob.Pattern(0x200A, 0, 4319).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
    EXPECT_EQ(Read(blob), "kind 1\ndaily.interval 2\n");
}

TEST(RecurrencePatternReadTest, ReadsWeeklyRules)
{
    EXPECT_EQ(ReadFile("weekly_by_count"),
              "kind 2\nweekly.interval 2\nweekly.days -M-W---\nend.kind 1\nend.times 5\n");
    EXPECT_EQ(ReadFile("weekly_by_date"),
              "kind 2\nweekly.interval 1\nweekly.days S-----S\nend.kind 2\nend.date 2024-12-31 "
              "00:00\n");
    // Bits beyond the week mean nothing.
    BlobFields blob;
    blob.Pattern(0x200B, 1, 1).U32(0xFFFFFF84).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
    EXPECT_EQ(Read(blob), "kind 2\nweekly.interval 1\nweekly.days --T----\n");
}

TEST(RecurrencePatternReadTest, TakesEveryWorkingDayForAWeeklyRule)
{
    BlobFields blob;
    blob.Pattern(0x200A, 1, 1).U32(0x3E).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
    EXPECT_EQ(Read(blob), "kind 2\nweekly.interval 1\nweekly.days -MTWTF-\n");
    // Nor does a yearly frequency count here.
    BlobFields yearly;
    yearly.Pattern(0x200D, 1, 24).U32(0x3E).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
    EXPECT_EQ(Read(yearly), "kind 2\nweekly.interval 24\nweekly.days -MTWTF-\n");
}

TEST(RecurrencePatternReadTest, TakesMonthEndsAndHijriMonthsForPlainOnes)
{
    for (const std::uint32_t type : {2u, 4u, 10u, 12u})
    {
        BlobFields monthly;
        monthly.Pattern(0x200C, type, 3).U32(31).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(monthly),
                  "kind 3\nmonthly.byMonthDay -1\nmonthly.interval 3\nmonthly.day 31\n")
            << type;
        BlobFields yearly;
        yearly.Pattern(0x200D, type, 35).U32(31).Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(yearly), "kind 4\nyearly.byMonthDay -1\nyearly.interval 2\nyearly.day 31\n")
            << type;
    }
}

TEST(RecurrencePatternReadTest, ReadsWeekdaysOfMonthsAndYears)
{
    for (const std::uint32_t type : {3u, 11u})
    {
        BlobFields monthly;
        monthly.Pattern(0x200C, type, 2).U32(0x06).U32(4);
        monthly.Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(monthly),
                  "kind 3\nmonthly.byDay -1\nmonthly.interval 2\nmonthly.nth 4\nmonthly.days "
                  "-MT----\n")
            << type;
        // The frequency alone tells yearly ones, also a daily one is monthly.
        BlobFields yearly;
        yearly.Pattern(0x200D, type, 24).U32(0x06).U32(1);
        yearly.Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(yearly),
                  "kind 4\nyearly.byDay -1\nyearly.interval 2\nyearly.nth 1\nyearly.days -MT----\n")
            << type;
        BlobFields daily;
        daily.Pattern(0x200A, type, 2).U32(0).U32(2);
        daily.Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(daily), "kind 3\nmonthly.byDay -1\nmonthly.interval 2\nmonthly.nth 2\n")
            << type;
    }
}

TEST(RecurrencePatternReadTest, TakesAnyWeekButTheFirstFourForTheLast)
{
    for (const std::uint32_t week : {0u, 5u, 6u, 0x7FFFFFFFu, 0x80000000u, 0xFFFFFFFFu})
    {
        BlobFields blob;
        blob.Pattern(0x200C, 3, 1).U32(0).U32(week);
        blob.Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(blob), "kind 3\nmonthly.byDay -1\nmonthly.interval 1\nmonthly.nth -1\n")
            << week;
    }
    for (int week = 1; week <= 4; ++week)
    {
        BlobFields blob;
        blob.Pattern(0x200C, 3, 1).U32(0).U32(static_cast<std::uint32_t>(week));
        blob.Lists(0x2023, 10, {}, {}).Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(blob),
                  "kind 3\nmonthly.byDay -1\nmonthly.interval 1\nmonthly.nth " +
                      std::to_string(week) + "\n");
    }
}

TEST(RecurrencePatternReadTest, ReadsAnUnknownPatternWithoutAKind)
{
    for (const std::uint32_t type : {5u, 6u, 9u, 13u, 0xFFFFu})
    {
        BlobFields blob;
        blob.Pattern(0x200D, type, 12).Lists(0x2022, 9, {MinutesAt(2024, 3, 7)}, {});
        blob.Span(kStartDay, kEndDay);
        EXPECT_EQ(Read(blob), "end.kind 1\nend.times 9\ndeleted0 2024-03-07 00:00\n") << type;
    }
}

TEST(RecurrencePatternReadTest, DoesNotLookAtVersionsOrReservedFields)
{
    BlobFields blob;
    blob.U16(0xFFFF).U16(0).U16(0x200A).U16(0).U16(0x17).U32(12345).U32(1440).U32(1);
    blob.U32(0x2023).U32(99).U32(6).U32(0).U32(0).U32(0xFFFFFFFF).U32(0);
    EXPECT_EQ(Read(blob), "kind 1\ndaily.interval 1\n");
}

TEST(RecurrencePatternReadTest, ReadsDatesAsTheyStand)
{
    BlobFields blob;
    blob.Pattern(0x200A, 0, 1440);
    blob.Lists(0x2021,
               10,
               {MinutesAt(2024, 3, 9), MinutesAt(2024, 3, 7, 23, 59), 0, 0xFFFFFFFF},
               {MinutesAt(1899, 12, 29, 6, 0)});
    blob.Span(kStartDay, 0x5AE980DF, 1);
    // 0xFFFFFFFF minutes are 2,982,616 days and 255 minutes.
    const DATE last = 2982616.0 - 109205.0 + 255.0 / 1440.0;
    _tagRecurringInfo record;
    ASSERT_EQ(CodecStatus::Ok, ReadInto(blob.Bytes(), record).status);
    EXPECT_EQ(record.tEndInfo.dtEndDateTime, DateOf(4500, 12, 31, 23, 59));
    EXPECT_EQ(record.arrDeletedInstance[0], DateOf(2024, 3, 9));
    EXPECT_NEAR(record.arrDeletedInstance[1], DateOf(2024, 3, 7, 23, 59), 1e-9);
    EXPECT_EQ(record.arrDeletedInstance[2], -109205.0);
    EXPECT_NEAR(record.arrDeletedInstance[3], last, 1e-8);
    EXPECT_EQ(record.arrDeletedInstance[4], 0.0);
    EXPECT_EQ(record.arrModifiedInstance[0].dtModifiedDate, -1.25);
}

TEST(RecurrencePatternReadTest, DropsDatesBeyondTheRecordButCountsThem)
{
    std::vector<std::uint32_t> deleted;
    std::vector<std::uint32_t> modified;
    for (std::uint32_t i = 0; i < 70; ++i)
        deleted.push_back(kStartDay + i * 1440);
    for (std::uint32_t i = 0; i < 40; ++i)
        modified.push_back(kStartDay + i * 2880);
    BlobFields blob;
    blob.Pattern(0x200A, 0, 1440).Lists(0x2021, 10, deleted, modified).Span(kStartDay, kEndDay, 40);
    for (std::uint32_t i = 0; i < 40; ++i)
    {
        AddTimes(blob, modified[i]);
        blob.U16(0x0010).U16(2).U16(1).Text(std::string(1, static_cast<char>('A' + i)));
    }
    _tagRecurringInfo record;
    const RecurrenceRead read = ReadInto(blob.Bytes(), record);
    ASSERT_EQ(CodecStatus::Ok, read.status);
    EXPECT_EQ(read.exceptions, 32u);
    EXPECT_EQ(record.arrDeletedInstance[63], DateOf(2024, 3, 5) + 63);
    EXPECT_EQ(record.tEndInfo.dtEndDateTime, DateOf(2024, 6, 30));
    EXPECT_EQ(record.arrModifiedInstance[31].dtModifiedDate, DateOf(2024, 3, 5) + 62);
    EXPECT_EQ(record.arrModifiedInstance[31].szLocation[0], 'A' + 31);
    EXPECT_EQ(record.arrModifiedInstance[31].szLocation[1], 0);
    // Each exception has 14 bytes and 5 of text.
    EXPECT_EQ(read.offset, blob.Bytes().size() - 8 * 19);
}

TEST(RecurrencePatternReadTest, ReadsExceptions)
{
    EXPECT_EQ(ReadFile("daily_exceptions"),
              "kind 1\ndaily.interval 1\nend.kind 1\nend.times 20\n"
              "deleted0 2024-03-07 00:00\ndeleted1 2024-03-09 00:00\n"
              "modified0 2024-03-09 00:00\nmodified0.start 2024-03-10 10:00\n"
              "modified0.end 2024-03-10 11:15\nmodified0.original 2024-03-09 09:30\n"
              "modified0.subject Coffee at Zo{00EB}{2019}s\n"
              "modified1 2024-03-07 00:00\nmodified1.start 2024-03-07 09:30\n"
              "modified1.end 2024-03-07 09:45\nmodified1.original 2024-03-07 09:30\n"
              "modified1.location Room 5\n");
}

TEST(RecurrencePatternReadTest, ReadsExceptionsBehindThePatternsOwnFields)
{
    const std::string instances =
        "deleted0 2024-03-12 00:00\n"
        "modified0 2024-03-12 00:00\nmodified0.start 2024-03-13 10:00\n"
        "modified0.end 2024-03-13 11:00\nmodified0.original 2024-03-12 09:30\n"
        "modified0.subject Moved\nmodified0.location Room 5\n";
    EXPECT_EQ(ReadFile("weekly_exception"),
              "kind 2\nweekly.interval 1\nweekly.days --T----\n" + instances);
    EXPECT_EQ(ReadFile("monthly_nth_exception"),
              "kind 3\nmonthly.byDay -1\nmonthly.interval 1\nmonthly.nth 2\n"
              "monthly.days --T----\n" +
                  instances);
}

// The count right before the exceptions is not read.
TEST(RecurrencePatternReadTest, ReadsAnExceptionForEachModifiedDate)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    const auto blobWith = [&](const std::vector<std::uint32_t>& modified, std::uint32_t count) {
        BlobFields blob;
        blob.Pattern(0x200A, 0, 1440).Lists(0x2023, 10, {}, modified);
        blob.Span(kStartDay, 0x5AE980DF, count);
        for (const std::uint32_t start : {day, day + 1440})
        {
            AddTimes(blob, start);
            blob.U16(0x0001).U16(2).U16(1).Text("s");
        }
        return blob.Bytes();
    };
    _tagRecurringInfo record;
    for (const std::uint32_t count : {0u, 1u, 9u, 0xFFFFu})
    {
        EXPECT_EQ(ReadInto(blobWith({day, day + 1440}, count), record).exceptions, 2u) << count;
        EXPECT_EQ(TextOf(record),
                  "kind 1\ndaily.interval 1\n"
                  "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
                  "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
                  "modified0.subject s\nmodified0.location Own place\n"
                  "modified1 2024-03-08 00:00\nmodified1.start 2024-03-08 10:00\n"
                  "modified1.end 2024-03-08 11:00\nmodified1.original 2024-03-08 09:30\n"
                  "modified1.subject s\nmodified1.location Own place\n")
            << count;
        EXPECT_EQ(ReadInto(blobWith({}, count), record).exceptions, 0u) << count;
        EXPECT_EQ(TextOf(record), "kind 1\ndaily.interval 1\n") << count;
    }
}

TEST(RecurrencePatternReadTest, SkipsEachOverrideThatItKnows)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    // All eight at once, in their order, and a second exception behind to show that it is found.
    BlobFields blob = WithModified({day, day + 1440});
    AddTimes(blob, day);
    blob.U16(0x00FF);
    blob.U16(3).U16(2).Text("Su").U32(1).U32(15).U32(1);
    blob.U16(4).U16(3).Text("Loc").U32(2).U32(0).U32(1);
    AddTimes(blob, day + 1440);
    blob.U16(0x0011).U16(2).U16(1).Text("s").U16(2).U16(1).Text("l");
    EXPECT_EQ(Read(blob),
              "kind 1\ndaily.interval 1\n"
              "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
              "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
              "modified0.subject Su\nmodified0.location Loc\n"
              "modified1 2024-03-08 00:00\nmodified1.start 2024-03-08 10:00\n"
              "modified1.end 2024-03-08 11:00\nmodified1.original 2024-03-08 09:30\n"
              "modified1.subject s\nmodified1.location l\n");
    // Each one alone.
    for (const std::uint32_t bit : {0x02u, 0x04u, 0x08u, 0x20u, 0x40u, 0x80u})
    {
        BlobFields one = WithModified({day, day + 1440});
        AddTimes(one, day);
        one.U16(bit).U32(0xFFFFFFFF);
        AddTimes(one, day + 1440);
        one.U16(0);
        EXPECT_EQ(Read(one),
                  "kind 1\ndaily.interval 1\n"
                  "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
                  "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
                  "modified0.subject Own subject\nmodified0.location Own place\n"
                  "modified1 2024-03-08 00:00\nmodified1.start 2024-03-08 10:00\n"
                  "modified1.end 2024-03-08 11:00\nmodified1.original 2024-03-08 09:30\n"
                  "modified1.subject Own subject\nmodified1.location Own place\n")
            << bit;
    }
}

TEST(RecurrencePatternReadTest, TakesTheAppointmentsTextsWhereAnExceptionHasNone)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields subjectAlone = WithModified({day});
    AddTimes(subjectAlone, day);
    subjectAlone.U16(0x0001).U16(2).U16(1).Text("s");
    EXPECT_NE(Read(subjectAlone).find("modified0.subject s\nmodified0.location Own place\n"),
              std::string::npos);
    BlobFields placeAlone = WithModified({day});
    AddTimes(placeAlone, day);
    placeAlone.U16(0x0010).U16(2).U16(1).Text("p");
    EXPECT_NE(Read(placeAlone).find("modified0.subject Own subject\nmodified0.location p\n"),
              std::string::npos);
    // An override that is empty is one.
    BlobFields empty = WithModified({day});
    AddTimes(empty, day);
    empty.U16(0x0011).U16(1).U16(0).U16(1).U16(0);
    EXPECT_EQ(Read(empty).find("Own"), std::string::npos);
}

TEST(RecurrencePatternReadTest, GoesByTheSecondLengthOfAText)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day});
    AddTimes(blob, day);
    blob.U16(0x0011).U16(500).U16(2).Text("ab").U16(0).U16(3).Text("cde");
    EXPECT_NE(Read(blob).find("modified0.subject ab\nmodified0.location cde\n"), std::string::npos);
}

TEST(RecurrencePatternReadTest, ReadsTextsInTheCodePage)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day});
    AddTimes(blob, day);
    blob.U16(0x0011).U16(5).U16(4).Text("\x93\xFA\x96\x7B").U16(2).U16(1).Text("\x7E");
    EXPECT_NE(Read(blob, 932).find("modified0.subject {65E5}{672C}\nmodified0.location ~\n"),
              std::string::npos);
    EXPECT_NE(Read(blob, 1252).find("modified0.subject {201C}{00FA}{2013}{\n"), std::string::npos);
}

TEST(RecurrencePatternReadTest, LeavesTheTextsInUnitsUnread)
{
    // Both texts stand there twice: as bytes, where the code page lacks their one character, and
    // behind all exceptions in UTF-16 units.
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day});
    AddTimes(blob, day);
    blob.U16(0x0011).U16(2).U16(1).Text("?").U16(2).U16(1).Text("?");
    blob.U32(0).U32(4).U32(0).U32(0);
    AddTimes(blob, day);
    blob.U16(1).U16(0x4E2D).U16(1).U16(0x4E2D).U32(0).U32(0);
    EXPECT_EQ(Read(blob),
              "kind 1\ndaily.interval 1\n"
              "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
              "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
              "modified0.subject ?\nmodified0.location ?\n");
}

TEST(RecurrencePatternReadTest, CutsTextsAt259Units)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    for (const std::size_t length : {258u, 259u, 260u, 5000u})
    {
        for (const char letter : {'x', '\xE4'})
        {
            BlobFields blob = WithModified({day, day});
            AddTimes(blob, day);
            blob.U16(0x0011).U16(0).U16(static_cast<std::uint32_t>(length));
            blob.Text(std::string(length, letter)).U16(0).U16(static_cast<std::uint32_t>(length));
            blob.Text(std::string(length, letter));
            AddTimes(blob, day);
            blob.U16(0);
            _tagRecurringInfo record;
            EXPECT_EQ(ReadInto(blob.Bytes(), record).exceptions, 2u);
            const auto& subject = record.arrModifiedInstance[0].szSubject;
            const std::ptrdiff_t units =
                std::ranges::count(subject, static_cast<std::uint8_t>(letter));
            EXPECT_EQ(units, static_cast<std::ptrdiff_t>(std::min<std::size_t>(length, 259)));
            EXPECT_EQ(subject[259], 0);
            EXPECT_EQ(record.arrModifiedInstance[0].szLocation[259], 0);
        }
    }
    const std::wstring longText(300, L'o');
    BlobFields blob = WithModified({day});
    AddTimes(blob, day);
    blob.U16(0);
    _tagRecurringInfo record;
    EXPECT_EQ(CodecStatus::Ok,
              DecodeRecurrencePattern(blob.Bytes(), {longText, longText}, kWestern, record).status);
    EXPECT_EQ(record.arrModifiedInstance[0].szSubject[258], 'o');
    EXPECT_EQ(record.arrModifiedInstance[0].szSubject[259], 0);
    EXPECT_EQ(record.arrModifiedInstance[0].szLocation[259], 0);
}

TEST(RecurrencePatternReadTest, MisreadsWhatFollowsAnUnknownOverrideAndKeepsWithinTheBlob)
{
    // A label of colour, 0x0100: the reader takes its four bytes, and what follows, for the next
    // exception's fields.
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day, day + 1440, day + 2880});
    AddTimes(blob, day);
    blob.U16(0x0100).U32(day + 1);
    AddTimes(blob, day + 1440);
    blob.U16(0);
    AddTimes(blob, day + 2880);
    blob.U16(0);
    _tagRecurringInfo record;
    const RecurrenceRead read = ReadInto(blob.Bytes(), record);
    EXPECT_EQ(read.status, CodecStatus::Ok);
    const std::string text = TextOf(record);
    EXPECT_NE(text.find("modified0.start 2024-03-07 10:00\nmodified0.end 2024-03-07 11:00\n"
                        "modified0.original 2024-03-07 09:30\nmodified0.subject Own subject\n"),
              std::string::npos);
    // The second begins with the label, takes 10:00 and 11:00 of the 8th for its end and original,
    // and the low half of 09:30, 0x0D4430BA, for its overrides: a meeting type, a reminder, and a
    // location of 0x0D44 bytes, which are not there.
    EXPECT_EQ(day + 1440 + 570, 0x0D4430BAu);
    EXPECT_NE(text.find("modified1 2024-03-08 00:00\n"), std::string::npos);
    EXPECT_NE(text.find("modified2 2024-03-09 00:00\n"), std::string::npos);
    EXPECT_EQ(read.exceptions, 1u);
    EXPECT_EQ(text.find("modified1.start"), std::string::npos);
    EXPECT_EQ(text.find("modified2.start"), std::string::npos);
}

TEST(RecurrencePatternReadTest, RunsOnBehindAnUnknownOverride)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day, day + 1440});
    AddTimes(blob, day);
    blob.U16(0x0100).U32(5); // the fifth label of colour
    // From 10:00 to 11:00, at first at 10:41; titled.
    blob.U32(day + 1440 + 600).U32(day + 1440 + 660).U32(day + 1440 + 641);
    blob.U16(0x0001).U16(6).U16(5).Text("Title");
    // The label is taken for the second one's start, so that the low half of 10:41 comes to be its
    // overrides, a subject, and the overrides its length of one byte: the low one of the 6.
    EXPECT_EQ(day + 1440 + 641, 0x0D443101u);
    _tagRecurringInfo record;
    const RecurrenceRead read = ReadInto(blob.Bytes(), record);
    EXPECT_EQ(read.status, CodecStatus::Ok);
    EXPECT_EQ(read.exceptions, 2u);
    EXPECT_EQ(read.offset, blob.Bytes().size() - 1 - 2 - 5);
    EXPECT_EQ(TextOf(record),
              "kind 1\ndaily.interval 1\n"
              "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
              "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
              "modified0.subject Own subject\nmodified0.location Own place\n"
              "modified1 2024-03-08 00:00\nmodified1.start 1601-01-01 00:05\n"
              "modified1.end 2024-03-08 10:00\nmodified1.original 2024-03-08 11:00\n"
              "modified1.subject {0006}\nmodified1.location Own place\n");
}

// A body of its own has no field in the record.
TEST(RecurrencePatternReadTest, ReadsTheExceptionBehindOneWithItsOwnBody)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day, day + 1440});
    AddTimes(blob, day);
    blob.U16(0x0200);
    AddTimes(blob, day + 1440);
    blob.U16(0x0210).U16(2).U16(1).Text("l");
    EXPECT_EQ(Read(blob),
              "kind 1\ndaily.interval 1\n"
              "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
              "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
              "modified0.subject Own subject\nmodified0.location Own place\n"
              "modified1 2024-03-08 00:00\nmodified1.start 2024-03-08 10:00\n"
              "modified1.end 2024-03-08 11:00\nmodified1.original 2024-03-08 09:30\n"
              "modified1.subject Own subject\nmodified1.location l\n");
}

TEST(RecurrencePatternReadTest, KeepsWholeExceptionsBeforeOneThatIsCut)
{
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields blob = WithModified({day, day + 1440});
    AddTimes(blob, day);
    blob.U16(0x0001).U16(2).U16(1).Text("s");
    const std::size_t wholeBytes = blob.Bytes().size();
    AddTimes(blob, day + 1440);
    blob.U16(0x0011).U16(2).U16(1).Text("t").U16(2).U16(1).Text("l");
    const std::string first =
        "kind 1\ndaily.interval 1\n"
        "modified0 2024-03-07 00:00\nmodified0.start 2024-03-07 10:00\n"
        "modified0.end 2024-03-07 11:00\nmodified0.original 2024-03-07 09:30\n"
        "modified0.subject s\nmodified0.location Own place\n"
        "modified1 2024-03-08 00:00\n";
    const std::vector<std::byte>& bytes = blob.Bytes();
    for (std::size_t size = wholeBytes; size < bytes.size(); ++size)
    {
        _tagRecurringInfo record;
        const RecurrenceRead read =
            ReadInto({bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)}, record);
        EXPECT_EQ(read.status, CodecStatus::Ok);
        EXPECT_EQ(read.exceptions, 1u);
        EXPECT_EQ(read.offset, wholeBytes);
        ASSERT_EQ(TextOf(record), first) << size;
    }
    EXPECT_NE(Read(blob).find("modified1.subject t\nmodified1.location l\n"), std::string::npos);
}

TEST(RecurrencePatternReadTest, RefusesABlobThatEndsBeforeItsEndDateDoes)
{
    const std::string untouched = TextOf(NoRecurrence());
    for (const std::string& name : AllFiles())
    {
        const std::vector<std::byte> whole = HexFile("recurrence/" + name + ".hex");
        // What follows is taken for the missing field, and the start date so for a count that no
        // blob can hold.
        const bool isMonthWithoutFields =
            name == "monthly_by_neither" || name == "monthly_without_week";
        const std::uint32_t pattern = std::to_integer<std::uint32_t>(whole[6]);
        const std::size_t least = isMonthWithoutFields ? whole.size() + 1
                                                       : LeastBytes(whole,
                                                                    pattern == 0   ? 0
                                                                    : pattern == 3 ? 8
                                                                                   : 4);
        for (std::size_t size = 0; size <= whole.size(); ++size)
        {
            _tagRecurringInfo record;
            const RecurrenceRead read = ReadInto(
                {whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}, record);
            EXPECT_LE(read.offset, size);
            if (size < least)
            {
                ASSERT_EQ(read.status, CodecStatus::Truncated) << name << " " << size;
                ASSERT_EQ(TextOf(record), untouched) << name << " " << size;
            }
            else
            {
                ASSERT_EQ(read.status, CodecStatus::Ok) << name << " " << size;
            }
        }
    }
}

// The end date of daily_exceptions ends with byte 66, its exceptions with 121 and 149.
TEST(RecurrencePatternReadTest, KeepsOfACutBlobWhatIsThereWhole)
{
    const std::string rule = "kind 1\ndaily.interval 1\nend.kind 1\nend.times 20\n"
                             "deleted0 2024-03-07 00:00\ndeleted1 2024-03-09 00:00\n";
    const std::string firstDate = "modified0 2024-03-09 00:00\n";
    const std::string first = "modified0.start 2024-03-10 10:00\nmodified0.end 2024-03-10 11:15\n"
                              "modified0.original 2024-03-09 09:30\n"
                              "modified0.subject Coffee at Zo{00EB}{2019}s\n";
    const std::string secondDate = "modified1 2024-03-07 00:00\n";
    const std::string second = "modified1.start 2024-03-07 09:30\nmodified1.end 2024-03-07 09:45\n"
                               "modified1.original 2024-03-07 09:30\nmodified1.location Room 5\n";
    const std::vector<std::byte> whole = HexFile("recurrence/daily_exceptions.hex");
    ASSERT_LT(149u, whole.size());
    for (std::size_t size = 0; size <= whole.size(); ++size)
    {
        std::string expected;
        if (size >= 66)
            expected = rule + firstDate + (size >= 121 ? first : "") + secondDate +
                       (size >= 149 ? second : "");
        _tagRecurringInfo record;
        ReadInto({whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)}, record);
        ASSERT_EQ(TextOf(record), expected) << size;
    }
}

TEST(RecurrencePatternReadTest, RefusesCountsThatTheBlobCannotHold)
{
    for (const std::uint32_t count : {2u, 0x40000000u, 0x80000001u, 0xFFFFFFFFu})
    {
        BlobFields deleted;
        deleted.Pattern(0x200A, 0, 1440).U32(0x2023).U32(10).U32(0).U32(count).U32(kStartDay);
        _tagRecurringInfo record;
        EXPECT_EQ(ReadInto(deleted.Bytes(), record).status, CodecStatus::Truncated) << count;
        BlobFields modified;
        modified.Pattern(0x200A, 0, 1440).U32(0x2023).U32(10).U32(0).U32(0).U32(count);
        modified.U32(kStartDay);
        EXPECT_EQ(ReadInto(modified.Bytes(), record).status, CodecStatus::Truncated) << count;
        EXPECT_EQ(TextOf(record), "");
    }
}

TEST(RecurrencePatternReadTest, FillsEveryByteOfTheRecord)
{
    for (const std::string& name : AllFiles())
    {
        const std::vector<std::byte> blob = HexFile("recurrence/" + name + ".hex");
        _tagRecurringInfo first;
        _tagRecurringInfo second;
        std::memset(&first, 0x00, sizeof(first));
        std::memset(&second, 0xFF, sizeof(second));
        const RecurrenceRead readFirst = DecodeRecurrencePattern(blob, kTexts, kWestern, first);
        const RecurrenceRead readSecond = DecodeRecurrencePattern(blob, kTexts, kWestern, second);
        EXPECT_EQ(readFirst.status, readSecond.status);
        EXPECT_EQ(std::memcmp(&first, &second, sizeof(first)), 0) << name;
    }
}

// --- Where the reader and the writer disagree ----------------------------------------------------

namespace
{
std::vector<std::byte> WrittenAgain(const std::vector<std::byte>& blob, DATE localStart)
{
    _tagRecurringInfo record;
    EXPECT_EQ(CodecStatus::Ok, ReadInto(blob, record).status);
    std::vector<std::byte> again;
    EXPECT_EQ(CodecStatus::Ok, EncodeRecurrencePattern(record, {localStart, 60}, kWestern, again));
    return again;
}
} // namespace

TEST(RecurrencePatternReadTest, WritesBackWhatItRead)
{
    const DATE start = DateOf(2024, 3, 5, 9, 30);
    for (const char* const name : {"daily_never",
                                   "daily_by_count",
                                   "weekly_by_count",
                                   "weekly_by_date",
                                   "monthly_day_by_count",
                                   "monthly_nth",
                                   "monthly_last",
                                   "daily_deleted",
                                   "daily_exceptions",
                                   "weekly_exception",
                                   "monthly_nth_exception"})
    {
        const std::vector<std::byte> blob = HexFile(std::string("recurrence/") + name + ".hex");
        EXPECT_EQ(HexOf(blob), HexOf(WrittenAgain(blob, start))) << name;
    }
}

TEST(RecurrencePatternReadTest, LosesTheIntervalAndWeekdayOfAYearlyRuleOnTheWayBack)
{
    const DATE start = DateOf(2024, 3, 5, 9, 30);
    BlobFields interval;
    interval.Pattern(0x200D, 2, 24).U32(5).Lists(0x2022, 3, {}, {}).Span(kStartDay, kEndDay);
    EXPECT_EQ(HexOf(HexFile("recurrence/yearly_by_count.hex")),
              HexOf(WrittenAgain(interval.Bytes(), start)));

    BlobFields weekday;
    weekday.Pattern(0x200D, 3, 12).U32(0x04).U32(2).Lists(0x2023, 10, {}, {});
    weekday.Span(kStartDay, kEndDay);
    EXPECT_EQ(HexOf(HexFile("recurrence/yearly_by_weekday.hex")),
              HexOf(WrittenAgain(weekday.Bytes(), DateOf(2024, 12, 31, 9, 30))));
}

TEST(RecurrencePatternReadTest, MisreadsAMonthlyRuleThatWasWrittenWithoutItsWeek)
{
    // Each field is taken four bytes too late: the end type for the week, so that it is the last
    // one, and the count of 10 for the end type, so that there is no end. The lists begin at the
    // count of modified instances, and the start date is taken for another count, which is too
    // large.
    _tagRecurringInfo record;
    const RecurrenceRead read = ReadInto(HexFile("recurrence/monthly_without_week.hex"), record);
    EXPECT_EQ(read.status, CodecStatus::Truncated);
    EXPECT_EQ(TextOf(record), "");
}
