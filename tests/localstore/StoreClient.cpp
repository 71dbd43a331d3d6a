#include "tests/localstore/StoreClient.h"

#include <cstring>

SPropValue LongValue(ULONG tag, LONG value)
{
    SPropValue out{};
    out.ulPropTag = tag;
    out.Value.l = value;
    return out;
}

SPropValue BooleanValue(ULONG tag, bool value)
{
    SPropValue out{};
    out.ulPropTag = tag;
    out.Value.b = value ? 1 : 0;
    return out;
}

SPropValue TextValue(ULONG tag, const wchar_t* value)
{
    SPropValue out{};
    out.ulPropTag = tag;
    out.Value.lpszW = const_cast<wchar_t*>(value);
    return out;
}

SPropValue BinaryValue(ULONG tag, const void* bytes, size_t size)
{
    SPropValue out{};
    out.ulPropTag = tag;
    out.Value.bin.cb = static_cast<ULONG>(size);
    out.Value.bin.lpb = static_cast<BYTE*>(const_cast<void*>(bytes));
    return out;
}

template <typename Function> void StoreLibrary::Bind(Function& function, const char* name)
{
    function = reinterpret_cast<Function>(reinterpret_cast<void*>(Address(name)));
    EXPECT_NE(nullptr, function) << name;
}

StoreLibrary::StoreLibrary()
    : m_module(LoadLibraryW((ProgramFolder() + L"PimLocalStore.dll").c_str()))
{
    EXPECT_TRUE(m_module);
    Bind(Initialize, "MAPIInitialize");
    Bind(Uninitialize, "MAPIUninitialize");
    Bind(LogonEx, "MAPILogonEx");
    Bind(FreeProws, "FreeProws@4");
    Bind(FreeBuffer, "MAPIFreeBuffer");
    Bind(AllocateBuffer, "MAPIAllocateBuffer");
    Bind(AllocateMore, "MAPIAllocateMore");
    Bind(WrapRtf, "WrapCompressedRTFStream");
    Bind(GetOneProp, "HrGetOneProp");
    Bind(QueryAllRows, "HrQueryAllRows@24");
}

StoreTest::StoreTest() : m_path(m_folder.File(L"store.db")), m_setting(m_path) {}

StoreTest::~StoreTest()
{
    m_store.Reset();
    m_session.Reset();
    m_library.Uninitialize();
}

void StoreTest::SetUp()
{
    // The record with which the server begins: version 0, no initialisation of COM.
    MAPIINIT_0 record{0, 8};
    ASSERT_EQ(S_OK, m_library.Initialize(&record));
    m_session = LogOn();
    ASSERT_TRUE(m_session);
    m_store = OpenDefaultStore(m_session.Get());
    ASSERT_TRUE(m_store);
}

ComPtr<IMAPISession> StoreTest::LogOn()
{
    ComPtr<IMAPISession> session;
    EXPECT_EQ(S_OK, m_library.LogonEx(0, nullptr, nullptr, kLogonFlags, &session));
    return session;
}

ComPtr<IMsgStore> StoreTest::OpenDefaultStore(IMAPISession* session, ULONG flags)
{
    ComPtr<IMAPITable> table;
    EXPECT_EQ(S_OK, session->GetMsgStoresTable(0, table.GetAddressOf()));
    Tags columns{PR_ENTRYID, PR_DEFAULT_STORE};
    EXPECT_EQ(S_OK, table->SetColumns(columns, 0));
    LPSRowSet rows = nullptr;
    EXPECT_EQ(S_OK, table->QueryRows(1, 0, &rows));
    ComPtr<IMsgStore> store;
    if (rows && rows->cRows == 1)
    {
        EXPECT_EQ(static_cast<ULONG>(PR_DEFAULT_STORE), rows->aRow[0].lpProps[1].ulPropTag);
        EXPECT_EQ(1, rows->aRow[0].lpProps[1].Value.b);
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        EXPECT_EQ(S_OK,
                  session->OpenMsgStore(0,
                                        id.cb,
                                        reinterpret_cast<LPENTRYID>(id.lpb),
                                        nullptr,
                                        flags,
                                        store.GetAddressOf()));
    }
    m_library.FreeProws(rows);
    return store;
}

EntryBytes StoreTest::Binary(IMAPIProp* object, ULONG tag)
{
    SPropValue* value = nullptr;
    EntryBytes bytes;
    if (SUCCEEDED(m_library.GetOneProp(object, tag, &value)))
        bytes.assign(value->Value.bin.lpb, value->Value.bin.lpb + value->Value.bin.cb);
    m_library.FreeBuffer(value);
    return bytes;
}

std::wstring StoreTest::Text(IMAPIProp* object, ULONG tag)
{
    SPropValue* value = nullptr;
    const HRESULT result = m_library.GetOneProp(object, tag, &value);
    const std::wstring text = SUCCEEDED(result) ? value->Value.lpszW : L"-";
    m_library.FreeBuffer(value);
    return text;
}

HRESULT StoreTest::ValueError(IMAPIProp* object, ULONG tag)
{
    SPropValue* value = nullptr;
    const HRESULT result = m_library.GetOneProp(object, tag, &value);
    m_library.FreeBuffer(value);
    return result;
}

LONG StoreTest::Long(IMAPIProp* object, ULONG tag)
{
    SPropValue* value = nullptr;
    const LONG number = SUCCEEDED(m_library.GetOneProp(object, tag, &value)) ? value->Value.l : -1;
    m_library.FreeBuffer(value);
    return number;
}

LONGLONG StoreTest::Time(IMAPIProp* object, ULONG tag)
{
    SPropValue* value = nullptr;
    const LONGLONG time =
        SUCCEEDED(m_library.GetOneProp(object, tag, &value)) ? value->Value.li.QuadPart : -1;
    m_library.FreeBuffer(value);
    return time;
}

ComPtr<IMAPIFolder> StoreTest::OpenFolder(const EntryBytes& id, ULONG flags)
{
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, Open(m_store.Get(), id, flags, object.GetAddressOf(), &type));
    EXPECT_EQ(static_cast<ULONG>(MAPI_FOLDER), type);
    // The server takes the pointer of OpenEntry as the folder.
    return static_cast<IMAPIFolder*>(object.Get());
}

ComPtr<IMessage> StoreTest::OpenMessage(const EntryBytes& id, ULONG flags)
{
    ULONG type = 0;
    ComPtr<IUnknown> object;
    EXPECT_EQ(S_OK, Open(m_store.Get(), id, flags, object.GetAddressOf(), &type));
    EXPECT_EQ(static_cast<ULONG>(MAPI_MESSAGE), type);
    return static_cast<IMessage*>(object.Get());
}

ComPtr<IMAPIFolder> StoreTest::RootFolder()
{
    return OpenFolder({});
}

ComPtr<IMAPIFolder> StoreTest::Contacts()
{
    return OpenFolder(Binary(RootFolder().Get(), kContactFolder));
}

HRESULT StoreTest::MakeSubfolder(IMAPIFolder* folder,
                                 const wchar_t* name,
                                 ComPtr<IMAPIFolder>& made)
{
    return folder->CreateFolder(FOLDER_GENERIC,
                                reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(name)),
                                nullptr,
                                nullptr,
                                MAPI_UNICODE,
                                made.ReleaseAndGetAddressOf());
}

HRESULT StoreTest::DeleteSubfolder(IMAPIFolder* folder, EntryBytes id, ULONG flags)
{
    return folder->DeleteFolder(
        static_cast<ULONG>(id.size()), reinterpret_cast<LPENTRYID>(id.data()), 0, nullptr, flags);
}

EntryBytes StoreTest::AddMessage(IMAPIFolder* folder,
                                 const wchar_t* messageClass,
                                 const wchar_t* subject,
                                 ULONG flags)
{
    ComPtr<IMessage> message;
    EXPECT_EQ(S_OK, folder->CreateMessage(nullptr, flags, message.GetAddressOf()));
    SPropValue values[] = {TextValue(PR_MESSAGE_CLASS_W, messageClass),
                           TextValue(PR_SUBJECT_W, subject)};
    EXPECT_EQ(S_OK, message->SetProps(2, values, nullptr));
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    return Binary(message.Get(), PR_ENTRYID);
}

std::vector<std::wstring> StoreTest::Column(IMAPITable* table, ULONG tag)
{
    std::vector<std::wstring> texts;
    LPSRowSet rows = nullptr;
    Tags columns{tag};
    EXPECT_EQ(S_OK, m_library.QueryAllRows(table, columns, nullptr, nullptr, 0, &rows));
    for (ULONG i = 0; rows && i < rows->cRows; ++i)
    {
        const SPropValue& value = rows->aRow[i].lpProps[0];
        texts.push_back(PROP_TYPE(value.ulPropTag) == PT_UNICODE ? value.Value.lpszW : L"-");
    }
    m_library.FreeProws(rows);
    return texts;
}
