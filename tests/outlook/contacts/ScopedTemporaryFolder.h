// Temporary files of a test's own.
#pragma once

#include "outlook/contacts/PictureJournal.h"
#include "support/ScratchDirectory.h"

#include <filesystem>
#include <string>

// Puts temporary files elsewhere as long as it lives; what the journal learned of them is forgotten
// at the end.
class ScopedTemporaryFolder
{
  public:
    ScopedTemporaryFolder() { Set(m_scratch.Path().wstring() + L"\\"); }
    ~ScopedTemporaryFolder()
    {
        SetEnvironmentVariableW(L"TMP", m_old.empty() ? nullptr : m_old.c_str());
        RemoveOldPictureFiles();
    }
    ScopedTemporaryFolder(const ScopedTemporaryFolder&) = delete;
    ScopedTemporaryFolder& operator=(const ScopedTemporaryFolder&) = delete;

    void Set(const std::wstring& folder) { SetEnvironmentVariableW(L"TMP", folder.c_str()); }
    std::wstring Folder() const { return m_scratch.Path().wstring() + L"\\"; }
    std::size_t CountFiles() const
    {
        std::size_t count = 0;
        for ([[maybe_unused]] const auto& entry :
             std::filesystem::directory_iterator(m_scratch.Path()))
            ++count;
        return count;
    }

  private:
    static std::wstring Present()
    {
        wchar_t value[MAX_PATH] = {};
        GetEnvironmentVariableW(L"TMP", value, MAX_PATH);
        return value;
    }

    std::wstring m_old = Present();
    ScratchDirectory m_scratch;
};
