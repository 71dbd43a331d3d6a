#include "localstore/MessageStore.h"

#include "localstore/StoreProperties.h"
#include "service/TextConversions.h"

#include <cstring>

namespace
{

constexpr PropertyOwner kStoreOwner{OwnerKind::Store, 0};

std::string ClassText(LPTSTR messageClass, ULONG flags)
{
    if (!messageClass)
        return {};
    if (flags & MAPI_UNICODE)
        return Utf8FromWide(reinterpret_cast<const wchar_t*>(messageClass));
    const std::string_view narrow(reinterpret_cast<const char*>(messageClass));
    const auto bytes = std::as_bytes(std::span(narrow));
    return Utf8FromWide(WideFromAnsi(Bytes(bytes.begin(), bytes.end())));
}

// Cuts the last part of a message class off; false where nothing was left to cut.
bool CutClass(std::string& messageClass)
{
    if (messageClass.empty())
        return false;
    const size_t dot = messageClass.find_last_of('.');
    messageClass.resize(dot == std::string::npos ? 0 : dot);
    return true;
}

LPTSTR CopyClass(ChainedBuffer& buffer, const std::string& text, ULONG flags)
{
    const std::wstring wide = WideFromUtf8(text);
    if (flags & MAPI_UNICODE)
    {
        std::memcpy(buffer.Get(), wide.c_str(), (wide.size() + 1) * sizeof(wchar_t));
    }
    else
    {
        // The buffer is zero-filled and has room for the longest form.
        const Bytes narrow = AnsiFromWide(wide);
        if (!narrow.empty())
            std::memcpy(buffer.Get(), narrow.data(), narrow.size());
    }
    return static_cast<LPTSTR>(buffer.Detach());
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
        std::string text = ClassText(messageClass, flags);
        do
        {
            row.Reset();
            row.Bind(1, std::string_view(text));
            if (!row.Step())
                continue;
            const auto bytes = row.Blob(0);
            const std::string found(row.Text(1));
            ChainedMemory& memory = ChainedMemory::OfLibrary();
            ChainedBuffer id(memory, bytes.size());
            std::memcpy(id.Get(), bytes.data(), bytes.size());
            if (explicitClass)
            {
                // UTF-8 takes at least as many units as either form.
                ChainedBuffer name(memory, (found.size() + 1) * sizeof(wchar_t) * 2);
                *explicitClass = CopyClass(name, found, flags);
            }
            *entryIdBytes = static_cast<ULONG>(bytes.size());
            *entryId = static_cast<LPENTRYID>(id.Detach());
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
