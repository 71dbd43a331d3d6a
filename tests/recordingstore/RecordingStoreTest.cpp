// The recording store itself: its lines, its faults and its books. What it stores is the business
// of tests/storeconformance.
#include "tests/recordingstore/RecordingStore.h"

#include "outlook/store/MAPIProxcy.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::IsEmpty;
using testing::IsNull;

TEST(RecordingStoreTest, WritesALogonDownThroughTheProxy)
{
    RecordingStore store;
    {
        CMAPIProxcy proxy;
        MAPIINIT_0 init = {0, 8};
        ASSERT_TRUE(proxy.Load(RecordingStore::Path(), &init));
        IMAPISession* session = nullptr;
        ASSERT_EQ(S_OK, proxy.MAPILogonEx(0, nullptr, nullptr, 0x62, &session));
        IMAPITable* table = nullptr;
        ASSERT_EQ(S_OK, session->GetMsgStoresTable(0, &table));
        SPropTagArray columns = {1, {0x0FFF0102}};
        LPSRowSet rows = nullptr;
        EXPECT_EQ(S_OK, table->SetColumns(&columns, 0));
        ASSERT_EQ(S_OK, table->QueryRows(1, 0, &rows));
        ASSERT_EQ(1u, rows->cRows);
        const SBinary entry = rows->aRow[0].lpProps[0].Value.bin;
        IMsgStore* opened = nullptr;
        EXPECT_EQ(S_OK,
                  session->OpenMsgStore(
                      0, entry.cb, reinterpret_cast<LPENTRYID>(entry.lpb), nullptr, 0xC, &opened));
        proxy.FreeBuffer(&rows->aRow[0]);
        proxy.FreeProws(rows);
        EXPECT_EQ(3u, store.LiveObjects());
        opened->Release();
        table->Release();
        session->Release();
        EXPECT_TRUE(proxy.Unload());
    }
    EXPECT_THAT(store.Calls(~0u),
                ElementsAre("MAPIInitialize(0, 00000008)",
                            "MAPILogonEx(0, null, null, 00000062)",
                            "IMAPISession(session).GetMsgStoresTable(00000000)",
                            "IMAPITable(stores table).SetColumns([0FFF0102], 00000000)",
                            "IMAPITable(stores table).QueryRows(1, 00000000)",
                            "IMAPISession(session).OpenMsgStore(0, store, null, 0000000C)",
                            "MAPIFreeBuffer(inside rows of stores table)",
                            "FreeProws@4(rows of stores table)",
                            "release IMsgStore(store)",
                            "release IMAPITable(stores table)",
                            "release IMAPISession(session)",
                            "MAPIUninitialize()"));
    EXPECT_EQ(1u, store.RefusedFrees());
    EXPECT_EQ("", store.Complaints());
}
