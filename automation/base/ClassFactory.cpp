#include "automation/base/ClassFactory.h"

Microsoft::WRL::ComPtr<CComClassFactory> CComClassFactory::Make(CreatorFunction* create)
{
    return Microsoft::WRL::ComPtr<CComClassFactory>(new CComClassFactory(create));
}

STDMETHODIMP CComClassFactory::QueryInterface(REFIID iid, void** result)
{
    return InternalQueryInterface(this, iid, result);
}

STDMETHODIMP_(ULONG) CComClassFactory::AddRef()
{
    m_references = InternalAddRef();
    AdjustLock(m_references);
    return m_references;
}

STDMETHODIMP_(ULONG) CComClassFactory::Release()
{
    const ULONG left = m_references = InternalRelease();
    AdjustLock(left);
    if (left == 0)
    {
        MarkDestroying();
        delete this;
    }
    return left;
}

STDMETHODIMP CComClassFactory::CreateInstance(IUnknown* outer, REFIID iid, void** result)
{
    return Guard(this, [&]() -> HRESULT {
        if (!result)
            return E_POINTER;
        *result = nullptr;
        // The inner object's own identity is all that an outer object may ask for.
        if (outer && !IsEqualGUID(iid, IID_IUnknown))
            return CLASS_E_NOAGGREGATION;
        return m_create(outer, iid, result);
    });
}

STDMETHODIMP CComClassFactory::LockServer(BOOL lock)
{
    if (CServerModule* module = CServerModule::Current())
    {
        if (lock)
            module->Lock();
        else
            module->Unlock();
    }
    return S_OK;
}

void CComClassFactory::SettleReferences() noexcept
{
    m_ownReferences = m_references;
    AdjustLock(m_references);
}

void CComClassFactory::AdjustLock(ULONG references) noexcept
{
    const bool outside = references > m_ownReferences;
    if (outside == m_holdsLock)
        return;
    m_holdsLock = outside;
    if (CServerModule* module = CServerModule::Current())
    {
        if (outside)
            module->Lock();
        else
            module->Unlock();
    }
}
