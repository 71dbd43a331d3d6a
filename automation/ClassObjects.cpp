#include "automation/ClassObjects.h"

ClassObjects::~ClassObjects()
{
    Revoke();
}

HRESULT
ClassObjects::Register(std::span<const ObjectMapEntry> map, DWORD context, DWORD manner) noexcept
{
    HRESULT result = S_FALSE;
    try
    {
        m_registered.reserve(m_registered.size() + map.size());
        for (const ObjectMapEntry& row : map)
        {
            Registered entry{CComClassFactory::Make(row.create), 0};
            result = CoRegisterClassObject(
                *row.clsid, entry.factory.Get(), context, manner, &entry.cookie);
            if (FAILED(result))
                return result;
            m_registered.push_back(std::move(entry));
            // What the runtime took of the factory is not an outside reference.
            m_registered.back().factory->SettleReferences();
        }
    }
    catch (...)
    {
        return ResultOfException();
    }
    return result;
}

HRESULT ClassObjects::Revoke() noexcept
{
    HRESULT result = S_OK;
    for (const Registered& entry : m_registered)
    {
        const HRESULT revoked = CoRevokeClassObject(entry.cookie);
        if (SUCCEEDED(result))
            result = revoked;
    }
    m_registered.clear();
    return result;
}
