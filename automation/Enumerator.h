// A list of items of one kind, as INEnumerator: the table's operations without any conversion of
// IDs. HRESULTs as in CNAddressBook. Which kind it is was told to the service manager before, since
// a creation takes no arguments.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"
#include "service/Enumerator.h"

#include "PimStoreBridge.h"

#include <memory>

class CNEnumerator : public IDispatchImpl<INEnumerator>,
                     public CComObjectRootEx<CComSingleThreadModel>,
                     public CComCoClass<CNEnumerator, &CLSID_NEnumerator>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNEnumerator, INEnumerator>();

    // Loads the table. E_FAIL while no provider runs, and where it lacks the remembered type.
    HRESULT FinalConstruct();

    STDMETHODIMP Refresh() override;
    STDMETHODIMP ResetItem(VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP GetNextItem(INEntityItem** ppItem) override;
    STDMETHODIMP GetItemByID(BSTR bstrEntryID, INEntityItem** ppItem) override;
    STDMETHODIMP UpdateItem(INEntityItem* pItem, VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP AddItem(INEntityItem* pItem, BSTR* pbstrEntryID) override;
    STDMETHODIMP DeleteItem(BSTR bstrEntryID, VARIANT_BOOL* pvbResult) override;

  protected:
    ~CNEnumerator() = default;

  private:
    std::unique_ptr<IEnumerator> m_pTable;
};
