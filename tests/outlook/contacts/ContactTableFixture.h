// A table over two contact folders of the recording store, "contacts" and below it "family", with
// all names of contacts known. Temporary files go into a folder of the test's.
#pragma once

#include "outlook/contacts/ContactStoreFixture.h"
#include "outlook/contacts/ContactText.h"
#include "outlook/contacts/OutlookAddressTable.h"
#include "outlook/contacts/ScopedTemporaryFolder.h"

#include <string>
#include <vector>

class ContactTableTest : public ContactStoreTest
{
  protected:
    // 2024-01-01, as in the fixture of tables.
    static constexpr DATE kFirstDay = 45292.0;
    static constexpr std::uint64_t kUnitsPerDay = 864'000'000'000;
    static std::uint64_t FileTimeOf(DATE whole)
    {
        return static_cast<std::uint64_t>(whole + 109205.0) * kUnitsPerDay;
    }

    ContactTableTest() { Fill(store); }
    ~ContactTableTest() override { CloseTable(); }

    static void Fill(RecordingStore& target)
    {
        NameContactProperties(target);
        target.AddFolder("family", "contacts", L"IPF.Contact");
    }
    static void AddContact(RecordingStore& target,
                           const char* name,
                           const char* parent,
                           const StoreProps& props = {},
                           DATE utcModified = kFirstDay)
    {
        target.AddMessage(name, parent, StoreProps().Text(PR_MESSAGE_CLASS_W, L"IPM.Contact"));
        target.SetProps(name, props);
        target.SetTimes(name, FileTimeOf(utcModified), FileTimeOf(utcModified));
    }
    void AddContact(const char* name,
                    const char* parent,
                    const StoreProps& props = {},
                    DATE utcModified = kFirstDay)
    {
        AddContact(store, name, parent, props, utcModified);
    }

    std::vector<OutlookFolderInfo> Folders()
    {
        std::vector<OutlookFolderInfo> folders;
        folders.push_back({folder, true, 0, HexOf(store.EntryIdOf("contacts")), L"Contacts"});
        folders.push_back({session->OpenFolder(store.EntryIdOf("family")),
                           false,
                           0,
                           HexOf(store.EntryIdOf("family")),
                           L"Family"});
        return folders;
    }
    void OpenTable(bool withFolders = true)
    {
        Open();
        table = std::make_unique<COutlookAddressTable>(
            folder.Get(),
            session->Helper(),
            withFolders ? Folders() : std::vector<OutlookFolderInfo>());
        store.ClearRecord();
    }
    // Loads, goes before the first contact and begins the record anew.
    void LoadTable(bool withFolders = true)
    {
        OpenTable(withFolders);
        table->GetItemIDs();
        table->ResetItem();
        store.ClearRecord();
    }
    void CloseTable()
    {
        table.reset();
        Close();
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
    static std::wstring TextIn(INContactItem* contact,
                               HRESULT (STDMETHODCALLTYPE INContactItem::*get)(BSTR*))
    {
        Bstr text;
        (contact->*get)(text.Put());
        return text ? TextOf(text.Get()) : L"(null)";
    }

    ScopedTemporaryFolder temporary;
    std::unique_ptr<COutlookAddressTable> table;
};
