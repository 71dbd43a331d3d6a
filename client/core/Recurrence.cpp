#include "client/core/Recurrence.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace pim
{
namespace
{
constexpr const wchar_t* kWeekdayNames[7] = {
    L"Sunday", L"Monday", L"Tuesday", L"Wednesday", L"Thursday", L"Friday", L"Saturday"};

constexpr const wchar_t* kMonthNames[12] = {L"January",
                                            L"February",
                                            L"March",
                                            L"April",
                                            L"May",
                                            L"June",
                                            L"July",
                                            L"August",
                                            L"September",
                                            L"October",
                                            L"November",
                                            L"December"};

constexpr const wchar_t* kOrdinals[6] = {L"", L"first", L"second", L"third", L"fourth", L"fifth"};

// Text in a fixed field of UTF-16 units, up to its terminator or the field's end.
template <std::size_t N> std::wstring FieldText(const std::uint16_t (&field)[N])
{
    const auto* end = std::find(std::begin(field), std::end(field), 0);
    return std::wstring(std::begin(field), end);
}

template <std::size_t N> void CopyToField(const std::wstring& text, std::uint16_t (&field)[N])
{
    std::copy_n(text.begin(), std::min(text.size(), N - 1), field);
}

std::array<bool, 7> ReadWeekdays(const VARIANT_BOOL (&flags)[7])
{
    std::array<bool, 7> weekdays{};
    std::transform(std::begin(flags), std::end(flags), weekdays.begin(), [](VARIANT_BOOL flag) {
        return flag != 0;
    });
    return weekdays;
}

void WriteWeekdays(const std::array<bool, 7>& weekdays, VARIANT_BOOL (&flags)[7])
{
    std::transform(weekdays.begin(), weekdays.end(), std::begin(flags), [](bool day) {
        return VARIANT_BOOL(day ? -1 : 0);
    });
}

// "Monday", "Monday and Friday", "Monday, Tuesday and Friday".
std::wstring JoinNames(const std::vector<std::wstring>& names)
{
    std::wstring text;
    for (std::size_t i = 0; i < names.size(); ++i)
    {
        if (i > 0)
            text += i + 1 == names.size() ? L" and " : L", ";
        text += names[i];
    }
    return text;
}

// In the order of a week that begins on Monday.
std::wstring WeekdayNames(const std::array<bool, 7>& weekdays)
{
    std::vector<std::wstring> names;
    for (std::size_t i = 1; i <= 7; ++i)
    {
        if (weekdays[i % 7])
            names.emplace_back(kWeekdayNames[i % 7]);
    }
    return JoinNames(names);
}

bool AnyOf(const std::array<bool, 7>& weekdays)
{
    return std::find(weekdays.begin(), weekdays.end(), true) != weekdays.end();
}

constexpr std::array<bool, 7> kWorkdays = {false, true, true, true, true, true, false};
constexpr std::array<bool, 7> kWeekend = {true, false, false, false, false, false, true};
constexpr std::array<bool, 7> kAllDays = {true, true, true, true, true, true, true};

// Several days together are one kind of day where an ordinal stands before them.
std::wstring NthWeekdayNames(const std::array<bool, 7>& weekdays)
{
    if (weekdays == kAllDays)
        return L"day";
    if (weekdays == kWorkdays)
        return L"weekday";
    if (weekdays == kWeekend)
        return L"weekend day";
    return WeekdayNames(weekdays);
}

std::wstring OrdinalText(int nth)
{
    if (nth == 0)
        return L"every";
    if (nth == -1)
        return L"the last";
    const long long distance = nth < 0 ? -static_cast<long long>(nth) : nth;
    std::wstring text = L"the ";
    text += distance < 6 ? kOrdinals[distance] : std::to_wstring(distance) + L"th";
    if (nth < 0)
        text += L" to last";
    return text;
}

// "every week", "every 2 weeks", "weekly" where the interval is open.
std::wstring IntervalText(unsigned interval, const wchar_t* unit, const wchar_t* adverb)
{
    if (interval == 0)
        return adverb;
    if (interval == 1)
        return std::wstring(L"every ") + unit;
    return L"every " + std::to_wstring(interval) + L" " + unit + L"s";
}

std::wstring MonthName(int month)
{
    if (month >= 1 && month <= 12)
        return kMonthNames[month - 1];
    return L"month " + std::to_wstring(month);
}

std::wstring MonthDayText(int monthDay)
{
    if (monthDay == -1)
        return L"the last day";
    if (monthDay < -1)
        return L"day " + std::to_wstring(monthDay) + L" from the end";
    return L"day " + std::to_wstring(monthDay);
}

std::wstring DailyText(const Recurrence& recurrence)
{
    if (recurrence.everyWeekday)
        return L"every weekday";
    return IntervalText(recurrence.interval, L"day", L"daily");
}

std::wstring WeeklyText(const Recurrence& recurrence)
{
    std::wstring text = IntervalText(recurrence.interval, L"week", L"weekly");
    if (recurrence.weekdays == kWorkdays)
        text += L" on weekdays";
    else if (recurrence.weekdays == kAllDays)
        text += L" on every day";
    else if (AnyOf(recurrence.weekdays))
        text += L" on " + WeekdayNames(recurrence.weekdays);
    return text;
}

std::wstring MonthlyText(const Recurrence& recurrence)
{
    std::wstring text = IntervalText(recurrence.interval, L"month", L"monthly");
    if (recurrence.rule == Recurrence::Rule::Weekdays && AnyOf(recurrence.weekdays))
        text += L" on " + OrdinalText(recurrence.nth) + L" " + NthWeekdayNames(recurrence.weekdays);
    else if (recurrence.rule == Recurrence::Rule::MonthDay && recurrence.monthDay != 0)
        text += L" on " + MonthDayText(recurrence.monthDay);
    return text;
}

std::wstring YearlyText(const Recurrence& recurrence)
{
    std::wstring text = IntervalText(recurrence.interval, L"year", L"yearly");
    if (recurrence.rule == Recurrence::Rule::Weekdays && AnyOf(recurrence.weekdays))
    {
        text += L" on " + OrdinalText(recurrence.nth) + L" " + NthWeekdayNames(recurrence.weekdays);
        if (recurrence.month != 0)
            text += L" of " + MonthName(recurrence.month);
    }
    else if (recurrence.month != 0 && recurrence.monthDay > 0)
    {
        text += L" on " + MonthName(recurrence.month) + L" " + std::to_wstring(recurrence.monthDay);
    }
    else if (recurrence.month != 0)
    {
        text += L" in " + MonthName(recurrence.month);
    }
    else if (recurrence.monthDay != 0)
    {
        text += L" on " + MonthDayText(recurrence.monthDay);
    }
    return text;
}

std::wstring PatternText(const Recurrence& recurrence)
{
    switch (recurrence.type)
    {
    case Daily:
        return DailyText(recurrence);
    case Weekly:
        return WeeklyText(recurrence);
    case Monthly:
        return MonthlyText(recurrence);
    case Yearly:
        return YearlyText(recurrence);
    default:
        return {};
    }
}

std::wstring CountText(std::uint32_t count, const wchar_t* thing)
{
    return std::to_wstring(count) + L" " + thing + (count == 1 ? L"" : L"s");
}
} // namespace

Recurrence ReadRecurrence(const _tagRecurringInfo& record)
{
    Recurrence recurrence;
    switch (record.eRecurType)
    {
    case Daily:
        recurrence.interval = unsigned(record.tDaily.ulIntervalDay);
        recurrence.everyWeekday = record.tDaily.bIsByWeekdayMode != 0;
        break;
    case Weekly:
        recurrence.interval = unsigned(record.tWeekly.ulIntervalWeek);
        recurrence.weekdays = ReadWeekdays(record.tWeekly.bValidWeekday);
        break;
    case Monthly:
        recurrence.interval = unsigned(record.tMonthly.ulIntervalMonth);
        if (record.tMonthly.bIsByDayMode)
        {
            recurrence.rule = Recurrence::Rule::Weekdays;
            recurrence.nth = int(record.tMonthly.lNth);
            recurrence.weekdays = ReadWeekdays(record.tMonthly.bValidWeekday);
        }
        else if (record.tMonthly.bIsByMonthDayMode)
        {
            recurrence.rule = Recurrence::Rule::MonthDay;
            recurrence.monthDay = int(record.tMonthly.lMonthDay);
        }
        break;
    case Yearly:
        recurrence.interval = unsigned(record.tYearly.ulIntervalYear);
        recurrence.month = int(record.tYearly.lMonth);
        if (record.tYearly.bIsByDayMode)
        {
            recurrence.rule = Recurrence::Rule::Weekdays;
            recurrence.nth = int(record.tYearly.lNth);
            recurrence.weekdays = ReadWeekdays(record.tYearly.bValidWeekday);
        }
        else
        {
            // Not every store sets the mode of a yearly rule, so the day itself decides.
            recurrence.monthDay = int(record.tYearly.lDay);
            if (recurrence.monthDay != 0)
                recurrence.rule = Recurrence::Rule::MonthDay;
        }
        break;
    default:
        return recurrence;
    }
    recurrence.type = record.eRecurType;

    if (record.tEndInfo.eEndType == EndByCount)
    {
        recurrence.endType = EndByCount;
        recurrence.count = unsigned(record.tEndInfo.ulTimesAfter);
    }
    else if (record.tEndInfo.eEndType == EndByDate)
    {
        recurrence.endType = EndByDate;
        recurrence.until = record.tEndInfo.dtEndDateTime;
    }

    std::copy_if(std::begin(record.arrDeletedInstance),
                 std::end(record.arrDeletedInstance),
                 std::back_inserter(recurrence.deletedLocalDays),
                 [](DATE day) { return day != 0.0; });
    for (const _tagModifiedInstanceInfo& instance : record.arrModifiedInstance)
    {
        if (instance.dtModifiedDate == 0.0)
            continue;
        recurrence.modified.push_back({instance.dtModifiedDate,
                                       instance.dtStartDateTime,
                                       instance.dtEndDateTime,
                                       instance.dtOriginalDateTime,
                                       FieldText(instance.szSubject),
                                       FieldText(instance.szLocation)});
    }
    return recurrence;
}

void WriteRecurrence(const Recurrence& recurrence, _tagRecurringInfo& record)
{
    record.eRecurType = recurrence.type;
    switch (recurrence.type)
    {
    case Daily:
        record.tDaily.bIsByDayMode = recurrence.everyWeekday ? 0 : -1;
        record.tDaily.bIsByWeekdayMode = recurrence.everyWeekday ? -1 : 0;
        record.tDaily.ulIntervalDay = recurrence.interval;
        break;
    case Weekly:
        record.tWeekly.ulIntervalWeek = recurrence.interval;
        WriteWeekdays(recurrence.weekdays, record.tWeekly.bValidWeekday);
        break;
    case Monthly:
        record.tMonthly.ulIntervalMonth = recurrence.interval;
        record.tMonthly.bIsByDayMode = recurrence.rule == Recurrence::Rule::Weekdays ? -1 : 0;
        record.tMonthly.bIsByMonthDayMode = recurrence.rule == Recurrence::Rule::MonthDay ? -1 : 0;
        record.tMonthly.lMonthDay = recurrence.monthDay;
        record.tMonthly.lNth = recurrence.nth;
        WriteWeekdays(recurrence.weekdays, record.tMonthly.bValidWeekday);
        break;
    case Yearly:
        record.tYearly.ulIntervalYear = recurrence.interval;
        record.tYearly.bIsByDayMode = recurrence.rule == Recurrence::Rule::Weekdays ? -1 : 0;
        record.tYearly.bIsByMonthDayMode = recurrence.rule == Recurrence::Rule::MonthDay ? -1 : 0;
        record.tYearly.lMonth = recurrence.month;
        record.tYearly.lDay = recurrence.monthDay;
        record.tYearly.lNth = recurrence.nth;
        WriteWeekdays(recurrence.weekdays, record.tYearly.bValidWeekday);
        break;
    default:
        break;
    }
    record.tEndInfo.eEndType = recurrence.endType;
    record.tEndInfo.dtEndDateTime = recurrence.until;
    record.tEndInfo.ulTimesAfter = recurrence.count;

    const std::size_t deleted =
        std::min(recurrence.deletedLocalDays.size(), std::size_t(kMaxDeletedInstances));
    std::copy_n(recurrence.deletedLocalDays.begin(), deleted, record.arrDeletedInstance);
    const std::size_t modified =
        std::min(recurrence.modified.size(), std::size_t(kMaxModifiedInstances));
    for (std::size_t i = 0; i < modified; ++i)
    {
        const ModifiedInstance& instance = recurrence.modified[i];
        _tagModifiedInstanceInfo& target = record.arrModifiedInstance[i];
        target.dtModifiedDate = instance.localDay;
        target.dtStartDateTime = instance.localStart;
        target.dtEndDateTime = instance.localEnd;
        target.dtOriginalDateTime = instance.localOriginalStart;
        CopyToField(instance.subject, target.szSubject);
        CopyToField(instance.place, target.szLocation);
    }
}

void TakeMonthFromStart(Recurrence& recurrence, DATE start)
{
    if (recurrence.type != Yearly || recurrence.month != 0)
        return;
    // A start in UTC may lie a day beside that of the series' own zone.
    for (const double day : {0.0, 1.0, -1.0})
    {
        const auto time = CivilFromDate(start + day);
        const bool isOfTheRule = recurrence.rule == Recurrence::Rule::Weekdays ||
                                 (time && time->day == recurrence.monthDay);
        if (!time || !isOfTheRule)
            continue;
        recurrence.month = time->month;
        return;
    }
}

std::vector<DATE> LeftOutDays(const Recurrence& recurrence)
{
    std::vector<DATE> days;
    std::ranges::copy_if(recurrence.deletedLocalDays, std::back_inserter(days), [&](DATE day) {
        return std::ranges::none_of(recurrence.modified, [&](const ModifiedInstance& instance) {
            return std::floor(instance.localOriginalStart) == std::floor(day);
        });
    });
    return days;
}

std::wstring RecurrenceText(const Recurrence& recurrence)
{
    std::wstring text = PatternText(recurrence);
    if (text.empty())
        return text;
    if (recurrence.endType == EndByCount)
    {
        text += L", " + CountText(recurrence.count, L"time");
    }
    else if (recurrence.endType == EndByDate)
    {
        const auto until = CivilFromDate(recurrence.until);
        text += until ? L", until " + FormatDay(*until) : std::wstring(L", until an unknown day");
    }
    const std::vector<DATE> leftOut = LeftOutDays(recurrence);
    if (!leftOut.empty())
        text += L", " + CountText(std::uint32_t(leftOut.size()), L"day") + L" left out";
    if (!recurrence.modified.empty())
        text += L", " + CountText(std::uint32_t(recurrence.modified.size()), L"day") + L" changed";
    return text;
}

std::wstring ReminderText(std::uint32_t minutesBefore)
{
    struct Unit
    {
        std::uint32_t minutes;
        const wchar_t* name;
    };
    constexpr std::uint32_t kMinutesPerWeek = 7 * 24 * 60;
    constexpr Unit kUnits[] = {{24 * 60, L"day"}, {60, L"hour"}, {1, L"minute"}};

    if (minutesBefore == kNoReminder)
        return L"none";
    if (minutesBefore == 0)
        return L"at the start";
    const bool isBehind = minutesBefore > 0x80000000u;
    std::uint32_t rest = isBehind ? 0u - minutesBefore : minutesBefore;

    std::vector<std::wstring> parts;
    if (rest % kMinutesPerWeek == 0)
    {
        parts.push_back(CountText(rest / kMinutesPerWeek, L"week"));
        rest = 0;
    }
    for (const Unit& unit : kUnits)
    {
        if (rest >= unit.minutes)
            parts.push_back(CountText(rest / unit.minutes, unit.name));
        rest %= unit.minutes;
    }
    return JoinNames(parts) + (isBehind ? L" after the start" : L" before");
}
} // namespace pim
