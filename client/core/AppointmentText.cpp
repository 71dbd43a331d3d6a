#include "client/core/AppointmentText.h"

#include "client/core/FieldLines.h"

#include <vector>

namespace pim
{
namespace
{
constexpr ItemColumn kColumns[] = {
    {L"START", 0}, {L"END", 0}, {L"SUBJECT", 36}, {L"PLACE", 20}, {L"REPEATS", 48}, {L"ID", 0}};

// The local time of an item's start or end; an all-day item has local days already.
std::optional<CivilTime> LocalOf(const std::optional<DATE>& date,
                                 bool isAllDay,
                                 const ILocalZone& zone)
{
    const auto time = CivilFromDate(date);
    return time && !isAllDay ? zone.LocalFromUtc(*time) : time;
}

// The last day of an all-day item, whose end is the midnight behind it.
std::optional<CivilTime> LastDayOf(const std::optional<CivilTime>& start,
                                   const std::optional<CivilTime>& end)
{
    if (!end)
        return start;
    const auto last = AddSeconds(*end, -1);
    if (!last || (start && *last < *start))
        return start;
    return last;
}

bool IsSameDay(const CivilTime& left, const CivilTime& right)
{
    return left.year == right.year && left.month == right.month && left.day == right.day;
}

std::wstring StartCell(const Appointment& item, const std::optional<CivilTime>& start)
{
    if (!start)
        return L"-";
    return item.IsAllDay() ? FormatDay(*start) : FormatDayAndClock(*start);
}

// The end in as few words as the start allows.
std::wstring EndCell(const Appointment& item,
                     const std::optional<CivilTime>& start,
                     const std::optional<CivilTime>& end)
{
    if (item.IsAllDay())
    {
        const auto last = LastDayOf(start, end);
        return last && start && !IsSameDay(*start, *last) ? FormatDay(*last) : L"all day";
    }
    if (!end)
        return L"-";
    return start && IsSameDay(*start, *end) ? FormatClock(*end) : FormatDayAndClock(*end);
}

std::wstring RepeatsOf(const Appointment& item)
{
    return item.recurrence ? RecurrenceText(*item.recurrence) : std::wstring();
}

// The zone whose local times the series' days are, by its key and as people call it.
std::optional<std::wstring> ZoneText(const Appointment& item)
{
    if (!item.timeZone || !item.timeZoneDisplay)
        return item.timeZone;
    return *item.timeZone + L", " + *item.timeZoneDisplay;
}

void AddTimes(FieldLines& lines, const Appointment& item, const ILocalZone& zone)
{
    const auto start = CivilFromDate(item.start);
    const auto end = CivilFromDate(item.end);
    if (item.IsAllDay())
    {
        if (!start)
            return;
        const auto last = LastDayOf(start, end);
        std::wstring days = FormatDay(*start);
        if (last && !IsSameDay(*start, *last))
            days += L" to " + FormatDay(*last);
        lines.Add(L"All day", days);
        return;
    }
    lines.Add(L"Start", LocalAndUtc(item.start, zone));
    lines.Add(L"End", LocalAndUtc(item.end, zone));
}

void AddExceptions(FieldLines& lines, const Recurrence& recurrence)
{
    for (const DATE day : LeftOutDays(recurrence))
    {
        if (const auto time = CivilFromDate(day))
            lines.Add(L"Left out", FormatDay(*time));
    }
    for (const ModifiedInstance& instance : recurrence.modified)
    {
        const auto original = CivilFromDate(instance.localOriginalStart);
        const auto start = CivilFromDate(instance.localStart);
        const auto end = CivilFromDate(instance.localEnd);
        std::wstring text;
        if (original)
            text += FormatDayAndClock(*original);
        if (start)
            text += L" is " + FormatDayAndClock(*start);
        if (start && end && *start < *end)
            text +=
                L" to " + (IsSameDay(*start, *end) ? FormatClock(*end) : FormatDayAndClock(*end));
        if (!instance.subject.empty())
            text += L", " + instance.subject;
        if (!instance.place.empty())
            text += L", " + instance.place;
        lines.Add(L"Changed day", text);
    }
}
} // namespace

bool ComesBefore(const Appointment& left, const Appointment& right, const ILocalZone& zone)
{
    const auto instantOf = [&](const Appointment& item) {
        const auto time = CivilFromDate(item.start);
        return time && item.IsAllDay() ? std::optional(zone.UtcFromLocal(*time)) : time;
    };
    const auto leftStart = instantOf(left);
    const auto rightStart = instantOf(right);
    if (leftStart != rightStart)
        return leftStart < rightStart;
    return left.id < right.id;
}

std::wstring AppointmentTable(std::span<const Appointment> items,
                              const ILocalZone& zone,
                              const TableRoom& room)
{
    std::vector<ItemRow> rows;
    for (const Appointment& item : items)
    {
        const auto start = LocalOf(item.start, item.IsAllDay(), zone);
        const auto end = LocalOf(item.end, item.IsAllDay(), zone);
        rows.push_back({StartCell(item, start),
                        EndCell(item, start, end),
                        item.subject.value_or(L""),
                        item.place.value_or(L""),
                        RepeatsOf(item),
                        item.id.value_or(L"")});
    }
    return FormatItemTable(kColumns, std::move(rows), room);
}

std::wstring AppointmentDetails(const Appointment& item, const ILocalZone& zone)
{
    FieldLines lines;
    lines.Add(L"Subject", item.subject);
    lines.Add(L"Place", item.place);
    AddTimes(lines, item, zone);
    lines.Add(L"Time zone", ZoneText(item));
    lines.Add(L"Repeats", RepeatsOf(item));
    if (item.recurrence)
        AddExceptions(lines, *item.recurrence);
    if (item.reminderMinutes)
        lines.Add(L"Reminder", ReminderText(*item.reminderMinutes));
    if (item.busy.value_or(false))
        lines.Add(L"Shown as", std::wstring(L"busy"));
    lines.Add(L"Changed", LocalAndUtc(item.modifiedUtc, zone));
    lines.Add(L"Folder", item.folderId);
    lines.Add(L"ID", item.id);
    if (item.persistId != item.id)
        lines.Add(L"Lasting ID", item.persistId);

    return lines.Text() + ParagraphBelow(item.description);
}
} // namespace pim
