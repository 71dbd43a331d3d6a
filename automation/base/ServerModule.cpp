#include "automation/base/ServerModule.h"

#include "platform/ProgramPath.h"
#include "platform/ScopeExit.h"

#include <algorithm>
#include <new>
#include <string>

namespace
{
CServerModule* g_current = nullptr;
} // namespace

CServerModule::CServerModule() noexcept : m_previous(g_current)
{
    m_hasSection = InitializeCriticalSectionAndSpinCount(&m_section, 0) != FALSE;
    if (!m_hasSection)
        m_initFailed = true;
    g_current = this;
}

CServerModule::~CServerModule()
{
    ReleaseCaches();
    if (m_hasSection)
        DeleteCriticalSection(&m_section);
    if (g_current == this)
        g_current = m_previous;
}

CServerModule* CServerModule::Current() noexcept
{
    return g_current;
}

LONG CServerModule::Lock() noexcept
{
    return InterlockedIncrement(&m_nLockCnt);
}

LONG CServerModule::Unlock() noexcept
{
    return InterlockedDecrement(&m_nLockCnt);
}

LONG CServerModule::GetLockCount() noexcept
{
    return m_nLockCnt;
}

HRESULT CServerModule::GetGITPtr(IGlobalInterfaceTable** table) noexcept
{
    if (!table)
        return E_POINTER;
    *table = nullptr;
    if (!m_git)
    {
        const HRESULT result = CoCreateInstance(CLSID_StdGlobalInterfaceTable,
                                                nullptr,
                                                CLSCTX_INPROC_SERVER,
                                                IID_IGlobalInterfaceTable,
                                                reinterpret_cast<void**>(m_git.GetAddressOf()));
        if (FAILED(result))
            return result;
    }
    return m_git.CopyTo(table);
}

HRESULT CServerModule::GetTypeInfo(REFIID iid, ITypeInfo** info) noexcept
{
    if (!m_hasSection)
        return E_FAIL;
    EnterCriticalSection(&m_section);
    ScopeExit leave([this] { LeaveCriticalSection(&m_section); });
    const auto cached =
        std::find_if(m_typeInfos.begin(), m_typeInfos.end(), [&](const auto& entry) {
            return IsEqualGUID(entry.iid, iid);
        });
    if (cached != m_typeInfos.end())
    {
        *info = cached->info.Get();
        return S_OK;
    }
    try
    {
        return LoadTypeInfo(iid, info);
    }
    catch (const std::bad_alloc&)
    {
        return E_OUTOFMEMORY;
    }
}

HRESULT CServerModule::LoadTypeInfo(REFIID iid, ITypeInfo** info)
{
    HRESULT result = S_OK;
    if (!m_library)
    {
        const std::wstring path = ProgramPath();
        result = LoadTypeLibEx(path.c_str(), REGKIND_NONE, m_library.GetAddressOf());
        if (FAILED(result))
            return result;
    }
    CachedTypeInfo entry{iid, nullptr};
    result = m_library->GetTypeInfoOfGuid(iid, entry.info.GetAddressOf());
    if (FAILED(result))
        return result;
    m_typeInfos.push_back(entry);
    *info = entry.info.Get();
    return S_OK;
}

void CServerModule::ReleaseCaches() noexcept
{
    m_typeInfos.clear();
    m_library.Reset();
    m_git.Reset();
}
