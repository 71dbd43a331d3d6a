#include "service/ServiceManager.h"

#include "outlook/store/OutlookProvider.h"
#include "platform/ScopeExit.h"
#include "service/CallScope.h"
#include "service/Discovery.h"
#include "service/Log.h"
#include "windowscontacts/WindowsMailProvider.h"

#include <utility>

namespace
{
// The provider is stored before its logon: an exception out of that leaves it in place half set up.
HRESULT StartOutlook(std::unique_ptr<IProvider>& slot)
{
    auto provider = std::make_unique<COutlookProvider>();
    COutlookProvider& stored = *provider;
    slot = std::move(provider);
    return stored.Logon();
}

// The constructor throws where the address book cannot be opened; then nothing is stored.
HRESULT StartOutlookExpress(std::unique_ptr<IProvider>& slot)
{
    slot = std::make_unique<CWindowsMailProvider>(true);
    return S_OK;
}

HRESULT StartWindowsMail(std::unique_ptr<IProvider>& slot)
{
    slot = std::make_unique<CWindowsMailProvider>(false);
    return S_OK;
}

constexpr ProviderRow kProviders[] = {
    {L"Microsoft Outlook", StartOutlook},
    {L"Outlook Express", StartOutlookExpress},
    {L"Windows Mail", StartWindowsMail},
};

CServiceManager* g_manager = nullptr;
} // namespace

CServiceManager::CServiceManager() : CServiceManager(kProviders) {}

CServiceManager::CServiceManager(std::span<const ProviderRow> rows) : m_rows(rows) {}

HRESULT CServiceManager::StartService(const std::wstring& name)
{
    // Kept as it is: a success under whatever name. Pinned by
    // ServiceManagerTest.ASecondStartReportsSuccessAndChangesNothing.
    if (Running())
        return S_OK;

    LogPrintf(L"=========CServiceManager::StartService:: %s!\r\n", name.c_str());
    HRESULT result = E_FAIL;
    if (!m_isStarting && !m_isStopPending)
    {
        result = Start(name);
        if (m_pProvider)
        {
            LogPrintf(L"=========CServiceManager::StartService::succeeded!\r\n");
            return S_OK;
        }
    }
    LogPrintf(L"=========CServiceManager::StartService::failed!\r\n");
    return result;
}

HRESULT CServiceManager::Start(const std::wstring& name)
{
    // A back end may show a dialog, through which another client's call can arrive here again.
    m_isStarting = true;
    const ScopeExit ended([this] { m_isStarting = false; });
    try
    {
        for (const ProviderRow& row : m_rows)
        {
            if (StrCmpIW(name.c_str(), row.name) != 0)
                continue;
            const HRESULT result = row.start(m_pProvider);
            if (FAILED(result))
                m_pProvider.reset();
            return result;
        }
        LogPrintf(L"=========CServiceManager::StartService::invalidate provider!\r\n");
    }
    catch (...)
    {
        // Kept as it is: a provider that was stored before its logon threw stays in place half set
        // up, and the start counts as a success. Pinned by ServiceManagerTest.
        LogPrintf(L"=========CServiceManager::StartService::caught!\r\n");
    }
    return E_FAIL;
}

void CServiceManager::StopService()
{
    LogPrintf(L"=========CServiceManager::StopService !\r\n");
    if (!Running())
        return;
    // From here on the provider hands nothing out, also to calls that its own end lets in.
    if (CallScope::Depth() > 1)
    {
        CallScope::Defer([this] { EndProvider(); });
        m_isStopPending = true;
    }
    else
        EndProvider();
}

void CServiceManager::EndProvider()
{
    m_isStopPending = true;
    m_pProvider.reset();
    m_isStopPending = false;
}

IProvider* CServiceManager::Running() const noexcept
{
    return m_isStopPending ? nullptr : m_pProvider.get();
}

std::wstring CServiceManager::GetDefaultProvider()
{
    return DiscoverDefaultProvider();
}

void CServiceManager::GetProviders(std::vector<std::wstring>& names)
{
    DiscoverProviders(names);
}

std::unique_ptr<UserIdentity> CServiceManager::GetUserProperties()
{
    IProvider* const provider = Running();
    return provider ? provider->GetUserProperties() : nullptr;
}

std::unique_ptr<CAddressBookHandle> CServiceManager::GetAddressBook()
{
    IProvider* const provider = Running();
    return provider ? provider->GetAddressBook() : nullptr;
}

std::unique_ptr<CCalendarHandle> CServiceManager::GetCalendar()
{
    IProvider* const provider = Running();
    return provider ? provider->GetCalendar() : nullptr;
}

bool CServiceManager::GetContactFolders(std::vector<OutlookFolderInfo>& folders)
{
    IProvider* const provider = Running();
    return provider && provider->GetContactFolders(folders);
}

std::unique_ptr<IEnumerator> CServiceManager::GetEnumerator(_tagNEnumeratorType type)
{
    if (IProvider* const provider = Running();
        provider && type == Default && m_eEnumeratorType != Default)
        return provider->GetEnumerator(m_eEnumeratorType);
    m_eEnumeratorType = type;
    return nullptr;
}

CServiceManager* GetServiceManager()
{
    if (!g_manager)
        g_manager = new CServiceManager;
    return g_manager;
}

ScopedServiceManager::ScopedServiceManager(CServiceManager& manager)
    : m_previous(std::exchange(g_manager, &manager))
{
}

ScopedServiceManager::~ScopedServiceManager()
{
    g_manager = m_previous;
}
