// IDispatch for a dual interface, through the type library that the running executable carries.
#pragma once

#include "automation/base/DispatchArguments.h"
#include "automation/base/Guard.h"
#include "automation/base/ServerModule.h"

#include <algorithm>

template <typename Interface> class IDispatchImpl : public Interface
{
  public:
    STDMETHODIMP GetTypeInfoCount(UINT* count) override
    {
        if (!count)
            return E_POINTER;
        *count = 1;
        return S_OK;
    }

    STDMETHODIMP GetTypeInfo(UINT index, LCID, ITypeInfo** info) override
    {
        if (!info)
            return E_POINTER;
        *info = nullptr;
        if (index != 0)
            return DISP_E_BADINDEX;
        ITypeInfo* own = nullptr;
        const HRESULT result = OwnTypeInfo(&own);
        if (FAILED(result))
            return result;
        own->AddRef();
        *info = own;
        return S_OK;
    }

    STDMETHODIMP
    GetIDsOfNames(REFIID, LPOLESTR* names, UINT count, LCID, DISPID* ids) override
    {
        // The system's look-up reads the first name whatever the count.
        if (!names || !ids || std::find(names, names + count, nullptr) != names + count)
            return E_POINTER;
        if (count == 0)
            return E_INVALIDARG;
        ITypeInfo* own = nullptr;
        const HRESULT result = OwnTypeInfo(&own);
        return FAILED(result) ? result : own->GetIDsOfNames(names, count, ids);
    }

    // The result, the exception record and the argument index are those of ITypeInfo::Invoke, but
    // for arguments that are broken in themselves (see CheckDispatchArguments).
    STDMETHODIMP Invoke(DISPID id,
                        REFIID,
                        LCID,
                        WORD flags,
                        DISPPARAMS* arguments,
                        VARIANT* value,
                        EXCEPINFO* exception,
                        UINT* badArgument) override
    {
        const HRESULT sound = CheckDispatchArguments(arguments, badArgument);
        if (FAILED(sound))
            return sound;
        ITypeInfo* own = nullptr;
        const HRESULT result = OwnTypeInfo(&own);
        if (FAILED(result))
            return result;
        // The call may release the object's last reference; the instance must outlast it.
        const Microsoft::WRL::ComPtr<IUnknown> alive(this);
        return own->Invoke(
            static_cast<Interface*>(this), id, flags, arguments, value, exception, badArgument);
    }

  protected:
    ~IDispatchImpl() = default;

  private:
    static HRESULT OwnTypeInfo(ITypeInfo** info) noexcept
    {
        CServerModule* module = CServerModule::Current();
        return module ? module->GetTypeInfo(__uuidof(Interface), info) : E_UNEXPECTED;
    }
};
