#include "client/Doctor.h"

#include "client/Server.h"
#include "client/core/ProgramImage.h"
#include "outlook/store/OutlookLibrary.h"
#include "platform/Bstr.h"
#include "platform/UniqueHandle.h"
#include "service/Discovery.h"
#include "service/Registry.h"

#include <tlhelp32.h>

#include <algorithm>
#include <array>
#include <functional>
#include <memory>
#include <tuple>

namespace pim
{
namespace
{
using Microsoft::WRL::ComPtr;

constexpr wchar_t kServerName[] = L"PimStoreBridge.exe";
constexpr wchar_t kAddressBookLibraryKey[] = L"Software\\Microsoft\\WAB\\DLLPath";
constexpr wchar_t kProductName[] = L"\\StringFileInfo\\040904B0\\ProductName";

// Where the name of the user's default profile stands, newest first.
struct ProfileKey
{
    const wchar_t* key;
    const wchar_t* value;
};
constexpr ProfileKey kProfileKeys[] = {
    {L"Software\\Microsoft\\Office\\16.0\\Outlook", L"DefaultProfile"},
    {L"Software\\Microsoft\\Office\\15.0\\Outlook", L"DefaultProfile"},
    {L"Software\\Microsoft\\Windows NT\\CurrentVersion\\Windows Messaging Subsystem\\Profiles",
     L"DefaultProfile"},
};

// --- Calls that may never come back ------------------------------------------------------------

// A call and its result, shared by the two threads, whichever ends last.
struct PendingCall
{
    std::function<HRESULT()> body;
    HRESULT result = E_UNEXPECTED;
};

DWORD WINAPI RunPending(void* argument) noexcept
{
    const std::unique_ptr<std::shared_ptr<PendingCall>> call(
        static_cast<std::shared_ptr<PendingCall>*>(argument));
    try
    {
        const Apartment apartment;
        (*call)->result = (*call)->body();
    }
    catch (...)
    {
        (*call)->result = E_FAIL;
    }
    return 0;
}

// The body runs on a thread of its own and may outlive this call: it must hold what it uses.
Answer Call(std::function<HRESULT()> body)
{
    const auto call = std::make_shared<PendingCall>();
    call->body = std::move(body);
    auto argument = std::make_unique<std::shared_ptr<PendingCall>>(call);
    const UniqueHandle thread(CreateThread(nullptr, 0, &RunPending, argument.get(), 0, nullptr));
    if (!thread)
        return E_OUTOFMEMORY;
    std::ignore = argument.release(); // the thread's own now
    if (WaitForSingleObject(thread.Get(), kLongestAnswerSeconds * 1000) != WAIT_OBJECT_0)
        return std::nullopt;
    return call->result;
}

// --- What can be seen without a call -----------------------------------------------------------

// The program of a LocalServer32 text: up to the second quote, or the whole of it.
std::wstring ProgramOf(const std::wstring& command)
{
    if (!command.starts_with(L'"'))
        return command;
    return command.substr(1, command.find(L'"', 1) - 1);
}

bool FileExists(const std::wstring& path)
{
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

std::optional<std::uint16_t> MachineOfFile(const std::wstring& path)
{
    const UniqueFile file(CreateFileW(path.c_str(),
                                      GENERIC_READ,
                                      FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                      nullptr,
                                      OPEN_EXISTING,
                                      0,
                                      nullptr));
    std::array<std::byte, kProgramHeaderBytes> bytes;
    DWORD count = 0;
    if (!file ||
        !ReadFile(file.Get(), bytes.data(), static_cast<DWORD>(bytes.size()), &count, nullptr))
        return std::nullopt;
    return MachineOfProgram(std::span(bytes).first(count));
}

// Whether the process runs with an administrator's rights; none where that cannot be told.
std::optional<bool> IsElevated(HANDLE process)
{
    UniqueHandle token;
    TOKEN_ELEVATION elevation = {};
    DWORD size = 0;
    if (!OpenProcessToken(process, TOKEN_QUERY, token.Put()) ||
        !GetTokenInformation(token.Get(), TokenElevation, &elevation, sizeof elevation, &size))
        return std::nullopt;
    return elevation.TokenIsElevated != 0;
}

// Whether a server runs whose rights are others than these. One that cannot be looked at has more.
bool RunsWithOtherRights(bool isElevated)
{
    const UniqueFile processes(CreateToolhelp32Snapshot(TH32CS_SNAPPROCESS, 0));
    PROCESSENTRY32W entry = {};
    entry.dwSize = sizeof entry;
    for (BOOL more = Process32FirstW(processes.Get(), &entry); more;
         more = Process32NextW(processes.Get(), &entry))
    {
        if (StrCmpIW(entry.szExeFile, kServerName) != 0)
            continue;
        const UniqueHandle process(
            OpenProcess(PROCESS_QUERY_INFORMATION, FALSE, entry.th32ProcessID));
        if (process ? IsElevated(process.Get()).value_or(!isElevated) != isElevated
                    : GetLastError() == ERROR_ACCESS_DENIED)
            return true;
    }
    return false;
}

// Whether the library is the embedded store, under whatever name: it logs on without a profile.
bool IsOurs(const std::wstring& library)
{
    DWORD ignored = 0;
    std::vector<std::byte> information(GetFileVersionInfoSizeW(library.c_str(), &ignored));
    void* name = nullptr;
    UINT length = 0;
    return !information.empty() &&
           GetFileVersionInfoW(
               library.c_str(), 0, static_cast<DWORD>(information.size()), information.data()) &&
           VerQueryValueW(information.data(), kProductName, &name, &length) && name &&
           StrCmpW(static_cast<const wchar_t*>(name), L"PimStoreBridge") == 0;
}

// Where the address book's library is registered, which is a path with variables in it.
std::wstring AddressBookLibrary()
{
    const std::wstring text = ReadRegistryString(HKEY_LOCAL_MACHINE, kAddressBookLibraryKey, L"");
    wchar_t path[MAX_PATH] = {};
    const DWORD needed = ExpandEnvironmentStringsW(text.c_str(), path, MAX_PATH);
    return needed > 0 && needed <= MAX_PATH ? path : text;
}

std::wstring DefaultProfile()
{
    for (const ProfileKey& row : kProfileKeys)
        if (std::wstring name = ReadRegistryString(HKEY_CURRENT_USER, row.key, row.value);
            !name.empty())
            return name;
    return {};
}

ServerFacts LookAtServer()
{
    wchar_t clsid[40] = {};
    StringFromGUID2(CLSID_NPersonalInformationService, clsid, static_cast<int>(std::size(clsid)));
    const std::wstring key =
        std::wstring(L"Software\\Classes\\CLSID\\") + clsid + L"\\LocalServer32";
    const std::wstring forUser = ReadRegistryString(HKEY_CURRENT_USER, key, L"");
    const std::wstring forMachine = ReadRegistryString(HKEY_LOCAL_MACHINE, key, L"");

    ServerFacts facts;
    facts.isRegisteredForUser = !forUser.empty();
    facts.isRegisteredForMachine = !forMachine.empty();
    facts.isElevated = IsElevated(GetCurrentProcess()).value_or(false);
    // The user's classes come first, except for elevated programs.
    facts.program = ProgramOf(forUser.empty() || facts.isElevated ? forMachine : forUser);
    if (facts.program.empty())
        facts.program = ProgramOf(forUser);
    facts.programExists = FileExists(facts.program);
    facts.runsWithOtherRights = RunsWithOtherRights(facts.isElevated);
    return facts;
}

ProviderFacts LookAtProvider(const std::wstring& name, const std::vector<std::wstring>& installed)
{
    ProviderFacts facts;
    facts.name = name;
    facts.isInstalled = std::any_of(installed.begin(), installed.end(), [&](const auto& one) {
        return StrCmpIW(one.c_str(), name.c_str()) == 0;
    });
    if (!facts.isInstalled)
        return facts;
    facts.library = IsOutlook(name) ? FindOutlookLibrary().path : AddressBookLibrary();
    facts.libraryExists = FileExists(facts.library);
    if (facts.libraryExists)
        facts.libraryMachine = MachineOfFile(facts.library);
    facts.needsProfile = IsOutlook(name) && !IsOurs(facts.library);
    if (facts.needsProfile)
        facts.defaultProfile = DefaultProfile();
    return facts;
}

// --- Calls to the server -----------------------------------------------------------------------

// Held by the thread of a call, which may outlive the examination.
struct ServiceSlot
{
    ComPtr<INPersonalInformationService> service;
    bool isInUse = false; // by another client, which has started it
};

HRESULT OpenService(ServiceSlot& slot)
{
    HRESULT result = CoCreateInstance(CLSID_NPersonalInformationService,
                                      nullptr,
                                      CLSCTX_LOCAL_SERVER,
                                      IID_INPersonalInformationService,
                                      reinterpret_cast<void**>(slot.service.GetAddressOf()));
    if (FAILED(result))
        return result;
    // Only a running service has one of these to give.
    ComPtr<INUserProperties> user;
    ComPtr<INAddressBook> book;
    ComPtr<INCalendar> calendar;
    result = slot.service->GetUserProperties(user.GetAddressOf());
    slot.service->GetAddressBook(book.GetAddressOf());
    slot.service->GetCalendar(calendar.GetAddressOf());
    slot.isInUse = user || book || calendar;
    return result;
}

Answer TryStart(const std::shared_ptr<ServiceSlot>& slot, const std::wstring& name)
{
    return Call([slot, name] {
        const HRESULT result = slot->service->StartService(Bstr(name).Get());
        if (SUCCEEDED(result))
            slot->service->StopService();
        return result;
    });
}
} // namespace

std::vector<Finding> Examine()
{
    ServerFacts server = LookAtServer();
    const auto slot = std::make_shared<ServiceSlot>();
    if (server.isRegisteredForMachine || server.isRegisteredForUser)
    {
        server.wasCalled = true;
        server.activation = Call([slot] { return OpenService(*slot); });
    }
    std::vector<Finding> findings = DiagnoseServer(server);
    const bool answers = server.wasCalled && server.activation && *server.activation >= 0;
    if (answers && slot->isInUse)
        findings.push_back({false,
                            L"Server",
                            L"Another program uses it now, so that no provider was started for a "
                            L"trial."});

    std::vector<std::wstring> installed;
    DiscoverProviders(installed);
    bool mayStart = answers && !slot->isInUse;
    for (const wchar_t* name : kKnownProviders)
    {
        ProviderFacts provider = LookAtProvider(name, installed);
        if (mayStart && provider.isInstalled)
        {
            provider.wasStarted = true;
            provider.start = TryStart(slot, name);
            // A server that hangs answers nobody.
            mayStart = provider.start.has_value();
        }
        const std::vector<Finding> more = DiagnoseProvider(provider);
        findings.insert(findings.end(), more.begin(), more.end());
    }
    return findings;
}
} // namespace pim
