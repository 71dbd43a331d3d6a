#include "localstore/MessageStore.h"

#include "localstore/MapiValues.h"
#include "localstore/StoreProperties.h"
#include "service/TextConversions.h"

#include <algorithm>

namespace
{

constexpr PropertyOwner kStoreOwner{OwnerKind::Store, 0};

// Cuts the last part of a message class off; false where nothing was left to cut.
bool CutClass(std::string& messageClass)
{
    if (messageClass.empty())
        return false;
    const size_t dot = messageClass.find_last_of('.');
    messageClass.resize(dot == std::string::npos ? 0 : dot);
    return true;
}

} // namespace

PropertyMap StoreState::Read(const PropertySelection& selection)
{
    PropertyMap properties =
        ReadStored(Session().Store(), kStoreOwner, selection, IsComputedOfStore);
    PutStoreProperties(Session(), IsWritable(), properties);
    return properties;
}

HRESULT StoreState::Change(PropertyChanges changes)
{
    Transaction transaction(Session().Store());
    WriteChanges(Session().Store(), kStoreOwner, changes);
    transaction.Commit();
    return S_OK;
}

bool StoreState::IsComputed(std::uint16_t id) const
{
    return IsComputedOfStore(id);
}

HRESULT StoreState::Save(ULONG)
{
    return S_OK;
}

STDMETHODIMP
MessageStore::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return RefuseWith(connection);
}

STDMETHODIMP MessageStore::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MessageStore::CompareEntryIDs(
    ULONG firstBytes, LPENTRYID first, ULONG secondBytes, LPENTRYID second, ULONG, ULONG* same)
{
    return CompareEntryIdBytes(firstBytes, first, secondBytes, second, same);
}

STDMETHODIMP MessageStore::OpenEntry(ULONG entryIdBytes,
                                     LPENTRYID entryId,
                                     LPCIID iid,
                                     ULONG flags,
                                     ULONG* objectType,
                                     LPUNKNOWN* object)
{
    return Session().OpenEntry(
        entryIdBytes, entryId, iid, flags, true, State().IsWritable(), objectType, object);
}

STDMETHODIMP MessageStore::SetReceiveFolder(LPTSTR, ULONG, ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MessageStore::GetReceiveFolder(LPTSTR messageClass,
                                            ULONG flags,
                                            ULONG* entryIdBytes,
                                            LPENTRYID* entryId,
                                            LPTSTR* explicitClass)
{
    if (entryIdBytes)
        *entryIdBytes = 0;
    if (entryId)
        *entryId = nullptr;
    if (explicitClass)
        *explicitClass = nullptr;
    if (!entryIdBytes || !entryId)
        return MAPI_E_INVALID_PARAMETER;
    if (flags & ~MAPI_UNICODE)
        return MAPI_E_UNKNOWN_FLAGS;
    return Session().Run([&]() -> HRESULT {
        Statement row = Session().Store().Prepare(
            "SELECT f.entry_id, r.message_class FROM receive_folder r "
            "JOIN folder f ON f.id = r.folder WHERE r.message_class = ?1");
        std::string text = Utf8FromWide(WideFromCaller(messageClass, flags));
        do
        {
            row.Reset();
            row.Bind(1, std::string_view(text));
            if (!row.Step())
                continue;
            const Bytes found = TextForCaller(WideFromUtf8(row.Text(1)), flags);
            ChainedBuffer name(ChainedMemory::OfLibrary(), found.size());
            std::ranges::copy(found, static_cast<std::byte*>(name.Get()));
            HandOutEntryId(row.Blob(0), entryIdBytes, entryId);
            if (explicitClass)
                *explicitClass = static_cast<LPTSTR>(name.Detach());
            return S_OK;
        } while (CutClass(text));
        return MAPI_E_NOT_FOUND;
    });
}

STDMETHODIMP MessageStore::GetReceiveFolderTable(ULONG, LPMAPITABLE* table)
{
    return RefuseWith(table);
}

STDMETHODIMP MessageStore::StoreLogoff(ULONG* flags)
{
    // Nothing is under way that a logoff could wait for; releasing the store ends the use.
    if (flags)
        *flags = LOGOFF_COMPLETE;
    return S_OK;
}

STDMETHODIMP MessageStore::AbortSubmit(ULONG, LPENTRYID, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MessageStore::GetOutgoingQueue(ULONG, LPMAPITABLE* table)
{
    return RefuseWith(table);
}

STDMETHODIMP MessageStore::SetLockState(LPMESSAGE, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MessageStore::FinishedMsg(ULONG, ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MessageStore::NotifyNewMail(LPNOTIFICATION)
{
    return MAPI_E_NO_SUPPORT;
}
