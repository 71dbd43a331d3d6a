#include "client/core/AppointmentJson.h"

#include "client/core/JsonValues.h"
#include "client/core/Unicode.h"

namespace pim
{
namespace
{
Json FlagOrNull(const std::optional<bool>& flag)
{
    return flag ? Json(*flag) : Json();
}

Json NumberOrNull(long long number)
{
    return number != 0 ? Json(number) : Json();
}

Json LocalOrNull(DATE local)
{
    const auto time = CivilFromDate(local);
    return time ? Json(Utf8FromWide(FormatIso(*time))) : Json();
}

Json LocalOfItem(const std::optional<DATE>& date, bool isAllDay, const ILocalZone& zone)
{
    const auto time = CivilFromDate(date);
    if (!time)
        return {};
    return Utf8FromWide(isAllDay ? FormatDay(*time) : FormatIso(zone.LocalFromUtc(*time)));
}

const char* TypeName(_tagNAppointmentRecurringType type)
{
    switch (type)
    {
    case Daily:
        return "daily";
    case Weekly:
        return "weekly";
    case Monthly:
        return "monthly";
    default:
        return "yearly";
    }
}

Json RecurrenceJson(const std::optional<Recurrence>& recurrence)
{
    if (!recurrence || recurrence->type == None)
        return {};
    Json weekdays = Json::array();
    for (std::size_t i = 0; i < recurrence->weekdays.size(); ++i)
    {
        if (recurrence->weekdays[i])
            weekdays.push_back(Utf8FromWide(kWeekdayCodes[i]));
    }
    Json leftOut = Json::array();
    for (const DATE day : recurrence->deletedLocalDays)
    {
        if (const auto time = CivilFromDate(day))
            leftOut.push_back(Utf8FromWide(FormatDay(*time)));
    }
    Json changed = Json::array();
    for (const ModifiedInstance& instance : recurrence->modified)
    {
        changed.push_back({{"originalLocal", LocalOrNull(instance.localOriginalStart)},
                           {"startLocal", LocalOrNull(instance.localStart)},
                           {"endLocal", LocalOrNull(instance.localEnd)},
                           {"subject", Utf8FromWide(instance.subject)},
                           {"place", Utf8FromWide(instance.place)}});
    }
    Json json;
    json["type"] = TypeName(recurrence->type);
    json["interval"] = NumberOrNull(recurrence->interval);
    json["weekdays"] = std::move(weekdays);
    json["everyWeekday"] = recurrence->everyWeekday;
    json["nth"] = NumberOrNull(recurrence->nth);
    json["monthDay"] = NumberOrNull(recurrence->monthDay);
    json["month"] = NumberOrNull(recurrence->month);
    json["until"] = recurrence->endType == EndByDate ? LocalOrNull(recurrence->until) : Json();
    json["count"] = recurrence->endType == EndByCount ? Json(recurrence->count) : Json();
    json["leftOut"] = std::move(leftOut);
    json["changed"] = std::move(changed);
    json["text"] = Utf8FromWide(RecurrenceText(*recurrence));
    return json;
}

Json ReminderJson(const std::optional<std::uint32_t>& minutes)
{
    if (!minutes || *minutes == kNoReminder)
        return {};
    return static_cast<std::int32_t>(*minutes);
}
} // namespace

Json AppointmentJson(const Appointment& item, const ILocalZone& zone)
{
    const bool isAllDay = item.IsAllDay();
    Json json;
    json["id"] = TextOrNull(item.id);
    json["persistId"] = TextOrNull(item.persistId);
    json["folderId"] = TextOrNull(item.folderId);
    json["subject"] = TextOrNull(item.subject);
    json["place"] = TextOrNull(item.place);
    json["description"] = TextOrNull(item.description);
    json["timeZone"] = TextOrNull(item.timeZone);
    json["allDay"] = FlagOrNull(item.allDay);
    json["busy"] = FlagOrNull(item.busy);
    json["startLocal"] = LocalOfItem(item.start, isAllDay, zone);
    json["startUtc"] = isAllDay ? Json() : UtcOrNull(item.start);
    json["endLocal"] = LocalOfItem(item.end, isAllDay, zone);
    json["endUtc"] = isAllDay ? Json() : UtcOrNull(item.end);
    json["reminderMinutes"] = ReminderJson(item.reminderMinutes);
    json["modifiedUtc"] = UtcOrNull(item.modifiedUtc);
    json["recurrence"] = RecurrenceJson(item.recurrence);
    return json;
}
} // namespace pim
