// How a table updates, adds and deletes.
#include "icalendar/RecordingAppointment.h"
#include "outlook/FakeStore.h"
#include "outlook/store/TableFixture.h"
#include "service/AddressBookHandle.h"
#include "support/DebugOutputCapture.h"

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;
using testing::IsEmpty;
using Lines = std::vector<std::string>;

namespace
{
constexpr unsigned kAllCalls = kStoreUsualCalls | kStoreMemory | kStoreReleases;
constexpr DATE kSaveDay = 45301.0; // 10 January 2024, as the fixture sets the store's clock

class ContentTableWriteTest : public TableTest
{
  protected:
    ContentTableWriteTest() { Load(); }

    BOOL Update(const std::wstring& id, const std::wstring& subject)
    {
        item = NewAppointment(id, subject);
        return table->UpdateItem(item.Get());
    }
    std::wstring Add(const std::wstring& subject)
    {
        item = NewAppointment(L"", subject);
        return table->AddItem(item.Get(), folderID);
    }
    // As stored; "none" where it has none.
    std::string StoredSubject(const char* name)
    {
        for (const std::string& line : store.PropsOf(name))
            if (line.starts_with("0037001F "))
                return line.substr(9);
        return "none";
    }
    std::size_t Stored() const { return store.ChildrenOf("calendar").size(); }
    BOOL TellWritten(int callType, bool hasID, bool hasTime, ULONG count = 2)
    {
        BOOL goesOn = 1;
        std::vector<BYTE> id = store.EntryIdOf("two");
        SPropValue values[] = {MissingValue(PR_ENTRYID), MissingValue(PR_LAST_MODIFICATION_TIME)};
        if (hasID)
        {
            values[0].ulPropTag = PR_ENTRYID;
            values[0].Value.bin = {static_cast<ULONG>(id.size()), id.data()};
        }
        if (hasTime)
        {
            const std::uint64_t time = FileTimeOf(kSaveDay);
            values[1].ulPropTag = PR_LAST_MODIFICATION_TIME;
            values[1].Value.ft = {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)};
        }
        return table->OnPropertyRow(count, values, callType, &goesOn);
    }

    ComPtr<INEntityItem> item;
    std::wstring folderID = L"as it was";
};

using ContentTableUpdateTest = ContentTableWriteTest;
using ContentTableAddTest = ContentTableWriteTest;
using ContentTableDeleteTest = ContentTableWriteTest;
} // namespace

// --- Update --------------------------------------------------------------------------------------

TEST_F(ContentTableUpdateTest, OpensWritesSavesAndReadsBack)
{
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).OpenEntry(two, null, 00000001, type)",
                     "IMessage(two).SetProps({0037001F \"Changed\"}, problems)",
                     "IMessage(two).SaveChanges(00000004)",
                     "IMessage(two).GetProps([0FFF0102 30080040], 80000000)",
                     "MAPIFreeBuffer(props of two)",
                     "release IMessage(two)"}),
              store.Calls(kAllCalls));
    EXPECT_THAT(table->hooks, ElementsAre("prepare", "read"));
    EXPECT_EQ("\"Changed\"", StoredSubject("two"));
    EXPECT_FALSE(table->m_pCurrentEntity);
}

TEST_F(ContentTableUpdateTest, TellsItsCallsInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Update(IdOf("two"), L"Changed");
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=========pCurrentEntity->SetProps hr= 0000000000000000! \r\n",
                            "=========pCurrentEntity->SaveChanges(FORCE_SAVE) "
                            "hr= 0000000000000000! \r\n",
                            "==========EnumerateProperties pMAPIProperty->GetProps, "
                            "hr = (0X0000000000000000)! \r\n"));
    store.FailNext("IMessage(two).SetProps", StoreFault::CallFailed);
    store.FailNext("IMessage(two).SaveChanges", StoreFault::OutOfMemory);
    Update(IdOf("two"), L"Again");
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=========pCurrentEntity->SetProps hr= 0000000080004005! \r\n",
                            "=========pCurrentEntity->SaveChanges(FORCE_SAVE) "
                            "hr= 000000008007000E! \r\n",
                            "==========CContentTable::UpdateItem::failed\r\n"));
    Update(L"0102", L"Unknown");
    EXPECT_THAT(capture.TakeLogMessages(), IsEmpty());
}

TEST_F(ContentTableUpdateTest, TheItemIsCurrentAndTheCursorOnItsEntry)
{
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_EQ(kSaveDay, LastModifiedOf(item.Get()));
    std::vector<DATE> times;
    for (const ItemEntry& entry : Entries())
        times.push_back(entry.lastModified);
    EXPECT_THAT(times, ElementsAre(kFirstDay, kSaveDay, kFirstDay + 2));
    EXPECT_THAT(Rest(), ElementsAre(L"Changed", L"Three"));
}

TEST_F(ContentTableUpdateTest, TheCursorGoesToTheFirstOfEqualEntries)
{
    table->GetItemIDs();
    EXPECT_EQ(1, Update(IdOf("three"), L"Changed"));
    EXPECT_THAT(Rest(), ElementsAre(L"Changed", L"One", L"Two", L"Changed"));
    std::vector<DATE> times;
    for (const ItemEntry& entry : Entries())
        times.push_back(entry.lastModified);
    EXPECT_EQ(kSaveDay, times[2]);
    EXPECT_EQ(kFirstDay + 2, times[5]);
}

// The contents table shows another ID than the message has itself: the save stands, but the ID that
// is read back is not in the list, and the walk stops there.
TEST_F(ContentTableUpdateTest, AnIdThatIsNotInTheListLeavesTheCursorAtTheEnd)
{
    store.SetRowEntryId("two", {0xFE, 0xED});
    table = std::make_unique<TestTable>(folder.Get(), session->Helper());
    Load();
    EXPECT_EQ(L"One", Next());
    EXPECT_EQ(1, Update(L"FEED", L"Changed"));
    EXPECT_EQ("\"Changed\"", StoredSubject("two"));
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_EQ(0.0, LastModifiedOf(item.Get()));
    EXPECT_EQ(L"none", Next());
}

TEST_F(ContentTableUpdateTest, WhatIsReadBackInPartChangesNothing)
{
    EXPECT_EQ(L"One", Next());
    EXPECT_EQ(0, TellWritten(30, false, true));
    EXPECT_EQ(0, TellWritten(30, true, false));
    EXPECT_EQ(0, TellWritten(30, true, true, 1));
    EXPECT_EQ(L"Two", Next()); // the cursor stood
    EXPECT_EQ(1, TellWritten(30, true, true));
    EXPECT_EQ(kSaveDay, LastModifiedOf(Current().Get()));
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableUpdateTest, AFailedReadingBackLeavesTheCursor)
{
    EXPECT_EQ(L"One", Next());
    store.FailNext("IMessage(three).GetProps", StoreFault::CallFailed);
    EXPECT_EQ(1, Update(IdOf("three"), L"Changed"));
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableUpdateTest, AFailureToSetTheValuesDoesNotStopTheSave)
{
    store.FailNext("IMessage(two).SetProps", StoreFault::CallFailed);
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ("\"Two\"", StoredSubject("two"));
    EXPECT_EQ(kSaveDay, LastModifiedOf(item.Get()));
}

// What the store tells of single values is its own buffer, and is given back.
TEST_F(ContentTableUpdateTest, GivesBackWhatTheStoreTellsOfProblems)
{
    table->onRead = [](PropertyArray& values) { values.AddLong(PR_OBJECT_TYPE, 1); }; // computed
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).OpenEntry(two, null, 00000001, type)",
                     "IMessage(two).SetProps({0037001F \"Changed\", 0FFE0003 1}, problems)",
                     "MAPIFreeBuffer(problems of two)",
                     "IMessage(two).SaveChanges(00000004)",
                     "IMessage(two).GetProps([0FFF0102 30080040], 80000000)",
                     "MAPIFreeBuffer(props of two)",
                     "release IMessage(two)"}),
              store.Calls(kAllCalls));
}

TEST_F(ContentTableUpdateTest, AFailedSaveKeepsCurrentItemAndCursor)
{
    EXPECT_EQ(L"One", Next());
    store.FailNext("IMessage(three).SaveChanges", StoreFault::CallFailed);
    EXPECT_EQ(0, Update(IdOf("three"), L"Changed"));
    EXPECT_EQ("\"Three\"", StoredSubject("three"));
    EXPECT_EQ(L"One", CurrentSubject());
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableUpdateTest, NothingToWriteWritesNothing)
{
    table->readsNothing = true;
    EXPECT_EQ(0, Update(IdOf("two"), L"Changed"));
    EXPECT_THAT(store.Calls(kAllCalls),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(two, null, 00000001, type)",
                            "release IMessage(two)"));
    EXPECT_EQ(L"none", CurrentSubject());
    EXPECT_FALSE(table->m_pCurrentEntity);
}

TEST_F(ContentTableUpdateTest, AMessageThatCannotBePreparedIsWrittenAllTheSame)
{
    table->preparesWell = false;
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ("\"Changed\"", StoredSubject("two"));
}

TEST_F(ContentTableUpdateTest, AnItemWithoutAnIdIsRefused)
{
    EXPECT_EQ(0, table->UpdateItem(nullptr));
    EXPECT_EQ(0, Update(L"", L"Changed"));
    const auto own = RecordingAppointment::Make();
    own->texts["EntityID"] = IdOf("two");
    own->nulls = {"EntityID"};
    EXPECT_EQ(0, table->UpdateItem(own.Get()));
    own->nulls.clear();
    own->failing = {"get EntityID"};
    EXPECT_EQ(0, table->UpdateItem(own.Get()));
    const auto careless = FakeItem::Make(IID_INAppointment, IdOf("two"));
    careless->getResult = E_FAIL;
    careless->isCareless = true;
    EXPECT_EQ(0, table->UpdateItem(careless.Get()));
    EXPECT_THAT(store.Calls(), IsEmpty());
    EXPECT_THAT(table->hooks, IsEmpty());
    own->failing.clear();
    EXPECT_EQ(1, table->UpdateItem(own.Get()));
}

TEST_F(ContentTableUpdateTest, AnIdThatDoesNotOpenIsRefused)
{
    EXPECT_EQ(0, Update(L"0102", L"Changed"));
    EXPECT_THAT(table->hooks, IsEmpty());
    EXPECT_THAT(store.Calls(),
                ElementsAre("IMAPIFolder(calendar).OpenEntry(<0102>, null, 00000001, type)"));
}

TEST_F(ContentTableUpdateTest, OpensInTheContainerOfTheId)
{
    const ComPtr<IMAPIFolder> other = session->OpenFolder(store.EntryIdOf("contacts"));
    std::wstring asked;
    table->containerFor = [&](const std::wstring& id) -> ComPtr<IMAPIContainer> {
        asked = id;
        return other.Get();
    };
    store.ClearRecord();
    EXPECT_EQ(1, Update(IdOf("two"), L"Changed"));
    EXPECT_EQ(IdOf("two"), asked);
    EXPECT_EQ("IMAPIFolder(contacts).OpenEntry(two, null, 00000001, type)", store.Calls().at(0));
    table->containerFor = [](const std::wstring&) { return ComPtr<IMAPIContainer>(); };
    EXPECT_EQ(0, Update(IdOf("two"), L"Again"));
}

// --- Add -----------------------------------------------------------------------------------------

TEST_F(ContentTableAddTest, CreatesWritesSavesAndReadsBack)
{
    const std::wstring id = Add(L"New");
    EXPECT_EQ(IdOf("new 1"), id);
    EXPECT_EQ((Lines{"IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
                     "IMAPIFolder(calendar).CreateMessage(null, 00000000)",
                     "IMessage(new 1).QueryInterface(IMAPIProp)",
                     "IMessage(new 1).SetProps({001A001F \"IPM.Appointment\", 0037001F \"New\"}, "
                     "problems)",
                     "IMessage(new 1).SaveChanges(00000004)",
                     "IMessage(new 1).GetProps([0FFF0102 30080040], 80000000)",
                     "MAPIFreeBuffer(props of new 1)",
                     "release IMessage(new 1)"}),
              store.Calls(kAllCalls));
    EXPECT_THAT(table->hooks, ElementsAre("read new")); // and no "prepare"
    EXPECT_EQ("\"New\"", StoredSubject("new 1"));
    EXPECT_FALSE(table->m_pCurrentEntity);
}

TEST_F(ContentTableAddTest, TellsItsCallsInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    Add(L"New");
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=========m_pCurrentEntity->SetProps hr= 0000000000000000! \r\n",
                            "=========m_pCurrentEntity->SaveChanges(FORCE_SAVE) "
                            "hr= 0000000000000000! \r\n",
                            "==========EnumerateProperties pMAPIProperty->GetProps, "
                            "hr = (0X0000000000000000)! \r\n"));
    store.FailNext("IMessage(new 2).SetProps", StoreFault::OutOfMemory);
    store.FailNext("IMessage(new 2).SaveChanges", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(L"Failing"));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("======== index[0], ulPropTag[1a001f]\r\n",
                            "======== index[1], ulPropTag[37001f]\r\n",
                            "=========m_pCurrentEntity->SetProps hr= 000000008007000E! \r\n",
                            "=========m_pCurrentEntity->SaveChanges(FORCE_SAVE) "
                            "hr= 0000000080004005! \r\n"));
}

// The time that the store gave is read back and not used.
TEST_F(ContentTableAddTest, TheItemIsCurrentUnderItsIdAndWithoutTime)
{
    item = NewAppointment(L"before", L"New");
    item->put_LastModificationTime(7.0);
    const std::wstring id = table->AddItem(item.Get(), folderID);
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_EQ(id, EntityIDOf(item.Get()));
    EXPECT_EQ(0.0, LastModifiedOf(item.Get()));
    ASSERT_EQ(4u, Entries().size());
    const ItemEntry entry = Entries().back();
    EXPECT_EQ(id, entry.rowEntryID);
    EXPECT_EQ(id, entry.clientEntryID);
    EXPECT_EQ(L"", entry.folderKey);
    EXPECT_EQ(0.0, entry.lastModified);
    EXPECT_EQ(L"", folderID);
}

TEST_F(ContentTableAddTest, TheItemLearnsItsIdAndThenItsTime)
{
    const auto own = RecordingAppointment::Make();
    const std::wstring id = table->AddItem(own.Get(), folderID);
    EXPECT_THAT(own->calls,
                ElementsAre("get Subject",
                            "put EntityID [" + std::string(id.begin(), id.end()) + "]",
                            "put LastModificationTime [0]"));
}

TEST_F(ContentTableAddTest, TheCursorStandsOnTheNewEntry)
{
    EXPECT_EQ(L"One", Next());
    Add(L"New");
    EXPECT_THAT(Rest(), ElementsAre(L"New"));
}

TEST_F(ContentTableAddTest, GivesTheKeyOfTheFolderUnderLoad)
{
    table->m_folderKey = L"KEY";
    EXPECT_EQ(IdOf("new 1"), Add(L"New"));
    EXPECT_EQ(L"KEY", folderID);
    EXPECT_EQ(L"", Entries().back().folderKey);
}

TEST_F(ContentTableAddTest, TheNewEntryHasTheResolvedIdAndNoTime)
{
    table->resolve = [](const std::wstring& id, DATE& time) {
        time = 5.0;
        return L"client " + id;
    };
    const std::wstring id = Add(L"New");
    EXPECT_EQ(IdOf("new 1"), id);
    EXPECT_EQ(id, EntityIDOf(item.Get()));
    EXPECT_EQ(L"client " + id, Entries().back().clientEntryID);
    EXPECT_EQ(0.0, Entries().back().lastModified);
}

TEST_F(ContentTableAddTest, AFailureToSetTheValuesDoesNotStopTheSave)
{
    store.FailNext("IMessage(new 1).SetProps", StoreFault::CallFailed);
    EXPECT_EQ(IdOf("new 1"), Add(L"New"));
    EXPECT_EQ("none", StoredSubject("new 1"));
}

TEST_F(ContentTableAddTest, AFailedSaveLeavesEverythingAsItWas)
{
    EXPECT_EQ(L"One", Next());
    store.FailNext("IMessage(new 1).SaveChanges", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(L"New"));
    EXPECT_EQ(L"as it was", folderID);
    EXPECT_EQ(3u, Stored());
    EXPECT_EQ(3u, Entries().size());
    EXPECT_EQ(L"", EntityIDOf(item.Get()));
    EXPECT_EQ(L"One", CurrentSubject());
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableAddTest, WithoutAnIdReadBackTheItemIsStoredButNotListed)
{
    EXPECT_EQ(L"One", Next());
    store.FailNext("IMessage(new 1).GetProps", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(L"New"));
    EXPECT_EQ(L"as it was", folderID);
    EXPECT_EQ(4u, Stored());
    EXPECT_EQ(3u, Entries().size());
    EXPECT_EQ(item.Get(), Current().Get());
    EXPECT_EQ(L"Two", Next());
}

TEST_F(ContentTableAddTest, WhatIsReadBackInPartAddsNothing)
{
    EXPECT_EQ(0, TellWritten(20, false, true));
    EXPECT_EQ(0, TellWritten(20, true, false));
    EXPECT_EQ(0, TellWritten(20, true, true, 1));
    EXPECT_EQ(3u, Entries().size());
    EXPECT_EQ(1, TellWritten(20, true, true)); // without a current item too
    EXPECT_EQ(4u, Entries().size());
}

TEST_F(ContentTableAddTest, NothingToWriteDropsTheNewMessageUnsaved)
{
    table->readsNothing = true;
    EXPECT_EQ(L"", Add(L"New"));
    EXPECT_THAT(store.Calls(kAllCalls),
                ElementsAre("IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(calendar).CreateMessage(null, 00000000)",
                            "IMessage(new 1).QueryInterface(IMAPIProp)",
                            "release IMessage(new 1)"));
    EXPECT_EQ(3u, Stored());
    EXPECT_EQ(L"none", CurrentSubject());
}

TEST_F(ContentTableAddTest, ANullItemIsRefused)
{
    EXPECT_EQ(L"", table->AddItem(nullptr, folderID));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

// A group added to an address book reaches the table of contacts, whose items it is not one of:
// nothing is written and the new message is dropped.
TEST_F(ContentTableAddTest, AnItemOfAnotherKindIsDroppedUnsaved)
{
    CAddressBookHandle handle(std::move(table), nullptr);
    const ComPtr<FakeItem> group = FakeItem::Make(IID_INContactGroup);
    EXPECT_EQ(L"", handle.AddGroup(group->As<INContactGroup>().Get()));
    EXPECT_EQ("IMessage(new 1).QueryInterface(IMAPIProp)", store.Calls().back());
    EXPECT_EQ(3u, Stored());
}

TEST_F(ContentTableAddTest, AContainerThatIsNoFolderTakesNoItem)
{
    store.FailNext("IMAPIFolder(calendar).QueryInterface", StoreFault::CallFailed);
    EXPECT_EQ(L"", Add(L"New"));
    EXPECT_EQ(1u, store.Calls().size());
}

// Values of every kind that owns memory reach the store.
TEST_F(ContentTableAddTest, WritesListsAndBytes)
{
    table->onRead = [](PropertyArray& values) {
        const std::vector<std::wstring> texts = {L"red", L"blue"};
        const std::vector<LONG> numbers = {0, -1};
        const std::vector<std::uint8_t> bytes = {0x0A, 0x0B};
        values.AddTexts(0x8001101F, texts);
        values.AddLongs(0x80021003, numbers);
        values.AddBinary(0x80030102, bytes);
    };
    EXPECT_EQ(IdOf("new 1"), Add(L"New"));
    const Lines calls = store.Calls();
    EXPECT_EQ("IMessage(new 1).SetProps({001A001F \"IPM.Appointment\", 0037001F \"New\", "
              "8001101F [\"red\", \"blue\"], 80021003 [0, -1], 80030102 <0A0B>}, problems)",
              calls.at(3));
}

// --- Delete --------------------------------------------------------------------------------------

TEST_F(ContentTableDeleteTest, DeletesOneMessageOfTheFolder)
{
    EXPECT_EQ(1, table->DeleteItem(IdOf("two")));
    EXPECT_THAT(store.Calls(kAllCalls),
                ElementsAre("IMAPIFolder(calendar).QueryInterface(IMAPIFolder)",
                            "IMAPIFolder(calendar).DeleteMessages([two], 0, null, 00000000)"));
    EXPECT_FALSE(store.Exists("two"));
}

TEST_F(ContentTableDeleteTest, TellsItsCallInTheLog)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(1, table->DeleteItem(IdOf("two")));
    store.FailNext("IMAPIFolder(calendar).DeleteMessages", StoreFault::CallFailed);
    EXPECT_EQ(0, table->DeleteItem(IdOf("one")));
    EXPECT_EQ(0, table->DeleteItem(L""));
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre("=========m_pContainer->DeleteMessages hr= 0000000000000000! \r\n",
                            "=========m_pContainer->DeleteMessages hr= 0000000080004005! \r\n"));
    EXPECT_TRUE(store.Exists("one"));
}

// The entry stays, so that the walk shows the item before again.
TEST_F(ContentTableDeleteTest, ADeletedItemStaysInTheListDuringAWalk)
{
    EXPECT_EQ(L"One", Next());
    EXPECT_EQ(1, table->DeleteItem(IdOf("two")));
    EXPECT_EQ(3u, Entries().size());
    EXPECT_EQ(L"One", CurrentSubject());
    EXPECT_THAT(Rest(), ElementsAre(L"One", L"Three"));
}

TEST_F(ContentTableDeleteTest, AnEmptyIdIsRefused)
{
    EXPECT_EQ(0, table->DeleteItem(L""));
    EXPECT_THAT(store.Calls(), IsEmpty());
}

// The store's warning that not everything was there is no failure.
TEST_F(ContentTableDeleteTest, AnUnknownIdIsTheStoresBusiness)
{
    EXPECT_EQ(1, table->DeleteItem(L"0102"));
    EXPECT_EQ("IMAPIFolder(calendar).DeleteMessages([<0102>], 0, null, 00000000)",
              store.Calls().at(1));
}

TEST_F(ContentTableDeleteTest, DeletesInTheContainerOfTheIdOrElseTheBaseOne)
{
    const ComPtr<IMAPIFolder> other = session->OpenFolder(store.EntryIdOf("contacts"));
    std::wstring asked;
    table->containerFor = [&](const std::wstring& id) -> ComPtr<IMAPIContainer> {
        asked = id;
        return other.Get();
    };
    store.ClearRecord();
    table->DeleteItem(IdOf("two"));
    EXPECT_EQ(IdOf("two"), asked);
    EXPECT_EQ("IMAPIFolder(contacts).DeleteMessages([two], 0, null, 00000000)",
              store.Calls().at(1));
    table->containerFor = [](const std::wstring&) { return ComPtr<IMAPIContainer>(); };
    store.ClearRecord();
    EXPECT_EQ(1, table->DeleteItem(IdOf("two")));
    EXPECT_EQ("IMAPIFolder(calendar).DeleteMessages([two], 0, null, 00000000)",
              store.Calls().at(1));
}
