#include "automation/ContactItem.h"

#include <cstddef>
#include <string_view>

namespace
{
constexpr BSTR _tagNAddress::*kAddressFields[] = {
    &_tagNAddress::Country,
    &_tagNAddress::StateOrProvince,
    &_tagNAddress::City,
    &_tagNAddress::Street,
    &_tagNAddress::PostOfficeBox,
    &_tagNAddress::PostalCode,
};
static_assert(sizeof(_tagNAddress) == std::size(kAddressFields) * sizeof(BSTR));

// A copy of the text up to its first zero; null for null. Throws std::bad_alloc.
Bstr CopyOfText(BSTR text)
{
    return text ? Bstr(std::wstring_view(text)) : Bstr();
}

// The index of a property: four letters, the first in the highest byte.
constexpr LONG IndexOf(const char (&letters)[5])
{
    return letters[0] << 24 | letters[1] << 16 | letters[2] << 8 | letters[3];
}

// The row of that index; null where there is none.
template <typename Row, std::size_t Count> const Row* FindRow(const Row (&rows)[Count], LONG index)
{
    for (const Row& row : rows)
        if (row.index == index)
            return &row;
    return nullptr;
}
} // namespace

struct CNContactItem::StringIndex
{
    LONG index;
    Bstr CNContactItem::*field;
    bool settable = true;
};

struct CNContactItem::ValueIndex
{
    LONG index;
    DATE CNContactItem::*field;
};

// clang-format off
const CNContactItem::StringIndex CNContactItem::kStringIndexes[] = {
    {IndexOf("Comp"), &CNContactItem::m_companyName},
    {IndexOf("Entr"), &CNContactItem::m_persistentID, false},
    {IndexOf("Firs"), &CNContactItem::m_firstName},
    {IndexOf("Grou"), &CNContactItem::m_groupID},
    {IndexOf("Inst"), &CNContactItem::m_instantMessagingAddress},
    {IndexOf("JobT"), &CNContactItem::m_jobTitle},
    {IndexOf("KeyI"), &CNContactItem::m_persistentID},
    {IndexOf("Last"), &CNContactItem::m_lastName},
    {IndexOf("Midd"), &CNContactItem::m_middleName},
    {IndexOf("Note"), &CNContactItem::m_notes},
    {IndexOf("Pers"), &CNContactItem::m_persistentID},
    {IndexOf("Pict"), &CNContactItem::m_picture},
    {IndexOf("Suff"), &CNContactItem::m_suffix},
    {IndexOf("Webs"), &CNContactItem::m_website},
};

// The same index can mean another property here.
const CNContactItem::ValueIndex CNContactItem::kValueIndexes[] = {
    {IndexOf("Anni"), &CNContactItem::m_anniversary},
    {IndexOf("Birt"), &CNContactItem::m_birthday},
    {IndexOf("Last"), &CNContactItem::m_lastModificationTime},
};
// clang-format on

HRESULT CNContactItem::Get(const Bstr& field, BSTR* pVal) noexcept
{
    return Guard(this, [&] { return GetText(field, pVal); });
}

HRESULT CNContactItem::Put(Bstr& field, BSTR newVal) noexcept
{
    return Guard(this, [&] { return PutOrClearText(field, newVal); });
}

HRESULT CNContactItem::Get(const DATE& field, DATE* pVal) noexcept
{
    return Guard(this, [&] { return GetValue(field, pVal); });
}

HRESULT CNContactItem::Put(DATE& field, DATE newVal) noexcept
{
    return Guard(this, [&] { return PutValue(field, newVal); });
}

HRESULT CNContactItem::Get(const ArrayField& field, SAFEARRAY** pVal) noexcept
{
    return Guard(this, [&] { return GetArray(field, pVal); });
}

HRESULT CNContactItem::Put(ArrayField& field, SAFEARRAY* newVal) noexcept
{
    return Guard(this, [&] { return PutArray(field, newVal); });
}

STDMETHODIMP CNContactItem::get_GroupID(BSTR* pVal)
{
    return Get(m_groupID, pVal);
}

STDMETHODIMP CNContactItem::put_GroupID(BSTR newVal)
{
    return Put(m_groupID, newVal);
}

STDMETHODIMP CNContactItem::get_CategoryIDs(SAFEARRAY** pVal)
{
    return Get(m_categoryIDs, pVal);
}

STDMETHODIMP CNContactItem::put_CategoryIDs(SAFEARRAY* newVal)
{
    return Put(m_categoryIDs, newVal);
}

STDMETHODIMP CNContactItem::get_FirstName(BSTR* pVal)
{
    return Get(m_firstName, pVal);
}

STDMETHODIMP CNContactItem::put_FirstName(BSTR newVal)
{
    return Put(m_firstName, newVal);
}

STDMETHODIMP CNContactItem::get_LastName(BSTR* pVal)
{
    return Get(m_lastName, pVal);
}

STDMETHODIMP CNContactItem::put_LastName(BSTR newVal)
{
    return Put(m_lastName, newVal);
}

STDMETHODIMP CNContactItem::get_JobTitle(BSTR* pVal)
{
    return Get(m_jobTitle, pVal);
}

STDMETHODIMP CNContactItem::put_JobTitle(BSTR newVal)
{
    return Put(m_jobTitle, newVal);
}

STDMETHODIMP CNContactItem::get_CompanyName(BSTR* pVal)
{
    return Get(m_companyName, pVal);
}

STDMETHODIMP CNContactItem::put_CompanyName(BSTR newVal)
{
    return Put(m_companyName, newVal);
}

STDMETHODIMP CNContactItem::get_InstantMessagingAddress(BSTR* pVal)
{
    return Get(m_instantMessagingAddress, pVal);
}

STDMETHODIMP CNContactItem::put_InstantMessagingAddress(BSTR newVal)
{
    return Put(m_instantMessagingAddress, newVal);
}

STDMETHODIMP CNContactItem::get_Picture(BSTR* pVal)
{
    return Get(m_picture, pVal);
}

STDMETHODIMP CNContactItem::put_Picture(BSTR newVal)
{
    return Put(m_picture, newVal);
}

STDMETHODIMP CNContactItem::get_PhoneNumber(_tagNPhoneNumberType eType, BSTR* pVal)
{
    return Guard(this, [&] {
        if (!pVal)
            return E_POINTER;
        const auto found = m_phoneNumbers.find(static_cast<LONG>(eType));
        return found == m_phoneNumbers.end() ? E_FAIL : GetText(found->second, pVal);
    });
}

STDMETHODIMP CNContactItem::put_PhoneNumber(_tagNPhoneNumberType eType, BSTR newVal)
{
    return Guard(this,
                 [&] { return PutOrClearText(m_phoneNumbers[static_cast<LONG>(eType)], newVal); });
}

STDMETHODIMP CNContactItem::get_Emails(SAFEARRAY** pVal)
{
    return Get(m_emails, pVal);
}

STDMETHODIMP CNContactItem::put_Emails(SAFEARRAY* newVal)
{
    return Put(m_emails, newVal);
}

STDMETHODIMP CNContactItem::get_Website(BSTR* pVal)
{
    return Get(m_website, pVal);
}

STDMETHODIMP CNContactItem::put_Website(BSTR newVal)
{
    return Put(m_website, newVal);
}

STDMETHODIMP CNContactItem::get_Address(_tagNAddressType eType, _tagNAddress* pVal)
{
    return Guard(this, [&] {
        if (!pVal)
            return E_POINTER;
        const auto found = m_addresses.find(static_cast<LONG>(eType));
        if (found == m_addresses.end())
            return E_FAIL;
        AddressTexts copy;
        for (std::size_t i = 0; i < copy.size(); ++i)
            copy[i] = CopyOfText(found->second[i].Get());
        for (std::size_t i = 0; i < copy.size(); ++i)
            pVal->*kAddressFields[i] = copy[i].Detach();
        return S_OK;
    });
}

STDMETHODIMP CNContactItem::put_Address(_tagNAddressType eType, _tagNAddress newVal)
{
    return Guard(this, [&] {
        AddressTexts copy;
        for (std::size_t i = 0; i < copy.size(); ++i)
            copy[i] = CopyOfText(newVal.*kAddressFields[i]);
        m_addresses[static_cast<LONG>(eType)] = std::move(copy);
        return S_OK;
    });
}

STDMETHODIMP CNContactItem::get_Notes(BSTR* pVal)
{
    return Get(m_notes, pVal);
}

STDMETHODIMP CNContactItem::put_Notes(BSTR newVal)
{
    return Put(m_notes, newVal);
}

STDMETHODIMP CNContactItem::get_Birthday(DATE* pVal)
{
    return Get(m_birthday, pVal);
}

STDMETHODIMP CNContactItem::put_Birthday(DATE newVal)
{
    return Put(m_birthday, newVal);
}

STDMETHODIMP CNContactItem::get_Anniversary(DATE* pVal)
{
    return Get(m_anniversary, pVal);
}

STDMETHODIMP CNContactItem::put_Anniversary(DATE newVal)
{
    return Put(m_anniversary, newVal);
}

STDMETHODIMP CNContactItem::get_Suffix(BSTR* pVal)
{
    return Get(m_suffix, pVal);
}

STDMETHODIMP CNContactItem::put_Suffix(BSTR newVal)
{
    return Put(m_suffix, newVal);
}

STDMETHODIMP CNContactItem::GetStringByIndex(LONG lIndex, BSTR* pstrVal)
{
    return Guard(this, [&] {
        if (!pstrVal)
            return E_INVALIDARG;
        const StringIndex* row = FindRow(kStringIndexes, lIndex);
        return row ? GetText(this->*row->field, pstrVal) : E_NOTIMPL;
    });
}

STDMETHODIMP CNContactItem::SetStringByIndex(LONG lIndex, BSTR bstrVallue)
{
    return Guard(this, [&] {
        const StringIndex* row = FindRow(kStringIndexes, lIndex);
        if (!row || !row->settable)
            return E_NOTIMPL;
        if (bstrVallue)
            return PutText(this->*row->field, bstrVallue);
        this->*row->field = Bstr(std::wstring_view());
        return S_OK;
    });
}

STDMETHODIMP CNContactItem::GetPropertyValue(LONG lIndex, VARIANT* pvtValue)
{
    return Guard(this, [&] {
        if (!pvtValue)
            return E_INVALIDARG;
        const ValueIndex* row = FindRow(kValueIndexes, lIndex);
        if (!row)
            return E_NOTIMPL;
        pvtValue->vt = VT_DATE;
        return GetValue(this->*row->field, &pvtValue->date);
    });
}

STDMETHODIMP CNContactItem::SetPropertyValue(LONG lIndex, VARIANT* pvtValue)
{
    return Guard(this, [&] {
        if (!pvtValue || pvtValue->vt != VT_DATE)
            return E_INVALIDARG;
        const ValueIndex* row = FindRow(kValueIndexes, lIndex);
        return row ? PutValue(this->*row->field, pvtValue->date) : E_NOTIMPL;
    });
}

STDMETHODIMP CNContactItem::get_PersistentID(BSTR* pVal)
{
    return Get(m_persistentID, pVal);
}

// Kept as it is: null is refused here, where the put of EntityID on the same field takes it.
// Pinned by ContactItemTest.ThePersistentIdRefusesNullWhereTheEntityIdIsCleared.
STDMETHODIMP CNContactItem::put_PersistentID(BSTR newVal)
{
    return Guard(this, [&] { return PutText(m_persistentID, newVal); });
}

// Kept as it is: the output of the get is tested the wrong way round, so that no client ever
// receives a stream and none can rely on one. Pinned by
// ContactItemTest.APictureStreamNeverComesOut.
STDMETHODIMP CNContactItem::get_PictureStream(IUnknown** pVal)
{
    return Guard(this, [&] { return pVal ? S_OK : E_POINTER; });
}

STDMETHODIMP CNContactItem::put_PictureStream(IUnknown* newVal)
{
    return Guard(this, [&] { return PutValue(m_pictureStream, newVal); });
}

STDMETHODIMP CNContactItem::get_MiddleName(BSTR* pVal)
{
    return Get(m_middleName, pVal);
}

STDMETHODIMP CNContactItem::put_MiddleName(BSTR newVal)
{
    return Put(m_middleName, newVal);
}

STDMETHODIMP CNContactItem::get_DisplayName(BSTR* pVal)
{
    return Get(m_displayName, pVal);
}

STDMETHODIMP CNContactItem::put_DisplayName(BSTR newVal)
{
    return Put(m_displayName, newVal);
}

STDMETHODIMP CNContactItem::get_ParentFolderID(BSTR* pVal)
{
    return Get(m_parentFolderID, pVal);
}

STDMETHODIMP CNContactItem::put_ParentFolderID(BSTR newVal)
{
    return Put(m_parentFolderID, newVal);
}

STDMETHODIMP CNContactItem::get_EntityID(BSTR* pVal)
{
    return Get(m_persistentID, pVal);
}

STDMETHODIMP CNContactItem::put_EntityID(BSTR newVal)
{
    return Put(m_persistentID, newVal);
}

STDMETHODIMP CNContactItem::get_LastModificationTime(DATE* pVal)
{
    return Get(m_lastModificationTime, pVal);
}

STDMETHODIMP CNContactItem::put_LastModificationTime(DATE newVal)
{
    return Put(m_lastModificationTime, newVal);
}

STDMETHODIMP CNContactItem::get_FolderID(BSTR* pVal)
{
    return Get(m_parentFolderID, pVal);
}

STDMETHODIMP CNContactItem::put_FolderID(BSTR newVal)
{
    return Put(m_parentFolderID, newVal);
}
