#include "tests/localstore/LocalStoreSupport.h"

#include "localstore/StorePath.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>

TempFolder::TempFolder()
{
    static int counter = 0;
    wchar_t temp[MAX_PATH] = {};
    GetTempPathW(MAX_PATH, temp);
    m_path = std::wstring(temp) + L"pimstore-test-" + std::to_wstring(GetCurrentProcessId()) +
             L"-" + std::to_wstring(++counter) + L"\\";
    // Numbers of processes come again: one of before may have left its folder.
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
    std::filesystem::create_directories(m_path);
}

TempFolder::~TempFolder()
{
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

void WriteWholeFile(const std::wstring& path, const std::string& bytes)
{
    std::ofstream file(std::filesystem::path(path), std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    ASSERT_TRUE(file.good());
}

std::string ReadWholeFile(const std::wstring& path)
{
    std::ifstream file(std::filesystem::path(path), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::wstring ProgramFolder()
{
    wchar_t path[MAX_PATH] = {};
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    const std::wstring text = path;
    return text.substr(0, text.find_last_of(L'\\') + 1);
}

ChildProcess::ChildProcess(const std::wstring& commandLine)
{
    SECURITY_ATTRIBUTES inherited{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    UniqueHandle writeEnd;
    EXPECT_TRUE(CreatePipe(m_output.Put(), writeEnd.Put(), &inherited, 0));
    SetHandleInformation(m_output.Get(), HANDLE_FLAG_INHERIT, 0);

    STARTUPINFOW startup{};
    startup.cb = sizeof startup;
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = writeEnd.Get();
    startup.hStdError = writeEnd.Get();
    PROCESS_INFORMATION process{};
    std::wstring line = commandLine;
    const BOOL isStarted = CreateProcessW(
        nullptr, line.data(), nullptr, nullptr, TRUE, 0, nullptr, nullptr, &startup, &process);
    const DWORD error = GetLastError();
    EXPECT_TRUE(isStarted) << "error " << error << " of the system";
    m_process.Reset(process.hProcess);
    if (process.hThread)
        CloseHandle(process.hThread);
}

ChildProcess::~ChildProcess()
{
    if (m_process && WaitForSingleObject(m_process.Get(), 0) != WAIT_OBJECT_0)
        Kill();
}

bool ChildProcess::Fill()
{
    char buffer[4096];
    DWORD read = 0;
    if (!ReadFile(m_output.Get(), buffer, sizeof buffer, &read, nullptr) || read == 0)
        return false;
    m_pending.append(buffer, read);
    return true;
}

std::optional<std::string> ChildProcess::ReadLine()
{
    size_t end = m_pending.find('\n');
    while (end == std::string::npos)
    {
        if (!Fill())
            return std::nullopt;
        end = m_pending.find('\n');
    }
    std::string line = m_pending.substr(0, end);
    m_pending.erase(0, end + 1);
    if (!line.empty() && line.back() == '\r')
        line.pop_back();
    return line;
}

std::string ChildProcess::ReadAll()
{
    while (Fill())
    {
    }
    return std::move(m_pending);
}

void ChildProcess::Kill()
{
    TerminateProcess(m_process.Get(), 99);
    WaitForSingleObject(m_process.Get(), 30000);
}

int ChildProcess::Wait(DWORD timeoutMs)
{
    DWORD code = 0;
    if (WaitForSingleObject(m_process.Get(), timeoutMs) != WAIT_OBJECT_0 ||
        !GetExitCodeProcess(m_process.Get(), &code))
        return -1;
    return static_cast<int>(code);
}

StoreSetting::StoreSetting(const std::optional<std::wstring>& path, DWORD type)
{
    wchar_t old[1024] = {};
    DWORD bytes = sizeof old;
    if (RegGetValueW(HKEY_CURRENT_USER,
                     kSettingsKey,
                     kStoreValue,
                     RRF_RT_REG_SZ | RRF_RT_REG_EXPAND_SZ | RRF_NOEXPAND,
                     &m_oldType,
                     old,
                     &bytes) == ERROR_SUCCESS)
        m_old = old;
    if (path)
        EXPECT_EQ(ERROR_SUCCESS,
                  RegSetKeyValueW(HKEY_CURRENT_USER,
                                  kSettingsKey,
                                  kStoreValue,
                                  type,
                                  path->c_str(),
                                  static_cast<DWORD>((path->size() + 1) * sizeof(wchar_t))));
    else
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kSettingsKey, kStoreValue);
}

StoreSetting::~StoreSetting()
{
    if (m_old)
        RegSetKeyValueW(HKEY_CURRENT_USER,
                        kSettingsKey,
                        kStoreValue,
                        m_oldType,
                        m_old->c_str(),
                        static_cast<DWORD>((m_old->size() + 1) * sizeof(wchar_t)));
    else
        RegDeleteKeyValueW(HKEY_CURRENT_USER, kSettingsKey, kStoreValue);
}
