#include "localstore/MapiSession.h"

#include "localstore/MapiValues.h"
#include "localstore/MessageStore.h"
#include "localstore/StoreProfile.h"
#include "localstore/StoreProperties.h"
#include "localstore/StoreTable.h"

#include <cstring>

namespace
{

constexpr ULONG kOnline = 0x00000100;
constexpr ULONG kOpenStoreFlags = MDB_NO_DIALOG | MDB_WRITE | MAPI_DEFERRED_ERRORS |
                                  MAPI_BEST_ACCESS | MDB_TEMPORARY | MDB_NO_MAIL | kOnline;

constexpr ULONG kStoreColumns[] = {PR_DEFAULT_STORE,
                                   PR_DISPLAY_NAME_W,
                                   PR_ENTRYID,
                                   PR_INSTANCE_KEY,
                                   PR_OBJECT_TYPE,
                                   PR_PROVIDER_DISPLAY_W,
                                   PR_RECORD_KEY,
                                   PR_RESOURCE_FLAGS,
                                   PR_MDB_PROVIDER};

} // namespace

Microsoft::WRL::ComPtr<MapiSession> MapiSession::LogOn(const std::wstring& storePath)
{
    Database database = OpenStore(storePath);
    if (!database.IsReadOnly() && LacksProfile(database))
        EnsureDefaultProfile(database, LoggedOnUser());
    return MakeObject<MapiSession>(std::make_shared<StoreSession>(std::move(database)));
}

STDMETHODIMP MapiSession::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error)
{
    return m_session->LastError(result, flags, error);
}

STDMETHODIMP MapiSession::GetMsgStoresTable(ULONG flags, LPMAPITABLE* table)
{
    if (!table)
        return MAPI_E_INVALID_PARAMETER;
    *table = nullptr;
    if (flags & ~(MAPI_UNICODE | MAPI_DEFERRED_ERRORS))
        return MAPI_E_UNKNOWN_FLAGS;
    return m_session->Run([&] {
        PropertyMap row = StoreState(m_session, false).Read(PropertySelection::All());
        PutBinary(row, PR_INSTANCE_KEY, m_session->StoreEntryId());
        std::vector<PropertyMap> rows;
        rows.push_back(std::move(row));
        auto source =
            MakeFixedSource(std::move(rows), {std::begin(kStoreColumns), std::end(kStoreColumns)});
        *table = MakeObject<StoreTable>(m_session, std::move(source)).Detach();
        return S_OK;
    });
}

STDMETHODIMP MapiSession::OpenMsgStore(
    ULONG_PTR, ULONG entryIdBytes, LPENTRYID entryId, LPCIID iid, ULONG flags, LPMDB* store)
{
    if (!store)
        return MAPI_E_INVALID_PARAMETER;
    *store = nullptr;
    if (flags & ~kOpenStoreFlags)
        return MAPI_E_UNKNOWN_FLAGS;
    std::span<const std::byte> bytes;
    if (const HRESULT result = ReadEntryId(entryIdBytes, entryId, bytes); FAILED(result))
        return result;
    if (std::memcmp(bytes.data(), m_session->StoreEntryId().data(), kEntryIdBytes) != 0)
        return MAPI_E_NOT_FOUND;
    if (iid && !MessageStore::Answers(*iid))
        return MAPI_E_INTERFACE_NOT_SUPPORTED;
    if ((flags & MDB_WRITE) && m_session->IsReadOnly() &&
        !(flags & (MAPI_DEFERRED_ERRORS | MAPI_BEST_ACCESS)))
        return MAPI_E_NO_ACCESS;
    return Guarded([&] {
        const bool writable =
            (flags & (MDB_WRITE | MAPI_BEST_ACCESS)) != 0 && !m_session->IsReadOnly();
        auto state = std::make_shared<StoreState>(m_session, writable);
        *store = MakeObject<MessageStore>(std::move(state)).Detach();
        return S_OK;
    });
}

STDMETHODIMP MapiSession::OpenAddressBook(ULONG_PTR, LPCIID, ULONG, LPADRBOOK* book)
{
    return RefuseWith(book);
}

STDMETHODIMP MapiSession::OpenProfileSection(LPMAPIUID, LPCIID, ULONG, LPPROFSECT* section)
{
    return RefuseWith(section);
}

STDMETHODIMP MapiSession::GetStatusTable(ULONG, LPMAPITABLE* table)
{
    return RefuseWith(table);
}

STDMETHODIMP MapiSession::OpenEntry(ULONG entryIdBytes,
                                    LPENTRYID entryId,
                                    LPCIID iid,
                                    ULONG flags,
                                    ULONG* objectType,
                                    LPUNKNOWN* object)
{
    return m_session->OpenEntry(entryIdBytes, entryId, iid, flags, false, true, objectType, object);
}

STDMETHODIMP MapiSession::CompareEntryIDs(
    ULONG firstBytes, LPENTRYID first, ULONG secondBytes, LPENTRYID second, ULONG, ULONG* same)
{
    return CompareEntryIdBytes(firstBytes, first, secondBytes, second, same);
}

STDMETHODIMP MapiSession::Advise(ULONG, LPENTRYID, ULONG, LPMAPIADVISESINK, ULONG* connection)
{
    return RefuseWith(connection);
}

STDMETHODIMP MapiSession::Unadvise(ULONG)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MapiSession::MessageOptions(ULONG_PTR, ULONG, LPTSTR, LPMESSAGE)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP
MapiSession::QueryDefaultMessageOpt(LPTSTR, ULONG, ULONG* count, LPSPropValue* options)
{
    return RefuseWith(count, options);
}

STDMETHODIMP MapiSession::EnumAdrTypes(ULONG, ULONG* count, LPTSTR** types)
{
    return RefuseWith(count, types);
}

STDMETHODIMP MapiSession::QueryIdentity(ULONG* entryIdBytes, LPENTRYID* entryId)
{
    if (entryIdBytes)
        *entryIdBytes = 0;
    if (entryId)
        *entryId = nullptr;
    if (!entryIdBytes || !entryId)
        return MAPI_E_INVALID_PARAMETER;
    return m_session->Run([&]() -> HRESULT {
        Statement row = m_session->Store().Prepare("SELECT entry_id FROM identity WHERE id = 1");
        if (!row.Step())
            return MAPI_W_NO_SERVICE;
        HandOutEntryId(row.Blob(0), entryIdBytes, entryId);
        return S_OK;
    });
}

STDMETHODIMP MapiSession::Logoff(ULONG_PTR, ULONG, ULONG)
{
    return S_OK;
}

STDMETHODIMP MapiSession::SetDefaultStore(ULONG, ULONG, LPENTRYID)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MapiSession::AdminServices(ULONG, LPSERVICEADMIN* admin)
{
    return RefuseWith(admin);
}

STDMETHODIMP MapiSession::ShowForm(
    ULONG_PTR, LPMDB, LPMAPIFOLDER, LPCIID, ULONG, LPMESSAGE, ULONG, ULONG, ULONG, ULONG, LPSTR)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP MapiSession::PrepareForm(LPCIID, LPMESSAGE, ULONG* messageToken)
{
    return RefuseWith(messageToken);
}
