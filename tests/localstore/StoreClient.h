// A client of PimLocalStore.dll for tests: it binds the library by its exported names, as the
// server does, and has the few steps that every test of the store begins with.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"
#include "tests/localstore/LocalStoreSupport.h"

#include <gtest/gtest.h>

#include <mapiguid.h>

#include <initializer_list>
#include <string>
#include <vector>

template <typename T> using ComPtr = Microsoft::WRL::ComPtr<T>;

// The address of an output pointer as the untyped methods want it.
template <typename T> void** OutVoid(ComPtr<T>& pointer)
{
    return reinterpret_cast<void**>(pointer.ReleaseAndGetAddressOf());
}

using EntryBytes = std::vector<BYTE>;

// A tag array of any length.
class Tags
{
  public:
    Tags(std::initializer_list<ULONG> tags) : m_data{static_cast<ULONG>(tags.size())}
    {
        m_data.insert(m_data.end(), tags);
    }
    explicit Tags(const std::vector<ULONG>& tags) : m_data{static_cast<ULONG>(tags.size())}
    {
        m_data.insert(m_data.end(), tags.begin(), tags.end());
    }
    operator LPSPropTagArray() { return reinterpret_cast<LPSPropTagArray>(m_data.data()); }

  private:
    std::vector<ULONG> m_data;
};

SPropValue LongValue(ULONG tag, LONG value);
SPropValue BooleanValue(ULONG tag, bool value);
// The text and the bytes have to outlive the value.
SPropValue TextValue(ULONG tag, const wchar_t* value);
SPropValue BinaryValue(ULONG tag, const void* bytes, size_t size);

// The library's exports.
class StoreLibrary
{
  public:
    StoreLibrary();

    FARPROC Address(const char* name) const { return GetProcAddress(m_module.Get(), name); }

    HRESULT(STDAPICALLTYPE* Initialize)(void*) = nullptr;
    void(STDAPICALLTYPE* Uninitialize)() = nullptr;
    HRESULT(STDAPICALLTYPE* LogonEx)(ULONG_PTR, LPTSTR, LPTSTR, ULONG, LPMAPISESSION*) = nullptr;
    void(STDAPICALLTYPE* FreeProws)(LPSRowSet) = nullptr;
    ULONG(STDAPICALLTYPE* FreeBuffer)(void*) = nullptr;
    SCODE(STDAPICALLTYPE* AllocateBuffer)(ULONG, void**) = nullptr;
    SCODE(STDAPICALLTYPE* AllocateMore)(ULONG, void*, void**) = nullptr;
    HRESULT(STDAPICALLTYPE* WrapRtf)(LPSTREAM, ULONG, LPSTREAM*) = nullptr;
    HRESULT(STDAPICALLTYPE* GetOneProp)(LPMAPIPROP, ULONG, LPSPropValue*) = nullptr;
    HRESULT(STDAPICALLTYPE* QueryAllRows)
    (LPMAPITABLE, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*) = nullptr;

  private:
    template <typename Function> void Bind(Function& function, const char* name);

    UniqueModule m_module;
};

// A logon to a new store of the test's own.
class StoreTest : public testing::Test
{
  protected:
    StoreTest();
    ~StoreTest() override;
    void SetUp() override;

    // The flags that the server logs on and opens the store with.
    static constexpr ULONG kLogonFlags = 0x62;
    static constexpr ULONG kStoreFlags = MDB_WRITE | MAPI_DEFERRED_ERRORS;

    ComPtr<IMAPISession> LogOn();
    ComPtr<IMsgStore> OpenDefaultStore(IMAPISession* session, ULONG flags = kStoreFlags);

    // The bytes of a binary property; empty where there is none.
    EntryBytes Binary(IMAPIProp* object, ULONG tag);
    std::wstring Text(IMAPIProp* object, ULONG tag);
    // The result of the one value: S_OK or its error.
    HRESULT ValueError(IMAPIProp* object, ULONG tag);
    LONG Long(IMAPIProp* object, ULONG tag);
    LONGLONG Time(IMAPIProp* object, ULONG tag);

    template <typename Container>
    HRESULT Open(Container* container,
                 const EntryBytes& id,
                 ULONG flags,
                 IUnknown** object,
                 ULONG* type = nullptr)
    {
        return container->OpenEntry(
            static_cast<ULONG>(id.size()),
            id.empty() ? nullptr : reinterpret_cast<LPENTRYID>(const_cast<BYTE*>(id.data())),
            nullptr,
            flags,
            type,
            object);
    }
    ComPtr<IMAPIFolder> OpenFolder(const EntryBytes& id, ULONG flags = MAPI_BEST_ACCESS);
    ComPtr<IMessage> OpenMessage(const EntryBytes& id, ULONG flags = MAPI_BEST_ACCESS);
    // A folder that the root names: PR_IPM_CONTACT_ENTRYID and its like.
    ComPtr<IMAPIFolder> RootFolder();
    ComPtr<IMAPIFolder> Contacts();

    // The results of the folder's CreateFolder and DeleteFolder.
    HRESULT MakeSubfolder(IMAPIFolder* folder, const wchar_t* name, ComPtr<IMAPIFolder>& made);
    HRESULT DeleteSubfolder(IMAPIFolder* folder, EntryBytes id, ULONG flags);

    // A saved message of that class and subject; its entry ID.
    EntryBytes AddMessage(IMAPIFolder* folder,
                          const wchar_t* messageClass,
                          const wchar_t* subject,
                          ULONG flags = 0);
    // The rows' values of one text column, a missing one as "-".
    std::vector<std::wstring> Column(IMAPITable* table, ULONG tag);

    static constexpr ULONG kContactFolder = 0x36D10102;
    static constexpr ULONG kCalendarFolder = 0x36D00102;

    TempFolder m_folder;
    const std::wstring m_path;
    StoreSetting m_setting;
    StoreLibrary m_library;
    ComPtr<IMAPISession> m_session;
    ComPtr<IMsgStore> m_store;
};
