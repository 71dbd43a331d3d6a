// A folder of a test's own, empty at first and removed at the end. Portable.
//
// Its path depends on the given name alone, so that a process which a test starts to die in finds
// the same one.
#pragma once

#include <filesystem>
#include <string>
#include <system_error>

class TempFolder
{
  public:
    explicit TempFolder(const std::string& name)
        : m_path(std::filesystem::current_path() / ("pim-test-" + name))
    {
        std::filesystem::remove_all(m_path);
        std::filesystem::create_directories(m_path);
    }
    ~TempFolder()
    {
        // What a failed test left open or protected must not end the run.
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    const std::filesystem::path& Path() const noexcept { return m_path; }
    // The full path of a file or folder in it, as the code under test takes it.
    std::wstring operator/(const std::wstring& name) const { return (m_path / name).wstring(); }

  private:
    std::filesystem::path m_path;
};
