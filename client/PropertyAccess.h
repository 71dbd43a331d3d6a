// Single properties of the server's item objects.
#pragma once

#include "client/Failure.h"
#include "platform/Bstr.h"
#include "platform/WindowsHeaders.h"

#include "PimStoreBridge.h"

#include <optional>
#include <string>

namespace pim
{
// The text of a record's field with the zeros in it, which TextOf cuts; empty for null.
inline std::wstring WholeText(BSTR text)
{
    return text ? std::wstring(text, SysStringLen(text)) : std::wstring();
}

// A property that fails or is null gives nothing. Throws: Failure, where the server went away.
std::optional<std::wstring> TakeText(HRESULT result, const Bstr& text);

// As TakeText.
template <typename Interface>
std::optional<std::wstring> GetText(Interface* item,
                                    HRESULT (STDMETHODCALLTYPE Interface::*get)(BSTR*))
{
    Bstr text;
    const HRESULT result = (item->*get)(text.Put());
    return TakeText(result, text);
}

// As TakeText.
template <typename Interface, typename Value>
std::optional<Value> GetValue(Interface* item, HRESULT (STDMETHODCALLTYPE Interface::*get)(Value*))
{
    Value value = {};
    const HRESULT result = (item->*get)(&value);
    CheckServerIsThere(result);
    if (FAILED(result))
        return std::nullopt;
    return value;
}

// The side of an item that all kinds of items have; null where it has none.
Microsoft::WRL::ComPtr<INEntityItem> EntityOf(IUnknown* item);

// The item's ID; empty where it gives none. Throws as above.
std::wstring ReadItemId(IUnknown* item);

// The typed side of an item of an enumerator. Throws: Failure, where it has none.
template <typename Interface> Microsoft::WRL::ComPtr<Interface> TypedItem(INEntityItem* item)
{
    Microsoft::WRL::ComPtr<Interface> typed;
    CheckDone(
        item->QueryInterface(__uuidof(Interface), reinterpret_cast<void**>(typed.GetAddressOf())),
        L"The store gave an item of another kind");
    return typed;
}

// Throws: Failure, which names the field, where a put failed.
void CheckPut(HRESULT result, const std::wstring& field);
} // namespace pim
