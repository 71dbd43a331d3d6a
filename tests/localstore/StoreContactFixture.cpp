#include "tests/localstore/StoreContactFixture.h"

#include "outlook/store/EntryIdText.h"

namespace
{
std::wstring TextOfGet(INContactItem* contact,
                       HRESULT (STDMETHODCALLTYPE INContactItem::*get)(BSTR*))
{
    Bstr text;
    (contact->*get)(text.Put());
    return TextOf(text.Get());
}
} // namespace

void StoreContactTest::TearDown()
{
    CloseTable();
}

ComPtr<IMAPIFolder> StoreContactTest::AddContactFolder(const wchar_t* name)
{
    ComPtr<IMAPIFolder> folder;
    EXPECT_EQ(S_OK, MakeSubfolder(Contacts().Get(), name, folder));
    SPropValue value = TextValue(PR_CONTAINER_CLASS_W, L"IPF.Contact");
    EXPECT_EQ(S_OK, folder->SetProps(1, &value, nullptr));
    EXPECT_EQ(S_OK, folder->SaveChanges(KEEP_OPEN_READWRITE));
    return folder;
}

void StoreContactTest::OpenTable()
{
    CloseTable();
    ASSERT_NO_FATAL_FAILURE(LogOnProvider());
    table = LoadTable(AddressBook);
}

void StoreContactTest::CloseTable()
{
    table.reset();
    provider.reset();
}

std::list<ItemEntry> StoreContactTest::Entries()
{
    std::list<ItemEntry> entries;
    table->GetItemList(entries);
    return entries;
}

ComPtr<INContactItem> StoreContactTest::Next()
{
    table->GetNextItem();
    return QueryItem<INContactItem>(CurrentItem(*table).Get());
}

ComPtr<INContactItem> StoreContactTest::Read(const std::wstring& id)
{
    table->GetItemByID(id);
    return QueryItem<INContactItem>(CurrentItem(*table).Get());
}

std::wstring StoreContactTest::Add(INContactItem* contact)
{
    std::wstring folderID;
    return table->AddItem(QueryItem<INEntityItem>(contact).Get(), folderID);
}

BOOL StoreContactTest::Update(INContactItem* contact)
{
    return table->UpdateItem(QueryItem<INEntityItem>(contact).Get());
}

std::wstring StoreContactTest::IdOf(INContactItem* contact)
{
    return TextOfGet(contact, &INContactItem::get_PersistentID);
}

std::wstring StoreContactTest::FolderOf(INContactItem* contact)
{
    return TextOfGet(contact, &INContactItem::get_ParentFolderID);
}

std::wstring StoreContactTest::HexIdOf(IMAPIProp* object)
{
    return BytesToHex(Binary(object, PR_ENTRYID));
}
