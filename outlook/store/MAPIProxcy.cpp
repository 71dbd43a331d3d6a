#include "outlook/store/MAPIProxcy.h"

CMAPIProxcy::~CMAPIProxcy()
{
    m_library.Detach();
}

bool CMAPIProxcy::Load(std::wstring path, MAPIINIT_0* init)
{
    if (!Bind(path))
        return false;
    auto* const initialise = Find<MAPIINITIALIZE>("MAPIInitialize");
    if (!initialise || FAILED(initialise(init)))
        return false;
    HMODULE pinned = nullptr;
    GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_PIN | GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS,
                       reinterpret_cast<const wchar_t*>(initialise),
                       &pinned);
    return true;
}

bool CMAPIProxcy::Unload()
{
    auto* const uninitialise = Find<MAPIUNINITIALIZE>("MAPIUninitialize");
    if (!uninitialise)
        return false;
    uninitialise();
    Unbind();
    return true;
}

bool CMAPIProxcy::SetValue(int, void*)
{
    return false;
}

void CMAPIProxcy::FreeProws(LPSRowSet rows)
{
    using Function = void WINAPI(LPSRowSet);
    if (auto* const entry = Find<Function>("FreeProws@4"))
        entry(rows);
}

void CMAPIProxcy::FreeBuffer(void* buffer)
{
    if (auto* const entry = Find<MAPIFREEBUFFER>("MAPIFreeBuffer"))
        entry(buffer);
}

HRESULT CMAPIProxcy::HrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value)
{
    using Function = HRESULT WINAPI(IMAPIProp*, ULONG, LPSPropValue*);
    // Kept as it is: the fallback is the same name again, which changes nothing, and no decorated
    // one. Pinned by MAPIProxcyPlainNamesTest.NoDecoratedNameServesTheReadingOfAProperty.
    auto* const entry = FindFirst<Function>({"HrGetOneProp", "HrGetOneProp"});
    return entry ? entry(object, tag, value) : E_FAIL;
}

HRESULT CMAPIProxcy::HrQueryAllRows(IMAPITable* table,
                                    LPSPropTagArray tags,
                                    LPSRestriction restriction,
                                    LPSSortOrderSet sort,
                                    LONG rowLimit,
                                    LPSRowSet* rows)
{
    using Function = HRESULT WINAPI(
        IMAPITable*, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*);
    auto* const entry = FindFirst<Function>({"HrQueryAllRows@24", "HrQueryAllRows"});
    return entry ? entry(table, tags, restriction, sort, rowLimit, rows) : E_FAIL;
}
