// The provider over the recording store: each call of the logon, the walks and the end.
#include "outlook/store/OutlookProvider.h"

#include "outlook/calendar/OutlookCalendarTable.h"
#include "outlook/categories/Outlook2003CategoryList.h"
#include "outlook/categories/Outlook2007CategoryList.h"
#include "outlook/contacts/OutlookAddressGroupTable.h"
#include "outlook/contacts/OutlookAddressTable.h"
#include "outlook/store/EntryIdText.h"
#include "service/ItemAccess.h"
#include "support/DebugOutputCapture.h"
#include "tests/outlook/ExportNames.h"
#include "tests/outlook/FakeMapi.h"
#include "tests/outlook/categories/CategoryItems.h"
#include "tests/outlook/store/OutlookStoreLines.h"
#include "tests/recordingstore/RecordingStore.h"

#include <gmock/gmock.h>

using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

namespace
{
using Names = std::vector<std::wstring>;

constexpr ULONG kClassTag = 0x001A001F;
constexpr ULONG kContainerClassTag = 0x3613001F;
constexpr ULONG kContactsTag = 0x36D10102;
constexpr ULONG kCalendarTag = 0x36D00102;
constexpr ULONG kWastebasketTag = 0x35E30102;
constexpr ULONG kSubtreeTag = 0x35E00102;

class OutlookProviderTest : public testing::Test
{
  protected:
    ~OutlookProviderTest() override
    {
        provider.reset();
        EXPECT_EQ("", store.Complaints());
    }

    // The usual folders with a category message and an identity.
    void AddUsualStore()
    {
        store.AddUsualFolders();
        AddCategories();
        store.AddIdentity(StoreProps().Text(0x3001001F, L"Ann"));
    }
    void AddCategories()
    {
        store.AddMessage("categories",
                         "calendar",
                         StoreProps().Text(kClassTag, L"IPM.Configuration.CategoryList"),
                         true);
    }
    HRESULT Logon(int version = 0)
    {
        return provider->Logon(OutlookLibrary{RecordingStore::Path(), version});
    }
    // The display names of a list; a default folder has a star.
    Names ContactFolders() { return NamesOf(&COutlookProvider::GetContactFolders); }
    Names CalendarFolders() { return NamesOf(&COutlookProvider::GetCalendarFolders); }
    // What stands in the record from the first of these lines on.
    StoreLines CallsFrom(const std::string& line) const
    {
        StoreLines calls = store.Calls();
        calls.erase(calls.begin(), std::find(calls.begin(), calls.end(), line));
        return calls;
    }
    std::wstring IdOf(const char* object) const { return BytesToHex(store.EntryIdOf(object)); }

    RecordingStore store;
    std::unique_ptr<COutlookProvider> provider = std::make_unique<COutlookProvider>();

  private:
    Names NamesOf(bool (COutlookProvider::*get)(std::vector<OutlookFolderInfo>&))
    {
        std::vector<OutlookFolderInfo> folders(3);
        EXPECT_TRUE((provider.get()->*get)(folders));
        Names names;
        for (const OutlookFolderInfo& folder : folders)
        {
            EXPECT_NE(nullptr, folder.folder.Get());
            names.push_back(folder.displayName + (folder.isDefault ? L"*" : L""));
        }
        return names;
    }
};
} // namespace

TEST_F(OutlookProviderTest, LogsOnInTheExactOrderOfCalls)
{
    AddUsualStore();
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ(Joined({kLogonLines,
                      kContactLines,
                      kCalendarLines,
                      kWastebasketLines,
                      kIdLines,
                      AssociatedRows(1),
                      {Open("categories")},
                      kSubtreeLines,
                      FolderRows("subtree", 4),
                      kListLines,
                      {kQueryIdentity, kOpenIdentity}}),
              store.Calls());
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
}

TEST_F(OutlookProviderTest, TheLogTellsTheLogon)
{
    AddUsualStore();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    const std::string receive = LogOf("m_pMsgStore->GetReceiveFolder");
    EXPECT_EQ((StoreLines{LogonLog(),
                          kGetMessageStoreLog,
                          LogOf("m_pMAPISession->GetMsgStoresTable()"),
                          RowsLog(1),
                          LogOf("m_pMAPISession->OpenMsgStore()"),
                          receive,
                          receive,
                          receive,
                          RowsLog(1),
                          OpenLog("IPM.Configuration.CategoryList"),
                          kGetExceptedFolderLog,
                          RowsLog(4),
                          "========Find Folder Inbox",
                          "========Find Folder Contacts",
                          OpenLog("IPF.Contact"),
                          "========Find Folder Calendar",
                          OpenLog("IPF.Appointment"),
                          "========Find Folder Wastebasket",
                          kGetUserPropertyTableLog,
                          LogOf("m_pMAPISession->QueryIdentity()"),
                          LogOf("m_pMAPISession->OpenEntry()")}),
              capture.TakeLogMessages());
}

TEST_F(OutlookProviderTest, ReleasesEverythingInOrder)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    store.ClearRecord();
    provider.reset();
    EXPECT_EQ((StoreLines{"release IMAPIFolder(contacts)", // the lists
                          "release IMAPIFolder(calendar)",
                          "release IMessage(categories)",
                          "release IMAPIFolder(calendar)",
                          "release IMAPIFolder(wastebasket)",
                          "release IMAPIFolder(contacts)",
                          "release IMsgStore(store)",
                          "release IMailUser(identity)",
                          "release IMAPISession(session)",
                          "MAPIUninitialize()"}),
              store.Calls(~0u));
}

TEST_F(OutlookProviderTest, FreesWhatTheLogonReadAtOnce)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    EXPECT_EQ(0u, store.LiveBuffers());
    // Session, store, three special folders, category message, identity, and one folder in each
    // list.
    EXPECT_EQ(9u, store.LiveObjects());
}

TEST_F(OutlookProviderTest, OnlyOneVersionAsksForThreadsOfNotifications)
{
    AddUsualStore();
    const std::pair<int, const char*> cases[] = {{2003, "MAPIInitialize(0, 00000009)"},
                                                 {2010, "MAPIInitialize(0, 00000008)"},
                                                 {2002, "MAPIInitialize(0, 00000008)"},
                                                 {0, "MAPIInitialize(0, 00000008)"}};
    for (const auto& [version, line] : cases)
    {
        store.ClearRecord();
        provider = std::make_unique<COutlookProvider>();
        store.ClearRecord();
        EXPECT_EQ(S_OK, Logon(version));
        EXPECT_EQ(line, store.Calls().front());
    }
}

// The logon and the walk are the same over a library that frees no row sets; they leak.
TEST_F(OutlookProviderTest, CarriesOnOverALibraryThatFreesNoRows)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    const StoreLines usual = store.Calls();
    provider = std::make_unique<COutlookProvider>();
    ASSERT_EQ("", store.Complaints());
    store.ClearRecord();

    const HiddenExport freeing(RecordingStore::Path(), "FreeProws@4");
    ASSERT_TRUE(freeing.IsHidden());
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ(usual, store.Calls());
    EXPECT_THAT(store.Calls(kStoreMemory), Not(Contains(HasSubstr("FreeProws"))));
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
    provider.reset();
    const StoreLines leaks = store.Leaks();
    EXPECT_THAT(leaks, Contains("rows of subtree hierarchy table"));
    for (const std::string& leak : leaks)
        EXPECT_THAT(leak, testing::AnyOf(HasSubstr("rows of "), HasSubstr("row "))) << leak;
    EXPECT_THAT(store.Violations(), ElementsAre());
    store.Reset(); // what leaked is known
}

// --- Library and session -------------------------------------------------------------------------

TEST_F(OutlookProviderTest, FailsWithoutALibraryThatLoads)
{
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_FAIL, provider->Logon(OutlookLibrary{L"", 2003}));
    provider = std::make_unique<COutlookProvider>();
    EXPECT_EQ(E_FAIL, provider->Logon(OutlookLibrary{L"C:\\no such folder\\msmapi32.dll", 0}));
    provider = std::make_unique<COutlookProvider>();
    FakeMapi fake;
    EXPECT_EQ(E_FAIL, provider->Logon(OutlookLibrary{FakeMapi::BarePath(), 0}));
    EXPECT_EQ(StoreLines{}, store.Calls());
    EXPECT_EQ(StoreLines{}, capture.TakeLogMessages());
}

TEST_F(OutlookProviderTest, ALibraryThatDoesNotInitialiseIsNotUninitialised)
{
    store.Fail(1, StoreFault::CallFailed);
    EXPECT_EQ(E_FAIL, Logon());
    provider.reset();
    EXPECT_THAT(store.Calls(), ElementsAre("MAPIInitialize(0, 00000008)"));
}

TEST_F(OutlookProviderTest, GivesTheCodeOfALogonWithoutASession)
{
    // Another code than that of every other failure.
    store.FailNext("MAPILogonEx", StoreFault::OutOfMemory);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_OUTOFMEMORY, Logon());
    EXPECT_THAT(store.Calls(),
                ElementsAre("MAPIInitialize(0, 00000008)", "MAPILogonEx(0, null, null, 00000062)"));
    EXPECT_THAT(capture.TakeLogMessages(), ElementsAre(LogonLog("000000008007000E")));
}

TEST_F(OutlookProviderTest, AcceptsASessionThatCameWithAFailure)
{
    AddUsualStore();
    store.FailNext("MAPILogonEx", StoreFault::FailsWithWork);
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
}

TEST_F(OutlookProviderTest, ASuccessWithoutASessionIsAFailure)
{
    store.FailNext("MAPILogonEx", StoreFault::NullOutput);
    EXPECT_EQ(E_FAIL, Logon());
}

TEST_F(OutlookProviderTest, ALogonThatOnlyWarnsIsPlainSuccess)
{
    AddUsualStore();
    store.FailNext("MAPILogonEx", StoreFault::FewerValues);
    EXPECT_EQ(S_OK, Logon());
}

// --- The store -----------------------------------------------------------------------------------

TEST_F(OutlookProviderTest, OpensTheDefaultStoreAlone)
{
    store.AddStore("archive");
    store.AddStore("public");
    store.SetDefaultStore("archive");
    EXPECT_EQ(E_FAIL, Logon()); // it has no folders
    EXPECT_THAT(store.Calls(),
                Contains("IMAPISession(session).OpenMsgStore(0, archive, null, 0000000C)"));
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("(public)"))));
}

// The first row that says so ends the walk, whatever comes of it.
TEST_F(OutlookProviderTest, OfTwoDefaultStoresTheFirstCounts)
{
    const StoreProps isDefault = StoreProps().Number(0x3400000B, 1);
    AddUsualStore();
    store.AddStore("other", isDefault);
    EXPECT_EQ(S_OK, Logon());
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("other"))));

    provider = std::make_unique<COutlookProvider>();
    store.ClearRecord();
    store.FailNext("IMAPISession(session).OpenMsgStore", StoreFault::CallFailed);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ("IMAPISession(session).OpenMsgStore(0, store, null, 0000000C)", store.Calls().back());
}

TEST_F(OutlookProviderTest, AProfileWithoutADefaultStoreFails)
{
    AddUsualStore();
    store.SetDefaultStore("");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ(kLogonLines.size() - 1, store.Calls().size()); // all but the opening
    EXPECT_THAT(capture.TakeLogMessages(),
                ElementsAre(LogonLog(),
                            kGetMessageStoreLog,
                            LogOf("m_pMAPISession->GetMsgStoresTable()"),
                            RowsLog(1)));
}

TEST_F(OutlookProviderTest, SkipsStoresWithoutAnIdOrAMark)
{
    store.AddStore("second");
    AddUsualStore();
    store.RemoveProp("store", 0x0FFF0102);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("OpenMsgStore"))));

    provider = std::make_unique<COutlookProvider>();
    store.Reset();
    store.RemoveProp("store", 0x3400000B);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("OpenMsgStore"))));
}

// A count beside no bytes is no ID to open anything by.
TEST_F(OutlookProviderTest, ARowWithoutTheBytesOfItsIdIsPassedOver)
{
    AddUsualStore();
    store.FailNext("IMAPITable(stores table).QueryRows", StoreFault::NullPointers);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ(1u, store.SpoiledOutputs());
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("OpenMsgStore"))));
}

TEST_F(OutlookProviderTest, AStoreThatCannotBeOpenedFails)
{
    AddUsualStore();
    store.FailNext("IMAPISession(session).OpenMsgStore", StoreFault::OutOfMemory);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ(kLogonLines, store.Calls());
    EXPECT_EQ(LogOf("m_pMAPISession->OpenMsgStore()", "000000008007000E"),
              capture.TakeLogMessages().back());
}

// --- Default folders -----------------------------------------------------------------------------

TEST_F(OutlookProviderTest, TheRootAnswersWhereTheInboxDoesNot)
{
    AddUsualStore();
    store.RemoveProp("inbox", kContactsTag);
    EXPECT_EQ(S_OK, Logon());
    StoreLines calls = CallsFrom(kReceiveFolder);
    calls.resize(6);
    EXPECT_EQ((StoreLines{kReceiveFolder,
                          Open("inbox"),
                          ReadInbox("36D10102"),
                          OpenRoot(),
                          ReadRoot("36D10102"),
                          Open("contacts")}),
              calls);
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
}

TEST_F(OutlookProviderTest, TheStoreAnswersLast)
{
    AddUsualStore();
    store.RemoveProp("inbox", kCalendarTag);
    store.RemoveProp("root", kCalendarTag);
    store.SetProps("store", StoreProps().Entry(kCalendarTag, "calendar"));
    EXPECT_EQ(S_OK, Logon());
    EXPECT_THAT(store.Calls(), Contains(ReadStore("36D00102")));
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
}

TEST_F(OutlookProviderTest, WithoutAReceiveFolderTheRootIsAskedFirst)
{
    AddUsualStore();
    store.FailNext("IMsgStore(store).GetReceiveFolder", StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    StoreLines calls = CallsFrom(kReceiveFolder);
    calls.resize(4);
    EXPECT_EQ((StoreLines{kReceiveFolder, OpenRoot(), ReadRoot("36D10102"), Open("contacts")}),
              calls);
    EXPECT_THAT(capture.TakeLogMessages(),
                Contains(LogOf("m_pMsgStore->GetReceiveFolder", "0000000080004005")));
}

TEST_F(OutlookProviderTest, AWastebasketIsNotNeeded)
{
    AddUsualStore();
    store.RemoveProp("store", kWastebasketTag);
    store.AddFolder("deleted contacts", "wastebasket", L"IPF.Contact");
    EXPECT_EQ(S_OK, Logon());
    // Without it no folder is left out.
    EXPECT_EQ((Names{L"Contacts*", L"Deleted contacts"}), ContactFolders());
}

TEST_F(OutlookProviderTest, AnEntryThatIsNoFolderIsNoDefaultFolder)
{
    AddUsualStore();
    store.AddMessage("letter", "inbox");
    store.SetProps("inbox", StoreProps().Entry(kContactsTag, "letter"));
    EXPECT_EQ(S_OK, Logon()); // by the folders below the subtree
    EXPECT_THAT(store.Calls(), Contains(Open("letter")));
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
}

// --- Fallback below the subtree ------------------------------------------------------------------

TEST_F(OutlookProviderTest, LooksForBothFoldersBelowTheSubtreeWhereOneIsMissing)
{
    AddUsualStore();
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kContactsTag);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    const StoreLines noContacts = {kReceiveFolder,
                                   Open("inbox"),
                                   ReadInbox("36D10102"),
                                   OpenRoot(),
                                   ReadRoot("36D10102"),
                                   ReadStore("36D10102")};
    EXPECT_EQ(Joined({kLogonLines,
                      noContacts,
                      kCalendarLines,
                      kWastebasketLines,
                      kSubtreeLines,
                      TopFolderRows(4),
                      {Open("contacts"), Open("calendar")},
                      kIdLines,
                      AssociatedRows(1),
                      {Open("categories")},
                      kSubtreeLines,
                      FolderRows("subtree", 4),
                      kListLines,
                      {kQueryIdentity, kOpenIdentity}}),
              store.Calls());
    // The calendar that was found first is released before the walk.
    StoreLines released = store.Calls(~0u);
    const auto walk = std::find(released.begin(), released.end(), kSubtreeLines.front());
    EXPECT_EQ(1, std::count(released.begin(), walk, "release IMAPIFolder(calendar)"));
    const StoreLines messages = capture.TakeLogMessages();
    const std::string receive = LogOf("m_pMsgStore->GetReceiveFolder");
    ASSERT_LE(13u, messages.size());
    EXPECT_EQ((StoreLines{receive,
                          receive,
                          receive,
                          kGetExceptedFolderLog,
                          RowsLog(4),
                          OpenLog("IPF.Contact"),
                          OpenLog("IPF.Appointment"),
                          RowsLog(1)}),
              StoreLines(messages.begin() + 5, messages.begin() + 13));
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
}

TEST_F(OutlookProviderTest, AMissingCalendarLeadsBelowTheSubtreeToo)
{
    AddUsualStore();
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kCalendarTag);
    EXPECT_EQ(S_OK, Logon());
    StoreLines released = store.Calls(~0u);
    const auto walk = std::find(released.begin(), released.end(), kSubtreeLines.front());
    EXPECT_EQ(1, std::count(released.begin(), walk, "release IMAPIFolder(contacts)"));
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
}

TEST_F(OutlookProviderTest, TheFallbackStopsAtTheSecondOfThem)
{
    AddUsualStore();
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kContactsTag);
    store.AddFolder("more contacts", "subtree", L"IPF.Contact");
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*", L"More contacts"}), ContactFolders());
}

TEST_F(OutlookProviderTest, TheFallbackTakesTheLastFolderOfAKindThatItOpens)
{
    store.AddUsualFolders();
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kContactsTag);
    // Before the calendar comes, every folder of contacts takes the place of the one before.
    store.Remove("calendar");
    store.AddFolder("later contacts", "subtree", L"IPF.Contact");
    store.AddFolder("calendar", "subtree", L"IPF.Appointment");
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts", L"Later contacts*"}), ContactFolders());
}

TEST_F(OutlookProviderTest, TheFallbackSearchesTheTopLevelAlone)
{
    AddUsualStore();
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kContactsTag);
    store.SetProps("contacts", StoreProps().Text(kContainerClassTag, L"IPF.Contact.Other"));
    store.AddFolder("nested", "inbox", L"IPF.Contact");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ(Joined({kSubtreeLines, TopFolderRows(4), {Open("calendar")}}),
              CallsFrom(kSubtreeLines.front()));
    EXPECT_EQ(OpenLog("IPF.Appointment"), capture.TakeLogMessages().back());
}

TEST_F(OutlookProviderTest, TheFallbackSkipsRowsThatLackAColumn)
{
    for (const ULONG column : {0x0FFF0102u, 0x3613001Fu})
    {
        store.Reset();
        provider = std::make_unique<COutlookProvider>();
        AddUsualStore();
        for (const char* const object : {"inbox", "root"})
            store.RemoveProp(object, kContactsTag);
        store.RemoveProp("contacts", column);
        EXPECT_EQ(E_FAIL, Logon());
        provider.reset();
        EXPECT_EQ("", store.Complaints());
    }
}

TEST_F(OutlookProviderTest, TheFallbackFailsWithoutASubtree)
{
    AddUsualStore();
    store.RemoveProp("store", kSubtreeTag);
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, kContactsTag);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ((StoreLines{kSubtreeLines.front()}), CallsFrom(kSubtreeLines.front()));
}

// --- The category message ------------------------------------------------------------------------

TEST_F(OutlookProviderTest, CreatesACategoryMessageWhereTheCalendarHasNone)
{
    store.AddUsualFolders();
    EXPECT_EQ(S_OK, Logon());
    const std::string begin = "IMAPIFolder(calendar).GetContentsTable(80000040)";
    StoreLines calls = CallsFrom(begin);
    calls.resize(6);
    EXPECT_EQ((StoreLines{begin,
                          "IMAPITable(calendar associated contents table).SetColumns([0FFF0102 "
                          "001A001F], 00000000)",
                          "IMAPITable(calendar associated contents table).GetRowCount(00000000)",
                          "IMAPIFolder(calendar).CreateMessage(null, 00000040)",
                          "IMessage(new 1).SetProps({001A001F \"IPM.Configuration.CategoryList\"})",
                          "IMessage(new 1).SaveChanges(00000004)"}),
              calls);
    EXPECT_THAT(store.ChildrenOf("calendar"), ElementsAre("new 1"));
    EXPECT_THAT(store.PropsOf("new 1"), Contains("001A001F \"IPM.Configuration.CategoryList\""));

    // The next logon finds it.
    provider = std::make_unique<COutlookProvider>();
    EXPECT_EQ(S_OK, Logon());
    EXPECT_THAT(store.Calls(), Contains(Open("new 1")));
    EXPECT_THAT(store.ChildrenOf("calendar"), ElementsAre("new 1"));
}

TEST_F(OutlookProviderTest, TakesTheFirstCategoryMessageByItsExactClass)
{
    store.AddUsualFolders();
    const auto add = [&](const char* name, const wchar_t* itemClass, bool isAssociated) {
        store.AddMessage(name, "calendar", StoreProps().Text(kClassTag, itemClass), isAssociated);
    };
    add("appointment", L"IPM.Configuration.CategoryList", false); // an item, no associated one
    add("other", L"IPM.Configuration.Other", true);
    add("longer", L"IPM.Configuration.CategoryList.Old", true);
    add("lower", L"ipm.configuration.categorylist", true);
    store.AddMessage("none", "calendar", StoreProps(), true);
    add("broken", L"IPM.Configuration.CategoryList", true);
    store.RemoveProp("broken", 0x0FFF0102);
    add("first", L"IPM.Configuration.CategoryList", true);
    add("second", L"IPM.Configuration.CategoryList", true);
    EXPECT_EQ(S_OK, Logon());
    const StoreLines calls = store.Calls();
    StoreLines opened;
    for (const std::string& child : store.ChildrenOf("calendar"))
        if (std::count(calls.begin(), calls.end(), Open(child)) > 0)
            opened.push_back(child);
    EXPECT_THAT(opened, ElementsAre("first"));
    EXPECT_THAT(store.Calls(), Not(Contains(HasSubstr("CreateMessage"))));
}

TEST_F(OutlookProviderTest, CreatesAnotherCategoryMessageWhereTheOneCannotBeOpened)
{
    AddUsualStore();
    store.FailNext(Open("categories"), StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    EXPECT_THAT(store.ChildrenOf("calendar"), ElementsAre("categories", "new 1"));
    EXPECT_THAT(capture.TakeLogMessages(),
                Contains(OpenLog("IPM.Configuration.CategoryList", "0000000080004005")));
}

// The store opens the calendar for it.
TEST_F(OutlookProviderTest, NoCategoryIsWrittenToAnEntryThatIsNoMessage)
{
    AddUsualStore();
    store.FailNext(Open("categories"), StoreFault::OtherObject);
    ASSERT_EQ(S_OK, Logon(2010));
    EXPECT_EQ(1u, store.SpoiledOutputs());
    const StoreLines before = store.PropsOf("calendar");
    const auto categories = provider->GetEnumerator(ContactCategory);
    categories->GetItemIDs();
    std::wstring folderID;
    EXPECT_NE(L"", categories->AddItem(CategoryOf(L"Fun").Get(), folderID));
    EXPECT_EQ(before, store.PropsOf("calendar"));
    EXPECT_THAT(store.PropsOf("new 1"), Contains(testing::StartsWith("7C080102")));
}

TEST_F(OutlookProviderTest, FailsWhereTheCategoryMessageCannotBeCreated)
{
    for (const char* const call : {"IMAPIFolder(calendar).CreateMessage",
                                   "IMessage(new 1).SetProps",
                                   "IMessage(new 1).SaveChanges"})
    {
        store.Reset();
        provider = std::make_unique<COutlookProvider>();
        store.AddUsualFolders();
        store.FailNext(call, StoreFault::CallFailed);
        EXPECT_EQ(E_FAIL, Logon());
        EXPECT_THAT(store.Calls().back(), HasSubstr(call)); // nothing runs after it
        EXPECT_THAT(store.ChildrenOf("calendar"), ElementsAre());
        provider.reset();
        EXPECT_EQ("", store.Complaints());
    }
}

TEST_F(OutlookProviderTest, FailsWithoutATableOfAssociatedContents)
{
    AddUsualStore();
    store.FailNext("IMAPIFolder(calendar).GetContentsTable", StoreFault::NullOutput);
    EXPECT_EQ(E_FAIL, Logon());
    EXPECT_EQ("IMAPIFolder(calendar).GetContentsTable(80000040)", store.Calls().back());
    EXPECT_THAT(store.ChildrenOf("calendar"), ElementsAre("categories"));
}

// --- The walk over the folders -------------------------------------------------------------------

TEST_F(OutlookProviderTest, WalksDepthFirst)
{
    AddUsualStore();
    store.AddFolder("projects", "inbox");
    store.AddFolder("partners", "projects", L"IPF.Contact");
    store.AddFolder("milestones", "projects", L"IPF.Appointment");
    store.AddFolder("family", "contacts", L"IPF.Contact");
    store.AddMessage("ann", "family");
    store.AddMessage("ben", "family");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    const StoreLines walk = Joined({kSubtreeLines,
                                    FolderRows("subtree", 4),
                                    {Open("inbox"), ReadId("inbox")},
                                    FolderRows("inbox", 1),
                                    {Open("projects"), ReadId("projects")},
                                    FolderRows("projects", 2),
                                    {Open("partners"),
                                     ReadId("partners"),
                                     Open("milestones"),
                                     ReadId("milestones"),
                                     // listed, then read again for the descent
                                     Open("contacts"),
                                     ReadId("contacts"),
                                     ReadId("contacts")},
                                    FolderRows("contacts", 1),
                                    {Open("family"),
                                     ReadId("family"),
                                     Open("calendar"),
                                     ReadId("calendar"),
                                     kQueryIdentity,
                                     kOpenIdentity}});
    EXPECT_EQ(walk, CallsFrom(kSubtreeLines.front()));
    EXPECT_EQ((Names{L"Partners", L"Contacts*", L"Family"}), ContactFolders());
    EXPECT_EQ((Names{L"Milestones", L"Calendar*"}), CalendarFolders());

    StoreLines messages = capture.TakeLogMessages();
    messages.erase(messages.begin(),
                   std::find(messages.begin(), messages.end(), kGetExceptedFolderLog));
    EXPECT_EQ((StoreLines{kGetExceptedFolderLog,
                          RowsLog(4),
                          "========Find Folder Inbox",
                          RowsLog(1),
                          "========Find Folder Projects",
                          RowsLog(2),
                          "========Find Folder Partners",
                          OpenLog("IPF.Contact"),
                          "========Find Folder Milestones",
                          OpenLog("IPF.Appointment"),
                          "========Find Folder Contacts",
                          OpenLog("IPF.Contact"),
                          RowsLog(1),
                          "========Find Folder Family",
                          OpenLog("IPF.Contact"),
                          "========Find Folder Calendar",
                          OpenLog("IPF.Appointment"),
                          "========Find Folder Wastebasket",
                          kGetUserPropertyTableLog,
                          LogOf("m_pMAPISession->QueryIdentity()"),
                          LogOf("m_pMAPISession->OpenEntry()")}),
              messages);
}

TEST_F(OutlookProviderTest, AListedFolderHasItsIdNameAndCount)
{
    AddUsualStore();
    store.AddFolder("family", "contacts", L"IPF.Contact");
    store.AddMessage("ann", "family");
    store.AddMessage("ben", "family");
    ASSERT_EQ(S_OK, Logon());
    std::vector<OutlookFolderInfo> folders;
    ASSERT_TRUE(provider->GetContactFolders(folders));
    ASSERT_EQ(2u, folders.size());
    EXPECT_EQ(IdOf("contacts"), folders[0].entryIDHex);
    EXPECT_TRUE(folders[0].isDefault);
    EXPECT_EQ(0, folders[0].itemCount);
    EXPECT_EQ(IdOf("family"), folders[1].entryIDHex);
    EXPECT_EQ(48u, folders[1].entryIDHex.size()); // two digits for each of 24 bytes
    EXPECT_EQ(L"Family", folders[1].displayName);
    EXPECT_EQ(2, folders[1].itemCount);
    EXPECT_FALSE(folders[1].isDefault);
    // A copy with references of its own.
    folders[1].folder.Reset();
    std::vector<OutlookFolderInfo> again;
    ASSERT_TRUE(provider->GetContactFolders(again));
    EXPECT_NE(nullptr, again[1].folder.Get());
}

// A row may show another ID than the folder has itself; the folder's own counts.
TEST_F(OutlookProviderTest, AFolderIsKnownByTheIdItHasItself)
{
    AddUsualStore();
    store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
    for (const auto& [folder, id] : {std::pair<const char*, BYTE>{"contacts", 0xC0},
                                     {"calendar", 0xCA},
                                     {"wastebasket", 0xBA}})
        store.SetRowEntryId(folder, {id, 0x01});
    ASSERT_EQ(S_OK, Logon());
    EXPECT_THAT(store.Calls(), Contains(Open("contacts (row)")));
    EXPECT_THAT(store.Calls(), Contains(Open("wastebasket (row)")));
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
    std::vector<OutlookFolderInfo> folders;
    ASSERT_TRUE(provider->GetContactFolders(folders));
    EXPECT_EQ(IdOf("contacts"), folders.at(0).entryIDHex);
}

TEST_F(OutlookProviderTest, OfTwoFoldersOfOneIdTheFirstIsTheDefault)
{
    AddUsualStore();
    // Both rows lead to the same folder.
    store.AddFolder("contacts again", "subtree", L"IPF.Contact");
    store.SetProps("contacts again", StoreProps().Entry(0x0FFF0102, "contacts"));
    store.AddFolder("calendar again", "subtree", L"IPF.Appointment");
    store.SetProps("calendar again", StoreProps().Entry(0x0FFF0102, "calendar"));
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*", L"Contacts again"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*", L"Calendar again"}), CalendarFolders());
}

TEST_F(OutlookProviderTest, ADefaultFolderWhoseIdCannotBeReadMarksNone)
{
    AddUsualStore();
    store.FailNext(ReadId("contacts"), StoreFault::CallFailed);
    store.FailNext(ReadId("calendar"), StoreFault::FewerValues); // a value in error
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar"}), CalendarFolders());
}

// Where neither has an ID the two are not the same.
TEST_F(OutlookProviderTest, AFolderWithoutAnIdIsNoMissingWastebasket)
{
    AddUsualStore();
    store.RemoveProp("store", kWastebasketTag);
    store.AddFolder("partners", "inbox", L"IPF.Contact");
    store.FailNext(ReadId("inbox"), StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Partners", L"Contacts*"}), ContactFolders());
    EXPECT_THAT(capture.TakeLogMessages(), Not(Contains(kWastebasketLog)));
}

TEST_F(OutlookProviderTest, FoldersBelowTheWastebasketAreNotListed)
{
    AddUsualStore();
    store.SetProps("wastebasket", StoreProps().Text(kContainerClassTag, L"IPF.Contact"));
    store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
    store.AddFolder("deeper", "deleted", L"IPF.Appointment");
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    // The wastebasket itself is a folder like others.
    EXPECT_EQ((Names{L"Contacts*", L"Wastebasket"}), ContactFolders());
    EXPECT_EQ((Names{L"Calendar*"}), CalendarFolders());
    EXPECT_THAT(store.Calls(),
                Not(Contains("IMAPIFolder(wastebasket).GetHierarchyTable(00000000)")));
    EXPECT_THAT(capture.TakeLogMessages(), Contains(kWastebasketLog));
}

TEST_F(OutlookProviderTest, AWastebasketDeeperDownIsLeftOutToo)
{
    AddUsualStore();
    store.AddFolder("deep", "inbox");
    store.AddFolder("deleted", "deep", L"IPF.Contact");
    store.SetProps("store", StoreProps().Entry(kWastebasketTag, "deep"));
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
}

TEST_F(OutlookProviderTest, SkipsFoldersWhoseRowLacksWhatIsNeeded)
{
    const ULONG columns[] = {0x0FFF0102, 0x360A000B, 0x36020003, 0x3001001F};
    for (const ULONG column : columns)
    {
        store.Reset();
        provider = std::make_unique<COutlookProvider>();
        AddUsualStore();
        store.AddFolder("odd", "subtree", L"IPF.Contact");
        store.AddFolder("below", "odd", L"IPF.Contact");
        store.RemoveProp("odd", column);
        EXPECT_EQ(S_OK, Logon());
        EXPECT_EQ((Names{L"Contacts*"}), ContactFolders()) << column;
        provider.reset();
        EXPECT_EQ("", store.Complaints());
    }
}

TEST_F(OutlookProviderTest, AFolderWithoutAClassIsWalkedAllTheSame)
{
    AddUsualStore();
    store.AddFolder("plain", "subtree");
    store.AddFolder("below", "plain", L"IPF.Contact");
    store.AddFolder("other", "subtree", L"IPF.Contact.Custom");
    store.AddFolder("lower", "subtree", L"ipf.contact");
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*", L"Below"}), ContactFolders());
}

TEST_F(OutlookProviderTest, AFolderThatCannotBeOpenedIsNotListedButTriedAgainForTheDescent)
{
    AddUsualStore();
    store.AddFolder("odd", "subtree", L"IPF.Contact");
    store.AddFolder("below", "odd", L"IPF.Contact");
    store.FailNext(Open("odd"), StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*", L"Below"}), ContactFolders());
    const StoreLines calls = store.Calls();
    EXPECT_EQ(2, std::count(calls.begin(), calls.end(), Open("odd")));
    const StoreLines messages = capture.TakeLogMessages();
    // The second try is not logged.
    EXPECT_EQ(
        1,
        std::count(messages.begin(), messages.end(), OpenLog("IPF.Contact", "0000000080004005")));
    EXPECT_EQ(2, std::count(messages.begin(), messages.end(), OpenLog("IPF.Contact")));
}

TEST_F(OutlookProviderTest, TheTruthOfSubfoldersIsReadAsASignedNumber)
{
    // 16 bits that count, with others above them: read as 32 bits the number is negative.
    SPropValue values[5] = {};
    BYTE id[] = {1, 2, 3};
    values[0].ulPropTag = 0x0FFF0102;
    values[0].Value.bin = {3, id};
    values[1].ulPropTag = 0x3613000A; // no class
    values[2].ulPropTag = 0x360A000B;
    values[2].Value.l = static_cast<LONG>(0x80000001);
    values[3].ulPropTag = 0x36020003;
    values[4].ulPropTag = 0x3001001F;
    values[4].Value.lpszW = const_cast<wchar_t*>(L"Odd");
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    store.ClearRecord();
    BOOL goesOn = 7;
    EXPECT_EQ(1, provider->OnPropertyRow(5, values, 30, &goesOn));
    EXPECT_EQ(1, goesOn);
    EXPECT_EQ(StoreLines{}, store.Calls());
    values[2].Value.l = 0xFFFF;
    EXPECT_EQ(1, provider->OnPropertyRow(5, values, 30, &goesOn));
    EXPECT_EQ((StoreLines{Open("<010203>")}), store.Calls());
}

TEST_F(OutlookProviderTest, TellsWhatItDidWithARow)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    // Nothing was delivered: no walk takes that for a row.
    for (const int callType : {0, 10, 20, 30})
    {
        BOOL goesOn = 1;
        EXPECT_EQ(callType == 10 ? 1 : 0, provider->OnPropertyRow(0, nullptr, callType, &goesOn));
        // Both folders are there, so that the search for them is at its end.
        EXPECT_EQ(callType == 10 ? 0 : 1, goesOn);
    }
    BOOL goesOn = 1;
    EXPECT_EQ(0, provider->OnPropertyRow(0, nullptr, 40, &goesOn));
    EXPECT_EQ(1, goesOn);
}

TEST_F(OutlookProviderTest, SucceedsWithoutASubtree)
{
    AddUsualStore();
    store.RemoveProp("store", kSubtreeTag);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ(Names{}, ContactFolders());
    EXPECT_EQ(Names{}, CalendarFolders());
    EXPECT_EQ((StoreLines{kSubtreeLines.front(), kQueryIdentity, kOpenIdentity}),
              CallsFrom(kSubtreeLines.front()));
    EXPECT_THAT(capture.TakeLogMessages(), Contains(kGetExceptedFolderLog));
}

TEST_F(OutlookProviderTest, TheWalkReadsNoMoreThanTheSubtree)
{
    AddUsualStore();
    store.AddFolder("search", "root", L"IPF.Contact");
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts*"}), ContactFolders());
}

TEST_F(OutlookProviderTest, ADefaultFolderOutsideTheSubtreeMarksNone)
{
    AddUsualStore();
    store.AddFolder("elsewhere", "root", L"IPF.Contact");
    store.SetProps("inbox", StoreProps().Entry(kContactsTag, "elsewhere"));
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ((Names{L"Contacts"}), ContactFolders());
}

TEST_F(OutlookProviderTest, FoldersThatHoldEachOtherEndTheWalk)
{
    AddUsualStore();
    store.AddFolder("outer", "subtree");
    store.AddFolder("inner", "outer");
    store.AddFolder("again", "inner", L"IPF.Contact");
    // Its row leads back to the folder above.
    store.SetProps("again", StoreProps().Entry(0x0FFF0102, "outer").Number(0x360A000B, 1));
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ(2u, ContactFolders().size());
}

TEST_F(OutlookProviderTest, AVeryDeepStoreEndsTheWalk)
{
    AddUsualStore();
    std::string parent = "subtree";
    for (int level = 0; level < 2000; ++level)
    {
        const std::string name = "level " + std::to_string(level);
        const bool isListed = level == 200 || level == 256 || level == 257 || level == 1999;
        store.AddFolder(name, parent, isListed ? L"IPF.Contact" : L"");
        parent = name;
    }
    EXPECT_EQ(S_OK, Logon());
    // 256 folders are gone into, levels 0 to 255.
    EXPECT_EQ((Names{L"Contacts*", L"Level 200", L"Level 256"}), ContactFolders());
}

// --- Identity ------------------------------------------------------------------------------------

TEST_F(OutlookProviderTest, ReadsTheIdentity)
{
    store.AddUsualFolders();
    store.AddIdentity(StoreProps().Text(0x3001001F, L"Ann").Text(0x39FE001F, L"ann@example.org"));
    ASSERT_EQ(S_OK, Logon());
    store.ClearRecord();
    const auto identity = provider->GetUserProperties();
    ASSERT_NE(nullptr, identity);
    EXPECT_EQ(L"Ann", identity->displayName);
    EXPECT_EQ(L"ann@example.org", identity->smtpAddress);
    EXPECT_EQ(L"", identity->account);
    EXPECT_THAT(store.Calls(), ElementsAre(HasSubstr("IMailUser(identity).GetProps([3A00001F ")));
}

TEST_F(OutlookProviderTest, ASessionWithoutIdentityGivesEmptyTexts)
{
    store.AddUsualFolders();
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    ASSERT_EQ(S_OK, Logon());
    EXPECT_EQ(kQueryIdentity, store.Calls().back());
    const StoreLines messages = capture.TakeLogMessages();
    EXPECT_EQ(kGetUserPropertyTableLog, messages[messages.size() - 2]);
    EXPECT_EQ(LogOf("m_pMAPISession->QueryIdentity()", "000000008004010F"), messages.back());
    const auto identity = provider->GetUserProperties();
    ASSERT_NE(nullptr, identity);
    EXPECT_EQ(L"",
              identity->account + identity->addressType + identity->displayName +
                  identity->company + identity->emailAddress + identity->firstName +
                  identity->lastName + identity->officeLocation + identity->smtpAddress +
                  identity->transmitableDisplayName);
}

TEST_F(OutlookProviderTest, AnIdentityThatCannotBeOpenedIsNoFailure)
{
    AddUsualStore();
    store.FailNext(kOpenIdentity, StoreFault::CallFailed);
    const ScopedLogSettings settings;
    DebugOutputCapture capture;
    EXPECT_EQ(S_OK, Logon());
    EXPECT_EQ(LogOf("m_pMAPISession->OpenEntry()", "0000000080004005"),
              capture.TakeLogMessages().back());
    EXPECT_EQ(L"", provider->GetUserProperties()->displayName);
}

// --- What outlives the provider ------------------------------------------------------------------

TEST_F(OutlookProviderTest, DetachesTheIdentityBeforeItReleasesAnything)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    const auto first = provider->GetUserProperties();
    auto second = provider->GetUserProperties();
    second.reset();
    store.ClearRecord();
    provider.reset();
    EXPECT_EQ(L"Ann", first->displayName);
    EXPECT_EQ("MAPIUninitialize()", store.Calls(~0u).back());
    EXPECT_EQ("", store.Complaints());
}

TEST_F(OutlookProviderTest, ABareProviderCopesWithEveryOperation)
{
    EXPECT_EQ(StoreLines{}, store.Calls(~0u)); // made, and nothing called
    EXPECT_NE(nullptr, provider->GetUserProperties());
    // A table without a folder has nothing and does nothing.
    EXPECT_NE(nullptr, provider->GetAddressBook());
    EXPECT_NE(nullptr, provider->GetCalendar());
    for (int type = -1; type <= 5; ++type)
        EXPECT_EQ(type >= ContactCategory && type <= Calendar,
                  provider->GetEnumerator(type) != nullptr)
            << type;
    EXPECT_EQ(Names{}, ContactFolders());
    EXPECT_EQ(Names{}, CalendarFolders());
}

// --- Tables --------------------------------------------------------------------------------------

TEST_F(OutlookProviderTest, MakesTheTableOfEachKindWithoutLoadingIt)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon(2010));
    store.ClearRecord();
    EXPECT_TRUE(
        dynamic_cast<COutlook2007CategoryList*>(provider->GetEnumerator(ContactCategory).get()));
    EXPECT_TRUE(
        dynamic_cast<COutlookAddressGroupTable*>(provider->GetEnumerator(ContactGroup).get()));
    EXPECT_TRUE(dynamic_cast<COutlookAddressTable*>(provider->GetEnumerator(AddressBook).get()));
    EXPECT_TRUE(dynamic_cast<COutlookCalendarTable*>(provider->GetEnumerator(Calendar).get()));
    EXPECT_EQ(StoreLines{}, store.Calls());
}

TEST_F(OutlookProviderTest, OnlyVersion2010HasItsCategoriesInTheMessage)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon(2003));
    EXPECT_TRUE(
        dynamic_cast<COutlook2003CategoryList*>(provider->GetEnumerator(ContactCategory).get()));
    provider = std::make_unique<COutlookProvider>();
    ASSERT_EQ(S_OK, Logon(0)); // an Outlook 2007 too
    EXPECT_TRUE(
        dynamic_cast<COutlook2003CategoryList*>(provider->GetEnumerator(ContactCategory).get()));
}

TEST_F(OutlookProviderTest, CategoriesComeFromTheMessageThatTheLogonFound)
{
    AddUsualStore();
    store.SetProps(
        "categories",
        StoreProps().Bytes(0x7C080102, {'<', 'r', '>', '<', 'c', '/', '>', '<', '/', 'r', '>'}));
    ASSERT_EQ(S_OK, Logon(2010));
    const auto categories = provider->GetEnumerator(ContactCategory);
    store.ClearRecord();
    categories->GetItemIDs();
    EXPECT_EQ((StoreLines{"IMessage(categories).GetProps([7C080102], 80000000)"}), store.Calls());
    categories->ResetItem();
    categories->GetNextItem();
    EXPECT_TRUE(CurrentItem(*categories));
    // It ends with the provider.
    provider.reset();
    categories->ResetItem();
    categories->GetNextItem();
    EXPECT_FALSE(CurrentItem(*categories));
}

TEST_F(OutlookProviderTest, LoadsContactsAndThenGroupsForAnAddressBook)
{
    AddUsualStore();
    ASSERT_EQ(S_OK, Logon());
    store.ClearRecord();
    const auto book = provider->GetAddressBook();
    const std::string contents = "IMAPIFolder(contacts).GetContentsTable(80000000)";
    const std::string columns = "IMAPITable(contacts contents table).SetColumns("
                                "[0FFF0102 001A001F 30080040], 00000000)";
    const std::string count = "IMAPITable(contacts contents table).GetRowCount(00000000)";
    EXPECT_EQ((StoreLines{contents, columns, count, contents, columns, count}), store.Calls());
    EXPECT_TRUE(book->HasGroups());
}
