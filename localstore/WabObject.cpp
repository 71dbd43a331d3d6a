#include "localstore/WabObject.h"

#include "localstore/ChainedMemory.h"

STDMETHODIMP WabObject::GetLastError(HRESULT result, ULONG flags, LPMAPIERROR* error)
{
    return m_session->LastError(result, flags, error);
}

STDMETHODIMP WabObject::AllocateBuffer(ULONG bytes, LPVOID* buffer)
{
    return ChainedMemory::OfLibrary().Allocate(bytes, buffer);
}

STDMETHODIMP WabObject::AllocateMore(ULONG bytes, LPVOID buffer, LPVOID* block)
{
    return ChainedMemory::OfLibrary().AllocateMore(bytes, buffer, block);
}

STDMETHODIMP WabObject::FreeBuffer(LPVOID buffer)
{
    return ChainedMemory::OfLibrary().Free(buffer);
}

STDMETHODIMP WabObject::Backup(LPSTR)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::Import(LPSTR)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::Find(LPADRBOOK, HWND)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::VCardDisplay(LPADRBOOK, HWND, LPSTR)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::LDAPUrl(LPADRBOOK, HWND, ULONG, LPSTR, LPMAILUSER* user)
{
    if (user)
        *user = nullptr;
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::VCardCreate(LPADRBOOK, ULONG, LPSTR, LPMAILUSER)
{
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::VCardRetrieve(LPADRBOOK, ULONG, LPSTR, LPMAILUSER* user)
{
    if (user)
        *user = nullptr;
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::GetMe(LPADRBOOK, ULONG, DWORD* action, SBinary* entryId, ULONG)
{
    if (action)
        *action = 0;
    if (entryId)
        *entryId = {};
    return MAPI_E_NO_SUPPORT;
}

STDMETHODIMP WabObject::SetMe(LPADRBOOK, ULONG, SBinary, ULONG)
{
    return MAPI_E_NO_SUPPORT;
}
