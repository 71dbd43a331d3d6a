#include "outlook/store/WAPProxcy.h"

bool CWAPProxcy::Load(std::wstring path, MAPIINIT_0*)
{
    return Bind(path);
}

bool CWAPProxcy::Unload()
{
    Unbind();
    return true;
}

bool CWAPProxcy::SetValue(int key, void* value)
{
    if (key == kWabObjectKey)
        m_pWabObject = static_cast<IWABObject*>(value);
    return false;
}

void CWAPProxcy::FreeProws(LPSRowSet rows)
{
    if (!rows)
        return;
    for (ULONG i = 0; i < rows->cRows; ++i)
        FreeBuffer(rows->aRow[i].lpProps);
    FreeBuffer(rows);
}

void CWAPProxcy::FreeBuffer(void* buffer)
{
    if (m_pWabObject && buffer)
        m_pWabObject->FreeBuffer(buffer);
}

HRESULT CWAPProxcy::HrGetOneProp(IMAPIProp* object, ULONG tag, LPSPropValue* value)
{
    using Function = HRESULT WINAPI(IMAPIProp*, ULONG, LPSPropValue*);
    auto* const entry = Find<Function>("HrGetOneProp");
    return entry ? entry(object, tag, value) : E_FAIL;
}

HRESULT CWAPProxcy::HrQueryAllRows(
    IMAPITable*, LPSPropTagArray, LPSRestriction, LPSSortOrderSet, LONG, LPSRowSet*)
{
    return E_NOTIMPL;
}
