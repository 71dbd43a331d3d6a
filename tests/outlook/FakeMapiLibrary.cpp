// A stand-in for the library of Extended MAPI, for tests of its proxy: reports every call with its
// arguments, and its own unloading, to the program that loaded it. Each function gives a result of
// its own.
#include "tests/outlook/FakeMapi.h"

#include <cstdio>

namespace
{
template <typename Function> Function* OfTheProgram(const char* name)
{
    return reinterpret_cast<Function*>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(nullptr), name)));
}

template <typename... Arguments> void Record(const char* format, Arguments... arguments)
{
    char text[160];
    std::snprintf(text, sizeof text, format, arguments...);
    if (auto* const record = OfTheProgram<decltype(FakeMapiRecord)>("FakeMapiRecord"))
        record(text);
}

// A pointer as the small number that the test passed for it.
unsigned long long Number(const void* pointer)
{
    return reinterpret_cast<unsigned long long>(pointer);
}

void RecordQuery(const char* name,
                 IMAPITable* table,
                 LPSPropTagArray tags,
                 LPSRestriction restriction,
                 LPSSortOrderSet sort,
                 LONG rowLimit)
{
    Record("%s %llu %llu %llu %llu %ld",
           name,
           Number(table),
           Number(tags),
           Number(restriction),
           Number(sort),
           rowLimit);
}
} // namespace

extern "C" HRESULT WINAPI FakeMAPIInitialize(const MAPIINIT_0* init)
{
    if (init)
        Record("MAPIInitialize %lu %lu", init->ulVersion, init->ulFlags);
    else
        Record("MAPIInitialize null");
    auto* const result =
        OfTheProgram<decltype(FakeMapiInitialiseResult)>("FakeMapiInitialiseResult");
    return result ? result() : E_UNEXPECTED;
}

extern "C" void WINAPI FakeMAPIUninitialize()
{
    Record("MAPIUninitialize");
}

extern "C" HRESULT WINAPI FakeMAPILogonEx(ULONG_PTR uiParam,
                                          const wchar_t* profile,
                                          const wchar_t* password,
                                          ULONG flags,
                                          LPMAPISESSION* session)
{
    Record("MAPILogonEx %llu %ls %ls %lu",
           static_cast<unsigned long long>(uiParam),
           profile,
           password,
           flags);
    *session = reinterpret_cast<LPMAPISESSION>(11);
    return MAPI_W_ERRORS_RETURNED;
}

extern "C" void WINAPI FakeDecoratedFreeProws(LPSRowSet rows)
{
    Record("FreeProws@4 %llu", Number(rows));
}

extern "C" void WINAPI FakePlainFreeProws(LPSRowSet rows)
{
    Record("FreeProws %llu", Number(rows));
}

extern "C" ULONG WINAPI FakeMAPIFreeBuffer(void* buffer)
{
    Record("MAPIFreeBuffer %llu", Number(buffer));
    return 0;
}

extern "C" SCODE WINAPI FakeMAPIAllocateBuffer(ULONG size, void** buffer)
{
    Record("MAPIAllocateBuffer %lu", size);
    *buffer = reinterpret_cast<void*>(12);
    return S_OK;
}

extern "C" SCODE WINAPI FakeMAPIAllocateMore(ULONG size, void* parent, void** buffer)
{
    Record("MAPIAllocateMore %lu %llu", size, Number(parent));
    *buffer = reinterpret_cast<void*>(13);
    return S_OK;
}

extern "C" HRESULT WINAPI FakeWrapCompressedRTFStream(IStream* compressed,
                                                      ULONG flags,
                                                      IStream** plain)
{
    Record("WrapCompressedRTFStream %llu %lu", Number(compressed), flags);
    *plain = reinterpret_cast<IStream*>(14);
    return MAPI_W_PARTIAL_COMPLETION;
}

extern "C" HRESULT WINAPI FakeHrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value)
{
    Record("HrGetOneProp %llu %08lX", Number(object), tag);
    *value = reinterpret_cast<LPSPropValue>(15);
    return MAPI_E_NOT_FOUND;
}

extern "C" HRESULT WINAPI FakeDecoratedQueryAllRows(IMAPITable* table,
                                                    LPSPropTagArray tags,
                                                    LPSRestriction restriction,
                                                    LPSSortOrderSet sort,
                                                    LONG rowLimit,
                                                    LPSRowSet* rows)
{
    RecordQuery("HrQueryAllRows@24", table, tags, restriction, sort, rowLimit);
    *rows = reinterpret_cast<LPSRowSet>(16);
    return MAPI_E_TABLE_TOO_BIG;
}

extern "C" HRESULT WINAPI FakePlainQueryAllRows(IMAPITable* table,
                                                LPSPropTagArray tags,
                                                LPSRestriction restriction,
                                                LPSSortOrderSet sort,
                                                LONG rowLimit,
                                                LPSRowSet* rows)
{
    RecordQuery("HrQueryAllRows", table, tags, restriction, sort, rowLimit);
    *rows = reinterpret_cast<LPSRowSet>(17);
    return MAPI_E_BUSY;
}

extern "C" void WINAPI FakeNothing() {}

extern "C" BOOL WINAPI DllMain(HINSTANCE, DWORD reason, LPVOID processEnds)
{
    if (reason == DLL_PROCESS_DETACH && !processEnds)
        Record("unload");
    return TRUE;
}
