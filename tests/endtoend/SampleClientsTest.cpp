// The clients under samples/ against the running server. They print UTC.
#include "endtoend/CalendarFilesTest.h"
#include "endtoend/ChildProgram.h"
#include "endtoend/SampleCalendar.h"
#include "support/TestPaths.h"

#include <gmock/gmock.h>

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace
{
// The sample calendar with plain letters, which every console's code page has.
std::string PlainCalendar()
{
    std::string text = kSampleCalendar;
    const std::size_t start = text.find("SUMMARY:Gr");
    return text.replace(start, text.find("\r\n", start) - start, "SUMMARY:Visit");
}

const std::string kWalk[] = {
    "2024-01-08 09:00  2024-01-08 10:00  Planning  {11111111-AAAA-4000-8000-000000000001}",
    "2024-03-29 00:00  2024-03-30 00:00  Good Friday  {11111111-BBBB-4000-8000-000000000002}",
    "2024-07-01 08:00  2024-07-01 09:30  Visit  visit-3",
};

class SampleClientsTest : public CalendarFilesTest
{
  protected:
    static void SetUpTestSuite()
    {
        ExpectCentralEurope();
        CalendarFilesTest::SetUpTestSuite();
    }
    void SetUp() override
    {
        CalendarFilesTest::SetUp();
        s_folder->Write(L"Work.ics", PlainCalendar());
    }

    static std::wstring Script(const wchar_t* name, const std::wstring& arguments = {})
    {
        const auto path = std::filesystem::absolute(Samples()) / name;
        return L"cscript.exe //nologo \"" + path.wstring() + L"\" " + arguments;
    }
    // Checks that the output holds the walk's lines, each once, in the store's order.
    static void ExpectWalk(const ProgramResult& result)
    {
        EXPECT_EQ(result.exitCode, 0u) << result.output << result.errors;
        std::string expected;
        for (const std::string& line : kWalk)
            expected += line + "\n";
        std::string output = result.output;
        std::erase(output, '\r');
        EXPECT_EQ(output, expected);
    }
};
} // namespace

TEST_F(SampleClientsTest, VisualBasicScriptWalksTheCalendar)
{
    ExpectWalk(RunAndRead(Script(L"calendar.vbs")));
    ExpectWalk(RunAndRead(Script(L"calendar.vbs", L"\"Windows Mail\" list")));
}

TEST_F(SampleClientsTest, JavaScriptWalksTheCalendar)
{
    ExpectWalk(RunAndRead(Script(L"calendar.js")));
    ExpectWalk(RunAndRead(Script(L"calendar.js", L"\"Windows Mail\"")));
}

TEST_F(SampleClientsTest, CPlusPlusWalksTheCalendar)
{
    ExpectWalk(RunAndRead(ProgramBeside(L"calendar.exe")));
}

TEST_F(SampleClientsTest, VisualBasicScriptAddsUpdatesAndDeletes)
{
    const ProgramResult added = RunAndRead(
        Script(L"calendar.vbs",
               L"\"Windows Mail\" add \"By script\" \"2024-08-01 09:30\" \"2024-08-01 10:45\""));
    ASSERT_EQ(added.exitCode, 0u) << added.output << added.errors;
    ASSERT_THAT(added.output, StartsWith("Added {"));
    const std::string id = added.output.substr(6, 38);
    // 9:30 UTC in the zone's standard time, which holds all year; no reminder was asked for.
    EXPECT_THAT(s_folder->Read(L"Work.ics"),
                AllOf(HasSubstr("\":20240801T103000\r\n"),
                      HasSubstr("\":20240801T114500\r\nSUMMARY:By script\r\nUID:" + id)));

    const std::wstring wideId(id.begin(), id.end());
    const ProgramResult updated =
        RunAndRead(Script(L"calendar.vbs", L"\"Windows Mail\" update " + wideId + L" Changed"));
    EXPECT_EQ(updated.exitCode, 0u);
    EXPECT_THAT(updated.output, StartsWith("Updated " + id));
    EXPECT_THAT(s_folder->Read(L"Work.ics"), HasSubstr("SUMMARY:Changed\r\nUID:" + id));

    const ProgramResult deleted =
        RunAndRead(Script(L"calendar.vbs", L"\"Windows Mail\" delete " + wideId));
    EXPECT_EQ(deleted.exitCode, 0u);
    EXPECT_THAT(deleted.output, StartsWith("Deleted " + id));
    EXPECT_THAT(s_folder->Read(L"Work.ics"), Not(HasSubstr(id)));
}

TEST_F(SampleClientsTest, ScriptsReportWhatTheyCannotDo)
{
    const ProgramResult missing =
        RunAndRead(Script(L"calendar.vbs", L"\"Windows Mail\" delete nothing"));
    EXPECT_EQ(missing.exitCode, 1u);
    EXPECT_THAT(missing.output, StartsWith("There is no such item: nothing"));
    EXPECT_EQ(RunAndRead(Script(L"calendar.vbs", L"\"Windows Mail\" fly")).exitCode, 2u);
    for (const wchar_t* script : {L"calendar.vbs", L"calendar.js"})
    {
        const ProgramResult refused = RunAndRead(Script(script, L"Nobody"));
        EXPECT_EQ(refused.exitCode, 1u);
        EXPECT_THAT(refused.output, StartsWith("This mail client could not be started: Nobody"));
    }
}
