// The identity of the logged-on mail user, as INUserProperties: ten texts as they were when the
// object was made. No store is read afterwards.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"
#include "service/UserIdentity.h"

#include "PimStoreBridge.h"

#include <memory>
#include <string>

class CNUserProperties : public IDispatchImpl<INUserProperties>,
                         public CComObjectRootEx<CComSingleThreadModel>,
                         public CComCoClass<CNUserProperties, &CLSID_NUserProperties>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNUserProperties, INUserProperties>();

    // E_FAIL while no provider runs, and where it knows no identity.
    HRESULT FinalConstruct();

    // Each gives a new text, an empty one for what is not known. Returns: S_OK; E_POINTER;
    // E_OUTOFMEMORY.
    STDMETHODIMP get_Account(BSTR* pVal) override;
    STDMETHODIMP get_AddressType(BSTR* pVal) override;
    STDMETHODIMP get_DisplayName(BSTR* pVal) override;
    STDMETHODIMP get_Company(BSTR* pVal) override;
    STDMETHODIMP get_EmailAddress(BSTR* pVal) override;
    STDMETHODIMP get_FirstName(BSTR* pVal) override;
    STDMETHODIMP get_LastName(BSTR* pVal) override;
    STDMETHODIMP get_OfficeLocation(BSTR* pVal) override;
    STDMETHODIMP get_SMTPAddress(BSTR* pVal) override;
    STDMETHODIMP get_TransmitableDisplayName(BSTR* pVal) override;

  protected:
    ~CNUserProperties() = default;

  private:
    HRESULT Get(std::wstring UserIdentity::*text, BSTR* pVal) noexcept;

    std::unique_ptr<UserIdentity> m_pUserProperties;
};
