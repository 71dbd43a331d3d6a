#include "automation/Module.h"

#include "automation/EndWatch.h"
#include "automation/Registrar.h"
#include "platform/ProgramPath.h"

namespace
{
std::unique_ptr<IRegistration> MakeRegistration(CServerModule& module)
{
    return std::make_unique<CRegistration>(
        RegistrationScope::Machine, ProgramPath(), [&](IRegistrar* registrar) {
            return module.AddCommonRGSReplacements(registrar);
        });
}
} // namespace

const ModuleSystem& DefaultModuleSystem() noexcept
{
    static constexpr ModuleSystem system = {
        [] { return CoInitialize(nullptr); },
        [] { CoUninitialize(); },
        [](UINT exitCode) { TerminateProcess(GetCurrentProcess(), exitCode); },
        [](const wchar_t* name) { return GetModuleHandleW(name) != nullptr; },
        [] { return CreateEventW(nullptr, FALSE, FALSE, nullptr); },
        [](LPTHREAD_START_ROUTINE routine, void* argument) {
            return CreateThread(nullptr, 0, routine, argument, 0, nullptr);
        },
        &MakeRegistration,
    };
    return system;
}

CPimStoreBridgeModule::CPimStoreBridgeModule(std::span<const ObjectMapEntry> map,
                                             const ModuleSystem& system) noexcept
    : m_dwMainThreadID(GetCurrentThreadId()), m_map(map), m_system(system)
{
    const HRESULT result = m_system.initializeApartment();
    if (SUCCEEDED(result))
    {
        m_bComInitialized = true;
    }
    else if (result != RPC_E_CHANGED_MODE || !m_system.isModuleLoaded(L"Mscoree.dll"))
    {
        // Only a process that the managed runtime started may be in another kind of apartment.
        m_initFailed = true;
        return;
    }
    for (const ObjectMapEntry& row : m_map)
        row.startOrStop(true);
}

CPimStoreBridgeModule::~CPimStoreBridgeModule()
{
    StopMonitor();
    for (const ObjectMapEntry& row : m_map)
        row.startOrStop(false);
    m_classObjects.Revoke();
    ReleaseCaches();
    if (!m_bComInitialized)
        return;
    const EndWatch watch(
        m_leaveTimeoutMilliseconds, m_system.endProcess, static_cast<UINT>(m_exitCode));
    m_system.leaveApartment();
}

int CPimStoreBridgeModule::Run(const wchar_t* commandLine) noexcept
{
    return m_exitCode = Act(commandLine);
}

int CPimStoreBridgeModule::Act(const wchar_t* commandLine) noexcept
{
    if (m_initFailed)
        return -1;
    const ServerSwitch action = ParseCommandLine(commandLine);
    return action == ServerSwitch::None ? Serve() : ApplyRegistration(action);
}

HRESULT CPimStoreBridgeModule::ApplyRegistration(ServerSwitch action) noexcept
{
    try
    {
        std::vector<WORD> scripts;
        for (const ObjectMapEntry& row : m_map)
            scripts.push_back(row.script);
        const std::unique_ptr<IRegistration> registration = m_system.makeRegistration(*this);
        return action == ServerSwitch::RegServer ? RegisterServer(*registration, scripts)
                                                 : UnregisterServer(*registration, scripts);
    }
    catch (...)
    {
        return ResultOfException();
    }
}

HRESULT CPimStoreBridgeModule::Serve() noexcept
{
    HRESULT result = m_classObjects.Register(m_map, CLSCTX_LOCAL_SERVER, REGCLS_MULTIPLEUSE);
    if (result != S_OK)
        m_bDelayShutdown = false;
    else if (m_bDelayShutdown && !StartMonitor())
        result = E_FAIL;

    if (result == S_OK)
    {
        MSG message;
        while (GetMessageW(&message, nullptr, 0, 0) > 0)
        {
            TranslateMessage(&message);
            DispatchMessageW(&message);
        }
    }
    if (FAILED(result))
        return result;

    result = m_classObjects.Revoke();
    // Part of the contract. No call is served meanwhile: an activation finds no class object here
    // any more and starts a new server.
    if (m_bDelayShutdown)
        Sleep(m_dwPause);
    return result;
}

LONG CPimStoreBridgeModule::Unlock() noexcept
{
    const LONG count = CServerModule::Unlock();
    if (count != 0)
        return count;
    if (!m_bDelayShutdown)
    {
        PostThreadMessageW(m_dwMainThreadID, WM_QUIT, 0, 0);
        return 0;
    }
    m_bActivity = true;
    if (const HANDLE event = m_hEventShutdown)
        SetEvent(event);
    return 0;
}

HRESULT CPimStoreBridgeModule::AddCommonRGSReplacements(IRegistrar* registrar) noexcept
{
    return registrar->AddReplacement(L"APPID", kApplicationId);
}

bool CPimStoreBridgeModule::StartMonitor() noexcept
{
    m_hEventShutdown = m_system.createEvent();
    if (!m_hEventShutdown)
        return false;
    m_monitor.Reset(m_system.createThread(&MonitorThread, this));
    if (m_monitor)
        return true;
    CloseHandle(m_hEventShutdown.exchange(nullptr));
    return false;
}

void CPimStoreBridgeModule::StopMonitor() noexcept
{
    if (!m_monitor)
        return;
    m_stopMonitor = true;
    if (const HANDLE event = m_hEventShutdown)
        SetEvent(event);
    WaitForSingleObject(m_monitor.Get(), INFINITE);
    m_monitor.Reset();
}

DWORD WINAPI CPimStoreBridgeModule::MonitorThread(void* module) noexcept
{
    static_cast<CPimStoreBridgeModule*>(module)->MonitorShutdown();
    return 0;
}

void CPimStoreBridgeModule::MonitorShutdown() noexcept
{
    const HANDLE event = m_hEventShutdown;
    do
    {
        WaitForSingleObject(event, INFINITE);
        DWORD wait;
        do
        {
            m_bActivity = false;
            wait = m_stopMonitor ? WAIT_TIMEOUT : WaitForSingleObject(event, m_dwTimeOut);
        } while (wait == WAIT_OBJECT_0);
        // Idle all the time: no unlock since the wait began, and nothing alive.
    } while (!m_stopMonitor && (m_bActivity || m_nLockCnt != 0));

    m_hEventShutdown = nullptr;
    CloseHandle(event);
    if (!m_stopMonitor)
        PostThreadMessageW(m_dwMainThreadID, WM_QUIT, 0, 0);
}
