// Clients that use the server at once: interleaved walks, a stop under a walk, and calls that come
// back in the middle of a write.
#include "endtoend/CalendarClient.h"
#include "endtoend/CalendarFilesTest.h"
#include "icalendar/RecordingAppointment.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::HasSubstr;
using testing::Not;

namespace
{
using Texts = std::vector<std::wstring>;

const Texts kTasks = {L"Task 1", L"Task 2", L"Task 3", L"Task 4", L"Task 5"};

// Walks the calendar, pausing at the second and the fourth item, then again from its start.
int Walk(const Texts&)
{
    const auto service = StartBackEnd();
    const auto calendar = service ? CalendarOf(service.Get()) : nullptr;
    if (!calendar)
        return 1;
    const Signal paused(L"paused");
    const Signal go(L"go");
    for (std::size_t i = 0; i < kTasks.size(); ++i)
    {
        if (NextSubject(calendar.Get()) != kTasks[i])
            return 2;
        if (i != 1 && i != 3)
            continue;
        paused.Set();
        if (!go.Wait())
            return 3;
    }
    if (NextSubject(calendar.Get()) != L"(end)" || Subjects(calendar.Get()) != kTasks)
        return 4;
    // The table lives without the back end, and so do the writes and the reload.
    const auto item = Find(calendar.Get(), L"N5");
    VARIANT_BOOL updated = VARIANT_FALSE;
    if (!item || item->put_Place(Bstr(L"After the stop").Get()) != S_OK ||
        calendar->UpdateAppointment(item.Get(), &updated) != S_OK || updated != VARIANT_TRUE)
        return 5;
    if (calendar->Refresh() != S_OK || Subjects(calendar.Get()) != kTasks)
        return 6;
    // Nothing new comes from a stopped service.
    if (CalendarOf(service.Get()))
        return 7;
    return 0;
}
const RegisterRole walk(L"walk", &Walk);

class TwoClientsTest : public CalendarFilesTest
{
  protected:
    void SetUp() override
    {
        CalendarFilesTest::SetUp();
        s_folder->Write(L"Work.ics", NumberedCalendar("Task", 5));
        service = StartBackEnd();
        ASSERT_TRUE(service);
        calendar = CalendarOf(service.Get());
        ASSERT_TRUE(calendar);
        servers = RunningServers();
    }
    void TearDown() override
    {
        EXPECT_EQ(servers, RunningServers());
        EXPECT_EQ(S_OK, service->StopService());
    }

    // Adds an item of this process that runs the action when its subject is read.
    HRESULT AddWith(const std::function<void()>& action)
    {
        const auto item = RecordingAppointment::Make();
        item->texts["Subject"] = L"Ours";
        item->keepsEntityId = true;
        bool done = false;
        item->onCall = [&](const std::string& call) {
            if (call == "get Subject" && !std::exchange(done, true))
                action();
        };
        Bstr id;
        const HRESULT result = calendar->AddAppointment(item.Get(), id.Put());
        EXPECT_TRUE(done);
        EXPECT_EQ(38u, id.View().size());
        return result;
    }

    ComPtr<INPersonalInformationService> service;
    ComPtr<INCalendar> calendar;
    std::vector<DWORD> servers;
};
} // namespace

TEST_F(TwoClientsTest, AStopUnderAWalkEndsNeitherWalk)
{
    const Signal paused(L"paused");
    const Signal go(L"go");
    const StartedProgram walker = StartProgram(RoleCommandLine(L"walk"));
    ASSERT_TRUE(walker.process);

    EXPECT_EQ(L"Task 1", NextSubject(calendar.Get()));
    ASSERT_TRUE(paused.Wait());
    EXPECT_EQ(L"Task 2", NextSubject(calendar.Get()));
    EXPECT_EQ(L"Task 3", NextSubject(calendar.Get()));
    go.Set();
    ASSERT_TRUE(paused.Wait());
    EXPECT_EQ(S_OK, service->StopService());
    EXPECT_FALSE(CalendarOf(service.Get()));
    ComPtr<INCalendar> none;
    EXPECT_EQ(E_FAIL,
              CoCreateInstance(CLSID_NCalendar,
                               nullptr,
                               CLSCTX_LOCAL_SERVER,
                               IID_INCalendar,
                               reinterpret_cast<void**>(none.GetAddressOf())));
    EXPECT_EQ(L"Task 4", NextSubject(calendar.Get()));
    go.Set();
    EXPECT_EQ(WAIT_OBJECT_0, WaitForSingleObject(walker.process.Get(), 60000));
    DWORD exitCode = 1;
    GetExitCodeProcess(walker.process.Get(), &exitCode);
    EXPECT_EQ(0u, exitCode);

    EXPECT_EQ(L"Task 5", NextSubject(calendar.Get()));
    EXPECT_EQ(L"(end)", NextSubject(calendar.Get()));
    EXPECT_THAT(s_folder->Read(L"Work.ics"), HasSubstr("LOCATION:After the stop\r\n"));
    // The next start is a new one.
    EXPECT_EQ(S_OK, service->StartService(Bstr(kOutlookExpress).Get()));
    EXPECT_EQ(Texts{}, Subjects(CalendarOf(service.Get()).Get()));
}

TEST_F(TwoClientsTest, TwoTablesAreSeparate)
{
    const auto second = CalendarOf(service.Get());
    ASSERT_TRUE(second);
    VARIANT_BOOL removed = VARIANT_FALSE;
    EXPECT_EQ(S_OK, second->DeleteAppointment(Bstr(L"N2").Get(), &removed));
    EXPECT_EQ(VARIANT_TRUE, removed);
    // Both lists are as they were loaded.
    EXPECT_EQ(kTasks, Subjects(calendar.Get()));
    EXPECT_EQ(kTasks, Subjects(second.Get()));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ((Texts{L"Task 1", L"Task 3", L"Task 4", L"Task 5"}), Subjects(calendar.Get()));
    EXPECT_EQ(kTasks, Subjects(second.Get()));
}

TEST_F(TwoClientsTest, AStopInsideAWriteTakesEffectAfterIt)
{
    EXPECT_EQ(S_OK, AddWith([&] {
                  EXPECT_EQ(S_OK, service->StopService());
                  EXPECT_EQ(S_OK, service->StopService());
                  EXPECT_FALSE(CalendarOf(service.Get()));
                  EXPECT_EQ(E_FAIL, service->StartService(Bstr(kWindowsMail).Get()));
              }));
    EXPECT_THAT(s_folder->Read(L"Work.ics"), HasSubstr("SUMMARY:Ours\r\n"));
    EXPECT_EQ(kTasks, Subjects(calendar.Get()));
    EXPECT_FALSE(CalendarOf(service.Get()));
    // It was stopped: this start is of another back end.
    EXPECT_EQ(S_OK, service->StartService(Bstr(kOutlookExpress).Get()));
    EXPECT_EQ(Texts{}, Subjects(CalendarOf(service.Get()).Get()));
}

TEST_F(TwoClientsTest, AWriteInsideAWriteOfTheSameTableFails)
{
    const auto existing = Find(calendar.Get(), L"N4");
    ASSERT_TRUE(existing);
    EXPECT_EQ(S_OK, existing->put_Place(Bstr(L"Not written").Get()));
    EXPECT_EQ(S_OK, AddWith([&] {
                  VARIANT_BOOL result = VARIANT_FALSE;
                  EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(Bstr(L"N1").Get(), &result));
                  EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(existing.Get(), &result));
                  Bstr id;
                  EXPECT_EQ(E_FAIL, calendar->AddAppointment(existing.Get(), id.Put()));
                  // Reading goes on.
                  EXPECT_EQ(kTasks, Subjects(calendar.Get()));
                  // Another table is not in use.
                  const auto another = CalendarOf(service.Get());
                  EXPECT_EQ(kTasks, Subjects(another.Get()));
              }));
    EXPECT_EQ(S_OK, calendar->Refresh());
    Texts expected = kTasks;
    expected.push_back(L"Ours");
    EXPECT_EQ(expected, Subjects(calendar.Get()));
    EXPECT_THAT(s_folder->Read(L"Work.ics"), Not(HasSubstr("Not written")));
}

TEST_F(TwoClientsTest, AReloadInsideAWriteLoadsNothing)
{
    EXPECT_EQ(S_OK, AddWith([&] {
                  s_folder->Write(L"Later.ics", NumberedCalendar("Later", 1));
                  EXPECT_EQ(S_OK, calendar->Refresh());
                  EXPECT_EQ(kTasks, Subjects(calendar.Get()));
              }));
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_THAT(Subjects(calendar.Get()),
                testing::UnorderedElementsAre(
                    L"Task 1", L"Task 2", L"Task 3", L"Task 4", L"Task 5", L"Ours", L"Later 1"));
}

TEST_F(TwoClientsTest, WritesInsideWritesNestDeeply)
{
    // Every level holds a table of its own, in use, and adds to its file behind the inner ones.
    constexpr int kLevels = 8;
    std::function<void(int)> nest = [&](int level) {
        if (level == kLevels)
        {
            EXPECT_EQ(S_OK, service->StopService());
            return;
        }
        const auto table = CalendarOf(service.Get());
        ASSERT_TRUE(table);
        const auto item = RecordingAppointment::Make();
        item->keepsEntityId = true;
        item->onCall = [&](const std::string& call) {
            if (call == "get Place")
                nest(level + 1);
        };
        Bstr id;
        EXPECT_EQ(S_OK, table->AddAppointment(item.Get(), id.Put()));
    };
    nest(0);
    EXPECT_FALSE(CalendarOf(service.Get()));
    EXPECT_EQ(S_OK, service->StartService(Bstr(kWindowsMail).Get()));
    // The outermost table saved last, and knew nothing of the others' items.
    EXPECT_EQ(6u, Subjects(CalendarOf(service.Get()).Get()).size());
}
