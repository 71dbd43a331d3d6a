// New objects of the server's own classes, made as a client makes them: through the class objects.
#pragma once

#include "platform/WindowsHeaders.h"

// Any kind of server may answer. The classes are registered by this very process, so that the call
// lands here.
// Ownership: the caller owns *object.
// Returns:   what CoCreateInstance gives, which also sets *object.
inline HRESULT CreateOwn(REFCLSID clsid, REFIID iid, void** object)
{
    return CoCreateInstance(clsid, nullptr, CLSCTX_ALL, iid, object);
}

// The same; null where the class refuses.
template <typename Interface> Microsoft::WRL::ComPtr<Interface> CreateOwn(REFCLSID clsid)
{
    Microsoft::WRL::ComPtr<Interface> object;
    if (FAILED(
            CreateOwn(clsid, __uuidof(Interface), reinterpret_cast<void**>(object.GetAddressOf()))))
        object.Reset();
    return object;
}
