#include "client/PropertyAccess.h"

#include "client/core/CommandLine.h"

namespace pim
{
using Microsoft::WRL::ComPtr;

std::optional<std::wstring> TakeText(HRESULT result, const Bstr& text)
{
    CheckServerIsThere(result);
    if (FAILED(result) || !text)
        return std::nullopt;
    return std::wstring(text.View());
}

ComPtr<INEntityItem> EntityOf(IUnknown* item)
{
    ComPtr<INEntityItem> entity;
    CheckServerIsThere(
        item->QueryInterface(IID_INEntityItem, reinterpret_cast<void**>(entity.GetAddressOf())));
    return entity;
}

std::wstring ReadItemId(IUnknown* item)
{
    const auto entity = EntityOf(item);
    return entity ? GetText(entity.Get(), &INEntityItem::get_EntityID).value_or(L"")
                  : std::wstring();
}

void CheckPut(HRESULT result, const std::wstring& field)
{
    CheckServerIsThere(result);
    if (FAILED(result))
        throw Failure{kExitFailed,
                      L"The server did not take the item's " + field + L" (" + ResultText(result) +
                          L"). Nothing was stored."};
}
} // namespace pim
