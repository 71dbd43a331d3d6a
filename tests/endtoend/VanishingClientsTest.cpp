// Clients whose own item objects never answer: they end inside a call that the server makes to
// them, or hang in it. The server goes on serving the others.
#include "endtoend/ProcessUsage.h"
#include "endtoend/ThreeTasksTest.h"
#include "hostileclient/HostileItem.h"
#include "icalendar/RecordingAppointment.h"
#include "platform/SafeArray.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr DWORD kRoleTimeoutMilliseconds = 60000;
constexpr UINT kEndedInside = 42;

// Writes an own item to the calendar. Arguments: "add" or "update", the call inside which the
// client stays, such as "get Subject", and "end" or the name of the signal that it hangs now.
int WriteOwnItem(const std::vector<std::wstring>& arguments)
{
    const std::wstring& inside = arguments.at(1);
    const std::wstring& fate = arguments.at(2);
    const auto service = StartBackEnd();
    const auto calendar = service ? CalendarOf(service.Get()) : nullptr;
    if (!calendar)
        return 1;
    const auto item = RecordingAppointment::Make();
    item->texts["EntityID"] = L"N1";
    item->texts["Subject"] = L"not said to the end";
    item->keepsEntityId = true;
    item->onCall = [&](const std::string& call) {
        if (call != std::string(inside.begin(), inside.end()))
            return;
        if (fate == L"end")
            TerminateProcess(GetCurrentProcess(), kEndedInside);
        Signal(fate).Set();
        Sleep(INFINITE);
    };
    VARIANT_BOOL updated = VARIANT_FALSE;
    Bstr id;
    const HRESULT result = arguments.at(0) == L"add"
                               ? calendar->AddAppointment(item.Get(), id.Put())
                               : calendar->UpdateAppointment(item.Get(), &updated);
    return SUCCEEDED(result) ? 0 : 2;
}
const RegisterRole writeOwnItem(L"write-own-item", &WriteOwnItem);

std::wstring WriterCommandLine(const wchar_t* method, const wchar_t* inside, const wchar_t* fate)
{
    return RoleCommandLine(L"write-own-item",
                           std::wstring(method) + L" \"" + inside + L"\" " + fate);
}

// Lends an object to a contact and never answers again. Argument: the signal that it does so now.
int LendAndHang(const std::vector<std::wstring>& arguments)
{
    const auto contact = MakeInServer<INContactItem>(CLSID_NContactItem);
    HostileItem lent{HostileItem::Query::GivesEntity, HostileItem::Text::Fails};
    const UniqueSafeArray array(SafeArrayCreateVector(VT_UNKNOWN, 0, 1));
    LONG first = 0;
    if (!contact || FAILED(SafeArrayPutElement(array.Get(), &first, &lent)) ||
        contact->put_Emails(array.Get()) != S_OK)
        return 1;
    Signal(arguments.at(0)).Set();
    Sleep(INFINITE);
    return 0;
}
const RegisterRole lendAndHang(L"lend-and-hang", &LendAndHang);

class VanishingClientsTest : public ThreeTasksTest
{
  protected:
    // Some runtimes never take a dead client's references back: do not leave that server behind.
    void TearDown() override { EndServers(); }
};
} // namespace

TEST_F(VanishingClientsTest, AnOwnItemIsWrittenAcrossProcesses)
{
    const auto service = StartBackEnd();
    ASSERT_TRUE(service);
    EXPECT_EQ(0u,
              RunProgram(WriterCommandLine(L"update", L"none", L"end"), kRoleTimeoutMilliseconds));
    EXPECT_EQ(0u, RunProgram(WriterCommandLine(L"add", L"none", L"end"), kRoleTimeoutMilliseconds));
    const auto calendar = CalendarOf(service.Get());
    EXPECT_EQ((std::vector<std::wstring>{
                  L"not said to the end", L"Task 2", L"Task 3", L"not said to the end"}),
              Subjects(calendar.Get()));
}

TEST_F(VanishingClientsTest, ServesOthersAfterAClientEndedInsideACall)
{
    const auto service = StartBackEnd();
    ASSERT_TRUE(service);
    const auto keeper = CalendarOf(service.Get());
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    // Every call that a write makes to the client's object, but QueryInterface, which the runtime
    // answers.
    for (const wchar_t* inside : {L"get EntityID",
                                  L"put LastModificationTime",
                                  L"get Subject",
                                  L"get Place",
                                  L"get Description",
                                  L"get Reminder",
                                  L"get RecurringInfo",
                                  L"get StartTime",
                                  L"get EndTime",
                                  L"get AllDay"})
    {
        EXPECT_EQ(
            kEndedInside,
            RunProgram(WriterCommandLine(L"update", inside, L"end"), kRoleTimeoutMilliseconds));
        ASSERT_EQ(servers, RunningServers());
    }
    for (const wchar_t* inside : {L"put EntityID", L"get Subject", L"get AllDay"})
    {
        EXPECT_EQ(kEndedInside,
                  RunProgram(WriterCommandLine(L"add", inside, L"end"), kRoleTimeoutMilliseconds));
        ASSERT_EQ(servers, RunningServers());
    }
    ExpectServes(service.Get());
    // A read that fails leaves the event's field as it is: the updates took nothing away.
    const auto subjects = Subjects(CalendarOf(service.Get()).Get());
    for (const wchar_t* task : {L"Task 2", L"Task 3"})
        EXPECT_EQ(1, std::count(subjects.begin(), subjects.end(), task));
    EXPECT_EQ(3u, Subjects(keeper.Get()).size());
    EXPECT_EQ(servers, RunningServers());
}

TEST_F(VanishingClientsTest, WhatALostClientLeavesBehindIsBounded)
{
    const auto service = StartBackEnd();
    ASSERT_TRUE(service);
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    const std::wstring lost = WriterCommandLine(L"update", L"get Subject", L"end");
    // The first ones let the runtime's own tables and threads grow.
    for (int i = 0; i < 5; ++i)
        ASSERT_EQ(kEndedInside, RunProgram(lost, kRoleTimeoutMilliseconds));
    constexpr int kLostClients = 15;
    const ProcessGrowth growth = GrowthOver(servers[0], [&] {
        for (int i = 0; i < kLostClients; ++i)
            ASSERT_EQ(kEndedInside, RunProgram(lost, kRoleTimeoutMilliseconds));
    });
    // A lost client of this kind held a service object and a calendar of three items, and the
    // server held its item: all of it may stay where the runtime never reclaims it. A calendar
    // holds one recurrence record, 34,944 bytes.
    EXPECT_LE(growth.handles, kLostClients * 12) << growth;
    EXPECT_LE(growth.ownBlocks, kLostClients * 48) << growth;
    EXPECT_LE(growth.ownBytes, kLostClients * 48 * 1024) << growth;
    EXPECT_LE(growth.sharedBlocks, kLostClients * 128) << growth;
    EXPECT_LE(growth.sharedBytes, kLostClients * 24 * 1024) << growth;
    ExpectServes(service.Get());
}

TEST_F(VanishingClientsTest, ServesOthersWhileAClientHangsInsideACall)
{
    const auto service = StartBackEnd();
    ASSERT_TRUE(service);
    const auto servers = RunningServers();
    const Signal hangs(L"hangs");
    const StartedProgram first =
        StartProgram(WriterCommandLine(L"update", L"get Subject", L"hangs"));
    ASSERT_TRUE(hangs.Wait());
    ExpectServes(service.Get());
    const StartedProgram second = StartProgram(WriterCommandLine(L"add", L"get EndTime", L"hangs"));
    ASSERT_TRUE(hangs.Wait());
    ExpectServes(service.Get());

    // A stop waits for the calls that are under way; until then nothing is handed out.
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_FALSE(CalendarOf(service.Get()));
    EXPECT_EQ(E_FAIL, service->StartService(Bstr(kWindowsMail).Get()));

    // In the order of their calls, so that the later one ends inside the earlier one's wait.
    KillPrograms({&first, &second});
    ASSERT_EQ(S_OK, StartAfterStop(*service.Get(), kWindowsMail));
    ExpectServes(service.Get());
    EXPECT_EQ(servers, RunningServers());
}

// What a client lent is given back at the server's end, and that client never takes it.
TEST_F(VanishingClientsTest, TheServerEndsBesideAClientThatNeverAnswers)
{
    const Signal hangs(L"hangs");
    const StartedProgram client = StartProgram(RoleCommandLine(L"lend-and-hang", L"hangs"));
    ASSERT_TRUE(hangs.Wait());
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    AskToEnd(servers[0]);
    EXPECT_TRUE(WaitForEnd(servers[0], 10000));
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(client.process.Get(), 0)) << "It hangs still.";
    const auto service = StartBackEnd();
    ASSERT_TRUE(service);
    ExpectServes(service.Get(), {L"Task 1", L"Task 2", L"Task 3"});
    EXPECT_NE(servers, RunningServers());
    KillPrograms({&client});
}
