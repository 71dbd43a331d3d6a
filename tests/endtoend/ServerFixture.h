// What tests against the real server process share. The server is the PimStoreBridge.exe beside
// the test program; it is registered while the tests run and taken out at their end.
//
// A cold activation takes the runtime about a second: tests that do not need a fresh process keep
// the server warm by leaving it alone.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "PimStoreBridge.h"

// The full path of the test program, and of the server beside it.
std::wstring TestProgramPath();
std::wstring ServerPath();

// A process that the test started.
struct StartedProgram
{
    UniqueHandle process; // null where it could not be started
    DWORD id = 0;
};
StartedProgram StartProgram(const std::wstring& commandLine);

// Runs a program to its end and gives its exit code. Empty where it did not end in time; it is then
// ended by force. Not for programs that may serve classes, see EndServers.
std::optional<DWORD> RunProgram(const std::wstring& commandLine, DWORD timeoutMilliseconds);

// Runs the server at that path with "-RegServer" or "-UnregServer" and gives its exit code. After a
// registration also adds what the interface marshaller of some runtimes needs beside it, and takes
// it out with the registration.
std::optional<DWORD> RegisterServerAt(const std::wstring& path);
std::optional<DWORD> UnregisterServerAt(const std::wstring& path);

// The ids of the running processes of the server at that path.
std::vector<DWORD> RunningServers(const std::wstring& path = ServerPath());

// Asks them to end, as a log-off would, and waits until they are gone. By force only where a
// process does not follow: a killed server's class objects stay behind in the tables of some
// runtimes, and keep new servers from being started.
void EndServers(const std::wstring& path = ServerPath());
// The same for one process. Calls to this client's objects are answered meanwhile.
void EndProcess(HANDLE process, DWORD processId);

// Ends programs that hang, by force and one after the other.
void KillPrograms(std::initializer_list<const StartedProgram*> programs);

// Asks a process to end, as a log-off would, and goes on at once.
void AskToEnd(DWORD processId);

// Waits for an event or the end of a process, and answers calls to this client's objects meanwhile.
// False where it did not come in time.
bool WaitAndAnswer(HANDLE handle, DWORD timeoutMilliseconds);

// Waits until the process is gone; false where it still runs after that time.
bool WaitForEnd(DWORD processId, DWORD timeoutMilliseconds);

// Makes an object in the server's process; null with a test failure where that fails.
template <typename Interface>
Microsoft::WRL::ComPtr<Interface> MakeInServer(REFCLSID clsid, REFIID iid = __uuidof(Interface))
{
    Microsoft::WRL::ComPtr<Interface> object;
    const HRESULT result = CoCreateInstance(
        clsid, nullptr, CLSCTX_LOCAL_SERVER, iid, reinterpret_cast<void**>(object.GetAddressOf()));
    EXPECT_EQ(S_OK, result);
    return object;
}

// A part that the test program plays in a process of its own, as another client of the server.
// Returns the exit code.
using ClientRole = int (*)(const std::vector<std::wstring>& arguments);

// Names a role; RunProgram(RoleCommandLine(name, arguments), ...) then plays it. For objects of
// static life: static const RegisterRole role(L"walker", &Walk);
struct RegisterRole
{
    RegisterRole(const wchar_t* name, ClientRole role);
};
std::wstring RoleCommandLine(const std::wstring& name, const std::wstring& arguments = {});

// Registers the server before the first test and takes it out after the last one.
class ServerEnvironment : public testing::Environment
{
  public:
    void SetUp() override;
    void TearDown() override;
};
