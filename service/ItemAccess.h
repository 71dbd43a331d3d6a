// What the tables and their handles do with item objects: fetch the current one, change interfaces,
// convert the ID in place, tell whether somebody still answers for one.
#pragma once

#include "platform/Bstr.h"
#include "service/Enumerator.h"

#include <string>

// The table's current item; null when there is none.
inline Microsoft::WRL::ComPtr<INEntityItem> CurrentItem(IEnumerator& table)
{
    Microsoft::WRL::ComPtr<INEntityItem> item;
    table.GetCurrentItem(item.GetAddressOf());
    return item;
}

// The object under another interface; null for a null object and where the query fails.
template <typename Interface> Microsoft::WRL::ComPtr<Interface> QueryItem(IUnknown* object)
{
    Microsoft::WRL::ComPtr<Interface> result;
    if (object && FAILED(object->QueryInterface(__uuidof(Interface),
                                                reinterpret_cast<void**>(result.GetAddressOf()))))
        result.Detach(); // a failed query owes null; what a careless object left is not ours
    return result;
}

// Passes a non-empty EntityID through the conversion and writes the result back to the object.
template <typename Convert> void RewriteEntityID(INEntityItem& item, Convert convert)
{
    Bstr id;
    if (FAILED(item.get_EntityID(id.Put())) || SysStringLen(id.Get()) == 0)
        return;
    item.put_EntityID(Bstr(convert(TextOf(id.Get()))).Get());
}

// Whether somebody still answers for the item. Where a client of another process ends in the middle
// of a write each property of its own item fails from then on, as one without a value does. Reads
// the ID of such items once more; those of this process are not asked.
bool IsReachable(INEntityItem& item) noexcept;
