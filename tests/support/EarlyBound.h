// The base of a test's own objects under dual interfaces: they are called through their vtables
// alone, and the late-bound half says that it is not there.
#pragma once

#include "platform/WindowsHeaders.h"

template <typename... Interfaces> class EarlyBound : public Interfaces...
{
  public:
    STDMETHODIMP GetTypeInfoCount(UINT*) override { return E_NOTIMPL; }
    STDMETHODIMP GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    STDMETHODIMP GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override
    {
        return E_NOTIMPL;
    }
    STDMETHODIMP
    Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override
    {
        return E_NOTIMPL;
    }

  protected:
    ~EarlyBound() = default;
};
