// The value object for a contact group of every provider. Holds fields and nothing else: it reaches
// no store and judges no value.
#pragma once

#include "automation/PropertyForms.h"
#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"

#include "PimStoreBridge.h"

class CNContactGroup : public IDispatchImpl<INContactGroup>,
                       public IDispatchImpl<INEntityItem>,
                       public CComObjectRootEx<CComSingleThreadModel>,
                       public CComCoClass<CNContactGroup, &CLSID_NContactGroup>
{
  public:
    static constexpr auto kInterfaceMap =
        InterfaceMap<CNContactGroup, INContactGroup, INEntityItem>();

    // INContactGroup. A put of null gives E_POINTER and changes nothing.
    STDMETHODIMP get_GroupID(BSTR* pVal) override;
    STDMETHODIMP put_GroupID(BSTR newVal) override;
    // E_FAIL for a get before the first put. Both tell of a copy that failed; Items does not.
    STDMETHODIMP get_CategoryIDs(SAFEARRAY** pVal) override;
    STDMETHODIMP put_CategoryIDs(SAFEARRAY* newVal) override;
    STDMETHODIMP get_Name(BSTR* pVal) override;
    STDMETHODIMP put_Name(BSTR newVal) override;
    // Not zero: the groups inside this one; zero: its members. A get before the first put leaves
    // its output as it is.
    STDMETHODIMP get_Items(LONG bSubGroup, SAFEARRAY** pVal) override;
    STDMETHODIMP put_Items(LONG bSubGroup, SAFEARRAY* newVal) override;

    // INEntityItem. A put of null empties FolderID alone.
    STDMETHODIMP get_EntityID(BSTR* pVal) override;
    STDMETHODIMP put_EntityID(BSTR newVal) override;
    STDMETHODIMP get_LastModificationTime(DATE* pVal) override;
    STDMETHODIMP put_LastModificationTime(DATE newVal) override;
    STDMETHODIMP get_FolderID(BSTR* pVal) override;
    STDMETHODIMP put_FolderID(BSTR newVal) override;

  protected:
    ~CNContactGroup() = default;

  private:
    ArrayField& ItemsOf(LONG bSubGroup) noexcept { return bSubGroup ? m_subGroupIDs : m_memberIDs; }

    Bstr m_entityID;
    DATE m_lastModificationTime = 0.0;
    Bstr m_groupID;
    Bstr m_folderID;
    ArrayField m_categoryIDs;
    Bstr m_name;
    ArrayField m_subGroupIDs;
    ArrayField m_memberIDs;
};
