// The address book: IAddrBook and IWABObject, the personal container with its entries.
#pragma once

#include "tests/recordingstore/library/Entries.h"

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wunused-parameter"
class BookWithoutOperations : public RecordedObject<IAddrBook, &IID_IAddrBook, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IADDRBOOK_METHODS(override { return NotOffered(__func__); })
};
class BookContainerWithoutOperations
    : public RecordedObject<IABContainer, &IID_IABContainer, &IID_IMAPIContainer, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IMAPICONTAINER_METHODS(override { return NotOffered(__func__); })
    MAPI_IABCONTAINER_METHODS(override { return NotOffered(__func__); })
};
class DistListWithoutOperations
    : public RecordedObject<IDistList, &IID_IDistList, &IID_IMAPIContainer, &IID_IMAPIProp>
{
  public:
    using RecordedObject::RecordedObject;
    MAPI_IMAPIPROP_METHODS(override { return NotOffered(__func__); })
    MAPI_IMAPICONTAINER_METHODS(override { return NotOffered(__func__); })
    MAPI_IDISTLIST_METHODS(override { return NotOffered(__func__); })
};
#pragma GCC diagnostic pop

class AddressBookObject final : public BookWithoutOperations
{
  public:
    AddressBookObject() : BookWithoutOperations("IAddrBook", "address book") {}

    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entryId,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP GetPAB(ULONG* size, LPENTRYID* entryId) override;
};

// The personal container. Entries are made and deleted through it whatever it was opened for.
class BookContainerObject final : public PropObject<BookContainerWithoutOperations>
{
  public:
    explicit BookContainerObject(NodePtr node);

    STDMETHODIMP GetContentsTable(ULONG flags, LPMAPITABLE* table) override;
    STDMETHODIMP OpenEntry(ULONG size,
                           LPENTRYID entryId,
                           LPCIID interfaceId,
                           ULONG flags,
                           ULONG* type,
                           LPUNKNOWN* object) override;
    STDMETHODIMP CreateEntry(ULONG templateSize,
                             LPENTRYID templateId,
                             ULONG flags,
                             LPMAPIPROP* entry) override;
    STDMETHODIMP DeleteEntries(LPENTRYLIST entries, ULONG flags) override;

  private:
    NodePtr m_node;
};

class BookUserObject final : public PropObject<UserWithoutOperations>
{
  public:
    explicit BookUserObject(const std::string& name, std::shared_ptr<MessageBag> bag)
        : PropObject("IMailUser", name, std::move(bag))
    {
    }
};

class DistListObject final : public PropObject<DistListWithoutOperations>
{
  public:
    explicit DistListObject(const std::string& name, std::shared_ptr<MessageBag> bag)
        : PropObject("IDistList", name, std::move(bag))
    {
    }
};

// Frees what any call gave. The library counts as uninitialised once it is released.
class WabLibraryObject final : public RecordedObject<IWABObject>
{
  public:
    WabLibraryObject() : RecordedObject("IWABObject", "wab") {}

    STDMETHODIMP_(ULONG) Release() override;
    STDMETHODIMP FreeBuffer(LPVOID buffer) override;

    STDMETHODIMP GetLastError(HRESULT, ULONG, LPMAPIERROR*) override;
    STDMETHODIMP AllocateBuffer(ULONG, LPVOID*) override;
    STDMETHODIMP AllocateMore(ULONG, LPVOID, LPVOID*) override;
    STDMETHODIMP Backup(LPSTR) override;
    STDMETHODIMP Import(LPSTR) override;
    STDMETHODIMP Find(LPADRBOOK, HWND) override;
    STDMETHODIMP VCardDisplay(LPADRBOOK, HWND, LPSTR) override;
    STDMETHODIMP LDAPUrl(LPADRBOOK, HWND, ULONG, LPSTR, LPMAILUSER*) override;
    STDMETHODIMP VCardCreate(LPADRBOOK, ULONG, LPSTR, LPMAILUSER) override;
    STDMETHODIMP VCardRetrieve(LPADRBOOK, ULONG, LPSTR, LPMAILUSER*) override;
    STDMETHODIMP GetMe(LPADRBOOK, ULONG, DWORD*, SBinary*, ULONG) override;
    STDMETHODIMP SetMe(LPADRBOOK, ULONG, SBinary, ULONG) override;
};
