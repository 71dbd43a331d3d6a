// The one table of operations through which the server reaches the flat entry points of a store
// library. Nothing is linked: each entry point is looked up by name in the library that Load took.
// Used on the apartment thread only; nothing is logged here.
//
// A missing entry point gives E_FAIL where the operation has a result; the others then do nothing
// and leave their output as it was. So does every operation while no library is loaded.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <map>
#include <string>

class CNProxcy
{
  public:
    // The only key that SetValue knows: the address book's IWABObject, not owned.
    static constexpr int kWabObjectKey = 0x101;

    CNProxcy() = default;
    CNProxcy(const CNProxcy&) = delete;
    CNProxcy& operator=(const CNProxcy&) = delete;

    // The order of the operations is fixed; the destructor stands last so that Load is the first.

    // Loads the library at that path, an empty one included in what fails. init may be null where
    // the library needs no initialisation.
    virtual bool Load(std::wstring path, MAPIINIT_0* init) = 0;
    // False where the library could not be given up.
    virtual bool Unload() = 0;
    // The address under exactly that name, decoration included; null where there is none.
    virtual FARPROC FindEntry(const char* name);
    // Always false; see kWabObjectKey.
    virtual bool SetValue(int key, void* value) = 0;

    // The entry points, by their arguments. What one hands out is the caller's: buffers go back by
    // FreeBuffer, row sets by FreeProws, interfaces by Release.
    virtual HRESULT MAPILogonEx(ULONG_PTR ulUIParam,
                                LPWSTR profile,
                                LPWSTR password,
                                ULONG ulFlags,
                                LPMAPISESSION* session);
    virtual void FreeProws(LPSRowSet rows) = 0;
    virtual void FreeBuffer(void* buffer) = 0;
    virtual void AllocateBuffer(ULONG cbSize, void** buffer);
    virtual void AllocateMore(ULONG cbSize, void* parent, void** buffer);
    virtual HRESULT WrapCompressedRTFStream(IStream* compressed, ULONG ulFlags, IStream** plain);
    virtual HRESULT HrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value) = 0;
    virtual HRESULT HrQueryAllRows(IMAPITable* table,
                                   LPSPropTagArray tags,
                                   LPSRestriction restriction,
                                   LPSSortOrderSet sort,
                                   LONG rowLimit,
                                   LPSRowSet* rows) = 0;

    virtual ~CNProxcy() = default;

  protected:
    // An entry point under its type; null where there is none. A missed lookup is remembered like a
    // found one; nothing is looked up or stored while no library is loaded.
    template <typename Function> Function* Find(const char* name)
    {
        return reinterpret_cast<Function*>(reinterpret_cast<void*>(FindEntry(name)));
    }

    // Gives up what was bound before and takes the library at that path; false where there is none.
    bool Bind(const std::wstring& path);
    // Frees the library and forgets its addresses.
    void Unbind();

    UniqueModule m_library;

  private:
    std::map<std::string, FARPROC, std::less<>> m_entries;
};
