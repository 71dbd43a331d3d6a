#include "localstore/AddressBook.h"

#include <cstring>

AddressBook::AddressBook(std::shared_ptr<BookSession> session) : PropObject(std::move(session)) {}

PropertyMap AddressBook::Properties()
{
    return {{static_cast<std::uint16_t>(PROP_ID(PR_OBJECT_TYPE)),
             {PT_LONG, std::uint64_t{MAPI_ADDRBOOK}}}};
}

STDMETHODIMP AddressBook::OpenEntry(ULONG entryIdBytes,
                                    LPENTRYID entryId,
                                    LPCIID iid,
                                    ULONG flags,
                                    ULONG* objectType,
                                    LPUNKNOWN* object)
{
    return BookSession::OpenEntry(
        SharedSession(), entryIdBytes, entryId, iid, flags, objectType, object);
}

STDMETHODIMP AddressBook::CompareEntryIDs(
    ULONG firstBytes, LPENTRYID first, ULONG secondBytes, LPENTRYID second, ULONG, ULONG* same)
{
    if (!same)
        return MAPI_E_INVALID_PARAMETER;
    *same = 0;
    if ((firstBytes && !first) || (secondBytes && !second))
        return MAPI_E_INVALID_PARAMETER;
    const bool equal = firstBytes == secondBytes &&
                       (firstBytes == 0 || std::memcmp(first, second, firstBytes) == 0);
    *same = equal ? 1 : 0;
    return S_OK;
}

STDMETHODIMP AddressBook::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return RefuseWithOptional(connection);
}

STDMETHODIMP AddressBook::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP
AddressBook::CreateOneOff(LPTSTR, LPTSTR, LPTSTR, ULONG, ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (entryIdBytes)
        *entryIdBytes = 0;
    return RefuseWithOptional(entryId);
}

STDMETHODIMP AddressBook::NewEntry(
    ULONG_PTR, ULONG, ULONG, LPENTRYID, ULONG, LPENTRYID, ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (entryIdBytes)
        *entryIdBytes = 0;
    return RefuseWithOptional(entryId);
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
    if (count)
        *count = 0;
    return RefuseWithOptional(options);
}

STDMETHODIMP AddressBook::GetPAB(ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (!entryIdBytes || !entryId)
        return MAPI_E_INVALID_PARAMETER;
    *entryIdBytes = 0;
    *entryId = nullptr;
    return Session().Run([&] {
        const Bytes bytes =
            Session().EntryIdOfContainer(Session().ContainerOfRole(BookRole::Personal));
        ChainedBuffer buffer(ChainedMemory::OfLibrary(), bytes.size());
        std::memcpy(buffer.Get(), bytes.data(), bytes.size());
        *entryIdBytes = static_cast<ULONG>(bytes.size());
        *entryId = static_cast<LPENTRYID>(buffer.Detach());
        return S_OK;
    });
}

STDMETHODIMP AddressBook::SetPAB(ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::GetDefaultDir(ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (entryIdBytes)
        *entryIdBytes = 0;
    return RefuseWithOptional(entryId);
}

STDMETHODIMP AddressBook::SetDefaultDir(ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::GetSearchPath(ULONG, LPSRowSet* path)
{
    return RefuseWithOptional(path);
}

STDMETHODIMP AddressBook::SetSearchPath(ULONG, LPSRowSet)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP AddressBook::PrepareRecips(ULONG, LPSPropTagArray, LPADRLIST)
{
    return MAPI_E_NO_SUPPORT;
}
