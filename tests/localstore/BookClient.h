// A client of PimLocalBook.dll for tests: it loads the library the way the server does, by its path
// and its one exported name, on a store of the test's own.
#pragma once

#include "localstore/StoreSchema.h"
#include "localstore/StoredProperties.h"
#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"
#include "tests/localstore/LocalStoreSupport.h"
#include "tests/localstore/StoreClient.h"

#include <gtest/gtest.h>

#include <mapiguid.h>

#include <string>
#include <vector>

// The library and a store of its own for one test.
class BookTest : public testing::Test
{
  protected:
    BookTest()
        : m_path(m_folder.File(L"store.db")), m_setting(m_path),
          m_library(LoadLibraryW((ProgramFolder() + L"PimLocalBook.dll").c_str()))
    {
        m_open = m_library ? reinterpret_cast<LPWABOPEN>(reinterpret_cast<void*>(
                                 GetProcAddress(m_library.Get(), "WABOpen")))
                           : nullptr;
    }
    void SetUp() override { ASSERT_NE(nullptr, m_open); }

    void CloseLibrary() { m_library.Reset(); }
    void Open(ComPtr<IAddrBook>& book, ComPtr<IWABObject>& library) const
    {
        ASSERT_EQ(S_OK, m_open(book.GetAddressOf(), library.GetAddressOf(), nullptr, 0));
        ASSERT_NE(nullptr, book.Get());
        ASSERT_NE(nullptr, library.Get());
    }

    static std::vector<BYTE> PersonalId(IAddrBook* book, IWABObject* library)
    {
        ULONG size = 0;
        LPENTRYID id = nullptr;
        EXPECT_EQ(S_OK, book->GetPAB(&size, &id));
        const BYTE* bytes = reinterpret_cast<const BYTE*>(id);
        std::vector<BYTE> copy(bytes, bytes + size);
        EXPECT_EQ(S_OK, library->FreeBuffer(id));
        return copy;
    }

    static ComPtr<IABContainer> OpenContainer(IAddrBook* book, std::vector<BYTE> id)
    {
        ULONG type = 0;
        ComPtr<IUnknown> object;
        EXPECT_EQ(S_OK,
                  book->OpenEntry(static_cast<ULONG>(id.size()),
                                  id.empty() ? nullptr : reinterpret_cast<LPENTRYID>(id.data()),
                                  nullptr,
                                  0,
                                  &type,
                                  object.GetAddressOf()));
        EXPECT_EQ(static_cast<ULONG>(MAPI_ABCONT), type);
        ComPtr<IABContainer> container;
        EXPECT_EQ(S_OK,
                  object->QueryInterface(IID_IABContainer,
                                         reinterpret_cast<void**>(container.GetAddressOf())));
        EXPECT_EQ(static_cast<void*>(container.Get()), static_cast<void*>(object.Get()))
            << "the server takes the pointer of OpenEntry as the container";
        return container;
    }

    // Puts entries into the store behind the library's back.
    void AddEntries(int count)
    {
        Database database = OpenStore(m_path);
        for (int i = 0; i < count; ++i)
        {
            database
                .Prepare("INSERT INTO book_entry (entry_id, container, object_type, created, "
                         "modified) SELECT ?1, id, 6, 0, ?2 FROM book_container WHERE role = 1")
                .Bind(1, NewEntryId(6))
                .Bind(2, std::int64_t{0x1D0000000000000} + i)
                .Run();
            const PropertyOwner entry{OwnerKind::BookEntry, database.LastInsertId()};
            WriteProperty(database, entry, 0x3001, {PT_UNICODE, L"Entry " + std::to_wstring(i)});
            WriteProperty(database,
                          entry,
                          0x3A56,
                          {PT_MV_UNICODE, std::vector<std::wstring>{L"a@x", L"b@x"}});
        }
    }

    TempFolder m_folder;
    const std::wstring m_path;
    StoreSetting m_setting;
    UniqueModule m_library;
    LPWABOPEN m_open = nullptr;
};

struct TagList
{
    ULONG cValues;
    ULONG aulPropTag[8];
    operator LPSPropTagArray() { return reinterpret_cast<LPSPropTagArray>(this); }
};
