// Owner of a contact table and a group table, between the automation collection and the tables.
// Contact IDs are converted between client form and table form here; group IDs pass unchanged.
#pragma once

#include "service/Enumerator.h"

#include <list>
#include <memory>

class CAddressBookHandle
{
  public:
    // items must not be null. groups may be: a back end without groups, whose group operations do
    // nothing and fail.
    CAddressBookHandle(std::unique_ptr<IEnumerator> items, std::unique_ptr<IEnumerator> groups);

    // The table's operations on contacts, see IEnumerator, with IDs in client form.
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

    // True where there is a group table; the group operations down to UpdateGroup need it.
    bool HasGroups() const noexcept;
    void ResetGroup();
    void NextGroup();
    void GetGroupByID(const std::wstring& id);
    BOOL DeleteGroup(const std::wstring& id);
    void GetCurrentGroup(INContactGroup** item);
    BOOL UpdateGroup(INContactGroup* item);
    // Kept as it is: this reaches the contact table, not the group table, with or without groups.
    // A contact table can make nothing of a group object, so the result is the empty string.
    // Pinned by AddressBookHandleTest.
    std::wstring AddGroup(INContactGroup* item);

  private:
    std::unique_ptr<IEnumerator> m_pItems;
    std::unique_ptr<IEnumerator> m_pGroups;
};
