#include "client/core/AppointmentText.h"

#include "client/core/FixedZone.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
const FixedZone kZone(2);

// 2024-05-01 10:00 to 11:00 in the test's zone.
Appointment Meeting()
{
    Appointment item;
    item.id = L"{ID-1}";
    item.persistId = L"{ID-1}";
    item.subject = L"Planning";
    item.place = L"Room 5";
    item.timeZone = L"W. Europe Standard Time";
    item.start = kMay1 + 8 * kHour;
    item.end = kMay1 + 9 * kHour;
    item.allDay = false;
    item.busy = false;
    item.reminderMinutes = 15;
    return item;
}

Appointment Holiday(int days)
{
    Appointment item;
    item.id = L"{ID-2}";
    item.subject = L"Holiday";
    item.start = kMay1;
    item.end = kMay1 + days;
    item.allDay = true;
    return item;
}
} // namespace

TEST(AppointmentTextTest, ShowsLocalTimesAndDaysInATable)
{
    Appointment night = Meeting();
    night.subject = L"Night shift";
    night.place.reset();
    night.start = kMay1 + 20 * kHour;
    night.end = kMay1 + 28 * kHour;
    night.recurrence = Recurrence();
    night.recurrence->type = Daily;
    night.recurrence->interval = 2;
    const Appointment items[] = {Holiday(1), Holiday(3), Meeting(), night, Appointment()};
    EXPECT_EQ(AppointmentTable(items, kZone, TableRoom()),
              L"START             END               SUBJECT      PLACE   REPEATS       ID\n"
              L"2024-05-01        all day           Holiday                            {ID-2}\n"
              L"2024-05-01        2024-05-03        Holiday                            {ID-2}\n"
              L"2024-05-01 10:00  11:00             Planning     Room 5                {ID-1}\n"
              L"2024-05-01 22:00  2024-05-02 06:00  Night shift          every 2 days  {ID-1}\n"
              L"-                 -\n");
}

TEST(AppointmentTextTest, CutsLongCellsUnlessToldNotTo)
{
    Appointment item = Meeting();
    item.subject = std::wstring(100, L's');
    const std::wstring cut = AppointmentTable({&item, 1}, kZone, TableRoom());
    EXPECT_NE(cut.find(std::wstring(35, L's') + wchar_t(0x2026)), std::wstring::npos);
    EXPECT_EQ(cut.find(std::wstring(36, L's')), std::wstring::npos);
    EXPECT_NE(AppointmentTable({&item, 1}, kZone, TableRoom{true, 0}).find(*item.subject),
              std::wstring::npos);
}

TEST(AppointmentTextTest, FitsATerminalWithShortIdsAndCutTexts)
{
    Appointment item = Meeting();
    item.subject = L"A subject of some length";
    item.place = L"A place somewhere";
    item.recurrence = Recurrence();
    item.recurrence->type = Daily;
    item.recurrence->interval = 1;
    item.id = L"{0B7F4A10-AAAA}";
    Appointment other = item;
    other.id = L"{0B7F4A1F-AAAA}";
    const Appointment items[] = {item, other};
    // As wide as they are, the columns take 16, 5, 24, 17, 9 and 9, and the gaps 10: 90 in all.
    const std::wstring dots(1, wchar_t(0x2026));
    EXPECT_EQ(AppointmentTable(items, kZone, {false, 65}),
              L"START             END    SUBJECT   PLACE     REPEATS    ID\n"
              L"2024-05-01 10:00  11:00  A subje" +
                  dots + L"  A place" + dots +
                  L"  every day  {0B7F4A10\n"
                  L"2024-05-01 10:00  11:00  A subje" +
                  dots + L"  A place" + dots + L"  every day  {0B7F4A1F\n");
    EXPECT_EQ(AppointmentTable({items, 1}, kZone, {false, 72}),
              L"START             END    SUBJECT        PLACE          REPEATS    ID\n"
              L"2024-05-01 10:00  11:00  A subject of" +
                  dots + L"  A place some" + dots + L"  every day  {0B7F4\n");
    // Where even the least widths do not fit, lines are longer than the terminal.
    EXPECT_EQ(AppointmentTable({items, 1}, kZone, {false, 20}),
              L"START             END    SUBJECT   PLACE     REPEATS   ID\n"
              L"2024-05-01 10:00  11:00  A subje" +
                  dots + L"  A place" + dots + L"  every d" + dots + L"  {0B7F4\n");
    EXPECT_NE(AppointmentTable(items, kZone, {true, 65}).find(L"A subject of some length  "),
              std::wstring::npos);
}

TEST(AppointmentTextTest, ShowsEveryFieldOfAnItem)
{
    Appointment item = Meeting();
    item.description = L"First line\nSecond line";
    item.timeZoneDisplay = L"(UTC+01:00) Berlin";
    item.busy = true;
    item.modifiedUtc = kMay1 - 1 + 17 * kHour;
    item.folderId = L"00AB";
    item.persistId = L"{LASTING}";
    item.recurrence = Recurrence();
    item.recurrence->type = Weekly;
    item.recurrence->interval = 1;
    item.recurrence->weekdays[3] = true;
    item.recurrence->deletedLocalDays = {kMay1 + 7};
    item.recurrence->modified = {{kMay1 + 14,
                                  kMay1 + 14 + 12 * kHour,
                                  kMay1 + 14 + 13 * kHour,
                                  kMay1 + 14 + 10 * kHour,
                                  L"Moved",
                                  L"Hall"}};
    EXPECT_EQ(AppointmentDetails(item, kZone),
              L"Subject:     Planning\n"
              L"Place:       Room 5\n"
              L"Start:       2024-05-01 10:00 (2024-05-01 08:00 UTC)\n"
              L"End:         2024-05-01 11:00 (2024-05-01 09:00 UTC)\n"
              L"Time zone:   W. Europe Standard Time, (UTC+01:00) Berlin\n"
              L"Repeats:     every week on Wednesday, 1 day left out, 1 day changed\n"
              L"Left out:    2024-05-08\n"
              L"Changed day: 2024-05-15 10:00 is 2024-05-15 12:00 to 13:00, Moved, Hall\n"
              L"Reminder:    15 minutes before\n"
              L"Shown as:    busy\n"
              L"Changed:     2024-04-30 19:00 (2024-04-30 17:00 UTC)\n"
              L"Folder:      00AB\n"
              L"ID:          {ID-1}\n"
              L"Lasting ID:  {LASTING}\n"
              L"\n"
              L"First line\n"
              L"Second line\n");
}

TEST(AppointmentTextTest, ShowsDaysOfAnAllDayItemUnshifted)
{
    EXPECT_EQ(AppointmentDetails(Holiday(1), kZone),
              L"Subject:    Holiday\n"
              L"All day:    2024-05-01\n"
              L"ID:         {ID-2}\n");
    EXPECT_EQ(AppointmentDetails(Holiday(2), kZone),
              L"Subject:    Holiday\n"
              L"All day:    2024-05-01 to 2024-05-02\n"
              L"ID:         {ID-2}\n");
    // An end before the start is no last day.
    EXPECT_EQ(AppointmentDetails(Holiday(-5), kZone),
              L"Subject:    Holiday\n"
              L"All day:    2024-05-01\n"
              L"ID:         {ID-2}\n");
}

TEST(AppointmentTextTest, ShowsNothingOfAnItemThatGivesNothing)
{
    EXPECT_EQ(AppointmentDetails(Appointment(), kZone), L"");
}

TEST(AppointmentTextTest, KeepsHostileTextOnItsLine)
{
    Appointment item;
    item.subject = L"a\nID: fake\x1B[31m";
    EXPECT_EQ(AppointmentDetails(item, kZone),
              std::wstring(L"Subject:    a ID: fake") + wchar_t(0xFFFD) + L"[31m\n");
}

TEST(AppointmentTextTest, OrdersItemsByTheInstantTheyBegin)
{
    // Midnight of May 1 in the zone is 22:00 UTC of April 30.
    Appointment before;
    before.start = kMay1 - 3 * kHour;
    Appointment after;
    after.start = kMay1 - 1 * kHour;
    const Appointment day = Holiday(1);
    EXPECT_TRUE(ComesBefore(before, day, kZone));
    EXPECT_TRUE(ComesBefore(day, after, kZone));
    EXPECT_FALSE(ComesBefore(after, day, kZone));
    EXPECT_TRUE(ComesBefore(Appointment(), before, kZone));
    Appointment twin = day;
    twin.id = L"{ID-3}";
    EXPECT_TRUE(ComesBefore(day, twin, kZone));
    EXPECT_FALSE(ComesBefore(twin, day, kZone));
    EXPECT_FALSE(ComesBefore(day, day, kZone));
}
