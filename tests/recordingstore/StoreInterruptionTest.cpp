// Calls of the recording store that let others in.
#include "tests/recordingstore/StoreInterruption.h"

#include "outlook/store/MAPIProxcy.h"

#include <gmock/gmock.h>

#include <optional>

using Microsoft::WRL::ComPtr;
using testing::ElementsAre;

namespace
{
class StoreInterruptionTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        MAPIINIT_0 init = {0, 0};
        ASSERT_TRUE(proxy.Load(RecordingStore::Path(), &init));
        store.ClearRecord();
    }
    void TearDown() override
    {
        session.Reset();
        proxy.Unload();
    }
    HRESULT LogOn()
    {
        return proxy.MAPILogonEx(0, nullptr, nullptr, 0, session.ReleaseAndGetAddressOf());
    }

    RecordingStore store;
    CMAPIProxcy proxy;
    ComPtr<IMAPISession> session;
    int runs = 0;
};
} // namespace

TEST_F(StoreInterruptionTest, RunsOnceBeforeTheCallDoesItsWork)
{
    const StoreInterruption interruption(store, "MAPILogonEx", [&] {
        ++runs;
        EXPECT_EQ(0u, store.LiveObjects());
        EXPECT_THAT(store.Calls(), ElementsAre("MAPILogonEx(0, null, null, 00000000)"));
    });
    EXPECT_FALSE(interruption.HasCome());
    EXPECT_EQ(S_OK, LogOn());
    EXPECT_TRUE(interruption.HasCome());
    EXPECT_TRUE(session);
    EXPECT_EQ(S_OK, LogOn());
    EXPECT_EQ(1, runs);
}

TEST_F(StoreInterruptionTest, CallsInsideHaveNumbersAndResultsOfTheirOwn)
{
    ASSERT_EQ(S_OK, LogOn());
    store.ClearRecord();
    store.Fail(2, StoreFault::OutOfMemory);
    const StoreInterruption interruption(store, "IMAPISession(session).GetMsgStoresTable", [&] {
        ComPtr<IMAPITable> inner;
        EXPECT_EQ(E_OUTOFMEMORY, session->GetMsgStoresTable(0, inner.GetAddressOf()));
    });
    ComPtr<IMAPITable> table;
    EXPECT_EQ(S_OK, session->GetMsgStoresTable(0, table.GetAddressOf()));
    EXPECT_TRUE(table);
    const std::vector<RecordedStoreCall> calls = store.Record();
    ASSERT_EQ(2u, calls.size());
    EXPECT_EQ(1u, calls[0].number);
    EXPECT_EQ(S_OK, calls[0].result);
    EXPECT_EQ(2u, calls[1].number);
    EXPECT_EQ(E_OUTOFMEMORY, calls[1].result);
}

TEST_F(StoreInterruptionTest, RunsInsideTheEndOfAnObjectToo)
{
    ASSERT_EQ(S_OK, LogOn());
    const StoreInterruption interruption(store, "release IMAPISession(session)", [&] { ++runs; });
    session.Reset();
    EXPECT_EQ(1, runs);
}

TEST_F(StoreInterruptionTest, DoesNotRunAfterItsEndOrAReset)
{
    std::optional<StoreInterruption> interruption;
    interruption.emplace(store, "MAPILogonEx", [&] { ++runs; });
    interruption.reset();
    EXPECT_EQ(S_OK, LogOn());
    session.Reset();
    proxy.Unload();
    const StoreInterruption forgotten(store, "MAPILogonEx", [&] { ++runs; });
    store.Reset();
    MAPIINIT_0 init = {0, 0};
    ASSERT_TRUE(proxy.Load(RecordingStore::Path(), &init));
    EXPECT_EQ(S_OK, LogOn());
    EXPECT_EQ(0, runs);
}
