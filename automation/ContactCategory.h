// The value object for a contact category of every provider. Holds fields and nothing else: it
// reaches no store and judges no value.
#pragma once

#include "automation/PropertyForms.h"
#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"

#include "PimStoreBridge.h"

class CNContactCategory : public IDispatchImpl<INContactCategory>,
                          public IDispatchImpl<INEntityItem>,
                          public CComObjectRootEx<CComSingleThreadModel>,
                          public CComCoClass<CNContactCategory, &CLSID_NContactCategory>
{
  public:
    static constexpr auto kInterfaceMap =
        InterfaceMap<CNContactCategory, INContactCategory, INEntityItem>();

    // INContactCategory. A put of null gives E_POINTER and changes nothing.
    STDMETHODIMP get_Name(BSTR* pVal) override;
    STDMETHODIMP put_Name(BSTR newVal) override;
    STDMETHODIMP get_Color(LONG* pVal) override;
    STDMETHODIMP put_Color(LONG newVal) override;
    // A get before the first put leaves its output as it is.
    STDMETHODIMP get_Items(SAFEARRAY** pVal) override;
    STDMETHODIMP put_Items(SAFEARRAY* newVal) override;

    // INEntityItem. A put of null empties FolderID alone.
    STDMETHODIMP get_EntityID(BSTR* pVal) override;
    STDMETHODIMP put_EntityID(BSTR newVal) override;
    STDMETHODIMP get_LastModificationTime(DATE* pVal) override;
    STDMETHODIMP put_LastModificationTime(DATE newVal) override;
    STDMETHODIMP get_FolderID(BSTR* pVal) override;
    STDMETHODIMP put_FolderID(BSTR newVal) override;

  protected:
    ~CNContactCategory() = default;

  private:
    Bstr m_entityID;
    DATE m_lastModificationTime = 0.0;
    Bstr m_name;
    LONG m_color = 0;
    ArrayField m_items;
    Bstr m_folderID;
};
