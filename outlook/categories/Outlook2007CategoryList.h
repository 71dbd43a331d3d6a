// The categories as Outlook keeps them since 2007: an XML document in a hidden message of the
// calendar folder. The provider uses it for Outlook 2010 alone, see OutlookLibrary.h. The document
// is kept beside the items, and every write prints a changed copy of it, so that what other
// programs stored in it stays.
#pragma once

#include "outlook/categories/CategoryDocument.h"
#include "outlook/categories/CategoryList.h"
#include "outlook/store/LiveObjects.h"
#include "outlook/store/MAPIHelper.h"

#include <optional>

class COutlook2007CategoryList : public CCategoryList, public LiveObject
{
  public:
    //   message: the category list message.
    //   helper:  not owned; detaches this list where it ends first.
    // Without one of them the list is dead, as after Detach.
    COutlook2007CategoryList(IMAPIProp* message, CMAPIHelper* helper);

    // Stores an empty document where the message has none. A document that cannot be read leaves
    // the list empty, and nothing is written in its place.
    void GetItemIDs() override;
    // Writes the name. The item gets the present time also where nothing is written because the
    // document has no category with its ID.
    BOOL UpdateItem(INEntityItem* item) override;
    // The item becomes part of the list and gets an ID and the present time. Where the document
    // cannot be stored the item's ID is empty again, so that it can be added later.
    // Kept as it is: for an item that has an ID already nothing is added and the result is its
    // name. Pinned by Outlook2007CategoryListTest.
    std::wstring AddItem(INEntityItem* item, std::wstring& folderID) override;
    // Takes the category out of the document and of the list, wherever the cursor stands; moves the
    // cursor as GetItemByID does.
    BOOL DeleteItem(const std::wstring& id) override;

    // Drops all items too.
    void Detach() noexcept override;

  protected:
    virtual DATE UtcNow() const;

  private:
    bool Store(CategoryDocument changed);
    void AppendCategory(const Category& category);

    Microsoft::WRL::ComPtr<IMAPIProp> m_message;
    std::optional<CategoryDocument> m_document; // none before the first load and where that failed
    CMAPIHelper* m_pHelper;
};
