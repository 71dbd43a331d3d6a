#include "endtoend/MessageStore.h"

#include "endtoend/CalendarFolder.h"
#include "endtoend/ChildProgram.h"

#include <fstream>

namespace
{
constexpr wchar_t kMarshallerKey[] =
    L"Software\\Classes\\CLSID\\{00020424-0000-0000-C000-000000000046}\\InprocServer32";

bool HasValue(const wchar_t* key, const wchar_t* name)
{
    return RegGetValueW(HKEY_LOCAL_MACHINE, key, name, RRF_RT_ANY, nullptr, nullptr, nullptr) ==
           ERROR_SUCCESS;
}

void RunPimStore(const std::wstring& arguments)
{
    const ProgramResult result = RunAndRead(ProgramBeside(L"pimstore.exe") + L' ' + arguments);
    EXPECT_EQ(0u, result.exitCode) << result.output << result.errors;
}

void RegisterProxy(const wchar_t* change)
{
    EXPECT_EQ(0u,
              RunAndRead(std::wstring(L"regsvr32.exe /s ") + change +
                         ProgramBeside(L"PimRecordProxy.dll"))
                  .exitCode);
}
} // namespace

std::filesystem::path InstalledStoreLibrary()
{
    wchar_t path[MAX_PATH] = {};
    SHGetSpecialFolderPathW(nullptr, path, CSIDL_PROGRAM_FILES, FALSE);
    return std::filesystem::path(path) / "Common Files" / "System" / "MSMAPI" / "0" /
           "MSMAPI32.DLL";
}

MessageStore::MessageStore(RecordArrays arrays)
{
    EndServers();
    m_store.Set(DatabasePath().wstring());
    m_defaultClient.Set(L"Microsoft Outlook");
    m_hasOwnLibrary = !HasValue(L"Software\\Clients\\Mail\\Microsoft Outlook", L"MSIComponentID");
    RunPimStore(L"install --store");
    if (arrays == RecordArrays::LeftToTheRuntime)
        return;
    m_hasOwnProxy = !HasValue(kMarshallerKey, L"BeforePimRecordProxy");
    RegisterProxy(L"");
}

MessageStore::~MessageStore()
{
    EndServers();
    if (m_hasOwnProxy)
        RegisterProxy(L"/u ");
    if (m_hasOwnLibrary)
        RunPimStore(L"remove --store");
}

void MessageStore::Load(const std::string& json) const
{
    const std::filesystem::path path = m_folder.Path() / L"load.json";
    std::ofstream(path, std::ios::binary) << json;
    LoadFile(path);
}

void MessageStore::LoadFile(const std::filesystem::path& path) const
{
    RunPimStore(L"load --replace \"" + std::filesystem::absolute(path).wstring() + L'"');
}

std::string MessageStore::Dump() const
{
    const ProgramResult result = RunAndRead(ProgramBeside(L"pimstore.exe") + L" dump");
    EXPECT_EQ(0u, result.exitCode) << result.errors;
    return result.output;
}
