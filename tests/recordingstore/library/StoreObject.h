// IMsgStore.
#pragma once

#include "tests/recordingstore/library/Entries.h"

class StoreObject final : public PropObject<StoreWithoutOperations>
{
  public:
    StoreObject(NodePtr node, bool isWritable);

    STDMETHODIMP CompareEntryIDs(ULONG leftSize,
                                 LPENTRYID left,
                                 ULONG rightSize,
                                 LPENTRYID right,
                                 ULONG flags,
                                 ULONG* isSame) override;
    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entryId,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP GetReceiveFolder(LPTSTR messageClass,
                                  ULONG flags,
                                  ULONG* size,
                                  LPENTRYID* entryId,
                                  LPTSTR* explicitClass) override;

  private:
    NodePtr m_node;
};
