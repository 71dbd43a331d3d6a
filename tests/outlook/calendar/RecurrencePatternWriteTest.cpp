// Records to blobs, byte for byte. The expected blobs are the files of tests/data/recurrence, made
// by hand from the published format; each says how its values come about.
#include "outlook/calendar/RecurrencePattern.h"

#include "outlook/calendar/RecurrenceSupport.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <string>

namespace
{
constexpr unsigned kWestern = 1252;
const DATE kTuesdayMorning = DateOf(2024, 3, 5, 9, 30);

_tagRecurringInfo DailyEvery(unsigned days)
{
    _tagRecurringInfo record = NoRecurrence();
    record.eRecurType = Daily;
    record.tDaily.ulIntervalDay = days;
    return record;
}

_tagRecurringInfo WeeklyEvery(unsigned weeks, std::initializer_list<int> days)
{
    _tagRecurringInfo record = NoRecurrence();
    record.eRecurType = Weekly;
    record.tWeekly.ulIntervalWeek = weeks;
    SetWeekdays(record.tWeekly.bValidWeekday, days);
    return record;
}

_tagRecurringInfo MonthlyOnDay(unsigned months, int day)
{
    _tagRecurringInfo record = NoRecurrence();
    record.eRecurType = Monthly;
    record.tMonthly.ulIntervalMonth = months;
    record.tMonthly.bIsByMonthDayMode = -1;
    record.tMonthly.lMonthDay = day;
    return record;
}

_tagRecurringInfo MonthlyOnWeekdays(unsigned months, int nth, std::initializer_list<int> days)
{
    _tagRecurringInfo record = NoRecurrence();
    record.eRecurType = Monthly;
    record.tMonthly.ulIntervalMonth = months;
    record.tMonthly.bIsByDayMode = -1;
    record.tMonthly.lNth = nth;
    SetWeekdays(record.tMonthly.bValidWeekday, days);
    return record;
}

_tagRecurringInfo YearlyOnDay(unsigned years, int day)
{
    _tagRecurringInfo record = NoRecurrence();
    record.eRecurType = Yearly;
    record.tYearly.ulIntervalYear = years;
    record.tYearly.bIsByMonthDayMode = -1;
    record.tYearly.lDay = day;
    return record;
}

_tagRecurringInfo Until(_tagRecurringInfo record, DATE date, unsigned times = 0)
{
    record.tEndInfo = {EndByDate, date, times};
    return record;
}

_tagRecurringInfo Times(_tagRecurringInfo record, unsigned times)
{
    record.tEndInfo = {EndByCount, 0.0, times};
    return record;
}

void PutInstance(_tagModifiedInstanceInfo& instance,
                 DATE date,
                 DATE start,
                 DATE end,
                 DATE original,
                 std::wstring_view subject,
                 std::wstring_view location)
{
    instance.dtModifiedDate = date;
    instance.dtStartDateTime = start;
    instance.dtEndDateTime = end;
    instance.dtOriginalDateTime = original;
    PutText(subject, instance.szSubject);
    PutText(location, instance.szLocation);
}

std::vector<std::byte> Written(const _tagRecurringInfo& record,
                               DATE localStart = kTuesdayMorning,
                               int minutes = 60)
{
    std::vector<std::byte> blob{std::byte{1}};
    EXPECT_EQ(CodecStatus::Ok,
              EncodeRecurrencePattern(record, {localStart, minutes}, kWestern, blob));
    return blob;
}

CodecStatus Refused(const _tagRecurringInfo& record)
{
    std::vector<std::byte> blob{std::byte{1}};
    const CodecStatus status =
        EncodeRecurrencePattern(record, {kTuesdayMorning, 60}, kWestern, blob);
    EXPECT_TRUE(blob.empty());
    return status;
}

void ExpectFile(const std::string& name, const std::vector<std::byte>& blob)
{
    EXPECT_EQ(HexOf(HexFile("recurrence/" + name + ".hex")), HexOf(blob)) << name;
}

// The field of four bytes at an offset.
std::uint32_t FieldAt(const std::vector<std::byte>& blob, std::size_t offset)
{
    std::uint32_t value = 0;
    for (std::size_t i = 0; i < 4 && offset + i < blob.size(); ++i)
        value |= std::to_integer<std::uint32_t>(blob[offset + i]) << (8 * i);
    return value;
}

constexpr std::size_t kFirstDateAt = 10;
constexpr std::size_t kPeriodAt = 14;
} // namespace

TEST(RecurrencePatternWriteTest, WritesDailyRulesWithEveryKindOfEnd)
{
    ExpectFile("daily_never", Written(DailyEvery(2)));
    ExpectFile("daily_by_count", Written(Times(DailyEvery(3), 7)));
    // The time of day of the end does not matter.
    ExpectFile(
        "daily_by_date",
        Written(Until(DailyEvery(1), DateOf(2024, 6, 30, 18, 45)), DateOf(2024, 3, 5, 23, 50), 25));
}

TEST(RecurrencePatternWriteTest, TakesTheTypeOfTheEndFromTheCountAndItsDateFromTheKind)
{
    ExpectFile("daily_by_date_with_count", Written(Until(DailyEvery(1), DateOf(2024, 6, 30), 7)));
    ExpectFile("daily_by_count_of_zero", Written(Times(DailyEvery(1), 0)));

    _tagRecurringInfo odd = Until(DailyEvery(1), DateOf(2024, 6, 30));
    odd.tEndInfo.eEndType = static_cast<_tagNAppointmentEndType>(3);
    ExpectFile("daily_end_of_no_kind", Written(odd));
}

TEST(RecurrencePatternWriteTest, KeepsTypeAndDateOfTheEndApartWhereTheyDisagree)
{
    struct Row
    {
        _tagEndInfo end;
        std::uint32_t type;
        std::uint32_t occurrences;
        std::uint32_t endMinutes;
    };
    constexpr std::uint32_t kNever = 0x5AE980DF;
    const DATE date = DateOf(2024, 6, 30);
    const Row rows[] = {
        {{NoEnd, date, 0}, 0x2021, 10, kNever},
        {{NoEnd, 0.0, 7}, 0x2022, 7, kNever},
        {{NoEnd, date, 7}, 0x2022, 7, kNever},
        // No instances: a day less than the start.
        {{EndByCount, date, 0}, 0x2021, 10, MinutesAt(2024, 3, 4)},
    };
    for (const Row& row : rows)
    {
        _tagRecurringInfo record = DailyEvery(1);
        record.tEndInfo = row.end;
        BlobFields expected;
        expected.Pattern(0x200A, 0, 1440).Lists(row.type, row.occurrences, {}, {});
        expected.Span(MinutesAt(2024, 3, 5), row.endMinutes).U32(0).U32(0);
        EXPECT_EQ(HexOf(expected.Bytes()), HexOf(Written(record)));
    }
}

TEST(RecurrencePatternWriteTest, TakesADateNearZeroForNone)
{
    // End type behind 22 bytes of fixed fields, end date behind it, the count, the week and two
    // lists.
    const auto typeOf = [](DATE date) { return FieldAt(Written(Until(DailyEvery(1), date)), 22); };
    EXPECT_EQ(typeOf(0.0), 0x2023u);
    EXPECT_EQ(typeOf(0.000009), 0x2023u);
    EXPECT_EQ(typeOf(-0.000009), 0x2023u);
    EXPECT_EQ(typeOf(0.000011), 0x2021u);
    EXPECT_EQ(typeOf(-0.000011), 0x2021u);
    EXPECT_EQ(typeOf(std::numeric_limits<double>::quiet_NaN()), 0x2023u);
}

TEST(RecurrencePatternWriteTest, WritesWeeklyRules)
{
    ExpectFile("weekly_by_count", Written(Times(WeeklyEvery(2, {1, 3}), 5)));
    ExpectFile("weekly_by_date", Written(Until(WeeklyEvery(1, {0, 6}), DateOf(2024, 12, 31))));
    ExpectFile("weekly_never_from_sunday",
               Written(WeeklyEvery(3, {2}), DateOf(2024, 3, 3), 3 * 1440));
}

TEST(RecurrencePatternWriteTest, TakesOnlyMinusOneForAWeekday)
{
    _tagRecurringInfo record = WeeklyEvery(1, {});
    for (int day = 0; day < 7; ++day)
        record.tWeekly.bValidWeekday[day] = static_cast<VARIANT_BOOL>(day - 3 == -1 ? 7 : day - 3);
    // -3, -2, 7, 0, 1, 2, 3: none of them is -1.
    ExpectFile("weekly_without_weekdays", Written(record));

    _tagRecurringInfo monthly = MonthlyOnWeekdays(2, 2, {2});
    monthly.tMonthly.bValidWeekday[3] = 1;
    monthly.tMonthly.bIsByDayMode = 5; // a mode counts when it is not 0
    ExpectFile("monthly_nth", Written(monthly));
}

TEST(RecurrencePatternWriteTest, WritesMonthlyRules)
{
    ExpectFile("monthly_day_by_count", Written(Times(MonthlyOnDay(3, 31), 4)));
    ExpectFile("monthly_day_by_date", Written(Until(MonthlyOnDay(14, 5), DateOf(2030, 1, 5))));
    ExpectFile("monthly_from_december", Written(MonthlyOnDay(18, 5), DateOf(2024, 12, 5, 9, 30)));
    ExpectFile("monthly_into_the_second_year",
               Written(MonthlyOnDay(20, 5), DateOf(2024, 4, 5, 9, 30)));
    ExpectFile("monthly_nth", Written(MonthlyOnWeekdays(2, 2, {2})));
    ExpectFile("monthly_last", Written(Times(MonthlyOnWeekdays(1, -1, {1, 2, 3, 4, 5}), 3)));
}

TEST(RecurrencePatternWriteTest, WritesMonthlyRulesThatLackAMode)
{
    _tagRecurringInfo neither = MonthlyOnDay(1, 5);
    neither.tMonthly.bIsByMonthDayMode = 0;
    ExpectFile("monthly_by_neither", Written(neither));
    ExpectFile("monthly_without_week", Written(MonthlyOnWeekdays(1, 0, {2})));

    // Weekdays win over the day of the month.
    _tagRecurringInfo both = MonthlyOnWeekdays(2, 2, {2});
    both.tMonthly.bIsByMonthDayMode = -1;
    both.tMonthly.lMonthDay = 9;
    ExpectFile("monthly_nth", Written(both));

    // Any mode counts that is not 0.
    _tagRecurringInfo byOne = Times(MonthlyOnDay(3, 31), 4);
    byOne.tMonthly.bIsByMonthDayMode = 1;
    ExpectFile("monthly_day_by_count", Written(byOne));
}

TEST(RecurrencePatternWriteTest, WritesAnyWeekOfAMonth)
{
    const auto weekOf = [](int nth) {
        return FieldAt(Written(MonthlyOnWeekdays(1, nth, {2})), 26);
    };
    EXPECT_EQ(weekOf(1), 1u);
    EXPECT_EQ(weekOf(4), 4u);
    EXPECT_EQ(weekOf(7), 7u);
    EXPECT_EQ(weekOf(-1), 5u);
    EXPECT_EQ(weekOf(-9), 5u);
}

TEST(RecurrencePatternWriteTest, KeepsTheLow16BitsOfAMonthlyInterval)
{
    ExpectFile("monthly_long_interval", Written(Times(MonthlyOnDay(65541, 5), 1)));
}

TEST(RecurrencePatternWriteTest, WritesYearlyRulesAsADayEvery12Months)
{
    ExpectFile("yearly_by_count", Written(Times(YearlyOnDay(2, 5), 3)));
    ExpectFile("yearly_by_date",
               Written(Until(YearlyOnDay(1, 31), DateOf(2034, 1, 31)), DateOf(2024, 1, 31, 9, 30)));
    ExpectFile("yearly_every_zero_years", Written(Times(YearlyOnDay(0, 5), 4)));

    _tagRecurringInfo byWeekday = YearlyOnDay(1, 0);
    byWeekday.tYearly.bIsByMonthDayMode = 0;
    byWeekday.tYearly.bIsByDayMode = -1;
    byWeekday.tYearly.lMonth = 7;
    byWeekday.tYearly.lNth = 2;
    SetWeekdays(byWeekday.tYearly.bValidWeekday, {2});
    ExpectFile("yearly_by_weekday", Written(byWeekday, DateOf(2024, 12, 31, 9, 30)));

    // The day stands in the pattern's own field whatever the mode.
    byWeekday.tYearly.lDay = 9;
    std::vector<std::byte> ninth = HexFile("recurrence/yearly_by_weekday.hex");
    ninth.at(22) = std::byte{9};
    EXPECT_EQ(HexOf(ninth), HexOf(Written(byWeekday, DateOf(2024, 12, 31, 9, 30))));
}

// These 80 bytes are what a mail client wrote for a yearly appointment on 25 December, from
// 2018-12-25 07:00 for two hours, without an end.
TEST(RecurrencePatternWriteTest, WritesAYearlyRuleAsAMailClientDid)
{
    BlobFields expected;
    expected.Pattern(0x200D, 2, 12).U32(25).Lists(0x2023, 10, {}, {});
    expected.U32(0x0D1A6F00).U32(0x5AE980DF).U32(0x3006).U32(0x3009).U32(420).U32(540).U16(0);
    expected.U32(0).U32(0);
    std::vector<std::byte> blob = expected.Bytes();
    const std::uint32_t december = 334 * 1440; // behind the eleven months before it
    for (std::size_t i = 0; i < 4; ++i)
        blob[10 + i] = static_cast<std::byte>(december >> (8 * i) & 0xFF);
    ASSERT_EQ(80u, blob.size());
    EXPECT_EQ(HexOf(blob), HexOf(Written(YearlyOnDay(1, 25), DateOf(2018, 12, 25, 7, 0), 120)));
}

TEST(RecurrencePatternWriteTest, RefusesWhatWouldDivideByZero)
{
    EXPECT_EQ(Refused(DailyEvery(0)), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(WeeklyEvery(0, {1})), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(MonthlyOnDay(0, 5)), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(MonthlyOnWeekdays(0, 1, {1})), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(Times(WeeklyEvery(1, {}), 5)), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(Times(WeeklyEvery(1, {}), 0)), CodecStatus::Inconsistent);
    // 2^27 * 1,440 and 2^27 * 10,080 are 0 in 32 bits, and so is no multiple below.
    EXPECT_EQ(Refused(DailyEvery(1u << 27)), CodecStatus::Inconsistent);
    EXPECT_EQ(Refused(WeeklyEvery(1u << 27, {1})), CodecStatus::Inconsistent);
    EXPECT_EQ(FieldAt(Written(DailyEvery(1u << 26)), kPeriodAt), 0x80000000u);
    EXPECT_EQ(FieldAt(Written(WeeklyEvery(1u << 26, {1})), kPeriodAt), 1u << 26);
    // A count without a weekday that does not say when the rule ends divides nothing.
    EXPECT_FALSE(Written(Until(WeeklyEvery(1, {}), DateOf(2024, 6, 30), 5)).empty());
}

TEST(RecurrencePatternWriteTest, RefusesARecordOfNoKnownKind)
{
    EXPECT_EQ(Refused(NoRecurrence()), CodecStatus::Unsupported);
    for (const int kind : {5, -1, 0x200A})
    {
        _tagRecurringInfo record = DailyEvery(1);
        record.eRecurType = static_cast<_tagNAppointmentRecurringType>(kind);
        EXPECT_EQ(Refused(record), CodecStatus::Unsupported) << kind;
    }
}

TEST(RecurrencePatternWriteTest, WritesDeletedInstancesInOrder)
{
    _tagRecurringInfo record = DailyEvery(1);
    record.arrDeletedInstance[0] = DateOf(2024, 3, 9, 23, 59);
    record.arrDeletedInstance[2] = DateOf(2024, 4, 1, 9, 30);
    record.arrDeletedInstance[63] = DateOf(2024, 3, 7);
    ExpectFile("daily_deleted", Written(record));
}

TEST(RecurrencePatternWriteTest, WritesModifiedInstancesInTheOrderOfTheRecord)
{
    _tagRecurringInfo record = Times(DailyEvery(1), 20);
    record.arrDeletedInstance[0] = DateOf(2024, 3, 9);
    record.arrDeletedInstance[1] = DateOf(2024, 3, 7);
    PutInstance(record.arrModifiedInstance[0],
                DateOf(2024, 3, 9),
                DateOf(2024, 3, 10, 10, 0),
                DateOf(2024, 3, 10, 11, 15),
                DateOf(2024, 3, 9, 9, 30),
                L"Coffee at Zo\x00EB\x2019s",
                L"");
    PutInstance(record.arrModifiedInstance[1],
                DateOf(2024, 3, 7, 12, 0),
                DateOf(2024, 3, 7, 9, 30),
                DateOf(2024, 3, 7, 9, 45),
                DateOf(2024, 3, 7, 9, 30),
                L"",
                L"Room 5");
    ExpectFile("daily_exceptions", Written(record));
}

TEST(RecurrencePatternWriteTest, WritesInstancesBehindThePatternsOwnFields)
{
    const auto withException = [](_tagRecurringInfo record) {
        record.arrDeletedInstance[0] = DateOf(2024, 3, 12);
        PutInstance(record.arrModifiedInstance[0],
                    DateOf(2024, 3, 12),
                    DateOf(2024, 3, 13, 10, 0),
                    DateOf(2024, 3, 13, 11, 0),
                    DateOf(2024, 3, 12, 9, 30),
                    L"Moved",
                    L"Room 5");
        return record;
    };
    ExpectFile("weekly_exception", Written(withException(WeeklyEvery(1, {2}))));
    ExpectFile("monthly_nth_exception", Written(withException(MonthlyOnWeekdays(1, 2, {2}))));
}

TEST(RecurrencePatternWriteTest, DropsModifiedInstancesWithoutADeletedOneAtTheHead)
{
    _tagRecurringInfo record = DailyEvery(2);
    PutInstance(record.arrModifiedInstance[0],
                DateOf(2024, 3, 9),
                DateOf(2024, 3, 9, 10, 0),
                DateOf(2024, 3, 9, 11, 0),
                DateOf(2024, 3, 9, 9, 30),
                L"Moved",
                L"Here");
    ExpectFile("daily_never", Written(record));
    // Nor do deleted ones behind an empty head count.
    record.arrDeletedInstance[1] = DateOf(2024, 3, 7);
    record.arrDeletedInstance[63] = DateOf(2024, 3, 9);
    ExpectFile("daily_never", Written(record));
}

TEST(RecurrencePatternWriteTest, TakesTheFirstRecordsForTheModifiedDates)
{
    _tagRecurringInfo record = DailyEvery(1);
    record.arrDeletedInstance[0] = DateOf(2024, 3, 7);
    PutText(L"hole", record.arrModifiedInstance[0].szSubject);
    PutInstance(record.arrModifiedInstance[1],
                DateOf(2024, 3, 7),
                DateOf(2024, 3, 7, 10, 0),
                DateOf(2024, 3, 7, 11, 0),
                DateOf(2024, 3, 7, 9, 30),
                L"left out",
                L"");
    ExpectFile("daily_exception_behind_a_hole", Written(record));
}

TEST(RecurrencePatternWriteTest, WritesThirtyTwoExceptionsWithFullTextsWhole)
{
    _tagRecurringInfo record = DailyEvery(1);
    std::ranges::fill(record.arrDeletedInstance, DateOf(2024, 3, 7));
    for (_tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
        PutInstance(instance,
                    DateOf(2024, 3, 7),
                    DateOf(2024, 3, 7, 10, 0),
                    DateOf(2024, 3, 7, 11, 0),
                    DateOf(2024, 3, 7, 9, 30),
                    std::wstring(260, L's'), // one unit more than fits, and no end
                    std::wstring(259, L'p'));

    BlobFields expected;
    const std::uint32_t day = MinutesAt(2024, 3, 7);
    const std::vector<std::uint32_t> deleted(64, day);
    const std::vector<std::uint32_t> modified(32, day);
    expected.Pattern(0x200A, 0, 1440).Lists(0x2023, 10, deleted, modified);
    expected.Span(MinutesAt(2024, 3, 5), 0x5AE980DF, 32);
    const auto times = [&] { expected.U32(day + 600).U32(day + 660).U32(day + 570); };
    for (int i = 0; i < 32; ++i)
    {
        times();
        expected.U16(0x0011).U16(260).U16(259).Text(std::string(259, 's'));
        expected.U16(260).U16(259).Text(std::string(259, 'p'));
    }
    expected.U32(0);
    for (int i = 0; i < 32; ++i)
    {
        expected.U32(4).U32(0).U32(0);
        times();
        for (const char letter : {'s', 'p'})
        {
            expected.U16(259);
            for (int unit = 0; unit < 259; ++unit)
                expected.U16(static_cast<std::uint8_t>(letter));
        }
        expected.U32(0);
    }
    expected.U32(0);
    const std::vector<std::byte> blob = Written(record);
    EXPECT_GT(blob.size(), 5120u);
    EXPECT_TRUE(blob == expected.Bytes()) << blob.size() << " " << expected.Bytes().size();
}

TEST(RecurrencePatternWriteTest, CountsBytesOfTheCodePageAndUnitsOfTheText)
{
    _tagRecurringInfo record = DailyEvery(1);
    record.arrDeletedInstance[0] = DateOf(2024, 3, 7);
    PutInstance(record.arrModifiedInstance[0],
                DateOf(2024, 3, 7),
                DateOf(2024, 3, 7, 10, 0),
                DateOf(2024, 3, 7, 11, 0),
                DateOf(2024, 3, 7, 9, 30),
                L"\x65E5\x672C",
                L"a\xD83D\xDE00");
    std::vector<std::byte> blob;
    ASSERT_EQ(CodecStatus::Ok, EncodeRecurrencePattern(record, {kTuesdayMorning, 60}, 932, blob));

    const std::uint32_t day = MinutesAt(2024, 3, 7);
    BlobFields expected;
    expected.Pattern(0x200A, 0, 1440).Lists(0x2023, 10, {day}, {day});
    expected.Span(MinutesAt(2024, 3, 5), 0x5AE980DF, 1);
    // Two characters of two bytes each; a pair of surrogates that the code page lacks is "??".
    expected.U32(day + 600).U32(day + 660).U32(day + 570).U16(0x0011);
    expected.U16(5).U16(4).Text("\x93\xFA\x96\x7B").U16(4).U16(3).Text("a??");
    expected.U32(0);
    expected.U32(4).U32(0).U32(0).U32(day + 600).U32(day + 660).U32(day + 570);
    expected.U16(2).U16(0x65E5).U16(0x672C).U16(3).U16('a').U16(0xD83D).U16(0xDE00);
    expected.U32(0).U32(0);
    EXPECT_EQ(HexOf(expected.Bytes()), HexOf(blob));
}

// From 0x80 on a unit is no byte of a code page, also where it would fit into one.
TEST(RecurrencePatternWriteTest, WritesUnitsBelow256InTheCodePage)
{
    _tagRecurringInfo record = DailyEvery(1);
    record.arrDeletedInstance[0] = DateOf(2024, 3, 7);
    PutInstance(record.arrModifiedInstance[0],
                DateOf(2024, 3, 7),
                DateOf(2024, 3, 7, 10, 0),
                DateOf(2024, 3, 7, 11, 0),
                DateOf(2024, 3, 7, 9, 30),
                L"\x00A7",
                L"\x007F");
    std::vector<std::byte> blob;
    ASSERT_EQ(CodecStatus::Ok, EncodeRecurrencePattern(record, {kTuesdayMorning, 60}, 932, blob));
    BlobFields expected;
    expected.U16(0x0011).U16(3).U16(2).Text("\x81\x98").U16(2).U16(1).Text("\x7F");
    EXPECT_NE(std::string::npos, HexOf(blob).find(HexOf(expected.Bytes())));
}

TEST(RecurrencePatternWriteTest, WritesStartsThatNoFieldCanHold)
{
    // What is no time counts as minute 0 of 1601, and month -1 less 1601 years.
    const DATE none = std::numeric_limits<double>::quiet_NaN();
    for (const auto& record : {DailyEvery(2),
                               WeeklyEvery(2, {1}),
                               MonthlyOnDay(5, 1),
                               MonthlyOnWeekdays(5, -1, {1}),
                               YearlyOnDay(1, 1)})
        for (const DATE start : {none, 1e300, -1e300, DateOf(9999, 12, 31, 23, 59), -657434.0})
            EXPECT_GE(Written(record, start, std::numeric_limits<int>::max()).size(), 70u);
    EXPECT_EQ(FieldAt(Written(DailyEvery(2), none), kFirstDateAt), 0u);
    EXPECT_EQ(FieldAt(Written(YearlyOnDay(1, 1), none), kFirstDateAt), 0u);
    // 1899-12-28 06:00, a Thursday: -2.25 days, whose fraction counts forward. The Sunday before it
    // is 1899-12-24, 109,199 days from 1601-01-01, a whole number of 14-day periods and 13 days.
    EXPECT_EQ(FieldAt(Written(WeeklyEvery(2, {1}), -2.25), kFirstDateAt), 13u * 1440);
}

TEST(RecurrencePatternWriteTest, WritesDatesThatAreNone)
{
    const double none = std::numeric_limits<double>::quiet_NaN();
    _tagRecurringInfo record = DailyEvery(1);
    record.arrDeletedInstance[0] = none;
    record.arrDeletedInstance[1] = 1e300;
    record.arrDeletedInstance[2] = DateOf(2024, 3, 7);
    record.arrDeletedInstance[3] = -0.0; // is 0.0
    record.arrModifiedInstance[0].dtModifiedDate = none;
    const std::vector<std::byte> blob = Written(record);
    // Behind 22 bytes and 12 of the end: the count, then the dates; what is none has minute 0.
    EXPECT_EQ(FieldAt(blob, 34), 3u);
    EXPECT_EQ(FieldAt(blob, 38), MinutesAt(2024, 3, 7));
    EXPECT_EQ(FieldAt(blob, 42), 0u);
    EXPECT_EQ(FieldAt(blob, 46), 0u);
    EXPECT_EQ(FieldAt(blob, 50), 1u);
    EXPECT_EQ(FieldAt(blob, 54), 0u);
}
