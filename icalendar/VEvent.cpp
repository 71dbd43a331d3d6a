#include "icalendar/VEvent.h"

#include "icalendar/DateText.h"
#include "icalendar/LineText.h"
#include "icalendar/TextPieces.h"
#include "service/StringHelpers.h"
#include "service/TimeConversions.h"

#include <algorithm>

namespace
{

constexpr std::int32_t kMonthlyFrequency = 3;
constexpr std::int32_t kYearlyFrequency = 4;

// The value of FREQ at frequency - 1.
constexpr std::wstring_view kFrequencyNames[] = {L"DAILY", L"WEEKLY", L"MONTHLY", L"YEARLY"};

wchar_t AsciiUpper(wchar_t character)
{
    return character >= L'a' && character <= L'z' ? static_cast<wchar_t>(character - L'a' + L'A')
                                                  : character;
}

bool EqualIgnoringCase(std::wstring_view left, std::wstring_view right)
{
    return std::ranges::equal(
        left, right, [](wchar_t a, wchar_t b) { return AsciiUpper(a) == AsciiUpper(b); });
}

// Without the double quotes at both ends; a text of nothing else stays whole.
std::wstring_view TrimQuotes(std::wstring_view text)
{
    const std::size_t first = text.find_first_not_of(L'"');
    if (first == std::wstring_view::npos)
        return text;
    return text.substr(first, text.find_last_not_of(L'"') - first + 1);
}

// --- Reading: properties -----------------------------------------------------------------------

void ReadStamp(CVEvent& event, std::wstring_view, std::wstring_view value)
{
    ParseDateTime(value, event.stamp);
}

// Only the first of a TZID and a VALUE=DATE takes effect. Kept as it is: the semicolons and equals
// signs of a quoted TZID divide it too. Pinned by VEventTest.
void ReadStartParameters(CVEvent& event, std::wstring_view name)
{
    TextPieces parameters(name, L';');
    std::wstring_view parameter;
    if (!parameters.Next(parameter))
        return;
    while (parameters.Next(parameter))
    {
        TextPieces parts(parameter, L'=');
        std::wstring_view key;
        std::wstring_view value;
        std::wstring_view more;
        if (!parts.Next(key) || !parts.Next(value) || parts.Next(more))
            continue;
        if (EqualIgnoringCase(key, L"TZID"))
        {
            event.tzid = TrimQuotes(value);
            return;
        }
        if (EqualIgnoringCase(key, L"VALUE") && EqualIgnoringCase(value, L"DATE"))
        {
            event.allDay = true;
            return;
        }
    }
}

void ReadStart(CVEvent& event, std::wstring_view name, std::wstring_view value)
{
    ReadStartParameters(event, name);
    ParseDateTime(value, event.start);
}

void ReadEnd(CVEvent& event, std::wstring_view, std::wstring_view value)
{
    ParseDateTime(value, event.end);
}

// Kept as it is, and deliberately simple: the digits 0 to 8 of all units run together into one
// number of at most seven digits, and the last character alone tells the unit. Pinned by
// VEventTest.
std::int32_t DurationMinutes(std::wstring_view value)
{
    constexpr std::size_t kMaxDigits = 7;
    if (value.empty() || value.front() != L'P')
        return 0;
    std::uint32_t number = 0;
    std::size_t digits = 0;
    for (const wchar_t character : value)
    {
        if (character < L'0' || character > L'8' || digits == kMaxDigits)
            continue;
        number = number * 10 + static_cast<std::uint32_t>(character - L'0');
        ++digits;
    }
    const wchar_t unit = value.back();
    const std::uint32_t minutesPerUnit = unit == L'D' ? 1440 : unit == L'H' ? 60 : 1;
    return static_cast<std::int32_t>(number * minutesPerUnit); // wraps as 32-bit arithmetic does
}

// The start is the one read so far. An end that cannot be told stays as it was.
void ReadDuration(CVEvent& event, std::wstring_view, std::wstring_view value)
{
    const DATE end = AddMinutesToDate(SystemTimeToDate(event.start), DurationMinutes(value));
    SYSTEMTIME time{};
    if (DateToSystemTime(end, time))
        event.end = time;
}

// --- Reading: the recurrence rule --------------------------------------------------------------

void ReadFrequency(CVEvent& event, std::wstring_view value)
{
    const auto found = std::ranges::find(kFrequencyNames, value);
    if (found != std::end(kFrequencyNames))
        event.frequency = static_cast<std::int32_t>(found - std::begin(kFrequencyNames)) + 1;
}

void ReadWeekdays(CVEvent& event, std::wstring_view value)
{
    TextPieces entries(value, L',');
    std::wstring_view entry;
    while (entries.Next(entry))
    {
        if (entry.size() > 2)
        {
            event.nth = ParseInt(entry.substr(0, entry.size() - 2));
            entry.remove_prefix(entry.size() - 2);
        }
        const auto found = std::ranges::find(kWeekdayNames, entry);
        if (found != kWeekdayNames.end())
            event.weekdays[static_cast<std::size_t>(found - kWeekdayNames.begin())] = true;
    }
    event.hasWeekdays = true;
}

void ReadUntil(CVEvent& event, std::wstring_view value)
{
    ParseDateTime(value, event.until);
}

template <std::int32_t CVEvent::*field> void ReadRuleNumber(CVEvent& event, std::wstring_view value)
{
    event.*field = ParseInt(value);
}

struct RuleRow
{
    std::wstring_view key;
    void (*read)(CVEvent& event, std::wstring_view value);
};

// clang-format off
constexpr RuleRow kRuleRows[] = {
    {L"FREQ",       ReadFrequency},
    {L"INTERVAL",   ReadRuleNumber<&CVEvent::interval>},
    {L"BYDAY",      ReadWeekdays},
    {L"BYMONTHDAY", ReadRuleNumber<&CVEvent::monthDay>},
    {L"BYMONTH",    ReadRuleNumber<&CVEvent::month>},
    {L"UNTIL",      ReadUntil},
    {L"COUNT",      ReadRuleNumber<&CVEvent::count>},
};
// clang-format on

void ReadRule(CVEvent& event, std::wstring_view, std::wstring_view value)
{
    TextPieces pieces(value, L';');
    std::wstring_view piece;
    while (pieces.Next(piece))
    {
        const std::size_t equals = piece.find(L'=');
        if (equals == std::wstring_view::npos)
            continue;
        const std::wstring_view key = piece.substr(0, equals);
        const auto row = std::ranges::find(kRuleRows, key, &RuleRow::key);
        if (row != std::end(kRuleRows))
            row->read(event, piece.substr(equals + 1));
    }
}

// --- Reading: which property -------------------------------------------------------------------

template <std::wstring CVEvent::*field>
void ReadText(CVEvent& event, std::wstring_view, std::wstring_view value)
{
    event.*field = value;
}

struct PropertyRow
{
    std::wstring_view name;
    bool anyParameters; // whether whatever begins with the name counts
    void (*read)(CVEvent& event, std::wstring_view name, std::wstring_view value);

    bool Takes(std::wstring_view property) const
    {
        return anyParameters ? property.starts_with(name) : property == name;
    }
};

// The first that takes the name decides.
// clang-format off
constexpr PropertyRow kPropertyRows[] = {
    {L"UID",         false, ReadText<&CVEvent::uid>},
    {L"DTSTAMP",     true,  ReadStamp},
    {L"SUMMARY",     false, ReadText<&CVEvent::summary>},
    {L"LOCATION",    false, ReadText<&CVEvent::location>},
    {L"DTSTART",     true,  ReadStart},
    {L"DTEND",       true,  ReadEnd},
    {L"DURATION",    true,  ReadDuration},
    {L"DESCRIPTION", false, ReadText<&CVEvent::description>},
    {L"RRULE",       false, ReadRule},
};
// clang-format on

// --- Writing -----------------------------------------------------------------------------------

std::wstring WeekdayText(const CVEvent& event)
{
    std::wstring text;
    if (!event.hasWeekdays)
        return text;
    for (std::size_t day = 0; day < kWeekdayNames.size(); ++day)
    {
        if (!event.weekdays[day])
            continue;
        if (!text.empty())
            text += L',';
        text += kWeekdayNames[day];
    }
    return text;
}

std::wstring RuleText(const CVEvent& event)
{
    std::wstring rule;
    const auto add = [&rule](std::wstring_view key, std::wstring_view value) {
        if (!rule.empty())
            rule += L';';
        rule += key;
        rule += L'=';
        rule += value;
    };
    const auto addNumber = [&add](std::wstring_view key, std::int32_t number) {
        if (number != 0)
            add(key, std::to_wstring(number));
    };

    std::wstring weekdays = WeekdayText(event);
    if (event.frequency >= 1 && event.frequency <= kYearlyFrequency)
        add(L"FREQ", kFrequencyNames[event.frequency - 1]);
    if (event.frequency == kMonthlyFrequency || event.frequency == kYearlyFrequency)
    {
        // Kept as it is: one ordinal for all days, in front of the first alone. Pinned by
        // VEventTest.
        if (!weekdays.empty() && event.nth != 0)
            weekdays.insert(0, std::to_wstring(event.nth));
        addNumber(L"BYMONTHDAY", event.monthDay);
    }
    if (event.frequency == kYearlyFrequency)
        addNumber(L"BYMONTH", event.month);
    if (!weekdays.empty())
        add(L"BYDAY", weekdays);
    addNumber(L"INTERVAL", event.interval);
    if (event.until.wYear != 0)
        add(L"UNTIL", FormatUntil(event.until));
    addNumber(L"COUNT", event.count);
    return rule;
}

} // namespace

int CVEvent::SetProperty(std::wstring_view name, std::wstring_view value)
{
    for (const PropertyRow& row : kPropertyRows)
    {
        if (row.Takes(name))
        {
            row.read(*this, name, value);
            break;
        }
    }
    return 1;
}

std::wstring CVEvent::GetProperties() const
{
    constexpr std::size_t kUsualLength = 400;
    std::wstring lines;
    lines.reserve(kUsualLength + description.size());
    const auto addText = [&lines](std::wstring_view name, std::wstring_view value) {
        if (!value.empty())
            AppendLine(lines, name, value);
    };

    addText(L"DESCRIPTION", description);
    AppendLine(lines, L"DTSTAMP", FormatDateTime(stamp));
    if (allDay)
    {
        AppendLine(lines, L"DTSTART;VALUE=DATE", FormatDate(start));
        AppendLine(lines, L"DTEND;VALUE=DATE", FormatDate(end));
    }
    else
    {
        // Kept as it is: an empty TZID is written too, and comes back as two quotes. Pinned by
        // VEventTest.
        const std::wstring zone = L";TZID=\"" + tzid + L"\"";
        AppendLine(lines, L"DTSTART" + zone, FormatDateTime(start));
        AppendLine(lines, L"DTEND" + zone, FormatDateTime(end));
    }
    addText(L"SUMMARY", summary);
    addText(L"LOCATION", location);
    addText(L"UID", uid);
    if (frequency != 0)
        AppendLine(lines, L"RRULE", RuleText(*this));
    return lines;
}
