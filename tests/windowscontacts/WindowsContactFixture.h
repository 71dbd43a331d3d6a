// The table of Windows contacts over the address book of the recording store. The user's documents
// lie in a folder of the test's.
#pragma once

#include "outlook/contacts/ContactText.h"
#include "outlook/store/WAPProxcy.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "service/TextConversions.h"
#include "support/ScopedRegistryValue.h"
#include "support/ScratchDirectory.h"
#include "tests/outlook/store/TableFixture.h"
#include "tests/recordingstore/RecordingStore.h"
#include "windowscontacts/PersonalBook.h"
#include "windowscontacts/WindowsMailAddressTable.h"

#include <gmock/gmock.h>

#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

// A folder of the user's that stands elsewhere as long as this lives.
class ScopedShellFolder
{
  public:
    explicit ScopedShellFolder(const wchar_t* name)
        : m_value(HKEY_CURRENT_USER,
                  L"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\User Shell Folders",
                  name)
    {
    }
    void Set(const std::wstring& path) { m_value.Set(path, REG_EXPAND_SZ); }

  private:
    ScopedRegistryValue m_value;
};

inline void WriteFileBytes(const std::wstring& path, const std::string& bytes)
{
    std::ofstream(std::filesystem::path(path), std::ios::binary) << bytes;
}
inline std::string ReadFileBytes(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

// The bytes of an entry ID that carries that identity.
inline std::vector<BYTE> MarkedID(const std::wstring& identity)
{
    const std::wstring text = L"/GUID:\"" + identity + L"\"";
    const BYTE* const bytes = reinterpret_cast<const BYTE*>(text.data());
    return std::vector<BYTE>(bytes, bytes + text.size() * sizeof(wchar_t));
}

// Library, address book and container of a running provider.
class BookSession
{
  public:
    BookSession()
    {
        auto proxy = std::make_unique<CWAPProxcy>();
        if (!proxy->Load(RecordingStore::Path(), nullptr))
            throw std::runtime_error("the recording store does not load");
        m_helper = std::make_unique<CMAPIHelper>(std::move(proxy));
        CNProxcy& bound = m_helper->Proxy();
        auto* const open =
            reinterpret_cast<WABOPEN*>(reinterpret_cast<void*>(bound.FindEntry("WABOpen")));
        open(m_book.GetAddressOf(), m_library.GetAddressOf(), nullptr, 0);
        if (!m_book || !m_library)
            return; // the failing call was the session's own
        bound.SetValue(CNProxcy::kWabObjectKey, m_library.Get());
        m_container = OpenPersonalBook(*m_book.Get(), bound);
    }
    ~BookSession()
    {
        m_helper->Live().DetachAll();
        m_container.Reset();
        m_book.Reset();
        m_library.Reset();
    }
    BookSession(const BookSession&) = delete;
    BookSession& operator=(const BookSession&) = delete;

    CMAPIHelper* Helper() const { return m_helper.get(); }
    IAddrBook* Book() const { return m_book.Get(); }
    IABContainer* Container() const { return m_container.Get(); }

  private:
    std::unique_ptr<CMAPIHelper> m_helper;
    Microsoft::WRL::ComPtr<IWABObject> m_library;
    Microsoft::WRL::ComPtr<IAddrBook> m_book;
    Microsoft::WRL::ComPtr<IABContainer> m_container;
};

// Opens what the engine calls.
class OpenWindowsTable : public CWindowsMailAddressTable
{
  public:
    using CWindowsMailAddressTable::CWindowsMailAddressTable;
    using CWindowsMailAddressTable::FillItem;
    using CWindowsMailAddressTable::m_pCurrentEntity;
    using CWindowsMailAddressTable::PrepareEntity;
    using CWindowsMailAddressTable::ReadItem;
    using CWindowsMailAddressTable::ResolveClientID;
};

class WindowsContactTest : public testing::Test
{
  protected:
    // DATE 45292 is 2024-01-01; a FILETIME counts 100 ns from 1601-01-01, which is DATE -109205.
    static constexpr DATE kFirstDay = 45292.0;
    static std::uint64_t FileTimeOf(DATE whole)
    {
        return static_cast<std::uint64_t>(whole + 109205.0) * 864'000'000'000;
    }

    WindowsContactTest()
    {
        store.AddBook();
        documents.Set(folder.Path().wstring());
    }
    ~WindowsContactTest() override
    {
        Close();
        EXPECT_TRUE(store.IsClean()) << store.Complaints();
    }

    // A contact whose entry ID carries its name as identity.
    void AddContact(const char* name, const StoreProps& props = {}, DATE utcModified = kFirstDay)
    {
        store.AddBookEntry(name, props);
        store.SetEntryId(name, MarkedID(WideFromUtf8(name)));
        store.SetTimes(name, FileTimeOf(utcModified), FileTimeOf(utcModified));
    }

    void OpenTable(bool isOutlookExpress = false)
    {
        Close();
        session = std::make_unique<BookSession>();
        table = std::make_unique<OpenWindowsTable>(
            session->Container(), session->Helper(), isOutlookExpress, session->Book());
        store.ClearRecord();
    }
    // Loads, goes before the first contact and begins the record anew.
    void LoadTable(bool isOutlookExpress = false)
    {
        OpenTable(isOutlookExpress);
        table->GetItemIDs();
        table->ResetItem();
        store.ClearRecord();
    }
    void Close()
    {
        table.reset();
        session.reset();
    }

    std::wstring IdOf(const char* name) const { return HexOf(store.EntryIdOf(name)); }
    std::list<ItemEntry> Entries()
    {
        std::list<ItemEntry> entries;
        table->GetItemList(entries);
        return entries;
    }
    Microsoft::WRL::ComPtr<INContactItem> Current()
    {
        return QueryItem<INContactItem>(CurrentItem(*table).Get());
    }
    // The contact under that name, read through the loaded table.
    Microsoft::WRL::ComPtr<INContactItem> Read(const char* name)
    {
        table->GetItemByID(IdOf(name));
        return Current();
    }
    std::wstring Add(INContactItem* contact)
    {
        std::wstring folderID;
        const std::wstring id = table->AddItem(QueryItem<INEntityItem>(contact).Get(), folderID);
        EXPECT_EQ(L"", folderID);
        return id;
    }
    BOOL Update(INContactItem* contact, const char* name)
    {
        const auto item = QueryItem<INEntityItem>(contact);
        item->put_EntityID(Bstr(IdOf(name)).Get());
        return table->UpdateItem(item.Get());
    }
    static std::wstring IdIn(INContactItem* contact)
    {
        Bstr id;
        contact->get_PersistentID(id.Put());
        return TextOf(id.Get());
    }
    static DATE ModifiedIn(INContactItem* contact)
    {
        DATE time = -1.0;
        QueryItem<INEntityItem>(contact)->get_LastModificationTime(&time);
        return time;
    }

    RecordingStore store;
    ScratchDirectory folder;
    ScopedShellFolder documents{L"Personal"};
    std::unique_ptr<BookSession> session;
    std::unique_ptr<OpenWindowsTable> table;
};
