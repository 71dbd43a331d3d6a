/* Goes before each generated file of the proxy library: its class, and the routines for arrays. */
#define COBJMACROS
#define CINTERFACE
/* RecordProxy.cpp has the entry points of the library. */
#define ENTRY_PREFIX Record
#define PROXY_DELEGATION
#define PROXY_CLSID_IS                                                                             \
    {                                                                                              \
        0x5D0C7C1E, 0x3B52, 0x4E0B,                                                                \
        {                                                                                          \
            0x9B, 0x1A, 0x70, 0x2E, 0x5A, 0xC1, 0x84, 0x6D                                         \
        }                                                                                          \
    }

#include <objbase.h>
#include <oleauto.h>

HRESULT STDMETHODCALLTYPE IUnknown_QueryInterface_Proxy(IUnknown* self, REFIID iid, void** object);
ULONG STDMETHODCALLTYPE IUnknown_AddRef_Proxy(IUnknown* self);
ULONG STDMETHODCALLTYPE IUnknown_Release_Proxy(IUnknown* self);

/* RecordArrays.cpp has them. */
#define LPSAFEARRAY_UserSize RecordArray_UserSize
#define LPSAFEARRAY_UserMarshal RecordArray_UserMarshal
#define LPSAFEARRAY_UserUnmarshal RecordArray_UserUnmarshal
#define LPSAFEARRAY_UserFree RecordArray_UserFree
ULONG __RPC_USER RecordArray_UserSize(ULONG*, ULONG, LPSAFEARRAY*);
unsigned char* __RPC_USER RecordArray_UserMarshal(ULONG*, unsigned char*, LPSAFEARRAY*);
unsigned char* __RPC_USER RecordArray_UserUnmarshal(ULONG*, unsigned char*, LPSAFEARRAY*);
void __RPC_USER RecordArray_UserFree(ULONG*, LPSAFEARRAY*);
