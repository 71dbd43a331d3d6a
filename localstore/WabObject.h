// The library object of the embedded address book: memory and last error. Import, export, cards and
// the user's own entry are what a mail program's windows need; they are not supported.
#pragma once

#include "localstore/BookSession.h"
#include "localstore/ComObject.h"

#include <memory>

class WabObject : public ComObject<IWABObject>
{
  public:
    explicit WabObject(std::shared_ptr<BookSession> session) : m_session(std::move(session)) {}

    STDMETHODIMP GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error) override;
    // Memory of the whole library: see ChainedMemory.h.
    STDMETHODIMP AllocateBuffer(ULONG bytes, LPVOID* buffer) override;
    STDMETHODIMP AllocateMore(ULONG bytes, LPVOID buffer, LPVOID* block) override;
    STDMETHODIMP FreeBuffer(LPVOID buffer) override;
    STDMETHODIMP Backup(LPSTR fileName) override;
    STDMETHODIMP Import(LPSTR parameter) override;
    STDMETHODIMP Find(LPADRBOOK book, HWND window) override;
    STDMETHODIMP VCardDisplay(LPADRBOOK book, HWND window, LPSTR fileName) override;
    STDMETHODIMP
    LDAPUrl(LPADRBOOK book, HWND window, ULONG flags, LPSTR url, LPMAILUSER* user) override;
    STDMETHODIMP VCardCreate(LPADRBOOK book, ULONG flags, LPSTR card, LPMAILUSER user) override;
    STDMETHODIMP VCardRetrieve(LPADRBOOK book, ULONG flags, LPSTR card, LPMAILUSER* user) override;
    STDMETHODIMP
    GetMe(LPADRBOOK book, ULONG flags, DWORD* action, SBinary* entryId, ULONG param) override;
    STDMETHODIMP SetMe(LPADRBOOK book, ULONG flags, SBinary entryId, ULONG param) override;

  private:
    std::shared_ptr<BookSession> m_session;
};
