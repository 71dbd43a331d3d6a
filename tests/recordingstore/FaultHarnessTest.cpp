// The harness finds what goes wrong, and only that.
#include "tests/recordingstore/FaultHarness.h"

#include "outlook/store/MAPIProxcy.h"

#include <gtest/gtest-spi.h>
#include <gmock/gmock.h>

#include <set>

using Microsoft::WRL::ComPtr;

namespace
{
// Reads the entry IDs of the table of stores; how many.
unsigned CountStores(IMAPISession& session, CNProxcy& proxy)
{
    ComPtr<IMAPITable> table;
    if (FAILED(session.GetMsgStoresTable(0, table.GetAddressOf())) || !table)
        return 0;
    SPropTagArray columns = {1, {PR_ENTRYID}};
    LPSRowSet rows = nullptr;
    if (FAILED(table->SetColumns(&columns, 0)) || FAILED(table->QueryRows(10, 0, &rows)) || !rows)
        return 0;
    const unsigned count = rows->cRows;
    proxy.FreeProws(rows);
    return count;
}

unsigned LogOnAndCount()
{
    CMAPIProxcy proxy;
    MAPIINIT_0 init = {0, 8};
    if (!proxy.Load(RecordingStore::Path(), &init))
        return 0;
    unsigned count = 0;
    {
        ComPtr<IMAPISession> session;
        if (SUCCEEDED(proxy.MAPILogonEx(0, nullptr, nullptr, 0, session.GetAddressOf())) && session)
            count = CountStores(*session.Get(), proxy);
    }
    proxy.Unload();
    return count;
}
} // namespace

TEST(FaultHarnessTest, LetsEachCallFailInEachWay)
{
    unsigned counted = 0;
    std::set<std::pair<std::string, StoreFault>> seen;
    const FaultTotals totals = RunFaults({
        .name = "counting stores",
        .setUp = [](RecordingStore& store) { store.AddStore("other"); },
        .action = [&] { counted = LogOnAndCount(); },
        .check =
            [&](const FaultRun& run, RecordingStore& store) {
                EXPECT_TRUE(seen.emplace(run.line, run.fault).second);
                if (run.fault == StoreFault::None)
                {
                    EXPECT_EQ(2u, counted);
                }
                else if (run.fault == StoreFault::OutOfMemory)
                {
                    EXPECT_EQ(0u, counted);
                    EXPECT_EQ(E_OUTOFMEMORY, store.Record()[run.call - 1].result);
                }
                else if (run.fault == StoreFault::FewerValues)
                {
                    EXPECT_EQ(run.line.find("QueryRows") == std::string::npos ? 2u : 1u, counted);
                }
            },
    });
    // MAPIInitialize, MAPILogonEx, GetMsgStoresTable, SetColumns, QueryRows.
    EXPECT_EQ(5u, totals.calls);
    EXPECT_EQ(20u, totals.runs);
    EXPECT_EQ(21u, seen.size());
}

TEST(FaultHarnessTest, TellsOfALeakThatOneFailureBrings)
{
    static const FaultScenario scenario = {
        .name = "leaking",
        .setUp = {},
        .action =
            [] {
                CMAPIProxcy proxy;
                MAPIINIT_0 init = {0, 8};
                if (!proxy.Load(RecordingStore::Path(), &init))
                    return;
                IMAPISession* session = nullptr;
                proxy.MAPILogonEx(0, nullptr, nullptr, 0, &session);
                IMAPITable* table = nullptr;
                if (session && SUCCEEDED(session->GetMsgStoresTable(0, &table)) && table)
                {
                    table->Release();
                    session->Release();
                }
                proxy.Unload();
            },
        .check = {},
    };
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        RunFaults(scenario);
    }
    // GetMsgStoresTable fails with two codes, and gives a null.
    ASSERT_EQ(3, failures.size());
    for (int i = 0; i < failures.size(); ++i)
    {
        const std::string message = failures.GetTestPartResult(i).message();
        EXPECT_THAT(message, testing::HasSubstr("leaked: IMAPISession(session)"));
        EXPECT_THAT(message, testing::HasSubstr("call 3 IMAPISession(session).GetMsgStoresTable"));
    }
}

TEST(FaultHarnessTest, GivesEachCallTheAnswersThatItsOutputsCanHave)
{
    std::set<std::pair<std::string, StoreFault>> seen;
    const FaultTotals totals = RunHostileAnswers({
        .name = "counting stores of a hostile library",
        .setUp = [](RecordingStore& store) { store.AddStore("other"); },
        .action = [] { LogOnAndCount(); },
        .check = [&](const FaultRun& run,
                     RecordingStore&) { EXPECT_TRUE(seen.emplace(run.line, run.fault).second); },
    });
    // Of its five calls, the one for the rows gives what can be spoiled.
    EXPECT_EQ(5u, totals.calls);
    EXPECT_EQ(14u, totals.runs);
    EXPECT_EQ(15u, seen.size());
    EXPECT_TRUE(seen.contains(
        {"IMAPITable(stores table).QueryRows(10, 00000000)", StoreFault::NullPointers}));
}

// The harness's store is the library's one, so that the work can reach it beside its calls.
TEST(FaultHarnessTest, TellsOfAChangedBystander)
{
    static RecordingStore* current = nullptr;
    static const FaultScenario scenario = {
        .name = "changing what is another's",
        .setUp =
            [](RecordingStore& store) {
                store.AddUsualFolders();
                current = &store;
            },
        .action =
            [] {
                LogOnAndCount();
                current->SetProps("inbox", StoreProps().Text(PR_DISPLAY_NAME_W, L"Changed"));
            },
        .check = {},
        .bystanders = {"inbox"},
    };
    testing::TestPartResultArray failures;
    {
        const testing::ScopedFakeTestPartResultReporter reporter(
            testing::ScopedFakeTestPartResultReporter::INTERCEPT_ONLY_CURRENT_THREAD, &failures);
        const StoreFault fault = StoreFault::CallFailed;
        RunFaults(scenario, {&fault, 1});
    }
    // The run without a failure and one for each of the five calls.
    ASSERT_EQ(6, failures.size());
    EXPECT_THAT(failures.GetTestPartResult(0).message(), testing::HasSubstr("Changed"));
}
