// Owner of a contact table and a group table, between the automation collection and the tables.
// Contact IDs are converted between client form and table form here; group IDs pass unchanged.
#pragma once

#include "service/Enumerator.h"

#include <list>
#include <memory>

class CAddressBookHandle
{
  public:
    // groups may be null: a back end without groups. The group operations then fail.
    CAddressBookHandle(std::unique_ptr<IEnumerator> items, std::unique_ptr<IEnumerator> groups);

    void Refresh();
    void ResetItem();
    void NextItem();
    void GetItemByID(const std::wstring& id);
    BOOL DeleteItem(const std::wstring& id);
    BOOL GetItemList(std::list<ItemEntry>& entries);

    // Stores the current contact, its EntityID in client form, or null when there is none.
    void GetCurrentContact(INContactItem** item);
    // The object's EntityID keeps the table form afterwards.
    BOOL UpdateContact(INContactItem* item);
    // The new item's ID in client form; empty on failure.
    std::wstring AddContact(INContactItem* item, std::wstring& folderID);

    // True where there is a group table; the group operations below do nothing and fail without.
    bool HasGroups() const noexcept;
    void ResetGroup();
    void NextGroup();
    void GetGroupByID(const std::wstring& id);
    BOOL DeleteGroup(const std::wstring& id);
    void GetCurrentGroup(INContactGroup** item);
    BOOL UpdateGroup(INContactGroup* item);
    // Kept as it is: this reaches the contact table, not the group table, and so fails.
    std::wstring AddGroup(INContactGroup* item);

  private:
    std::unique_ptr<IEnumerator> m_pItems;
    std::unique_ptr<IEnumerator> m_pGroups;
};
