#include "outlook/categories/CategoryList.h"

#include "platform/Bstr.h"
#include "service/OwnObject.h"

#include <utility>

using Microsoft::WRL::ComPtr;

CCategoryList::~CCategoryList() = default;

ComPtr<INContactCategory> CCategoryList::NewCategory()
{
    return CreateOwn<INContactCategory>(CLSID_NContactCategory);
}

std::wstring CCategoryList::NameOf(INContactCategory& category)
{
    Bstr name;
    return SUCCEEDED(category.get_Name(name.Put())) ? TextOf(name.Get()) : std::wstring();
}

std::wstring CCategoryList::IDOf(INEntityItem& item)
{
    Bstr id;
    return SUCCEEDED(item.get_EntityID(id.Put())) ? TextOf(id.Get()) : std::wstring();
}

void CCategoryList::Clear()
{
    m_position = kEnd;
    m_index.Clear();
    // What the items do in their end finds the list empty.
    std::exchange(m_items, {}).clear();
}

void CCategoryList::Append(INEntityItem* item)
{
    m_items.emplace_back(item);
    m_index.Append(IDOf(*item));
}

void CCategoryList::Erase(std::size_t position)
{
    const Item erased = m_items[position];
    m_items.erase(m_items.begin() + static_cast<std::ptrdiff_t>(position));
    if (m_position != kEnd)
        MoveTo(m_position - (m_position > position ? 1 : 0));
    m_index.Clear();
    for (const Item& item : m_items)
        m_index.Append(IDOf(*item.Get()));
}

std::size_t CCategoryList::FindItem(const std::wstring& id, std::size_t start)
{
    const auto hasID = [&](std::size_t position) { return IDOf(*m_items[position].Get()) == id; };
    const std::size_t indexed = m_index.Find(id, start, hasID);
    if (indexed != ItemIndex::kNotFound)
        return indexed;
    // A client that holds an item may have given it another ID.
    for (std::size_t position = start; position < m_items.size(); ++position)
        if (hasID(position))
            return position;
    return ItemIndex::kNotFound;
}

void CCategoryList::ResetItem()
{
    MoveTo(0);
    m_pCurrentItem.Reset();
}

void CCategoryList::GetNextItem()
{
    if (m_position == kEnd)
    {
        m_pCurrentItem.Reset();
        return;
    }
    m_pCurrentItem = m_items[m_position];
    MoveTo(m_position + 1);
}

void CCategoryList::GetItemByID(const std::wstring& id)
{
    const TableUse use(m_uses);
    MoveTo(m_position == kEnd ? kEnd : FindItem(id, m_position));
    if (m_position != kEnd)
        m_pCurrentItem = m_items[m_position];
}

void CCategoryList::GetCurrentItem(INEntityItem** item)
{
    if (item && m_pCurrentItem)
        m_pCurrentItem.CopyTo(item);
}

BOOL CCategoryList::GetItemList(std::list<ItemEntry>&)
{
    return FALSE;
}
