// How objects of a store are had: another interface of one, a property as a stream, an entry of a
// container. Each comes with its owner.
#pragma once

#include "platform/WindowsHeaders.h"

// From IMAPIContainer::OpenEntry's flags: the store's business; passed as it stands.
inline constexpr ULONG kOpenToRead = 0x00000002;

// The object under another interface of the store, of that ID; null for a null object and where the
// query fails.
template <typename Interface>
Microsoft::WRL::ComPtr<Interface> QueryStore(IUnknown* object, REFIID interfaceID)
{
    Microsoft::WRL::ComPtr<Interface> result;
    if (object && FAILED(object->QueryInterface(interfaceID,
                                                reinterpret_cast<void**>(result.GetAddressOf()))))
        result.Detach(); // a failed query owes null; what a careless object left is not ours
    return result;
}

// A property as a stream; null where it cannot be opened.
//   flags: those of OpenProperty.
inline Microsoft::WRL::ComPtr<IStream> OpenStream(IMAPIProp& object, ULONG tag, ULONG flags)
{
    IUnknown* opened = nullptr;
    Microsoft::WRL::ComPtr<IStream> stream;
    // What a failed call left in its output is nobody's; else it is the interface asked for.
    if (SUCCEEDED(object.OpenProperty(tag, &IID_IStream, 0, flags, &opened)))
        *stream.GetAddressOf() = static_cast<IStream*>(opened);
    return stream;
}

struct OpenedEntry
{
    HRESULT result = S_OK;                    // of the call
    ULONG type = 0;                           // what the store says that the object is (MAPI_...)
    Microsoft::WRL::ComPtr<IMAPIProp> object; // null where the call failed
};

// Opens an entry through the container.
//   flags: those of OpenEntry.
inline OpenedEntry OpenEntry(IMAPIContainer& container, const SBinary& entryID, ULONG flags)
{
    OpenedEntry entry;
    Microsoft::WRL::ComPtr<IUnknown> object;
    entry.result = container.OpenEntry(entryID.cb,
                                       reinterpret_cast<LPENTRYID>(entryID.lpb),
                                       nullptr,
                                       flags,
                                       &entry.type,
                                       object.GetAddressOf());
    // No interface was asked for, so this is the object's own one, and all of a store's derive from
    // IMAPIProp.
    if (SUCCEEDED(entry.result))
        entry.object = static_cast<IMAPIProp*>(object.Get());
    return entry;
}
