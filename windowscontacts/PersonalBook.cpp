#include "windowscontacts/PersonalBook.h"

#include "outlook/store/MapiMemory.h"

using Microsoft::WRL::ComPtr;

ComPtr<IABContainer> OpenPersonalBook(IAddrBook& book, CNProxcy& proxy)
{
    ULONG size = 0;
    LPENTRYID entry = nullptr;
    const HRESULT found = book.GetPAB(&size, &entry);
    // What a failed call left in its outputs is nobody's.
    const auto ownedEntry = AdoptMapiBuffer(SUCCEEDED(found) ? entry : nullptr, proxy);
    if (!ownedEntry)
        return nullptr;

    // An entry that says it is something else has fewer operations than a container.
    ULONG type = MAPI_ABCONT;
    ComPtr<IUnknown> object;
    const HRESULT opened = book.OpenEntry(size, entry, nullptr, 0, &type, object.GetAddressOf());
    if (FAILED(opened) || !object || type != MAPI_ABCONT)
        return nullptr;
    // Opened without naming an interface, a container comes under its own one.
    return static_cast<IABContainer*>(object.Get());
}
