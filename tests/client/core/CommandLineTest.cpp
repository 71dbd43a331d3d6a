#include "client/core/CommandLine.h"

#include <gmock/gmock.h>

using namespace pim;

using testing::ElementsAre;
using testing::HasSubstr;

namespace
{
Command Parsed(std::vector<std::string> arguments)
{
    CommandLineResult result = ParseCommandLine(std::move(arguments), "1.2.3");
    EXPECT_TRUE(result.command) << std::string(result.error.begin(), result.error.end());
    return result.command.value_or(Command());
}

std::wstring UsageError(std::vector<std::string> arguments)
{
    const CommandLineResult result = ParseCommandLine(std::move(arguments), "1.2.3");
    EXPECT_FALSE(result.command);
    EXPECT_EQ(result.exitCode, kExitUsage);
    EXPECT_EQ(result.output, L"");
    EXPECT_THAT(result.error, HasSubstr(L"--help"));
    return result.error;
}

std::wstring AddError(std::vector<std::string> options)
{
    options.insert(options.begin(), {"calendar", "add"});
    return UsageError(std::move(options));
}
} // namespace

TEST(CommandLineTest, KnowsTheCommands)
{
    EXPECT_EQ(Parsed({"providers"}).kind, CommandKind::Providers);
    EXPECT_EQ(Parsed({"whoami"}).kind, CommandKind::WhoAmI);
    EXPECT_EQ(Parsed({"folders", "--json"}).kind, CommandKind::Folders);
    EXPECT_EQ(Parsed({"doctor"}).kind, CommandKind::Doctor);
    EXPECT_EQ(Parsed({"register"}).kind, CommandKind::Register);
    EXPECT_FALSE(Parsed({"register"}).forUser);
    EXPECT_EQ(Parsed({"register", "--user"}).kind, CommandKind::Register);
    EXPECT_TRUE(Parsed({"register", "--user"}).forUser);
    EXPECT_TRUE(Parsed({"unregister", "--user"}).forUser);
    EXPECT_EQ(Parsed({"unregister"}).kind, CommandKind::Unregister);
    EXPECT_EQ(Parsed({"calendar", "list"}).kind, CommandKind::List);
    EXPECT_TRUE(Parsed({"calendar", "list", "--wide"}).isWide);
    const Command show = Parsed({"calendar", "show", "{0B7F}"});
    EXPECT_EQ(show.kind, CommandKind::Show);
    EXPECT_THAT(show.ids, ElementsAre(L"{0B7F}"));
    const Command remove = Parsed({"calendar", "delete", "a", "b", "/c"});
    EXPECT_EQ(remove.kind, CommandKind::Delete);
    EXPECT_THAT(remove.ids, ElementsAre(L"a", L"b", L"/c"));
}

TEST(CommandLineTest, KnowsTheCommandsOfEveryKindOfItem)
{
    struct Row
    {
        const char* name;
        ItemKind items;
        CommandKind change;
    };
    constexpr Row kRows[] = {{"calendar", ItemKind::Appointment, CommandKind::Update},
                             {"contacts", ItemKind::Contact, CommandKind::Update},
                             {"groups", ItemKind::Group, CommandKind::Rename},
                             {"categories", ItemKind::Category, CommandKind::Rename}};
    for (const Row& row : kRows)
    {
        const bool isNamed = row.change == CommandKind::Rename;
        const std::string option = row.items == ItemKind::Contact ? "--company" : "--place";
        const Command list = Parsed({row.name, "list", "--wide"});
        EXPECT_EQ(list.kind, CommandKind::List);
        EXPECT_EQ(list.items, row.items);
        EXPECT_TRUE(list.isWide);
        EXPECT_EQ(Parsed({row.name, "show", "x"}).items, row.items);
        const Command add =
            isNamed ? Parsed({row.name, "add", "New"}) : Parsed({row.name, "add", option, "New"});
        EXPECT_EQ(add.kind, CommandKind::Add);
        EXPECT_EQ(add.items, row.items);
        EXPECT_EQ(add.name, isNamed ? L"New" : L"");
        const Command change = isNamed ? Parsed({row.name, "rename", "x", "Other"})
                                       : Parsed({row.name, "update", "x", option, "Other"});
        EXPECT_EQ(change.kind, row.change);
        EXPECT_EQ(change.items, row.items);
        EXPECT_THAT(change.ids, ElementsAre(L"x"));
        EXPECT_EQ(change.name, isNamed ? L"Other" : L"");
        const Command remove = Parsed({row.name, "delete", "x", "y"});
        EXPECT_EQ(remove.kind, CommandKind::Delete);
        EXPECT_EQ(remove.items, row.items);
        EXPECT_THAT(remove.ids, ElementsAre(L"x", L"y"));
        UsageError({row.name});
        UsageError({row.name, isNamed ? "update" : "rename", "x", "y"});
    }
}

TEST(CommandLineTest, ReadsWhatBelongsToOneKindOfItem)
{
    EXPECT_EQ(Parsed({"contacts", "list", "--picture-dir", "p"}).pictureDirectory, L"p");
    EXPECT_EQ(Parsed({"contacts", "show", "x", "--picture-dir", "p"}).pictureDirectory, L"p");
    EXPECT_FALSE(Parsed({"contacts", "list"}).pictureDirectory);
    UsageError({"calendar", "list", "--picture-dir", "p"});
    EXPECT_EQ(Parsed({"categories", "add", "New", "--color", "7"}).color, 7);
    EXPECT_FALSE(Parsed({"categories", "add", "New"}).color);
    UsageError({"categories", "add", "New", "--color", "red"});
    UsageError({"groups", "add", "New", "--color", "7"});
    EXPECT_THAT(UsageError({"groups", "add", ""}), HasSubstr(L"name"));
    UsageError({"groups", "rename", "x"});
    UsageError({"contacts", "update", "x"});
}

TEST(CommandLineTest, TakesGlobalOptionsBeforeAndBehindTheCommand)
{
    for (const Command& command :
         {Parsed({"--json", "--provider", "Windows Mail", "calendar", "list"}),
          Parsed({"calendar", "list", "--provider=Windows Mail", "--json"})})
    {
        EXPECT_TRUE(command.asJson);
        EXPECT_EQ(command.provider, L"Windows Mail");
    }
    EXPECT_FALSE(Parsed({"calendar", "list"}).provider);
    EXPECT_EQ(Parsed({"--provider", "", "calendar", "list"}).provider, L"");
}

TEST(CommandLineTest, ReadsAllOptionsOfAnItem)
{
    const Command command = Parsed({"calendar",
                                    "add",
                                    "--subject",
                                    "Gr\xC3\xBC\xC3\x9F"
                                    "e",
                                    "--place",
                                    "",
                                    "--start",
                                    "2024-05-01 10:00",
                                    "--end",
                                    "2024-05-01T11:00Z",
                                    "--description",
                                    "--not an option",
                                    "--reminder",
                                    "NONE",
                                    "--repeat",
                                    "Weekly",
                                    "--interval",
                                    "2",
                                    "--days",
                                    "mo,FR",
                                    "--until",
                                    "2024-06-30"});
    EXPECT_EQ(command.kind, CommandKind::Add);
    EXPECT_EQ(command.item.subject, (std::wstring{L'G', L'r', wchar_t(0xFC), wchar_t(0xDF), L'e'}));
    EXPECT_EQ(command.item.place, L"");
    EXPECT_EQ(command.item.description, L"--not an option");
    EXPECT_EQ(command.item.start->time, (CivilTime{2024, 5, 1, 10}));
    EXPECT_TRUE(command.item.end->isUtc);
    EXPECT_EQ(command.item.reminderMinutes, kNoReminder);
    EXPECT_FALSE(command.item.allDay);
    EXPECT_EQ(command.item.repeat.type, Weekly);
    EXPECT_EQ(command.item.repeat.interval, 2u);
    EXPECT_EQ(command.item.repeat.weekdays,
              (std::array<bool, 7>{false, true, false, false, false, true, false}));
    EXPECT_EQ(command.item.repeat.untilDay, (CivilTime{2024, 6, 30}));
    EXPECT_FALSE(command.item.repeat.count);
}

TEST(CommandLineTest, ReadsTheRulesOfMonthsAndYears)
{
    const Command command = Parsed({"calendar",
                                    "update",
                                    "x",
                                    "--nth",
                                    "-1",
                                    "--month-day",
                                    "31",
                                    "--month",
                                    "12",
                                    "--count",
                                    "3",
                                    "--all-day",
                                    "--reminder",
                                    "0"});
    EXPECT_EQ(command.item.repeat.nth, -1);
    EXPECT_EQ(command.item.repeat.monthDay, 31);
    EXPECT_EQ(command.item.repeat.month, 12);
    EXPECT_EQ(command.item.repeat.count, 3u);
    EXPECT_EQ(command.item.allDay, true);
    EXPECT_EQ(command.item.reminderMinutes, 0u);
    EXPECT_EQ(Parsed({"calendar", "update", "x", "--nth", "last"}).item.repeat.nth, -1);
    EXPECT_EQ(Parsed({"calendar", "update", "x", "--timed"}).item.allDay, false);
}

TEST(CommandLineTest, RefusesWrongValues)
{
    EXPECT_THAT(AddError({"--start", "tomorrow"}), HasSubstr(L"\"tomorrow\""));
    EXPECT_THAT(AddError({"--end", "2024-02-30"}), HasSubstr(L"--end"));
    EXPECT_THAT(AddError({"--reminder", "soon"}), HasSubstr(L"--reminder"));
    EXPECT_THAT(AddError({"--reminder", "-5"}), HasSubstr(L"--reminder"));
    EXPECT_THAT(AddError({"--reminder", "99999999999"}), HasSubstr(L"--reminder"));
    EXPECT_THAT(AddError({"--repeat", "hourly"}), HasSubstr(L"\"hourly\""));
    EXPECT_THAT(AddError({"--interval", "0"}), HasSubstr(L"1 to 999"));
    EXPECT_THAT(AddError({"--days", "MO,XX"}), HasSubstr(L"--days"));
    EXPECT_THAT(AddError({"--days", ","}), HasSubstr(L"--days"));
    EXPECT_THAT(AddError({"--nth", "5"}), HasSubstr(L"--nth"));
    EXPECT_THAT(AddError({"--month-day", "32"}), HasSubstr(L"1 to 31"));
    EXPECT_THAT(AddError({"--month", "13"}), HasSubstr(L"1 to 12"));
    EXPECT_THAT(AddError({"--count", "1x"}), HasSubstr(L"--count"));
    EXPECT_THAT(AddError({"--until", "2024-05-01 10:00"}), HasSubstr(L"--until"));
    EXPECT_THAT(AddError({"--subject", "a\nb"}), HasSubstr(L"one line"));
    EXPECT_THAT(AddError({"--subject", "a", "--subject", "b"}), HasSubstr(L"--subject"));
}

TEST(CommandLineTest, RefusesWrongCommands)
{
    UsageError({});
    UsageError({"calendar"});
    UsageError({"calender", "list"});
    UsageError({"calendar", "show"});
    UsageError({"calendar", "show", "a", "b"});
    UsageError({"calendar", "list", "extra"});
    UsageError({"calendar", "list", "--unknown"});
    UsageError({"calendar", "update"});
    EXPECT_THAT(UsageError({"calendar", "update", "x"}), HasSubstr(L"Nothing to change"));
    UsageError({"calendar", "add", "--start"});
    UsageError({"calendar", "update", "x", "--all-day", "--timed"});
}

TEST(CommandLineTest, PrintsHelpAndVersionToStandardOutput)
{
    const CommandLineResult version = ParseCommandLine({"--version"}, "1.2.3");
    EXPECT_EQ(version.output, L"pim 1.2.3\n");
    EXPECT_EQ(version.exitCode, kExitOk);
    const CommandLineResult help = ParseCommandLine({"--help"}, "1.2.3");
    EXPECT_THAT(help.output, HasSubstr(L"Exit codes:"));
    EXPECT_THAT(help.output, HasSubstr(L"calendar"));
    EXPECT_EQ(help.error, L"");
    EXPECT_EQ(help.exitCode, kExitOk);
    EXPECT_THAT(ParseCommandLine({"calendar", "add", "--help"}, "1").output,
                HasSubstr(L"--month-day"));
}
