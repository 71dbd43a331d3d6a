// The embedded message store as clients hold it. Changes to its own properties last at once.
#pragma once

#include "localstore/StoreObject.h"

class StoreState : public StoredObject
{
  public:
    using StoredObject::StoredObject;

    PropertyMap Read(const PropertySelection& selection) override;
    HRESULT Change(PropertyChanges changes) override;
    bool IsComputed(std::uint16_t id) const override;
    HRESULT Save(ULONG flags) override;
};

class MessageStore : public StoreObject<StoreState, IMsgStore, &IID_IMsgStore>
{
  public:
    explicit MessageStore(std::shared_ptr<StoreState> state) : StoreObject(std::move(state)) {}

    STDMETHODIMP Advise(ULONG entryIdBytes,
                        LPENTRYID entryId,
                        ULONG events,
                        LPMAPIADVISESINK sink,
                        ULONG* connection) override;
    STDMETHODIMP Unadvise(ULONG connection) override;
    STDMETHODIMP CompareEntryIDs(ULONG firstBytes,
                                 LPENTRYID first,
                                 ULONG secondBytes,
                                 LPENTRYID second,
                                 ULONG flags,
                                 ULONG* same) override;
    // An empty ID gives the root folder.
    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override;
    STDMETHODIMP SetReceiveFolder(LPTSTR messageClass,
                                  ULONG flags,
                                  ULONG entryIdBytes,
                                  LPENTRYID entryId) override;
    // The folder of the longest class of which the message class is that or one below; a null class
    // is the empty one.
    // Ownership: the caller frees *entryId and *explicitClass with MAPIFreeBuffer; the latter's
    //            form follows MAPI_UNICODE, as that of messageClass.
    STDMETHODIMP GetReceiveFolder(LPTSTR messageClass,
                                  ULONG flags,
                                  ULONG* entryIdBytes,
                                  LPENTRYID* entryId,
                                  LPTSTR* explicitClass) override;
    STDMETHODIMP GetReceiveFolderTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP StoreLogoff(ULONG* flags) override;
    STDMETHODIMP AbortSubmit(ULONG entryIdBytes, LPENTRYID entryId, ULONG flags) override;
    STDMETHODIMP GetOutgoingQueue(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP SetLockState(LPMESSAGE message, ULONG lockState) override;
    STDMETHODIMP FinishedMsg(ULONG flags, ULONG entryIdBytes, LPENTRYID entryId) override;
    STDMETHODIMP NotifyNewMail(LPNOTIFICATION notification) override;
};
