// Each call of the provider's logon fails in turn in each way: the logon's result, its log, what
// the provider then lists, and that nothing stays behind.
#include "outlook/store/OutlookProvider.h"

#include "support/DebugOutputCapture.h"
#include "tests/outlook/store/OutlookStoreLines.h"
#include "tests/recordingstore/FaultHarness.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cstddef>
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

// The log of a walk over the store with nested folders, where nothing fails.
const StoreLines kWalkLog = {
    RowsLog(4), // 0
    "========Find Folder Inbox",
    RowsLog(1), // 2
    "========Find Folder Projects",
    RowsLog(1), // 4
    "========Find Folder Partners",
    OpenLog("IPF.Contact"), // 6
    "========Find Folder Contacts",
    OpenLog("IPF.Contact"), // 8
    RowsLog(1),
    "========Find Folder Family", // 10
    OpenLog("IPF.Contact"),
    "========Find Folder Calendar", // 12
    OpenLog("IPF.Appointment"),
    "========Find Folder Wastebasket", // 14
    kWastebasketLog,
};

// What a call that fails in those ways changes in that log: other lines in place of some.
struct WalkChange
{
    std::string call;
    unsigned ways;
    std::size_t first;
    std::size_t count;
    StoreLines instead; // {code} stands for the call's result
};

constexpr unsigned kAllWays = kCodes | kNull | kFewer;
const StoreLines kNothing;

// Ordered from the end of the log to its beginning for each call.
const WalkChange kWalkChanges[] = {
    {"IMsgStore(store).GetProps([35E00102]", kAllWays, 0, 16, kNothing},
    {"IMsgStore(store).OpenEntry(subtree", kCodes | kNull, 0, 16, kNothing},
    {"IMAPIFolder(subtree).GetHierarchyTable", kCodes | kNull, 0, 16, kNothing},
    {"IMAPITable(subtree hierarchy table).SetColumns", kCodes, 0, 16, kNothing},
    // The rows come with columns of their own, in which no folder is seen.
    {"IMAPITable(subtree hierarchy table).SetColumns", kNull, 1, 15, kNothing},
    {"IMAPITable(subtree hierarchy table).GetRowCount", kCodes | kNull, 0, 16, kNothing},
    {"IMAPITable(subtree hierarchy table).GetRowCount", kFewer, 14, 2, kNothing},
    {"IMAPITable(subtree hierarchy table).GetRowCount", kFewer, 0, 1, {RowsLog(3)}},
    {"IMAPITable(subtree hierarchy table).QueryRows", kCodes | kNull, 0, 16, kNothing},
    {"IMAPITable(subtree hierarchy table).QueryRows", kFewer, 14, 2, kNothing},
    {"IMAPITable(subtree hierarchy table).QueryRows", kFewer, 0, 1, {RowsLog(3)}},

    {"IMsgStore(store).OpenEntry(inbox", kCodes | kNull, 2, 5, kNothing},
    {"IMAPIFolder(inbox).GetHierarchyTable", kCodes | kNull, 2, 5, kNothing},
    {"IMAPITable(inbox hierarchy table).SetColumns", kCodes, 2, 5, kNothing},
    {"IMAPITable(inbox hierarchy table).SetColumns", kNull, 3, 4, kNothing},
    {"IMAPITable(inbox hierarchy table).GetRowCount", kAllWays, 2, 5, kNothing},
    {"IMAPITable(inbox hierarchy table).QueryRows", kCodes | kNull, 2, 5, kNothing},
    {"IMAPITable(inbox hierarchy table).QueryRows", kFewer, 2, 5, {RowsLog(0)}},

    {"IMsgStore(store).OpenEntry(projects", kCodes | kNull, 4, 3, kNothing},
    {"IMAPIFolder(projects).GetHierarchyTable", kCodes | kNull, 4, 3, kNothing},
    {"IMAPITable(projects hierarchy table).SetColumns", kCodes, 4, 3, kNothing},
    {"IMAPITable(projects hierarchy table).SetColumns", kNull, 5, 2, kNothing},
    {"IMAPITable(projects hierarchy table).GetRowCount", kAllWays, 4, 3, kNothing},
    {"IMAPITable(projects hierarchy table).QueryRows", kCodes | kNull, 4, 3, kNothing},
    {"IMAPITable(projects hierarchy table).QueryRows", kFewer, 4, 3, {RowsLog(0)}},

    {"IMsgStore(store).OpenEntry(partners", kAllWays, 6, 1, {OpenLog("IPF.Contact", "{code}")}},
    // Tried again for the descent, which tells nothing.
    {"IMsgStore(store).OpenEntry(contacts", kAllWays, 8, 1, {OpenLog("IPF.Contact", "{code}")}},
    {"IMAPIFolder(contacts).GetHierarchyTable", kCodes | kNull, 9, 3, kNothing},
    {"IMAPITable(contacts hierarchy table).SetColumns", kCodes, 9, 3, kNothing},
    {"IMAPITable(contacts hierarchy table).SetColumns", kNull, 10, 2, kNothing},
    {"IMAPITable(contacts hierarchy table).GetRowCount", kAllWays, 9, 3, kNothing},
    {"IMAPITable(contacts hierarchy table).QueryRows", kCodes | kNull, 9, 3, kNothing},
    {"IMAPITable(contacts hierarchy table).QueryRows", kFewer, 9, 3, {RowsLog(0)}},
    {"IMsgStore(store).OpenEntry(family", kAllWays, 11, 1, {OpenLog("IPF.Contact", "{code}")}},

    {"IMsgStore(store).OpenEntry(calendar",
     kAllWays,
     13,
     1,
     {OpenLog("IPF.Appointment", "{code}")}},

    {"IMsgStore(store).OpenEntry(wastebasket", kCodes | kNull, 15, 1, kNothing},
    // A folder without an ID is not known for the wastebasket; one value fewer is none.
    {"HrGetOneProp(IMAPIFolder(wastebasket)",
     kAllWays,
     15,
     1,
     {RowsLog(1), "========Find Folder Deleted", OpenLog("IPF.Contact")}},
};

StoreLines ExpectedWalkLog(const FaultRun& run, const std::string& result)
{
    StoreLines lines = kWalkLog;
    for (const WalkChange& change : kWalkChanges)
    {
        if (!run.line.starts_with(change.call) || !(change.ways & BitOf(run.fault)))
            continue;
        const auto at = lines.begin() + static_cast<std::ptrdiff_t>(change.first);
        auto next = lines.erase(at, at + static_cast<std::ptrdiff_t>(change.count));
        for (std::string line : change.instead)
        {
            if (const auto code = line.find("{code}"); code != std::string::npos)
                line.replace(code, 6, result);
            next = lines.insert(next, line) + 1;
        }
    }
    return lines;
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
        // The walk stands between its first line and that about the identity.
        const auto start = std::find(log.begin(), log.end(), kGetExceptedFolderLog);
        const auto end = std::find(start, log.end(), kGetUserPropertyTableLog);
        walkLog.assign(start == end ? end : start + 1, end);
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
    StoreLines walkLog;
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

void AddStoreWithCategories(RecordingStore& store)
{
    AddStoreWithIdentity(store);
    store.AddMessage("categories",
                     "calendar",
                     StoreProps().Text(0x001A001F, L"IPM.Configuration.CategoryList"),
                     true);
}

// Each life has a store of its own.
class OutlookProviderGivingFaultTest : public OutlookProviderFaultTest
{
  protected:
    using SetUpStore = void (*)(RecordingStore&);

    // The calls of a life in which none fails. Those that read rows or the identity's texts are
    // left out: what a failed reading leaves is not looked at, since a store may leave rubbish
    // there.
    std::vector<RecordedStoreCall> GivingCalls(SetUpStore setUp)
    {
        RecordingStore store;
        setUp(store);
        LogOnAndEnd();
        std::vector<RecordedStoreCall> calls = store.Record();
        std::erase_if(calls, [](const RecordedStoreCall& call) {
            return !call.number || call.text.find("QueryRows") != std::string::npos ||
                   call.text.starts_with("IMailUser");
        });
        return calls;
    }

    // The calls of a life in which the one of that number fails. Nothing stays behind.
    StoreLines CallsWith(SetUpStore setUp, unsigned number, StoreFault fault)
    {
        RecordingStore store;
        setUp(store);
        store.Fail(number, fault);
        LogOnAndEnd();
        EXPECT_EQ("", store.Complaints());
        return store.Calls();
    }
};

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
        .setUp = AddStoreWithCategories,
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
                AddStoreWithCategories(store);
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

TEST_F(OutlookProviderFaultLogTest, EveryCallOfAWalkOverNestedFoldersMayFail)
{
    unsigned walkCalls = 0;
    RunFaults({
        .name = "walk over nested folders",
        .setUp =
            [](RecordingStore& store) {
                AddStoreWithCategories(store);
                store.AddFolder("projects", "inbox");
                store.AddFolder("partners", "projects", L"IPF.Contact");
                store.AddFolder("family", "contacts", L"IPF.Contact");
                store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
            },
        .action = [&] { LogOnAndEnd(); },
        .check =
            [&](const FaultRun& run, RecordingStore& store) {
                EXPECT_EQ(IsNeeded(kNeeded, run) ? FailureOf(run) : S_OK, result);
                unsigned first = 0; // calls of the walk: from here to the identity's
                unsigned last = 0;
                HRESULT callResult = S_OK;
                for (const RecordedStoreCall& call : store.Record())
                {
                    if (!first && call.text == kSubtreeLines[0])
                        first = call.number;
                    if (call.text == kQueryIdentity)
                        last = call.number;
                    if (call.number && call.number == run.call)
                        callResult = call.result;
                }
                const bool isOfWalk = run.call >= first && run.call < last;
                walkCalls += isOfWalk && run.fault == StoreFault::OutOfMemory ? 1 : 0;
                if (!run.call || isOfWalk)
                {
                    EXPECT_EQ(ExpectedWalkLog(run, ResultText(callResult)), walkLog);
                }
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
    // 6 for the subtree, 6 each for the inbox and the projects, 2 for the partners, 7 for the
    // contacts, which are asked for their ID twice, and 2 for each other folder.
    EXPECT_EQ(33u, walkCalls);
}

// Stores that give what no store may give.
TEST_F(OutlookProviderFaultTest, HostileAnswersDoNoHarm)
{
    for (const bool byFallback : {false, true})
    {
        const FaultScenario scenario = {
            .name = "logon on a hostile store",
            .setUp =
                [&](RecordingStore& store) {
                    AddStoreWithCategories(store);
                    store.AddFolder("projects", "inbox", L"IPF.Contact");
                    store.AddFolder("deleted", "wastebasket", L"IPF.Contact");
                    if (byFallback)
                        RemoveContactsProperty(store);
                },
            .action = [&] { LogOnAndEnd(); },
            .check = [&](const FaultRun&,
                         RecordingStore&) { EXPECT_TRUE(result == S_OK || result == E_FAIL); },
            .bystanders = {"categories", "contacts", "inbox", "projects", "subtree", "root"},
        };
        RunFaults(scenario, kHostileStoreFaults);
        RunHostileAnswers(scenario);
    }
}

// A store that shows the same folders below each folder, named anew each time.
TEST_F(OutlookProviderFaultTest, ATreeOfFoldersWithoutEndIsGivenUp)
{
    RecordingStore store;
    AddStoreWithCategories(store);
    store.AddFolder("projects", "inbox");
    store.AddFolder("family", "contacts");
    store.FailNext("IMAPITable(inbox hierarchy table).QueryRows", StoreFault::EndlessFolders);
    LogOnAndEnd();
    EXPECT_EQ(1u, store.SpoiledOutputs());
    EXPECT_EQ(S_OK, result);
    // The subtree's table and those of 8,192 folders, at about nine calls each.
    const StoreLines calls = store.Calls();
    EXPECT_EQ(8'193, std::ranges::count_if(calls, [](const std::string& line) {
                  return line.find(").GetHierarchyTable(") != line.npos;
              }));
    EXPECT_LT(store.FailableCalls(), 200'000u);
    EXPECT_EQ("", store.Complaints());
}

// Calls that fail although they gave what was asked for: all of it is given back.
TEST_F(OutlookProviderGivingFaultTest, WhatAFailedCallGaveIsGivenBack)
{
    unsigned runs = 0;
    for (const RecordedStoreCall& call : GivingCalls(AddStoreWithIdentity))
    {
        SCOPED_TRACE(call.text);
        CallsWith(AddStoreWithIdentity, call.number, StoreFault::FailsWithWork);
        ++runs;
    }
    EXPECT_EQ(41u, runs); // 44 calls, of which two read rows and one the identity's texts
}

// A failing call that gave something is a failing call: what follows is the same.
// Of the logon and of the question for the identity it is not: there the object itself counts.
TEST_F(OutlookProviderGivingFaultTest, WhatAFailedCallGaveIsNotUsed)
{
    unsigned runs = 0;
    for (const RecordedStoreCall& call : GivingCalls(AddStoreWithCategories))
    {
        if (call.text.starts_with("MAPILogonEx") ||
            call.text.find("QueryIdentity") != std::string::npos)
            continue;
        SCOPED_TRACE(call.text);
        EXPECT_EQ(CallsWith(AddStoreWithCategories, call.number, StoreFault::CallFailed),
                  CallsWith(AddStoreWithCategories, call.number, StoreFault::FailsWithWork));
        ++runs;
    }
    EXPECT_GT(runs, 30u);
}

// Sixteen bytes at null are no entry ID.
TEST_F(OutlookProviderFaultTest, ABinaryWithoutItsBytesIsNone)
{
    RecordingStore store;
    AddStoreWithIdentity(store);
    store.FailNext("IMAPIFolder(inbox).GetProps([36D10102]", StoreFault::NullPointers);
    LogOnAndEnd();
    EXPECT_EQ(S_OK, result);
    const StoreLines lines = store.Calls();
    const auto asked = std::ranges::find(lines, ReadInbox("36D10102"));
    ASSERT_NE(lines.end(), asked);
    ASSERT_NE(lines.end(), asked + 1);
    EXPECT_EQ(OpenRoot(), asked[1]);
}
