// Session, store and folders: what a logon finds.
#include "tests/storeconformance/StoreConformanceTest.h"

TEST_P(StoreConformanceTest, ListsOneDefaultStore)
{
    Com<IMAPITable> table;
    ASSERT_EQ(S_OK, m_session->GetMsgStoresTable(0, table.GetAddressOf()));
    const Rows rows = AllRows(table.Get(), {PR_DEFAULT_STORE});
    int defaults = 0;
    for (ULONG i = 0; i < rows->cRows; ++i)
        defaults += rows->aRow[i].lpProps[0].ulPropTag == PR_DEFAULT_STORE &&
                    rows->aRow[i].lpProps[0].Value.b;
    EXPECT_EQ(1, defaults);
}

TEST_P(StoreConformanceTest, OpensNoStoreByAnotherObjectsId)
{
    EntryIdBytes id = EntryIdOf(m_contacts.Get());
    Com<IMsgStore> store;
    EXPECT_TRUE(FAILED(m_session->OpenMsgStore(
        0, static_cast<ULONG>(id.size()), AsEntryId(id), nullptr, 0, store.GetAddressOf())));
    EXPECT_FALSE(store);
}

TEST_P(StoreConformanceTest, OpensTheUserOfTheSession)
{
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(S_OK, m_session->QueryIdentity(&size, &id));
    ASSERT_NE(nullptr, id);
    EXPECT_GT(size, 0u);
    ULONG type = 0;
    Com<IUnknown> opened;
    EXPECT_EQ(
        S_OK,
        m_session->OpenEntry(size, id, nullptr, MAPI_BEST_ACCESS, &type, opened.GetAddressOf()));
    m_mapi->freeBuffer(id);
    EXPECT_EQ(static_cast<ULONG>(MAPI_MAILUSER), type);
    ASSERT_TRUE(opened);
    Com<IMAPIProp> user;
    ASSERT_EQ(S_OK,
              opened->QueryInterface(IID_IMAPIProp, reinterpret_cast<void**>(user.GetAddressOf())));
    EXPECT_FALSE(TextOf(user.Get(), PR_DISPLAY_NAME_W).empty());
    EXPECT_NE(L"(missing)", TextOf(user.Get(), PR_DISPLAY_NAME_W));
}

TEST_P(StoreConformanceTest, OpensTheRootFolderForAnEmptyId)
{
    Com<IUnknown> opened;
    // The type is optional.
    ASSERT_EQ(
        S_OK,
        m_store->OpenEntry(0, nullptr, nullptr, MAPI_BEST_ACCESS, nullptr, opened.GetAddressOf()));
    Com<IMAPIFolder> root;
    ASSERT_EQ(
        S_OK,
        opened->QueryInterface(IID_IMAPIFolder, reinterpret_cast<void**>(root.GetAddressOf())));
    const EntryIdBytes id = EntryIdOf(root.Get());
    EXPECT_EQ(id, EntryIdOf(Open<IMAPIFolder>(id).Get()));
}

TEST_P(StoreConformanceTest, NamesTheSubtreeOnTheStore)
{
    const auto subtree = Open<IMAPIFolder>(EntryIdOf(m_store.Get(), 0x35E00102));
    ASSERT_TRUE(subtree);
    Com<IMAPITable> table;
    ASSERT_EQ(S_OK, subtree->GetHierarchyTable(MAPI_UNICODE, table.GetAddressOf()));
    const Rows rows = AllRows(table.Get(), {PR_ENTRYID, PR_CONTAINER_CLASS_W});
    const EntryIdBytes contacts = EntryIdOf(m_contacts.Get());
    int found = 0;
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SPropValue* const values = rows->aRow[i].lpProps;
        const SBinary& id = values[0].Value.bin;
        if (EntryIdBytes(id.lpb, id.lpb + id.cb) != contacts)
            continue;
        ++found;
        ASSERT_EQ(PR_CONTAINER_CLASS_W, values[1].ulPropTag);
        EXPECT_STREQ(L"IPF.Contact", values[1].Value.lpszW);
    }
    EXPECT_EQ(1, found);
}

TEST_P(StoreConformanceTest, CountsWhatAFolderHolds)
{
    const auto count = [&](ULONG tag) {
        const auto folder = Open<IMAPIFolder>(EntryIdOf(m_contacts.Get()));
        const Props props = Get(folder.Get(), {tag});
        EXPECT_EQ(tag, props[0].ulPropTag);
        return props[0].Value.l;
    };
    const LONG before = count(PR_CONTENT_COUNT);
    AddMessage(L"one");
    NewMessage(L"hidden", true, MAPI_ASSOCIATED);
    EXPECT_EQ(before + 1, count(PR_CONTENT_COUNT));

    const Props leaf = Get(m_contacts.Get(), {PR_SUBFOLDERS});
    ASSERT_EQ(PR_SUBFOLDERS, leaf[0].ulPropTag);
    EXPECT_FALSE(leaf[0].Value.b);
    const auto subtree = Open<IMAPIFolder>(EntryIdOf(m_store.Get(), 0x35E00102));
    EXPECT_TRUE(Get(subtree.Get(), {PR_SUBFOLDERS})[0].Value.b);
}

TEST_P(StoreConformanceTest, TellsTheReceiveFolderInBothFormsOfText)
{
    ULONG size = 0;
    LPENTRYID id = nullptr;
    LPTSTR explicitClass = nullptr;
    char narrow[] = "IPM.Note";
    ASSERT_EQ(
        S_OK,
        m_store->GetReceiveFolder(reinterpret_cast<LPTSTR>(narrow), 0, &size, &id, &explicitClass));
    const auto* const bytes = reinterpret_cast<const BYTE*>(id);
    EXPECT_EQ(EntryIdOf(m_inbox.Get()), EntryIdBytes(bytes, bytes + size));
    m_mapi->freeBuffer(id);
    // The folder was found as the one of all classes.
    ASSERT_NE(nullptr, explicitClass);
    EXPECT_STREQ("", reinterpret_cast<const char*>(explicitClass));
    m_mapi->freeBuffer(explicitClass);

    ASSERT_EQ(S_OK, m_store->GetReceiveFolder(nullptr, MAPI_UNICODE, &size, &id, &explicitClass));
    EXPECT_STREQ(L"", reinterpret_cast<const wchar_t*>(explicitClass));
    m_mapi->freeBuffer(id);
    m_mapi->freeBuffer(explicitClass);
}

TEST_P(StoreConformanceTest, KeepsEntryIdsShort)
{
    const auto message = NewMessage(L"one");
    for (IMAPIProp* const object : {static_cast<IMAPIProp*>(m_store.Get()),
                                    static_cast<IMAPIProp*>(m_inbox.Get()),
                                    static_cast<IMAPIProp*>(message.Get())})
    {
        const EntryIdBytes id = EntryIdOf(object);
        EXPECT_GT(id.size(), 4u);
        EXPECT_LE(id.size(), 24u);
    }
}

TEST_P(StoreConformanceTest, RefusesBrokenEntryIds)
{
    const EntryIdBytes good = AddMessage(L"one");
    EntryIdBytes cut(good.begin(), good.end() - 1);
    EntryIdBytes longer = good;
    longer.push_back(0);
    EntryIdBytes other = good;
    for (std::size_t i = 4; i < other.size(); ++i)
        other[i] = static_cast<BYTE>(other[i] ^ 0xA5);
    for (EntryIdBytes id : {cut, longer, other, EntryIdBytes{1}, EntryIdBytes(0x10000, 0xFF)})
    {
        Com<IUnknown> opened;
        ULONG type = 0;
        const ULONG size = static_cast<ULONG>(id.size());
        EXPECT_TRUE(FAILED(
            m_store->OpenEntry(size, AsEntryId(id), nullptr, 0, &type, opened.GetAddressOf())))
            << size;
        EXPECT_FALSE(opened);
        EXPECT_TRUE(FAILED(
            m_contacts->OpenEntry(size, AsEntryId(id), nullptr, 0, &type, opened.GetAddressOf())))
            << size;
        EXPECT_FALSE(opened);
    }
}

TEST_P(StoreConformanceTest, AnswersItsInterfaces)
{
    const auto message = NewMessage(L"one");
    const auto answers = [](IUnknown* object, REFIID iid) {
        Com<IUnknown> other;
        const HRESULT result =
            object->QueryInterface(iid, reinterpret_cast<void**>(other.GetAddressOf()));
        EXPECT_EQ(SUCCEEDED(result), other != nullptr);
        return SUCCEEDED(result);
    };
    EXPECT_TRUE(answers(message.Get(), IID_IUnknown));
    EXPECT_TRUE(answers(message.Get(), IID_IMAPIProp));
    EXPECT_TRUE(answers(message.Get(), IID_IMessage));
    EXPECT_FALSE(answers(message.Get(), IID_IMAPIFolder));
    EXPECT_TRUE(answers(m_contacts.Get(), IID_IMAPIFolder));
    EXPECT_TRUE(answers(m_contacts.Get(), IID_IMAPIContainer));
    EXPECT_TRUE(answers(m_contacts.Get(), IID_IMAPIProp));
    EXPECT_TRUE(answers(m_store.Get(), IID_IMsgStore));
    EXPECT_TRUE(answers(m_store.Get(), IID_IMAPIProp));
    EXPECT_TRUE(answers(m_session.Get(), IID_IMAPISession));
    EXPECT_FALSE(answers(m_session.Get(), IID_IDispatch));
}
