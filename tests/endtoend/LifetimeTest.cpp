// The life of the real server process: activation, idle end, clients that vanish.
#include "endtoend/PlainServer.h"
#include "endtoend/ProcessUsage.h"
#include "endtoend/ServerFixture.h"
#include "platform/Bstr.h"
#include "platform/UniqueHandle.h"
#include "support/Dispatch.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>

using Microsoft::WRL::ComPtr;
using std::chrono::duration_cast;
using std::chrono::milliseconds;
using std::chrono::steady_clock;

namespace
{
ComPtr<INAppointment> MakeAppointment()
{
    return MakeInServer<INAppointment>(CLSID_NAppointment);
}

std::wstring SubjectOf(INAppointment* appointment)
{
    Bstr subject;
    EXPECT_EQ(S_OK, appointment->get_Subject(subject.Put()));
    return TextOf(subject.Get());
}

void ExpectWorks(INAppointment* appointment)
{
    const Bstr subject(L"Gr\u00fc\u00dfe");
    EXPECT_EQ(S_OK, appointment->put_Subject(subject.Get()));
    EXPECT_EQ(L"Gr\u00fc\u00dfe", SubjectOf(appointment));
}

// Makes as many appointments as the argument says and ends without releasing any.
int Vanish(const std::vector<std::wstring>& arguments)
{
    std::vector<ComPtr<INAppointment>> held;
    for (int i = 0; i < std::stoi(arguments.at(0)); ++i)
        held.push_back(MakeAppointment());
    const bool made = !held.empty() && held.back();
    TerminateProcess(GetCurrentProcess(), made ? 42 : 1);
    return 1;
}
const RegisterRole vanish(L"vanish", &Vanish);

// Makes, uses and releases appointments.
int Work(const std::vector<std::wstring>& arguments)
{
    for (int i = 0; i < std::stoi(arguments.at(0)); ++i)
    {
        const auto appointment = MakeAppointment();
        if (!appointment)
            return 1;
        const Bstr subject(L"s" + std::to_wstring(i));
        if (appointment->put_Subject(subject.Get()) != S_OK ||
            SubjectOf(appointment.Get()) != subject.View())
            return 2;
    }
    return 0;
}
const RegisterRole work(L"work", &Work);

class LifetimeTest : public testing::Test
{
};
} // namespace

TEST_F(LifetimeTest, AnObjectLivesInAnotherProcess)
{
    const auto appointment = MakeAppointment();
    ASSERT_TRUE(appointment);
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    EXPECT_NE(GetCurrentProcessId(), servers[0]);
    ExpectWorks(appointment.Get());

    // The second interface, and late binding.
    ComPtr<INEntityItem> entity;
    ASSERT_EQ(S_OK, appointment.As(&entity));
    const Bstr id(L"0A1B");
    EXPECT_EQ(S_OK, entity->put_EntityID(id.Get()));
    EXPECT_EQ(L"0A1B", DispatchGet(entity.Get(), L"EntityID").value.Text());
    EXPECT_EQ(S_OK, DispatchPut(appointment.Get(), L"Reminder", {Variant(15L)}).result);
    EXPECT_EQ(15u, DispatchGet(appointment.Get(), L"Reminder").value.Value().ulVal);

    // The whole record crosses.
    auto record = std::make_unique<_tagRecurringInfo>();
    auto got = std::make_unique<_tagRecurringInfo>();
    record->eRecurType = Weekly;
    record->tWeekly.bValidWeekday[6] = VARIANT_TRUE;
    record->arrModifiedInstance[31].szLocation[259] = 0xABCD;
    EXPECT_EQ(S_OK, appointment->put_RecurringInfo(record.get()));
    EXPECT_EQ(S_OK, appointment->get_RecurringInfo(got.get()));
    EXPECT_EQ(Weekly, got->eRecurType);
    EXPECT_EQ(VARIANT_TRUE, got->tWeekly.bValidWeekday[6]);
    EXPECT_EQ(0xABCD, got->arrModifiedInstance[31].szLocation[259]);

    // One process serves every object.
    const auto another = MakeAppointment();
    EXPECT_EQ(servers, RunningServers());
}

TEST_F(LifetimeTest, ANullOutputIsAnsweredByTheSystem)
{
    const auto appointment = MakeAppointment();
    EXPECT_EQ(HRESULT_FROM_WIN32(RPC_X_NULL_REF_POINTER), appointment->get_Subject(nullptr));
    // The server has not noticed.
    ExpectWorks(appointment.Get());
}

TEST_F(LifetimeTest, AClassOfTheOtherProcessorWidthIsUnknown)
{
    ComPtr<IUnknown> object;
    EXPECT_EQ(REGDB_E_CLASSNOTREG,
              CoCreateInstance(CLSID_NObjectFactory32,
                               nullptr,
                               CLSCTX_LOCAL_SERVER,
                               IID_IUnknown,
                               reinterpret_cast<void**>(object.GetAddressOf())));
}

TEST_F(LifetimeTest, TheProcessEndsSixSecondsAfterItsLastObject)
{
    EndServers();
    auto appointment = MakeAppointment();
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    {
        // A class object that a client held for a while does not keep the server for good.
        ComPtr<IClassFactory> factory;
        ASSERT_EQ(S_OK,
                  CoGetClassObject(CLSID_NAppointment,
                                   CLSCTX_LOCAL_SERVER,
                                   nullptr,
                                   IID_IClassFactory,
                                   reinterpret_cast<void**>(factory.GetAddressOf())));
        ComPtr<INAppointment> another;
        EXPECT_EQ(S_OK,
                  factory->CreateInstance(nullptr,
                                          IID_INAppointment,
                                          reinterpret_cast<void**>(another.GetAddressOf())));
        ExpectWorks(another.Get());
    }
    appointment.Reset();
    const auto released = steady_clock::now();
    EXPECT_TRUE(WaitForEnd(servers[0], 30000));
    const auto lived = duration_cast<milliseconds>(steady_clock::now() - released).count();
    // 5000 ms idle and 1000 ms pause.
    EXPECT_GE(lived, 5900);

    // The next client gets a new process.
    appointment = MakeAppointment();
    ExpectWorks(appointment.Get());
    ASSERT_EQ(1u, RunningServers().size());
    EXPECT_NE(servers[0], RunningServers()[0]);
}

TEST_F(LifetimeTest, AnObjectInTheCountdownKeepsTheProcess)
{
    auto appointment = MakeAppointment();
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    appointment.Reset();
    Sleep(4300);
    appointment = MakeAppointment();
    EXPECT_EQ(servers, RunningServers());
    // Beyond the end of the first countdown.
    Sleep(3000);
    ExpectWorks(appointment.Get());
    EXPECT_EQ(servers, RunningServers());
}

// 5000 ms after the last object the class objects are gone, and the process lives on for its pause
// of 1000 ms: a client that comes then gets a process of its own.
TEST_F(LifetimeTest, AnObjectMadeInThePauseComesFromANewProcess)
{
    EndServers();
    auto appointment = MakeAppointment();
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    appointment.Reset();
    const auto released = steady_clock::now();
    // Somewhat into the pause; a busy machine may miss it, and then the process is gone.
    Sleep(5400);
    appointment = MakeAppointment();
    ASSERT_TRUE(appointment);
    const auto made = duration_cast<milliseconds>(steady_clock::now() - released).count();
    EXPECT_TRUE(WaitForEnd(servers[0], 30000)) << made;
    ExpectWorks(appointment.Get());
    ASSERT_EQ(1u, RunningServers().size());
    EXPECT_NE(servers[0], RunningServers()[0]);
}

TEST_F(LifetimeTest, AProcessThatNeverHadAnObjectStays)
{
    EndServers();
    const StartedProgram server = StartProgram(L'"' + ServerPath() + L"\" -Embedding");
    ASSERT_TRUE(server.process);
    EXPECT_EQ(WAIT_TIMEOUT, WaitForSingleObject(server.process.Get(), 8000));
    // It serves: no second process comes up for an object.
    const auto appointment = MakeAppointment();
    ExpectWorks(appointment.Get());
    EXPECT_EQ(std::vector<DWORD>{server.id}, RunningServers());
}

TEST_F(LifetimeTest, TenColdStartsEachServe)
{
    for (int i = 0; i < 10; ++i)
    {
        EndServers();
        const auto appointment = MakeAppointment();
        ASSERT_TRUE(appointment);
        ExpectWorks(appointment.Get());
        EXPECT_EQ(1u, RunningServers().size());
    }
}

// What the objects themselves do a thousand times, tests in their own process count.
TEST_F(LifetimeTest, ManyObjectsLeaveNothingBehind)
{
    constexpr int kObjects = 250;
    const auto keeper = MakeAppointment();
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    const PlainServer plain;
    const auto growthOf = [](DWORD processId, REFCLSID clsid) {
        const auto makeMany = [&clsid](int count) {
            for (int i = 0; i < count; ++i)
                ASSERT_TRUE(MakeInServer<INAppointment>(clsid));
        };
        makeMany(50); // until the runtime's own tables have grown
        return SettledGrowthOver(processId, [&] { makeMany(kObjects); });
    };
    const ProcessGrowth runtimeKeeps = growthOf(plain.Id(), kPlainAppointment);
    ExpectNothingLeft(growthOf(servers[0], CLSID_NAppointment), runtimeKeeps, kObjects);
    EXPECT_EQ(servers, RunningServers());
    ExpectWorks(keeper.Get());
}

TEST_F(LifetimeTest, ServesOthersAfterClientsVanished)
{
    const auto keeper = MakeAppointment();
    const auto servers = RunningServers();
    ASSERT_EQ(1u, servers.size());
    for (int i = 0; i < 3; ++i)
    {
        EXPECT_EQ(42u, RunProgram(RoleCommandLine(L"vanish", L"20"), 60000));
        ExpectWorks(keeper.Get());
        EXPECT_EQ(0u, RunProgram(RoleCommandLine(L"work", L"20"), 60000));
        EXPECT_EQ(servers, RunningServers());
    }
    // Some runtimes never take a dead client's references back: do not leave that server behind.
    EndServers();
}
