// One list of items of one kind, with a cursor and a current item. All operations run on the
// apartment thread. IDs are in table form; ToInternalID and ToClientID convert.
#pragma once

#include "platform/WindowsHeaders.h"
#include "service/ItemEntry.h"

#include "PimStoreBridge.h"

#include <list>
#include <string>

class IEnumerator
{
  public:
    virtual ~IEnumerator() = default;

    // Loads or reloads the list of items. Where the cursor stands then is settled by ResetItem.
    virtual void GetItemIDs() = 0;

    // Puts the cursor before the first item and drops the current item.
    virtual void ResetItem() = 0;

    // Makes the item under the cursor current and advances; at the end drops the current item.
    virtual void GetNextItem() = 0;

    // Makes the item with this ID current. When it is not found the current item stays.
    virtual void GetItemByID(const std::wstring& id) = 0;

    // Stores the current item with one more reference; leaves *item alone when there is none, so
    // the caller sets it to null first.
    virtual void GetCurrentItem(INEntityItem** item) = 0;

    // Writes the item to the store. Returns 1 on success, else 0.
    virtual BOOL UpdateItem(INEntityItem* item) = 0;

    // Creates the item in the store. Returns its ID, empty on failure; folderID receives the
    // folder's ID where the table has one.
    virtual std::wstring AddItem(INEntityItem* item, std::wstring& folderID) = 0;

    // Removes the item from the store. Returns 1 on success, else 0.
    virtual BOOL DeleteItem(const std::wstring& id) = 0;

    // Replaces entries by a copy of the light list and returns 1; returns 0 and leaves it alone
    // on an enumerator that has no such list.
    virtual BOOL GetItemList(std::list<ItemEntry>& entries) = 0;

    // Client form to table form.
    virtual std::wstring ToInternalID(const std::wstring& id) { return id; }

    // Table form to client form.
    virtual std::wstring ToClientID(const std::wstring& id) { return id; }
};
