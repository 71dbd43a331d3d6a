// Appointments as JSON for programs. The names below are stable. Portable.
//
// An appointment is an object with these members; a value that the server does not give is null.
//   id, persistId, folderId, subject, place, description, timeZone     text
//   allDay, busy                                                      true or false
//   startLocal, endLocal   "2024-05-01T10:00:00" in the machine's zone; the day alone, as
//                          "2024-05-01", for an all-day item, whose end is the day behind its last
//   startUtc, endUtc       "2024-05-01T08:00:00Z"; null for an all-day item
//   reminderMinutes        minutes before the start, negative behind it; null for no reminder
//   modifiedUtc            "2024-04-30T17:20:00Z"
//   recurrence             null, or an object:
//     type        "daily", "weekly", "monthly" or "yearly"
//     interval    null where the store leaves it open
//     weekdays    ["MO", "FR"]; with everyWeekday true a daily series has Monday to Friday
//     everyWeekday, nth (-1 is the last, null for each), monthDay, month
//     until       "2024-05-01T23:59:59" as the store holds it, or null
//     count       or null
//     leftOut     ["2024-05-08"]
//     changed     [{originalLocal, startLocal, endLocal, subject, place}]
//     text        the same in words
#pragma once

#include "client/core/Appointment.h"

#include <nlohmann/json_fwd.hpp>

namespace pim
{
// The object above.
nlohmann::ordered_json AppointmentJson(const Appointment& item, const ILocalZone& zone);
} // namespace pim
