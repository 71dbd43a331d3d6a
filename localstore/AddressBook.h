// The embedded address book as clients hold it.
#pragma once

#include "localstore/BookSession.h"
#include "localstore/StoreObject.h"

// The book has no properties but its type.
class AddressBookState : public FixedObject
{
  public:
    explicit AddressBookState(std::shared_ptr<BookSession> session)
        : FixedObject(session), m_session(std::move(session))
    {
    }

    BookSession& Book() const noexcept { return *m_session; }

    PropertyMap Read(const PropertySelection& selection) override;
    bool IsComputed(std::uint16_t id) const override;

  private:
    const std::shared_ptr<BookSession> m_session;
};

class AddressBook : public StoreObject<AddressBookState, IAddrBook, &IID_IAddrBook>
{
  public:
    explicit AddressBook(std::shared_ptr<BookSession> session)
        : StoreObject(std::make_shared<AddressBookState>(std::move(session)))
    {
    }

    STDMETHODIMP OpenEntry(ULONG entryIdBytes,
                           LPENTRYID entryId,
                           LPCIID iid,
                           ULONG flags,
                           ULONG* objectType,
                           LPUNKNOWN* object) override;
    // *same: 1 where both are the same bytes, else 0.
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
    STDMETHODIMP CreateOneOff(LPTSTR name,
                              LPTSTR addressType,
                              LPTSTR address,
                              ULONG flags,
                              ULONG* entryIdBytes,
                              LPENTRYID* entryId) override;
    STDMETHODIMP NewEntry(ULONG_PTR uiParam,
                          ULONG flags,
                          ULONG containerBytes,
                          LPENTRYID container,
                          ULONG templateBytes,
                          LPENTRYID templateId,
                          ULONG* entryIdBytes,
                          LPENTRYID* entryId) override;
    STDMETHODIMP ResolveName(ULONG_PTR uiParam,
                             ULONG flags,
                             LPTSTR title,
                             LPADRLIST addresses) override;
    STDMETHODIMP Address(ULONG_PTR* uiParam, LPADRPARM parameters, LPADRLIST* addresses) override;
    STDMETHODIMP Details(ULONG* uiParam,
                         LPFNDISMISS dismiss,
                         LPVOID dismissContext,
                         ULONG entryIdBytes,
                         LPENTRYID entryId,
                         LPFNBUTTON button,
                         LPVOID buttonContext,
                         LPTSTR buttonText,
                         ULONG flags) override;
    STDMETHODIMP RecipOptions(ULONG_PTR uiParam, ULONG flags, LPADRENTRY recipient) override;
    STDMETHODIMP QueryDefaultRecipOpt(LPTSTR addressType,
                                      ULONG flags,
                                      ULONG* count,
                                      LPSPropValue* options) override;
    // The personal container's entry ID, the same for the life of the store.
    // Ownership: the caller frees it with IWABObject::FreeBuffer.
    STDMETHODIMP GetPAB(ULONG* entryIdBytes, LPENTRYID* entryId) override;
    STDMETHODIMP SetPAB(ULONG entryIdBytes, LPENTRYID entryId) override;
    STDMETHODIMP GetDefaultDir(ULONG* entryIdBytes, LPENTRYID* entryId) override;
    STDMETHODIMP SetDefaultDir(ULONG entryIdBytes, LPENTRYID entryId) override;
    STDMETHODIMP GetSearchPath(ULONG flags, LPSRowSet* path) override;
    STDMETHODIMP SetSearchPath(ULONG flags, LPSRowSet path) override;
    STDMETHODIMP PrepareRecips(ULONG flags, LPSPropTagArray tags, LPADRLIST recipients) override;
};
