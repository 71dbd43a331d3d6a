// The categories as Outlook 2003 keeps them, used for every version but 2010: names in a registry
// value. They have no colour and no ID of their own: each load makes new IDs, which hold for this
// list alone.
#pragma once

#include "outlook/categories/CategoryList.h"
#include "outlook/categories/MasterList.h"

class COutlook2003CategoryList : public CCategoryList
{
  public:
    // The calls outlive the list.
    explicit COutlook2003CategoryList(RegistryCalls& calls = SystemRegistry()) : m_stored(calls) {}

    void GetItemIDs() override;
    // Writes all names of the list, whatever the item is, and returns 1.
    BOOL UpdateItem(INEntityItem* item) override;
    // The item becomes part of the list and gets an ID. Where a category has its name already, in
    // whatever letter case, nothing is added and the result is the ID that the item came with.
    std::wstring AddItem(INEntityItem* item, std::wstring& folderID) override;
    // Kept as it is: the argument is a category's name, not its ID. Pinned by
    // Outlook2003CategoryListTest.
    BOOL DeleteItem(const std::wstring& name) override;

  private:
    std::wstring NameAt(std::size_t position) const;
    // What the registry makes of it is not told to the caller. Nothing is written in place of a
    // list that was loaded in part.
    void WriteBack();

    MasterList m_stored;
    bool m_isWhole = true; // every name of the last load became an item
};
