#include "automation/ObjectFactory.h"

namespace
{
// Every kind of server.
constexpr DWORD kAnyServer = 0x17;
} // namespace

HRESULT CNObjectFactory::CreateInstance(GUID clsid, IUnknown** ppObject)
{
    return Guard(this, [&]() -> HRESULT {
        if (!ppObject)
            return E_POINTER;
        return CoCreateInstance(
            clsid, nullptr, kAnyServer, IID_IUnknown, reinterpret_cast<void**>(ppObject));
    });
}
