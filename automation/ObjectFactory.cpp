#include "automation/ObjectFactory.h"

HRESULT CNObjectFactory::CreateInstance(GUID clsid, IUnknown** ppObject)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppObject)
            return E_POINTER;
        return CoCreateInstance(
            clsid, nullptr, CLSCTX_ALL, IID_IUnknown, reinterpret_cast<void**>(ppObject));
    });
}
