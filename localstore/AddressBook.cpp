#include "localstore/AddressBook.h"

#include "localstore/MapiValues.h"
#include "localstore/StoreProperties.h"

PropertyMap AddressBookState::Read(const PropertySelection&)
{
    PropertyMap properties;
    PutLong(properties, PR_OBJECT_TYPE, MAPI_ADDRBOOK);
    return properties;
}

bool AddressBookState::IsComputed(std::uint16_t id) const
{
    return id == PROP_ID(PR_OBJECT_TYPE);
}

STDMETHODIMP AddressBook::OpenEntry(ULONG entryIdBytes,
                                    LPENTRYID entryId,
                                    LPCIID iid,
                                    ULONG flags,
                                    ULONG* objectType,
                                    LPUNKNOWN* object)
{
    return Session().OpenEntry(entryIdBytes, entryId, iid, flags, true, true, objectType, object);
}

STDMETHODIMP AddressBook::CompareEntryIDs(
    ULONG firstBytes, LPENTRYID first, ULONG secondBytes, LPENTRYID second, ULONG, ULONG* same)
{
    return CompareEntryIdBytes(firstBytes, first, secondBytes, second, same);
}

STDMETHODIMP AddressBook::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return RefuseWith(connection);
}

STDMETHODIMP AddressBook::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP
AddressBook::CreateOneOff(LPTSTR, LPTSTR, LPTSTR, ULONG, ULONG* entryIdBytes, LPENTRYID* entryId)
{
    return RefuseWith(entryIdBytes, entryId);
}

STDMETHODIMP AddressBook::NewEntry(
    ULONG_PTR, ULONG, ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG* entryIdBytes, LPENTRYID* entryId)
{
    return RefuseWith(entryIdBytes, entryId);
}

STDMETHODIMP AddressBook::ResolveName(ULONG_PTR, ULONG, LPTSTR, LPADRLIST)
{
    return MAPI_E_NO_SUPPORT;
}

// The list goes in and out: what the caller passed stays his.
STDMETHODIMP AddressBook::Address(ULONG_PTR*, LPADRPARM, LPADRLIST*)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::Details(
    ULONG*, LPFNDISMISS, LPVOID, ULONG, LPENTRYID, LPFNBUTTON, LPVOID, LPTSTR, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::RecipOptions(ULONG_PTR, ULONG, LPADRENTRY)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP
AddressBook::QueryDefaultRecipOpt(LPTSTR, ULONG, ULONG* count, LPSPropValue* options)
{
    return RefuseWith(count, options);
}

STDMETHODIMP AddressBook::GetPAB(ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (!entryIdBytes || !entryId)
        return MAPI_E_INVALID_PARAMETER;
    *entryIdBytes = 0;
    *entryId = nullptr;
    return Session().Run([&] {
        HandOutEntryId(
            State().Book().EntryIdOfContainer(State().Book().ContainerOfRole(BookRole::Personal)),
            entryIdBytes,
            entryId);
        return S_OK;
    });
}

STDMETHODIMP AddressBook::SetPAB(ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::GetDefaultDir(ULONG* entryIdBytes, LPENTRYID* entryId)
{
    return RefuseWith(entryIdBytes, entryId);
}

STDMETHODIMP AddressBook::SetDefaultDir(ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::GetSearchPath(ULONG, LPSRowSet* path)
{
    return RefuseWith(path);
}

STDMETHODIMP AddressBook::SetSearchPath(ULONG, LPSRowSet)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::PrepareRecips(ULONG, LPSPropTagArray, LPADRLIST)
{
    return MAPI_E_NO_SUPPORT;
}
