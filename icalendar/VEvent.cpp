#include "icalendar/VEvent.h"

#include "icalendar/DateText.h"
#include "icalendar/LineText.h"
#include "icalendar/TextPieces.h"
#include "service/StringHelpers.h"
#include "service/TimeConversions.h"

#include <algorithm>
#include <new>
#include <span>

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

void ReadStamp(EventFields& event, std::wstring_view, std::wstring_view value)
{
    ParseDateTime(value, event.stamp);
}

// Only the first of a TZID and a VALUE=DATE takes effect. Kept as it is: the semicolons and equals
// signs of a quoted TZID divide it too. Pinned by VEventTest.
void ReadStartParameters(EventFields& event, std::wstring_view name)
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

void ReadStart(EventFields& event, std::wstring_view name, std::wstring_view value)
{
    ReadStartParameters(event, name);
    ParseDateTime(value, event.start);
}

void ReadEnd(EventFields& event, std::wstring_view, std::wstring_view value)
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
void ReadDuration(EventFields& event, std::wstring_view, std::wstring_view value)
{
    const DATE end = AddMinutesToDate(SystemTimeToDate(event.start), DurationMinutes(value));
    SYSTEMTIME time{};
    if (DateToSystemTime(end, time))
        event.end = time;
}

// --- Reading: the recurrence rule --------------------------------------------------------------

void ReadFrequency(EventFields& event, std::wstring_view value)
{
    const auto found = std::ranges::find(kFrequencyNames, value);
    if (found != std::end(kFrequencyNames))
        event.frequency = static_cast<std::int32_t>(found - std::begin(kFrequencyNames)) + 1;
}

void ReadWeekdays(EventFields& event, std::wstring_view value)
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

void ReadUntil(EventFields& event, std::wstring_view value)
{
    ParseDateTime(value, event.until);
}

template <std::int32_t EventNumbers::*field>
void ReadRuleNumber(EventFields& event, std::wstring_view value)
{
    event.*field = ParseInt(value);
}

struct RuleRow
{
    std::wstring_view key;
    void (*read)(EventFields& event, std::wstring_view value);
};

// clang-format off
constexpr RuleRow kRuleRows[] = {
    {L"FREQ",       ReadFrequency},
    {L"INTERVAL",   ReadRuleNumber<&EventNumbers::interval>},
    {L"BYDAY",      ReadWeekdays},
    {L"BYMONTHDAY", ReadRuleNumber<&EventNumbers::monthDay>},
    {L"BYMONTH",    ReadRuleNumber<&EventNumbers::month>},
    {L"UNTIL",      ReadUntil},
    {L"COUNT",      ReadRuleNumber<&EventNumbers::count>},
};
// clang-format on

void ReadRule(EventFields& event, std::wstring_view, std::wstring_view value)
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

template <std::wstring EventFields::*field>
void ReadText(EventFields& event, std::wstring_view, std::wstring_view value)
{
    event.*field = value;
}

struct PropertyRow
{
    std::wstring_view name;
    bool anyParameters; // whether whatever begins with the name counts
    void (*read)(EventFields& event, std::wstring_view name, std::wstring_view value);

    bool Takes(std::wstring_view property) const
    {
        return anyParameters ? property.starts_with(name) : property == name;
    }
};

// The first that takes the name decides.
// clang-format off
constexpr PropertyRow kPropertyRows[] = {
    {L"UID",         false, ReadText<&EventFields::uid>},
    {L"DTSTAMP",     true,  ReadStamp},
    {L"SUMMARY",     false, ReadText<&EventFields::summary>},
    {L"LOCATION",    false, ReadText<&EventFields::location>},
    {L"DTSTART",     true,  ReadStart},
    {L"DTEND",       true,  ReadEnd},
    {L"DURATION",    true,  ReadDuration},
    {L"DESCRIPTION", false, ReadText<&EventFields::description>},
    {L"RRULE",       false, ReadRule},
};
// clang-format on

// --- Writing -----------------------------------------------------------------------------------

std::wstring WeekdayText(const EventNumbers& event)
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

std::wstring RuleText(const EventNumbers& event)
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

// --- Packing -----------------------------------------------------------------------------------

template <typename From, typename To>
void CopyFields(const EventProperties<From>& from, EventProperties<To>& to)
{
    static_cast<EventNumbers&>(to) = from;
    to.uid = from.uid;
    to.summary = from.summary;
    to.location = from.location;
    to.tzid = from.tzid;
    to.description = from.description;
}

std::span<const unsigned char> BytesOf(const EventNumbers& numbers)
{
    return {reinterpret_cast<const unsigned char*>(&numbers), sizeof(numbers)};
}

std::span<unsigned char> BytesOf(EventNumbers& numbers)
{
    return {reinterpret_cast<unsigned char*>(&numbers), sizeof(numbers)};
}

} // namespace

int CVEvent::SetProperty(std::wstring_view name, std::wstring_view value)
{
    for (const PropertyRow& row : kPropertyRows)
    {
        if (row.Takes(name))
        {
            row.read(Edit(), name, value);
            break;
        }
    }
    return 1;
}

std::wstring CVEvent::GetProperties() const
{
    constexpr std::size_t kUsualLength = 400;
    const EventView fields = Fields();
    std::wstring lines;
    lines.reserve(kUsualLength + fields.description.size());
    const auto addText = [&lines](std::wstring_view name, std::wstring_view value) {
        if (!value.empty())
            AppendLine(lines, name, value);
    };

    addText(L"DESCRIPTION", fields.description);
    AppendLine(lines, L"DTSTAMP", FormatDateTime(fields.stamp));
    if (fields.allDay)
    {
        AppendLine(lines, L"DTSTART;VALUE=DATE", FormatDate(fields.start));
        AppendLine(lines, L"DTEND;VALUE=DATE", FormatDate(fields.end));
    }
    else
    {
        // Kept as it is: an empty TZID is written too, and comes back as two quotes. Pinned by
        // VEventTest.
        const std::wstring zone = L";TZID=\"" + std::wstring(fields.tzid) + L"\"";
        AppendLine(lines, L"DTSTART" + zone, FormatDateTime(fields.start));
        AppendLine(lines, L"DTEND" + zone, FormatDateTime(fields.end));
    }
    addText(L"SUMMARY", fields.summary);
    addText(L"LOCATION", fields.location);
    addText(L"UID", fields.uid);
    if (fields.frequency != 0)
        AppendLine(lines, L"RRULE", RuleText(fields));
    return lines;
}

std::wstring CVEvent::Id() const
{
    return m_fields ? m_fields->uid : m_packed.Get(kUid).Text();
}

EventView CVEvent::Fields() const
{
    EventView fields;
    if (m_fields)
    {
        CopyFields(*m_fields, fields);
        return fields;
    }
    const auto packed = m_packed.All();
    if (!packed[kNumbers].IsAny())
        return fields;
    packed[kNumbers].CopyRecord(BytesOf(fields));
    std::size_t length = 0;
    for (const Packed text : {kUid, kSummary, kLocation, kTzid, kDescription})
        length += packed[text].TextLength();
    fields.texts = std::make_unique_for_overwrite<wchar_t[]>(length);
    wchar_t* next = fields.texts.get();
    const auto unpack = [&](const CompactValue& value) {
        const std::wstring_view text(next, value.TextLength());
        value.CopyText(next);
        next += text.size();
        return text;
    };
    fields.uid = unpack(packed[kUid]);
    fields.summary = unpack(packed[kSummary]);
    fields.location = unpack(packed[kLocation]);
    fields.tzid = unpack(packed[kTzid]);
    fields.description = unpack(packed[kDescription]);
    return fields;
}

EventFields& CVEvent::Edit()
{
    if (!m_fields)
    {
        auto fields = std::make_unique<EventFields>();
        if (m_packed.IsAny())
            CopyFields(Fields(), *fields);
        m_fields = std::move(fields);
    }
    return *m_fields;
}

void CVEvent::Pack() noexcept
try
{
    if (!m_fields)
        return;
    const EventFields& fields = *m_fields;
    m_packed.Assign({CompactValue::OfText(fields.uid),
                     CompactValue::OfText(fields.summary),
                     CompactValue::OfText(fields.location),
                     CompactValue::OfText(fields.tzid),
                     CompactValue::OfText(fields.description),
                     CompactValue::OfRecord(BytesOf(fields))});
    m_fields.reset();
}
catch (const std::bad_alloc&)
{
}
