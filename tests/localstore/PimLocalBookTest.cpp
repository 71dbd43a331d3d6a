// Loads the built PimLocalBook.dll the way the server does: by its path, by its one exported name.
#include "tests/localstore/BookClient.h"
#include "tests/support/HeapUse.h"

#include <cstring>
#include <thread>

namespace
{

using PimLocalBookTest = BookTest;

// The numbers in the names of the next rows of AddEntries; asks for the name as the one column.
std::wstring NamesOf(IMAPITable& table, IWABObject& library, LONG count = LONG_MAX, ULONG flags = 0)
{
    TagList tags{1, {PR_DISPLAY_NAME_W}};
    EXPECT_EQ(S_OK, table.SetColumns(tags, 0));
    std::wstring names;
    LPSRowSet rows = nullptr;
    EXPECT_EQ(S_OK, table.QueryRows(count, flags, &rows));
    for (ULONG i = 0; rows && i < rows->cRows; ++i)
    {
        names += rows->aRow[i].lpProps[0].Value.lpszW[6];
        library.FreeBuffer(rows->aRow[i].lpProps);
    }
    library.FreeBuffer(rows);
    return names;
}

} // namespace

TEST_F(PimLocalBookTest, OpensTheRoadThatTheServerTakes)
{
    IAddrBook* book = nullptr;
    IWABObject* library = nullptr;
    ASSERT_EQ(S_OK, m_open(&book, &library, nullptr, 0));
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(S_OK, book->GetPAB(&size, &id));
    ASSERT_NE(nullptr, id);
    ULONG type = 0;
    IUnknown* container = nullptr;
    ASSERT_EQ(S_OK, book->OpenEntry(size, id, nullptr, 0, &type, &container));
    EXPECT_EQ(static_cast<ULONG>(MAPI_ABCONT), type);
    EXPECT_EQ(S_OK, library->FreeBuffer(id));
    // The server's order of release; each is the last reference.
    EXPECT_EQ(0u, container->Release());
    EXPECT_EQ(0u, book->Release());
    EXPECT_EQ(0u, library->Release());
}

TEST_F(PimLocalBookTest, ExportsOneName)
{
    EXPECT_NE(nullptr, GetProcAddress(m_library.Get(), "WABOpen"));
    for (const char* name : {"MAPIFreeBuffer", "FreeProws@4", "HrGetOneProp", "DllMain"})
        EXPECT_EQ(nullptr, GetProcAddress(m_library.Get(), name)) << name;
}

TEST_F(PimLocalBookTest, NeedsNoLibraryBesideThoseOfTheSystem)
{
    const auto* base = reinterpret_cast<const BYTE*>(m_library.Get());
    const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
    const auto* nt = reinterpret_cast<const IMAGE_NT_HEADERS64*>(base + dos->e_lfanew);
    const IMAGE_DATA_DIRECTORY& directory =
        nt->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
    const auto* import =
        reinterpret_cast<const IMAGE_IMPORT_DESCRIPTOR*>(base + directory.VirtualAddress);
    int count = 0;
    for (; import->Name != 0; ++import, ++count)
    {
        const std::string name = reinterpret_cast<const char*>(base + import->Name);
        bool known = false;
        for (const char* system : {"KERNEL32.dll",
                                   "ADVAPI32.dll",
                                   "msvcrt.dll",
                                   "ole32.dll",
                                   "SHELL32.dll",
                                   "USER32.dll",
                                   "OLEAUT32.dll"})
            known = known || _stricmp(system, name.c_str()) == 0;
        EXPECT_TRUE(known) << name;
    }
    EXPECT_GT(count, 0);
    EXPECT_NE(nullptr, FindResourceW(m_library.Get(), MAKEINTRESOURCEW(1), RT_VERSION));
}

TEST_F(PimLocalBookTest, RefusesBadArgumentsOfOpening)
{
    IAddrBook* book = reinterpret_cast<IAddrBook*>(1);
    IWABObject* library = reinterpret_cast<IWABObject*>(1);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_open(nullptr, &library, nullptr, 0));
    EXPECT_EQ(nullptr, library);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_open(&book, nullptr, nullptr, 0));
    EXPECT_EQ(nullptr, book);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_open(nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_open(&book, &library, nullptr, 1));

    WAB_PARAM parameter{};
    for (const ULONG size : {0u, 4u, 16u, 27u})
    {
        parameter.cbSize = size;
        EXPECT_EQ(MAPI_E_INVALID_PARAMETER, m_open(&book, &library, &parameter, 0)) << size;
    }
    parameter.cbSize = sizeof parameter;
    char file[] = "C:\\other.wab";
    parameter.szFileName = file;
    EXPECT_EQ(MAPI_E_NO_SUPPORT, m_open(&book, &library, &parameter, 0));
    EXPECT_EQ(nullptr, book);
    EXPECT_EQ(nullptr, library);
}

TEST_F(PimLocalBookTest, TakesTheParameterRecordInItsForms)
{
    char none[] = "";
    for (const ULONG size : {32u, 44u, 48u, 64u})
    {
        WAB_PARAM parameter{};
        parameter.cbSize = size;
        parameter.szFileName = none;
        parameter.ulFlags = WAB_ENABLE_PROFILES;
        ComPtr<IAddrBook> book;
        ComPtr<IWABObject> library;
        EXPECT_EQ(S_OK, m_open(book.GetAddressOf(), library.GetAddressOf(), &parameter, 0)) << size;
    }
}

TEST_F(PimLocalBookTest, FailsClearlyWhereTheStoreDoesNotOpen)
{
    IAddrBook* book = nullptr;
    IWABObject* library = nullptr;
    WriteWholeFile(m_path, std::string(3000, 'x'));
    EXPECT_EQ(MAPI_E_CORRUPT_STORE, m_open(&book, &library, nullptr, 0));
    EXPECT_EQ(nullptr, book);
    EXPECT_EQ(nullptr, library);
    {
        const StoreSetting setting(m_folder.File(L"newer.db"));
        {
            Database database = OpenStore(m_folder.File(L"newer.db"));
            database.Execute("PRAGMA user_version = 1000");
        }
        EXPECT_EQ(MAPI_E_VERSION, m_open(&book, &library, nullptr, 0));
    }
    {
        const StoreSetting setting(L"relative.db");
        EXPECT_EQ(MAPI_E_NOT_FOUND, m_open(&book, &library, nullptr, 0));
    }
    {
        const StoreSetting setting(m_folder.Path());
        EXPECT_EQ(MAPI_E_NOT_FOUND, m_open(&book, &library, nullptr, 0)) << "a folder";
    }
}

TEST_F(PimLocalBookTest, CountsReferencesPerObject)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    EXPECT_EQ(2u, book->AddRef());
    EXPECT_EQ(2u, library->AddRef());
    EXPECT_EQ(1u, book->Release());
    EXPECT_EQ(1u, library->Release());

    ComPtr<IUnknown> unknown;
    ASSERT_EQ(S_OK,
              book->QueryInterface(IID_IUnknown, reinterpret_cast<void**>(unknown.GetAddressOf())));
    EXPECT_EQ(static_cast<void*>(book.Get()), static_cast<void*>(unknown.Get()));
    EXPECT_EQ(3u, book->AddRef());
    EXPECT_EQ(2u, book->Release());
}

TEST_F(PimLocalBookTest, AnswersItsInterfacesAndNoOthers)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), {});
    const auto answers = [](IUnknown* object, REFIID iid) {
        void* result = reinterpret_cast<void*>(1);
        const HRESULT hr = object->QueryInterface(iid, &result);
        if (SUCCEEDED(hr))
            static_cast<IUnknown*>(result)->Release();
        else
            EXPECT_EQ(nullptr, result);
        return hr == S_OK;
    };
    EXPECT_TRUE(answers(book.Get(), IID_IAddrBook));
    EXPECT_TRUE(answers(book.Get(), IID_IMAPIProp));
    EXPECT_FALSE(answers(book.Get(), IID_IABContainer));
    EXPECT_FALSE(answers(book.Get(), IID_IDispatch));
    EXPECT_TRUE(answers(container.Get(), IID_IMAPIProp));
    EXPECT_TRUE(answers(container.Get(), IID_IMAPIContainer));
    EXPECT_FALSE(answers(container.Get(), IID_IAddrBook));
    EXPECT_TRUE(answers(library.Get(), IID_IUnknown));
    EXPECT_FALSE(answers(library.Get(), IID_IMAPIProp));
    EXPECT_EQ(E_POINTER, book->QueryInterface(IID_IUnknown, nullptr));
}

TEST_F(PimLocalBookTest, ThePersonalEntryIdIsStableForLife)
{
    std::vector<BYTE> first;
    {
        ComPtr<IAddrBook> book;
        ComPtr<IWABObject> library;
        Open(book, library);
        first = PersonalId(book.Get(), library.Get());
        EXPECT_EQ(first, PersonalId(book.Get(), library.Get()));
    }
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    EXPECT_EQ(first, PersonalId(book.Get(), library.Get()));
    EXPECT_EQ(24u, first.size());

    ULONG same = 7;
    std::vector<BYTE> second = first;
    EXPECT_EQ(S_OK,
              book->CompareEntryIDs(24,
                                    reinterpret_cast<LPENTRYID>(first.data()),
                                    24,
                                    reinterpret_cast<LPENTRYID>(second.data()),
                                    0,
                                    &same));
    EXPECT_EQ(1u, same);
    second[23] ^= 1;
    EXPECT_EQ(S_OK,
              book->CompareEntryIDs(24,
                                    reinterpret_cast<LPENTRYID>(first.data()),
                                    24,
                                    reinterpret_cast<LPENTRYID>(second.data()),
                                    0,
                                    &same));
    EXPECT_EQ(0u, same);
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->CompareEntryIDs(24, nullptr, 0, nullptr, 0, &same));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->CompareEntryIDs(0, nullptr, 0, nullptr, 0, nullptr));
}

TEST_F(PimLocalBookTest, GetPabRefusesNullOutputs)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    ULONG size = 5;
    LPENTRYID id = nullptr;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->GetPAB(nullptr, &id));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->GetPAB(&size, nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->GetPAB(nullptr, nullptr));
}

TEST_F(PimLocalBookTest, OpenEntryRefusesWhatItCannotOpen)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    std::vector<BYTE> id = PersonalId(book.Get(), library.Get());
    const auto open = [&](ULONG size, void* address, LPCIID iid) {
        ULONG type = 77;
        IUnknown* object = reinterpret_cast<IUnknown*>(1);
        const HRESULT result =
            book->OpenEntry(size, static_cast<LPENTRYID>(address), iid, 0, &type, &object);
        if (FAILED(result))
        {
            EXPECT_EQ(0u, type);
            EXPECT_EQ(nullptr, object);
        }
        else
            object->Release();
        return result;
    };
    EXPECT_EQ(S_OK, open(24, id.data(), nullptr));
    EXPECT_EQ(S_OK, open(24, id.data(), &IID_IMAPIContainer));
    EXPECT_EQ(S_OK, open(0, id.data(), nullptr)) << "no bytes: the root";
    EXPECT_EQ(MAPI_E_INTERFACE_NOT_SUPPORTED, open(24, id.data(), &IID_IDispatch));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, open(24, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, open(23, id.data(), nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, open(1, id.data(), nullptr));
    EXPECT_EQ(MAPI_E_INVALID_ENTRYID, open(0xFFFFFFFF, id.data(), nullptr));
    BYTE foreign[40] = {1, 2, 3};
    EXPECT_EQ(MAPI_E_UNKNOWN_ENTRYID, open(sizeof foreign, foreign, nullptr));
    id[23] ^= 0x55;
    EXPECT_EQ(MAPI_E_NOT_FOUND, open(24, id.data(), nullptr)) << "of our form, but of nothing here";

    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, book->OpenEntry(0, nullptr, nullptr, 0, nullptr, nullptr));
    ComPtr<IUnknown> root;
    EXPECT_EQ(S_OK, book->OpenEntry(0, nullptr, nullptr, 0, nullptr, root.GetAddressOf()))
        << "the type is optional";
}

TEST_F(PimLocalBookTest, ContainersTellTheirProperties)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const std::vector<BYTE> id = PersonalId(book.Get(), library.Get());
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), id);

    TagList tags{5,
                 {PR_DISPLAY_NAME_W,
                  PR_ENTRYID,
                  PR_OBJECT_TYPE,
                  PR_DISPLAY_NAME_A,
                  PROP_TAG(PT_UNSPECIFIED, PROP_ID(PR_OBJECT_TYPE))}};
    ULONG count = 0;
    LPSPropValue values = nullptr;
    ASSERT_EQ(S_OK, container->GetProps(tags, MAPI_UNICODE, &count, &values));
    ASSERT_EQ(5u, count);
    EXPECT_EQ(static_cast<ULONG>(PR_DISPLAY_NAME_W), values[0].ulPropTag);
    EXPECT_STREQ(L"Contacts", values[0].Value.lpszW);
    EXPECT_EQ(static_cast<ULONG>(PR_ENTRYID), values[1].ulPropTag);
    ASSERT_EQ(id.size(), values[1].Value.bin.cb);
    EXPECT_EQ(0, std::memcmp(id.data(), values[1].Value.bin.lpb, id.size()));
    EXPECT_EQ(static_cast<LONG>(MAPI_ABCONT), values[2].Value.l);
    EXPECT_EQ(static_cast<ULONG>(PR_DISPLAY_NAME_A), values[3].ulPropTag);
    EXPECT_STREQ("Contacts", values[3].Value.lpszA);
    EXPECT_EQ(static_cast<ULONG>(PR_OBJECT_TYPE), values[4].ulPropTag);
    EXPECT_EQ(S_OK, library->FreeBuffer(values));

    // The root, and every property without a list.
    const ComPtr<IABContainer> root = OpenContainer(book.Get(), {});
    ASSERT_EQ(S_OK, root->GetProps(nullptr, MAPI_UNICODE, &count, &values));
    bool named = false;
    for (ULONG i = 0; i < count; ++i)
    {
        EXPECT_NE(static_cast<ULONG>(PT_ERROR), PROP_TYPE(values[i].ulPropTag));
        if (values[i].ulPropTag == PR_DISPLAY_NAME_W)
        {
            named = true;
            EXPECT_STREQ(L"Address Book", values[i].Value.lpszW);
        }
    }
    EXPECT_TRUE(named);
    EXPECT_EQ(S_OK, library->FreeBuffer(values));
    ASSERT_EQ(S_OK, root->GetProps(nullptr, 0, &count, &values));
    for (ULONG i = 0; i < count; ++i)
        EXPECT_NE(static_cast<ULONG>(PT_UNICODE), PROP_TYPE(values[i].ulPropTag));
    EXPECT_EQ(S_OK, library->FreeBuffer(values));

    LPSPropTagArray list = nullptr;
    ASSERT_EQ(S_OK, root->GetPropList(MAPI_UNICODE, &list));
    EXPECT_EQ(count, list->cValues);
    EXPECT_EQ(S_OK, library->FreeBuffer(list));
}

TEST_F(PimLocalBookTest, MissingPropertiesComeAsErrorsInTheirPlace)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), {});
    TagList tags{3, {PR_COMMENT_W, PR_OBJECT_TYPE, CHANGE_PROP_TYPE(PR_DISPLAY_NAME_W, PT_LONG)}};
    ULONG count = 0;
    LPSPropValue values = nullptr;
    ASSERT_EQ(MAPI_W_ERRORS_RETURNED, container->GetProps(tags, 0, &count, &values));
    ASSERT_EQ(3u, count);
    EXPECT_EQ(PROP_TAG(PT_ERROR, PROP_ID(PR_COMMENT_W)), values[0].ulPropTag);
    EXPECT_EQ(MAPI_E_NOT_FOUND, values[0].Value.err);
    EXPECT_EQ(static_cast<ULONG>(PR_OBJECT_TYPE), values[1].ulPropTag);
    EXPECT_EQ(PROP_TAG(PT_ERROR, PROP_ID(PR_DISPLAY_NAME_W)), values[2].ulPropTag)
        << "a text is no number";
    EXPECT_EQ(S_OK, library->FreeBuffer(values));
}

TEST_F(PimLocalBookTest, GetPropsRefusesBadArguments)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), {});
    ULONG count = 9;
    LPSPropValue values = reinterpret_cast<LPSPropValue>(1);
    TagList tags{1, {PR_OBJECT_TYPE}};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetProps(tags, 0, nullptr, &values));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetProps(tags, 0, &count, nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, container->GetProps(tags, 4, &count, &values));
    EXPECT_EQ(nullptr, values);
    tags.cValues = 0;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetProps(tags, 0, &count, &values));
    tags.cValues = 0xFFFFFFFF;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetProps(tags, 0, &count, &values));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetPropList(0, nullptr));
}

TEST_F(PimLocalBookTest, FreeBufferTakesOnlyItsOwnAddresses)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    void* buffer = nullptr;
    ASSERT_EQ(S_OK, library->AllocateBuffer(64, &buffer));
    void* block = nullptr;
    ASSERT_EQ(S_OK, library->AllocateMore(32, buffer, &block));
    std::memset(buffer, 1, 64);
    std::memset(block, 1, 32);
    int foreign = 3;
    EXPECT_TRUE(FAILED(library->FreeBuffer(&foreign)));
    EXPECT_TRUE(FAILED(library->FreeBuffer(block)));
    EXPECT_EQ(3, foreign);
    EXPECT_EQ(S_OK, library->FreeBuffer(buffer));
    EXPECT_TRUE(FAILED(library->FreeBuffer(buffer)));
    EXPECT_EQ(S_OK, library->FreeBuffer(nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library->AllocateBuffer(64, nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library->AllocateMore(64, &foreign, &block));
}

TEST_F(PimLocalBookTest, TwoOpeningsInOneProcessShareStoreAndMemory)
{
    ComPtr<IAddrBook> firstBook;
    ComPtr<IWABObject> firstLibrary;
    Open(firstBook, firstLibrary);
    ComPtr<IAddrBook> secondBook;
    ComPtr<IWABObject> secondLibrary;
    Open(secondBook, secondLibrary);
    EXPECT_NE(firstBook.Get(), secondBook.Get());
    EXPECT_EQ(PersonalId(firstBook.Get(), secondLibrary.Get()),
              PersonalId(secondBook.Get(), firstLibrary.Get()));
    EXPECT_EQ(0u, firstBook.Reset());
    EXPECT_EQ(0u, firstLibrary.Reset());
    EXPECT_EQ(24u, PersonalId(secondBook.Get(), secondLibrary.Get()).size());
}

TEST_F(PimLocalBookTest, ContainersAndTablesOutliveTheBook)
{
    ComPtr<IABContainer> container;
    ComPtr<IMAPITable> table;
    {
        ComPtr<IAddrBook> book;
        ComPtr<IWABObject> library;
        Open(book, library);
        container = OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    }
    ASSERT_EQ(S_OK, container->GetContentsTable(MAPI_UNICODE, table.GetAddressOf()));
    EXPECT_EQ(0u, container.Reset());
    ULONG count = 9;
    EXPECT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(0u, count);
    LPSRowSet rows = nullptr;
    EXPECT_EQ(S_OK, table->QueryRows(10, 0, &rows));
    ASSERT_NE(nullptr, rows);
    EXPECT_EQ(0u, rows->cRows);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    EXPECT_EQ(S_OK, library->FreeBuffer(rows));
}

TEST_F(PimLocalBookTest, ContentsTableGivesTheEntries)
{
    AddEntries(3);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container =
        OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, container->GetContentsTable(MAPI_UNICODE, table.GetAddressOf()));
    TagList tags{4, {PR_ENTRYID, PR_COMMENT_W, PR_LAST_MODIFICATION_TIME, 0x3A56101F}};
    ASSERT_EQ(S_OK, table->SetColumns(tags, 0));
    LPSPropTagArray columns = nullptr;
    ASSERT_EQ(S_OK, table->QueryColumns(0, &columns));
    ASSERT_EQ(4u, columns->cValues);
    EXPECT_EQ(0x3A56101Fu, columns->aulPropTag[3]);
    EXPECT_EQ(S_OK, library->FreeBuffer(columns));
    ULONG count = 0;
    ASSERT_EQ(S_OK, table->GetRowCount(0, &count));
    EXPECT_EQ(3u, count);

    LPSRowSet rows = nullptr;
    ASSERT_EQ(S_OK, table->QueryRows(static_cast<LONG>(count), 0, &rows));
    ASSERT_EQ(3u, rows->cRows);
    for (ULONG i = 0; i < rows->cRows; ++i)
    {
        const SRow& row = rows->aRow[i];
        ASSERT_EQ(4u, row.cValues);
        EXPECT_EQ(24u, row.lpProps[0].Value.bin.cb);
        EXPECT_EQ(PROP_TAG(PT_ERROR, PROP_ID(PR_COMMENT_W)), row.lpProps[1].ulPropTag);
        EXPECT_EQ(i, row.lpProps[2].Value.ft.dwLowDateTime);
        EXPECT_EQ(0x1D00000u, row.lpProps[2].Value.ft.dwHighDateTime);
        ASSERT_EQ(2u, row.lpProps[3].Value.MVszW.cValues);
        EXPECT_STREQ(L"a@x", row.lpProps[3].Value.MVszW.lppszW[0]);
        EXPECT_STREQ(L"b@x", row.lpProps[3].Value.MVszW.lppszW[1]);

        // The engine frees the address of the set's first row for every row, which is no buffer.
        EXPECT_TRUE(FAILED(library->FreeBuffer(&rows->aRow[0])));
    }
    for (ULONG i = 0; i < rows->cRows; ++i)
        EXPECT_EQ(S_OK, library->FreeBuffer(rows->aRow[i].lpProps));
    EXPECT_EQ(S_OK, library->FreeBuffer(rows));
}

TEST_F(PimLocalBookTest, TablesStepBothWaysAndStayInBounds)
{
    AddEntries(5);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container =
        OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));
    const auto read = [&](LONG count, ULONG flags) {
        return NamesOf(*table.Get(), *library.Get(), count, flags);
    };
    EXPECT_EQ(L"01", read(2, 0));
    EXPECT_EQ(L"23", read(2, TBL_NOADVANCE));
    EXPECT_EQ(L"234", read(100, 0));
    EXPECT_EQ(L"", read(100, 0));
    EXPECT_EQ(L"34", read(-2, 0));
    EXPECT_EQ(L"012", read(LONG_MIN, 0));
    EXPECT_EQ(L"", read(-1, 0));
    LONG sought = 0;
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_END, -2, &sought));
    EXPECT_EQ(-2, sought);
    EXPECT_EQ(L"3", read(1, 0));
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_CURRENT, LONG_MAX, &sought));
    EXPECT_EQ(1, sought);
    EXPECT_EQ(S_OK, table->SeekRow(BOOKMARK_BEGINNING, LONG_MIN, nullptr));
    EXPECT_EQ(L"01234", read(LONG_MAX, 0));
    EXPECT_EQ(MAPI_E_INVALID_BOOKMARK, table->SeekRow(9, 0, nullptr));
    ULONG row = 0;
    ULONG numerator = 0;
    ULONG denominator = 0;
    EXPECT_EQ(S_OK, table->QueryPosition(&row, &numerator, &denominator));
    EXPECT_EQ(5u, row);
    EXPECT_EQ(5u, denominator);
}

TEST_F(PimLocalBookTest, ARowWhoseEntryIsGoneIsLeftOut)
{
    AddEntries(3);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container =
        OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));
    {
        Database database = OpenStore(m_path);
        database.Execute("DELETE FROM book_entry WHERE id = (SELECT min(id) + 1 FROM book_entry)");
    }
    EXPECT_EQ(L"02", NamesOf(*table.Get(), *library.Get()));
}

TEST_F(PimLocalBookTest, TablesSortAndRestrict)
{
    AddEntries(3);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container =
        OpenContainer(book.Get(), PersonalId(book.Get(), library.Get()));
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));
    SizedSSortOrderSet(1, order) = {1, 0, 0, {{PR_DISPLAY_NAME_W, TABLE_SORT_DESCEND}}};
    ASSERT_EQ(S_OK, table->SortTable(reinterpret_cast<LPSSortOrderSet>(&order), 0));
    EXPECT_EQ(L"210", NamesOf(*table.Get(), *library.Get()));

    SPropValue bound{};
    bound.ulPropTag = PR_LAST_MODIFICATION_TIME;
    bound.Value.ft = {1, 0x1D00000};
    SRestriction restriction{};
    restriction.rt = RES_PROPERTY;
    restriction.res.resProperty = {RELOP_GE, PR_LAST_MODIFICATION_TIME, &bound};
    ASSERT_EQ(S_OK, table->Restrict(&restriction, 0));
    EXPECT_EQ(L"21", NamesOf(*table.Get(), *library.Get()));
}

TEST_F(PimLocalBookTest, TablesRefuseBadArguments)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), {});
    ComPtr<IMAPITable> table;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, container->GetContentsTable(0, nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, container->GetContentsTable(0x10000000, table.GetAddressOf()));
    ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->SetColumns(nullptr, 0));
    TagList tags{0xFFFFFFFF, {}};
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->SetColumns(tags, 0));
    tags.cValues = 0;
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->SetColumns(tags, 0));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, table->SetColumns(tags, 0x100));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->GetRowCount(0, nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->QueryRows(1, 0, nullptr));
    LPSRowSet rows = nullptr;
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, table->QueryRows(1, 0x100, &rows));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->QueryColumns(0, nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->GetStatus(nullptr, nullptr));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->QueryPosition(nullptr, nullptr, nullptr));
}

TEST_F(PimLocalBookTest, WhatIsNotBuiltSaysSoAndTakesAnyArguments)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const ComPtr<IABContainer> container = OpenContainer(book.Get(), {});
    ComPtr<IMAPITable> table;
    ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));

    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->Backup(nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->Import(nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->Find(nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->VCardDisplay(nullptr, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->LDAPUrl(nullptr, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->VCardCreate(nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->VCardRetrieve(nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->GetMe(nullptr, 0, nullptr, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, library->SetMe(nullptr, 0, SBinary{}, 0));

    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->Advise(0, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->Unadvise(1));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              book->CreateOneOff(nullptr, nullptr, nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->NewEntry(0, 0, 0, nullptr, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->ResolveName(0, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->Address(nullptr, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              book->Details(nullptr, nullptr, nullptr, 0, nullptr, nullptr, nullptr, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->RecipOptions(0, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->QueryDefaultRecipOpt(nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->SetPAB(0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->GetDefaultDir(nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->SetDefaultDir(0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->GetSearchPath(0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->SetSearchPath(0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, book->PrepareRecips(0, nullptr, nullptr));

    EXPECT_EQ(MAPI_E_NO_SUPPORT, container->CopyEntries(nullptr, 0, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, container->ResolveNames(nullptr, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, container->SetSearchCriteria(nullptr, nullptr, 0));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, container->GetSearchCriteria(0, nullptr, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              container->CopyTo(0, nullptr, nullptr, 0, nullptr, nullptr, nullptr, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT,
              container->CopyProps(nullptr, 0, nullptr, nullptr, nullptr, 0, nullptr));
    IMAPITable* hierarchy = reinterpret_cast<IMAPITable*>(1);
    EXPECT_EQ(MAPI_E_NO_SUPPORT, container->GetHierarchyTable(0, &hierarchy));
    EXPECT_EQ(nullptr, hierarchy);

    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->FindRow(nullptr, 0, 0));
    EXPECT_EQ(S_OK, table->Restrict(nullptr, 0)) << "no restriction";
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->SortTable(nullptr, 0));
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, table->QuerySortOrder(nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->CreateBookmark(nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->ExpandRow(0, nullptr, 0, 0, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->CollapseRow(0, nullptr, 0, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->GetCollapseState(0, 0, nullptr, nullptr, nullptr));
    EXPECT_EQ(MAPI_E_NO_SUPPORT, table->SetCollapseState(0, 0, nullptr, nullptr));
}

TEST_F(PimLocalBookTest, LastErrorTellsTheFailureInWords)
{
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    MAPIERROR* error = reinterpret_cast<MAPIERROR*>(1);
    EXPECT_EQ(S_OK, library->GetLastError(MAPI_E_CORRUPT_STORE, MAPI_UNICODE, &error));
    EXPECT_EQ(nullptr, error) << "nothing failed so far";
    EXPECT_EQ(MAPI_E_INVALID_PARAMETER, library->GetLastError(S_OK, 0, nullptr));
    EXPECT_EQ(MAPI_E_UNKNOWN_FLAGS, library->GetLastError(S_OK, 1, &error));

    {
        Database database = OpenStore(m_path);
        database.Execute("DELETE FROM book_container");
    }
    ULONG size = 0;
    LPENTRYID id = nullptr;
    ASSERT_EQ(MAPI_E_CORRUPT_STORE, book->GetPAB(&size, &id));
    EXPECT_EQ(nullptr, id);
    ASSERT_EQ(S_OK, library->GetLastError(MAPI_E_CORRUPT_STORE, MAPI_UNICODE, &error));
    ASSERT_NE(nullptr, error);
    EXPECT_STREQ(L"a container of the address book is gone", error->lpszError);
    EXPECT_STREQ(L"PimLocalBook", error->lpszComponent);
    EXPECT_EQ(S_OK, library->FreeBuffer(error));
    ASSERT_EQ(S_OK, book->GetLastError(MAPI_E_CORRUPT_STORE, 0, &error));
    ASSERT_NE(nullptr, error);
    EXPECT_STREQ("a container of the address book is gone",
                 reinterpret_cast<const char*>(error->lpszError));
    EXPECT_EQ(S_OK, library->FreeBuffer(error));
    EXPECT_EQ(S_OK, library->GetLastError(MAPI_E_NOT_FOUND, 0, &error));
    EXPECT_EQ(nullptr, error) << "another result than the last";
}

TEST_F(PimLocalBookTest, AReadOnlyStoreOpensForReading)
{
    {
        Database database = OpenStore(m_path);
    }
    ASSERT_TRUE(SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_READONLY));
    {
        ComPtr<IAddrBook> book;
        ComPtr<IWABObject> library;
        Open(book, library);
        EXPECT_EQ(24u, PersonalId(book.Get(), library.Get()).size());
        IUnknown* object = nullptr;
        EXPECT_EQ(MAPI_E_NO_ACCESS,
                  book->OpenEntry(0, nullptr, nullptr, MAPI_MODIFY, nullptr, &object));
    }
    SetFileAttributesW(m_path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(PimLocalBookTest, ServesSeveralThreads)
{
    AddEntries(20);
    ComPtr<IAddrBook> book;
    ComPtr<IWABObject> library;
    Open(book, library);
    const std::vector<BYTE> id = PersonalId(book.Get(), library.Get());
    std::vector<std::thread> threads;
    for (int t = 0; t < 4; ++t)
    {
        threads.emplace_back([&] {
            for (int i = 0; i < 20; ++i)
            {
                const ComPtr<IABContainer> container = OpenContainer(book.Get(), id);
                ComPtr<IMAPITable> table;
                ASSERT_EQ(S_OK, container->GetContentsTable(0, table.GetAddressOf()));
                LPSRowSet rows = nullptr;
                ASSERT_EQ(S_OK, table->QueryRows(100, 0, &rows));
                ASSERT_EQ(20u, rows->cRows);
                for (ULONG row = 0; row < rows->cRows; ++row)
                    EXPECT_EQ(S_OK, library->FreeBuffer(rows->aRow[row].lpProps));
                EXPECT_EQ(S_OK, library->FreeBuffer(rows));
            }
        });
    }
    for (std::thread& thread : threads)
        thread.join();
}

TEST_F(PimLocalBookTest, LoadsAndUnloadsManyTimes)
{
    for (int i = 0; i < 20; ++i)
    {
        UniqueModule library(LoadLibraryW((ProgramFolder() + L"PimLocalBook.dll").c_str()));
        ASSERT_TRUE(library);
        ComPtr<IAddrBook> book;
        ComPtr<IWABObject> wab;
        Open(book, wab);
    }
}

// The server loads the library with each start of the service and lets it go with each stop.
TEST_F(PimLocalBookTest, IsLoadedAgainWithoutLeavingAnythingBehind)
{
    CloseLibrary();
    SetOaNoCache();
    const auto openMany = [](int times) {
        for (int i = 0; i < times; ++i)
        {
            const UniqueModule library(
                LoadLibraryW((ProgramFolder() + L"PimLocalBook.dll").c_str()));
            ASSERT_TRUE(library);
            const auto open = reinterpret_cast<LPWABOPEN>(
                reinterpret_cast<void*>(GetProcAddress(library.Get(), "WABOpen")));
            ComPtr<IAddrBook> book;
            ComPtr<IWABObject> object;
            ASSERT_EQ(S_OK, open(book.GetAddressOf(), object.GetAddressOf(), nullptr, 0));
        }
    };
    openMany(3);
    const HeapUse before = UseOfAllHeaps();
    openMany(10);
    EXPECT_EQ(before, UseOfAllHeaps());
}
