// A folder of the test's own under the temporary folder, removed with its contents at the end.
#pragma once

#include "platform/WindowsHeaders.h"

#include <atomic>
#include <filesystem>
#include <string>

class ScratchDirectory
{
  public:
    // The suffix becomes part of the folder's name, for tests of unusual paths.
    explicit ScratchDirectory(const std::wstring& suffix = {})
    {
        static std::atomic<unsigned> counter{0};
        m_path = std::filesystem::temp_directory_path() /
                 (L"pim" + std::to_wstring(GetCurrentProcessId()) + L"_" +
                  std::to_wstring(++counter) + suffix);
        std::filesystem::create_directories(m_path);
    }
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;

    const std::filesystem::path& Path() const noexcept { return m_path; }
    // The path of an entry of the folder.
    std::wstring File(const std::wstring& name) const { return (m_path / name).wstring(); }

  private:
    std::filesystem::path m_path;
};
