// The calendar of the server's provider over the embedded store: appointments that were added come
// back.
#include "localstore/StoreProfile.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "tests/localstore/StoreProviderFixture.h"
#include "tests/outlook/calendar/RecurrenceSupport.h"

namespace
{
// 2024-03-05 00:00
constexpr DATE kDay = 45356.0;

class StoreCalendarTest : public StoreProviderTest
{
  protected:
    void SetUp() override
    {
        StoreProviderTest::SetUp();
        ASSERT_NO_FATAL_FAILURE(LogOnProvider());
        m_table = NewTable();
    }
    void TearDown() override
    {
        m_table.reset();
        StoreProviderTest::TearDown();
    }

    std::unique_ptr<IEnumerator> NewTable() { return LoadTable(Calendar); }
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

    std::unique_ptr<IEnumerator> m_table;
};
struct SeriesCase
{
    const char* what;
    const wchar_t* zone; // one whose rules no other zone of the system with a lower key has
    DATE utcStart;
    DATE utcEnd;
    void (*set)(_tagRecurringInfo& rule);
    const char* text; // of the rule that comes back
};

// Starts and ends are UTC. Days of a rule are those of the zone.
const SeriesCase kSeries[] = {
    {"daily to the east",
     L"Nepal Standard Time", // 5:45 ahead
     DateOf(2024, 3, 4, 20, 0),
     DateOf(2024, 3, 4, 21, 0),
     [](_tagRecurringInfo& rule) {
         rule.eRecurType = Daily;
         rule.tDaily.ulIntervalDay = 3;
         rule.tEndInfo = {EndByCount, 0.0, 4};
     },
     "kind 1\ndaily.interval 3\nend.kind 1\nend.times 4\n"},
    {"weekly to the west, over the start of summer time",
     L"Newfoundland Standard Time", // 3:30 behind, 2:30 in summer
     DateOf(2024, 3, 8, 13, 30),
     DateOf(2024, 3, 8, 15, 0),
     [](_tagRecurringInfo& rule) {
         rule.eRecurType = Weekly;
         rule.tWeekly.ulIntervalWeek = 1;
         SetWeekdays(rule.tWeekly.bValidWeekday, {0, 5});
         rule.tEndInfo = {EndByDate, DateOf(2024, 4, 30), 0};
         rule.arrDeletedInstance[0] = DateOf(2024, 3, 10);
     },
     "kind 2\nweekly.interval 1\nweekly.days S----F-\nend.kind 2\nend.date 2024-04-30 00:00\n"
     "deleted0 2024-03-10 00:00\n"},
    {"monthly without an end, in the hours that summer time leaves out",
     L"Newfoundland Standard Time",
     DateOf(2024, 3, 10, 5, 45),
     DateOf(2024, 3, 10, 6, 45),
     [](_tagRecurringInfo& rule) {
         rule.eRecurType = Monthly;
         rule.tMonthly.ulIntervalMonth = 2;
         rule.tMonthly.bIsByDayMode = -1;
         rule.tMonthly.lNth = -1;
         SetWeekdays(rule.tMonthly.bValidWeekday, {0});
     },
     "kind 3\nmonthly.byDay -1\nmonthly.interval 2\nmonthly.nth -1\nmonthly.days S------\n"},
    {"yearly far to the west",
     L"Marquesas Standard Time", // 9:30 behind
     DateOf(2024, 7, 1, 8, 0),
     DateOf(2024, 7, 1, 9, 0),
     [](_tagRecurringInfo& rule) {
         rule.eRecurType = Yearly;
         rule.tYearly.ulIntervalYear = 1;
         rule.tYearly.bIsByMonthDayMode = -1;
         rule.tYearly.lDay = 30;
     },
     "kind 4\nyearly.byMonthDay -1\nyearly.interval 1\nyearly.day 30\n"},
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

TEST_F(StoreCalendarTest, KeepsSeriesOfEveryKindAndZone)
{
    for (const SeriesCase& wanted : kSeries)
    {
        SCOPED_TRACE(wanted.what);
        const ComPtr<INEntityItem> item = NewItem(L"Series");
        const ComPtr<INAppointment> series = QueryItem<INAppointment>(item.Get());
        series->put_TimeZone(Bstr(wanted.zone).Get());
        series->put_StartTime(wanted.utcStart);
        series->put_EndTime(wanted.utcEnd);
        auto rule = std::make_unique<_tagRecurringInfo>(NoRecurrence());
        wanted.set(*rule);
        series->put_RecurringInfo(rule.get());
        std::wstring folderID;
        const std::wstring id = m_table->AddItem(item.Get(), folderID);
        ASSERT_FALSE(id.empty());

        const auto table = NewTable();
        const ComPtr<INAppointment> read = Next(*table);
        ASSERT_TRUE(read);
        EXPECT_EQ(wanted.zone, TextOfProperty(read.Get(), &INAppointment::get_TimeZone));
        EXPECT_DOUBLE_EQ(wanted.utcStart, ValueOf(read.Get(), &INAppointment::get_StartTime));
        EXPECT_DOUBLE_EQ(wanted.utcEnd, ValueOf(read.Get(), &INAppointment::get_EndTime));
        EXPECT_EQ(S_OK, read->get_RecurringInfo(rule.get()));
        EXPECT_EQ(wanted.text, TextOf(*rule));
        EXPECT_EQ(TRUE, m_table->DeleteItem(id));
    }
}

TEST_F(StoreCalendarTest, ChangesTheRuleOfASeriesAndItsZone)
{
    const ComPtr<INEntityItem> item = NewItem(L"Series");
    const ComPtr<INAppointment> series = QueryItem<INAppointment>(item.Get());
    const auto write = [&](const SeriesCase& wanted) {
        series->put_TimeZone(Bstr(wanted.zone).Get());
        series->put_StartTime(wanted.utcStart);
        series->put_EndTime(wanted.utcEnd);
        auto rule = std::make_unique<_tagRecurringInfo>(NoRecurrence());
        wanted.set(*rule);
        series->put_RecurringInfo(rule.get());
    };
    write(kSeries[0]);
    std::wstring folderID;
    ASSERT_FALSE(m_table->AddItem(item.Get(), folderID).empty());
    write(kSeries[1]);
    EXPECT_EQ(TRUE, m_table->UpdateItem(item.Get()));
    const ComPtr<INAppointment> read = Next(*NewTable());
    ASSERT_TRUE(read);
    EXPECT_EQ(kSeries[1].zone, TextOfProperty(read.Get(), &INAppointment::get_TimeZone));
    EXPECT_DOUBLE_EQ(kSeries[1].utcStart, ValueOf(read.Get(), &INAppointment::get_StartTime));
    auto rule = std::make_unique<_tagRecurringInfo>();
    EXPECT_EQ(S_OK, read->get_RecurringInfo(rule.get()));
    EXPECT_EQ(kSeries[1].text, TextOf(*rule));
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
    const ComPtr<IMAPIFolder> calendar = OpenFolder(Binary(RootFolder().Get(), kCalendarFolder));
    EXPECT_EQ(S_OK, calendar->GetIDsFromNames(0, nullptr, 0, &tags));
    ASSERT_TRUE(tags);
    EXPECT_EQ(0u, tags->cValues);
    m_library.FreeBuffer(tags);
}
