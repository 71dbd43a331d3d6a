// Each call of the provider's logon fails in turn in each way: the logon's result, its log, what
// the provider then lists, and that nothing stays behind.
#include "outlook/store/OutlookProvider.h"

#include "support/DebugOutputCapture.h"
#include "tests/outlook/store/OutlookStoreLines.h"
#include "tests/recordingstore/FaultHarness.h"

#include <gmock/gmock.h>

#include <cstdio>

namespace
{
// Ways of failing, to be combined.
constexpr unsigned kOutOfMemory = 1;
constexpr unsigned kCallFailed = 2;
constexpr unsigned kNull = 4;
constexpr unsigned kFewer = 8;
constexpr unsigned kCodes = kOutOfMemory | kCallFailed;

unsigned BitOf(StoreFault fault)
{
    switch (fault)
    {
    case StoreFault::OutOfMemory:
        return kOutOfMemory;
    case StoreFault::CallFailed:
        return kCallFailed;
    case StoreFault::NullOutput:
        return kNull;
    case StoreFault::FewerValues:
        return kFewer;
    default:
        return 0;
    }
}

// A call without which the logon fails, in which ways.
struct Needed
{
    const char* line;
    unsigned ways;
};

// Nothing but these: folders are looked for in several places, and neither the walk nor the
// identity is needed.
constexpr Needed kNeeded[] = {
    {"MAPIInitialize", kCodes},
    {"MAPILogonEx", kCodes | kNull},
    {"IMAPISession(session).GetMsgStoresTable", kCodes | kNull},
    // Without its effect the columns are others.
    {"IMAPITable(stores table).SetColumns", kCodes | kNull},
    {"IMAPITable(stores table).GetRowCount", kCodes | kNull | kFewer},
    {"IMAPITable(stores table).QueryRows", kCodes | kNull | kFewer},
    {"IMAPISession(session).OpenMsgStore", kCodes | kNull},
    {"IMAPIFolder(calendar).GetContentsTable", kCodes | kNull},
    {"IMAPIFolder(calendar).CreateMessage", kCodes | kNull},
    {"IMessage(new 1).SetProps", kCodes},
    {"IMessage(new 1).SaveChanges", kCodes},
};

// The same where the folders come from the first level below the subtree. The first reading of the
// subtree counts then, not the walk's.
constexpr Needed kNeededForFallback[] = {
    {"IMsgStore(store).GetProps([35E00102]", kCodes | kNull | kFewer},
    {"IMsgStore(store).OpenEntry(subtree", kCodes | kNull},
    {"IMAPIFolder(subtree).GetHierarchyTable", kCodes | kNull},
    {"IMAPITable(subtree hierarchy table).SetColumns([0FFF0102 3613001F],", kCodes | kNull},
    {"IMAPITable(subtree hierarchy table).GetRowCount", kCodes | kNull},
    {"IMAPITable(subtree hierarchy table).QueryRows", kCodes | kNull},
    {"IMsgStore(store).OpenEntry(contacts", kCodes | kNull},
    {"IMsgStore(store).OpenEntry(calendar", kCodes | kNull},
};

bool IsNeeded(std::span<const Needed> rows, const FaultRun& run)
{
    for (const Needed& row : rows)
        if (run.line.starts_with(row.line) && (row.ways & BitOf(run.fault)))
            return true;
    return false;
}

// The code that a logon without a session passes on; E_FAIL for everything else.
HRESULT FailureOf(const FaultRun& run)
{
    if (run.line.starts_with("MAPILogonEx"))
    {
        if (run.fault == StoreFault::OutOfMemory)
            return E_OUTOFMEMORY;
        if (run.fault == StoreFault::CallFailed)
            return MAPI_E_CALL_FAILED;
    }
    return E_FAIL;
}

std::string ResultText(HRESULT result)
{
    char text[24];
    std::snprintf(text, sizeof text, "%016lX", static_cast<unsigned long>(result));
    return text;
}

// Calls whose results the log tells, each with what stands before and how.
struct LoggedCall
{
    const char* line;
    const char* before;
    std::string (*tell)(const std::string& result);
};

const LoggedCall kLogged[] = {
    {"MAPILogonEx", nullptr, [](const std::string& result) { return LogonLog(result); }},
    {"IMAPISession(session).GetMsgStoresTable",
     kGetMessageStoreLog.c_str(),
     [](const std::string& result) {
         return LogOf("m_pMAPISession->GetMsgStoresTable()", result);
     }},
    {"IMAPISession(session).OpenMsgStore",
     nullptr,
     [](const std::string& result) { return LogOf("m_pMAPISession->OpenMsgStore()", result); }},
    {"IMsgStore(store).GetReceiveFolder",
     nullptr,
     [](const std::string& result) { return LogOf("m_pMsgStore->GetReceiveFolder", result); }},
    {"IMsgStore(store).GetProps([35E00102]", kGetExceptedFolderLog.c_str(), nullptr},
    {"IMAPISession(session).QueryIdentity",
     kGetUserPropertyTableLog.c_str(),
     [](const std::string& result) { return LogOf("m_pMAPISession->QueryIdentity()", result); }},
    {"IMAPISession(session).OpenEntry",
     nullptr,
     [](const std::string& result) { return LogOf("m_pMAPISession->OpenEntry()", result); }},
};

// What the log must hold after those calls, but for the lines about rows and folders.
StoreLines ExpectedLog(const RecordingStore& store)
{
    StoreLines lines;
    for (const RecordedStoreCall& call : store.Record())
        for (const LoggedCall& logged : kLogged)
        {
            if (!call.text.starts_with(logged.line))
                continue;
            if (logged.before)
                lines.push_back(logged.before);
            if (logged.tell)
                lines.push_back(logged.tell(ResultText(call.result)));
        }
    return lines;
}

bool IsAboutRowsOrFolders(const std::string& line)
{
    for (const char* const start : {"==========pTable->QueryRows",
                                    "========Find Folder",
                                    "=========m_pMsgStore->OpenEntry",
                                    "==========EnumerateProperties",
                                    "==========Failed: All Properties",
                                    "=========Index:"})
        if (line.starts_with(start))
            return true;
    return false;
}

class OutlookProviderFaultTest : public testing::Test
{
  protected:
    // One life of a provider.
    void LogOnAndEnd()
    {
        contacts.clear();
        calendars.clear();
        displayName.clear();
        {
            COutlookProvider provider;
            result = provider.Logon(OutlookLibrary{RecordingStore::Path(), 0});
            std::vector<OutlookFolderInfo> folders;
            EXPECT_TRUE(provider.GetContactFolders(folders));
            for (const OutlookFolderInfo& folder : folders)
                contacts.push_back(folder.displayName);
            EXPECT_TRUE(provider.GetCalendarFolders(folders));
            for (const OutlookFolderInfo& folder : folders)
                calendars.push_back(folder.displayName);
            if (capture)
                log = capture->TakeLogMessages();
            displayName = provider.GetUserProperties()->displayName;
        }
        if (capture)
            capture->TakeTexts(); // what came after that is not looked at
        std::erase_if(log, IsAboutRowsOrFolders);
    }

    void CheckLog(const RecordingStore& store)
    {
        StoreLines expected = ExpectedLog(store);
        // A success without a session ends after the line that comes before the table of stores.
        if (result == E_FAIL && expected.size() == 1 && expected[0] == LogonLog())
            expected.push_back(kGetMessageStoreLog);
        EXPECT_EQ(expected, log);
    }

    HRESULT result = S_OK;
    std::vector<std::wstring> contacts;
    std::vector<std::wstring> calendars;
    std::wstring displayName;
    StoreLines log;
    DebugOutputCapture* capture = nullptr; // without it no log is read
};

// With the log, which takes most of the time.
class OutlookProviderFaultLogTest : public OutlookProviderFaultTest
{
  protected:
    OutlookProviderFaultLogTest() { capture = &m_capture; }

  private:
    const ScopedLogSettings m_settings;
    DebugOutputCapture m_capture;
};

void AddStoreWithIdentity(RecordingStore& store)
{
    store.AddUsualFolders();
    store.AddIdentity(StoreProps().Text(0x3001001F, L"Ann"));
}

void AddCategories(RecordingStore& store)
{
    store.AddMessage("categories",
                     "calendar",
                     StoreProps().Text(0x001A001F, L"IPM.Configuration.CategoryList"),
                     true);
}

void RemoveContactsProperty(RecordingStore& store)
{
    for (const char* const object : {"inbox", "root"})
        store.RemoveProp(object, 0x36D10102);
}
} // namespace

TEST_F(OutlookProviderFaultLogTest, EveryCallOfALogonMayFail)
{
    const FaultTotals totals = RunFaults({
        .name = "logon",
        .setUp =
            [](RecordingStore& store) {
                AddStoreWithIdentity(store);
                AddCategories(store);
            },
        .action = [&] { LogOnAndEnd(); },
        .check =
            [&](const FaultRun& run, RecordingStore& store) {
                const bool fails = IsNeeded(kNeeded, run);
                EXPECT_EQ(fails ? FailureOf(run) : S_OK, result);
                CheckLog(store);
                if (run.fault == StoreFault::None)
                {
                    EXPECT_EQ((std::vector<std::wstring>{L"Contacts"}), contacts);
                    EXPECT_EQ((std::vector<std::wstring>{L"Calendar"}), calendars);
                    EXPECT_EQ(L"Ann", displayName);
                }
                // What was found and could not be read is made anew; it never becomes more.
                EXPECT_LE(store.ChildrenOf("calendar").size(), 2u);
                EXPECT_LE(contacts.size() + calendars.size(), 2u);
            },
    });
    // 7 up to the store, 4 + 4 + 7 for the folders, 3 IDs, 5 for the category message, 2 + 4 + 4
    // for the walk, 2 for the identity, and one that reads its texts.
    EXPECT_EQ(43u, totals.calls);
    EXPECT_EQ(43u * 4, totals.runs);
}

TEST_F(OutlookProviderFaultLogTest, EveryCallOfTheCreationOfTheCategoryMessageMayFail)
{
    RunFaults({
        .name = "logon that creates the category message",
        .setUp = AddStoreWithIdentity,
        .action = [&] { LogOnAndEnd(); },
        .check =
            [&](const FaultRun& run, RecordingStore& store) {
                const bool fails = IsNeeded(kNeeded, run);
                EXPECT_EQ(fails ? FailureOf(run) : S_OK, result);
                CheckLog(store);
                // A save that does nothing says that it did.
                const bool isSaved = !fails && !(run.line.starts_with("IMessage(new 1).Save") &&
                                                 run.fault == StoreFault::NullOutput);
                EXPECT_EQ(isSaved ? 1u : 0u, store.ChildrenOf("calendar").size());
            },
    });
}

TEST_F(OutlookProviderFaultLogTest, EveryCallOfTheFallbackMayFail)
{
    bool isBeforeWalk = true;
    RunFaults({
        .name = "logon by the first level of folders",
        .setUp =
            [&](RecordingStore& store) {
                AddStoreWithIdentity(store);
                AddCategories(store);
                RemoveContactsProperty(store);
            },
        .action = [&] { LogOnAndEnd(); },
        .check =
            [&](const FaultRun& run, RecordingStore& store) {
                // The calls of the fallback: those after the wastebasket's and before the IDs.
                unsigned first = 0;
                unsigned last = 0;
                for (const RecordedStoreCall& call : store.Record())
                {
                    if (!first && call.text == Open("wastebasket"))
                        first = call.number;
                    if (!last && call.text == ReadId("contacts"))
                        last = call.number;
                }
                isBeforeWalk = first && run.call > first && (!last || run.call < last);
                const bool fails =
                    IsNeeded(kNeeded, run) || (isBeforeWalk && IsNeeded(kNeededForFallback, run));
                EXPECT_EQ(fails ? FailureOf(run) : S_OK, result);
                CheckLog(store);
            },
    });
}

TEST_F(OutlookProviderFaultTest, EveryCallOfAWalkOverNestedFoldersMayFail)
{
    RunFaults({
        .name = "walk over nested folders",
        .setUp =
            [](RecordingStore& store) {
                AddStoreWithIdentity(store);
                AddCategories(store);
                store.AddFolder("projects", "inbox");
                store.AddFolder("partners", "projects", L"IPF.Contact");
                store.AddFolder("family", "contacts", L"IPF.Contact");
                store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
            },
        .action = [&] { LogOnAndEnd(); },
        .check =
            [&](const FaultRun& run, RecordingStore&) {
                EXPECT_EQ(IsNeeded(kNeeded, run) ? FailureOf(run) : S_OK, result);
                if (run.fault == StoreFault::None)
                {
                    EXPECT_EQ((std::vector<std::wstring>{L"Partners", L"Contacts", L"Family"}),
                              contacts);
                }
                // Where the wastebasket is not known, what lies below it counts.
                const bool knowsWastebasket =
                    run.line.find("35E30102") == std::string::npos &&
                    run.line.find("wastebasket") == std::string::npos &&
                    run.line.find("inbox") == std::string::npos &&
                    run.line.find("GetReceiveFolder") == std::string::npos;
                if (knowsWastebasket)
                {
                    EXPECT_THAT(contacts, testing::Not(testing::Contains(L"Deleted")));
                }
            },
    });
}

// Stores that give what no store may give.
TEST_F(OutlookProviderFaultTest, HostileAnswersDoNoHarm)
{
    for (const bool byFallback : {false, true})
        RunFaults(
            {
                .name = "logon on a hostile store",
                .setUp =
                    [&](RecordingStore& store) {
                        AddStoreWithIdentity(store);
                        AddCategories(store);
                        store.AddFolder("projects", "inbox", L"IPF.Contact");
                        store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
                        if (byFallback)
                            RemoveContactsProperty(store);
                    },
                .action = [&] { LogOnAndEnd(); },
                .check = [&](const FaultRun&,
                             RecordingStore&) { EXPECT_TRUE(result == S_OK || result == E_FAIL); },
            },
            kHostileStoreFaults);
}

// Calls that fail although they gave what was asked for. Rows and values of a failed reading are
// not looked at, since a store may leave rubbish there; all else that came is given back.
TEST_F(OutlookProviderFaultTest, WhatAFailedCallGaveIsGivenBack)
{
    std::vector<RecordedStoreCall> calls;
    {
        RecordingStore store;
        AddStoreWithIdentity(store);
        LogOnAndEnd();
        calls = store.Record();
    }
    unsigned runs = 0;
    for (const RecordedStoreCall& call : calls)
    {
        if (!call.number || call.text.find("QueryRows") != std::string::npos ||
            call.text.starts_with("IMailUser"))
            continue;
        RecordingStore store;
        AddStoreWithIdentity(store);
        store.Fail(call.number, StoreFault::FailsWithWork);
        LogOnAndEnd();
        EXPECT_EQ("", store.Complaints()) << call.text;
        ++runs;
    }
    EXPECT_EQ(41u, runs); // 44 calls, of which two read rows and one the identity's texts
}
