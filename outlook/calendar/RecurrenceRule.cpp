#include "outlook/calendar/RecurrenceRule.h"

#include "outlook/calendar/RecurrenceFormat.h"
#include "platform/PlatformTime.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <iterator>
#include <limits>

using namespace recurrence_format;

namespace
{
constexpr std::uint32_t kMinutesPerWeek = 7 * kMinutesPerDay;
constexpr int kFirstYear = 1601;

// The minutes of the first of a month, counted from January 1601; 0 beyond what can be expressed.
std::uint32_t MinutesOfMonth(std::uint32_t month)
{
    const std::uint32_t year = kFirstYear + month / 12;
    if (year > std::numeric_limits<std::uint16_t>::max())
        return 0;
    SYSTEMTIME first{};
    first.wYear = static_cast<std::uint16_t>(year);
    first.wMonth = static_cast<std::uint16_t>(month % 12 + 1);
    first.wDay = 1;
    FILETIME time{};
    return SystemTimeToFileTime(&first, &time) ? FileTimeToMinutes(time) : 0;
}

// Only -1 is a weekday that is set.
std::uint32_t MaskOf(const VARIANT_BOOL (&weekdays)[7], std::uint32_t& count)
{
    std::uint32_t mask = 0;
    count = 0;
    for (int day = 0; day < 7; ++day)
    {
        if (weekdays[day] != -1)
            continue;
        mask |= std::uint32_t{1} << day;
        ++count;
    }
    return mask;
}

CodecStatus MakeDaily(const _tagRecurringInfo& record,
                      const RecurrenceStart& start,
                      RecurrenceRule& rule)
{
    const std::uint32_t interval = record.tDaily.ulIntervalDay;
    rule.frequency = kFrequencyDaily;
    rule.type = kPatternDay;
    rule.period = interval * kMinutesPerDay;
    if (rule.period == 0)
        return CodecStatus::Inconsistent;
    rule.firstMinutes = start.Day() % rule.period;
    rule.endDays = record.tEndInfo.ulTimesAfter * interval;
    return CodecStatus::Ok;
}

CodecStatus MakeWeekly(const _tagRecurringInfo& record,
                       const RecurrenceStart& start,
                       RecurrenceRule& rule)
{
    const std::uint32_t interval = record.tWeekly.ulIntervalWeek;
    const std::uint32_t times = record.tEndInfo.ulTimesAfter;
    std::uint32_t days = 0;
    rule.frequency = kFrequencyWeekly;
    rule.type = kPatternWeek;
    rule.period = interval;
    rule.Add(MaskOf(record.tWeekly.bValidWeekday, days));
    if (interval * kMinutesPerWeek == 0)
        return CodecStatus::Inconsistent;
    rule.firstMinutes = start.Sunday() % (interval * kMinutesPerWeek);
    if (record.tEndInfo.eEndType == EndByCount)
    {
        if (days == 0)
            return CodecStatus::Inconsistent;
        rule.endDays = times / days * interval * 7 + times % days;
    }
    return CodecStatus::Ok;
}

CodecStatus MakeMonthly(const _tagRecurringInfo& record,
                        const RecurrenceStart& start,
                        RecurrenceRule& rule)
{
    const _tagMonthlyInfo& monthly = record.tMonthly;
    const std::uint32_t interval = monthly.ulIntervalMonth;
    if (interval == 0)
        return CodecStatus::Inconsistent;
    rule.frequency = kFrequencyMonthly;
    rule.type = monthly.bIsByDayMode != 0 ? kPatternMonthNth : kPatternMonth;
    rule.period = interval & 0xFFFF;
    rule.firstMinutes = MinutesOfMonth(start.Month() % interval);
    rule.endDays = interval * record.tEndInfo.ulTimesAfter * 31;
    if (monthly.bIsByDayMode != 0)
    {
        std::uint32_t days = 0;
        rule.Add(MaskOf(monthly.bValidWeekday, days));
        // Kept as it is: without a week the field is missing, and readers take what follows for it.
        // Pinned by RecurrencePatternWriteTest.
        if (monthly.lNth != 0)
            rule.Add(monthly.lNth < 0 ? kLastWeek : static_cast<std::uint32_t>(monthly.lNth));
    }
    else if (monthly.bIsByMonthDayMode != 0)
    {
        rule.Add(static_cast<std::uint32_t>(monthly.lMonthDay));
    }
    return CodecStatus::Ok;
}

// Kept as it is: a yearly rule is always one of a month's day every 12 months, whatever its mode,
// weekdays, month and interval. Pinned by RecurrencePatternWriteTest.
CodecStatus MakeYearly(const _tagRecurringInfo& record,
                       const RecurrenceStart& start,
                       RecurrenceRule& rule)
{
    rule.frequency = kFrequencyYearly;
    rule.type = kPatternMonth;
    rule.period = 12;
    rule.firstMinutes = MinutesOfMonth(start.MonthOfYear() - 1);
    rule.Add(static_cast<std::uint32_t>(record.tYearly.lDay));
    rule.endDays = record.tYearly.ulIntervalYear * record.tEndInfo.ulTimesAfter * 31;
    return CodecStatus::Ok;
}

struct KindRow
{
    _tagNAppointmentRecurringType kind;
    CodecStatus (*make)(const _tagRecurringInfo&, const RecurrenceStart&, RecurrenceRule&);
};

constexpr KindRow kKinds[] = {
    {Daily, MakeDaily}, {Weekly, MakeWeekly}, {Monthly, MakeMonthly}, {Yearly, MakeYearly}};
} // namespace

RecurrenceStart::RecurrenceStart(DATE local)
{
    DateToSystemTime(local, m_time);
    m_minutes = DateToMinutes(local);
}

std::uint32_t RecurrenceStart::Day() const
{
    return m_minutes - m_minutes % kMinutesPerDay;
}

std::uint32_t RecurrenceStart::Sunday() const
{
    return m_minutes - MinutesOfDay() - m_time.wDayOfWeek * kMinutesPerDay;
}

std::uint32_t RecurrenceStart::Month() const
{
    return static_cast<std::uint32_t>((m_time.wYear - kFirstYear) * 12 - 1 + m_time.wMonth);
}

CodecStatus MakeRecurrenceRule(const _tagRecurringInfo& record,
                               const RecurrenceStart& start,
                               RecurrenceRule& rule)
{
    const auto* const kind = std::ranges::find(kKinds, record.eRecurType, &KindRow::kind);
    return kind != std::end(kKinds) ? kind->make(record, start, rule) : CodecStatus::Unsupported;
}
