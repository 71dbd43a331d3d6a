// What the objects leave behind in this process, counted to the block over all heaps: nothing. The
// roads are those of a client, over the real back end of Windows Calendar.
#include "platform/Bstr.h"
#include "platform/UniqueHandle.h"
#include "service/ServiceManager.h"
#include "support/ComAssert.h"
#include "support/Dispatch.h"
#include "support/HeapUse.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/outlook/FakeAddressBook.h"

#include <gtest/gtest.h>

#include <fstream>

using Microsoft::WRL::ComPtr;

namespace
{
// Does the work until what is made once stands, and then expects it to leave nothing.
template <typename Work> void ExpectLeavesNothing(Work work)
{
    SetOaNoCache();
    for (int i = 0; i < 3; ++i)
        work();
    const HeapUse before = UseOfAllHeaps();
    work();
    EXPECT_EQ(before, UseOfAllHeaps());
}

void UseByTable(INAppointment& item, INEntityItem& entity)
{
    const Bstr text(L"A text that is longer than the strings which hold their characters inside");
    for (const auto put : {&INAppointment::put_Subject,
                           &INAppointment::put_Place,
                           &INAppointment::put_TimeZone,
                           &INAppointment::put_Description,
                           &INAppointment::put_PersistID})
    {
        EXPECT_EQ(S_OK, (item.*put)(text.Get()));
        EXPECT_EQ(S_OK, (item.*put)(text.Get()));
        EXPECT_EQ(E_POINTER, (item.*put)(nullptr));
    }
    for (const auto get : {&INAppointment::get_Subject,
                           &INAppointment::get_Place,
                           &INAppointment::get_TimeZone,
                           &INAppointment::get_Description,
                           &INAppointment::get_PersistID})
        EXPECT_EQ(S_OK, (item.*get)(Bstr().Put()));
    EXPECT_EQ(S_OK, entity.put_EntityID(text.Get()));
    EXPECT_EQ(S_OK, entity.get_EntityID(Bstr().Put()));
    EXPECT_EQ(S_OK, entity.put_FolderID(text.Get()));
    EXPECT_EQ(S_OK, entity.get_FolderID(Bstr().Put()));
    EXPECT_EQ(S_OK, entity.put_FolderID(nullptr));
    const auto record = std::make_unique<_tagRecurringInfo>();
    record->eRecurType = Weekly;
    record->arrModifiedInstance[31].szLocation[259] = L'x';
    EXPECT_EQ(S_OK, item.put_RecurringInfo(record.get()));
    EXPECT_EQ(S_OK, item.get_RecurringInfo(record.get()));
    record->arrModifiedInstance[31].szLocation[259] = 0;
    EXPECT_EQ(S_OK, item.put_RecurringInfo(record.get()));
}

void UseByName(IDispatch* item)
{
    for (const wchar_t* name : {L"Subject", L"Place", L"TimeZone", L"Description", L"PersistID"})
    {
        EXPECT_EQ(S_OK, DispatchPut(item, name, {Variant(L"A late-bound text")}).result);
        EXPECT_EQ(L"A late-bound text", DispatchGet(item, name).value.Text());
    }
    EXPECT_EQ(S_OK, DispatchPut(item, L"StartTime", {Variant::Date(45000.5)}).result);
    EXPECT_EQ(VT_DATE, DispatchGet(item, L"StartTime").value.Type());
    EXPECT_EQ(DISP_E_UNKNOWNNAME, DispatchGet(item, L"NoSuchName").result);
    EXPECT_NE(S_OK, DispatchPut(item, L"StartTime", {Variant(L"no time")}).result);
}

std::string EventText(int number)
{
    const std::string n = std::to_string(number);
    return "BEGIN:VEVENT\r\nUID:N" + n + "\r\nSUMMARY:A subject that needs memory of its own, " +
           n + "\r\nLOCATION:Room " + n +
           "\r\nDESCRIPTION:Bring the plan and the list.\r\nDTSTAMP:20240102T080000Z\r\n"
           "DTSTART;TZID=Middle:20240108T100000\r\nDTEND;TZID=Middle:20240108T110000\r\n"
           "RRULE:FREQ=WEEKLY;BYDAY=MO;INTERVAL=1;COUNT=10\r\nX-UNKNOWN:dropped\r\n"
           "BEGIN:VALARM\r\nACTION:DISPLAY\r\nTRIGGER:-PT15M\r\nEND:VALARM\r\nEND:VEVENT\r\n";
}

constexpr int kEvents = 100;

// The service object over a calendar folder of a hundred events. The library of the fake address
// book stays loaded: what loading a library costs is no matter of the objects.
class HeapRoadTest : public testing::Test
{
  protected:
    HeapRoadTest() : m_library(LoadLibraryW(FakeAddressBook::Path().c_str()))
    {
        m_libraryPath.Set(FakeAddressBook::Path());
        m_localData.Set(m_scratch.Path().wstring(), REG_EXPAND_SZ);
        const auto folder = m_scratch.Path() / L"Microsoft" / L"Windows Calendar" / L"Calendars";
        std::filesystem::create_directories(folder);
        std::ofstream file(folder / L"Work.ics", std::ios::binary);
        file << "BEGIN:VCALENDAR\r\nVERSION:2.0\r\nBEGIN:VTIMEZONE\r\nTZID:Middle\r\n"
                "BEGIN:STANDARD\r\nTZNAME:Middle of Europe\r\nTZOFFSETTO:+0100\r\nEND:STANDARD\r\n"
                "END:VTIMEZONE\r\n";
        for (int i = 0; i < kEvents; ++i)
            file << EventText(i);
        file << "END:VCALENDAR\r\n";
    }
    void SetUp() override
    {
        service = CreateObject<INPersonalInformationService>(CLSID_NPersonalInformationService);
        ASSERT_TRUE(service);
        Start();
    }
    void TearDown() override { EXPECT_EQ(S_OK, service->StopService()); }

    void Start()
    {
        m_book.Calls().clear();
        EXPECT_EQ(S_OK, service->StartService(Bstr(L"Windows Mail").Get()));
    }
    ComPtr<INCalendar> Calendar()
    {
        ComPtr<INCalendar> calendar;
        EXPECT_EQ(S_OK, service->GetCalendar(calendar.GetAddressOf()));
        EXPECT_TRUE(calendar);
        return calendar;
    }

    ComPtr<INPersonalInformationService> service;

  private:
    UniqueModule m_library;
    FakeAddressBook m_book;
    ScratchDirectory m_scratch;
    ScopedRegistryValue m_libraryPath{
        HKEY_LOCAL_MACHINE, L"Software\\Microsoft\\WAB\\DLLPath", L""};
    ScopedRegistryValue m_localData{
        HKEY_CURRENT_USER,
        L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
        L"Local AppData"};
    CServiceManager m_manager;
    ScopedServiceManager m_current{m_manager};
};
} // namespace

// The count itself: one block of either kind shows.
TEST(HeapTest, ABlockMoreOrLessIsSeen)
{
    SetOaNoCache();
    const HeapUse before = UseOfAllHeaps();
    {
        const auto block = std::make_unique<char[]>(64);
        EXPECT_EQ((HeapUse{before.blocks + 1, before.bytes + 64}), UseOfAllHeaps()) << *block.get();
    }
    EXPECT_EQ(before, UseOfAllHeaps());
    {
        const Bstr text(L"A text");
        EXPECT_EQ(before.blocks + 1, UseOfAllHeaps().blocks);
    }
    EXPECT_EQ(before, UseOfAllHeaps());
}

TEST(HeapTest, AThousandAppointmentsLeaveNothing)
{
    ExpectLeavesNothing([] {
        for (int i = 0; i < 1000; ++i)
        {
            const auto item = CreateObject<INAppointment>(CLSID_NAppointment);
            ASSERT_TRUE(item);
            ComPtr<INEntityItem> entity;
            EXPECT_EQ(S_OK, item.As(&entity));
            UseByTable(*item.Get(), *entity.Get());
        }
    });
}

TEST(HeapTest, AThousandAppointmentsOfScriptsLeaveNothing)
{
    ExpectLeavesNothing([] {
        for (int i = 0; i < 1000; ++i)
            UseByName(CreateObject<INAppointment>(CLSID_NAppointment).Get());
    });
}

TEST(HeapTest, CreationsThatFailLeaveNothing)
{
    ExpectLeavesNothing([] {
        for (int i = 0; i < 100; ++i)
        {
            void* none = nullptr;
            // Without a provider there is no calendar; an appointment is no calendar.
            for (const CLSID& clsid : {CLSID_NCalendar, CLSID_NEnumerator, CLSID_NAppointment})
                EXPECT_NE(S_OK,
                          CoCreateInstance(clsid, nullptr, kServerContext, IID_INCalendar, &none));
            TestOuter outer;
            EXPECT_EQ(S_OK, outer.Aggregate(CLSID_NAppointment));
            outer.DropInner();
            EXPECT_EQ(E_FAIL, outer.Aggregate(CLSID_NCalendar));
        }
    });
}

TEST_F(HeapRoadTest, WalksLeaveNothing)
{
    ExpectLeavesNothing([this] {
        for (int i = 0; i < 10; ++i)
        {
            const auto calendar = Calendar();
            int items = 0;
            for (ComPtr<INAppointment> item;
                 calendar->GetNextAppointment(item.ReleaseAndGetAddressOf()) == S_OK;
                 ++items)
            {
                EXPECT_EQ(S_OK, item->get_Subject(Bstr().Put()));
                EXPECT_EQ(S_OK, item->get_Description(Bstr().Put()));
            }
            EXPECT_EQ(kEvents, items);
        }
    });
}

TEST_F(HeapRoadTest, WalksOfEnumeratorsAndScriptsLeaveNothing)
{
    ExpectLeavesNothing([this] {
        ComPtr<INEnumerator> enumerator;
        EXPECT_EQ(S_OK,
                  service->GetEnumerator(_tagNEnumeratorType::Calendar, enumerator.GetAddressOf()));
        ASSERT_TRUE(enumerator);
        int items = 0;
        for (ComPtr<INEntityItem> item;
             enumerator->GetNextItem(item.ReleaseAndGetAddressOf()) == S_OK;
             ++items)
            EXPECT_EQ(S_OK, item->get_EntityID(Bstr().Put()));
        EXPECT_EQ(kEvents, items);

        const auto calendar = DispatchCall(service.Get(), L"GetCalendar").value;
        ASSERT_EQ(VT_DISPATCH, calendar.Type());
        for (int i = 0; i < kEvents; ++i)
        {
            const auto item = DispatchCall(calendar.Value().pdispVal, L"GetNextAppointment").value;
            ASSERT_EQ(VT_DISPATCH, item.Type());
            UseByName(item.Value().pdispVal);
        }
        EXPECT_EQ(DISP_E_EXCEPTION,
                  DispatchCall(calendar.Value().pdispVal, L"GetNextAppointment").result);
    });
}

TEST_F(HeapRoadTest, FetchesAndRefreshesLeaveNothing)
{
    const auto calendar = Calendar();
    ExpectLeavesNothing([&] {
        VARIANT_BOOL reset = VARIANT_FALSE;
        for (int i = 0; i < kEvents; ++i)
        {
            EXPECT_EQ(S_OK, calendar->Reset(&reset));
            ComPtr<INAppointment> item;
            const Bstr id(L"N" + std::to_wstring(i));
            EXPECT_EQ(S_OK, calendar->GetAppointmentByID(id.Get(), item.GetAddressOf()));
            ASSERT_TRUE(item);
            EXPECT_EQ(S_OK, item->put_Subject(id.Get()));
        }
        EXPECT_EQ(S_OK, calendar->Reset(&reset));
        ComPtr<INAppointment> none;
        EXPECT_EQ(E_FAIL, calendar->GetAppointmentByID(Bstr(L"none").Get(), none.GetAddressOf()));
        EXPECT_EQ(S_OK, calendar->Refresh());
    });
}

TEST_F(HeapRoadTest, WritesLeaveNothing)
{
    // A table keeps what it writes; a new one each time, so that all of it goes.
    ExpectLeavesNothing([&] {
        for (int i = 0; i < 5; ++i)
        {
            const auto calendar = Calendar();
            const auto item = CreateObject<INAppointment>(CLSID_NAppointment);
            EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"A new appointment of that day").Get()));
            EXPECT_EQ(S_OK, item->put_Reminder(15));
            Bstr id;
            EXPECT_EQ(S_OK, calendar->AddAppointment(item.Get(), id.Put()));
            VARIANT_BOOL done = VARIANT_FALSE;
            EXPECT_EQ(S_OK, item->put_Place(Bstr(L"The room at the end of the hall").Get()));
            EXPECT_EQ(S_OK, calendar->UpdateAppointment(item.Get(), &done));
            EXPECT_EQ(S_OK, calendar->DeleteAppointment(id.Get(), &done));
            EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(id.Get(), &done));
            EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(item.Get(), &done));
        }
    });
}

TEST_F(HeapRoadTest, StartsAndStopsLeaveNothing)
{
    ExpectLeavesNothing([&] {
        for (int i = 0; i < 20; ++i)
        {
            const auto held = Calendar();
            EXPECT_EQ(S_OK, service->StopService());
            EXPECT_EQ(E_FAIL, service->StartService(Bstr(L"no such name").Get()));
            SAFEARRAY* names = nullptr;
            EXPECT_EQ(S_OK, service->GetProviders(&names));
            SafeArrayDestroy(names);
            EXPECT_EQ(S_OK, service->GetDefaultProvider(Bstr().Put()));
            Start();
        }
    });
}
