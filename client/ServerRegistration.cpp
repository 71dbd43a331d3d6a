#include "client/ServerRegistration.h"

#include "automation/Registrar.h"
#include "automation/Registration.h"
#include "client/Failure.h"
#include "client/core/CommandLine.h"
#include "platform/ProgramPath.h"
#include "platform/UniqueHandle.h"

#include <string>

namespace pim
{
namespace
{
constexpr const wchar_t* kServerName = L"PimStoreBridge.exe";
constexpr DWORD kLongestRunMs = 60'000;

// The path of a file in the folder of this program; empty where that is unknown.
std::wstring PathBeside(const wchar_t* name)
{
    const std::wstring program = ProgramPath();
    return program.empty() ? program : program.substr(0, program.rfind(L'\\') + 1) + name;
}

// The exit code of the server's program, which is an HRESULT.
HRESULT RunServer(const std::wstring& path, const wchar_t* change)
{
    std::wstring commandLine = L"\"" + path + L"\" " + change;
    STARTUPINFOW startup = {};
    startup.cb = sizeof(startup);
    PROCESS_INFORMATION created = {};
    if (!CreateProcessW(path.c_str(),
                        commandLine.data(),
                        nullptr,
                        nullptr,
                        FALSE,
                        0,
                        nullptr,
                        nullptr,
                        &startup,
                        &created))
        return HRESULT_FROM_WIN32(GetLastError());
    const UniqueHandle process(created.hProcess);
    const UniqueHandle thread(created.hThread);
    if (WaitForSingleObject(process.Get(), kLongestRunMs) != WAIT_OBJECT_0)
        return HRESULT_FROM_WIN32(ERROR_TIMEOUT);
    DWORD exitCode = 0;
    if (!GetExitCodeProcess(process.Get(), &exitCode))
        return HRESULT_FROM_WIN32(GetLastError());
    return static_cast<HRESULT>(exitCode);
}

HRESULT ChangeUserRegistration(const std::wstring& path, bool isRegister)
{
    CRegistration registration(RegistrationScope::User, path, [](IRegistrar* registrar) {
        return registrar->AddReplacement(L"APPID", kApplicationId);
    });
    return isRegister ? RegisterServer(registration, kClassScripts)
                      : UnregisterServer(registration, kClassScripts);
}
} // namespace

void ChangeRegistration(RegistrationChange change, bool forUser)
{
    const bool isRegister = change == RegistrationChange::Register;
    const std::wstring path = PathBeside(kServerName);
    if (GetFileAttributesW(path.c_str()) == INVALID_FILE_ATTRIBUTES)
        throw Failure{kExitNoServer,
                      L"The server's program is not there: " + path +
                          L". Put pim.exe and PimStoreBridge.exe into one folder."};
    const HRESULT result = forUser ? ChangeUserRegistration(path, isRegister)
                                   : RunServer(path, isRegister ? L"-RegServer" : L"-UnregServer");
    if (SUCCEEDED(result))
        return;
    std::wstring text = isRegister ? L"The server could not be registered ("
                                   : L"The server's registration could not be taken back (";
    text += ResultText(result) + L").";
    if (result == E_ACCESSDENIED && !forUser)
        text += L" Run it again as an administrator, or for yourself alone with --user.";
    throw Failure{kExitFailed, text};
}
} // namespace pim
