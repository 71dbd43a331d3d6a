#include "icalendar/VAlarm.h"

#include "icalendar/DateText.h"
#include "icalendar/LineText.h"
#include "platform/GuidSource.h"
#include "service/StringHelpers.h"

namespace
{

constexpr std::uint32_t kMinutesPerHour = 60;
constexpr std::uint32_t kHoursPerDay = 24;
constexpr std::uint32_t kDaysPerWeek = 7;

// Where a lead time of one unit has its digits. They end before the last character, but for those
// behind "-PT" only by the assumption of fixed positions.
struct TriggerRow
{
    wchar_t unit;
    std::size_t position;
    std::size_t lengthLess;
    std::uint32_t minutes;
};

// Kept as it is: the digits are taken from fixed positions, as if there were one unit alone. Pinned
// by VAlarmTest.ReadsTheDigitsAtFixedPositionsWhateverStandsThere.
// clang-format off
constexpr TriggerRow kTriggers[] = {
    {L'M', 3, 4, 1},
    {L'H', 3, 4, kMinutesPerHour},
    {L'D', 2, 3, kHoursPerDay * kMinutesPerHour},
    {L'W', 2, 3, kDaysPerWeek * kHoursPerDay * kMinutesPerHour},
};
// clang-format on

void ReadLeadTime(std::wstring_view value, std::int32_t& minutesBefore)
{
    if (!value.starts_with(L"-P"))
        return;
    for (const TriggerRow& row : kTriggers)
    {
        if (value.back() != row.unit)
            continue;
        const std::wstring_view digits =
            value.size() > row.lengthLess
                ? value.substr(row.position, value.size() - row.lengthLess)
                : std::wstring_view();
        // As 32-bit arithmetic gives it, also for numbers beyond its range.
        minutesBefore =
            static_cast<std::int32_t>(static_cast<std::uint32_t>(ParseInt(digits)) * row.minutes);
        return;
    }
}

std::wstring LeadTimeText(std::uint32_t minutes)
{
    const auto text = [](const wchar_t* start, std::uint32_t number, wchar_t unit) {
        return start + std::to_wstring(static_cast<std::int32_t>(number)) + unit;
    };
    if (minutes == 0)
        return L"P0W";
    if (minutes % kMinutesPerHour)
        return text(L"-PT", minutes, L'M');
    const std::uint32_t hours = minutes / kMinutesPerHour;
    if (hours % kHoursPerDay)
        return text(L"-PT", hours, L'H');
    const std::uint32_t days = hours / kHoursPerDay;
    if (days % kDaysPerWeek)
        return text(L"-P", days, L'D');
    return text(L"-P", days / kDaysPerWeek, L'W');
}

} // namespace

int CVAlarm::SetProperty(std::wstring_view name, std::wstring_view value)
{
    if (name == L"TRIGGER")
        ReadLeadTime(value, minutesBefore);
    else if (name.starts_with(L"TRIGGER"))
        ParseDateTime(value, triggerTime);
    return 1;
}

std::wstring CVAlarm::GetProperties() const
{
    std::wstring lines;
    if (minutesBefore == kNoReminder)
        return lines;
    AppendLine(lines, L"ACTION", L"DISPLAY");
    AppendLine(lines, L"DESCRIPTION", L"Reminder");
    AppendLine(lines, L"TRIGGER", LeadTimeText(static_cast<std::uint32_t>(minutesBefore)));
    const std::wstring id = NewGuidText();
    if (!id.empty())
        AppendLine(lines, L"X-WR-ALARMUID", id);
    return lines;
}
