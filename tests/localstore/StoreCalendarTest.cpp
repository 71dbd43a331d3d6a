// The server's calendar table over the embedded store: appointments that were added come back.
#include "automation/ClassObjects.h"
#include "localstore/StoreProfile.h"
#include "outlook/calendar/OutlookCalendarTable.h"
#include "outlook/store/MAPIProxcy.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "tests/support/TestModule.h"
#include "tests/localstore/StoreClient.h"

#include <filesystem>

namespace
{
// 2024-03-05 00:00
constexpr DATE kDay = 45356.0;

class StoreCalendarTest : public StoreTest
{
  protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(S_OK,
                  m_classes.Register(GetObjectMap(), CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE));
        auto proxy = std::make_unique<CMAPIProxcy>();
        MAPIINIT_0 record{0, 8};
        wchar_t program[MAX_PATH] = {};
        GetModuleFileNameW(nullptr, program, MAX_PATH);
        const std::filesystem::path library =
            std::filesystem::path(program).parent_path() / L"PimLocalStore.dll";
        ASSERT_TRUE(proxy->Load(library.wstring(), &record));
        m_helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        m_calendar = OpenFolder(Binary(StoreTest::RootFolder().Get(), kCalendarFolder));
        ASSERT_TRUE(m_calendar);
        m_table = NewTable();
    }
    void TearDown() override
    {
        m_table.reset();
        m_calendar.Reset();
        m_helper.reset();
    }

    std::unique_ptr<COutlookCalendarTable> NewTable()
    {
        auto table = std::make_unique<COutlookCalendarTable>(m_calendar.Get(), m_helper.get());
        table->GetItemIDs();
        table->ResetItem();
        return table;
    }
    static ComPtr<INEntityItem> NewItem(const wchar_t* subject)
    {
        ComPtr<INEntityItem> item;
        CoCreateInstance(CLSID_NAppointment,
                         nullptr,
                         CLSCTX_ALL,
                         IID_INEntityItem,
                         reinterpret_cast<void**>(item.GetAddressOf()));
        QueryItem<INAppointment>(item.Get())->put_Subject(Bstr(subject).Get());
        return item;
    }
    // The next one of the table under its item interface; null behind the last.
    static ComPtr<INAppointment> Next(IEnumerator& table)
    {
        table.GetNextItem();
        return QueryItem<INAppointment>(CurrentItem(table).Get());
    }
    static std::wstring TextOfProperty(INAppointment* item,
                                       HRESULT (STDMETHODCALLTYPE INAppointment::*get)(BSTR*))
    {
        Bstr text;
        (item->*get)(text.Put());
        return text ? std::wstring(text.View()) : L"(null)";
    }
    template <typename T>
    static T ValueOf(INAppointment* item, HRESULT (STDMETHODCALLTYPE INAppointment::*get)(T*))
    {
        T value{};
        (item->*get)(&value);
        return value;
    }

    TestModule m_module;
    ClassObjects m_classes;
    std::unique_ptr<CMAPIHelper> m_helper;
    ComPtr<IMAPIFolder> m_calendar;
    std::unique_ptr<COutlookCalendarTable> m_table;
};
// The same over a store in which nobody has made names.
class NamelessStoreCalendarTest : public StoreCalendarTest
{
  protected:
    void SetUp() override
    {
        {
            Database database = OpenStore(m_path);
            EnsureDefaultProfile(database, LoggedOnUser());
            database.Execute("DELETE FROM named_property");
        }
        StoreCalendarTest::SetUp();
    }
};
} // namespace

TEST_F(StoreCalendarTest, KeepsAnAppointmentWithARuleAndAnException)
{
    const ComPtr<INEntityItem> item = NewItem(L"Review");
    const ComPtr<INAppointment> review = QueryItem<INAppointment>(item.Get());
    review->put_Place(Bstr(L"Room 5").Get());
    review->put_Description(Bstr(L"Agenda:\r\n\x2013 noise").Get());
    review->put_TimeZone(Bstr(L"India Standard Time").Get());
    review->put_StartTime(kDay + 0.25); // 06:00 UTC
    review->put_EndTime(kDay + 0.3125); // 07:30
    review->put_Reminder(15);
    review->put_IsBusy(VARIANT_TRUE);
    _tagRecurringInfo rule{};
    rule.eRecurType = Weekly;
    rule.tWeekly.ulIntervalWeek = 2;
    rule.tWeekly.bValidWeekday[2] = -1;
    rule.tEndInfo = {EndByCount, 0.0, 6};
    rule.arrDeletedInstance[0] = kDay + 14;
    _tagModifiedInstanceInfo& moved = rule.arrModifiedInstance[0];
    moved.dtModifiedDate = kDay + 14;
    moved.dtStartDateTime = kDay + 15.5;
    moved.dtEndDateTime = kDay + 15.5625;
    moved.dtOriginalDateTime = kDay + 14.5;
    moved.szSubject[0] = 'M';
    review->put_RecurringInfo(&rule);
    std::wstring folderID;
    const std::wstring id = m_table->AddItem(item.Get(), folderID);
    ASSERT_FALSE(id.empty());

    const auto table = NewTable();
    const ComPtr<INAppointment> read = Next(*table);
    ASSERT_TRUE(read);
    EXPECT_EQ(L"Review", TextOfProperty(read.Get(), &INAppointment::get_Subject));
    EXPECT_EQ(L"Room 5", TextOfProperty(read.Get(), &INAppointment::get_Place));
    EXPECT_EQ(L"Agenda:\r\n\x2013 noise",
              TextOfProperty(read.Get(), &INAppointment::get_Description));
    EXPECT_EQ(L"India Standard Time", TextOfProperty(read.Get(), &INAppointment::get_TimeZone));
    EXPECT_EQ(id, TextOfProperty(read.Get(), &INAppointment::get_PersistID));
    EXPECT_EQ(kDay + 0.25, ValueOf(read.Get(), &INAppointment::get_StartTime));
    EXPECT_EQ(kDay + 0.3125, ValueOf(read.Get(), &INAppointment::get_EndTime));
    EXPECT_EQ(15u, ValueOf(read.Get(), &INAppointment::get_Reminder));
    EXPECT_EQ(VARIANT_TRUE, ValueOf(read.Get(), &INAppointment::get_IsBusy));
    EXPECT_EQ(VARIANT_FALSE, ValueOf(read.Get(), &INAppointment::get_AllDay));
    _tagRecurringInfo back;
    EXPECT_EQ(S_OK, read->get_RecurringInfo(&back));
    EXPECT_EQ(Weekly, back.eRecurType);
    EXPECT_EQ(2u, back.tWeekly.ulIntervalWeek);
    EXPECT_EQ(-1, back.tWeekly.bValidWeekday[2]);
    EXPECT_EQ(EndByCount, back.tEndInfo.eEndType);
    EXPECT_EQ(6u, back.tEndInfo.ulTimesAfter);
    EXPECT_EQ(kDay + 14, back.arrDeletedInstance[0]);
    EXPECT_EQ(kDay + 14, back.arrModifiedInstance[0].dtModifiedDate);
    EXPECT_EQ(kDay + 15.5, back.arrModifiedInstance[0].dtStartDateTime);
    EXPECT_EQ(kDay + 14.5, back.arrModifiedInstance[0].dtOriginalDateTime);
    EXPECT_EQ('M', back.arrModifiedInstance[0].szSubject[0]);
    EXPECT_EQ(0, back.arrModifiedInstance[0].szLocation[0]);
    EXPECT_FALSE(Next(*table));
}

TEST_F(StoreCalendarTest, KeepsAnAllDayAppointmentOfTheMachinesZone)
{
    const ComPtr<INEntityItem> item = NewItem(L"Holiday");
    const ComPtr<INAppointment> holiday = QueryItem<INAppointment>(item.Get());
    holiday->put_AllDay(VARIANT_TRUE);
    holiday->put_StartTime(kDay);
    holiday->put_EndTime(kDay + 1);
    holiday->put_Reminder(0xFFFFFFFF);
    std::wstring folderID;
    ASSERT_FALSE(m_table->AddItem(item.Get(), folderID).empty());
    const ComPtr<INAppointment> read = Next(*NewTable());
    ASSERT_TRUE(read);
    EXPECT_NE(VARIANT_FALSE, ValueOf(read.Get(), &INAppointment::get_AllDay));
    EXPECT_EQ(kDay, ValueOf(read.Get(), &INAppointment::get_StartTime));
    EXPECT_EQ(kDay + 1, ValueOf(read.Get(), &INAppointment::get_EndTime));
    EXPECT_EQ(0xFFFFFFFF, ValueOf(read.Get(), &INAppointment::get_Reminder));
}

TEST_F(StoreCalendarTest, ChangesAndDeletesAnAppointment)
{
    const ComPtr<INEntityItem> item = NewItem(L"First");
    std::wstring folderID;
    const std::wstring id = m_table->AddItem(item.Get(), folderID);
    ASSERT_FALSE(id.empty());
    QueryItem<INAppointment>(item.Get())->put_Subject(Bstr(L"Second").Get());
    EXPECT_EQ(TRUE, m_table->UpdateItem(item.Get()));
    EXPECT_EQ(L"Second", TextOfProperty(Next(*NewTable()).Get(), &INAppointment::get_Subject));
    EXPECT_EQ(TRUE, m_table->DeleteItem(id));
    EXPECT_FALSE(Next(*NewTable()));
}

// The server makes no names: what the store cannot keep under one is left out.
TEST_F(NamelessStoreCalendarTest, KeepsWhatAStoreWithoutNamesCan)
{
    const ComPtr<INEntityItem> item = NewItem(L"Bare");
    const ComPtr<INAppointment> bare = QueryItem<INAppointment>(item.Get());
    bare->put_Place(Bstr(L"Room 5").Get());
    bare->put_StartTime(kDay);
    std::wstring folderID;
    ASSERT_FALSE(m_table->AddItem(item.Get(), folderID).empty());
    const ComPtr<INAppointment> read = Next(*NewTable());
    ASSERT_TRUE(read);
    EXPECT_EQ(L"Bare", TextOfProperty(read.Get(), &INAppointment::get_Subject));
    EXPECT_EQ(L"(null)", TextOfProperty(read.Get(), &INAppointment::get_Place));
    EXPECT_EQ(0.0, ValueOf(read.Get(), &INAppointment::get_StartTime));
    SPropTagArray* tags = nullptr;
    EXPECT_EQ(S_OK, m_calendar->GetIDsFromNames(0, nullptr, 0, &tags));
    ASSERT_TRUE(tags);
    EXPECT_EQ(0u, tags->cValues);
    m_library.FreeBuffer(tags);
}
