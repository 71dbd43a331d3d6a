// How a table is loaded and walked.
#include "icalendar/RecordingAppointment.h"
#include "outlook/ExportNames.h"
#include "outlook/FakeStore.h"
#include "outlook/store/TableFixture.h"
#include "service/CalendarHandle.h"
#include "support/DebugOutputCapture.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

namespace
{
using ContentTableTest = TableTest;

constexpr unsigned kAllCalls = kStoreUsualCalls | kStoreMemory | kStoreReleases;

// What opening the message of that name for one step of a walk calls.
Lines StepCalls(const std::string& name)
{
    return {"IMAPIFolder(calendar).OpenEntry(" + name + ", null, 00000002, type)",
            "IMessage(" + name + ").GetProps([30080040 0037001F], 80000000)",
            "MAPIFreeBuffer(props of " + name + ")",
            "release IMessage(" + name + ")"};
}

ULONG ReferencesOf(IUnknown* object)
{
    object->AddRef();
    return object->Release();
}

// A class whose objects fail to come or come as null, until it is given one.
class RefusingClass final : public IClassFactory
{
  public:
    HRESULT result = S_OK;
    ComPtr<IUnknown> given;

    STDMETHODIMP QueryInterface(REFIID iid, void** object) override
    {
        *object = nullptr;
        if (!IsEqualGUID(iid, IID_IUnknown) && !IsEqualGUID(iid, IID_IClassFactory))
            return E_NOINTERFACE;
        *object = static_cast<IClassFactory*>(this);
        return S_OK;
    }
    STDMETHODIMP_(ULONG) AddRef() override { return 2; } // lives on the test's stack
    STDMETHODIMP_(ULONG) Release() override { return 1; }
    STDMETHODIMP CreateInstance(IUnknown*, REFIID iid, void** object) override
    {
        *object = nullptr;
        if (given)
            given->QueryInterface(iid, object);
        return result;
    }
    STDMETHODIMP LockServer(BOOL) override { return S_OK; }
};
} // namespace

// --- A table by itself ---------------------------------------------------------------------------

TEST_F(ContentTableTest, ANewTableHoldsItsFolderAndCallsNothing)
{
    const ULONG before = ReferencesOf(folder.Get());
    {
        const TestTable other(folder.Get(), session->Helper());
        EXPECT_EQ(before + 1, ReferencesOf(folder.Get()));
    }
    EXPECT_EQ(before, ReferencesOf(folder.Get()));
    EXPECT_THAT(store.Calls(~0u), IsEmpty());
}

TEST_F(ContentTableTest, AClassThatRefusesGivesNoItem)
{
    constexpr CLSID kClass = {
        0x5B0D0B1C, 0x3E0E, 0x4B2B, {0x9C, 0x11, 0x2D, 0x55, 0x0A, 0x6E, 0x77, 0x02}};
    EXPECT_FALSE(TestTable::NewItem(kClass)); // not registered
    RefusingClass refusing;
    DWORD cookie = 0;
    ASSERT_EQ(S_OK,
              CoRegisterClassObject(
                  kClass, &refusing, CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie));
    EXPECT_FALSE(TestTable::NewItem(kClass)); // a success without an object
    refusing.result = E_FAIL;
    EXPECT_FALSE(TestTable::NewItem(kClass));
    refusing.result = S_OK;
    const auto item = RecordingAppointment::Make();
    refusing.given = static_cast<INEntityItem*>(item.Get());
    EXPECT_EQ(item.Get(), TestTable::NewItem(kClass).Get());
    EXPECT_EQ(S_OK, CoRevokeClassObject(cookie));
    refusing.given.Reset();
    EXPECT_EQ(1u, item->References());
}

// --- Loading -------------------------------------------------------------------------------------

TEST_F(ContentTableTest, LoadsAllRowsWithOneQuery)
{
    table->GetItemIDs();
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).GetContentsTable(80000000)",
                     "IMAPITable(calendar contents table)"
                     ".SetColumns([0FFF0102 001A001F 30080040], 00000000)",
                     "IMAPITable(calendar contents table).GetRowCount(00000000)",
                     "IMAPITable(calendar contents table).QueryRows(3, 00000000)",
                     "MAPIFreeBuffer(inside rows of calendar contents table)",
                     "MAPIFreeBuffer(inside rows of calendar contents table)",
                     "MAPIFreeBuffer(inside rows of calendar contents table)",
                     "FreeProws@4(rows of calendar contents table)",
                     "release IMAPITable(calendar contents table)"}),
              store.Calls(kAllCalls));
}

// The rows leak over a library that frees no row sets; all else is the same.
TEST_F(ContentTableTest, LoadsOverALibraryThatFreesNoRows)
{
    Close();
    {
        const HiddenExport freeing(RecordingStore::Path(), "FreeProws@4");
        ASSERT_TRUE(freeing.IsHidden());
        Open();
        table->GetItemIDs();
        EXPECT_THAT(RowIDs(), ElementsAre(IdOf("one"), IdOf("two"), IdOf("three")));
        EXPECT_THAT(Walk(), ElementsAre(L"One", L"Two", L"Three"));
        Close();
    }
    EXPECT_THAT(store.Leaks(), testing::Contains("rows of calendar contents table"));
    EXPECT_THAT(store.Violations(), IsEmpty());
    store.Reset(); // what leaked is known
}

TEST_F(ContentTableTest, ListsIdAndTimeOfEachRowInOrder)
{
    EXPECT_THAT(Entries(), IsEmpty());
    table->GetItemIDs();
    const std::list<ItemEntry> entries = Entries();
    ASSERT_EQ(3u, entries.size());
    DATE day = kFirstDay;
    for (const ItemEntry& entry : entries)
    {
        EXPECT_EQ(L"", entry.folderKey);
        EXPECT_EQ(entry.rowEntryID, entry.clientEntryID);
        EXPECT_EQ(day++, entry.lastModified);
    }
    EXPECT_THAT(RowIDs(), ElementsAre(IdOf("one"), IdOf("two"), IdOf("three")));
}

TEST_F(ContentTableTest, TheListReplacesWhatTheCallerHad)
{
    table->GetItemIDs();
    std::list<ItemEntry> entries(7, ItemEntry{L"f", L"r", L"c", 1.0});
    EXPECT_EQ(1, table->GetItemList(entries));
    EXPECT_EQ(3u, entries.size());
}

TEST_F(ContentTableTest, PassesOverRowsThatAreNotWanted)
{
    store.AddMessage(
        "longer", "calendar", StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Appointment.Special"));
    store.AddMessage("case", "calendar", StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.APPOINTMENT"));
    store.AddMessage("classless", "calendar");
    AddAppointment("last", L"Last", kFirstDay);
    table->GetItemIDs();
    EXPECT_THAT(RowIDs(), ElementsAre(IdOf("one"), IdOf("two"), IdOf("three"), IdOf("last")));
}

TEST_F(ContentTableTest, ARowWithoutAnEntryIdIsNeverListed)
{
    table->wantsAll = true;
    BOOL goesOn = 1;
    SPropValue row[] = {MissingValue(PR_ENTRYID),
                        TextValue(PR_MESSAGE_CLASS_W, L"IPM.Appointment"),
                        MissingValue(PR_LAST_MODIFICATION_TIME)};
    EXPECT_EQ(0, table->OnPropertyRow(3, row, 0, &goesOn));
    EXPECT_EQ(0, table->OnPropertyRow(0, nullptr, 0, &goesOn));
    row[0] = NumberValue(CHANGE_PROP_TYPE(PR_ENTRYID, PT_LONG), 1);
    EXPECT_EQ(0, table->OnPropertyRow(3, row, 0, &goesOn));
    EXPECT_EQ(1, goesOn);
    EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(ContentTableTest, ARowWithoutATimeHasTheTimeZero)
{
    BOOL goesOn = 1;
    BYTE id[] = {0x0A, 0xBC};
    SPropValue row[] = {{},
                        TextValue(PR_MESSAGE_CLASS_W, L"IPM.Appointment"),
                        MissingValue(PR_LAST_MODIFICATION_TIME)};
    row[0].ulPropTag = PR_ENTRYID;
    row[0].Value.bin = {2, id};
    EXPECT_EQ(1, table->OnPropertyRow(3, row, 0, &goesOn));
    // Told as two values, the third is absent whatever lies there.
    row[2].ulPropTag = PR_LAST_MODIFICATION_TIME;
    row[2].Value.ft = {0, 0x01DA0000};
    EXPECT_EQ(1, table->OnPropertyRow(2, row, 0, &goesOn));
    ASSERT_EQ(2u, Entries().size());
    EXPECT_EQ(L"0ABC", Entries().front().rowEntryID);
    EXPECT_EQ(0.0, Entries().front().lastModified);
    EXPECT_EQ(0.0, Entries().back().lastModified);
}

TEST_F(ContentTableTest, TheResolvedIdAndTimeWinOverTheRow)
{
    table->resolve = [&](const std::wstring& id, DATE& time) {
        EXPECT_EQ(0.0, time);
        time = id == IdOf("two") ? 12.5 : 0.0;
        return id == IdOf("three") ? std::wstring() : L"client " + id;
    };
    table->GetItemIDs();
    const std::list<ItemEntry> list = Entries();
    const std::vector<ItemEntry> entries(list.begin(), list.end());
    ASSERT_EQ(3u, entries.size());
    EXPECT_EQ(IdOf("one"), entries[0].rowEntryID);
    EXPECT_EQ(L"client " + IdOf("one"), entries[0].clientEntryID);
    EXPECT_EQ(kFirstDay, entries[0].lastModified); // nothing resolved: the row's own
    EXPECT_EQ(12.5, entries[1].lastModified);
    EXPECT_EQ(L"", entries[2].clientEntryID);
    EXPECT_EQ(kFirstDay + 2, entries[2].lastModified);
}

// Kept as it is: a second load adds the same rows again.
TEST_F(ContentTableTest, ASecondLoadShowsEveryItemTwice)
{
    Load();
    table->GetItemIDs();
    EXPECT_THAT(Walk(), ElementsAre(L"One", L"Two", L"Three", L"One", L"Two", L"Three"));
}

TEST_F(ContentTableTest, ALoadDoesNotTouchTheCursor)
{
    Load();
    EXPECT_EQ(L"One", Next());
    table->GetItemIDs();
    EXPECT_EQ(L"One", CurrentSubject());
    EXPECT_THAT(Rest(), ElementsAre(L"Two", L"Three", L"One", L"Two", L"Three"));
    table->GetItemIDs();
    EXPECT_EQ(L"none", Next()); // the end stays the end
}

TEST_F(ContentTableTest, AFolderWithoutRowsIsAnEmptyWalk)
{
    for (const char* name : {"one", "two", "three"})
        store.Remove(name);
    table->GetItemIDs();
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).GetContentsTable(80000000)",
                     "IMAPITable(calendar contents table)"
                     ".SetColumns([0FFF0102 001A001F 30080040], 00000000)",
                     "IMAPITable(calendar contents table).GetRowCount(00000000)"}),
              store.Calls());
    EXPECT_THAT(Walk(), IsEmpty());
    EXPECT_THAT(Entries(), IsEmpty());
}

TEST_F(ContentTableTest, RowsOfAnotherFolderCarryItsKey)
{
    table->LoadFolder(*folder.Get(), L"KEY");
    EXPECT_EQ(L"", table->m_folderKey);
    for (const ItemEntry& entry : Entries())
        EXPECT_EQ(L"KEY", entry.folderKey);
    table->ResetItem();
    table->GetNextItem();
    EXPECT_EQ(L"KEY", FolderIDOf(Current().Get()));
}

// The key is found under the client's ID, although items are opened by their row's.
TEST_F(ContentTableTest, TheFolderOfAnItemIsLookedUpByTheClientsId)
{
    table->resolve = [&](const std::wstring& id, DATE&) {
        return id == IdOf("one") ? IdOf("two") : L"other " + id;
    };
    table->LoadFolder(*folder.Get(), L"KEY");
    table->LoadFolder(*folder.Get(), L"LATER");
    table->GetItemByID(IdOf("one"));
    EXPECT_EQ(L"", FolderIDOf(Current().Get()));
    table->GetItemByID(IdOf("two"));
    EXPECT_EQ(L"KEY", FolderIDOf(Current().Get())); // the first key stays
}

// --- Walking -------------------------------------------------------------------------------------

TEST_F(ContentTableTest, EachStepOpensReadsAndReleasesOneMessage)
{
    Load();
    table->GetNextItem();
    EXPECT_EQ(StepCalls("one"), store.Calls(kAllCalls));
    store.ClearRecord();
    table->GetNextItem();
    EXPECT_EQ(StepCalls("two"), store.Calls(kAllCalls));
    EXPECT_FALSE(table->m_pCurrentEntity);
    EXPECT_THAT(table->hooks, ElementsAre("fill 2", "fill 2"));
}

TEST_F(ContentTableTest, AnItemCarriesItsIdItsFolderAndItsValues)
{
    Load();
    table->GetNextItem();
    const ComPtr<INEntityItem> item = Current();
    ASSERT_TRUE(item);
    EXPECT_EQ(IdOf("one"), EntityIDOf(item.Get()));
    EXPECT_EQ(L"", FolderIDOf(item.Get()));
    EXPECT_EQ(L"One", SubjectOf(item.Get()));
    EXPECT_EQ(kFirstDay, LastModifiedOf(item.Get()));
}

TEST_F(ContentTableTest, TellsEachStepInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Load();
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("==========pTable->QueryRows()! Rows = 3\r\n"));
    table->GetNextItem();
    EXPECT_THAT(
        capture.TakeLogMessages(),
        ElementsAre("===============CContentTable::GetItemByID hr = 0000000000000000! \r\n",
                    "===============CContentTable::GetPropertyNames cPropertyNames = 2! \r\n",
                    "==========EnumerateProperties pMAPIProperty->GetProps, "
                    "hr = (0X0000000000000000)! \r\n"));
    store.Remove("two");
    table->GetNextItem();
    EXPECT_THAT(
        capture.TakeLogMessages(),
        ElementsAre("===============CContentTable::GetItemByID hr = 000000008004010F! \r\n"));
    table->makesItems = false;
    table->GetNextItem();
    EXPECT_THAT(
        capture.TakeLogMessages(),
        ElementsAre("===============CContentTable::GetItemByID hr = 0000000000000000! \r\n"));
    table->GetNextItem(); // the end
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
}

TEST_F(ContentTableTest, TheEndDropsTheCurrentItemAndLeavesTheCallersPointerAlone)
{
    Load();
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"Two", L"Three"));
    INEntityItem* const kept = reinterpret_cast<INEntityItem*>(std::uintptr_t{0x10});
    INEntityItem* item = kept;
    table->GetCurrentItem(&item);
    EXPECT_EQ(kept, item);
    table->GetCurrentItem(nullptr);
    store.ClearRecord();
    EXPECT_EQ(L"none", Next());
    EXPECT_THAT(store.Calls(), IsEmpty());
}

TEST_F(ContentTableTest, EachCallerOfTheCurrentItemGetsAReferenceOfItsOwn)
{
    Load();
    table->GetNextItem();
    const ComPtr<INEntityItem> one = Current();
    const ComPtr<INEntityItem> two = Current();
    EXPECT_EQ(one.Get(), two.Get());
    table->ResetItem();
    EXPECT_EQ(L"none", CurrentSubject());
    EXPECT_EQ(L"One", SubjectOf(two.Get()));
}

TEST_F(ContentTableTest, WithoutAResetTheWalkIsAtItsEnd)
{
    table->GetItemIDs();
    EXPECT_EQ(L"none", Next());
    table->GetItemByID(IdOf("two"));
    EXPECT_EQ(L"Two", CurrentSubject());
    EXPECT_EQ(L"none", Next());
    EXPECT_THAT(Walk(), ElementsAre(L"One", L"Two", L"Three"));
}

// A stale entry does not end a walk: the client gets the item before a second time.
TEST_F(ContentTableTest, AnItemThatCannotBeOpenedShowsTheOneBeforeAgain)
{
    Load();
    store.Remove("two");
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"One", L"Three"));
}

TEST_F(ContentTableTest, AFirstItemThatCannotBeOpenedShowsNothing)
{
    Load();
    store.Remove("one");
    EXPECT_EQ(L"none", Next());
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableTest, AnItemWhoseValuesCannotBeReadIsEmptyButForItsIds)
{
    Load();
    store.FailNext("IMessage(one).GetProps", StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(L"null", Next());
    EXPECT_THAT(
        capture.TakeLogMessages(),
        ElementsAre("===============CContentTable::GetItemByID hr = 0000000000000000! \r\n",
                    "===============CContentTable::GetPropertyNames cPropertyNames = 2! \r\n",
                    "==========EnumerateProperties pMAPIProperty->GetProps, "
                    "hr = (0X0000000080004005)! \r\n",
                    "==========Failed: All Properties: \r\n",
                    "=========Index:0, Name:30080040",
                    "=========Index:1, Name:37001F"));
    EXPECT_EQ(IdOf("one"), EntityIDOf(Current().Get()));
    EXPECT_EQ(L"", FolderIDOf(Current().Get()));
    EXPECT_THAT(Rest(), ElementsAre(L"Two", L"Three"));
}

TEST_F(ContentTableTest, ATableWithoutTagsReadsNothing)
{
    Load();
    table->tags.clear();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(L"null", Next());
    EXPECT_THAT(
        capture.TakeLogMessages(),
        ElementsAre("===============CContentTable::GetItemByID hr = 0000000000000000! \r\n",
                    "===============CContentTable::GetPropertyNames cPropertyNames = 0! \r\n"));
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(one, null, 00000002, type)"));
    EXPECT_EQ(L"null", Next()); // "two", and not "one" again
    EXPECT_EQ(IdOf("two"), EntityIDOf(Current().Get()));
}

TEST_F(ContentTableTest, WhereNoItemCanBeMadeTheCurrentOneIsGone)
{
    Load();
    EXPECT_EQ(L"One", Next());
    table->makesItems = false;
    store.ClearRecord();
    EXPECT_EQ(L"none", Next());
    EXPECT_THAT(store.Calls(kAllCalls),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(two, null, 00000002, type)",
                            "release IMessage(two)"));
    table->makesItems = true;
    EXPECT_EQ(L"Three", Next()); // the cursor went on
}

// The folder first, then the ID, then the values.
TEST_F(ContentTableTest, ANewItemIsFilledInOrder)
{
    table->LoadFolder(*folder.Get(), L"KEY");
    table->ResetItem();
    const auto own = RecordingAppointment::Make();
    table->makeItem = [&] { return ComPtr<INEntityItem>(own.Get()); };
    table->GetNextItem();
    const std::wstring id = IdOf("one");
    EXPECT_THAT(own->calls,
                ElementsAre("put FolderID [KEY]",
                            "put EntityID [" + std::string(id.begin(), id.end()) + "]",
                            "put LastModificationTime [45292]",
                            "put Subject [One]"));
}

// --- One item by its ID --------------------------------------------------------------------------

TEST_F(ContentTableTest, FetchesAnItemByItsId)
{
    Load();
    table->GetItemByID(IdOf("three"));
    EXPECT_EQ(StepCalls("three"), store.Calls(kAllCalls));
    EXPECT_EQ(L"Three", CurrentSubject());
    EXPECT_EQ(IdOf("three"), EntityIDOf(Current().Get()));
}

TEST_F(ContentTableTest, AFetchMovesTheCursorToTheFirstEntryOfItsId)
{
    Load();
    table->GetItemIDs(); // every entry twice
    EXPECT_THAT((std::vector{Next(), Next(), Next(), Next()}),
                ElementsAre(L"One", L"Two", L"Three", L"One"));
    table->GetItemByID(IdOf("one"));
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"Two", L"Three", L"One", L"Two", L"Three"));
}

TEST_F(ContentTableTest, AFetchOfTheEntryUnderTheCursorLeavesItThere)
{
    Load();
    table->GetItemIDs();
    EXPECT_THAT((std::vector{Next(), Next(), Next()}), ElementsAre(L"One", L"Two", L"Three"));
    table->GetItemByID(IdOf("one")); // the second one of that ID
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"Two", L"Three"));
}

TEST_F(ContentTableTest, AFetchAtTheEndLeavesTheCursorThere)
{
    Load();
    Rest();
    table->GetItemByID(IdOf("one"));
    EXPECT_EQ(L"One", CurrentSubject());
    EXPECT_EQ(L"none", Next());
}

// The store finds it; the list, which compares texts, does not.
TEST_F(ContentTableTest, AFetchByAnIdThatIsNotInTheListLeavesTheCursor)
{
    store.AddMessage("mail", "inbox", StoreProps().Text(PR_SUBJECT_W, L"Mail"));
    store.SetEntryId("three", {0xAB, 0xCD});
    Load();
    EXPECT_EQ(L"One", Next());
    store.ClearRecord();
    table->GetItemByID(IdOf("mail")); // another folder's, through the base folder all the same
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(mail, null, 00000002, type)",
                            "IMessage(mail).GetProps([30080040 0037001F], 80000000)"));
    EXPECT_EQ(L"Mail", CurrentSubject());
    table->GetItemByID(L"abcd");
    EXPECT_EQ(L"Three", CurrentSubject());
    EXPECT_EQ(L"abcd", EntityIDOf(Current().Get()));
    EXPECT_THAT(Rest(), ElementsAre(L"Two", L"Three"));
}

TEST_F(ContentTableTest, AFetchOfAnUnknownIdKeepsTheCurrentItem)
{
    Load();
    CCalendarHandle handle(std::move(table));
    const auto fetched = [&](const std::wstring& id) {
        handle.GetItemByID(id);
        ComPtr<INAppointment> item;
        handle.GetCurrentAppointment(item.GetAddressOf());
        return item ? SubjectOf(QueryItem<INEntityItem>(item.Get()).Get()) : L"none";
    };
    EXPECT_EQ(L"none", fetched(L"0102")); // a failure for the client only where there was none
    EXPECT_EQ(L"Two", fetched(IdOf("two")));
    EXPECT_EQ(L"Two", fetched(L"0102"));
    EXPECT_EQ(L"Two", fetched(L"no hexadecimal text"));
    EXPECT_THAT(store.Calls().back(), testing::StartsWith("IMAPIFolder(calendar).OpenEntry(<"));
}

// An empty text is an ID of no bytes, which is the store's root: an object like any other.
TEST_F(ContentTableTest, AFetchOfAnEmptyIdAsksTheStoreToo)
{
    Load();
    table->GetItemByID(L"");
    EXPECT_EQ("IMAPIFolder(calendar).OpenEntry(none, null, 00000002, type)", store.Calls().at(0));
    EXPECT_EQ(L"", EntityIDOf(Current().Get()));
}

TEST_F(ContentTableTest, OtherCallTypesAreNobodys)
{
    BOOL goesOn = 1;
    SPropValue value = TextValue(PR_SUBJECT_W, L"x");
    for (const int callType : {-1, 1, 11, 21, 31, 200, 210})
        EXPECT_EQ(0, table->OnPropertyRow(1, &value, callType, &goesOn));
    EXPECT_EQ(0, table->OnPropertyRow(1, &value, 10, &goesOn)); // without an item to fill
    EXPECT_EQ(1, goesOn);
    EXPECT_THAT(table->hooks, IsEmpty());
}

// --- A dead table --------------------------------------------------------------------------------

TEST_F(ContentTableTest, WithoutAHelperEveryOperationFails)
{
    TestTable dead(folder.Get(), nullptr);
    dead.wantsAll = true;
    dead.GetItemIDs();
    dead.ResetItem();
    dead.GetNextItem();
    dead.GetItemByID(IdOf("one"));
    EXPECT_FALSE(CurrentItem(dead));
    const ComPtr<INEntityItem> item = NewAppointment(IdOf("one"), L"Changed");
    std::wstring folderID = L"as it was";
    EXPECT_EQ(0, dead.UpdateItem(item.Get()));
    EXPECT_EQ(L"", dead.AddItem(item.Get(), folderID));
    EXPECT_EQ(L"as it was", folderID);
    EXPECT_EQ(0, dead.DeleteItem(IdOf("one")));
    EXPECT_EQ(0, dead.DeleteItem(L""));
    BOOL goesOn = 1;
    BYTE id[] = {1};
    SPropValue value = {};
    value.ulPropTag = PR_ENTRYID;
    value.Value.bin = {1, id};
    for (const int callType : {0, 10, 20, 30})
        EXPECT_EQ(0, dead.OnPropertyRow(1, &value, callType, &goesOn));
    std::list<ItemEntry> entries(1);
    EXPECT_EQ(1, dead.GetItemList(entries));
    EXPECT_THAT(entries, IsEmpty());
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_EQ(L"", dead.ToInternalID(L""));
    EXPECT_EQ(L"x", dead.ToInternalID(L"x"));
    EXPECT_EQ(L"x", dead.ToClientID(L"x"));
}

TEST_F(ContentTableTest, WithoutAContainerEveryOperationFails)
{
    TestTable dead(nullptr, session->Helper());
    dead.GetItemIDs();
    dead.GetItemByID(IdOf("one"));
    EXPECT_FALSE(CurrentItem(dead));
    const ComPtr<INEntityItem> item = NewAppointment(IdOf("one"), L"Changed");
    std::wstring folderID;
    EXPECT_EQ(0, dead.UpdateItem(item.Get()));
    EXPECT_EQ(L"", dead.AddItem(item.Get(), folderID));
    EXPECT_EQ(0, dead.DeleteItem(IdOf("one")));
    EXPECT_THAT(store.Calls(), IsEmpty());
}
