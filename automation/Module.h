// The one module object of the server's process: enters the apartment, answers the registration
// switches, publishes the class objects, runs the message loop, and ends the process a fixed time
// after the last object has gone.
//
// Two threads: the main thread, which built the module and runs every automation call, and the
// monitor thread, which only waits and posts the quit message. At the end an EndWatch has its own.
#pragma once

#include "automation/ClassObjects.h"
#include "automation/CommandLine.h"
#include "automation/Registration.h"
#include "automation/base/ServerModule.h"
#include "platform/UniqueHandle.h"

#include <atomic>
#include <memory>
#include <vector>

// What the module asks of the system, replaceable in tests.
struct ModuleSystem
{
    HRESULT (*initializeApartment)();
    // Waits for every client whose objects this process still holds.
    void (*leaveApartment)();
    // Ends the process at once, whatever it waits for.
    void (*endProcess)(UINT exitCode);
    bool (*isModuleLoaded)(const wchar_t* name);
    // An auto-reset event, not signalled; null on failure.
    HANDLE (*createEvent)();
    // A running thread; null on failure.
    HANDLE (*createThread)(LPTHREAD_START_ROUTINE routine, void* argument);
    std::unique_ptr<IRegistration> (*makeRegistration)(CServerModule& module);
};

// The real system.
const ModuleSystem& DefaultModuleSystem() noexcept;

class CPimStoreBridgeModule : public CServerModule
{
  public:
    // Enters a single-threaded apartment and calls the map's start hooks. Where the apartment
    // cannot be entered InitFailed() is true. Map and system must outlive the module.
    explicit CPimStoreBridgeModule(std::span<const ObjectMapEntry> map = GetObjectMap(),
                                   const ModuleSystem& system = DefaultModuleSystem()) noexcept;
    // Calls the map's stop hooks, frees class factories and caches, leaves the apartment. Where
    // clients keep it from leaving for too long the process ends at once, with Run's exit code.
    ~CPimStoreBridgeModule() override;

    // Does what the command line asks for. Returns the process's exit code: the HRESULT of the
    // last registration step; as a server that of revoking the class objects, or the failure that
    // kept it from serving; -1 where the module could not be set up.
    int Run(const wchar_t* commandLine) noexcept;

    LONG Unlock() noexcept override;
    HRESULT AddCommonRGSReplacements(IRegistrar* registrar) noexcept override;

  protected:
    DWORD m_dwTimeOut = 5000; // milliseconds that the server must stay idle before it quits
    DWORD m_dwPause = 1000;   // milliseconds between revoking the class objects and the exit
    DWORD m_leaveTimeoutMilliseconds = 3000; // how long leaving the apartment may take
    // Quit through the monitor thread rather than at once.
    bool m_bDelayShutdown = true;
    // Set by the last unlock, cleared by the monitor thread.
    std::atomic<bool> m_bActivity = false;
    // This module entered the apartment and owes leaving it.
    bool m_bComInitialized = false;
    DWORD m_dwMainThreadID;

  private:
    int Act(const wchar_t* commandLine) noexcept;
    HRESULT ApplyRegistration(ServerSwitch action) noexcept;
    HRESULT Serve() noexcept;
    bool StartMonitor() noexcept;
    void StopMonitor() noexcept;
    void MonitorShutdown() noexcept;
    static DWORD WINAPI MonitorThread(void* module) noexcept;

    std::span<const ObjectMapEntry> m_map;
    const ModuleSystem& m_system;
    int m_exitCode = 0;
    ClassObjects m_classObjects;
    // Wakes the monitor thread, which closes it when it ends by itself.
    std::atomic<HANDLE> m_hEventShutdown = nullptr;
    UniqueHandle m_monitor;
    std::atomic<bool> m_stopMonitor = false;
};
