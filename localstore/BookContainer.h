// A container of the embedded address book: the root or the personal one.
#pragma once

#include "localstore/PropObject.h"

#include <mapiguid.h>

class BookContainer
    : public PropObject<IABContainer, &IID_IMAPIProp, &IID_IMAPIContainer, &IID_IABContainer>
{
  public:
    BookContainer(std::shared_ptr<BookSession> session, std::int64_t id);

    // The entries, as they stand at this call: see StoreTable.h.
    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP GetHierarchyTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override;
    STDMETHODIMP SetSearchCriteria(LPSRestriction restriction,
                                   LPENTRYLIST containers,
                                   ULONG flags) override;
    STDMETHODIMP GetSearchCriteria(ULONG flags,
                                   LPSRestriction* restriction,
                                   LPENTRYLIST* containers,
                                   ULONG* state) override;
    STDMETHODIMP CreateEntry(ULONG entryIdBytes,
                             LPENTRYID entryId,
                             ULONG flags,
                             LPMAPIPROP* entry) override;
    STDMETHODIMP CopyEntries(LPENTRYLIST entries,
                             ULONG uiParam,
                             LPMAPIPROGRESS progress,
                             ULONG flags) override;
    STDMETHODIMP DeleteEntries(LPENTRYLIST entries, ULONG flags) override;
    STDMETHODIMP ResolveNames(LPSPropTagArray tags,
                              ULONG flags,
                              LPADRLIST addresses,
                              LPFlagList results) override;

  protected:
    PropertyMap Properties() override;

  private:
    const std::int64_t m_id;
};
