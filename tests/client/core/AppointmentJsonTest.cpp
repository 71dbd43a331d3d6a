#include "client/core/AppointmentJson.h"

#include "client/core/FixedZone.h"
#include "client/core/JsonValues.h"

#include <gtest/gtest.h>

using namespace pim;

namespace
{
const FixedZone kZone(-5);

std::wstring JsonOf(const Appointment& item)
{
    return JsonText(AppointmentJson(item, kZone));
}
} // namespace

TEST(AppointmentJsonTest, GivesEveryMemberAlways)
{
    EXPECT_EQ(JsonOf(Appointment()), LR"({
  "id": null,
  "persistId": null,
  "folderId": null,
  "subject": null,
  "place": null,
  "description": null,
  "timeZone": null,
  "allDay": null,
  "busy": null,
  "startLocal": null,
  "startUtc": null,
  "endLocal": null,
  "endUtc": null,
  "reminderMinutes": null,
  "modifiedUtc": null,
  "recurrence": null
}
)");
}

TEST(AppointmentJsonTest, GivesLocalAndUtcTimesAndTheSeries)
{
    Appointment item;
    item.id = L"{1}";
    item.persistId = L"{1}";
    item.folderId = L"F";
    item.subject = L"Line\n\"quoted\"";
    item.place = L"";
    item.description = std::wstring(1, wchar_t(0xD83C)); // half a pair
    item.timeZone = L"UTC";
    item.allDay = false;
    item.busy = true;
    item.start = kMay1 + 2 * kHour;
    item.end = kMay1 + 3 * kHour;
    item.reminderMinutes = 15;
    item.modifiedUtc = kMay1;
    item.recurrence = Recurrence();
    item.recurrence->type = Monthly;
    item.recurrence->interval = 1;
    item.recurrence->rule = Recurrence::Rule::Weekdays;
    item.recurrence->nth = -1;
    item.recurrence->weekdays[5] = true;
    item.recurrence->endType = EndByDate;
    item.recurrence->until = kMay1 + 0.5;
    item.recurrence->deletedLocalDays = {kMay1 + 1};
    item.recurrence->modified = {{kMay1, kMay1 + 0.25, kMay1 + 0.5, kMay1 + 0.125, L"S", L"P"}};
    EXPECT_EQ(JsonOf(item),
              std::wstring(LR"({
  "id": "{1}",
  "persistId": "{1}",
  "folderId": "F",
  "subject": "Line\n\"quoted\"",
  "place": "",
  "description": ")") +
                  wchar_t(0xFFFD) + LR"(",
  "timeZone": "UTC",
  "allDay": false,
  "busy": true,
  "startLocal": "2024-04-30T21:00:00",
  "startUtc": "2024-05-01T02:00:00Z",
  "endLocal": "2024-04-30T22:00:00",
  "endUtc": "2024-05-01T03:00:00Z",
  "reminderMinutes": 15,
  "modifiedUtc": "2024-05-01T00:00:00Z",
  "recurrence": {
    "type": "monthly",
    "interval": 1,
    "weekdays": [
      "FR"
    ],
    "everyWeekday": false,
    "nth": -1,
    "monthDay": null,
    "month": null,
    "until": "2024-05-01T12:00:00",
    "count": null,
    "leftOut": [
      "2024-05-02"
    ],
    "changed": [
      {
        "originalLocal": "2024-05-01T03:00:00",
        "startLocal": "2024-05-01T06:00:00",
        "endLocal": "2024-05-01T12:00:00",
        "subject": "S",
        "place": "P"
      }
    ],
    "text": "every month on the last Friday, until 2024-05-01, 1 day left out, 1 day changed"
  }
}
)");
}

TEST(AppointmentJsonTest, GivesDaysForAnAllDayItem)
{
    Appointment item;
    item.allDay = true;
    item.start = kMay1;
    item.end = kMay1 + 1;
    item.reminderMinutes = kNoReminder;
    const auto json = AppointmentJson(item, kZone);
    EXPECT_EQ(json["startLocal"], "2024-05-01");
    EXPECT_EQ(json["endLocal"], "2024-05-02");
    EXPECT_TRUE(json["startUtc"].is_null());
    EXPECT_TRUE(json["endUtc"].is_null());
    EXPECT_TRUE(json["reminderMinutes"].is_null());
}

TEST(AppointmentJsonTest, GivesAReminderBehindTheStartAsANegativeNumber)
{
    Appointment item;
    item.reminderMinutes = 0xFFFFFFF6;
    EXPECT_EQ(AppointmentJson(item, kZone)["reminderMinutes"], -10);
}

TEST(AppointmentJsonTest, GivesNoSeriesForAnItemThatDoesNotRecur)
{
    Appointment item;
    item.recurrence = Recurrence();
    EXPECT_TRUE(AppointmentJson(item, kZone)["recurrence"].is_null());
}
