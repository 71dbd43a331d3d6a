// The server module, run in process with a map, a registration and time-outs of the test's own.
#include "automation/Module.h"

#include "automation/Registrar.h"
#include "support/ComAssert.h"
#include "tests/service/FakeBackEnds.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <thread>
#include <vector>

#include "PimStoreBridge.h"

using Microsoft::WRL::ComPtr;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace
{
// {A7B51C0E-5A41-4B6F-8E0B-6F0E1F0D9C21}, served by the modules of this test alone.
constexpr CLSID kTestClass = {
    0xA7B51C0E, 0x5A41, 0x4B6F, {0x8E, 0x0B, 0x6F, 0x0E, 0x1F, 0x0D, 0x9C, 0x21}};

class CNTestItem : public IPersist, public CComObjectRootEx<CComSingleThreadModel>
{
  public:
    static constexpr std::array<InterfaceEntry<CNTestItem>, 1> kInterfaceMap = {
        {{&__uuidof(IPersist), &CastToInterface<CNTestItem, IPersist>}}};
    STDMETHODIMP GetClassID(CLSID* id) override { return (*id = kTestClass), S_OK; }

  protected:
    ~CNTestItem() = default;
};

HRESULT CreateTestItem(IUnknown*, REFIID iid, void** result) noexcept
{
    return CComCreate<CComObject<CNTestItem>>(nullptr, iid, result);
}

std::vector<bool> g_hooks;
void RecordHook(bool starting) noexcept
{
    g_hooks.push_back(starting);
}

constexpr ObjectMapEntry kTestMap[] = {{&kTestClass, 500, &CreateTestItem, &RecordHook},
                                       {&IID_IPersist, 501, &CreateTestItem, &RecordHook}};

// A registration that keeps a record of its steps, and fails the step of a given name.
struct RecordedRegistration : IRegistration
{
    HRESULT ApplyScript(WORD script, bool add) override
    {
        return Step(std::to_string(script) + (add ? "+" : "-"));
    }
    HRESULT ApplyTypeLibrary(bool add) override { return Step(add ? "lib+" : "lib-"); }

    static HRESULT Step(const std::string& name)
    {
        s_steps += name + " ";
        return name == s_failing ? E_ACCESSDENIED : s_result;
    }

    static inline std::string s_steps;
    static inline std::string s_failing;
    static inline HRESULT s_result = S_OK;
};

HANDLE g_event = nullptr;

// The real system but for the registration; single calls are replaced per test.
ModuleSystem TestSystem()
{
    ModuleSystem system = DefaultModuleSystem();
    system.makeRegistration = [](CServerModule&) -> std::unique_ptr<IRegistration> {
        return std::make_unique<RecordedRegistration>();
    };
    return system;
}

class ShortModule : public CPimStoreBridgeModule
{
  public:
    explicit ShortModule(const ModuleSystem& system = DefaultModuleSystem(),
                         std::span<const ObjectMapEntry> map = kTestMap)
        : CPimStoreBridgeModule(map, system)
    {
        m_dwTimeOut = 600; // wide, so that a busy machine does not let it pass between two actions
        m_dwPause = 60;
    }
    using CPimStoreBridgeModule::m_bActivity;
    using CPimStoreBridgeModule::m_bDelayShutdown;
    using CPimStoreBridgeModule::m_dwMainThreadID;
    using CPimStoreBridgeModule::m_dwPause;
    using CPimStoreBridgeModule::m_dwTimeOut;
    using CPimStoreBridgeModule::m_leaveTimeoutMilliseconds;
};

// Runs actions at given milliseconds after the start, on the message loop of this thread.
class Timetable
{
  public:
    void At(unsigned afterMilliseconds, std::function<void()> action)
    {
        const UINT_PTR timer = SetTimer(nullptr, 0, afterMilliseconds, &Fire);
        s_actions.emplace_back(timer, std::move(action));
    }
    ~Timetable()
    {
        for (const auto& [timer, action] : s_actions)
            KillTimer(nullptr, timer);
        s_actions.clear();
    }

  private:
    static void CALLBACK Fire(HWND, UINT, UINT_PTR timer, DWORD)
    {
        KillTimer(nullptr, timer);
        for (auto& [id, action] : s_actions)
            if (id == timer)
                return std::exchange(action, [] {})();
    }
    static inline std::vector<std::pair<UINT_PTR, std::function<void()>>> s_actions;
};

ComPtr<IUnknown> MakeItem()
{
    ComPtr<IUnknown> item;
    EXPECT_EQ(S_OK,
              CoCreateInstance(kTestClass,
                               nullptr,
                               kServerContext,
                               IID_IUnknown,
                               reinterpret_cast<void**>(item.GetAddressOf())));
    return item;
}

bool TakeQuitMessage()
{
    MSG message;
    return PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) && message.message == WM_QUIT;
}

// Serves until the module ends by itself or the actions end it.
struct Outcome
{
    int exitCode;
    long long milliseconds;
};

Outcome Serve(ShortModule& module)
{
    const auto start = steady_clock::now();
    const int exitCode = module.Run(L"server.exe -Embedding");
    const auto ran = std::chrono::duration_cast<milliseconds>(steady_clock::now() - start);
    return {exitCode, ran.count()};
}

// How long a server may take that is to end by itself.
constexpr unsigned kGiveUpMilliseconds = 20000;

class ModuleTest : public testing::Test
{
  protected:
    ModuleTest()
    {
        g_hooks.clear();
        RecordedRegistration::s_steps.clear();
        RecordedRegistration::s_failing.clear();
        RecordedRegistration::s_result = S_OK;
        m_at.At(kGiveUpMilliseconds, [] {
            ADD_FAILURE() << "The server did not end by itself.";
            PostQuitMessage(0);
        });
    }
    Timetable m_at;
};
} // namespace

TEST_F(ModuleTest, StartsWithTheStatedTimesAndCounts)
{
    class Exposed : public CPimStoreBridgeModule
    {
      public:
        using CPimStoreBridgeModule::m_bActivity;
        using CPimStoreBridgeModule::m_bComInitialized;
        using CPimStoreBridgeModule::m_bDelayShutdown;
        using CPimStoreBridgeModule::m_dwMainThreadID;
        using CPimStoreBridgeModule::m_dwPause;
        using CPimStoreBridgeModule::m_dwTimeOut;
        using CPimStoreBridgeModule::m_leaveTimeoutMilliseconds;
    } module;
    EXPECT_EQ(5000u, module.m_dwTimeOut);
    EXPECT_EQ(1000u, module.m_dwPause);
    EXPECT_EQ(3000u, module.m_leaveTimeoutMilliseconds);
    EXPECT_TRUE(module.m_bDelayShutdown);
    EXPECT_FALSE(module.m_bActivity);
    EXPECT_TRUE(module.m_bComInitialized);
    EXPECT_EQ(GetCurrentThreadId(), module.m_dwMainThreadID);
    EXPECT_EQ(0, module.GetLockCount());
    EXPECT_EQ(&module, CServerModule::Current());
}

TEST_F(ModuleTest, LockAndUnlockGiveTheNewCount)
{
    ShortModule module;
    EXPECT_EQ(1, module.Lock());
    EXPECT_EQ(2, module.Lock());
    EXPECT_EQ(2, module.GetLockCount());
    EXPECT_EQ(1, module.Unlock());
    EXPECT_FALSE(module.m_bActivity);
    EXPECT_EQ(0, module.Unlock());
    EXPECT_TRUE(module.m_bActivity);
    EXPECT_FALSE(TakeQuitMessage());
}

TEST_F(ModuleTest, WithoutDelayTheLastUnlockQuitsAtOnce)
{
    ShortModule module;
    module.m_bDelayShutdown = false;
    module.Lock();
    module.Lock();
    EXPECT_EQ(1, module.Unlock());
    EXPECT_FALSE(TakeQuitMessage());
    EXPECT_EQ(0, module.Unlock());
    EXPECT_TRUE(TakeQuitMessage());
    EXPECT_FALSE(module.m_bActivity);
}

TEST_F(ModuleTest, CallsEveryStartAndStopHook)
{
    {
        ShortModule module;
        EXPECT_EQ((std::vector<bool>{true, true}), g_hooks);
    }
    EXPECT_EQ((std::vector<bool>{true, true, false, false}), g_hooks);
}

TEST_F(ModuleTest, TheGlobalInterfaceTableIsMadeOnce)
{
    ShortModule module;
    ComPtr<IGlobalInterfaceTable> first;
    ComPtr<IGlobalInterfaceTable> second;
    EXPECT_EQ(S_OK, module.GetGITPtr(first.GetAddressOf()));
    EXPECT_EQ(S_OK, module.GetGITPtr(second.GetAddressOf()));
    EXPECT_NE(nullptr, first.Get());
    EXPECT_EQ(first.Get(), second.Get());
    EXPECT_EQ(E_POINTER, module.GetGITPtr(nullptr));
}

TEST_F(ModuleTest, AModuleThatCannotEnterItsApartmentRefusesToRun)
{
    ModuleSystem system = TestSystem();
    system.initializeApartment = []() -> HRESULT { return E_OUTOFMEMORY; };
    {
        ShortModule module(system);
        EXPECT_TRUE(module.InitFailed());
        EXPECT_EQ(-1, module.Run(L"server.exe"));
        EXPECT_EQ(-1, module.Run(L"server.exe -RegServer"));
    }
    EXPECT_EQ("", RecordedRegistration::s_steps);
}

TEST_F(ModuleTest, AnotherApartmentIsAcceptedFromTheManagedRuntimeOnly)
{
    ModuleSystem system = TestSystem();
    system.initializeApartment = []() -> HRESULT { return RPC_E_CHANGED_MODE; };
    system.isModuleLoaded = [](const wchar_t*) { return false; };
    EXPECT_EQ(-1, ShortModule(system).Run(L"server.exe -RegServer"));
    EXPECT_EQ((std::vector<bool>{false, false}), g_hooks);
    g_hooks.clear();

    system.isModuleLoaded = [](const wchar_t* name) {
        return std::wstring_view(name) == L"Mscoree.dll";
    };
    EXPECT_EQ(S_OK, ShortModule(system).Run(L"server.exe -RegServer"));
    EXPECT_EQ((std::vector<bool>{true, true, false, false}), g_hooks);

    // In an apartment of another kind for real, with no managed runtime.
    bool failed = false;
    std::thread([&] {
        CoInitializeEx(nullptr, COINIT_MULTITHREADED);
        {
            ShortModule module;
            failed = module.InitFailed();
        }
        CoUninitialize();
    }).join();
    EXPECT_TRUE(failed);
}

TEST_F(ModuleTest, RegistersTheApplicationThenTheClassesThenTheLibrary)
{
    const ModuleSystem system = TestSystem();
    EXPECT_EQ(S_OK, ShortModule(system).Run(L"server.exe -RegServer"));
    EXPECT_EQ("101+ 500+ 501+ lib+ ", RecordedRegistration::s_steps);
    RecordedRegistration::s_steps.clear();
    EXPECT_EQ(S_OK, ShortModule(system).Run(L"server.exe /unregserver"));
    EXPECT_EQ("500- 501- lib- 101- ", RecordedRegistration::s_steps);
}

TEST_F(ModuleTest, AFailingRegistrationStepEndsItAndIsTheExitCode)
{
    const struct
    {
        const wchar_t* commandLine;
        const char* failing;
        const char* steps;
    } cases[] = {
        {L"server.exe -RegServer", "101+", "101+ "},
        {L"server.exe -RegServer", "500+", "101+ 500+ "},
        {L"server.exe -RegServer", "501+", "101+ 500+ 501+ "},
        {L"server.exe -RegServer", "lib+", "101+ 500+ 501+ lib+ "},
        {L"server.exe -UnregServer", "500-", "500- "},
        {L"server.exe -UnregServer", "501-", "500- 501- "},
        {L"server.exe -UnregServer", "lib-", "500- 501- lib- "},
        {L"server.exe -UnregServer", "101-", "500- 501- lib- 101- "},
    };
    const ModuleSystem system = TestSystem();
    for (const auto& one : cases)
    {
        RecordedRegistration::s_failing = one.failing;
        RecordedRegistration::s_steps.clear();
        EXPECT_EQ(E_ACCESSDENIED, ShortModule(system).Run(one.commandLine)) << one.failing;
        EXPECT_EQ(one.steps, RecordedRegistration::s_steps);
    }
}

TEST_F(ModuleTest, TheExitCodeOfARegistrationIsThatOfItsLastStep)
{
    RecordedRegistration::s_result = S_FALSE;
    EXPECT_EQ(S_FALSE, ShortModule(TestSystem()).Run(L"server.exe -RegServer"));
}

TEST_F(ModuleTest, AFailureToMakeTheRegistrationIsTheExitCode)
{
    ModuleSystem system = TestSystem();
    system.makeRegistration = [](CServerModule&) -> std::unique_ptr<IRegistration> {
        throw std::bad_alloc();
    };
    EXPECT_EQ(E_OUTOFMEMORY, ShortModule(system).Run(L"server.exe -RegServer"));
}

TEST_F(ModuleTest, AddsTheApplicationIdToTheScriptsSubstitutions)
{
    struct Recorder : IRegistrar
    {
        std::wstring pairs;
        STDMETHODIMP QueryInterface(REFIID, void**) override { return E_NOINTERFACE; }
        STDMETHODIMP_(ULONG) AddRef() override { return 1; }
        STDMETHODIMP_(ULONG) Release() override { return 1; }
        STDMETHODIMP AddReplacement(LPCOLESTR key, LPCOLESTR item) override
        {
            pairs += std::wstring(key) + L"=" + item + L";";
            return S_FALSE;
        }
        STDMETHODIMP ClearReplacements() override { return E_NOTIMPL; }
        STDMETHODIMP ResourceRegisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) override
        {
            return E_NOTIMPL;
        }
        STDMETHODIMP ResourceUnregisterSz(LPCOLESTR, LPCOLESTR, LPCOLESTR) override
        {
            return E_NOTIMPL;
        }
        STDMETHODIMP FileRegister(LPCOLESTR) override { return E_NOTIMPL; }
        STDMETHODIMP FileUnregister(LPCOLESTR) override { return E_NOTIMPL; }
        STDMETHODIMP StringRegister(LPCOLESTR) override { return E_NOTIMPL; }
        STDMETHODIMP StringUnregister(LPCOLESTR) override { return E_NOTIMPL; }
        STDMETHODIMP ResourceRegister(LPCOLESTR, UINT, LPCOLESTR) override { return E_NOTIMPL; }
        STDMETHODIMP ResourceUnregister(LPCOLESTR, UINT, LPCOLESTR) override { return E_NOTIMPL; }
    } registrar;
    ShortModule module;
    EXPECT_EQ(S_FALSE, module.AddCommonRGSReplacements(&registrar));
    EXPECT_EQ(L"APPID={7D0DF4B7-8A10-4AA6-900B-9B106B7D0331};", registrar.pairs);
}

TEST_F(ModuleTest, ThePathInAScriptIsQuotedAndItsApostrophesDoubled)
{
    EXPECT_EQ(L"\"C:\\a b\\o''neil''s.exe\"", ScriptTextOfPath(L"C:\\a b\\o'neil's.exe"));
    EXPECT_EQ(L"\"C:\\100%\\x-y.exe\"", ScriptTextOfPath(L"C:\\100%\\x-y.exe"));
}

TEST_F(ModuleTest, EndsAfterItsLastObjectWasGoneForTheTimeOut)
{
    ShortModule module;
    m_at.At(50, [] { MakeItem(); });
    const Outcome outcome = Serve(module);
    EXPECT_EQ(S_OK, outcome.exitCode);
    EXPECT_GE(outcome.milliseconds, 50 + 600 + 60);
    // The class objects are gone with it.
    ComPtr<IUnknown> item;
    EXPECT_EQ(REGDB_E_CLASSNOTREG,
              CoCreateInstance(kTestClass,
                               nullptr,
                               kServerContext,
                               IID_IUnknown,
                               reinterpret_cast<void**>(item.GetAddressOf())));
}

// A client that stops nothing leaves its provider to the end of the process, without a logoff.
TEST_F(ModuleTest, TheEndOfTheServerAbandonsARunningProvider)
{
    FakeBackEnds backEnds;
    {
        ShortModule module;
        m_at.At(50, [&] {
            EXPECT_EQ(S_OK, backEnds.manager.StartService(L"Windows Mail"));
            MakeItem();
        });
        EXPECT_EQ(S_OK, Serve(module).exitCode);
    }
    EXPECT_EQ((CallLog{L"start Windows Mail"}), backEnds.log);
    EXPECT_NE(nullptr, backEnds.manager.GetCalendar());
}

TEST_F(ModuleTest, AServerThatNeverHadAnObjectDoesNotEndByItself)
{
    ShortModule module;
    m_at.At(2000, [] { PostQuitMessage(0); });
    const Outcome outcome = Serve(module);
    EXPECT_EQ(S_OK, outcome.exitCode);
    EXPECT_GE(outcome.milliseconds, 2000 + 60);
}

TEST_F(ModuleTest, AnObjectInTheCountdownRestartsIt)
{
    ShortModule module;
    m_at.At(50, [] { MakeItem(); });
    m_at.At(250, [] { MakeItem(); });
    m_at.At(450, [] { MakeItem(); });
    const Outcome outcome = Serve(module);
    EXPECT_GE(outcome.milliseconds, 450 + 600 + 60);
}

TEST_F(ModuleTest, AnObjectThatLivesThroughTheCountdownKeepsTheServer)
{
    ShortModule module;
    ComPtr<IUnknown> kept;
    m_at.At(50, [] { MakeItem(); });
    m_at.At(200, [&] { kept = MakeItem(); });
    m_at.At(1500, [&] { kept.Reset(); });
    const Outcome outcome = Serve(module);
    EXPECT_GE(outcome.milliseconds, 1500 + 600 + 60);
}

TEST_F(ModuleTest, LockServerKeepsTheServerWithoutAnyObject)
{
    ShortModule module;
    ComPtr<IClassFactory> factory;
    m_at.At(20, [&] {
        ASSERT_EQ(S_OK,
                  CoGetClassObject(kTestClass,
                                   kServerContext,
                                   nullptr,
                                   IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.GetAddressOf())));
        factory->LockServer(TRUE);
        factory.Reset();
    });
    m_at.At(1500, [&] {
        EXPECT_EQ(1, module.GetLockCount());
        CoGetClassObject(kTestClass,
                         kServerContext,
                         nullptr,
                         IID_IClassFactory,
                         reinterpret_cast<void**>(factory.GetAddressOf()));
        factory->LockServer(FALSE);
        factory.Reset();
    });
    const Outcome outcome = Serve(module);
    EXPECT_GE(outcome.milliseconds, 1500 + 600 + 60);
}

TEST_F(ModuleTest, AHeldClassFactoryKeepsTheServer)
{
    ShortModule module;
    ComPtr<IClassFactory> factory;
    m_at.At(20, [&] {
        EXPECT_EQ(0, module.GetLockCount()); // registered, but held by nobody outside
        CoGetClassObject(kTestClass,
                         kServerContext,
                         nullptr,
                         IID_IClassFactory,
                         reinterpret_cast<void**>(factory.GetAddressOf()));
        EXPECT_EQ(1, module.GetLockCount());
    });
    m_at.At(1500, [&] { factory.Reset(); });
    const Outcome outcome = Serve(module);
    EXPECT_GE(outcome.milliseconds, 1500 + 600 + 60);
}

TEST_F(ModuleTest, WithoutAnEventItEndsBeforeItServes)
{
    ModuleSystem system = TestSystem();
    system.createEvent = []() -> HANDLE { return nullptr; };
    ShortModule module(system);
    EXPECT_EQ(E_FAIL, Serve(module).exitCode);
}

TEST_F(ModuleTest, WithoutAMonitorThreadItClosesTheEventAndEnds)
{
    ModuleSystem system = TestSystem();
    system.createEvent = [] { return g_event = CreateEventW(nullptr, FALSE, FALSE, nullptr); };
    system.createThread = [](LPTHREAD_START_ROUTINE, void*) -> HANDLE { return nullptr; };
    ShortModule module(system);
    EXPECT_EQ(E_FAIL, Serve(module).exitCode);
    DWORD flags = 0;
    EXPECT_FALSE(GetHandleInformation(g_event, &flags));
    module.Lock();
    EXPECT_EQ(0, module.Unlock()); // nobody to wake
}

TEST_F(ModuleTest, AnEmptyMapIsNoFailureButServesNothing)
{
    ShortModule module(DefaultModuleSystem(), {});
    module.m_dwPause = INFINITE; // a pause would never end
    EXPECT_EQ(S_OK, Serve(module).exitCode);
    EXPECT_FALSE(module.m_bDelayShutdown);
}

TEST_F(ModuleTest, ClassObjectsThatCannotBeRegisteredAreTheExitCode)
{
    int exitCode = 0;
    bool delay = true;
    std::thread([&] {
        // No apartment on this thread: the runtime refuses the class objects.
        ModuleSystem system = TestSystem();
        system.initializeApartment = []() -> HRESULT { return RPC_E_CHANGED_MODE; };
        system.isModuleLoaded = [](const wchar_t*) { return true; };
        ShortModule module(system);
        exitCode = module.Run(L"server.exe");
        delay = module.m_bDelayShutdown;
    }).join();
    EXPECT_EQ(CO_E_NOTINITIALIZED, exitCode);
    EXPECT_FALSE(delay);
}

namespace
{
// What the end of a module did to its apartment and its process.
struct EndRecord
{
    UniqueHandle processEnded{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::atomic<int> ends = 0;
    std::atomic<UINT> exitCode = 0;
    bool hasLeft = false;
};
EndRecord* g_end = nullptr;

ModuleSystem SystemWithEndRecord(EndRecord& record)
{
    g_end = &record;
    ModuleSystem system = TestSystem();
    system.endProcess = [](UINT exitCode) {
        g_end->exitCode = exitCode;
        ++g_end->ends;
        SetEvent(g_end->processEnded.Get());
    };
    return system;
}
} // namespace

TEST_F(ModuleTest, AClientThatNeverTakesItsObjectsBackEndsTheProcessAtOnce)
{
    EndRecord record;
    ModuleSystem system = SystemWithEndRecord(record);
    system.leaveApartment = [] {
        g_end->hasLeft = WaitForSingleObject(g_end->processEnded.Get(), 10'000) == WAIT_OBJECT_0;
        CoUninitialize();
    };
    RecordedRegistration::s_result = S_FALSE;
    {
        ShortModule module(system);
        module.m_leaveTimeoutMilliseconds = 50;
        EXPECT_EQ(S_FALSE, module.Run(L"server.exe -RegServer"));
        EXPECT_EQ(0, record.ends);
    }
    EXPECT_TRUE(record.hasLeft);
    EXPECT_EQ(1, record.ends);
    EXPECT_EQ(static_cast<UINT>(S_FALSE), record.exitCode);
}

TEST_F(ModuleTest, AnApartmentThatIsLeftInTimeLeavesTheProcessToItsOwnEnd)
{
    EndRecord record;
    ModuleSystem system = SystemWithEndRecord(record);
    system.leaveApartment = [] {
        g_end->hasLeft = true;
        CoUninitialize();
    };
    {
        ShortModule module(system);
        // Wide: the watch may not make the end wait for it either.
        module.m_leaveTimeoutMilliseconds = 60'000;
    }
    EXPECT_TRUE(record.hasLeft);
    EXPECT_EQ(0, record.ends);
}
