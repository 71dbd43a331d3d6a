// The recording store itself: its lines, its faults and its books. What it stores is the business
// of tests/storeconformance.
#include "tests/recordingstore/RecordingStore.h"

#include "outlook/store/MAPIProxcy.h"

#include <gmock/gmock.h>

#include <mapiguid.h>

#include <thread>

using Microsoft::WRL::ComPtr;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;

namespace
{
// A session and the store "store", through the library's names.
class RecordingStoreCallTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        m_store.AddUsualFolders();
        MAPIINIT_0 init = {0, 0};
        ASSERT_TRUE(m_proxy.Load(RecordingStore::Path(), &init));
        ASSERT_EQ(S_OK, m_proxy.MAPILogonEx(0, nullptr, nullptr, 0, m_session.GetAddressOf()));
        m_isLoaded = true;
    }
    void TearDown() override
    {
        m_session.Reset();
        if (m_isLoaded)
            m_proxy.Unload();
    }
    // Opens by the session, without a line of the record.
    template <typename T> ComPtr<T> Open(const char* name)
    {
        std::vector<BYTE> id = m_store.EntryIdOf(name);
        IUnknown* opened = nullptr;
        EXPECT_EQ(S_OK,
                  m_session->OpenEntry(static_cast<ULONG>(id.size()),
                                       reinterpret_cast<LPENTRYID>(id.data()),
                                       nullptr,
                                       MAPI_BEST_ACCESS,
                                       nullptr,
                                       &opened));
        ComPtr<T> object;
        *object.GetAddressOf() = static_cast<T*>(opened);
        m_store.ClearRecord();
        return object;
    }

    RecordingStore m_store;
    CMAPIProxcy m_proxy;
    ComPtr<IMAPISession> m_session;
    bool m_isLoaded = false;
};

SPropValue Text(ULONG tag, const wchar_t* text)
{
    SPropValue value = {};
    value.ulPropTag = tag;
    value.Value.lpszW = const_cast<wchar_t*>(text);
    return value;
}
} // namespace

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

TEST_F(RecordingStoreCallTest, ShowsArgumentsOfEveryKind)
{
    const GUID set = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};
    ASSERT_EQ(0x8000u, m_store.NameProperty(set, 0x8062));
    const auto contacts = Open<IMAPIFolder>("contacts");
    IMessage* made = nullptr;
    ASSERT_EQ(S_OK, contacts->CreateMessage(nullptr, MAPI_ASSOCIATED, &made));
    ComPtr<IMessage> message;
    *message.GetAddressOf() = made;
    BYTE bytes[] = {1, 0xAB};
    std::vector<BYTE> inbox = m_store.EntryIdOf("inbox");
    SPropValue values[4] = {Text(PR_SUBJECT_W, L"a \"b\" \x00E4"), {}, {}, {}};
    values[1].ulPropTag = PR_IMPORTANCE;
    values[1].Value.l = -1;
    values[2].ulPropTag = PROP_TAG(PT_BINARY, 0x6800);
    values[2].Value.bin = {2, bytes};
    values[3].ulPropTag = PROP_TAG(PT_BINARY, 0x6801);
    values[3].Value.bin = {static_cast<ULONG>(inbox.size()), inbox.data()};
    LPSPropProblemArray problems = nullptr;
    EXPECT_EQ(S_OK, message->SetProps(4, values, &problems));
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    MAPINAMEID names[2] = {};
    GUID copy = set;
    wchar_t keywords[] = L"Keywords";
    names[0].lpguid = names[1].lpguid = &copy;
    names[0].ulKind = MNID_ID;
    names[0].Kind.lID = 0x8062;
    names[1].ulKind = MNID_STRING;
    names[1].Kind.lpwstrName = keywords;
    MAPINAMEID* pointers[] = {&names[0], &names[1]};
    SPropTagArray* tags = nullptr;
    EXPECT_EQ(MAPI_W_ERRORS_RETURNED, message->GetIDsFromNames(2, pointers, 0, &tags));
    m_proxy.FreeBuffer(tags);
    IUnknown* stream = nullptr;
    EXPECT_EQ(MAPI_E_NOT_FOUND, message->OpenProperty(0x10090102, &IID_IStream, 0, 0, &stream));
    SBinary entries[] = {{static_cast<ULONG>(inbox.size()), inbox.data()}, {2, bytes}};
    SBinaryArray list = {2, entries};
    EXPECT_EQ(MAPI_W_PARTIAL_COMPLETION, contacts->DeleteMessages(&list, 0, nullptr, 0));
    EXPECT_THAT(
        m_store.Calls(),
        ElementsAre(
            "IMAPIFolder(contacts).CreateMessage(null, 00000040)",
            "IMessage(new 1).SetProps({0037001F \"a \\x0022b\\x0022 \\x00E4\", 00170003 -1, "
            "68000102 <01AB>, 68010102 inbox}, problems)",
            "IMessage(new 1).SaveChanges(00000004)",
            "IMessage(new 1).GetIDsFromNames([{00062004-0000-0000-C000-000000000046} 8062 "
            "\"Keywords\"], 00000000)",
            "IMessage(new 1).OpenProperty(10090102, IStream, 0, 00000000)",
            "IMAPIFolder(contacts).DeleteMessages([inbox, <01AB>], 0, null, 00000000)"));
    EXPECT_EQ(MAPI_W_ERRORS_RETURNED, m_store.Record()[3].result);
    EXPECT_THAT(m_store.PropsOf("new 1"),
                ElementsAre("00170003 -1",
                            "0037001F \"a \\x0022b\\x0022 \\x00E4\"",
                            "68000102 <01AB>",
                            "68010102 inbox"));
}

TEST_F(RecordingStoreCallTest, FailsOneCallInEachWay)
{
    m_store.AddMessage("ann", "contacts", StoreProps().Text(PR_SUBJECT_W, L"Ann"));
    const auto message = Open<IMessage>("ann");
    SPropTagArray tag = {1, {PR_SUBJECT_W}};
    const struct
    {
        StoreFault fault;
        HRESULT result;
        bool hasValues;
        ULONG count;
        ULONG tag;
    } cases[] = {
        {StoreFault::OutOfMemory, E_OUTOFMEMORY, false, 0, 0},
        {StoreFault::CallFailed, MAPI_E_CALL_FAILED, false, 0, 0},
        {StoreFault::NullOutput, S_OK, false, 0, 0},
        {StoreFault::FewerValues, MAPI_W_ERRORS_RETURNED, true, 0, 0},
        {StoreFault::WrongTypes, S_OK, true, 1, CHANGE_PROP_TYPE(PR_SUBJECT_W, PT_LONG)},
        {StoreFault::ShortRows, S_OK, true, 0, 0},
        {StoreFault::FailsWithWork, MAPI_E_CALL_FAILED, true, 1, PR_SUBJECT_W},
        {StoreFault::None, S_OK, true, 1, PR_SUBJECT_W},
    };
    for (const auto& wanted : cases)
    {
        SCOPED_TRACE(NameOf(wanted.fault));
        m_store.FailNext("IMessage(ann).GetProps", wanted.fault);
        ULONG count = 99;
        SPropValue* values = reinterpret_cast<SPropValue*>(16);
        EXPECT_EQ(wanted.result, message->GetProps(&tag, MAPI_UNICODE, &count, &values));
        EXPECT_EQ(wanted.hasValues, values != nullptr);
        EXPECT_EQ(wanted.count, count);
        if (values && count)
        {
            EXPECT_EQ(wanted.tag, values->ulPropTag);
        }
        if (values)
            m_proxy.FreeBuffer(values);
    }
    EXPECT_EQ(0u, m_store.LiveBuffers());
}

TEST_F(RecordingStoreCallTest, ACallThatFailsDoesNothing)
{
    m_store.AddMessage("ann", "contacts");
    const auto message = Open<IMessage>("ann");
    SPropValue value = Text(PR_SUBJECT_W, L"Ann");
    m_store.FailNext("IMessage(ann).SetProps", StoreFault::NullOutput);
    EXPECT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    m_store.FailNext("IMessage(ann).SaveChanges", StoreFault::CallFailed);
    EXPECT_EQ(MAPI_E_CALL_FAILED, message->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(m_store.PropsOf("ann"), IsEmpty());
    EXPECT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    m_store.FailNext("IMessage(ann).SaveChanges", StoreFault::OutOfMemory);
    EXPECT_EQ(E_OUTOFMEMORY, message->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(m_store.PropsOf("ann"), IsEmpty());
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    EXPECT_THAT(m_store.PropsOf("ann"), ElementsAre("0037001F \"Ann\""));
}

TEST_F(RecordingStoreCallTest, TellsWhatIsHeld)
{
    const auto inbox = Open<IMAPIFolder>("inbox");
    void* buffer = nullptr;
    m_proxy.AllocateBuffer(10, &buffer);
    void* more = nullptr;
    m_proxy.AllocateMore(10, buffer, &more);
    EXPECT_EQ(2u, m_store.LiveObjects());
    EXPECT_EQ(1u, m_store.LiveBuffers());
    EXPECT_THAT(
        m_store.Leaks(),
        testing::UnorderedElementsAre("IMAPISession(session)", "IMAPIFolder(inbox)", "allocated"));
    EXPECT_FALSE(m_store.IsClean());
    m_proxy.FreeBuffer(buffer);
    EXPECT_EQ(0u, m_store.LiveBuffers());
}

TEST_F(RecordingStoreCallTest, CallsOfTheDeadAreViolations)
{
    IMAPIFolder* const inbox = Open<IMAPIFolder>("inbox").Get();
    ULONG count = 0;
    SPropValue* values = nullptr;
    inbox->GetProps(nullptr, MAPI_UNICODE, &count, &values);
    m_proxy.FreeBuffer(values);
    m_proxy.FreeBuffer(values);
    std::thread([&] { m_session->AddRef(); }).join();
    m_session->Release();
    EXPECT_THAT(m_store.Violations(),
                ElementsAre("released: IMAPIFolder(inbox).GetProps(null, 80000000)",
                            "freed twice: MAPIFreeBuffer(freed props of inbox)",
                            "another thread: IMAPISession(session).AddRef()"));

    IMAPISession* const session = m_session.Get();
    m_proxy.Unload();
    m_isLoaded = false;
    session->GetMsgStoresTable(0, nullptr);
    EXPECT_THAT(m_store.Violations(),
                Contains("not initialised: IMAPISession(session).GetMsgStoresTable(00000000)"));
}

TEST_F(RecordingStoreCallTest, RowsMayShowAnotherEntryIdThanTheMessage)
{
    m_store.AddMessage("ann", "contacts");
    m_store.SetRowEntryId("ann", {0, 0, 0, 0, 7});
    const auto contacts = Open<IMAPIFolder>("contacts");
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, contacts->GetContentsTable(0, table.GetAddressOf()));
    SPropTagArray columns = {1, {PR_ENTRYID}};
    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, m_proxy.HrQueryAllRows(table.Get(), &columns, nullptr, nullptr, 0, &rows));
    const SBinary id = rows->aRow[0].lpProps[0].Value.bin;
    EXPECT_EQ(5u, id.cb);
    IUnknown* opened = nullptr;
    ASSERT_EQ(S_OK,
              contacts->OpenEntry(
                  id.cb, reinterpret_cast<LPENTRYID>(id.lpb), nullptr, 2, nullptr, &opened));
    opened->Release();
    m_proxy.FreeProws(rows);
    EXPECT_THAT(m_store.Calls(),
                ElementsAre("IMAPIFolder(contacts).GetContentsTable(00000000)",
                            "HrQueryAllRows@24(IMAPITable(contacts contents table), [0FFF0102], "
                            "null, null, 0)",
                            "IMAPIFolder(contacts).OpenEntry(ann (row), null, 00000002)"));
}

TEST_F(RecordingStoreCallTest, SavesGoByTheClockOfTheTest)
{
    m_store.SetClock(1000, 10);
    m_store.AddMessage("ann", "contacts");
    const auto message = Open<IMessage>("ann");
    SPropTagArray tag = {1, {PR_LAST_MODIFICATION_TIME}};
    for (const DWORD time : {1000u, 1010u})
    {
        EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
        ULONG count = 0;
        SPropValue* value = nullptr;
        ASSERT_EQ(S_OK, message->GetProps(&tag, 0, &count, &value));
        EXPECT_EQ(time, value->Value.ft.dwLowDateTime);
        m_proxy.FreeBuffer(value);
    }
    // Rows without it are there, too.
    m_store.RemoveProp("ann", PR_LAST_MODIFICATION_TIME);
    ULONG count = 0;
    SPropValue* value = nullptr;
    EXPECT_EQ(MAPI_W_ERRORS_RETURNED, message->GetProps(&tag, 0, &count, &value));
    m_proxy.FreeBuffer(value);
}

TEST(RecordingStoreTest, RefusesNamesThatAreUnknownOrTaken)
{
    RecordingStore store;
    EXPECT_THROW(store.AddFolder("a", "nowhere"), std::invalid_argument);
    store.AddFolder("a", "root");
    EXPECT_THROW(store.AddFolder("a", "root"), std::invalid_argument);
    EXPECT_THROW(store.AddMessage("b", "store"), std::invalid_argument);
    EXPECT_THROW(store.AddAttachment("a"), std::invalid_argument);
    EXPECT_THROW(store.PropsOf("b"), std::invalid_argument);
    EXPECT_THROW(store.Remove("root"), std::invalid_argument);
    EXPECT_THAT(store.ChildrenOf("root"), ElementsAre("a"));
    store.Remove("a");
    EXPECT_FALSE(store.Exists("a"));
    EXPECT_THAT(store.ChildrenOf("root"), IsEmpty());
}
