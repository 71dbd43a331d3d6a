// IMAPISession.
#pragma once

#include "tests/recordingstore/library/Entries.h"

class SessionObject final : public SessionWithoutOperations
{
  public:
    SessionObject() : SessionWithoutOperations("IMAPISession", "session") {}

    STDMETHODIMP GetMsgStoresTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenMsgStore(ULONG_PTR uiParam,
                              ULONG size,
                              LPENTRYID entryId,
                              LPCIID interfaceId,
                              ULONG flags,
                              LPMDB* store) override;
    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entryId,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP QueryIdentity(ULONG* size, LPENTRYID* entryId) override;
    STDMETHODIMP Logoff(ULONG_PTR uiParam, ULONG flags, ULONG reserved) override;
};
