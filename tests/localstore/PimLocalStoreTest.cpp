// Loads the built PimLocalStore.dll the way the server does, and takes the server's road through
// it.
#include "tests/localstore/StoreClient.h"

#include <gmock/gmock.h>

#include <cstring>

using testing::ElementsAre;

namespace
{

class PimLocalStoreTest : public StoreTest
{
};

// The names of the modules that the library imports from.
std::vector<std::string> Imports(HMODULE module)
{
    const auto* base = reinterpret_cast<const BYTE*>(module);
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    std::vector<std::string> names;
    for (const auto* import =
             reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
         import->Name != 0;
         ++import)
        names.emplace_back(reinterpret_cast<const char*>(base + import->Name));
    return names;
}

} // namespace

TEST_F(PimLocalStoreTest, ExportsTheNamesThatTheServerBindsAndNoOthers)
{
    // The constructor of StoreLibrary found all ten.
    for (const char* name :
         {"FreeProws", "HrQueryAllRows", "WABOpen", "DllMain", "MAPILogon", "StoreLogonEx"})
        EXPECT_EQ(nullptr, m_library.Address(name)) << name;
}

TEST_F(PimLocalStoreTest, NeedsNoLibraryBesideThoseOfTheSystem)
{
    wchar_t system[MAX_PATH] = {};
    GetSystemDirectoryW(system, MAX_PATH);
    const auto names = Imports(GetModuleHandleW(L"PimLocalStore.dll"));
    EXPECT_GT(names.size(), 2u);
    for (const std::string& name : names)
    {
        const std::wstring path =
            std::wstring(system) + L"\\" + std::wstring(name.begin(), name.end());
        EXPECT_NE(INVALID_FILE_ATTRIBUTES, GetFileAttributesW(path.c_str())) << name;
    }
}

TEST_F(PimLocalStoreTest, TheRoadFromTheReceiveFolderToAContactFolder)
{
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(S_OK,
              m_store->GetReceiveFolder(reinterpret_cast<LPTSTR>(const_cast<wchar_t*>(L"IPM.Note")),
                                        MAPI_UNICODE,
                                        &size,
                                        &id,
                                        nullptr));
    ASSERT_LE(size, 24u);
    ULONG type = 0;
    ComPtr<IUnknown> inboxObject;
    ASSERT_EQ(
        S_OK,
        m_store->OpenEntry(size, id, nullptr, MAPI_BEST_ACCESS, &type, inboxObject.GetAddressOf()));
    EXPECT_EQ(S_OK, m_library.FreeBuffer(id));
    auto* inbox = static_cast<IMAPIFolder*>(inboxObject.Get());

    Tags tags{kContactFolder};
    ULONG count = 0;
    SPropValue* values = nullptr;
    ASSERT_EQ(S_OK, inbox->GetProps(tags, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(1u, count);
    ASSERT_EQ(kContactFolder, values->ulPropTag);
    ComPtr<IUnknown> contactsObject;
    ASSERT_EQ(S_OK,
              m_store->OpenEntry(values->Value.bin.cb,
                                 reinterpret_cast<LPENTRYID>(values->Value.bin.lpb),
                                 nullptr,
                                 MAPI_BEST_ACCESS,
                                 &type,
                                 contactsObject.GetAddressOf()));
    EXPECT_EQ(S_OK, m_library.FreeBuffer(values));
    auto* contacts = static_cast<IMAPIFolder*>(contactsObject.Get());
    EXPECT_EQ(L"IPF.Contact", Text(contacts, PR_CONTAINER_CLASS_W));
    EXPECT_EQ(0, Long(contacts, PR_CONTENT_COUNT));
}

TEST_F(PimLocalStoreTest, TheSubtreeListsTheDefaultFolders)
{
    const auto subtree = OpenFolder(Binary(m_store.Get(), PR_IPM_SUBTREE_ENTRYID));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, subtree->GetHierarchyTable(0, table.GetAddressOf()));
    EXPECT_THAT(Column(table.Get(), PR_DISPLAY_NAME_W),
                ElementsAre(L"Inbox", L"Deleted Items", L"Calendar", L"Contacts"));
    EXPECT_THAT(Column(table.Get(), PR_CONTAINER_CLASS_W),
                ElementsAre(L"IPF.Note", L"-", L"IPF.Appointment", L"IPF.Contact"));
}

TEST_F(PimLocalStoreTest, TheRowsOfTheFolderWalkHaveAllFiveColumns)
{
    AddMessage(Contacts().Get(), L"IPM.Contact", L"one");
    AddMessage(Contacts().Get(), L"IPM.Contact", L"hidden", MAPI_ASSOCIATED);
    const auto subtree = OpenFolder(Binary(m_store.Get(), PR_IPM_SUBTREE_ENTRYID));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, subtree->GetHierarchyTable(0, table.GetAddressOf()));
    Tags columns{
        PR_ENTRYID, PR_CONTAINER_CLASS_W, PR_SUBFOLDERS, PR_CONTENT_COUNT, PR_DISPLAY_NAME_W};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    ULONG count = 0;
    ASSERT_EQ(S_OK, table->GetRowCount(0, &count));
    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, table->QueryRows(static_cast<LONG>(count), 0, &rows));
    ASSERT_EQ(4u, rows->cRows);
    const SPropValue* contacts = rows->aRow[3].lpProps;
    EXPECT_EQ(5u, rows->aRow[3].cValues);
    EXPECT_EQ(static_cast<ULONG>(PR_ENTRYID), contacts[0].ulPropTag);
    EXPECT_STREQ(L"IPF.Contact", contacts[1].Value.lpszW);
    EXPECT_EQ(static_cast<ULONG>(PR_SUBFOLDERS), contacts[2].ulPropTag);
    EXPECT_EQ(0, contacts[2].Value.b);
    EXPECT_EQ(static_cast<ULONG>(PR_CONTENT_COUNT), contacts[3].ulPropTag);
    EXPECT_EQ(1, contacts[3].Value.l) << "associated messages do not count";
    EXPECT_STREQ(L"Contacts", contacts[4].Value.lpszW);
    // The wastebasket has no class: its column says so in the tag's place.
    EXPECT_EQ(PROP_TAG(PT_ERROR, PROP_ID(PR_CONTAINER_CLASS_W)),
              rows->aRow[1].lpProps[1].ulPropTag);
    EXPECT_EQ(MAPI_E_NOT_FOUND, rows->aRow[1].lpProps[1].Value.err);
    // The walk frees an address that is no buffer once for each row: it is refused.
    EXPECT_EQ(static_cast<ULONG>(MAPI_E_INVALID_PARAMETER), m_library.FreeBuffer(&rows->aRow[0]));
    EXPECT_STREQ(L"Contacts", contacts[4].Value.lpszW);
    m_library.FreeProws(rows);
}

TEST_F(PimLocalStoreTest, TheCategoryMessageIsMadeOnceAndFoundThen)
{
    const auto calendar = OpenFolder(Binary(RootFolder().Get(), kCalendarFolder));
    const EntryBytes id =
        AddMessage(calendar.Get(), L"IPM.Configuration.CategoryList", L"", MAPI_ASSOCIATED);
    EXPECT_EQ(24u, id.size());
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK,
              calendar->GetContentsTable(MAPI_UNICODE | MAPI_ASSOCIATED, table.GetAddressOf()));
    EXPECT_THAT(Column(table.Get(), PR_MESSAGE_CLASS_W),
                ElementsAre(L"IPM.Configuration.CategoryList"));
    ASSERT_EQ(S_OK, calendar->GetContentsTable(MAPI_UNICODE, table.ReleaseAndGetAddressOf()));
    EXPECT_TRUE(Column(table.Get(), PR_MESSAGE_CLASS_W).empty());
}

TEST_F(PimLocalStoreTest, TheIdentityGivesWhatTheProfileKnows)
{
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(S_OK, m_session->QueryIdentity(&size, &id));
    ASSERT_NE(nullptr, id);
    ULONG type = 0;
    ComPtr<IUnknown> object;
    ASSERT_EQ(
        S_OK,
        m_session->OpenEntry(size, id, nullptr, MAPI_BEST_ACCESS, &type, object.GetAddressOf()));
    m_library.FreeBuffer(id);
    EXPECT_EQ(static_cast<ULONG>(MAPI_MAILUSER), type);
    wchar_t account[257] = {};
    DWORD length = 257;
    ASSERT_TRUE(GetUserNameW(account, &length));
    auto* identity = static_cast<IMAPIProp*>(static_cast<IMailUser*>(object.Get()));
    // The ten strings of a user, in one call; the account and the two names are there.
    Tags tags{PR_ACCOUNT_W,
              PR_ADDRTYPE_W,
              PR_DISPLAY_NAME_W,
              PR_COMPANY_NAME_W,
              PR_EMAIL_ADDRESS_W,
              PR_GIVEN_NAME_W,
              PR_SURNAME_W,
              PR_OFFICE_LOCATION_W,
              0x39FE001F,
              PR_TRANSMITABLE_DISPLAY_NAME_W};
    ULONG count = 0;
    SPropValue* values = nullptr;
    ASSERT_EQ(MAPI_W_ERRORS_RETURNED, identity->GetProps(tags, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(10u, count);
    EXPECT_STREQ(account, values[0].Value.lpszW);
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR), PROP_TYPE(values[1].ulPropTag));
    EXPECT_EQ(static_cast<ULONG>(PT_UNICODE), PROP_TYPE(values[2].ulPropTag));
    EXPECT_EQ(static_cast<ULONG>(PT_UNICODE), PROP_TYPE(values[9].ulPropTag));
    m_library.FreeBuffer(values);
    SPropValue change = TextValue(PR_ACCOUNT_W, L"other");
    EXPECT_EQ(MAPI_E_NO_ACCESS, identity->SetProps(1, &change, nullptr));
}

TEST_F(PimLocalStoreTest, EveryReferenceComesBack)
{
    // Each is the last reference: nothing holds on to an object that a client released.
    IMAPISession* session = nullptr;
    ASSERT_EQ(S_OK, m_library.LogonEx(0, nullptr, nullptr, kLogonFlags, &session));
    IMsgStore* store = OpenDefaultStore(session).Detach();
    IUnknown* folder = nullptr;
    ASSERT_EQ(S_OK, Open(store, {}, MAPI_BEST_ACCESS, &folder));
    IMAPITable* table = nullptr;
    ASSERT_EQ(S_OK, static_cast<IMAPIFolder*>(folder)->GetContentsTable(0, &table));
    EXPECT_EQ(0u, session->Release());
    EXPECT_EQ(0u, store->Release());
    EXPECT_EQ(0u, folder->Release());
    ULONG count = 1;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count)) << "what is left works on";
    EXPECT_EQ(0u, table->Release());
}

TEST(PimLocalStoreLibraryTest, LogonNeedsAnInitialisedLibraryAndTheOneProfile)
{
    const TempFolder folder;
    const StoreSetting setting(folder.File(L"store.db"));
    const StoreLibrary library;
    IMAPISession* session = nullptr;
    EXPECT_EQ(MAPI_E_NOT_INITIALIZED, library.LogonEx(0, nullptr, nullptr, 0x62, &session));
    EXPECT_EQ(S_OK, library.Initialize(nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library.LogonEx(0, nullptr, nullptr, 0x62, nullptr));
    char name[] = "Work";
    EXPECT_EQ(MAPI_E_LOGON_FAILED,
              library.LogonEx(0, reinterpret_cast<LPTSTR>(name), nullptr, 0x62, &session));
    EXPECT_EQ(nullptr, session);
    wchar_t noName[] = L"";
    EXPECT_EQ(S_OK,
              library.LogonEx(
                  0, reinterpret_cast<LPTSTR>(noName), nullptr, 0x62 | MAPI_UNICODE, &session));
    session->Release();
    library.Uninitialize();
    library.Uninitialize();
    EXPECT_EQ(MAPI_E_NOT_INITIALIZED, library.LogonEx(0, nullptr, nullptr, 0x62, &session));
}

TEST(PimLocalStoreLibraryTest, InitialisationTakesTheKnownRecordsOnly)
{
    const StoreLibrary library;
    MAPIINIT_0 record{1, 0};
    EXPECT_EQ(MAPI_E_VERSION, library.Initialize(&record));
    record = {0, 0x40000000};
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, library.Initialize(&record));
    for (const ULONG flags : {0u, 8u, 9u})
    {
        record = {0, flags};
        EXPECT_EQ(S_OK, library.Initialize(&record));
        library.Uninitialize();
    }
}

TEST(PimLocalStoreLibraryTest, MemoryTakesOnlyItsOwnAddresses)
{
    const StoreLibrary library;
    void* buffer = nullptr;
    void* block = nullptr;
    ASSERT_EQ(S_OK, library.AllocateBuffer(10, &buffer));
    ASSERT_EQ(S_OK, library.AllocateMore(20, buffer, &block));
    int local = 0;
    EXPECT_EQ(static_cast<ULONG>(MAPI_E_INVALID_PARAMETER), library.FreeBuffer(&local));
    EXPECT_EQ(static_cast<ULONG>(MAPI_E_INVALID_PARAMETER), library.FreeBuffer(block));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library.AllocateMore(1, &local, &block));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library.AllocateBuffer(1, nullptr));
    EXPECT_EQ(0u, library.FreeBuffer(buffer));
    EXPECT_EQ(0u, library.FreeBuffer(nullptr));
    EXPECT_EQ(static_cast<ULONG>(MAPI_E_INVALID_PARAMETER), library.FreeBuffer(buffer));
    library.FreeProws(nullptr);
}
