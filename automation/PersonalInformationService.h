// The client's entry point: which providers exist, start and stop one, and from there the address
// book, the calendar, enumerators and the identity. Without state of its own: all service objects
// of the process share the one provider of the service manager.
//
// Except for StartService the results do not tell that no provider runs: a client tests the pointer
// that it gets.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"

#include "PimStoreBridge.h"

class CNPersonalInformationService
    : public IDispatchImpl<INPersonalInformationService>,
      public CComObjectRootEx<CComSingleThreadModel>,
      public CComCoClass<CNPersonalInformationService, &CLSID_NPersonalInformationService>
{
  public:
    static constexpr auto kInterfaceMap =
        InterfaceMap<CNPersonalInformationService, INPersonalInformationService>();

    // Without any provider the output stays untouched.
    STDMETHODIMP GetProviders(SAFEARRAY** arrProviders) override;
    // An unset default gives an empty text.
    STDMETHODIMP GetDefaultProvider(BSTR* bstrProvider) override;
    STDMETHODIMP StartService(BSTR bstrProvider) override;
    STDMETHODIMP StopService() override;
    // S_OK with a null object where it cannot be made.
    STDMETHODIMP GetUserProperties(INUserProperties** ppUserProperties) override;
    STDMETHODIMP GetAddressBook(INAddressBook** ppAddressbook) override;
    STDMETHODIMP GetCalendar(INCalendar** ppCalendar) override;
    // S_OK with an untouched output where it cannot be made.
    STDMETHODIMP GetEnumerator(_tagNEnumeratorType eType, INEnumerator** ppEnumerator) override;
    // E_INVALIDARG for a null output, unlike the others. S_OK with null where the type library is
    // not registered.
    STDMETHODIMP GetAddressBookRootFolders(SAFEARRAY** arrFolders) override;
    // Kept as it is: E_NOTIMPL always. Pinned by PersonalInformationServiceTest.
    STDMETHODIMP GetCalendarRootFolders(SAFEARRAY** arrFolders) override;

  protected:
    ~CNPersonalInformationService() = default;
};
