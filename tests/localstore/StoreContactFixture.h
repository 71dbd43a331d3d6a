// The server's contacts over the embedded store: a provider that logged on to the built
// PimLocalStore.dll, and its table of contacts.
#pragma once

#include "outlook/contacts/ContactText.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "tests/localstore/StoreProviderFixture.h"

#include <list>
#include <memory>
#include <string>

class StoreContactTest : public StoreProviderTest
{
  protected:
    void TearDown() override;

    // A contact folder below the default one.
    ComPtr<IMAPIFolder> AddContactFolder(const wchar_t* name);

    // Logs on, loads the contacts of all folders and goes before the first.
    void OpenTable();
    void CloseTable();
    std::list<ItemEntry> Entries();

    // The next contact; null behind the last.
    ComPtr<INContactItem> Next();
    ComPtr<INContactItem> Read(const std::wstring& id);
    std::wstring Add(INContactItem* contact);
    BOOL Update(INContactItem* contact);

    static std::wstring IdOf(INContactItem* contact);
    static std::wstring FolderOf(INContactItem* contact);
    // Upper-case hexadecimal text.
    std::wstring HexIdOf(IMAPIProp* object);

    std::unique_ptr<IEnumerator> table;
};
