#include "outlook/store/WAPProxcy.h"

#include "outlook/store/MapiMemory.h"
#include "tests/outlook/FakeAddressBook.h"
#include "tests/outlook/FakeWabMemory.h"
#include "tests/outlook/ExportNames.h"

#include <gtest/gtest.h>

using Calls = std::vector<std::string>;

namespace
{
class WAPProxcyTest : public testing::Test
{
  protected:
    FakeAddressBook book;
    CWAPProxcy proxy;
};

// Every operation that has a result fails, and every output stays as it was.
void ExpectNothingWorks(CNProxcy& proxy)
{
    IMAPISession* const session = reinterpret_cast<IMAPISession*>(1);
    LPMAPISESSION sessionOut = session;
    EXPECT_EQ(E_FAIL, proxy.MAPILogonEx(0, nullptr, nullptr, 0, &sessionOut));
    EXPECT_EQ(session, sessionOut);

    void* buffer = &proxy;
    proxy.AllocateBuffer(16, &buffer);
    EXPECT_EQ(&proxy, buffer);
    proxy.AllocateMore(16, &proxy, &buffer);
    EXPECT_EQ(&proxy, buffer);

    IStream* stream = reinterpret_cast<IStream*>(1);
    EXPECT_EQ(E_FAIL, proxy.WrapCompressedRTFStream(nullptr, 0, &stream));
    EXPECT_EQ(reinterpret_cast<IStream*>(1), stream);

    SPropValue* value = reinterpret_cast<SPropValue*>(1);
    EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
    EXPECT_EQ(reinterpret_cast<SPropValue*>(1), value);
}
} // namespace

TEST_F(WAPProxcyTest, LoadTellsWhetherTheLibraryCameUp)
{
    EXPECT_FALSE(proxy.Load(L"", nullptr));
    EXPECT_FALSE(proxy.Load(FakeAddressBook::Path() + L".none", nullptr));
    EXPECT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
}

TEST_F(WAPProxcyTest, UnloadFreesTheLibraryAndIsAlwaysTrue)
{
    EXPECT_TRUE(proxy.Unload());
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    EXPECT_TRUE(proxy.Unload());
    EXPECT_EQ((Calls{"unload"}), book.Calls());
    EXPECT_EQ(nullptr, proxy.FindEntry("WABOpen"));
    EXPECT_TRUE(proxy.Unload());
    EXPECT_EQ((Calls{"unload"}), book.Calls());
}

TEST_F(WAPProxcyTest, NothingWorksBeforeLoad)
{
    EXPECT_EQ(nullptr, proxy.FindEntry("WABOpen"));
    ExpectNothingWorks(proxy);
    EXPECT_EQ(Calls{}, book.Calls());
}

TEST_F(WAPProxcyTest, ALookupBeforeLoadIsNotRemembered)
{
    ASSERT_EQ(nullptr, proxy.FindEntry("HrGetOneProp"));
    ASSERT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, nullptr));
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    EXPECT_NE(nullptr, proxy.FindEntry("HrGetOneProp"));
    EXPECT_EQ(MAPI_E_NOT_FOUND, proxy.HrGetOneProp(nullptr, PR_ENTRYID, nullptr));
}

TEST_F(WAPProxcyTest, NothingWorksOverALibraryWithoutTheExports)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::BarePath(), nullptr));
    EXPECT_EQ(nullptr, proxy.FindEntry("WABOpen"));
    ExpectNothingWorks(proxy);
    EXPECT_EQ(Calls{}, book.Calls());
}

TEST_F(WAPProxcyTest, FindEntryTakesExactNames)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    EXPECT_NE(nullptr, proxy.FindEntry("WABOpen"));
    EXPECT_EQ(nullptr, proxy.FindEntry("wabopen"));
    EXPECT_EQ(nullptr, proxy.FindEntry("WABOpen@16"));
    EXPECT_EQ(nullptr, proxy.FindEntry(""));
    EXPECT_EQ(nullptr, proxy.FindEntry(nullptr));
}

TEST_F(WAPProxcyTest, AFoundAddressIsRemembered)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    const FARPROC found = proxy.FindEntry("WABOpen");
    ASSERT_NE(nullptr, found);
    const HiddenExport hidden(FakeAddressBook::Path(), "WABOpen");
    ASSERT_TRUE(hidden.IsHidden());
    EXPECT_EQ(found, proxy.FindEntry("WABOpen"));
    CWAPProxcy other;
    ASSERT_TRUE(other.Load(FakeAddressBook::Path(), nullptr));
    EXPECT_EQ(nullptr, other.FindEntry("WABOpen"));
}

TEST_F(WAPProxcyTest, AFailedLookupIsNotRepeated)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    {
        const HiddenExport hidden(FakeAddressBook::Path(), "HrGetOneProp");
        ASSERT_TRUE(hidden.IsHidden());
        EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, nullptr));
    }
    EXPECT_EQ(E_FAIL, proxy.HrGetOneProp(nullptr, PR_ENTRYID, nullptr));
    EXPECT_EQ(nullptr, proxy.FindEntry("HrGetOneProp"));
    CWAPProxcy other;
    ASSERT_TRUE(other.Load(FakeAddressBook::Path(), nullptr));
    EXPECT_NE(nullptr, other.FindEntry("HrGetOneProp"));
}

TEST_F(WAPProxcyTest, MapiFunctionsReportWhatTheLibraryExports)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    wchar_t profile[] = L"profile";
    wchar_t password[] = L"password";
    LPMAPISESSION session = nullptr;
    EXPECT_EQ(MAPI_E_LOGON_FAILED, proxy.MAPILogonEx(7, profile, password, 3, &session));
    void* buffer = nullptr;
    proxy.AllocateBuffer(16, &buffer);
    EXPECT_NE(nullptr, buffer);
    CoTaskMemFree(buffer);
    proxy.AllocateMore(16, &proxy, &buffer);
    EXPECT_EQ(&proxy, buffer);
    IStream* stream = nullptr;
    EXPECT_EQ(MAPI_E_CORRUPT_DATA, proxy.WrapCompressedRTFStream(nullptr, 2, &stream));
    SPropValue* value = nullptr;
    EXPECT_EQ(MAPI_E_NOT_FOUND, proxy.HrGetOneProp(nullptr, PR_ENTRYID, &value));
    EXPECT_EQ((Calls{"MAPILogonEx 7 profile password 3",
                     "MAPIAllocateBuffer",
                     "MAPIAllocateMore",
                     "WrapCompressedRTFStream 2",
                     "HrGetOneProp PR_ENTRYID"}),
              book.Calls());
}

TEST_F(WAPProxcyTest, HrQueryAllRowsIsNeverLookedFor)
{
    EXPECT_EQ(E_NOTIMPL, proxy.HrQueryAllRows(nullptr, nullptr, nullptr, nullptr, 0, nullptr));
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    SRowSet* rows = reinterpret_cast<SRowSet*>(1);
    EXPECT_EQ(E_NOTIMPL, proxy.HrQueryAllRows(nullptr, nullptr, nullptr, nullptr, 0, &rows));
    EXPECT_EQ(reinterpret_cast<SRowSet*>(1), rows);
    EXPECT_EQ(Calls{}, book.Calls());
}

TEST_F(WAPProxcyTest, MemoryIsFreedThroughTheWabObject)
{
    FakeWabMemory memory;
    EXPECT_FALSE(proxy.SetValue(0x101, static_cast<IWABObject*>(&memory)));
    int buffer = 0;
    proxy.FreeBuffer(&buffer);
    EXPECT_EQ((std::vector<void*>{&buffer}), memory.freed);
}

TEST_F(WAPProxcyTest, ARowSetIsFreedRowByRowAndThenItself)
{
    FakeWabMemory memory;
    proxy.SetValue(0x101, static_cast<IWABObject*>(&memory));
    SPropValue first[1] = {};
    SPropValue second[2] = {};
    alignas(SRowSet) BYTE storage[CbNewSRowSet(2)] = {};
    auto* const rows = reinterpret_cast<SRowSet*>(storage);
    rows->cRows = 2;
    rows->aRow[0].lpProps = first;
    rows->aRow[1].lpProps = second;
    proxy.FreeProws(rows);
    EXPECT_EQ((std::vector<void*>{first, second, rows}), memory.freed);
}

TEST_F(WAPProxcyTest, FreeingNothingOrWithoutAWabObjectDoesNothing)
{
    int buffer = 0;
    SRowSet rows = {};
    proxy.FreeBuffer(&buffer);
    proxy.FreeProws(&rows);
    FakeWabMemory memory;
    EXPECT_FALSE(proxy.SetValue(0x102, static_cast<IWABObject*>(&memory)));
    proxy.FreeBuffer(&buffer);
    proxy.SetValue(0x101, static_cast<IWABObject*>(&memory));
    proxy.FreeBuffer(nullptr);
    proxy.FreeProws(nullptr);
    EXPECT_EQ(std::vector<void*>{}, memory.freed);
    proxy.SetValue(0x101, nullptr);
    proxy.FreeBuffer(&buffer);
    EXPECT_EQ(std::vector<void*>{}, memory.freed);
}

TEST_F(WAPProxcyTest, OwnersFreeThroughTheirProxy)
{
    FakeWabMemory memory;
    proxy.SetValue(0x101, static_cast<IWABObject*>(&memory));
    SPropValue value = {};
    SRowSet rows = {};
    {
        const MapiBuffer<SPropValue> owner = AdoptMapiBuffer(&value, proxy);
        EXPECT_EQ(&value, owner.get());
        const MapiRowSet rowOwner = AdoptMapiRowSet(&rows, proxy);
        const MapiBuffer<SPropValue> empty = AdoptMapiBuffer<SPropValue>(nullptr, proxy);
        EXPECT_EQ(std::vector<void*>{}, memory.freed);
    }
    EXPECT_EQ((std::vector<void*>{&rows, &value}), memory.freed);
}

TEST_F(WAPProxcyTest, ASecondLoadGivesTheFirstLibraryUp)
{
    ASSERT_TRUE(proxy.Load(FakeAddressBook::Path(), nullptr));
    ASSERT_NE(nullptr, proxy.FindEntry("WABOpen"));
    ASSERT_TRUE(proxy.Load(FakeAddressBook::BarePath(), nullptr));
    EXPECT_EQ((Calls{"unload"}), book.Calls());
    EXPECT_EQ(nullptr, proxy.FindEntry("WABOpen"));
}
