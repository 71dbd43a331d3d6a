// The server's contacts over the embedded store: a provider that logged on to the built
// PimLocalStore.dll, and its table of contacts.
#pragma once

#include "automation/ClassObjects.h"
#include "outlook/contacts/ContactText.h"
#include "outlook/store/OutlookProvider.h"
#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "support/TestModule.h"
#include "tests/localstore/StoreClient.h"

#include <list>
#include <memory>
#include <string>

class StoreContactTest : public StoreTest
{
  protected:
    void SetUp() override;
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

  private:
    TestModule m_module;
    ClassObjects m_classes;
    std::unique_ptr<COutlookProvider> m_provider;
};
