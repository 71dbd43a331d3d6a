// What the lists of the embedded address book share, its containers and its distribution lists:
// IMAPIContainer and the list methods behind it, which most of them refuse.
#pragma once

#include "localstore/StoreObject.h"

template <typename Object, typename Interface, const IID*... Identities>
class BookList : public StoreObject<Object, Interface, &IID_IMAPIContainer, Identities...>
{
  public:
    STDMETHODIMP GetContentsTable(ULONG, LPMAPITABLE* table) override { return RefuseWith(table); }
    STDMETHODIMP GetHierarchyTable(ULONG, LPMAPITABLE* table) override { return RefuseWith(table); }
    // Whatever of the book the ID names; an empty one gives the root.
    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override
    {
        return this->Session().OpenEntry(
            entryIdBytes, entryId, iid, flags, true, true, objectType, object);
    }
    STDMETHODIMP SetSearchCriteria(LPSRestriction, LPENTRYLIST, ULONG) override
    {
        return MAPI_E_NO_SUPPORT;
    }
    STDMETHODIMP GetSearchCriteria(ULONG,
                                   LPSRestriction* restriction,
                                   LPENTRYLIST* containers,
                                   ULONG* state) override
    {
        return RefuseWith(restriction, containers, state);
    }
    STDMETHODIMP CreateEntry(ULONG, LPENTRYID, ULONG, LPMAPIPROP* entry) override
    {
        return RefuseWith(entry);
    }
    STDMETHODIMP CopyEntries(LPENTRYLIST, ULONG, LPMAPIPROGRESS, ULONG) override
    {
        return MAPI_E_NO_SUPPORT;
    }
    STDMETHODIMP DeleteEntries(LPENTRYLIST, ULONG) override { return MAPI_E_NO_SUPPORT; }
    STDMETHODIMP ResolveNames(LPSPropTagArray, ULONG, LPADRLIST, LPFlagList) override
    {
        return MAPI_E_NO_SUPPORT;
    }

  protected:
    explicit BookList(std::shared_ptr<Object> object)
        : StoreObject<Object, Interface, &IID_IMAPIContainer, Identities...>(std::move(object))
    {
    }
};
