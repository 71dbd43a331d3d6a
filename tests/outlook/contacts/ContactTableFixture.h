// A table over two contact folders of the recording store, "contacts" and below it "family", with
// all names of contacts known. Temporary files go into a folder of the test's.
#pragma once

#include "outlook/contacts/ContactStoreFixture.h"
#include "outlook/contacts/ContactText.h"
#include "outlook/contacts/OutlookAddressTable.h"
#include "outlook/contacts/PictureJournal.h"
#include "support/ScratchDirectory.h"

#include <string>
#include <vector>

// Puts temporary files elsewhere as long as it lives; what the journal learned of them is forgotten
// at the end.
class ScopedTemporaryFolder
{
  public:
    ScopedTemporaryFolder() { Set(m_scratch.Path().wstring() + L"\\"); }
    ~ScopedTemporaryFolder()
    {
        SetEnvironmentVariableW(L"TMP", m_old.empty() ? nullptr : m_old.c_str());
        RemoveOldPictureFiles();
    }
    ScopedTemporaryFolder(const ScopedTemporaryFolder&) = delete;
    ScopedTemporaryFolder& operator=(const ScopedTemporaryFolder&) = delete;

    void Set(const std::wstring& folder) { SetEnvironmentVariableW(L"TMP", folder.c_str()); }
    std::wstring Folder() const { return m_scratch.Path().wstring() + L"\\"; }
    std::size_t CountFiles() const
    {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry :
             std::filesystem::directory_iterator(m_scratch.Path()))
            ++count;
        return count;
    }

  private:
    static std::wstring Present()
    {
        wchar_t value[MAX_PATH] = {};
        GetEnvironmentVariableW(L"TMP", value, MAX_PATH);
        return value;
    }

    std::wstring m_old = Present();
    ScratchDirectory m_scratch;
};

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
