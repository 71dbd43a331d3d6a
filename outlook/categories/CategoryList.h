// What both forms of Outlook's category list share: one item object per category, all of them in
// memory, and the walk over them. Loading and writing stand in the two forms.
// Thread: the apartment thread.
#pragma once

#include "platform/WindowsHeaders.h"
#include "service/Enumerator.h"
#include "service/ItemIndex.h"
#include "service/TableUse.h"

#include "PimStoreBridge.h"

#include <string>
#include <vector>

class CCategoryList : public IEnumerator
{
  public:
    ~CCategoryList() override;

    void ResetItem() override;
    void GetNextItem() override;
    // Searches from the cursor on, which stays on the category that it finds. Without one the
    // cursor is at the end, and the current item stays.
    void GetItemByID(const std::wstring& id) override;
    void GetCurrentItem(INEntityItem** item) override;
    // There is no light list: 0.
    BOOL GetItemList(std::list<ItemEntry>& entries) override;

  protected:
    using Item = Microsoft::WRL::ComPtr<INEntityItem>;

    // A new category object; null where there can't be one.
    static Microsoft::WRL::ComPtr<INContactCategory> NewCategory();
    // The texts up to their first zero; empty also where the item gives none.
    static std::wstring NameOf(INContactCategory& category);
    static std::wstring IDOf(INEntityItem& item);

    // Empties the list; the cursor is at its end then, until ResetItem. The current item stays.
    void Clear();
    // At the end. A cursor that is there stays behind it.
    void Append(INEntityItem* item);
    // A cursor on the item goes to the next one.
    void Erase(std::size_t position);
    const std::vector<Item>& Items() const noexcept { return m_items; }
    // The first item at or behind the start that came with the ID and still has it; where there is
    // none, the first that has it now. Else ItemIndex::kNotFound.
    std::size_t FindItem(const std::wstring& id, std::size_t start);

    Item m_pCurrentItem;
    int m_uses = 0; // for TableUse

  private:
    // The end stays the end, however many items come.
    static constexpr std::size_t kEnd = static_cast<std::size_t>(-1);

    void MoveTo(std::size_t position) noexcept
    {
        m_position = position < m_items.size() ? position : kEnd;
    }

    std::vector<Item> m_items;
    ItemIndex m_index; // where the IDs were when the items came
    std::size_t m_position = kEnd;
};
