#include "endtoend/ChildProgram.h"

#include <atomic>
#include <fstream>
#include <iterator>

namespace
{
constexpr DWORD kLongestRunMilliseconds = 120'000;

std::filesystem::path NewPath()
{
    static std::atomic<unsigned> counter{0};
    return std::filesystem::temp_directory_path() /
           (L"pim-child-" + std::to_wstring(GetCurrentProcessId()) + L"-" +
            std::to_wstring(++counter));
}

UniqueFile OpenInheritable(const std::filesystem::path& path)
{
    SECURITY_ATTRIBUTES inheritable{sizeof(SECURITY_ATTRIBUTES), nullptr, TRUE};
    return UniqueFile(CreateFileW(path.c_str(),
                                  GENERIC_WRITE,
                                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                                  &inheritable,
                                  CREATE_ALWAYS,
                                  FILE_ATTRIBUTE_NORMAL,
                                  nullptr));
}

std::string ReadAll(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}
} // namespace

ChildProgram::ChildProgram(const std::wstring& commandLine)
    : m_outputPath(NewPath()), m_errorPath(NewPath())
{
    const UniqueFile output = OpenInheritable(m_outputPath);
    const UniqueFile errors = OpenInheritable(m_errorPath);
    STARTUPINFOW startup{};
    startup.cb = sizeof(startup);
    startup.dwFlags = STARTF_USESTDHANDLES;
    startup.hStdOutput = output.Get();
    startup.hStdError = errors.Get();
    std::wstring writable = commandLine;
    PROCESS_INFORMATION information{};
    if (!CreateProcessW(nullptr,
                        writable.data(),
                        nullptr,
                        nullptr,
                        TRUE,
                        0,
                        nullptr,
                        nullptr,
                        &startup,
                        &information))
        return;
    CloseHandle(information.hThread);
    m_process.Reset(information.hProcess);
}

ChildProgram::~ChildProgram()
{
    std::error_code ignored;
    std::filesystem::remove(m_outputPath, ignored);
    std::filesystem::remove(m_errorPath, ignored);
}

ProgramResult ChildProgram::Wait(DWORD timeoutMilliseconds)
{
    ProgramResult result;
    if (!m_process)
        return result;
    if (WaitForSingleObject(m_process.Get(), timeoutMilliseconds) == WAIT_OBJECT_0)
    {
        DWORD exitCode = 0;
        GetExitCodeProcess(m_process.Get(), &exitCode);
        result.exitCode = exitCode;
    }
    else
    {
        TerminateProcess(m_process.Get(), 1);
        WaitForSingleObject(m_process.Get(), 10000);
    }
    result.output = ReadAll(m_outputPath);
    result.errors = ReadAll(m_errorPath);
    return result;
}

ProgramResult RunAndRead(const std::wstring& commandLine)
{
    return ChildProgram(commandLine).Wait(kLongestRunMilliseconds);
}
