// The exported entry points of the embedded message store, under the names of a MAPI library.
#include "localstore/ChainedMemory.h"
#include "localstore/ComObject.h"
#include "localstore/MapiSession.h"
#include "localstore/RtfStream.h"
#include "localstore/StayLoaded.h"
#include "localstore/StorePath.h"
#include "localstore/TableRows.h"

#include <atomic>

namespace
{

// MAPIInitialize without a MAPIUninitialize yet.
std::atomic<LONG> g_initialised{0};

// Flags of MAPIInitialize that the platform header lacks.
constexpr ULONG kNoCoInit = 0x00000008;
constexpr ULONG kService = 0x00010000;
constexpr ULONG kInitFlags = MAPI_MULTITHREAD_NOTIFICATIONS | kNoCoInit | kService;

// The only profile has no name.
bool IsEmptyText(LPTSTR text, ULONG flags)
{
    if (!text)
        return true;
    return (flags & MAPI_UNICODE) ? *reinterpret_cast<const wchar_t*>(text) == L'\0'
                                  : *reinterpret_cast<const char*>(text) == '\0';
}

} // namespace

extern "C"
{

    // record: null or a MAPIINIT_0. COM is left alone whatever its flags say: the store does not
    // need it. From now on the library stays in the process. Returns: S_OK; MAPI_E_VERSION for a
    // version other than 0; MAPI_E_UNKNOWN_FLAGS.
    HRESULT STDAPICALLTYPE StoreInitialize(LPVOID record)
    {
        if (const auto* init = static_cast<const MAPIINIT_0*>(record))
        {
            if (init->ulVersion != MAPI_INIT_VERSION)
                return MAPI_E_VERSION;
            if (init->ulFlags & ~kInitFlags)
                return MAPI_E_UNKNOWN_FLAGS;
        }
        StayLoaded();
        ++g_initialised;
        return S_OK;
    }

    void STDAPICALLTYPE StoreUninitialize()
    {
        LONG count = g_initialised.load();
        while (count > 0 && !g_initialised.compare_exchange_weak(count, count - 1))
        {
        }
    }

    // Logs on to the user's store. There is one profile, without a name and a password.
    // Returns: S_OK; MAPI_E_NOT_INITIALIZED; MAPI_E_INVALID_PARAMETER; MAPI_E_LOGON_FAILED for
    //          another profile's name; MAPI_E_VERSION, MAPI_E_CORRUPT_STORE, MAPI_E_NO_ACCESS,
    //          MAPI_E_BUSY, MAPI_E_NOT_FOUND and the disk's failures where the store does not
    //          open. pimstore status tells the reason in words.
    // Thread:  any. The objects may be used from any thread; a logon runs one operation at a time.
    HRESULT STDAPICALLTYPE
    StoreLogonEx(ULONG_PTR, LPTSTR profile, LPTSTR, ULONG flags, LPMAPISESSION* session)
    {
        if (!session)
            return MAPI_E_INVALID_PARAMETER;
        *session = nullptr;
        if (g_initialised.load() == 0)
            return MAPI_E_NOT_INITIALIZED;
        if (!IsEmptyText(profile, flags))
            return MAPI_E_LOGON_FAILED;
        return Guarded([&] {
            *session = MapiSession::LogOn(StorePath()).Detach();
            return S_OK;
        });
    }

    void STDAPICALLTYPE StoreFreeProws(LPSRowSet rows)
    {
        FreeRowSet(rows);
    }

    // MAPI_E_INVALID_PARAMETER for an address that this library did not hand out: nothing happens
    // to it.
    ULONG STDAPICALLTYPE StoreFreeBuffer(LPVOID buffer)
    {
        return static_cast<ULONG>(ChainedMemory::OfLibrary().Free(buffer));
    }

    SCODE STDAPICALLTYPE StoreAllocateBuffer(ULONG bytes, LPVOID* buffer)
    {
        return ChainedMemory::OfLibrary().Allocate(bytes, buffer);
    }

    SCODE STDAPICALLTYPE StoreAllocateMore(ULONG bytes, LPVOID parent, LPVOID* block)
    {
        return ChainedMemory::OfLibrary().AllocateMore(bytes, parent, block);
    }

    HRESULT STDAPICALLTYPE StoreWrapCompressedRtfStream(LPSTREAM compressed,
                                                        ULONG flags,
                                                        LPSTREAM* text)
    {
        return WrapRtfStream(compressed, flags, text);
    }

    HRESULT STDAPICALLTYPE StoreGetOneProp(LPMAPIPROP object, ULONG tag, LPSPropValue* value)
    {
        return GetOneProp(object, tag, value);
    }

    HRESULT STDAPICALLTYPE StoreQueryAllRows(LPMAPITABLE table,
                                             LPSPropTagArray tags,
                                             LPSRestriction restriction,
                                             LPSSortOrderSet order,
                                             LONG maxRows,
                                             LPSRowSet* rows)
    {
        return QueryAllRows(table, tags, restriction, order, maxRows, rows);
    }

} // extern "C"
