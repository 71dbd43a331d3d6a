#include "client/core/AppointmentArguments.h"

#include "client/core/Arguments.h"
#include "client/core/Unicode.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace pim
{
namespace
{
constexpr unsigned kMaxInterval = 999;
constexpr unsigned kMaxCount = 99999;
constexpr unsigned kMaxReminderMinutes = 5'256'000; // ten years

unsigned ReadNumber(const std::string& text, const char* option, unsigned least, unsigned most)
{
    unsigned value = 0;
    const char* const end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    if (result.ec != std::errc() || result.ptr != end || value < least || value > most)
        throw UsageProblem{std::string(option) + " takes a number from " + std::to_string(least) +
                           " to " + std::to_string(most) + ", not \"" + text + "\"."};
    return value;
}

TypedTime ReadTime(const std::string& text, const char* option)
{
    const auto typed = ParseTypedTime(WideFromUtf8(text));
    if (!typed)
        throw UsageProblem{std::string(option) +
                           " takes a time as 2024-05-01 10:00 or 2024-05-01, not \"" + text +
                           "\"."};
    return *typed;
}

std::uint32_t ReadReminder(const std::string& text)
{
    if (EqualsIgnoringCase(text, "none"))
        return kNoReminder;
    return ReadNumber(text, "--reminder", 0, kMaxReminderMinutes);
}

_tagNAppointmentRecurringType ReadRepeatKind(const std::string& text)
{
    struct Kind
    {
        const char* name;
        _tagNAppointmentRecurringType type;
    };
    constexpr Kind kKinds[] = {
        {"daily", Daily}, {"weekly", Weekly}, {"monthly", Monthly}, {"yearly", Yearly}};
    for (const Kind& kind : kKinds)
    {
        if (EqualsIgnoringCase(text, kind.name))
            return kind.type;
    }
    throw UsageProblem{"--repeat takes daily, weekly, monthly or yearly, not \"" + text + "\"."};
}

std::array<bool, 7> ReadDays(const std::string& text)
{
    std::array<bool, 7> days{};
    std::stringstream stream(text);
    std::string entry;
    bool any = false;
    while (std::getline(stream, entry, ','))
    {
        const auto* const code =
            std::find_if(std::begin(kWeekdayCodes), std::end(kWeekdayCodes), [&](const wchar_t* c) {
                return EqualsIgnoringCase(entry, Utf8FromWide(c));
            });
        if (code == std::end(kWeekdayCodes))
            throw UsageProblem{"--days takes weekdays as MO,TU,WE,TH,FR,SA,SU, not \"" + text +
                               "\"."};
        days[std::size_t(code - std::begin(kWeekdayCodes))] = true;
        any = true;
    }
    if (!any)
        throw UsageProblem{"--days takes at least one weekday, as in MO,WE."};
    return days;
}

int ReadNth(const std::string& text)
{
    if (EqualsIgnoringCase(text, "last") || text == "-1")
        return -1;
    if (text.size() == 1 && text[0] >= '1' && text[0] <= '4')
        return text[0] - '0';
    throw UsageProblem{"--nth takes 1 to 4 or last, not \"" + text + "\"."};
}
} // namespace

void AppointmentArguments::AddTo(CLI::App& command)
{
    command.add_option("--subject", m_subject, "What it is about")->type_name("TEXT");
    command.add_option("--place", m_place, "Where it is")->type_name("TEXT");
    command.add_option("--description", m_description, "More about it")->type_name("TEXT");
    command.add_option("--start", m_start, "When it begins: 2024-05-01 10:00")->type_name("TIME");
    command.add_option("--end", m_end, "When it ends; the last day of an all-day item")
        ->type_name("TIME");
    command.add_flag("--all-day", m_allDay, "Whole days, without a time of day");
    command.add_flag("--timed", m_isTimed, "Not whole days any longer")->excludes("--all-day");
    command.add_option("--reminder", m_reminder, "Minutes before the start, or none")
        ->type_name("MIN|none");
    command.add_option("--repeat", m_repeat, "daily, weekly, monthly or yearly")->type_name("KIND");
    command.add_option("--interval", m_interval, "Every so many days, weeks, months or years")
        ->type_name("N");
    command.add_option("--days", m_days, "Weekdays of a weekly or monthly series: MO,WE")
        ->type_name("DAYS");
    command.add_option("--nth", m_nth, "With --days of a monthly series: 1 to 4 or last")
        ->type_name("N");
    command.add_option("--month-day", m_monthDay, "Day of the month")->type_name("N");
    command.add_option("--month", m_month, "Month of a yearly series")->type_name("N");
    command.add_option("--count", m_count, "The series ends after so many times")->type_name("N");
    command.add_option("--until", m_until, "The series ends with this day: 2024-12-31")
        ->type_name("DAY");
}

ItemOptions AppointmentArguments::Read(const CLI::App& command) const
{
    const auto given = [&](const char* name) { return command.count(name) > 0; };
    ItemOptions item;
    if (given("--subject"))
        item.subject = ReadLine(m_subject, "--subject");
    if (given("--place"))
        item.place = ReadLine(m_place, "--place");
    if (given("--description"))
        item.description = ReadLine(m_description, "--description");
    if (given("--start"))
        item.start = ReadTime(m_start, "--start");
    if (given("--end"))
        item.end = ReadTime(m_end, "--end");
    if (given("--all-day") || given("--timed"))
        item.allDay = m_allDay;
    if (given("--reminder"))
        item.reminderMinutes = ReadReminder(m_reminder);
    item.repeat = ReadRepeat(command);
    return item;
}

RepeatOptions AppointmentArguments::ReadRepeat(const CLI::App& command) const
{
    const auto given = [&](const char* name) { return command.count(name) > 0; };
    RepeatOptions repeat;
    if (given("--repeat"))
        repeat.type = ReadRepeatKind(m_repeat);
    if (given("--interval"))
        repeat.interval = ReadNumber(m_interval, "--interval", 1, kMaxInterval);
    if (given("--days"))
        repeat.weekdays = ReadDays(m_days);
    if (given("--nth"))
        repeat.nth = ReadNth(m_nth);
    if (given("--month-day"))
        repeat.monthDay = int(ReadNumber(m_monthDay, "--month-day", 1, 31));
    if (given("--month"))
        repeat.month = int(ReadNumber(m_month, "--month", 1, 12));
    if (given("--count"))
        repeat.count = ReadNumber(m_count, "--count", 1, kMaxCount);
    if (given("--until"))
        repeat.untilDay = ReadDay(m_until, "--until");
    return repeat;
}
} // namespace pim
