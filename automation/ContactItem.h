// The one value object for a contact of every provider. Holds fields and nothing else: it reaches
// no store and judges no value. The entity ID and the persistent ID are one field, and so are the
// folder ID and the parent folder ID.
#pragma once

#include "automation/PropertyForms.h"
#include "automation/base/ComObject.h"
#include "automation/base/DispatchImpl.h"

#include "PimStoreBridge.h"

#include <array>
#include <map>

class CNContactItem : public IDispatchImpl<INContactItem>,
                      public IDispatchImpl<INEntityItem>,
                      public CComObjectRootEx<CComSingleThreadModel>,
                      public CComCoClass<CNContactItem, &CLSID_NContactItem>
{
  public:
    static constexpr auto kInterfaceMap =
        InterfaceMap<CNContactItem, INContactItem, INEntityItem>();

    // INContactItem. A put of null empties a text, but for PersistentID.
    STDMETHODIMP get_GroupID(BSTR* pVal) override;
    STDMETHODIMP put_GroupID(BSTR newVal) override;
    STDMETHODIMP get_CategoryIDs(SAFEARRAY** pVal) override;
    STDMETHODIMP put_CategoryIDs(SAFEARRAY* newVal) override;
    STDMETHODIMP get_FirstName(BSTR* pVal) override;
    STDMETHODIMP put_FirstName(BSTR newVal) override;
    STDMETHODIMP get_LastName(BSTR* pVal) override;
    STDMETHODIMP put_LastName(BSTR newVal) override;
    STDMETHODIMP get_JobTitle(BSTR* pVal) override;
    STDMETHODIMP put_JobTitle(BSTR newVal) override;
    STDMETHODIMP get_CompanyName(BSTR* pVal) override;
    STDMETHODIMP put_CompanyName(BSTR newVal) override;
    STDMETHODIMP get_InstantMessagingAddress(BSTR* pVal) override;
    STDMETHODIMP put_InstantMessagingAddress(BSTR newVal) override;
    STDMETHODIMP get_Picture(BSTR* pVal) override;
    STDMETHODIMP put_Picture(BSTR newVal) override;
    // E_FAIL for a type that was never put. A put of null makes an entry without text.
    STDMETHODIMP get_PhoneNumber(_tagNPhoneNumberType eType, BSTR* pVal) override;
    STDMETHODIMP put_PhoneNumber(_tagNPhoneNumberType eType, BSTR newVal) override;
    STDMETHODIMP get_Emails(SAFEARRAY** pVal) override;
    STDMETHODIMP put_Emails(SAFEARRAY* newVal) override;
    STDMETHODIMP get_Website(BSTR* pVal) override;
    STDMETHODIMP put_Website(BSTR newVal) override;
    // E_FAIL for a type that was never put. The caller frees the record's texts.
    STDMETHODIMP get_Address(_tagNAddressType eType, _tagNAddress* pVal) override;
    STDMETHODIMP put_Address(_tagNAddressType eType, _tagNAddress newVal) override;
    STDMETHODIMP get_Notes(BSTR* pVal) override;
    STDMETHODIMP put_Notes(BSTR newVal) override;
    STDMETHODIMP get_Birthday(DATE* pVal) override;
    STDMETHODIMP put_Birthday(DATE newVal) override;
    STDMETHODIMP get_Anniversary(DATE* pVal) override;
    STDMETHODIMP put_Anniversary(DATE newVal) override;
    STDMETHODIMP get_Suffix(BSTR* pVal) override;
    STDMETHODIMP put_Suffix(BSTR newVal) override;
    // The index is the first four letters of the property's name, the first in the highest byte.
    // Returns: S_OK; E_INVALIDARG for a null output or value and for one of a wrong type; E_NOTIMPL
    // for an index that is unknown or cannot be set. An output is written on success only. A text
    // of null is set as an empty one.
    STDMETHODIMP GetStringByIndex(LONG lIndex, BSTR* pstrVal) override;
    STDMETHODIMP SetStringByIndex(LONG lIndex, BSTR bstrVallue) override;
    STDMETHODIMP GetPropertyValue(LONG lIndex, VARIANT* pvtValue) override;
    STDMETHODIMP SetPropertyValue(LONG lIndex, VARIANT* pvtValue) override;
    STDMETHODIMP get_PersistentID(BSTR* pVal) override;
    STDMETHODIMP put_PersistentID(BSTR newVal) override;
    // No stream ever comes out: the get leaves its output as it is.
    STDMETHODIMP get_PictureStream(IUnknown** pVal) override;
    STDMETHODIMP put_PictureStream(IUnknown* newVal) override;
    STDMETHODIMP get_MiddleName(BSTR* pVal) override;
    STDMETHODIMP put_MiddleName(BSTR newVal) override;
    STDMETHODIMP get_DisplayName(BSTR* pVal) override;
    STDMETHODIMP put_DisplayName(BSTR newVal) override;
    STDMETHODIMP get_ParentFolderID(BSTR* pVal) override;
    STDMETHODIMP put_ParentFolderID(BSTR newVal) override;

    // INEntityItem
    STDMETHODIMP get_EntityID(BSTR* pVal) override;
    STDMETHODIMP put_EntityID(BSTR newVal) override;
    STDMETHODIMP get_LastModificationTime(DATE* pVal) override;
    STDMETHODIMP put_LastModificationTime(DATE newVal) override;
    STDMETHODIMP get_FolderID(BSTR* pVal) override;
    STDMETHODIMP put_FolderID(BSTR newVal) override;

  protected:
    ~CNContactItem() = default;

  private:
    // The texts of one _tagNAddress, in the order of its fields.
    using AddressTexts = std::array<Bstr, 6>;
    struct StringIndex;
    struct ValueIndex;
    static const StringIndex kStringIndexes[];
    static const ValueIndex kValueIndexes[];

    HRESULT Get(const Bstr& field, BSTR* pVal) noexcept;
    HRESULT Put(Bstr& field, BSTR newVal) noexcept;
    HRESULT Get(const DATE& field, DATE* pVal) noexcept;
    HRESULT Put(DATE& field, DATE newVal) noexcept;
    HRESULT Get(const ArrayField& field, SAFEARRAY** pVal) noexcept;
    HRESULT Put(ArrayField& field, SAFEARRAY* newVal) noexcept;

    DATE m_lastModificationTime = 0.0;
    Bstr m_groupID;
    ArrayField m_categoryIDs;
    Bstr m_firstName;
    Bstr m_lastName;
    Bstr m_middleName;
    Bstr m_jobTitle;
    Bstr m_companyName;
    Bstr m_instantMessagingAddress;
    Bstr m_picture;
    std::map<LONG, Bstr> m_phoneNumbers; // by _tagNPhoneNumberType; clients may give any number
    ArrayField m_emails;
    Bstr m_website;
    std::map<LONG, AddressTexts> m_addresses; // by _tagNAddressType, likewise
    Bstr m_notes;
    DATE m_birthday = 0.0;
    DATE m_anniversary = 0.0;
    Bstr m_suffix;
    Bstr m_persistentID;
    Bstr m_displayName;
    Bstr m_parentFolderID;
    IUnknown* m_pictureStream = nullptr; // not counted, never called
};
