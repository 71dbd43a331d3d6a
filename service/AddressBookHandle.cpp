#include "service/AddressBookHandle.h"

#include "platform/Bstr.h"
#include "service/ItemAccess.h"

#include <utility>

using Microsoft::WRL::ComPtr;

CAddressBookHandle::CAddressBookHandle(std::unique_ptr<IEnumerator> items,
                                       std::unique_ptr<IEnumerator> groups)
    : m_pItems(std::move(items)), m_pGroups(std::move(groups))
{
}

void CAddressBookHandle::Refresh()
{
    // Kept as it is: the group table keeps the list from its creation. Pinned by
    // AddressBookHandleTest.RefreshReloadsTheContactTableAlone.
    m_pItems->GetItemIDs();
}

void CAddressBookHandle::ResetItem()
{
    m_pItems->ResetItem();
}

void CAddressBookHandle::NextItem()
{
    m_pItems->GetNextItem();
}

void CAddressBookHandle::GetItemByID(const std::wstring& id)
{
    m_pItems->GetItemByID(m_pItems->ToInternalID(id));
}

BOOL CAddressBookHandle::DeleteItem(const std::wstring& id)
{
    return m_pItems->DeleteItem(m_pItems->ToInternalID(id));
}

BOOL CAddressBookHandle::GetItemList(std::list<ItemEntry>& entries)
{
    return m_pItems->GetItemList(entries);
}

void CAddressBookHandle::GetCurrentContact(INContactItem** item)
{
    if (!item)
        return;
    *item = nullptr;
    const ComPtr<INEntityItem> entity = CurrentItem(*m_pItems);
    if (!entity)
        return;
    RewriteEntityID(*entity.Get(),
                    [&](const std::wstring& id) { return m_pItems->ToClientID(id); });
    *item = QueryItem<INContactItem>(entity.Get()).Detach();
}

BOOL CAddressBookHandle::UpdateContact(INContactItem* item)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    if (!entity)
        return FALSE;
    RewriteEntityID(*entity.Get(),
                    [&](const std::wstring& id) { return m_pItems->ToInternalID(id); });
    return m_pItems->UpdateItem(entity.Get());
}

std::wstring CAddressBookHandle::AddContact(INContactItem* item, std::wstring& folderID)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    if (!entity)
        return {};
    return m_pItems->ToClientID(m_pItems->AddItem(entity.Get(), folderID));
}

bool CAddressBookHandle::HasGroups() const noexcept
{
    return m_pGroups != nullptr;
}

void CAddressBookHandle::ResetGroup()
{
    if (m_pGroups)
        m_pGroups->ResetItem();
}

void CAddressBookHandle::NextGroup()
{
    if (m_pGroups)
        m_pGroups->GetNextItem();
}

void CAddressBookHandle::GetGroupByID(const std::wstring& id)
{
    if (m_pGroups)
        m_pGroups->GetItemByID(id);
}

BOOL CAddressBookHandle::DeleteGroup(const std::wstring& id)
{
    return m_pGroups ? m_pGroups->DeleteItem(id) : FALSE;
}

void CAddressBookHandle::GetCurrentGroup(INContactGroup** item)
{
    if (!item)
        return;
    *item = nullptr;
    if (m_pGroups)
        *item = QueryItem<INContactGroup>(CurrentItem(*m_pGroups).Get()).Detach();
}

BOOL CAddressBookHandle::UpdateGroup(INContactGroup* item)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    return entity && m_pGroups ? m_pGroups->UpdateItem(entity.Get()) : FALSE;
}

std::wstring CAddressBookHandle::AddGroup(INContactGroup* item)
{
    const ComPtr<INEntityItem> entity = QueryItem<INEntityItem>(item);
    if (!entity)
        return {};
    std::wstring droppedFolderID;
    return m_pItems->AddItem(entity.Get(), droppedFolderID);
}
