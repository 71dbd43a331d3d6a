// Takes a loaded library's export out of its name table as long as the object lives, so that a test
// can tell a remembered address from one that is looked up anew.
#pragma once

#include "platform/WindowsHeaders.h"

#include <cstring>
#include <string>

class HiddenExport
{
  public:
    // path: of a library that is loaded and stays loaded.
    HiddenExport(const std::wstring& path, const char* name)
    {
        auto* const base = reinterpret_cast<BYTE*>(GetModuleHandleW(path.c_str()));
        if (!base)
            return;
        const auto* dos = reinterpret_cast<const IMAGE_DOS_HEADER*>(base);
        const auto* headers = reinterpret_cast<const IMAGE_NT_HEADERS*>(base + dos->e_lfanew);
        const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_EXPORT];
        const auto* exports =
            reinterpret_cast<const IMAGE_EXPORT_DIRECTORY*>(base + directory.VirtualAddress);
        const auto* names = reinterpret_cast<const DWORD*>(base + exports->AddressOfNames);
        for (DWORD i = 0; i < exports->NumberOfNames; ++i)
        {
            char* const text = reinterpret_cast<char*>(base + names[i]);
            if (std::strcmp(text, name) == 0)
                m_last = text + std::strlen(text) - 1;
        }
        if (m_last)
        {
            m_letter = *m_last;
            Write('~');
        }
    }
    ~HiddenExport()
    {
        if (m_last)
            Write(m_letter);
    }
    HiddenExport(const HiddenExport&) = delete;
    HiddenExport& operator=(const HiddenExport&) = delete;

    bool IsHidden() const noexcept { return m_last != nullptr; }

  private:
    // Changes the last letter: the table keeps its order, so that the other names are still found.
    void Write(char letter) noexcept
    {
        DWORD before = 0;
        VirtualProtect(m_last, 1, PAGE_READWRITE, &before);
        *m_last = letter;
        VirtualProtect(m_last, 1, before, &before);
    }

    char* m_last = nullptr;
    char m_letter = 0;
};
