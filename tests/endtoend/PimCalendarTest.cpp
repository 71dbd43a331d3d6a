// pim.exe against the running server: whole outputs, exit codes and what the files hold afterwards.
// Local times are those of Central Europe, one hour east of UTC in winter and two in summer.
#include "endtoend/CalendarFilesTest.h"
#include "endtoend/ChildProgram.h"
#include "endtoend/SampleCalendar.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <regex>

using testing::AllOf;
using testing::HasSubstr;
using testing::MatchesRegex;
using testing::Not;
using testing::StartsWith;

namespace
{
class PimCalendarTest : public CalendarFilesTest
{
  protected:
    static void SetUpTestSuite()
    {
        ExpectCentralEurope();
        CalendarFilesTest::SetUpTestSuite();
    }

    static std::wstring CommandLine(const std::wstring& arguments)
    {
        return ProgramBeside(L"pim.exe") + L" --provider \"Windows Mail\" " + arguments;
    }
    static ProgramResult Pim(const std::wstring& arguments)
    {
        return RunAndRead(CommandLine(arguments));
    }
    // Runs a command that must do its work in silence on standard error, and gives its output.
    static std::string Done(const std::wstring& arguments)
    {
        const ProgramResult result = Pim(arguments);
        EXPECT_EQ(result.exitCode, 0u) << result.errors;
        EXPECT_EQ(result.errors, "");
        return result.output;
    }
    // The ID behind "Added ".
    static std::wstring Added(const std::wstring& arguments)
    {
        const std::string output = Done(L"calendar add " + arguments);
        EXPECT_THAT(output, StartsWith("Added {"));
        return output.size() == 45 ? std::wstring(output.begin() + 6, output.end() - 1) : L"";
    }
    static std::string Narrow(const std::wstring& ascii)
    {
        return std::string(ascii.begin(), ascii.end());
    }
};
} // namespace

TEST_F(PimCalendarTest, ListsItemsByTheirStartInLocalTime)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    // 9:00 in the summer of the file's zone is 8:00 UTC and 10:00 in the machine's.
    EXPECT_EQ(Done(L"calendar list"),
              "START             END      SUBJECT      PLACE   REPEATS                         ID\n"
              "2024-01-08 10:00  11:00    Planning     Room 5  every week on Monday, 10 times  "
              "{11111111-AAAA-4000-8000-000000000001}\n"
              "2024-03-29        all day  Good Friday                                          "
              "{11111111-BBBB-4000-8000-000000000002}\n"
              "2024-07-01 10:00  11:30    Gr\xC3\xBC\xC3\x9F"
              "e \xE6\x9D\xB1\xE4\xBA\xAC                                           visit-3\n");
}

TEST_F(PimCalendarTest, ListsAsJsonWithUtcAndLocalTimes)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const std::string output = Done(L"--json calendar list");
    EXPECT_THAT(output, StartsWith(R"({
  "provider": "Windows Mail",
  "appointments": [
    {
      "id": "{11111111-AAAA-4000-8000-000000000001}",
      "persistId": "{11111111-AAAA-4000-8000-000000000001}",
      "folderId": null,
      "subject": "Planning",
      "place": "Room 5",
      "description": "Bring the plan.",
      "timeZone": "Middle of Europe",
      "allDay": false,
      "busy": false,
      "startLocal": "2024-01-08T10:00:00",
      "startUtc": "2024-01-08T09:00:00Z",
      "endLocal": "2024-01-08T11:00:00",
      "endUtc": "2024-01-08T10:00:00Z",
      "reminderMinutes": 15,
      "modifiedUtc": "2024-01-02T08:00:00Z",
      "recurrence": {
        "type": "weekly",
        "interval": 1,
        "weekdays": [
          "MO"
        ],
        "everyWeekday": false,
        "nth": null,
        "monthDay": null,
        "month": null,
        "until": null,
        "count": 10,
        "leftOut": [],
        "changed": [],
        "text": "every week on Monday, 10 times"
      }
    },
    {
      "id": "{11111111-BBBB-4000-8000-000000000002}",
)"));
    EXPECT_THAT(output, HasSubstr(R"(      "startLocal": "2024-03-29",
      "startUtc": null,
      "endLocal": "2024-03-30",
      "endUtc": null,
)"));
    EXPECT_THAT(output, HasSubstr(R"(      "startLocal": "2024-07-01T10:00:00",
      "startUtc": "2024-07-01T08:00:00Z",
      "endLocal": "2024-07-01T11:30:00",
      "endUtc": "2024-07-01T09:30:00Z",
)"));
}

TEST_F(PimCalendarTest, TellsOfAnEmptyCalendar)
{
    EXPECT_EQ(Done(L"calendar list"), "No appointments in Windows Mail.\n");
    EXPECT_EQ(Done(L"calendar list --json"),
              "{\n  \"provider\": \"Windows Mail\",\n  \"appointments\": []\n}\n");
}

// The expected table was worked out by hand from the files: digits of a zone less its standard
// offset, plus one hour or, from March 29 to October 25 of 2026, two.
TEST_F(PimCalendarTest, ListsTheSampleCalendars)
{
    s_folder->CopyFrom(Samples() / "calendars");
    std::ifstream file(TestData() / "client" / "samples_list.txt", std::ios::binary);
    const std::string expected{std::istreambuf_iterator<char>(file),
                               std::istreambuf_iterator<char>()};
    ASSERT_FALSE(expected.empty());
    EXPECT_EQ(Done(L"calendar list"), expected);
}

TEST_F(PimCalendarTest, ShowsAnItemByItsIdAndByItsBeginning)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const std::string planning = "Subject:    Planning\n"
                                 "Place:      Room 5\n"
                                 "Start:      2024-01-08 10:00 (2024-01-08 09:00 UTC)\n"
                                 "End:        2024-01-08 11:00 (2024-01-08 10:00 UTC)\n"
                                 "Time zone:  Middle of Europe\n"
                                 "Repeats:    every week on Monday, 10 times\n"
                                 "Reminder:   15 minutes before\n"
                                 "Changed:    2024-01-02 09:00 (2024-01-02 08:00 UTC)\n"
                                 "ID:         {11111111-AAAA-4000-8000-000000000001}\n"
                                 "\n"
                                 "Bring the plan.\n";
    EXPECT_EQ(Done(L"calendar show {11111111-AAAA-4000-8000-000000000001}"), planning);
    EXPECT_EQ(Done(L"calendar show 11111111-a"), planning);
    EXPECT_EQ(Done(L"calendar show VISIT"),
              "Subject:    Gr\xC3\xBC\xC3\x9F"
              "e \xE6\x9D\xB1\xE4\xBA\xAC\n"
              "Start:      2024-07-01 10:00 (2024-07-01 08:00 UTC)\n"
              "End:        2024-07-01 11:30 (2024-07-01 09:30 UTC)\n"
              "Time zone:  Middle of Europe\n"
              "Reminder:   at the start\n"
              "Changed:    2024-01-02 09:00 (2024-01-02 08:00 UTC)\n"
              "ID:         visit-3\n");
    EXPECT_EQ(Done(L"calendar show {11111111-BBBB-4000-8000-000000000002}"),
              "Subject:    Good Friday\n"
              "All day:    2024-03-29\n"
              "Time zone:  UTC, (UTC) Coordinated Universal Time\n"
              "Reminder:   at the start\n"
              "Changed:    2024-01-02 09:00 (2024-01-02 08:00 UTC)\n"
              "ID:         {11111111-BBBB-4000-8000-000000000002}\n");
}

TEST_F(PimCalendarTest, RefusesIdsThatMeanNoItemOrSeveral)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const ProgramResult none = Pim(L"calendar show nothing");
    EXPECT_EQ(none.exitCode, 4u);
    EXPECT_EQ(none.output, "");
    EXPECT_EQ(none.errors,
              "pim: There is no appointment with the ID \"nothing\". "
              "pim calendar list shows the IDs.\n");
    const ProgramResult several = Pim(L"calendar show {1111");
    EXPECT_EQ(several.exitCode, 4u);
    EXPECT_EQ(several.output, "");
    EXPECT_EQ(several.errors,
              "pim: \"{1111\" is the beginning of several IDs:\n"
              "  {11111111-AAAA-4000-8000-000000000001}\n"
              "  {11111111-BBBB-4000-8000-000000000002}\n");
}

TEST_F(PimCalendarTest, AddsAnItemWithEverything)
{
    const std::wstring id =
        Added(L"--subject \"Visit \x6771\x4EAC\" --place Hall --start \"2024-07-01 10:00\" "
              L"--end 2024-07-01T09:30Z --reminder 90 --description \"See the plan.\" "
              L"--repeat monthly --interval 2 --days FR --nth last --until 2024-12-31");
    const std::string shown = Done(L"calendar show " + id);
    EXPECT_THAT(shown,
                StartsWith("Subject:    Visit \xE6\x9D\xB1\xE4\xBA\xAC\n"
                           "Place:      Hall\n"
                           "Start:      2024-07-01 10:00 (2024-07-01 08:00 UTC)\n"
                           "End:        2024-07-01 11:30 (2024-07-01 09:30 UTC)\n"));
    EXPECT_THAT(shown,
                HasSubstr("Repeats:    every 2 months on the last Friday, until 2024-12-31\n"
                          "Reminder:   1 hour and 30 minutes before\n"));
    EXPECT_THAT(shown, HasSubstr("ID:         " + Narrow(id) + "\n\nSee the plan.\n"));
    EXPECT_THAT(
        s_folder->Read(L"default.ics"),
        AllOf(HasSubstr("TRIGGER:-PT90M\r\n"),
              HasSubstr("RRULE:FREQ=MONTHLY;BYDAY=-1FR;INTERVAL=2;UNTIL=20241231T235959Z")));
}

TEST_F(PimCalendarTest, AddsAnAllDayItemWithoutAnAlarm)
{
    const std::wstring id = Added(L"--subject Holiday --all-day --start 2024-07-01");
    const std::string file = s_folder->Read(L"default.ics");
    EXPECT_THAT(file,
                AllOf(HasSubstr("DTSTART;VALUE=DATE:20240701\r\n"),
                      HasSubstr("DTEND;VALUE=DATE:20240702\r\n"),
                      Not(HasSubstr("VALARM"))));
    EXPECT_EQ(Done(L"calendar list"),
              "START       END      SUBJECT  PLACE  REPEATS  ID\n"
              "2024-07-01  all day  Holiday                  " +
                  Narrow(id) + "\n");
}

TEST_F(PimCalendarTest, AddsEveryKindOfSeries)
{
    struct
    {
        const wchar_t* options;
        const char* words;
    } const cases[] = {
        {L"--repeat daily --interval 3 --count 4", "every 3 days, 4 times"},
        {L"--repeat weekly", "every week on Wednesday"},
        {L"--repeat weekly --days MO,TU,WE,TH,FR", "every week on weekdays"},
        {L"--repeat monthly", "every month on day 1"},
        {L"--repeat monthly --days TU --nth 2", "every month on the second Tuesday"},
        {L"--repeat yearly", "every year on May 1"},
        {L"--repeat yearly --interval 4 --month 2 --month-day 29", "every 4 years on February 29"},
    };
    for (const auto& one : cases)
    {
        const std::wstring id = Added(std::wstring(L"--start \"2024-05-01 12:00\" ") + one.options);
        EXPECT_THAT(Done(L"calendar show " + id),
                    HasSubstr("Repeats:    " + std::string(one.words) + "\n"));
    }
}

TEST_F(PimCalendarTest, ChangesOnlyWhatIsGiven)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    EXPECT_EQ(Done(L"calendar update visit-3 --place Harbour"), "Updated visit-3\n");
    EXPECT_EQ(
        Done(L"calendar list"),
        "START             END      SUBJECT      PLACE    REPEATS                         ID\n"
        "2024-01-08 10:00  11:00    Planning     Room 5   every week on Monday, 10 times  "
        "{11111111-AAAA-4000-8000-000000000001}\n"
        "2024-03-29        all day  Good Friday                                           "
        "{11111111-BBBB-4000-8000-000000000002}\n"
        "2024-07-01 10:00  11:30    Gr\xC3\xBC\xC3\x9F"
        "e \xE6\x9D\xB1\xE4\xBA\xAC   Harbour                                  visit-3\n");
    // The item had no alarm and got none: the file has the one of the first item.
    const std::string file = s_folder->Read(L"Work.ics");
    const std::size_t alarm = file.find("BEGIN:VALARM");
    ASSERT_NE(alarm, std::string::npos);
    EXPECT_EQ(file.find("BEGIN:VALARM", alarm + 1), std::string::npos);
}

TEST_F(PimCalendarTest, ChangesTimesAndTheSeries)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    EXPECT_EQ(Done(L"calendar update 11111111-A --start \"2024-01-15 13:00\" "
                   L"--end \"2024-01-15 14:15\" --interval 2 --subject \"\" --json"),
              "{\n  \"id\": \"{11111111-AAAA-4000-8000-000000000001}\",\n  \"notKept\": []\n}\n");
    EXPECT_THAT(Done(L"calendar show 11111111-A"),
                AllOf(Not(HasSubstr("Subject")),
                      HasSubstr("Start:      2024-01-15 13:00 (2024-01-15 12:00 UTC)\n"
                                "End:        2024-01-15 14:15 (2024-01-15 13:15 UTC)\n"),
                      HasSubstr("Repeats:    every 2 weeks on Monday, 10 times\n"
                                "Reminder:   15 minutes before\n")));
}

TEST_F(PimCalendarTest, NamesWhatTheStoreDoesNotKeep)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    // A calendar file's alarm stays as it is, and so does the mark of an all-day item.
    const ProgramResult reminder = Pim(L"calendar update 11111111-A --reminder 30 --place Hall");
    EXPECT_EQ(reminder.exitCode, 5u);
    EXPECT_EQ(reminder.output, "Updated {11111111-AAAA-4000-8000-000000000001}\n");
    EXPECT_EQ(reminder.errors,
              "pim: The store kept another value than the one asked for: reminder.\n");
    EXPECT_THAT(Done(L"calendar show 11111111-A"),
                AllOf(HasSubstr("Place:      Hall\n"), HasSubstr("15 minutes before\n")));
}

TEST_F(PimCalendarTest, RefusesChangesThatMakeNoItem)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const ProgramResult result = Pim(L"calendar update visit-3 --start \"2025-01-01 10:00\"");
    EXPECT_EQ(result.exitCode, 2u);
    EXPECT_EQ(result.errors, "pim: The end would lie before the start: give a later --end.\n");
    EXPECT_EQ(s_folder->Read(L"Work.ics"), kSampleCalendar);
}

TEST_F(PimCalendarTest, DeletesWhatItFindsAndNamesTheRest)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const ProgramResult result = Pim(L"calendar delete visit-3 nothing 11111111-B");
    EXPECT_EQ(result.exitCode, 4u);
    EXPECT_EQ(result.output,
              "Deleted visit-3\n"
              "Deleted {11111111-BBBB-4000-8000-000000000002}\n");
    EXPECT_EQ(result.errors,
              "pim: There is no appointment with the ID \"nothing\". "
              "pim calendar list shows the IDs.\n");
    EXPECT_THAT(s_folder->Read(L"Work.ics"),
                AllOf(HasSubstr("Planning"), Not(HasSubstr("Friday")), Not(HasSubstr("visit-3"))));
    EXPECT_EQ(Done(L"calendar delete 1 --json"),
              "{\n  \"deleted\": [\n    \"{11111111-AAAA-4000-8000-000000000001}\"\n  ],\n"
              "  \"notFound\": []\n}\n");
    EXPECT_EQ(Done(L"calendar list"), "No appointments in Windows Mail.\n");
}

TEST_F(PimCalendarTest, DisarmsTextThatATerminalWouldObey)
{
    s_folder->Write(L"Work.ics",
                    "BEGIN:VCALENDAR\r\nBEGIN:VEVENT\r\nSUMMARY:\x1B[2J\tx\r\n"
                    "DTSTART:20240108T090000\r\nDTEND:20240108T093000\r\nUID:evil\r\n"
                    "END:VEVENT\r\nEND:VCALENDAR\r\n");
    EXPECT_EQ(Done(L"calendar list"),
              "START             END    SUBJECT  PLACE  REPEATS  ID\n"
              "2024-01-08 10:00  10:30  \xEF\xBF\xBD[2J x                   evil\n");
}

TEST_F(PimCalendarTest, ListsTheMailClientsThatAreThere)
{
    const std::string output = Done(L"providers");
    EXPECT_THAT(output, HasSubstr("Windows Mail"));
    EXPECT_THAT(output, HasSubstr("Outlook Express"));
    const std::string json = Done(L"providers --json");
    EXPECT_THAT(json, StartsWith("{\n  \"default\": "));
    EXPECT_THAT(json, HasSubstr("\"name\": \"Windows Mail\",\n"));
    EXPECT_THAT(json, HasSubstr("\"supported\": true\n"));
}

TEST_F(PimCalendarTest, UsesTheBestProviderWhereNoneIsNamed)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const ProgramResult result = RunAndRead(ProgramBeside(L"pim.exe") + L" calendar show visit-3");
    EXPECT_EQ(result.exitCode, 0u) << result.errors;
    EXPECT_THAT(result.output, HasSubstr("visit-3\n"));
}

TEST_F(PimCalendarTest, LeavesNoProviderBehindForTheNextRun)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    // A server that still ran the first provider would show an empty calendar to the second run.
    const std::wstring pim = ProgramBeside(L"pim.exe");
    EXPECT_EQ(RunAndRead(pim + L" --provider \"Outlook Express\" calendar list").output,
              "No appointments in Outlook Express.\n");
    EXPECT_THAT(Done(L"calendar list"), HasSubstr("visit-3\n"));
}

TEST_F(PimCalendarTest, LeavesAServiceAloneThatAnotherClientStarted)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const auto service = MakeInServer<INPersonalInformationService>(
        CLSID_NPersonalInformationService, IID_INPersonalInformationService);
    ASSERT_TRUE(service);
    BSTR name = SysAllocString(L"Windows Mail");
    ASSERT_EQ(S_OK, service->StartService(name));
    SysFreeString(name);
    EXPECT_THAT(Done(L"calendar list"), HasSubstr("visit-3\n"));
    Microsoft::WRL::ComPtr<INCalendar> calendar;
    EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
    EXPECT_TRUE(calendar);
    const ProgramResult other =
        RunAndRead(ProgramBeside(L"pim.exe") + L" --provider \"microsoft outlook\" calendar list");
    EXPECT_EQ(other.exitCode, 1u);
    EXPECT_EQ(other.errors,
              "pim: Another program uses the server with another mail client than "
              "\"microsoft outlook\". End that program and run the command again.\n");
    calendar.Reset();
    EXPECT_EQ(S_OK, service->StopService());
}

TEST_F(PimCalendarTest, ReportsAProviderThatDoesNotStart)
{
    const ProgramResult result =
        RunAndRead(ProgramBeside(L"pim.exe") + L" --provider Nobody calendar list");
    EXPECT_EQ(result.exitCode, 1u);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "pim: The server could not start \"Nobody\" (0x80004005). "
              "pim providers lists the mail clients that are there.\n");
}

TEST_F(PimCalendarTest, ReportsWrongUsage)
{
    const ProgramResult result = Pim(L"calendar add --subject x");
    EXPECT_EQ(result.exitCode, 2u);
    EXPECT_EQ(result.output, "");
    EXPECT_EQ(result.errors,
              "pim: Say when it begins with --start, as in --start \"2024-05-01 10:00\".\n");
    EXPECT_EQ(Pim(L"calendar fly").exitCode, 2u);
    EXPECT_EQ(Pim(L"").exitCode, 2u);
}

TEST_F(PimCalendarTest, RegistersAndUnregistersTheServer)
{
    EndServers();
    EXPECT_EQ(Done(L"unregister"), "The server is no longer registered.\n");
    const ProgramResult without = Pim(L"calendar list");
    EXPECT_EQ(without.exitCode, 3u);
    EXPECT_EQ(without.output, "");
    EXPECT_EQ(without.errors, "pim: The server is not registered on this PC. Run: pim register\n");
    EXPECT_EQ(Done(L"register"), "The server is registered.\n");
    // The other tests need what the runtime's marshaller reads beside the registration too.
    ASSERT_EQ(0u, RegisterServerAt(ServerPath()));
    EXPECT_EQ(Done(L"calendar list"), "No appointments in Windows Mail.\n");
}

TEST_F(PimCalendarTest, EndsWithAClearErrorWhenTheServerGoesAway)
{
    std::string calendar = "BEGIN:VCALENDAR\r\n";
    for (int i = 0; i < 5000; ++i)
        calendar += "BEGIN:VEVENT\r\nDTSTART:20240108T090000\r\nDTEND:20240108T093000\r\nUID:n" +
                    std::to_string(i) + "\r\nEND:VEVENT\r\n";
    s_folder->Write(L"Work.ics", calendar + "END:VCALENDAR\r\n");
    ChildProgram program(CommandLine(L"calendar list"));
    for (int tenths = 0; tenths < 100 && RunningServers().empty(); ++tenths)
        Sleep(100);
    Sleep(2000);
    EndServers();
    const ProgramResult result = program.Wait(60'000);
    EXPECT_EQ(result.exitCode, 3u);
    EXPECT_EQ(result.output, "");
    EXPECT_THAT(result.errors, StartsWith("pim: The server went away in the middle of its work"));
}

TEST_F(PimCalendarTest, ServesTwoAtOnce)
{
    s_folder->Write(L"Work.ics", kSampleCalendar);
    const std::string alone = Done(L"calendar list");
    ChildProgram first(CommandLine(L"calendar list"));
    ChildProgram second(CommandLine(L"calendar list"));
    const ProgramResult one = first.Wait(60'000);
    const ProgramResult two = second.Wait(60'000);
    EXPECT_EQ(one.output, alone) << one.errors;
    EXPECT_EQ(two.output, alone) << two.errors;
}
