// The collection of contacts and contact groups over the tables of the running provider, as
// INAddressBook. Turns the handle's truth values and empty results into HRESULTs: E_POINTER for a
// null argument (E_INVALIDARG in GetAllItemsWithBasicInfo), E_FAIL for a failed operation and at
// the end of a walk. The object keeps the tables that it got at its creation.
//
// The group methods fail with E_FAIL where the back end has no groups.
#pragma once

#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"
#include "service/AddressBookHandle.h"

#include "PimStoreBridge.h"

#include <memory>

class CNAddressBook : public IDispatchImpl<INAddressBook>,
                      public CComObjectRootEx<CComSingleThreadModel>,
                      public CComCoClass<CNAddressBook, &CLSID_NAddressBook>
{
  public:
    static constexpr auto kInterfaceMap = InterfaceMap<CNAddressBook, INAddressBook>();

    // E_FAIL while no provider runs, and where it has no address book.
    HRESULT FinalConstruct();

    STDMETHODIMP Refresh() override;
    STDMETHODIMP ResetItem(VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP GetNextItem(INContactItem** ppContact) override;
    STDMETHODIMP GetItemByID(BSTR bstrEntryID, INContactItem** ppContact) override;
    STDMETHODIMP UpdateItem(INContactItem* pContact, VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP AddItem(INContactItem* pContact, BSTR* pbstrEntryID) override;
    STDMETHODIMP DeleteItem(BSTR bstrEntryID, VARIANT_BOOL* pvbResult) override;

    STDMETHODIMP ResetGroup(VARIANT_BOOL* pvbResult) override;
    STDMETHODIMP GetNextGroup(INContactGroup** ppGroup) override;
    STDMETHODIMP GetGroupByID(BSTR bstrEntryID, INContactGroup** ppGroup) override;
    STDMETHODIMP UpdateGroup(INContactGroup* pGroup, VARIANT_BOOL* pvbResult) override;
    // Kept as it is: reaches the contact table and so fails, see CAddressBookHandle::AddGroup.
    // Pinned by AddressBookTest.AddGroupGoesToTheContactTable.
    STDMETHODIMP AddGroup(INContactGroup* pGroup, BSTR* pbstrEntryID) override;
    STDMETHODIMP DeleteGroup(BSTR bstrEntryID, VARIANT_BOOL* pvbResult) override;

    // The table's list as the last load left it; no store is touched and the cursor stays. S_OK
    // with null where the type library is not registered.
    STDMETHODIMP GetAllItemsWithBasicInfo(SAFEARRAY** pItems) override;
    // Writes the folder's ID only where the table gave one and the client takes one.
    STDMETHODIMP AddItemEx(INContactItem* pContact,
                           BSTR* pbstrFolderEntryID,
                           BSTR* pbstrEntryID) override;

  protected:
    ~CNAddressBook() = default;

  private:
    std::unique_ptr<CAddressBookHandle> m_pHandle;
};
