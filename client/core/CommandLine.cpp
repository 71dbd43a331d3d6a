#include "client/core/CommandLine.h"

#include "client/core/Unicode.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>
#include <sstream>

namespace pim
{
namespace
{
constexpr const char* kAbout =
    "Shows and changes the personal information of this PC through the PimStoreBridge server.";

constexpr const char* kFooter =
    "Examples:\n"
    "  pim calendar list\n"
    "  pim calendar add --subject Planning --start \"2024-05-01 10:00\" --reminder 15\n"
    "  pim calendar update 0B7F --place \"Room 5\"\n"
    "  pim --json calendar list\n"
    "\n"
    "Times are local; a Z at the end makes a time UTC. An ID can be cut short as long as\n"
    "it means one item, and its opening brace can be left out.\n"
    "\n"
    "Exit codes:\n"
    "  0  done\n"
    "  1  the operation failed\n"
    "  2  the command line is wrong\n"
    "  3  the server cannot be reached or is not registered\n"
    "  4  no such item, or several items of which one was wanted\n"
    "  5  stored, but the store kept some old values; they are named\n";

constexpr unsigned kMaxInterval = 999;
constexpr unsigned kMaxCount = 99999;
constexpr unsigned kMaxReminderMinutes = 5'256'000; // ten years

// The texts of the options as typed, before they mean anything.
struct TypedOptions
{
    std::string provider;
    std::string subject, place, description, start, end, reminder;
    std::string repeat, interval, days, nth, monthDay, month, count, until;
    std::vector<std::string> ids;
    bool allDay = false;
    bool isTimed = false;
    bool asJson = false;
    bool isWide = false;
    bool forUser = false;
};

// A wrong value of an option.
struct UsageProblem
{
    std::string text;
};

bool EqualsIgnoringCase(std::string_view left, std::string_view right)
{
    const auto fold = [](char c) { return c >= 'A' && c <= 'Z' ? char(c - 'A' + 'a') : c; };
    return std::equal(left.begin(), left.end(), right.begin(), right.end(), [&](char a, char b) {
        return fold(a) == fold(b);
    });
}

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

CivilTime ReadDay(const std::string& text, const char* option)
{
    const auto typed = ParseTypedTime(WideFromUtf8(text));
    if (!typed || typed->hasClock)
        throw UsageProblem{std::string(option) + " takes a day as 2024-05-01, not \"" + text +
                           "\"."};
    return typed->time;
}

std::uint32_t ReadReminder(const std::string& text)
{
    if (EqualsIgnoringCase(text, "none"))
        return kNoReminder;
    return ReadNumber(text, "--reminder", 0, kMaxReminderMinutes);
}

_tagNAppointmentRecurringType ReadRepeat(const std::string& text)
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

// Places of one line each: a line break would end the line of a calendar file.
std::wstring ReadLine(const std::string& text, const char* option)
{
    std::wstring line = WideFromUtf8(text);
    if (line.find_first_of(L"\r\n") != std::wstring::npos)
        throw UsageProblem{std::string(option) + " takes text on one line."};
    return line;
}

RepeatOptions ReadRepeatOptions(const CLI::App& app, const TypedOptions& typed)
{
    const auto given = [&](const char* name) { return app.count(name) > 0; };
    RepeatOptions repeat;
    if (given("--repeat"))
        repeat.type = ReadRepeat(typed.repeat);
    if (given("--interval"))
        repeat.interval = ReadNumber(typed.interval, "--interval", 1, kMaxInterval);
    if (given("--days"))
        repeat.weekdays = ReadDays(typed.days);
    if (given("--nth"))
        repeat.nth = ReadNth(typed.nth);
    if (given("--month-day"))
        repeat.monthDay = int(ReadNumber(typed.monthDay, "--month-day", 1, 31));
    if (given("--month"))
        repeat.month = int(ReadNumber(typed.month, "--month", 1, 12));
    if (given("--count"))
        repeat.count = ReadNumber(typed.count, "--count", 1, kMaxCount);
    if (given("--until"))
        repeat.untilDay = ReadDay(typed.until, "--until");
    return repeat;
}

ItemOptions ReadItemOptions(const CLI::App& app, const TypedOptions& typed)
{
    const auto given = [&](const char* name) { return app.count(name) > 0; };
    ItemOptions item;
    if (given("--subject"))
        item.subject = ReadLine(typed.subject, "--subject");
    if (given("--place"))
        item.place = ReadLine(typed.place, "--place");
    if (given("--description"))
        item.description = ReadLine(typed.description, "--description");
    if (given("--start"))
        item.start = ReadTime(typed.start, "--start");
    if (given("--end"))
        item.end = ReadTime(typed.end, "--end");
    if (given("--all-day") || given("--timed"))
        item.allDay = typed.allDay;
    if (given("--reminder"))
        item.reminderMinutes = ReadReminder(typed.reminder);
    item.repeat = ReadRepeatOptions(app, typed);
    return item;
}

void AddItemOptions(CLI::App& app, TypedOptions& typed)
{
    app.add_option("--subject", typed.subject, "What it is about")->type_name("TEXT");
    app.add_option("--place", typed.place, "Where it is")->type_name("TEXT");
    app.add_option("--description", typed.description, "More about it")->type_name("TEXT");
    app.add_option("--start", typed.start, "When it begins: 2024-05-01 10:00")->type_name("TIME");
    app.add_option("--end", typed.end, "When it ends; the last day of an all-day item")
        ->type_name("TIME");
    app.add_flag("--all-day", typed.allDay, "Whole days, without a time of day");
    app.add_flag("--timed", typed.isTimed, "Not whole days any longer")->excludes("--all-day");
    app.add_option("--reminder", typed.reminder, "Minutes before the start, or none")
        ->type_name("MIN|none");
    app.add_option("--repeat", typed.repeat, "daily, weekly, monthly or yearly")->type_name("KIND");
    app.add_option("--interval", typed.interval, "Every so many days, weeks, months or years")
        ->type_name("N");
    app.add_option("--days", typed.days, "Weekdays of a weekly or monthly series: MO,WE")
        ->type_name("DAYS");
    app.add_option("--nth", typed.nth, "With --days of a monthly series: 1 to 4 or last")
        ->type_name("N");
    app.add_option("--month-day", typed.monthDay, "Day of the month")->type_name("N");
    app.add_option("--month", typed.month, "Month of a yearly series")->type_name("N");
    app.add_option("--count", typed.count, "The series ends after so many times")->type_name("N");
    app.add_option("--until", typed.until, "The series ends with this day: 2024-12-31")
        ->type_name("DAY");
}

std::vector<std::wstring> WideList(const std::vector<std::string>& texts)
{
    std::vector<std::wstring> wide;
    std::transform(texts.begin(), texts.end(), std::back_inserter(wide), WideFromUtf8);
    return wide;
}

CommandLineResult Refuse(const std::string& text)
{
    CommandLineResult result;
    result.exitCode = kExitUsage;
    result.error = WideFromUtf8(text) + L"\nRun pim --help, or --help behind a command.\n";
    return result;
}
} // namespace

CommandLineResult ParseCommandLine(std::vector<std::string> arguments, const std::string& version)
{
    TypedOptions typed;
    CLI::App app(kAbout, "pim");
    app.footer(kFooter);
    app.set_version_flag("--version", "pim " + version, "Print the version and end");
    app.allow_windows_style_options(false);
    app.fallthrough();
    app.require_subcommand(1);
    app.add_option("--provider",
                   typed.provider,
                   "The mail client whose store to use; the default one where not given")
        ->type_name("NAME");
    app.add_flag("--json", typed.asJson, "Print JSON, for programs");

    const CLI::App* providers = app.add_subcommand("providers", "List the usable mail clients");
    const CLI::App* whoAmI = app.add_subcommand("whoami", "Tell who the mail user is");
    const CLI::App* folders = app.add_subcommand("folders", "List the contact folders");
    CLI::App* calendar = app.add_subcommand("calendar", "Show and change appointments");
    calendar->require_subcommand(1);
    CLI::App* list = calendar->add_subcommand("list", "List all appointments by their start");
    list->add_flag("--wide", typed.isWide, "Cut no texts and no IDs");
    CLI::App* show = calendar->add_subcommand("show", "Show one appointment");
    show->add_option("ID", typed.ids, "The item's ID, or its beginning")->required()->expected(1);
    CLI::App* add = calendar->add_subcommand("add", "Add an appointment; its new ID is printed");
    AddItemOptions(*add, typed);
    CLI::App* update = calendar->add_subcommand("update", "Change what is given of an appointment");
    update->add_option("ID", typed.ids, "The item's ID, or its beginning")->required()->expected(1);
    AddItemOptions(*update, typed);
    CLI::App* remove = calendar->add_subcommand("delete", "Delete appointments");
    remove->add_option("ID", typed.ids, "The items' IDs, or their beginnings")->required();
    CLI::App* enroll =
        app.add_subcommand("register", "Register the server that lies beside this program");
    CLI::App* withdraw = app.add_subcommand("unregister", "Take that registration back");
    for (CLI::App* change : {enroll, withdraw})
        change->add_flag("--user", typed.forUser, "For this user alone; needs no administrator");

    CommandLineResult result;
    try
    {
        std::reverse(arguments.begin(), arguments.end());
        app.parse(arguments);
    }
    catch (const CLI::Success& success)
    {
        std::ostringstream output;
        app.exit(success, output, output);
        result.output = WideFromUtf8(output.str());
        return result;
    }
    catch (const CLI::Error& error)
    {
        return Refuse(error.what());
    }

    struct Choice
    {
        const CLI::App* app;
        CommandKind kind;
    };
    const Choice choices[] = {{providers, CommandKind::Providers},
                              {whoAmI, CommandKind::WhoAmI},
                              {folders, CommandKind::Folders},
                              {list, CommandKind::List},
                              {show, CommandKind::Show},
                              {add, CommandKind::Add},
                              {update, CommandKind::Update},
                              {remove, CommandKind::Delete},
                              {enroll, CommandKind::Register},
                              {withdraw, CommandKind::Unregister}};
    const auto* const choice = std::find_if(
        std::begin(choices), std::end(choices), [](const Choice& c) { return c.app->parsed(); });
    Command command;
    command.kind = choice->kind;
    command.asJson = typed.asJson;
    command.isWide = typed.isWide;
    command.forUser = typed.forUser;
    command.ids = WideList(typed.ids);
    if (app.count("--provider") > 0)
        command.provider = WideFromUtf8(typed.provider);
    try
    {
        if (add->parsed() || update->parsed())
            command.item = ReadItemOptions(*choice->app, typed);
        if (update->parsed() && command.item.IsEmpty())
            throw UsageProblem{"Nothing to change was given."};
    }
    catch (const UsageProblem& problem)
    {
        return Refuse(problem.text);
    }
    result.command = std::move(command);
    return result;
}
} // namespace pim
