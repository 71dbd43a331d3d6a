// IMAPIFolder.
#pragma once

#include "tests/recordingstore/library/Entries.h"

class FolderObject final : public PropObject<FolderWithoutOperations>
{
  public:
    FolderObject(NodePtr node, bool isWritable);

    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP GetHierarchyTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entryId,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP CreateMessage(LPCIID interfaceId, ULONG flags, LPMESSAGE* message) override;
    STDMETHODIMP DeleteMessages(LPENTRYLIST messages,
                                ULONG uiParam,
                                LPMAPIPROGRESS progress,
                                ULONG flags) override;

  private:
    NodePtr m_node;
};
