// Category objects as clients fill and read them, for tests of category lists.
#pragma once

#include "platform/Bstr.h"
#include "service/ItemAccess.h"
#include "tests/automation/CollectionFixture.h"
#include "tests/service/FakeItem.h"

#include <string>
#include <vector>

inline std::wstring NameOf(INEntityItem* item)
{
    const auto category = QueryItem<INContactCategory>(item);
    Bstr name;
    if (!category || FAILED(category->get_Name(name.Put())))
        return L"(no category)";
    return name ? TextOf(name.Get()) : L"(null)";
}

inline LONG ColorOf(INEntityItem* item)
{
    LONG color = -99;
    if (const auto category = QueryItem<INContactCategory>(item))
        category->get_Color(&color);
    return color;
}

// A new category object; null for what is not to be put.
inline Microsoft::WRL::ComPtr<INEntityItem> CategoryOf(const wchar_t* name,
                                                       const wchar_t* id = nullptr,
                                                       LONG color = 0)
{
    const auto category = CreateObject<INContactCategory>(CLSID_NContactCategory);
    if (name)
        category->put_Name(Bstr(name).Get());
    category->put_Color(color);
    const auto item = QueryItem<INEntityItem>(category.Get());
    if (id)
        item->put_EntityID(Bstr(id).Get());
    return item;
}

// The name of the current item; "(none)" without one.
inline std::wstring CurrentName(IEnumerator& list)
{
    const auto item = CurrentItem(list);
    return item ? NameOf(item.Get()) : L"(none)";
}

// The steps from the cursor to the end of the walk.
inline std::vector<std::wstring> Rest(IEnumerator& list)
{
    std::vector<std::wstring> names;
    for (list.GetNextItem(); CurrentItem(list) && names.size() < 50; list.GetNextItem())
        names.push_back(CurrentName(list));
    return names;
}

inline std::vector<std::wstring> Walk(IEnumerator& list)
{
    list.ResetItem();
    return Rest(list);
}

// The ID of the first category with the name; moves the cursor.
inline std::wstring IdIn(IEnumerator& list, const std::wstring& name)
{
    list.ResetItem();
    for (list.GetNextItem(); CurrentItem(list); list.GetNextItem())
        if (CurrentName(list) == name)
            return EntityIDOf(CurrentItem(list).Get());
    return {};
}
