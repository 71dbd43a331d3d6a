#include "outlook/categories/Outlook2007CategoryList.h"

#include "outlook/categories/CategoryStream.h"
#include "platform/Bstr.h"
#include "platform/GuidSource.h"
#include "platform/ScopeExit.h"
#include "service/ItemAccess.h"
#include "service/TimeConversions.h"

#include <utility>

using Microsoft::WRL::ComPtr;

COutlook2007CategoryList::COutlook2007CategoryList(IMAPIProp* message, CMAPIHelper* helper)
    : LiveObject(helper ? &helper->Live() : nullptr), m_message(message),
      m_pHelper(message ? helper : nullptr)
{
}

void COutlook2007CategoryList::Detach() noexcept
{
    m_pHelper = nullptr;
    m_document.reset();
    // A release may end this list, so that nothing of it is touched after the first.
    const ComPtr<IMAPIProp> message = std::move(m_message);
    const Item current = std::move(m_pCurrentItem);
    Clear();
}

DATE COutlook2007CategoryList::UtcNow() const
{
    SYSTEMTIME now{};
    GetSystemTime(&now);
    return SystemTimeToDate(now);
}

// --- Loading -----------------------------------------------------------------------------------

void COutlook2007CategoryList::GetItemIDs()
{
    const TableUse use(m_uses);
    if (use.IsNested() || !m_pHelper)
        return;
    Clear();
    m_document.reset();
    std::string text;
    CNProxcy& proxy = m_pHelper->Proxy();
    CategoryStream stream = ReadCategoryStream(*m_message.Get(), proxy, text);
    if (stream == CategoryStream::Missing)
    {
        WriteCategoryStream(*m_message.Get(), proxy, CategoryDocument().Print());
        stream = ReadCategoryStream(*m_message.Get(), proxy, text);
    }
    if (stream == CategoryStream::Read)
        m_document = CategoryDocument::Parse(text);
    if (!m_document)
        return;
    for (const Category& category : m_document->Categories())
        AppendCategory(category);
}

void COutlook2007CategoryList::AppendCategory(const Category& category)
{
    const ComPtr<INContactCategory> object = NewCategory();
    const ComPtr<INEntityItem> item = QueryItem<INEntityItem>(object.Get());
    if (!item)
        return;
    if (category.name)
        object->put_Name(Bstr(*category.name).Get());
    if (category.color)
        object->put_Color(*category.color);
    if (category.id)
        item->put_EntityID(Bstr(*category.id).Get());
    if (category.utcLastUsed)
        item->put_LastModificationTime(*category.utcLastUsed);
    Append(item.Get());
}

// --- Writing -----------------------------------------------------------------------------------

bool COutlook2007CategoryList::Store(CategoryDocument changed)
{
    const auto text = changed.PrintToStore();
    if (!text || !WriteCategoryStream(*m_message.Get(), m_pHelper->Proxy(), *text))
        return false;
    m_document = std::move(changed);
    return true;
}

BOOL COutlook2007CategoryList::UpdateItem(INEntityItem* item)
{
    const TableUse use(m_uses);
    const ComPtr<INContactCategory> category = QueryItem<INContactCategory>(item);
    if (use.IsNested() || !m_pHelper || !category)
        return FALSE;
    const DATE utcNow = UtcNow();
    item->put_LastModificationTime(utcNow);
    if (!m_document)
        return FALSE;
    CategoryDocument changed = *m_document;
    const std::wstring id = IDOf(*item);
    return changed.Rename(id, NameOf(*category.Get()), utcNow) && Store(std::move(changed));
}

std::wstring COutlook2007CategoryList::AddItem(INEntityItem* item, std::wstring&)
{
    const TableUse use(m_uses);
    const ComPtr<INContactCategory> category = QueryItem<INContactCategory>(item);
    if (use.IsNested() || !m_pHelper || !category)
        return {};
    std::wstring name = NameOf(*category.Get());
    if (name.empty())
        return {};
    if (!IDOf(*item).empty())
        return name;
    std::wstring id = m_document ? NewGuidText() : std::wstring();
    if (id.empty())
        return {};
    const DATE utcNow = UtcNow();
    const Bstr noID(std::wstring_view(L""));
    item->put_EntityID(Bstr(id).Get());
    // With an ID the item would count as added when the client tries again.
    ScopeExit notAdded([&] { item->put_EntityID(noID.Get()); });
    item->put_LastModificationTime(utcNow);
    LONG color = 0;
    category->get_Color(&color);
    CategoryDocument changed = *m_document;
    changed.Add(name, color, id, utcNow);
    if (!Store(std::move(changed)))
        return {};
    notAdded.Release();
    Append(item);
    return id;
}

BOOL COutlook2007CategoryList::DeleteItem(const std::wstring& id)
{
    const TableUse use(m_uses);
    if (use.IsNested() || !m_pHelper || id.empty())
        return FALSE;
    GetItemByID(id);
    const std::size_t position = FindItem(id, 0);
    if (!m_document || (!m_pCurrentItem && position == ItemIndex::kNotFound))
        return FALSE;
    CategoryDocument changed = *m_document;
    if (!changed.Remove(id) || !Store(std::move(changed)))
        return FALSE;
    if (position != ItemIndex::kNotFound)
        Erase(position);
    return TRUE;
}
