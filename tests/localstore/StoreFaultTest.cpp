// What the embedded store does where its database cannot do what it should: it says so by the
// interface's codes, keeps what it has, and goes on.
#include "localstore/MapiSession.h"
#include "localstore/StoreFolder.h"
#include "localstore/StoreProfile.h"
#include "tests/localstore/StoreClient.h"
#include "tests/support/HeapUse.h"

#include <gmock/gmock.h>

#include <algorithm>

using testing::AnyOf;

namespace
{

constexpr GUID kSet = {0x00062004, 0, 0, {0xC0, 0, 0, 0, 0, 0, 0, 0x46}};

// The store's objects over a connection that the test holds too.
class StoreFaultTest : public testing::Test
{
  protected:
    void SetUp() override
    {
        Database database = OpenStore(m_path);
        EnsureDefaultProfile(database, LoggedOnUser());
        database.Execute("DELETE FROM named_property");
        const auto contacts = FolderOfRole(database, *FindFolderRole("contacts"));
        m_session = std::make_shared<StoreSession>(std::move(database));
        m_contacts = MakeObject<StoreFolder>(
            std::make_shared<FolderState>(m_session, contacts.value(), true, true));
    }
    ComPtr<IMessage> MessageWithBody(const std::wstring& body)
    {
        ComPtr<IMessage> message;
        EXPECT_EQ(S_OK, m_contacts->CreateMessage(nullptr, 0, message.GetAddressOf()));
        SPropValue value = TextValue(PR_BODY_W, body.c_str());
        EXPECT_EQ(S_OK, message->SetProps(1, &value, nullptr));
        return message;
    }
    std::int64_t Messages()
    {
        Database other = OpenStore(m_path);
        return other.QueryInteger("SELECT count(*) FROM message");
    }
    HRESULT ReadSubject(IMessage* message)
    {
        Tags tags{PR_SUBJECT_W};
        ULONG count = 0;
        SPropValue* values = nullptr;
        const HRESULT result = message->GetProps(tags, MAPI_UNICODE, &count, &values);
        EXPECT_EQ(SUCCEEDED(result), values != nullptr);
        ChainedMemory::OfLibrary().Free(values);
        return result;
    }

    TempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"store.db");
    std::shared_ptr<StoreSession> m_session;
    ComPtr<StoreFolder> m_contacts;
};

// The library's logon on a store that the test has broken.
class BrokenStoreTest : public testing::Test
{
  protected:
    BrokenStoreTest() : m_setting(m_path) { m_library.Initialize(nullptr); }
    ~BrokenStoreTest() override { m_library.Uninitialize(); }

    HRESULT LogOn(ComPtr<IMAPISession>& session)
    {
        return m_library.LogonEx(0, nullptr, nullptr, 0x62, session.ReleaseAndGetAddressOf());
    }

    TempFolder m_folder;
    const std::wstring m_path = m_folder.File(L"store.db");
    StoreSetting m_setting;
    StoreLibrary m_library;
};

} // namespace

TEST_F(StoreFaultTest, AFullDiskKeepsTheStoreAndWhatWaits)
{
    Database& database = m_session->Store();
    const std::int64_t pages = database.QueryInteger("PRAGMA page_count");
    database.Execute("PRAGMA max_page_count = " + std::to_string(pages + 5));
    const auto message = MessageWithBody(std::wstring(100000, L'x'));
    EXPECT_EQ(MAPI_E_NOT_ENOUGH_DISK, message->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(0, Messages());
    MAPIERROR* error = nullptr;
    ASSERT_EQ(S_OK, message->GetLastError(MAPI_E_NOT_ENOUGH_DISK, MAPI_UNICODE, &error));
    ASSERT_NE(nullptr, error);
    EXPECT_STREQ(L"PimLocalStore", reinterpret_cast<const wchar_t*>(error->lpszComponent));
    EXPECT_STRNE(L"", reinterpret_cast<const wchar_t*>(error->lpszError));
    ChainedMemory::OfLibrary().Free(error);
    // Nothing of another failure.
    ASSERT_EQ(S_OK, message->GetLastError(MAPI_E_NO_ACCESS, MAPI_UNICODE, &error));
    EXPECT_EQ(nullptr, error);

    database.Execute("PRAGMA max_page_count = 1000000");
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE)) << "what waited is still there";
    EXPECT_EQ(1, Messages());
}

TEST_F(StoreFaultTest, AStoreThatAnotherProcessHoldsIsBusy)
{
    m_session->Store().Execute("PRAGMA busy_timeout = 50");
    const auto message = MessageWithBody(L"one");
    {
        Database other = OpenStore(m_path);
        const Transaction held(other);
        EXPECT_EQ(MAPI_E_BUSY, message->SaveChanges(FORCE_SAVE));
        // Reading goes on meanwhile.
        ComPtr<IMAPITable> table;
        EXPECT_EQ(S_OK, m_contacts->GetContentsTable(0, table.GetAddressOf()));
    }
    EXPECT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    EXPECT_EQ(1, Messages());
}

TEST_F(StoreFaultTest, ADamagedRowIsACorruptStore)
{
    const auto message = MessageWithBody(L"one");
    SPropValue value = TextValue(PR_SUBJECT_W, L"subject");
    ASSERT_EQ(S_OK, message->SetProps(1, &value, nullptr));
    ASSERT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    ASSERT_EQ(S_OK, ReadSubject(message.Get()));
    // Text of half a unit; a number without one; a large value that is not there; no type at all.
    for (const char* damage : {"value = x'4100FF'",
                               "type = 3, value = NULL",
                               "value = NULL",
                               "type = 4096",
                               "type = 4127, value = x'FFFFFFFF00000000'"})
    {
        m_session->Store().Execute("PRAGMA foreign_keys = OFF");
        m_session->Store().Execute("UPDATE property SET type = 31, value = x'4100' "
                                   "WHERE owner_kind = 3 AND property_id = 55");
        ASSERT_EQ(S_OK, ReadSubject(message.Get()));
        m_session->Store().Execute("UPDATE property SET " + std::string(damage) +
                                   " WHERE owner_kind = 3 AND property_id = 55");
        EXPECT_EQ(MAPI_E_CORRUPT_STORE, ReadSubject(message.Get())) << damage;
        ComPtr<IMAPITable> table;
        ASSERT_EQ(S_OK, m_contacts->GetContentsTable(0, table.GetAddressOf()));
        Tags columns{PR_SUBJECT_W};
        ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
        LPSRowSet rows = nullptr;
        EXPECT_EQ(MAPI_E_CORRUPT_STORE, table->QueryRows(10, 0, &rows)) << damage;
        EXPECT_EQ(nullptr, rows);
    }
}

TEST_F(StoreFaultTest, WhatFailsLeavesNoMemoryBehind)
{
    const auto message = MessageWithBody(L"one");
    ASSERT_EQ(S_OK, message->SaveChanges(FORCE_SAVE));
    const auto other = MessageWithBody(L"two");
    ASSERT_EQ(S_OK, other->SaveChanges(FORCE_SAVE));
    // The second row is broken when the first is made already.
    m_session->Store().Execute("UPDATE property SET value = x'41' WHERE owner_kind = 3 AND "
                               "owner = (SELECT max(id) FROM message)");
    const size_t before = ChainedMemory::OfLibrary().LiveCount();
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, m_contacts->GetContentsTable(0, table.GetAddressOf()));
    Tags columns{PR_BODY_W};
    ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
    LPSRowSet rows = nullptr;
    EXPECT_EQ(MAPI_E_CORRUPT_STORE, table->QueryRows(10, 0, &rows));
    SPropValue computed = LongValue(PR_OBJECT_TYPE, 1);
    SPropProblemArray* problems = nullptr;
    m_session->Store().Execute("DELETE FROM folder WHERE parent IS NOT NULL");
    EXPECT_EQ(MAPI_E_OBJECT_DELETED, m_contacts->DeleteProps(columns, &problems));
    EXPECT_EQ(S_OK, m_contacts->SetProps(1, &computed, &problems));
    ChainedMemory::OfLibrary().Free(problems);
    EXPECT_EQ(before, ChainedMemory::OfLibrary().LiveCount());
}

TEST_F(StoreFaultTest, NamesThatAnotherProcessMakesAreSeen)
{
    const auto idOf = [](IMAPIProp* object, LONG number, ULONG flags) {
        GUID set = kSet;
        MAPINAMEID name{};
        name.lpguid = &set;
        name.ulKind = MNID_ID;
        name.Kind.lID = number;
        MAPINAMEID* names[] = {&name};
        SPropTagArray* tags = nullptr;
        EXPECT_TRUE(SUCCEEDED(object->GetIDsFromNames(1, names, flags, &tags)));
        const ULONG tag = tags ? tags->aulPropTag[0] : 0;
        ChainedMemory::OfLibrary().Free(tags);
        return tag;
    };
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR), idOf(m_contacts.Get(), 0x8062, 0));
    const auto other = std::make_shared<StoreSession>(OpenStore(m_path));
    const auto theirs =
        MakeObject<StoreFolder>(std::make_shared<FolderState>(other, 1, true, true));
    const ULONG made = idOf(theirs.Get(), 0x8062, MAPI_CREATE);
    EXPECT_EQ(PROP_TAG(PT_UNSPECIFIED, 0x8000), made);
    EXPECT_EQ(made, idOf(m_contacts.Get(), 0x8062, 0));
    // Both make different names then, and neither takes the other's ID.
    const ULONG mine = idOf(m_contacts.Get(), 0x8063, MAPI_CREATE);
    const ULONG next = idOf(theirs.Get(), 0x8064, MAPI_CREATE);
    EXPECT_EQ(PROP_TAG(PT_UNSPECIFIED, 0x8001), mine);
    EXPECT_EQ(PROP_TAG(PT_UNSPECIFIED, 0x8002), next);
    EXPECT_EQ(mine, idOf(theirs.Get(), 0x8063, MAPI_CREATE));
}

TEST_F(StoreFaultTest, ATransactionTakesAllNamesOrNone)
{
    // All IDs but one are taken.
    m_session->Store().Execute(
        "WITH RECURSIVE n (i) AS (SELECT 32768 UNION ALL SELECT i + 1 FROM n WHERE i < 65533) "
        "INSERT INTO named_property (property_id, property_set, number) "
        "SELECT i, zeroblob(16), i FROM n");
    GUID set = kSet;
    MAPINAMEID first{};
    first.lpguid = &set;
    first.ulKind = MNID_ID;
    first.Kind.lID = 1;
    MAPINAMEID second = first;
    second.Kind.lID = 2;
    MAPINAMEID* names[] = {&first, &second};
    SPropTagArray* tags = nullptr;
    EXPECT_EQ(MAPI_E_NOT_ENOUGH_DISK, m_contacts->GetIDsFromNames(2, names, MAPI_CREATE, &tags));
    EXPECT_EQ(nullptr, tags);
    ASSERT_EQ(MAPI_W_ERRORS_RETURNED, m_contacts->GetIDsFromNames(2, names, 0, &tags));
    EXPECT_EQ(static_cast<ULONG>(PT_ERROR), tags->aulPropTag[0]);
    ChainedMemory::OfLibrary().Free(tags);
    ASSERT_EQ(S_OK, m_contacts->GetIDsFromNames(1, names, MAPI_CREATE, &tags));
    EXPECT_EQ(0xFFFEu, PROP_ID(tags->aulPropTag[0]));
    ChainedMemory::OfLibrary().Free(tags);
}

TEST_F(BrokenStoreTest, AFileThatIsNoDatabaseIsACorruptStore)
{
    const std::string text(5000, 'x');
    WriteWholeFile(m_path, text);
    ComPtr<IMAPISession> session;
    EXPECT_EQ(MAPI_E_CORRUPT_STORE, LogOn(session));
    EXPECT_FALSE(session);
    EXPECT_EQ(text, ReadWholeFile(m_path)) << "the file stays as it was";
}

TEST_F(BrokenStoreTest, AStoreOfANewerVersionIsRefused)
{
    {
        Database database = OpenStore(m_path);
        database.Execute("PRAGMA user_version = 1000");
    }
    ComPtr<IMAPISession> session;
    EXPECT_EQ(MAPI_E_VERSION, LogOn(session));
}

TEST_F(BrokenStoreTest, AStoreThatCannotBeReachedIsNotFound)
{
    const StoreSetting nowhere(L"Q:\\no\\such\\drive\\store.db");
    ComPtr<IMAPISession> session;
    EXPECT_EQ(MAPI_E_NOT_FOUND, LogOn(session));
    const StoreSetting aFolder(m_folder.Path());
    EXPECT_EQ(MAPI_E_NOT_FOUND, LogOn(session));
}

TEST_F(BrokenStoreTest, AReadOnlyFileOpensForReading)
{
    {
        Database database = OpenStore(m_path);
        EnsureDefaultProfile(database, LoggedOnUser());
        database.Execute("PRAGMA journal_mode = DELETE");
    }
    ASSERT_TRUE(SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY));
    {
        ComPtr<IMAPISession> session;
        ASSERT_EQ(S_OK, LogOn(session));
        ComPtr<IMAPITable> table;
        ASSERT_EQ(S_OK, session->GetMsgStoresTable(0, table.GetAddressOf()));
        Tags columns{PR_ENTRYID};
        ASSERT_EQ(S_OK, table->SetColumns(columns, 0));
        LPSRowSet rows = nullptr;
        ASSERT_EQ(S_OK, table->QueryRows(1, 0, &rows));
        const SBinary& id = rows->aRow[0].lpProps[0].Value.bin;
        const auto open = [&](ULONG flags, ComPtr<IMsgStore>& store) {
            return session->OpenMsgStore(0,
                                         id.cb,
                                         reinterpret_cast<LPENTRYID>(id.lpb),
                                         nullptr,
                                         flags,
                                         store.ReleaseAndGetAddressOf());
        };
        ComPtr<IMsgStore> store;
        EXPECT_EQ(MAPI_E_NO_ACCESS, open(MDB_WRITE, store));
        ASSERT_EQ(S_OK, open(MDB_WRITE | MAPI_DEFERRED_ERRORS, store));
        SPropValue value = TextValue(PR_DISPLAY_NAME_W, L"x");
        EXPECT_EQ(MAPI_E_NO_ACCESS, store->SetProps(1, &value, nullptr));
        m_library.FreeProws(rows);
    }
    SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(BrokenStoreTest, DamagedPagesAreToldAndNeverBringTheProcessDown)
{
    {
        Database database = OpenStore(m_path);
        EnsureDefaultProfile(database, LoggedOnUser());
        const auto contacts = FolderOfRole(database, *FindFolderRole("contacts"));
        Transaction transaction(database);
        for (int i = 0; i < 300; ++i)
        {
            database
                .Prepare("INSERT INTO message (entry_id, folder, created, modified) "
                         "VALUES (?1, ?2, 1, 1)")
                .Bind(1, NewEntryId(5))
                .Bind(2, *contacts)
                .Run();
            const PropertyOwner message{OwnerKind::Message, database.LastInsertId()};
            for (std::uint16_t id = 0x6000; id < 0x6010; ++id)
                WriteProperty(database, message, id, {PT_UNICODE, std::wstring(60, L'x')});
        }
        transaction.Commit();
        database.Checkpoint();
        database.Execute("PRAGMA journal_mode = DELETE");
    }
    const std::string whole = ReadWholeFile(m_path);
    constexpr size_t kPage = 4096;
    ASSERT_GT(whole.size(), 40 * kPage);
    int told = 0;
    for (size_t page = 1; page < whole.size() / kPage; page += 7)
    {
        std::string damaged = whole;
        std::fill_n(damaged.begin() + static_cast<std::ptrdiff_t>(page * kPage), kPage, '\xEE');
        WriteWholeFile(m_path, damaged);
        ComPtr<IMAPISession> session;
        HRESULT result = LogOn(session);
        ComPtr<IUnknown> root;
        ComPtr<IMAPITable> table;
        if (SUCCEEDED(result))
        {
            Database database = OpenStore(m_path);
            result = Guarded([&] {
                const auto contacts = FolderOfRole(database, *FindFolderRole("contacts"));
                if (!contacts)
                    return MAPI_E_CORRUPT_STORE;
                const Bytes id = EntryIdOfFolder(database, *contacts).value();
                return session->OpenEntry(
                    static_cast<ULONG>(id.size()),
                    reinterpret_cast<LPENTRYID>(const_cast<std::byte*>(id.data())),
                    nullptr,
                    0,
                    nullptr,
                    root.GetAddressOf());
            });
        }
        if (SUCCEEDED(result))
            result = static_cast<IMAPIFolder*>(root.Get())
                         ->GetContentsTable(MAPI_UNICODE, table.GetAddressOf());
        if (SUCCEEDED(result))
        {
            Tags columns{PR_ENTRYID, PROP_TAG(PT_UNICODE, 0x6000), PROP_TAG(PT_UNICODE, 0x600F)};
            EXPECT_EQ(S_OK, table->SetColumns(columns, 0));
            LPSRowSet rows = nullptr;
            result = table->QueryRows(1000, 0, &rows);
            m_library.FreeProws(rows);
        }
        EXPECT_THAT(result, AnyOf(S_OK, MAPI_E_CORRUPT_STORE, MAPI_E_OBJECT_DELETED)) << page;
        told += result == MAPI_E_CORRUPT_STORE;
    }
    EXPECT_GT(told, 5);
}

// The server loads the library with each start of the service and lets it go with each stop. It
// stays in the process, since its C++ run-time library leaves something behind with each unload.
TEST(StoreLoadingTest, LoadingAgainAndAgainTakesNothingOfTheProcess)
{
    const TempFolder folder;
    const StoreSetting setting(folder.File(L"store.db"));
    const auto freeSlots = [] {
        std::vector<DWORD> slots;
        for (DWORD slot = TlsAlloc(); slot != TLS_OUT_OF_INDEXES; slot = TlsAlloc())
            slots.push_back(slot);
        for (const DWORD slot : slots)
            TlsFree(slot);
        return slots.size();
    };
    const auto openHandles = [] {
        DWORD count = 0;
        GetProcessHandleCount(GetCurrentProcess(), &count);
        return count;
    };
    const std::wstring noStore = folder.File(L"letter.txt");
    WriteWholeFile(noStore, std::string(1000, 'x'));
    const auto load = [&noStore](int times) {
        for (int i = 0; i < times; ++i)
        {
            const StoreLibrary library;
            EXPECT_EQ(S_OK, library.Initialize(nullptr));
            ComPtr<IMAPISession> session;
            EXPECT_EQ(S_OK, library.LogonEx(0, nullptr, nullptr, 0x62, session.GetAddressOf()));
            session.Reset();
            // A failure as well: it goes through an exception inside of the library.
            const StoreSetting broken(noStore);
            EXPECT_EQ(MAPI_E_CORRUPT_STORE,
                      library.LogonEx(0, nullptr, nullptr, 0x62, session.GetAddressOf()));
            library.Uninitialize();
        }
    };
    SetOaNoCache();
    load(3);
    const size_t slotsBefore = freeSlots();
    const DWORD handlesBefore = openHandles();
    const HeapUse before = UseOfAllHeaps();
    load(20);
    EXPECT_EQ(before, UseOfAllHeaps());
    EXPECT_EQ(handlesBefore, openHandles());
    EXPECT_EQ(slotsBefore, freeSlots());
}
