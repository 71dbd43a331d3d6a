#include "outlook/categories/Outlook2003CategoryList.h"

#include "platform/Bstr.h"
#include "platform/GuidSource.h"
#include "service/ItemAccess.h"

#include <algorithm>

using Microsoft::WRL::ComPtr;

namespace
{
constexpr wchar_t kSeparator = L';';

// The texts between separators; empty ones are none.
std::vector<std::wstring> NamesIn(const std::wstring& text)
{
    std::vector<std::wstring> names;
    for (std::size_t start = 0; start < text.size();)
    {
        const std::size_t end = std::min(text.find(kSeparator, start), text.size());
        if (end > start)
            names.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return names;
}
} // namespace

void COutlook2003CategoryList::GetItemIDs()
{
    const TableUse use(m_uses);
    if (use.IsNested())
        return;
    m_isWhole = false; // stays so where memory runs out
    Clear();
    bool isWhole = true;
    for (const std::wstring& name : NamesIn(m_stored.Read()))
    {
        const ComPtr<INContactCategory> category = NewCategory();
        const ComPtr<INEntityItem> item = QueryItem<INEntityItem>(category.Get());
        if (!item)
        {
            isWhole = false;
            continue;
        }
        category->put_Name(Bstr(name).Get());
        category->put_Color(0);
        item->put_EntityID(Bstr(NewGuidText()).Get());
        Append(item.Get());
    }
    m_isWhole = isWhole;
}

BOOL COutlook2003CategoryList::UpdateItem(INEntityItem*)
{
    const TableUse use(m_uses);
    if (use.IsNested())
        return FALSE;
    WriteBack();
    return TRUE;
}

std::wstring COutlook2003CategoryList::AddItem(INEntityItem* item, std::wstring&)
{
    const TableUse use(m_uses);
    const ComPtr<INContactCategory> category = QueryItem<INContactCategory>(item);
    if (use.IsNested() || !category)
        return {};
    const std::wstring name = NameOf(*category.Get());
    if (name.empty())
        return {};
    for (std::size_t position = 0; position < Items().size(); ++position)
        if (lstrcmpiW(NameAt(position).c_str(), name.c_str()) == 0)
            return IDOf(*item);
    std::wstring id = NewGuidText();
    if (id.empty())
        return {};
    item->put_EntityID(Bstr(id).Get());
    Append(item);
    WriteBack();
    return id;
}

BOOL COutlook2003CategoryList::DeleteItem(const std::wstring& name)
{
    const TableUse use(m_uses);
    if (use.IsNested())
        return FALSE;
    for (std::size_t position = 0; position < Items().size(); ++position)
    {
        if (NameAt(position) != name)
            continue;
        Erase(position);
        WriteBack();
        return TRUE;
    }
    return FALSE;
}

std::wstring COutlook2003CategoryList::NameAt(std::size_t position) const
{
    const auto category = QueryItem<INContactCategory>(Items()[position].Get());
    return category ? NameOf(*category.Get()) : std::wstring();
}

void COutlook2003CategoryList::WriteBack()
{
    if (!m_isWhole)
        return;
    std::wstring text;
    for (std::size_t position = 0; position < Items().size(); ++position)
        text += NameAt(position) + kSeparator;
    m_stored.Write(text);
}
