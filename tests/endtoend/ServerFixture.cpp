#include "endtoend/ServerFixture.h"

#include "endtoend/Roles.h"

#include <map>

#include <tlhelp32.h>

namespace
{
constexpr wchar_t kLibraryKey[] = L"TypeLib\\{814F6F5C-D022-414A-B904-9AAF66150348}";
// Some runtimes' marshaller looks the library up below the neutral language only.
constexpr wchar_t kNeutralLibraryKey[] =
    L"TypeLib\\{814F6F5C-D022-414A-B904-9AAF66150348}\\1.0\\0\\win64";
constexpr DWORD kRegistrationTimeoutMilliseconds = 60000;

std::map<std::wstring, ClientRole>& Roles()
{
    static std::map<std::wstring, ClientRole> roles;
    return roles;
}

std::wstring ImagePath(DWORD processId)
{
    const UniqueHandle process(OpenProcess(PROCESS_QUERY_LIMITED_INFORMATION, FALSE, processId));
    wchar_t path[32768];
    DWORD length = static_cast<DWORD>(std::size(path));
    if (!process || !QueryFullProcessImageNameW(process.Get(), 0, path, &length))
        return {};
    return {path, length};
}

} // namespace

std::wstring TestProgramPath()
{
    wchar_t path[32768];
    return {path, GetModuleFileNameW(nullptr, path, static_cast<DWORD>(std::size(path)))};
}

std::wstring ServerPath()
{
    const std::wstring own = TestProgramPath();
    return own.substr(0, own.find_last_of(L'\\') + 1) + L"PimStoreBridge.exe";
}

StartedProgram StartProgram(const std::wstring& commandLine)
{
    std::wstring writable = commandLine;
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION information{};
    StartedProgram program;
    if (!CreateProcessW(nullptr,
                        writable.data(),
                        nullptr,
                        nullptr,
                        FALSE,
                        0,
                        nullptr,
                        nullptr,
                        &startup,
                        &information))
        return program;
    CloseHandle(information.hThread);
    program.process.Reset(information.hProcess);
    program.id = information.dwProcessId;
    return program;
}

std::optional<DWORD> RunProgram(const std::wstring& commandLine, DWORD timeoutMilliseconds)
{
    const StartedProgram program = StartProgram(commandLine);
    const HANDLE process = program.process.Get();
    if (!process)
        return std::nullopt;
    if (WaitForSingleObject(process, timeoutMilliseconds) != WAIT_OBJECT_0)
    {
        TerminateProcess(process, 1);
        WaitForSingleObject(process, 10000);
        return std::nullopt;
    }
    DWORD exitCode = 0;
    GetExitCodeProcess(process, &exitCode);
    return exitCode;
}

std::optional<DWORD> RegisterServerAt(const std::wstring& path)
{
    const auto exitCode =
        RunProgram(L'"' + path + L"\" -RegServer", kRegistrationTimeoutMilliseconds);
    if (exitCode == 0u)
        RegSetKeyValueW(HKEY_CLASSES_ROOT,
                        kNeutralLibraryKey,
                        nullptr,
                        REG_SZ,
                        path.c_str(),
                        static_cast<DWORD>((path.size() + 1) * sizeof(wchar_t)));
    return exitCode;
}

std::optional<DWORD> UnregisterServerAt(const std::wstring& path)
{
    const std::wstring neutral = std::wstring(kLibraryKey) + L"\\1.0\\0";
    SHDeleteKeyW(HKEY_CLASSES_ROOT, neutral.c_str());
    return RunProgram(L'"' + path + L"\" -UnregServer", kRegistrationTimeoutMilliseconds);
}

std::vector<DWORD> RunningServers(const std::wstring& path)
{
    std::vector<DWORD> ids;
    const UniqueFile snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Process32FirstW(snapshot.Get(), &entry); more;
         more = Process32NextW(snapshot.Get(), &entry))
        if (StrCmpIW(ImagePath(entry.th32ProcessID).c_str(), path.c_str()) == 0)
            ids.push_back(entry.th32ProcessID);
    return ids;
}

void EndServers(const std::wstring& path)
{
    for (const DWORD id : RunningServers(path))
    {
        const UniqueHandle process(OpenProcess(PROCESS_TERMINATE | SYNCHRONIZE, FALSE, id));
        if (!process)
            continue;
        EndProcess(process.Get(), id);
    }
}

void KillPrograms(std::initializer_list<const StartedProgram*> programs)
{
    for (const StartedProgram* program : programs)
    {
        TerminateProcess(program->process.Get(), 1);
        WaitForSingleObject(program->process.Get(), 10000);
    }
}

// Only a thread with a message queue takes the message.
void AskToEnd(DWORD processId)
{
    const UniqueFile snapshot(CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0));
    THREADENTRY32 entry{};
    entry.dwSize = sizeof(entry);
    for (BOOL more = Thread32First(snapshot.Get(), &entry); more;
         more = Thread32Next(snapshot.Get(), &entry))
        if (entry.th32OwnerProcessID == processId)
            PostThreadMessageW(entry.th32ThreadID, WM_QUIT, 0, 0);
}

bool WaitAndAnswer(HANDLE handle, DWORD timeoutMilliseconds)
{
    DWORD index = 0;
    return CoWaitForMultipleHandles(COWAIT_DEFAULT, timeoutMilliseconds, 1, &handle, &index) ==
           S_OK;
}

void EndProcess(HANDLE process, DWORD processId)
{
    AskToEnd(processId);
    // A server that ends gives back what this client lent it.
    if (WaitAndAnswer(process, 10000))
        return;
    ADD_FAILURE() << "The server does not end when it is asked to.";
    TerminateProcess(process, 1);
    WaitForSingleObject(process, 10000);
}

bool WaitForEnd(DWORD processId, DWORD timeoutMilliseconds)
{
    const UniqueHandle process(OpenProcess(SYNCHRONIZE, FALSE, processId));
    return !process || WaitForSingleObject(process.Get(), timeoutMilliseconds) == WAIT_OBJECT_0;
}

RegisterRole::RegisterRole(const wchar_t* name, ClientRole role)
{
    Roles()[name] = role;
}

std::wstring RoleCommandLine(const std::wstring& name, const std::wstring& arguments)
{
    return L'"' + TestProgramPath() + L"\" --role " + name + L' ' + arguments;
}

std::optional<int> PlayRole(int argc, wchar_t** argv)
{
    if (argc < 3 || std::wstring_view(argv[1]) != L"--role")
        return std::nullopt;
    const auto role = Roles().find(argv[2]);
    return role == Roles().end() ? 3 : role->second({argv + 3, argv + argc});
}

void ServerEnvironment::SetUp()
{
    EndServers();
    ASSERT_EQ(0u, RegisterServerAt(ServerPath()));
}

void ServerEnvironment::TearDown()
{
    EndServers();
    EXPECT_EQ(0u, UnregisterServerAt(ServerPath()));
}
