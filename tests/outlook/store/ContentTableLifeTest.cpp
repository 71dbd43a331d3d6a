// Clients that call in again while a table works, and clients that keep what they have over the end
// of the service.
#include "icalendar/RecordingAppointment.h"
#include "outlook/store/TableFixture.h"
#include "service/CallScope.h"
#include "service/FakeBackEnds.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// --- A table by itself ---------------------------------------------------------------------------

class ReentrancyTest : public TableTest
{
  protected:
    ReentrancyTest()
    {
        Load();
        Next();
        store.ClearRecord();
        item = RecordingAppointment::Make();
        item->texts["EntityID"] = IdOf("two");
        item->texts["Subject"] = L"Changed";
    }
    // A function-valued knob that acts once, so that no call calls itself without end.
    std::function<void()> Once(std::function<void()> act)
    {
        return [this, act = std::move(act)] {
            if (!std::exchange(m_hasActed, true))
                act();
        };
    }
    // Everything that reloads, writes or opens, each as a failing operation.
    void TryEverything()
    {
        std::wstring folderID = L"as it was";
        const ComPtr<INEntityItem> other = NewAppointment(IdOf("three"), L"Other");
        table->GetItemIDs();
        EXPECT_EQ(0, table->UpdateItem(other.Get()));
        EXPECT_EQ(L"", table->AddItem(other.Get(), folderID));
        EXPECT_EQ(L"as it was", folderID);
        EXPECT_EQ(0, table->DeleteItem(IdOf("three")));
        const ComPtr<INEntityItem> before = Current();
        table->GetItemByID(IdOf("three"));
        EXPECT_EQ(before.Get(), Current().Get());
        EXPECT_EQ(3u, Entries().size());
    }
    std::size_t CallsTo(const std::string& start)
    {
        std::size_t count = 0;
        for (const std::string& call : store.Calls())
            count += call.starts_with(start) ? 1 : 0;
        return count;
    }

    ComPtr<RecordingAppointment> item;

  private:
    bool m_hasActed = false;
};
} // namespace

TEST_F(ReentrancyTest, NothingElseStartsWhileAnItemIsUpdated)
{
    const auto act = Once([&] { TryEverything(); });
    item->onCall = [&](const std::string& call) {
        if (call == "get Subject")
            act();
    };
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(two, null, 00000001, type)",
                            "IMessage(two).SetProps({0037001F \"Changed\"}, problems)",
                            "IMessage(two).SaveChanges(00000004)",
                            "IMessage(two).GetProps([0FFF0102 30080040], 80000000)"));
    EXPECT_THAT(item->calls,
                ElementsAre("get EntityID", "get Subject", "put LastModificationTime [45301]"));
}

TEST_F(ReentrancyTest, NothingElseStartsWhileTheIdOfAnItemIsRead)
{
    const auto act = Once([&] { TryEverything(); });
    item->onCall = [&](const std::string&) { act(); };
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_EQ(4u, store.Calls().size());
}

TEST_F(ReentrancyTest, NothingElseStartsWhileAnItemIsAdded)
{
    for (const char* moment : {"get Subject", "put EntityID", "put LastModificationTime"})
    {
        SCOPED_TRACE(moment);
        const std::size_t before = Entries().size();
        bool hasActed = false;
        item->onCall = [&](const std::string& call) {
            if (call != moment)
                return;
            hasActed = true;
            std::wstring folderID;
            EXPECT_EQ(L"", table->AddItem(item.Get(), folderID));
            EXPECT_EQ(0, table->UpdateItem(item.Get()));
            EXPECT_EQ(0, table->DeleteItem(IdOf("one")));
            table->GetItemIDs();
            table->GetItemByID(IdOf("one"));
        };
        std::wstring folderID;
        EXPECT_NE(L"", table->AddItem(item.Get(), folderID));
        EXPECT_TRUE(hasActed);
        EXPECT_EQ(before + 1, Entries().size());
        EXPECT_TRUE(store.Exists("one"));
    }
    EXPECT_EQ(3u, CallsTo("IMAPIFolder(calendar).CreateMessage"));
}

TEST_F(ReentrancyTest, NothingElseStartsWhileAnItemIsFetched)
{
    table->onFill = Once([&] { TryEverything(); });
    EXPECT_EQ(L"Two", Next());
    EXPECT_EQ(2u, store.Calls().size());
    EXPECT_EQ(L"Three", Next());
}

TEST_F(ReentrancyTest, NothingElseStartsWhileTheTableIsLoaded)
{
    table = std::make_unique<TestTable>(folder.Get(), session->Helper());
    const auto act = Once([&] {
        table->GetItemIDs();
        EXPECT_EQ(0, table->DeleteItem(IdOf("one")));
        EXPECT_EQ(0, table->UpdateItem(item.Get()));
    });
    table->resolve = [&](const std::wstring& id, DATE&) {
        act();
        return id;
    };
    table->GetItemIDs();
    EXPECT_EQ(3u, Entries().size());
    EXPECT_TRUE(store.Exists("one"));
}

// The item stays alive while it is filled, and the walk goes on where the reset put it.
TEST_F(ReentrancyTest, AResetWhileAnItemIsFetchedDropsIt)
{
    table->onFill = Once([&] { table->ResetItem(); });
    EXPECT_EQ(L"none", Next());
    // The step had still to advance, from the first entry to the second.
    EXPECT_THAT(Rest(), ElementsAre(L"Two", L"Three"));
}

TEST_F(ReentrancyTest, AWalkToTheEndWhileAnItemIsFetchedStaysThere)
{
    table->onFill = Once([&] {
        for (int step = 0; step < 5; ++step)
            table->GetNextItem();
    });
    EXPECT_EQ(L"none", Next());
    EXPECT_EQ(L"none", Next());
}

// Also where the table's reference to it was the last one.
TEST_F(ReentrancyTest, AnItemLivesWhileItIsFilled)
{
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    bool isAlive = true;
    item->alive = &isAlive;
    item.Reset();
    bool wasAlive = false;
    table->m_pCurrentEntity = folder.Get(); // any object will do
    table->onFill = [&] {
        table->ResetItem();
        wasAlive = isAlive;
    };
    BOOL goesOn = 1;
    SPropValue value = {};
    EXPECT_EQ(0, table->OnPropertyRow(1, &value, 10, &goesOn));
    EXPECT_TRUE(wasAlive);
    EXPECT_FALSE(isAlive);
}

// A client's own walk inside a getter meets the end, and not the same item for ever.
TEST_F(ReentrancyTest, AWalkInsideAnUpdateEnds)
{
    int steps = 0;
    item->onCall = [&](const std::string& call) {
        if (call != "get Subject")
            return;
        table->ResetItem();
        do
            table->GetNextItem();
        while (Current() && ++steps < 100);
    };
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_LT(steps, 100);
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_THAT(Rest(), ElementsAre(L"Changed", L"Three"));
}

TEST_F(ReentrancyTest, AResetWhileTheItemLearnsItsTimeHarmsNothing)
{
    item->onCall = [&](const std::string& call) {
        if (call.starts_with("put"))
            table->ResetItem();
    };
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"Changed", L"Three"));
    std::wstring folderID;
    EXPECT_NE(L"", table->AddItem(item.Get(), folderID));
    EXPECT_THAT(Rest(), ElementsAre(L"Changed"));
}

// The last reference to a client's item may be the table's.
TEST_F(ReentrancyTest, AWrittenItemLivesAsLongAsItIsCurrent)
{
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
    bool isAlive = true;
    item->alive = &isAlive;
    item.Reset();
    EXPECT_TRUE(isAlive);
    table->GetItemByID(IdOf("two"));
    EXPECT_FALSE(isAlive);
    EXPECT_EQ(L"Changed", CurrentSubject());
}

TEST_F(ReentrancyTest, AThrowingHookLeavesTheTableReady)
{
    table->onRead = [](PropertyArray&) { throw std::bad_alloc(); };
    std::wstring folderID;
    EXPECT_THROW(table->UpdateItem(item.Get()), std::bad_alloc);
    EXPECT_FALSE(table->m_pCurrentEntity);
    EXPECT_THROW(table->AddItem(item.Get(), folderID), std::bad_alloc);
    EXPECT_FALSE(table->m_pCurrentEntity);
    table->onRead = nullptr;
    table->onFill = [] { throw std::bad_alloc(); };
    EXPECT_THROW(table->GetNextItem(), std::bad_alloc);
    EXPECT_FALSE(table->m_pCurrentEntity);
    table->onFill = nullptr;
    EXPECT_EQ(1, table->UpdateItem(item.Get()));
}

// --- Behind the automation objects ---------------------------------------------------------------

namespace
{
// A back end over the recording store, with the table of a test as its calendar.
class TableProvider : public IProvider
{
  public:
    explicit TableProvider(RecordingStore& store)
        : m_folder(m_session.OpenFolder(store.EntryIdOf("calendar")))
    {
    }
    ~TableProvider() override
    {
        m_session.Helper()->Live().DetachAll();
        m_folder.Reset();
    }
    std::unique_ptr<UserIdentity> GetUserProperties() override { return nullptr; }
    std::unique_ptr<CAddressBookHandle> GetAddressBook() override { return nullptr; }
    std::unique_ptr<CCalendarHandle> GetCalendar() override
    {
        auto table = GetEnumerator(Calendar);
        table->GetItemIDs();
        table->ResetItem();
        return std::make_unique<CCalendarHandle>(std::move(table));
    }
    std::unique_ptr<IEnumerator> GetEnumerator(int) override
    {
        return std::make_unique<TestTable>(m_folder.Get(), m_session.Helper());
    }
    bool GetContactFolders(std::vector<OutlookFolderInfo>&) override { return false; }
    bool GetCalendarFolders(std::vector<OutlookFolderInfo>&) override { return false; }

  private:
    StoreSession m_session;
    ComPtr<IMAPIFolder> m_folder;
};

template <typename Interface> ComPtr<Interface> Create(REFCLSID classID)
{
    ComPtr<Interface> object;
    CoCreateInstance(classID,
                     nullptr,
                     CLSCTX_ALL,
                     __uuidof(Interface),
                     reinterpret_cast<void**>(object.GetAddressOf()));
    return object;
}

class ServedTableTest : public TableTest
{
  protected:
    ServedTableTest()
    {
        Close();
        backEnds.start = [this](std::unique_ptr<IProvider>& slot) {
            slot = std::make_unique<TableProvider>(store);
            return S_OK;
        };
        Start();
        calendar = Create<INCalendar>(CLSID_NCalendar);
        backEnds.manager.GetEnumerator(Calendar);
        enumerator = Create<INEnumerator>(CLSID_NEnumerator);
    }
    ~ServedTableTest() override
    {
        calendar.Reset();
        enumerator.Reset();
        backEnds.manager.StopService();
    }
    void Start() { ASSERT_EQ(S_OK, backEnds.manager.StartService(L"Microsoft Outlook")); }
    static void Stop()
    {
        Create<INPersonalInformationService>(CLSID_NPersonalInformationService)->StopService();
    }

    static std::wstring NextOf(INCalendar* walked)
    {
        ComPtr<INAppointment> appointment;
        if (FAILED(walked->GetNextAppointment(appointment.GetAddressOf())))
            return L"none";
        return SubjectOf(QueryItem<INEntityItem>(appointment.Get()).Get());
    }
    // A client's own item for the message "two".
    ComPtr<RecordingAppointment> OwnItem()
    {
        auto own = RecordingAppointment::Make();
        own->texts["EntityID"] = IdOf("two");
        own->texts["Subject"] = L"Changed";
        return own;
    }
    void ExpectDead()
    {
        const ComPtr<INEntityItem> item = NewAppointment(IdOf("one"), L"Changed");
        const auto appointment = QueryItem<INAppointment>(item.Get());
        VARIANT_BOOL done = 0x55;
        Bstr id;
        ComPtr<INAppointment> found;
        EXPECT_EQ(S_OK, calendar->Refresh());
        EXPECT_EQ(S_OK, calendar->Reset(&done));
        done = 0x55;
        EXPECT_EQ(E_FAIL, calendar->GetNextAppointment(found.GetAddressOf()));
        EXPECT_EQ(E_FAIL,
                  calendar->GetAppointmentByID(Bstr(IdOf("one")).Get(), found.GetAddressOf()));
        EXPECT_FALSE(found);
        EXPECT_EQ(E_FAIL, calendar->UpdateAppointment(appointment.Get(), &done));
        EXPECT_EQ(E_FAIL, calendar->AddAppointment(appointment.Get(), id.Put()));
        EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(Bstr(IdOf("one")).Get(), &done));
        EXPECT_EQ(0x55, done);

        ComPtr<INEntityItem> entity;
        EXPECT_EQ(S_OK, enumerator->Refresh());
        EXPECT_EQ(E_FAIL, enumerator->GetNextItem(entity.GetAddressOf()));
        EXPECT_EQ(E_FAIL, enumerator->GetItemByID(Bstr(IdOf("one")).Get(), entity.GetAddressOf()));
        EXPECT_FALSE(entity);
        EXPECT_EQ(E_FAIL, enumerator->UpdateItem(item.Get(), &done));
        EXPECT_EQ(E_FAIL, enumerator->AddItem(item.Get(), id.Put()));
        EXPECT_EQ(E_FAIL, enumerator->DeleteItem(Bstr(IdOf("one")).Get(), &done));
        EXPECT_EQ(0x55, done);
        EXPECT_EQ(S_OK, enumerator->ResetItem(&done));
        EXPECT_FALSE(id);
    }

    FakeBackEnds backEnds;
    ComPtr<INCalendar> calendar;
    ComPtr<INEnumerator> enumerator;
};
} // namespace

TEST_F(ServedTableTest, WalksThroughTheAutomationObjects)
{
    ASSERT_TRUE(calendar);
    ASSERT_TRUE(enumerator);
    EXPECT_EQ(L"One", NextOf(calendar.Get()));
    EXPECT_EQ(L"Two", NextOf(calendar.Get()));
    EXPECT_EQ(L"Three", NextOf(calendar.Get()));
    EXPECT_EQ(L"none", NextOf(calendar.Get()));
    ComPtr<INEntityItem> first;
    EXPECT_EQ(S_OK, enumerator->GetNextItem(first.GetAddressOf()));
    EXPECT_EQ(L"One", SubjectOf(first.Get()));
}

TEST_F(ServedTableTest, WhatIsHeldOverAStopFailsAndReachesNoStore)
{
    ComPtr<INAppointment> item;
    ASSERT_EQ(S_OK, calendar->GetNextAppointment(item.GetAddressOf()));
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, enumerator->GetNextItem(entity.GetAddressOf()));
    Stop();
    EXPECT_EQ(0u, store.InitialisedTimes());
    EXPECT_TRUE(store.IsClean()) << store.Complaints();
    store.ClearRecord();

    ExpectDead();
    EXPECT_EQ(L"One", SubjectOf(QueryItem<INEntityItem>(item.Get()).Get()));
    EXPECT_EQ(L"One", SubjectOf(entity.Get()));
    EXPECT_EQ(S_OK, item->put_Subject(Bstr(L"mine").Get()));

    // A new service is none of theirs.
    Start();
    ExpectDead();
    EXPECT_EQ(L"One", NextOf(Create<INCalendar>(CLSID_NCalendar).Get()));
    calendar.Reset();
    enumerator.Reset();
    Stop();
    EXPECT_THAT(store.Violations(), IsEmpty());
    EXPECT_TRUE(store.IsClean()) << store.Complaints();
}

TEST_F(ServedTableTest, AStopInsideAnUpdateTakesEffectAfterIt)
{
    const auto own = OwnItem();
    own->onCall = [&](const std::string& call) {
        if (call != "get Subject")
            return;
        Stop();
        EXPECT_EQ(1u, store.InitialisedTimes());
        EXPECT_FALSE(Create<INCalendar>(CLSID_NCalendar));
    };
    VARIANT_BOOL done = 0;
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(own.Get(), &done));
    EXPECT_EQ(VARIANT_TRUE, done);
    EXPECT_EQ(0u, store.InitialisedTimes());
    EXPECT_THAT(store.PropsOf("two"), testing::Contains("0037001F \"Changed\""));
    EXPECT_TRUE(store.IsClean()) << store.Complaints();
    ExpectDead();
}

TEST_F(ServedTableTest, AStopInsideAnAddTakesEffectAfterIt)
{
    const auto own = OwnItem();
    own->onCall = [&](const std::string& call) {
        if (call == "put EntityID")
            Stop();
    };
    Bstr id;
    EXPECT_EQ(S_OK, enumerator->AddItem(own.Get(), id.Put()));
    EXPECT_EQ(IdOf("new 1"), TextOf(id.Get()));
    EXPECT_TRUE(store.IsClean()) << store.Complaints();
    ExpectDead();
}

TEST_F(ServedTableTest, ReloadAndDeleteInsideAnUpdateChangeNothing)
{
    const auto own = OwnItem();
    own->onCall = [&](const std::string& call) {
        if (call != "get Subject")
            return;
        EXPECT_EQ(S_OK, calendar->Refresh());
        VARIANT_BOOL deleted = 0;
        EXPECT_EQ(E_FAIL, calendar->DeleteAppointment(Bstr(IdOf("two")).Get(), &deleted));
    };
    VARIANT_BOOL done = 0;
    EXPECT_EQ(S_OK, calendar->UpdateAppointment(own.Get(), &done));
    EXPECT_TRUE(store.Exists("two"));
    EXPECT_EQ(S_OK, calendar->Reset(&done));
    std::vector<std::wstring> walked;
    for (std::wstring subject = NextOf(calendar.Get()); subject != L"none" && walked.size() < 9;
         subject = NextOf(calendar.Get()))
        walked.push_back(subject);
    EXPECT_THAT(walked, ElementsAre(L"One", L"Changed", L"Three"));
}

// The client's last reference to the collection goes while the collection works.
TEST_F(ServedTableTest, ACollectionReleasedInsideItsUpdateLivesUntilTheEndOfIt)
{
    const auto own = OwnItem();
    own->onCall = [&](const std::string& call) {
        if (call == "get Subject")
            calendar.Reset();
    };
    INCalendar* const working = calendar.Get();
    VARIANT_BOOL done = 0;
    EXPECT_EQ(S_OK, working->UpdateAppointment(own.Get(), &done));
    EXPECT_FALSE(calendar);
    EXPECT_THAT(store.PropsOf("two"), testing::Contains("0037001F \"Changed\""));
}
