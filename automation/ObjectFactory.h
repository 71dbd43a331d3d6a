// Lets a client make any registered class inside this server's process, as INObjectFactory. The
// classes of this server land here, since their class objects are registered in this process; the
// client then holds proxies of them.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"

#include "PimStoreBridge.h"

class CNObjectFactory : public IDispatchImpl<INObjectFactory>,
                        public CComObjectRootEx<CComSingleThreadModel>,
                        public CComCoClass<CNObjectFactory, &CLSID_NObjectFactory64>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNObjectFactory, INObjectFactory>();

    // The class is tested against no list.
    // Ownership: the caller releases *ppObject.
    // Returns:   E_POINTER; else what CoCreateInstance gives, which also sets *ppObject.
    STDMETHODIMP CreateInstance(GUID clsid, IUnknown** ppObject) override;
    // The creator of the class itself, which the method would hide.
    using CComCoClass<CNObjectFactory, &CLSID_NObjectFactory64>::CreateInstance;

  protected:
    ~CNObjectFactory() = default;
};
