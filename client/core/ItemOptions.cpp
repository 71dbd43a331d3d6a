#include "client/core/ItemOptions.h"

#include <algorithm>
#include <cmath>

namespace pim
{
namespace
{
constexpr int kDefaultLengthSeconds = 3600;

bool HasWeekday(const Recurrence& recurrence)
{
    return std::find(recurrence.weekdays.begin(), recurrence.weekdays.end(), true) !=
           recurrence.weekdays.end();
}

std::wstring ReadAllDayStart(const TypedTime& typed, std::optional<DATE>& start)
{
    if (typed.hasClock)
        return L"An all-day item begins on a day: give --start as 2024-05-01, without a time.";
    start = DateFromCivil(typed.time);
    return {};
}

// The day typed is the last one; the field holds the midnight behind it.
std::wstring ReadAllDayEnd(const TypedTime& typed, std::optional<DATE>& end)
{
    if (typed.hasClock)
        return L"An all-day item ends with a day: give --end as 2024-05-01, without a time.";
    const auto next = AddDays(typed.time, 1);
    if (!next)
        return L"The day given with --end is too late.";
    end = DateFromCivil(*next);
    return {};
}

std::wstring ReadClockTime(const TypedTime& typed,
                           const wchar_t* option,
                           const ILocalZone& zone,
                           std::optional<DATE>& utc)
{
    if (!typed.hasClock)
        return std::wstring(L"Give a time of day with ") + option +
               L", as in \"2024-05-01 10:00\", or say --all-day.";
    utc = DateFromCivil(typed.isUtc ? typed.time : zone.UtcFromLocal(typed.time));
    return {};
}

// The start of an item in local time, for what a series takes from it.
std::optional<CivilTime> LocalStartOf(const Appointment& item, const ILocalZone& zone)
{
    const auto start = CivilFromDate(item.start);
    return start && !item.IsAllDay() ? zone.LocalFromUtc(*start) : start;
}

std::wstring ApplyTimes(const ItemOptions& options, const ILocalZone& zone, Appointment& item)
{
    const bool allDay = item.IsAllDay();
    std::wstring problem;
    if (options.start)
        problem = allDay ? ReadAllDayStart(*options.start, item.start)
                         : ReadClockTime(*options.start, L"--start", zone, item.start);
    if (problem.empty() && options.end)
        problem = allDay ? ReadAllDayEnd(*options.end, item.end)
                         : ReadClockTime(*options.end, L"--end", zone, item.end);
    return problem;
}

std::wstring CheckOrder(const Appointment& item)
{
    if (item.start && item.end && *item.end < *item.start)
        return L"The end would lie before the start: give a later --end.";
    return {};
}

// The end of an item that has none yet.
void SetDefaultEnd(Appointment& item)
{
    const auto start = CivilFromDate(item.start.value_or(0));
    if (!start)
        return;
    const auto end =
        item.IsAllDay() ? AddDays(*start, 1) : AddSeconds(*start, kDefaultLengthSeconds);
    if (end)
        item.end = DateFromCivil(*end);
}

// An item with times takes its local days along when it becomes an all-day one.
void TurnIntoDays(const ILocalZone& zone, Appointment& item)
{
    const auto startUtc = CivilFromDate(item.start.value_or(0));
    if (!startUtc)
        return;
    CivilTime first = zone.LocalFromUtc(*startUtc);
    CivilTime last = first;
    if (const auto endUtc = CivilFromDate(item.end.value_or(0)); endUtc && *endUtc > *startUtc)
        last = AddSeconds(zone.LocalFromUtc(*endUtc), -1).value_or(first);
    first.hour = first.minute = first.second = 0;
    last.hour = last.minute = last.second = 0;
    item.start = DateFromCivil(first);
    item.end = DateFromCivil(AddDays(last, 1).value_or(last));
}

std::wstring ApplyWeekdays(const RepeatOptions& options, Recurrence& recurrence)
{
    const bool fits = recurrence.type == Weekly || recurrence.type == Monthly;
    if ((options.weekdays || options.nth) && recurrence.type == Yearly)
        return L"A yearly series takes --month and --month-day: no store keeps a weekday of it.";
    if (options.weekdays && !fits)
        return L"--days goes with --repeat weekly or monthly.";
    if (options.nth && recurrence.type != Monthly)
        return L"--nth goes with --repeat monthly.";
    if (options.weekdays)
        recurrence.weekdays = *options.weekdays;
    if (options.nth)
        recurrence.nth = *options.nth;
    if (recurrence.type == Monthly && (options.weekdays || options.nth))
    {
        recurrence.rule = Recurrence::Rule::Weekdays;
        recurrence.monthDay = 0;
        if (!HasWeekday(recurrence))
            return L"Give the weekdays of --nth with --days, as in --nth 2 --days TU.";
        if (recurrence.nth == 0)
            return L"Say which of these weekdays in the month with --nth 1 to 4, or --nth last.";
    }
    return {};
}

std::wstring ApplyMonthDays(const RepeatOptions& options, Recurrence& recurrence)
{
    if (options.monthDay && recurrence.type != Monthly && recurrence.type != Yearly)
        return L"--month-day goes with --repeat monthly or yearly.";
    if (options.month && recurrence.type != Yearly)
        return L"--month goes with --repeat yearly.";
    if (options.monthDay && (options.weekdays || options.nth))
        return L"Give either --month-day or --days with --nth.";
    if (options.monthDay)
    {
        recurrence.rule = Recurrence::Rule::MonthDay;
        recurrence.monthDay = *options.monthDay;
        recurrence.nth = 0;
        recurrence.weekdays = {};
    }
    if (options.month)
        recurrence.month = *options.month;
    return {};
}

std::wstring ApplyEnd(const RepeatOptions& options, Recurrence& recurrence)
{
    if (options.count && options.untilDay)
        return L"Give either --count or --until.";
    if (options.count)
    {
        recurrence.endType = EndByCount;
        recurrence.count = *options.count;
        recurrence.until = 0;
    }
    if (options.untilDay)
    {
        // The end of the day, so that its own occurrence still belongs to the series.
        CivilTime until = *options.untilDay;
        until.hour = 23;
        until.minute = 59;
        until.second = 59;
        recurrence.endType = EndByDate;
        recurrence.until = DateFromCivil(until);
        recurrence.count = 0;
    }
    return {};
}

// A series of its own takes its day from the item's start.
void SetDefaultDays(const CivilTime& localStart, Recurrence& recurrence)
{
    if (recurrence.type == Weekly && !HasWeekday(recurrence))
        recurrence.weekdays[std::size_t(WeekdayOf(localStart))] = true;
    const bool hasMonthDay = recurrence.type == Yearly || recurrence.type == Monthly;
    if (hasMonthDay && recurrence.rule == Recurrence::Rule::SameDay)
    {
        recurrence.rule = Recurrence::Rule::MonthDay;
        recurrence.monthDay = localStart.day;
    }
    if (recurrence.type == Yearly && recurrence.month == 0)
        recurrence.month = localStart.month;
}

std::wstring ApplyRepeat(const RepeatOptions& options, const ILocalZone& zone, Appointment& item)
{
    if (!options.type && !options.HasDetails())
        return {};
    Recurrence recurrence;
    if (options.type)
    {
        recurrence.type = *options.type;
        recurrence.interval = 1;
    }
    else
    {
        recurrence = item.recurrence.value_or(Recurrence());
    }
    if (recurrence.type == None)
        return L"Say what kind of series it is with --repeat daily, weekly, monthly or yearly.";
    if (options.interval)
        recurrence.interval = *options.interval;
    std::wstring problem = ApplyWeekdays(options, recurrence);
    if (problem.empty())
        problem = ApplyMonthDays(options, recurrence);
    if (problem.empty())
        problem = ApplyEnd(options, recurrence);
    if (!problem.empty())
        return problem;
    if (const auto localStart = LocalStartOf(item, zone); localStart && options.type)
        SetDefaultDays(*localStart, recurrence);
    item.recurrence = std::move(recurrence);
    return {};
}

void ApplyTexts(const ItemOptions& options, Appointment& item)
{
    if (options.subject)
        item.subject = options.subject;
    if (options.place)
        item.place = options.place;
    if (options.description)
        item.description = options.description;
    if (options.reminderMinutes)
        item.reminderMinutes = options.reminderMinutes;
}

bool IsSameTime(const std::optional<DATE>& left, const std::optional<DATE>& right)
{
    constexpr double kHalfSecond = 0.5 / 86400;
    if (!left || !right)
        return left.has_value() == right.has_value();
    return std::abs(*left - *right) < kHalfSecond;
}

// Absent text and empty text are one to a person.
bool IsSameText(const std::optional<std::wstring>& left, const std::optional<std::wstring>& right)
{
    return left.value_or(L"") == right.value_or(L"");
}

bool IsSameReminder(const std::optional<std::uint32_t>& left,
                    const std::optional<std::uint32_t>& right)
{
    const auto plain = [](const std::optional<std::uint32_t>& minutes) {
        const std::uint32_t value = minutes.value_or(0);
        return value == kNoReminder ? 0u : value;
    };
    return plain(left) == plain(right);
}

// Compares by what a person is told of the series, which leaves the seconds of its end aside.
bool IsSameSeries(const std::optional<Recurrence>& left, const std::optional<Recurrence>& right)
{
    return RecurrenceText(left.value_or(Recurrence())) ==
           RecurrenceText(right.value_or(Recurrence()));
}
} // namespace

bool RepeatOptions::HasDetails() const noexcept
{
    return interval || weekdays || nth || monthDay || month || count || untilDay;
}

bool ItemOptions::IsEmpty() const noexcept
{
    return !subject && !place && !description && !start && !end && !allDay && !reminderMinutes &&
           !repeat.type && !repeat.HasDetails();
}

std::wstring MakeItem(const ItemOptions& options, const ILocalZone& zone, Appointment& item)
{
    if (!options.start)
        return L"Say when it begins with --start, as in --start \"2024-05-01 10:00\".";
    item = {};
    item.allDay = options.allDay.value_or(false);
    item.reminderMinutes = kNoReminder;
    std::wstring problem = ApplyTimes(options, zone, item);
    if (!problem.empty())
        return problem;
    if (!item.end)
        SetDefaultEnd(item);
    problem = CheckOrder(item);
    if (!problem.empty())
        return problem;
    ApplyTexts(options, item);
    return ApplyRepeat(options.repeat, zone, item);
}

std::wstring ChangeItem(const ItemOptions& options, const ILocalZone& zone, Appointment& item)
{
    const bool wasAllDay = item.IsAllDay();
    const bool allDay = options.allDay.value_or(wasAllDay);
    if (allDay && !wasAllDay)
    {
        TurnIntoDays(zone, item);
        if (options.start)
            item.end.reset();
    }
    if (!allDay && wasAllDay)
    {
        if (!options.start)
            return L"Say when the item begins with --start, as in --start \"2024-05-01 10:00\".";
        item.end.reset();
    }
    if (options.allDay)
        item.allDay = allDay;
    std::wstring problem = ApplyTimes(options, zone, item);
    if (!problem.empty())
        return problem;
    if (!item.end && (options.start || options.allDay))
        SetDefaultEnd(item);
    if (options.start || options.end)
        problem = CheckOrder(item);
    if (!problem.empty())
        return problem;
    ApplyTexts(options, item);
    return ApplyRepeat(options.repeat, zone, item);
}

std::vector<std::wstring> FieldsNotKept(const Appointment& before,
                                        const Appointment& wanted,
                                        const Appointment& kept)
{
    std::vector<std::wstring> fields;
    const auto check = [&](const wchar_t* name, auto member, auto isSame) {
        if (!isSame(before.*member, wanted.*member) && !isSame(kept.*member, wanted.*member))
            fields.emplace_back(name);
    };
    const auto isSameFlag = [](const std::optional<bool>& left, const std::optional<bool>& right) {
        return left.value_or(false) == right.value_or(false);
    };
    check(L"subject", &Appointment::subject, IsSameText);
    check(L"place", &Appointment::place, IsSameText);
    check(L"description", &Appointment::description, IsSameText);
    check(L"all-day", &Appointment::allDay, isSameFlag);
    check(L"start", &Appointment::start, IsSameTime);
    check(L"end", &Appointment::end, IsSameTime);
    check(L"reminder", &Appointment::reminderMinutes, IsSameReminder);
    check(L"repeat", &Appointment::recurrence, IsSameSeries);
    return fields;
}
} // namespace pim
