#include "icalendar/RecurrenceMapping.h"

#include "service/TimeConversions.h"

#include <algorithm>
#include <cstring>

namespace
{

constexpr VARIANT_BOOL kTrue = -1;

// Sets the field unless the value is 0.
template <typename T> void SetUnlessZero(std::int32_t& field, T value)
{
    if (value != 0)
        field = static_cast<std::int32_t>(value);
}

void PutWeekdays(const EventNumbers& event, VARIANT_BOOL (&flags)[7])
{
    std::ranges::transform(
        event.weekdays, flags, [](bool set) { return set ? kTrue : VARIANT_BOOL(0); });
}

void TakeWeekdays(const VARIANT_BOOL (&flags)[7], EventNumbers& event)
{
    std::ranges::transform(
        flags, event.weekdays.begin(), [](VARIANT_BOOL flag) { return flag != 0; });
}

_tagEndInfo EndFromEvent(const EventNumbers& event)
{
    _tagEndInfo end{};
    if (event.until.wYear != 0)
    {
        end.eEndType = EndByDate;
        end.dtEndDateTime = SystemTimeToDate(event.until);
    }
    else if (event.count != 0)
    {
        end.eEndType = EndByCount;
        end.ulTimesAfter = static_cast<std::uint32_t>(event.count);
    }
    return end;
}

void EndToEvent(const _tagEndInfo& end, EventNumbers& event)
{
    SYSTEMTIME until{};
    if (end.eEndType == EndByCount)
        event.count = static_cast<std::int32_t>(end.ulTimesAfter);
    else if (end.eEndType == EndByDate && DateToSystemTime(end.dtEndDateTime, until))
        event.until = until;
}

} // namespace

void PutHead(const RecurrenceHead& head, _tagRecurringInfo& record)
{
    std::memcpy(&record, &head, sizeof(head));
}

RecurrenceHead HeadOf(const _tagRecurringInfo& record)
{
    RecurrenceHead head;
    std::memcpy(&head, &record, sizeof(head));
    return head;
}

RecurrenceHead RecurrenceFromEvent(const EventNumbers& event)
{
    RecurrenceHead head{};
    if (event.frequency == 0)
        return head;
    head.eRecurType = static_cast<_tagNAppointmentRecurringType>(event.frequency);
    const auto interval = static_cast<std::uint32_t>(event.interval);
    switch (head.eRecurType)
    {
    case Daily:
        head.tDaily.bIsByDayMode = kTrue;
        head.tDaily.ulIntervalDay = interval;
        break;
    case Weekly:
        if (event.hasWeekdays)
        {
            head.tWeekly.ulIntervalWeek = interval;
            PutWeekdays(event, head.tWeekly.bValidWeekday);
        }
        break;
    case Monthly:
        head.tMonthly.ulIntervalMonth = interval;
        if (event.hasWeekdays)
        {
            head.tMonthly.bIsByDayMode = kTrue;
            head.tMonthly.lNth = event.nth;
            PutWeekdays(event, head.tMonthly.bValidWeekday);
        }
        else
        {
            head.tMonthly.bIsByMonthDayMode = kTrue;
            head.tMonthly.lMonthDay = event.monthDay;
        }
        break;
    case Yearly:
        head.tYearly.ulIntervalYear = interval;
        head.tYearly.lMonth = event.month;
        head.tYearly.lDay = event.monthDay;
        break;
    default:
        break;
    }
    head.tEndInfo = EndFromEvent(event);
    return head;
}

void RecurrenceToEvent(const RecurrenceHead& head, EventNumbers& event)
{
    if (head.eRecurType == None)
        return;
    event.frequency = head.eRecurType;
    switch (head.eRecurType)
    {
    case Daily:
        SetUnlessZero(event.interval, head.tDaily.ulIntervalDay);
        break;
    case Weekly:
        SetUnlessZero(event.interval, head.tWeekly.ulIntervalWeek);
        TakeWeekdays(head.tWeekly.bValidWeekday, event);
        event.hasWeekdays = std::ranges::find(event.weekdays, true) != event.weekdays.end();
        break;
    case Monthly:
        SetUnlessZero(event.interval, head.tMonthly.ulIntervalMonth);
        if (head.tMonthly.bIsByMonthDayMode)
        {
            SetUnlessZero(event.monthDay, head.tMonthly.lMonthDay);
        }
        else if (head.tMonthly.bIsByDayMode)
        {
            TakeWeekdays(head.tMonthly.bValidWeekday, event);
            event.hasWeekdays = true;
            SetUnlessZero(event.nth, head.tMonthly.lNth);
        }
        break;
    case Yearly:
        SetUnlessZero(event.interval, head.tYearly.ulIntervalYear);
        SetUnlessZero(event.month, head.tYearly.lMonth);
        SetUnlessZero(event.monthDay, head.tYearly.lDay);
        break;
    default:
        break;
    }
    EndToEvent(head.tEndInfo, event);
}
