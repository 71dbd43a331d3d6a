// The calendar of the message store as clients of other processes use it: walks and changes,
// collections and items that are held over a stop, calls that come back in the middle of a write,
// and clients that end inside a call.
#include "endtoend/CalendarClient.h"
#include "endtoend/MessageStore.h"
#include "endtoend/StoreClient.h"
#include "icalendar/RecordingAppointment.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <memory>

using Microsoft::WRL::ComPtr;
using testing::HasSubstr;
using testing::Not;

namespace
{
using Texts = std::vector<std::wstring>;

constexpr wchar_t kOutlook[] = L"Microsoft Outlook";
constexpr UINT kEndedInside = 42;
constexpr DWORD kRoleTimeoutMilliseconds = 60000;

const Texts kTasks = {L"Task 1", L"Task 2", L"Task 3"};

// The entry IDs of the three items.
std::string TaskId(int number)
{
    return "0000000050530501E00000000000000000000000000000" + std::to_string(10 + number);
}

std::wstring WideTaskId(int number)
{
    const std::string id = TaskId(number);
    return {id.begin(), id.end()};
}

// Three items of half an hour, on days that follow each other.
std::string TasksText()
{
    std::string messages;
    for (int i = 1; i <= 3; ++i)
    {
        const std::string day = "2026-02-0" + std::to_string(2 + i);
        messages += (i > 1 ? ", " : "") + std::string(R"({"entryId": ")") + TaskId(i) +
                    R"(", "created": "2026-01-01T08:00:00Z", "modified": "2026-01-01T08:00:00Z",
                       "properties": [
                       {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Appointment"},
                       {"tag": "PR_SUBJECT_W", "value": "Task )" +
                    std::to_string(i) +
                    R"("},
                       {"set": "PSETID_Appointment", "id": "0x8208", "type": "PT_UNICODE",
                        "value": "Room 5"},
                       {"set": "PSETID_Appointment", "id": "0x820D", "type": "PT_SYSTIME",
                        "value": ")" +
                    day + R"(T13:30:00Z"},
                       {"set": "PSETID_Appointment", "id": "0x820E", "type": "PT_SYSTIME",
                        "value": ")" +
                    day + R"(T14:00:00Z"}]})";
    }
    return R"({"format": "PimStoreBridge store", "version": 1, "identity": {}, "root": {"folders": [
              {"name": "Contacts", "class": "IPF.Contact", "roles": ["contacts"]},
              {"name": "Calendar", "class": "IPF.Appointment", "roles": ["calendar"],
               "messages": [)" +
           messages + R"(], "associated": [{"properties": [
               {"tag": "PR_MESSAGE_CLASS_W", "value": "IPM.Configuration.CategoryList"}]}]}]}})";
}

ComPtr<RecordingAppointment> OwnItem(const wchar_t* subject)
{
    auto item = RecordingAppointment::Make();
    item->texts["Subject"] = subject;
    item->startTime = 46056.5;
    item->endTime = 46056.75;
    item->keepsEntityId = true;
    return item;
}

// Writes an own item to the calendar and ends inside the call that is named, such as
// "get Subject". Arguments: "add" or the ID of the item to update, and the call.
int EndInside(const Texts& arguments)
{
    const auto service = StartBackEnd(kOutlook);
    const auto calendar = service ? CalendarOf(service.Get()) : nullptr;
    if (!calendar)
        return 1;
    const auto item = OwnItem(L"not said to the end");
    const bool isNew = arguments.at(0) == L"add";
    if (!isNew)
        item->texts["EntityID"] = arguments.at(0);
    const std::string inside(arguments.at(1).begin(), arguments.at(1).end());
    item->onCall = [&](const std::string& call) {
        if (call == inside)
            TerminateProcess(GetCurrentProcess(), kEndedInside);
    };
    VARIANT_BOOL updated = VARIANT_FALSE;
    Bstr id;
    const HRESULT result = isNew ? calendar->AddAppointment(item.Get(), id.Put())
                                 : calendar->UpdateAppointment(item.Get(), &updated);
    return SUCCEEDED(result) ? 0 : 2;
}
const RegisterRole endInside(L"end-inside-store", &EndInside);

class MessageStoreCalendarTest : public testing::Test
{
  protected:
    static void SetUpTestSuite()
    {
        s_store = std::make_unique<MessageStore>(RecordArrays::LeftToTheRuntime);
    }
    static void TearDownTestSuite() { s_store.reset(); }
    void SetUp() override
    {
        s_store->Load(TasksText());
        service = StartBackEnd(kOutlook);
        ASSERT_TRUE(service);
        calendar = CalendarOf(service.Get());
        ASSERT_TRUE(calendar);
        servers = RunningServers();
        ASSERT_EQ(1u, servers.size());
    }
    void TearDown() override
    {
        EXPECT_EQ(servers, RunningServers());
        if (service)
        {
            EXPECT_EQ(S_OK, service->StopService());
        }
    }

    // Adds an item of this process that runs the action when its subject is read.
    HRESULT AddWith(const std::function<void()>& action)
    {
        const auto item = OwnItem(L"Ours");
        bool done = false;
        item->onCall = [&](const std::string& call) {
            if (call == "get Subject" && !std::exchange(done, true))
                action();
        };
        Bstr id;
        const HRESULT result = calendar->AddAppointment(item.Get(), id.Put());
        EXPECT_TRUE(done);
        return result;
    }

    // What the calendar gives where its store is gone: failures, and no item.
    void ExpectGone(INCalendar* gone, INAppointment* item)
    {
        VARIANT_BOOL done = VARIANT_FALSE;
        ComPtr<INAppointment> none;
        Bstr id;
        EXPECT_EQ(S_OK, gone->Refresh());
        EXPECT_EQ(S_OK, gone->Reset(&done));
        EXPECT_EQ(E_FAIL, gone->GetNextAppointment(none.GetAddressOf()));
        EXPECT_FALSE(none);
        EXPECT_EQ(
            E_FAIL,
            gone->GetAppointmentByID(Bstr(WideTaskId(2)).Get(), none.ReleaseAndGetAddressOf()));
        EXPECT_FALSE(none);
        EXPECT_EQ(E_FAIL, gone->UpdateAppointment(item, &done));
        EXPECT_EQ(E_FAIL, gone->AddAppointment(item, id.Put()));
        EXPECT_EQ(E_FAIL, gone->DeleteAppointment(Bstr(WideTaskId(2)).Get(), &done));
    }

    static inline std::unique_ptr<MessageStore> s_store;
    ComPtr<INPersonalInformationService> service;
    ComPtr<INCalendar> calendar;
    std::vector<DWORD> servers;
};
} // namespace

TEST_F(MessageStoreCalendarTest, WalksAndChangesTheStore)
{
    EXPECT_EQ(kTasks, Subjects(calendar.Get()));
    const auto item = Find(calendar.Get(), WideTaskId(1));
    ASSERT_TRUE(item);
    // 2023-03-15 is day 45000, and 2026-02-03 is 1056 days later.
    DATE start = 0.0;
    EXPECT_EQ(S_OK, item->get_StartTime(&start));
    EXPECT_DOUBLE_EQ(46056.5625, start);
    Bstr place;
    EXPECT_EQ(S_OK, item->get_Place(place.Put()));
    EXPECT_EQ(L"Room 5", place.View());

    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"Task 1 anew").Get()));
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(item.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    Bstr added;
    EXPECT_EQ(S_OK, calendar->AddAppointment(OwnItem(L"Ours").Get(), added.Put()));
    EXPECT_EQ(48u, added.View().size());
    EXPECT_EQ(S_OK, calendar->DeleteAppointment(Bstr(WideTaskId(3)).Get(), &done));
    const std::string dump = s_store->Dump();
    EXPECT_THAT(dump, HasSubstr(R"({"tag": "PR_SUBJECT_W", "value": "Task 1 anew"})"));
    EXPECT_THAT(dump, HasSubstr(R"({"tag": "PR_SUBJECT_W", "value": "Ours"})"));
    EXPECT_THAT(dump, Not(HasSubstr(TaskId(3))));
    Texts subjects = Subjects(CalendarOf(service.Get()).Get());
    std::sort(subjects.begin(), subjects.end());
    EXPECT_EQ((Texts{L"Ours", L"Task 1 anew", L"Task 2"}), subjects);
}

TEST_F(MessageStoreCalendarTest, WhatIsHeldOverAStopAnswersWithFailures)
{
    const auto item = Find(calendar.Get(), WideTaskId(2));
    ASSERT_TRUE(item);
    ComPtr<INUserProperties> user;
    EXPECT_EQ(S_OK, service->GetUserProperties(user.GetAddressOf()));
    ASSERT_TRUE(user);
    const std::string before = s_store->Dump();
    EXPECT_EQ("stop 00000000\n", TakeSteps(L"stop"));
    ExpectGone(calendar.Get(), item.Get());
    EXPECT_FALSE(CalendarOf(service.Get()));
    // A value is its client's.
    Bstr text;
    EXPECT_EQ(S_OK, item->get_Subject(text.Put()));
    EXPECT_EQ(L"Task 2", text.View());
    EXPECT_EQ(S_OK, user->get_Account(text.Put()));
    EXPECT_EQ(L"", text.View());

    EXPECT_EQ(S_OK, service->StartService(Bstr(kOutlook).Get()));
    ExpectGone(calendar.Get(), item.Get());
    EXPECT_EQ(before, s_store->Dump());
    // The old item goes into the new calendar.
    const auto anew = CalendarOf(service.Get());
    ASSERT_TRUE(anew);
    EXPECT_EQ(kTasks, Subjects(anew.Get()));
    VARIANT_BOOL done = VARIANT_FALSE;
    EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"Task 2 anew").Get()));
    EXPECT_EQ(S_OK, anew->UpdateAppointment(item.Get(), &done));
    EXPECT_THAT(s_store->Dump(), HasSubstr("\"Task 2 anew\""));
}

TEST_F(MessageStoreCalendarTest, AStopInsideAWriteTakesEffectAfterIt)
{
    EXPECT_EQ(S_OK, AddWith([&] {
                  EXPECT_EQ(S_OK, service->StopService());
                  EXPECT_EQ(S_OK, service->StopService());
                  EXPECT_FALSE(CalendarOf(service.Get()));
                  EXPECT_EQ(E_FAIL, service->StartService(Bstr(kOutlook).Get()));
              }));
    EXPECT_THAT(s_store->Dump(), HasSubstr("\"Ours\""));
    ExpectGone(calendar.Get(), OwnItem(L"Nobody's").Get());
    EXPECT_EQ(S_OK, service->StartService(Bstr(kOutlook).Get()));
    EXPECT_EQ(4u, Subjects(CalendarOf(service.Get()).Get()).size());
}

TEST_F(MessageStoreCalendarTest, WritesAndReloadsInsideAWriteOfTheSameTableDoNothing)
{
    const auto existing = Find(calendar.Get(), WideTaskId(2));
    ASSERT_TRUE(existing);
    EXPECT_EQ(S_OK, existing->put_Subject(Bstr(L"Not written").Get()));
    EXPECT_EQ(S_OK, AddWith([&] {
                  VARIANT_BOOL done = VARIANT_FALSE;
                  Bstr id;
                  EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(Bstr(WideTaskId(1)).Get(), &done));
                  EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(existing.Get(), &done));
                  EXPECT_EQ(E_FAIL, calendar->AddAppointment(existing.Get(), id.Put()));
                  EXPECT_EQ(S_OK, calendar->Refresh());
                  // Another table is not in use.
                  const auto another = CalendarOf(service.Get());
                  EXPECT_EQ(kTasks, Subjects(another.Get()));
                  EXPECT_EQ(S_OK, another->DeleteAppointment(Bstr(WideTaskId(3)).Get(), &done));
              }));
    const std::string dump = s_store->Dump();
    EXPECT_THAT(dump, Not(HasSubstr("Not written")));
    EXPECT_THAT(dump, HasSubstr(TaskId(1)));
    EXPECT_THAT(dump, Not(HasSubstr(TaskId(3))));
    EXPECT_EQ((Texts{L"Task 1", L"Task 2", L"Ours"}), Subjects(CalendarOf(service.Get()).Get()));
    // A reload puts the store's rows behind those that are listed; the one inside the write put
    // none. In the place of the item that is gone the walk gives the one before it once more.
    EXPECT_EQ(S_OK, calendar->Refresh());
    EXPECT_EQ((Texts{L"Task 1", L"Task 2", L"Task 2", L"Ours", L"Task 1", L"Task 2", L"Ours"}),
              Subjects(calendar.Get()));
}

TEST_F(MessageStoreCalendarTest, ServesOthersAfterAClientEndedInsideACall)
{
    const auto endIn = [](const std::wstring& target, const wchar_t* inside) {
        return RunProgram(RoleCommandLine(L"end-inside-store", target + L" \"" + inside + L'"'),
                          kRoleTimeoutMilliseconds);
    };
    for (const wchar_t* const inside : {L"get Subject", L"get StartTime", L"get Place"})
    {
        EXPECT_EQ(kEndedInside, endIn(L"add", inside));
        EXPECT_EQ(kEndedInside, endIn(WideTaskId(2), inside));
        ASSERT_EQ(servers, RunningServers());
    }
    const auto anew = CalendarOf(service.Get());
    ASSERT_TRUE(anew);
    VARIANT_BOOL done = VARIANT_FALSE;
    const auto item = Find(anew.Get(), WideTaskId(1));
    ASSERT_TRUE(item);
    EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"Task 1 anew").Get()));
    EXPECT_EQ(S_OK, anew->UpdateAppointment(item.Get(), &done));
    const Texts subjects = Subjects(CalendarOf(service.Get()).Get());
    EXPECT_EQ(1, std::count(subjects.begin(), subjects.end(), L"Task 1 anew"));
    EXPECT_EQ(1, std::count(subjects.begin(), subjects.end(), L"Task 3"));
    EXPECT_EQ(3u, Subjects(calendar.Get()).size());
    // Some runtimes never take a dead client's references back: do not leave that server behind.
    EXPECT_EQ(S_OK, service->StopService());
    service.Reset();
    EndServers();
    servers.clear();
}
