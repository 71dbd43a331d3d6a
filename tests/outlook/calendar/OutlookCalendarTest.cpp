// The road of a client to the appointments of Outlook: service, collection and item objects over
// the real discovery and the recording store.
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/ServiceManager.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/OutlookInstallation.h"
#include "tests/recordingstore/RecordingStore.h"

#include <gmock/gmock.h>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
using Texts = std::vector<std::wstring>;

class OutlookCalendarTest : public testing::Test
{
  protected:
    OutlookCalendarTest()
    {
        store.AddUsualFolders();
        AddAppointment("one", L"One");
        AddAppointment("two", L"Two");
        store.AddMessage("note", "calendar", StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Note"));
        EXPECT_EQ(S_OK, service->StartService(Bstr(L"Microsoft Outlook").Get()));
    }
    ~OutlookCalendarTest() override
    {
        manager.StopService();
        EXPECT_EQ("", store.Complaints());
    }
    void AddAppointment(const char* name, const wchar_t* subject)
    {
        store.AddMessage(
            name,
            "calendar",
            StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment").Text(PR_SUBJECT_W, subject));
    }
    ComPtr<INCalendar> Calendar()
    {
        ComPtr<INCalendar> calendar;
        EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
        return calendar;
    }
    static std::wstring SubjectOf(INAppointment* appointment)
    {
        Bstr text;
        EXPECT_EQ(S_OK, appointment->get_Subject(text.Put()));
        return TextOf(text.Get());
    }
    static std::wstring IdOf(INAppointment* appointment)
    {
        Bstr text;
        EXPECT_EQ(S_OK, QueryItem<INEntityItem>(appointment)->get_EntityID(text.Put()));
        return TextOf(text.Get());
    }
    static ComPtr<INAppointment> Next(INCalendar& calendar)
    {
        ComPtr<INAppointment> appointment;
        const HRESULT result = calendar.GetNextAppointment(appointment.GetAddressOf());
        EXPECT_EQ(appointment ? S_OK : E_FAIL, result);
        return appointment;
    }
    static Texts Rest(INCalendar& calendar)
    {
        Texts subjects;
        for (ComPtr<INAppointment> one = Next(calendar); one && subjects.size() < 20;
             one = Next(calendar))
            subjects.push_back(SubjectOf(one.Get()));
        return subjects;
    }
    static Texts Walk(INCalendar& calendar)
    {
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(S_OK, calendar.Reset(&result));
        return Rest(calendar);
    }
    static ComPtr<INAppointment> NewAppointment(const wchar_t* subject)
    {
        const auto appointment = CreateObject<INAppointment>(CLSID_NAppointment);
        appointment->put_Subject(Bstr(subject).Get());
        return appointment;
    }

    RecordingStore store;
    OutlookInstallation installation{RecordingStore::Path()};
    CServiceManager manager;
    const ScopedServiceManager current{manager};
    ComPtr<INPersonalInformationService> service =
        CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
};
} // namespace

TEST_F(OutlookCalendarTest, WalksTheCalendar)
{
    const ComPtr<INCalendar> calendar = Calendar();
    ASSERT_TRUE(calendar);
    // It comes loaded, and stands before the first one.
    EXPECT_THAT(Rest(*calendar.Get()), ElementsAre(L"One", L"Two"));
    EXPECT_THAT(Walk(*calendar.Get()), ElementsAre(L"One", L"Two"));
}

TEST_F(OutlookCalendarTest, EnumeratesTheCalendar)
{
    ComPtr<INEnumerator> items;
    EXPECT_EQ(S_OK, service->GetEnumerator(::Calendar, items.GetAddressOf()));
    ASSERT_TRUE(items);
    Texts subjects;
    ComPtr<INEntityItem> item;
    while (items->GetNextItem(item.ReleaseAndGetAddressOf()) == S_OK && subjects.size() < 20)
        subjects.push_back(SubjectOf(QueryItem<INAppointment>(item.Get()).Get()));
    EXPECT_THAT(subjects, ElementsAre(L"One", L"Two"));
}

TEST_F(OutlookCalendarTest, AddsChangesAndDeletesAppointments)
{
    const ComPtr<INCalendar> calendar = Calendar();
    ASSERT_TRUE(calendar);
    Bstr id;
    EXPECT_EQ(S_OK, calendar->AddAppointment(NewAppointment(L"Three").Get(), id.Put()));
    EXPECT_THAT(Walk(*calendar.Get()), ElementsAre(L"One", L"Two", L"Three"));

    ComPtr<INAppointment> third;
    EXPECT_EQ(S_OK, calendar->GetAppointmentByID(id.Get(), third.GetAddressOf()));
    ASSERT_TRUE(third);
    EXPECT_EQ(id.View(), IdOf(third.Get()));
    third->put_Subject(Bstr(L"Third").Get());
    VARIANT_BOOL result = VARIANT_FALSE;
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(third.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_THAT(Walk(*calendar.Get()), ElementsAre(L"One", L"Two", L"Third"));

    result = VARIANT_FALSE;
    EXPECT_EQ(S_OK, calendar->DeleteAppointment(id.Get(), &result));
    EXPECT_EQ(VARIANT_TRUE, result);
    EXPECT_FALSE(store.Exists("new 2")); // the first new one is the message of the categories
    // A calendar that is made now has it no more.
    EXPECT_THAT(Walk(*Calendar().Get()), ElementsAre(L"One", L"Two"));
}

TEST_F(OutlookCalendarTest, ACalendarOutlivesTheServiceAndTouchesNothing)
{
    const ComPtr<INCalendar> calendar = Calendar();
    ASSERT_TRUE(calendar);
    const ComPtr<INAppointment> first = Next(*calendar.Get());
    ASSERT_TRUE(first);
    const std::wstring id = IdOf(first.Get());
    for (int round = 0; round < 2; ++round)
    {
        if (round == 0)
            EXPECT_EQ(S_OK, service->StopService());
        else // also over a new start
            EXPECT_EQ(S_OK, service->StartService(Bstr(L"Microsoft Outlook").Get()));
        store.ClearRecord();
        EXPECT_EQ(S_OK, calendar->Refresh());
        EXPECT_THAT(Walk(*calendar.Get()), IsEmpty());
        ComPtr<INAppointment> none;
        EXPECT_EQ(E_FAIL, calendar->GetAppointmentByID(Bstr(id).Get(), none.GetAddressOf()));
        VARIANT_BOOL result = VARIANT_FALSE;
        EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(first.Get(), &result));
        EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(Bstr(id).Get(), &result));
        Bstr added;
        EXPECT_EQ(E_FAIL, calendar->AddAppointment(first.Get(), added.Put()));
        EXPECT_EQ(L"One", SubjectOf(first.Get())); // the item is the client's own
        EXPECT_THAT(store.Calls(~0u), IsEmpty());
    }
}
