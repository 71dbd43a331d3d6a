// One logon to the embedded store.
#pragma once

#include "localstore/ComObject.h"
#include "localstore/StoreSession.h"

#include <mapiguid.h>

#include <memory>

class MapiSession : public ComObject<IMAPISession, &IID_IMAPISession>
{
  public:
    explicit MapiSession(std::shared_ptr<StoreSession> session) : m_session(std::move(session)) {}

    // Logs on to the store of that path, which is made where missing, with a default profile in it.
    // Throws DatabaseError and std::bad_alloc.
    static Microsoft::WRL::ComPtr<MapiSession> LogOn(const std::wstring& storePath);

    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    // The one store of the profile, which is the default.
    STDMETHODIMP GetMsgStoresTable(ULONG flags, LPMAPITABLE* table) override;
    // Without MDB_WRITE or MAPI_BEST_ACCESS the store only reads. A database that cannot be written
    // refuses MDB_WRITE with MAPI_E_NO_ACCESS, unless errors may be deferred: then each change is
    // refused.
    STDMETHODIMP OpenMsgStore(ULONG_PTR uiParam,
                              ULONG entryIdBytes,
                              LPENTRYID entryId,
                              LPCIID iid,
                              ULONG flags,
                              LPMDB* store) override;
    STDMETHODIMP
    OpenAddressBook(ULONG_PTR uiParam, LPCIID iid, ULONG flags, LPADRBOOK* book) override;
    STDMETHODIMP
    OpenProfileSection(LPMAPIUID uid, LPCIID iid, ULONG flags, LPPROFSECT* section) override;
    STDMETHODIMP GetStatusTable(ULONG flags, LPMAPITABLE* table) override;
    // Opens the identity and everything of the store, but the store itself.
    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override;
    STDMETHODIMP CompareEntryIDs(ULONG firstBytes,
                                 LPENTRYID first,
                                 ULONG secondBytes,
                                 LPENTRYID second,
                                 ULONG flags,
                                 ULONG* same) override;
    STDMETHODIMP Advise(ULONG entryIdBytes,
                        LPENTRYID entryId,
                        ULONG events,
                        LPMAPIADVISESINK sink,
                        ULONG* connection) override;
    STDMETHODIMP Unadvise(ULONG connection) override;
    STDMETHODIMP MessageOptions(ULONG_PTR uiParam,
                                ULONG flags,
                                LPTSTR addressType,
                                LPMESSAGE message) override;
    STDMETHODIMP QueryDefaultMessageOpt(LPTSTR addressType,
                                        ULONG flags,
                                        ULONG* count,
                                        LPSPropValue* options) override;
    STDMETHODIMP EnumAdrTypes(ULONG flags, ULONG* count, LPTSTR** types) override;
    // The identity's entry ID, which the caller frees with MAPIFreeBuffer. MAPI_W_NO_SERVICE, with
    // cleared outputs, where the profile has none.
    STDMETHODIMP QueryIdentity(ULONG* entryIdBytes, LPENTRYID* entryId) override;
    // The objects of the session live on until they are released.
    STDMETHODIMP Logoff(ULONG_PTR uiParam, ULONG flags, ULONG reserved) override;
    STDMETHODIMP SetDefaultStore(ULONG flags, ULONG entryIdBytes, LPENTRYID entryId) override;
    STDMETHODIMP AdminServices(ULONG flags, LPSERVICEADMIN* admin) override;
    STDMETHODIMP ShowForm(ULONG_PTR uiParam,
                          LPMDB store,
                          LPMAPIFOLDER folder,
                          LPCIID iid,
                          ULONG messageToken,
                          LPMESSAGE messageSent,
                          ULONG flags,
                          ULONG messageStatus,
                          ULONG messageFlags,
                          ULONG access,
                          LPSTR messageClass) override;
    STDMETHODIMP PrepareForm(LPCIID iid, LPMESSAGE message, ULONG* messageToken) override;

  private:
    std::shared_ptr<StoreSession> m_session;
};
