// What the tests of the embedded store share: folders of their own, child processes, the setting
// that names the store.
#pragma once

#include "platform/UniqueHandle.h"
#include "platform/WindowsHeaders.h"

#include <optional>
#include <string>

// A new folder below the user's temporary one; removed with everything in it.
class TempFolder
{
  public:
    TempFolder();
    ~TempFolder();
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    // With a trailing backslash.
    const std::wstring& Path() const noexcept { return m_path; }
    std::wstring File(const std::wstring& name) const { return m_path + name; }

  private:
    std::wstring m_path;
};

void WriteWholeFile(const std::wstring& path, const std::string& bytes);
std::string ReadWholeFile(const std::wstring& path);

// The folder of the running test program, with a trailing backslash.
std::wstring ProgramFolder();

// A child process with its standard output in a pipe.
class ChildProcess
{
  public:
    explicit ChildProcess(const std::wstring& commandLine);
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    // The next line of its output without its end; nothing at the end of the output.
    std::optional<std::string> ReadLine();
    // The rest of the output.
    std::string ReadAll();
    void Kill();
    // Waits for the end; -1 where it does not come in time.
    int Wait(DWORD timeoutMs = 60000);

  private:
    bool Fill();

    UniqueHandle m_process;
    UniqueHandle m_output;
    std::string m_pending;
};

// Sets the value that names the store, or takes it away; the old value comes back at the end.
class StoreSetting
{
  public:
    explicit StoreSetting(const std::optional<std::wstring>& path, DWORD type = REG_SZ);
    ~StoreSetting();
    StoreSetting(const StoreSetting&) = delete;
    StoreSetting& operator=(const StoreSetting&) = delete;

  private:
    std::optional<std::wstring> m_old;
    DWORD m_oldType = REG_SZ;
};
